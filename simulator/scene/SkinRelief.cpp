// How ridges that have grown stand out of the skin.
#include "scene/SkinRelief.h"

#include <algorithm>
#include <cmath>

#include "scene/Platen.h"
#include "scene/SmoothNoise.h"

namespace Simulator {
namespace {

/// How the ridges of a skin stand out and where they don't, in steps of height.
struct ClRelief {
  float fHeight;  ///< of crests above flanks
  float fUneven;  ///< how much pressure differs from part to part
  float fBroad;   ///< by how much ridges widen and narrow along their way
  float fFine;    ///< how rough their edges are
  float fWorn;    ///< by how much they have worn off, in patches
};

ClRelief ReliefOf(const ClPrintDescription& oDescription) {
  // Imitations are as even as what they are made of.
  if (oDescription.eMaterial != eMaterialSkin) return {112.0f, 0.0f, 0.0f, 0.0f, 0.0f};
  switch (oDescription.eSkin) {
    case eSkinChild:
      return {112.0f, 20.0f, 20.0f, 22.0f, 0.0f};
    case eSkinElderly:
      return {84.0f, 30.0f, 28.0f, 36.0f, 60.0f};
    default:
      return {112.0f, 24.0f, 26.0f, 36.0f, 0.0f};
  }
}

/// Heights from 0 to 255.
TpPlane<uint8_t> Raise(const ClPrintDescription& oDescription, const TpPlane<float>& oGrown,
                       const TpPlane<uint8_t>& oDepth) {
  const ClRelief oRelief = ReliefOf(oDescription);
  const int nWidth = oGrown.Width();
  ClNoiseRows oPressure(Mix(oDescription.nSeed, 6), 96, nWidth),
      oBroad(Mix(oDescription.nSeed, 7), 13, nWidth), oFine(Mix(oDescription.nSeed, 8), 3, nWidth),
      oWorn(Mix(oDescription.nSeed, 9), 60, nWidth);
  std::vector<float> aBias(static_cast<size_t>(nWidth)), aWorn(aBias);
  const bool bSkin = oDescription.eMaterial == eMaterialSkin;
  // Some fingers have wide ridges, others narrow ones; a printer's ink spreads.
  const auto fWidth =
      static_cast<float>(bSkin ? ClRandom(Mix(oDescription.nSeed, 0x426F6C64)).Range(118.0, 134.0)
                         : oDescription.eMaterial == eMaterialHalftone ? 142.0
                                                                       : 128.5);
  const float fEdge = bSkin ? 0.13f : 0.0f;
  TpPlane<uint8_t> oRidge(nWidth, oGrown.Height());
  for (int y = 0; y < oRidge.Height(); ++y) {
    std::fill(aBias.begin(), aBias.end(), fWidth);
    oPressure.Add(y, oRelief.fUneven, aBias.data());
    oBroad.Add(y, oRelief.fBroad, aBias.data());
    oFine.Add(y, oRelief.fFine, aBias.data());
    std::fill(aWorn.begin(), aWorn.end(), 0.0f);
    if (oRelief.fWorn > 0.0f) oWorn.Add(y, 1.0f, aWorn.data());
    const float* pIn = oGrown.Row(y);
    const uint8_t* pDepth = oDepth.Row(y);
    uint8_t* pOut = oRidge.Row(y);
    for (int x = 0; x < nWidth; ++x) {
      // Towards the outline there is less pressure, and ridges become narrow before they end.
      const float fLight = fEdge * static_cast<float>(255 - pDepth[x]);
      const float fWorn = oRelief.fWorn * std::max(0.0f, aWorn[static_cast<size_t>(x)] - 0.1f);
      pOut[x] = static_cast<uint8_t>(std::clamp(
          aBias[static_cast<size_t>(x)] + oRelief.fHeight * pIn[x] - fLight - fWorn, 0.0f, 255.0f));
    }
  }
  return oRidge;
}

}  // namespace

ClPrint RaiseRidges(const ClPrintDescription& oDescription, const ClPrintOutline& oOutline,
                    const ClRidgeGrowth& oGrowth) {
  // Even numbers, so that the middle of the print lies between pixels on both axes.
  const int nWidth = 2 * static_cast<int>(std::ceil(oDescription.dWidthMm * 0.6 / cdPixelMm));
  const int nHeight = 2 * static_cast<int>(std::ceil(oDescription.dHeightMm * 0.6 / cdPixelMm));
  ClPrint oPrint;
  oPrint.dSlope = oDescription.eSkin == eSkinElderly ? 2.0 : 2.4;
  oPrint.oDepth = oOutline.Depth(nWidth, nHeight);
  oPrint.oRidge = Raise(oDescription, oGrowth.Enlarge(nWidth, nHeight), oPrint.oDepth);
  return oPrint;
}

}  // namespace Simulator
