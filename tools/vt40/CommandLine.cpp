// What the commands and options are called, take, and are for.
#include "CommandLine.h"

#include <algorithm>

#include "Completion.h"
#include "Report.h"

namespace {

/// A command with the options that all have. Its action runs after the whole line is parsed.
CLI::App* AddCommand(CLI::App& oParent, StCommandLine& oLine, const char* szName, const char* szDescription,
                     const std::function<void(ClReport&)>& fnCommand) {
  CLI::App* pCommand = oParent.add_subcommand(szName, szDescription);
  pCommand->add_option("--serial", oLine.oCommon.sSerial,
                       "Serial number of the scanner; needed when there are several");
  pCommand->add_flag("--simulate", oLine.oCommon.bSimulate, "Use the simulated scanner");
  pCommand
      ->add_option(
          "--scene", oLine.oCommon.sScene,
          "Scene of the simulated scanner, which is used then: a built-in name, a JSON file, or JSON")
      ->type_name("SCENE");
  pCommand
      ->add_option("--print", oLine.oCommon.sPrintFile,
                   "PNG of a print for the platen of the simulated scanner, which is used then")
      ->type_name("FILE");
  CLI::Option* pJson = pCommand->add_flag("--json", oLine.oCommon.bJson, "Print facts as one JSON object");
  pCommand
      ->add_flag("--json-lines", oLine.oCommon.bJsonLines,
                 "Print facts as JSON objects, one a line: each frame as it comes, the result last")
      ->excludes(pJson);
  pCommand->callback([&oLine, fnCommand] { oLine.fnCommand = fnCommand; });
  return pCommand;
}

void AddQueries(CLI::App& oApp, StCommandLine& oLine) {
  AddCommand(oApp, oLine, "list", "List the connected scanners",
             [&oLine](ClReport& oReport) { RunList(oLine.oCommon, oReport); });
  AddCommand(oApp, oLine, "info", "Tell versions, sizes and condition of a scanner",
             [&oLine](ClReport& oReport) { RunInfo(oLine.oCommon, oReport); });
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

/// An option that has no effect in the mode that was chosen is a mistake of whoever gave it.
void RefuseOptionsOfOtherModes(const CLI::App& oCapture, const std::string& sMode) {
  static const struct {
    const char* szOption;
    std::vector<std::string> aModes;
  } caRules[] = {{"--frames", {"preview", "full"}},
                 {"--count", {"auto", "auto-live"}},
                 {"--timeout", {"auto", "auto-live"}},
                 {"--min-score", {"auto-live"}}};
  for (const auto& oRule : caRules) {
    const auto& aModes = oRule.aModes;
    if (oCapture.get_option(oRule.szOption)->count() == 0) continue;
    if (std::find(aModes.begin(), aModes.end(), sMode) != aModes.end()) continue;
    throw CLI::ValidationError(oRule.szOption, "has no effect with --mode " + sMode + "; it is for --mode " +
                                                   aModes.front() +
                                                   (aModes.size() > 1 ? " and " + aModes.back() : ""));
  }
}

void AddCapture(CLI::App& oApp, StCommandLine& oLine) {
  CLI::App* pCapture =
      AddCommand(oApp, oLine, "capture", "Capture fingers and write pictures",
                 [&oLine](ClReport& oReport) { RunCapture(oLine.oCommon, oLine.oCapture, oReport); });
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
  pCapture->parse_complete_callback(
      [pCapture, &oCapture] { RefuseOptionsOfOtherModes(*pCapture, oCapture.sMode); });
}

void AddRoll(CLI::App& oApp, StCommandLine& oLine) {
  StRollOptions& oRoll = oLine.oRoll;
  CLI::App* pRoll = AddCommand(oApp, oLine, "roll", "Put a rolled fingerprint together and judge the roll",
                               [&oLine](ClReport& oReport) { RunRoll(oLine.oCommon, oLine.oRoll, oReport); });
  AddPictures(*pRoll, oRoll.oCapture);
  pRoll->add_option("--frames", oRoll.sFramesFolder, "Folder that keeps each picture of the growing print");
  pRoll->add_flag("--no-postprocess", oRoll.bAsItLay, "Leave the print where and as it lay");
  AddTimeout(*pRoll, oRoll.oCapture, "Seconds to wait for the end of the roll");
}

void AddCalibrate(CLI::App& oApp, StCommandLine& oLine) {
  StCalibrateOptions& oCalibrate = oLine.oCalibrate;
  CLI::App* pCalibrate = AddCommand(
      oApp, oLine, "calibrate", "Make calibration data from the dot target, or judge what is stored",
      [&oLine](ClReport& oReport) { RunCalibrate(oLine.oCommon, oLine.oCalibrate, oReport); });
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

void AddQuality(CLI::App& oApp, StCommandLine& oLine) {
  StQualityOptions& oQuality = oLine.oQuality;
  CLI::App* pQuality =
      AddCommand(oApp, oLine, "quality",
                 "Measure image quality on sheets that are laid on the platen one after the other",
                 [&oLine](ClReport& oReport) { RunQuality(oLine.oCommon, oLine.oQuality, oReport); });
  const std::vector<std::string> aAll = {"sine", "bars", "edges", "grid", "steps", "bright", "dark", "print"};
  oQuality.aSheets = aAll;
  pQuality->add_option("--sheets", oQuality.aSheets, "What to wait for, separated by commas")
      ->delimiter(',')
      ->check(CLI::IsMember(aAll))
      ->capture_default_str();
  pQuality->add_option("--out", oQuality.sFolder, "Folder for pictures and curves")->capture_default_str();
  pQuality->add_option("--timeout", oQuality.nTimeout, "Seconds to wait for all of them")
      ->check(CLI::Range(1, 86400))
      ->capture_default_str();
}

void AddSign(CLI::App& oApp, StCommandLine& oLine) {
  StSignOptions& oSign = oLine.oSign;
  CLI::App* pSign = AddCommand(oApp, oLine, "sign", "Let somebody sign on the platen",
                               [&oLine](ClReport& oReport) { RunSign(oLine.oCommon, oLine.oSign, oReport); });
  AddPictures(*pSign, oSign.oCapture);
  pSign
      ->add_option("--time", oSign.dTime,
                   "Seconds without the pen that end a signature; 0: it ends with --timeout")
      ->check(CLI::Range(0.0, 3600.0))
      ->capture_default_str();
  pSign->add_option("--sigma", oSign.dSigma, "Softness of the ink in pixels of the finished picture")
      ->check(CLI::Range(0.5, 100.0))
      ->capture_default_str();
  pSign->add_flag("--half", oSign.bHalf,
                  "Sign on the upper half of the platen, in pictures of half the height");
  AddTimeout(*pSign, oSign.oCapture, "Seconds to wait for the end of the signature");
}

void AddServe(CLI::App& oApp, StCommandLine& oLine) {
  StServeOptions& oServe = oLine.oServe;
  CLI::App* pServe = AddCommand(
      oApp, oLine, "serve", "Open the scanner to a browser and to web applications of this machine",
      [&oLine](ClReport& oReport) { RunServe(oLine.oCommon, oLine.oServe, oReport); });
  pServe->add_option("--port", oServe.nPort, "Port to listen on; 0 takes a free one")
      ->check(CLI::Range(0, 65535))
      ->capture_default_str();
  pServe->add_option("--host", oServe.sHost, "Address to listen on; one that others reach takes a token")
      ->capture_default_str();
  pServe->add_option("--token", oServe.sToken, "Secret without which no call is answered");
  pServe->add_flag("--open", oServe.bOpen, "Start the browser");
  pServe->add_option("--out", oServe.sFolder, "Folder for captured pictures; without it none are written");
  pServe
      ->add_option("--claim-seconds", oServe.dClaimLife,
                   "Seconds after which the claim of a client that is gone ends")
      ->check(CLI::Range(0.1, 3600.0))
      ->capture_default_str();
}

void AddProperty(CLI::App& oApp, StCommandLine& oLine) {
  CLI::App* pProperty = oApp.add_subcommand("property", "Read or set a property");
  pProperty->require_subcommand(1);
  CLI::App* pGet = AddCommand(
      *pProperty, oLine, "get", "Print a property's value",
      [&oLine](ClReport& oReport) { RunPropertyGet(oLine.oCommon, oLine.sPropertyName, oReport); });
  pGet->add_option("name", oLine.sPropertyName, "Name of the property")->required();
  CLI::App* pSet = AddCommand(
      *pProperty, oLine, "set", "Set a property while the scanner is open", [&oLine](ClReport& oReport) {
        RunPropertySet(oLine.oCommon, oLine.sPropertyName, oLine.sPropertyValue, oReport);
      });
  pSet->add_option("name", oLine.sPropertyName, "Name of the property")->required();
  pSet->add_option("value", oLine.sPropertyValue, "New value")->required();
}

void AddSignals(CLI::App& oApp, StCommandLine& oLine) {
  CLI::App* pLed = AddCommand(oApp, oLine, "led", "Set a status LED", [&oLine](ClReport& oReport) {
    RunLed(oLine.oCommon, oLine.nLedIndex, oLine.nLedState, oReport);
  });
  pLed->add_option("index", oLine.nLedIndex, "LED, 0 to 11")->required()->check(CLI::Range(0, 11));
  pLed->add_option("state", oLine.nLedState, "State, 0 (off) to 7")->required()->check(CLI::Range(0, 7));
  CLI::App* pBeep = AddCommand(oApp, oLine, "beep", "Sound the buzzer", [&oLine](ClReport& oReport) {
    RunBeep(oLine.oCommon, oLine.nBeepArg1, oLine.nBeepArg2, oReport);
  });
  pBeep->add_option("first", oLine.nBeepArg1, "First value for the scanner")->capture_default_str();
  pBeep->add_option("second", oLine.nBeepArg2, "Second value for the scanner")->capture_default_str();
  CLI::App* pDisplay =
      AddCommand(oApp, oLine, "display", "Show a text on the character display",
                 [&oLine](ClReport& oReport) { RunDisplay(oLine.oCommon, oLine.aDisplayTexts, oReport); });
  pDisplay
      ->add_option("text", oLine.aDisplayTexts,
                   "Up to 32 characters, or two lines of up to 16; \"\" clears it")
      ->required()
      ->expected(1, 2);
}

void AddRecording(CLI::App& oApp, StCommandLine& oLine) {
  StRecordingOptions& oRecording = oLine.oRecording;
  CLI::Option* pRecord =
      oApp.add_option("--record", oRecording.sRecordFile,
                      "Before the command: file that records what passes between library and scanner, "
                      "fingerprints included")
          ->type_name("FILE");
  oApp.add_flag("--blur", oRecording.bBlur, "With --record: frames without ridges")->needs(pRecord);
  CLI::Option* pReplay = oApp.add_option("--replay", oRecording.sReplayFile,
                                         "Before the command: recording that answers in a scanner's place")
                             ->type_name("FILE")
                             ->excludes(pRecord);
  oApp.add_option("--speed", oRecording.sSpeed, "With --replay: times the recorded speed, or max")
      ->needs(pReplay)
      ->check(CLI::Range(0.01, 1000.0) | CLI::IsMember({"max"}))
      ->capture_default_str();
  CLI::App* pCommand = oApp.add_subcommand("recording", "Describe a recording");
  pCommand->add_option("file", oLine.sRecording, "The recording")->required();
  CLI::Option* pJson = pCommand->add_flag("--json", oLine.oCommon.bJson, "Print facts as one JSON object");
  pCommand->add_flag("--json-lines", oLine.oCommon.bJsonLines, "The same as one line")->excludes(pJson);
  pCommand->callback([&oLine] {
    oLine.fnCommand = [&oLine](ClReport& oReport) { RunRecording(oLine.sRecording, oReport); };
  });
}

void AddCompletion(CLI::App& oApp, StCommandLine& oLine) {
  // For packages, which install what it prints: no command of those who capture fingers.
  CLI::App* pCompletion =
      oApp.add_subcommand("completion", "Print the completion script of a shell")->group("");
  pCompletion->add_option("shell", oLine.sShell, "bash, zsh or fish")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh", "fish"}));
  pCompletion->callback([&oApp, &oLine] {
    oLine.fnCommand = [&oApp, &oLine](ClReport& oReport) {
      oReport.Line(CompletionScript(oApp, oLine.sShell));
    };
  });
}

}  // namespace

void DescribeCommands(CLI::App& oApp, StCommandLine& oLine) {
  oApp.require_subcommand(1);
  AddQueries(oApp, oLine);
  AddCapture(oApp, oLine);
  AddRoll(oApp, oLine);
  AddCalibrate(oApp, oLine);
  AddQuality(oApp, oLine);
  AddSign(oApp, oLine);
  AddServe(oApp, oLine);
  AddProperty(oApp, oLine);
  AddSignals(oApp, oLine);
  AddRecording(oApp, oLine);
  AddCompletion(oApp, oLine);
}
