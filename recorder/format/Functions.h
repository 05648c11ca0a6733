// The functions of both recorded libraries: numbers, types, and what each argument is, in one table each.
#pragma once

#include <cstdint>
#include <cwchar>

extern "C" {
using EVTScanMode_t = int;

/// The 40 bytes of a BMP information header.
struct tagBITMAPINFOHEADER {
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
};
}

namespace Recording {

/// What an argument is, a letter for each in the order of the declaration.
enum ERole : char {
  eRoleReserved = '-',   ///< not recorded
  eRoleHandle = 'h',     ///< a device or context
  eRoleOpened = 'o',     ///< by pointer: is opened
  eRoleClosed = 'x',     ///< by pointer: is closed
  eRoleGiven = 'g',      ///< a number or a text that the application gives
  eRoleCount = 'c',      ///< a number that counts the elements of the array after it
  eRoleArray = 'a',      ///< an array that the application gives
  eRoleSized = 's',      ///< bytes that the application gives; the next argument points to their number
  eRoleReturned = 'r',   ///< a number by pointer
  eRoleOutput = 'w',     ///< text, bytes or an array that the library writes; the next argument is its size
  eRoleSize = 'n',       ///< the room on entry, the need or the length on return
  eRolePlane = 'p',      ///< a picture that the application gives; arguments 1 and 2 are its sides
  eRoleImage = 'i',      ///< a header, after which the library writes an image
  eRoleSequence = 'q',   ///< room for a sequence of frames
  eRoleLent = 'l',       ///< by pointer: a sequence that is lent
  eRoleGivenBack = 'b',  ///< by pointer: a sequence that is given back
};

}  // namespace Recording

