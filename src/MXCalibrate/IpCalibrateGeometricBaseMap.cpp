// Groups of a map.
#include "MXCalibrate/IpCalibrateGeometricBaseMap.h"

#include <algorithm>
#include <new>

#include "MXTools/Exception.h"
#include "MXTools/FpImage.h"

namespace {

constexpr size_t cnGroup = 4;
constexpr uint32_t cnPhases = 1024;
/// What a group can tell apart: the steps of its windows, and of those side by side.
constexpr size_t cnStepRows = 32;
constexpr size_t cnStepColumns = 8;
constexpr int32_t cnSideBySide = 4;

template <typename T>
std::unique_ptr<T[]> NewItems(uint64_t nCount) {
  if (nCount > PTRDIFF_MAX / sizeof(T)) KlvRaiseBadAlloc();
  std::unique_ptr<T[]> pItems(new (std::nothrow) T[static_cast<size_t>(nCount)]);
  if (pItems == nullptr) KlvRaiseBadAlloc();
  return pItems;
}

}  // namespace

ClIpCalibrateGeometricBaseMap::ClIpCalibrateGeometricBaseMap(uint32_t nRows, size_t nRowEntries,
                                                             uint32_t nSourceHeight, size_t nSourceRowBytes)
    : m_nRowEntries(nRowEntries),
      m_nRowGroups(nRowEntries / cnGroup + (nRowEntries % cnGroup != 0)),
      m_nSourceBytes(uint64_t{nSourceHeight} * nSourceRowBytes),
      m_nSourceRowBytes(nSourceRowBytes),
      m_pGroups(NewItems<Group>(uint64_t{nRows} * m_nRowGroups)),
      m_pWholeRows(NewItems<WholeRow>(nRowEntries == 0 ? 0 : nRows)),
      m_pSourceRows(NewItems<int32_t>(nRowEntries == 0 ? 0 : nRows)) {}

void ClIpCalibrateGeometricBaseMap::SetRow(uint32_t nRow, const Entry* pEntries) {
  if (m_nRowEntries == 0) return;
  Group* pGroups = GroupsOf(nRow);
  m_pWholeRows[nRow].reset();
  const auto Before = [](const Entry& oA, const Entry& oB) { return oA.m_nOffset < oB.m_nOffset; };
  const int32_t nLast = std::max_element(pEntries, pEntries + m_nRowEntries, Before)->m_nOffset;
  m_pSourceRows[nRow] =
      nLast < 0 ? 0 : static_cast<int32_t>((static_cast<size_t>(nLast) + 3) / m_nSourceRowBytes) + 4;
  for (size_t i = 0; i < m_nRowEntries; i += cnGroup) {
    if (SetGroup(pEntries + i, std::min(cnGroup, m_nRowEntries - i), pGroups[i / cnGroup])) continue;
    m_pWholeRows[nRow] = NewItems<Entry>(m_nRowEntries);
    std::copy_n(pEntries, m_nRowEntries, m_pWholeRows[nRow].get());
    return;
  }
}

bool ClIpCalibrateGeometricBaseMap::SetGroup(const Entry* pEntries, size_t nCount, Group& oGroup) const {
  const auto Before = [](const Entry& oA, const Entry& oB) { return oA.m_nOffset < oB.m_nOffset; };
  const auto [pFirst, pLast] = std::minmax_element(pEntries, pEntries + nCount, Before);
  const int32_t nFirst = pFirst->m_nOffset;
  const bool bInReach =
      nFirst >= 0 &&
      static_cast<uint32_t>(nFirst) + 3 * uint64_t{m_nSourceRowBytes} + cnStepColumns <= m_nSourceBytes;
  if (nCount < cnGroup || !bInReach || pLast->m_nOffset - nFirst > cnSideBySide) {
    return SetLooseGroup(pEntries, nCount, oGroup);
  }
  oGroup.m_nBase = static_cast<uint32_t>(nFirst);
  for (size_t k = 0; k < cnGroup; ++k) {
    if (pEntries[k].m_nPhase >= cnPhases) return false;
    oGroup.m_aWeights[k] = static_cast<uint16_t>(pEntries[k].m_nPhase * 32);
    oGroup.m_aSteps[k] = static_cast<uint8_t>((pEntries[k].m_nOffset - nFirst) * 32);
  }
  return true;
}

