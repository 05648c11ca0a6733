// Weighted sums down the columns, then along the line that they make.
#include "MXImageProcessing/IpLinFilterBase.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

#include "DirectedWindows.h"
#include "MXKernels/TapRows.h"
#include "MXTools/Exception.h"
#include "MXTools/ImageTypeDispatch.h"

namespace {

/// 32 bits hold every sum of the two 8-bit types: 255 * 4095 * 4095 unsigned, half of it signed.
template <typename T>
using TpSum = std::conditional_t<sizeof(T) == 1, int32_t,
                                 std::conditional_t<std::is_floating_point_v<T>, double, int64_t>>;

template <typename T, typename S>
void WeightRows(const T* pIn, const size_t* pOffsets, const int32_t* pTaps, size_t nTaps, S* pLine,
                size_t nCount) {
  if constexpr (sizeof(T) == 1) {
    MXKernels::WeightRows(pIn, pOffsets, pTaps, nTaps, pLine, nCount);
  } else {
    std::fill_n(pLine, nCount, S{0});
    for (size_t k = 0; k < nTaps; ++k) {
      const T* pRow = pIn + pOffsets[k];
      for (size_t i = 0; i < nCount; ++i) pLine[i] += static_cast<S>(pRow[i]) * static_cast<S>(pTaps[k]);
    }
  }
}

template <typename S>
void WeightLine(const S* pLine, const int32_t* pTaps, size_t nTaps, S* pSums, size_t nCount) {
  if constexpr (std::is_same_v<S, int32_t>) {
    MXKernels::WeightLine(pLine, pTaps, nTaps, pSums, nCount);
  } else {
    std::fill_n(pSums, nCount, S{0});
    for (size_t k = 0; k < nTaps; ++k) {
      for (size_t i = 0; i < nCount; ++i) pSums[i] += pLine[i + k] * static_cast<S>(pTaps[k]);
    }
  }
}

}  // namespace

long ClIpLinFilterBase::Initialize() {
  if (m_pInImage == nullptr) return -35;
  if (nFilterWidth < 1) {
    KLV_RAISE(ClException, "ClIpLinFilterBase::Initialize. Negative FilterWidth is not valid", -101);
  }
  long nLimit = nFilterWidth;
  if ((nMode & eModeX) != 0) nLimit = std::min<long>(nLimit, m_pInImage->Width() - 1L);
  if ((nMode & eModeY) != 0) nLimit = std::min<long>(nLimit, m_pInImage->Height() - 1L);
  if (nLimit < nFilterWidth) nFilterWidth = nLimit % 2 == 0 ? nLimit - 1 : nLimit;
  if (nFilterWidth < 1) return 0;
  // Only in the directed modes can the width exceed the image's extents.
  constexpr long cnMostTaps = 1L << 30;
  if (nFilterWidth > cnMostTaps) KlvRaiseBadAlloc();
  const auto nEntries = static_cast<unsigned int>(nFilterWidth);
  if (m_aReal.Entries() != nEntries) m_aReal.New(nEntries);
  CalcFilter(m_aReal, nFilterWidth);
  TransferArray(m_aReal, m_aCoefficients);
  m_aTaps.SetEntries(nEntries);
  std::transform(m_aCoefficients.Data(), m_aCoefficients.Data() + nEntries, m_aTaps.Data(),
                 [](long n) { return static_cast<int32_t>(n); });
  return 0;
}

void ClIpLinFilterBase::TransferArray(TpArrayStatic<double>& oReal, TpArrayStatic<long>& oFixed) {
  double dPositive = 0.0, dNegative = 0.0;
  for (unsigned int n = 0; n < oReal.Entries(); ++n) {
    if (oReal[n] >= 0.0) {
      dPositive += oReal[n];
    } else {
      dNegative += std::fabs(oReal[n]);
    }
  }
  const double dSum = dPositive - dNegative;
  m_dNorm = dPositive - dSum > 0.0001 ? 2.0 * std::max(dPositive, dNegative) : dSum;
  bSignedOut = dNegative > 0.0;
  if (oFixed.Entries() != oReal.Entries()) oFixed.New(oReal.Entries());
  for (unsigned int n = 0; n < oReal.Entries(); ++n) {
    oReal[n] /= m_dNorm;
    // Coefficients that were divided by their sum are at most 1; a sum of 0 gives infinity or NaN.
    if (!(std::fabs(oReal[n]) <= 2.0)) KLV_RAISE(ClException, "filter coefficients can't be scaled", -44);
    oFixed[n] = static_cast<long>(oReal[n] * 4095);
  }
}

long ClIpLinFilterBase::Process() {
  return nFilterWidth < 0 ? 0 : ClIpFilterBase::Process();
}

long ClIpLinFilterBase::Finalize(long nResult) {
  if (nResult != 0 || nFilterWidth < 0) return 0;
  ClImage& oOut = *m_pOutImage;
  const bool bSigned = bSignedOut || m_pInImage->IsSigned();
  if (bSigned == oOut.IsSigned()) return 0;
  if (!oOut.IsFloating()) {
    const double dHalf = std::ldexp(1.0, 8 * oOut.ElementSize() - 1) * (bSigned ? -1.0 : 1.0);
    oOut.SetBlackWhite(oOut.Black() + dHalf, oOut.White() + dHalf);
  }
  oOut.SetDataType(static_cast<unsigned char>(oOut.DataType() ^ ClImage::cnTypeSignedBit));
  return 0;
}