/// Calls FUNCTION with number, name, result, parameters, arguments and roles of each function of the scan
/// library.
#define KLV_RECORDED_SCAN_FUNCTIONS(FUNCTION)                                                                \
  FUNCTION(1, VTScanAPIInitialize, long, (void* p), (p), "-")                                                \
  FUNCTION(2, VTScanAPIUninitialize, long, (), (), "")                                                       \
  FUNCTION(3, VTScanAPIQueryDevices, long,                                                                   \
           (unsigned int* pIds, unsigned int* pnCount, unsigned int nProduct), (pIds, pnCount, nProduct),    \
           "wng")                                                                                            \
  FUNCTION(4, VTScanAPIGetDeviceSerial, long, (unsigned int nId, char* psz, unsigned int* pn),               \
           (nId, psz, pn), "gwn")                                                                            \
  FUNCTION(5, VTScanAPIGetVersion, long, (void* h, char* psz, unsigned int* pn), (h, psz, pn), "hwn")        \
  FUNCTION(6, VTScanAPIGetHandleSerial, long, (void* h, char* psz, unsigned int* pn), (h, psz, pn), "hwn")   \
  FUNCTION(7, VTScanAPICreateHandle, long, (unsigned int nId, void** ph), (nId, ph), "go")                   \
  FUNCTION(8, VTScanAPIDestroyHandle, long, (void** ph), (ph), "x")                                          \
  FUNCTION(9, VTScanAPIGetDeviceIndex, long, (void* h, unsigned int* pn), (h, pn), "hr")                     \
  FUNCTION(10, VTScanAPIGetPlugStatus, long, (void* h, int* pn), (h, pn), "hr")                              \
  FUNCTION(11, VTScanAPISetCaptureSequence, long,                                                            \
           (void* h, unsigned char nCount, unsigned char* pLed, unsigned char* pFlags),                      \
           (h, nCount, pLed, pFlags), "hca-")                                                                \
  FUNCTION(12, VTScanAPISetStatusLED, long, (void* h, unsigned long long n), (h, n), "hg")                   \
  FUNCTION(13, VTScanAPISetResolution, long, (void* h, EVTScanMode_t e), (h, e), "hg")                       \
  FUNCTION(14, VTScanAPIGetResolution, long, (void* h, unsigned int* pnWidth, unsigned int* pnHeight),       \
           (h, pnWidth, pnHeight), "hrr")                                                                    \
  FUNCTION(15, VTScanAPISetVSYNC, long, (void* h, unsigned short n), (h, n), "hg")                           \
  FUNCTION(16, VTScanAPISetGlobalGain, long, (void* h, unsigned char n), (h, n), "hg")                       \
  FUNCTION(17, VTScanAPISetGain, long, (void* h, int n1, int n2, int n3), (h, n1, n2, n3), "hggg")           \
  FUNCTION(18, VTScanAPIGetImage, long,                                                                      \
           (void* h, const tagBITMAPINFOHEADER* pHeader, unsigned char n, char c), (h, pHeader, n, c),       \
           "higg")                                                                                           \
  FUNCTION(19, VTScanAPIListEPROMFile, long, (void* h, char* psz, unsigned int* pn), (h, psz, pn), "hwn")    \
  FUNCTION(20, VTScanAPIReadEPROMFile, long, (void* h, const char* pszName, void* p, unsigned int* pn),      \
           (h, pszName, p, pn), "hgwn")                                                                      \
  FUNCTION(21, VTScanAPISetPropertyA, long, (void* h, const char* pszName, const char* psz),                 \
           (h, pszName, psz), "hgg")                                                                         \
  FUNCTION(22, VTScanAPISetPropertyW, long, (void* h, const wchar_t* pszName, const wchar_t* psz),           \
           (h, pszName, psz), "hgg")                                                                         \
  FUNCTION(23, VTScanAPIGetPropertyA, long, (void* h, const char* pszName, char* psz, unsigned int* pn),     \
           (h, pszName, psz, pn), "hgwn")                                                                    \
  FUNCTION(24, VTScanAPIGetPropertyW, long,                                                                  \
           (void* h, const wchar_t* pszName, wchar_t* psz, unsigned int* pn), (h, pszName, psz, pn), "hgwn") \
  FUNCTION(25, VTScanAPIGetErrorDescriptionA, char*, (long n), (n), "g")                                     \
  FUNCTION(26, VTScanAPIGetErrorDescriptionW, wchar_t*, (long n), (n), "g")                                  \
  FUNCTION(27, VTScanAPIEnableCapture, long, (void* h, int b), (h, b), "hg")                                 \
  FUNCTION(28, VTScanAPIGetImageSequence, long, (void* h, void* p, unsigned int n1, unsigned int n2),        \
           (h, p, n1, n2), "hqgg")                                                                           \
  FUNCTION(29, VTScanAPIBeep, long, (void* h, unsigned int n1, unsigned int n2), (h, n1, n2), "hgg")         \
  FUNCTION(30, VTScanAPISetLED, long, (void* h, unsigned int n), (h, n), "hg")                               \
  FUNCTION(31, VTScanAPISetLEDEx, long, (void* h, unsigned int n), (h, n), "hg")                             \
  FUNCTION(32, VTScanAPIApplyInternalCommand, long, (void* h, int n, void* p, void* pn), (h, n, p, pn),      \
           "hgs-")                                                                                           \
  FUNCTION(33, VTScanAPISetCaptureSequenceEx, long, (void* h, unsigned int nCount, unsigned int* p),         \
           (h, nCount, p), "hca")                                                                            \
  FUNCTION(34, VTScanAPIGetImageEx, long, (void* h, const tagBITMAPINFOHEADER* pHeader, int n),              \
           (h, pHeader, n), "hig")                                                                           \
  FUNCTION(35, VTScanAPILockRawSequence, long, (void* h, void** pp), (h, pp), "hl")                          \
  FUNCTION(36, VTScanAPIReleaseRawSequence, long, (void* h, void** pp), (h, pp), "hb")                       \
  FUNCTION(37, VTScanAPISetCaptureMode, long,                                                                \
           (void* h, EVTScanMode_t e, unsigned int nCount, unsigned long long* p, unsigned int n),           \
           (h, e, nCount, p, n), "hgcag")                                                                    \
  FUNCTION(38, VTScanAPIGetPropertyLongA, long, (void* h, const char* pszName, long* pn), (h, pszName, pn),  \
           "hgr")                                                                                            \
  FUNCTION(39, VTScanAPISetPropertyLongA, long, (void* h, const char* pszName, long n), (h, pszName, n),     \
           "hgg")                                                                                            \
  FUNCTION(40, VTScanAPISetPropertyDoubleA, long, (void* h, const char* pszName, double d), (h, pszName, d), \
           "hgg")                                                                                            \
  FUNCTION(41, VTScanAPIGetPropertyDoubleA, long, (void* h, const char* pszName, double* pd),                \
           (h, pszName, pd), "hgr")

