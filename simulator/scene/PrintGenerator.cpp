// Makes fingerprints that never belonged to anybody.
#include "scene/PrintGenerator.h"

#include <algorithm>
#include <cmath>

#include "portable/Math.h"
#include "scene/Platen.h"
#include "scene/PrintOutline.h"
#include "scene/RidgeFlow.h"
#include "scene/RidgeGrowth.h"
#include "scene/SkinMarks.h"
#include "scene/SkinRelief.h"

namespace Simulator {
namespace {

/// Means of three by three.
void Soften(TpPlane<uint8_t>& oRidge) {
  const TpPlane<uint8_t> oIn = oRidge;
  for (int y = 1; y + 1 < oIn.Height(); ++y) {
    const uint8_t* aRow[3] = {oIn.Row(y - 1), oIn.Row(y), oIn.Row(y + 1)};
    for (int x = 1; x + 1 < oIn.Width(); ++x) {
      unsigned nSum = 4;
      for (const uint8_t* pRow : aRow) nSum += 0u + pRow[x - 1] + pRow[x] + pRow[x + 1];
      oRidge.At(x, y) = static_cast<uint8_t>(nSum / 9);
    }
  }
}

/// A printer's dots, 133 to the inch at 45 degrees: heights become larger and smaller dots of ink.
void AddRaster(TpPlane<uint8_t>& oRidge) {
  const double dWave = 2.0 * Portable::cdPi * 133.0 * cdPixelMm / 25.4 * 0.70710678118654752;
  for (int y = 0; y < oRidge.Height(); ++y) {
    for (int x = 0; x < oRidge.Width(); ++x) {
      const double dDot = Portable::Cos(dWave * (x + y)) + Portable::Cos(dWave * (x - y));
      oRidge.At(x, y) = static_cast<uint8_t>(std::clamp(oRidge.At(x, y) + 45.0 * dDot, 0.0, 255.0));
    }
  }
}

/// Turns living skin into the material of the description.
void Imitate(const ClPrintDescription& oDescription, ClPrint& oPrint) {
  switch (oDescription.eMaterial) {
    case eMaterialSkin:
      ClSkinMarks::AddPores(oDescription.nSeed, oDescription.dPores, oPrint.oRidge);
      break;
    case eMaterialSoftCast:
      for (int i = 0; i < 3; ++i) Soften(oPrint.oRidge);
      oPrint.dSlope = 1.5;
      break;
    case eMaterialFlatCast:
      oPrint.dSlope = 6.0;
      break;
    case eMaterialHalftone:
      AddRaster(oPrint.oRidge);
      break;
  }
}

}  // namespace

ClPrint GeneratePrint(const ClPrintDescription& oDescription) {
  const ClRidgeFlow oFlow(oDescription);
  const ClPrintOutline oOutline(oDescription);
  const ClSkinMarks oMarks(oDescription);
  ClPrint oPrint = RaiseRidges(oDescription, oOutline, ClRidgeGrowth(oDescription, oFlow, oOutline, oMarks));
  Imitate(oDescription, oPrint);
  oMarks.Engrave(oPrint.oRidge);
  return oPrint;
}

}  // namespace Simulator
