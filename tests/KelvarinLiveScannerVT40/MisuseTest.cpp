// Every exported function with everything that can be wrong with its arguments, in every capture mode and in
// the states without a scanner. The cases are made from the table of exported functions.
#include <cmath>
#include <map>
#include <set>

#include "ApiFixture.h"
#include "GuardedCall.h"
#include "KelvarinFakeFingerDetectionVT40/FDSim.h"

namespace {

using namespace Interface;

const char* const caszProperties[] = {"Version",
                                      "nAutoCaptureBeep",
                                      "nRolledPostProcess",
                                      "dSignatureFilterSigma",
                                      "dSignatureDetectTime",
                                      "nResetImage",
                                      "nSignatureSensorMode",
                                      "STATUS_LED",
                                      "none"};
const double cadNumbers[] = {NAN, -INFINITY, INFINITY, -1e308, 1e308, -0.0, 1.0};

std::vector<std::string> Texts() {
  return {"",   std::string(4095, 'x'), std::string(4095, '9'), "\xff\xfe", "0x", "-1", "1e999", "nan", " 1",
          "1.5"};
}

class Misuse : public Api {
 protected:
  /// A number that any of the documented ones may answer.
  static constexpr long cnDocumented = 2;

  void SetUp() override {
    Api::SetUp();
    ASSERT_EQ(FDSimReset(), 0);
    // One more, so that the function that gives up an initialisation can be called.
    ASSERT_EQ(LS_VT40Initialize(nullptr), 0);
  }

  /// The call of a case, and what it must answer: one number, or any that the table has.
  void Try(const StFunction& oFunction, ClGuardedCall& rCall, const std::string& sCase,
           long nExpected = cnDocumented) {
    ++m_nCases;
    const long nNumber = rCall.Make();
    if (nNumber == 0 && oFunction.sName == "LS_VT40Initialize") LS_VT40Uninitialize();
    if (nNumber == 0 && oFunction.sName == "LS_VT40Uninitialize") LS_VT40Initialize(nullptr);
    if (nNumber == 0 && oFunction.sName == "LS_VT40OpenScanner") {
      void* hOpened = rCall.HandleAt(1);
      EXPECT_EQ(LS_VT40CloseScanner(&hOpened), 0);
    }
    const std::string sWhere = oFunction.sName + ", " + m_sState + ", " + sCase;
    if (nExpected != cnDocumented) {
      EXPECT_EQ(nNumber, nExpected) << sWhere;
    } else {
      EXPECT_TRUE(Documented(oFunction).count(nNumber) != 0) << sWhere << " answers " << nNumber;
    }
    EXPECT_TRUE(rCall.LeftAlone(nNumber != 0)) << sWhere;
  }

  /// Every case of one function in the present state. bWorks: a scanner is open, and the state is one in
  /// which the function does its work.
  void TryAll(const StFunction& oFunction, bool bWorks) {
    static const std::map<ERole, void (Misuse::*)(size_t, const std::string&)> mapTries = {
        {eHandle, &Misuse::TryHandles}, {eClose, &Misuse::TryClosing}, {eRange, &Misuse::TryRange},
        {eSize, &Misuse::TrySizes},     {eCount, &Misuse::TryCounts},  {eValue, &Misuse::TryValues},
        {eIn, &Misuse::TryTexts},       {eName, &Misuse::TryNames}};
    m_pFunction = &oFunction;
    m_nGood = GoodSize();
    // A roll is waited for where none comes, for five seconds: once is enough.
    if (bWorks || m_bPatient || m_sState == "without a device" || oFunction.sName != "LS_VT40GetRollImage") {
      ClGuardedCall oGood = Good();
      Try(oFunction, oGood, "all right", bWorks ? Outcome(oFunction) : cnDocumented);
    }
    for (size_t n = 0; n < oFunction.aArguments.size(); ++n) {
      const StArgument& oArgument = oFunction.aArguments[n];
      const std::string sArgument = "argument " + std::to_string(n) + " ";
      const auto itTry = mapTries.find(oArgument.eRole);
      if (itTry != mapTries.end()) (this->*itTry->second)(n, sArgument);
      if (!oFunction.aTypes[n].bPointer || oArgument.eRole == eHandle) continue;
      ClGuardedCall oCall = Good();
      oCall.Set(n, static_cast<void*>(nullptr));
      Try(oFunction, oCall, sArgument + "NULL",
          bWorks && oArgument.nNull != 0 ? oArgument.nNull : cnDocumented);
    }
  }

  void Enter(const std::string& sState) { m_sState = sState; }
  int Cases() const { return m_nCases; }

 private:
  /// What good arguments come to while a scanner is open.
  static long Outcome(const StFunction& oFunction) {
    if (oFunction.sName == "LS_VT40OpenScanner") return KLV_ERROR_DEVICE_OPEN_FAIL;
    if (oFunction.sName == "LS_VT40CloseScanner") return KLV_ERROR_NO_HANDLE;
    return oFunction.sName.back() == 'W' && oFunction.sName.find("Property") != std::string::npos
               ? KLV_ERROR_NOT_IMPLEMENTED
               : 0;
  }

