// The calls that work the simulated scanner.
#include "Api.h"
#include "Service.h"

namespace Serve {
namespace {

using nlohmann::ordered_json;

constexpr double cdPlatenMm = 81.28;
constexpr long cnMostDelayMs = 60000;
constexpr long cnMostCalls = 1000000;
constexpr size_t cnMostFunction = 64;
constexpr size_t cnMostScene = 64;

}  // namespace

void ClApi::NeedSimulator() const {
  if (!m_oService.m_oLibrary.ScanLibrary().bSimulated)
    throw ClServiceError(404, "NOT_SIMULATED", "the scanner is not simulated",
                         "Start the service with --simulate to try this.");
}

void ClApi::InWorker(std::function<StAnswer()> fnWork, const FnAnswer& fnAnswer) {
  NeedSimulator();
  m_oService.m_oWorker.Post([pService = &m_oService, fnWork = std::move(fnWork), fnAnswer] {
    StAnswer oAnswer;
    try {
      oAnswer = fnWork();
    } catch (const std::exception&) {
      oAnswer = CurrentErrorAnswer();
    }
    pService->m_oOutbox.PutAction([fnAnswer, oAnswer = std::move(oAnswer)] { fnAnswer(oAnswer); });
  });
}

void ClApi::GetSimulator(const StCall&, const FnAnswer& fnAnswer) {
  const std::string sSerial = m_oService.m_oState.sSerial;
  const ordered_json oScene =
      m_oService.m_sScene.empty() ? ordered_json() : ordered_json(m_oService.m_sScene);
  InWorker(
      [pSimulator = &m_oService.m_oSimulator, sSerial, oScene, oPlaten = m_oService.m_oPlaten] {
        const StDevice oDevice = pSimulator->Look(sSerial);
        ordered_json oAnswer = {{"scenes", ClSimulatorControl::Scenes()},
                                {"scene", oScene},
                                {"time", oDevice.dTime},
                                {"plugged", oDevice.bPlugged},
                                {"platen", oPlaten},
                                {"widthMm", cdPlatenMm},
                                {"heightMm", cdPlatenMm}};
        return AnswerOf(oAnswer);
      },
      fnAnswer);
}

void ClApi::PutScene(const StCall& oCall, const FnAnswer& fnAnswer) {
  NeedSimulator();
  NeedKeys(oCall.oBody, "scene");
  const std::string sScene = TextIn(oCall.oBody, "scene", cnMostScene);
  // A path would let a page try the files of this machine.
  if (!ClSimulatorControl::IsScene(sScene))
    throw BadRequest("\"" + sScene + "\" is no built-in scene with or without a seed");
  SetScene(sScene, fnAnswer);
}

void ClApi::SetScene(const std::string& sScene, const FnAnswer& fnAnswer) {
  ClService* pService = &m_oService;
  const auto Renewed = [pService, sScene, fnAnswer](const StAnswer& oAnswer) {
    if (oAnswer.nStatus != 200) return fnAnswer(oAnswer);
    pService->m_sScene = sScene;
    pService->m_oPlaten = nullptr;
    fnAnswer(AnswerOf({{"scene", sScene}}));
  };
  const auto Renew = [](ClStation& oStation) {
    oStation.Renew();
    return ordered_json();
  };
  InWorker(
      [pService, sScene] {
        pService->m_oSimulator.LoadScene(sScene);
        return StAnswer();
      },
      [pService, Renew, Renewed](const StAnswer& oAnswer) {
        if (oAnswer.nStatus != 200) return Renewed(oAnswer);
        pService->m_pStation->Ask(Renew, Renewed);
      });
}

void ClApi::PutPlaten(const StCall& oCall, const FnAnswer& fnAnswer) {
  NeedSimulator();
  CheckPlaten(oCall.oBody);
  ClService* pService = &m_oService;
  const ordered_json oPlaten = oCall.oBody;
  InWorker(
      [pService, oPlaten, sSerial = m_oService.m_oState.sSerial] {
        pService->m_oSimulator.Lay(sSerial, oPlaten.dump());
        return AnswerOf({{"platen", oPlaten}});
      },
      [pService, oPlaten, fnAnswer](const StAnswer& oAnswer) {
        if (oAnswer.nStatus == 200) pService->m_oPlaten = oPlaten;
        fnAnswer(oAnswer);
      });
}

void ClApi::PutPlugged(const StCall& oCall, const FnAnswer& fnAnswer) {
  NeedSimulator();
  NeedKeys(oCall.oBody, "plugged");
  const bool bPlugged = TruthIn(oCall.oBody, "plugged");
  InWorker(
      [pSimulator = &m_oService.m_oSimulator, sSerial = m_oService.m_oState.sSerial, bPlugged] {
        pSimulator->SetPlugged(sSerial, bPlugged);
        return AnswerOf({{"plugged", bPlugged}});
      },
      fnAnswer);
}

void ClApi::PostFaults(const StCall& oCall, const FnAnswer& fnAnswer) {
  NeedSimulator();
  const ordered_json& oBody = oCall.oBody;
  const ClSimulatorControl* pSimulator = &m_oService.m_oSimulator;
  const auto Answer = [oBody] { return AnswerOf(oBody); };
  if (oBody.contains("clear")) {
    NeedKeys(oBody, "clear");
    if (!TruthIn(oBody, "clear")) throw BadRequest("\"clear\" is false, which does nothing");
    return InWorker(
        [=] {
          pSimulator->ClearFaults();
          return Answer();
        },
        fnAnswer);
  }
  if (oBody.contains("delay")) {
    NeedKeys(oBody, "delay");
    const auto nDelay = static_cast<unsigned int>(NumberIn(oBody, "delay", 0, cnMostDelayMs));
    const std::string sSerial = m_oService.m_oState.sSerial;
    return InWorker(
        [=] {
          pSimulator->Delay(sSerial, nDelay);
          return Answer();
        },
        fnAnswer);
  }
  NeedKeys(oBody, "function first repeat result");
  const std::string sFunction = TextIn(oBody, "function", cnMostFunction);
  const auto nFirst = static_cast<unsigned int>(NumberIn(oBody, "first", 1, cnMostCalls));
  const auto nRepeat = static_cast<unsigned int>(NumberIn(oBody, "repeat", 0, cnMostCalls));
  const long nResult = NumberIn(oBody, "result", -99999, 99999);
  InWorker(
      [=] {
        pSimulator->FailCall(sFunction, nFirst, nRepeat, nResult);
        return Answer();
      },
      fnAnswer);
}

void ClApi::GetTruth(const StCall&, const FnAnswer& fnAnswer) {
  const std::string sSerial = m_oService.m_oState.sSerial;
  const StPictureFacts oFacts{ClLibrary::Software(), sSerial, "truth", true};
  InWorker(
      [pSimulator = &m_oService.m_oSimulator, sSerial, oFacts] {
        const std::vector<unsigned char> aBytes = EncodePng(pSimulator->Truth(sSerial), oFacts);
        return StAnswer{200, "image/png", std::string(aBytes.begin(), aBytes.end()), ""};
      },
      fnAnswer);
}

}  // namespace Serve
