// What lies on the sheets, and the search for discs and code.
#include "quality/Sheets.h"

#include <algorithm>
#include <cmath>

const char* const caszSheetNames[cnSheetKinds] = {"sine", "bars", "edges", "grid", "steps", "bright", "dark"};

namespace {

constexpr double cdDiscRadius = 1.5;
constexpr double cdMost = 2.5;  // millimetres by which a disc may be off the square of the others
constexpr double cdCodePlace = -36, cdCodePitch = 3.5, cdBesideCode = 9.5;
constexpr double cdEvenSpread = 12;  // grey values within which an even sheet stays, but for its corners
constexpr double cdBare = 14, cdDarkMost = 80;

/// The discs on the sheet, round it from the upper left one on.
constexpr StPoint caCorners[4] = {{-cdMarkPlace, -cdMarkPlace},
                                  {cdMarkPlace, -cdMarkPlace},
                                  {cdMarkPlace, cdMarkPlace},
                                  {-cdMarkPlace, cdMarkPlace}};

struct StBlob {
  double dX = 0, dY = 0;
  unsigned int nCount = 0, nLeft = 0, nRight = 0, nTop = 0, nBottom = 0;
};

/// Connected dark areas, by the runs of each row.
std::vector<StBlob> DarkBlobs(const ClPicture& oPicture, unsigned char nBelow) {
  const unsigned int nWidth = oPicture.nWidth;
  std::vector<StBlob> aBlobs;
  std::vector<size_t> aParent;
  const auto Root = [&aParent](size_t n) {
    while (aParent[n] != n) n = aParent[n] = aParent[aParent[n]];
    return n;
  };
  constexpr size_t cnNone = SIZE_MAX;
  std::vector<size_t> aAbove(nWidth, cnNone), aHere(nWidth, cnNone);
  for (unsigned int y = 0; y < oPicture.nHeight; ++y) {
    const unsigned char* pRow = oPicture.Row(y);
    for (unsigned int x = 0; x < nWidth; ++x) {
      aHere[x] = cnNone;
      if (pRow[x] >= nBelow) continue;
      size_t nLabel = x > 0 && aHere[x - 1] != cnNone ? Root(aHere[x - 1]) : cnNone;
      if (aAbove[x] != cnNone) {
        const size_t nUpper = Root(aAbove[x]);
        if (nLabel != cnNone) aParent[std::max(nLabel, nUpper)] = std::min(nLabel, nUpper);
        nLabel = nLabel == cnNone ? nUpper : std::min(nLabel, nUpper);
      }
      if (nLabel == cnNone) {
        nLabel = aParent.size();
        aParent.push_back(nLabel);
        aBlobs.push_back({0, 0, 0, x, x, y, y});
      }
      aHere[x] = nLabel;
      StBlob& o = aBlobs[nLabel];
      o.dX += x;
      o.dY += y;
      ++o.nCount;
      o.nLeft = std::min(o.nLeft, x);
      o.nRight = std::max(o.nRight, x);
      o.nBottom = std::max(o.nBottom, y);
    }
    aAbove.swap(aHere);
  }
  for (size_t n = aBlobs.size(); n-- > 0;) {
    const size_t nRoot = Root(n);
    if (nRoot == n) continue;
    StBlob &o = aBlobs[nRoot], &oPart = aBlobs[n];
    o.dX += oPart.dX;
    o.dY += oPart.dY;
    o.nCount += oPart.nCount;
    o.nLeft = std::min(o.nLeft, oPart.nLeft);
    o.nRight = std::max(o.nRight, oPart.nRight);
    o.nTop = std::min(o.nTop, oPart.nTop);
    o.nBottom = std::max(o.nBottom, oPart.nBottom);
    oPart.nCount = 0;
  }
  return aBlobs;
}

/// The middles of what looks like a disc, in millimetres on the platen.
std::vector<StPoint> Discs(const StView& oView) {
  const double dArea = 3.14159 * cdDiscRadius * cdDiscRadius * oView.dPixelsPerMm * oView.dPixelsPerMm;
  const ClPicture& oPicture = *oView.pPicture;
  const auto [itLow, itHigh] = std::minmax_element(oPicture.aPixels.begin(), oPicture.aPixels.end());
  std::vector<StPoint> aDiscs;
  for (const StBlob& o : DarkBlobs(oPicture, static_cast<unsigned char>((*itLow + *itHigh) / 2))) {
    if (o.nCount < 0.6 * dArea || o.nCount > 1.4 * dArea) continue;
    const double dWidth = o.nRight - o.nLeft + 1.0, dHeight = o.nBottom - o.nTop + 1.0;
    const double dFill = o.nCount / (dWidth * dHeight);
    if (dWidth > 1.3 * dHeight || dHeight > 1.3 * dWidth || dFill < 0.65 || dFill > 0.9) continue;
    aDiscs.push_back(oView.ToPlaten({o.dX / o.nCount, o.dY / o.nCount}));
  }
  return aDiscs;
}

double MeanAt(const StView& oView, const StSheetPlace& oPlace, const StPoint& oMiddle, double dHalf) {
  double dSum = 0;
  const std::vector<StSample> aSamples = SamplesIn(oView, oPlace, oMiddle, dHalf, dHalf);
  for (const StSample& o : aSamples) dSum += o.dGrey;
  return aSamples.empty() ? 0 : dSum / static_cast<double>(aSamples.size());
}

/// The kind from the code; none where there is no code on this side.
std::optional<ESheetKind> KindAt(const StView& oView, const StSheetPlace& oPlace) {
  int nCode = 0;
  for (int n = 0; n < 4; ++n) {
    const double dX = (n - 1.5) * cdCodePitch;
    const double dPaper = MeanAt(oView, oPlace, {n < 2 ? -cdBesideCode : cdBesideCode, cdCodePlace}, 0.6);
    const bool bDark = MeanAt(oView, oPlace, {dX, cdCodePlace}, 0.6) < 0.6 * dPaper;
    if (n == 0 && !bDark) return std::nullopt;
    if (n > 0 && bDark) nCode |= 1 << (n - 1);
  }
  if (nCode > eSteps) return std::nullopt;
  return static_cast<ESheetKind>(nCode);
}

std::optional<StFoundSheet> FindEven(const ClPicture& oPicture) {
  double dSum = 0, dSquares = 0;
  for (const unsigned char n : oPicture.aPixels) {
    dSum += n;
    dSquares += static_cast<double>(n) * n;
  }
  const double dCount = static_cast<double>(oPicture.aPixels.size());
  const double dMean = dSum / dCount, dSpread = std::sqrt(std::max(0.0, dSquares / dCount - dMean * dMean));
  if (dSpread > cdEvenSpread || dMean < cdBare) return std::nullopt;
  if (dMean < cdDarkMost) return StFoundSheet{eDark, {}};
  return StFoundSheet{eBright, {}};
}

/// Place and turn that bring the discs of the sheet nearest to four that were found, and the first of which
/// is the upper left one.
StSheetPlace PlaceOf(const StPoint (&aCorners)[4]) {
  StSheetPlace o;
  double dAlong = 0, dAcross = 0;
  for (const StPoint& oCorner : aCorners) {
    o.dX += oCorner.dX / 4;
    o.dY += oCorner.dY / 4;
  }
  for (int n = 0; n < 4; ++n) {
    const double dU = aCorners[n].dX - o.dX, dV = aCorners[n].dY - o.dY;
    dAlong += caCorners[n].dX * dU + caCorners[n].dY * dV;
    dAcross += caCorners[n].dY * dU - caCorners[n].dX * dV;
  }
  o.dTurn = std::atan2(dAcross, dAlong);
  return o;
}

/// The same with the discs' middles by their light.
StSheetPlace Refined(const StView& oView, const StSheetPlace& oPlace) {
  StPoint aCorners[4];
  for (size_t n = 0; n < 4; ++n) aCorners[n] = oPlace.ToPlaten(DiscMiddle(oView, oPlace, caCorners[n]));
  return PlaceOf(aCorners);
}

}  // namespace

