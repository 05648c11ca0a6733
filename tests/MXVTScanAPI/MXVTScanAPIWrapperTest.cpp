// What reaches the scan library from each operation of the scanner, and what comes back.
#include "MXVTScanAPI/MXVTScanAPIWrapper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "MXLibraryLoaders/KelvarinVTScanAPIWrapper.h"
#include "MXTools/DynamicLibrary.h"
#include "MXTools/Exception.h"

namespace {

using Scanner = ClMXVTScanAPIWrapper;
using EScanMode_t = Scanner::EScanMode_t;

/// A scanner with the device handle 5 on a library that records.
class ClRecordedScanner {
 public:
  explicit ClRecordedScanner(const char* szLibrary)
      : m_oBinding(nullptr, szLibrary), m_oScanner(nullptr, nullptr), m_oControl(szLibrary) {
    m_oControl.GetFunction(m_pHandle, "TestHandle");
    m_oControl.GetFunction(m_pRecord, "TestRecord");
    m_oControl.GetFunction(m_pAnswer, "TestAnswer");
    m_oScanner.SetDllWrapper(&m_oBinding, m_pHandle(5));
    Answer(0);
  }
  void* Handle(int nPlace) const { return m_pHandle(nPlace); }
  Scanner* operator->() { return &m_oScanner; }
  Scanner& operator*() { return m_oScanner; }
  void Answer(long nNumber, int nLent = 88) { m_pAnswer(nNumber, nLent); }
  std::string Record() { return m_pRecord(); }

