// The plain twins of all kernels: what each of them means, and what every level is compared with.
#pragma once

#include "MXKernels/BalanceRows.h"
#include "MXKernels/BoxRows.h"
#include "MXKernels/DifferenceRows.h"
#include "MXKernels/LayoutRows.h"
#include "MXKernels/MaskRows.h"
#include "MXKernels/PointRows.h"
#include "MXKernels/RankRows.h"
#include "MXKernels/RollRows.h"
#include "MXKernels/RunRows.h"
#include "MXKernels/SplineRows.h"
#include "MXKernels/TapRows.h"
#include "MXKernels/WarpRow.h"

/// The contracts are those of the functions of the same names in MXKernels.
namespace MXKernels::Reference {

void SubtractSaturated(const uint8_t* pLit, const uint8_t* pDark, uint8_t* pOut, size_t nCount) noexcept;
void AbsoluteDifferenceRow(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept;
void AndRow(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept;
void ClampRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nLower, uint8_t nUpper) noexcept;
void ThresholdRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nThreshold, uint8_t nBelow,
                  uint8_t nAbove) noexcept;
void EqualRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount, uint8_t nValue) noexcept;
void InvertedBlendRow(const uint8_t* pIn, const uint8_t* pMask, uint8_t* pOut, size_t nCount) noexcept;

uint64_t SquaredDifference(const uint8_t* pA, const uint8_t* pB, size_t nCount) noexcept;
void AddToSumsRow(const uint8_t* pRow, uint16_t* pSums, size_t nCount) noexcept;
void TakeFromSumsRow(const uint8_t* pRow, uint16_t* pSums, size_t nCount) noexcept;
void DeviationRow(const uint16_t* pIn, const uint16_t* pMean, uint8_t* pOut, size_t nCount,
                  uint16_t nLimit) noexcept;
void RemoveBackgroundRow(uint8_t* pPicture, uint8_t* pOldest, uint16_t* pSums, size_t nCount) noexcept;

void WeightedBlendRow(const uint8_t* pIn, const uint8_t* pWeight, uint8_t* pInOut, size_t nCount) noexcept;
void BelowRow(const uint8_t* pIn, const uint8_t* pLimit, uint8_t* pOut, size_t nCount) noexcept;

void AddToColumnSumsU8(const uint8_t* pRow, uint32_t* pSums, size_t nCount) noexcept;
void AddToColumnSumsU16(const uint16_t* pRow, uint32_t* pSums, size_t nCount) noexcept;
void TakeFromColumnSumsU8(const uint8_t* pRow, uint32_t* pSums, size_t nCount) noexcept;
void TakeFromColumnSumsU16(const uint16_t* pRow, uint32_t* pSums, size_t nCount) noexcept;
void MoveColumnSumsU8(const uint8_t* pEnter, const uint8_t* pLeave, uint32_t* pSums, size_t nCount) noexcept;
void MoveColumnSumsU16(const uint16_t* pEnter, const uint16_t* pLeave, uint32_t* pSums,
                       size_t nCount) noexcept;
void SlidingMeanRowU8(const uint32_t* pSums, size_t nCount, size_t nHalf, uint32_t nRows, uint32_t* pPrefix,
                      uint8_t* pOut) noexcept;
void SlidingMeanRowU16(const uint32_t* pSums, size_t nCount, size_t nHalf, uint32_t nRows, uint32_t* pPrefix,
                       uint16_t* pOut) noexcept;
void AboveMeanRow(const uint8_t* pIn, const uint32_t* pSums, size_t nCount, const WindowThreshold& oWindow,
                  uint32_t* pPrefix, uint8_t* pOut) noexcept;

void MinRows(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept;
void MaxRows(const uint8_t* pA, const uint8_t* pB, uint8_t* pOut, size_t nCount) noexcept;
void MinWindowRow(const uint8_t* pIn, size_t nCount, size_t nHalf, uint8_t* pWork, uint8_t* pOut) noexcept;
void MaxWindowRow(const uint8_t* pIn, size_t nCount, size_t nHalf, uint8_t* pWork, uint8_t* pOut) noexcept;

void WeightRowsU8(const uint8_t* pIn, const size_t* pOffsets, const int32_t* pTaps, size_t nTaps,
                  int32_t* pLine, size_t nCount) noexcept;
void WeightRowsI8(const int8_t* pIn, const size_t* pOffsets, const int32_t* pTaps, size_t nTaps,
                  int32_t* pLine, size_t nCount) noexcept;
void WeightLine(const int32_t* pLine, const int32_t* pTaps, size_t nTaps, int32_t* pSums,
                size_t nCount) noexcept;

void ZeroBitsRow(const uint8_t* pIn, uint64_t* pBits, size_t nCount) noexcept;

void ReverseRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount) noexcept;
void SplitPairsRow(const uint8_t* pIn, uint8_t* pEven, uint8_t* pOdd, size_t nPairs) noexcept;
void ScaleDownRow(const uint8_t* pUpper, const uint8_t* pLower, size_t nCells, uint8_t* pMean, uint8_t* pMax,
                  uint8_t* pMin) noexcept;
void ScaleUpRow(const uint8_t* pIn, uint8_t* pOut, size_t nCount) noexcept;

void AdjustBrightnessRow(const uint8_t* pIn, const uint8_t* pReference, uint8_t* pOut, size_t nCount,
                         uint8_t nValue, uint8_t nMinimum) noexcept;
void BalanceCellsRow(const BalanceCells& oCells, size_t nCells) noexcept;

void WarpRow(const WarpMapEntry* pMap, size_t nCount, const uint8_t* pSource, size_t nRowBytes,
             const int16_t (*pWeights)[4][4], uint8_t nBackground, uint8_t* pOut) noexcept;

void TextureClassRow(const uint8_t* pAbove, const uint8_t* pCentre, const uint8_t* pBelow, uint8_t* pOut,
                     size_t nCount, const uint8_t* pClasses) noexcept;
void AddSquaredDistanceRow(const uint8_t* pShare, uint8_t nReference, uint16_t* pDistance,
                           size_t nCount) noexcept;
void FingerRow(const uint16_t* pDistance, const uint8_t* pNear, const uint8_t* pFar, uint8_t* pMask,
               size_t nCount, uint16_t nDistanceLimit, int32_t nFog) noexcept;

void AddSplineBasisRow(const double* pX, size_t nCount, SplinePoint oPoint, double dWeight,
                       double* pSum) noexcept;
void AddSplineBasisPairRow(const double* pX, size_t nCount, SplinePoint oPoint, double dWeightA,
                           double dWeightB, double* pSumA, double* pSumB) noexcept;

}  // namespace MXKernels::Reference
