// A parameter that is a choice among named values, or a pointer.
#pragma once

#include <strings.h>

#include <cstring>
#include <memory>

#include "MXTools/ParameterEnumInterface.h"
#include "MXTools/ParameterText.h"
#include "MXTools/TpArrayDynamic.h"
#include "MXTools/TpParameter.h"

/// A closed list of named values of T; without names a plain number or, after SetPointer, a pointer.
///
/// Domain     T is an integer, an enumeration, bool or a pointer.
/// Ownership  keeps copies of the names; what a pointer points at is the owner's.
/// Threads    as TpParameterBase.
/// Errors     ClException -35 for a value or a name that is not in the list; ClExKelvarin -46 for a name that
///            is there under another value.
template <typename T, class TClass>
class TpParameterEnumPointer : public TpParameter<T, TClass>, public ClParameterEnumInterface {
 public:
  /// A value and its name, of which it keeps a copy.
  struct ClMapEntry {
    ClMapEntry() = default;
    ClMapEntry(T oMapped, const char* szText) : oValue(oMapped) {
      ClParameterBase::SetString(&szName, szText);
    }
    ClMapEntry(const ClMapEntry& o) : ClMapEntry(o.oValue, o.szName) {}
    ClMapEntry& operator=(const ClMapEntry& o) {
      if (this == &o) return *this;
      ClParameterBase::SetString(&szName, o.szName);
      oValue = o.oValue;
      return *this;
    }
    ~ClMapEntry() { delete[] szName; }

    T oValue{};
    char* szName = nullptr;
  };

  /// Names are compared without regard to case; a name that is there under the same value gets a second
  /// entry.
  virtual void AddValue(T oValue, const char* szName) {
    const unsigned int nIndex = IndexOf(szName);
    if (nIndex < m_aValues.Entries() && m_aValues[nIndex].oValue != oValue) KLV_RAISE_NUMBER(-46);
    m_aValues.Add(ClMapEntry(oValue, ParameterNameOf(szName)));
  }
  /// Takes out the first entry that matches, if any does.
  virtual void RemoveValue(const char* szName) { RemoveAt(IndexOf(szName)); }
  virtual void RemoveValue(T oValue) { RemoveAt(IndexOf(oValue)); }

  /// Whether the value is a pointer to something, which copies of values leave alone.
  void SetPointer(bool bPointer) { m_bPointer = bPointer; }
  bool IsPointer() const override { return m_bPointer; }
  bool IsEnum() const override { return m_aValues.Entries() > 0; }

  unsigned int GetValueNameCount() override { return m_aValues.Entries(); }
  unsigned int GetValueName(unsigned int nIndex, char* psz, unsigned int nSize) override {
    const char* szName = m_aValues[nIndex].szName;
    const unsigned int nLength = static_cast<unsigned int>(std::strlen(szName));
    if (psz == nullptr) return nLength;
    if (nLength < nSize) {
      std::memcpy(psz, szName, nLength + 1u);
    } else if (nSize > 0) {
      psz[0] = '\0';
    }
    return nLength;
  }

  long GetValue() override { return ToLong(this->Value()); }
  void SetValue(long nValue) override {
    for (unsigned int n = 0; n < m_aValues.Entries(); ++n) {
      if (ToLong(m_aValues[n].oValue) == nValue) return this->SetTypedValue(m_aValues[n].oValue);
    }
    const std::string szText = FormatParameterText("Value \"%ld\" out of range for parameter \"%s\"", nValue,
                                                   ParameterNameOf(this->m_szName));
    KLV_RAISE(ClException, szText.c_str(), -35);
  }

  void SetValue(const char* psz) override {
    const unsigned int nIndex = IndexOf(psz);
    if (nIndex < m_aValues.Entries()) return this->SetTypedValue(m_aValues[nIndex].oValue);
    const std::string szText = FormatParameterText("Value \"%s\" out of range for parameter \"%s\"",
                                                   ParameterNameOf(psz), ParameterNameOf(this->m_szName));
    KLV_RAISE(ClException, szText.c_str(), -35);
  }
  using ClParameter::GetDefaultValue;
  bool GetValue(char* psz, unsigned int& rnSize) override {
    return GetValueT2String(this->Value(), psz, rnSize);
  }
  bool GetDefaultValue(char* psz, unsigned int& rnSize) override {
    return GetValueT2String(this->m_oDefault, psz, rnSize);
  }

  ClParameterBase* Clone() override {
    auto pClone = std::make_unique<TpParameterEnumPointer>();
    CopyTo(pClone.get());
    return pClone.release();
  }
  void CopyTo(ClParameterBase* pOther) override {
    TpParameter<T, TClass>::CopyTo(pOther);
    TpParameterEnumPointer& oOther = CastParameter<TpParameterEnumPointer>(pOther);
    oOther.m_bPointer = m_bPointer;
    oOther.m_aValues.CopyFrom(m_aValues);
  }

 private:
  static long ToLong(T oValue) {
    if constexpr (std::is_pointer_v<T>) {
      return static_cast<long>(reinterpret_cast<intptr_t>(oValue));
    } else {
      return static_cast<long>(oValue);
    }
  }

  /// The index of the entry; the number of entries when there is none.
  unsigned int IndexOf(const char* szName) const {
    unsigned int n = 0;
    while (n < m_aValues.Entries() && (szName == nullptr || strcasecmp(m_aValues[n].szName, szName) != 0))
      ++n;
    return n;
  }
  unsigned int IndexOf(T oValue) const {
    unsigned int n = 0;
    while (n < m_aValues.Entries() && m_aValues[n].oValue != oValue) ++n;
    return n;
  }

  void RemoveAt(unsigned int nIndex) {
    if (nIndex < m_aValues.Entries()) m_aValues.RemoveAt(nIndex);
  }

  bool GetValueT2String(T oValue, char* psz, unsigned int& rnSize) const {
    const unsigned int nIndex = IndexOf(oValue);
    if (nIndex < m_aValues.Entries()) return HandOutParameterText(m_aValues[nIndex].szName, psz, rnSize);
    const std::string szNumber = TextWithoutName(oValue);
    if (m_aValues.Entries() > 0) {
      const std::string szText = FormatParameterText("Parameter \"%s\" out of range using value \"%s\"",
                                                     ParameterNameOf(this->m_szName), szNumber.c_str());
      KLV_RAISE(ClException, szText.c_str(), -35);
    }
    return HandOutParameterText(szNumber.c_str(), psz, rnSize);
  }

  std::string TextWithoutName(T oValue) const {
    if constexpr (std::is_pointer_v<T>) {
      if (m_bPointer) {
        return oValue == nullptr ? "NULL" : FormatParameterText("%p", static_cast<const void*>(oValue));
      }
    }
    return FormatParameterText("%ld", ToLong(oValue));
  }

  bool m_bPointer = false;
  TpArrayDynamic<ClMapEntry, 10> m_aValues;
};
