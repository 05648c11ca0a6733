// The library that is recorded: where it is found, and its functions.
#pragma once

#include <string>

#include "format/Functions.h"

namespace Recording {

/// Opens the library of that file name that applications would get without the recorder: the one in the
/// folder that KELVARIN_VT40_RECORD_FROM names, or else the first one in the folders that applications
/// search. Never a recorder.
///
/// Errors  NULL, with the reason in sReason.
void* OpenRealLibrary(const char* szName, std::string& sReason);

/// The folder of the library that holds this code, with a slash at its end.
std::string OwnFolder();

/// Pointers to the functions of a library; NULL are those that it has not.
struct StScanFunctions {
#define KLV_POINTER(Number, Name, Result, Parameters, Arguments, Roles) Result(*Name) Parameters = nullptr;
  KLV_RECORDED_SCAN_FUNCTIONS(KLV_POINTER)
  void Bind(void* pLibrary);
};

struct StLivenessFunctions {
  KLV_RECORDED_LIVENESS_FUNCTIONS(KLV_POINTER)
#undef KLV_POINTER
  void Bind(void* pLibrary);
};

}  // namespace Recording
