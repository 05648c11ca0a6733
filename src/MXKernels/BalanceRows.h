// Row functions that divide a frame by a reference: brightness and local white balance.
#pragma once

#include "MXKernels/Kernel.h"

namespace MXKernels {

/// (pIn, pReference, pOut, nCount, nValue, nMinimum): pOut[i] = pIn[i] * nValue / max(pReference[i],
/// nMinimum), truncated and limited to 255. nMinimum >= 1. pOut may equal either input.
extern const TpKernel<TwoRows<uint8_t, uint8_t, uint8_t, uint8_t>> AdjustBrightnessRow;

/// One row of 2 by 2 cells of a mosaic with the local means of its four phases.
struct BalanceCells {
  const uint8_t* m_apMean[4];  ///< means of the phases (0, 0), (1, 0), (0, 1), (1, 1), nCells each
  const uint8_t* m_pUpper;     ///< 2 * nCells samples: phases 0 and 1 in turn
  const uint8_t* m_pLower;     ///< 2 * nCells samples: phases 2 and 3 in turn
  uint8_t* m_pOutUpper;        ///< may equal m_pUpper
  uint8_t* m_pOutLower;        ///< may equal m_pLower
};

/// With all means and samples raised by 1, so that nothing is divided by 0: target is a quarter of
/// the sum of the four means, and each sample s of phase k becomes s * target / mean[k] - 1, limited
/// to 0 .. 255. Both divisions truncate.
extern const TpKernel<void(const BalanceCells& oCells, size_t nCells) noexcept> BalanceCellsRow;

}  // namespace MXKernels
