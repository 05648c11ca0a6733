// From the command line to the exit code.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "CommandLine.h"
#include "Help.h"
#include "Interruption.h"
#include "Output.h"
#include "Report.h"
#include "Scanner.h"

namespace {

constexpr char cszExitCodes[] =
    "Exit codes: 0 ok, 1 negative verdict, 2 usage, 3 no scanner, 4 scanner busy, 5 time-out, 6 scanner "
    "lost, "
    "7 file or output, 8 calibration data, 9 scan library, 10 liveness library, 11 other failure, 130 and "
    "143 "
    "signals.";

/// The form of the output, before the line is understood: a mistake in it is told in the same form.
ClOutput::EForm FormOf(int nArguments, char** ppArguments) {
  const auto Has = [&](const char* szFlag) {
    return std::any_of(ppArguments + 1, ppArguments + nArguments,
                       [=](const char* szArgument) { return std::strcmp(szArgument, szFlag) == 0; });
  };
  return Has("--json-lines") ? ClOutput::eJsonLines : Has("--json") ? ClOutput::eJson : ClOutput::eText;
}

/// Reads the line and runs its command; false when it asks for help, which is printed.
bool RunLine(int nArguments, char** ppArguments, ClOutput& oOutput, ClReport& oReport) {
  CLI::App oApp("Captures fingerprints with VT40 live-scanners.", "vt40");
  oApp.footer(cszExitCodes);
  oApp.formatter(MakeHelp());
  oApp.set_version_flag("--version", ClLibrary::Version());
  StCommandLine oLine;
  DescribeCommands(oApp, oLine);
  try {
    oApp.parse(nArguments, ppArguments);
  } catch (const CLI::ParseError& oError) {
    if (oError.get_exit_code() != 0) throw ClToolError(eExitUsage, DescribeMistake(oApp, oError));
    std::ostringstream oHelp;
    oApp.exit(oError, oHelp, oHelp);
    oOutput.Text(oHelp.str());
    return false;
  }
  StandIn::Choose(oLine.oRecording);
  oLine.fnCommand(oReport);
  return true;
}

EExitCode RunTool(int nArguments, char** ppArguments) {
  try {
    ClOutput oOutput(FormOf(nArguments, ppArguments));
    ClReport oReport(oOutput);
    try {
      if (!RunLine(nArguments, ppArguments, oOutput, oReport)) return eExitOk;
    } catch (const ClToolError& oError) {
      oReport.Fail(oError);
    } catch (const std::exception& oError) {
      oReport.SetVerdict(eExitFailure, oError.what());
    }
    return oReport.Finish();
  } catch (const ClToolError& oError) {
    // The output itself cannot be written.
    std::fprintf(stderr, "vt40: %s\n", oError.what());
    return oError.Code();
  }
}

}  // namespace

int main(int nArguments, char** ppArguments) {
  Interruption::Catch();
  const EExitCode eExit = RunTool(nArguments, ppArguments);
  std::fflush(nullptr);
  // A call that was given up still runs in its thread, which needs what the end of a program takes away.
  if (ClWaitingCall::IsAnyLeft()) {
    StandIn::Finish();
    std::_Exit(eExit);
  }
  return eExit;
}
