// The recorder: what it takes, what it drops and says so, and what it does when the disk is full.
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <fstream>
#include <future>
#include <random>
#include <thread>

#include "Allocations.h"
#include "TemporaryDirectory.h"
#include "format/Functions.h"
#include "format/RecordingReader.h"
#include "record/CallQueue.h"
#include "record/OpenDevices.h"
#include "record/Recorder.h"

using namespace Recording;

class Recorder : public testing::Test {
 protected:
  StRecorderSettings Settings(size_t nQueueBytes = 4 << 20) const {
    StRecorderSettings oSettings;
    oSettings.sFile = m_oFolder.Path("a.vtrec");
    oSettings.nQueueBytes = nQueueBytes;
    return oSettings;
  }
  static void Enter(ClRecorder& oRecorder, const std::vector<uint8_t>& aData, StAttachment::EKind eKind) {
    ClCallRecord oCall(eVTScanAPIReadEPROMFile);
    oCall.AddBytes(2, eGot, aData.data(), aData.size(), eKind);
    oCall.SetHead(oRecorder.Thread(), 1, oRecorder.Now(), oRecorder.Now(), 0);
    oRecorder.Record(oCall);
  }

  const ClTemporaryDirectory m_oFolder;
};

TEST_F(Recorder, CallsOfAllThreadsAreInTheFile) {
  {
    StRecorderSettings oSettings = Settings(1 << 20);
    oSettings.bWait = true;
    ClRecorder oRecorder(oSettings, false);
    std::vector<std::thread> aThreads;
    for (uint8_t n = 0; n < 4; ++n)
      aThreads.emplace_back([&, n] {
        for (int i = 0; i < 50; ++i) Enter(oRecorder, std::vector<uint8_t>(60000, n), StAttachment::eFrames);
      });
    for (std::thread& oThread : aThreads) oThread.join();
  }
  const ClRecording oRecording(m_oFolder.Path("a.vtrec"));
  EXPECT_TRUE(oRecording.IsWhole());
  EXPECT_EQ(oRecording.Loss().nCalls + oRecording.Loss().nData, 0U);
  ASSERT_EQ(oRecording.Calls().size(), 200U);
  std::map<uint32_t, int> mapThreads;
  for (const StCall& oCall : oRecording.Calls()) {
    ++mapThreads[oCall.nThread];
    const std::vector<uint8_t> aData = oRecording.Data(oCall.Find(2, eGot)->nBlock);
    ASSERT_EQ(aData, std::vector<uint8_t>(60000, aData[0]));
  }
  EXPECT_EQ(mapThreads.size(), 4U);
}

TEST_F(Recorder, ACallAllocatesNothing) {
  const std::vector<uint8_t> aFrame(30000);
  StRecorderSettings oSettings = Settings();
  // The writing thread has nothing to compress where there is no file any more, and allocates nothing then.
  oSettings.sFile = "/dev/full";
  testing::internal::CaptureStderr();
  ClRecorder oRecorder(oSettings, false);
  Enter(oRecorder, aFrame, StAttachment::eFrames);
  oRecorder.Drain();
  const long nBefore = Allocations::Count();
  for (int n = 0; n < 20; ++n) Enter(oRecorder, aFrame, StAttachment::eFrames);
  oRecorder.Drain();
  EXPECT_EQ(Allocations::Count(), nBefore);
  testing::internal::GetCapturedStderr();
}

TEST_F(Recorder, AFileOfFingerprintsIsItsOwnersAlone) {
  std::ofstream(m_oFolder.Path("a.vtrec")) << "from before";
  ASSERT_EQ(chmod(m_oFolder.Path("a.vtrec").c_str(), 0644), 0);
  ClRecorder oRecorder(Settings(), false);
  struct stat oStat {};
  ASSERT_EQ(stat(m_oFolder.Path("a.vtrec").c_str(), &oStat), 0);
  EXPECT_EQ(oStat.st_mode & 0777, 0600U);
}

