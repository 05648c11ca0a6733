// The table of the calls, and what those of the scanner do.
#include "Api.h"

#include <sstream>

#include "Service.h"
#include "WebFiles.h"

namespace Serve {
namespace {

using nlohmann::ordered_json;

constexpr size_t cnMostName = 64;
constexpr size_t cnMostValue = 1024;
constexpr size_t cnDisplayLine = 16;
constexpr long cnMostBeep = 65535;

std::vector<std::string> PartsOf(const std::string& sPath) {
  std::vector<std::string> aParts;
  std::istringstream oPath(sPath);
  for (std::string sPart; std::getline(oPath, sPart, '/');) aParts.push_back(sPart);
  if (!sPath.empty() && sPath.back() == '/') aParts.emplace_back();
  return aParts;
}

/// Whether the path has that form; stores what stands for "*".
bool Matches(const std::vector<std::string>& aPath, const char* szForm, std::vector<std::string>& aFound) {
  const std::vector<std::string> aForm = PartsOf(szForm);
  aFound.clear();
  if (aForm.size() != aPath.size()) return false;
  for (size_t n = 0; n < aForm.size(); ++n) {
    if (aForm[n] == "*") {
      aFound.push_back(aPath[n]);
    } else if (aForm[n] != aPath[n]) {
      return false;
    }
  }
  return true;
}

ClServiceError NotFound(const std::string& sWhat) {
  return {404, "NOT_FOUND", "there is no " + sWhat, "See /openapi.yaml for what there is."};
}

unsigned int ResultNumber(const std::string& sPart) {
  if (sPart.empty() || sPart.size() > 9 || sPart.find_first_not_of("0123456789") != std::string::npos)
    throw NotFound("result \"" + sPart + "\"");
  return static_cast<unsigned int>(std::stoul(sPart));
}

void NeedJson(const std::string& sContentType) {
  const std::string sType = "application/json";
  const bool bJson = sContentType.compare(0, sType.size(), sType) == 0 &&
                     (sContentType.size() == sType.size() || sContentType[sType.size()] == ';');
  if (!bJson)
    throw ClServiceError(415, "CONTENT_TYPE", "the content type is \"" + sContentType + "\"",
                         "Send Content-Type: application/json.");
}

std::string NameIn(const ordered_json& oBody, const char* szKey) {
  std::string sName = TextIn(oBody, szKey, cnMostName);
  if (sName.empty()) throw BadRequest("\"" + std::string(szKey) + "\" is empty");
  return sName;
}

}  // namespace

const std::vector<ClApi::StRoute>& ClApi::Routes() {
  static const std::vector<StRoute> s_aRoutes = {
      {"GET", "/api/status", false, &ClApi::GetStatus},
      {"GET", "/api/scanners", false, &ClApi::GetScanners},
      {"PUT", "/api/scanner", true, &ClApi::PutScanner},
      {"POST", "/api/claim", false, &ClApi::PostClaim},
      {"DELETE", "/api/claim", true, &ClApi::DeleteClaim},
      {"POST", "/api/claim/ask", false, &ClApi::PostAsk},
      {"POST", "/api/claim/hand-over", true, &ClApi::PostHandOver},
      {"PUT", "/api/mode", true, &ClApi::PutMode},
      {"GET", "/api/settings/*", false, &ClApi::GetSetting},
      {"PUT", "/api/settings/*", true, &ClApi::PutSetting},
      {"POST", "/api/captures", true, &ClApi::PostCapture},
      {"GET", "/api/results", false, &ClApi::GetResults},
      {"GET", "/api/results/*", false, &ClApi::GetResult},
      {"DELETE", "/api/results/*", true, &ClApi::DeleteResult},
      {"GET", "/api/results/*/*", false, &ClApi::GetPicture},
      {"PUT", "/api/led/*", true, &ClApi::PutLed},
      {"POST", "/api/beep", true, &ClApi::PostBeep},
      {"PUT", "/api/display", true, &ClApi::PutDisplay},
      {"GET", "/api/simulator", false, &ClApi::GetSimulator},
      {"PUT", "/api/simulator/scene", true, &ClApi::PutScene},
      {"PUT", "/api/simulator/platen", true, &ClApi::PutPlaten},
      {"PUT", "/api/simulator/plugged", true, &ClApi::PutPlugged},
      {"POST", "/api/simulator/faults", true, &ClApi::PostFaults},
      {"GET", "/api/simulator/truth.png", false, &ClApi::GetTruth}};
  return s_aRoutes;
}

const ClApi::StRoute* ClApi::FindRoute(const StRequest& oRequest, StCall& oCall, std::string& sAllow) const {
  const std::vector<std::string> aPath = PartsOf(oRequest.sPath);
  std::vector<std::string> aFound;
  for (const StRoute& oRoute : Routes()) {
    if (!Matches(aPath, oRoute.szPath, aFound)) continue;
    if (oRequest.sMethod == oRoute.szMethod) {
      oCall.aParts = aFound;
      return &oRoute;
    }
    sAllow += (sAllow.empty() ? "" : ", ") + std::string(oRoute.szMethod);
  }
  return nullptr;
}

void ClApi::Handle(const StRequest& oRequest, const FnAnswer& fnAnswer) {
  const StWebFile* pFile = FindWebFile(oRequest.sPath);
  StCall oCall{oRequest, {}, ordered_json::object()};
  std::string sAllow = pFile != nullptr ? "GET" : "";
  if (pFile != nullptr && oRequest.sMethod == "GET")
    return fnAnswer({200, pFile->szType, std::string(pFile->szBytes, pFile->nBytes), ""});
  if (oRequest.sPath == ClService::cszEvents)
    throw ClServiceError(426, "UPGRADE_REQUIRED", "events come by a WebSocket",
                         "Open a WebSocket at this path.");
  const StRoute* pRoute = FindRoute(oRequest, oCall, sAllow);
  if (pRoute == nullptr) {
    if (sAllow.empty()) throw NotFound("\"" + oRequest.sPath + "\"");
    StAnswer oAnswer =
        AnswerOf({{"error",
                   {{"number", nullptr},
                    {"name", "METHOD_NOT_ALLOWED"},
                    {"text", oRequest.sMethod + " is not possible with \"" + oRequest.sPath + "\""},
                    {"advice", "Use " + sAllow + "."}}}},
                 405);
    oAnswer.sAllow = sAllow;
    return fnAnswer(oAnswer);
  }
  m_oService.m_oGate.CheckToken(oRequest);
  if (oRequest.sMethod != "GET") {
    NeedJson(oRequest.sContentType);
    oCall.oBody = ReadObject(oRequest.sBody);
  }
  if (pRoute->bClaim) m_oService.m_oClaim.Check(oRequest.sClaim, ClClaim::Clock::now());
  (this->*pRoute->pfnHandler)(oCall, fnAnswer);
}

FnAnswer ClApi::ThenStatus(const FnAnswer& fnAnswer) {
  return [pService = &m_oService, fnAnswer](const StAnswer& oAnswer) {
    fnAnswer(oAnswer.nStatus == 200 ? AnswerOf(pService->Status()) : oAnswer);
  };
}

void ClApi::GetStatus(const StCall&, const FnAnswer& fnAnswer) {
  fnAnswer(AnswerOf(m_oService.Status()));
}

void ClApi::GetScanners(const StCall&, const FnAnswer& fnAnswer) {
  const ordered_json oStatus = m_oService.Status();
  ordered_json oScanners = {{"simulated", oStatus["simulated"]}, {"scanLibrary", oStatus["scanLibrary"]}};
  // The list may take the scan library its time, which the network does not have.
  const auto List = [pLibrary = &m_oService.m_oLibrary, oScanners](ClStation&) {
    ordered_json oAnswer = oScanners;
    oAnswer["scanners"] = pLibrary->Serials();
    return oAnswer;
  };
  m_oService.m_pStation->Ask(List, fnAnswer);
}

void ClApi::PutScanner(const StCall& oCall, const FnAnswer& fnAnswer) {
  NeedKeys(oCall.oBody, "serial");
  const std::string sSerial = NameIn(oCall.oBody, "serial");
  const auto Choose = [sSerial](ClStation& oStation) {
    oStation.Choose(sSerial);
    return ordered_json();
  };
  m_oService.m_pStation->Ask(Choose, ThenStatus(fnAnswer));
}

void ClApi::PostClaim(const StCall& oCall, const FnAnswer& fnAnswer) {
  NeedKeys(oCall.oBody, "name");
  const std::string sName = NameIn(oCall.oBody, "name");
  const std::string sClaim = m_oService.m_oClaim.Take(sName, ClClaim::Clock::now());
  fnAnswer(AnswerOf({{"claim", sClaim}, {"name", sName}}));
  m_oService.TellClaim();
}

void ClApi::PostAsk(const StCall& oCall, const FnAnswer& fnAnswer) {
  NeedKeys(oCall.oBody, "name");
  const std::string sName = NameIn(oCall.oBody, "name");
  const ClClaim& oClaim = m_oService.m_oClaim;
  if (!oClaim.IsHeld())
    throw ClServiceError(409, "CLAIM_NEEDED", "nobody holds the scanner", "Take it with POST /api/claim.");
  for (const auto& [nClient, oClient] : m_oService.m_aClients)
    if (oClaim.IsOf(nClient)) m_oService.TellOne(nClient, {{"event", "claimAsked"}, {"name", sName}});
  fnAnswer(AnswerOf({{"holder", oClaim.Holder()}}, 202));
}

void ClApi::PostHandOver(const StCall& oCall, const FnAnswer& fnAnswer) {
  NeedKeys(oCall.oBody, "to");
  const std::string sName = NameIn(oCall.oBody, "to");
  unsigned int nTo = 0;
  // The newest of that name: an older one may be a page that is about to go.
  for (const auto& [nClient, oClient] : m_oService.m_aClients)
    if (oClient.sName == sName) nTo = nClient;
  if (nTo == 0) throw NotFound("client \"" + sName + "\" that has said its name");
  const std::string sClaim = m_oService.m_oClaim.HandOver(sName, nTo, ClClaim::Clock::now());
  fnAnswer(AnswerOf({{"holder", sName}}));
  ordered_json oEvent = m_oService.ClaimEvent(nTo);
  oEvent["claim"] = sClaim;
  m_oService.TellOne(nTo, oEvent);
  m_oService.TellClaim();
}

void ClApi::DeleteClaim(const StCall&, const FnAnswer& fnAnswer) {
  m_oService.m_oClaim.Release();
  fnAnswer(AnswerOf({{"holder", nullptr}}));
  m_oService.TellClaim();
}

void ClApi::PutMode(const StCall& oCall, const FnAnswer& fnAnswer) {
  NeedKeys(oCall.oBody, "mode");
  const std::string sMode = TextIn(oCall.oBody, "mode", cnMostName);
  if (!IsMode(sMode)) throw BadRequest("\"" + sMode + "\" is no capture mode");
  const auto SetMode = [sMode](ClStation& oStation) {
    oStation.SetMode(sMode);
    return ordered_json();
  };
  m_oService.m_pStation->Ask(SetMode, ThenStatus(fnAnswer));
}

void ClApi::GetSetting(const StCall& oCall, const FnAnswer& fnAnswer) {
  const auto Get = [sName = oCall.aParts[0]](ClStation& oStation) {
    return ordered_json{{"name", sName}, {"value", oStation.Scanner().GetProperty(sName)}};
  };
  m_oService.m_pStation->Ask(Get, fnAnswer);
}

void ClApi::PutSetting(const StCall& oCall, const FnAnswer& fnAnswer) {
  NeedKeys(oCall.oBody, "value");
  const auto Set = [sName = oCall.aParts[0],
                    sValue = TextIn(oCall.oBody, "value", cnMostValue)](ClStation& oStation) {
    oStation.SetProperty(sName, sValue);
    return ordered_json{{"name", sName}, {"value", sValue}};
  };
  m_oService.m_pStation->Ask(Set, fnAnswer);
}

void ClApi::PostCapture(const StCall& oCall, const FnAnswer& fnAnswer) {
  NeedKeys(oCall.oBody, "");
  const auto pTaken = std::make_shared<StTaken>();
  const auto Capture = [pTaken](ClStation& oStation) {
    *pTaken = oStation.Capture();
    return ordered_json{{"serial", oStation.State().sSerial}};
  };
  m_oService.m_pStation->Ask(Capture, [pService = &m_oService, pTaken, fnAnswer](const StAnswer& oAnswer) {
    if (oAnswer.nStatus != 200) return fnAnswer(oAnswer);
    pService->Keep(std::move(*pTaken), ReadObject(oAnswer.sBody)["serial"], fnAnswer);
  });
}

void ClApi::GetResults(const StCall&, const FnAnswer& fnAnswer) {
  fnAnswer(AnswerOf({{"results", m_oService.m_oResults.List()}}));
}

void ClApi::GetResult(const StCall& oCall, const FnAnswer& fnAnswer) {
  fnAnswer(AnswerOf(m_oService.m_oResults.Facts(ResultNumber(oCall.aParts[0]))));
}

void ClApi::GetPicture(const StCall& oCall, const FnAnswer& fnAnswer) {
  const std::string& sFile = oCall.aParts[1];
  const std::string sEnd = ".png";
  if (sFile.size() <= sEnd.size() || sFile.compare(sFile.size() - sEnd.size(), sEnd.size(), sEnd) != 0)
    throw NotFound("picture \"" + sFile + "\"");
  const std::string sName = sFile.substr(0, sFile.size() - sEnd.size());
  fnAnswer({200, "image/png", m_oService.m_oResults.Picture(ResultNumber(oCall.aParts[0]), sName), ""});
}

void ClApi::DeleteResult(const StCall& oCall, const FnAnswer& fnAnswer) {
  const unsigned int nId = ResultNumber(oCall.aParts[0]);
  m_oService.m_oResults.Remove(nId);
  fnAnswer(AnswerOf({{"id", nId}}));
}

void ClApi::PutLed(const StCall& oCall, const FnAnswer& fnAnswer) {
  NeedKeys(oCall.oBody, "state");
  const std::string& sIndex = oCall.aParts[0];
  const ordered_json oIndex = ordered_json::parse(sIndex.size() > 2 ? "" : sIndex, nullptr, false);
  const auto nLed = static_cast<unsigned int>(NumberOf(oIndex, "LED \"" + sIndex + "\"", 0, 11));
  const auto nState = static_cast<unsigned int>(NumberIn(oCall.oBody, "state", 0, 7));
  const auto Set = [nLed, nState](ClStation& oStation) {
    oStation.SetLed(nLed, nState);
    return ordered_json{{"led", nLed}, {"state", nState}};
  };
  m_oService.m_pStation->Ask(Set, fnAnswer);
}

void ClApi::PostBeep(const StCall& oCall, const FnAnswer& fnAnswer) {
  NeedKeys(oCall.oBody, "values");
  const ordered_json aValues = oCall.oBody.value("values", ordered_json::array({300, 100}));
  if (!aValues.is_array() || aValues.size() != 2) throw BadRequest("\"values\" is no list of two numbers");
  const auto nFirst = static_cast<unsigned int>(NumberOf(aValues[0], "\"values\"", 0, cnMostBeep));
  const auto nSecond = static_cast<unsigned int>(NumberOf(aValues[1], "\"values\"", 0, cnMostBeep));
  const auto Beep = [nFirst, nSecond](ClStation& oStation) {
    oStation.Scanner().Beep(nFirst, nSecond);
    return ordered_json{{"values", {nFirst, nSecond}}};
  };
  m_oService.m_pStation->Ask(Beep, fnAnswer);
}

void ClApi::PutDisplay(const StCall& oCall, const FnAnswer& fnAnswer) {
  NeedKeys(oCall.oBody, "lines");
  const ordered_json aLines = oCall.oBody.value("lines", ordered_json());
  if (!aLines.is_array() || aLines.size() != 2) throw BadRequest("\"lines\" is no list of two texts");
  std::string sText;
  for (const ordered_json& oLine : aLines) {
    std::string sLine = TextIn({{"lines", oLine}}, "lines", cnDisplayLine);
    for (const char c : sLine)
      if (c > '~' || c < ' ')
        throw BadRequest("\"" + sLine +
                         "\" has characters that the display does not know; it shows ASCII only");
    sLine.resize(cnDisplayLine, ' ');
    sText += sLine;
  }
  const auto Show = [sText, aLines](ClStation& oStation) {
    oStation.Scanner().Display(sText);
    return ordered_json{{"lines", aLines}};
  };
  m_oService.m_pStation->Ask(Show, fnAnswer);
}

}  // namespace Serve
