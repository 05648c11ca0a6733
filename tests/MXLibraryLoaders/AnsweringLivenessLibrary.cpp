// A liveness library whose functions answer with their place in the order of binding. They are declared here by
// hand, so that a mistake in the binding's table shows against them. A build renames one function to lack it.
extern "C" {

long FD_VT40Initialize(void* pReserved) {
  return pReserved == nullptr ? 1 : 0;
}
long FD_VT40Uninitialize() {
  return 2;
}
long FD_VT40CreateFakeDetectionVT40Handle(void** phDetection) {
  *phDetection = phDetection;
  return 3;
}
long FD_VT40DestroyHandle(void** phDetection) {
  *phDetection = nullptr;
  return 4;
}
long FD_VT40GetFakeFingerDetectionScore(void*, unsigned nWidth, unsigned nHeight, const void* pImage,
                                        const void* pMask, double* pdScore) {
  const auto* pBytes = static_cast<const unsigned char*>(pImage);
  *pdScore = 1000.0 * nWidth + 100.0 * nHeight + 10.0 * pBytes[0] + *static_cast<const unsigned char*>(pMask);
  return 5;
}
long FD_VT40SetPropertyA(void*, const char* pszName, const char* pszValue) {
  return 100L * pszName[0] + pszValue[0];
}
long FD_VT40SetPropertyW(void*, const wchar_t* pszName, const wchar_t* pszValue) {
  return 200L * pszName[0] + pszValue[0];
}
long FD_VT40SetPropertyLongA(void*, const char* pszName, long nValue) {
  return 300L * pszName[0] + nValue;
}
long FD_VT40SetPropertyLongW(void*, const wchar_t* pszName, long nValue) {
  return 400L * pszName[0] + nValue;
}
long FD_VT40SetPropertyDoubleA(void*, const char* pszName, double dValue) {
  return 500L * pszName[0] + static_cast<long>(dValue);
}
long FD_VT40SetPropertyDoubleW(void*, const wchar_t* pszName, double dValue) {
  return 600L * pszName[0] + static_cast<long>(dValue);
}
long FD_VT40GetPropertyA(void*, const char* pszName, char* pszValue, unsigned* pnSize) {
  pszValue[--*pnSize] = pszName[0];
  return 12;
}
long FD_VT40GetPropertyW(void*, const wchar_t* pszName, wchar_t* pszValue, unsigned* pnSize) {
  pszValue[--*pnSize] = pszName[0];
  return 13;
}
long FD_VT40GetPropertyLongA(void*, const char* pszName, long* pnValue) {
  *pnValue = 10L * pszName[0];
  return 14;
}
long FD_VT40GetPropertyLongW(void*, const wchar_t* pszName, long* pnValue) {
  *pnValue = 20L * pszName[0];
  return 15;
}
long FD_VT40GetPropertyDoubleA(void*, const char* pszName, double* pdValue) {
  *pdValue = 0.5 * pszName[0];
  return 16;
}
long FD_VT40GetPropertyDoubleW(void*, const wchar_t* pszName, double* pdValue) {
  *pdValue = 0.25 * static_cast<double>(pszName[0]);
  return 17;
}
const char* FD_VT40GetErrorDescriptionA(long nError) {
  return nError == -60 ? "narrow" : "";
}
const wchar_t* FD_VT40GetErrorDescriptionW(long nError) {
  return nError == -60 ? L"wide" : L"";
}

}  // extern "C"
