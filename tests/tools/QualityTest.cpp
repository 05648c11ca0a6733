// What the quality command measures, on pictures whose blur, place and turn are known: the simulator draws
// them.
#include <gmock/gmock.h>

#include <cmath>

#include "quality/Geometry.h"
#include "quality/Greys.h"
#include "quality/Limits.h"
#include "quality/Response.h"
#include "scene/Platen.h"
#include "scene/Sheet.h"

namespace {

using Simulator::ClSheetDescription;

constexpr double cdPi = 3.14159265358979323846;
constexpr double cdSpreadMm = 0.018;

ClSheetDescription Sheet(ESheetKind eKind, double dX, double dY, double dAngle) {
  ClSheetDescription o;
  o.eKind = static_cast<Simulator::ESheet>(eKind);
  o.dXMm = dX;
  o.dYMm = dY;
  o.dAngle = dAngle;
  return o;
}

ClPicture Draw(const ClSheetDescription& oSheet, unsigned int nSide) {
  ClPicture o;
  o.nWidth = o.nHeight = nSide;
  const Simulator::ClSheetView oView(oSheet, cdSpreadMm, cdSpreadMm);
  const double dMm = Simulator::cdPlatenMm / nSide;
  for (unsigned int y = 0; y < nSide; ++y)
    for (unsigned int x = 0; x < nSide; ++x)
      o.aPixels.push_back(static_cast<unsigned char>(
          20 + 220 * oView.LightAt(static_cast<float>((x + 0.5) * dMm), static_cast<float>((y + 0.5) * dMm)) +
          0.5F));
  return o;
}

StView ViewOf(const ClPicture& oPicture) {
  StView o;
  o.pPicture = &oPicture;
  o.dPixelsPerMm = oPicture.nWidth / Simulator::cdPlatenMm;
  return o;
}

/// What a Gaussian spread leaves of a sine wave.
double Left(double dFrequency) {
  return std::exp(-2 * cdPi * cdPi * cdSpreadMm * cdSpreadMm * dFrequency * dFrequency);
}

TEST(QualitySheets, AreFoundWithKindPlaceAndTurnAtBothResolutions) {
  for (const unsigned int nSide : {1600u, 800u}) {
    for (int nKind = eSine; nKind <= eSteps; ++nKind) {
      for (const double dAngle : {-2.5, 91.5}) {
        const ClSheetDescription oSheet = Sheet(static_cast<ESheetKind>(nKind), 41.3, 39.9, dAngle);
        const ClPicture oPicture = Draw(oSheet, nSide);
        const auto oFound = FindSheet(ViewOf(oPicture));
        ASSERT_TRUE(oFound) << caszSheetNames[nKind] << " turned by " << dAngle << " of " << nSide;
        EXPECT_EQ(oFound->eKind, nKind);
        EXPECT_NEAR(oFound->oPlace.dX, 41.3, 0.0015);
        EXPECT_NEAR(oFound->oPlace.dY, 39.9, 0.0015);
        EXPECT_NEAR(std::remainder(oFound->oPlace.dTurn * 180 / cdPi - dAngle, 360), 0, 0.02);
      }
    }
  }
  EXPECT_EQ(FindSheet(ViewOf(Draw(Sheet(eBright, 40, 40, 0), 800)))->eKind, eBright);
  EXPECT_EQ(FindSheet(ViewOf(Draw(Sheet(eDark, 40, 40, 0), 800)))->eKind, eDark);
  ClPicture oBare = Draw(Sheet(eDark, 40, 40, 0), 800);
  for (unsigned char& n : oBare.aPixels) n = 6;
  EXPECT_FALSE(FindSheet(ViewOf(oBare)));
}

TEST(QualityResponse, OfWavesBarsAndEdgesIsThatOfTheSpreadInBothDirections) {
  for (const double dAngle : {0.0, 1.2}) {
    for (const ESheetKind eKind : {eSine, eBars, eEdges}) {
      const ClPicture oPicture = Draw(Sheet(eKind, 40.2, 40.9, dAngle), 1600);
      const auto oFound = FindSheet(ViewOf(oPicture));
      ASSERT_TRUE(oFound);
      for (const bool bAlongX : {true, false}) {
        const StResponse o = MeasureResponse(ViewOf(oPicture), *oFound, bAlongX, 10);
        ASSERT_EQ(o.aPlaces.size(), 9u);
        for (size_t n = 0; n < 10; ++n) {
          const double dF = static_cast<double>(n) + 1;
          // The contrast of bars has the odd harmonics besides, with alternating signs.
          double dWanted = Left(dF);
          if (eKind == eBars) {
            dWanted = 0;
            for (int k = 0; k < 40; ++k)
              dWanted += (k % 2 == 0 ? 4 : -4) / (cdPi * (2 * k + 1)) * Left((2 * k + 1) * dF);
          }
          EXPECT_NEAR(o.Least(n), dWanted, 0.03)
              << caszSheetNames[eKind] << " at " << dF << " along x " << bAlongX;
          EXPECT_NEAR(o.Most(n), dWanted, 0.03)
              << caszSheetNames[eKind] << " at " << dF << " along x " << bAlongX;
        }
      }
    }
  }
}

TEST(QualityGeometry, LinesThatAreStretchedMissTheirDistancesAndLinesThatAreBentTheirStraightness) {
  const ClPicture oGood = Draw(Sheet(eGrid, 40.64, 40.64, 0.3), 1600);
  const StSheetPlace oPlace = FindSheet(ViewOf(oGood))->oPlace;
  for (const bool bAlongX : {true, false}) {
    const StGeometry o = MeasureGeometry(ViewOf(oGood), oPlace, bAlongX);
    EXPECT_LT(o.dAcross, 0.1);
    EXPECT_LT(o.dAlong, 4);
  }
  // Rows are shifted by a wave of 0.3 mm, and a stretch by 1.5 in 100 makes the last line 0.48 mm off.
  ClPicture oBent = oGood, oStretched = oGood;
  for (int y = 0; y < 1600; ++y) {
    for (int x = 0; x < 1600; ++x) {
      const int nBent = x + static_cast<int>(std::lround(6 * std::sin(2 * cdPi * y / 1600)));
      const int nStretched = 800 + static_cast<int>(std::lround((x - 800) / 1.015));
      const size_t n = static_cast<size_t>(y) * 1600 + static_cast<size_t>(x);
      oBent.aPixels[n] = oGood.Row(static_cast<unsigned int>(y))[std::clamp(nBent, 0, 1599)];
      oStretched.aPixels[n] = oGood.Row(static_cast<unsigned int>(y))[std::clamp(nStretched, 0, 1599)];
    }
  }
  const StGeometry o = MeasureGeometry(ViewOf(oBent), oPlace, true);
  EXPECT_NEAR(o.dAlong, 600, 30);
  EXPECT_LT(o.dAcross, 1);
  const StGeometry oWide = MeasureGeometry(ViewOf(oStretched), oPlace, true);
  EXPECT_NEAR(oWide.dAcross, 1.5, 0.6);
  EXPECT_LT(oWide.dAlong, 60);
  EXPECT_LT(MeasureGeometry(ViewOf(oStretched), oPlace, false).dAcross, 0.1);
}

TEST(QualityGreys, StepsLieOnTheirLineAndEvenPicturesShowTheirNoiseRowsAndAreas) {
  ClPicture oSteps = Draw(Sheet(eSteps, 40.64, 40.64, 0), 1600);
  const StSheetPlace oPlace = FindSheet(ViewOf(oSteps))->oPlace;
  StLinearity o = MeasureLinearity(ViewOf(oSteps), oPlace);
  EXPECT_NEAR(o.dSlope, 220, 0.5);
  EXPECT_LT(o.dWorst, 0.6);
  for (unsigned char& n : oSteps.aPixels) n = std::min<unsigned char>(n, 200);
  o = MeasureLinearity(ViewOf(oSteps), oPlace);
  EXPECT_GT(o.dWorst, 7.65);

  ClPicture oEven;
  oEven.nWidth = oEven.nHeight = 1600;
  // Chequered by two greys to either side of 100; the right half is 10 brighter.
  for (unsigned int n = 0; n < 1600 * 1600; ++n)
    oEven.aPixels.push_back(
        static_cast<unsigned char>(((n / 1600 + n) % 2 == 0 ? 98 : 102) + (n % 1600 < 800 ? 0 : 10)));
  StEvenness e = MeasureEvenness(ViewOf(oEven), 8);
  EXPECT_NEAR(e.dMean, 105, 0.1);
  EXPECT_NEAR(e.dNoise, 2, 0.01);
  EXPECT_NEAR(e.dMostArea - e.dLeastArea, 10, 0.1);
  EXPECT_LT(e.dRows, 0.1);
  EXPECT_EQ(e.dWithin, 1);
  for (unsigned int x = 0; x < 1600; ++x)
    for (unsigned int y = 0; y < 1600; y += 25) oEven.aPixels[y * 1600 + x] = 115;
  e = MeasureEvenness(ViewOf(oEven), 8);
  EXPECT_GT(e.dRows, 5);
  EXPECT_LT(e.dColumns, 0.2);
  EXPECT_NEAR(e.dWithin, 0.96, 0.001);
  EXPECT_EQ(CountGreys(oEven), 5u);
}

TEST(QualityLimits, AreThoseOfTheStandardAndRowsOfOtherResolutionsHaveNone) {
  EXPECT_NEAR(LeastResponse(eBars, 1), 0.948, 0.001);
  EXPECT_NEAR(LeastResponse(eBars, 10), 0.259, 0.001);
  EXPECT_EQ(LeastResponse(eEdges, 9), 0.255);
  std::vector<StQualityRow> aRows;
  StResponse o{eSine, true, {1, 2}, {{0.95, 0.80}, {0.91, 0.79}}};
  AddRows(o, 500, aRows);
  ASSERT_EQ(aRows.size(), 3u);
  EXPECT_FALSE(aRows[0].Missed());
  EXPECT_NEAR(aRows[0].Margin(), 0.005, 1e-9);
  EXPECT_TRUE(aRows[1].Missed());
  o.aPlaces[0][0] = 1.06;
  aRows.clear();
  AddRows(o, 500, aRows);
  EXPECT_TRUE(aRows[2].Missed());
  aRows.clear();
  AddRows(o, 250, aRows);
  for (const StQualityRow& oRow : aRows) EXPECT_FALSE(oRow.Missed());
  // A pattern that cannot be seen is a missed limit, and no number at all is one too.
  aRows.clear();
  AddRows(StResponse{eSine, true, {}, {}}, 500, aRows);
  ASSERT_EQ(aRows.size(), 1u);
  EXPECT_TRUE(aRows[0].Missed());
  EXPECT_TRUE((StQualityRow{"", "", 500, std::nan(""), StQualityRow::eMost, 1}.Missed()));
}

}  // namespace
