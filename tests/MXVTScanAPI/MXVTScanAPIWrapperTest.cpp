// What reaches the scan library from each operation of the scanner, what comes back, and the sensor sizes.
#include "MXVTScanAPI/MXVTScanAPIWrapper.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

#include "MXLibraryLoaders/KelvarinVTScanAPIWrapper.h"
#include "MXTools/DynamicLibrary.h"
#include "Raised.h"

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

tagBITMAPINFOHEADER oHeader = {40, 0, 0, 1, 8, 0, 0, 0, 0, 0, 0};
char szText[] = "room";
unsigned int nSize = 16;
unsigned char aBytes[] = {3, 4};
unsigned int nWord = 6;
unsigned long long nMask = 0x123456789ULL;

/// Calls, and what the library records of them.
const std::pair<std::function<bool(Scanner&)>, const char*> caForwards[] = {
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

TEST(MXVTScanAPIWrapper, EachOperationPassesTheDeviceAndItsArgumentsAndReportsTheOutcome) {
  ClRecordedScanner oScanner(KLV_LIBRARY_COMPLETE);
  for (const auto& [oCall, szRecord] : caForwards) {
    oScanner.Answer(0);
    EXPECT_TRUE(oCall(*oScanner)) << szRecord;
    EXPECT_EQ(oScanner.Record(), szRecord);
    oScanner.Answer(-60);
    EXPECT_FALSE(oCall(*oScanner)) << szRecord;
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
  EXPECT_EQ(NumberOf([&] { oScanner->LockRawSequence(&pSequence); }), -60);
  EXPECT_EQ(NumberOf([&] { oScanner->ReleaseRawSequence(&pSequence); }), -60);
  EXPECT_THAT(Raised([&] { oScanner->EnableCaptureThread(false); }),
              testing::Pair(-60, testing::EndsWith("\nerror in EnableCaptureThread")));
  oScanner->Beep(1, 1);
  oScanner.Answer(0, 0);
  EXPECT_EQ(NumberOf([&] { oScanner->LockRawSequence(&pSequence); }), -60) << "nothing was lent";
  EXPECT_EQ(pSequence, nullptr);
}

TEST(MXVTScanAPIWrapper, OnlyTheModesThatTheLibraryKnowsReachIt) {
  ClRecordedScanner oScanner(KLV_LIBRARY_COMPLETE);
  std::vector<int> aPassed;
  for (int nMode = -1; nMode <= 40; ++nMode) {
    oScanner.Answer(0);
    const auto eMode = static_cast<EScanMode_t>(nMode);
    const auto oFailure = Raised([&] { oScanner->SetResolution(eMode); });
    EXPECT_EQ(Raised([&] { oScanner->SetCaptureMode(eMode, 1, nullptr, 0); }), oFailure) << nMode;
    if (oFailure.first == 0) {
      aPassed.push_back(nMode);
    } else {
      EXPECT_THAT(oFailure,
                  testing::Pair(-44, testing::EndsWith("\ninvalid scan mode in VTScanAPISetResolution")));
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
    EXPECT_THAT(Raised(oCall), testing::Pair(-103, testing::EndsWith("\nVTScanAPI version incompatible")));
  oScanner->Beep(1, 1);
  EXPECT_FALSE(oScanner->SetLED(1));
  EXPECT_FALSE(oScanner->SetLEDConfiguration(1, aBytes));
  EXPECT_FALSE(oScanner->SetStatusLED(aBytes, 2));
  EXPECT_EQ(oScanner.Record(), "");
}

TEST(MXVTScanAPIWrapper, WithoutABindingEveryCallIsRefused) {
  Scanner oScanner(nullptr, nullptr);
  for (const auto& [oCall, szRecord] : caForwards) {
    bool bDone = false;
    const long nFailure = NumberOf([&, &oForward = oCall] { bDone = oForward(oScanner); });
    EXPECT_FALSE(bDone);
    EXPECT_TRUE(nFailure == 0 || nFailure == -2) << szRecord;
  }
  oScanner.Beep(1, 1);
}

/// A scanner of any product.
class ClProduct : public ClMXVTScanAPIWrapper {
 public:
  explicit ClProduct(int nProduct) : ClMXVTScanAPIWrapper(nullptr, nullptr) {
    m_ePid = static_cast<ClMXVTScanAPI::EScannerProductID_t>(nProduct);
    ConfigureResolutionMap();
  }
  const ScannerTypes::Resolution* Find(int nMode) const {
    const auto oFound = ResolutionMap().find(static_cast<EScanMode_t>(nMode));
    return oFound == ResolutionMap().end() ? nullptr : oFound->second;
  }
};

TEST(MXVTScanAPIHandleBase, EachProductHasTheModesOfItsSensor) {
  for (int nProduct : {17, 23}) {
    ClProduct oScanner(nProduct);
    EXPECT_EQ(oScanner.ResolutionMap().size(), 14u);
    ASSERT_NE(oScanner.Find(8), nullptr);
    EXPECT_EQ(oScanner.Find(8)->nHeight, 1362u) << "the roll window has two rows more than half";
    EXPECT_EQ(oScanner.Find(7)->nWidth, 3840u);
    EXPECT_EQ(oScanner.Find(38)->nHeight, 340u);
    EXPECT_EQ(oScanner.Find(16), nullptr);
    oScanner.ConfigureResolutionMap();
    EXPECT_EQ(oScanner.ResolutionMap().size(), 14u);
  }
  const ClProduct oSingle(16);
  EXPECT_EQ(oSingle.ResolutionMap().size(), 13u);
  EXPECT_EQ(oSingle.Find(7), nullptr);
  EXPECT_EQ(oSingle.Find(37)->nWidth, 320u);
  EXPECT_TRUE(ClProduct(99).ResolutionMap().empty());
}

}  // namespace
