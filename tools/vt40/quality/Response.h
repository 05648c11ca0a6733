// How much of a pattern's contrast a picture keeps, by its frequency.
#pragma once

#include <optional>

#include "quality/Sheets.h"

/// The response at each of the nine places, by frequency from 1 cycle per millimetre on, relative to that of
/// even areas beside the pattern. What a picture cannot show is left out: frequencies beyond half its
/// sampling, but for the last one, which a picture of 500 dpi folds back by a fiftieth of a cycle, and
/// pictures whose even areas are alike.
struct StResponse {
  ESheetKind eKind;  ///< eSine, eBars or eEdges
  bool bAlongX;      ///< the pattern changes to the right; else down
  std::vector<double> aFrequencies;
  std::vector<std::vector<double>> aPlaces;  ///< nine rows, a value for each frequency

  double Least(size_t nFrequency) const;
  double Most(size_t nFrequency) const;
};

/// Of a sheet of waves, bars or edges. Sine waves: the modulation that a fit of that frequency finds. Bars:
/// that of lightest and darkest sixteenth of a period. Edges: the spectrum of the line spread, from a profile
/// that was sampled four times as finely as the picture along the slanted edges of a square. dMostFrequency
/// is the last one that is tried.
StResponse MeasureResponse(const StView& oView, const StFoundSheet& oSheet, bool bAlongX,
                           double dMostFrequency);
