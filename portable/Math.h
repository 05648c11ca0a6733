// Logarithm, exponential and angles that give the same bits on every machine and in builds of either word
// size.
//
// The C library's functions differ in the last bit between its 32-bit and 64-bit versions, and from one
// processor to the next. Their results are rounded down in many places (warp maps, kernel tables, turned
// pictures), so that one such bit can move a pixel. The functions of this file use basic operations only,
// which are exact everywhere. The C library's sqrt, fmod, floor and the like are exact everywhere too, and
// are used as they are. All functions are reentrant.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>

namespace Portable {

/// The double next to pi.
constexpr double cdPi = 0x1.921fb54442d18p+1;

/// The natural logarithm of dValue, to about one unit in the last place.
///
/// dValue = 2^k * m with m around 1, and the area hyperbolic tangent series log m = 2 (s + s^3/3 + s^5/5 +
/// ...) with s = (m - 1) / (m + 1), |s| < 0.1716 (Abramowitz and Stegun, 4.1.27).
///
/// Domain   positive and normal; for anything else, 0 too, the result is finite and means nothing.
/// Cost     free of branches, so that loops over it vectorise.
inline double Log(double dValue) noexcept {
  // The upper half of the bits of sqrt(1/2): mantissas lie between this number and twice this number.
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
  // log m = f - (f^2/2 - s (f^2/2 + series)), in which the large part is exact.
  const double dHalf = 0.5 * dF * dF;
  const double dRest = dS * (dHalf + dZ * dSeries);
  // ln 2 stands in two parts; k times the first part is exact.
  constexpr double cdLn2High = 6.93147180369123816490e-01;
  constexpr double cdLn2Low = 1.90821492927058770002e-10;
  return dExponent * cdLn2High - ((dHalf - (dRest + dExponent * cdLn2Low)) - dF);
}

namespace Detail {

/// Added to a double below 2^51 and taken off again, it leaves the nearest whole number.
constexpr double cdRound = 6755399441055744.0;

/// The low bits of the whole number that dValue + cdRound holds.
inline uint64_t LowBits(double dRounded) noexcept {
  uint64_t nBits;
  std::memcpy(&nBits, &dRounded, sizeof(nBits));
  return nBits;
}

/// 2^nExponent; Domain -1022 to 1023.
inline double PowerOfTwo(int nExponent) noexcept {
  const uint64_t nBits = static_cast<uint64_t>(nExponent + 1023) << 52;
  double dPower;
  std::memcpy(&dPower, &nBits, sizeof(dPower));
  return dPower;
}

/// An angle within a quarter turn, as the sum of a large and a small part, and the number of quarter turns
/// that were taken off.
struct Reduced_t {
  double dHigh, dLow;
  unsigned nQuarters;
};

inline Reduced_t Reduce(double dAngle) noexcept {
  // Beyond this the products below are no longer exact.
  if (!(std::fabs(dAngle) < 1048576.0)) dAngle = std::fmod(dAngle, 6.283185307179586);
  const double dRounded = dAngle * 0x1.45f306dc9c883p-1 + cdRound;
  const double dQuarters = dRounded - cdRound;
  // A quarter turn stands in three parts; products with the first two are exact.
  const double dFirst = dAngle - dQuarters * 0x1.921fb544p+0;
  const double dSecond = dQuarters * 0x1.0b4611a6p-34;
  Reduced_t o;
  const double dNear = dFirst - dSecond;
  const double dRest = ((dFirst - dNear) - dSecond) - dQuarters * 0x1.3198a2e037073p-69;
  o.dHigh = dNear + dRest;
  o.dLow = (dNear - o.dHigh) + dRest;
  o.nQuarters = static_cast<unsigned>(LowBits(dRounded) & 3u);
  return o;
}

inline double SinReduced(const Reduced_t& o) noexcept {
  const double dZ = o.dHigh * o.dHigh;
  double dSeries = 1.0 / 355687428096000.0;
  dSeries = dSeries * dZ - 1.0 / 1307674368000.0;
  dSeries = dSeries * dZ + 1.0 / 6227020800.0;
  dSeries = dSeries * dZ - 1.0 / 39916800.0;
  dSeries = dSeries * dZ + 1.0 / 362880.0;
  dSeries = dSeries * dZ - 1.0 / 5040.0;
  dSeries = dSeries * dZ + 1.0 / 120.0;
  dSeries = dSeries * dZ - 1.0 / 6.0;
  return o.dHigh + (o.dLow * (1.0 - 0.5 * dZ) + o.dHigh * dZ * dSeries);
}

inline double CosReduced(const Reduced_t& o) noexcept {
  const double dZ = o.dHigh * o.dHigh;
  double dSeries = -1.0 / 6402373705728000.0;
  dSeries = dSeries * dZ + 1.0 / 20922789888000.0;
  dSeries = dSeries * dZ - 1.0 / 87178291200.0;
  dSeries = dSeries * dZ + 1.0 / 479001600.0;
  dSeries = dSeries * dZ - 1.0 / 3628800.0;
  dSeries = dSeries * dZ + 1.0 / 40320.0;
  dSeries = dSeries * dZ - 1.0 / 720.0;
  dSeries = dSeries * dZ + 1.0 / 24.0;
  const double dHalf = 0.5 * dZ, dNear = 1.0 - dHalf;
  return dNear + (((1.0 - dNear) - dHalf) + (dZ * dZ * dSeries - o.dHigh * o.dLow));
}

/// Domain [0, 1].
inline double AtanReduced(double dValue) noexcept {
  // The arc tangents of 0/8 to 8/8, each with its rounding error; the series covers what lies between.
  static constexpr double s_adTable[9][2] = {
      {0.0, 0.0},
      {0x1.fd5ba9aac2f6ep-4, -0x1.cd37686760c17p-59},
      {0x1.f5b75f92c80ddp-3, 0x1.8ab6e3cf7afbdp-57},
      {0x1.6f61941e4def1p-2, -0x1.c63aae6f6e918p-56},
      {0x1.dac670561bb4fp-2, 0x1.a2b7f222f65e2p-56},
      {0x1.1e00babdefeb4p-1, -0x1.928df287a668fp-58},
      {0x1.4978fa3269ee1p-1, 0x1.2419a87f2a458p-56},
      {0x1.700a7c5784634p-1, -0x1.8c34d25aadef6p-56},
      {0x1.921fb54442d18p-1, 0x1.1a62633145c07p-55},
  };
  const int nEntry = static_cast<int>(dValue * 8.0 + 0.5);
  const double dEntry = nEntry * 0.125;
  const double dT = (dValue - dEntry) / (1.0 + dEntry * dValue);
  const double dZ = dT * dT;
  double dSeries = -1.0 / 15.0;
  dSeries = dSeries * dZ + 1.0 / 13.0;
  dSeries = dSeries * dZ - 1.0 / 11.0;
  dSeries = dSeries * dZ + 1.0 / 9.0;
  dSeries = dSeries * dZ - 1.0 / 7.0;
  dSeries = dSeries * dZ + 1.0 / 5.0;
  dSeries = dSeries * dZ - 1.0 / 3.0;
  return s_adTable[nEntry][0] + (s_adTable[nEntry][1] + (dT + dT * dZ * dSeries));
}

}  // namespace Detail

/// e to the power of dValue, to about one unit in the last place; 0 below -746, infinity above 709.79.
inline double Exp(double dValue) noexcept {
  if (std::isnan(dValue)) return dValue;
  dValue = dValue < -746.0 ? -746.0 : dValue > 710.0 ? 710.0 : dValue;
  // dValue = k ln 2 + r, r in two parts; k times the first part of ln 2 is exact.
  const double dK = (dValue * 0x1.71547652b82fep+0 + Detail::cdRound) - Detail::cdRound;
  const double dFirst = dValue - dK * 0x1.62e42feep-1, dSecond = dK * 0x1.a39ef35793c76p-33;
  const double dR = dFirst - dSecond, dRest = (dFirst - dR) - dSecond;
  double dSeries = 1.0 / 6227020800.0;
  dSeries = dSeries * dR + 1.0 / 479001600.0;
  dSeries = dSeries * dR + 1.0 / 39916800.0;
  dSeries = dSeries * dR + 1.0 / 3628800.0;
  dSeries = dSeries * dR + 1.0 / 362880.0;
  dSeries = dSeries * dR + 1.0 / 40320.0;
  dSeries = dSeries * dR + 1.0 / 5040.0;
  dSeries = dSeries * dR + 1.0 / 720.0;
  dSeries = dSeries * dR + 1.0 / 120.0;
  dSeries = dSeries * dR + 1.0 / 24.0;
  dSeries = dSeries * dR + 1.0 / 6.0;
  dSeries = dSeries * dR + 1.0 / 2.0;
  // The power is applied in two factors, since 2^k alone may lie outside the range of normal numbers.
  const int nK = static_cast<int>(dK), nHalf = nK / 2;
  return (1.0 + (dR + (dR * dR * dSeries + dRest))) * Detail::PowerOfTwo(nHalf) *
         Detail::PowerOfTwo(nK - nHalf);
}

/// The sine, to about one unit in the last place for angles below a million radians; NaN for infinite ones.
inline double Sin(double dAngle) noexcept {
  const Detail::Reduced_t o = Detail::Reduce(dAngle);
  const double dValue = o.nQuarters & 1u ? Detail::CosReduced(o) : Detail::SinReduced(o);
  return o.nQuarters & 2u ? -dValue : dValue;
}

/// The cosine, as exact as Sin.
inline double Cos(double dAngle) noexcept {
  const Detail::Reduced_t o = Detail::Reduce(dAngle);
  const double dValue = o.nQuarters & 1u ? Detail::SinReduced(o) : Detail::CosReduced(o);
  return ((o.nQuarters + 1u) & 2u) ? -dValue : dValue;
}

/// The angle of the point (dX, dY), to two units in the last place. Range [-pi, pi]; the signs of zeros
/// count, as in C. Not a number when both are infinite.
inline double Atan2(double dY, double dX) noexcept {
  constexpr double cdPiRest = 0x1.1a62633145c07p-53;
  const double dUp = std::fabs(dY), dRight = std::fabs(dX);
  const double dRatio = dUp > dRight ? dRight / dUp : dRight > 0.0 ? dUp / dRight : dUp + dRight;
  if (std::isnan(dRatio)) return dRatio;
  double dAngle = Detail::AtanReduced(dRatio);
  if (dUp > dRight) dAngle = 0.5 * cdPi - (dAngle - 0.5 * cdPiRest);
  if (std::signbit(dX)) dAngle = cdPi - (dAngle - cdPiRest);
  return std::copysign(dAngle, dY);
}

/// Range [-pi/2, pi/2].
inline double Atan(double dValue) noexcept {
  return Atan2(dValue, 1.0);
}

/// Range [0, pi]; not a number outside [-1, 1].
inline double Acos(double dValue) noexcept {
  return Atan2(std::sqrt((1.0 - dValue) * (1.0 + dValue)), dValue);
}

/// The length of the vector (dX, dY). Domain: squares within the range of a double.
inline double Hypot(double dX, double dY) noexcept {
  return std::sqrt(dX * dX + dY * dY);
}

/// The cube root, to some ten units in the last place. Domain: positive; about 0 for 0.
inline double CubeRoot(double dValue) noexcept {
  return Exp(Log(dValue) / 3.0);
}

}  // namespace Portable
