// What really rolled over the platen, and how a picture of it differs.
#pragma once

#include <algorithm>
#include <vector>

#include "Pearson.h"
#include "SimulatedScanner.h"

constexpr int cnRollSide = 800;
/// Where the picture of a roll lies in that of the platen.
constexpr int cnRollLeft = 400;

/// A finished roll beside the truth.
struct StRollQuality {
  double dCorrelation = 0.0;  ///< of picture and truth over the skin that was down
  double dGrowth = 0.0;       ///< width of the picture against the widest flat contact
};

/// Columns from the first to the last that have at least a millimetre of skin; skin is where a neighbourhood
/// is dark.
template <typename TSkin>
int WidthOf(TSkin fnSkin) {
  int nFirst = cnRollSide, nLast = -1;
  for (int x = 0; x < cnRollSide; ++x) {
    int nSkin = 0;
    for (int y = 0; y < cnRollSide; ++y) nSkin += fnSkin(x, y);
    if (nSkin < 20) continue;
    nFirst = std::min(nFirst, x);
    nLast = x;
  }
  return std::max(0, nLast - nFirst + 1);
}

/// Pearson's coefficient over the skin of the mask, the picture read nX and nY pixels further on.
inline double RollCorrelation(const std::vector<unsigned char>& aTruth,
                              const std::vector<unsigned char>& aMask,
                              const std::vector<unsigned char>& aPicture, int nX, int nY) {
  ClPearson oPearson;
  for (int y = 2; y < cnRollSide - 2; ++y) {
    for (int x = 2; x < cnRollSide - 2; ++x) {
      const size_t n = static_cast<size_t>(y * VTSIM_PICTURE_SIDE + x + cnRollLeft);
      if (aMask[n] != 255) continue;
      oPearson.Add(aTruth[n], aPicture[static_cast<size_t>((y + nY) * cnRollSide + x + nX)]);
    }
  }
  return oPearson.Coefficient();
}

/// Compares a picture that was not turned with what rolled between the frames of the records.
inline StRollQuality MeasureRoll(const std::vector<unsigned char>& aPicture) {
  const std::vector<VTSimFrame> aFrames = Frames();
  StRollQuality oQuality;
  std::vector<unsigned char> aTruth(VTSIM_PICTURE_SIDE * VTSIM_PICTURE_SIDE), aMask(aTruth.size());
  unsigned int nSize = static_cast<unsigned int>(aTruth.size());
  const auto IsSkin = [&](int x, int y) {
    return aMask[static_cast<size_t>(y * VTSIM_PICTURE_SIDE + x + cnRollLeft)] == 255;
  };
  int nFlat = 0;
  for (size_t n = 0; n < aFrames.size(); ++n) {
    // Each second frame is enough for the widest.
    if (aFrames[n].nFingers == 0 || n % 2 != 0) continue;
    VTSimGetGroundTruthAt(nullptr, aFrames[n].dTime, aTruth.data(), aMask.data(), &nSize);
    nFlat = std::max(nFlat, WidthOf(IsSkin));
  }
  if (nFlat == 0) return oQuality;
  VTSimGetUnrolledTruth(nullptr, aFrames.front().dTime, aFrames.back().dTime, aTruth.data(), aMask.data(),
                        &nSize);
  for (int nY = -1; nY <= 1; ++nY)
    for (int nX = -1; nX <= 1; ++nX)
      oQuality.dCorrelation =
          std::max(oQuality.dCorrelation, RollCorrelation(aTruth, aMask, aPicture, nX, nY));
  const int nWidth =
      WidthOf([&](int x, int y) { return aPicture[static_cast<size_t>(y * cnRollSide + x)] < 128; });
  oQuality.dGrowth = static_cast<double>(nWidth) / nFlat;
  return oQuality;
}
