// The readout modes of the sensor.
#pragma once

namespace Simulator {

constexpr int cnSensorWidth = 3840;
constexpr int cnSensorHeight = 2720;

/// One readout mode: a window of the full sensor whose pixels are merged nMergeX by nMergeY.
///
/// dNominalExposure  exposure that gives the nominal level, as a multiple of the exposure that does so in
/// full
///                   readout: merged modes differ in sensitivity.
/// dReadNoise        noise of a dark pixel in levels; merging averages a part of it out.
/// dFrameSeconds     time that one frame (one plane of a sequence) takes.
struct ClSensorMode {
  int nMode;
  int nWidth, nHeight;
  int nMergeX, nMergeY;
  int nLeft, nTop;
  double dNominalExposure;
  double dReadNoise;
  double dFrameSeconds;
};

/// The mode of a number; null when the sensor has no such mode.
const ClSensorMode* FindSensorMode(int nMode) noexcept;

}  // namespace Simulator
