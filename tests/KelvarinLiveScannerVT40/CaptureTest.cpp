// Images through the exported functions: each mode, its pictures, its limits and its failures.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <numeric>
#include <thread>

#include "ApiFixture.h"
#include "Pace.h"

namespace {

TEST_F(OpenScanner, SizesAndResolutionsAreThoseOfTheScanner) {
  unsigned int nFirst = 0;
  unsigned int nSecond = 0;
  const auto Expect = [&](auto pfn, unsigned int nWanted1, unsigned int nWanted2, const char* szWhat) {
    EXPECT_EQ(pfn(m_h, &nFirst, &nSecond), 0) << szWhat;
    EXPECT_EQ(nFirst, nWanted1) << szWhat;
    EXPECT_EQ(nSecond, nWanted2) << szWhat;
  };
  Expect(LS_VT40GetImageSize, 1600, 1600, "image");
  Expect(LS_VT40GetPreviewImageSize, 800, 800, "preview");
  Expect(LS_VT40GetRollImageSize, 800, 800, "roll");
  Expect(LS_VT40GetSignatureImageSize, 1600, 1600, "signature");
  ASSERT_EQ(LS_VT40SetPropertyLongA(m_h, "nSignatureSensorMode", 1), 0);
  Expect(LS_VT40GetSignatureImageSize, 1600, 800, "half signature");
  Expect(LS_VT40GetSignaturePreviewImageSize, 800, 400, "half signature preview");
  Expect(LS_VT40GetImageDPI, 499, 499, "image");
  Expect(LS_VT40GetPreviewImageDPI, 249, 249, "preview");
  Expect(LS_VT40GetRollImageDPI, 499, 499, "roll");
}

TEST_F(OpenScanner, AnEmptyPlatenGivesAWhiteImageAndASmallFingerIsEnough) {
  for (const int nMode : {KLV_VT40_CAPTURE_MODE_OFF, KLV_VT40_CAPTURE_MODE_PREVIEW}) {
    ASSERT_EQ(LS_VT40SetCaptureMode(m_h, nMode), 0);
    const StDelivered oShot = Image();
    EXPECT_EQ(oShot.nError, 0);
    EXPECT_EQ(oShot.bDone, 0);
    EXPECT_EQ(oShot.nResult, KLV_ERROR_NO_FINGER);
    EXPECT_EQ(DarkerThan(oShot.aPixels, 255), 0);
    EXPECT_EQ(State().bCaptureEnabled, nMode == KLV_VT40_CAPTURE_MODE_PREVIEW);
  }
  LoadScene(R"({"scanners": [{"serial": "VT40-AB0001", "fingers": [
      {"print": {"seed": 3, "width": 8, "height": 10}, "pressure": 0.1}]}]})");
  const StDelivered oSmall = Image();
  EXPECT_EQ(oSmall.bDone, 1) << "a finger, however small";
  EXPECT_LT(DarkerThan(oSmall.aPixels, 161), 12000);
  EXPECT_EQ(State().nSensorMode, 35) << "the preview goes on";
  EXPECT_EQ(Preview().nError, 0);
}

TEST_F(OpenScanner, EveryModeShowsTheFingersOnTheSamePlace) {
  LoadScene("slap-right");
  const StDelivered oShot = Image();
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_PREVIEW), 0);
  const StDelivered oPreview = Preview();
  const StDelivered oOnDemand = Image();
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_FULL), 0);
  const StDelivered oStream = Image();
  EXPECT_EQ(oOnDemand.bDone, 1);
  EXPECT_EQ(oOnDemand.nResult, 0);
  EXPECT_EQ(oPreview.bDone + oStream.bDone, 0);
  EXPECT_EQ(oStream.nResult, KLV_ERROR_NO_FINGER);
  EXPECT_EQ(oStream.dScore, 0.0);
  EXPECT_GT(DarkerThan(oShot.aPixels, 128), 100000);
  // All pictures have ridges at the same positions, apart from the noise of another exposure.
  int nOnDemand = 0, nStream = 0, nPreview = 0;
  for (size_t y = 0; y < 1600; ++y) {
    for (size_t x = 0; x < 1600; ++x) {
      const unsigned char* pShot = &oShot.aPixels[1600 * y + x];
      nOnDemand += std::abs(oOnDemand.aPixels[1600 * y + x] - *pShot) > 64;
      nStream += std::abs(oStream.aPixels[1600 * y + x] - *pShot) > 64;
      if (y % 2 != 0 || x % 2 != 0) continue;
      const int nMean = (pShot[0] + pShot[1] + pShot[1600] + pShot[1601]) / 4;
      nPreview += std::abs(nMean - oPreview.aPixels[400 * y + x / 2]) > 96;
    }
  }
  EXPECT_LT(nOnDemand, 10000);
  EXPECT_LT(nStream, 10000);
  EXPECT_LT(nPreview, 20000);
}

