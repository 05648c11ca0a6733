// A named node of a parameter tree.
#pragma once

#include <string>
#include <typeinfo>

#include "MXTools/ParameterBase.h"

/// A name, a description, flags and a value in text form.
///
/// Ownership  keeps copies of its texts.
/// Errors     the operations on the value raise -101 "Abstract function" where a class has none.
class ClParameter : public ClParameterBase {
 public:
  /// Bits of the flags.
  static constexpr unsigned char cnWritable = 1;
  static constexpr unsigned char cnReadable = 2;
  /// An image of a processor: an input together with cnWritable, an output together with cnReadable.
  static constexpr unsigned char cnConnector = 4;
  static constexpr unsigned char cnContainer = 8;
  /// A number outside the range is moved to the nearer limit.
  static constexpr unsigned char cnClamp = 0x20;
  /// A number outside the range is refused.
  static constexpr unsigned char cnStrict = 0x40;

  ClParameter() = default;
  explicit ClParameter(const std::type_info& oType) : m_pType(&oType) {}
  ~ClParameter() override;

  const char* GetName() const override { return m_szName; }
  void SetName(const char* szName) override { SetString(&m_szName, szName); }
  const char* GetDescription() const override { return m_szDescription; }
  void SetDescription(const char* szDescription) override { SetString(&m_szDescription, szDescription); }
  void CopyTo(ClParameterBase* pOther) override;
  bool IsParameter() const override { return true; }

  virtual bool IsDefault() const = 0;
  virtual bool IsContainer() const { return false; }
  /// Parses the text and writes the value; a failure leaves the old value.
  virtual void SetValue(const char* psz) = 0;
  /// The value as text. rnSize goes in as the room and comes out as the size needed, terminator included; the
  /// result is true when the room was enough. Nothing is written to a NULL buffer or one that is too small.
  virtual bool GetValue(char* psz, unsigned int& rnSize) = 0;
  virtual bool GetDefaultValue(char* psz, unsigned int& rnSize) = 0;
  /// Does nothing: a container writes itself into what it takes up.
  virtual void SetContainer(ClParameterContainer* pContainer);
  virtual ClParameter* GetParameterPtr() { return this; }

  std::string GetValue();
  std::string GetDefaultValue();

  /// The type of the value; NULL for a container.
  const std::type_info* GetType() const { return m_pType; }
  unsigned char GetFlags() const { return m_nFlags; }
  void SetFlags(unsigned char nFlags) { m_nFlags = nFlags; }
  /// Replaces the bits cnWritable and cnReadable, keeps the others.
  void SetAccess(unsigned char nAccess);
  unsigned char GetAccess() const { return m_nFlags & (cnWritable | cnReadable); }
  bool IsWritable() const { return (m_nFlags & cnWritable) != 0; }
  bool IsReadable() const { return (m_nFlags & cnReadable) != 0; }

 protected:
  const std::type_info* m_pType = nullptr;
  char* m_szName = nullptr;
  char* m_szDescription = nullptr;
  unsigned char m_nFlags = cnWritable | cnReadable;
};
