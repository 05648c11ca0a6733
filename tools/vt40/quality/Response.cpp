// Fits of waves, folded bars, and the spectrum of edges.
#include "quality/Response.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double cdPi = 3.14159265358979323846;
constexpr double cdCellHalf = 1.6;  // millimetres of a cell that are used, from its middle
constexpr double cdEvenHalf = 1.2;  // of an even cell
constexpr size_t cnBins = 16, cnBands = 8;
constexpr double cdLeastStep =
    20;  // grey values between dark and bright areas below which there is no pattern
constexpr int cnBlocks = 9;
// Profiles across an edge, in millimetres.
constexpr double cdAlongEdge = 1.6, cdAcrossEdge = 1.2, cdBin = 0.0127;

/// Mean grey of the bright and of the dark cells of a block.
std::pair<double, double> EvenCells(const StView& oView, const StSheetPlace& oPlace, int nBlock) {
  double adSum[2] = {}, adCount[2] = {};
  for (int n = 2 * cnFrequencies; n < cnCellsAcross * cnCellsAcross; ++n) {
    for (const StSample& o : SamplesIn(oView, oPlace, CellMiddle(nBlock, n), cdEvenHalf, cdEvenHalf)) {
      adSum[n % 2] += o.dGrey;
      ++adCount[n % 2];
    }
  }
  if (adCount[0] == 0 || adCount[1] == 0) return {0, 0};
  return {adSum[0] / adCount[0], adSum[1] / adCount[1]};
}

/// The fit a + b t + c sin + d cos over samples.
struct StWave {
  double dModulation;  ///< amplitude by a
  double dPhase;       ///< in cycles
};

StWave FitWave(const std::vector<StSample>& aSamples, double dFrequency, bool bAlongX) {
  constexpr size_t cnTerms = 4;
  std::vector<double> aMatrix(cnTerms * cnTerms), aRight(cnTerms);
  for (const StSample& o : aSamples) {
    const double dAt = bAlongX ? o.dX : o.dY, dPhase = 2 * cdPi * dFrequency * dAt;
    const std::array<double, cnTerms> aTerms = {1, dAt, std::sin(dPhase), std::cos(dPhase)};
    for (size_t i = 0; i < cnTerms; ++i) {
      for (size_t k = 0; k < cnTerms; ++k) aMatrix[i * cnTerms + k] += aTerms[i] * aTerms[k];
      aRight[i] += aTerms[i] * o.dGrey;
    }
  }
  if (!Solve(aMatrix, aRight) || !(aRight[0] > 0)) return {0, 0};
  return {std::hypot(aRight[2], aRight[3]) / aRight[0], std::atan2(aRight[3], aRight[2]) / (2 * cdPi)};
}

/// Half of lightest less darkest, by the mean, of samples that are folded onto one period. Each band of them
/// has a phase of its own.
double FoldedModulation(const std::vector<std::vector<StSample>>& aBands, const std::vector<StWave>& aWaves,
                        double dFrequency, bool bAlongX) {
  double adSum[cnBins] = {}, adCount[cnBins] = {};
  for (size_t nBand = 0; nBand < aBands.size(); ++nBand) {
    for (const StSample& o : aBands[nBand]) {
      const double dPhase = dFrequency * (bAlongX ? o.dX : o.dY) + aWaves[nBand].dPhase;
      const size_t n = std::min(cnBins - 1, static_cast<size_t>((dPhase - std::floor(dPhase)) * cnBins));
      adSum[n] += o.dGrey;
      ++adCount[n];
    }
  }
  double dLow = 1e9, dHigh = -1e9, dMean = 0, dSeen = 0;
  for (size_t n = 0; n < cnBins; ++n) {
    if (adCount[n] == 0) continue;
    const double dGrey = adSum[n] / adCount[n];
    dLow = std::min(dLow, dGrey);
    dHigh = std::max(dHigh, dGrey);
    dMean += dGrey;
    ++dSeen;
  }
  return dMean > 0 ? (dHigh - dLow) / 2 / (dMean / dSeen) : 0;
}

/// The modulation of a cell. It is fitted in narrow bands, since the way to the picture may have turned the
/// wave a little, which is no loss of contrast.
double Modulation(const std::vector<StSample>& aSamples, ESheetKind eKind, double dFrequency, bool bAlongX) {
  std::vector<std::vector<StSample>> aBands(cnBands);
  for (const StSample& o : aSamples) {
    const double dPart = ((bAlongX ? o.dY : o.dX) / cdCellHalf + 1) / 2;
    aBands[static_cast<size_t>(std::clamp(dPart * cnBands, 0.0, cnBands - 0.5))].push_back(o);
  }
  std::vector<StWave> aWaves;
  double dMean = 0;
  for (const auto& aBand : aBands) {
    aWaves.push_back(FitWave(aBand, dFrequency, bAlongX));
    dMean += aWaves.back().dModulation / cnBands;
  }
  return eKind == eSine ? dMean : FoldedModulation(aBands, aWaves, dFrequency, bAlongX);
}

