// Row functions of the local white balance: windows over the phases of a mosaic, which take turns along a
// row.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// Sums along a row, each over samples of one phase: pSums[i] = sum of pIn[i + 2 * k] for k in
/// [-nHalf, nHalf], as far as the row goes. No overlap.
///
/// Domain  nCount even; nHalf up to 127, so that a sum fits 16 bits. pWork has room for nCount + 4 * nHalf +
///         2 numbers.
extern const TpKernel<void(const uint8_t* pIn, size_t nCount, size_t nHalf, uint16_t* pWork,
                           uint16_t* pSums) noexcept>
    PhaseSumsRow;

/// Two rows of a mosaic with the windows around their samples.
struct BalancePair {
  const uint16_t* m_apEnter[2];  ///< what PhaseSumsRow made of the rows that enter the windows
  const uint16_t* m_apLeave[2];  ///< and of those that leave them
  uint32_t* m_apSums[2];         ///< sums of the windows, which move on
  const float* m_pPerArea;       ///< for each sample 1 / samples of its window, rounded to float
  const uint8_t* m_apIn[2];
  uint8_t* m_apOut[2];
};

/// Moves the windows on, sums[i] += enter[i] - leave[i], and balances both rows of nCount samples. mean[i] is
/// the truncated sums[i] / area[i] raised by 1, target a quarter of the sum of the four means of a 2 by 2
/// cell, and out[i] = (in[i] + 1) * target / mean[i] - 1, limited to 0 .. 255. All divisions truncate. No
/// overlap.
///
/// Domain  nCount even; areas up to cnMaxBalanceArea, for which a float gives the exact means.
extern const TpKernel<void(const BalancePair& oPair, size_t nCount) noexcept> BalancePairRow;
constexpr int cnMaxBalanceArea = 8192;

}  // namespace MXKernels
