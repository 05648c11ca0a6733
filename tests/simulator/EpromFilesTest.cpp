// The calibration files, byte for byte, and what they say about the optics.
#include <gmock/gmock.h>

#include <cmath>

#include "scene/Random.h"
#include "sensor/EpromFiles.h"

namespace Simulator {
namespace {

TEST(EncodeBrightness, BothFormsHoldTheSamplesWhereTheyBelong) {
  BrightnessTable oTable;
  for (const unsigned nKey : g_caIlluminationKeys)
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

TEST(MeasureGeometry, TheDotGridRunsColumnByColumnAndSeesTheMirroredPlaten) {
  for (const char* szSerial : {"VT40-AB0001", "VT40-AC0002", "VT40-AA0003"}) {
    const ClOptics oOptics(MixText(szSerial));
    const ClGeometry o = MeasureGeometry(oOptics);
    ASSERT_EQ(o.aTarget.size(), 64u);
    ASSERT_EQ(o.aActual.size(), 64u);
    EXPECT_NEAR(o.aTarget[9].dX - o.aTarget[1].dX, 196.85, 0.01);  // one column on: 10 mm
    EXPECT_NEAR(o.aTarget[1].dY - o.aTarget[0].dY, 196.85, 0.01);  // one row on
    EXPECT_NEAR(o.aTarget[0].dX + o.aTarget[63].dX, 1599.0, 0.01);
    for (size_t e = 0; e < 64; ++e) {
      // A dot is seen where the optics show the mirrored place of the picture.
      const ClPoint oBack = oOptics.SensorToPicture(o.aActual[e].dX, o.aActual[e].dY);
      EXPECT_NEAR(1599.0 - oBack.dX, o.aTarget[e].dX, 1e-5);
    }
  }
}

TEST(MeasureBrightness, TheLuminanceOfKeyOneIsTheLevelOfARidge) {
  const ClOptics oOptics(MixText("VT40-AB0001"));
  const BrightnessTable oTable = MeasureBrightness(oOptics);
  const std::vector<ClPoint> aTarget = MeasureGeometry(oOptics).aTarget;
  ASSERT_EQ(oTable.size(), 5u);
  const auto& aPlanes = oTable.at(1);
  for (size_t i = 0; i < 64; ++i) {
    const int nLuminance = (30 * aPlanes[0][i] + 59 * aPlanes[1][i] + 11 * aPlanes[2][i]) / 100;
    EXPECT_NEAR(nLuminance, 150.0 * oOptics.Illumination(1599.0 - aTarget[i].dX, aTarget[i].dY), 1.5);
  }
}

}  // namespace
}  // namespace Simulator
