// The library's singleton: it binds the scan library while the library is initialised.
#pragma once

#include <atomic>

#include "MXTools/SDKBase.h"

class ClKelvarinVTScanAPIWrapper;

/// Threads  thread-safe; see TpSingleton.
class ClLiveScannerVT40 : public TpSDKBase<ClLiveScannerVT40, ClLoggingChain> {
 public:
  static const char m_szVersion[];
  static const char m_szLongVersion[];
  /// Where the scan library is looked for in front of the linker's own search, relative to the working directory.
  static constexpr char m_szSearchPath[] = "../KelvarinVTScanAPI;../../KelvarinVTScanAPI;.";

  /// The binding of the scan library; NULL while the library is not initialised. Set last, when the scan
  /// library is bound and has started.
  static std::atomic<ClKelvarinVTScanAPIWrapper*> m_pVTScanAPI;

  /// Errors: -200 "Unable to open VTScanAPI library."; the scan library's number when it does not start.
  void OnInitialize() override;
  void OnUninitialize() override;

  /// Errors: -2 "Component not initialized." while the scan library is not bound.
  static void CheckInitialized();
};
