// Sequences: when they come, when they don't, who is woken, and what faults do to them.
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstring>
#include <future>
#include <new>
#include <thread>
#include <tuple>

#include "SimulatorFixture.h"

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point oSince) {
  return std::chrono::duration<double>(Clock::now() - oSince).count();
}

/// Locks and gives back one sequence; returns the number that the lock returned.
long Take(void* hDevice, std::vector<unsigned char>* pBytes = nullptr) {
  void* pSequence = nullptr;
  const long nResult = VTScanAPILockRawSequence(hDevice, &pSequence);
  EXPECT_EQ(nResult == 0, pSequence != nullptr);
  if (nResult != 0) return nResult;
  if (pBytes) std::memcpy(pBytes->data(), pSequence, pBytes->size());
  EXPECT_EQ(VTScanAPIReleaseRawSequence(hDevice, &pSequence), 0);
  EXPECT_EQ(pSequence, nullptr);
  return 0;
}

class CaptureTest : public SimulatorTest {
 protected:
  void* StartCapture(const std::string& sScene, int nMode = 38) {
    Start(sScene);
    void* hDevice = Open();
    EXPECT_EQ(VTScanAPIEnableCapture(hDevice, 1), 0);
    SetMode(hDevice, nMode, {0, 1});
    return hDevice;
  }

  /// A thread that waits for a sequence which is held back; returns when it does wait.
  static std::future<long> Waiter(void* hDevice) {
    EXPECT_EQ(VTSimHoldSequences(nullptr, 1), 0);
    auto oFuture = std::async(std::launch::async, [hDevice] { return Take(hDevice); });
    EXPECT_TRUE(WaitFor([] { return State().bWaiting != 0; }));
    return oFuture;
  }
};

TEST_F(CaptureTest, WithoutCaptureModeOrMasksNoSequenceComes) {
  Start("empty");
  void* hDevice = Open();
  SetMode(hDevice, 38, {0, 1});
  EXPECT_EQ(Take(hDevice), -50) << "capture is off";
  ASSERT_EQ(VTScanAPIEnableCapture(hDevice, 1), 0);
  EXPECT_EQ(Take(hDevice), 0);
  unsigned long long nMask = 1;
  EXPECT_EQ(VTScanAPISetCaptureMode(hDevice, 37, 1, &nMask, 1), -44);
  EXPECT_EQ(Take(hDevice), -50) << "the mode change failed";
  SetMode(hDevice, 38, {0, 1});
  EXPECT_EQ(VTScanAPISetCaptureSequence(hDevice, 0, nullptr, nullptr), 0);
  EXPECT_EQ(Take(hDevice), -50) << "the sequence was taken back";
  SetMode(hDevice, 38, {0, 1});
  ASSERT_EQ(VTSimFailCall("VTScanAPISetCaptureMode", 1, 1, -101), 0);
  EXPECT_EQ(VTScanAPISetCaptureMode(hDevice, 35, 1, &nMask, 1), -101);
  EXPECT_EQ(Take(hDevice), -50) << "the mode change was made to fail";
}

TEST_F(CaptureTest, TheOldWayOfTwoCallsSetsASequenceToo) {
  Start("empty");
  void* hDevice = Open();
  unsigned char aLed[2] = {0, 1}, aFlags[2] = {0, 0};
  unsigned nWidth = 0, nHeight = 0, nFlash = 1024;
  EXPECT_EQ(VTScanAPIGetResolution(hDevice, &nWidth, &nHeight), -50);
  ASSERT_EQ(VTScanAPISetResolution(hDevice, 7), 0);
  ASSERT_EQ(VTScanAPISetCaptureSequence(hDevice, 2, aLed, aFlags), 0);
  ASSERT_EQ(VTScanAPIGetResolution(hDevice, &nWidth, &nHeight), 0);
  EXPECT_TRUE(nWidth == 3840 && nHeight == 2720);
  ASSERT_EQ(VTScanAPIEnableCapture(hDevice, 1), 0);
  EXPECT_EQ(Take(hDevice), 0);
  EXPECT_EQ(VTScanAPISetCaptureSequenceEx(hDevice, 1, &nFlash), 0);
  EXPECT_EQ(State().nPlanes, 1u);
  EXPECT_EQ(Take(hDevice), 0);
}