bool ClIpCalibrateGeometricBaseMap::SetLooseGroup(const Entry* pEntries, size_t nCount, Group& oGroup) const {
  const auto RowOf = [this](const Entry& o) { return static_cast<size_t>(o.m_nOffset) / m_nSourceRowBytes; };
  const auto ColumnOf = [this](const Entry& o) {
    return static_cast<size_t>(o.m_nOffset) % m_nSourceRowBytes;
  };
  size_t nTop = SIZE_MAX, nLeft = SIZE_MAX;
  for (size_t k = 0; k < nCount; ++k) {
    if (pEntries[k].m_nOffset < 0) continue;
    nTop = std::min(nTop, RowOf(pEntries[k]));
    nLeft = std::min(nLeft, ColumnOf(pEntries[k]));
  }
  oGroup = {MXKernels::cnLooseGroup, {}, {}};
  std::fill_n(oGroup.m_aWeights, cnGroup, MXKernels::cnNoWeights);
  for (size_t k = 0; k < nCount; ++k) {
    const Entry& oEntry = pEntries[k];
    if (oEntry.m_nOffset == -1 && oEntry.m_nPhase == 0) continue;
    if (oEntry.m_nOffset < 0 || oEntry.m_nPhase >= cnPhases) return false;
    const size_t nRow = RowOf(oEntry) - nTop, nColumn = ColumnOf(oEntry) - nLeft;
    if (nRow >= cnStepRows || nColumn >= cnStepColumns) return false;
    oGroup.m_nBase = MXKernels::cnLooseGroup | static_cast<uint32_t>(nTop * m_nSourceRowBytes + nLeft);
    oGroup.m_aWeights[k] = static_cast<uint16_t>(oEntry.m_nPhase * 32);
    oGroup.m_aSteps[k] = static_cast<uint8_t>(nColumn * 32 + nRow);
  }
  return true;
}

void ClIpCalibrateGeometricBaseMap::GetRow(uint32_t nRow, Entry* pEntries) const {
  const Entry* pWhole = m_pWholeRows[nRow].get();
  for (size_t i = 0; i < m_nRowEntries; ++i) {
    pEntries[i] = pWhole != nullptr
                      ? pWhole[i]
                      : MXKernels::EntryOf(GroupsOf(nRow)[i / cnGroup], i % cnGroup, m_nSourceRowBytes);
  }
}

void ClIpCalibrateGeometricBaseMap::WarpRow(uint32_t nRow, size_t nFirst, size_t nCount,
                                            const ClImage& oSource, Weights pWeights, uint8_t nBackground,
                                            uint8_t* pOut) const {
  if (m_pWholeRows[nRow] != nullptr) {
    return MXKernels::WarpRow(m_pWholeRows[nRow].get() + nFirst, nCount, oSource.Data(), m_nSourceRowBytes,
                              pWeights, nBackground, pOut);
  }
  const Group* pGroups = GroupsOf(nRow) + nFirst / cnGroup;
  const auto Warp = [&](size_t nSamples, uint8_t* pTo) {
    MXKernels::WarpGroupsRow(pGroups, nSamples, oSource.Data(), m_nSourceRowBytes, pWeights, nBackground,
                             pTo);
  };
  if (const size_t nSkipped = nFirst % cnGroup; nSkipped != 0) {
    uint8_t aGroup[cnGroup];
    const size_t nHead = std::min(cnGroup - nSkipped, nCount);
    Warp(nSkipped + nHead, aGroup);
    pOut = std::copy_n(aGroup + nSkipped, nHead, pOut);
    nCount -= nHead;
    ++pGroups;
  }
  Warp(nCount, pOut);
}
