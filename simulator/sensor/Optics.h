// Where the light from a place on the platen meets the sensor, and how brightly the platen is lit.
#pragma once

#include <cstdint>

#include "scene/SceneDescription.h"

namespace Simulator {

struct ClPoint {
  double dX, dY;
};

/// The optics of one scanner. The platen is seen through a prism: keystone from the slant, barrel distortion
/// from the lens, a slight twist and shift from assembly, x mirrored.
///
/// Domain     the picture is the platen at 500 dots per inch, 1600 x 1600, right way round; the sensor has
///            3840 x 2720 pixels of about 1052 x 768 dots per inch. Whole numbers are pixel centres.
/// Range      both directions are inverse to each other to 1e-6 pixels, up to 10 mm beyond the platen.
/// Threads    const operations are thread-safe.
class ClOptics {
 public:
  /// The seed stands for the scanner: each seed has its own distortion, light and point spread. What is wrong
  /// with it comes on top.
  explicit ClOptics(uint64_t nSeed, const ClOpticsDescription& oWrong = ClOpticsDescription());

  ClPoint PictureToSensor(double dX, double dY) const noexcept;
  ClPoint SensorToPicture(double dX, double dY) const noexcept;

  /// Illumination at a position in the picture, 1 at the brightest. It falls by about a third towards the
  /// corners and is symmetric about the vertical middle line up to a few thousandths, as the LED bars on both
  /// sides make it.
  double Illumination(double dX, double dY) const noexcept;

  /// Standard deviations of the Gaussian point spread along rows and columns, in pixels of the full sensor.
  ClPoint Spread() const noexcept { return {m_dSpreadX, m_dSpreadY}; }
  /// Width and height of a pixel of the full sensor on the platen, in the middle.
  ClPoint PixelMm() const noexcept;

 private:
  double Bend(double dY) const noexcept;

  double m_dMidX, m_dMidY;
  double m_dScaleX, m_dScaleY;
  double m_dKeystoneX, m_dKeystoneY;
  double m_dBarrel;
  double m_dCos, m_dSin;
  double m_dFallX, m_dFallY, m_dTiltX, m_dTiltY;
  double m_dSpreadX, m_dSpreadY;
  double m_dBend, m_dShade;  // what the calibration does not know; the bend in pixels of the picture
};

}  // namespace Simulator