/// The same of the liveness library.
#define KLV_RECORDED_LIVENESS_FUNCTIONS(FUNCTION)                                                            \
  FUNCTION(101, FD_VT40Initialize, long, (void* p), (p), "-")                                                \
  FUNCTION(102, FD_VT40Uninitialize, long, (), (), "")                                                       \
  FUNCTION(103, FD_VT40CreateFakeDetectionVT40Handle, long, (void** ph), (ph), "o")                          \
  FUNCTION(104, FD_VT40DestroyHandle, long, (void** ph), (ph), "x")                                          \
  FUNCTION(105, FD_VT40GetFakeFingerDetectionScore, long,                                                    \
           (void* h, unsigned int nWidth, unsigned int nHeight, const void* pImage, const void* pMask,       \
            double* pd),                                                                                     \
           (h, nWidth, nHeight, pImage, pMask, pd), "hggppr")                                                \
  FUNCTION(106, FD_VT40SetPropertyA, long, (void* h, const char* pszName, const char* psz),                  \
           (h, pszName, psz), "hgg")                                                                         \
  FUNCTION(107, FD_VT40SetPropertyW, long, (void* h, const wchar_t* pszName, const wchar_t* psz),            \
           (h, pszName, psz), "hgg")                                                                         \
  FUNCTION(108, FD_VT40SetPropertyLongA, long, (void* h, const char* pszName, long n), (h, pszName, n),      \
           "hgg")                                                                                            \
  FUNCTION(109, FD_VT40SetPropertyLongW, long, (void* h, const wchar_t* pszName, long n), (h, pszName, n),   \
           "hgg")                                                                                            \
  FUNCTION(110, FD_VT40SetPropertyDoubleA, long, (void* h, const char* pszName, double d), (h, pszName, d),  \
           "hgg")                                                                                            \
  FUNCTION(111, FD_VT40SetPropertyDoubleW, long, (void* h, const wchar_t* pszName, double d),                \
           (h, pszName, d), "hgg")                                                                           \
  FUNCTION(112, FD_VT40GetPropertyA, long, (void* h, const char* pszName, char* psz, unsigned int* pn),      \
           (h, pszName, psz, pn), "hgwn")                                                                    \
  FUNCTION(113, FD_VT40GetPropertyW, long,                                                                   \
           (void* h, const wchar_t* pszName, wchar_t* psz, unsigned int* pn), (h, pszName, psz, pn), "hgwn") \
  FUNCTION(114, FD_VT40GetPropertyLongA, long, (void* h, const char* pszName, long* pn), (h, pszName, pn),   \
           "hgr")                                                                                            \
  FUNCTION(115, FD_VT40GetPropertyLongW, long, (void* h, const wchar_t* pszName, long* pn),                  \
           (h, pszName, pn), "hgr")                                                                          \
  FUNCTION(116, FD_VT40GetPropertyDoubleA, long, (void* h, const char* pszName, double* pd),                 \
           (h, pszName, pd), "hgr")                                                                          \
  FUNCTION(117, FD_VT40GetPropertyDoubleW, long, (void* h, const wchar_t* pszName, double* pd),              \
           (h, pszName, pd), "hgr")                                                                          \
  FUNCTION(118, FD_VT40GetErrorDescriptionA, const char*, (long n), (n), "g")                                \
  FUNCTION(119, FD_VT40GetErrorDescriptionW, const wchar_t*, (long n), (n), "g")

namespace Recording {

/// Numbers of functions, named as these.
#define KLV_NUMBER(Number, Name, Result, Parameters, Arguments, Roles) e##Name = Number,
enum EFunction : uint16_t {
  KLV_RECORDED_SCAN_FUNCTIONS(KLV_NUMBER) KLV_RECORDED_LIVENESS_FUNCTIONS(KLV_NUMBER)
};
#undef KLV_NUMBER

constexpr bool IsLiveness(uint16_t nFunction) {
  return nFunction >= eFD_VT40Initialize;
}

/// NULL for a number that no function has.
const char* FunctionName(uint16_t nFunction);
/// Its roles; NULL likewise.
const char* FunctionRoles(uint16_t nFunction);

/// The file names by which applications load the libraries.
constexpr char cszScanLibrary[] = "libkelvarinvtscanapi.gcc.Release.32.so";
constexpr char cszLivenessLibrary[] = "libkelvarinfakefingerdetectionvt40.gcc.Release.32.so";

}  // namespace Recording
