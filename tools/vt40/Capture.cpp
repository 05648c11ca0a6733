// The capture command.
#include <cstdio>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "KelvarinLiveScannerVT40.h"
#include "Progress.h"
#include "Scanner.h"
#include "Scene.h"
#include "ToolError.h"

namespace {

/// The pictures of a capture on their way into files and facts.
class ClResult {
 public:
  ClResult(const StCaptureOptions& oOptions, const std::string& sSerial) : m_oOptions(oOptions) {
    m_oJson = {{"serial", sSerial}, {"mode", oOptions.sMode}, {"pictures", nlohmann::json::array()}};
  }

  void Add(const ClPicture& oPicture, const std::string& sName) {
    const std::string sFile = WritePicture(oPicture, m_oOptions.sFolder, sName, m_oOptions.sFormat);
    m_oJson["pictures"].push_back({{"name", sName},
                                   {"file", sFile},
                                   {"width", oPicture.nWidth},
                                   {"height", oPicture.nHeight},
                                   {"pelsPerMetre", oPicture.nPelsX}});
  }

  void SetDelivery(const StDelivery& oDelivery) {
    m_oJson["done"] = oDelivery.bDone;
    m_oJson["result"] = oDelivery.nResult;
    m_oJson["score"] = oDelivery.dScore;
  }

  void Print(bool bJson) const {
    if (bJson) {
      std::puts(m_oJson.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
      return;
    }
    for (const auto& oPicture : m_oJson["pictures"]) {
      std::printf("%s  %u x %u, %u pels per metre\n", oPicture["file"].get<std::string>().c_str(),
                  oPicture["width"].get<unsigned int>(), oPicture["height"].get<unsigned int>(),
                  oPicture["pelsPerMetre"].get<unsigned int>());
    }
  }

 private:
  const StCaptureOptions& m_oOptions;
  nlohmann::ordered_json m_oJson;
};

int CaptureOff(ClScanner& oScanner, ClResult& oResult) {
  ClPicture oPicture;
  // One shot has no verdict: whatever lies on the platen is the picture.
  oResult.SetDelivery(oScanner.GetImage(oPicture));
  oResult.Add(oPicture, "full");
  return eExitOk;
}

int CaptureFull(ClScanner& oScanner, const StCaptureOptions& oOptions, ClProgress& oProgress,
                ClResult& oResult) {
  oScanner.SetMode(KLV_VT40_CAPTURE_MODE_FULL);
  ClPicture oPicture;
  StDelivery oDelivery;
  for (unsigned int n = 1; n <= oOptions.nFrames; ++n) {
    oProgress.Show("frame " + std::to_string(n) + " of " + std::to_string(oOptions.nFrames));
    oDelivery = oScanner.GetImage(oPicture);
  }
  oResult.SetDelivery(oDelivery);
  oResult.Add(oPicture, "full");
  return eExitOk;
}

int CapturePreview(ClScanner& oScanner, const StCaptureOptions& oOptions, ClProgress& oProgress,
                   ClResult& oResult) {
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
  return oDelivery.bDone ? eExitOk : eExitNegative;
}

int Capture(ClScanner& oScanner, const StCaptureOptions& oOptions, ClResult& oResult) {
  ClProgress oProgress;
  if (oOptions.sMode == "off") return CaptureOff(oScanner, oResult);
  if (oOptions.sMode == "full") return CaptureFull(oScanner, oOptions, oProgress, oResult);
  return CapturePreview(oScanner, oOptions, oProgress, oResult);
}

}  // namespace

int RunCapture(const StCommonOptions& oCommon, const StCaptureOptions& oOptions) {
  ChooseScene(oCommon.sScene, oCommon.sPrintFile);
  const ClLibrary oLibrary;
  ClScanner oScanner(oLibrary, oCommon.sSerial);
  ClResult oResult(oOptions, oScanner.Serial());
  const int nExit = Capture(oScanner, oOptions, oResult);
  oResult.Print(oCommon.bJson);
  if (nExit == eExitNegative) std::fputs("vt40: no finger lies on the platen\n", stderr);
  return nExit;
}
