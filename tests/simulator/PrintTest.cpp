// Prints from files, what a finger shows of a print, and the way of a pen.
#include <gmock/gmock.h>

#include <cmath>

#include "Allocations.h"
#include "TestFiles.h"
#include "portable/Math.h"
#include "scene/FingerContent.h"
#include "scene/FingerMotion.h"
#include "scene/PenPath.h"
#include "scene/PrintFile.h"
#include "scene/SceneReader.h"

namespace Simulator {
namespace {

ClPlatenMap Drawn(const ClFingerDescription& oFinger, double dSeconds = 0.0) {
  ClPlatenMap oMap;
  oMap.Clear();
  ClFingerContent(oFinger).Draw(dSeconds, oMap);
  return oMap;
}

ptrdiff_t Count(const TpPlane<uint8_t>& o) {
  return std::count_if(o.Data(), o.Data() + o.Count(), [](uint8_t n) { return n >= 128; });
}

TEST(PrintFile, ABigEnoughPrintLiesPixelForPixelInTheMiddleOfThePlaten) {
  const ClTestFolder oFolder;
  // Stripes of 8 pixels, never light enough to count as bare.
  const auto Pixel = [](unsigned x, unsigned y) { return (x / 4 + y / 64) % 2 ? 30u + y % 7 : 200u; };
  ClFingerDescription oFinger;
  oFinger.oPrint.sFile = oFolder.WritePng("stripes.png", 1200, 800, Pixel);
  oFinger.dDryness = 0.0;
  const ClPlatenMap oMap = Drawn(oFinger);
  for (unsigned y = 0; y < 800; y += 3)
    for (unsigned x = 0; x < 1200; ++x)
      ASSERT_EQ(oMap.oContact.At(static_cast<int>(x) + 200, static_cast<int>(y) + 400), 255 - Pixel(x, y))
          << x << " " << y;
  EXPECT_EQ(oMap.oContact.At(199, 700), 0);
  EXPECT_EQ(oMap.oCover.At(199, 700), 0);
}

TEST(PrintFile, ADamagedOrMissingFileIsReportedByName) {
  const ClTestFolder oFolder;
  const auto Failure = [](const std::string& sPath) { return RefusalOf([&] { ReadPrintFile(sPath); }); };
  const std::string sGood = oFolder.WritePng("good.png", 64, 64, [](unsigned x, unsigned) { return x; });
  EXPECT_EQ(Failure(sGood).first, 0);
  const std::string sBytes = oFolder.Read(sGood);
  const std::string sCut = oFolder.Write("cut.png", sBytes.substr(0, sBytes.size() / 2));
  EXPECT_THAT(Failure(sCut), testing::Pair(-203, testing::HasSubstr(sCut)));
  EXPECT_EQ(Failure(oFolder.Write("text.png", "no picture")).first, -203);
  EXPECT_EQ(Failure(oFolder.Path("none.png")).first, -200);
  EXPECT_EQ(Failure(oFolder.WritePng("wide.png", 4097, 2, [](unsigned, unsigned) { return 0; })).first, -203);
}

TEST(PrintFile, ACoarsePrintIsNotEnlargedBeforeItIsRefused) {
  const ClTestFolder oFolder;
  std::string sBytes =
      oFolder.Read(oFolder.WritePng("fine.png", 4096, 512, [](unsigned, unsigned) { return 0; }));
  // After signature and header come 3000 pels per metre, so that 500 dots per inch take 43 times the pixels.
  sBytes.insert(33, std::string("\0\0\0\x09pHYs\0\0\x0B\xB8\0\0\x0B\xB8\x01\x3E\xB2\x18\x17", 21));
  const std::string sCoarse = oFolder.Write("coarse.png", sBytes);
  Allocations::ForgetLargest();
  EXPECT_THROW(ReadPrintFile(sCoarse), ClSimError);
  EXPECT_LE(Allocations::Largest(), 2u << 20);
}

TEST(FingerContent, PressureWidensTheContactAndDrynessBreaksIt) {
  const auto With = [](double dPressure, double dDryness) {
    ClFingerDescription o;
    o.dPressure = dPressure;
    o.dDryness = dDryness;
    return Drawn(o);
  };
  const ClPlatenMap oUsual = With(0.6, 0.1), oHard = With(1.0, 0.1), oDry = With(0.6, 0.8);
  EXPECT_GT(Count(oHard.oContact), Count(oUsual.oContact) * 11 / 10);
  EXPECT_GT(Count(oHard.oCover), Count(oUsual.oCover));
  EXPECT_LT(Count(oDry.oContact), Count(oUsual.oContact) * 9 / 10);
  EXPECT_EQ(Count(oDry.oCover), Count(oUsual.oCover));
}

TEST(FingerMotion, AFingerSettlesSlidesPressesAndComesBackOnTime) {
  ClFingerDescription o;
  o.dTouch = 1.0;
  o.dLift = 6.0;
  o.dRepeat = 8.0;
  o.oSettle = {1.0, 2.56, -1.28, 16.0, 0.1};
  o.oSlide = {2.0, 3.0, 1.6256, 90.0, 0.0};
  o.oPress = {3.5, 0.5, 1.0};
  const auto At = [&o](double dSeconds) { return ClFingerMotion::At(o, dSeconds); };
  EXPECT_EQ(At(1.0).nDown, 0);
  // A quarter of the way to rest is left: an eighth of the deviation.
  const ClFingerPose oSettling = At(1.75);
  EXPECT_TRUE(oSettling.bMoving);
  EXPECT_NEAR(oSettling.dXMm, 40.64 + 0.32, 1e-3);
  EXPECT_NEAR(oSettling.dYMm, 40.64 - 0.16, 1e-3);
  EXPECT_NEAR(oSettling.dAngle, 2.0, 0.01);
  EXPECT_NEAR(oSettling.dPressure, 0.6 - 0.0625, 0.004);
  // At rest it is as described, to the last bit.
  EXPECT_FALSE(At(2.5).bMoving);
  EXPECT_EQ(At(2.5).dXMm, 40.64);
  EXPECT_EQ(At(2.5).dPressure, 0.6);
  // 32 pixels a second upwards, for a second.
  EXPECT_TRUE(At(3.5).bMoving);
  EXPECT_NEAR(At(3.5).dYMm, 40.64 - 0.8128, 1e-9);
  EXPECT_NEAR(At(4.2).dYMm, 40.64 - 1.6256, 1e-9);
  EXPECT_NEAR(At(4.75).dPressure, 0.8, 0.004);
  EXPECT_FALSE(At(5.5).bMoving);
  EXPECT_NEAR(At(5.5).dPressure, 1.0, 0.004);
  EXPECT_EQ(At(6.2).nDown + At(8.9).nDown, 0);
  EXPECT_TRUE(At(9.75).SameAs(oSettling)) << "the second visit is as the first";
  // Round a circle a finger is back after its circumference, and a diameter away at the half.
  o.oSlide = {2.0, 1000.0, 2.0 * Portable::cdPi, 0.0, 1.0};
  EXPECT_NEAR(At(3.5).dYMm, 40.64 - 2.0, 1e-3);
  EXPECT_NEAR(At(4.0).dYMm, 40.64, 1e-3);
}

TEST(FingerContent, WaterShowsRoundAFingerAndIsNoSkin) {
  ClFingerDescription oFinger;
  const ClPlatenMap oDry = Drawn(oFinger);
  oFinger.dHalo = 1.0;
  const ClPlatenMap oWet = Drawn(oFinger);
  int nWet = 0;
  for (size_t i = 0; i < oDry.oContact.Count(); ++i) {
    ASSERT_EQ(oDry.oCover.Data()[i], oWet.oCover.Data()[i]);
    if (oWet.oCover.Data()[i] != 0) continue;
    ASSERT_EQ(oDry.oContact.Data()[i], 0);
    ASSERT_LE(oWet.oContact.Data()[i], 77);  // three tenths of a ridge
    nWet += oWet.oContact.Data()[i] > 20;
  }
  EXPECT_GT(nWet, 10000);
}

TEST(RollingFinger, PressesAWiderStripAndSlipsAndTurnsOnRequest) {
  ClFingerDescription o;
  o.oPrint.dWidthMm = 28.0;
  o.oRoll = {
      12.0, 0.0, {{0.0, 0.0, 0.0, 1.0}, {1.0, 0.0, 30.0, 1.0}, {2.0, 0.0, 30.0, 1.0}, {2.0, 0.0, 30.0, 0.0}}};
  o.dPressure = 0.4;
  const ptrdiff_t nLight = Count(Drawn(o).oCover);
  o.dPressure = 0.8;
  EXPECT_GT(Count(Drawn(o).oCover), 13 * nLight / 10);
  EXPECT_EQ(Count(Drawn(o, 2.5).oCover), 0) << "lifted";
  o.oSlide = {0.0, cdNever, 2.0, 90.0, 0.0};
  const ClFingerPose oPose = ClFingerMotion::At(o, 0.5);
  EXPECT_NEAR(oPose.dAngle, 15.0, 0.02);
  EXPECT_NEAR(oPose.dYMm, o.dYMm - 1.0, 0.002);
  EXPECT_TRUE(oPose.bMoving);
  o.oSlide = {};
  EXPECT_FALSE(ClFingerMotion::At(o, 1.5).bMoving);
}

TEST(PenPath, ACurveMeetsItsPointsAndSlowsDownInBendsAndStrokesWaitForEachOther) {
  const ClPenPath oPath(FindScene(R"({"scanners": [{"pen": {"strokes": [
      {"at": 1, "speed": 50, "points": [[10, 10], [20, 10, 0.5], [30, 20], [20, 30]]},
      {"at": 1.1, "line": "straight", "speed": 50, "points": [[60, 10], [70, 10]]},
      {"after": 0.25, "points": [[50, 20]]}]}}]})")
                            .aScanners[0]
                            .oPen.aStrokes);
  const auto& aStrokes = oPath.Strokes();
  ASSERT_EQ(aStrokes.size(), 3u);
  EXPECT_EQ(aStrokes[0].dBegin, 1.0);
  EXPECT_EQ(aStrokes[1].dBegin, aStrokes[0].dEnd) << "its time comes while the first is being drawn";
  EXPECT_NEAR(aStrokes[1].dEnd - aStrokes[1].dBegin, 0.2, 1e-9);
  EXPECT_NEAR(aStrokes[2].dBegin - aStrokes[1].dEnd, 0.25, 1e-9);
  EXPECT_NEAR(aStrokes[2].dEnd - aStrokes[2].dBegin, 0.08, 1e-9) << "a tap";
  double adNearest[4] = {99, 99, 99, 99}, dSlowest = 1e9, dFastest = 0.0;
  int nRests = 0;
  ClPenTip oBefore = oPath.At(1.0);
  for (double d = 1.001; d < aStrokes[0].dEnd; d += 0.001) {
    const ClPenTip o = oPath.At(d);
    EXPECT_TRUE(o.bDown && o.nStroke == 0) << d;
    const double dSpeed = std::hypot(o.dXMm - oBefore.dXMm, o.dYMm - oBefore.dYMm) / 0.001;
    nRests += dSpeed == 0.0;
    dFastest = std::max(dFastest, dSpeed);
    if (d > 1.8) dSlowest = std::min(dSlowest, dSpeed);
    const double adPoints[4][2] = {{10, 10}, {20, 10}, {30, 20}, {20, 30}};
    for (size_t n = 0; n < 4; ++n)
      adNearest[n] = std::min(adNearest[n], std::hypot(o.dXMm - adPoints[n][0], o.dYMm - adPoints[n][1]));
    oBefore = o;
  }
  for (const double d : adNearest) EXPECT_LT(d, 0.08);
  EXPECT_NEAR(nRests, 500, 5) << "the pause";
  EXPECT_NEAR(dFastest, 75.0, 3.0) << "one and a half times the usual speed where it is straight";
  EXPECT_LT(dSlowest, 66.0);
  EXPECT_FALSE(oPath.At(0.5).bDown || oPath.At(aStrokes[2].dEnd).bDown);
  EXPECT_EQ(oPath.At(0.5).nStroke, -1);
  EXPECT_NEAR(oPath.At(0.5).dXMm, 10.0, 0.01) << "where it will touch first";
}

}  // namespace
}  // namespace Simulator
