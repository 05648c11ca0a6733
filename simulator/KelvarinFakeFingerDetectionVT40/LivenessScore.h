// How far a picture looks like living skin: pores on its ridges against the ridges themselves.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Simulator {

constexpr unsigned cnLeastSide = 64;
constexpr unsigned cnLargestSide = 8192;

/// The measures that the score is made of, taken over the pixels where a finger lies.
///
/// dHoles     how much darker pixels on ridges are than the ridge on both sides of them, on average.
/// dDots      how much lighter pixels in valleys are than the valley on both sides of them, on average.
/// dRidges    standard deviation of the picture at the scale of ridges.
/// nPixels    the number of these pixels.
struct ClLivenessMeasures {
  double dHoles = 0.0;
  double dDots = 0.0;
  double dRidges = 0.0;
  size_t nPixels = 0;
};

/// Pores are holes in ridges that have no counterpart in the valleys between them; a printer's dots are in
/// both, and casts have neither.
///
/// Domain     500 dots per inch, ridges light in pImage; rows of nWidth bytes. pMask is white where no finger
///            lies, and darker than 160 on ridges. Sides from cnLeastSide to cnLargestSide.
/// Errors     std::bad_alloc.
/// Threads    reentrant.
ClLivenessMeasures MeasureLiveness(const uint8_t* pImage, const uint8_t* pMask, int nWidth, int nHeight);

/// Range      0 to 100; 0 when fewer than 5000 places were measured or there are no ridges.
double LivenessScore(const ClLivenessMeasures& oMeasures) noexcept;

}  // namespace Simulator
