// The life of a scanner from the initialisation of the library to its end, each call held to the table of
// exported functions.
#pragma once

#include <chrono>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "Hostile.h"
#include "Interface.h"
#include "KelvarinLiveScannerVT40.h"

namespace Hostile {

enum EStep : unsigned { eInitialise, eOpen, eMode, eFrames, eCapture, eSwitch, eClose, cnSteps };
constexpr const char* caszSteps[cnSteps] = {"initialise", "open",   "mode", "frames",
                                            "capture",    "switch", "close"};
constexpr int cnModes = KLV_VT40_CAPTURE_MODE_SIGNATURE + 1;

/// What calls came to, of all lives together.
struct StBook {
  std::map<std::string, std::set<long>> mapNumbers;
  std::map<std::string, double> mapSeconds;  ///< the most that a call took
  std::vector<std::string> aFindings;
  long nBlocks = 0;  ///< of memory that it holds, once every function has been called
};

class ClLife {
 public:
  ClLife(ClControl& oControl, StBook& oBook) : m_oControl(oControl), m_oBook(oBook) {
    for (auto& oFunction : Interface::Functions()) m_mapFunctions[oFunction.sName] = oFunction;
    m_aPixels.resize(1600 * 1600);
  }

  /// The numbers that the scan library may answer while it follows the plan, those that every function may,
  /// and the seconds that the scan library's calls take on top.
  void Expect(std::string sPlan, std::set<long> aOwn = {}, std::set<long> aAny = {}, double dOnTop = 0.0) {
    m_sPlan = std::move(sPlan);
    m_aOwn = std::move(aOwn);
    m_aAny = std::move(aAny);
    m_dOnTop = dOnTop;
  }

  /// All steps in a mode. A call that fails ends nothing but what cannot go on without it. Whether the
  /// scanner was opened.
  bool Live(int nMode) {
    m_oControl.Enter(eInitialise);
    if (Try("LS_VT40Initialize", [] { return LS_VT40Initialize(nullptr); }) != 0) return false;
    char aszSerials[4][KLV_VT40_SERIAL_SIZE] = {};
    unsigned nCount = 4;
    Try("LS_VT40QueryScanners", [&] { return LS_VT40QueryScanners(aszSerials[0], &nCount); });
    m_oControl.Enter(eOpen);
    const bool bOpened = Open() == 0;
    if (bOpened) {
      Use(nMode);
      m_oControl.Enter(eClose);
      Close();
    }
    Try("LS_VT40Uninitialize", [] { return LS_VT40Uninitialize(); });
    return bOpened;
  }

  /// Whether the call, of Live before, that selected the mode succeeded.
  bool Selected() const { return m_bSelected; }

  /// A picture of a scanner that is opened for it.
  const std::vector<unsigned char>& Picture() {
    if (Try("LS_VT40Initialize", [] { return LS_VT40Initialize(nullptr); }) != 0)
      Fail("the next initialisation");
    std::fill(m_aPixels.begin(), m_aPixels.end(), static_cast<unsigned char>(0xA5));
    if (Open() != 0) return Fail("the next opening"), m_aPixels;
    if (Image("LS_VT40GetImage", LS_VT40GetImage) != 0) Fail("the next picture");
    if (Close() != 0) Fail("the next end");
    LS_VT40Uninitialize();
    return m_aPixels;
  }

  void Fail(const std::string& sWhat) { m_oBook.aFindings.push_back(m_sPlan + ": " + sWhat); }

 private:
  template <typename TCall>
  long Try(const char* szFunction, TCall&& fnCall) {
    const auto tStart = std::chrono::steady_clock::now();
    const long nNumber = fnCall();
    const double dSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - tStart).count();
    const Interface::StFunction& oFunction = m_mapFunctions.at(szFunction);
    const bool bOwn = std::count(oFunction.aNumbers.begin(), oFunction.aNumbers.end(), Interface::cnOwn) != 0;
    if (Interface::Documented(oFunction).count(nNumber) == 0 && m_aAny.count(nNumber) == 0 &&
        !(bOwn && m_aOwn.count(nNumber) != 0))
      Fail(szFunction + (" answers " + std::to_string(nNumber)));
    if (dSeconds > oFunction.dSeconds + m_dOnTop)
      Fail(szFunction + (" takes " + std::to_string(dSeconds) + " s"));
    m_oBook.nBlocks += m_oBook.mapNumbers[szFunction].insert(nNumber).second ? 1 : 0;
    double& rMost = m_oBook.mapSeconds[szFunction];
    rMost = std::max(rMost, dSeconds - m_dOnTop);
    return nNumber;
  }

