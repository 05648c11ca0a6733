// The binding of the liveness library, which distinguishes living fingers from imitations.
#pragma once

#include "MXLibraryLoaders/KelvarinFakeFingerDetectionVT40Functions.h"
#include "MXTools/TpDynamicLibraryLoaderBase.h"

/// One static pointer for each function of the liveness library, named as the function. An object is a ticket
/// for one reference on the library and holds no data. The library is optional, but none of its functions is:
/// one that lacks any counts as missing as a whole.
///
/// Range    without an open library every pointer is NULL; with one, none is.
/// Threads  see TpDynamicLibraryLoaderBase.
/// Errors   ClExDynamicLibraryLoadFail -200 without the library, -206 with the name of a function that it
///          lacks.
class ClKelvarinFakeFingerDetectionVT40Wrapper
    : public TpDynamicLibraryLoaderBase<ClKelvarinFakeFingerDetectionVT40Wrapper> {
 public:
  ClKelvarinFakeFingerDetectionVT40Wrapper() = default;
  ClKelvarinFakeFingerDetectionVT40Wrapper(const char* szSearchPath, const char* szName) {
    OpenLibrary(szSearchPath, szName);
  }
  ~ClKelvarinFakeFingerDetectionVT40Wrapper() override { CloseQuietly(); }

  static const char* const m_ssLibName;
  static const char* const m_ssSearchPath;

#define KLV_DECLARE_FUNCTION(Name, Result, Arguments) static Result(*Name) Arguments;
  KLV_FAKEFINGERDETECTIONVT40_FUNCTIONS(KLV_DECLARE_FUNCTION)
#undef KLV_DECLARE_FUNCTION

 protected:
  void BindFunctions() override;
};
