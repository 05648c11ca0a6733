// The capture command.
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
  ClPicture oPicture;
  StDelivery oDelivery;
  for (unsigned int n = 1; n <= oOptions.nFrames; ++n) {
    oProgress.Show("frame " + std::to_string(n) + " of " + std::to_string(oOptions.nFrames));
    oDelivery = oScanner.GetImage(oPicture);
  }
  oResult.SetDelivery(oDelivery);
  oResult.Add(oPicture, "full");
}

void CapturePreview(ClScanner& oScanner, const StCaptureOptions& oOptions, ClProgress& oProgress,
                    ClCaptureResult& oResult) {
  oScanner.SetMode(KLV_VT40_CAPTURE_MODE_PREVIEW);
  ClPicture oPreview;
  for (unsigned int n = 1; n <= oOptions.nFrames; ++n) {
    oProgress.Show("preview " + std::to_string(n) + " of " + std::to_string(oOptions.nFrames));
    oScanner.GetPreview(oPreview);
  }
  oProgress.Show("capture");
  ClPicture oPicture;
  const StDelivery oDelivery = oScanner.GetImage(oPicture);
  oResult.SetDelivery(oDelivery);
  oResult.Add(oPreview, "preview");
  oResult.Add(oPicture, "full");
  if (!oDelivery.bDone) oResult.SetVerdict(eExitNegative, "no finger lies on the platen");
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

int RunCapture(const StCommonOptions& oCommon, const StCaptureOptions& oOptions) {
  ChooseScene(oCommon.sScene, oCommon.sPrintFile);
  const ClLibrary oLibrary;
  ClScanner oScanner(oLibrary, oCommon.sSerial);
  ClCaptureResult oResult(oOptions, oScanner.Serial());
  Capture(oScanner, oOptions, oResult);
  return oResult.Print(oCommon.bJson);
}
