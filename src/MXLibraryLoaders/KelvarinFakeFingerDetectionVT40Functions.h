// The functions of the liveness library: their names, types and order, in the one table that binds them.
#pragma once

/// Calls FUNCTION with name, result and arguments of each function, in the order of binding.
///
/// All results of type long are 0 for success. A size passed by pointer is the room on entry and the length
/// on return. Image and mask of the score have one byte a pixel, row after row without padding.
#define KLV_FAKEFINGERDETECTIONVT40_FUNCTIONS(FUNCTION)                                                    \
  FUNCTION(FD_VT40Initialize, long, (void* pReserved))                                                     \
  FUNCTION(FD_VT40Uninitialize, long, ())                                                                  \
  FUNCTION(FD_VT40CreateFakeDetectionVT40Handle, long, (void** phDetection))                               \
  FUNCTION(FD_VT40DestroyHandle, long, (void** phDetection))                                               \
  FUNCTION(FD_VT40GetFakeFingerDetectionScore, long,                                                       \
           (void* hDetection, unsigned int nWidth, unsigned int nHeight, const void* pImage,               \
            const void* pMask, double* pdScore))                                                           \
  FUNCTION(FD_VT40SetPropertyA, long, (void* hDetection, const char* pszName, const char* pszValue))       \
  FUNCTION(FD_VT40SetPropertyW, long, (void* hDetection, const wchar_t* pszName, const wchar_t* pszValue)) \
  FUNCTION(FD_VT40SetPropertyLongA, long, (void* hDetection, const char* pszName, long nValue))            \
  FUNCTION(FD_VT40SetPropertyLongW, long, (void* hDetection, const wchar_t* pszName, long nValue))         \
  FUNCTION(FD_VT40SetPropertyDoubleA, long, (void* hDetection, const char* pszName, double dValue))        \
  FUNCTION(FD_VT40SetPropertyDoubleW, long, (void* hDetection, const wchar_t* pszName, double dValue))     \
  FUNCTION(FD_VT40GetPropertyA, long,                                                                      \
           (void* hDetection, const char* pszName, char* pszValue, unsigned int* pnSize))                  \
  FUNCTION(FD_VT40GetPropertyW, long,                                                                      \
           (void* hDetection, const wchar_t* pszName, wchar_t* pszValue, unsigned int* pnSize))            \
  FUNCTION(FD_VT40GetPropertyLongA, long, (void* hDetection, const char* pszName, long* pnValue))          \
  FUNCTION(FD_VT40GetPropertyLongW, long, (void* hDetection, const wchar_t* pszName, long* pnValue))       \
  FUNCTION(FD_VT40GetPropertyDoubleA, long, (void* hDetection, const char* pszName, double* pdValue))      \
  FUNCTION(FD_VT40GetPropertyDoubleW, long, (void* hDetection, const wchar_t* pszName, double* pdValue))   \
  FUNCTION(FD_VT40GetErrorDescriptionA, const char*, (long nError))                                        \
  FUNCTION(FD_VT40GetErrorDescriptionW, const wchar_t*, (long nError))