TEST_F(CaptureTest, AHeldSequenceEndsTheWaitWithinTwoSeconds) {
  void* hDevice = StartCapture("empty");
  ASSERT_EQ(VTSimHoldSequences(nullptr, 1), 0);
  const auto oStart = Clock::now();
  EXPECT_EQ(Take(hDevice), -60);
  EXPECT_GT(Seconds(oStart), 1.0);
  EXPECT_LT(Seconds(oStart), 2.5);
  ASSERT_EQ(VTSimPassSequences(nullptr, 2), 0);
  EXPECT_EQ(Take(hDevice), 0);
  EXPECT_EQ(Take(hDevice), 0);
  EXPECT_EQ(State().nSequences, 2u);
  ASSERT_EQ(VTSimHoldSequences(nullptr, 0), 0);
  EXPECT_EQ(Take(hDevice), 0);
}

TEST_F(CaptureTest, WhoWaitsIsWokenByWhateverEndsTheCapture) {
  const std::tuple<const char*, long, void (*)(void*)> aCases[] = {
      {"EnableCapture(0)", -50, [](void* h) { VTScanAPIEnableCapture(h, 0); }},
      {"DestroyHandle", -60, [](void* h) { VTScanAPIDestroyHandle(&h); }},
      {"Uninitialize", -60, [](void*) { VTScanAPIUninitialize(); }},
      {"unplug", -60, [](void*) { VTSimUnplug(nullptr); }},
      {"reset", -60, [](void*) { VTSimReset(); }},
      {"failed mode change", -50,
       [](void* h) {
         unsigned long long n = 1;
         VTScanAPISetCaptureMode(h, 99, 1, &n, 1);
       }},
      {"pass", 0, [](void*) { VTSimPassSequences(nullptr, 1); }},
  };
  for (const auto& [szName, nExpected, pfnAct] : aCases) {
    void* hDevice = StartCapture("empty");
    auto oWaiter = Waiter(hDevice);
    const auto oStart = Clock::now();
    pfnAct(hDevice);
    EXPECT_EQ(oWaiter.get(), nExpected) << szName;
    EXPECT_LT(Seconds(oStart), 1.5) << szName;
    TearDown();
    SetUp();
  }
}

TEST_F(CaptureTest, AModeChangeDropsWhatIsUnderWayAndTheNextSequenceIsOfTheNewMode) {
  void* hDevice = StartCapture("empty", 35);
  ASSERT_EQ(VTScanAPISetVSYNC(hDevice, 100), 0);  // what mode 38 needs
  ASSERT_EQ(VTSimHoldSequences(nullptr, 1), 0);
  std::vector<unsigned char> aBytes(2u * 960 * 340);
  auto oWaiter = std::async(std::launch::async, [&] { return Take(hDevice, &aBytes); });
  SetMode(hDevice, 38, {0, 1});
  ASSERT_EQ(VTSimPassSequences(nullptr, 1), 0);
  EXPECT_EQ(oWaiter.get(), 0);
  // Both planes of mode 38 are there: the lit one is a little brighter than the dark one.
  double adMean[2] = {0, 0};
  for (size_t i = 0; i < aBytes.size(); ++i) adMean[i / (960 * 340)] += aBytes[i] / (960.0 * 340.0);
  EXPECT_NEAR(std::fabs(adMean[0] - adMean[1]), 3.5, 1.5);
  EXPECT_EQ(State().nSequences, 1u);
}

TEST_F(CaptureTest, UpToFourSequencesCanBeHeldAndEachIsGivenBackOnce) {
  void* hDevice = StartCapture("empty");
  void* apSequences[5] = {};
  for (int i = 0; i < 4; ++i) ASSERT_EQ(VTScanAPILockRawSequence(hDevice, &apSequences[i]), 0);
  EXPECT_EQ(State().nLockedSequences, 4u);
  EXPECT_EQ(VTScanAPILockRawSequence(hDevice, &apSequences[4]), -50);
  void* pCopy = apSequences[2];
  EXPECT_EQ(VTScanAPIReleaseRawSequence(hDevice, &apSequences[2]), 0);
  EXPECT_EQ(VTScanAPIReleaseRawSequence(hDevice, &pCopy), -44);
  EXPECT_EQ(VTScanAPILockRawSequence(hDevice, &apSequences[4]), 0);
}