  ClGuardedCall Good(size_t nSize) { return ClGuardedCall(*m_pFunction, m_h, nSize, ImageBytes()); }
  ClGuardedCall Good() { return Good(m_nGood); }

  /// The room that the function asks for, or 16 bytes of data.
  size_t GoodSize() {
    for (size_t n = 0; n < m_pFunction->aArguments.size(); ++n) {
      if (m_pFunction->aArguments[n].eRole != eSize) continue;
      ClGuardedCall oCall = Good(0);
      oCall.Make();
      return oCall.SizeAt(n);
    }
    return 16;
  }

  size_t ImageBytes() {
    const std::map<std::string, std::pair<decltype(&LS_VT40GetImageSize), decltype(&LS_VT40GetImageSize)>>
        mapSizes = {
            {"LS_VT40GetImage", {LS_VT40GetImageSize, LS_VT40GetSignatureImageSize}},
            {"LS_VT40GetPreviewImage", {LS_VT40GetPreviewImageSize, LS_VT40GetSignaturePreviewImageSize}},
            {"LS_VT40GetRollImage", {LS_VT40GetRollImageSize, LS_VT40GetRollImageSize}}};
    const auto it = mapSizes.find(m_pFunction->sName);
    unsigned int nWidth = 0, nHeight = 0;
    if (it != mapSizes.end()) (m_bSignature ? it->second.second : it->second.first)(m_h, &nWidth, &nHeight);
    return static_cast<size_t>(nWidth) * nHeight;
  }

  void TryHandles(size_t n, const std::string& sArgument) {
    char aForeign[64] = "LS_VT40";
    ClGuardedCall oNull = Good();
    oNull.Set(n, static_cast<void*>(nullptr));
    Try(*m_pFunction, oNull, sArgument + "NULL", KLV_ERROR_NO_HANDLE);
    for (void* h : {static_cast<void*>(aForeign), m_hClosed, static_cast<void*>(this),
                    static_cast<void*>(static_cast<char*>(m_h) + 1)}) {
      ClGuardedCall oCall = Good();
      oCall.Set(n, h);
      Try(*m_pFunction, oCall, sArgument + "no open handle", KLV_ERROR_INVALID_HANDLE);
    }
  }

  void TryClosing(size_t n, const std::string& sArgument) {
    char aForeign[64] = "LS_VT40";
    for (void* h : {static_cast<void*>(nullptr), static_cast<void*>(aForeign), m_hClosed}) {
      ClGuardedCall oCall = Good();
      oCall.SetHandleAt(n, h);
      Try(*m_pFunction, oCall, sArgument + "no open handle");
    }
  }

  void TryRange(size_t n, const std::string& sArgument) {
    const StArgument& oArgument = m_pFunction->aArguments[n];
    const StType& oType = m_pFunction->aTypes[n];
    const std::set<int64_t> aValues = {oType.nLow,      oArgument.nLow - int64_t{1},  oArgument.nLow,
                                       oArgument.nHigh, oArgument.nHigh + int64_t{1}, oType.nHigh};
    for (const int64_t nValue : aValues) {
      if (nValue < oType.nLow || nValue > oType.nHigh) continue;
      const bool bRefused = nValue < oArgument.nLow || nValue > oArgument.nHigh;
      ClGuardedCall oCall = Good();
      oCall.Set(n, nValue);
      Try(*m_pFunction, oCall, sArgument + std::to_string(nValue),
          bRefused && m_bDevice ? oArgument.nRefused : cnDocumented);
    }
  }

  void TrySizes(size_t n, const std::string& sArgument) {
    const unsigned int nNeed = static_cast<unsigned int>(m_nGood);
    for (const unsigned int nSize : {0u, nNeed - 1, nNeed, nNeed + 1, ~0u}) {
      if (nSize == ~0u && nNeed == 0) continue;
      // A room that is said to be larger than it is must not be used beyond the need.
      ClGuardedCall oCall = Good(std::min(nSize, nNeed + 1));
      oCall.SetSize(n, nSize);
      const bool bSmall = nSize < nNeed;
      Try(*m_pFunction, oCall, sArgument + "room " + std::to_string(nSize),
          m_bDevice ? (bSmall ? m_pFunction->aArguments[n].nRefused : 0) : cnDocumented);
      EXPECT_TRUE(!m_bDevice || oCall.SizeAt(n) == nNeed) << m_pFunction->sName;
    }
  }

  void TryCounts(size_t n, const std::string& sArgument) {
    if (!m_bPatient) return;  // the display takes its time
    for (const size_t nCount : {0u, 1u, 15u, 16u, 17u, 32u, 33u, 4096u}) {
      ClGuardedCall oCall = Good(nCount);
      oCall.Set(n, static_cast<int64_t>(nCount));
      Try(*m_pFunction, oCall, sArgument + "count " + std::to_string(nCount));
    }
  }

