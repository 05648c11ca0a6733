// The loop over strips, with a loader and a storer for each element type and working type.
#include "MXImageProcessing/OverlapStrips.h"

#include <algorithm>
#include <type_traits>

#include "MXImageProcessing/OverlapLoop.h"
#include "MXTools/ImageTypeDispatch.h"

namespace {

/// Two strips of the widest working type are 4 KB.
constexpr size_t cnStripSamples = 256;

template <typename W>
using StripLoader = void (*)(const unsigned char* pSamples, size_t nCount, W* pStrip);
template <typename W>
using StripStorer = void (*)(const W* pStrip, size_t nCount, unsigned char* pSamples);

template <typename W, typename T>
constexpr bool cbHolds = std::is_same_v<W, double> ||
                         (std::is_integral_v<T> && (sizeof(T) < 4 || sizeof(W) == 8));

template <typename W, typename T>
void LoadStrip(const unsigned char* pSamples, size_t nCount, W* __restrict pStrip) {
  const T* pFrom = reinterpret_cast<const T*>(pSamples);
  for (size_t n = 0; n < nCount; ++n) pStrip[n] = static_cast<W>(pFrom[n]);
}

template <typename W, typename T>
void StoreStrip(const W* __restrict pStrip, size_t nCount, unsigned char* pSamples) {
  T* __restrict pTo = reinterpret_cast<T*>(pSamples);
  for (size_t n = 0; n < nCount; ++n) pTo[n] = static_cast<T>(pStrip[n]);
}

template <typename W>
StripLoader<W> LoaderOf(const ClImage& oImage) {
  StripLoader<W> pfnLoader = nullptr;
  DispatchElementType(oImage.DataType(), 0, [&](auto oElement) {
    using T = typename decltype(oElement)::Type;
    if constexpr (cbHolds<W, T>) pfnLoader = LoadStrip<W, T>;
    return 0L;
  });
  return pfnLoader;
}

template <typename W>
StripStorer<W> StorerOf(const ClImage& oImage) {
  StripStorer<W> pfnStorer = nullptr;
  DispatchElementType(oImage.DataType(), 0, [&](auto oElement) {
    using T = typename decltype(oElement)::Type;
    if constexpr (cbHolds<W, T>) pfnStorer = StoreStrip<W, T>;
    return 0L;
  });
  return pfnStorer;
}

}  // namespace

template <typename W>
long ApplyByStrips(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut, const ClOverlap& oOverlap,
                   const TpStripLimits<W>& oLimits, StripRule<W> pfnRule) {
  const StripLoader<W> pfnLoad1 = LoaderOf<W>(oIn1);
  const StripLoader<W> pfnLoad2 = LoaderOf<W>(oIn2);
  const StripStorer<W> pfnStore = StorerOf<W>(oOut);
  if (pfnLoad1 == nullptr || pfnLoad2 == nullptr || pfnStore == nullptr) return -101;
  const long nSize1 = oIn1.ElementSize(), nSize2 = oIn2.ElementSize(), nSizeOut = oOut.ElementSize();
  const auto nSamples = static_cast<size_t>(oOverlap.m_nWidth * oOverlap.m_nPlanes1);
  W aFirst[cnStripSamples];
  W aSecond[cnStripSamples];
  for (long y = 0; y < oOverlap.m_nHeight; ++y) {
    const unsigned char* pIn1 = oIn1.Data() + (oOverlap.m_nOffset1 + y * oOverlap.m_nRowStep1) * nSize1;
    const unsigned char* pIn2 = oIn2.Data() + (oOverlap.m_nOffset2 + y * oOverlap.m_nRowStep2) * nSize2;
    unsigned char* pOut = oOut.Data() + (oOverlap.m_nOffsetOut + y * oOverlap.m_nRowStepOut) * nSizeOut;
    for (size_t nLeft = nSamples; nLeft != 0;) {
      const size_t nCount = std::min(nLeft, cnStripSamples);
      pfnLoad1(pIn1, nCount, aFirst);
      pfnLoad2(pIn2, nCount, aSecond);
      pfnRule(aFirst, aSecond, nCount, oLimits);
      pfnStore(aFirst, nCount, pOut);
      pIn1 += nCount * static_cast<size_t>(nSize1);
      pIn2 += nCount * static_cast<size_t>(nSize2);
      pOut += nCount * static_cast<size_t>(nSizeOut);
      nLeft -= nCount;
    }
  }
  return 0;
}

template long ApplyByStrips<int32_t>(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut,
                                     const ClOverlap& oOverlap, const TpStripLimits<int32_t>& oLimits,
                                     StripRule<int32_t> pfnRule);
template long ApplyByStrips<int64_t>(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut,
                                     const ClOverlap& oOverlap, const TpStripLimits<int64_t>& oLimits,
                                     StripRule<int64_t> pfnRule);
template long ApplyByStrips<double>(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut,
                                    const ClOverlap& oOverlap, const TpStripLimits<double>& oLimits,
                                    StripRule<double> pfnRule);

double CutToElementType(double dValue, unsigned char nType) {
  DispatchElementType(nType, 0, [&](auto oElement) {
    dValue = static_cast<double>(ElementFromDouble<typename decltype(oElement)::Type>(dValue));
    return 0L;
  });
  return dValue;
}
