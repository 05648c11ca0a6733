// Column sums that move down the image and a window that slides along them.
#include "MXImageProcessing/IpFilterMid.h"

#include <algorithm>
#include <limits>
#include <type_traits>

#include "ColumnSums.h"
#include "DirectedWindows.h"
#include "MXImageProcessing/MakeProcessor.h"
#include "MXKernels/BoxRows.h"
#include "MXTools/Exception.h"
#include "MXTools/ImageTypeDispatch.h"

namespace {

/// Whether the sum of a whole window fits the 32 bits of the kernels.
template <typename T>
bool FitsKernels(uint64_t nArea) {
  return nArea <= std::numeric_limits<uint32_t>::max() / std::numeric_limits<T>::max();
}

/// A window holds at least its own pixel.
template <typename T, typename S>
T TruncatedMean(S oSum, int64_t nArea) {
  return static_cast<T>(oSum / static_cast<S>(std::max<int64_t>(nArea, 1)));
}

}  // namespace

long ClIpFilterMid::ApplyParam(ClImage& oIn, ClImage& oOut, long nWidth) {
  return ApplyParam(oIn, oOut, nWidth, nMode);
}

ClProcessorBase* ClIpFilterMid::Create() const {
  return MakeProcessor<ClIpFilterMid>();
}

long ClIpFilterMid::Initialize() {
  nFilterWidth |= 1;
  return 0;
}

long ClIpFilterMid::DoProcess() {
  if (m_pInImage == nullptr) KLV_RAISE_NUMBER(-10);
  constexpr long cnUnknown = 1;
  const long nResult = DispatchElementType(m_pInImage->DataType(), cnUnknown, [this](auto oElement) {
    using T = typename decltype(oElement)::Type;
    using S = std::conditional_t<std::is_floating_point_v<T>, double, int64_t>;
    return std::is_same_v<T, uint8_t> ? ClIpFilterBase::DoProcess() : ProcessT<T, S>();
  });
  if (nResult == cnUnknown) KLV_RAISE_NUMBER(-35);
  return nResult;
}

long ClIpFilterMid::ProcessX() {
  return ProcessT_X<uint8_t, int64_t>();
}
long ClIpFilterMid::ProcessY() {
  return ProcessT_Y<uint8_t, int64_t>();
}
long ClIpFilterMid::ProcessSignedX() {
  return ProcessT_X<int8_t, int64_t>();
}
long ClIpFilterMid::ProcessSignedY() {
  return ProcessT_Y<int8_t, int64_t>();
}
long ClIpFilterMid::ProcessSignedXY() {
  return ProcessT_XY<int8_t, int64_t>();
}

long ClIpFilterMid::ProcessDirected(bool bOrtho) {
  return ProcessT_Directed<uint8_t, int64_t>(bOrtho);
}
long ClIpFilterMid::ProcessSignedDirected(bool bOrtho) {
  return ProcessT_Directed<int8_t, int64_t>(bOrtho);
}

long ClIpFilterMid::ProcessXY() {
  if (m_pRemainderImage != nullptr) return ProcessXYRemainder();
  const bool bFits = m_pInImage->Width() >= nFilterWidth && m_pInImage->Height() >= nFilterWidth;
  return bFits && nFilterWidth == 3 ? Process3x3() : ProcessT_XY<uint8_t, int64_t>();
}

// NOLINTBEGIN(bugprone-virtual-near-miss): one letter apart, as ProcessX and ProcessY are
template <typename T, typename S>
long ClIpFilterMid::ProcessT() {
  switch (nMode) {
    case eModeX:
      return ProcessT_X<T, S>();
    case eModeY:
      return ProcessT_Y<T, S>();
    case eModeXY:
      return ProcessT_XY<T, S>();
    case eModeDirected:
      return ProcessT_Directed<T, S>(false);
    case eModeDirectedOrtho:
      return ProcessT_Directed<T, S>(true);
    default:
      KLV_RAISE_NUMBER(-35);
  }
}

// NOLINTEND(bugprone-virtual-near-miss)

/// The width of a window that fits the axis; 0 when none does.
long ClIpFilterMid::WidthOnAxis(long nExtent) const {
  if (nFilterWidth < nExtent) return nFilterWidth;
  const long nShrunk = nExtent - 1;
  return nShrunk % 2 == 0 ? std::max(nShrunk - 1, 0L) : nShrunk;
}

