// The sign command.
#include <algorithm>
#include <chrono>
#include <utility>

#include "CaptureResult.h"
#include "Commands.h"
#include "KelvarinLiveScannerVT40.h"
#include "Progress.h"
#include "Scene.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned int cnDark = 128;

/// The part of a picture that has ink, half-open.
struct StInk {
  unsigned int nLeft = 0, nTop = 0, nRight = 0, nBottom = 0;
  unsigned int nPixels = 0;
};

StInk InkOf(const ClPicture& oPicture) {
  StInk oInk{oPicture.nWidth, oPicture.nHeight, 0, 0, 0};
  for (unsigned int y = 0; y < oPicture.nHeight; ++y) {
    for (unsigned int x = 0; x < oPicture.nWidth; ++x) {
      if (oPicture.Row(y)[x] >= cnDark) continue;
      ++oInk.nPixels;
      oInk.nLeft = std::min(oInk.nLeft, x);
      oInk.nRight = std::max(oInk.nRight, x + 1);
      oInk.nTop = std::min(oInk.nTop, y);
      oInk.nBottom = y + 1;
    }
  }
  return oInk.nPixels != 0 ? oInk : StInk();
}

/// Finds the end of a signature: the pen rests. The library's own measure is the processor time of the
/// process, which may stand still; this is the clock's.
class ClPenRest {
 public:
  /// Looks at the ink of one more preview; true when the pen has rested for so many seconds, and over enough
  /// previews that a stall of this program is none.
  bool HasCome(const StInk& oInk, double dSeconds) {
    const auto tNow = Clock::now();
    if (oInk.nPixels == 0 || oInk.nPixels != m_nPixels) {
      m_nPixels = oInk.nPixels;
      m_nUnchanged = 0;
      m_tChange = tNow;
      return false;
    }
    ++m_nUnchanged;
    return m_nUnchanged >= cnFewestPreviews && tNow - m_tChange >= std::chrono::duration<double>(dSeconds);
  }

 private:
  static constexpr int cnFewestPreviews = 8;
  unsigned int m_nPixels = 0;
  int m_nUnchanged = 0;
  Clock::time_point m_tChange;
};

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
                        [](unsigned int nGrey) { return nGrey < cnDark; });
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
    const StInk oInk = InkOf(oPicture);
    m_oReport.Facts()["ink"] = {{"pixels", oInk.nPixels},
                                {"left", oInk.nLeft},
                                {"top", oInk.nTop},
                                {"width", oInk.nRight - oInk.nLeft},
                                {"height", oInk.nBottom - oInk.nTop}};
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
