// The scan library that the library under the tool has loaded, or would load.
#pragma once

#include <string>

/// What a scan library is.
struct StScanLibrary {
  std::string sPath;        ///< empty when none is loaded
  bool bSimulated = false;  ///< it has the simulator's control side
};

/// The one that is loaded now.
StScanLibrary LoadedScanLibrary();

/// The version that a loaded scan library reports for a scanner that it can open; empty when it cannot, since
/// it reports it by open scanners alone.
std::string ScanLibraryVersion();

/// The version of the scan library in a scanner's text of versions: the word after its mark, or nothing.
std::string ScanLibraryVersionIn(const std::string& sVersions);

/// Refuses to run code of others with the rights of the system's administrator.
///
/// Errors  ClToolError eExitScanLibrary when the process is the administrator's and the scan library that
///         would be found first stands in a folder that other users can write to.
void CheckScanLibraryIsTrusted();

/// Keeps the simulated scan library loaded, so that it is asked why it does not like a scene.
class ClSimulator {
 public:
  /// Loads it when the simulated scanner is asked for, after what stands in the scan library's place.
  /// Errors: ClToolError eExitScanLibrary when it is not installed; those of StandIn::Load.
  ClSimulator();
  ClSimulator(const ClSimulator&) = delete;
  ClSimulator& operator=(const ClSimulator&) = delete;
  ~ClSimulator();

  /// The reason of its last failure; empty without one, and without a simulator.
  std::string LastError() const;

 private:
  void* m_pLibrary = nullptr;
};
