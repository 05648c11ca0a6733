// The common base of the concrete parameter classes.
#pragma once

#include "MXTools/TpParameterBase.h"

template <typename T, class TClass>
class TpParameter : public TpParameterBase<T, TClass> {
 public:
  ClParameterBase* Clone() override {
    TpParameter* pClone = new TpParameter;
    this->CopyTo(pClone);
    return pClone;
  }
};
