// Loops over every sample of an image, for processors that work sample by sample.
#pragma once

#include <cstdint>

#include "MXTools/FpImage.h"
#include "MXTools/ImageTypeDispatch.h"

/// out = fnSample(in) for width * planes samples of each row; padding is not touched. In may be out when T is
/// U.
template <typename T, typename U, typename TSample>
void MapSamples(const ClImage& oIn, ClImage& oOut, TSample&& fnSample) {
  const int nSamples = oIn.SamplesPerRow();
  for (int y = 0; y < oIn.Height(); ++y) {
    const T* pIn = oIn.Row<T>(y);
    U* pOut = oOut.Row<U>(y);
    for (int n = 0; n < nSamples; ++n) pOut[n] = fnSample(pIn[n]);
  }
}

/// The same for eUint8 input by a table: fnSample is called once for each of the 256 values.
template <typename U, typename TSample>
void MapSamplesByTable(const ClImage& oIn, ClImage& oOut, TSample&& fnSample) {
  U aTable[256];
  for (int n = 0; n < 256; ++n) aTable[n] = fnSample(static_cast<uint8_t>(n));
  MapSamples<uint8_t, U>(oIn, oOut, [&aTable](uint8_t nValue) { return aTable[nValue]; });
}

/// out = fnRule(in) as numbers, limited to the type, for two images that share one of the eight types; with
/// bTable eUint8 goes by a table. Errors: -101, returned, for another type.
template <typename TRule>
long MapByRule(const ClImage& oIn, ClImage& oOut, bool bTable, const TRule& fnRule) {
  return DispatchElementType(oIn.DataType(), -101, [&](auto oElement) {
    using T = typename decltype(oElement)::Type;
    const auto fnSample = [&](T nValue) { return ElementFromDouble<T>(fnRule(static_cast<double>(nValue))); };
    if constexpr (std::is_same_v<T, uint8_t>) {
      if (bTable) {
        MapSamplesByTable<T>(oIn, oOut, fnSample);
        return 0L;
      }
    }
    MapSamples<T, T>(oIn, oOut, fnSample);
    return 0L;
  });
}
