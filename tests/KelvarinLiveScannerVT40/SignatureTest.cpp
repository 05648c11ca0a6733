// Signatures through the exported functions: what was written against what is drawn, and what ends a
// signature.
#include <ctime>
#include <thread>

#include "Seeds.h"
#include "SignatureFixture.h"
#include "SignatureTruth.h"

/// Precedes that of the C library, also for the library under test.
extern "C" clock_t clock() noexcept {
  return s_nProcessorTime;
}

namespace {

int Ink(const StDelivered& o) {
  return DarkerThan(o.aPixels, 128);
}

/// Straight strokes of the pen across the upper half, at 60 mm/s, from the moments given.
std::string Lines(const std::vector<double>& aMoments) {
  std::string sStrokes;
  double dY = 10.0;
  for (const double dAt : aMoments) {
    sStrokes += std::string(sStrokes.empty() ? "" : ",") + R"({"line": "straight", "at": )" +
                std::to_string(dAt) + R"(, "points": [[10, )" + std::to_string(dY) + "], [70, " +
                std::to_string(dY + 1.0) + "]]}";
    dY += 6.0;
  }
  return R"({"scanners": [{"serial": "VT40-AB0001", "pen": {"strokes": [)" + sStrokes + "]}}]}";
}

class SignatureOfHeight : public Signature, public testing::WithParamInterface<bool> {};

TEST_P(SignatureOfHeight, ShowsEveryStrokeOnceWhereThePenWas) {
  // Narrow ink, so that what is measured is where it lies.
  ASSERT_EQ(LS_VT40SetPropertyA(m_h, "dSignatureFilterSigma", "0.5"), 0);
  ASSERT_EQ(LS_VT40SetPropertyLongA(m_h, "nAutoCaptureBeep", 1), 0);
  for (int nSeed = 1; nSeed <= Seeds(); ++nSeed) {
    SCOPED_TRACE(nSeed);
    Start(Seeded("signature", nSeed), GetParam());
    // The preview keeps what was drawn before a change of modes.
    ASSERT_EQ(LS_VT40SetPropertyLongA(m_h, "nResetImage", 1), 0);
    const std::vector<StStroke> aStrokes = TrueStrokes();
    ASSERT_FALSE(aStrokes.empty());
    EXPECT_EQ(StepUntil(aStrokes.back().dEnd + 0.1), 0);
    EXPECT_EQ(State().nBeeps, 0u);
    Rest(2.0);
    EXPECT_EQ(StepUntil(aStrokes.back().dEnd + 0.6), 1) << "done is told once";
    EXPECT_EQ(State().nBeeps, 1u);
    const StDelivered oPicture = Picture();
    ASSERT_EQ(oPicture.nError, 0);
    EXPECT_EQ(oPicture.bDone, 1);
    EXPECT_EQ(oPicture.nResult, 0);
    EXPECT_EQ(oPicture.dScore, 0.0);
    const StLikeness oLikeness = Compare(oPicture.aPixels, 1600, aStrokes);
    EXPECT_LE(oLikeness.dRms, 1.5);
    EXPECT_LE(oLikeness.dFarthest, 5.0) << "no line across a pen-up";
    EXPECT_LE(oLikeness.dMissing, 0.034) << "a frame at each end";
    EXPECT_LE(Compare(m_oPreview.aPixels, 800, aStrokes).dRms, 2.0) << "the preview";
  }
}

INSTANTIATE_TEST_SUITE_P(BothHeights, SignatureOfHeight, testing::Bool(),
                         [](const auto& oInfo) { return oInfo.param ? "Half" : "Full"; });

TEST_F(Signature, HasTheRulesAndSizesOfItsMode) {
  EXPECT_EQ(LS_VT40SetPropertyLongA(m_h, "nResetImage", 1), KLV_ERROR_INVALID_STATE) << "mode off";
  for (const bool bHalf : {true, false}) {
    Start("empty", bHalf);
    EXPECT_EQ(State().nSensorMode, bHalf ? 38 : 6);
    EXPECT_EQ(State().nPlanes, 1u);
    EXPECT_EQ(LS_VT40SetPropertyLongA(m_h, "nSignatureSensorMode", !bHalf), KLV_ERROR_INVALID_STATE);
    // The fixture checks that nothing after an image of the signature's size is written.
    for (int n = 0; n < 12; ++n) {
      const StDelivered oPreview = Step();
      ASSERT_EQ(oPreview.nError, 0);
      EXPECT_EQ(oPreview.bDone, 0);
      EXPECT_EQ(oPreview.nResult, KLV_ERROR_NO_FINGER);
      EXPECT_EQ(Ink(oPreview), 0);
    }
    const StDelivered oPicture = Picture();
    EXPECT_EQ(oPicture.nError, 0);
    EXPECT_EQ(oPicture.bDone, 1) << "also when nothing was written";
    EXPECT_EQ(Ink(oPicture), 0);
    EXPECT_EQ(LS_VT40SetPropertyLongA(m_h, "nResetImage", 1), 0);
  }
}

TEST_F(Signature, BeginsAnewWhenThePenComesBackAfterTheDetectTime) {
  ASSERT_EQ(LS_VT40SetPropertyA(m_h, "dSignatureDetectTime", "1"), 0);
  Start(Lines({0.3, 1.8, 3.0}));
  EXPECT_EQ(StepUntil(1.4), 0);
  const int nFirst = Ink(m_oPreview);
  EXPECT_GT(nFirst, 300);
  Rest(1.0);
  EXPECT_EQ(StepUntil(1.7), 1);
  EXPECT_EQ(StepUntil(2.0), 0);
  EXPECT_LT(Ink(m_oPreview), nFirst / 2) << "the first line is gone";
  EXPECT_EQ(StepUntil(2.9), 0);
  Rest(0.7);
  EXPECT_EQ(StepUntil(4.1), 0) << "less than the time";
  Rest(1.0);
  EXPECT_EQ(StepUntil(4.4), 1) << "two lines in one signature";
  EXPECT_GT(Ink(m_oPreview), nFirst * 3 / 2);
}

TEST_F(Signature, WithoutADetectTimeIsNeverDoneAndNeverErased) {
  ASSERT_EQ(LS_VT40SetPropertyA(m_h, "dSignatureDetectTime", "0"), 0);
  Start(Lines({0.3, 1.6}));
  EXPECT_EQ(StepUntil(1.4), 0);
  const int nFirst = Ink(m_oPreview);
  Rest(100.0);
  EXPECT_EQ(StepUntil(2.7), 0);
  EXPECT_GT(Ink(m_oPreview), nFirst * 3 / 2);
  EXPECT_EQ(LS_VT40SetPropertyLongA(m_h, "nResetImage", 1), 0);
  EXPECT_EQ(StepUntil(2.9), 0);
  EXPECT_EQ(Ink(m_oPreview) + Ink(Picture()), 0);
}

TEST_F(Signature, MayBeLeftAtAnyFrame) {
  for (int nSteps = 0; nSteps < 6; ++nSteps) {
    Start(Lines({0.3}), nSteps % 3 == 0);
    for (int n = 0; n < nSteps; ++n) ASSERT_EQ(Step().nError, 0);
    ASSERT_NO_FATAL_FAILURE(LeaveFor(nSteps % 2 == 1)) << nSteps;
  }
}

TEST_F(Signature, IsTakenWhileOtherThreadsAskAndSet) {
  Start(Lines({0.3}));
  ASSERT_EQ(VTSimHoldSequences(nullptr, 0), 0);
  std::atomic<bool> bStop{false};
  std::thread oSetter([&] {
    for (int n = 0; !bStop; ++n) {
      EXPECT_EQ(LS_VT40SetPropertyDoubleA(m_h, "dSignatureFilterSigma", 0.5 + n % 3), 0);
      EXPECT_EQ(LS_VT40SetPropertyDoubleA(m_h, "dSignatureDetectTime", n % 2), 0);
      EXPECT_EQ(LS_VT40SetPropertyLongA(m_h, "nSignatureSensorMode", 1), KLV_ERROR_INVALID_STATE);
      EXPECT_EQ(LS_VT40SetPropertyLongA(m_h, "nResetImage", 1), 0);
    }
  });
  std::thread oAsker([&] {
    while (!bStop) EXPECT_EQ(Picture().nError, 0);
  });
  for (int n = 0; n < 20; ++n) EXPECT_EQ(Preview().nError, 0);
  bStop = true;
  oSetter.join();
  oAsker.join();
}

}  // namespace
