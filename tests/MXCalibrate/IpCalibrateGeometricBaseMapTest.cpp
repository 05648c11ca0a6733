// How a warp's map keeps its entries, and that it does not show in what it makes.
#include "MXCalibrate/IpCalibrateGeometricBaseMap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "MXCalibrate/InterpolationBicubicQuantized.h"
#include "MXKernels/WarpRow.h"
#include "MXTools/FpImage.h"

namespace {

using Entries = std::vector<ClIpCalibrateGeometricBaseMap::Entry>;

constexpr int cnSourceWidth = 90, cnSourceHeight = 83;
constexpr int32_t cnRowBytes = 92, cnLast = 79 * cnRowBytes + 86;

/// Sets each row of 15 entries, and expects it back and the samples of each part of it.
void ExpectKept(const std::vector<Entries>& aaRows) {
  const ClInterpolationBicubicQuantized<1, 5, 600, 530, 1000> oTable;
  ClImage oSource;
  oSource.NewWithType(ClImage::eUint8, cnSourceWidth, cnSourceHeight, 1, 0, 0, true);
  std::mt19937 oRandom(5);
  std::generate_n(oSource.Data(), oSource.DataBytes(), [&] { return static_cast<uint8_t>(oRandom()); });
  ClIpCalibrateGeometricBaseMap oMap(static_cast<uint32_t>(aaRows.size()), 15, cnSourceHeight,
                                     oSource.RowBytes());
  for (const Entries& aRow : aaRows) oMap.SetRow(static_cast<uint32_t>(&aRow - aaRows.data()), aRow.data());
  for (uint32_t nRow = 0; nRow < aaRows.size(); ++nRow) {
    SCOPED_TRACE(nRow);
    const Entries& aRow = aaRows[nRow];
    Entries aKept(15);
    oMap.GetRow(nRow, aKept.data());
    EXPECT_TRUE(std::equal(aKept.begin(), aKept.end(), aRow.begin(), [](const auto& oA, const auto& oB) {
      return oA.m_nOffset == oB.m_nOffset && oA.m_nPhase == oB.m_nPhase;
    }));
    for (size_t nFirst = 0; nFirst < 15; ++nFirst) {
      for (size_t nCount = 0; nFirst + nCount <= 15; ++nCount) {
        std::vector<uint8_t> aExpected(16, 1), aOut(16, 1);
        MXKernels::WarpRow(aRow.data() + nFirst, nCount, oSource.Data(), cnRowBytes, oTable.Data(), 17,
                           aExpected.data());
        oMap.WarpRow(nRow, nFirst, nCount, oSource, oTable.Data(), 17, aOut.data());
        ASSERT_EQ(aOut, aExpected) << nCount << " from " << nFirst;
      }
    }
  }
}

}  // namespace

TEST(GeometricBaseMap, KeepsAllKindsOfRows) {
  std::mt19937 oRandom(6);
  const auto Row = [&](int32_t nBase, int32_t nColumns, int32_t nRows, unsigned int nNone) {
    Entries aRow(15);
    for (auto& oEntry : aRow) {
      const int32_t nColumn = static_cast<int32_t>(oRandom()) % (nColumns + 1);
      const int32_t nRow = static_cast<int32_t>(oRandom()) % (nRows + 1);
      const int32_t nOffset = nBase + std::abs(nRow) * cnRowBytes + std::abs(nColumn);
      const bool bNone = nNone != 0 && oRandom() % nNone == 0;
      oEntry = bNone ? ClIpCalibrateGeometricBaseMap::Entry{-1, 0}
                     : ClIpCalibrateGeometricBaseMap::Entry{nOffset, static_cast<uint32_t>(oRandom() % 1024)};
    }
    return aRow;
  };
  const auto Alternating = [](int32_t nOffset) {
    Entries aRow(15, {40, 5});
    for (size_t n = 1; n < 15; n += 2) aRow[n].m_nOffset += nOffset;
    return aRow;
  };
  const auto WithOne = [](Entries aRow, ClIpCalibrateGeometricBaseMap::Entry oEntry) {
    aRow[9] = oEntry;
    return aRow;
  };
  Entries aSteps(15);
  const Entries aNone(15, {-1, 0});
  // Columns one and two apart, from row to row in the middle of groups.
  for (int32_t n = 0; n < 15; ++n)
    aSteps[static_cast<size_t>(n)] = {400 + n * 6 / 5 + n / 6 * cnRowBytes, 1023};
  ExpectKept({aSteps, Row(0, 4, 0, 0), Row(3, 5, 0, 0), Row(cnRowBytes - 3, 4, 0, 0), Row(40, 7, 31, 4),
              Alternating(8), Alternating(31 * cnRowBytes), Alternating(32 * cnRowBytes), Row(7, 4, 0, 3),
              aNone, WithOne(aNone, {-5, 0}), WithOne(aNone, {-1, 7}),
              WithOne(Row(500, 4, 0, 0), {cnLast, 4}), Entries(15, {cnLast, 1023}), Row(cnLast - 4, 4, 0, 0),
              Row(cnLast - 5, 1, 0, 5)});
}