template <typename T, typename S>
long ClIpFilterMid::ProcessT_X() {
  const long nWidth = WidthOnAxis(m_pInImage->Width());
  if (nWidth < 1) return -101;
  MeanOfWindows<T, S>(nWidth / 2, 0);
  return 0;
}

template <typename T, typename S>
long ClIpFilterMid::ProcessT_Y() {
  const long nWidth = WidthOnAxis(m_pInImage->Height());
  if (nWidth < 1) return -101;
  MeanOfWindows<T, S>(0, nWidth / 2);
  return 0;
}

template <typename T, typename S>
long ClIpFilterMid::ProcessT_XY() {
  if (m_pInImage->Width() < nFilterWidth || m_pInImage->Height() < nFilterWidth) {
    *m_pOutImage = *m_pInImage;
    return 0;
  }
  MeanOfWindows<T, S>(nFilterWidth / 2, nFilterWidth / 2);
  return 0;
}

template <typename T, typename S>
long ClIpFilterMid::ProcessT_Directed(bool bOrtho) {
  CheckDirections();
  m_pOutImage->New(*m_pInImage);
  const long nHalf = nFilterWidth / 2;
  ForDirectedWindows<T>(*m_pInImage, *pInDxImage, *pInDyImage, bOrtho, -nHalf, nHalf,
                        [&](int64_t x, int64_t y, const auto& fnTap) {
                          S oSum{0};
                          for (long k = -nHalf; k <= nHalf; ++k) oSum += static_cast<S>(fnTap(k));
                          m_pOutImage->Row<T>(static_cast<int>(y))[x] = TruncatedMean<T>(oSum, nFilterWidth);
                        });
  return 0;
}

/// Works in whole numbers: rounding could put a mean that is a multiple of 1 / 256 below it.
long ClIpFilterMid::ProcessXYRemainder() {
  if (m_pRemainderImage == m_pInImage || m_pRemainderImage == m_pOutImage) return -10;
  m_pRemainderImage->New(*m_pInImage);
  if (m_pInImage->Width() < nFilterWidth || m_pInImage->Height() < nFilterWidth) {
    // Each sample is its own mean.
    *m_pRemainderImage = 0;
    *m_pOutImage = *m_pInImage;
    return 0;
  }
  m_pOutImage->New(*m_pInImage);
  ForWindows<uint8_t, int64_t>(nFilterWidth / 2, nFilterWidth / 2, [this](int y) {
    uint8_t* pOut = m_pOutImage->Row<uint8_t>(y);
    uint8_t* pRemainder = m_pRemainderImage->Row<uint8_t>(y);
    return [=](long x, int64_t nSum, int64_t nArea) {
      pOut[x] = static_cast<uint8_t>(nSum / nArea);
      pRemainder[x] = static_cast<uint8_t>(nSum % nArea * 256 / nArea);
    };
  });
  return 0;
}

template <typename T, typename S>
void ClIpFilterMid::MeanOfWindows(long nHalfX, long nHalfY) {
  if (nHalfX == 0 && nHalfY == 0) {
    *m_pOutImage = *m_pInImage;
    return;
  }
  m_pOutImage->New(*m_pInImage);
  if constexpr (std::is_same_v<T, uint8_t> || std::is_same_v<T, uint16_t>) {
    const uint64_t nArea = static_cast<uint64_t>(2 * nHalfX + 1) * static_cast<uint64_t>(2 * nHalfY + 1);
    if constexpr (std::is_same_v<T, uint8_t>) {
      if (nArea <= 256) return MeanOfWindowsByKernels<T>(nHalfX, nHalfY, m_oNarrowSums);
    }
    if (FitsKernels<T>(nArea)) return MeanOfWindowsByKernels<T>(nHalfX, nHalfY, m_oWideSums);
  }
  ForWindows<T, S>(nHalfX, nHalfY, [this](int y) {
    T* pOut = m_pOutImage->Row<T>(y);
    return [=](long x, S oSum, int64_t nArea) { pOut[x] = TruncatedMean<T>(oSum, nArea); };
  });
}

template <typename T, typename TSum>
void ClIpFilterMid::MeanOfWindowsByKernels(long nHalfX, long nHalfY, TpColumnSums<TSum>& oSums) {
  const auto nCount = static_cast<unsigned int>(m_pInImage->Width());
  oSums.m_aPrefix.SetEntries(nCount + 1);
  ForColumnSums<T>(*m_pInImage, nHalfY, oSums.m_aSums, [&](int y, uint32_t nRows) {
    MXKernels::SlidingMeanRow(oSums.m_aSums.Data(), nCount, static_cast<size_t>(nHalfX), nRows,
                              oSums.m_aPrefix.Data(), m_pOutImage->Row<T>(y));
  });
}

