// The abstract node of a parameter tree.
#pragma once

#include <string>

class ClParameter;
class ClParameterBlobInterface;
class ClParameterContainer;
class ClParameterEnumInterface;
class ClParameterNumericInterface;

/// What containers and values have in common: a name, a place in the tree, copying and defaults.
///
/// Ownership  a node belongs to the container that it was added to.
/// Threads    thread-bound, but for the values that TpParameterBase names.
/// Errors     ClException -701 "pCast is not set" when another node is handed in that is not of this node's
///            class; ClExBadAlloc -102.
class ClParameterBase {
 public:
  ClParameterBase() = default;
  ClParameterBase(const ClParameterBase&) = delete;
  ClParameterBase& operator=(const ClParameterBase&) = delete;
  virtual ~ClParameterBase() = default;

  virtual const char* GetName() const = 0;
  virtual void SetName(const char* szName) = 0;
  virtual const char* GetDescription() const = 0;
  virtual void SetDescription(const char* szDescription) = 0;

  /// A new node of the same class with everything that CopyTo carries; the caller owns it.
  virtual ClParameterBase* Clone() = 0;
  /// Gives the other node this one's type, flags, texts, binding and default. A copy is bound to the same
  /// variable.
  virtual void CopyTo(ClParameterBase* pOther) = 0;
  /// Default = the other's default.
  virtual void CopyDefaultFrom(ClParameterBase* pOther) = 0;
  /// Default = the other's value.
  virtual void CopyDefaultFromValue(ClParameterBase* pOther) = 0;
  /// Value = the other's value; without bForce parameters that hold pointers stay as they are.
  virtual void CopyValuesFrom(ClParameterBase* pOther, bool bForce) = 0;
  virtual void SetToDefault() = 0;
  /// Value = the other's default.
  virtual void SetToDefaultFrom(ClParameterBase* pOther) = 0;

  /// Each gives this node as the named kind, NULL when it is none.
  virtual ClParameterContainer* GetContainerInterface();
  virtual ClParameter* GetParameterInterface();
  virtual ClParameterNumericInterface* GetNumericInterface();
  virtual ClParameterEnumInterface* GetEnumInterface();
  virtual ClParameterBlobInterface* GetBlobnterface();

  virtual bool IsParameter() const { return false; }
  virtual bool IsNumeric() const { return false; }
  /// True for a closed list of named values.
  virtual bool IsEnum() const { return false; }
  virtual bool IsPointer() const { return false; }
  virtual bool IsString() const { return false; }
  /// Exchanges default and value where there are any.
  virtual void SwapDefaultAndValue() {}

  /// The container that holds this node, NULL at the root.
  ClParameterContainer* GetParent() const { return m_pContainer; }
  /// The top of the tree; NULL for a value that is in no container.
  ClParameterContainer* GetRoot();
  /// Writes the names from the root's to this one, separated by ".". Containers without a name end the path.
  /// rnSize goes in as the room and comes out as the size needed, terminator included; false: the room is too
  /// small. With a NULL buffer nothing is written.
  bool GetPathName(char* psz, unsigned int& rnSize) const;
  std::string GetPathName() const;

  /// Frees *ppsz and puts a private copy of psz there, or NULL for NULL.
  static void SetString(char** ppsz, const char* psz);

 protected:
  friend class ClParameterContainer;
  ClParameterContainer* m_pContainer = nullptr;
};

/// Raises ClException -701 "pCast is not set".
[[noreturn]] void KlvRaiseBadCast();

/// pOther as TClass. Errors: -701 when it is none, or NULL.
template <typename TClass>
TClass& CastParameter(ClParameterBase* pOther) {
  TClass* pCast = dynamic_cast<TClass*>(pOther);
  if (pCast == nullptr) KlvRaiseBadCast();
  return *pCast;
}
