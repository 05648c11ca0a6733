// The command line of the tool.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <functional>

#include "Commands.h"
#include "Scanner.h"
#include "ToolError.h"

namespace {

constexpr char cszExitCodes[] =
    "Exit codes: 0 ok, 1 negative verdict, 2 usage, 3 no scanner, 4 scanner busy, 5 time-out, 6 scanner "
    "lost, "
    "7 file error.";

void AddCommon(CLI::App& oCommand, StCommonOptions& oCommon) {
  oCommand.add_option("--serial", oCommon.sSerial,
                      "Serial number of the scanner; needed when there are several");
  oCommand.add_option("--scene", oCommon.sScene,
                      "Scene of the simulated scanner: a built-in name or a JSON file");
  oCommand.add_option("--print", oCommon.sPrintFile,
                      "PNG of a print for the platen of the simulated scanner");
  oCommand.add_flag("--json", oCommon.bJson, "Print facts as JSON");
}

int RunTool(int nArguments, char** ppArguments) {
  CLI::App oApp("Captures fingerprints with VT40 live-scanners.", "vt40");
  oApp.footer(cszExitCodes);
  oApp.require_subcommand(1);
  oApp.set_version_flag("--version", ClLibrary::Version());
  StCommonOptions oCommon;
  std::function<int()> fnCommand;

  CLI::App* pList = oApp.add_subcommand("list", "List the connected scanners");
  AddCommon(*pList, oCommon);
  pList->callback([&] { fnCommand = [&] { return RunList(oCommon); }; });

  CLI::App* pInfo = oApp.add_subcommand("info", "Tell versions, sizes and condition of a scanner");
  AddCommon(*pInfo, oCommon);
  pInfo->callback([&] { fnCommand = [&] { return RunInfo(oCommon); }; });

  StCaptureOptions oCapture;
  CLI::App* pCapture = oApp.add_subcommand("capture", "Capture fingers and write pictures");
  AddCommon(*pCapture, oCommon);
  pCapture
      ->add_option("--mode", oCapture.sMode, "off: one shot; preview: preview, then a capture; full: stream")
      ->check(CLI::IsMember({"off", "preview", "full"}))
      ->capture_default_str();
  pCapture->add_option("--out", oCapture.sFolder, "Folder for the pictures")->capture_default_str();
  pCapture->add_option("--format", oCapture.sFormat, "Format of the pictures")
      ->check(CLI::IsMember({"png", "bmp", "kif"}))
      ->capture_default_str();
  pCapture->add_option("--frames", oCapture.nFrames, "Images of the stream to wait for")
      ->check(CLI::Range(1, 100000))
      ->capture_default_str();
  pCapture->callback([&] { fnCommand = [&] { return RunCapture(oCommon, oCapture); }; });

  std::string sName;
  std::string sValue;
  CLI::App* pProperty = oApp.add_subcommand("property", "Read or set a property");
  pProperty->require_subcommand(1);
  CLI::App* pGet = pProperty->add_subcommand("get", "Print a property's value");
  AddCommon(*pGet, oCommon);
  pGet->add_option("name", sName, "Name of the property")->required();
  pGet->callback([&] { fnCommand = [&] { return RunPropertyGet(oCommon, sName); }; });
  CLI::App* pSet = pProperty->add_subcommand("set", "Set a property while the scanner is open");
  AddCommon(*pSet, oCommon);
  pSet->add_option("name", sName, "Name of the property")->required();
  pSet->add_option("value", sValue, "New value")->required();
  pSet->callback([&] { fnCommand = [&] { return RunPropertySet(oCommon, sName, sValue); }; });

  unsigned int nIndex = 0;
  unsigned int nState = 0;
  CLI::App* pLed = oApp.add_subcommand("led", "Set a status LED");
  AddCommon(*pLed, oCommon);
  pLed->add_option("index", nIndex, "LED, 0 to 11")->required()->check(CLI::Range(0, 11));
  pLed->add_option("state", nState, "State, 0 (off) to 7")->required()->check(CLI::Range(0, 7));
  pLed->callback([&] { fnCommand = [&] { return RunLed(oCommon, nIndex, nState); }; });

  unsigned int nArg1 = 300;
  unsigned int nArg2 = 100;
  CLI::App* pBeep = oApp.add_subcommand("beep", "Sound the buzzer");
  AddCommon(*pBeep, oCommon);
  pBeep->add_option("first", nArg1, "First value for the scanner")->capture_default_str();
  pBeep->add_option("second", nArg2, "Second value for the scanner")->capture_default_str();
  pBeep->callback([&] { fnCommand = [&] { return RunBeep(oCommon, nArg1, nArg2); }; });

  try {
    oApp.parse(nArguments, ppArguments);
  } catch (const CLI::ParseError& oError) {
    return oApp.exit(oError) == 0 ? eExitOk : eExitUsage;
  }
  return fnCommand();
}

}  // namespace

int main(int nArguments, char** ppArguments) {
  try {
    return RunTool(nArguments, ppArguments);
  } catch (const ClToolError& oError) {
    std::fprintf(stderr, "vt40: %s\n", oError.what());
    return oError.Code();
  } catch (const std::exception& oError) {
    std::fprintf(stderr, "vt40: %s\n", oError.what());
    return eExitUsage;
  }
}
