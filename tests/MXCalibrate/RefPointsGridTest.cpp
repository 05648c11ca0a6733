// Grids of dots without a picture: neighbours, order, straightness, stored data.
#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <random>
#include <set>
#include <vector>

#include "MXCalibrate/IpCalibrateGeometricBuildRefPointsVT40Donut.h"
#include "Raised.h"
#include "portable/Math.h"

namespace {

using testing::EndsWith;
using ClDonut = ClIpCalibrateGeometricBuildRefPointsVT40Donut;
using ClDot = ClDonut::ClDot;

const double cdPitchX = 10 * 1052 / 25.4;
const double cdPitchY = 10 * 768 / 25.4;

/// The grid that is found of dots at given positions.
struct ClFound {
  ClFound(ClDonut& oDonut, const std::vector<ClVector>& aPlaces) {
    ClIpConnectedComponent2::ComponentsArray_t aComponents;
    aComponents.New(static_cast<unsigned int>(aPlaces.size()));
    for (unsigned int n = 0; n < aComponents.Entries(); ++n) {
      aComponents[n].vCentre = aPlaces[n];
      aComponents[n].dArea = 9000;
      aComponents[n].dEccentricity = 0.1;
    }
    oDonut.BuildGrid(m_aDots, aComponents);
  }
  /// The dot of component nIndex.
  ClDot& Of(unsigned int nIndex) { return m_aDots.OfIndex(nIndex); }

