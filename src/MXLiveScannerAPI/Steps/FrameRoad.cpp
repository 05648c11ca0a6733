// What a frame passes through on its way to the caller.
#include "MXLiveScannerAPI/FrameRoad.h"

#include "MXKernels/BalanceRows.h"
#include "MXKernels/LayoutRows.h"
#include "MXKernels/PointRows.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXLiveScannerTools/IpLiveScannerMask.h"

namespace {

constexpr int cnMaskDpi = 500;
/// The grey value that a white area gets before the mask.
constexpr unsigned char cnTargetGrey = 224;
/// Rows that the window of a roll has beyond half of the sensor's.
constexpr int cnRollExtraRows = 2;

const ClCalibrateGeometricData& DataOf(ClVT40SetupCalibrationData& oSetup, ClFrameRoad::EKind eKind,
                                       bool bSmallImages) {
  return eKind == ClFrameRoad::ePreview ? oSetup.GetGeometricDataPreview(bSmallImages)
                                        : oSetup.GetGeometricDataFull(bSmallImages);
}

}  // namespace

ClFrameRoad::ClFrameRoad(ClVT40SetupCalibrationData& oSetup, EKind eKind, bool bSmallImages,
                         unsigned int nMask)
    : m_oSetup(oSetup), m_eKind(eKind), m_nMask(nMask) {
  const StSize oSize = RawSize(oSetup, eKind, bSmallImages);
  m_oRaw.NewWithType(ClImage::eUint8, oSize.nWidth, oSize.nHeight, 1, 0, 0, true);
}

ClFrameRoad::StSize ClFrameRoad::RawSize(ClVT40SetupCalibrationData& oSetup, EKind eKind, bool bSmallImages) {
  const ClCalibrateGeometricData& oData = DataOf(oSetup, eKind, bSmallImages);
  const StSize oSize{static_cast<int>(oData.m_nSourceWidth), static_cast<int>(oData.m_nSourceHeight)};
  return eKind == eRoll ? StSize{oSize.nWidth / 2, oSize.nHeight / 2 + cnRollExtraRows} : oSize;
}

ClFrameRoad::StSize ClFrameRoad::TargetSize(ClVT40SetupCalibrationData& oSetup, EKind eKind,
                                            bool bSmallImages) {
  const ClCalibrateGeometricData& oData = DataOf(oSetup, eKind, bSmallImages);
  const StSize oSize{static_cast<int>(oData.m_nTargetWidth), static_cast<int>(oData.m_nTargetHeight)};
  return eKind == eRoll ? StSize{oSize.nWidth / 2, oSize.nHeight / 2} : oSize;
}

void ClFrameRoad::Difference(const void* pSequence, ClImage& oDifference) {
  const size_t nPlane = static_cast<size_t>(oDifference.Width()) * static_cast<size_t>(oDifference.Height());
  const unsigned char* pFirst = static_cast<const unsigned char*>(pSequence);
  const unsigned char* pSecond = pFirst + nPlane;
  const bool bDarkFirst = (pFirst[0] & 0x0F) == 0;
  MXKernels::SubtractSaturated(bDarkFirst ? pSecond : pFirst, bDarkFirst ? pFirst : pSecond,
                               oDifference.Data(), nPlane);
}

void ClFrameRoad::Warp() {
  switch (m_eKind) {
    case ePreview:
      return m_oSetup.CalibratePreview(m_oBalanced, m_oWarped);
    case eFull:
      return m_oSetup.CalibrateFull(m_oBalanced, m_oWarped);
    case eRoll:
      return m_oSetup.CalibrateRoll(m_oBalanced, m_oWarped);
  }
}

void ClFrameRoad::Adjust(ClImage& oIn, ClImage& oOut) {
  switch (m_eKind) {
    case ePreview:
      return m_oSetup.AdjustBrightnessPreview(oIn, oOut, cnTargetGrey);
    case eFull:
      return m_oSetup.AdjustBrightnessFull(oIn, oOut, cnTargetGrey);
    case eRoll:
      return m_oSetup.AdjustBrightnessRoll(oIn, oOut, cnTargetGrey);
  }
}

void ClFrameRoad::Mask(ClImage& oIn, ClImage& oOut) {
  m_oSetup.GetMaskProcessor(m_nMask)->ApplyParam(oIn, oOut, cnMaskDpi, 1.0);
}

void ClFrameRoad::Rectify(ClImage& oOut) {
  const auto Finish = [this](const uint8_t* pReference, uint8_t* pOut) {
    MXKernels::ReverseRow(m_aRow.data(), m_aFinished.data(), m_aRow.size());
    MXKernels::AdjustBrightnessRow(m_aFinished.data(), pReference, pOut, m_aRow.size(), cnTargetGrey, 1);
  };
  if (RectifyByRows(oOut, Finish)) return;
  Balance();
  Warp();
  Flip();
  Brightness(oOut);
}

void ClFrameRoad::RectifyShot(ClImage& oOut) {
  // Only here the brightness comes before the flip: the reference is applied to the picture as the sensor
  // sees it, but in a stream to the flipped one. Both orders have always been part of how pictures look.
  const auto Finish = [this](const uint8_t* pReference, uint8_t* pOut) {
    MXKernels::AdjustBrightnessRow(m_aRow.data(), pReference, m_aFinished.data(), m_aRow.size(), cnTargetGrey,
                                   1);
    MXKernels::ReverseRow(m_aFinished.data(), pOut, m_aRow.size());
  };
  if (RectifyByRows(oOut, Finish)) return;
  Balance();
  Warp();
  Adjust(m_oWarped, m_oBalanced);
  m_oFlip.ApplyParam(m_oBalanced, oOut, true, false);
}

template <typename TFinish>
bool ClFrameRoad::RectifyByRows(ClImage& oOut, const TFinish& fnFinish) {
  if (m_eKind == eRoll) return false;
  const ClVT40SetupCalibrationData::StDirect oDirect =
      m_eKind == ePreview ? m_oSetup.DirectPreview(m_oRaw) : m_oSetup.DirectFull(m_oRaw);
  if (oDirect.pWarp == nullptr || !oDirect.pWarp->HasRowsOf(m_oRaw, *oDirect.pReference) ||
      !ClIpLocalWhiteBalanceRows::Fits(m_oRaw, ClIpLocalWhiteBalance::cnFilterWidth)) {
    return false;
  }
  const ClIpCalibrateGeometricBase& oWarp = *oDirect.pWarp;
  oWarp.NewTarget(oOut);
  m_oBalanced.New(m_oRaw);
  m_aRow.resize(static_cast<size_t>(oOut.Width()));
  m_aFinished.resize(m_aRow.size());
  m_oBalanceRows.Begin(m_oRaw, ClIpLocalWhiteBalance::cnFilterWidth);
  int nBalanced = 0;
  for (int nRow = 0; nRow < oOut.Height(); ++nRow) {
    for (; nBalanced < oWarp.SourceRows(nRow); nBalanced += 2) {
      m_oBalanceRows.Next(m_oBalanced.Row<uint8_t>(nBalanced), m_oBalanced.Row<uint8_t>(nBalanced + 1));
    }
    oWarp.WarpRow(m_oBalanced, nRow, m_aRow.data());
    fnFinish(oDirect.pReference->Row<uint8_t>(nRow), oOut.Row<uint8_t>(nRow));
  }
  return true;
}