 private:
  ClKelvarinVTScanAPIWrapper m_oBinding;
  Scanner m_oScanner;
  ClDynamicLibrary m_oControl;
  void* (*m_pHandle)(int) = nullptr;
  const char* (*m_pRecord)() = nullptr;
  void (*m_pAnswer)(long, int) = nullptr;
};

template <typename TCall>
std::string FailureOf(TCall&& oCall) {
  try {
    oCall();
  } catch (const ClException& e) {
    return std::to_string(e.Number()) + " " + e.What();
  }
  return "none";
}

tagBITMAPINFOHEADER oHeader = {40, 0, 0, 1, 8, 0, 0, 0, 0, 0, 0};
char szText[] = "room";
unsigned int nSize = 16;
unsigned char aBytes[] = {3, 4};
unsigned int nWord = 6;
unsigned long long nMask = 0x123456789ULL;

struct ClForward {
  std::function<bool(Scanner&)> oCall;
  const char* szRecord;
};

const ClForward caForwards[] = {
    {[](Scanner& o) { return o.GetVersion(szText, &nSize); }, "VTScanAPIGetVersion(5,room,*16)"},
    {[](Scanner& o) { return o.GetDeviceIndex(&nSize) == 0; }, "VTScanAPIGetDeviceIndex(5,*16)"},
    {[](Scanner& o) { return o.SetLED(9); }, "VTScanAPISetLEDEx(5,9)"},
    {[](Scanner& o) { return o.SetLEDConfiguration(2, aBytes); }, "VTScanAPIApplyInternalCommand(5,0,*3,2)"},
    {[](Scanner& o) { return o.SetStatusLED(aBytes, 500); }, "VTScanAPIApplyInternalCommand(5,1,*3,500)"},
    {[](Scanner& o) { return o.SetStatusLED(1ULL << 40); }, "VTScanAPISetStatusLED(5,1099511627776)"},
    {[](Scanner& o) { return o.SetCaptureSequence(2, aBytes, nullptr); },
     "VTScanAPISetCaptureSequence(5,2,*3,NULL)"},
    {[](Scanner& o) { return o.SetCaptureSequenceEx(1, &nWord); }, "VTScanAPISetCaptureSequenceEx(5,1,*6)"},
    {[](Scanner& o) { return o.SetResolution(static_cast<EScanMode_t>(38)); },
     "VTScanAPISetResolution(5,38)"},
    {[](Scanner& o) { return o.GetResolution(&nSize, &nWord) == 0; }, "VTScanAPIGetResolution(5,*16,*6)"},
    {[](Scanner& o) { return o.SetVSYNCLength(65535); }, "VTScanAPISetVSYNC(5,65535)"},
    {[](Scanner& o) { return o.SetGlobalGain(255); }, "VTScanAPISetGlobalGain(5,255)"},
    {[](Scanner& o) { return o.SetGain(1, -2, 3); }, "VTScanAPISetGain(5,1,-2,3)"},
    {[](Scanner& o) { return o.GetImage(&oHeader, 7, -1); }, "VTScanAPIGetImage(5,40,7,-1)"},
    {[](Scanner& o) { return o.GetImageEx(&oHeader, -7); }, "VTScanAPIGetImageEx(5,40,-7)"},
    {[](Scanner& o) { return o.GetImageSequence(nullptr, 1, 2); }, "VTScanAPIGetImageSequence(5,0,1,2)"},
    {[](Scanner& o) { return o.GetSerialNumber(szText, &nSize); }, "VTScanAPIGetHandleSerial(5,room,*16)"},
    {[](Scanner& o) { return o.ListEPROMFile(szText, &nSize); }, "VTScanAPIListEPROMFile(5,room,*16)"},
    {[](Scanner& o) { return o.ReadEPROMFile("GEOCAL", nullptr, &nSize); },
     "VTScanAPIReadEPROMFile(5,GEOCAL,0,*16)"},
    {[](Scanner& o) { return o.GetAPIVersion(szText, &nSize) == 0; },
     "VTScanAPIGetPropertyA(5,Version,room,*16)"},
    {[](Scanner& o) { return o.SetCaptureMode(Scanner::eScanMode960x1360, 6, &nMask, 1) == 0; },
     "VTScanAPISetCaptureMode(5,35,6,*4886718345,1)"},
};

TEST(MXVTScanAPIWrapper, EachOperationPassesTheDeviceAndItsArgumentsAndTellsTheOutcome) {
  ClRecordedScanner oScanner(KLV_LIBRARY_COMPLETE);
  for (const ClForward& oForward : caForwards) {
    oScanner.Answer(0);
    EXPECT_TRUE(oForward.oCall(*oScanner)) << oForward.szRecord;
    EXPECT_EQ(oScanner.Record(), oForward.szRecord);
    oScanner.Answer(-60);
    EXPECT_FALSE(oForward.oCall(*oScanner)) << oForward.szRecord;
  }
}

TEST(MXVTScanAPIWrapper, ARawSequenceIsLentAndAFailureIsRaisedWithTheLibrarysNumber) {
  ClRecordedScanner oScanner(KLV_LIBRARY_COMPLETE);
  void* pSequence = nullptr;
  oScanner->LockRawSequence(&pSequence);
  EXPECT_EQ(pSequence, oScanner.Handle(88));
  oScanner->ReleaseRawSequence(&pSequence);
  oScanner->EnableCaptureThread(true);
  oScanner->Beep(10, 20);
  EXPECT_EQ(oScanner.Record(),
            "VTScanAPILockRawSequence(5,*88)VTScanAPIReleaseRawSequence(5,*88)VTScanAPIEnableCapture(5,1)"
            "VTScanAPIBeep(5,10,20)");
  oScanner.Answer(-60);
  const std::string szLost = "-60 Function call failed, because assigned device was disconnected.";
  EXPECT_EQ(FailureOf([&] { oScanner->LockRawSequence(&pSequence); }), szLost);
  EXPECT_EQ(FailureOf([&] { oScanner->ReleaseRawSequence(&pSequence); }), szLost);
  EXPECT_EQ(FailureOf([&] { oScanner->EnableCaptureThread(false); }),
            szLost + "\nerror in EnableCaptureThread");
  oScanner->Beep(1, 1);
  oScanner.Answer(0, 0);
  EXPECT_EQ(FailureOf([&] { oScanner->LockRawSequence(&pSequence); }), szLost) << "nothing was lent";
  EXPECT_EQ(pSequence, nullptr);
}

TEST(MXVTScanAPIWrapper, OnlyTheModesThatTheLibraryKnowsReachIt) {
  ClRecordedScanner oScanner(KLV_LIBRARY_COMPLETE);
  std::vector<int> aPassed;
  for (int nMode = -1; nMode <= 40; ++nMode) {
    oScanner.Answer(0);
    const auto eMode = static_cast<EScanMode_t>(nMode);
    const std::string szResolution = FailureOf([&] { oScanner->SetResolution(eMode); });
    const std::string szMode = FailureOf([&] { oScanner->SetCaptureMode(eMode, 1, nullptr, 0); });
    EXPECT_EQ(szResolution, szMode) << nMode;
    if (szMode == "none") {
      aPassed.push_back(nMode);
    } else {
      EXPECT_THAT(szMode, testing::EndsWith("\ninvalid scan mode in VTScanAPISetResolution"));
      EXPECT_EQ(szMode.substr(0, 4), "-44 ");
      EXPECT_EQ(oScanner.Record(), "");
    }
  }
  EXPECT_THAT(aPassed,
              testing::ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 16, 17, 18, 19, 23, 32, 33, 34, 35, 36, 38));
}

