// The tool's commands. Each prints what it has found out and returns the exit code.
#pragma once

#include <string>
#include <vector>

/// What several commands share.
struct StCommonOptions {
  std::string sSerial;     ///< empty: the only scanner
  std::string sScene;      ///< for the simulated scanner
  std::string sPrintFile;  ///< likewise
  bool bJson = false;
};

struct StCaptureOptions {
  std::string sMode = "preview";
  std::string sFolder = "out";
  std::string sFormat = "png";
  unsigned int nFrames = 5;    ///< frames of the stream to see before the capture
  unsigned int nCount = 1;     ///< automatic captures in a row
  unsigned int nTimeout = 60;  ///< seconds to wait for each of them
  double dMinScore = 50.0;     ///< liveness score from which a finger counts as living
};

struct StRollOptions {
  StCaptureOptions oCapture;  ///< folder, format and time-out
  std::string sFramesFolder;  ///< for each picture of the growing print; empty: none are kept
  bool bPostProcess = true;   ///< the finished print is centred and turned upright

  StRollOptions() { oCapture.sMode = "roll"; }
};

struct StCalibrateOptions {
  std::string sFromFile;        ///< a raw picture; empty: the scanner takes one
  std::string sFolder = "out";  ///< for record and pictures
  bool bCheck = false;          ///< judge stored data instead
  std::string sCheckFolder;     ///< of the stored data; empty: the scanner's
};

struct StSignOptions {
  StCaptureOptions oCapture;  ///< folder, format and time-out
  double dTime = 2.0;         ///< the pause that ends a signature; 0: the time-out does
  double dSigma = 2.0;        ///< softness of the ink
  bool bHalf = false;         ///< the upper half of the platen only

  StSignOptions() { oCapture.sMode = "signature"; }
};

int RunList(const StCommonOptions& oCommon);
int RunInfo(const StCommonOptions& oCommon);
int RunCapture(const StCommonOptions& oCommon, const StCaptureOptions& oOptions);
int RunRoll(const StCommonOptions& oCommon, const StRollOptions& oOptions);
int RunCalibrate(const StCommonOptions& oCommon, const StCalibrateOptions& oOptions);
int RunSign(const StCommonOptions& oCommon, const StSignOptions& oOptions);
int RunPropertyGet(const StCommonOptions& oCommon, const std::string& sName);
int RunPropertySet(const StCommonOptions& oCommon, const std::string& sName, const std::string& sValue);
int RunLed(const StCommonOptions& oCommon, unsigned int nIndex, unsigned int nState);
int RunBeep(const StCommonOptions& oCommon, unsigned int nArg1, unsigned int nArg2);
/// One text is divided into lines of sixteen characters; two texts are a line each.
int RunDisplay(const StCommonOptions& oCommon, const std::vector<std::string>& aTexts);
