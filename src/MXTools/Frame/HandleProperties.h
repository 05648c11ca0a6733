// The properties of a handle, by name.
#pragma once

#include <boost/thread/mutex.hpp>
#include <memory>

#include "MXTools/ParameterContainer.h"

/// Finds properties by name in a tree that is built on first use, and reads, writes and describes them.
///
/// Ownership  owns the tree.
/// Threads    thread-safe as far as the bound values are: building the tree has a mutex of its own, which is
///            never held around a value. An enumeration is thread-bound, and no other property call may run
///            beside its start.
/// Errors     tested in this order: -44 name NULL; -206 not found; then what each operation lists, in that
///            order; last -23 for a result that is NULL.
class ClHandleProperties {
 public:
  enum enumType_t { eTypeLong = 0, eTypeDouble = 1, eTypeText = 2 };
  enum enumAccess_t { eAccessWrite = 1, eAccessRead = 2, eAccessReadWrite = 3 };

  ClHandleProperties() = default;
  ClHandleProperties(const ClHandleProperties&) = delete;
  ClHandleProperties& operator=(const ClHandleProperties&) = delete;
  virtual ~ClHandleProperties() = default;

  /// The value as text; *pnSize comes in as the room and goes out as the size needed.
  /// Errors: -24 pnSize NULL; -21 too small.
  virtual void GetProperty(const char* szName, char* szValue, unsigned int* pnSize);
  /// Errors: -47 not writable; -20, -44, -35 for the text.
  virtual void SetProperty(const char* szName, const char* szValue);
  /// Errors: -44 neither an integer nor an enumeration; -23.
  virtual void GetPropertyLong(const char* szName, long* pnValue);
  /// Errors: -44 neither an integer nor an enumeration; -47; -35.
  virtual void SetPropertyLong(const char* szName, long nValue);
  /// Errors: -44 no floating number; -23.
  virtual void GetPropertyDouble(const char* szName, double* pdValue);
  /// Errors: -44 no floating number; -47; -35.
  virtual void SetPropertyDouble(const char* szName, double dValue);
  /// Errors: -24 pnSize NULL; -44 no block of bytes; -21 too small.
  virtual void GetPropertyBlob(const char* szName, unsigned char* pData, unsigned int* pnSize);
  /// Errors: -44 no block of bytes.
  virtual void SetPropertyBlob(const char* szName, const unsigned char* pData, unsigned int nSize);
  /// Rebuilds the tree, so that defaults are the current values, and hands out the path of the first
  /// property.
  virtual void PropertyEnumerateFirst(char* szName, unsigned int* pnSize);
  /// The next property; at the end an empty text and the size 0. Errors: -50 without a first one.
  virtual void PropertyEnumerateNext(char* szName, unsigned int* pnSize);
  virtual void GetPropertyType(const char* szName, enumType_t* peType);
  virtual void GetPropertyAccess(const char* szName, enumAccess_t* peAccess);
  /// Writes whichever limit is asked for. Errors: -103 no number or no range; -44 no integer; -23 both NULL.
  virtual void GetPropertyRangeLong(const char* szName, long* pnLow, long* pnHigh);
  /// The same for a floating number.
  virtual void GetPropertyRangeDouble(const char* szName, double* pdLow, double* pdHigh);
  /// The names of an enumeration's values. Errors: -103 no enumeration.
  virtual void GetPropertyValueEnumerateFirst(const char* szName, char* szValue, unsigned int* pnSize);
  virtual void GetPropertyValueEnumerateNext(char* szValue, unsigned int* pnSize);

  /// For handles that are lists; here each raises -209.
  virtual void GetAt(unsigned int nIndex);
  virtual void SetAt(unsigned int nIndex);
  virtual void Clear();
  virtual void Insert(unsigned int nIndex);
  virtual void Remove(unsigned int nIndex);
  virtual void Reset() {}

  /// The tree, built when there is none.
  virtual ClParameterContainer& QueryPropertys();
  /// Adds the concrete handle's properties.
  virtual void OnQueryPropertys(ClParameterContainer& oContainer);
  virtual void ResetProperties();

 protected:
  /// The text of the property "Version".
  virtual const char* VersionText() const = 0;

 private:
  ClParameter& FindProperty(const char* szName);
  ClParameterNumericInterface& FindRange(const char* szName);
  void HandOutName(ClParameter* pParameter, char* szName, unsigned int* pnSize);

  boost::mutex m_oTreeMutex;
  std::unique_ptr<ClParameterContainer> m_pParameters;  // written under m_oTreeMutex
  char* m_szVersionText = nullptr;
  ClParameter* m_pEnumParameter = nullptr;
  ClParameterEnumInterface* m_pEnumValues = nullptr;
  unsigned int m_nEnumValue = 0;
};