  ClDonut::Grid m_aDots;
};

/// The ideal grid from (500, 300) on, column after column.
std::vector<ClVector> Ideal() {
  std::vector<ClVector> aPlaces;
  for (int n = 0; n < 64; ++n) aPlaces.emplace_back(500 + cdPitchX * (n / 8), 300 + cdPitchY * (n % 8));
  return aPlaces;
}

std::pair<long, std::string> Associated(const std::vector<ClVector>& aPlaces, ClDonut& oDonut,
                                        ClDonut::Points& aActual) {
  ClFound oFound(oDonut, aPlaces);
  return Raised([&] { oDonut.AssociatePoints(oFound.m_aDots, aActual); });
}

std::string Text(const std::vector<ClVector>& aPlaces, double dMaxAngleX = 15, double dMaxAngleY = 15) {
  ClDonut oDonut;
  oDonut.m_dMaxAngleX = dMaxAngleX;
  oDonut.m_dMaxAngleY = dMaxAngleY;
  ClDonut::Points aActual;
  const auto oRaised = Associated(aPlaces, oDonut, aActual);
  EXPECT_EQ(oRaised.first, oRaised.second.empty() ? 0 : -600);
  return oRaised.second;
}

TEST(Dots, LinkToTheEightAroundThemAndNotToTwins) {
  ClDonut oDonut;
  ClFound oFound(oDonut, Ideal());
  for (int n = 0; n < 64; ++n) {
    std::set<unsigned int> aExpected;
    for (int i = 0; i < 64; ++i) {
      if (i != n && std::abs(i / 8 - n / 8) <= 1 && std::abs(i % 8 - n % 8) <= 1)
        aExpected.insert(static_cast<unsigned int>(i));
    }
    const ClDot& o = oFound.Of(static_cast<unsigned int>(n));
    EXPECT_EQ(std::set<unsigned int>(o.aNeighbours.Data(), o.aNeighbours.Data() + o.aNeighbours.Entries()),
              aExpected);
    for (const unsigned int nOther : aExpected) {
      const int nColumn = static_cast<int>(nOther) / 8 - n / 8, nRow = static_cast<int>(nOther) % 8 - n % 8;
      const long aDirections[3][3] = {{5, 6, 7}, {4, -1, 0}, {3, 2, 1}};
      EXPECT_EQ(oFound.m_aDots.GetNeighbourInDirection(o, aDirections[nRow + 1][nColumn + 1], 0.3),
                &oFound.Of(nOther));
    }
  }
  ClFound oTwins(oDonut, {{500, 500}, {700, 600}, {500 + cdPitchX, 500 + cdPitchY}});
  EXPECT_EQ(oTwins.Of(0).aNeighbours.Entries(), 1u) << "within the tolerance of both axes";
  EXPECT_EQ(oTwins.Of(0).aNeighbours[0], 2u);
}

/// Dots around one at the origin, which has them as its neighbours 1, 2 and so on, in directions given in
/// radians.
void FillStar(const std::vector<double>& aAngles, ClDonut::Grid& aGrid) {
  aGrid.New(static_cast<unsigned int>(aAngles.size()) + 1);
  for (unsigned int n = 1; n < aGrid.Entries(); ++n) {
    const double dAngle = aAngles[n - 1];
    aGrid[n].vPosition = ClVector(100 * std::cos(dAngle), 100 * std::sin(dAngle));
    aGrid[0].AddDot(n);
    aGrid[0].AddDot(n);
  }
}

TEST(Dots, ADirectionsBoundaryBelongsToTheLowerNumber) {
  std::vector<double> aAngles;
  for (int n = 0; n < 16; ++n) aAngles.push_back(n * Portable::cdPi / 8);
  ClDonut::Grid aGrid;
  FillStar(aAngles, aGrid);
  ASSERT_EQ(aGrid[0].aNeighbours.Entries(), 16u);
  const long aExpected[16] = {0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 7, 0};
  for (unsigned int n = 0; n < 16; ++n) EXPECT_EQ(aGrid[0].DirectionOf(aGrid[n + 1]), aExpected[n]) << n;
  EXPECT_EQ(aGrid.GetNeighbourInDirection(aGrid[0], 2, 0.01), &aGrid[5]);
  aGrid[0].Remove(5);
  EXPECT_EQ(aGrid.GetNeighbourInDirection(aGrid[0], 2, 0.3), nullptr);
}

TEST(Dots, TheLastReasonOfARefusalStands) {
  ClDonut oDonut;
  const double aCases[][3] = {{-0.1, 9000, 1}, {0.21, 9000, 2},  {0.2, 6000, 0},
                              {0.21, 5999, 3}, {-0.1, 20001, 4}, {0, 20000, 0}};
  ClIpConnectedComponent2::ComponentsArray_t aComponents;
  aComponents.New(6);
  for (unsigned int n = 0; n < 6; ++n) {
    aComponents[n].vCentre = ClVector(1000.0 * n, 5);
    aComponents[n].dEccentricity = aCases[n][0];
    aComponents[n].dArea = aCases[n][1];
  }
  ClFound oFound(oDonut, {});
  oDonut.BuildGrid(oFound.m_aDots, aComponents);
  for (unsigned int n = 0; n < 6; ++n) {
    EXPECT_EQ(oFound.Of(n).nStatus, aCases[n][2]) << n;
    EXPECT_EQ(oFound.Of(n).bValid, aCases[n][2] == 0) << n;
  }
}

TEST(Dots, ShuffledAndShakenOnesComeInTheOrderOfThePattern) {
  std::mt19937 oRandom(4);
  std::uniform_real_distribution<double> oShake(-30, 30);
  std::vector<ClVector> aPlaces = Ideal();
  for (ClVector& o : aPlaces) o = o + ClVector(oShake(oRandom), oShake(oRandom));
  std::vector<ClVector> aShuffled = aPlaces;
  std::shuffle(aShuffled.begin(), aShuffled.end(), oRandom);
  // Chains of strays that are linked to the grid by two neighbours each, and a single stray.
  aShuffled.emplace_back(500 + 8 * cdPitchX, 300 + 3 * cdPitchY);
  aShuffled.emplace_back(500 - cdPitchX, 310);
  aShuffled.emplace_back(3700, 20);
  ClDonut oDonut;
  ClDonut::Points aActual;
  const auto oRaised = Associated(aShuffled, oDonut, aActual);
  ASSERT_EQ(oRaised.first, 0) << oRaised.second;
  ASSERT_EQ(aActual.Entries(), 64u);
  for (unsigned int n = 0; n < 64; ++n) {
    EXPECT_TRUE(aActual[n].IsNear(aPlaces[n])) << n;
    EXPECT_TRUE(aShuffled[oDonut.m_aDotIndex[n]].IsNear(aPlaces[n])) << n;
  }
  EXPECT_EQ(oDonut.m_nDotCount, 67);
}

TEST(Dots, CrookedGridsAreRefusedRowsFirstAndAnglesFirst) {
  const auto AngleOf = [](const char* szAxis) {
    return EndsWith(std::string("The Angle(") + szAxis + ") of the Dot Grid is too big.");
  };
  const auto LineOf = [](const char* szAxis) {
    return EndsWith(std::string("There are Dots are too far a way from a Grid(") + szAxis + ") line.");
  };
  std::vector<ClVector> aTurned = Ideal();
  for (ClVector& o : aTurned) o.y += 0.04 * (o.x - 1920);  // 2.29 degrees
  EXPECT_EQ(Text(aTurned, 2.3), "");
  EXPECT_THAT(Text(aTurned, 2.2), AngleOf("x"));
  std::vector<ClVector> aLeaning = Ideal();
  for (ClVector& o : aLeaning) o.x += 0.04 * (o.y - 1360);
  EXPECT_EQ(Text(aLeaning, 1), "");
  EXPECT_THAT(Text(aLeaning, 1, 2.2), AngleOf("y"));
  // A dot in the middle that leaves a line of eight by d is 0.87 d off the fitted one.
  std::vector<ClVector> aBentRow = Ideal();
  aBentRow[8 * 3 + 4].y += 62;
  EXPECT_THAT(Text(aBentRow), LineOf("x"));
  std::vector<ClVector> aBentColumn = Ideal();
  aBentColumn[8 * 3 + 4].x -= 62;
  EXPECT_THAT(Text(aBentColumn), LineOf("y"));
  aBentColumn[8 * 3 + 4].x += 7;
  EXPECT_EQ(Text(aBentColumn), "") << "47.7 pixels off";
  aBentRow[8 * 3 + 4].x -= 62;
  EXPECT_THAT(Text(aBentRow), LineOf("x"));
  for (size_t n = 0; n < 64; ++n) aTurned[n] = aTurned[n] + aBentRow[n] - Ideal()[n];
  EXPECT_THAT(Text(aTurned, 2), AngleOf("x"));
}

TEST(Dots, SixtyThreeAreTooFewWhateverElseIsThere) {
  std::vector<ClVector> aPlaces = Ideal();
  aPlaces.erase(aPlaces.begin() + 20);
  std::vector<ClVector> aMore = aPlaces;
  for (int n = 0; n < 5; ++n) aMore.emplace_back(100 + 40 * n, 2600);
  for (const auto& a : {aPlaces, aMore, {}, {{5, 5}}})
    EXPECT_THAT(Text(a), EndsWith("Not the expected dot count found.")) << a.size();
}

TEST(Dots, OneOffThePatternUsesUpNoIdealPoint) {
  ClDonut oDonut;
  // This dot is sorted before all others, and lies far below the first point.
  std::vector<ClVector> aPlaces = Ideal();
  aPlaces.emplace_back(500 - 0.7 * cdPitchX, 300 + 3.5 * cdPitchY);
  ClFound oFound(oDonut, aPlaces);
  ClDonut::Points aActual;
  oDonut.GridToArray(oFound.m_aDots, aActual);
  ASSERT_EQ(aActual.Entries(), 64u);
  for (unsigned int n = 0; n < 64; ++n) EXPECT_TRUE(aActual[n].IsNear(Ideal()[n])) << n;
  EXPECT_EQ(oFound.Of(64).nStatus, 7);
  EXPECT_TRUE(oFound.Of(64).bValid);
}

TEST(Dots, StraysThatMoveTheCentreGoBeforeTheDotsAreMatched) {
  ClDonut oDonut;
  std::vector<ClVector> aPlaces = Ideal();
  // Strays far away move the centre to the right by half a pitch, nearer to one that lies beside the last
  // dot.
  for (int n = 0; n < 4; ++n) aPlaces.emplace_back(500 + 11 * cdPitchX, 300 + (n + 2) * cdPitchY);
  aPlaces.emplace_back(500 + 7.6 * cdPitchX, 300 + 7 * cdPitchY);
  ClFound oFound(oDonut, aPlaces);
  oDonut.GridRemoveBadPoints(oFound.m_aDots);
  for (unsigned int n = 0; n < 69; ++n) EXPECT_EQ(oFound.Of(n).bValid, n < 64) << n;
}

TEST(Dots, WithFewerThanTwoNeighboursGoAndTakeTheirLinksAlong) {
  ClDonut oDonut;
  // Beside one corner there is a single dot; beyond the opposite one a chain, whose first dot has a neighbour
  // more in the second.
  std::vector<ClVector> aPlaces = Ideal();
  for (const double d : {-1.2, 8.2, 9.4}) aPlaces.emplace_back(500 + d * cdPitchX, 300 + d * cdPitchY);
  ClFound oFound(oDonut, aPlaces);
  ASSERT_EQ(oFound.Of(65).aNeighbours.Entries(), 2u);
  oDonut.RemoveLessNeighbours(oFound.m_aDots);
  for (unsigned int n = 0; n < 67; ++n) {
    EXPECT_EQ(oFound.Of(n).bValid, n < 64) << n;
    EXPECT_EQ(oFound.Of(n).nStatus, n < 64 ? 0 : 5) << n;
  }
  for (const unsigned int n : {0u, 63u}) EXPECT_EQ(oFound.Of(n).aNeighbours.Entries(), 3u) << n;
}

TEST(Dots, NeighboursInWrongDirectionsAreForgotten) {
  ClDonut oDonut;
  // Right, below, left and above, all turned by 0.1. The fifth is at a right angle to none of them; the sixth
  // nearly is, but truncation puts it into the eighth before.
  ClDonut::Grid aGrid;
  FillStar({Portable::cdPi + 0.1, Portable::cdPi + 0.1 + 1.5708, Portable::cdPi + 0.1 + 3.1416,
            Portable::cdPi + 0.1 + 4.7124, Portable::cdPi + 1.25, Portable::cdPi + 0.05 + 1.5708},
           aGrid);
  oDonut.RemoveWrongAngleNeighbours(aGrid);
  const auto& aNeighbours = aGrid[0].aNeighbours;
  EXPECT_EQ(std::vector<unsigned int>(aNeighbours.Data(), aNeighbours.Data() + aNeighbours.Entries()),
            (std::vector<unsigned int>{1, 2, 3, 4}));
  double aValues[] = {5, 1, 4, 2};
  EXPECT_EQ(ClDonut::GetMedian(aValues, 4), 4);
}

class StoredGrid : public testing::Test {
 protected:
  StoredGrid() {
    m_oData.m_nTargetPelsX = m_oData.m_nTargetPelsY = 19685;
    m_oDonut.BuildTargetPoints(m_oData.m_aTarget, 500, 500, 4, 4);
    for (const ClVector& o : Ideal()) m_oData.m_aActual[0].Add(o);
  }
  std::string Refusal() {
    const auto oRaised = Raised([this] { m_oDonut.ValidateCalibrationData(m_oData); });
    EXPECT_EQ(oRaised.first, oRaised.second.empty() ? 0 : -39);
    return oRaised.second;
  }
  ClDonut m_oDonut;
  ClCalibrateGeometricData m_oData;
};

TEST_F(StoredGrid, MayBeMovedAsAWholeButNotInPart) {
  EXPECT_EQ(Refusal(), "");
  const ClVector vOnePitchOn = m_oData.m_aTarget[9];
  m_oDonut.MoveTarget(m_oData.m_aTarget, m_oData.m_aActual[0]);
  EXPECT_TRUE(m_oData.m_aTarget[0].IsNear(vOnePitchOn));
  EXPECT_EQ(Refusal(), "");
  ClVector& vTarget = m_oData.m_aTarget[37];
  vTarget.x += 9.9;
  EXPECT_EQ(Refusal(), "");
  vTarget.x += 0.2;
  EXPECT_THAT(Refusal(), EndsWith("Target data is corrupt"));
  vTarget.x = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THAT(Refusal(), EndsWith("Target data is corrupt"));
}

TEST_F(StoredGrid, HasSixtyFourPairsAndEvenDistancesInTheRightDirections) {
  ClVector& vActual = m_oData.m_aActual[0][37];
  const ClVector vGood = vActual;
  vActual = vGood + ClVector(0.29 * cdPitchX, -0.29 * cdPitchY);
  EXPECT_EQ(Refusal(), "");
  for (const ClVector& vBad : {ClVector(0.32 * cdPitchX, 0), ClVector(0, 0.32 * cdPitchY)}) {
    vActual = vGood + vBad;
    EXPECT_THAT(Refusal(), EndsWith("Source data is corrupt"));
  }
  vActual = ClVector(std::numeric_limits<double>::quiet_NaN(), vGood.y);
  EXPECT_THAT(Refusal(), EndsWith("Source data is corrupt"));
  vActual = vGood;
  for (unsigned int n = 0; n < 64; ++n) m_oData.m_aActual[0][n].x *= -1;
  EXPECT_THAT(Refusal(), EndsWith("Source data is corrupt")) << "mirrored";
  m_oData.m_aActual[0].SetEntries(63);
  EXPECT_THAT(Refusal(), EndsWith("Target and Source arrays must have same size!"));
  m_oData.m_aTarget.SetEntries(63);
  EXPECT_THAT(Refusal(), EndsWith("Target data is corrupt"));
}

TEST(SmallPoints, GroupsOfADotsSizeBecomeTheirMean) {
  ClDonut oDonut;
  oDonut.m_dSourceDpiX = oDonut.m_dSourceDpiY = 254;
  oDonut.m_dDotRadius = 0.5;  // 5 pixels: 19.6 points, from 7.07 to 32.2
  ClDonut::Points aIn;
  for (const auto& [nCount, dX] : {std::pair{7, 100.0}, {8, 200.0}, {32, 300.0}, {33, 400.0}}) {
    for (int n = 0; n < nCount; ++n) aIn.Add(ClVector(dX + 0.04 * n, 50));
  }
  ClDonut::Points aOut;
  oDonut.RemoveSmallPoints(aIn, aOut);
  ASSERT_EQ(aOut.Entries(), 2u);
  EXPECT_TRUE(aOut[0].IsNear({200.14, 50}));
  EXPECT_TRUE(aOut[1].IsNear({300.62, 50}));
  ClImage oImage(30, 30, 1, 0, 0);
  oImage = static_cast<unsigned char>(200);
  oImage.Row<uint8_t>(2)[3] = 100;
  oImage.Row<uint8_t>(2)[5] = 50;
  oImage.Row<uint8_t>(2)[7] = 0;  // beyond the reach
  ClVector vOut;
  oDonut.CheckDot(oImage, 1, 1, 150, vOut);
  EXPECT_TRUE(vOut.IsNear({3 + 2 * 100 / 150.0, 2}));
  oDonut.CheckDot(oImage, 20, 20, 150, vOut);
  EXPECT_TRUE(vOut.IsNear({20, 20}));
}

}  // namespace
