// Tests of the functions that give the same bits everywhere, against the C library's in longer numbers.
#include "portable/Math.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr double cdPi = 3.141592653589793, cdInfinity = std::numeric_limits<double>::infinity();

/// The greatest distance between fnOwn and the exact fnLibrary in units of the last place, for values in
/// [dFrom, dTo).
template <typename TOwn, typename TLibrary>
double WorstUnits(TOwn fnOwn, TLibrary fnLibrary, double dFrom, double dTo) {
  std::mt19937_64 oRandom(3);
  std::uniform_real_distribution<double> oValue(dFrom, dTo);
  double dWorst = 0;
  for (int n = 0; n < 100000; ++n) {
    const double dValue = oValue(oRandom);
    const long double dExact = fnLibrary(static_cast<long double>(dValue));
    const double dNear = std::fabs(static_cast<double>(dExact));
    const double dUnit = std::nextafter(dNear, cdInfinity) - dNear;
    dWorst = std::max(dWorst, static_cast<double>(std::fabs(fnOwn(dValue) - dExact)) / dUnit);
  }
  return dWorst;
}

TEST(PortableMath, EachFunctionIsWithinOneOrTwoUnitsInTheLastPlace) {
  const auto fnOwnLog = [](double d) { return Portable::Log(std::exp2(d)); };
  const auto fnLog = [](long double d) {
    return std::log(static_cast<long double>(std::exp2(static_cast<double>(d))));
  };
  EXPECT_LE(WorstUnits(fnOwnLog, fnLog, -200, 200), 2);
  const auto fnExp = [](long double d) { return std::exp(d); };
  EXPECT_LE(WorstUnits(Portable::Exp, fnExp, -700, 700), 1);
  EXPECT_LE(WorstUnits(Portable::Exp, fnExp, -1, 1), 1);
  const auto fnSin = [](long double d) { return std::sin(d); };
  const auto fnCos = [](long double d) { return std::cos(d); };
  for (const double dReach : {0.5, 10.0, 1e6}) {
    EXPECT_LE(WorstUnits(Portable::Sin, fnSin, -dReach, dReach), 1) << dReach;
    EXPECT_LE(WorstUnits(Portable::Cos, fnCos, -dReach, dReach), 1) << dReach;
  }
  const auto fnAtan = [](long double d) { return std::atan(d); };
  for (const double dReach : {1.0, 20.0, 1e9})
    EXPECT_LE(WorstUnits(Portable::Atan, fnAtan, -dReach, dReach), 2) << dReach;
  EXPECT_LE(WorstUnits(
                Portable::Acos, [](long double d) { return std::acos(d); }, -1, 1),
            3);
}

TEST(PortableMath, ExactValuesAreExact) {
  EXPECT_EQ(Portable::Log(1.0), 0.0);
  for (const double dValue : {0.0, -800.0, 800.0, -740.0}) EXPECT_EQ(Portable::Exp(dValue), std::exp(dValue));
  EXPECT_EQ(Portable::Sin(0.0), 0.0);
  EXPECT_EQ(Portable::Cos(0.0), 1.0);
  EXPECT_EQ(Portable::Sin(cdPi / 2), 1.0);
  EXPECT_EQ(Portable::Cos(cdPi), -1.0);
  EXPECT_LE(std::fabs(Portable::Cos(cdPi / 2) - 6.123233995736766e-17), 1e-32);
  EXPECT_LE(std::fabs(Portable::Sin(1e300)), 1.0);
  EXPECT_EQ(Portable::Hypot(3.0, -4.0), 5.0);
  EXPECT_NEAR(Portable::CubeRoot(0.125), 0.5, 1e-15);
  EXPECT_LT(Portable::CubeRoot(0.0), 1e-100);
  EXPECT_TRUE(std::isnan(Portable::Cos(cdInfinity)));
  EXPECT_TRUE(std::isnan(Portable::Acos(1.5)));
}

TEST(PortableMath, AnglesOfPointsHaveTheirQuarterAndTheSignsOfZeros) {
  for (const double dY : {-1.0, -0.0, 0.0, 1.0, cdInfinity})
    for (const double dX : {-2.0, -0.0, 0.0, 2.0})
      EXPECT_NEAR(Portable::Atan2(dY, dX), std::atan2(dY, dX), 1e-15) << dY << ", " << dX;
  EXPECT_TRUE(std::signbit(Portable::Atan2(-0.0, 1.0)));
  EXPECT_EQ(Portable::Atan2(-0.0, -1.0), -cdPi);
  EXPECT_TRUE(std::isnan(Portable::Atan2(std::nan(""), 1.0)));
}

}  // namespace
