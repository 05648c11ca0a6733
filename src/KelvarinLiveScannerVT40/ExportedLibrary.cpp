// The exported functions that concern the library and its list of scanners.
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <utility>

#include "KelvarinLiveScannerVT40.h"
#include "KelvarinLiveScannerVT40/ExportGuard.h"

namespace {

/// The product id of the ten-finger scanner.
constexpr unsigned int cnProductId = 17;
constexpr unsigned int cnMaxDevices = 127;
constexpr unsigned int cnSerialSize = KLV_VT40_SERIAL_SIZE;
constexpr auto coTriggerTime = std::chrono::microseconds(25000);
constexpr unsigned int cnOldestMajor = 2;

struct StDeviceList {
  unsigned int aIds[cnMaxDevices] = {};
  unsigned int nCount = cnMaxDevices;
};

/// Lists the connected devices and returns the scan library's number.
long ListDevices(ClKelvarinVTScanAPIWrapper& oLibrary, StDeviceList& oDevices) {
  const long nResult = oLibrary.VTScanAPIQueryDevices(oDevices.aIds, &oDevices.nCount, cnProductId);
  if (oDevices.nCount > cnMaxDevices) oDevices.nCount = cnMaxDevices;
  return nResult;
}

/// The serial number of a listed device; false when it cannot be read.
bool ReadDeviceSerial(ClKelvarinVTScanAPIWrapper& oLibrary, unsigned int nId,
                      char (&szSerial)[cnSerialSize + 1]) {
  std::memset(szSerial, 0, sizeof(szSerial));
  unsigned int nSize = cnSerialSize;
  return oLibrary.VTScanAPIGetDeviceSerial(nId, szSerial, &nSize) == 0;
}

long QueryScanners(char* pSerials, unsigned int* pnCount) {
  if (pnCount == nullptr) KLV_RAISE(ClException, "Pointer must not be NULL.", -44);
  const unsigned int nRoom = std::exchange(*pnCount, 0);
  const ClLiveScannerVT40::ScanLibrary pLibrary = ClLiveScannerVT40::GetScanLibrary();
  StDeviceList oDevices;
  const long nResult = ListDevices(*pLibrary, oDevices);
  if (nResult != 0) {
    ClLiveScannerVT40::CheckBound(pLibrary);
    return nResult;
  }
  *pnCount = oDevices.nCount;
  if (pSerials == nullptr ? oDevices.nCount != 0 : nRoom < oDevices.nCount) return -702;
  for (unsigned int n = 0; n < oDevices.nCount; ++n) {
    unsigned int nSize = cnSerialSize;
    char* pSerial = pSerials + static_cast<size_t>(n) * cnSerialSize;
    if (pLibrary->VTScanAPIGetDeviceSerial(oDevices.aIds[n], pSerial, &nSize) != 0) {
      ClLiveScannerVT40::CheckBound(pLibrary);
      return -101;
    }
  }
  return 0;
}

void OpenScanner(const char* pszSerial, void** phScanner) {
  const ClLiveScannerVT40::ScanLibrary pLibrary = ClLiveScannerVT40::GetScanLibrary();
  if (pszSerial == nullptr) KLV_RAISE_NUMBER(-44);
  StDeviceList oDevices;
  if (ListDevices(*pLibrary, oDevices) != 0) {
    ClLiveScannerVT40::CheckBound(pLibrary);
    KLV_RAISE(ClException, "VTScanAPIQueryDevices failed.", -101);
  }
  unsigned int nFound = 0;
  char szSerial[cnSerialSize + 1];
  while (nFound < oDevices.nCount && !(ReadDeviceSerial(*pLibrary, oDevices.aIds[nFound], szSerial) &&
                                       std::strcmp(szSerial, pszSerial) == 0)) {
    ++nFound;
  }
  if (nFound == oDevices.nCount) {
    ClLiveScannerVT40::CheckBound(pLibrary);
    KLV_RAISE(ClException, "Demanded scanner not found.", -60);
  }
  ClVT40Handle::CreateHandle(phScanner);
  TpUndo oUndo([&] { ClVT40Handle::DestroyHandle(phScanner); });
  ClVT40Handle::GetClassBase(*phScanner)->AssignDevice(oDevices.aIds[nFound]);
  oUndo.Dismiss();
}

void CloseScanner(void** phScanner) {
  // A handle has its own reference on the scan library; closing requires the initialisation all the same.
  ClLiveScannerVT40::GetScanLibrary();
  if (phScanner == nullptr) KLV_RAISE(ClException, "handle reference is NULL pointer", -44);
  ClVT40Handle::GetClassBase(*phScanner)->UnassignDevice();
  ClVT40Handle::DestroyHandle(phScanner);
}

}  // namespace

extern "C" {

long LS_VT40Initialize(const char* pszReserved) {
  return ExportedCall(
      KLV_CALL_FORMATS("%s(%p)"), [&] { KLV_CHECK(ClLiveScannerVT40::Initialize(pszReserved)); }, __func__,
      static_cast<const void*>(pszReserved));
}

long LS_VT40Uninitialize(void) {
  return ExportedCall(
      KLV_CALL_FORMATS("%s(void)"), [] { KLV_CHECK(ClLiveScannerVT40::Uninitialize()); }, __func__);
}

long LS_VT40GetVersionA(char* pszVersion, unsigned int* pnSize) {
  return ExportedCall(
      KLV_CALL_FORMATS("%s(%p, %p)"), [&] { ClLiveScannerVT40::GetVersion(pszVersion, pnSize); }, __func__,
      static_cast<const void*>(pszVersion), static_cast<const void*>(pnSize));
}

long LS_VT40CompatibilityCheck(const char* pszVersion) {
  int nMajor = 0;
  int nMinor = 0;
  if (pszVersion == nullptr || std::sscanf(pszVersion, "%d.%d", &nMajor, &nMinor) < 2) return -44;
  return static_cast<unsigned int>(nMajor) < cnOldestMajor ? -103 : 0;
}

const char* LS_VT40GetErrorDescriptionA(long nError) {
  return GetErrorDescriptionIntern(nError);
}
const wchar_t* LS_VT40GetErrorDescriptionW(long nError) {
  return GetErrorDescriptionInternW(nError);
}

long LS_VT40TriggerScanner(void) {
  std::this_thread::sleep_for(coTriggerTime);
  return 0;
}

long LS_VT40QueryScanners(char* pSerials, unsigned int* pnCount) {
  return ExportedCall(
      KLV_PLAIN_FORMATS, [&] { return QueryScanners(pSerials, pnCount); }, __func__, "");
}

long LS_VT40OpenScanner(const char* pszSerial, void** phScanner) {
  return ExportedCall(
      KLV_CALL_FORMATS("%s(%s, %p)"), [&] { OpenScanner(pszSerial, phScanner); }, __func__,
      pszSerial != nullptr ? pszSerial : "NULL", static_cast<const void*>(phScanner));
}

long LS_VT40CloseScanner(void** phScanner) {
  return ExportedCall(
      KLV_PLAIN_FORMATS, [&] { CloseScanner(phScanner); }, __func__, "");
}

}  // extern "C"
