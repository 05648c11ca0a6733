// Lines through points against straight geometry and a two-pass fit.
#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <random>
#include <vector>

#include "MXMath/RegressionLine.h"
#include "portable/Math.h"

namespace {

using Portable::cdPi;

ClRegressionLine Through(const std::vector<ClVector>& aPoints) {
  ClRegressionLine oLine;
  for (const ClVector& o : aPoints) oLine.AddToLine(o);
  return oLine;
}

void ExpectCoefficients(const std::vector<ClVector>& aPoints, bool bOfX, double dA, double dB) {
  double a = 99;
  double b = 99;
  EXPECT_EQ(Through(aPoints).GetLineCoeffizienten(a, b), bOfX);
  EXPECT_NEAR(a, dA, 1e-12);
  EXPECT_NEAR(b, dB, 1e-12);
}

void ExpectSegment(const ClRegressionLine& oLine, const ClVector& oFrom, const ClVector& oTo) {
  ClVector oStart;
  ClVector oEnd;
  oLine.GetLine(oStart, oEnd);
  EXPECT_TRUE(oStart.IsNear(oFrom)) << oStart.x << ", " << oStart.y;
  EXPECT_TRUE(oEnd.IsNear(oTo)) << oEnd.x << ", " << oEnd.y;
}

TEST(RegressionLine, TakesTheFlatterOfItsTwoFits) {
  ExpectCoefficients({}, false, 0, 0);
  ExpectCoefficients({{3, 4}, {3, 4}}, false, 0, 0);
  ExpectCoefficients({{5, 0}, {5, 10}, {5, 4}}, false, 0, 5);
  ExpectCoefficients({{0, 5}, {10, 5}}, true, 0, 5);
  ExpectCoefficients({{0, 1}, {4, 3}}, true, 0.5, 1);
  ExpectCoefficients({{1, 0}, {3, 4}}, false, 0.5, 1);
  ExpectCoefficients({{0, 0}, {4, 0}, {0, 2}, {4, 2}}, true, 0, 1);
  ExpectCoefficients({{0, 0}, {2, 0}, {0, 4}, {2, 4}}, false, 0, 1);
}

TEST(RegressionLine, AgreesWithAFitRoundTheMeanForEveryDirection) {
  std::mt19937 oRandom(11);
  std::uniform_real_distribution<double> oNoise(-3, 3);
  for (int nDegree = 3; nDegree < 180; nDegree += 7) {
    const ClVector oAlong(std::cos(nDegree * cdPi / 180), std::sin(nDegree * cdPi / 180));
    std::vector<ClVector> aPoints;
    ClVector oMean;
    for (int n = 0; n < 40; ++n) {
      aPoints.push_back(ClVector(400, 300) + oAlong * (10 * n) + ClVector(oNoise(oRandom), oNoise(oRandom)));
      oMean = oMean + aPoints.back() * (1.0 / 40);
    }
    double dXX = 0, dXY = 0, dYY = 0;
    for (const ClVector& o : aPoints) {
      dXX += (o.x - oMean.x) * (o.x - oMean.x);
      dXY += (o.x - oMean.x) * (o.y - oMean.y);
      dYY += (o.y - oMean.y) * (o.y - oMean.y);
    }
    const bool bOfX = dXX >= dYY;
    const double dSlope = dXY / (bOfX ? dXX : dYY);
    double a;
    double b;
    ASSERT_EQ(Through(aPoints).GetLineCoeffizienten(a, b), bOfX) << nDegree;
    EXPECT_NEAR(a, dSlope, 1e-9);
    EXPECT_NEAR(b, bOfX ? oMean.y - a * oMean.x : oMean.x - a * oMean.y, 1e-6);
    // The distance from the line is the part of the way that runs across it.
    const ClVector oAcross = bOfX ? ClVector(-a, 1) : ClVector(1, -a);
    const double dExpected = std::fabs((aPoints[17] - oMean).Scalar(oAcross)) / oAcross.Length();
    EXPECT_NEAR(Through(aPoints).DistFromLine(aPoints[17]), dExpected, 1e-4) << nDegree;
    EXPECT_EQ(Through(aPoints).Horizontal(), bOfX);
    EXPECT_EQ(Through(aPoints).Vertical(), !bOfX);
  }
}

TEST(RegressionLine, RunsThroughTheBoxOfItsPoints) {
  ExpectSegment(Through({}), {0, 0}, {0, 0});
  ExpectSegment(Through({{-3, -4}}), {-3, -4}, {-3, -4});
  ExpectSegment(Through({{0, 0}, {4, 0}, {0, 2}, {4, 2}}), {0, 1}, {4, 1});
  ExpectSegment(Through({{0, 8}, {-4, 0}}), {-4, 0}, {0, 8});
  EXPECT_DOUBLE_EQ(Through({{-3, -4}}).DistFromLine({0, 0}), 5);
  EXPECT_DOUBLE_EQ(Through({{1, 1}, {4, 5}}).Len(), 5);
  EXPECT_NEAR(Through({{0, 0}, {6, 0}}).DistFromLine({9, 0}), 0, 1e-9);
  const ClRegressionLine oDiagonal = Through({{0, 0}, {3, 3}});
  EXPECT_FALSE(oDiagonal.Horizontal() || oDiagonal.Vertical() || Through({{1, 2}}).Horizontal());
}

TEST(RegressionLine, JoinsItsPointsWithAnotherLines) {
  const std::vector<ClVector> aPoints = {{1, 7}, {2, 9}, {9, 8}, {-4, 3}, {5, -2}};
  ClRegressionLine oJoined;
  oJoined.JoinLine(Through({}));
  oJoined.JoinLine(Through({aPoints[0], aPoints[1]}));
  oJoined.JoinLine(Through({}));
  oJoined.JoinLine(Through({aPoints[2], aPoints[3], aPoints[4]}));
  ClVector oStart;
  ClVector oEnd;
  Through(aPoints).GetLine(oStart, oEnd);
  ExpectSegment(oJoined, oStart, oEnd);
  oJoined.JoinLine(oJoined);
  ExpectSegment(oJoined, oStart, oEnd);
  oJoined.Clear();
  ExpectSegment(oJoined, {0, 0}, {0, 0});
}

TEST(RegressionLine, CrossesAnother) {
  const ClRegressionLine oFlat = Through({{0, 1}, {4, 1}});
  double dS;
  double dT;
  EXPECT_TRUE(oFlat.CrossPoint(Through({{3, 0}, {3, 2}}), dS, dT).IsNear({3, 1}));
  EXPECT_DOUBLE_EQ(dS, 0.75);
  EXPECT_DOUBLE_EQ(dT, 0.5);
  EXPECT_TRUE(oFlat.Intersection(Through({{0, 5}, {4, 5}}), dS, dT).IsNear({0, 0}));
  EXPECT_NEAR(oFlat.CrossPhi(Through({{0, 0}, {2, 2}})), cdPi / 4, 1e-12);
  EXPECT_NEAR(oFlat.CrossPhi(Through({{0, 0}, {-1, 3}})), cdPi - std::atan(3), 1e-12);
  EXPECT_NEAR(oFlat.CrossPhi(oFlat), 0, 1e-7);
  EXPECT_EQ(oFlat.CrossPhi(Through({{1, 1}})), cdPi / 2);
}

}  // namespace
