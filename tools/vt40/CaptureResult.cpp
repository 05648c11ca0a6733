// How the facts of a capture are kept and printed.
#include "CaptureResult.h"

#include <cstdio>

#include "Json.h"

ClCaptureResult::ClCaptureResult(const StCaptureOptions& oOptions, const std::string& sSerial)
    : m_oOptions(oOptions) {
  m_oJson = {{"serial", sSerial}, {"mode", oOptions.sMode}, {"pictures", nlohmann::json::array()}};
}

void ClCaptureResult::Add(const ClPicture& oPicture, const std::string& sName) {
  const std::string sFile = WritePicture(oPicture, m_oOptions.sFolder, sName, m_oOptions.sFormat);
  m_oJson["pictures"].push_back({{"name", sName},
                                 {"file", sFile},
                                 {"width", oPicture.nWidth},
                                 {"height", oPicture.nHeight},
                                 {"pelsPerMetre", oPicture.nPelsX}});
}

void ClCaptureResult::SetDelivery(const StDelivery& oDelivery) {
  m_oJson["done"] = oDelivery.bDone;
  m_oJson["result"] = oDelivery.nResult;
  m_oJson["score"] = oDelivery.dScore;
}

void ClCaptureResult::SetVerdict(EExitCode eExit, const std::string& sReason) {
  m_eExit = eExit;
  m_sReason = sReason;
}

EExitCode ClCaptureResult::Print(bool bJson) const {
  if (bJson) {
    PrintJson(m_oJson);
  } else {
    for (const auto& oPicture : m_oJson["pictures"]) {
      std::printf("%s  %u x %u, %u pels per metre\n", oPicture["file"].get<std::string>().c_str(),
                  oPicture["width"].get<unsigned int>(), oPicture["height"].get<unsigned int>(),
                  oPicture["pelsPerMetre"].get<unsigned int>());
    }
    if (!m_sSummary.empty()) std::puts(m_sSummary.c_str());
  }
  if (!m_sReason.empty()) std::fprintf(stderr, "vt40: %s\n", m_sReason.c_str());
  return m_eExit;
}
