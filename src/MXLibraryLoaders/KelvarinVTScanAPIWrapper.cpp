// Pointers and binding of the scan library's functions, made from their table.
#include "MXLibraryLoaders/KelvarinVTScanAPIWrapper.h"

const char* const ClKelvarinVTScanAPIWrapper::m_ssLibName = "libkelvarinvtscanapi.gcc.Release.32.so";

#define KLV_DEFINE_FUNCTION(Name, Result, Arguments) \
  decltype(ClKelvarinVTScanAPIWrapper::Name) ClKelvarinVTScanAPIWrapper::Name = nullptr;
KLV_VTSCANAPI_FUNCTIONS(KLV_DEFINE_FUNCTION, KLV_DEFINE_FUNCTION)
#undef KLV_DEFINE_FUNCTION

void ClKelvarinVTScanAPIWrapper::BindFunctions() {
#define KLV_BIND_REQUIRED(Name, Result, Arguments) GetFunction(Name, #Name);
#define KLV_BIND_OPTIONAL(Name, Result, Arguments) GetOptionalFunction(Name, #Name);
  KLV_VTSCANAPI_FUNCTIONS(KLV_BIND_REQUIRED, KLV_BIND_OPTIONAL)
#undef KLV_BIND_OPTIONAL
#undef KLV_BIND_REQUIRED
}
