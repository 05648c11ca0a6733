// A parameter's tie to the variable, or to the getter and setter, that holds its value.
#pragma once

#include "MXTools/AtomicAccess.h"
#include "MXTools/Exception.h"
#include "MXTools/Parameter.h"

/// A value of type T that is kept elsewhere: in a variable, where a pointer leads that its owner re-seats, or
/// where a getter and a setter of TClass reach.
///
/// Ownership  owns nothing of what it is bound to, which must outlive it.
/// Threads    scalar variables are read and written in one piece, so that a worker may look at them
///            meanwhile; all else is thread-bound.
/// Errors     -101 "Abstract function" from the text operations of this class; -701 "m_pValue is not set"
///            when unbound.
template <typename T, class TClass>
class TpParameterBase : public ClParameter {
 public:
  using Setter = void (TClass::*)(const T&);
  using Getter = T (TClass::*)() const;

  TpParameterBase() : ClParameter(typeid(T)), m_ppValue(&m_pValue) {}

  /// Default = the variable's value at this moment.
  void BindVariable(T* pValue) {
    m_pObject = nullptr;
    m_pValue = pValue;
    m_ppValue = &m_pValue;
    m_oDefault = Value();
  }

  /// Uses the variable that *ppValue points to at each access; its value at this moment becomes the default,
  /// unless *ppValue is NULL.
  void BindPointer(T** ppValue) {
    m_pObject = nullptr;
    m_ppValue = ppValue;
    if (*ppValue != nullptr) m_oDefault = Value();
  }

  /// The default stays as it is.
  void BindObject(TClass* pObject, Getter pfnGetter, Setter pfnSetter) {
    m_pObject = pObject;
    m_pfnGetter = pfnGetter;
    m_pfnSetter = pfnSetter;
  }

  T Value() const {
    if (m_pObject != nullptr) return (m_pObject->*m_pfnGetter)();
    return KlvAtomicLoad(Variable());
  }

  void SetTypedValue(const T& oValue) {
    if (m_pObject != nullptr) {
      (m_pObject->*m_pfnSetter)(oValue);
    } else {
      KlvAtomicStore(Variable(), oValue);
    }
  }

  const T& DefaultValue() const { return m_oDefault; }
  void SetDefaultValue(const T& oDefault) { m_oDefault = oDefault; }

  void CopyTo(ClParameterBase* pOther) override {
    ClParameter::CopyTo(pOther);
    TpParameterBase& oOther = CastParameter<TpParameterBase>(pOther);
    oOther.m_pObject = m_pObject;
    oOther.m_pfnSetter = m_pfnSetter;
    oOther.m_pfnGetter = m_pfnGetter;
    oOther.m_pValue = m_pValue;
    oOther.m_ppValue = m_ppValue == &m_pValue ? &oOther.m_pValue : m_ppValue;
    oOther.m_oDefault = m_oDefault;
  }

  void CopyDefaultFrom(ClParameterBase* pOther) override {
    m_oDefault = CastParameter<TpParameterBase>(pOther).m_oDefault;
  }
  void CopyDefaultFromValue(ClParameterBase* pOther) override {
    m_oDefault = CastParameter<TpParameterBase>(pOther).Value();
  }
  void CopyValuesFrom(ClParameterBase* pOther, bool bForce) override {
    if (!bForce && IsPointer()) return;
    SetTypedValue(CastParameter<TpParameterBase>(pOther).Value());
  }
  void SetToDefault() override { SetTypedValue(m_oDefault); }
  void SetToDefaultFrom(ClParameterBase* pOther) override {
    SetTypedValue(CastParameter<TpParameterBase>(pOther).m_oDefault);
  }
  void SwapDefaultAndValue() override {
    const T oValue = Value();
    SetTypedValue(m_oDefault);
    m_oDefault = oValue;
  }
  bool IsDefault() const override { return Value() == m_oDefault; }

  using ClParameter::GetDefaultValue;
  using ClParameter::GetValue;
  void SetValue(const char* /*psz*/) override { KLV_RAISE(ClException, "Abstract function", -101); }
  bool GetValue(char* /*psz*/, unsigned int& /*rnSize*/) override {
    KLV_RAISE(ClException, "Abstract function", -101);
  }
  bool GetDefaultValue(char* /*psz*/, unsigned int& /*rnSize*/) override {
    KLV_RAISE(ClException, "Abstract function", -101);
  }

 protected:
  T& Variable() const {
    if (*m_ppValue == nullptr) KLV_RAISE(ClException, "m_pValue is not set", -701);
    return **m_ppValue;
  }

  TClass* m_pObject = nullptr;
  Setter m_pfnSetter = nullptr;
  Getter m_pfnGetter = nullptr;
  T** m_ppValue;
  T* m_pValue = nullptr;
  T m_oDefault{};
};