  void TryValues(size_t n, const std::string& sArgument) {
    const StType& oType = m_pFunction->aTypes[n];
    for (const double dValue : cadNumbers) {
      if (!oType.bFloating) break;
      ClGuardedCall oCall = Good();
      oCall.Set(n, dValue);
      Try(*m_pFunction, oCall, sArgument + std::to_string(dValue));
    }
    for (const int64_t nValue : {oType.nLow, int64_t{0}, oType.nHigh}) {
      if (oType.bFloating) break;
      ClGuardedCall oCall = Good();
      oCall.Set(n, nValue);
      Try(*m_pFunction, oCall, sArgument + std::to_string(nValue));
    }
  }

  void TryTexts(size_t n, const std::string& sArgument) {
    for (const std::string& sText : Texts()) {
      ClGuardedCall oCall = Good();
      oCall.SetText(n, sText);
      Try(*m_pFunction, oCall, sArgument + "text \"" + sText.substr(0, 8) + "\"");
    }
  }

  /// Each property by each function, with a value of each kind where it takes one.
  void TryNames(size_t n, const std::string& sArgument) {
    TryTexts(n, sArgument);
    for (const char* szName : caszProperties) {
      const auto TryOne = [&](auto&& fnChange, const std::string& sValue) {
        // Longer than any value.
        ClGuardedCall oCall = Good(64);
        oCall.SetText(n, szName);
        fnChange(oCall);
        Try(*m_pFunction, oCall, sArgument + szName + sValue);
      };
      TryOne([](ClGuardedCall&) {}, "");
      if (n + 1 == m_pFunction->aArguments.size()) continue;
      if (m_pFunction->aArguments[n + 1].eRole == eIn) {
        for (const std::string& sText : Texts())
          TryOne([&](ClGuardedCall& rCall) { rCall.SetText(n + 1, sText); }, " = " + sText.substr(0, 8));
      }
      if (m_pFunction->aArguments[n + 1].eRole == eValue && m_pFunction->aTypes[n + 1].bFloating) {
        for (const double dValue : cadNumbers)
          TryOne([&](ClGuardedCall& rCall) { rCall.Set(n + 1, dValue); }, " = " + std::to_string(dValue));
      }
    }
  }

 protected:
  void* m_hClosed = nullptr;
  bool m_bDevice = false;     ///< a scanner is open
  bool m_bSignature = false;  ///< and its mode is that of signatures
  bool m_bPatient = false;    ///< try what takes long as well

 private:
  const StFunction* m_pFunction = nullptr;
  size_t m_nGood = 0;
  std::string m_sState;
  int m_nCases = 0;
};

TEST_F(Misuse, EveryArgumentIsHeldToItsPartInEveryMode) {
  ASSERT_EQ(Open(), 0);
  m_hClosed = m_h;
  ASSERT_EQ(LS_VT40CloseScanner(&m_h), 0);
  LoadScene("finger");
  ASSERT_EQ(Open(), 0);
  ASSERT_NE(m_h, m_hClosed);
  m_bDevice = true;
  for (int nMode = KLV_VT40_CAPTURE_MODE_AUTO; nMode <= KLV_VT40_CAPTURE_MODE_SIGNATURE; ++nMode) {
    Enter("mode " + std::to_string(nMode));
    m_bSignature = nMode == KLV_VT40_CAPTURE_MODE_SIGNATURE;
    m_bPatient = nMode == KLV_VT40_CAPTURE_MODE_OFF;
    for (const StFunction& oFunction : Functions()) {
      ASSERT_EQ(LS_VT40SetCaptureMode(m_h, nMode), 0);
      TryAll(oFunction, (oFunction.nModes >> nMode & 1u) != 0);
      unsigned int nWidth = 0, nHeight = 0;
      EXPECT_EQ(LS_VT40GetImageSize(m_h, &nWidth, &nHeight), 0)
          << "the next call works, after " << oFunction.sName;
    }
  }
  EXPECT_GE(Cases(), 1500);
  RecordProperty("cases", Cases());
}

TEST_F(Misuse, NothingDependsOnAScannerWhereThereIsNone) {
  // A handle whose library has ended, then one without a device, then none.
  ASSERT_EQ(Open(), 0);
  m_hClosed = m_h;
  ASSERT_EQ(LS_VT40CloseScanner(&m_h), 0);
  ASSERT_EQ(Open(), 0);
  while (LS_VT40Uninitialize() == 0) {
  }
  Enter("after the end");
  for (const StFunction& oFunction : Functions())
    if (oFunction.sName != "LS_VT40Initialize") TryAll(oFunction, false);
  ASSERT_EQ(LS_VT40Initialize(nullptr), 0);
  ASSERT_EQ(LS_VT40Initialize(nullptr), 0);
  ASSERT_EQ(VTSimFailCall("VTScanAPIDestroyHandle", 1, 1, -60), 0);
  ASSERT_EQ(LS_VT40CloseScanner(&m_h), -60);
  ASSERT_NE(m_h, nullptr);
  Enter("without a device");
  for (const StFunction& oFunction : Functions()) TryAll(oFunction, false);
  RecordProperty("cases", Cases());
}

}  // namespace