TEST(MXVTScanAPIWrapper, ADeviceIsOpenedAndClosedOnce) {
  ClRecordedScanner oScanner(KLV_LIBRARY_COMPLETE);
  ScannerTypes::DeviceDescription oDescription;
  EXPECT_TRUE(oScanner->AssignDevice(3, oDescription));
  EXPECT_TRUE(oScanner->SetLED(1));
  EXPECT_TRUE(oScanner->UnassignDevice());
  EXPECT_TRUE(oScanner->UnassignDevice());
  EXPECT_EQ(oScanner.Record(),
            "VTScanAPICreateHandle(3,*77)VTScanAPISetLEDEx(77,1)VTScanAPIDestroyHandle(*77)");
}

TEST(MXVTScanAPIWrapper, WhatIsNotImplementedGivesFalseAndReachesNothing) {
  ClRecordedScanner oScanner(KLV_LIBRARY_COMPLETE);
  unsigned short nRoom = 4711;
  EXPECT_FALSE(oScanner->GetEPROMSize(&nRoom));
  EXPECT_EQ(nRoom, 4711);
  EXPECT_FALSE(oScanner->ReadEPROM(0, 2, aBytes));
  EXPECT_FALSE(oScanner->WriteEPROM(0, 2, aBytes));
  EXPECT_FALSE(oScanner->WriteEPROMFile("GEOCAL", aBytes, 2));
  EXPECT_FALSE(oScanner->DeleteEPROMFile("GEOCAL"));
  EXPECT_EQ(oScanner.Record(), "");
}

TEST(MXVTScanAPIWrapper, AFunctionThatTheLibraryLacksIsNeverCalled) {
  ClRecordedScanner oScanner(KLV_LIBRARY_WITHOUT_OPTIONAL);
  void* pSequence = nullptr;
  const std::function<void()> aRefused[] = {
      [&] { oScanner->LockRawSequence(&pSequence); },
      [&] { oScanner->ReleaseRawSequence(&pSequence); },
      [&] { oScanner->SetCaptureMode(static_cast<EScanMode_t>(37), 1, nullptr, 0); },
      [&] { oScanner->EnableCaptureThread(true); },
      [&] { oScanner->SetCaptureSequenceEx(1, &nWord); },
      [&] { oScanner->GetImageEx(&oHeader, 1); },
      [&] { oScanner->GetImageSequence(nullptr, 1, 2); }};
  for (const auto& oCall : aRefused)
    EXPECT_EQ(FailureOf(oCall),
              "-103 The feature is currently not supported.\nVTScanAPI version incompatible");
  oScanner->Beep(1, 1);
  EXPECT_FALSE(oScanner->SetLED(1));
  EXPECT_FALSE(oScanner->SetLEDConfiguration(1, aBytes));
  EXPECT_FALSE(oScanner->SetStatusLED(aBytes, 2));
  EXPECT_EQ(oScanner.Record(), "");
}

TEST(MXVTScanAPIWrapper, WithoutABindingEveryCallIsRefused) {
  Scanner oScanner(nullptr, nullptr);
  for (const ClForward& oForward : caForwards) {
    bool bDone = false;
    const std::string szFailure = FailureOf([&] { bDone = oForward.oCall(oScanner); });
    EXPECT_FALSE(bDone);
    EXPECT_TRUE(szFailure == "none" || szFailure == "-2 Prior initialization is necessary.")
        << oForward.szRecord;
  }
  oScanner.Beep(1, 1);
}

}  // namespace
