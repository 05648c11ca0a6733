// The readout modes of the sensor.
#include "sensor/SensorMode.h"

namespace Simulator {
namespace {

constexpr ClSensorMode caModes[] = {
    {1, 1920, 1360, 2, 2, 0, 0, 0.5, 0.75, 0.050},
    {2, 3840, 2720, 1, 1, 0, 0, 1.0, 1.00, 0.200},
    {6, 960, 680, 4, 4, 0, 0, 1.0 / 3.0, 0.55, 1.0 / 60.0},
    {7, 3840, 2720, 1, 1, 0, 0, 1.0, 1.00, 0.200},
    {8, 1920, 1362, 1, 1, 960, 0, 2.0, 1.00, 0.050},
    {32, 1920, 1360, 2, 2, 0, 0, 0.5, 0.75, 0.050},
    {34, 1920, 2720, 2, 1, 0, 0, 2.0, 0.85, 0.100},
    {35, 960, 1360, 4, 2, 0, 0, 1.0, 0.60, 1.0 / 30.0},
    {36, 960, 1362, 2, 1, 960, 0, 4.0, 0.85, 1.0 / 30.0},
    {38, 960, 340, 4, 4, 0, 0, 1.0 / 3.0, 0.55, 1.0 / 120.0},
};

}  // namespace

const ClSensorMode* FindSensorMode(int nMode) noexcept {
  for (const ClSensorMode& oMode : caModes)
    if (oMode.nMode == nMode) return &oMode;
  return nullptr;
}

}  // namespace Simulator
