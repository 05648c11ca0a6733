// A parameter that is a number.
#pragma once

#include <cstdio>
#include <cstring>
#include <memory>

#include "MXTools/NumberLimits.h"
#include "MXTools/NumericFormat.h"
#include "MXTools/ParameterNumericInterface.h"
#include "MXTools/ParameterText.h"
#include "MXTools/TpParameter.h"

/// A number of type T with limits, a default and a text form.
///
/// Range    equal limits mean no range. A value outside the limits is taken as it is, unless cnClamp moves it
///          or cnStrict refuses it.
/// Threads  as TpParameterBase.
/// Errors   ClExRange -35 for numbers beyond T (infinity included) or refused; -44, -20 for texts.
template <typename T, class TClass>
class TpParameterNumeric : public TpParameter<T, TClass>, public ClParameterNumericInterface {
 public:
  TpParameterNumeric() {
    this->m_nPrecision = m_bFloat ? 6 : 0;
    this->SetFormat(Klv::ClNumericFormat<T>::Format);
  }

  bool IsNumeric() const override { return true; }
  bool IsInteger() const override { return !m_bFloat; }
  bool IsFloat() const override { return m_bFloat; }
  virtual bool IsSigned() const { return m_bSigned; }

  double GetDefault() const override { return static_cast<double>(this->m_oDefault); }
  void SetDefault(double dValue) override {
    if (!Klv::FitsNumber<T>(dValue)) RaiseParameterRange(this->m_szName);
    this->m_oDefault = static_cast<T>(dValue);
  }
  double GetNumber() const override { return static_cast<double>(this->Value()); }
  void SetNumber(double dValue) override {
    if (!Klv::FitsNumber<T>(dValue)) RaiseParameterRange(this->m_szName);
    Assign(static_cast<T>(dValue));
  }
  long GetNumberLong() const override {
    const T oValue = this->Value();
    if constexpr (std::is_floating_point_v<T>) {
      return Klv::ClampNumber<long>(static_cast<double>(oValue));
    } else {
      return Klv::FitsInteger<long>(oValue) ? static_cast<long>(oValue) : std::numeric_limits<long>::max();
    }
  }
  void SetNumberLong(long nValue) override { SetInteger(nValue); }
  double GetLowerBoundary() const override { return static_cast<double>(m_oLower); }
  void SetLowerBoundary(double dValue) override { m_oLower = Klv::ClampNumber<T>(dValue); }
  double GetUpperBoundary() const override { return static_cast<double>(m_oUpper); }
  void SetUpperBoundary(double dValue) override { m_oUpper = Klv::ClampNumber<T>(dValue); }
  bool IsValueInRange() const override { return IsValueInRangeT(this->Value()); }
  bool IsValueInRange(double dValue) const override { return IsValueInRangeT(Klv::ClampNumber<T>(dValue)); }
  virtual bool IsValueInRangeT(T oValue) const {
    return !HasRange() || (m_oLower <= oValue && oValue <= m_oUpper);
  }
  bool HasRange() const override { return m_oLower != m_oUpper; }

  ClParameterBase* Clone() override {
    auto pClone = std::make_unique<TpParameterNumeric>();
    CopyTo(pClone.get());
    return pClone.release();
  }

  void CopyTo(ClParameterBase* pOther) override {
    TpParameter<T, TClass>::CopyTo(pOther);
    TpParameterNumeric& oOther = CastParameter<TpParameterNumeric>(pOther);
    oOther.m_oLower = m_oLower;
    oOther.m_oUpper = m_oUpper;
    oOther.m_bFloat = m_bFloat;
    oOther.m_bSigned = m_bSigned;
  }

  using ClParameter::GetDefaultValue;
  using ClParameter::GetValue;
  void SetValue(const char* psz) override {
    const ClParsedNumber oParsed = ParseParameterNumber(this->m_szName, psz, m_bFloat, m_bSigned);
    if (oParsed.bOverflow) RaiseParameterRange(this->m_szName);
    if (oParsed.bHexadecimal) {
      SetInteger(oParsed.nSigned);
    } else if (m_bFloat) {
      SetNumber(oParsed.dValue);
    } else if (m_bSigned) {
      SetInteger(oParsed.nSigned);
    } else {
      SetInteger(oParsed.nUnsigned);
    }
  }
  bool GetValue(char* psz, unsigned int& rnSize) override { return PrintNumber(this->Value(), psz, rnSize); }
  bool GetDefaultValue(char* psz, unsigned int& rnSize) override {
    return PrintNumber(this->m_oDefault, psz, rnSize);
  }

 private:
  template <typename TInteger>
  void SetInteger(TInteger nValue) {
    if (!Klv::FitsInteger<T>(nValue)) RaiseParameterRange(this->m_szName);
    Assign(static_cast<T>(nValue));
  }

  void Assign(T oValue) {
    if (HasRange()) {
      if ((this->m_nFlags & ClParameter::cnClamp) != 0) {
        if (oValue < m_oLower) oValue = m_oLower;
        if (oValue > m_oUpper) oValue = m_oUpper;
      }
      if ((this->m_nFlags & ClParameter::cnStrict) != 0 && !IsValueInRangeT(oValue)) {
        RaiseParameterRange(this->m_szName);
      }
    }
    this->SetTypedValue(oValue);
  }

  int Print(T oValue, char* psz, size_t nSize) const {
    const char* szFormat = this->GetFormat();
    if (std::strchr(szFormat, '*') != nullptr) {
      return std::snprintf(psz, nSize, szFormat, this->GetPrecision(), static_cast<double>(oValue));
    }
    return std::snprintf(psz, nSize, szFormat, oValue);
  }

  bool PrintNumber(T oValue, char* psz, unsigned int& rnSize) const {
    const int nLength = Print(oValue, nullptr, 0);
    if (nLength < 0) RaiseParameterFormat();
    const unsigned int nNeeded = static_cast<unsigned int>(nLength) + 1;
    const bool bRoom = rnSize >= nNeeded;
    rnSize = nNeeded;
    if (!bRoom || psz == nullptr) return bRoom;
    Print(oValue, psz, nNeeded);
    TrimTrailingZeros(psz);
    return true;
  }

  T m_oLower{};
  T m_oUpper{};
  bool m_bFloat = std::is_floating_point_v<T>;
  bool m_bSigned = std::is_signed_v<T>;
};

extern template class TpParameterNumeric<double, ClParameter>;
extern template class TpParameterNumeric<int, ClParameter>;
extern template class TpParameterNumeric<long, ClParameter>;
extern template class TpParameterNumeric<unsigned char, ClParameter>;
extern template class TpParameterNumeric<unsigned int, ClParameter>;
extern template class TpParameterNumeric<unsigned short, ClParameter>;
