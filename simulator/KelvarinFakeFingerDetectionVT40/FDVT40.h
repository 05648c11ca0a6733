/* The functions of the liveness library as a C program sees them: the simulator exports exactly these. */
#pragma once

#include <wchar.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define FDSIM_EXPORT __attribute__((visibility("default")))
#else
#define FDSIM_EXPORT
#endif

FDSIM_EXPORT long FD_VT40Initialize(void* pReserved);
FDSIM_EXPORT long FD_VT40Uninitialize(void);
FDSIM_EXPORT long FD_VT40CreateFakeDetectionVT40Handle(void** phDetection);
FDSIM_EXPORT long FD_VT40DestroyHandle(void** phDetection);
FDSIM_EXPORT long FD_VT40GetFakeFingerDetectionScore(void* hDetection, unsigned int nWidth,
                                                     unsigned int nHeight, const void* pImage,
                                                     const void* pMask, double* pdScore);
FDSIM_EXPORT long FD_VT40SetPropertyA(void* hDetection, const char* pszName, const char* pszValue);
FDSIM_EXPORT long FD_VT40SetPropertyW(void* hDetection, const wchar_t* pszName, const wchar_t* pszValue);
FDSIM_EXPORT long FD_VT40SetPropertyLongA(void* hDetection, const char* pszName, long nValue);
FDSIM_EXPORT long FD_VT40SetPropertyLongW(void* hDetection, const wchar_t* pszName, long nValue);
FDSIM_EXPORT long FD_VT40SetPropertyDoubleA(void* hDetection, const char* pszName, double dValue);
FDSIM_EXPORT long FD_VT40SetPropertyDoubleW(void* hDetection, const wchar_t* pszName, double dValue);
FDSIM_EXPORT long FD_VT40GetPropertyA(void* hDetection, const char* pszName, char* pszValue,
                                      unsigned int* pnSize);
FDSIM_EXPORT long FD_VT40GetPropertyW(void* hDetection, const wchar_t* pszName, wchar_t* pszValue,
                                      unsigned int* pnSize);
FDSIM_EXPORT long FD_VT40GetPropertyLongA(void* hDetection, const char* pszName, long* pnValue);
FDSIM_EXPORT long FD_VT40GetPropertyLongW(void* hDetection, const wchar_t* pszName, long* pnValue);
FDSIM_EXPORT long FD_VT40GetPropertyDoubleA(void* hDetection, const char* pszName, double* pdValue);
FDSIM_EXPORT long FD_VT40GetPropertyDoubleW(void* hDetection, const wchar_t* pszName, double* pdValue);
FDSIM_EXPORT const char* FD_VT40GetErrorDescriptionA(long nError);
FDSIM_EXPORT const wchar_t* FD_VT40GetErrorDescriptionW(long nError);

#ifdef __cplusplus
}
#endif
