// All scanners of the process: the scene, who has opened what, and how often the library was initialised.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "KelvarinVTScanAPI/Scanner.h"
#include "boundary/FaultScript.h"
#include "boundary/HandleValues.h"

namespace Simulator {

/// No device handle is given out twice, so that an old one is never taken for a new one.
///
/// Threads    thread-safe. m_oMutex is held for look-ups only, never while a scanner works.
class ClBus {
 public:
  using ScannerPointer = std::shared_ptr<ClScanner>;

  /// An open device.
  struct ClDevice {
    ScannerPointer pScanner;  // none since the library was uninitialised
    ClScanner::Session nSession = 0;
  };

  static ClBus& Get();

  /// Counts the initialisations; the first one reads the scene of the environment unless one was loaded.
  void Initialize();
  /// Errors     -2 not initialised. The last one closes all devices; their handles are good for Close alone.
  void Uninitialize();
  /// Loads the scene of the next initialisation now, for settings that are to hold from its first call on.
  void Prepare();

  /// Identifiers of the plugged scanners of a product, in the order of the scene.
  std::vector<unsigned> Query(unsigned nProduct);
  /// Errors     -44 no such scanner; -60 it is unplugged.
  ScannerPointer ById(unsigned nId);
  void* Open(unsigned nId);
  void Close(void* hDevice);
  /// Errors     -2 not initialised; -43 no open device.
  ClDevice Device(void* hDevice);
  unsigned IndexOf(const ClScanner& oScanner);
  std::string LibraryVersion();

  void LoadScene(const std::string& sScene);
  void Reset();
  /// NULL is the first one. Errors -44 no such scanner.
  ScannerPointer BySerial(const char* szSerial);
  void SetLibraryVersion(const std::string& sVersion);
  void ClearFaults();
  ClFaultScript& Faults() noexcept { return m_oFaults; }

 private:
  struct ClEntry {
    unsigned nId;
    ScannerPointer pScanner;
  };

  // For all of these m_oLoading is held.
  void LoadEnvironment();
  void RefreshScene();
  void NeedScene();
  void Install(const ClSceneDescription& oScene);
  void CloseAll();

  void CheckInitialized() const;  // wants m_oMutex held

  ClFaultScript m_oFaults;
  std::mutex m_oLoading;  // one load, initialisation or end of it at a time; taken before m_oMutex
  bool m_bLoaded = false;
  bool m_bFromEnvironment = false;
  bool m_bStale = false;  // the library has been at rest since the environment was read
  std::mutex m_oMutex;    // guards all that follows
  unsigned m_nInitialized = 0;
  std::vector<ClEntry> m_aScanners;
  std::map<void*, ClDevice> m_mapDevices;
  std::string m_sLibraryVersion = "1.20";
  unsigned m_nNextId = 0x1100;
  ClHandleValues m_oHandles;
};

}  // namespace Simulator
