// The tool's commands. Each reports what it has found out and how it ends. Errors: ClToolError.
#pragma once

#include <string>
#include <vector>

class ClReport;

/// What several commands share.
struct StCommonOptions {
  std::string sSerial;     ///< empty: the only scanner
  bool bSimulate = false;  ///< ask for the simulated scanner
  std::string sScene;      ///< likewise, with this scene
  std::string sPrintFile;  ///< likewise, with this print
  bool bJson = false;
  bool bJsonLines = false;
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
  bool bAsItLay = false;      ///< the finished print is neither centred nor turned upright

  StRollOptions() { oCapture.sMode = "roll"; }
};

struct StCalibrateOptions {
  std::string sFromFile;        ///< a raw picture; empty: the scanner takes one
  std::string sFolder = "out";  ///< for record and pictures
  bool bCheck = false;          ///< judge stored data instead
  std::string sCheckFolder;     ///< of the stored data; empty: the scanner's
};

struct StQualityOptions {
  std::string sFolder = "out";       ///< for pictures and curves
  std::vector<std::string> aSheets;  ///< to wait for
  unsigned int nTimeout = 60;        ///< seconds until all must have been seen
};

struct StSignOptions {
  StCaptureOptions oCapture;  ///< folder, format and time-out
  double dTime = 2.0;         ///< seconds of the pause that ends a signature; 0: the time-out does
  double dSigma = 2.0;        ///< softness of the ink
  bool bHalf = false;         ///< the upper half of the platen only

  StSignOptions() { oCapture.sMode = "signature"; }
};

struct StServeOptions {
  std::string sHost = "127.0.0.1";
  unsigned int nPort = 8040;  ///< 0: a free one
  std::string sToken;         ///< empty: none, or one is made where others reach the address
  std::string sFolder;        ///< for pictures; empty: none are written
  bool bOpen = false;         ///< start the browser
  double dClaimLife = 10.0;   ///< seconds after which the claim of a client that is gone ends
};

void RunList(const StCommonOptions& oCommon, ClReport& oReport);
void RunInfo(const StCommonOptions& oCommon, ClReport& oReport);
void RunCapture(const StCommonOptions& oCommon, const StCaptureOptions& oOptions, ClReport& oReport);
void RunRoll(const StCommonOptions& oCommon, const StRollOptions& oOptions, ClReport& oReport);
void RunCalibrate(const StCommonOptions& oCommon, const StCalibrateOptions& oOptions, ClReport& oReport);
/// Measures image quality on sheet after sheet.
void RunQuality(const StCommonOptions& oCommon, const StQualityOptions& oOptions, ClReport& oReport);
void RunSign(const StCommonOptions& oCommon, const StSignOptions& oOptions, ClReport& oReport);
void RunPropertyGet(const StCommonOptions& oCommon, const std::string& sName, ClReport& oReport);
void RunPropertySet(const StCommonOptions& oCommon, const std::string& sName, const std::string& sValue,
                    ClReport& oReport);
void RunLed(const StCommonOptions& oCommon, unsigned int nIndex, unsigned int nState, ClReport& oReport);
void RunBeep(const StCommonOptions& oCommon, unsigned int nArg1, unsigned int nArg2, ClReport& oReport);
/// One text is divided into lines of sixteen characters; two texts are a line each.
void RunDisplay(const StCommonOptions& oCommon, const std::vector<std::string>& aTexts, ClReport& oReport);
/// Opens the scanner to browsers and programs until a signal comes.
void RunServe(const StCommonOptions& oCommon, const StServeOptions& oOptions, ClReport& oReport);
/// Says what a recording holds.
void RunRecording(const std::string& sFile, ClReport& oReport);
