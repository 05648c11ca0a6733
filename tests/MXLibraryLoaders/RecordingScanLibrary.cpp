// A scan library that writes down each call with its arguments and answers with a number that the test sets.
// Its functions are declared here by hand, so that a mistake in the binding's table shows against them.
#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <type_traits>

namespace {

std::string szRecord;
long nAnswer = 0;
/// Handles are addresses in here and are written down by their place.
char aHandles[128];
char szDescription[] = "described";
wchar_t wszDescription[] = L"described";

/// Texts as they are, numbers as numbers, what lies behind a pointer with an asterisk, and handles as their value.
template <typename T>
void Put(std::ostream& rOut, const T& rValue) {
  if constexpr (std::is_convertible_v<T, const char*>) {
    rOut << (rValue == nullptr ? "NULL" : static_cast<const char*>(rValue));
  } else if constexpr (std::is_convertible_v<T, const wchar_t*>) {
    rOut << 'L' << static_cast<char>(rValue[0]);
  } else if constexpr (std::is_same_v<T, void*>) {
    rOut << (rValue == nullptr ? 0 : static_cast<char*>(rValue) - aHandles);
  } else if constexpr (std::is_pointer_v<T>) {
    if (rValue == nullptr) {
      rOut << "NULL";
    } else {
      rOut << '*';
      Put(rOut, *rValue);
    }
  } else {
    // The plus makes a number of a character.
    rOut << +rValue;
  }
}

/// Named as the caller, with the arguments that it was called with.
template <typename... T>
long Record(const char* szFunction, const T&... aArguments) {
  std::ostringstream oLine;
  oLine << szFunction << '(';
  ((Put(oLine, aArguments), oLine << ','), ...);
  std::string szLine = oLine.str();
  if (szLine.back() == ',') szLine.pop_back();
  szRecord += szLine + ")";
  return nAnswer;
}

#define RECORD(...) return Record(__func__, __VA_ARGS__)

struct Header {
  uint32_t nSize;
};

}  // namespace