std::vector<double> WaveBlock(const StView& oView, const StFoundSheet& oSheet, int nBlock, bool bAlongX,
                              const std::vector<double>& aFrequencies) {
  const auto [dBright, dDark] = EvenCells(oView, oSheet.oPlace, nBlock);
  std::vector<double> aResponse;
  if (dBright - dDark < cdLeastStep) return aResponse;
  // Modulations do not depend on how brightly the cells are lit, which differs over a raw frame.
  const double dEven = (dBright - dDark) / (dBright + dDark);
  for (const double dFrequency : aFrequencies) {
    const int nCell = static_cast<int>(dFrequency) - 1 + (bAlongX ? 0 : cnFrequencies);
    const auto aSamples = SamplesIn(oView, oSheet.oPlace, CellMiddle(nBlock, nCell), cdCellHalf, cdCellHalf);
    aResponse.push_back(Modulation(aSamples, oSheet.eKind, dFrequency, bAlongX) / dEven);
  }
  return aResponse;
}

/// A pixel near an edge: its distance along the edge and across it, to the bright side.
struct StNearEdge {
  double dAlong;
  double dAcross;
  double dGrey;
};

/// The pixels near one side of a dark square of a block: right, left, lower and upper one.
std::vector<StNearEdge> NearEdge(const StView& oView, const StSheetPlace& oPlace, int nBlock, int nSquare,
                                 int nSide) {
  const double dTurn = cdEdgeTurn * cdPi / 180, dCos = std::cos(dTurn), dSin = std::sin(dTurn);
  const bool bAlongX = nSide < 2;
  const double dSign = nSide % 2 == 0 ? 1 : -1;
  const double dU = cdEdgePitch * (nSquare % 3 - 1) + (bAlongX ? dSign * cdEdgeHalf : 0);
  const double dV = cdEdgePitch * (nSquare / 3 - 1) + (bAlongX ? 0 : dSign * cdEdgeHalf);
  const StPoint oBlock = BlockMiddle(nBlock);
  const StPoint oMiddle{oBlock.dX + dU * dCos + dV * dSin, oBlock.dY + dV * dCos - dU * dSin};
  const double dLong = cdAlongEdge * dCos, dShort = cdAcrossEdge + cdAlongEdge * dSin;
  std::vector<StNearEdge> aNear;
  for (const StSample& o :
       SamplesIn(oView, oPlace, oMiddle, bAlongX ? dShort : dLong, bAlongX ? dLong : dShort)) {
    const double dRight = o.dX * dCos - o.dY * dSin, dDown = o.dX * dSin + o.dY * dCos;
    const double dAcross = dSign * (bAlongX ? dRight : dDown), dAlong = bAlongX ? dDown : dRight;
    if (std::fabs(dAcross) < cdAcrossEdge) aNear.push_back({dAlong, dAcross, o.dGrey});
  }
  return aNear;
}

/// Mean grey in bins across the edge; an empty one takes the value of the one before.
std::vector<double> Profile(const std::vector<StNearEdge>& aNear, double dBin) {
  const size_t nBins = static_cast<size_t>(2 * cdAcrossEdge / dBin);
  std::vector<double> aSum(nBins), aCount(nBins);
  for (const StNearEdge& o : aNear) {
    const double dAt = (o.dAcross + cdAcrossEdge) / dBin;
    if (dAt < 0 || dAt >= static_cast<double>(nBins)) continue;
    aSum[static_cast<size_t>(dAt)] += o.dGrey;
    ++aCount[static_cast<size_t>(dAt)];
  }
  for (size_t n = 0; n < nBins; ++n) aSum[n] = aCount[n] > 0 ? aSum[n] / aCount[n] : n > 0 ? aSum[n - 1] : 0;
  return aSum;
}

