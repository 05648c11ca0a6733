// Parsing and printing that all parameter classes share.
#include "MXTools/ParameterText.h"

#include <cerrno>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "MXTools/Exception.h"

namespace {

[[noreturn]] void RaiseBadText(const char* szName, const char* psz, long nNumber) {
  const std::string szText =
      FormatParameterText("Failed to set parameter \"%s\" to value \"%s\"", ParameterNameOf(szName), psz);
  KLV_RAISE(ClException, szText.c_str(), nNumber);
}

const char* BehindHexadecimalMark(const char* psz) {
  const char* szUpper = std::strchr(psz, 'X');
  const char* szLower = std::strchr(psz, 'x');
  const char* szMark = szUpper == nullptr || (szLower != nullptr && szLower > szUpper) ? szLower : szUpper;
  return szMark != nullptr ? szMark + 1 : nullptr;
}

void ParseInteger(const char* psz, bool bSigned, ClParsedNumber& rParsed) {
  errno = 0;
  if (bSigned) {
    rParsed.nSigned = std::strtoll(psz, nullptr, 10);
  } else {
    rParsed.nUnsigned = std::strtoull(psz, nullptr, 10);
    // strtoull wraps negative numbers, some of them to small positive ones.
    const bool bNegative = psz[std::strspn(psz, " \t\n\v\f\r")] == '-';
    rParsed.bOverflow = bNegative && rParsed.nUnsigned != 0;
  }
  rParsed.bOverflow = rParsed.bOverflow || errno == ERANGE;
}

}  // namespace

ClParsedNumber ParseParameterNumber(const char* szName, const char* psz, bool bFloat, bool bSigned) {
  if (psz == nullptr) KLV_RAISE(ClException, "value string is NULL pointer!", -20);
  ClParsedNumber oParsed;
  char* pEnd = nullptr;
  if (const char* szDigits = BehindHexadecimalMark(psz)) {
    oParsed.bHexadecimal = true;
    // The number is read in 64 bits on every platform: with a long of 32 bits strtol would saturate
    // unnoticed. A number beyond 64 bits saturates, and the parameter's own limits decide.
    oParsed.nSigned = std::strtoll(szDigits, &pEnd, 16);
    if (pEnd == szDigits || *pEnd != '\0') RaiseBadText(szName, psz, -44);
    return oParsed;
  }
  oParsed.dValue = std::strtod(psz, &pEnd);
  if (pEnd == psz || *pEnd != '\0') RaiseBadText(szName, psz, -44);
  if (bFloat) return oParsed;
  if (std::isinf(oParsed.dValue)) RaiseBadText(szName, psz, -35);
  if (std::isnan(oParsed.dValue)) RaiseBadText(szName, psz, -44);
  ParseInteger(psz, bSigned, oParsed);
  return oParsed;
}

void TrimTrailingZeros(char* psz) {
  if (std::strchr(psz, '.') == nullptr) return;
  size_t nLength = std::strlen(psz);
  while (nLength > 1 && psz[nLength - 1] == '0' && psz[nLength - 2] != '.' && psz[nLength - 2] != ',') {
    psz[--nLength] = '\0';
  }
}

bool HandOutParameterText(const char* szText, char* psz, unsigned int& rnSize) {
  const size_t nNeeded = std::strlen(szText) + 1;
  const bool bRoom = rnSize >= nNeeded;
  rnSize = static_cast<unsigned int>(nNeeded);
  if (bRoom && psz != nullptr) std::memcpy(psz, szText, nNeeded);
  return bRoom;
}

std::string FormatParameterText(const char* szFormat, ...) {
  va_list aArguments;
  va_start(aArguments, szFormat);
  va_list aAgain;
  va_copy(aAgain, aArguments);
  const int nLength = std::vsnprintf(nullptr, 0, szFormat, aArguments);
  va_end(aArguments);
  std::string szText(nLength > 0 ? static_cast<size_t>(nLength) : 0, '\0');
  if (nLength > 0) std::vsnprintf(szText.data(), szText.size() + 1, szFormat, aAgain);
  va_end(aAgain);
  return szText;
}

void RaiseParameterRange(const char* szName) {
  const std::string szText =
      FormatParameterText("Value out of range for parameter \"%s\"", ParameterNameOf(szName));
  KLV_RAISE(ClExRange, szText.c_str(), -35);
}

void RaiseParameterFormat() {
  KLV_RAISE(ClException, std::strerror(errno), -101);
}
