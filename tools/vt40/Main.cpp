// The command line of the tool.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <functional>

#include "Commands.h"
#include "Scanner.h"
#include "ToolError.h"

namespace {

constexpr char cszExitCodes[] =
    "Exit codes: 0 ok, 1 negative verdict, 2 usage, 3 no scanner, 4 scanner busy, 5 time-out, "
    "6 scanner lost, 7 file error.";

/// Where the parser puts what it reads, and the command that was chosen.
struct StCommandLine {
  StCommonOptions oCommon;
  StCaptureOptions oCapture;
  StRollOptions oRoll;
  StCalibrateOptions oCalibrate;
  StSignOptions oSign;
  std::string sPropertyName;
  std::string sPropertyValue;
  unsigned int nLedIndex = 0;
  unsigned int nLedState = 0;
  unsigned int nBeepArg1 = 300;
  unsigned int nBeepArg2 = 100;
  std::vector<std::string> aDisplayTexts;
  std::function<int()> fnCommand;
};

/// A command with the options that all have. Its action runs after the whole line is parsed.
CLI::App* AddCommand(CLI::App& oParent, StCommandLine& oLine, const char* szName, const char* szDescription,
                     const std::function<int()>& fnCommand) {
  CLI::App* pCommand = oParent.add_subcommand(szName, szDescription);
  pCommand->add_option("--serial", oLine.oCommon.sSerial,
                       "Serial number of the scanner; needed when there are several");
  pCommand->add_option("--scene", oLine.oCommon.sScene,
                       "Scene of the simulated scanner: a built-in name or a JSON file");
  pCommand->add_option("--print", oLine.oCommon.sPrintFile,
                       "PNG of a print for the platen of the simulated scanner");
  pCommand->add_flag("--json", oLine.oCommon.bJson, "Print facts as JSON");
  pCommand->callback([&oLine, fnCommand] { oLine.fnCommand = fnCommand; });
  return pCommand;
}

void AddQueries(CLI::App& oApp, StCommandLine& oLine) {
  AddCommand(oApp, oLine, "list", "List the connected scanners", [&oLine] { return RunList(oLine.oCommon); });
  AddCommand(oApp, oLine, "info", "Tell versions, sizes and condition of a scanner",
             [&oLine] { return RunInfo(oLine.oCommon); });
}

void AddPictures(CLI::App& oCommand, StCaptureOptions& oCapture) {
  oCommand.add_option("--out", oCapture.sFolder, "Folder for the pictures")->capture_default_str();
  oCommand.add_option("--format", oCapture.sFormat, "Format of the pictures")
      ->check(CLI::IsMember({"png", "bmp", "kif"}))
      ->capture_default_str();
}

void AddTimeout(CLI::App& oCommand, StCaptureOptions& oCapture, const char* szDescription) {
  oCommand.add_option("--timeout", oCapture.nTimeout, szDescription)
      ->check(CLI::Range(1, 86400))
      ->capture_default_str();
}

void AddCapture(CLI::App& oApp, StCommandLine& oLine) {
  CLI::App* pCapture = AddCommand(oApp, oLine, "capture", "Capture fingers and write pictures",
                                  [&oLine] { return RunCapture(oLine.oCommon, oLine.oCapture); });
  StCaptureOptions& oCapture = oLine.oCapture;
  pCapture
      ->add_option("--mode", oCapture.sMode,
                   "off: one shot; preview: preview, then a capture; full: stream; auto: when fingers lie "
                   "still; auto-live: the same with a liveness score")
      ->check(CLI::IsMember({"off", "preview", "full", "auto", "auto-live"}))
      ->capture_default_str();
  AddPictures(*pCapture, oCapture);
  pCapture->add_option("--frames", oCapture.nFrames, "Images of the stream to wait for")
      ->check(CLI::Range(1, 100000))
      ->capture_default_str();
  pCapture->add_option("--count", oCapture.nCount, "Automatic captures in a row, fingers lifted in between")
      ->check(CLI::Range(1, 10000))
      ->capture_default_str();
  AddTimeout(*pCapture, oCapture, "Seconds to wait for each automatic capture");
  pCapture->add_option("--min-score", oCapture.dMinScore, "Liveness score below which auto-live ends with 1")
      ->check(CLI::Range(0.0, 100.0))
      ->capture_default_str();
}

void AddRoll(CLI::App& oApp, StCommandLine& oLine) {
  StRollOptions& oRoll = oLine.oRoll;
  CLI::App* pRoll = AddCommand(oApp, oLine, "roll", "Put a rolled fingerprint together and judge the roll",
                               [&oLine] { return RunRoll(oLine.oCommon, oLine.oRoll); });
  AddPictures(*pRoll, oRoll.oCapture);
  pRoll->add_option("--frames", oRoll.sFramesFolder, "Folder that keeps each picture of the growing print");
  pRoll->add_flag("!--no-postprocess", oRoll.bPostProcess, "Leave the print where and as it lay");
  AddTimeout(*pRoll, oRoll.oCapture, "Seconds to wait for the end of the roll");
}

void AddCalibrate(CLI::App& oApp, StCommandLine& oLine) {
  StCalibrateOptions& oCalibrate = oLine.oCalibrate;
  CLI::App* pCalibrate = AddCommand(oApp, oLine, "calibrate",
                                    "Make calibration data from the dot target, or judge what is stored",
                                    [&oLine] { return RunCalibrate(oLine.oCommon, oLine.oCalibrate); });
  CLI::Option* pFrom =
      pCalibrate->add_option("--from", oCalibrate.sFromFile, "PNG of the target, raw, 3840 x 2720 pixels");
  pFrom->excludes(pCalibrate->get_option("--scene"));
  pCalibrate->add_option("--out", oCalibrate.sFolder, "Folder for geometric.calibrate and the pictures")
      ->capture_default_str();
  pCalibrate
      ->add_option_function<std::string>(
          "--check",
          [&oCalibrate](const std::string& sFolder) {
            oCalibrate.bCheck = true;
            oCalibrate.sCheckFolder = sFolder;
          },
          "Judge the data in a folder, or that of the scanner")
      ->type_name("[FOLDER]")
      ->expected(0, 1)
      ->excludes(pFrom);
}

void AddSign(CLI::App& oApp, StCommandLine& oLine) {
  StSignOptions& oSign = oLine.oSign;
  CLI::App* pSign = AddCommand(oApp, oLine, "sign", "Let somebody sign on the platen",
                               [&oLine] { return RunSign(oLine.oCommon, oLine.oSign); });
  AddPictures(*pSign, oSign.oCapture);
  pSign
      ->add_option(
          "--time", oSign.dTime,
          "Seconds of processor time without the pen that end a signature; 0: it ends with --timeout")
      ->check(CLI::Range(0.0, 3600.0))
      ->capture_default_str();
  pSign->add_option("--sigma", oSign.dSigma, "Softness of the ink in pixels of the finished picture")
      ->check(CLI::Range(0.5, 100.0))
      ->capture_default_str();
  pSign->add_flag("--half", oSign.bHalf,
                  "Sign on the upper half of the platen, in pictures of half the height");
  AddTimeout(*pSign, oSign.oCapture, "Seconds to wait for the end of the signature");
}

void AddProperty(CLI::App& oApp, StCommandLine& oLine) {
  CLI::App* pProperty = oApp.add_subcommand("property", "Read or set a property");
  pProperty->require_subcommand(1);
  CLI::App* pGet = AddCommand(*pProperty, oLine, "get", "Print a property's value",
                              [&oLine] { return RunPropertyGet(oLine.oCommon, oLine.sPropertyName); });
  pGet->add_option("name", oLine.sPropertyName, "Name of the property")->required();
  CLI::App* pSet = AddCommand(*pProperty, oLine, "set", "Set a property while the scanner is open", [&oLine] {
    return RunPropertySet(oLine.oCommon, oLine.sPropertyName, oLine.sPropertyValue);
  });
  pSet->add_option("name", oLine.sPropertyName, "Name of the property")->required();
  pSet->add_option("value", oLine.sPropertyValue, "New value")->required();
}

void AddSignals(CLI::App& oApp, StCommandLine& oLine) {
  CLI::App* pLed = AddCommand(oApp, oLine, "led", "Set a status LED",
                              [&oLine] { return RunLed(oLine.oCommon, oLine.nLedIndex, oLine.nLedState); });
  pLed->add_option("index", oLine.nLedIndex, "LED, 0 to 11")->required()->check(CLI::Range(0, 11));
  pLed->add_option("state", oLine.nLedState, "State, 0 (off) to 7")->required()->check(CLI::Range(0, 7));
  CLI::App* pBeep = AddCommand(oApp, oLine, "beep", "Sound the buzzer",
                               [&oLine] { return RunBeep(oLine.oCommon, oLine.nBeepArg1, oLine.nBeepArg2); });
  pBeep->add_option("first", oLine.nBeepArg1, "First value for the scanner")->capture_default_str();
  pBeep->add_option("second", oLine.nBeepArg2, "Second value for the scanner")->capture_default_str();
  CLI::App* pDisplay = AddCommand(oApp, oLine, "display", "Show a text on the character display",
                                  [&oLine] { return RunDisplay(oLine.oCommon, oLine.aDisplayTexts); });
  pDisplay
      ->add_option("text", oLine.aDisplayTexts,
                   "Up to 32 characters, or two lines of up to 16; \"\" clears it")
      ->required()
      ->expected(1, 2);
}

int RunTool(int nArguments, char** ppArguments) {
  CLI::App oApp("Captures fingerprints with VT40 live-scanners.", "vt40");
  oApp.footer(cszExitCodes);
  oApp.require_subcommand(1);
  oApp.set_version_flag("--version", ClLibrary::Version());
  StCommandLine oLine;
  AddQueries(oApp, oLine);
  AddCapture(oApp, oLine);
  AddRoll(oApp, oLine);
  AddCalibrate(oApp, oLine);
  AddSign(oApp, oLine);
  AddProperty(oApp, oLine);
  AddSignals(oApp, oLine);
  try {
    oApp.parse(nArguments, ppArguments);
  } catch (const CLI::ParseError& oError) {
    return oApp.exit(oError) == 0 ? eExitOk : eExitUsage;
  }
  return oLine.fnCommand();
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
