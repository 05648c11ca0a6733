// Solving for the surface and drawing it.
#include "MXCalibrate/IpInterpolate2D.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include "MXTools/Exception.h"
#include "MXTools/FpImage.h"
#include "MXTools/ImageTypeDispatch.h"
#include "MXTools/ParameterRows.h"

namespace {

/// How far a surface may miss a value, relative to the largest one. For points that are apart it misses by
/// less than 1e-9. For points that nearly coincide and differ in their values there is no surface, and the
/// solution is large noise.
constexpr double cdMostMiss = 1e-4;

void Expect(bool bTrue, const char* szText) {
  if (!bTrue) KLV_RAISE(ClException, szText, -44);
}

/// Every nBlock-th position below nSize, and the last one.
std::vector<int> CornersOf(int nSize, unsigned int nBlock) {
  std::vector<int> aCorners;
  for (int64_t n = 0; n < nSize; n += nBlock) aCorners.push_back(static_cast<int>(n));
  if (aCorners.back() != nSize - 1) aCorners.push_back(nSize - 1);
  return aCorners;
}

/// The type of bilinear sums of T: exact for integers, T itself for floating types. For 8-bit samples 32 bits
/// are enough for blocks of up to 2900 by 2900.
template <typename T>
using Sum =
    std::conditional_t<std::is_floating_point_v<T>, T, std::conditional_t<sizeof(T) == 1, int32_t, int64_t>>;

/// Fills [nX0, nX1) by [nY0, nY1) from its four corners, and the row or column of a limit that is the image's
/// last.
template <typename T>
void FillBlock(ClImage& oOut, int nX0, int nX1, int nY0, int nY1) {
  using S = Sum<T>;
  const T* pUpper = oOut.Row<T>(nY0);
  const T* pLower = oOut.Row<T>(nY1);
  const S s00 = static_cast<S>(pUpper[nX0]);
  const S s10 = static_cast<S>(pUpper[nX1]);
  const S s01 = static_cast<S>(pLower[nX0]);
  const S s11 = static_cast<S>(pLower[nX1]);
  const S sArea = static_cast<S>(nX1 - nX0) * static_cast<S>(nY1 - nY0);
  for (int nY = nY0; nY < nY1 + (nY1 == oOut.Height() - 1); ++nY) {
    T* pRow = oOut.Row<T>(nY);
    const S sDown = static_cast<S>(nY - nY0);
    const S sUp = static_cast<S>(nY1 - nY);
    for (int nX = nX0; nX < nX1 + (nX1 == oOut.Width() - 1); ++nX) {
      const S sRight = static_cast<S>(nX - nX0);
      const S sLeft = static_cast<S>(nX1 - nX);
      pRow[nX] = static_cast<T>(
          (s00 * sLeft * sUp + s10 * sRight * sUp + s01 * sLeft * sDown + s11 * sRight * sDown) / sArea);
    }
  }
}

template <typename T>
void FillBlocks(ClImage& oOut, const std::vector<int>& aX, const std::vector<int>& aY) {
  for (size_t nJ = 0; nJ + 1 < aY.size(); ++nJ) {
    for (size_t nI = 0; nI + 1 < aX.size(); ++nI) FillBlock<T>(oOut, aX[nI], aX[nI + 1], aY[nJ], aY[nJ + 1]);
  }
}

}  // namespace

bool ClIpInterpolate2DBase::CanApply() {
  try {
    CheckParameters();
  } catch (...) {
    return false;
  }
  return true;
}

void ClIpInterpolate2DBase::DeclareParameters(ClParameterRows& oRows) {
  oRows.Number("nInTargetWidth", &nInTargetWidth);
  oRows.Number("nInTargetHeight", &nInTargetHeight);
}

void ClIpInterpolate2DBase::CheckParameters() const {
  Expect(m_aOutput.Entries() == m_nImages, "invalid parameter (output image array)");
  for (unsigned int n = 0; n < m_nImages; ++n) {
    Expect(m_aOutput[n] != nullptr, "invalid parameter (NULL output image)");
  }
  Expect(m_pValues != nullptr, "invalid parameter (input interpolation values)");
  Expect(m_pPoints != nullptr, "invalid parameter (input reference points)");
  Expect(nInTargetWidth >= 1, "invalid parameter (target width)");
  Expect(nInTargetHeight >= 1, "invalid parameter (target height)");
  Expect(m_nBlockSize != 0, "invalid parameter (blocksize)");
}

