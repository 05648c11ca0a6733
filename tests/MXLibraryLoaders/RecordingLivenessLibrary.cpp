// A liveness library that records. Its functions are declared here by hand, so that a mistake in the binding's table
// shows against them. A build renames one function to lack it.
#include "Recorder.h"

extern "C" {

RECORDING(FD_VT40Initialize, (void* pReserved), pReserved)
long FD_VT40Uninitialize() {
  return Record("FD_VT40Uninitialize");
}
RECORDING(FD_VT40CreateFakeDetectionVT40Handle, (void** ph), ph)
RECORDING(FD_VT40DestroyHandle, (void** ph), ph)
RECORDING(FD_VT40GetFakeFingerDetectionScore,
          (void* h, unsigned nWidth, unsigned nHeight, const void* pImage, const void* pMask,
           double* pdScore),
          h, nWidth, nHeight, const_cast<void*>(pImage), const_cast<void*>(pMask), pdScore)
RECORDING(FD_VT40SetPropertyA, (void* h, const char* psz, const char* pszValue), h, psz, pszValue)
RECORDING(FD_VT40SetPropertyW, (void* h, const wchar_t* psz, const wchar_t* pszValue), h, psz, pszValue)
RECORDING(FD_VT40SetPropertyLongA, (void* h, const char* psz, long nValue), h, psz, nValue)
RECORDING(FD_VT40SetPropertyLongW, (void* h, const wchar_t* psz, long nValue), h, psz, nValue)
RECORDING(FD_VT40SetPropertyDoubleA, (void* h, const char* psz, double dValue), h, psz, dValue)
RECORDING(FD_VT40SetPropertyDoubleW, (void* h, const wchar_t* psz, double dValue), h, psz, dValue)
RECORDING(FD_VT40GetPropertyA, (void* h, const char* psz, char* pszOut, unsigned* pn), h, psz, pszOut, pn)
RECORDING(FD_VT40GetPropertyW, (void* h, const wchar_t* psz, wchar_t* pszOut, unsigned* pn), h, psz, pszOut,
          pn)
RECORDING(FD_VT40GetPropertyLongA, (void* h, const char* psz, long* pnValue), h, psz, pnValue)
RECORDING(FD_VT40GetPropertyLongW, (void* h, const wchar_t* psz, long* pnValue), h, psz, pnValue)
RECORDING(FD_VT40GetPropertyDoubleA, (void* h, const char* psz, double* pdValue), h, psz, pdValue)
RECORDING(FD_VT40GetPropertyDoubleW, (void* h, const wchar_t* psz, double* pdValue), h, psz, pdValue)
const char* FD_VT40GetErrorDescriptionA(long nError) {
  return nError == -60 ? "narrow" : "";
}
const wchar_t* FD_VT40GetErrorDescriptionW(long nError) {
  return nError == -60 ? L"wide" : L"";
}

}  // extern "C"
