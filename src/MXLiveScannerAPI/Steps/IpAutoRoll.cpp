// The life of a roll: its beginning, its frames, its end, and the verdict.
#include "MXLiveScannerAPI/IpAutoRoll.h"

#include <algorithm>
#include <cmath>

#include "MXImageProcessing/Histogram.h"
#include "MXImageProcessing/MakeProcessor.h"
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

/// Calls fnRun(label, begin, end) for each longest stretch [begin, end) of one label above 0.
template <typename TRun>
void ForEachRun(const int32_t* pLabels, int nWidth, const TRun& fnRun) {
  for (int x = 0; x < nWidth;) {
    const int nBegin = x;
    const int32_t nLabel = pLabels[x++];
    while (x < nWidth && pLabels[x] == nLabel) ++x;
    if (nLabel != 0) fnRun(nLabel, int64_t{nBegin}, int64_t{x});
  }
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
  m_oCurrent.Delete();
  m_oMerged.Delete();
  m_bFingerPresent = false;
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
    for (ClImage* pImage : {&m_oMerged, &m_oCurrent}) {
      pImage->New(*m_pInImage);
      *pImage = static_cast<unsigned char>(255);
    }
  }
  EnhanceCurrentImage();
  if (m_nProcessorState == eStateRolling) {
    m_bFingerPresent ? ContinueRoll() : FinishRoll();
  } else if (m_bFingerPresent) {
    BeginRoll();
  }
  *m_pOutImage = m_oMerged;
  return m_nReturnCode;
}

void ClIpAutoRoll::EnhanceCurrentImage() {
  m_oCurrent = *m_pInImage;
  const int nWidth = m_oCurrent.Width();
  const int nHeight = m_oCurrent.Height();
  ClHistogram oMiddle;
  oMiddle.Create(m_oCurrent, nWidth / 10, nHeight / 10, 9 * nWidth / 10, 9 * nHeight / 10);
  int nDark = 0;
  for (unsigned char n = 0; n <= cnDarkGrey; ++n) nDark += oMiddle.Count(n);
  m_bFingerPresent = nDark > cnEmptyPixels;
}

void ClIpAutoRoll::BeginRoll() {
  m_aMoments.push_back(ComputeCenterOfMassAndCentroidAngle());
  DetermineRollDirectionAndAngle();
  m_nProcessorState = eStateRolling;
  m_nReturnCode = 0;
  m_oMerged = static_cast<unsigned char>(255);
  // The first frame is measured but paints nothing: a finger comes down blurred.
  m_oCurrent = static_cast<unsigned char>(255);
  m_bBlurred = false;
  AddCurrentImage();
}

void ClIpAutoRoll::ContinueRoll() {
  m_aMoments.push_back(ComputeCenterOfMassAndCentroidAngle());
  DetermineRollDirectionAndAngle();
  AddCurrentImage();
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

ClIpAutoRoll::StRegion ClIpAutoRoll::LargestRegion(ClImage& oImage) {
  m_oMean.ApplyParam(oImage, m_oBlurred, cnBlobWidth);
  m_oBinarize.ApplyParam(m_oBlurred, m_oSoft, cdWhite);
  m_oLabeling.ApplyParam(m_oSoft, m_oLabels);
  m_aLabelSizes.assign(static_cast<size_t>(m_oLabeling.m_nLabels) + 1, 0);
  for (int y = 0; y < m_oLabels.Height(); ++y) {
    ForEachRun(m_oLabels.Row<int32_t>(y), m_oLabels.Width(),
               [&](int32_t nLabel, int64_t nBegin, int64_t nEnd) {
                 m_aLabelSizes[static_cast<size_t>(nLabel)] += nEnd - nBegin;
               });
  }
  StRegion oRegion;
  if (m_oLabeling.m_nLabels == 0) return oRegion;
  const auto itLargest = std::max_element(m_aLabelSizes.begin() + 1, m_aLabelSizes.end());
  const auto nLargest = static_cast<int32_t>(itLargest - m_aLabelSizes.begin());
  oRegion.nCount = *itLargest;
  for (int y = 0; y < m_oLabels.Height(); ++y) {
    int64_t nCount = 0, nX = 0, nXX = 0;
    ForEachRun(m_oLabels.Row<int32_t>(y), m_oLabels.Width(),
               [&](int32_t nLabel, int64_t nBegin, int64_t nEnd) {
                 if (nLabel != nLargest) return;
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
  const StRegion oRegion = LargestRegion(m_oCurrent);
  m_bBlurred = true;
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
  const StRegion oRegion = LargestRegion(m_oMerged);
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