TEST_F(CaptureTest, EachSequenceIsRecordedWithWhatItShowed) {
  // Full sequences take a fifth of a second, preview ones a fifteenth.
  void* hDevice =
      StartCapture(R"({"scanners": [{"fingers": [{"touch": 0.1, "touchSeconds": 0.1, "lift": 0.5}]}]})", 35);
  for (int i = 0; i < 5; ++i) ASSERT_EQ(Take(hDevice), 0);
  SetMode(hDevice, 34, {0, 1});
  ASSERT_EQ(Take(hDevice), 0);
  const std::vector<VTSimFrame> aFrames = Frames();
  ASSERT_EQ(aFrames.size(), 6u);
  const unsigned anFingers[] = {0, 0, 1, 1, 1, 1}, anMoving[] = {0, 0, 1, 0, 0, 0},
                 anSteady[] = {0, 0, 2, 3, 3, 3};
  for (unsigned n = 0; n < 6; ++n) {
    EXPECT_EQ(aFrames[n].nNumber, n);
    EXPECT_NEAR(aFrames[n].dTime, n / 15.0, 1e-9);
    EXPECT_EQ(aFrames[n].nFingers, anFingers[n]) << n;
    EXPECT_EQ(aFrames[n].nMoving, anMoving[n]) << n;
    EXPECT_EQ(aFrames[n].nSteadySince, anSteady[n]) << n;
    EXPECT_EQ(aFrames[n].nSensorMode, n < 5 ? 35 : 34);
  }
  EXPECT_EQ(VTSimWaitForSequences(nullptr, 6, 0), 0);
  EXPECT_EQ(VTSimWaitForSequences(nullptr, 7, 1), -50);
  // The finger has gone since a word moved time on, and any moment can be looked at.
  ASSERT_EQ(VTSimAdvance(nullptr, 1.0), 0);
  std::vector<unsigned char> aThen(VTSIM_PICTURE_SIDE * VTSIM_PICTURE_SIDE), aMask(aThen.size());
  unsigned nSize = VTSIM_PICTURE_SIDE * VTSIM_PICTURE_SIDE;
  ASSERT_EQ(VTSimGetGroundTruthAt(nullptr, 0.4, aThen.data(), aMask.data(), &nSize), 0);
  EXPECT_GT(std::count(aMask.begin(), aMask.end(), 255), 50000);
  ASSERT_EQ(VTSimGetGroundTruth(nullptr, aThen.data(), aMask.data(), &nSize), 0);
  EXPECT_EQ(std::count(aMask.begin(), aMask.end(), 255), 0);
}

TEST_F(CaptureTest, WhatIsLaidDownWhileItRunsIsShownFromTheNextSequenceOn) {
  // Two fingers that differ in their prints alone lie at the same position, then one beside it.
  const char* aszPlaten[] = {R"({"noise": 0, "fingers": [{"print": {"seed": 1}}]})",
                             R"({"noise": 0, "fingers": [{"print": {"seed": 2}}]})",
                             R"({"noise": 0, "fingers": [{"print": {"seed": 2}, "x": 30, "touch": 0.1}]})"};
  void* hDevice = StartCapture(R"({"scanners": [{"noise": 0}]})", 35);
  std::vector<std::vector<unsigned char>> aTaken;
  const auto TakeNext = [&] {
    aTaken.emplace_back(2u * 960 * 1360);
    ASSERT_EQ(Take(hDevice, &aTaken.back()), 0);
  };
  TakeNext();
  for (const char* szPlaten : aszPlaten) {
    ASSERT_EQ(VTSimLay(nullptr, szPlaten), 0) << VTSimLastError();
    TakeNext();
    EXPECT_NE(aTaken.back(), aTaken[aTaken.size() - 2]);
  }
  const std::vector<VTSimFrame> aFrames = Frames();
  ASSERT_EQ(aFrames.size(), 4u);
  for (unsigned n = 0; n < 4; ++n) {
    EXPECT_NEAR(aFrames[n].dTime, n / 15.0, 1e-9) << "the time line goes on";
    EXPECT_EQ(aFrames[n].nSteadySince, n);
    EXPECT_EQ(aFrames[n].nFingers, n == 0 ? 0u : 1u);
  }
  // A text that can't be read, or that speaks of more than what lies there, leaves the finger where it is.
  for (const char* szBad :
       {"", "[]", "{\"fingers\": 1}", "{\"serial\": \"VT40-AB0001\"}", "{\"faults\": []}"})
    EXPECT_EQ(VTSimLay(nullptr, szBad), -44) << szBad;
  EXPECT_EQ(VTSimLay(nullptr, nullptr), -701);
  EXPECT_EQ(VTSimLay("nobody", "{}"), -44);
  TakeNext();
  EXPECT_EQ(Frames().back().nFingers, 1u);
  ASSERT_EQ(VTSimLay(nullptr, "{}"), 0);
  TakeNext();
  EXPECT_EQ(Frames().back().nFingers, 0u);
}

