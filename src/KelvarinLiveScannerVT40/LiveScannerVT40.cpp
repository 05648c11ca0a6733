// Binding and starting the scan library.
#include "KelvarinLiveScannerVT40/LiveScannerVT40.h"

#include <memory>

#include "MXLibraryLoaders/KelvarinVTScanAPIWrapper.h"
#include "MXTools/Exception.h"

#define KLV_VERSION "1.5.1421.5"

const char ClLiveScannerVT40::m_szVersion[] = KLV_VERSION;
// The blank behind the number ends it for whoever reads the record.
const char ClLiveScannerVT40::m_szLongVersion[] =
    "SDK: KelvarinLiveScannerVT40 Version: " KLV_VERSION " ten-finger live-scanner";

std::atomic<ClKelvarinVTScanAPIWrapper*> ClLiveScannerVT40::m_pVTScanAPI{nullptr};

void ClLiveScannerVT40::OnInitialize() {
  auto pLibrary = std::make_unique<ClKelvarinVTScanAPIWrapper>();
  try {
    pLibrary->OpenLibrary(m_szSearchPath, ClKelvarinVTScanAPIWrapper::m_ssLibName);
  } catch (const ClExBadAlloc&) {
    throw;
  } catch (const ClException&) {
    KLV_RAISE(ClException, "Unable to open VTScanAPI library.", -200);
  }
  const long nResult = pLibrary->VTScanAPIInitialize(nullptr);
  if (nResult != 0) KLV_RAISE(ClException, "Failed to initialize VTScanAPI.", nResult);
  m_pVTScanAPI = pLibrary.release();
}

void ClLiveScannerVT40::OnUninitialize() {
  const std::unique_ptr<ClKelvarinVTScanAPIWrapper> pLibrary(m_pVTScanAPI.exchange(nullptr));
  if (pLibrary != nullptr) pLibrary->VTScanAPIUninitialize();
}

void ClLiveScannerVT40::CheckInitialized() {
  if (m_pVTScanAPI == nullptr) KLV_RAISE(ClException, "Component not initialized.", -2);
}
