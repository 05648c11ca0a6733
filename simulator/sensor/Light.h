// The levels that the light of the scanner gives: what the calibration was made for.
#pragma once

namespace Simulator {

/// Levels above dark at full illumination, nominal gain and nominal exposure.
constexpr double cdRidgeLevel = 150.0;
/// Light that clean glass scatters into the sensor, in levels.
constexpr double cdStrayLevel = 4.0;
/// Light from a valley as a share of that from a ridge.
constexpr double cdValleyPart = 0.2;

}  // namespace Simulator