TEST_F(OpenScanner, ImageCallsOfAnotherModeAreRefused) {
  EXPECT_EQ(Preview().nError, KLV_ERROR_INVALID_STATE);
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_FULL), 0);
  EXPECT_EQ(Preview().nError, KLV_ERROR_INVALID_STATE);
  EXPECT_EQ(Fetch(LS_VT40GetRollImage, m_h, 800 * 800).nError, KLV_ERROR_INVALID_STATE)
      << "an image of the stream is larger than a roll's buffer";
  EXPECT_EQ(Image().nError, 0);
}

TEST_F(OpenScanner, ModesAreSwitchedOnceAndReportedAsFarAsTheyHaveAName) {
  EXPECT_EQ(LS_VT40SetCaptureMode(m_h, 7), KLV_ERROR_UNSUPPORTED);
  EXPECT_EQ(LS_VT40SetCaptureMode(m_h, -1), KLV_ERROR_UNSUPPORTED);
  EXPECT_EQ(State().bCaptureEnabled, 0);
  EXPECT_EQ(Mode(), KLV_VT40_CAPTURE_MODE_OFF);
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_AUTO), 0);
  EXPECT_EQ(Mode(), KLV_VT40_CAPTURE_MODE_AUTO);
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_PREVIEW), 0);
  EXPECT_EQ(Mode(), -101) << "a mode without a public name";
  const unsigned long long nSwitches = Calls("VTScanAPISetCaptureMode");
  const unsigned long long nEnables = Calls("VTScanAPIEnableCapture");
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_PREVIEW), 0);
  EXPECT_EQ(Calls("VTScanAPISetCaptureMode"), nSwitches) << "the mode is set already";
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_FULL), 0);
  EXPECT_EQ(Calls("VTScanAPIEnableCapture"), nEnables) << "the stream goes on between live modes";
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_OFF), 0);
  EXPECT_EQ(State().bCaptureEnabled, 0);
}

TEST_F(OpenScanner, AModeThatTheScannerRefusesLeavesTheModeOff) {
  ASSERT_EQ(VTSimFailCall("VTScanAPISetCaptureMode", 1, 1, -777), 0);
  EXPECT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_PREVIEW), -777);
  EXPECT_EQ(Mode(), KLV_VT40_CAPTURE_MODE_OFF);
  EXPECT_EQ(State().bCaptureEnabled, 0);
  ASSERT_EQ(VTSimFailCall("VTScanAPIEnableCapture", 1, 1, -778), 0);
  EXPECT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_FULL), -778);
  EXPECT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_FULL), 0);
  EXPECT_EQ(Image().nError, 0);
}

TEST_F(OpenScanner, AShotThatFailsAtAnyStepReportsItAndTurnsTheStreamOff) {
  for (const char* szFunction :
       {"VTScanAPIEnableCapture", "VTScanAPISetCaptureMode", "VTScanAPILockRawSequence",
        "VTScanAPIReleaseRawSequence", "VTScanAPISetCaptureSequence"}) {
    ASSERT_EQ(VTSimFailCall(szFunction, 1, 1, KLV_ERROR_DISCONNECTED), 0);
    EXPECT_EQ(Image().nError, KLV_ERROR_DISCONNECTED) << szFunction;
    EXPECT_EQ(State().bCaptureEnabled, 0) << szFunction;
    EXPECT_EQ(State().nLockedSequences, 0u) << szFunction;
    EXPECT_EQ(Image().nError, 0) << szFunction;
  }
}

