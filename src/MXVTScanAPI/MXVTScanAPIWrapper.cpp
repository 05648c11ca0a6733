// Forwarding to the scan library's functions.
#include "MXVTScanAPI/MXVTScanAPIWrapper.h"

#include <algorithm>
#include <iterator>

#include "MXLibraryLoaders/KelvarinVTScanAPIWrapper.h"
#include "MXTools/Failure.h"

namespace {

using Dll = ClKelvarinVTScanAPIWrapper;

/// Commands of VTScanAPIApplyInternalCommand.
constexpr int cnCommandConfigureLEDs = 0;
constexpr int cnCommandSetStatusLEDs = 1;

/// The modes that the scan library takes, under the same numbers.
constexpr int caScanModes[] = {1, 2, 3, 4, 5, 7, 32, 6, 8, 16, 17, 18, 19, 23, 33, 34, 35, 36, 38};

EVTScanMode_t ToLibraryMode(ClMXVTScanAPIHandleBase::EScanMode_t eMode) {
  const int nMode = static_cast<int>(eMode);
  if (std::find(std::begin(caScanModes), std::end(caScanModes), nMode) == std::end(caScanModes))
    KLV_RAISE(ClException, "invalid scan mode in VTScanAPISetResolution", -44);
  return nMode;
}

}  // namespace

// The pointer is passed by value, so that the function that was tested is called, even if the binding changes
// meanwhile.
template <typename F>
F ClMXVTScanAPIWrapper::Required(F pFunction) const {
  if (m_pDllWrapper == nullptr || pFunction == nullptr) KLV_RAISE_NUMBER(-2);
  return pFunction;
}

template <typename F>
F ClMXVTScanAPIWrapper::Optional(F pFunction) const {
  if (m_pDllWrapper == nullptr) KLV_RAISE_NUMBER(-2);
  if (pFunction == nullptr) KLV_RAISE(ClException, "VTScanAPI version incompatible", -103);
  return pFunction;
}

template <typename F>
F ClMXVTScanAPIWrapper::IfThere(F pFunction) const {
  return m_pDllWrapper == nullptr ? nullptr : pFunction;
}

void ClMXVTScanAPIWrapper::SetDllWrapper(ClKelvarinVTScanAPIWrapper* pDllWrapper, void* hDevice) {
  m_pDllWrapper = pDllWrapper;
  m_hDevice = hDevice;
}

bool ClMXVTScanAPIWrapper::AssignDevice(unsigned int nDevice, ScannerTypes::DeviceDescription&) {
  return Required(Dll::VTScanAPICreateHandle)(nDevice, &m_hDevice) == 0;
}

bool ClMXVTScanAPIWrapper::UnassignDevice() {
  if (m_hDevice == nullptr) return true;
  return Required(Dll::VTScanAPIDestroyHandle)(&m_hDevice) == 0;
}

bool ClMXVTScanAPIWrapper::GetVersion(char* pszVersion, unsigned int* pnSize) {
  return Required(Dll::VTScanAPIGetVersion)(m_hDevice, pszVersion, pnSize) == 0;
}

long ClMXVTScanAPIWrapper::GetDeviceIndex(unsigned int* pnIndex) {
  return Required(Dll::VTScanAPIGetDeviceIndex)(m_hDevice, pnIndex);
}

void ClMXVTScanAPIWrapper::Beep(unsigned int nArg1, unsigned int nArg2) {
  const auto pBeep = IfThere(Dll::VTScanAPIBeep);
  if (pBeep != nullptr) pBeep(m_hDevice, nArg1, nArg2);
}

bool ClMXVTScanAPIWrapper::SetLED(unsigned int nPattern) {
  const auto pSetLED = IfThere(Dll::VTScanAPISetLEDEx);
  return pSetLED != nullptr && pSetLED(m_hDevice, nPattern) == 0;
}

bool ClMXVTScanAPIWrapper::SetLEDConfiguration(unsigned char nCount, unsigned char* pConfiguration) {
  const auto pCommand = IfThere(Dll::VTScanAPIApplyInternalCommand);
  uint32_t nSize = nCount;
  return pCommand != nullptr && pCommand(m_hDevice, cnCommandConfigureLEDs, pConfiguration, &nSize) == 0;
}

bool ClMXVTScanAPIWrapper::SetStatusLED(unsigned char* pPattern, unsigned int nSize) {
  const auto pCommand = IfThere(Dll::VTScanAPIApplyInternalCommand);
  uint32_t nBytes = nSize;
  return pCommand != nullptr && pCommand(m_hDevice, cnCommandSetStatusLEDs, pPattern, &nBytes) == 0;
}

bool ClMXVTScanAPIWrapper::SetStatusLED(unsigned long long nPattern) {
  return Required(Dll::VTScanAPISetStatusLED)(m_hDevice, nPattern) == 0;
}

bool ClMXVTScanAPIWrapper::SetCaptureSequence(unsigned char nCount, unsigned char* pLed,
                                              unsigned char* pFlags) {
  return Required(Dll::VTScanAPISetCaptureSequence)(m_hDevice, nCount, pLed, pFlags) == 0;
}