/// Takes off what the edge lies beside its straight line: a parabola through its positions in slices. What
/// the way to the picture has bent or turned would blur the profile otherwise.
void Straighten(std::vector<StNearEdge>& aNear, double dBin) {
  constexpr size_t cnSlices = 6, cnTerms = 3;
  std::vector<std::vector<StNearEdge>> aSlices(cnSlices);
  for (const StNearEdge& o : aNear) {
    const double dPart = (o.dAlong / cdAlongEdge + 1) / 2;
    aSlices[static_cast<size_t>(std::clamp(dPart * cnSlices, 0.0, cnSlices - 0.5))].push_back(o);
  }
  std::vector<double> aMatrix(cnTerms * cnTerms), aBent(cnTerms);
  for (size_t n = 0; n < cnSlices; ++n) {
    const std::vector<double> aProfile = Profile(aSlices[n], dBin);
    const size_t nBins = aProfile.size(), nEnd = nBins / 5;
    double dDark = 0, dBright = 0, dMean = 0;
    for (size_t i = 0; i < nBins; ++i) {
      dMean += aProfile[i] / static_cast<double>(nBins);
      if (i < nEnd) dDark += aProfile[i] / static_cast<double>(nEnd);
      if (i >= nBins - nEnd) dBright += aProfile[i] / static_cast<double>(nEnd);
    }
    if (dBright - dDark < cdLeastStep) return;
    const double dEdge = cdAcrossEdge * (1 - 2 * (dMean - dDark) / (dBright - dDark));
    const double dAlong = (2 * (static_cast<double>(n) + 0.5) / cnSlices - 1);
    const double adTerms[cnTerms] = {1, dAlong, dAlong * dAlong};
    for (size_t i = 0; i < cnTerms; ++i) {
      for (size_t k = 0; k < cnTerms; ++k) aMatrix[i * cnTerms + k] += adTerms[i] * adTerms[k];
      aBent[i] += adTerms[i] * dEdge;
    }
  }
  if (!Solve(aMatrix, aBent)) return;
  for (StNearEdge& o : aNear) {
    const double dAlong = o.dAlong / cdAlongEdge;
    o.dAcross -= aBent[0] + aBent[1] * dAlong + aBent[2] * dAlong * dAlong;
  }
}

/// The spectrum of the profile's steps, relative to that of no frequency. Bins and differences take a sinc
/// each.
std::vector<double> EdgeSpectrum(const std::vector<double>& aProfile, double dBin,
                                 const std::vector<double>& aFrequencies) {
  std::vector<double> aSpectrum;
  const double dCount = static_cast<double>(aProfile.size() - 1);
  const auto Size = [&](double dFrequency) {
    double dSin = 0, dCos = 0;
    for (size_t n = 0; n + 1 < aProfile.size(); ++n) {
      const double dAt = static_cast<double>(n) - dCount / 2 + 0.5;
      const double dWindow = 0.54 + 0.46 * std::cos(2 * cdPi * dAt / dCount);
      const double dStep = dWindow * (aProfile[n + 1] - aProfile[n]);
      dSin += dStep * std::sin(2 * cdPi * dFrequency * dBin * dAt);
      dCos += dStep * std::cos(2 * cdPi * dFrequency * dBin * dAt);
    }
    return std::hypot(dSin, dCos);
  };
  const double dAll = Size(0);
  for (const double dFrequency : aFrequencies) {
    const double dX = cdPi * dFrequency * dBin, dSinc = std::sin(dX) / dX;
    aSpectrum.push_back(dAll > 0 ? Size(dFrequency) / dAll / (dSinc * dSinc) : 0);
  }
  return aSpectrum;
}

/// The mean of all edges of a block in one direction: each lies differently against the pixels.
std::vector<double> EdgeBlock(const StView& oView, const StSheetPlace& oPlace, int nBlock, bool bAlongX,
                              const std::vector<double>& aFrequencies) {
  const double dBin = std::max(cdBin, oView.dPixelsPerMm > 0 ? 0.25 / oView.dPixelsPerMm : cdBin);
  std::vector<double> aMean(aFrequencies.size());
  for (int n = 0; n < 2 * cnSquares; ++n) {
    std::vector<StNearEdge> aNear = NearEdge(oView, oPlace, nBlock, n / 2, n % 2 + (bAlongX ? 0 : 2));
    Straighten(aNear, 4 * dBin);
    const std::vector<double> aProfile = Profile(aNear, dBin);
    if (aProfile.back() - aProfile.front() < cdLeastStep) return {};
    const std::vector<double> aSpectrum = EdgeSpectrum(aProfile, dBin, aFrequencies);
    for (size_t i = 0; i < aMean.size(); ++i) aMean[i] += aSpectrum[i] / (2 * cnSquares);
  }
  return aMean;
}

}  // namespace

double StResponse::Least(size_t nFrequency) const {
  double d = 1e9;
  for (const auto& aPlace : aPlaces) d = std::min(d, aPlace[nFrequency]);
  return d;
}

double StResponse::Most(size_t nFrequency) const {
  double d = 0;
  for (const auto& aPlace : aPlaces) d = std::max(d, aPlace[nFrequency]);
  return d;
}

StResponse MeasureResponse(const StView& oView, const StFoundSheet& oSheet, bool bAlongX,
                           double dMostFrequency) {
  StResponse o{oSheet.eKind, bAlongX, {}, {}};
  for (int n = 1; n <= cnFrequencies && n <= dMostFrequency; ++n) o.aFrequencies.push_back(n);
  for (int nBlock = 0; nBlock < cnBlocks; ++nBlock) {
    const std::vector<double> aPlace = oSheet.eKind == eEdges
                                           ? EdgeBlock(oView, oSheet.oPlace, nBlock, bAlongX, o.aFrequencies)
                                           : WaveBlock(oView, oSheet, nBlock, bAlongX, o.aFrequencies);
    if (aPlace.empty()) return {oSheet.eKind, bAlongX, {}, {}};
    o.aPlaces.push_back(aPlace);
  }
  return o;
}
