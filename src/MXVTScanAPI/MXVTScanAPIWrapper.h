// The scanner as reached through the scan library that is loaded at run time.
#pragma once

#include "MXVTScanAPI/MXVTScanAPIHandleBase.h"

class ClKelvarinVTScanAPIWrapper;

/// Forwards each operation to one open device of the scan library.
///
/// Ownership  neither the binding nor the device, which whoever opened it closes; AssignDevice and
///            UnassignDevice open and close one here. The binding's reference on the library must last as
///            long as calls are made.
/// Threads    thread-bound, but for LockRawSequence, which may wait while others call.
/// Errors     ClException -103 "VTScanAPI version incompatible" for a function that the library lacks, but
///            Beep does nothing then and the LED forms give false; ClExKelvarin -2 while no library is bound.
class ClMXVTScanAPIWrapper : public ClMXVTScanAPIHandleBase {
 public:
  ClMXVTScanAPIWrapper(ClKelvarinVTScanAPIWrapper* pDllWrapper, void* hDevice) {
    SetDllWrapper(pDllWrapper, hDevice);
  }
  void SetDllWrapper(ClKelvarinVTScanAPIWrapper* pDllWrapper, void* hDevice);

  /// Writes nothing to the description.
  bool AssignDevice(unsigned int nDevice, ScannerTypes::DeviceDescription& oDescription) override;
  /// True without a device.
  bool UnassignDevice() override;
  bool GetVersion(char* pszVersion, unsigned int* pnSize) override;
  long GetDeviceIndex(unsigned int* pnIndex) override;
  void Beep(unsigned int nArg1, unsigned int nArg2) override;
  bool SetLED(unsigned int nPattern) override;
  bool SetLEDConfiguration(unsigned char nCount, unsigned char* pConfiguration) override;
  bool SetCaptureSequence(unsigned char nCount, unsigned char* pLed, unsigned char* pFlags) override;
  bool SetCaptureSequenceEx(unsigned int nCount, unsigned int* pSequence) override;
  bool SetStatusLED(unsigned long long nPattern) override;
  bool SetStatusLED(unsigned char* pPattern, unsigned int nSize) override;
  /// Errors: -44 for an unknown mode.
  bool SetResolution(EScanMode_t eMode) override;
  long GetResolution(unsigned int* pnWidth, unsigned int* pnHeight) override;
  bool SetVSYNCLength(unsigned short nLength) override;
  bool SetGlobalGain(unsigned char nGain) override;
  bool SetGain(int nArg1, int nArg2, int nArg3) override;
  bool GetImage(const tagBITMAPINFOHEADER* pHeader, unsigned char nArg, char cArg) override;
  bool GetImageEx(const tagBITMAPINFOHEADER* pHeader, int nArg) override;
  bool GetImageSequence(void* pBuffer, unsigned int nArg1, unsigned int nArg2) override;
  bool GetSerialNumber(char* pszSerial, unsigned int* pnSize) override;
  /// The EEPROM is reached by its files, and is not written: these five do nothing and give false.
  bool GetEPROMSize(unsigned short* pnSize) override;
  bool ReadEPROM(unsigned short nOffset, unsigned short nSize, void* pData) override;
  bool WriteEPROM(unsigned short nOffset, unsigned short nSize, void* pData) override;
  bool WriteEPROMFile(const char* pszName, const void* pData, unsigned int nSize) override;
  bool DeleteEPROMFile(const char* pszName) override;
  bool ListEPROMFile(char* pszList, unsigned int* pnSize) override;
  bool ReadEPROMFile(const char* pszName, void* pData, unsigned int* pnSize) override;
  void EnableCaptureThread(bool bEnable) override;
  long GetAPIVersion(char* pszVersion, unsigned int* pnSize) override;
  long SetCaptureMode(EScanMode_t eMode, unsigned int nCount, unsigned long long* pMasks,
                      unsigned int nMasks) override;
  void LockRawSequence(void** ppSequence) override;
  void ReleaseRawSequence(void** ppSequence) override;

 private:
  template <typename F>
  F Required(F pFunction) const;
  template <typename F>
  F Optional(F pFunction) const;
  template <typename F>
  F IfThere(F pFunction) const;

  ClKelvarinVTScanAPIWrapper* m_pDllWrapper = nullptr;
  void* m_hDevice = nullptr;
};
