// Look-ups in the tables of functions.
#include "format/Functions.h"

namespace Recording {
namespace {

struct StFunction {
  uint16_t nNumber;
  const char* szName;
  const char* szRoles;
};

#define KLV_ROW(Number, Name, Result, Parameters, Arguments, Roles) {Number, #Name, Roles},
constexpr StFunction caFunctions[] = {KLV_RECORDED_SCAN_FUNCTIONS(KLV_ROW)
                                          KLV_RECORDED_LIVENESS_FUNCTIONS(KLV_ROW)};
#undef KLV_ROW

const StFunction* Find(uint16_t nFunction) {
  for (const StFunction& oFunction : caFunctions)
    if (oFunction.nNumber == nFunction) return &oFunction;
  return nullptr;
}

}  // namespace

const char* FunctionName(uint16_t nFunction) {
  const StFunction* pFunction = Find(nFunction);
  return pFunction != nullptr ? pFunction->szName : nullptr;
}

const char* FunctionRoles(uint16_t nFunction) {
  const StFunction* pFunction = Find(nFunction);
  return pFunction != nullptr ? pFunction->szRoles : nullptr;
}

}  // namespace Recording
