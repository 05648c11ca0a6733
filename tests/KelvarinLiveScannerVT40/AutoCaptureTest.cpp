// Automatic capture through the exported functions: when it fires, when it must not, and what breaks it.
#include <algorithm>
#include <future>
#include <thread>

#include "AutoFixture.h"
#include "KelvarinFakeFingerDetectionVT40/FDSim.h"

namespace {

TEST_F(AutoScanner, NeverFiresOnAnEmptyADirtyOrAMovingPlaten) {
  for (const char* szScene : {"empty", "dirty:1", "sliding-slap:1", "sliding-slap:2"}) {
    SCOPED_TRACE(szScene);
    Start(szScene);
    for (int n = 0; n < cnFewFrames; ++n) ASSERT_EQ(Preview().bDone, 0);
    EXPECT_EQ(Shots().size(), 0u);
  }
}

TEST_F(AutoScanner, ReportsTheDirtOfAnEmptyPlaten) {
  for (const char* szScene : {"empty", "dirty:1"}) {
    Start(szScene);
    // Seventeen dark scenes, every second frame.
    for (int n = 0; n < 40; ++n) ASSERT_EQ(Preview().nError, 0);
    EXPECT_EQ(Condition() > 2, std::string(szScene) != "empty") << Condition();
  }
}

TEST_F(AutoScanner, KeepsACaptureForFiveFramesAndBeepsOnceWhenAsked) {
  StartHeld(cszFinger, KLV_VT40_CAPTURE_MODE_AUTO);
  ASSERT_EQ(LS_VT40SetPropertyLongA(m_h, "nAutoCaptureBeep", 1), 0);
  ASSERT_NO_FATAL_FAILURE(PassUntilShot());
  ASSERT_NO_FATAL_FAILURE(Pass());
  // The worker lets the caller in between two sequences. Four sequences are fewer than the five frames of an
  // offer.
  std::future<StDelivered> oKept = std::async(std::launch::async, [&] { return Image(); });
  for (int n = 0; n < 4 && oKept.wait_for(std::chrono::milliseconds(250)) != std::future_status::ready; ++n) {
    ASSERT_EQ(VTSimPassSequences(nullptr, 1), 0);
  }
  EXPECT_EQ(oKept.get().bDone, 1);
  EXPECT_EQ(Shots().size(), 1u) << "the capture that was kept";
  ASSERT_EQ(VTSimHoldSequences(nullptr, 0), 0);
  EXPECT_EQ(Image().bDone, 1);
  EXPECT_EQ(Shots().size(), 2u) << "it is given out once";
  EXPECT_EQ(Preview().bDone, 1);
  EXPECT_EQ(Beeps(), Beeps_t({{300, 100}}));
}

TEST_F(AutoScanner, ACaptureIsNotOfferedInTheNextMode) {
  StartHeld(cszFinger, KLV_VT40_CAPTURE_MODE_AUTO);
  ASSERT_NO_FATAL_FAILURE(PassUntilShot());
  ASSERT_NO_FATAL_FAILURE(Pass());
  std::thread oRelease([] { VTSimHoldSequences(nullptr, 0); });
  EXPECT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_PREVIEW), 0);
  oRelease.join();
  EXPECT_EQ(Preview().bDone, 0);
  EXPECT_EQ(Image().bDone, 1);
  EXPECT_EQ(Shots().size(), 2u);
}

TEST_F(AutoScanner, MakesAnOldCaptureAnewAndMissesOneOfFourFingers) {
  Start(R"({"scanners": [{"serial": "VT40-AB0001", "fingers": [
      {"print": {"seed": 3}, "x": 12, "slide": {"start": 60, "speed": 8, "radius": 3}},
      {"print": {"seed": 3}, "x": 31}, {"print": {"seed": 3}, "x": 50},
      {"print": {"seed": 3}, "x": 69, "lift": 60}]}]})");
  ASSERT_EQ(PollUntil(true, cnFewFrames).nError, 0);
  for (int n = 0; n < 8; ++n) ASSERT_EQ(Preview().nError, 0);
  EXPECT_EQ(Image().bDone, 1);
  EXPECT_EQ(Shots().size(), 2u);
  // One of those that are left moves, so that no automatic capture comes in between.
  ASSERT_EQ(VTSimAdvance(nullptr, 70.0), 0);
  EXPECT_EQ(Image().bDone, 0);
  EXPECT_EQ(Shots().size(), 3u);
}

