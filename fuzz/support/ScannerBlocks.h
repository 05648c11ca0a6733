// Calibration records as the simulated scanner carries them, and what older ones look like.
#pragma once

#include <cstring>

#include "FuzzTarget.h"
#include "sensor/EpromFiles.h"

/// The record of the newest version, whose checksum hardly any change survives, and older ones, which have
/// none.
inline std::vector<Bytes> GeometryBlocks() {
  const Bytes aNewest = Simulator::EncodeGeometry(Simulator::MeasureGeometry(Simulator::ClOptics(3)));
  Bytes aWithoutChecksum(aNewest.begin(), aNewest.end() - 4);
  std::memcpy(aWithoutChecksum.data() + 8, "005", 4);
  Bytes aWithoutSourcePels = aWithoutChecksum;
  aWithoutSourcePels.erase(aWithoutSourcePels.begin() + 20, aWithoutSourcePels.begin() + 28);
  std::memcpy(aWithoutSourcePels.data() + 8, "004", 4);
  return {aNewest, aWithoutChecksum, aWithoutSourcePels};
}

inline Bytes BrightnessBlock(bool bLegacy) {
  return Simulator::EncodeBrightness(Simulator::MeasureBrightness(Simulator::ClOptics(3)), bLegacy);
}

inline Bytes GainBlock(bool bLegacy) {
  return Simulator::EncodeGains(Simulator::MeasureGains(3, 1), bLegacy);
}
