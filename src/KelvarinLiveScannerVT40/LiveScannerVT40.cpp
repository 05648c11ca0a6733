// Binding and starting the scan library.
#include "KelvarinLiveScannerVT40/LiveScannerVT40.h"

#include <utility>

#include "MXLibraryLoaders/KelvarinVTScanAPIWrapper.h"
#include "MXLibraryLoaders/SimulatedLibrary.h"
#include "MXTools/Exception.h"

#define KLV_VERSION "1.5.1421.5"

const char ClLiveScannerVT40::m_szVersion[] = KLV_VERSION;
// Readers of the record need the blank after the number, which ends it.
const char ClLiveScannerVT40::m_szLongVersion[] =
    "SDK: KelvarinLiveScannerVT40 Version: " KLV_VERSION " ten-finger live-scanner";

void ClLiveScannerVT40::OnInitialize() {
  const auto pLibrary = std::make_shared<ClKelvarinVTScanAPIWrapper>();
  try {
    OpenRealOrSimulated(*pLibrary, m_szSearchPath, ClKelvarinVTScanAPIWrapper::m_ssLibName);
  } catch (const ClExBadAlloc&) {
    throw;
  } catch (const ClException&) {
    KLV_RAISE(ClException, "Unable to open VTScanAPI library.", -200);
  }
  const long nResult = pLibrary->VTScanAPIInitialize(nullptr);
  if (nResult != 0) KLV_RAISE(ClException, "Failed to initialize VTScanAPI.", nResult);
  Exchange(pLibrary);
}

void ClLiveScannerVT40::OnUninitialize() {
  // The library is unloaded when the last call lets go of it.
  const ScanLibrary pLibrary = Exchange(nullptr);
  if (pLibrary != nullptr) pLibrary->VTScanAPIUninitialize();
}

ClLiveScannerVT40::ScanLibrary ClLiveScannerVT40::GetScanLibrary() {
  StBinding& oBinding = Binding();
  const boost::unique_lock<boost::mutex> oLock(oBinding.oMutex);
  if (oBinding.pScanLibrary == nullptr) KLV_RAISE(ClException, "Component not initialized.", -2);
  return oBinding.pScanLibrary;
}

void ClLiveScannerVT40::CheckBound(const ScanLibrary& pScanLibrary) {
  if (GetScanLibrary() != pScanLibrary) KLV_RAISE(ClException, "Component not initialized.", -2);
}

ClLiveScannerVT40::StBinding& ClLiveScannerVT40::Binding() {
  static StBinding& oBinding = *new StBinding;
  return oBinding;
}

ClLiveScannerVT40::ScanLibrary ClLiveScannerVT40::Exchange(ScanLibrary pScanLibrary) {
  StBinding& oBinding = Binding();
  const boost::unique_lock<boost::mutex> oLock(oBinding.oMutex);
  return std::exchange(oBinding.pScanLibrary, std::move(pScanLibrary));
}
