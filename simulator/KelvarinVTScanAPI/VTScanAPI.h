/* The functions of the scan library as a C program sees them: the simulator exports exactly these. */
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <wchar.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define VTSIM_EXPORT __attribute__((visibility("default")))
#else
#define VTSIM_EXPORT
#endif

/* Sensor modes are plain numbers. */
typedef int EVTScanMode_t;

/* The 40 bytes of a BMP information header. */
typedef struct tagBITMAPINFOHEADER {
  uint32_t biSize;
  int32_t biWidth;
  int32_t biHeight;
  uint16_t biPlanes;
  uint16_t biBitCount;
  uint32_t biCompression;
  uint32_t biSizeImage;
  int32_t biXPelsPerMeter;
  int32_t biYPelsPerMeter;
  uint32_t biClrUsed;
  uint32_t biClrImportant;
} tagBITMAPINFOHEADER;

VTSIM_EXPORT long VTScanAPIInitialize(void* pReserved);
VTSIM_EXPORT long VTScanAPIUninitialize(void);
VTSIM_EXPORT long VTScanAPIQueryDevices(unsigned int* pIds, unsigned int* pnCount, unsigned int nProductId);
VTSIM_EXPORT long VTScanAPIGetDeviceSerial(unsigned int nId, char* pszSerial, unsigned int* pnSize);
VTSIM_EXPORT long VTScanAPIGetVersion(void* hDevice, char* pszVersion, unsigned int* pnSize);
VTSIM_EXPORT long VTScanAPIGetHandleSerial(void* hDevice, char* pszSerial, unsigned int* pnSize);
VTSIM_EXPORT long VTScanAPICreateHandle(unsigned int nId, void** phDevice);
VTSIM_EXPORT long VTScanAPIDestroyHandle(void** phDevice);
VTSIM_EXPORT long VTScanAPIGetDeviceIndex(void* hDevice, unsigned int* pnIndex);
VTSIM_EXPORT long VTScanAPIGetPlugStatus(void* hDevice, int* pnStatus);
VTSIM_EXPORT long VTScanAPISetCaptureSequence(void* hDevice, unsigned char nCount, unsigned char* pLed,
                                              unsigned char* pFlags);
VTSIM_EXPORT long VTScanAPISetStatusLED(void* hDevice, unsigned long long nPattern);
VTSIM_EXPORT long VTScanAPISetResolution(void* hDevice, EVTScanMode_t eMode);
VTSIM_EXPORT long VTScanAPIGetResolution(void* hDevice, unsigned int* pnWidth, unsigned int* pnHeight);
VTSIM_EXPORT long VTScanAPISetVSYNC(void* hDevice, unsigned short nLength);
VTSIM_EXPORT long VTScanAPISetGlobalGain(void* hDevice, unsigned char nGain);
VTSIM_EXPORT long VTScanAPISetGain(void* hDevice, int nArg1, int nArg2, int nArg3);
VTSIM_EXPORT long VTScanAPIGetImage(void* hDevice, const tagBITMAPINFOHEADER* pHeader, unsigned char nArg,
                                    char cArg);
VTSIM_EXPORT long VTScanAPIListEPROMFile(void* hDevice, char* pszList, unsigned int* pnSize);
VTSIM_EXPORT long VTScanAPIReadEPROMFile(void* hDevice, const char* pszName, void* pData,
                                         unsigned int* pnSize);
VTSIM_EXPORT long VTScanAPISetPropertyA(void* hDevice, const char* pszName, const char* pszValue);
VTSIM_EXPORT long VTScanAPISetPropertyW(void* hDevice, const wchar_t* pszName, const wchar_t* pszValue);
VTSIM_EXPORT long VTScanAPIGetPropertyA(void* hDevice, const char* pszName, char* pszValue,
                                        unsigned int* pnSize);
VTSIM_EXPORT long VTScanAPIGetPropertyW(void* hDevice, const wchar_t* pszName, wchar_t* pszValue,
                                        unsigned int* pnSize);
VTSIM_EXPORT char* VTScanAPIGetErrorDescriptionA(long nError);
VTSIM_EXPORT wchar_t* VTScanAPIGetErrorDescriptionW(long nError);
VTSIM_EXPORT long VTScanAPIEnableCapture(void* hDevice, int bEnable);
VTSIM_EXPORT long VTScanAPIGetImageSequence(void* hDevice, void* pBuffer, unsigned int nArg1,
                                            unsigned int nArg2);
VTSIM_EXPORT long VTScanAPIBeep(void* hDevice, unsigned int nArg1, unsigned int nArg2);
VTSIM_EXPORT long VTScanAPISetLED(void* hDevice, unsigned int nPattern);
VTSIM_EXPORT long VTScanAPISetLEDEx(void* hDevice, unsigned int nPattern);
VTSIM_EXPORT long VTScanAPIApplyInternalCommand(void* hDevice, int nCommand, void* pData, void* pnSize);
VTSIM_EXPORT long VTScanAPISetCaptureSequenceEx(void* hDevice, unsigned int nCount, unsigned int* pSequence);
VTSIM_EXPORT long VTScanAPIGetImageEx(void* hDevice, const tagBITMAPINFOHEADER* pHeader, int nArg);
VTSIM_EXPORT long VTScanAPILockRawSequence(void* hDevice, void** ppSequence);
VTSIM_EXPORT long VTScanAPIReleaseRawSequence(void* hDevice, void** ppSequence);
VTSIM_EXPORT long VTScanAPISetCaptureMode(void* hDevice, EVTScanMode_t eMode, unsigned int nCount,
                                          unsigned long long* pMasks, unsigned int nMasks);
VTSIM_EXPORT long VTScanAPIGetPropertyLongA(void* hDevice, const char* pszName, long* pnValue);
VTSIM_EXPORT long VTScanAPISetPropertyLongA(void* hDevice, const char* pszName, long nValue);
VTSIM_EXPORT long VTScanAPISetPropertyDoubleA(void* hDevice, const char* pszName, double dValue);
VTSIM_EXPORT long VTScanAPIGetPropertyDoubleA(void* hDevice, const char* pszName, double* pdValue);

#ifdef __cplusplus
}
#endif
