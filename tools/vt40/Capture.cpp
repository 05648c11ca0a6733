// The capture command.
#include <utility>

#include "AutoCapture.h"
#include "CaptureResult.h"
#include "Commands.h"
#include "KelvarinLiveScannerVT40.h"
#include "Progress.h"
#include "Scene.h"

namespace {

void CaptureOff(ClScanner& oScanner, ClCaptureResult& oResult) {
  ClPicture oPicture;
  // A single shot has no verdict, whatever lies on the platen.
  oResult.SetDelivery(oScanner.GetImage(oPicture));
  oResult.Add(oPicture, "full");
}

void CaptureFull(ClScanner& oScanner, const StCaptureOptions& oOptions, ClProgress& oProgress,
                 ClCaptureResult& oResult) {
  oScanner.SetMode(KLV_VT40_CAPTURE_MODE_FULL);
  ClPicture oSeen;
  ClPicture oPicture;
  StDelivery oDelivery;
  try {
    for (unsigned int n = 1; n <= oOptions.nFrames; ++n) {
      oProgress.Show("frame " + std::to_string(n) + " of " + std::to_string(oOptions.nFrames));
      oDelivery = oScanner.GetImage(oSeen);
      std::swap(oSeen, oPicture);
    }
  } catch (const ClToolError&) {
    if (!oPicture.aPixels.empty()) oResult.Add(oPicture, "full");
    throw;
  }
  oResult.SetDelivery(oDelivery);
  oResult.Add(oPicture, "full");
}

void CapturePreview(ClScanner& oScanner, const StCaptureOptions& oOptions, ClProgress& oProgress,
                    ClCaptureResult& oResult) {
  oScanner.SetMode(KLV_VT40_CAPTURE_MODE_PREVIEW);
  ClPicture oSeen;
  ClPicture oPreview;
  ClPicture oPicture;
  StDelivery oDelivery;
  try {
    for (unsigned int n = 1; n <= oOptions.nFrames; ++n) {
      oProgress.Show("preview " + std::to_string(n) + " of " + std::to_string(oOptions.nFrames));
      oScanner.GetPreview(oSeen);
      std::swap(oSeen, oPreview);
    }
    oProgress.Show("capture");
    oDelivery = oScanner.GetImage(oPicture);
  } catch (const ClToolError&) {
    if (!oPreview.aPixels.empty()) oResult.Add(oPreview, "preview");
    throw;
  }
  oResult.SetDelivery(oDelivery);
  oResult.Add(oPreview, "preview");
  oResult.Add(oPicture, "full");
  if (!oDelivery.bDone) oResult.Report().SetVerdict(eExitNegative, "no finger lies on the platen");
}

void Capture(ClScanner& oScanner, const StCaptureOptions& oOptions, ClCaptureResult& oResult) {
  if (oOptions.sMode == "auto" || oOptions.sMode == "auto-live") {
    return CaptureAutomatically(oScanner, oOptions, oResult);
  }
  ClProgress oProgress;
  if (oOptions.sMode == "off") return CaptureOff(oScanner, oResult);
  if (oOptions.sMode == "full") return CaptureFull(oScanner, oOptions, oProgress, oResult);
  CapturePreview(oScanner, oOptions, oProgress, oResult);
}

}  // namespace

void RunCapture(const StCommonOptions& oCommon, const StCaptureOptions& oOptions, ClReport& oReport) {
  ClCaptureResult oResult(oOptions, oReport);
  ChooseScene(oCommon);
  const ClLibrary oLibrary;
  ClScanner oScanner(oLibrary, oCommon.sSerial);
  oReport.Use(oLibrary, oScanner);
  Capture(oScanner, oOptions, oResult);
}
