// The binding of the scan library, through which everything reaches the scanner hardware.
#pragma once

#include "MXLibraryLoaders/KelvarinVTScanAPIFunctions.h"
#include "MXTools/TpDynamicLibraryLoaderBase.h"

/// One static pointer for each function of the scan library, named as the function. An object is a ticket for
/// one reference on the library and holds no data.
///
/// Range    without an open library every pointer is NULL; with one, the optional functions that it lacks
///          are.
/// Threads  see TpDynamicLibraryLoaderBase.
/// Errors   ClExDynamicLibraryLoadFail -200 without the library, -206 with the name of a required function
///          that it lacks.
class ClKelvarinVTScanAPIWrapper : public TpDynamicLibraryLoaderBase<ClKelvarinVTScanAPIWrapper> {
 public:
  ClKelvarinVTScanAPIWrapper() = default;
  ClKelvarinVTScanAPIWrapper(const char* szSearchPath, const char* szName) {
    OpenLibrary(szSearchPath, szName);
  }
  ~ClKelvarinVTScanAPIWrapper() override { CloseQuietly(); }

  static const char* const m_ssLibName;

#define KLV_DECLARE_FUNCTION(Name, Result, Arguments) static Result(*Name) Arguments;
  KLV_VTSCANAPI_FUNCTIONS(KLV_DECLARE_FUNCTION, KLV_DECLARE_FUNCTION)
#undef KLV_DECLARE_FUNCTION

 protected:
  void BindFunctions() override;
};
