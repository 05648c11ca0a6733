// Optics of a scanner, and the calibration files that it carries, byte for byte.
#include <gmock/gmock.h>

#include <cmath>

#include "scene/Random.h"
#include "sensor/EpromFiles.h"
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

TEST(EncodeBrightness, BothFormsHoldTheSamplesWhereTheyBelong) {
  BrightnessTable oTable;
  for (const unsigned nKey : caIlluminationKeys)
    for (size_t c = 0; c < 3; ++c) oTable[nKey][c].assign(64, static_cast<uint8_t>(nKey * 10 + c));
  const ByteBlock aLegacy = EncodeBrightness(oTable, true);
  ASSERT_EQ(aLegacy.size(), 1088u);
  EXPECT_EQ(aLegacy[127], 0);
  EXPECT_EQ(aLegacy[128], 160);       // key 16, plane 0
  EXPECT_EQ(aLegacy[320 + 64], 11);   // key 1, plane 1
  EXPECT_EQ(aLegacy[512 + 128], 82);  // key 8, plane 2
  EXPECT_EQ(aLegacy[704], 20);        // key 2
  EXPECT_EQ(aLegacy[1087], 42);       // key 4, last sample of plane 2
  const ByteBlock aCurrent = EncodeBrightness(oTable, false);
  ASSERT_EQ(aCurrent.size(), 8u + 5 * (8 + 192));
  EXPECT_THAT(ByteBlock(aCurrent.begin(), aCurrent.begin() + 18),
              testing::ElementsAre('C', 'B', 'D', 0, 1, 0, 64, 0, 1, 0, 0, 0, 0, 0, 0, 0, 10, 10));
}

TEST(EncodeGains, BothFormsInterleaveGainAndWhitePatch) {
  GainTable oTable;
  oTable[1] = {{0x11, 0x22, 0x33}, {0xA1, 0xA2, 0xA3}};
  oTable[16] = {{0x44, 0x55, 0x66}, {0xB1, 0xB2, 0xB3}};
  const ByteBlock aLegacy = EncodeGains(oTable, true);
  ASSERT_EQ(aLegacy.size(), 30u);
  EXPECT_THAT(
      ByteBlock(aLegacy.begin(), aLegacy.begin() + 13),
      testing::ElementsAre(0x44, 0xB1, 0x55, 0xB2, 0x66, 0xB3, 0x11, 0xA1, 0x22, 0xA2, 0x33, 0xA3, 0));
  EXPECT_THAT(EncodeGains({{1, oTable[1]}}, false),
              testing::ElementsAre('C', 'G', 'D', 0, 1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0x11, 0xA1, 0x22, 0xA2,
                                   0x33, 0xA3));
}

}  // namespace
}  // namespace Simulator
