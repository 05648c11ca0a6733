// How processors publish their switches.
#pragma once

#include "MXTools/ParameterContainer.h"

/// Adds a choice between "False" and "True", bound to *pbFlag, and gives it back.
inline TpParameterEnumPointer<bool, ClParameter>* PublishFlag(ClParameterContainer& oContainer,
                                                              const char* szName, bool* pbFlag) {
  auto* pFlag = oContainer.AddParam<TpParameterEnumPointer<bool, ClParameter>>(szName);
  pFlag->BindVariable(pbFlag);
  pFlag->AddValue(false, "False");
  pFlag->AddValue(true, "True");
  return pFlag;
}
