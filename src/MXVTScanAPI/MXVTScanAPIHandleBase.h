// The scanner as capture engine and calibration see it.
#pragma once

#include <boost/noncopyable.hpp>
#include <map>

#include "MXTools/BitmapInfoHeader.h"
#include "MXVTScanAPI/ScannerTypes.h"

/// Every operation that the system needs of a scanner. A result of type bool means success, one of type long
/// is an error number; an operation with neither raises.
///
/// Ownership  buffers are the caller's; a raw sequence is lent from LockRawSequence to ReleaseRawSequence.
/// Threads    thread-bound: the engine serialises what reaches the sensor. LockRawSequence waits in one
///            thread.
/// Errors     ClException -103 for an operation that an implementation has not.
class ClMXVTScanAPIHandleBase : private boost::noncopyable {
 public:
  /// Sensor modes. The names are those of the ten-finger scanner, where the engine uses them.
  enum EScanMode_t : int {
    eScanModeQuad = 6,   ///< 960 by 680
    eScanModeFull = 7,   ///< 3840 by 2720
    eScanModeRoll = 8,   ///< 1920 by 1362, a window
    eScanModeHalf = 32,  ///< 1920 by 1360
    eScanMode1920x2720 = 34,
    eScanMode960x1360 = 35,
    eScanMode960x1362 = 36,  ///< a window
    eScanMode960x340 = 38    ///< a window
  };

  virtual ~ClMXVTScanAPIHandleBase() = default;

  virtual bool AssignDevice(unsigned int nDevice, ScannerTypes::DeviceDescription& oDescription) = 0;
  virtual bool UnassignDevice() = 0;
  virtual bool GetVersion(char* pszVersion, unsigned int* pnSize) = 0;
  virtual long GetDeviceIndex(unsigned int* pnIndex) = 0;
  virtual void Beep(unsigned int nArg1, unsigned int nArg2) = 0;
  virtual bool SetLED(unsigned int nPattern) = 0;
  virtual bool SetLEDConfiguration(unsigned char nCount, unsigned char* pConfiguration) = 0;
  virtual bool SetCaptureSequence(unsigned char nCount, unsigned char* pLed, unsigned char* pFlags) = 0;
  virtual bool SetCaptureSequenceEx(unsigned int nCount, unsigned int* pSequence) = 0;
  virtual bool SetStatusLED(unsigned long long nPattern) = 0;
  virtual bool SetStatusLED(unsigned char* pPattern, unsigned int nSize) = 0;
  virtual bool SetResolution(EScanMode_t eMode) = 0;
  virtual long GetResolution(unsigned int* pnWidth, unsigned int* pnHeight) = 0;
  virtual bool SetVSYNCLength(unsigned short nLength) = 0;
  virtual bool SetGlobalGain(unsigned char nGain) = 0;
  virtual bool SetGain(int nArg1, int nArg2, int nArg3) = 0;
  virtual bool GetImage(const tagBITMAPINFOHEADER* pHeader, unsigned char nArg, char cArg) = 0;
  virtual bool GetImageEx(const tagBITMAPINFOHEADER* pHeader, int nArg) = 0;
  virtual bool GetImageSequence(void* pBuffer, unsigned int nArg1, unsigned int nArg2) = 0;
  virtual bool GetSerialNumber(char* pszSerial, unsigned int* pnSize) = 0;
  /// An implementation that does not know returns true and leaves *pnSize as it was.
  virtual bool GetEPROMSize(unsigned short* pnSize);
  virtual bool ReadEPROM(unsigned short nOffset, unsigned short nSize, void* pData) = 0;
  virtual bool WriteEPROM(unsigned short nOffset, unsigned short nSize, void* pData) = 0;
  virtual bool ListEPROMFile(char* pszList, unsigned int* pnSize) = 0;
  virtual bool ReadEPROMFile(const char* pszName, void* pData, unsigned int* pnSize) = 0;
  virtual bool WriteEPROMFile(const char* pszName, const void* pData, unsigned int nSize) = 0;
  virtual bool DeleteEPROMFile(const char* pszName) = 0;
  /// Starts and stops the scanner's own capture. Errors: the scanner's number.
  virtual void EnableCaptureThread(bool bEnable) = 0;
  /// Errors: -103 "No API version available." for an implementation that has none.
  virtual long GetAPIVersion(char* pszVersion, unsigned int* pnSize);
  virtual bool IsUSBPowered() const { return m_bUSBPowered; }
  /// Selects a sensor mode with nCount entries and the LED words of the sequence. Errors: -44 for an unknown
  /// mode.
  virtual long SetCaptureMode(EScanMode_t eMode, unsigned int nCount, unsigned long long* pMasks,
                              unsigned int nMasks) = 0;
  /// Waits for the next sequence of frames and borrows it; *ppSequence is NULL when none was lent.
  /// Errors: the scanner's number, -60 when it succeeds without a sequence.
  virtual void LockRawSequence(void** ppSequence) = 0;
  virtual void ReleaseRawSequence(void** ppSequence) = 0;

  /// Errors: -44 "pid must not be NULL".
  void GetPid(ClMXVTScanAPI::EScannerProductID_t* pePid) const;
  /// Fills the map of the product; that of an unknown product is empty.
  void ConfigureResolutionMap();
  const std::map<EScanMode_t, const ScannerTypes::Resolution*>& ResolutionMap() const {
    return m_oResolutionMap;
  }

  static const ScannerTypes::Resolution m_oResQVGA;
  static const ScannerTypes::Resolution m_oResVGA;
  static const ScannerTypes::Resolution m_oResSXGA;
  static const ScannerTypes::Resolution m_oResVT4Window;
  static const ScannerTypes::Resolution m_oResVT4_2560x1920;
  static const ScannerTypes::Resolution m_oResVT4_1280x1920;
  static const ScannerTypes::Resolution m_oResVT4_640x960;
  static const ScannerTypes::Resolution m_oResVT4_1280x960;
  static const ScannerTypes::Resolution m_oResVT4_640x480;
  static const ScannerTypes::Resolution m_oResVT4_320x480;
  static const ScannerTypes::Resolution m_oResVT40_1920x2720;
  static const ScannerTypes::Resolution m_oResVT40_960x1360;
  static const ScannerTypes::Resolution m_oResVT40_960x1362;
  static const ScannerTypes::Resolution m_oResVT40_960x340;
  static const ScannerTypes::Resolution m_oResVT40Quad;
  static const ScannerTypes::Resolution m_oResVT40Half;
  static const ScannerTypes::Resolution m_oResVT40Full;
  static const ScannerTypes::Resolution m_oResVT40Roll;
  static const ScannerTypes::Resolution m_oResVT40Detect;

 protected:
  ClMXVTScanAPIHandleBase() = default;

  /// To be set by an implementation that uses the map or reports its product.
  ClMXVTScanAPI::EScannerProductID_t m_ePid = ClMXVTScanAPI::eProductNone;
  bool m_bUSBPowered = false;

 private:
  std::map<EScanMode_t, const ScannerTypes::Resolution*> m_oResolutionMap;
};
