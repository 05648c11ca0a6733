// A roll by one processor after the other over whole images: the slow twin of ClIpAutoRoll.
#pragma once

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "MXImageProcessing/IpAnd.h"
#include "MXImageProcessing/IpBinarizeGlobal.h"
#include "MXImageProcessing/IpDelta.h"
#include "MXImageProcessing/IpFilterMid.h"
#include "MXImageProcessing/IpMoveImage.h"
#include "MXImageProcessing/IpRotate.h"
#include "PlainLabels.h"
#include "portable/Math.h"

/// Takes frames of one size.
class ClPlainRoll {
 public:
  /// Returns the verdict.
  long Show(ClImage& oFrame, ClImage& oOut) {
    const int nWidth = oFrame.Width(), nHeight = oFrame.Height();
    if (m_oMerged.Width() == 0) White(m_oMerged, oFrame);
    int nDark = 0;
    ForEach(oFrame, [&](int x, int y) {
      const bool bAcross = x >= nWidth / 10 && x < 9 * nWidth / 10;
      const bool bAlong = y >= nHeight / 10 && y < 9 * nHeight / 10;
      nDark += bAcross && bAlong && At(oFrame, x, y) <= 128;
    });
    if (nDark > 1000) {
      Measure(oFrame);
      if (m_aMoments.size() == 1) {
        m_nVerdict = 0;
        White(m_oMerged, oFrame);
        White(m_oWhite, oFrame);
        Add(m_oWhite);
      } else {
        Add(oFrame);
      }
    } else if (!m_aMoments.empty()) {
      Finish();
    }
    oOut = m_oMerged;
    return m_nVerdict;
  }

  /// Whether the last frame was compared with the one before it; the sum of the squared differences of their
  /// ridges, and over how many pixels.
  bool HasCompared() const { return m_nFrames > 2; }
  int64_t Sum() const { return m_nSum; }
  int64_t Count() const { return m_nCount; }

 private:
  /// Of the pixels of the largest object: the centre, the axis and their number.
  struct StMoments {
    double dX = 0.0, dY = 0.0, dAngle = 0.0;
    int64_t nCount = 0;
  };

  static void White(ClImage& oImage, const ClImage& oModel) {
    oImage.New(oModel);
    oImage = static_cast<unsigned char>(255);
  }
  template <typename TRule>
  static void ForEach(const ClImage& oImage, const TRule& fnRule) {
    for (int y = 0; y < oImage.Height(); ++y) {
      for (int x = 0; x < oImage.Width(); ++x) fnRule(x, y);
    }
  }
  static unsigned char& At(ClImage& oImage, int x, int y) { return oImage.Row<unsigned char>(y)[x]; }
  static void Invert(ClImage& oImage) {
    ForEach(oImage, [&](int x, int y) { At(oImage, x, y) = static_cast<unsigned char>(~At(oImage, x, y)); });
  }

  StMoments LargestObject(ClImage& oImage) {
    m_oMean.ApplyParam(oImage, m_oSoft, 15);
    int nLabels = 0;
    const auto fnIsObject = [&](int x, int y) { return At(m_oSoft, x, y) < 255; };
    const auto aLabels = PlainLabels(oImage.Width(), oImage.Height(), fnIsObject, nLabels);
    std::vector<int64_t> aSizes(static_cast<size_t>(nLabels) + 1);
    for (const int32_t n : aLabels) aSizes[static_cast<size_t>(n)] += n == 0 ? 0 : 1;
    const auto nLargest = std::max_element(aSizes.begin(), aSizes.end()) - aSizes.begin();
    StMoments o;
    if (nLargest == 0) return o;
    int64_t nX = 0, nY = 0, nXX = 0, nYY = 0, nXY = 0;
    ForEach(oImage, [&](int x, int y) {
      if (aLabels[static_cast<size_t>(y * oImage.Width() + x)] != nLargest) return;
      ++o.nCount, nX += x, nY += y, nXX += x * x, nYY += y * y, nXY += x * y;
    });
    const auto Mean = [&](int64_t n) { return static_cast<double>(n) / static_cast<double>(o.nCount); };
    o.dX = Mean(nX), o.dY = Mean(nY);
    o.dAngle = 0.5 * Portable::Atan2(2 * (Mean(nXY) - o.dX * o.dY),
                                     Mean(nXX) - o.dX * o.dX - (Mean(nYY) - o.dY * o.dY));
    if (o.dAngle < 0.0) o.dAngle += Portable::cdPi;
    return o;
  }

  void Measure(ClImage& oFrame) {
    m_aMoments.push_back(LargestObject(oFrame));
    m_nMaxArea = std::max(m_nMaxArea, m_aMoments.back().nCount);
    const size_t n = m_aMoments.size();
    if (n < 3) return;
    const double dFirst = m_aMoments[n - 2].dX - m_aMoments[n - 3].dX;
    const double dSecond = m_aMoments[n - 1].dX - m_aMoments[n - 2].dX;
    if (dFirst * dSecond <= 0.0 || std::fabs(m_aMoments[n - 1].dX - m_aMoments[n - 3].dX) <= 20.0) return;
    const int nDirection = dFirst > 0.0 ? 1 : -1;
    if (m_nDirection == -nDirection) m_nVerdict = -803;
    m_nDirection = nDirection;
  }

