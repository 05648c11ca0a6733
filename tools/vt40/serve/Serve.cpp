// The serve command.
#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "Commands.h"
#include "Interruption.h"
#include "Report.h"
#include "Scanner.h"
#include "Scene.h"
#include "Server.h"
#include "Service.h"

namespace {

using namespace Serve;

/// Starts the user's browser, which goes on by itself.
void OpenBrowser(const std::string& sUrl) {
  const std::string sProgram = "xdg-open";
  std::string sArgument = sUrl;
  char* apArguments[] = {const_cast<char*>(sProgram.c_str()), sArgument.data(), nullptr};
  posix_spawn_file_actions_t oFiles;
  posix_spawn_file_actions_init(&oFiles);
  // What a browser prints is no output of the tool.
  posix_spawn_file_actions_addopen(&oFiles, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  // Nor is the port the browser's, once the tool has ended.
  posix_spawn_file_actions_addclosefrom_np(&oFiles, STDERR_FILENO + 1);
  pid_t nChild = 0;
  const int nFailed = posix_spawnp(&nChild, sProgram.c_str(), &oFiles, nullptr, apArguments, environ);
  posix_spawn_file_actions_destroy(&oFiles);
  if (nFailed != 0)
    std::fprintf(stderr, "vt40: no browser was started: %s is missing; open %s\n", sProgram.c_str(),
                 sUrl.c_str());
}

/// The token that was given, or a made one where others can reach the service.
std::string ChooseToken(const StServeOptions& oOptions) {
  if (!oOptions.sToken.empty() || IsLoopback(oOptions.sHost)) return oOptions.sToken;
  std::fprintf(stderr, "vt40: others can reach %s: a token was made, without which nothing is answered\n",
               oOptions.sHost.c_str());
  return RandomText(16);
}

void CheckToken(const std::string& sToken) {
  for (const char c : sToken) {
    const bool bPlain = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                        c == '-' || c == '_' || c == '.';
    if (!bPlain)
      throw ClToolError(eExitUsage,
                        "--token takes letters, digits and -_. only, as it stands in URLs and header fields");
  }
}

}  // namespace

void RunServe(const StCommonOptions& oCommon, const StServeOptions& oOptions, ClReport& oReport) {
  CheckToken(oOptions.sToken);
  if (!oOptions.sFolder.empty()) PrepareFolder(oOptions.sFolder);
  PaceScenes();
  ChooseScene(oCommon);
  ClServer oServer(oOptions.sHost, static_cast<unsigned short>(oOptions.nPort));
  const std::string sToken = ChooseToken(oOptions);
  const ClLibrary oLibrary;
  oReport.Use(oLibrary, "");
  const char* szScene = std::getenv("KELVARIN_VTSIM_SCENE");
  StServiceOptions oServiceOptions;
  oServiceOptions.sSerial = oCommon.sSerial;
  oServiceOptions.sFolder = oOptions.sFolder;
  oServiceOptions.sScene = szScene != nullptr ? szScene : "empty";
  oServiceOptions.tClaimLife = std::chrono::milliseconds(static_cast<long>(1000 * oOptions.dClaimLife));
  ClService oService(oLibrary, oServiceOptions, ClGate(oOptions.sHost, oServer.Port(), sToken),
                     [&oServer] { oServer.Wake(); });
  const std::string sUrl = "http://" + Authority(oOptions.sHost, oServer.Port()) + "/" +
                           (sToken.empty() ? "" : "#token=" + sToken);
  oReport.Line(sUrl);
  oReport.Facts()["url"] = sUrl;
  oReport.Event(nullptr, "listening", {{"url", sUrl}});
  if (oOptions.bOpen) OpenBrowser(sUrl);
  // A thread that hangs in the scan library must not keep the program.
  if (!oServer.Run(oService)) std::_Exit(Interruption::ExitCode());
  Interruption::Check();
}
