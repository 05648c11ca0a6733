// Stand-ins get what they need from the environment, as in any other application.
#include "StandIn.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "KelvarinLiveScannerVT40.h"
#include "ToolError.h"

namespace {

constexpr char cszScan[] = "libkelvarinvtscanapi.gcc.Release.32.so";
constexpr char cszLiveness[] = "libkelvarinfakefingerdetectionvt40.gcc.Release.32.so";
constexpr char cszSimulate[] = "KELVARIN_SDK_SIMULATE";

StRecordingOptions s_oOptions;
bool s_bSimulated = false;  // the simulated scanner was asked for
void* s_pLibrary = nullptr;

bool IsSet(const char* szVariable) {
  const char* szValue = std::getenv(szVariable);
  return szValue != nullptr && szValue[0] != '\0' && std::strcmp(szValue, "0") != 0;
}

/// Beside the library under the tool.
std::string Folder(const char* szName) {
  Dl_info oInfo{};
  dladdr(reinterpret_cast<const void*>(&LS_VT40Initialize), &oInfo);
  const std::filesystem::path oLibrary(oInfo.dli_fname != nullptr ? oInfo.dli_fname : "");
  return (oLibrary.parent_path() / "kelvarin-vt40" / szName).string();
}

void* LoadFrom(const std::string& sFolder, const char* szName) {
  void* pLibrary = dlopen((sFolder + "/" + szName).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (pLibrary != nullptr) return pLibrary;
  const char* szReason = dlerror();
  throw ClToolError(eExitScanLibrary, std::string("recorder and player are not installed: ") +
                                          (szReason != nullptr ? szReason : szName));
}

template <typename TResult>
TResult Ask(const char* szFunction, TResult oOtherwise) {
  const auto pfn =
      reinterpret_cast<TResult (*)()>(s_pLibrary != nullptr ? dlsym(s_pLibrary, szFunction) : nullptr);
  return pfn != nullptr ? pfn() : oOtherwise;
}

/// The recorder goes on without its file; who asks for a recording wants to hear of it before a finger is
/// captured.
void NeedWritable(const std::string& sFile) {
  const int nFile = open(sFile.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY, 0600);
  if (nFile < 0) throw ClToolError(eExitFile, "\"" + sFile + "\" cannot be written: " + std::strerror(errno));
  close(nFile);
}

void LoadRecorder() {
  NeedWritable(s_oOptions.sRecordFile);
  setenv("KELVARIN_VT40_RECORD_FILE", s_oOptions.sRecordFile.c_str(), 1);
  if (s_oOptions.bBlur) setenv("KELVARIN_VT40_RECORD_BLUR", "1", 1);
  if (s_bSimulated) {
    setenv("KELVARIN_VT40_RECORD_FROM", Folder("simulator").c_str(), 1);
    // Without a clock frames come faster than any scanner's, and faster than they can be written: what a
    // recording of that is about would be lost in it. Scenes that want it so are held up by the recorder.
    setenv("KELVARIN_VTSIM_PACING", "real", 0);
    const char* szPacing = std::getenv("KELVARIN_VTSIM_PACING");
    if (szPacing != nullptr && std::strcmp(szPacing, "real") != 0)
      setenv("KELVARIN_VT40_RECORD_WAIT", "1", 0);
  }
  s_pLibrary = LoadFrom(Folder("recorder"), cszScan);
  LoadFrom(Folder("recorder"), cszLiveness);
}

void LoadPlayer() {
  setenv("KELVARIN_VT40_REPLAY_FILE", s_oOptions.sReplayFile.c_str(), 1);
  setenv("KELVARIN_VT40_REPLAY_SPEED", s_oOptions.sSpeed.c_str(), 1);
  s_pLibrary = LoadFrom(Folder("player"), cszScan);
  LoadFrom(Folder("player"), cszLiveness);
  const std::string sReason = Ask<const char*>("VTPlayOpen", "");
  if (!sReason.empty()) throw ClToolError(eExitFile, sReason);
}

}  // namespace

void StandIn::Choose(const StRecordingOptions& oOptions) {
  s_oOptions = oOptions;
}

void StandIn::Load() {
  if (s_pLibrary != nullptr || (s_oOptions.sRecordFile.empty() && s_oOptions.sReplayFile.empty())) return;
  s_bSimulated = IsSet(cszSimulate);
  if (s_bSimulated && !s_oOptions.sReplayFile.empty())
    throw ClToolError(eExitUsage,
                      "a replay takes no simulated scanner: leave --simulate, --scene and --print out");
  // The library would open the simulated one by its path.
  setenv(cszSimulate, "0", 1);
  if (!s_oOptions.sRecordFile.empty()) LoadRecorder();
  if (!s_oOptions.sReplayFile.empty()) LoadPlayer();
}

void StandIn::CheckUsed() {
  if (s_pLibrary == nullptr) return;
  const char* szFunction = s_oOptions.sReplayFile.empty() ? "VTRecIsUsed" : "VTPlayIsUsed";
  if (Ask<int>(szFunction, 0) != 0) return;
  throw ClToolError(
      eExitScanLibrary,
      std::string("a scan library in the working directory or in ../KelvarinVTScanAPI comes before ") +
          (s_oOptions.sReplayFile.empty() ? "the recorder" : "the player") +
          "; start vt40 in another directory");
}

void StandIn::Finish() {
  const auto pfn =
      reinterpret_cast<void (*)()>(s_pLibrary != nullptr ? dlsym(s_pLibrary, "VTRecFinish") : nullptr);
  if (pfn != nullptr) pfn();
}

bool StandIn::IsSimulated() {
  return Ask<int>(s_oOptions.sReplayFile.empty() ? "VTRecIsSimulated" : "VTPlayIsSimulated", 0) != 0;
}

const std::string& StandIn::ReplayFile() {
  return s_oOptions.sReplayFile;
}

const std::string& StandIn::RecordFile() {
  return s_oOptions.sRecordFile;
}

bool StandIn::IsSimulationAskedFor() {
  return s_bSimulated || IsSet(cszSimulate);
}
