// The exported functions of the liveness library.
#include "KelvarinFakeFingerDetectionVT40/FDVT40.h"

#include "KelvarinFakeFingerDetectionVT40/Detection.h"
#include "boundary/Boundary.h"
#include "boundary/ErrorText.h"

using namespace Simulator;

namespace {

/// Runs the operation of a function unless the fault script strikes. One that gives something back runs in
/// any case, since no host could do it again.
template <typename F>
long Call(const char* szFunction, bool bGivesBack, F&& fnOperation) noexcept {
  long nResult = 0;
  bool bStruck = false;
  const long nOutcome = Guarded([&] {
    bStruck = ClDetection::Get().Faults().Strikes(szFunction, false, nResult);
    if (!bStruck || bGivesBack) fnOperation(ClDetection::Get());
  });
  return bStruck ? nResult : nOutcome;
}

std::string Name(const char* pszName) {
  NeedPointer(pszName);
  return pszName;
}

std::string Name(const wchar_t* wszName) {
  NeedPointer(wszName);
  std::string sName;
  for (; *wszName; ++wszName) sName += *wszName < 128 ? static_cast<char>(*wszName) : '?';
  return sName;
}

template <typename C>
long Refuse(const char* szFunction, void* hDetection, const C* pszName) noexcept {
  return Call(szFunction, false, [&](ClDetection& o) { o.Refuse(hDetection, Name(pszName)); });
}

template <typename C>
long GetText(const char* szFunction, void* hDetection, const C* pszName, C* pszValue,
             unsigned* pnSize) noexcept {
  return Call(szFunction, false, [&](ClDetection& o) {
    const std::string sText = o.Text(hDetection, Name(pszName));
    HandOutText(std::basic_string<C>(sText.begin(), sText.end()), pszValue, pnSize);
  });
}

template <typename C>
long GetNumber(const char* szFunction, void* hDetection, const C* pszName, long* pnValue) noexcept {
  return Call(szFunction, false, [&](ClDetection& o) {
    NeedPointer(pnValue);
    *pnValue = o.Number(hDetection, Name(pszName));
  });
}

template <typename C>
long GetFraction(const char* szFunction, void* hDetection, const C* pszName, double* pdValue) noexcept {
  return Call(szFunction, false, [&](ClDetection& o) {
    NeedPointer(pdValue);
    *pdValue = o.Fraction(hDetection, Name(pszName));
  });
}

}  // namespace

extern "C" {

long FD_VT40Initialize(void*) {
  const long nFaults = Guarded([] { ClDetection::Get().ReadFaultsAtRest(); });
  if (nFaults != 0) return nFaults;
  return Call("FD_VT40Initialize", false, [](ClDetection& o) { o.Initialize(); });
}

long FD_VT40Uninitialize(void) {
  return Call("FD_VT40Uninitialize", true, [](ClDetection& o) { o.Uninitialize(); });
}

long FD_VT40CreateFakeDetectionVT40Handle(void** phDetection) {
  return Call("FD_VT40CreateFakeDetectionVT40Handle", false, [&](ClDetection& o) {
    NeedPointer(phDetection);
    *phDetection = o.Create();
  });
}

long FD_VT40DestroyHandle(void** phDetection) {
  return Call("FD_VT40DestroyHandle", true, [&](ClDetection& o) {
    NeedPointer(phDetection);
    o.Destroy(*phDetection);
    *phDetection = nullptr;
  });
}

long FD_VT40GetFakeFingerDetectionScore(void* hDetection, unsigned int nWidth, unsigned int nHeight,
                                        const void* pImage, const void* pMask, double* pdScore) {
  return Call("FD_VT40GetFakeFingerDetectionScore", false, [&](ClDetection& o) {
    NeedPointer(pImage);
    NeedPointer(pMask);
    NeedPointer(pdScore);
    *pdScore = o.Score(hDetection, nWidth, nHeight, static_cast<const uint8_t*>(pImage),
                       static_cast<const uint8_t*>(pMask));
  });
}

long FD_VT40SetPropertyA(void* hDetection, const char* pszName, const char*) {
  return Refuse("FD_VT40SetPropertyA", hDetection, pszName);
}
long FD_VT40SetPropertyW(void* hDetection, const wchar_t* pszName, const wchar_t*) {
  return Refuse("FD_VT40SetPropertyW", hDetection, pszName);
}
long FD_VT40SetPropertyLongA(void* hDetection, const char* pszName, long) {
  return Refuse("FD_VT40SetPropertyLongA", hDetection, pszName);
}
long FD_VT40SetPropertyLongW(void* hDetection, const wchar_t* pszName, long) {
  return Refuse("FD_VT40SetPropertyLongW", hDetection, pszName);
}
long FD_VT40SetPropertyDoubleA(void* hDetection, const char* pszName, double) {
  return Refuse("FD_VT40SetPropertyDoubleA", hDetection, pszName);
}
long FD_VT40SetPropertyDoubleW(void* hDetection, const wchar_t* pszName, double) {
  return Refuse("FD_VT40SetPropertyDoubleW", hDetection, pszName);
}

long FD_VT40GetPropertyA(void* hDetection, const char* pszName, char* pszValue, unsigned int* pnSize) {
  return GetText("FD_VT40GetPropertyA", hDetection, pszName, pszValue, pnSize);
}
long FD_VT40GetPropertyW(void* hDetection, const wchar_t* pszName, wchar_t* pszValue, unsigned int* pnSize) {
  return GetText("FD_VT40GetPropertyW", hDetection, pszName, pszValue, pnSize);
}
long FD_VT40GetPropertyLongA(void* hDetection, const char* pszName, long* pnValue) {
  return GetNumber("FD_VT40GetPropertyLongA", hDetection, pszName, pnValue);
}
long FD_VT40GetPropertyLongW(void* hDetection, const wchar_t* pszName, long* pnValue) {
  return GetNumber("FD_VT40GetPropertyLongW", hDetection, pszName, pnValue);
}
long FD_VT40GetPropertyDoubleA(void* hDetection, const char* pszName, double* pdValue) {
  return GetFraction("FD_VT40GetPropertyDoubleA", hDetection, pszName, pdValue);
}
long FD_VT40GetPropertyDoubleW(void* hDetection, const wchar_t* pszName, double* pdValue) {
  return GetFraction("FD_VT40GetPropertyDoubleW", hDetection, pszName, pdValue);
}

const char* FD_VT40GetErrorDescriptionA(long nError) {
  return ErrorText(nError);
}
const wchar_t* FD_VT40GetErrorDescriptionW(long nError) {
  return ErrorTextWide(nError);
}

}  // extern "C"