TEST_F(CaptureTest, AScannerCanBeUnpluggedAndReplugedAtAMomentOfItsTimeLine) {
  void* hDevice = StartCapture(R"({"scanners": [{}], "faults": [{"unplug": "VT40-AB0001", "at": 0.1},
                                                                {"plug": "VT40-AB0001", "at": 5.0}]})");
  int nTaken = 0;
  long nResult = 0;
  while (nTaken < 1000 && (nResult = Take(hDevice)) == 0) ++nTaken;
  EXPECT_EQ(nResult, -60);
  EXPECT_EQ(nTaken, 6);  // at 1/60 second each
  ASSERT_EQ(VTSimAdvance(nullptr, 5.0), 0);
  EXPECT_EQ(Take(hDevice), -60);
  EXPECT_NE(Open(), nullptr);
  ASSERT_EQ(VTSimPlugAt(nullptr, 7.0), 0);
  ASSERT_EQ(VTSimUnplugAt(nullptr, 6.0), 0);
  ASSERT_EQ(VTSimAdvance(nullptr, 5.0), 0);
  EXPECT_EQ(State().bPlugged, 1) << "one after the other";
  EXPECT_EQ(State().bOpen, 0);
}

TEST_F(CaptureTest, RealPacingKeepsTheRateOfTheHardwareAndALateSequenceIsLate) {
  void* hDevice = StartCapture(R"({"pacing": "real", "scanners": [{}]})");
  const auto oStart = Clock::now();
  for (int i = 0; i < 12; ++i) ASSERT_EQ(Take(hDevice), 0);
  EXPECT_GE(Seconds(oStart), 11.0 / 60.0);
  const auto oLate = Clock::now();
  ASSERT_EQ(VTSimDelaySequence(nullptr, 300), 0);
  ASSERT_EQ(Take(hDevice), 0);
  EXPECT_GE(Seconds(oLate), 0.29);
  EXPECT_GE(State().dTime, 11.0 / 60.0 + 0.29);
}

TEST_F(CaptureTest, ASingleImageGoesAfterItsHeaderAndOnlyWhenItFits) {
  Start("finger");
  void* hDevice = Open();
  ASSERT_EQ(VTScanAPISetResolution(hDevice, 6), 0);
  std::vector<unsigned char> aBlock(40 + 1024 + 960 * 680 + 16, 0xAA);
  auto* pHeader = new (aBlock.data()) tagBITMAPINFOHEADER{40, 960, -680, 1, 8, 0, 0, 0, 0, 256, 0};
  ASSERT_EQ(VTScanAPIGetImage(hDevice, pHeader, 1, 0), 0);
  EXPECT_EQ(aBlock[40 + 1023], 0xAA) << "the palette is the caller's";
  EXPECT_EQ(aBlock[40 + 1024 + 960 * 680], 0xAA);
  EXPECT_GT(*std::max_element(aBlock.begin() + 1064, aBlock.begin() + 1064 + 960 * 680), 120);
  pHeader->biWidth = 1920;
  EXPECT_EQ(VTScanAPIGetImageEx(hDevice, pHeader, 1), -44);
}

TEST_F(CaptureTest, ManyThreadsAtOnceDoNoHarm) {
  void* hDevice = StartCapture("empty");
  std::atomic<bool> bStop{false};
  std::vector<std::thread> aThreads;
  const auto Repeat = [&](auto fnStep) {
    aThreads.emplace_back([&bStop, fnStep] {
      for (unsigned i = 0; !bStop; ++i) fnStep(i);
    });
  };
  Repeat([hDevice](unsigned) {
    void* pSequence = nullptr;
    if (VTScanAPILockRawSequence(hDevice, &pSequence) != 0) return;
    // The scanner may be unplugged in between.
    EXPECT_THAT(VTScanAPIReleaseRawSequence(hDevice, &pSequence), testing::AnyOf(0, -60));
  });
  Repeat([hDevice](unsigned i) {
    unsigned long long aMasks[2] = {0, 1};
    VTScanAPISetCaptureMode(hDevice, i % 2 ? 38 : 6, 2, aMasks, 2);
    VTScanAPIEnableCapture(hDevice, i % 5 != 0);
    VTScanAPISetStatusLED(hDevice, i);
  });
  Repeat([hDevice](unsigned i) {
    VTSimLoadScene(i % 2 ? "{\"scanners\": [{\"noise\": 2}]}" : "empty");
    State();
    VTSimFailCall("VTScanAPIBeep", 1, 1, -1);
    VTScanAPIBeep(hDevice, 1, 2);
  });
  for (int i = 0; i < 40; ++i) {
    FirstId();
    VTScanAPIInitialize(nullptr);
    VTScanAPIUninitialize();
    VTSimHoldSequences(nullptr, i % 2);
  }
  VTSimUnplug(nullptr);
  bStop = true;
  for (std::thread& oThread : aThreads) oThread.join();
  EXPECT_EQ(Take(hDevice), -60);
}

}  // namespace
