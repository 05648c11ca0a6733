// What the service knows, and how its clients hear of it.
#include "Service.h"

#include <atomic>
#include <ctime>
#include <filesystem>

#include "Api.h"
#include "MXLiveScannerAPI/CaptureLimits.h"
#include "StandIn.h"

namespace Serve {
namespace {

using nlohmann::ordered_json;
using Clock = ClClaim::Clock;

constexpr size_t cnMostName = 64;
/// Liveness score from which a finger counts as living: the default of vt40 capture.
constexpr double cdMinScore = 50.0;
/// Change of the finger's area up to which it is at rest.
constexpr double cdSteadyShare = 0.1;

std::string Dump(const ordered_json& oJson) {
  return oJson.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

/// UTC with milliseconds.
std::string TimeText(std::chrono::system_clock::time_point tNow, const char* szFormat) {
  const std::time_t nSeconds = std::chrono::system_clock::to_time_t(tNow);
  const auto nMs =
      std::chrono::duration_cast<std::chrono::milliseconds>(tNow.time_since_epoch()).count() % 1000;
  std::tm oTime{};
  gmtime_r(&nSeconds, &oTime);
  char szTime[40], szAll[64];
  std::strftime(szTime, sizeof(szTime), szFormat, &oTime);
  std::snprintf(szAll, sizeof(szAll), "%s.%03dZ", szTime, static_cast<int>(nMs));
  return szAll;
}

}  // namespace

/// Carries what the station has to the network's thread.
class ClService::ClListener : public ClStationListener {
 public:
  explicit ClListener(ClService& oService) : m_oService(oService) {}

  void Frame(std::shared_ptr<ClFrame> pFrame) override { m_oService.m_oOutbox.Put(std::move(pFrame)); }
  void Facts(const ordered_json& oFacts) override { m_oService.m_oOutbox.PutFacts(Dump(oFacts)); }
  void Taken(StTaken oTaken) override {
    const auto pTaken = std::make_shared<StTaken>(std::move(oTaken));
    Answer([this, pTaken, sSerial = m_sSerial] { m_oService.Keep(std::move(*pTaken), sSerial, nullptr); });
  }
  void State(const StStationState& oState) override {
    m_sSerial = oState.sSerial;
    Answer([this, oState] {
      m_oService.m_oState = oState;
      m_oService.TellStatus();
    });
  }
  void Failed(const ordered_json& oError) override {
    Answer([this, oError] { m_oService.Tell({{"event", "error"}, {"error", oError}}); });
  }
  void Answer(std::function<void()> fnAnswer) override {
    m_oService.m_oOutbox.PutAction(std::move(fnAnswer));
  }