long ClIpLinFilterBase::Filter(bool bAlongX, bool bAlongY) {
  constexpr long cnUnknown = 1;
  const long nResult = DispatchElementType(m_pInImage->DataType(), cnUnknown, [&](auto oElement) {
    using T = typename decltype(oElement)::Type;
    FilterRows<T, TpSum<T>>(bAlongX, bAlongY);
    return 0L;
  });
  if (nResult == cnUnknown) KLV_RAISE_NUMBER(-35);
  return nResult;
}

template <typename T, typename S>
void ClIpLinFilterBase::FilterRows(bool bAlongX, bool bAlongY) {
  const ClImage& oIn = *m_pInImage;
  m_pOutImage->New(oIn);
  const long nHeight = oIn.Height();
  const auto nCount = static_cast<size_t>(oIn.Width());
  const auto nTaps = static_cast<size_t>(nFilterWidth);
  const size_t nHead = (nTaps - 1) / 2;
  auto& oLines = std::get<TpLines<S>>(m_oLines);
  oLines.m_aLine.SetEntries(static_cast<unsigned int>(nCount + nTaps - 1));
  oLines.m_aSums.SetEntries(static_cast<unsigned int>(nCount));
  m_aOffsets.SetEntries(static_cast<unsigned int>(nTaps));
  S* pPadded = oLines.m_aLine.Data();
  S* pLine = pPadded + nHead;
  S* pSums = oLines.m_aSums.Data();
  const auto nStride = static_cast<size_t>(oIn.ElementsPerRow());
  for (long y = 0; y < nHeight; ++y) {
    if (bAlongY) {
      for (size_t k = 0; k < nTaps; ++k) {
        const long nRow = y + static_cast<long>(k) - static_cast<long>(nHead);
        m_aOffsets.Data()[k] = static_cast<size_t>(std::clamp(nRow, 0L, nHeight - 1)) * nStride;
      }
      WeightRows(oIn.Row<T>(0), m_aOffsets.Data(), m_aTaps.Data(), nTaps, pLine, nCount);
    } else {
      const T* pIn = oIn.Row<T>(static_cast<int>(y));
      std::transform(pIn, pIn + nCount, pLine, [](T nSample) { return static_cast<S>(nSample); });
    }
    if (bAlongX) {
      std::fill(pPadded, pLine, pLine[0]);
      std::fill(pLine + nCount, pPadded + nCount + nTaps - 1, pLine[nCount - 1]);
      WeightLine(pPadded, m_aTaps.Data(), nTaps, pSums, nCount);
    }
    StoreRow(bAlongX ? pSums : pLine, m_pOutImage->Row<T>(static_cast<int>(y)), bAlongX && bAlongY);
  }
}

/// The sums of one axis have 12 fractional bits, those of two axes 24. An output that will be made signed
/// gets the bits of the signed number.
template <typename T, typename S>
void ClIpLinFilterBase::StoreRow(const S* pSums, T* pOut, bool bTwice) const {
  const int nWidth = m_pInImage->Width();
  const auto Store = [&](const auto& fnScale) {
    for (int x = 0; x < nWidth; ++x) pOut[x] = static_cast<T>(fnScale(pSums[x]));
  };
  if constexpr (std::is_floating_point_v<T>) {
    const double dScale = bTwice ? 1.0 / (4096.0 * 4096.0) : 1.0 / 4096.0;
    Store([=](double dSum) { return dSum * dScale; });
  } else if (!bTwice) {
    Store([](S nSum) { return nSum / 4096; });
  } else if (std::is_same_v<T, uint8_t> && !bSignedOut) {
    // The largest of these sums pass 2^31.
    Store([](S nSum) { return static_cast<uint32_t>(nSum) >> 24; });
  } else {
    Store([](S nSum) { return nSum >> 24; });
  }
}

long ClIpLinFilterBase::ProcessDirected(bool bOrtho) {
  CheckDirections();
  constexpr long cnUnknown = 1;
  const long nFirst = -((nFilterWidth - 1) / 2), nLast = nFilterWidth / 2;
  const int32_t* pTaps = m_aTaps.Data() - nFirst;
  const long nResult = DispatchElementType(m_pInImage->DataType(), cnUnknown, [&](auto oElement) {
    using T = typename decltype(oElement)::Type;
    using S = std::conditional_t<std::is_floating_point_v<T>, double, int64_t>;
    m_pOutImage->New(*m_pInImage);
    ForDirectedWindows<T>(*m_pInImage, *pInDxImage, *pInDyImage, bOrtho, nFirst, nLast,
                          [&](int64_t x, int64_t y, const auto& fnTap) {
                            S oSum{0};
                            for (long k = nFirst; k <= nLast; ++k)
                              oSum += static_cast<S>(pTaps[k]) * static_cast<S>(fnTap(k));
                            T& rnOut = m_pOutImage->Row<T>(static_cast<int>(y))[x];
                            if constexpr (std::is_floating_point_v<T>) {
                              rnOut = static_cast<T>(oSum / 4096.0);
                            } else {
                              rnOut = static_cast<T>(oSum >> 12);
                            }
                          });
    return 0L;
  });
  if (nResult == cnUnknown) KLV_RAISE_NUMBER(-35);
  return nResult;
}
