// A parameter that is a text.
#pragma once

#include <cstring>
#include <memory>

#include "MXTools/ParameterText.h"
#include "MXTools/TpParameter.h"

/// A text in a buffer of N bytes that the owner keeps; bound to the variable that points at the buffer. With
/// N = 0 the text can only be read.
///
/// Errors  ClException -701 "Point is Null" for a NULL text, and for a NULL buffer with enough room; -21 for
///         a text that does not fit.
template <typename T, class TClass, unsigned int N>
class TpParameterString : public TpParameter<T, TClass> {
 public:
  bool IsString() const override { return true; }

  using ClParameter::GetDefaultValue;
  using ClParameter::GetValue;
  void SetValue(const char* psz) override {
    if (psz == nullptr) KLV_RAISE(ClException, "Point is Null", -701);
    const size_t nSize = std::strlen(psz) + 1;
    if (nSize > m_nMemorySize) KLV_RAISE(ClException, "String memory ar too small", -21);
    std::memmove(this->Value(), psz, nSize);
  }
  bool GetValue(char* psz, unsigned int& rnSize) override { return HandOut(this->Value(), psz, rnSize); }
  bool GetDefaultValue(char* psz, unsigned int& rnSize) override {
    return HandOut(this->m_oDefault, psz, rnSize);
  }

  ClParameterBase* Clone() override {
    auto pClone = std::make_unique<TpParameterString>();
    this->CopyTo(pClone.get());
    return pClone.release();
  }

 private:
  static bool HandOut(const char* szText, char* psz, unsigned int& rnSize) {
    const bool bRoom = HandOutParameterText(ParameterNameOf(szText), psz, rnSize);
    if (bRoom && psz == nullptr) KLV_RAISE(ClException, "Point is Null", -701);
    return bRoom;
  }

  unsigned int m_nMemorySize = N;
};
