// Wide text and UTF-8 through the system's own conversion.
#include "MXTools/XChar.h"

#include <iconv.h>

#include <cerrno>
#include <cstdint>
#include <cwchar>

#include "MXTools/Exception.h"

namespace {

constexpr size_t cnFailed = static_cast<size_t>(-1);

/// Closes the conversion even when an exception leaves the scope.
class ClConversion {
 public:
  ClConversion(const char* szTo, const char* szFrom)
      : m_hConversion(iconv_open(szTo, szFrom)), m_bOpen(reinterpret_cast<intptr_t>(m_hConversion) != -1) {}
  ClConversion(const ClConversion&) = delete;
  ClConversion& operator=(const ClConversion&) = delete;
  ~ClConversion() {
    if (IsOpen()) iconv_close(m_hConversion);
  }
  bool IsOpen() const { return m_bOpen; }
  bool Close() {
    const bool bClosed = iconv_close(m_hConversion) == 0;
    m_bOpen = false;
    return bClosed;
  }
  size_t Convert(char** pszIn, size_t* pnIn, char** pszOut, size_t* pnOut) {
    return iconv(m_hConversion, pszIn, pnIn, pszOut, pnOut);
  }

 private:
  iconv_t m_hConversion;
  bool m_bOpen;
};

size_t CountBytes(ClConversion& oConversion, char* szIn, size_t nIn) {
  size_t nCount = 0;
  while (nIn != 0) {
    char aScratch[128];
    char* szOut = aScratch;
    size_t nOut = sizeof(aScratch);
    const size_t nResult = oConversion.Convert(&szIn, &nIn, &szOut, &nOut);
    nCount += sizeof(aScratch) - nOut;
    if (nResult == cnFailed && errno != E2BIG) throw ClExSystem("Conversions Error", __FILE__, __LINE__);
  }
  return nCount;
}

int Convert(const char* szTo, const char* szFrom, const void* pIn, unsigned int nInBytes, void* pOut,
            unsigned int nOutSize) {
  if (pIn == nullptr || nInBytes == 0) return 0;
  ClConversion oConversion(szTo, szFrom);
  if (!oConversion.IsOpen()) return -1;
  // The system's interface takes a pointer to what it does not change.
  char* szIn = static_cast<char*>(const_cast<void*>(pIn));
  size_t nIn = nInBytes;
  size_t nBytes = 0;
  if (pOut == nullptr) {
    nBytes = CountBytes(oConversion, szIn, nIn);
  } else {
    char* szOut = static_cast<char*>(pOut);
    size_t nOut = nOutSize;
    if (oConversion.Convert(&szIn, &nIn, &szOut, &nOut) == cnFailed) return -1;
    nBytes = nOutSize - nOut;
  }
  return oConversion.Close() ? static_cast<int>(nBytes) : -1;
}

}  // namespace

int ConvertWideCharToSBCS(const wchar_t* wszIn, unsigned int nInBytes, void* pOut, unsigned int nOutSize) {
  return Convert("UTF-8", "WCHAR_T", wszIn, nInBytes, pOut, nOutSize);
}

int ConvertSBCSToWidechar(const char* szIn, unsigned int nInBytes, void* pOut, unsigned int nOutSize) {
  return Convert("WCHAR_T", "UTF-8", szIn, nInBytes, pOut, nOutSize) >> 2;
}

std::string NarrowText(const wchar_t* wszText) {
  const unsigned int nInBytes = static_cast<unsigned int>(std::wcslen(wszText) * sizeof(wchar_t));
  const int nSize = ConvertWideCharToSBCS(wszText, nInBytes, nullptr, 0);
  if (nSize < 0) throw ClExSystem("Conversions Error", __FILE__, __LINE__);
  std::string szText(static_cast<size_t>(nSize), '\0');
  if (nSize > 0 &&
      ConvertWideCharToSBCS(wszText, nInBytes, &szText[0], static_cast<unsigned int>(nSize)) != nSize)
    throw ClExSystem("Conversions Error", __FILE__, __LINE__);
  return szText;
}
