// What a pen has really written, and how a picture of it differs.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "SignatureFixture.h"

/// A position on the pad as the library counts: pixels of the signature's sensor modes, from the right edge
/// and the top.
struct StPlace {
  double dX;
  double dY;
};

struct StStroke {
  double dBegin;
  double dEnd;
  std::vector<StPlace> aWay;
};

struct StLikeness {
  double dRms = 0.0;       ///< of the distance of the ink from the way of the pen, in sensor pixels
  double dFarthest = 0.0;  ///< the largest of them
  double dMissing = 0.0;  ///< seconds of a stroke beside which there is no ink, in the stroke that lacks most
};

constexpr double cdStep = 0.002;

/// The strokes of the scene that is loaded, with a position for each step of time.
inline std::vector<StStroke> TrueStrokes() {
  std::vector<VTSimStroke> aTimes(200);
  unsigned int nCount = 200;
  EXPECT_EQ(VTSimGetPenStrokes(nullptr, aTimes.data(), &nCount), 0) << VTSimLastError();
  aTimes.resize(nCount);
  std::vector<StStroke> aStrokes;
  for (const VTSimStroke& o : aTimes) {
    aStrokes.push_back({o.dBegin, o.dEnd, {}});
    for (double dTime = o.dBegin; dTime < o.dEnd; dTime += cdStep) {
      VTSimPen oPen = {};
      EXPECT_EQ(VTSimGetPenAt(nullptr, dTime, &oPen), 0) << VTSimLastError();
      // Four by four pixels of the full sensor are one of the pad.
      aStrokes.back().aWay.push_back({cnPadWidth - (oPen.dSensorX - 1.5) / 4.0, (oPen.dSensorY - 1.5) / 4.0});
    }
  }
  return aStrokes;
}

/// Compares a picture of nWidth columns.
inline StLikeness Compare(const std::vector<unsigned char>& aPixels, int nWidth,
                          const std::vector<StStroke>& aStrokes) {
  constexpr double cdBeside = 5.0;
  const double dColumn = static_cast<double>(cnPadWidth) / nWidth;
  const double dRow = 340.0 / (nWidth / 2);
  std::vector<StPlace> aWay;
  for (const StStroke& o : aStrokes) aWay.insert(aWay.end(), o.aWay.begin(), o.aWay.end());
  std::vector<bool> aBeside(aWay.size());
  StLikeness oLikeness;
  double dSum = 0.0, dWeights = 0.0;
  for (size_t n = 0; n < aPixels.size(); ++n) {
    if (aPixels[n] >= 128) continue;
    const double dX = static_cast<double>(n % static_cast<size_t>(nWidth)) * dColumn;
    const double dY = static_cast<double>(n / static_cast<size_t>(nWidth)) * dRow;
    double dNearest = std::numeric_limits<double>::max();
    for (size_t i = 0; i < aWay.size(); ++i) {
      const double dSquare = (aWay[i].dX - dX) * (aWay[i].dX - dX) + (aWay[i].dY - dY) * (aWay[i].dY - dY);
      dNearest = std::min(dNearest, dSquare);
      if (dSquare <= cdBeside * cdBeside) aBeside[i] = true;
    }
    dSum += (255 - aPixels[n]) * dNearest;
    dWeights += 255 - aPixels[n];
    oLikeness.dFarthest = std::max(oLikeness.dFarthest, std::sqrt(dNearest));
  }
  oLikeness.dRms = std::sqrt(dSum / std::max(dWeights, 1.0));
  auto itBegin = aBeside.begin();
  for (const StStroke& o : aStrokes) {
    const auto itEnd = itBegin + static_cast<std::ptrdiff_t>(o.aWay.size());
    oLikeness.dMissing =
        std::max(oLikeness.dMissing, cdStep * static_cast<double>(std::count(itBegin, itEnd, false)));
    itBegin = itEnd;
  }
  return oLikeness;
}
