// Parsing and printing that all parameter classes share.
#pragma once

#include <cstdint>
#include <string>

/// A number as read from a parameter's text. Which member is valid depends on the kind that was asked for.
struct ClParsedNumber {
  double dValue = 0;       ///< floating
  int64_t nSigned = 0;     ///< signed, and every hexadecimal text
  uint64_t nUnsigned = 0;  ///< unsigned and decimal
  bool bHexadecimal = false;
  bool bOverflow = false;  ///< the text means a number beyond 64 bits, or a negative one as unsigned
};

/// Parses a parameter's text: hexadecimal after an "x", else whatever strtod accepts as a whole. An integer
/// has the value of the digits that it begins with: "1.5" and "1e3" are both 1.
/// Errors: ClException -20 for NULL, -44 for bad text, -35 for infinity as an integer; texts name szName.
ClParsedNumber ParseParameterNumber(const char* szName, const char* psz, bool bFloat, bool bSigned);

/// Removes the zeros at the end of a text with a decimal point, but leaves one digit after the point.
void TrimTrailingZeros(char* psz);

/// Hands a text out by the size convention of ClParameter::GetValue.
bool HandOutParameterText(const char* szText, char* psz, unsigned int& rnSize);

/// A printf into a string.
std::string FormatParameterText(const char* szFormat, ...) __attribute__((format(printf, 1, 2)));

/// Raises ClExRange -35 "Value out of range for parameter \"name\"".
[[noreturn]] void RaiseParameterRange(const char* szName);

/// Raises ClException -101 with the text of errno.
[[noreturn]] void RaiseParameterFormat();

/// Name for a message, never NULL.
inline const char* ParameterNameOf(const char* szName) {
  return szName != nullptr ? szName : "";
}
