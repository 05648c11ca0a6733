// A parameter seen as a number.
#pragma once

#include "MXTools/TpArrayStatic.h"

/// Value, limits, default and presentation of a number, whatever its type.
///
/// Range   equal limits mean no range. Limits are information for callers unless the parameter's flags say
///         otherwise.
/// Errors  ClExRange -35 for a number that the type cannot hold; ClExBadAlloc -102.
class ClParameterNumericInterface {
 public:
  ClParameterNumericInterface() = default;
  ClParameterNumericInterface(const ClParameterNumericInterface&) = delete;
  ClParameterNumericInterface& operator=(const ClParameterNumericInterface&) = delete;
  virtual ~ClParameterNumericInterface() = default;

  virtual double GetNumber() const = 0;
  virtual void SetNumber(double dValue) = 0;
  /// The value as long: truncated and saturated; NaN gives 0.
  virtual long GetNumberLong() const = 0;
  virtual void SetNumberLong(long nValue) = 0;
  virtual double GetLowerBoundary() const = 0;
  virtual void SetLowerBoundary(double dValue) = 0;
  virtual double GetUpperBoundary() const = 0;
  virtual void SetUpperBoundary(double dValue) = 0;
  virtual double GetDefault() const = 0;
  virtual void SetDefault(double dValue) = 0;
  virtual int GetPrecision() const { return m_nPrecision; }
  virtual void SetPrecision(int nPrecision) { m_nPrecision = nPrecision; }
  virtual bool IsFloat() const = 0;
  virtual bool IsInteger() const = 0;
  virtual bool IsValueInRange() const = 0;
  virtual bool IsValueInRange(double dValue) const = 0;
  virtual bool HasRange() const = 0;

  double GetScale() const { return m_dScale; }
  void SetScale(double dScale) { m_dScale = dScale; }
  double GetNumberScaled() const { return GetNumber() * m_dScale; }
  void SetNumberSecaled(double dValue) { SetNumber(dValue / m_dScale); }
  /// The printf format of the value in the parameter's own type; a format with "*" takes the precision and a
  /// double.
  const char* GetFormat() const { return m_aFormat.Data(); }
  void SetFormat(const char* szFormat);

 protected:
  double m_dScale = 1.0;
  int m_nPrecision = 0;
  TpArrayStatic<char> m_aFormat;
};