TEST_F(AutoScanner, AShotInWhichOneOfSevenFingersIsMissingIsNotGood) {
  std::string sFingers;
  for (int n = 0; n < 7; ++n) {
    sFingers += std::string(n == 0 ? "" : ",") + R"({"print": {"seed": 3}, "x": )" +
                std::to_string(12 + 19 * (n % 4)) + R"(, "y": )" + std::to_string(18 + 30 * (n / 4)) +
                (n == 5 ? R"(, "lift": 60})" : "}");
  }
  StartHeld(R"({"scanners": [{"serial": "VT40-AB0001", "fingers": [)" + sFingers + "]}]}",
            KLV_VT40_CAPTURE_MODE_AUTO);
  ASSERT_EQ(LS_VT40SetPropertyLongA(m_h, "nAutoCaptureBeep", 1), 0);
  ASSERT_NO_FATAL_FAILURE(PassUntilShot());
  ASSERT_EQ(VTSimAdvance(nullptr, 70.0), 0);
  ASSERT_NO_FATAL_FAILURE(Pass());
  EXPECT_EQ(State().nBeeps, 0u);
  ASSERT_NO_FATAL_FAILURE(PassUntilShot());
  ASSERT_NO_FATAL_FAILURE(Pass());
  EXPECT_EQ(State().nBeeps, 1u) << "the six that are left";
  ASSERT_EQ(VTSimHoldSequences(nullptr, 0), 0);
}

TEST_F(AutoScanner, AShotThatFailsPutsThePreviewsSettingsBack) {
  // The mode's own setting is the first, the shot's the second, the pause's the third.
  for (const unsigned int nFailing : {2u, 3u}) {
    SCOPED_TRACE(nFailing);
    LoadScene(cszFinger);
    ASSERT_EQ(Open(), 0);
    ASSERT_EQ(VTSimFailCall("VTScanAPISetCaptureMode", nFailing + 1, 1, -777), 0);
    ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_AUTO), 0);
    // The call after the one that failed puts them back; the pause's own, before that, has one plane.
    ASSERT_TRUE(WaitFor(
        [&] {
          return Calls("VTScanAPISetCaptureMode") > nFailing + 1 && State().nSensorMode == 35 &&
                 State().nPlanes == 2;
        },
        10.0));
    EXPECT_EQ(Image().bDone, 1) << "the mode goes on without its automatic captures";
    ASSERT_EQ(LS_VT40CloseScanner(&m_h), 0);
  }
}

TEST_F(AutoScanner, TwoScannersDecideEachForItself) {
  LoadScene(R"({"scanners": [
      {"serial": "VT40-AB0001", "fingers": [{"touch": 0.5, "settle": {"seconds": 0.5, "y": 3}}]},
      {"serial": "VT40-AB0002", "fingers": [{"touch": 1.5, "settle": {"seconds": 0.5, "x": 3}}]}]})");
  ASSERT_EQ(Open(), 0);
  void* hOther = nullptr;
  ASSERT_EQ(LS_VT40OpenScanner("VT40-AB0002", &hOther), 0);
  const auto Capture = [](void* h) {
    EXPECT_EQ(LS_VT40SetCaptureMode(h, KLV_VT40_CAPTURE_MODE_AUTO), 0);
    StDelivered oPreview;
    for (int n = 0; n < cnManyFrames && oPreview.bDone != 1; ++n)
      oPreview = Fetch(LS_VT40GetPreviewImage, h, 800 * 800);
    return oPreview.bDone == 1 && Fetch(LS_VT40GetImage, h, 1600 * 1600).bDone == 1;
  };
  std::future<bool> oOther = std::async(std::launch::async, Capture, hOther);
  EXPECT_TRUE(Capture(m_h));
  EXPECT_TRUE(oOther.get());
  EXPECT_EQ(LS_VT40CloseScanner(&hOther), 0);
}

TEST_F(AutoScanner, LivenessDistinguishesSkinFromImitations) {
  Start("settling-slap:3", KLV_VT40_CAPTURE_MODE_AUTO_LIVE);
  ASSERT_EQ(PollUntil(true, cnManyFrames).nError, 0);
  EXPECT_GT(Image().dScore, 50.0);
  for (int nSeed = 1; nSeed <= 2; ++nSeed) {
    Start(Seeded("fake-finger", nSeed), KLV_VT40_CAPTURE_MODE_AUTO_LIVE);
    ASSERT_EQ(PollUntil(true, cnManyFrames).nError, 0);
    EXPECT_LT(Image().dScore, 50.0) << nSeed;
  }
}

TEST_F(AutoScanner, AScannerOfTheFirstRevisionDrawsItsScore) {
  LoadScene(R"({"scanners": [{"serial": "VT40-AA0001", "fingers": [{}]}]})");
  ASSERT_EQ(Open("VT40-AA0001"), 0);
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_AUTO_LIVE), 0);
  ASSERT_EQ(PollUntil(true, cnFewFrames).nError, 0);
  const double dScore = Image().dScore;
  EXPECT_GE(dScore, 15.0);
  EXPECT_LT(dScore, 90.0);
}