TEST_F(OpenScanner, ACaptureOnRequestThatFailsLeavesThePreviewRunning) {
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_PREVIEW), 0);
  ASSERT_EQ(Preview().nError, 0);
  ASSERT_EQ(VTSimFailCall("VTScanAPISetCaptureMode", 1, 1, -777), 0);
  EXPECT_EQ(Image().nError, -777);
  EXPECT_EQ(State().nSensorMode, 35);
  EXPECT_EQ(Preview().nError, 0);
}

/// A scanner in a mode, the call that fetches its images, and how long that waits for one.
struct StSilent {
  int nMode;
  long (*pfnImage)(void*, void*, double*, unsigned char*, long*);
  double dSeconds;
  void* h = nullptr;
  StDelivered oLast = {};
  double dTaken = 0.0;
};

TEST_F(Api, ImageCallsOfSilentScannersTimeOutEachAfterItsTime) {
  const auto Serial = [](size_t n) { return "VT40-AB000" + std::to_string(n + 1); };
  LoadScene(R"({"scanners": [{"serial": "VT40-AB0001"}, {"serial": "VT40-AB0002"}, {"serial": "VT40-AB0003"},
      {"serial": "VT40-AB0004", "pen": {"strokes": [{"at": 0.1, "line": "straight", "points": [[10, 20], [70, 21]]}]}}]})");
  std::vector<StSilent> aScanners = {{KLV_VT40_CAPTURE_MODE_PREVIEW, LS_VT40GetPreviewImage, 15.0},
                                     {KLV_VT40_CAPTURE_MODE_FULL, LS_VT40GetImage, 10.0},
                                     {KLV_VT40_CAPTURE_MODE_ROLL, LS_VT40GetRollImage, 5.0},
                                     {KLV_VT40_CAPTURE_MODE_SIGNATURE, LS_VT40GetPreviewImage, 15.0}};
  constexpr size_t cnPixels = 1600 * 1600;
  std::vector<std::thread> aThreads;
  for (size_t n = 0; n < aScanners.size(); ++n) {
    StSilent& o = aScanners[n];
    ASSERT_EQ(LS_VT40OpenScanner(Serial(n).c_str(), &o.h), 0);
    ASSERT_EQ(LS_VT40SetCaptureMode(o.h, o.nMode), 0);
    do ASSERT_EQ(Fetch(o.pfnImage, o.h, cnPixels).nError, 0);
    while (n == 3 && State(Serial(n).c_str()).dTime < 1.0);
    ASSERT_EQ(n == 1 ? VTSimHoldSequences(Serial(n).c_str(), 1) : VTSimUnplug(Serial(n).c_str()), 0);
    aThreads.emplace_back([&o] {
      // Frames that are on their way still come, however long a slow build takes for them.
      for (int nCall = 0; nCall < 5 && o.oLast.nError != KLV_ERROR_DISCONNECTED; ++nCall) {
        const auto tStart = std::chrono::steady_clock::now();
        o.oLast = Fetch(o.pfnImage, o.h, cnPixels);
        o.dTaken = SecondsSince(tStart);
      }
    });
  }
  for (std::thread& oThread : aThreads) oThread.join();
  for (const StSilent& o : aScanners) {
    EXPECT_EQ(o.oLast.nError, KLV_ERROR_DISCONNECTED) << o.nMode;
    EXPECT_EQ(o.oLast.bDone, 2) << "out-parameters stay as they were";
    EXPECT_GT(o.dTaken, o.dSeconds - 0.1) << o.nMode;
    EXPECT_LT(o.dTaken, o.dSeconds + 3.0) << o.nMode;
  }
  EXPECT_GT(DarkerThan(Fetch(LS_VT40GetImage, aScanners[3].h, cnPixels).aPixels, 128), 100) << "ink stays";
  std::swap(m_h, aScanners[0].h);
  unsigned int nCondition = 0, nReserved = 1;
  EXPECT_EQ(LS_VT40GetScannerCondition(m_h, &nCondition, &nReserved), 0) << "says nothing on the connection";
  EXPECT_EQ(nReserved, 0u);
  EXPECT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_OFF), KLV_ERROR_DISCONNECTED);
  std::swap(m_h, aScanners[0].h);
  ASSERT_EQ(VTSimHoldSequences(Serial(1).c_str(), 0), 0);
  const auto tStart = std::chrono::steady_clock::now();
  for (StSilent& o : aScanners) {
    if (LS_VT40CloseScanner(&o.h) != 0) {
      EXPECT_EQ(LS_VT40CloseScanner(&o.h), 0);
    }
  }
  EXPECT_LT(SecondsSince(tStart), 3.0 * cnSlowness);
  EXPECT_EQ(Open(), KLV_ERROR_DISCONNECTED);
  ASSERT_EQ(VTSimPlug(cszSerial), 0);
  ASSERT_EQ(Open(), 0);
  EXPECT_EQ(Image().nError, 0);
}

