// Look-ups in the tables of functions.
#include "format/Functions.h"

namespace Recording {

const char* FunctionName(uint16_t nFunction) {
#define KLV_NAME(Number, Name, Result, Parameters, Arguments, Roles) \
  case Number:                                                       \
    return #Name;
  switch (nFunction) {
    KLV_RECORDED_SCAN_FUNCTIONS(KLV_NAME)
    KLV_RECORDED_LIVENESS_FUNCTIONS(KLV_NAME)
    default:
      return nullptr;
  }
#undef KLV_NAME
}

const char* FunctionRoles(uint16_t nFunction) {
#define KLV_ROLES(Number, Name, Result, Parameters, Arguments, Roles) \
  case Number:                                                        \
    return Roles;
  switch (nFunction) {
    KLV_RECORDED_SCAN_FUNCTIONS(KLV_ROLES)
    KLV_RECORDED_LIVENESS_FUNCTIONS(KLV_ROLES)
    default:
      return nullptr;
  }
#undef KLV_ROLES
}

}  // namespace Recording