  void Add(ClImage& oFrame) {
    ++m_nFrames;
    m_oBinarize.ApplyParam(m_oMerged, m_oMergedFinger, 128.0);
    m_oBinarize.ApplyParam(oFrame, m_oFrameFinger, 128.0);
    m_oMean.ApplyParam(oFrame, m_oSoft, 21);
    m_oBinarize.ApplyParam(m_oSoft, m_oArea, 255.0);
    m_oMean.ApplyParam(oFrame, m_oSoft, 15);
    ForEach(oFrame,
            [&](int x, int y) { At(m_oSoft, x, y) = At(oFrame, x, y) < At(m_oSoft, x, y) ? 255 : 0; });
    m_oMean.ApplyParam(m_oSoft, m_oRidges, 5);
    if (m_nFrames > 2) Compare(oFrame);
    m_oArea.Swap(m_oLastArea);
    m_oRidges.Swap(m_oLastRidges);
    Weigh();
    ForEach(oFrame, [&](int x, int y) {
      const int nWeight = At(m_oStrip, x, y), nOld = At(m_oMerged, x, y);
      At(m_oMerged, x, y) =
          static_cast<unsigned char>((At(oFrame, x, y) * nWeight + nOld * (255 - nWeight)) / 255);
    });
  }

  void Compare(ClImage& oFrame) {
    int nShared = 0;
    m_nSum = m_nCount = 0;
    ForEach(oFrame, [&](int x, int y) {
      nShared += (At(m_oMergedFinger, x, y) | At(m_oFrameFinger, x, y)) == 0;
      if ((At(m_oArea, x, y) | At(m_oLastArea, x, y)) != 0) return;
      const int nDifference = At(m_oRidges, x, y) - At(m_oLastRidges, x, y);
      m_nSum += nDifference * nDifference;
      ++m_nCount;
    });
    if (nShared < 500) m_nVerdict = -802;
    const bool bSlips = std::sqrt(static_cast<double>(m_nSum) / static_cast<double>(m_nCount)) > 85.0;
    m_nSlipRun = bSlips ? m_nSlipRun + 1 : 0;
    m_nMaxSlipRun = std::max(m_nMaxSlipRun, m_nSlipRun);
  }

  void Weigh() {
    m_oAnd.ApplyParam(m_oMergedFinger, m_oFrameFinger, m_oShared, ClImage::cnTypeDefault);
    m_oMean.ApplyParam(m_oFrameFinger, m_oSoftFrame, 11);
    m_oMean.ApplyParam(m_oShared, m_oSoft, 11);
    m_oDelta.ApplyParam(m_oSoft, m_oSoftFrame, m_oStrip, ClImage::cnTypeDefault);
    m_oBinarize.ApplyParam(m_oStrip, m_oShared, 2.0);
    Invert(m_oShared);
    m_oMean.ApplyParam(m_oShared, m_oStrip, 11);
    m_oBinarize.ApplyParam(m_oStrip, m_oShared, 2.0);
    m_oBinarize.ApplyParam(m_oSoftFrame, m_oSoft, 253.0);
    Invert(m_oSoft);
    m_oAnd.ApplyParam(m_oSoft, m_oShared, m_oStrip, ClImage::cnTypeDefault);
    m_oMean.ApplyParam(m_oStrip, m_oShared, 5);
    m_oMean.ApplyParam(m_oShared, m_oStrip, 7);
  }

  void Finish() {
    if (m_nMaxSlipRun > 2) m_nVerdict = -801;
    const int nWidth = m_oMerged.Width(), nHeight = m_oMerged.Height();
    const StMoments oPrint = LargestObject(m_oMerged);
    ClVector oCentre(oPrint.dX, oPrint.dY);
    if (oPrint.nCount == 0) oCentre = ClVector(nWidth / 2, nHeight / 2);
    if (10 * m_nMaxArea > 7 * oPrint.nCount) m_nVerdict = -805;
    double dMean = 0.0;
    for (const StMoments& o : m_aMoments) dMean += o.dAngle / static_cast<double>(m_aMoments.size());
    const auto fnTwisted = [&](const StMoments& o) {
      return std::fabs(o.dAngle - dMean) > Portable::cdPi / 8;
    };
    if (std::count_if(m_aMoments.begin(), m_aMoments.end(), fnTwisted) > 2) m_nVerdict = -804;
    std::sort(m_aMoments.begin(), m_aMoments.end(),
              [](const StMoments& a, const StMoments& b) { return a.dAngle > b.dAngle; });
    m_oMove.ApplyParam(m_oMerged, m_oSoft, nWidth / 2 - static_cast<int>(oCentre.x),
                       nHeight / 2 - static_cast<int>(oCentre.y), 255.0);
    m_oRotate.SetBackgroundColor(255);
    m_oRotate.ApplyParam(m_oSoft, m_oStrip, ClVector(nWidth / 2, nHeight / 2),
                         Portable::cdPi / 2 - m_aMoments[m_aMoments.size() / 2].dAngle, false, true);
    m_oMerged = m_oStrip;
    m_aMoments.clear();
    m_nSlipRun = m_nMaxSlipRun = m_nDirection = m_nFrames = 0;
    m_nMaxArea = 0;
  }

  long m_nVerdict = 0;
  int m_nFrames = 0, m_nDirection = 0, m_nSlipRun = 0, m_nMaxSlipRun = 0;
  int64_t m_nMaxArea = 0, m_nSum = 0, m_nCount = 0;
  std::vector<StMoments> m_aMoments;
  ClImage m_oMerged, m_oWhite, m_oMergedFinger, m_oFrameFinger, m_oShared, m_oSoft, m_oSoftFrame, m_oStrip;
  ClImage m_oArea, m_oLastArea, m_oRidges, m_oLastRidges;
  ClIpFilterMid m_oMean;
  ClIpBinarizeGlobal m_oBinarize;
  ClIpAnd m_oAnd;
  ClIpDelta m_oDelta;
  ClIpMoveImage m_oMove;
  ClIpRotate m_oRotate;
};
