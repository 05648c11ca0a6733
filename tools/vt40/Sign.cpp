// The sign command.
#include <algorithm>
#include <chrono>
#include <utility>

#include "CaptureResult.h"
#include "Commands.h"
#include "KelvarinLiveScannerVT40.h"
#include "Observers.h"
#include "Progress.h"
#include "Scene.h"

namespace {

using Clock = std::chrono::steady_clock;

/// One signature: shows the strokes as they are written, and takes the picture when the pen rests.
class ClSignRun {
 public:
  ClSignRun(ClScanner& oScanner, const StSignOptions& oOptions, ClCaptureResult& oResult)
      : m_oScanner(oScanner), m_oOptions(oOptions), m_oResult(oResult), m_oReport(oResult.Report()) {}

  void Run() {
    const auto tEnd = Clock::now() + std::chrono::seconds(m_oOptions.oCapture.nTimeout);
    const bool bEndsByItself = m_oOptions.dTime > 0.0;
    bool bRested = false;
    try {
      while (!bRested && Clock::now() < tEnd) {
        m_oScanner.GetSignaturePreview(m_oSeen);
        std::swap(m_oSeen, m_oPreview);
        m_oInk = InkOf(m_oPreview);
        bRested = m_oRest.HasCome(m_oInk, m_oOptions.dTime) && bEndsByItself;
        ++m_nPreview;
        m_oProgress.Show(Line() + " preview " + std::to_string(m_nPreview));
      }
    } catch (const ClToolError&) {
      // The full picture would be one call more, which is no longer to be had.
      if (m_oInk.nPixels != 0) m_oResult.Add(m_oPreview, "preview");
      throw;
    }
    m_oReport.Facts()["previews"] = m_nPreview;
    if (m_oInk.nPixels != 0) Finish();
    m_oReport.Facts()["done"] = bRested || (!bEndsByItself && m_oInk.nPixels != 0);
    if (bRested || (!bEndsByItself && m_oInk.nPixels != 0)) return;
    m_oReport.SetVerdict(
        eExitTimeout,
        (m_oInk.nPixels != 0 ? "the signature was not finished within " : "nothing was signed within ") +
            std::to_string(m_oOptions.oCapture.nTimeout) + " seconds; see --timeout" +
            (m_oInk.nPixels != 0 ? "; what was signed so far is written" : ""));
  }

 private:
  /// The ink of the preview as forty characters that show its height.
  std::string Line() const {
    constexpr unsigned int cnCells = 40;
    std::string sLine(cnCells, ' ');
    const unsigned int nMiddle = (m_oInk.nTop + m_oInk.nBottom) / 2;
    for (unsigned int n = 0; n < cnCells; ++n) {
      bool bUpper = false, bLower = false;
      for (unsigned int y = m_oInk.nTop; y < m_oInk.nBottom; ++y) {
        const unsigned char* pRow = m_oPreview.Row(y);
        const bool bInk =
            std::any_of(pRow + n * m_oPreview.nWidth / cnCells, pRow + (n + 1) * m_oPreview.nWidth / cnCells,
                        [](unsigned int nGrey) { return nGrey < cnInkLimit; });
        (y < nMiddle ? bUpper : bLower) |= bInk;
      }
      sLine[n] = bUpper && bLower ? '|' : bUpper ? '\'' : bLower ? '_' : ' ';
    }
    return "[" + sLine + "]";
  }

  void Finish() {
    ClPicture oPicture;
    m_oResult.SetDelivery(m_oScanner.GetSignature(oPicture));
    m_oResult.Add(m_oPreview, "preview");
    m_oResult.Add(oPicture, "signature");
    m_oReport.Facts()["ink"] = JsonOf(InkOf(oPicture));
  }

  ClScanner& m_oScanner;
  const StSignOptions& m_oOptions;
  ClCaptureResult& m_oResult;
  ClReport& m_oReport;
  ClProgress m_oProgress;
  ClPenRest m_oRest;
  ClPicture m_oSeen;     ///< scratch
  ClPicture m_oPreview;  ///< the last that came
  StInk m_oInk;
  unsigned int m_nPreview = 0;
};

}  // namespace

void RunSign(const StCommonOptions& oCommon, const StSignOptions& oOptions, ClReport& oReport) {
  ClCaptureResult oResult(oOptions.oCapture, oReport);
  PaceScenes();
  ChooseScene(oCommon);
  const ClLibrary oLibrary;
  ClScanner oScanner(oLibrary, oCommon.sSerial);
  oReport.Use(oLibrary, oScanner);
  oScanner.SetProperty("nSignatureSensorMode", oOptions.bHalf ? "1" : "0");
  // The pause is measured here.
  oScanner.SetProperty("dSignatureDetectTime", "0");
  oScanner.SetProperty("dSignatureFilterSigma", std::to_string(oOptions.dSigma));
  oScanner.SetMode(KLV_VT40_CAPTURE_MODE_SIGNATURE);
  ClSignRun(oScanner, oOptions, oResult).Run();
}
