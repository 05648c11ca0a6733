// The recorder or the player in the scan library's place.
#pragma once

#include <string>

/// What the command line asks for.
struct StRecordingOptions {
  std::string sRecordFile;   ///< empty: nothing is recorded
  bool bBlur = false;        ///< frames without ridges
  std::string sReplayFile;   ///< empty: the scanner answers
  std::string sSpeed = "1";  ///< of the replay
};

/// What loads the scan library must have one before: the library of the process that is loaded first is found
/// under its name.
namespace StandIn {

/// Chooses for the process, before the library is initialised. Errors: ClToolError eExitUsage.
void Choose(const StRecordingOptions& oOptions);
/// Loads what was chosen; a choice to use the simulated scanner becomes one to record it.
/// Errors: ClToolError eExitFile for a file that cannot be written or is no recording, eExitScanLibrary.
void Load();
/// The library has been initialised. Errors: ClToolError eExitScanLibrary when it has found another scan
/// library first.
void CheckUsed();
/// Ends a recording, for a process that ends in a hurry.
void Finish();
/// Whether the scanner that is recorded, or was, is a simulated one; false without a stand-in.
bool IsSimulated();
/// The file of a replay; empty without one.
const std::string& ReplayFile();
const std::string& RecordFile();
/// The simulated scanner is asked for, by the environment or for a recording of it.
bool IsSimulationAskedFor();

}  // namespace StandIn
