// The light that each sensor pixel of a mode collects from the platen.
#pragma once

#include <cstdint>
#include <vector>

#include "scene/Plane.h"
#include "scene/Sheet.h"
#include "sensor/Optics.h"
#include "sensor/Reflectance.h"
#include "sensor/SensorMode.h"

namespace Simulator {

/// Steps of the signal in one grey level at nominal gain and exposure.
constexpr int cnSignalSteps = 128;

/// The signal image of one sensor mode: reflectance times illumination, seen through the optics. A merged
/// pixel collects from its whole area, so that merged modes show no aliases. A sheet is seen without the
/// picture between, through the point spread of the optics: each pixel of the full sensor collects from its
/// area, and merged ones give the mean of theirs.
///
/// Threads    thread-bound.
/// Cost       some tens of nanoseconds for a pixel that sees skin, one or two for one that sees bare glass.
/// No
///            allocation when the mode stays the same.
class ClSignal {
 public:
  void Render(const ClReflectance& oReflectance, const ClOptics& oOptics, const ClSensorMode& oMode);
  void Free();

  const uint16_t* Row(int nY) const noexcept { return m_oSignal.Row(nY); }

 private:
  static constexpr int m_cnRun = 32;  // columns and rows over which positions are interpolated

  struct ClNode {
    float fX, fY, fLight;
  };

  static ClNode Between(const ClNode& a, const ClNode& b, float f) noexcept;
  void LookThrough(const ClOptics& oOptics, const ClSensorMode& oMode, int nRow,
                   std::vector<ClNode>& aNodes) const;
  void RenderRow(const ClReflectance& oReflectance, const ClSensorMode& oMode, int nRow);
  void RenderSheetRow(const ClSheetView& oView, const ClSensorMode& oMode, int nRow);
  void Collect(const ClReflectance& oReflectance, const ClNode& oFirst, const ClNode& oLast, double dOffset,
               int nCount, uint32_t* pSum) const noexcept;

  TpPlane<uint16_t> m_oSignal;
  std::vector<ClNode> m_aAbove, m_aBelow;
  std::vector<uint32_t> m_aSum;
};

}  // namespace Simulator