bool ClMXVTScanAPIWrapper::SetCaptureSequenceEx(unsigned int nCount, unsigned int* pSequence) {
  return Optional(Dll::VTScanAPISetCaptureSequenceEx)(m_hDevice, nCount, pSequence) == 0;
}

bool ClMXVTScanAPIWrapper::SetResolution(EScanMode_t eMode) {
  const EVTScanMode_t eLibraryMode = ToLibraryMode(eMode);
  return Required(Dll::VTScanAPISetResolution)(m_hDevice, eLibraryMode) == 0;
}

long ClMXVTScanAPIWrapper::GetResolution(unsigned int* pnWidth, unsigned int* pnHeight) {
  return Required(Dll::VTScanAPIGetResolution)(m_hDevice, pnWidth, pnHeight);
}

bool ClMXVTScanAPIWrapper::SetVSYNCLength(unsigned short nLength) {
  return Required(Dll::VTScanAPISetVSYNC)(m_hDevice, nLength) == 0;
}

bool ClMXVTScanAPIWrapper::SetGlobalGain(unsigned char nGain) {
  return Required(Dll::VTScanAPISetGlobalGain)(m_hDevice, nGain) == 0;
}

bool ClMXVTScanAPIWrapper::SetGain(int nArg1, int nArg2, int nArg3) {
  return Required(Dll::VTScanAPISetGain)(m_hDevice, nArg1, nArg2, nArg3) == 0;
}

bool ClMXVTScanAPIWrapper::GetImage(const tagBITMAPINFOHEADER* pHeader, unsigned char nArg, char cArg) {
  return Required(Dll::VTScanAPIGetImage)(m_hDevice, pHeader, nArg, cArg) == 0;
}

bool ClMXVTScanAPIWrapper::GetImageEx(const tagBITMAPINFOHEADER* pHeader, int nArg) {
  return Optional(Dll::VTScanAPIGetImageEx)(m_hDevice, pHeader, nArg) == 0;
}

bool ClMXVTScanAPIWrapper::GetImageSequence(void* pBuffer, unsigned int nArg1, unsigned int nArg2) {
  return Optional(Dll::VTScanAPIGetImageSequence)(m_hDevice, pBuffer, nArg1, nArg2) == 0;
}

bool ClMXVTScanAPIWrapper::GetSerialNumber(char* pszSerial, unsigned int* pnSize) {
  return Required(Dll::VTScanAPIGetHandleSerial)(m_hDevice, pszSerial, pnSize) == 0;
}

bool ClMXVTScanAPIWrapper::GetEPROMSize(unsigned short*) {
  return false;
}

bool ClMXVTScanAPIWrapper::ReadEPROM(unsigned short, unsigned short, void*) {
  return false;
}

bool ClMXVTScanAPIWrapper::WriteEPROM(unsigned short, unsigned short, void*) {
  return false;
}

bool ClMXVTScanAPIWrapper::WriteEPROMFile(const char*, const void*, unsigned int) {
  return false;
}

bool ClMXVTScanAPIWrapper::DeleteEPROMFile(const char*) {
  return false;
}

bool ClMXVTScanAPIWrapper::ListEPROMFile(char* pszList, unsigned int* pnSize) {
  return Required(Dll::VTScanAPIListEPROMFile)(m_hDevice, pszList, pnSize) == 0;
}

bool ClMXVTScanAPIWrapper::ReadEPROMFile(const char* pszName, void* pData, unsigned int* pnSize) {
  return Required(Dll::VTScanAPIReadEPROMFile)(m_hDevice, pszName, pData, pnSize) == 0;
}

void ClMXVTScanAPIWrapper::EnableCaptureThread(bool bEnable) {
  const long nResult = Optional(Dll::VTScanAPIEnableCapture)(m_hDevice, bEnable ? 1 : 0);
  if (nResult != 0) KLV_RAISE(ClException, "error in EnableCaptureThread", nResult);
}

long ClMXVTScanAPIWrapper::GetAPIVersion(char* pszVersion, unsigned int* pnSize) {
  return Required(Dll::VTScanAPIGetPropertyA)(m_hDevice, "Version", pszVersion, pnSize);
}

long ClMXVTScanAPIWrapper::SetCaptureMode(EScanMode_t eMode, unsigned int nCount, unsigned long long* pMasks,
                                          unsigned int nMasks) {
  const auto pSetCaptureMode = Optional(Dll::VTScanAPISetCaptureMode);
  return pSetCaptureMode(m_hDevice, ToLibraryMode(eMode), nCount, pMasks, nMasks);
}

void ClMXVTScanAPIWrapper::LockRawSequence(void** ppSequence) {
  *ppSequence = nullptr;
  KLV_CHECK(Optional(Dll::VTScanAPILockRawSequence)(m_hDevice, ppSequence));
  // A success without a sequence means the same as -60: the scanner has no frames.
  if (*ppSequence == nullptr) KLV_RAISE_NUMBER(-60);
}

void ClMXVTScanAPIWrapper::ReleaseRawSequence(void** ppSequence) {
  KLV_CHECK(Optional(Dll::VTScanAPIReleaseRawSequence)(m_hDevice, ppSequence));
}
