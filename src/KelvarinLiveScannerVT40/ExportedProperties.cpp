// The exported property functions.
#include "KelvarinLiveScannerVT40.h"
#include "KelvarinLiveScannerVT40/ExportGuard.h"

namespace {

constexpr long cnNotImplemented = -106;

const void* Address(const void* p) {
  return p;
}

}  // namespace

extern "C" {

long LS_VT40GetPropertyA(void* h, const char* pszName, char* pszValue, unsigned int* pnSize) {
  return HandleCall(
      h, KLV_CALL_FORMATS("%s(%p, %p, %p, %p)"),
      [&](ClVT40Handle& oHandle) { oHandle.GetProperty(pszName, pszValue, pnSize); }, __func__, Address(h),
      Address(pszName), Address(pszValue), Address(pnSize));
}

long LS_VT40SetPropertyA(void* h, const char* pszName, const char* pszValue) {
  return HandleCall(
      h, KLV_CALL_FORMATS("%s(%p, %p, %p)"),
      [&](ClVT40Handle& oHandle) { oHandle.SetProperty(pszName, pszValue); }, __func__, Address(h),
      Address(pszName), Address(pszValue));
}

long LS_VT40GetPropertyLongA(void* h, const char* pszName, long* pnValue) {
  return HandleCall(
      h, KLV_CALL_FORMATS("%s(%p, %p, %p)"),
      [&](ClVT40Handle& oHandle) { oHandle.GetPropertyLong(pszName, pnValue); }, __func__, Address(h),
      Address(pszName), Address(pnValue));
}

long LS_VT40SetPropertyLongA(void* h, const char* pszName, long nValue) {
  return HandleCall(
      h, KLV_CALL_FORMATS("%s(%p, %p, %ld)"),
      [&](ClVT40Handle& oHandle) { oHandle.SetPropertyLong(pszName, nValue); }, __func__, Address(h),
      Address(pszName), nValue);
}

long LS_VT40GetPropertyDoubleA(void* h, const char* pszName, double* pdValue) {
  return HandleCall(
      h, KLV_CALL_FORMATS("%s(%p, %p, %p)"),
      [&](ClVT40Handle& oHandle) { oHandle.GetPropertyDouble(pszName, pdValue); }, __func__, Address(h),
      Address(pszName), Address(pdValue));
}

long LS_VT40SetPropertyDoubleA(void* h, const char* pszName, double dValue) {
  return HandleCall(
      h, KLV_CALL_FORMATS("%s(%p, %p, %f)"),
      [&](ClVT40Handle& oHandle) { oHandle.SetPropertyDouble(pszName, dValue); }, __func__, Address(h),
      Address(pszName), dValue);
}

long LS_VT40GetPropertyW(void*, const wchar_t*, wchar_t*, unsigned int*) {
  return cnNotImplemented;
}
long LS_VT40SetPropertyW(void*, const wchar_t*, const wchar_t*) {
  return cnNotImplemented;
}
long LS_VT40GetPropertyLongW(void*, const wchar_t*, long*) {
  return cnNotImplemented;
}
long LS_VT40SetPropertyLongW(void*, const wchar_t*, long) {
  return cnNotImplemented;
}
long LS_VT40GetPropertyDoubleW(void*, const wchar_t*, double*) {
  return cnNotImplemented;
}
long LS_VT40SetPropertyDoubleW(void*, const wchar_t*, double) {
  return cnNotImplemented;
}

}  // extern "C"