double StepLight(int nStep) {
  constexpr int cnCount = cnStepsAcross * cnStepsAcross;
  return (1 + nStep * 7 % cnCount) / static_cast<double>(cnCount);
}

StPoint BlockMiddle(int nBlock) {
  return {cdBlockPitch * (nBlock % 3 - 1), cdBlockPitch * (nBlock / 3 - 1)};
}

StPoint CellMiddle(int nBlock, int nCell) {
  const StPoint o = BlockMiddle(nBlock);
  return {o.dX + cdCellSide * (nCell % cnCellsAcross - 2), o.dY + cdCellSide * (nCell / cnCellsAcross - 2)};
}

std::optional<StFoundSheet> FindSheet(const StView& oView) {
  if (const auto oEven = FindEven(*oView.pPicture)) return oEven;
  const std::vector<StPoint> aDiscs = Discs(oView);
  const double dDiagonal = 2 * cdMarkPlace * std::sqrt(2.0);
  const auto Near = [&aDiscs](const StPoint& o) -> const StPoint* {
    for (const StPoint& oDisc : aDiscs)
      if (std::hypot(oDisc.dX - o.dX, oDisc.dY - o.dY) < cdMost) return &oDisc;
    return nullptr;
  };
  for (const StPoint& a : aDiscs) {
    for (const StPoint& b : aDiscs) {
      const double dX = b.dX - a.dX, dY = b.dY - a.dY;
      if (std::fabs(std::hypot(dX, dY) - dDiagonal) > cdMost) continue;
      // From one corner to the opposite one; the two others lie across.
      const StPoint oMiddle{a.dX + dX / 2, a.dY + dY / 2};
      const StPoint *pRight = Near({oMiddle.dX + dY / 2, oMiddle.dY - dX / 2}),
                    *pLeft = Near({oMiddle.dX - dY / 2, oMiddle.dY + dX / 2});
      if (pRight == nullptr || pLeft == nullptr) continue;
      const StPoint aCorners[4] = {a, *pRight, b, *pLeft};
      const StSheetPlace oPlace = PlaceOf(aCorners);
      if (const auto eKind = KindAt(oView, oPlace)) return StFoundSheet{*eKind, Refined(oView, oPlace)};
    }
  }
  return std::nullopt;
}

