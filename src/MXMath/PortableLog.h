// A natural logarithm that gives the same bits on every machine and in builds of either word size.
#pragma once

#include <cstdint>
#include <cstring>

namespace Klv {

/// The natural logarithm of dValue, to about one unit in the last place.
///
/// The C library's logarithm differs in the last bit between its 32-bit and 64-bit versions. A warp map
/// rounds co-ordinates down, so that one such bit can move a pixel's source by a step. This one is made of
/// the basic operations only, which are exact everywhere: dValue = 2^k * m with m around 1, and the area
/// hyperbolic tangent series log m = 2 (s + s^3/3 + s^5/5 + ...) with s = (m - 1) / (m + 1), |s| < 0.1716
/// (Abramowitz and Stegun, 4.1.27).
///
/// Domain   positive and normal; for anything else, 0 too, the result is finite and means nothing.
/// Threads  reentrant.
/// Cost     free of branches, so that loops over it vectorise.
inline double PortableLog(double dValue) {
  // The upper half of the bits of sqrt(1/2): mantissas are taken from there to twice that.
  constexpr uint64_t cnLowest = 0x3fe6a09e00000000u;
  constexpr uint64_t cnOne = 0x3ff0000000000000u;
  constexpr uint64_t cnMantissa = 0x000fffffffffffffu;
  // A double with these bits plus a small integer has the value 2^52 plus that integer.
  constexpr uint64_t cnTwo52 = 0x4330000000000000u;
  constexpr double cdTwo52AndBias = 4503599627370496.0 + 1023.0;

  uint64_t nBits;
  std::memcpy(&nBits, &dValue, sizeof(nBits));
  nBits += cnOne - cnLowest;
  const uint64_t nExponentBits = cnTwo52 | (nBits >> 52);
  const uint64_t nMantissaBits = (nBits & cnMantissa) + cnLowest;
  double dExponent;
  double dMantissa;
  std::memcpy(&dExponent, &nExponentBits, sizeof(dExponent));
  std::memcpy(&dMantissa, &nMantissaBits, sizeof(dMantissa));
  dExponent -= cdTwo52AndBias;

  const double dF = dMantissa - 1.0;
  const double dS = dF / (2.0 + dF);
  const double dZ = dS * dS;
  double dSeries = 2.0 / 23.0;
  dSeries = dSeries * dZ + 2.0 / 21.0;
  dSeries = dSeries * dZ + 2.0 / 19.0;
  dSeries = dSeries * dZ + 2.0 / 17.0;
  dSeries = dSeries * dZ + 2.0 / 15.0;
  dSeries = dSeries * dZ + 2.0 / 13.0;
  dSeries = dSeries * dZ + 2.0 / 11.0;
  dSeries = dSeries * dZ + 2.0 / 9.0;
  dSeries = dSeries * dZ + 2.0 / 7.0;
  dSeries = dSeries * dZ + 2.0 / 5.0;
  dSeries = dSeries * dZ + 2.0 / 3.0;
  // log m = f - (f^2/2 - s (f^2/2 + series)): the large part is exact.
  const double dHalf = 0.5 * dF * dF;
  const double dRest = dS * (dHalf + dZ * dSeries);
  // ln 2 in two parts, of which k times the first is exact.
  constexpr double cdLn2High = 6.93147180369123816490e-01;
  constexpr double cdLn2Low = 1.90821492927058770002e-10;
  return dExponent * cdLn2High - ((dHalf - (dRest + dExponent * cdLn2Low)) - dF);
}

}  // namespace Klv
