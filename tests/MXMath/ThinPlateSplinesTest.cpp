// Splines against their definition, and the points that allow none.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "MXMath/ThinPlateSplinesBOOST.h"
#include "Raised.h"

namespace {

using testing::EndsWith;

/// A grid of nSide * nSide points, 100 apart.
std::vector<ClVector> Grid(int nSide) {
  std::vector<ClVector> aPoints;
  for (int n = 0; n < nSide * nSide; ++n)
    aPoints.emplace_back(50 + 100 * (n / nSide), 50 + 100 * (n % nSide));
  return aPoints;
}

std::vector<ClVector> Shaken(std::vector<ClVector> aPoints, double dMost) {
  std::mt19937 oRandom(7);
  std::uniform_real_distribution<double> oShake(-dMost, dMost);
  for (ClVector& o : aPoints) o = o + ClVector(oShake(oRandom), oShake(oRandom));
  return aPoints;
}

template <typename T>
void Fit(TpThinPlateSplines<T>& oSpline, const std::vector<ClVector>& aFrom,
         const std::vector<ClVector>& aTo) {
  oSpline.Setup(static_cast<long>(aFrom.size()), aFrom.data(), aTo.data());
}

TEST(ThinPlateSplines, MeetsEachControlPointAndLeavesNoTraceOfASecondSetup) {
  const std::vector<ClVector> aFrom = Grid(8);
  TpThinPlateSplines<double> oSpline;
  Fit(oSpline, Grid(4), Shaken(Grid(4), 30));
  const std::vector<ClVector> aTo = Shaken(aFrom, 20);
  Fit(oSpline, aFrom, aTo);
  for (size_t n = 0; n < aFrom.size(); ++n) {
    double dX;
    double dY;
    oSpline.Transform(aFrom[n].x, aFrom[n].y, &dX, &dY);
    EXPECT_NEAR(dX, aTo[n].x, 1e-6);
    EXPECT_NEAR(dY, aTo[n].y, 1e-6);
  }
}

/// U(d) = d log d summed by hand: three points at 0, 0; 1, 0; 0, 1 lie in general position and need no basis,
/// a fourth at 1, 1 that is lifted by 4 bends the sheet. By symmetry its coefficients are c * (1, -1, -1, 1)
/// with c * (U(0) - 2 U(1) + U(2)) and the affine part meeting the four heights.
TEST(ThinPlateSplines, BendsASquareAsItsFormulaSays) {
  const std::vector<ClVector> aFrom = {{0, 0}, {1, 0}, {0, 1}, {1, 1}};
  const std::vector<ClVector> aTo = {{0, 0}, {0, 0}, {0, 0}, {4, 0}};
  TpThinPlateSplines<double> oSpline;
  Fit(oSpline, aFrom, aTo);
  double dX;
  double dY;
  oSpline.Transform(0.5, 0.5, &dX, &dY);
  EXPECT_NEAR(dX, 1, 1e-12) << "the bases cancel in the middle, the plane through it carries the mean height";
  EXPECT_NEAR(dY, 0, 1e-12);
  // The bases at a corner give 2 c log 2 = 1, the plane 2 x + 2 y - 1.
  oSpline.Transform(2, 2, &dX, &dY);
  const double dC = 1 / (2 * std::log(2.0));
  EXPECT_NEAR(dX, dC * (8 * std::log(8.0) - 2 * 5 * std::log(5.0) + 2 * std::log(2.0)) + 2 * 2 + 2 * 2 - 1,
              1e-9);
}

TEST(ThinPlateSplines, ARowHasTheBitsOfItsSingleTransforms) {
  const std::vector<ClVector> aFrom = Grid(8);
  TpThinPlateSplines<double> oSpline;
  Fit(oSpline, aFrom, Shaken(aFrom, 25));
  constexpr size_t cnCount = 150;
  double aX[cnCount];
  double aY[cnCount];
  oSpline.TransformRow(3, 250, 8, cnCount, aX, aY);
  for (size_t n = 0; n < cnCount; ++n) {
    double dX;
    double dY;
    oSpline.Transform(3 + 8.0 * static_cast<double>(n), 250, &dX, &dY);
    ASSERT_EQ(dX, aX[n]) << n;
    ASSERT_EQ(dY, aY[n]) << n;
  }
}

TEST(ThinPlateSplines, PointsThatAllowNoMappingFailWithMinus600) {
  std::vector<ClVector> aTwice = Grid(4);
  aTwice[5] = aTwice[6];
  std::vector<ClVector> aLine;
  for (int n = 0; n < 8; ++n) aLine.emplace_back(n, 2 * n + 1);
  const std::vector<ClVector> aPair = {{0, 0}, {1, 5}};
  std::vector<ClVector> aLost = Grid(4);
  aLost[3].y = std::numeric_limits<double>::quiet_NaN();
  std::vector<ClVector> aFar = Grid(4);
  aFar[3].x = std::numeric_limits<double>::infinity();
  for (const auto& aFrom : {aTwice, aLine, aPair, aLost, aFar}) {
    TpThinPlateSplines<double> oSpline;
    EXPECT_THAT(Raised([&] { Fit(oSpline, aFrom, Shaken(Grid(8), 30)); }),
                testing::Pair(-600, EndsWith("contact Kelvarin")));
  }
  TpThinPlateSplines<double> oSpline;
  EXPECT_EQ(Raised([&] { Fit(oSpline, Grid(4), aLost); }).first, -600) << "a destination that is no number";
  oSpline.m_tSmoothing = 1e6;
  Fit(oSpline, Grid(4), Shaken(Grid(4), 20));  // misses its points, as a smoothed one may
}

TEST(ThinPlateSplines, RefusesMissingArgumentsAndTransformsBeforeSetup) {
  const std::vector<ClVector> aPoints = Grid(4);
  TpThinPlateSplines<double> oSpline;
  double dX;
  double dY;
  EXPECT_EQ(NumberOf([&] { oSpline.Transform(0, 0, &dX, &dY); }), -1);
  EXPECT_EQ(NumberOf([&] { oSpline.Setup(16, nullptr, aPoints.data()); }), -44);
  EXPECT_EQ(NumberOf([&] { oSpline.Setup(16, aPoints.data(), nullptr); }), -44);
  EXPECT_EQ(NumberOf([&] { oSpline.Setup(0, aPoints.data(), aPoints.data()); }), -44);
}

}  // namespace