/// Calls fnRow(y)(x, sum of the window, number of its pixels) for every pixel.
template <typename T, typename S, typename TRow>
void ClIpFilterMid::ForWindows(long nHalfX, long nHalfY, const TRow& fnRow) {
  const ClImage& oIn = *m_pInImage;
  const long nHeight = oIn.Height();
  const long nWidth = oIn.Width();
  TpArrayDynamic<S, 1>& aSums = Sums<S>();
  aSums.SetEntries(static_cast<unsigned int>(nWidth));
  S* pSums = aSums.Data();
  std::fill_n(pSums, nWidth, S{0});
  long nRows = 0;
  const auto AddRow = [&](long y, S oSign) {
    if (y < 0 || y >= nHeight) return;
    const T* pRow = oIn.Row<T>(static_cast<int>(y));
    for (long x = 0; x < nWidth; ++x) pSums[x] += oSign * static_cast<S>(pRow[x]);
    nRows += oSign > 0 ? 1 : -1;
  };
  for (long y = 0; y < nHalfY; ++y) AddRow(y, S{1});
  for (long y = 0; y < nHeight; ++y) {
    AddRow(y + nHalfY, S{1});
    AddRow(y - nHalfY - 1, S{-1});
    const auto fnStore = fnRow(static_cast<int>(y));
    S oSum{0};
    long nColumns = 0;
    for (long x = 0; x < std::min(nHalfX, nWidth); ++x, ++nColumns) oSum += pSums[x];
    for (long x = 0; x < nWidth; ++x) {
      if (x + nHalfX < nWidth) {
        oSum += pSums[x + nHalfX];
        ++nColumns;
      }
      if (x > nHalfX) {
        oSum -= pSums[x - nHalfX - 1];
        --nColumns;
      }
      fnStore(x, oSum, int64_t{nRows} * nColumns);
    }
  }
}

template <typename S>
TpArrayDynamic<S, 1>& ClIpFilterMid::Sums() {
  if constexpr (std::is_same_v<S, double>) {
    return m_aRealSums;
  } else {
    return m_aLongSums;
  }
}

/// Rounded means of the 3 by 3 window without a division: the factors are 2048 / 6 and 4096 / 9, rounded.
long ClIpFilterMid::Process3x3() {
  const ClImage& oIn = *m_pInImage;
  m_pOutImage->New(oIn);
  const int nLastRow = oIn.Height() - 1;
  const long nLast = oIn.Width() - 1;
  m_oWideSums.m_aSums.SetEntries(static_cast<unsigned int>(oIn.Width()));
  uint32_t* pSums = m_oWideSums.m_aSums.Data();
  for (int y = 0; y <= nLastRow; ++y) {
    const bool bBorderRow = y == 0 || y == nLastRow;
    const uint8_t* pHere = oIn.Row<uint8_t>(y);
    const uint8_t* pAbove = oIn.Row<uint8_t>(y == 0 ? 1 : y - 1);
    const uint8_t* pBelow = oIn.Row<uint8_t>(y == nLastRow ? nLastRow - 1 : y + 1);
    // The first and the last row have one neighbour row, which both pointers lead to.
    for (long x = 0; x <= nLast; ++x) {
      pSums[x] = static_cast<uint32_t>(pHere[x] + pAbove[x] + (bBorderRow ? 0 : pBelow[x]));
    }
    uint8_t* pOut = m_pOutImage->Row<uint8_t>(y);
    const uint32_t nFirst = pSums[0] + pSums[1];
    const uint32_t nEnd = pSums[nLast - 1] + pSums[nLast];
    pOut[0] = static_cast<uint8_t>(bBorderRow ? (nFirst + 2) >> 2 : ((nFirst + 3) * 341) >> 11);
    pOut[nLast] = static_cast<uint8_t>(bBorderRow ? (nEnd + 2) >> 2 : ((nEnd + 3) * 341) >> 11);
    for (long x = 1; x < nLast; ++x) {
      const uint32_t nSum = pSums[x - 1] + pSums[x] + pSums[x + 1];
      pOut[x] = static_cast<uint8_t>(bBorderRow ? ((nSum + 3) * 341) >> 11 : ((nSum + 4) * 455) >> 12);
    }
  }
  return 0;
}
