// The inner node of a parameter tree.
#pragma once

#include <memory>

#include "MXTools/Parameter.h"
#include "MXTools/TpArrayDynamic.h"
#include "MXTools/TpParameterEnumPointer.h"
#include "MXTools/TpParameterNumeric.h"
#include "MXTools/TpParameterString.h"

/// Named children in the order of their insertion.
///
/// Domain     names are unique among the children, without regard to case. Paths join names with "."; a
///            leading "." starts at the root, and the root's own name may stand first.
/// Ownership  owns its children.
/// Threads    thread-bound.
/// Errors     ClExKelvarin -46 for a name in use, the container is then as it was; ClException -101 for a
///            part of a path with 255 characters or more; -701 where another node is no container or has
///            another shape.
/// Cost       a search is linear.
class ClParameterContainer : public ClParameter {
 public:
  ClParameterContainer() { m_nFlags = cnContainer; }
  explicit ClParameterContainer(const char* szName) : ClParameterContainer() { SetString(&m_szName, szName); }
  ~ClParameterContainer() override { Clear(); }

  /// Gives the parameter its name and takes ownership; after an error the parameter is still the caller's.
  void AddParameter(const char* szName, ClParameter* pParameter);
  ClParameterContainer* AddContainer(const char* szName);
  /// A number bound to *pValue, whose value at this moment is the default.
  template <typename T>
  TpParameterNumeric<T, ClParameter>* AddNumeric(const char* szName, T* pValue) {
    auto pParameter = std::make_unique<TpParameterNumeric<T, ClParameter>>();
    pParameter->BindVariable(pValue);
    return Adopt(szName, std::move(pParameter));
  }
  /// A pointer bound to *ppValue, whose value at this moment is the default.
  template <typename T>
  TpParameterEnumPointer<T*, ClParameter>* AddPointer(const char* szName, T** ppValue) {
    auto pParameter = std::make_unique<TpParameterEnumPointer<T*, ClParameter>>();
    pParameter->SetPointer(true);
    pParameter->BindVariable(ppValue);
    return Adopt(szName, std::move(pParameter));
  }
  /// A parameter of class P that the caller binds.
  template <typename P>
  P* AddParam(const char* szName) {
    return Adopt(szName, std::make_unique<P>());
  }

  unsigned int Entries() const { return m_aParameters.Entries(); }
  ClParameter* At(unsigned int nIndex) const { return m_aParameters[nIndex]; }
  /// The child of this name; NULL when there is none.
  ClParameter* FindLocal(const char* szName) const;
  /// What a path leads to, a container too; NULL when there is nothing. A path that goes on after a value
  /// leads to that value.
  ClParameter* Find(const char* szPath);

  /// The values below this node, depth first; containers are never among them. NULL at the end.
  ClParameter* GetFirstParameter() { return GetNextParameter(0u); }
  ClParameter* GetNextParameter(unsigned int nIndex);
  ClParameter* GetNextParameter(ClParameter* pCurrent);

  /// Deletes the children.
  void Clear();
  /// Replaces the destination's children by clones of these.
  void CloneDataTo(ClParameterBase* pDestination);

  ClParameterBase* Clone() override;
  void CopyTo(ClParameterBase* pOther) override;
  void CopyDefaultFrom(ClParameterBase* pOther) override;
  void CopyDefaultFromValue(ClParameterBase* pOther) override;
  void CopyValuesFrom(ClParameterBase* pOther, bool bForce) override;
  void SetToDefault() override;
  void SetToDefaultFrom(ClParameterBase* pOther) override;
  ClParameterContainer* GetContainerInterface() override { return this; }
  ClParameter* GetParameterInterface() override { return this; }
  void SwapDefaultAndValue() override;
  bool IsDefault() const override;
  bool IsContainer() const override { return true; }
  using ClParameter::GetDefaultValue;
  using ClParameter::GetValue;
  void SetValue(const char* psz) override;
  bool GetValue(char* psz, unsigned int& rnSize) override;
  bool GetDefaultValue(char* psz, unsigned int& rnSize) override { return GetValue(psz, rnSize); }
  ClParameter* GetParameterPtr() override { return this; }

 private:
  template <typename P>
  P* Adopt(const char* szName, std::unique_ptr<P> pParameter) {
    AddParameter(szName, pParameter.get());
    return pParameter.release();
  }
  template <typename TOperation>
  void WithEachOf(ClParameterBase* pOther, TOperation&& oOperation);
  static const char* CopyNamePathPart(const char* szPath, char* szPart, unsigned int nSize);
  unsigned int IndexOf(const ClParameter* pChild) const;

  TpArrayDynamic<ClParameter*, 10> m_aParameters;
};
