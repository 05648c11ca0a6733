// A roll as an application sees it, and what really rolled over the platen.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "KelvarinLiveScannerVT40.h"
#include "KelvarinVTScanAPI/VTSim.h"
#include "Pearson.h"

constexpr int cnRollSide = 800;
/// Where the picture of a roll lies in that of the platen.
constexpr int cnRollLeft = 400;

/// What GetRollImage has delivered.
struct StRollImage {
  long nError = 1;
  double dScore = -1.0;
  unsigned char bDone = 0;
  long nResult = 1;
  std::vector<unsigned char> aPixels;
};

inline StRollImage GetRollImage(void* h) {
  StRollImage o;
  o.aPixels.resize(cnRollSide * cnRollSide);
  o.nError = LS_VT40GetRollImage(h, o.aPixels.data(), &o.dScore, &o.bDone, &o.nResult);
  return o;
}

/// Puts an open scanner before a scene, in roll mode and with its sequences held. 0, or what failed.
inline long StartRoll(void* h, const std::string& sScene) {
  // A worker that waits for a held sequence would keep the switch waiting.
  long nError = VTSimHoldSequences(nullptr, 0);
  if (nError == 0) nError = LS_VT40SetCaptureMode(h, KLV_VT40_CAPTURE_MODE_OFF);
  if (nError == 0) nError = VTSimLoadScene(sScene.c_str());
  if (nError == 0) nError = VTSimHoldSequences(nullptr, 1);
  return nError != 0 ? nError : LS_VT40SetCaptureMode(h, KLV_VT40_CAPTURE_MODE_ROLL);
}

/// Lets one sequence through to the library and fetches what it makes of it: no frame is lost, at any speed of the
/// machine. Sequences must be held.
inline StRollImage StepRoll(void* h) {
  VTSimPassSequences(nullptr, 1);
  return GetRollImage(h);
}

/// Goes frame by frame until a roll is done, an image fails or nFrames are over.
inline StRollImage RunRoll(void* h, int nFrames = 200) {
  StRollImage o = StepRoll(h);
  for (int n = 1; n < nFrames && o.nError == 0 && o.bDone == 0; ++n) o = StepRoll(h);
  return o;
}

/// The records of the sequences from the given one on.
inline std::vector<VTSimFrame> FramesFrom(unsigned long long nFirst) {
  std::vector<VTSimFrame> aFrames(4096);
  unsigned int nCount = 4096;
  if (VTSimGetFrames(nullptr, nFirst, aFrames.data(), &nCount) != 0) nCount = 0;
  aFrames.resize(nCount);
  return aFrames;
}

/// A finished roll beside the truth.
struct StRollQuality {
  double dCorrelation = 0.0;  ///< of picture and truth over the skin that was down
  double dGrowth = 0.0;       ///< width of the picture against the widest flat contact
};

/// Columns from the first to the last that have at least a millimetre of skin; skin is where a neighbourhood is dark.
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
inline StRollQuality MeasureRoll(const std::vector<unsigned char>& aPicture,
                                 const std::vector<VTSimFrame>& aFrames) {
  StRollQuality oQuality;
  std::vector<unsigned char> aTruth(VTSIM_PICTURE_SIDE * VTSIM_PICTURE_SIDE), aMask(aTruth.size());
  unsigned int nSize = static_cast<unsigned int>(aTruth.size());
  const auto IsSkin = [&](int x, int y) {
    return aMask[static_cast<size_t>(y * VTSIM_PICTURE_SIDE + x + cnRollLeft)] == 255;
  };
  int nFlat = 0;
  for (size_t n = 0; n < aFrames.size(); ++n) {
    // Each fourth frame is enough for the widest.
    if (aFrames[n].nFingers == 0 || n % 4 != 0) continue;
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
