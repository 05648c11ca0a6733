// Compares the light of a capture with that of the preview before it.
#include "MXLiveScannerAPI/CaptureCheck.h"

#include <algorithm>

#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"

namespace {

constexpr unsigned char cnEvenGrey = 255;
/// The width of a window that is wider than ridges and narrower than fingers.
constexpr long cnSoftWidth = 51;
/// A pixel of the preview that is brighter than this is lit.
constexpr int cnUnlitGrey = 16;
/// A lit pixel counts as darker up to this percentage of the preview's light.
constexpr int cnDarkerPercent = 74;

}  // namespace

bool ClCaptureCheck::IsGood(ClVT40SetupCalibrationData& oSetup, ClImage& oFullRaw, ClImage& oPreviewRaw) {
  m_oReduce.ApplyParam(oFullRaw, 4, m_oCaptureReduced, true);
  m_oReduce.ApplyParam(oPreviewRaw, 2, m_oPreviewReduced, true);
  oSetup.AdjustBrightnessMiniRAW(m_oCaptureReduced, m_oCaptureReduced, cnEvenGrey);
  oSetup.AdjustBrightnessMiniRAW(m_oPreviewReduced, m_oPreviewReduced, cnEvenGrey);
  m_oSoften.ApplyParam(m_oCaptureReduced, m_oCaptureLight, cnSoftWidth);
  m_oSoften.ApplyParam(m_oPreviewReduced, m_oPreviewLight, cnSoftWidth);
  return KeepsItsLight(m_oPreviewLight, m_oCaptureLight);
}

bool ClCaptureCheck::KeepsItsLight(const ClImage& oPreview, const ClImage& oCapture) {
  const int nWidth = std::min(oPreview.Width(), oCapture.Width());
  const int nHeight = std::min(oPreview.Height(), oCapture.Height());
  const int nFirst = static_cast<int>(0.1 * nWidth);
  const int nEnd = static_cast<int>(0.9 * nWidth);
  const int nRows = static_cast<int>(0.9 * nHeight);
  int nLit = 0;
  int nDarker = 0;
  for (int y = 0; y < nRows; ++y) {
    const unsigned char* pCapture = oCapture.Row<unsigned char>(y);
    const unsigned char* pPreview = oPreview.Row<unsigned char>(y);
    for (int x = nFirst; x < nEnd; ++x) {
      if (pPreview[x] <= cnUnlitGrey) continue;
      ++nLit;
      nDarker += pCapture[x] * 100 / pPreview[x] <= cnDarkerPercent;
    }
  }
  return nLit / 10 > nDarker;
}
