// The functions of the scan library: their names, types and order, in the one table that binds them.
#pragma once

#include "MXTools/BitmapInfoHeader.h"

/// Sensor modes as the scan library counts them.
using EVTScanMode_t = int;

/// Calls REQUIRED or OPTIONAL with name, result and arguments of each function, in the order of binding.
///
/// All results of type long are 0 for success and a negative error number otherwise. A size passed by pointer
/// is the room on entry and the length on return.
#define KLV_VTSCANAPI_FUNCTIONS(REQUIRED, OPTIONAL)                                                       \
  REQUIRED(VTScanAPIInitialize, long, (void* pReserved))                                                  \
  REQUIRED(VTScanAPIUninitialize, long, ())                                                               \
  REQUIRED(VTScanAPIQueryDevices, long,                                                                   \
           (unsigned int* pIds, unsigned int* pnCount, unsigned int nProductId))                          \
  REQUIRED(VTScanAPIGetDeviceSerial, long, (unsigned int nId, char* pszSerial, unsigned int* pnSize))     \
  REQUIRED(VTScanAPIGetVersion, long, (void* hDevice, char* pszVersion, unsigned int* pnSize))            \
  REQUIRED(VTScanAPIGetHandleSerial, long, (void* hDevice, char* pszSerial, unsigned int* pnSize))        \
  REQUIRED(VTScanAPICreateHandle, long, (unsigned int nId, void** phDevice))                              \
  REQUIRED(VTScanAPIDestroyHandle, long, (void** phDevice))                                               \
  REQUIRED(VTScanAPIGetDeviceIndex, long, (void* hDevice, unsigned int* pnIndex))                         \
  REQUIRED(VTScanAPIGetPlugStatus, long, (void* hDevice, int* pnStatus))                                  \
  REQUIRED(VTScanAPISetCaptureSequence, long,                                                             \
           (void* hDevice, unsigned char nCount, unsigned char* pLed, unsigned char* pFlags))             \
  REQUIRED(VTScanAPISetStatusLED, long, (void* hDevice, unsigned long long nPattern))                     \
  REQUIRED(VTScanAPISetResolution, long, (void* hDevice, EVTScanMode_t eMode))                            \
  REQUIRED(VTScanAPIGetResolution, long, (void* hDevice, unsigned int* pnWidth, unsigned int* pnHeight))  \
  REQUIRED(VTScanAPISetVSYNC, long, (void* hDevice, unsigned short nLength))                              \
  REQUIRED(VTScanAPISetGlobalGain, long, (void* hDevice, unsigned char nGain))                            \
  REQUIRED(VTScanAPISetGain, long, (void* hDevice, int nArg1, int nArg2, int nArg3))                      \
  REQUIRED(VTScanAPIGetImage, long,                                                                       \
           (void* hDevice, const tagBITMAPINFOHEADER* pHeader, unsigned char nArg, char cArg))            \
  REQUIRED(VTScanAPIListEPROMFile, long, (void* hDevice, char* pszList, unsigned int* pnSize))            \
  REQUIRED(VTScanAPIReadEPROMFile, long,                                                                  \
           (void* hDevice, const char* pszName, void* pData, unsigned int* pnSize))                       \
  REQUIRED(VTScanAPISetPropertyA, long, (void* hDevice, const char* pszName, const char* pszValue))       \
  REQUIRED(VTScanAPISetPropertyW, long, (void* hDevice, const wchar_t* pszName, const wchar_t* pszValue)) \
  REQUIRED(VTScanAPIGetPropertyA, long,                                                                   \
           (void* hDevice, const char* pszName, char* pszValue, unsigned int* pnSize))                    \
  REQUIRED(VTScanAPIGetPropertyW, long,                                                                   \
           (void* hDevice, const wchar_t* pszName, wchar_t* pszValue, unsigned int* pnSize))              \
  REQUIRED(VTScanAPIGetErrorDescriptionA, char*, (long nError))                                           \
  REQUIRED(VTScanAPIGetErrorDescriptionW, wchar_t*, (long nError))                                        \
  OPTIONAL(VTScanAPIEnableCapture, long, (void* hDevice, int bEnable))                                    \
  OPTIONAL(VTScanAPIGetImageSequence, long,                                                               \
           (void* hDevice, void* pBuffer, unsigned int nArg1, unsigned int nArg2))                        \
  OPTIONAL(VTScanAPIBeep, long, (void* hDevice, unsigned int nArg1, unsigned int nArg2))                  \
  OPTIONAL(VTScanAPISetLED, long, (void* hDevice, unsigned int nPattern))                                 \
  OPTIONAL(VTScanAPISetLEDEx, long, (void* hDevice, unsigned int nPattern))                               \
  OPTIONAL(VTScanAPIApplyInternalCommand, long, (void* hDevice, int nCommand, void* pData, void* pnSize)) \
  OPTIONAL(VTScanAPISetCaptureSequenceEx, long,                                                           \
           (void* hDevice, unsigned int nCount, unsigned int* pSequence))                                 \
  OPTIONAL(VTScanAPIGetImageEx, long, (void* hDevice, const tagBITMAPINFOHEADER* pHeader, int nArg))      \
  OPTIONAL(VTScanAPILockRawSequence, long, (void* hDevice, void** ppSequence))                            \
  OPTIONAL(VTScanAPIReleaseRawSequence, long, (void* hDevice, void** ppSequence))                         \
  OPTIONAL(VTScanAPISetCaptureMode, long,                                                                 \
           (void* hDevice, EVTScanMode_t eMode, unsigned int nCount, unsigned long long* pMasks,          \
            unsigned int nMasks))                                                                         \
  OPTIONAL(VTScanAPIGetPropertyLongA, long, (void* hDevice, const char* pszName, long* pnValue))          \
  OPTIONAL(VTScanAPISetPropertyLongA, long, (void* hDevice, const char* pszName, long nValue))            \
  OPTIONAL(VTScanAPISetPropertyDoubleA, long, (void* hDevice, const char* pszName, double dValue))        \
  OPTIONAL(VTScanAPIGetPropertyDoubleA, long, (void* hDevice, const char* pszName, double* pdValue))