TEST_F(OpenScanner, AScannerUnpluggedDuringACaptureIsReportedAtOnce) {
  for (const int nMode : {KLV_VT40_CAPTURE_MODE_PREVIEW, KLV_VT40_CAPTURE_MODE_OFF}) {
    ASSERT_EQ(LS_VT40SetCaptureMode(m_h, nMode), 0);
    ASSERT_EQ(VTSimUnplug(nullptr), 0);
    const auto tStart = std::chrono::steady_clock::now();
    EXPECT_EQ(Image().nError, KLV_ERROR_DISCONNECTED);
    EXPECT_LT(SecondsSince(tStart), 5.0);
    ASSERT_EQ(VTSimPlug(nullptr), 0);
    LS_VT40CloseScanner(&m_h);
    if (m_h != nullptr) LS_VT40CloseScanner(&m_h);
    ASSERT_EQ(Open(), 0);
  }
}

TEST_F(OpenScanner, AScannerThatClosesInEveryModeHangsNowhere) {
  for (const int nMode :
       {KLV_VT40_CAPTURE_MODE_PREVIEW, KLV_VT40_CAPTURE_MODE_FULL, KLV_VT40_CAPTURE_MODE_SIGNATURE}) {
    for (const bool bAtOnce : {true, false}) {
      ASSERT_EQ(LS_VT40SetCaptureMode(m_h, nMode), 0);
      if (!bAtOnce) {
        EXPECT_EQ(Image().nError, 0);
      }
      const auto tStart = std::chrono::steady_clock::now();
      EXPECT_EQ(LS_VT40CloseScanner(&m_h), 0);
      // This is the shortest time-out of the image calls. A call that takes as long has waited it out.
      EXPECT_LT(SecondsSince(tStart), 10.0);
      ASSERT_EQ(Open(), 0);
    }
  }
}

TEST_F(OpenScanner, CallsFromSeveralThreadsKeepTheirOrderAndTheirPictures) {
  // Every exposure gives the same picture, unless a call takes the frame of another one's setting.
  LoadScene(R"({"scanners": [{"serial": "VT40-AB0001", "noise": 0, "planeOrder": "dark-first",
      "fingers": [{"print": {"seed": 3}}]}]})");
  ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_PREVIEW), 0);
  const StDelivered oPreview = Preview();
  const StDelivered oImage = Image();
  std::atomic<bool> bStop{false};
  std::thread oPoller([&] {
    while (!bStop) {
      const StDelivered o = Preview();
      EXPECT_TRUE(o.nError == 0 || o.nError == KLV_ERROR_INVALID_STATE) << o.nError;
      EXPECT_TRUE(o.nError != 0 || o.aPixels == oPreview.aPixels);
    }
  });
  std::thread oSetter([&] {
    while (!bStop) {
      EXPECT_EQ(LS_VT40SetPropertyLongA(m_h, "nAutoCaptureBeep", 1), 0);
      EXPECT_EQ(LS_VT40SetPropertyLongA(m_h, "STATUS_LED", 0x00030005), 0);
      EXPECT_EQ(LS_VT40SetLED(m_h, 3, 4), 0);
    }
  });
  for (int n = 0; n < 4; ++n) {
    EXPECT_TRUE(Image().aPixels == oImage.aPixels);
    EXPECT_TRUE(Image().aPixels == oImage.aPixels);
    EXPECT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_FULL), 0);
    EXPECT_EQ(Image().nError, 0);
    EXPECT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_PREVIEW), 0);
  }
  bStop = true;
  oPoller.join();
  oSetter.join();
}

}  // namespace
