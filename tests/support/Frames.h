// Raw sequences as a host takes and subtracts them.
#pragma once

#include <algorithm>
#include <vector>

#include "sensor/Sensor.h"

namespace Simulator {

using Plane = std::vector<int>;

/// Settings as a host makes them: exposure dFactor times that of full readout, nominal gain, one dark and one
/// lit frame.
inline ClSensorSettings Settings(const ClSensor& oSensor, int nMode, double dFactor) {
  ClSensorSettings o;
  o.pMode = FindSensorMode(nMode);
  o.nExposure = static_cast<unsigned>(oSensor.NominalExposure() * dFactor);
  o.anGain = oSensor.NominalGain();
  o.aMasks = {0, 1};
  return o;
}

inline std::vector<uint8_t> Sequence(ClSensor& oSensor, const ClSensorSettings& oSettings,
                                     uint64_t nNumber = 1, double dSeconds = 0.0) {
  std::vector<uint8_t> aBytes(oSettings.PlaneBytes() * oSettings.aMasks.size());
  oSensor.Render(oSettings, dSeconds, nNumber, aBytes.data());
  return aBytes;
}

/// Lit minus dark, in the order that the tag gives, 0 where that would be negative.
inline Plane Difference(const std::vector<uint8_t>& aBytes) {
  const size_t nPlane = aBytes.size() / 2;
  const bool bLitFirst = (aBytes[0] & 15) != 0;
  Plane aOut(nPlane);
  for (size_t i = 0; i < nPlane; ++i) {
    const int nStep = aBytes[i + nPlane] - aBytes[i];
    aOut[i] = std::max(0, bLitFirst ? -nStep : nStep);
  }
  return aOut;
}

}  // namespace Simulator
