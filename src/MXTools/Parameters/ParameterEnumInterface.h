// A parameter seen as a choice among named values.
#pragma once

class ClParameterEnumInterface {
 public:
  ClParameterEnumInterface() = default;
  ClParameterEnumInterface(const ClParameterEnumInterface&) = delete;
  ClParameterEnumInterface& operator=(const ClParameterEnumInterface&) = delete;
  virtual ~ClParameterEnumInterface() = default;

  virtual unsigned int GetValueNameCount() = 0;
  /// The length of the name at nIndex of [0, GetValueNameCount()), without terminator. The name is copied to
  /// psz when nSize is above that length; else a psz that is given gets the empty text.
  virtual unsigned int GetValueName(unsigned int nIndex, char* psz, unsigned int nSize) = 0;
  /// The value as a number.
  virtual long GetValue() = 0;
  /// Errors: ClException -35 when nValue is not among the values.
  virtual void SetValue(long nValue) = 0;
};
