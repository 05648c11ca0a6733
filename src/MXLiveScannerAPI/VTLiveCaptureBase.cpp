// Version texts, the beep and the simple two-exposure capture of every engine.
#include "MXLiveScannerAPI/VTLiveCaptureBase.h"

#include <algorithm>
#include <cstring>

#include "MXImageProcessing/IpSubtract.h"
#include "MXTools/Bitmap.h"
#include "MXTools/Exception.h"
#include "MXVTScanAPI/MXVTScanAPIHandleBase.h"

namespace {

bool IsBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

/// The tag before a version in the scanner's text.
const char* VersionTag(unsigned int nVersionId) {
  switch (nVersionId) {
    case 1:
      return "FW:";
    case 2:
      return "FPGA:";
    case 3:
      return "HW:";
    case 4:
      return "LIB:";
    default:
      KLV_RAISE(ClException, "VersionId not supported.", -44);
  }
}

}  // namespace

void ClVTLiveCaptureBase::SetScanner(ClMXVTScanAPIHandleBase* pScanner) {
  m_pScanner = pScanner;
}

void ClVTLiveCaptureBase::Beep(unsigned int nArg1, unsigned int nArg2) {
  m_pScanner->Beep(nArg1, nArg2);
}

void ClVTLiveCaptureBase::GetVersionInfo(unsigned int nVersionId, char* szBuffer, unsigned int* pnLength) {
  if (nVersionId == 0) {
    m_pScanner->GetAPIVersion(szBuffer, pnLength);
    return;
  }
  char szText[256] = "";
  unsigned int nSize = sizeof(szText);
  m_pScanner->GetVersion(szText, &nSize);
  const char* szTag = VersionTag(nVersionId);

  const char* pEnd = std::find(szText, szText + std::min<size_t>(nSize, sizeof(szText)), '\0');
  const char* pFound = std::search(static_cast<const char*>(szText), pEnd, szTag, szTag + std::strlen(szTag));
  const char* pToken = pFound == pEnd ? pEnd : pFound + std::strlen(szTag);
  pToken = std::find_if_not(pToken, pEnd, IsBlank);
  if (pToken == pEnd) KLV_RAISE(ClException, "Version information not found.", -103);
  const size_t nLength = static_cast<size_t>(std::find_if(pToken, pEnd, IsBlank) - pToken);

  if (*pnLength < nLength + 1 || szBuffer == nullptr) {
    *pnLength = static_cast<unsigned int>(nLength + 1);
    KLV_RAISE(ClException, "The given string is too small.", -702);
  }
  std::memcpy(szBuffer, pToken, nLength);
  szBuffer[nLength] = '\0';
  *pnLength = static_cast<unsigned int>(nLength + 1);
}

void ClVTLiveCaptureBase::CaptureCurrent(ClBitmap& oBitmap1, ClBitmap& oBitmap2, ClImage& oResult,
                                         unsigned char nIllumination2, unsigned char nIllumination1) {
  if (!m_pScanner->GetImage(oBitmap1.Header(), nIllumination1, -1) ||
      !m_pScanner->GetImage(oBitmap2.Header(), nIllumination2, -1)) {
    KLV_RAISE(ClException, "scanner disconnected", -60);
  }
  ClImage oImage1;
  ClImage oImage2;
  oImage1.Attach(oBitmap1);
  oImage2.Attach(oBitmap2);
  ClIpSubtract oSubtract;
  oSubtract.ApplyParam(oImage2, oImage1, oResult, ClImage::cnTypeDefault);
}
