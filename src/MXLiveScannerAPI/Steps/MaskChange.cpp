// Finger pixels of two masks.
#include "MXLiveScannerAPI/MaskChange.h"

#include <algorithm>

namespace {

/// Grey values of finger pixels in a masked image.
constexpr unsigned char cnLastFingerGrey = 160;
/// Up to this number of finger pixels, at preview size, nothing usable lies on the platen.
constexpr int cnTooFewPixels = 1000;

}  // namespace

bool ClMaskChange::IsComplete(ClImage& oPreviewMask, ClImage& oCaptureMask) {
  m_oHalve.ApplyParam(oCaptureMask, 2, m_oHalfMask, true);
  const int nPixels = FingerPixels(oCaptureMask) / 4;
  return NetLoss(oPreviewMask, m_oHalfMask) < nPixels / 5 && nPixels > cnTooFewPixels;
}

int ClMaskChange::FingerPixels(const ClImage& oMask) {
  m_oHistogram.Create(oMask);
  int nPixels = 0;
  for (unsigned char n = 0; n <= cnLastFingerGrey; ++n) nPixels += m_oHistogram.Count(n);
  return nPixels;
}

int ClMaskChange::NetLoss(ClImage& oFirst, ClImage& oSecond) {
  // Single ridges and their gaps do not count.
  m_oErode.ApplyParam(oFirst, m_oErodedFirst, 7, 3);
  m_oErode.ApplyParam(oSecond, m_oErodedSecond, 7, 3);
  const int nWidth = std::min(m_oErodedFirst.Width(), m_oErodedSecond.Width());
  const int nHeight = std::min(m_oErodedFirst.Height(), m_oErodedSecond.Height());
  int nLoss = 0;
  for (int y = m_bSkipTop ? nHeight / 5 : 0; y < nHeight; ++y) {
    const unsigned char* pFirst = m_oErodedFirst.Row<unsigned char>(y);
    const unsigned char* pSecond = m_oErodedSecond.Row<unsigned char>(y);
    for (int x = 0; x < nWidth; ++x) nLoss += (pSecond[x] == 255) - (pFirst[x] == 255);
  }
  return nLoss;
}
