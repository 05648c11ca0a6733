// Optics of a scanner.
#include <gtest/gtest.h>

#include <cmath>

#include "scene/Random.h"
#include "sensor/Optics.h"
#include "sensor/SensorMode.h"

namespace Simulator {
namespace {

TEST(Optics, ThePlatenFitsTheSensorMirroredAndDistortedByAFewPercent) {
  for (const char* szSerial : {"VT40-AB0001", "VT40-AA0002", "VT40-AC1234", "VT40-AD9999"}) {
    const ClOptics oOptics(MixText(szSerial));
    double dWorst = 0.0;
    for (double dY = 0.0; dY <= 1599.0; dY += 123.0) {
      for (double dX = 0.0; dX <= 1599.0; dX += 123.0) {
        const ClPoint o = oOptics.PictureToSensor(dX, dY);
        ASSERT_TRUE(o.dX > 100.0 && o.dX < cnSensorWidth - 100.0);
        ASSERT_TRUE(o.dY > 60.0 && o.dY < cnSensorHeight - 60.0);
        const ClPoint oBack = oOptics.SensorToPicture(o.dX, o.dY);
        ASSERT_NEAR(oBack.dX, dX, 1e-6);
        ASSERT_NEAR(oBack.dY, dY, 1e-6);
        ASSERT_LT(oOptics.PictureToSensor(dX + 1.0, dY).dX, o.dX) << "x isn't mirrored";
        ASSERT_GT(oOptics.PictureToSensor(dX, dY + 1.0).dY, o.dY);
        // 2.104 and 1.536 sensor pixels make a picture pixel.
        const double dIdealX = 1919.5 - 2.104 * (dX - 799.5), dIdealY = 1359.5 + 1.536 * (dY - 799.5);
        dWorst = std::max(dWorst, std::hypot((o.dX - dIdealX) / 2.104, (o.dY - dIdealY) / 1.536));
      }
    }
    EXPECT_GT(dWorst, 0.01 * 800.0);
    EXPECT_LT(dWorst, 0.06 * 800.0);
  }
}

}  // namespace
}  // namespace Simulator
