// The life of a roll: its beginning, its frames, its end, and the verdict.
#include "MXLiveScannerAPI/IpAutoRoll.h"

#include <algorithm>
#include <cmath>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXKernels/RunRows.h"
#include "MXTools/Exception.h"
#include "portable/Math.h"

namespace {

constexpr double cdMaxTwist = 0.39269908169872414;  // pi / 8
/// With more frames than this off the mean angle a finger counts as twisted, and after a longer run of
/// slipped frames as slipped.
constexpr int cnMaxTwisted = 2;
constexpr int cnMaxSlipped = 2;
/// By how many columns the centre must move over three frames to show a direction.
constexpr double cdMinShift = 20.0;
/// The side of the windows over which a print becomes one piece.
constexpr int cnBlobSide = 15;
constexpr double cdWhite = 255.0;
/// Share of the merged print that a single frame may show at most.
constexpr double cdMaxFlatShare = 0.7;
/// Up to this number of dark pixels in the middle of a frame there is no finger.
constexpr int cnEmptyPixels = 1000;
constexpr unsigned char cnDarkGrey = 128;

/// The sums of the whole numbers from 0 to n - 1, and of their squares.
constexpr int64_t SumBelow(int64_t n) {
  return n * (n - 1) / 2;
}
constexpr int64_t SumOfSquaresBelow(int64_t n) {
  return n * (n - 1) * (2 * n - 1) / 6;
}

}  // namespace

bool sortMomentMeasures(const ClIpAutoRoll::stMomentMeasures& a, const ClIpAutoRoll::stMomentMeasures& b) {
  return a.dAngle > b.dAngle;
}

ClIpAutoRoll::ClIpAutoRoll() {
  EnableDataType(ClImage::eUint8);
}

ClProcessorBase* ClIpAutoRoll::Create() const {
  return MakeProcessor<ClIpAutoRoll>();
}

void ClIpAutoRoll::SetParametersToDefault() {
  NewIpBase::ClIp1to1Base::SetParametersToDefault();
  ResetProcessor();
}

void ClIpAutoRoll::ResetProcessor() {
  m_nProcessorState = eStateIdle;
  m_oMerged.Delete();
  m_nReturnCode = 0;
  m_nImageCount = 0;
  m_aMoments.clear();
  m_nMaxSlipRun = 0;
  m_nSlipRun = 0;
}

void ClIpAutoRoll::CheckInOutImageTypes() {
  NewIpBase::ClIp1to1Base::CheckInOutImageTypes();
  if (m_pInImage->Width() == 0) KLV_RAISE(ClException, "Input image's width not valid.", -14);
  if (m_pInImage->Height() == 0) KLV_RAISE(ClException, "Input image's height not valid.", -14);
  if (m_pOutImage == nullptr) KLV_RAISE(ClException, "Output image pointer not assigned.", -701);
  if (m_oMerged.Width() != 0 && !m_oMerged.HasSize(m_pInImage->Width(), m_pInImage->Height())) {
    KLV_RAISE(ClException, "input image must meet internal dimensions after first image was applied.", -44);
  }
}

long ClIpAutoRoll::Process() {
  if (m_oMerged.Width() == 0) {
    m_oMerged.New(*m_pInImage);
    m_oMerged = static_cast<unsigned char>(255);
  }
  const bool bFinger = ShowsFinger();
  if (m_nProcessorState == eStateRolling) {
    bFinger ? ContinueRoll() : FinishRoll();
  } else if (bFinger) {
    BeginRoll();
  }
  *m_pOutImage = m_oMerged;
  return m_nReturnCode;
}

