// The sign command.
#include <algorithm>
#include <chrono>

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

/// One signature: shows the strokes as they are written, and takes the picture when the pen rests.
class ClSignRun {
 public:
  ClSignRun(ClScanner& oScanner, const StSignOptions& oOptions, ClCaptureResult& oResult)
      : m_oScanner(oScanner), m_oOptions(oOptions), m_oResult(oResult) {}

  void Run() {
    const auto tEnd = Clock::now() + std::chrono::seconds(m_oOptions.oCapture.nTimeout);
    StDelivery oDelivery;
    while (!oDelivery.bDone && Clock::now() < tEnd) {
      oDelivery = m_oScanner.GetSignaturePreview(m_oPreview);
      ++m_nPreview;
      m_oInk = InkOf(m_oPreview);
      m_oProgress.Show(Line() + " preview " + std::to_string(m_nPreview));
    }
    m_oResult.Facts()["previews"] = m_nPreview;
    // Without a detect time the time-out is the end of the signature.
    if (oDelivery.bDone || (m_oOptions.dTime == 0.0 && m_oInk.nPixels != 0)) return Finish();
    m_oResult.SetDelivery(oDelivery);
    m_oResult.SetVerdict(
        eExitTimeout,
        std::string(m_oInk.nPixels != 0 ? "the signature was not finished" : "nothing was signed") +
            " within " + std::to_string(m_oOptions.oCapture.nTimeout) + " seconds; see --timeout");
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
    m_oResult.Facts()["ink"] = {{"pixels", oInk.nPixels},
                                {"left", oInk.nLeft},
                                {"top", oInk.nTop},
                                {"width", oInk.nRight - oInk.nLeft},
                                {"height", oInk.nBottom - oInk.nTop}};
  }

  ClScanner& m_oScanner;
  const StSignOptions& m_oOptions;
  ClCaptureResult& m_oResult;
  ClProgress m_oProgress;
  ClPicture m_oPreview;
  StInk m_oInk;
  unsigned int m_nPreview = 0;
};

}  // namespace

int RunSign(const StCommonOptions& oCommon, const StSignOptions& oOptions) {
  PaceScenes();
  ChooseScene(oCommon.sScene, oCommon.sPrintFile);
  const ClLibrary oLibrary;
  ClScanner oScanner(oLibrary, oCommon.sSerial);
  ClCaptureResult oResult(oOptions.oCapture, oScanner.Serial());
  oScanner.SetProperty("nSignatureSensorMode", oOptions.bHalf ? "1" : "0");
  oScanner.SetProperty("dSignatureDetectTime", std::to_string(oOptions.dTime));
  oScanner.SetProperty("dSignatureFilterSigma", std::to_string(oOptions.dSigma));
  oScanner.SetMode(KLV_VT40_CAPTURE_MODE_SIGNATURE);
  ClSignRun(oScanner, oOptions, oResult).Run();
  return oResult.Print(oCommon.bJson);
}
