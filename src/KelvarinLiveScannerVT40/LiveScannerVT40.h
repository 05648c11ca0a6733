// The library's singleton: it binds the scan library while the library is initialised.
#pragma once

#include <boost/thread/mutex.hpp>
#include <memory>

#include "MXTools/SDKBase.h"

class ClKelvarinVTScanAPIWrapper;

/// Threads  thread-safe; see TpSingleton.
class ClLiveScannerVT40 : public TpSDKBase<ClLiveScannerVT40, ClLoggingChain> {
 public:
  static const char m_szVersion[];
  static const char m_szLongVersion[];
  /// Where the scan library is looked for before the linker's own search, relative to the working directory.
  static constexpr char m_szSearchPath[] = "../KelvarinVTScanAPI;../../KelvarinVTScanAPI;.";

  /// Errors: -200 "Unable to open VTScanAPI library."; the scan library's number when it does not start.
  void OnInitialize() override;
  void OnUninitialize() override;

  using ScanLibrary = std::shared_ptr<ClKelvarinVTScanAPIWrapper>;
  /// The binding of the scan library. It stays loaded while the result is held, also when another thread
  /// undoes the initialisation meanwhile; its functions then answer that they are not initialised.
  /// Errors: -2 "Component not initialized." while the scan library is not bound.
  static ScanLibrary GetScanLibrary();
  /// For a call whose scan library failed. Errors: -2 when the initialisation that it was bound by has been
  /// undone.
  static void CheckBound(const ScanLibrary& pScanLibrary);

 private:
  /// The binding while the library is initialised. It is set last, when the scan library is bound and has
  /// started. It is never destroyed, since a thread may still be in a call while the process ends.
  struct StBinding {
    boost::mutex oMutex;
    ScanLibrary pScanLibrary;  // guarded by oMutex
  };
  static StBinding& Binding();
  /// Puts another binding in place and returns the one before.
  static ScanLibrary Exchange(ScanLibrary pScanLibrary);
};