bool ClIpAutoRoll::ShowsFinger() {
  const ClImage& oFrame = *m_pInImage;
  const int nLeft = oFrame.Width() / 10, nRight = 9 * oFrame.Width() / 10;
  const int nTop = oFrame.Height() / 10, nBottom = 9 * oFrame.Height() / 10;
  if (oFrame.Planes() > 1) KLV_RAISE(ClException, "Frames of a roll have one plane.", -101);
  if (nLeft >= nRight || nTop >= nBottom) KLV_RAISE(ClException, "The frame has no middle.", -101);
  const auto nCount = static_cast<size_t>(nRight - nLeft);
  m_aBits.resize((nCount + 63) / 64);
  int64_t nDark = 0;
  for (int y = nTop; y < nBottom; ++y) {
    MXKernels::BelowBitsRow(oFrame.Row<uint8_t>(y) + nLeft, m_aBits.data(), nCount, cnDarkGrey + 1);
    for (const uint64_t nBits : m_aBits) nDark += nBits == 0 ? 0 : __builtin_popcountll(nBits);
  }
  return nDark > cnEmptyPixels;
}

void ClIpAutoRoll::BeginRoll() {
  MeasureFrame();
  m_nProcessorState = eStateRolling;
  m_nReturnCode = 0;
  m_oMerged = static_cast<unsigned char>(255);
  // The first frame is measured but paints nothing: a finger comes down blurred.
  m_pFrame->Clear(m_oMerged.Width(), m_oMerged.Height());
  m_nImageCount = 1;
  std::swap(m_pFrame, m_pLastFrame);
}

void ClIpAutoRoll::ContinueRoll() {
  MeasureFrame();
  AddFrame();
}

/// Where the finger lies, and which way it rolls.
void ClIpAutoRoll::MeasureFrame() {
  m_pFrame->Take(*m_pInImage);
  m_aMoments.push_back(ComputeCenterOfMassAndCentroidAngle());
  DetermineRollDirectionAndAngle();
}

void ClIpAutoRoll::FinishRoll() {
  m_nProcessorState = eStateFinished;
  if (m_nMaxSlipRun > cnMaxSlipped) m_nReturnCode = -801;
  CheckRollAreaSize();
  CheckForRotation();
  if (m_bAutoRotate) {
    AutoRotateAndCropMergedImage();
    m_oMerged = m_oRotated;
  }
  m_aMoments.clear();
  m_nSlipRun = 0;
  m_nMaxSlipRun = 0;
  m_nDirection = eDirectionUnknown;
  m_nMaxArea = 0;
  m_nImageCount = 0;
}

ClIpAutoRoll::StRegion ClIpAutoRoll::LargestRegion(const ClBitPlane& oCovered) {
  m_oBlobs.Dilate(oCovered, ClRollMeans::HalfOf(cnBlobSide, oCovered.Width(), oCovered.Height()));
  m_oSets.Begin(m_oBlobs.Width(), m_oBlobs.Height());
  for (int y = 0; y < m_oBlobs.Height(); ++y) m_oSets.AddRow(m_oBlobs.Row(y));
  m_aSetSizes.assign(static_cast<size_t>(m_oSets.NumberSets()) + 1, 0);
  for (int y = 0; y < m_oBlobs.Height(); ++y) {
    m_oSets.ForEachRun(y, [&](int32_t nSet, int64_t nBegin, int64_t nEnd) {
      m_aSetSizes[static_cast<size_t>(nSet)] += nEnd - nBegin;
    });
  }
  StRegion oRegion;
  const auto itLargest = std::max_element(m_aSetSizes.begin(), m_aSetSizes.end());
  const auto nLargest = static_cast<int32_t>(itLargest - m_aSetSizes.begin());
  oRegion.nCount = *itLargest;
  for (int y = 0; y < m_oBlobs.Height(); ++y) {
    int64_t nCount = 0, nX = 0, nXX = 0;
    m_oSets.ForEachRun(y, [&](int32_t nSet, int64_t nBegin, int64_t nEnd) {
      if (nSet != nLargest) return;
      nCount += nEnd - nBegin;
      nX += SumBelow(nEnd) - SumBelow(nBegin);
      nXX += SumOfSquaresBelow(nEnd) - SumOfSquaresBelow(nBegin);
    });
    const auto dY = static_cast<double>(y);
    oRegion.dX += static_cast<double>(nX);
    oRegion.dXX += static_cast<double>(nXX);
    oRegion.dY += dY * static_cast<double>(nCount);
    oRegion.dYY += dY * dY * static_cast<double>(nCount);
    oRegion.dXY += dY * static_cast<double>(nX);
  }
  return oRegion;
}