 private:
  ClService& m_oService;
  std::string m_sSerial;
};

ClService::ClService(const ClLibrary& oLibrary, StServiceOptions oOptions, ClGate oGate,
                     std::function<void()> fnWake)
    : m_oLibrary(oLibrary),
      m_oOptions(std::move(oOptions)),
      m_oGate(std::move(oGate)),
      m_oSimulator(oLibrary.ScanLibrary().sPath),
      m_oClaim(m_oOptions.tClaimLife),
      m_sScene(ClSimulatorControl::IsScene(m_oOptions.sScene) ? m_oOptions.sScene : ""),
      m_oOutbox(std::move(fnWake)),
      m_pListener(std::make_unique<ClListener>(*this)),
      m_pStation(std::make_unique<ClStation>(oLibrary, m_oOptions.sSerial, *m_pListener)) {}

ClService::~ClService() = default;

void ClService::Handle(const StRequest& oRequest, const FnAnswer& fnAnswer) {
  try {
    m_oGate.CheckHost(oRequest);
    ExpireClaim();
    ClApi(*this).Handle(oRequest, fnAnswer);
  } catch (const std::exception&) {
    fnAnswer(CurrentErrorAnswer());
  }
}

void ClService::CheckSocket(const StRequest& oRequest) const {
  m_oGate.CheckHost(oRequest);
  if (oRequest.sPath != cszEvents)
    throw ClServiceError(404, "NOT_FOUND", "there is no WebSocket at \"" + oRequest.sPath + "\"",
                         "Open it at /api/events.");
  m_oGate.CheckSocketToken(oRequest);
  if (m_aClients.size() >= cnMostClients)
    throw ClServiceError(503, "TOO_MANY_CLIENTS",
                         "there are " + std::to_string(m_aClients.size()) + " clients, which is the limit",
                         "Close another page or program that watches the scanner.");
}

unsigned int ClService::Join(ClSocket& oSocket) {
  m_aClients[++m_nLastClient].pSocket = &oSocket;
  // The status names the number of clients, so that all hear of the new one.
  TellStatus();
  TellOne(m_nLastClient, ClaimEvent(m_nLastClient));
  if (m_oState.bConnected && m_oLibrary.ScanLibrary().bSimulated) {
    ordered_json oEvent = {{"event", "device"}};
    oEvent.update(JsonOf(m_oDevice));
    TellOne(m_nLastClient, oEvent);
  }
  return m_nLastClient;
}

void ClService::Leave(unsigned int nClient) {
  m_aClients.erase(nClient);
  m_oClaim.Unbind(nClient, Clock::now());
  TellStatus();
}

void ClService::Message(unsigned int nClient, const std::string& sText) {
  try {
    ExpireClaim();
    Obey(nClient, ReadObject(sText));
  } catch (const std::exception&) {
    TellOne(nClient, {{"event", "error"}, {"error", CurrentError()}});
  }
}

void ClService::Obey(unsigned int nClient, const ordered_json& oMessage) {
  NeedKeys(oMessage, "name claim format scale platen seen");
  if (oMessage.contains("seen"))
    m_aClients.at(nClient).pSocket->Flow().Seen(
        static_cast<uint32_t>(NumberIn(oMessage, "seen", 0, 0x7FFFFFFF)));
  if (oMessage.contains("name")) m_aClients.at(nClient).sName = TextIn(oMessage, "name", cnMostName);
  if (oMessage.contains("claim")) {
    m_oClaim.Bind(TextIn(oMessage, "claim", cnMostName), nClient, Clock::now());
    TellOne(nClient, ClaimEvent(nClient));
  }
  if (oMessage.contains("format") || oMessage.contains("scale")) SetFormat(nClient, oMessage);
  if (oMessage.contains("platen")) Drag(nClient, oMessage["platen"]);
  m_aClients.at(nClient).pSocket->Pump();
}

void ClService::SetFormat(unsigned int nClient, const ordered_json& oMessage) {
  const std::string sFormat = oMessage.contains("format") ? TextIn(oMessage, "format", cnMostName) : "grey";
  if (sFormat != "grey" && sFormat != "jpeg")
    throw BadRequest("\"format\" is neither \"grey\" nor \"jpeg\": \"" + sFormat + "\"");
  const long nScale = oMessage.contains("scale") ? NumberIn(oMessage, "scale", 1, 2) : 1;
  m_aClients.at(nClient).pSocket->Flow().SetForm(sFormat == "jpeg" ? eFormatJpeg : eFormatGrey,
                                                 static_cast<unsigned int>(nScale));
}

void ClService::Drag(unsigned int nClient, const ordered_json& oPlaten) {
  if (!m_oClaim.IsOf(nClient))
    throw ClServiceError(409, m_oClaim.IsHeld() ? "CLAIMED" : "CLAIM_NEEDED",
                         "this WebSocket has not named the claim that holds the scanner",
                         "Send {\"claim\": …} with what POST /api/claim has answered.");
  CheckPlaten(oPlaten);
  m_sDragged = Dump(oPlaten);
  m_oPlaten = oPlaten;
  m_nDragger = nClient;
  if (!m_bLaying) LayNext();
}

void ClService::LayNext() {
  m_bLaying = !m_sDragged.empty();
  if (!m_bLaying) return;
  m_oWorker.Post([this, sPlaten = std::move(m_sDragged), sSerial = m_oState.sSerial, nClient = m_nDragger] {
    ordered_json oError;
    try {
      m_oSimulator.Lay(sSerial, sPlaten);
    } catch (const std::exception&) {
      oError = CurrentError();
    }
    m_oOutbox.PutAction([this, oError, nClient] {
      if (!oError.is_null()) TellOne(nClient, {{"event", "error"}, {"error", oError}});
      LayNext();
    });
  });
  m_sDragged.clear();
}

ordered_json ClService::Status() const {
  using namespace CaptureLimits;
  const StScanLibrary& oScanLibrary = m_oLibrary.ScanLibrary();
  const std::string& sVersion = m_oState.sScanLibraryVersion;
  ordered_json oStatus = {
      {"serial", m_oState.sSerial.empty() ? ordered_json() : ordered_json(m_oState.sSerial)},
      {"simulated", oScanLibrary.bSimulated},
      {"scanLibrary",
       {{"path", oScanLibrary.sPath},
        {"version", sVersion.empty() ? ordered_json() : ordered_json(sVersion)}}},
      {"version", ClLibrary::Version()},
      {"connected", m_oState.bConnected},
      {"mode", m_oState.sMode},
      {"holder", m_oClaim.IsHeld() ? ordered_json(m_oClaim.Holder()) : ordered_json()},
      {"clients", m_aClients.size()},
      {"error", m_oState.oError},
      {"limits",
       {{"noFingerPixels", cnNoFingerPixels},
        {"stillMotion", cnStillMotion},
        {"steadyShare", cdSteadyShare},
        {"minScore", cdMinScore}}},
      {"forms", m_oState.oForms},
      {"condition", m_oState.nCondition}};
  return oStatus;
}

ordered_json ClService::ClaimEvent(unsigned int nClient) const {
  return {{"event", "claim"},
          {"holder", m_oClaim.IsHeld() ? ordered_json(m_oClaim.Holder()) : ordered_json()},
          {"yours", m_oClaim.IsOf(nClient)}};
}

void ClService::ExpireClaim() {
  if (m_oClaim.Expire(Clock::now())) TellClaim();
}

void ClService::TellClaim() {
  for (const auto& [nClient, oClient] : m_aClients) TellOne(nClient, ClaimEvent(nClient));
  TellStatus();
}

void ClService::TellStatus() {
  ordered_json oEvent = {{"event", "status"}};
  oEvent.update(Status());
  Tell(oEvent);
}

void ClService::Tell(const ordered_json& oEvent) {
  Forward(std::make_shared<const std::string>(Dump(oEvent)), false);
}

void ClService::TellOne(unsigned int nClient, const ordered_json& oEvent) {
  const auto iClient = m_aClients.find(nClient);
  if (iClient == m_aClients.end()) return;
  iClient->second.pSocket->Flow().Offer(std::make_shared<const std::string>(Dump(oEvent)));
  iClient->second.pSocket->Pump();
}

void ClService::Forward(const Text& pText, bool bMayBeLost) {
  for (const auto& [nClient, oClient] : m_aClients) {
    oClient.pSocket->Flow().Offer(pText, bMayBeLost);
    oClient.pSocket->Pump();
  }
}

void ClService::Drain() {
  m_oOutbox.Take(m_oContent);
  for (const auto& fnAction : m_oContent.aActions) fnAction();
  for (std::string& sFacts : m_oContent.aFacts)
    Forward(std::make_shared<const std::string>(std::move(sFacts)), true);
  if (m_oContent.pFrame == nullptr) return;
  for (const auto& [nClient, oClient] : m_aClients) {
    oClient.pSocket->Flow().Offer(m_oContent.pFrame);
    oClient.pSocket->Pump();
  }
  m_oContent.pFrame.reset();
}

void ClService::Tick() {
  ExpireClaim();
  if (m_oLibrary.ScanLibrary().bSimulated && !m_bLooking && !m_aClients.empty()) LookAtDevice();
}

void ClService::LookAtDevice() {
  m_bLooking = true;
  m_oWorker.Post([this, sSerial = m_oState.sSerial] {
    const auto pDevice = std::make_shared<StDevice>();
    bool bSeen = true;
    try {
      *pDevice = m_oSimulator.Look(sSerial);
    } catch (const std::exception&) {
      // The scene has no such scanner for the moment.
      bSeen = false;
    }
    m_oOutbox.PutAction([this, pDevice, bSeen] {
      m_bLooking = false;
      if (!bSeen || pDevice->LooksLike(m_oDevice)) return;
      m_oDevice = *pDevice;
      ordered_json oEvent = {{"event", "device"}};
      oEvent.update(JsonOf(m_oDevice));
      Tell(oEvent);
    });
  });
}

void ClService::Keep(StTaken oTaken, const std::string& sSerial, const FnAnswer& fnAnswer) {
  const auto pResult = std::make_shared<StResult>();
  pResult->nId = ++m_nLastResult;
  const auto tNow = std::chrono::system_clock::now();
  const bool bSimulated = m_oLibrary.ScanLibrary().bSimulated;
  ordered_json& oFacts = pResult->oFacts;
  oFacts = {{"id", pResult->nId},
            {"kind", oTaken.oFacts["kind"]},
            {"mode", oTaken.oFacts["mode"]},
            {"time", TimeText(tNow, "%Y-%m-%dT%H:%M:%S")},
            {"serial", sSerial},
            {"simulated", bSimulated}};
  oFacts.update(oTaken.oFacts);
  oFacts["pictures"] = ordered_json::array();
  const StPictureFacts oPictureFacts{ClLibrary::Software(), sSerial, oFacts["mode"], bSimulated,
                                     !StandIn::ReplayFile().empty()};
  const std::string sStem = TimeText(tNow, "%Y%m%dT%H%M%S") + "-" + std::to_string(pResult->nId) + "-";
  const auto pTaken = std::make_shared<StTaken>(std::move(oTaken));
  m_oWorker.Post([this, pResult, pTaken, oPictureFacts, sStem, fnAnswer] {
    ordered_json oError;
    for (auto& [sName, oPicture] : pTaken->aPictures) {
      try {
        const std::vector<unsigned char> aBytes = EncodePng(oPicture, oPictureFacts);
        pResult->oFacts["pictures"].push_back(
            {{"name", sName},
             {"url", "/api/results/" + std::to_string(pResult->nId) + "/" + sName + ".png"},
             {"width", oPicture.nWidth},
             {"height", oPicture.nHeight},
             {"pelsPerMetre", oPicture.nPelsX}});
        pResult->aPictures.emplace_back(sName, std::string(aBytes.begin(), aBytes.end()));
        if (!m_oOptions.sFolder.empty())
          WriteFile(aBytes, (std::filesystem::path(m_oOptions.sFolder) / (sStem + sName + ".png")).string());
      } catch (const std::exception&) {
        oError = CurrentError();
      }
    }
    m_oOutbox.PutAction([this, pResult, fnAnswer, oError] {
      if (!oError.is_null()) Tell({{"event", "error"}, {"error", oError}});
      Store(pResult, fnAnswer);
    });
  });
}

void ClService::Store(const std::shared_ptr<StResult>& pResult, const FnAnswer& fnAnswer) {
  if (fnAnswer != nullptr) fnAnswer(AnswerOf(pResult->oFacts));
  ordered_json oEvent = {{"event", "result"}};
  oEvent.update(pResult->oFacts);
  m_oResults.Add(std::move(*pResult));
  Tell(oEvent);
}

void ClService::CloseSockets() {
  for (const auto& [nClient, oClient] : m_aClients) oClient.pSocket->Close();
}

bool ClService::End() {
  return m_pStation->End();
}

}  // namespace Serve