StPoint DiscMiddle(const StView& oView, const StSheetPlace& oPlace, const StPoint& oExpected) {
  constexpr double cdRing = 1.9;
  const std::vector<StSample> aSamples = SamplesIn(oView, oPlace, oExpected, 2.4, 2.4);
  // The paper's light changes over a raw frame: a plane through the ring round the disc.
  constexpr size_t cnTerms = 3;
  std::vector<double> aMatrix(cnTerms * cnTerms), aPlane(cnTerms);
  for (const StSample& o : aSamples) {
    if (std::hypot(o.dX, o.dY) < cdRing) continue;
    const double adTerms[cnTerms] = {1, o.dX, o.dY};
    for (size_t i = 0; i < cnTerms; ++i) {
      for (size_t k = 0; k < cnTerms; ++k) aMatrix[i * cnTerms + k] += adTerms[i] * adTerms[k];
      aPlane[i] += adTerms[i] * o.dGrey;
    }
  }
  if (!Solve(aMatrix, aPlane)) return oExpected;
  double dX = 0, dY = 0, dSum = 0;
  for (const StSample& o : aSamples) {
    const double dPaper = aPlane[0] + aPlane[1] * o.dX + aPlane[2] * o.dY;
    if (std::hypot(o.dX, o.dY) >= cdRing || dPaper <= 0) continue;
    const double dDark = 1 - o.dGrey / dPaper;
    dX += dDark * o.dX;
    dY += dDark * o.dY;
    dSum += dDark;
  }
  return dSum > 0 ? StPoint{oExpected.dX + dX / dSum, oExpected.dY + dY / dSum} : oExpected;
}