long ClIpInterpolate2DBase::Process() {
  CheckParameters();
  return DispatchElementType(m_nDataType, -44, [this](auto oType) {
    using T = typename decltype(oType)::Type;
    m_dLower = std::max(m_dLowerLimit, static_cast<double>(std::numeric_limits<T>::lowest()));
    m_dUpper = std::min(m_dUpperLimit, static_cast<double>(std::numeric_limits<T>::max()));
    for (unsigned int n = 0; n < m_nImages; ++n) {
      m_aOutput[n]->NewWithType(m_nDataType, nInTargetWidth, nInTargetHeight, 1, 0, 0, true);
    }
    return ProcessType<T>();
  });
}

template <typename T>
long ClIpInterpolate2DBase::ProcessType() {
  const size_t nPoints = m_pPoints->Entries();
  const Points& aPoints = *m_pPoints;
  TpLinearSystem<double> oSystem(nPoints);
  double dLargest = 0;
  for (unsigned int i = 0; i < nPoints; ++i) {
    for (unsigned int j = 0; j < nPoints; ++j) {
      oSystem(i, j) = i == j ? 0.0 : Basis((aPoints[i] - aPoints[j]).SquaredLength());
      dLargest = std::max(dLargest, std::fabs(oSystem(i, j)));
    }
  }
  // This is what rounding leaves of a pivot of 0. For points as far apart as a scanner's, pivots stay above
  // 1e-4 of the largest element.
  const double dRounding = static_cast<double>(nPoints) * std::numeric_limits<double>::epsilon();
  if (!oSystem.Factorize(dLargest * dRounding)) return -44;
  const std::vector<int> aX = CornersOf(nInTargetWidth, m_nBlockSize);
  const std::vector<int> aY = CornersOf(nInTargetHeight, m_nBlockSize);
  for (unsigned int nImage = 0; nImage < m_nImages; ++nImage) {
    Vector oWeights(nPoints);
    std::copy_n(m_pValues + nImage * nPoints, nPoints, oWeights.begin());
    oSystem.Solve(oWeights);
    if (!MeetsValues(oWeights, m_pValues + nImage * nPoints)) return -44;
    DrawCorners<T>(oWeights, aX, aY, *m_aOutput[nImage]);
    if (m_nBlockSize > 1) FillBlocks<T>(*m_aOutput[nImage], aX, aY);
  }
  return 0;
}

bool ClIpInterpolate2DBase::MeetsValues(const Vector& oWeights, const double* pValues) const {
  const unsigned int nPoints = m_pPoints->Entries();
  double dLargest = 0;
  for (unsigned int n = 0; n < nPoints; ++n) dLargest = std::max(dLargest, std::fabs(pValues[n]));
  for (unsigned int n = 0; n < nPoints; ++n) {
    const ClVector& oPoint = (*m_pPoints)[n];
    double dSum = 0;
    for (unsigned int i = 0; i < nPoints; ++i) {
      AddToRow((*m_pPoints)[i], oWeights(i), &oPoint.x, oPoint.y, 1, &dSum);
    }
    // NaN must fail as well.
    if (!(std::fabs(dSum - pValues[n]) <= cdMostMiss * dLargest)) return false;
  }
  return true;
}

template <typename T>
void ClIpInterpolate2DBase::DrawCorners(const Vector& oWeights, const std::vector<int>& aX,
                                        const std::vector<int>& aY, ClImage& oOut) const {
  const std::vector<double> aPlaces(aX.begin(), aX.end());
  std::vector<double> aSums(aX.size());
  for (const int nY : aY) {
    std::fill(aSums.begin(), aSums.end(), 0.0);
    for (unsigned int i = 0; i < m_pPoints->Entries(); ++i) {
      AddToRow((*m_pPoints)[i], oWeights(i), aPlaces.data(), nY, aX.size(), aSums.data());
    }
    T* pRow = oOut.Row<T>(nY);
    for (size_t n = 0; n < aX.size(); ++n) {
      // NaN becomes the lower limit.
      const double dAtLeast = aSums[n] > m_dLower ? aSums[n] : m_dLower;
      pRow[aX[n]] = static_cast<T>(std::min(dAtLeast, m_dUpper));
    }
  }
}
