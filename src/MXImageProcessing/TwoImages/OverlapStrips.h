// A rule over the overlap of two images of any element types, by strips of one working type.
#pragma once

#include <cstddef>
#include <cstdint>

#include "MXTools/FpImage.h"

struct ClOverlap;

/// Limits of the results, which the output's type holds exactly.
template <typename W>
struct TpStripLimits {
  W m_nLower;
  W m_nUpper;
  /// NaN stays NaN in a floating output and becomes the lower limit in an integer one.
  bool m_bKeepsNaN;
};

/// Applies the rule to two strips; the limited results replace the first.
template <typename W>
using StripRule = void (*)(W* pFirst, const W* pSecond, size_t nCount, const TpStripLimits<W>& oLimits);

/// Applies a rule to each pair of samples of an overlap, whose images have equal numbers of planes.
///
/// The samples of a row are read into strips of the working type W, and written back from them: eight loaders
/// and eight storers stand in for a loop for each of the 512 combinations of types.
///
/// Domain   W holds all three types: int32_t those of 8 and 16 bits, int64_t all integers, double all. The
///          output is neither of the inputs.
/// Range    results are within the limits, and truncated for integer outputs.
/// Threads  reentrant.
/// Errors   returned: -101 for a type that W does not hold.
/// Cost     a pass over strips on the stack, which stay in the first-level cache; four calls for each strip.
template <typename W>
long ApplyByStrips(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut, const ClOverlap& oOverlap,
                   const TpStripLimits<W>& oLimits, StripRule<W> pfnRule);

extern template long ApplyByStrips<int32_t>(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut,
                                            const ClOverlap& oOverlap, const TpStripLimits<int32_t>& oLimits,
                                            StripRule<int32_t> pfnRule);
extern template long ApplyByStrips<int64_t>(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut,
                                            const ClOverlap& oOverlap, const TpStripLimits<int64_t>& oLimits,
                                            StripRule<int64_t> pfnRule);
extern template long ApplyByStrips<double>(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut,
                                           const ClOverlap& oOverlap, const TpStripLimits<double>& oLimits,
                                           StripRule<double> pfnRule);

/// The number limited to the element type; unchanged for a type that is none of the eight.
double CutToElementType(double dValue, unsigned char nType);