  long Open() {
    m_h = nullptr;
    return Try("LS_VT40OpenScanner", [&] { return LS_VT40OpenScanner("VT40-AB0001", &m_h); });
  }

  long Close() {
    const long nNumber = Try("LS_VT40CloseScanner", [&] { return LS_VT40CloseScanner(&m_h); });
    // What the scan library refused to close is closed all the same, and its handle by the second call.
    if (m_h != nullptr && Try("LS_VT40CloseScanner", [&] { return LS_VT40CloseScanner(&m_h); }) != 0)
      Fail("the handle stays");
    return nNumber;
  }

  using ImageCall = long (*)(void*, void*, double*, unsigned char*, long*);
  long Image(const char* szFunction, ImageCall pfn) {
    double dScore = 0.0;
    long nResult = 0;
    return Try(szFunction, [&] { return pfn(m_h, m_aPixels.data(), &dScore, &m_bDone, &nResult); });
  }
  long Preview() { return Image("LS_VT40GetPreviewImage", LS_VT40GetPreviewImage); }
  long Select(int nMode) {
    return Try("LS_VT40SetCaptureMode", [&] { return LS_VT40SetCaptureMode(m_h, nMode); });
  }

  void Use(int nMode) {
    char szText[256];
    unsigned nSize = sizeof(szText);
    unsigned anCondition[2];
    Try("LS_VT40GetSerialNumber", [&] { return LS_VT40GetSerialNumber(m_h, szText); });
    Try("LS_VT40GetVersionString", [&] { return LS_VT40GetVersionString(m_h, szText, &nSize); });
    Try("LS_VT40SetLED", [&] { return LS_VT40SetLED(m_h, 1, 2); });
    Try("LS_VT40Beep", [&] { return LS_VT40Beep(m_h, 300, 100); });
    Try("LS_VT40SetDisplayData", [&] { return LS_VT40SetDisplayData(m_h, 0, szText, 1); });
    m_oControl.Enter(eMode);
    m_bSelected = Select(nMode) == 0;
    m_oControl.Enter(eFrames);
    Frames(nMode);
    m_oControl.Enter(eCapture);
    if (nMode != KLV_VT40_CAPTURE_MODE_ROLL) Image("LS_VT40GetImage", LS_VT40GetImage);
    Try("LS_VT40GetScannerCondition",
        [&] { return LS_VT40GetScannerCondition(m_h, &anCondition[0], &anCondition[1]); });
    m_oControl.Enter(eSwitch);
    const bool bPreview = nMode == KLV_VT40_CAPTURE_MODE_PREVIEW;
    Select(bPreview ? KLV_VT40_CAPTURE_MODE_FULL : KLV_VT40_CAPTURE_MODE_PREVIEW);
    if (!bPreview) Preview();
  }

  /// A call that has waited out its time is not repeated.
  void Frames(int nMode) {
    m_bDone = 0;
    long nNumber = 0;
    switch (nMode) {
      case KLV_VT40_CAPTURE_MODE_AUTO:
      case KLV_VT40_CAPTURE_MODE_AUTO_LIVE:
        for (int n = 0; n < 60 && m_bDone == 0 && Preview() == 0; ++n) {
        }
        break;
      case KLV_VT40_CAPTURE_MODE_ROLL:
        for (int n = 0; n < 2 && nNumber != KLV_ERROR_DISCONNECTED; ++n)
          nNumber = Image("LS_VT40GetRollImage", LS_VT40GetRollImage);
        break;
      case KLV_VT40_CAPTURE_MODE_FULL:
        Image("LS_VT40GetImage", LS_VT40GetImage);
        break;
      case KLV_VT40_CAPTURE_MODE_PREVIEW:
      case KLV_VT40_CAPTURE_MODE_SIGNATURE:
        for (int n = 0; n < 2 && nNumber != KLV_ERROR_DISCONNECTED; ++n) nNumber = Preview();
        break;
      default:
        break;
    }
  }

  ClControl& m_oControl;
  StBook& m_oBook;
  std::map<std::string, Interface::StFunction> m_mapFunctions;
  std::set<long> m_aOwn;
  std::set<long> m_aAny;
  double m_dOnTop = 0.0;
  std::string m_sPlan;
  std::vector<unsigned char> m_aPixels;
  void* m_h = nullptr;
  unsigned char m_bDone = 0;
  bool m_bSelected = false;
};

}  // namespace Hostile
