// The plain twins of all kernels: what each of them means, and what every level is compared with.
#pragma once

#include "MXKernels/BalanceRows.h"
#include "MXKernels/BoxRows.h"
#include "MXKernels/ComposeRows.h"
#include "MXKernels/DifferenceRows.h"
#include "MXKernels/FirstMaskRows.h"
#include "MXKernels/LayoutRows.h"
#include "MXKernels/MaskRows.h"
#include "MXKernels/MosaicRows.h"
#include "MXKernels/PointRows.h"
#include "MXKernels/RankRows.h"
#include "MXKernels/RollRows.h"
#include "MXKernels/RunRows.h"
#include "MXKernels/SmoothRows.h"
#include "MXKernels/SplineRows.h"
#include "MXKernels/TapRows.h"
#include "MXKernels/TextureRows.h"
#include "MXKernels/WarpRow.h"

/// The contracts and the types are those of the kernels of the same names in MXKernels.
namespace MXKernels::Reference {

TwoRows<uint8_t> SubtractSaturated, AbsoluteDifferenceRow, AndRow;
decltype(MXKernels::ClampRow)::Row ClampRow;
decltype(MXKernels::ThresholdRow)::Row ThresholdRow;
decltype(MXKernels::EqualRow)::Row EqualRow;

decltype(MXKernels::SquaredDifference)::Row SquaredDifference;
decltype(MXKernels::DeviationRow)::Row DeviationRow;
decltype(MXKernels::RemoveBackgroundRow)::Row RemoveBackgroundRow;
template <typename T, typename TSum>
void AddToSumsRow(const T* pRow, TSum* pSums, size_t nCount) noexcept;
template <typename T, typename TSum>
void TakeFromSumsRow(const T* pRow, TSum* pSums, size_t nCount) noexcept;
template <typename T, typename TSum>
void MoveSumsRow(const T* pEnter, const T* pLeave, TSum* pSums, size_t nCount) noexcept;

template <typename TSum, typename T>
void SlidingMeanRow(const TSum* pSums, size_t nCount, size_t nHalf, uint32_t nRows, TSum* pPrefix,
                    T* pOut) noexcept;
template <typename TSum>
void AboveMeanRow(const uint8_t* pIn, const TSum* pSums, size_t nCount, const WindowThreshold& oWindow,
                  TSum* pPrefix, uint8_t* pOut) noexcept;

TwoRows<uint8_t> MinRows, MaxRows;
RankWindow MinWindowRow, MaxWindowRow;

template <typename T>
void WeightRows(const T* pIn, const size_t* pOffsets, const int32_t* pTaps, size_t nTaps, int32_t* pLine,
                size_t nCount) noexcept;
decltype(MXKernels::WeightLine)::Row WeightLine;

decltype(MXKernels::BelowBitsRow)::Row BelowBitsRow;
decltype(MXKernels::BytesOfBitsRow)::Row BytesOfBitsRow;

OneRow<uint8_t> ReverseRow, ScaleUpRow;
decltype(MXKernels::ScaleDownRow)::Row ScaleDownRow;

decltype(MXKernels::AdjustBrightnessRow)::Row AdjustBrightnessRow;
decltype(MXKernels::PhaseSumsRow)::Row PhaseSumsRow;
decltype(MXKernels::BalancePairRow)::Row BalancePairRow;
decltype(MXKernels::WarpRow)::Row WarpRow;
decltype(MXKernels::WarpGroupsRow)::Row WarpGroupsRow;

decltype(MXKernels::TextureClassRow)::Row TextureClassRow;

decltype(MXKernels::MoveClassCountsRow)::Row MoveClassCountsRow;
decltype(MXKernels::TextureDistanceRow)::Row TextureDistanceRow;
decltype(MXKernels::BelowLimitRow)::Row BelowLimitRow;
decltype(MXKernels::PrefixSumsRow)::Row PrefixSumsRow;
decltype(MXKernels::FogRow)::Row FogRow;
decltype(MXKernels::MoveZerosRow)::Row MoveZerosRow;
decltype(MXKernels::FewZerosRow)::Row FewZerosRow;

RankOf7Rows MinOf7RowsRow, MaxOf7RowsRow;
decltype(MXKernels::MoveLimitedSumsRow)::Row MoveLimitedSumsRow;
decltype(MXKernels::MeanOf7Row)::Row MeanOf7Row;
decltype(MXKernels::FadeRow)::Row FadeRow;

decltype(MXKernels::SoftRow)::Row SoftRow, DoubledSoftRow;
TwoRows<uint8_t> DoubleZerosRow;
decltype(MXKernels::FlattenRow)::Row FlattenRow;

TwoRows<uint8_t> WeightedBlendRow;
decltype(MXKernels::SquaredDifferenceWhere)::Row SquaredDifferenceWhere;

decltype(MXKernels::AddSplineBasisRow)::Row AddSplineBasisRow;
decltype(MXKernels::AddSplineBasisPairRow)::Row AddSplineBasisPairRow;

}  // namespace MXKernels::Reference
