// Pointers and binding of the liveness library's functions, made from their table.
#include "MXLibraryLoaders/KelvarinFakeFingerDetectionVT40Wrapper.h"

const char* const ClKelvarinFakeFingerDetectionVT40Wrapper::m_ssLibName =
    "libkelvarinfakefingerdetectionvt40.gcc.Release.32.so";
const char* const ClKelvarinFakeFingerDetectionVT40Wrapper::m_ssSearchPath =
    "../KelvarinFakeFingerDetectionVT40;../../KelvarinFakeFingerDetectionVT40;.";

#define KLV_DEFINE_FUNCTION(Name, Result, Arguments)                                                        \
  decltype(ClKelvarinFakeFingerDetectionVT40Wrapper::Name) ClKelvarinFakeFingerDetectionVT40Wrapper::Name = \
      nullptr;
KLV_FAKEFINGERDETECTIONVT40_FUNCTIONS(KLV_DEFINE_FUNCTION)
#undef KLV_DEFINE_FUNCTION

void ClKelvarinFakeFingerDetectionVT40Wrapper::BindFunctions() {
#define KLV_BIND(Name, Result, Arguments) GetFunction(Name, #Name);
  KLV_FAKEFINGERDETECTIONVT40_FUNCTIONS(KLV_BIND)
#undef KLV_BIND
}