ClIpAutoRoll::stMomentMeasures ClIpAutoRoll::ComputeCenterOfMassAndCentroidAngle() {
  const StRegion oRegion = LargestRegion(m_pFrame->Covered());
  stMomentMeasures oMeasures;
  if (oRegion.nCount == 0) return oMeasures;
  const auto dCount = static_cast<double>(oRegion.nCount);
  oMeasures.dX = oRegion.dX / dCount;
  oMeasures.dY = oRegion.dY / dCount;
  const double dM20 = oRegion.dXX / dCount - oMeasures.dX * oMeasures.dX;
  const double dM02 = oRegion.dYY / dCount - oMeasures.dY * oMeasures.dY;
  const double dM11 = oRegion.dXY / dCount - oMeasures.dX * oMeasures.dY;
  oMeasures.dAngle = 0.5 * Portable::Atan2(2 * dM11, dM20 - dM02);
  if (oMeasures.dAngle < 0.0) oMeasures.dAngle += Portable::cdPi;
  m_nMaxArea = std::max(m_nMaxArea, static_cast<int>(oRegion.nCount));
  return oMeasures;
}

void ClIpAutoRoll::DetermineRollDirectionAndAngle() {
  const size_t nCount = m_aMoments.size();
  if (nCount < 3) return;
  const double dNew = m_aMoments[nCount - 1].dX;
  const double dMiddle = m_aMoments[nCount - 2].dX;
  const double dOld = m_aMoments[nCount - 3].dX;
  const int nOldDirection = m_nDirection;
  if (dNew > dMiddle && dMiddle > dOld && dNew - dOld > cdMinShift) {
    m_nDirection = eDirectionForward;
  } else if (dNew < dMiddle && dMiddle < dOld && dOld - dNew > cdMinShift) {
    m_nDirection = eDirectionBack;
  } else {
    return;
  }
  if (nOldDirection != eDirectionUnknown && nOldDirection != m_nDirection) m_nReturnCode = -803;
}

void ClIpAutoRoll::CheckRollAreaSize() {
  m_oStrip.TakeBelow(m_oMerged, 255);
  const StRegion oRegion = LargestRegion(m_oStrip);
  if (oRegion.nCount == 0) {
    m_oCenter = ClVector(m_oMerged.Width() / 2, m_oMerged.Height() / 2);
    m_nReturnCode = -805;
    return;
  }
  const auto dCount = static_cast<double>(oRegion.nCount);
  m_oCenter = ClVector(oRegion.dX / dCount, oRegion.dY / dCount);
  if (m_nMaxArea / dCount > cdMaxFlatShare) m_nReturnCode = -805;
}

void ClIpAutoRoll::CheckForRotation() {
  double dMean = 0.0;
  for (const stMomentMeasures& oMeasures : m_aMoments) dMean += oMeasures.dAngle;
  dMean /= static_cast<double>(m_aMoments.size());
  const auto nTwisted = std::count_if(m_aMoments.begin(), m_aMoments.end(), [&](const auto& oMeasures) {
    return std::fabs(oMeasures.dAngle - dMean) > cdMaxTwist;
  });
  if (nTwisted > cnMaxTwisted) m_nReturnCode = -804;
}

void ClIpAutoRoll::AutoRotateAndCropMergedImage() {
  std::sort(m_aMoments.begin(), m_aMoments.end(), sortMomentMeasures);
  const int nWidth = m_pInImage->Width();
  const int nHeight = m_pInImage->Height();
  m_oMove.ApplyParam(m_oMerged, m_oCentred, nWidth / 2 - static_cast<int>(m_oCenter.x),
                     nHeight / 2 - static_cast<int>(m_oCenter.y), cdWhite);
  const double dAngle = m_aMoments[m_aMoments.size() / 2].dAngle;
  m_oRotate.SetBackgroundColor(255);
  m_oRotate.ApplyParam(m_oCentred, m_oRotated, ClVector(nWidth / 2, nHeight / 2), Portable::cdPi / 2 - dAngle,
                       false, true);
}
