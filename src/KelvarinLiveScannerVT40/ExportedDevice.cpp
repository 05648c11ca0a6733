// The exported functions of an open scanner.
#include "KelvarinLiveScannerVT40.h"
#include "KelvarinLiveScannerVT40/ExportGuard.h"

extern "C" {

long LS_VT40GetScannerCondition(void* h, unsigned int* pnCondition, unsigned int* pnReserved) {
  return HandleCall(
      h, KLV_PLAIN_FORMATS,
      [&](ClVT40Handle& oHandle) { oHandle.GetScannerCondition(pnCondition, pnReserved); }, __func__, "");
}

long LS_VT40GetSerialNumber(void* h, char* pszSerial) {
  return HandleCall(
      h, KLV_PLAIN_FORMATS,
      [&](ClVT40Handle& oHandle) { oHandle.GetSerialNumber(pszSerial, KLV_VT40_SERIAL_SIZE); }, __func__, "");
}

long LS_VT40GetVersionString(void* h, char* pszVersion, unsigned int* pnSize) {
  return HandleCall(
      h, KLV_PLAIN_FORMATS, [&](ClVT40Handle& oHandle) { oHandle.GetVersionString(pszVersion, pnSize); },
      __func__, "");
}

long LS_VT40Beep(void* h, unsigned int nArg1, unsigned int nArg2) {
  return HandleCall(
      h, KLV_PLAIN_FORMATS, [&](ClVT40Handle& oHandle) { oHandle.Beep(nArg1, nArg2); }, __func__, "");
}

long LS_VT40SetLED(void* h, unsigned char nIndex, unsigned char nState) {
  return HandleCall(
      h, KLV_CALL_FORMATS("%s(%d, %d)"), [&](ClVT40Handle& oHandle) { oHandle.SetLED(nIndex, nState); },
      __func__, static_cast<int>(nIndex), static_cast<int>(nState));
}

long LS_VT40SetDisplayData(void* h, unsigned int nType, char* pData, unsigned int nSize) {
  return HandleCall(
      h, KLV_PLAIN_FORMATS,
      [&](ClVT40Handle& oHandle) {
        if (nType != 0) {
          KLV_RAISE(ClException, "Nothing like text supported for external displays yet.", -103);
        }
        oHandle.SetDisplayText(pData, nSize);
      },
      __func__, "");
}

/// The functions that report two unsigned numbers differ only in the operation.
#define KLV_EXPORT_SIZE(Function, Operation)                                                        \
  long Function(void* h, unsigned int* pnFirst, unsigned int* pnSecond) {                           \
    return HandleCall(                                                                              \
        h, KLV_PLAIN_FORMATS, [&](ClVT40Handle& oHandle) { oHandle.Operation(pnFirst, pnSecond); }, \
        __func__, "");                                                                              \
  }

KLV_EXPORT_SIZE(LS_VT40GetImageSize, GetImageSize)
KLV_EXPORT_SIZE(LS_VT40GetPreviewImageSize, GetPreviewImageSize)
KLV_EXPORT_SIZE(LS_VT40GetRollImageSize, GetRollImageSize)
KLV_EXPORT_SIZE(LS_VT40GetSignatureImageSize, GetSignatureImageSize)
KLV_EXPORT_SIZE(LS_VT40GetSignaturePreviewImageSize, GetSignaturePreviewImageSize)
KLV_EXPORT_SIZE(LS_VT40GetImageDPI, GetImageDPI)
KLV_EXPORT_SIZE(LS_VT40GetPreviewImageDPI, GetPreviewImageDPI)
KLV_EXPORT_SIZE(LS_VT40GetRollImageDPI, GetRollImageDPI)

long LS_VT40SetCaptureMode(void* h, int nMode) {
  return HandleCall(
      h, KLV_CALL_FORMATS("%s(%d)"), [&](ClVT40Handle& oHandle) { oHandle.SetCaptureMode(nMode); }, __func__,
      nMode);
}

long LS_VT40GetCaptureMode(void* h, int* pnMode) {
  return HandleCall(
      h, KLV_PLAIN_FORMATS, [&](ClVT40Handle& oHandle) { oHandle.GetCaptureMode(pnMode); }, __func__, "");
}

/// The three image calls differ only in the operation.
#define KLV_EXPORT_IMAGE(Function, Operation)                                                                \
  long Function(void* h, void* pImage, double* pdScore, unsigned char* pbDone, long* pnResult) {             \
    return HandleCall(                                                                                       \
        h, KLV_PLAIN_FORMATS,                                                                                \
        [&](ClVT40Handle& oHandle) { oHandle.Operation(pImage, pdScore, pbDone, pnResult); }, __func__, ""); \
  }

KLV_EXPORT_IMAGE(LS_VT40GetImage, GetImage)
KLV_EXPORT_IMAGE(LS_VT40GetPreviewImage, GetPreviewImage)
KLV_EXPORT_IMAGE(LS_VT40GetRollImage, GetRollImage)

}  // extern "C"