extern "C" {

void* TestHandle(int nPlace) {
  return aHandles + nPlace;
}
const char* TestRecord() {
  return szRecord.c_str();
}
void TestAnswer(long nNumber) {
  szRecord.clear();
  nAnswer = nNumber;
}

long VTScanAPIInitialize(void* pReserved) {
  RECORD(pReserved);
}
long VTScanAPIUninitialize() {
  return Record(__func__);
}
long VTScanAPIQueryDevices(unsigned* pIds, unsigned* pnCount, unsigned nId) {
  RECORD(pIds, pnCount, nId);
}
long VTScanAPIGetDeviceSerial(unsigned nId, char* pszSerial, unsigned* pnSize) {
  RECORD(nId, pszSerial, pnSize);
}
long VTScanAPIGetVersion(void* hDevice, char* pszText, unsigned* pnSize) {
  RECORD(hDevice, pszText, pnSize);
}
long VTScanAPIGetHandleSerial(void* hDevice, char* pszText, unsigned* pnSize) {
  RECORD(hDevice, pszText, pnSize);
}
long VTScanAPICreateHandle(unsigned nId, void** phDevice) {
  *phDevice = aHandles + 77;
  RECORD(nId, phDevice);
}
long VTScanAPIDestroyHandle(void** phDevice) {
  const long nResult = Record(__func__, phDevice);
  *phDevice = nullptr;
  return nResult;
}
long VTScanAPIGetDeviceIndex(void* hDevice, unsigned* pnIndex) {
  RECORD(hDevice, pnIndex);
}
#ifndef KLV_TEST_WITHOUT_REQUIRED
long VTScanAPIGetPlugStatus(void* hDevice, int* pnStatus) {
  RECORD(hDevice, pnStatus);
}
#endif
long VTScanAPISetCaptureSequence(void* hDevice, unsigned char nCount, unsigned char* pLed,
                                 unsigned char* pFlags) {
  RECORD(hDevice, nCount, pLed, pFlags);
}
long VTScanAPISetStatusLED(void* hDevice, unsigned long long nPattern) {
  RECORD(hDevice, nPattern);
}
long VTScanAPISetResolution(void* hDevice, int nMode) {
  RECORD(hDevice, nMode);
}
long VTScanAPIGetResolution(void* hDevice, unsigned* pnWidth, unsigned* pnHeight) {
  RECORD(hDevice, pnWidth, pnHeight);
}
long VTScanAPISetVSYNC(void* hDevice, unsigned short nLength) {
  RECORD(hDevice, nLength);
}
long VTScanAPISetGlobalGain(void* hDevice, unsigned char nGain) {
  RECORD(hDevice, nGain);
}
long VTScanAPISetGain(void* hDevice, int n1, int n2, int n3) {
  RECORD(hDevice, n1, n2, n3);
}
long VTScanAPIGetImage(void* hDevice, const Header* pHeader, unsigned char nArg, char cArg) {
  RECORD(hDevice, pHeader->nSize, nArg, cArg);
}
long VTScanAPIListEPROMFile(void* hDevice, char* pszList, unsigned* pnSize) {
  RECORD(hDevice, pszList, pnSize);
}
long VTScanAPIReadEPROMFile(void* hDevice, const char* pszName, void* pData, unsigned* pnSize) {
  RECORD(hDevice, pszName, pData, pnSize);
}
long VTScanAPISetPropertyA(void* hDevice, const char* pszName, const char* pszValue) {
  RECORD(hDevice, pszName, pszValue);
}
long VTScanAPISetPropertyW(void* hDevice, const wchar_t* pszName, const wchar_t* pszValue) {
  RECORD(hDevice, pszName, pszValue);
}
long VTScanAPIGetPropertyA(void* hDevice, const char* pszName, char* pszValue, unsigned* pnSize) {
  RECORD(hDevice, pszName, pszValue, pnSize);
}
long VTScanAPIGetPropertyW(void* hDevice, const wchar_t* pszName, wchar_t*, unsigned* pnSize) {
  RECORD(hDevice, pszName, pnSize);
}
char* VTScanAPIGetErrorDescriptionA(long nError) {
  Record(__func__, nError);
  return szDescription;
}
wchar_t* VTScanAPIGetErrorDescriptionW(long nError) {
  Record(__func__, nError);
  return wszDescription;
}

#ifndef KLV_TEST_WITHOUT_OPTIONAL
long VTScanAPIEnableCapture(void* hDevice, int bEnable) {
  RECORD(hDevice, bEnable);
}
long VTScanAPIGetImageSequence(void* hDevice, void* pBuffer, unsigned n1, unsigned n2) {
  RECORD(hDevice, pBuffer, n1, n2);
}
long VTScanAPIBeep(void* hDevice, unsigned n1, unsigned n2) {
  RECORD(hDevice, n1, n2);
}
long VTScanAPISetLED(void* hDevice, unsigned nPattern) {
  RECORD(hDevice, nPattern);
}
long VTScanAPISetLEDEx(void* hDevice, unsigned nPattern) {
  RECORD(hDevice, nPattern);
}
long VTScanAPIApplyInternalCommand(void* hDevice, int nCommand, void* pData, void* pnSize) {
  uint32_t nSize = 0;
  std::memcpy(&nSize, pnSize, sizeof(nSize));
  RECORD(hDevice, nCommand, static_cast<unsigned char*>(pData), nSize);
}
long VTScanAPISetCaptureSequenceEx(void* hDevice, unsigned nCount, unsigned* pSequence) {
  RECORD(hDevice, nCount, pSequence);
}
long VTScanAPIGetImageEx(void* hDevice, const Header* pHeader, int nArg) {
  RECORD(hDevice, pHeader->nSize, nArg);
}
long VTScanAPILockRawSequence(void* hDevice, void** ppSequence) {
  *ppSequence = aHandles + 88;
  RECORD(hDevice, ppSequence);
}
long VTScanAPIReleaseRawSequence(void* hDevice, void** ppSequence) {
  RECORD(hDevice, ppSequence);
}
long VTScanAPISetCaptureMode(void* hDevice, int nMode, unsigned nCount, unsigned long long* pMasks,
                             unsigned nMasks) {
  RECORD(hDevice, nMode, nCount, pMasks, nMasks);
}
long VTScanAPIGetPropertyLongA(void* hDevice, const char* pszName, long* pnValue) {
  RECORD(hDevice, pszName, pnValue);
}
long VTScanAPISetPropertyLongA(void* hDevice, const char* pszName, long nValue) {
  RECORD(hDevice, pszName, nValue);
}
long VTScanAPISetPropertyDoubleA(void* hDevice, const char* pszName, double dValue) {
  RECORD(hDevice, pszName, dValue);
}
long VTScanAPIGetPropertyDoubleA(void* hDevice, const char* pszName, double* pdValue) {
  RECORD(hDevice, pszName, pdValue);
}
#endif

}  // extern "C"
