// A scan library that writes down each call with its arguments and answers with a number that the test sets.
// Its functions are declared here by hand, so that a mistake in the binding's table shows against them.
#include <cstdint>
#include <sstream>
#include <string>
#include <type_traits>

namespace {

std::string szRecord;
long nAnswer = 0;
int nLent = 0;
/// Handles are addresses in this array and are written down by their index.
char aHandles[128];

/// Writes texts as they are, numbers as numbers, what a pointer leads to with an asterisk, and handles as
/// their index.
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
    // The plus promotes a character to a number.
    rOut << +rValue;
  }
}

/// Records the name of the function and the arguments that it was called with.
template <typename... T>
long Record(const char* szFunction, const T&... aArguments) {
  std::ostringstream oLine;
  ((Put(oLine, aArguments), oLine << ','), ...);
  szRecord += std::string(szFunction) + '(' + oLine.str();
  if (sizeof...(T) != 0) szRecord.pop_back();
  szRecord += ')';
  return nAnswer;
}

char szDescription[] = "described";
wchar_t wszDescription[] = L"described";

struct Header {
  uint32_t nSize;
};

}  // namespace

/// A function that does nothing but record: its name, its parameters and what of them is written down.
#define RECORDING(Name, Parameters, ...) \
  long Name Parameters {                 \
    return Record(#Name, __VA_ARGS__);   \
  }

extern "C" {

void* TestHandle(int nPlace) {
  return aHandles + nPlace;
}
const char* TestRecord() {
  return szRecord.c_str();
}
/// What every call returns from now on, and the index of the sequence that is lent, 0 for none.
void TestAnswer(long nNumber, int nSequence) {
  szRecord.clear();
  nAnswer = nNumber;
  nLent = nSequence;
}

RECORDING(VTScanAPIInitialize, (void* pReserved), pReserved)
long VTScanAPIUninitialize() {
  return nAnswer;
}
RECORDING(VTScanAPIQueryDevices, (unsigned* pIds, unsigned* pnCount, unsigned nId), pIds, pnCount, nId)
RECORDING(VTScanAPIGetDeviceSerial, (unsigned nId, char* psz, unsigned* pnSize), nId, psz, pnSize)
RECORDING(VTScanAPIGetVersion, (void* h, char* psz, unsigned* pnSize), h, psz, pnSize)
RECORDING(VTScanAPIGetHandleSerial, (void* h, char* psz, unsigned* pnSize), h, psz, pnSize)
long VTScanAPICreateHandle(unsigned nId, void** phDevice) {
  *phDevice = aHandles + 77;
  return Record(__func__, nId, phDevice);
}
long VTScanAPIDestroyHandle(void** phDevice) {
  const long nResult = Record(__func__, phDevice);
  *phDevice = nullptr;
  return nResult;
}
RECORDING(VTScanAPIGetDeviceIndex, (void* h, unsigned* pnIndex), h, pnIndex)
#ifndef KLV_TEST_WITHOUT_REQUIRED
RECORDING(VTScanAPIGetPlugStatus, (void* h, int* pnStatus), h, pnStatus)
#endif
RECORDING(VTScanAPISetCaptureSequence, (void* h, unsigned char n, unsigned char* pLed, unsigned char* pFlags),
          h, n, pLed, pFlags)
RECORDING(VTScanAPISetStatusLED, (void* h, unsigned long long nPattern), h, nPattern)
RECORDING(VTScanAPISetResolution, (void* h, int nMode), h, nMode)
RECORDING(VTScanAPIGetResolution, (void* h, unsigned* pnWidth, unsigned* pnHeight), h, pnWidth, pnHeight)
RECORDING(VTScanAPISetVSYNC, (void* h, unsigned short nLength), h, nLength)
RECORDING(VTScanAPISetGlobalGain, (void* h, unsigned char nGain), h, nGain)
RECORDING(VTScanAPISetGain, (void* h, int n1, int n2, int n3), h, n1, n2, n3)
RECORDING(VTScanAPIGetImage, (void* h, const Header* p, unsigned char n, char c), h, p->nSize, n, c)
RECORDING(VTScanAPIListEPROMFile, (void* h, char* pszList, unsigned* pnSize), h, pszList, pnSize)
RECORDING(VTScanAPIReadEPROMFile, (void* h, const char* psz, void* p, unsigned* pnSize), h, psz, p, pnSize)
RECORDING(VTScanAPISetPropertyA, (void* h, const char* psz, const char* pszValue), h, psz, pszValue)
RECORDING(VTScanAPISetPropertyW, (void* h, const wchar_t* psz, const wchar_t* pszValue), h, psz, pszValue)
RECORDING(VTScanAPIGetPropertyA, (void* h, const char* psz, char* pszOut, unsigned* pn), h, psz, pszOut, pn)
RECORDING(VTScanAPIGetPropertyW, (void* h, const wchar_t* psz, wchar_t*, unsigned* pn), h, psz, pn)
char* VTScanAPIGetErrorDescriptionA(long) {
  return szDescription;
}
wchar_t* VTScanAPIGetErrorDescriptionW(long) {
  return wszDescription;
}

#ifndef KLV_TEST_WITHOUT_OPTIONAL
RECORDING(VTScanAPIEnableCapture, (void* h, int bEnable), h, bEnable)
RECORDING(VTScanAPIGetImageSequence, (void* h, void* p, unsigned n1, unsigned n2), h, p, n1, n2)
RECORDING(VTScanAPIBeep, (void* h, unsigned n1, unsigned n2), h, n1, n2)
RECORDING(VTScanAPISetLED, (void* h, unsigned nPattern), h, nPattern)
RECORDING(VTScanAPISetLEDEx, (void* h, unsigned nPattern), h, nPattern)
RECORDING(VTScanAPIApplyInternalCommand, (void* h, int n, void* p, void* pnSize), h, n,
          static_cast<unsigned char*>(p), *static_cast<uint32_t*>(pnSize))
RECORDING(VTScanAPISetCaptureSequenceEx, (void* h, unsigned n, unsigned* pSequence), h, n, pSequence)
RECORDING(VTScanAPIGetImageEx, (void* h, const Header* p, int nArg), h, p->nSize, nArg)
long VTScanAPILockRawSequence(void* hDevice, void** ppSequence) {
  if (nLent != 0) *ppSequence = aHandles + nLent;
  return Record(__func__, hDevice, ppSequence);
}
RECORDING(VTScanAPIReleaseRawSequence, (void* h, void** ppSequence), h, ppSequence)
RECORDING(VTScanAPISetCaptureMode,
          (void* h, int nMode, unsigned n, unsigned long long* pMasks, unsigned nMasks), h, nMode, n, pMasks,
          nMasks)
RECORDING(VTScanAPIGetPropertyLongA, (void* h, const char* psz, long* pnValue), h, psz, pnValue)
RECORDING(VTScanAPISetPropertyLongA, (void* h, const char* psz, long nValue), h, psz, nValue)
RECORDING(VTScanAPISetPropertyDoubleA, (void* h, const char* psz, double dValue), h, psz, dValue)
RECORDING(VTScanAPIGetPropertyDoubleA, (void* h, const char* psz, double* pdValue), h, psz, pdValue)
#endif

}  // extern "C"
