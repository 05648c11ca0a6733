// How pictures get their names and their facts.
#include "CaptureResult.h"

#include <utility>

#include "StandIn.h"

ClCaptureResult::ClCaptureResult(const StCaptureOptions& oOptions, ClReport& oReport)
    : m_oOptions(oOptions), m_oReport(oReport) {
  PrepareFolder(oOptions.sFolder);
  m_oReport.Facts()["mode"] = oOptions.sMode;
  m_oReport.Facts()["pictures"] = nlohmann::ordered_json::array();
}

StPictureFacts ClCaptureResult::FactsOf() const {
  return {ClLibrary::Software(), m_oReport.Facts().value("serial", ""), m_oOptions.sMode,
          m_oReport.IsSimulated(), !StandIn::ReplayFile().empty()};
}

void ClCaptureResult::Add(const ClPicture& oPicture, const std::string& sName) {
  const std::string sFile = WritePicture(oPicture, m_oOptions.sFolder, sName, m_oOptions.sFormat, FactsOf());
  m_oReport.Line(sFile + "  " + std::to_string(oPicture.nWidth) + " x " + std::to_string(oPicture.nHeight) +
                 ", " + std::to_string(oPicture.nPelsX) + " pels per metre" +
                 (m_oReport.IsSimulated() ? ", simulated" : ""));
  m_oReport.Facts()["pictures"].push_back({{"name", sName},
                                           {"file", sFile},
                                           {"width", oPicture.nWidth},
                                           {"height", oPicture.nHeight},
                                           {"pelsPerMetre", oPicture.nPelsX}});
}

void ClCaptureResult::Keep(const ClPicture& oPicture, const std::string& sFolder, const std::string& sName) {
  WritePicture(oPicture, sFolder, sName, m_oOptions.sFormat, FactsOf());
}

void ClCaptureResult::SetDelivery(const StDelivery& oDelivery) {
  m_oReport.Facts()["done"] = oDelivery.bDone;
  m_oReport.Facts()["result"] = oDelivery.nResult;
  m_oReport.Facts()["score"] = oDelivery.dScore;
}