TEST_F(Recorder, WhatDoesNotFitIntoTheQueueIsDroppedAndCounted) {
  {
    ClRecorder oRecorder(Settings(64 << 10), false);
    Enter(oRecorder, std::vector<uint8_t>(2000, 1), StAttachment::eFrames);
    Enter(oRecorder, std::vector<uint8_t>(100000, 2), StAttachment::eFrames);
    Enter(oRecorder, std::vector<uint8_t>(2000, 3), StAttachment::eFrames);
  }
  const ClRecording oRecording(m_oFolder.Path("a.vtrec"));
  EXPECT_TRUE(oRecording.IsWhole());
  EXPECT_EQ(oRecording.Loss().nCalls, 0U);
  EXPECT_EQ(oRecording.Loss().nData, 1U);
  EXPECT_EQ(oRecording.Loss().nBytes, 100000U);
  ASSERT_EQ(oRecording.Calls().size(), 3U);
  EXPECT_EQ(oRecording.Calls()[1].nFlags, eCallDataDropped);
  EXPECT_EQ(oRecording.Calls()[1].Find(2, eGot)->nBlock, cnDroppedData);
  EXPECT_EQ(oRecording.Data(oRecording.Calls()[2].Find(2, eGot)->nBlock), std::vector<uint8_t>(2000, 3));
}

TEST_F(Recorder, ACalibrationBlockIsStoredOnce) {
  {
    ClRecorder oRecorder(Settings(), false);
    for (const int n : {1, 2, 1, 1})
      Enter(oRecorder, std::vector<uint8_t>(3000, static_cast<uint8_t>(n)), StAttachment::eCalibration);
  }
  const ClRecording oRecording(m_oFolder.Path("a.vtrec"));
  std::vector<uint32_t> aBlocks;
  for (const StCall& oCall : oRecording.Calls()) aBlocks.push_back(oCall.Find(2, eGot)->nBlock);
  EXPECT_EQ(aBlocks, (std::vector<uint32_t>{0, 2, 0, 0}));
}

TEST_F(Recorder, AFullDiskEndsTheFileWithItsLastWholeBlockAndNothingElse) {
  struct rlimit oBefore {};
  getrlimit(RLIMIT_FSIZE, &oBefore);
  testing::internal::CaptureStderr();
  {
    ClRecorder oRecorder(Settings(), false);
    // A process may be ended by the signal that comes with this limit; the recorder keeps it away.
    const rlimit oLimit{20000, oBefore.rlim_max};
    setrlimit(RLIMIT_FSIZE, &oLimit);
    std::mt19937 oRandom(1);
    std::vector<uint8_t> aNoise(3000);
    for (int n = 0; n < 20; ++n) {
      for (uint8_t& nByte : aNoise) nByte = static_cast<uint8_t>(oRandom());
      Enter(oRecorder, aNoise, StAttachment::ePlain);
    }
    oRecorder.Finish();
    setrlimit(RLIMIT_FSIZE, &oBefore);
  }
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("the recording ends here"));
  const ClRecording oRecording(m_oFolder.Path("a.vtrec"));
  EXPECT_EQ(oRecording.Damage(), "");
  EXPECT_FALSE(oRecording.IsWhole());
  EXPECT_GT(oRecording.Calls().size(), 2U);
  EXPECT_LT(oRecording.Calls().size(), 20U);
}

TEST_F(Recorder, WithoutAFileTheCallsGoThroughAllTheSame) {
  StRecorderSettings oSettings = Settings();
  testing::internal::CaptureStderr();
  for (const char* szFile : {"/nowhere/a.vtrec", "/dev/full"}) {
    oSettings.sFile = szFile;
    ClRecorder oRecorder(oSettings, false);
    Enter(oRecorder, std::vector<uint8_t>(3000), StAttachment::ePlain);
  }
  const std::string sText = testing::internal::GetCapturedStderr();
  EXPECT_THAT(sText, testing::HasSubstr("/nowhere/a.vtrec"));
  EXPECT_THAT(sText, testing::HasSubstr("No space left on device"));
}

