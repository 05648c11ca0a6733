// The command line of the tool: its commands and options, and the command that was chosen.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

#include "Commands.h"
#include "StandIn.h"

/// Where the parser puts what it reads.
struct StCommandLine {
  StCommonOptions oCommon;
  StCaptureOptions oCapture;
  StRollOptions oRoll;
  StCalibrateOptions oCalibrate;
  StQualityOptions oQuality;
  StSignOptions oSign;
  StServeOptions oServe;
  StRecordingOptions oRecording;
  std::string sRecording;
  std::string sPropertyName;
  std::string sPropertyValue;
  unsigned int nLedIndex = 0;
  unsigned int nLedState = 0;
  unsigned int nBeepArg1 = 300;
  unsigned int nBeepArg2 = 100;
  std::vector<std::string> aDisplayTexts;
  std::string sShell;
  std::function<void(ClReport&)> fnCommand;
};

/// Adds all commands to the parser. oLine must outlive it.
void DescribeCommands(CLI::App& oApp, StCommandLine& oLine);