TEST_F(AutoScanner, ALivenessLibraryThatDoesNotStartLeavesTheOtherModes) {
  for (const char* szFunction : {"FD_VT40Initialize", "FD_VT40CreateFakeDetectionVT40Handle"}) {
    SCOPED_TRACE(szFunction);
    ASSERT_EQ(FDSimFailCall(szFunction, 1, 1, -777), 0);
    LoadScene(cszFinger);
    ASSERT_EQ(Open(), 0);
    EXPECT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_AUTO_LIVE), KLV_ERROR_UNSUPPORTED);
    EXPECT_EQ(Mode(), KLV_VT40_CAPTURE_MODE_OFF);
    EXPECT_EQ(State().bCaptureEnabled, 0);
    EXPECT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_AUTO), 0);
    EXPECT_EQ(PollUntil(true, cnFewFrames).nError, 0);
    ASSERT_EQ(LS_VT40CloseScanner(&m_h), 0);
    FDSimState oState{};
    oState.nStructSize = sizeof(oState);
    ASSERT_EQ(FDSimGetState(&oState), 0);
    EXPECT_EQ(oState.nInitialized, 0u);
    EXPECT_EQ(oState.nContexts, 0u);
  }
}

TEST_F(AutoScanner, AScoreThatFailsIsNoneAndTheCaptureStands) {
  LoadScene(cszFinger);
  ASSERT_EQ(Open(), 0);
  ASSERT_EQ(FDSimFailCall("FD_VT40GetFakeFingerDetectionScore", 1, 0, -777), 0);
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_AUTO_LIVE), 0);
  ASSERT_EQ(PollUntil(true, cnFewFrames).nError, 0);
  const StDelivered oImage = Image();
  EXPECT_EQ(oImage.bDone, 1);
  EXPECT_EQ(oImage.dScore, 0.0);
  ASSERT_EQ(FDSimReset(), 0);
}

/// Brings the scanner to the moments of an automatic capture: so many sequences were passed (two or three
/// previews, four of the liveness lights, the shot), or the pause after a good shot has begun.
class AtEachMoment : public AutoScanner {
 protected:
  static constexpr unsigned int cnPause = 8;

  template <typename TLeave>
  void ForEachMoment(TLeave&& fnLeave) {
    for (const unsigned int nMoment : {0u, 2u, 4u, 6u, 7u, cnPause}) {
      SCOPED_TRACE(nMoment);
      ASSERT_NO_FATAL_FAILURE(GoTo(nMoment));
      fnLeave(nMoment);
      ASSERT_EQ(VTSimClearFaults(), 0);
      if (m_h != nullptr) LS_VT40CloseScanner(&m_h);
      VTSimPlug(nullptr);
      EXPECT_EQ(State().nLockedSequences, 0u);
      EXPECT_EQ(State().bOpen, 0);
    }
    // Nothing is left open: the scanner opens again and captures.
    Start(cszFinger);
    EXPECT_EQ(PollUntil(true, cnFewFrames).nError, 0);
  }

 private:
  void GoTo(unsigned int nMoment) {
    if (nMoment == cnPause) {
      Start(cszFinger, KLV_VT40_CAPTURE_MODE_AUTO_LIVE);
      ASSERT_TRUE(WaitFor([] { return State().nPlanes == 1; })) << "the light of the pause";
    } else {
      StartHeld(cszFinger, KLV_VT40_CAPTURE_MODE_AUTO_LIVE);
      ASSERT_EQ(VTSimPassSequences(nullptr, nMoment), 0);
      ASSERT_EQ(VTSimWaitForSequences(nullptr, nMoment, 30000), 0) << VTSimLastError();
    }
  }
};

TEST_F(AtEachMoment, AModeSwitchEndsTheCaptureAndTheNextModeRuns) {
  ForEachMoment([&](unsigned int) {
    // The switch is under way: workers that wait for a sequence must get one.
    std::thread oRelease([] { VTSimHoldSequences(nullptr, 0); });
    EXPECT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_PREVIEW), 0);
    oRelease.join();
    EXPECT_EQ(State().nSensorMode, 35);
    EXPECT_EQ(Preview().nError, 0);
    EXPECT_EQ(LS_VT40CloseScanner(&m_h), 0);
  });
}

TEST_F(AtEachMoment, ACloseHangsNowhere) {
  ForEachMoment([&](unsigned int) {
    std::thread oRelease([] { VTSimHoldSequences(nullptr, 0); });
    EXPECT_EQ(LS_VT40CloseScanner(&m_h), 0);
    oRelease.join();
  });
}

TEST_F(AtEachMoment, AnUnpluggedScannerEndsTheWorkersAndIsReportedByTheImageCalls) {
  ForEachMoment([&](unsigned int nMoment) {
    ASSERT_EQ(VTSimUnplug(nullptr), 0);
    ASSERT_EQ(VTSimHoldSequences(nullptr, 0), 0);
    const StDelivered oImage = Image();
    // A capture that was complete can still be fetched.
    if (nMoment != cnPause) {
      EXPECT_EQ(oImage.nError, KLV_ERROR_DISCONNECTED);
    }
  });
}

}  // namespace