TEST_F(Recorder, AFileThatIsBeingRecordedIsLeftAlone) {
  ClRecorder oFirst(Settings(), false);
  testing::internal::CaptureStderr();
  ClRecorder oSecond(Settings(), false);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("another process records"));
  Enter(oFirst, {1}, StAttachment::ePlain);
  oSecond.Finish();
  oFirst.Finish();
  EXPECT_EQ(ClRecording(m_oFolder.Path("a.vtrec")).Calls().size(), 1U);
}

TEST(CallQueue, EntriesComeOutInTheOrderOfTheirRoom) {
  ClCallQueue oQueue(4096);
  std::vector<size_t> aTaken;
  // Sizes that leave rests of all kinds before the ring's end.
  for (size_t n = 1; n < 200; ++n) {
    ClCallQueue::StEntry* pFirst = oQueue.Reserve(n * 9 % 700, false);
    ClCallQueue::StEntry* pSecond = oQueue.Reserve(n * 5 % 300, false);
    ASSERT_TRUE(pFirst != nullptr && pSecond != nullptr) << n;
    std::memset(pFirst->Bytes(), 1, pFirst->nBytes);
    std::memset(pSecond->Bytes(), 2, pSecond->nBytes);
    oQueue.Commit(pSecond);
    oQueue.Commit(pFirst);
    for (const size_t nBytes : {n * 9 % 700, n * 5 % 300}) {
      ClCallQueue::StEntry* pEntry = oQueue.Front();
      ASSERT_EQ(pEntry->nBytes, nBytes) << n;
      oQueue.Pop(pEntry);
    }
  }
  oQueue.End();
  EXPECT_EQ(oQueue.Front(), nullptr);
}

TEST(CallQueue, AnEntryThatIsBeingFilledHoldsUpThoseAfterIt) {
  ClCallQueue oQueue(4096);
  ClCallQueue::StEntry* pFirst = oQueue.Reserve(10, false);
  oQueue.Commit(oQueue.Reserve(10, false));
  auto oFront = std::async(std::launch::async, [&] { return oQueue.Front(); });
  EXPECT_EQ(oFront.wait_for(std::chrono::milliseconds(30)), std::future_status::timeout);
  oQueue.Commit(pFirst);
  EXPECT_EQ(oFront.get(), pFirst);
}

TEST(CallQueue, AFullQueueGivesNoRoomUntilSomethingIsTaken) {
  ClCallQueue oQueue(4096);
  EXPECT_EQ(oQueue.Reserve(4096, true), nullptr);
  ClCallQueue::StEntry* pFirst = oQueue.Reserve(1500, false);
  oQueue.Commit(pFirst);
  oQueue.Commit(oQueue.Reserve(1500, false));
  EXPECT_EQ(oQueue.Reserve(1500, false), nullptr);
  std::thread oWaiting([&] { oQueue.Commit(oQueue.Reserve(1500, true)); });
  oQueue.Pop(oQueue.Front());
  oWaiting.join();
  oQueue.Pop(oQueue.Front());
  EXPECT_NE(oQueue.Front(), nullptr);
}

TEST(OpenDevices, MoreDevicesThanTheTableHoldsHaveNoNumber) {
  ClOpenDevices oDevices;
  char aHandles[70];
  for (int n = 0; n < 64; ++n) EXPECT_EQ(oDevices.Open(&aHandles[n]), static_cast<uint32_t>(n + 1));
  EXPECT_EQ(oDevices.Open(&aHandles[64]), 0U);
  oDevices.Close(&aHandles[3]);
  EXPECT_EQ(oDevices.NumberOf(&aHandles[3]), 0U);
  EXPECT_EQ(oDevices.Open(&aHandles[65]), 66U);
  oDevices.SetShape(&aHandles[65], {4, 3, 2, 1});
  EXPECT_EQ(oDevices.ShapeOf(&aHandles[65]).Bytes(), 24U);
  EXPECT_EQ(oDevices.ShapeOf(nullptr).Bytes(), 0U);
}
