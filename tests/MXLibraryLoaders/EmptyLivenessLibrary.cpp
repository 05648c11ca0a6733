// A liveness library whose functions do nothing. A build that is to lack a function renames it.
#include "MXLibraryLoaders/KelvarinFakeFingerDetectionVT40Functions.h"

#pragma GCC diagnostic ignored "-Wunused-parameter"

#define KLV_EMPTY(Name, Result, Arguments) \
  Result Name Arguments {                  \
    return {};                             \
  }

extern "C" {
KLV_FAKEFINGERDETECTIONVT40_FUNCTIONS(KLV_EMPTY)
}
