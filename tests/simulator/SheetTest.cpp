// Sheets of patterns through the optics: their light, and what is left of it on the sensor.
#include "scene/Sheet.h"

#include <gmock/gmock.h>

#include <cmath>

#include "Frames.h"
#include "scene/Random.h"
#include "scene/SceneReader.h"

namespace Simulator {
namespace {

constexpr double cdPi = 3.14159265358979323846;

ClSheetDescription Lying(ESheet eKind) {
  ClSheetDescription o;
  o.eKind = eKind;
  return o;
}

/// Lightest less darkest along the middle of a field.
double Swing(const ClSheetView& oView, const ClSheetField& oField) {
  float fLow = 2.0F, fHigh = -1.0F;
  for (double d = -1.0; d <= 1.0; d += 0.001) {
    const float fLight = oView.LightAt(static_cast<float>(40.64 + oField.dX + (oField.bAlongX ? d : 0.0)),
                                       static_cast<float>(40.64 + oField.dY + (oField.bAlongX ? 0.0 : d)));
    fLow = std::min(fLow, fLight);
    fHigh = std::max(fHigh, fLight);
  }
  return static_cast<double>(fHigh) - static_cast<double>(fLow);
}

TEST(Sheet, WavesLoseWhatTheSpreadTakesOfTheirHarmonics) {
  const double dSpreadX = 0.015, dSpreadY = 0.025;
  for (const ESheet eKind : {eSheetSine, eSheetBars}) {
    const ClSheetView oView(Lying(eKind), dSpreadX, dSpreadY);
    int nWaves = 0;
    for (const ClSheetField& oField : SheetFields(eKind)) {
      if (oField.dFrequency == 0.0) continue;
      ++nWaves;
      const double dF = 2 * cdPi * (oField.bAlongX ? dSpreadX : dSpreadY) * oField.dFrequency;
      double dLeft = std::exp(-0.5 * dF * dF);
      if (eKind == eSheetBars) {
        dLeft = 0.0;
        for (int n = 1; n < 100; n += 2)
          dLeft += (n % 4 == 1 ? 4 : -4) / (cdPi * n) * std::exp(-0.5 * dF * dF * n * n);
      }
      EXPECT_NEAR(Swing(oView, oField), 0.8 * dLeft, 0.004)
          << oField.dFrequency << " along x " << oField.bAlongX;
    }
    EXPECT_EQ(nWaves, 9 * 20);
  }
}

TEST(Sheet, EdgesAreAsSoftAsTheSpreadAndTheSheetTurnsAndShiftsAsItIsLaid) {
  ClSheetDescription oSheet = Lying(eSheetSteps);
  const auto Along = [&](double dX) {
    return static_cast<double>(ClSheetView(oSheet, 0.02, 0.03).LightAt(static_cast<float>(dX), 48.64F));
  };
  // The border between two steps: half of their difference in the middle, 84 % of it a deviation further on.
  const double dLeft = Along(38.0), dRight = Along(44.0), dStep = dRight - dLeft;
  EXPECT_NEAR(Along(40.64), dLeft + 0.5 * dStep, 0.003);
  EXPECT_NEAR(Along(40.66), dLeft + 0.8413 * dStep, 0.003);
  // Turned by a right angle the step that was on the right is above.
  oSheet.dXMm = 41.64;
  oSheet.dAngle = 90.0;
  const ClSheetView oTurned(oSheet, 0.02, 0.03);
  const ClSheetView oStraight(Lying(eSheetSteps), 0.02, 0.03);
  EXPECT_NEAR(oTurned.LightAt(48.64F, 37.64F), oStraight.LightAt(43.64F, 47.64F), 0.001);
}

ClScannerDescription Quiet(const std::string& sMore) {
  ClScannerDescription o = FindScene(R"({"scanners": [{"noise": 0, )" + sMore + "}]}").aScanners[0];
  o.eOrder = eOrderDarkFirst;
  return o;
}

TEST(Sheet, MergedPixelsShowTheMeanOfTheirOwn) {
  ClSensor oSensor(Quiet(R"("sheets": [{"kind": "bars", "angle": 1}])"), 1);
  const Plane aFull = Difference(Sequence(oSensor, Settings(oSensor, 7, 1.0)));
  for (const auto& [nMode, dExposure] : {std::pair{34, 2.0}, {35, 1.0}}) {
    const ClSensorMode& oMode = *FindSensorMode(nMode);
    const Plane a = Difference(Sequence(oSensor, Settings(oSensor, nMode, dExposure)));
    double dOff = 0.0, dLevel = 0.0;
    for (int y = 400 / oMode.nMergeY; y < 2300 / oMode.nMergeY; ++y) {
      for (int x = 600 / oMode.nMergeX; x < 3200 / oMode.nMergeX; ++x) {
        double dSum = 0.0;
        for (int v = 0; v < oMode.nMergeY; ++v)
          for (int u = 0; u < oMode.nMergeX; ++u)
            dSum +=
                aFull[static_cast<size_t>((y * oMode.nMergeY + v) * cnSensorWidth + x * oMode.nMergeX + u)];
        const int nHere = a[static_cast<size_t>(y * oMode.nWidth + x)];
        dOff += std::fabs(nHere - dSum / (oMode.nMergeX * oMode.nMergeY));
        dLevel += nHere;
      }
    }
    // Taps differ by up to 3.5 per cent and are other ones in a merged frame.
    EXPECT_LT(dOff / dLevel, 0.04) << nMode;
  }
}

TEST(Sheet, WhatIsWrongWithTheOpticsIsSeenAndNotCalibrated) {
  const std::string sBend = R"("optics": {"bend": 0.5, "shade": 0.2, "blur": 3})";
  const ClSensor oGood(Quiet(R"("fingers": [])"), 1);
  ClSensor oWrong(Quiet(sBend), 1);
  for (const char* szName : ClSensor::EpromNames())
    EXPECT_EQ(*oGood.EpromFile(szName), *oWrong.EpromFile(szName));
  const ClOptics &oFrom = oGood.Optics(), &oTo = oWrong.Optics();
  // A quarter down the platen an upright line lies half a millimetre off.
  const ClPoint o = oTo.PictureToSensor(800.0, 1199.5),
                oStraight = oFrom.PictureToSensor(800.0 + 0.5 / cdPixelMm, 1199.5);
  EXPECT_NEAR(o.dX, oStraight.dX, 1e-9);
  const ClPoint oBack = oTo.SensorToPicture(o.dX, o.dY);
  EXPECT_NEAR(oBack.dX, 800.0, 1e-6);
  EXPECT_NEAR(oBack.dY, 1199.5, 1e-6);
  EXPECT_NEAR(oTo.Illumination(0.0, 0.0) / oFrom.Illumination(0.0, 0.0), 0.8, 0.001);
  EXPECT_NEAR(oTo.Spread().dX, 3 * oFrom.Spread().dX, 1e-12);
  // The next scene repairs it.
  oWrong.SetScene(Quiet(R"("fingers": [])"), 1);
  EXPECT_EQ(oWrong.Optics().PictureToSensor(800.0, 1199.5).dX, oFrom.PictureToSensor(800.0, 1199.5).dX);
}

}  // namespace
}  // namespace Simulator
