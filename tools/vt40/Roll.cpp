// The roll command.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "CaptureResult.h"
#include "Commands.h"
#include "KelvarinLiveScannerVT40.h"
#include "Progress.h"
#include "Scene.h"

namespace {

using Clock = std::chrono::steady_clock;

/// The part of a picture that has ridges, by columns.
struct StStrip {
  unsigned int nFirst = 0;
  unsigned int nEnd = 0;  ///< after the last; nFirst when there is none
};

StStrip StripOf(const ClPicture& oPicture) {
  constexpr unsigned int cnDark = 128;
  constexpr unsigned int cnMinDarkPixels = 10;
  std::vector<unsigned int> aDark(oPicture.nWidth);
  for (unsigned int y = 0; y < oPicture.nHeight; ++y) {
    const unsigned char* pRow = oPicture.Row(y);
    for (unsigned int x = 0; x < oPicture.nWidth; ++x) aDark[x] += pRow[x] < cnDark;
  }
  StStrip oStrip;
  for (unsigned int x = 0; x < oPicture.nWidth; ++x) {
    if (aDark[x] < cnMinDarkPixels) continue;
    if (oStrip.nEnd == 0) oStrip.nFirst = x;
    oStrip.nEnd = x + 1;
  }
  return oStrip;
}

double Millimetres(const StStrip& oStrip, const ClPicture& oPicture) {
  return oPicture.nPelsX == 0 ? 0.0 : 1000.0 * (oStrip.nEnd - oStrip.nFirst) / oPicture.nPelsX;
}

std::string OneDecimal(double d) {
  char szText[32];
  std::snprintf(szText, sizeof(szText), "%.1f", d);
  return szText;
}

/// One roll: waits for the finger and shows the strip that grows under it.
class ClRollRun {
 public:
  ClRollRun(ClScanner& oScanner, const StRollOptions& oOptions, ClCaptureResult& oResult)
      : m_oScanner(oScanner), m_oOptions(oOptions), m_oResult(oResult) {
    m_oResult.Facts()["frames"] = nlohmann::json::array();
  }

  void Run() {
    const auto tEnd = Clock::now() + std::chrono::seconds(m_oOptions.oCapture.nTimeout);
    StDelivery oDelivery;
    while (!oDelivery.bDone && Clock::now() < tEnd) {
      oDelivery = m_oScanner.GetRoll(m_oPicture);
      ++m_nFrame;
      Observe();
    }
    m_oResult.SetDelivery(oDelivery);
    if (oDelivery.bDone) return Finish(oDelivery.nResult);
    m_oResult.SetVerdict(
        eExitTimeout, std::string(m_bFinger ? "the finger was not lifted" : "no finger rolled") + " within " +
                          std::to_string(m_oOptions.oCapture.nTimeout) + " seconds; see --timeout");
  }

 private:
  void Observe() {
    const StStrip oStrip = StripOf(m_oPicture);
    const double dWidth = Millimetres(oStrip, m_oPicture);
    m_bFinger = m_bFinger || oStrip.nEnd != 0;
    m_oProgress.Show(Bar(oStrip) + " " + OneDecimal(dWidth) + " mm, frame " + std::to_string(m_nFrame));
    m_oResult.Facts()["frames"].push_back(
        {{"frame", m_nFrame}, {"left", oStrip.nFirst}, {"width", oStrip.nEnd - oStrip.nFirst}});
    if (m_oOptions.sFramesFolder.empty()) return;
    char szName[32];
    std::snprintf(szName, sizeof(szName), "frame-%04u", m_nFrame);
    WritePicture(m_oPicture, m_oOptions.sFramesFolder, szName, m_oOptions.oCapture.sFormat);
  }

  /// The picture's columns as forty cells.
  std::string Bar(const StStrip& oStrip) const {
    constexpr unsigned int cnCells = 40;
    std::string sBar(cnCells, '.');
    for (unsigned int n = 0; n < cnCells; ++n) {
      const unsigned int nMiddle = (2 * n + 1) * m_oPicture.nWidth / (2 * cnCells);
      if (nMiddle >= oStrip.nFirst && nMiddle < oStrip.nEnd) sBar[n] = '#';
    }
    return "[" + sBar + "]";
  }

  void Finish(long nVerdict) {
    m_oResult.Add(m_oPicture, "roll");
    const double dWidth = Millimetres(StripOf(m_oPicture), m_oPicture);
    const std::string sVerdict =
        nVerdict == KLV_SUCCESS ? "The roll is clean." : LS_VT40GetErrorDescriptionA(nVerdict);
    m_oResult.Facts()["millimetres"] = std::round(10.0 * dWidth) / 10.0;
    m_oResult.Facts()["verdict"] = sVerdict;
    m_oResult.SetSummary(sVerdict + " " + OneDecimal(dWidth) + " mm wide.");
    if (nVerdict != KLV_SUCCESS) {
      m_oResult.SetVerdict(eExitNegative, sVerdict + " (" + std::to_string(nVerdict) + ")");
    }
  }

  ClScanner& m_oScanner;
  const StRollOptions& m_oOptions;
  ClCaptureResult& m_oResult;
  ClProgress m_oProgress;
  ClPicture m_oPicture;
  bool m_bFinger = false;
  unsigned int m_nFrame = 0;
};

}  // namespace

int RunRoll(const StCommonOptions& oCommon, const StRollOptions& oOptions) {
  PaceScenes();
  ChooseScene(oCommon.sScene, oCommon.sPrintFile, true);
  const ClLibrary oLibrary;
  ClScanner oScanner(oLibrary, oCommon.sSerial);
  ClCaptureResult oResult(oOptions.oCapture, oScanner.Serial());
  oScanner.SetProperty("nRolledPostProcess", oOptions.bPostProcess ? "1" : "0");
  oScanner.SetMode(KLV_VT40_CAPTURE_MODE_ROLL);
  ClRollRun(oScanner, oOptions, oResult).Run();
  return oResult.Print(oCommon.bJson);
}
