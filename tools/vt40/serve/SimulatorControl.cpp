// Functions by name, and what is asked of scenes that come from outside.
#include "SimulatorControl.h"

#include <dlfcn.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "Http.h"
#include "KelvarinVTScanAPI/VTSim.h"

namespace Serve {
namespace {

using nlohmann::ordered_json;

constexpr unsigned int cnPelsPerMetre = 19685;
constexpr size_t cnMostSeedDigits = 15;

/// Refuses files at any depth.
void RefuseFiles(const ordered_json& oValue) {
  if (!oValue.is_structured()) return;
  for (const auto& oItem : oValue.items()) {
    if (oValue.is_object() && oItem.key() == "file")
      throw BadRequest("the key \"file\" is not taken from here: prints are made by their seeds");
    RefuseFiles(oItem.value());
  }
}

}  // namespace

bool StDevice::LooksLike(const StDevice& o) const {
  return anLeds == o.anLeds && asDisplay == o.asDisplay && nBeeps == o.nBeeps && bLight == o.bLight;
}

ordered_json JsonOf(const StDevice& oDevice) {
  return {{"leds", oDevice.anLeds},
          {"display", oDevice.asDisplay},
          {"beeps", oDevice.nBeeps},
          {"light", oDevice.bLight}};
}

ClSimulatorControl::ClSimulatorControl(const std::string& sScanLibrary)
    : m_pLibrary(sScanLibrary.empty() ? nullptr : dlopen(sScanLibrary.c_str(), RTLD_NOW | RTLD_NOLOAD)) {}

ClSimulatorControl::~ClSimulatorControl() {
  if (m_pLibrary != nullptr) dlclose(m_pLibrary);
}

template <typename TFunction>
TFunction* ClSimulatorControl::Find(const char* szName) const {
  if (m_pLibrary == nullptr || dlsym(m_pLibrary, "VTSimLoadScene") == nullptr)
    throw ClServiceError(404, "NOT_SIMULATED", "the scanner is not simulated",
                         "Start the service with --simulate to try this.");
  void* pFunction = dlsym(m_pLibrary, szName);
  if (pFunction == nullptr)
    throw ClServiceError(501, "NOT_IMPLEMENTED", std::string("this simulator has no ") + szName,
                         "Install the simulator of the same version.");
  return reinterpret_cast<TFunction*>(pFunction);
}

#define KLV_SIMULATOR_CALL(Name) (*Find<decltype(Name)>(#Name))

void ClSimulatorControl::Check(long nResult) const {
  if (nResult != 0) throw BadRequest(KLV_SIMULATOR_CALL(VTSimLastError)());
}

const std::vector<std::string>& ClSimulatorControl::Scenes() {
  static const std::vector<std::string> s_aScenes = {
      "empty",         "finger",       "slap-right",   "slap-left",    "thumbs",
      "settling-slap", "sliding-slap", "early-lift",   "dirty",        "dirty-slap",
      "fake-finger",   "roll-right",   "roll-left",    "roll-slipped", "roll-fast",
      "roll-back",     "roll-twisted", "roll-short",   "signature",    "dot",
      "swipe-right",   "swipe-left",   "resting-hand", "target",       "quality"};
  return s_aScenes;
}

bool ClSimulatorControl::IsScene(const std::string& sScene) {
  const size_t nColon = sScene.find(':');
  const auto& aScenes = Scenes();
  if (std::find(aScenes.begin(), aScenes.end(), sScene.substr(0, nColon)) == aScenes.end()) return false;
  if (nColon == std::string::npos) return true;
  const std::string sSeed = sScene.substr(nColon + 1);
  return !sSeed.empty() && sSeed.size() <= cnMostSeedDigits &&
         sSeed.find_first_not_of("0123456789") == std::string::npos;
}

void ClSimulatorControl::LoadScene(const std::string& sScene) const {
  Check(KLV_SIMULATOR_CALL(VTSimLoadScene)(sScene.c_str()));
}

void ClSimulatorControl::Lay(const std::string& sSerial, const std::string& sPlaten) const {
  Check(KLV_SIMULATOR_CALL(VTSimLay)(sSerial.c_str(), sPlaten.c_str()));
}

void ClSimulatorControl::SetPlugged(const std::string& sSerial, bool bPlugged) const {
  Check(bPlugged ? KLV_SIMULATOR_CALL(VTSimPlug)(sSerial.c_str())
                 : KLV_SIMULATOR_CALL(VTSimUnplug)(sSerial.c_str()));
}

void ClSimulatorControl::FailCall(const std::string& sFunction, unsigned int nFirst, unsigned int nRepeat,
                                  long nResult) const {
  Check(KLV_SIMULATOR_CALL(VTSimFailCall)(sFunction.c_str(), nFirst, nRepeat, nResult));
}

void ClSimulatorControl::Delay(const std::string& sSerial, unsigned int nMilliseconds) const {
  Check(KLV_SIMULATOR_CALL(VTSimDelaySequence)(sSerial.c_str(), nMilliseconds));
}

void ClSimulatorControl::ClearFaults() const {
  Check(KLV_SIMULATOR_CALL(VTSimClearFaults)());
}

ClPicture ClSimulatorControl::Truth(const std::string& sSerial) const {
  ClPicture oPicture;
  oPicture.nWidth = oPicture.nHeight = VTSIM_PICTURE_SIDE;
  oPicture.nPelsX = oPicture.nPelsY = cnPelsPerMetre;
  unsigned int nSize = VTSIM_PICTURE_SIDE * VTSIM_PICTURE_SIDE;
  oPicture.aPixels.resize(nSize);
  Check(KLV_SIMULATOR_CALL(VTSimGetGroundTruth)(sSerial.c_str(), oPicture.aPixels.data(), nullptr, &nSize));
  return oPicture;
}

StDevice ClSimulatorControl::Look(const std::string& sSerial) const {
  VTSimState oState{};
  oState.nStructSize = sizeof(oState);
  Check(KLV_SIMULATOR_CALL(VTSimGetState)(sSerial.c_str(), &oState));
  VTSimDisplay oDisplay{};
  oDisplay.nStructSize = sizeof(oDisplay);
  Check(KLV_SIMULATOR_CALL(VTSimGetDisplay)(sSerial.c_str(), &oDisplay));
  constexpr unsigned int cnMostLights = 256;
  std::vector<VTSimLight> aLights(cnMostLights);
  unsigned int nLights = cnMostLights;
  Check(KLV_SIMULATOR_CALL(VTSimGetLights)(sSerial.c_str(), aLights.data(), &nLights));
  StDevice oDevice;
  oDevice.nBeeps = oState.nBeeps;
  oDevice.bPlugged = oState.bPlugged != 0;
  oDevice.bLight = oState.bCaptureEnabled != 0;
  oDevice.dTime = oState.dTime;
  for (size_t n = 0; n < oDevice.asDisplay.size(); ++n) oDevice.asDisplay[n] = oDisplay.aszLines[n];
  // The newest word of the status LEDs holds the states of all.
  for (unsigned int n = nLights; n-- > 0;) {
    if (aLights[n].nKind != VTSIM_LIGHT_STATUS) continue;
    std::copy(std::begin(aLights[n].anLed), std::end(aLights[n].anLed), oDevice.anLeds.begin());
    break;
  }
  return oDevice;
}

void CheckPlaten(const ordered_json& oPlaten) {
  NeedKeys(oPlaten, "fingers pen dirt ambient target noise");
  RefuseFiles(oPlaten);
}

}  // namespace Serve
