// The warp: its maps, its use of them, its stored form.
#include <gmock/gmock.h>

#include <cmath>
#include <random>

#include "MXCalibrate/InterpolationBicubicQuantized.h"
#include "MXCalibrate/TpIpCalibrateGeometric.h"
#include "MXCalibrate/TpIpCalibrateGeometricSubsample.h"
#include "MXMath/ThinPlateSplinesBOOST.h"
#include "MXTools/FpImage.h"
#include "StoredData.h"

namespace {

using testing::EndsWith;
using Table = ClInterpolationBicubicQuantized<1, 5, 600, 530, 1000>;

/// A warp that counts how often its map is built and shows it.
template <typename TWarp>
class TpWatched : public TWarp {
 public:
  using Entry = MXKernels::WarpMapEntry;
  /// Empty without a map.
  std::vector<Entry> Map() const {
    if (this->m_pMap == nullptr) return {};
    const size_t nRow = this->m_pMap->RowEntries();
    std::vector<Entry> aMap(this->m_nTargetHeight * nRow);
    for (uint32_t n = 0; n < this->m_nTargetHeight; ++n) this->m_pMap->GetRow(n, aMap.data() + n * nRow);
    return aMap;
  }
  int m_nBuilt = 0;

 protected:
  void InitiateParams(const ClCalibrateGeometricData::Points& aTarget,
                      const ClCalibrateGeometricData::Points* pActual, uint32_t nPlanes) override {
    ++m_nBuilt;
    TWarp::InitiateParams(aTarget, pActual, nPlanes);
  }
};
using ClDense = TpWatched<TpIpCalibrateGeometric<Table>>;
using ClCoarse = TpWatched<TpIpCalibrateGeometricSubsample<Table>>;

/// A 61 by 52 target seen in a 90 by 83 source (rows of 92 bytes): enlarged, turned a little, and bent.
void FillData(ClCalibrateGeometricData& oData, uint32_t nPlanes = 1) {
  oData.m_nSourceWidth = 90;
  oData.m_nSourceHeight = 83;
  oData.m_nTargetWidth = 61;
  oData.m_nTargetHeight = 52;
  oData.m_nTargetPelsX = 19685;
  oData.m_nTargetPelsY = 9842;
  oData.m_nPlanes = nPlanes;
  oData.m_nBackground = 99;
  for (int n = 0; n < 16; ++n) {
    const double dX = 5 + 17 * (n / 4), dY = 5 + 14 * (n % 4);
    oData.m_aTarget.Add(ClVector(dX, dY));
    for (uint32_t nPlane = 0; nPlane < nPlanes; ++nPlane) {
      oData.m_aActual[nPlane].Add(ClVector(1.45 * dX + 0.08 * dY - 3 + 0.002 * dX * dY + nPlane,
                                           1.52 * dY - 0.05 * dX + 1 + 0.003 * dX * dX));
    }
  }
}

void FillRandom(ClImage& oImage, int nWidth, int nHeight, unsigned int nSeed = 1) {
  oImage.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 0, 0, true);
  std::mt19937 oRandom(nSeed);
  for (size_t n = 0; n < oImage.DataBytes(); ++n) oImage.Data()[n] = static_cast<unsigned char>(oRandom());
}

/// One output sample by the formula.
int SlowSample(const MXKernels::WarpMapEntry& oEntry, const ClImage& oIn, const Table& oTable,
               int nBackground) {
  if (oEntry.m_nOffset < 0) return nBackground;
  int nSum = 1023;
  for (size_t r = 0; r < 4; ++r) {
    for (size_t k = 0; k < 4; ++k) {
      nSum += oTable[oEntry.m_nPhase][r][k] *
              oIn.Data()[static_cast<size_t>(oEntry.m_nOffset) + r * oIn.RowBytes() + k];
    }
  }
  return std::min(255, std::max(0, nSum >> 10));
}

class Warp : public testing::Test {
 protected:
  Warp() {
    FillData(m_oData);
    FillRandom(m_oIn, 90, 83);
    Connect(m_oDense);
    Connect(m_oCoarse);
  }
  void Connect(ClIpCalibrateBase& oWarp) {
    oWarp.m_pData = &m_oData;
    oWarp.m_pInImage = &m_oIn;
    oWarp.m_pOutImage = &m_oOut;
  }

  ClCalibrateGeometricData m_oData;
  ClImage m_oIn, m_oOut;
  ClDense m_oDense;
  ClCoarse m_oCoarse;
  const Table m_oTable;
};

TEST_F(Warp, EachPixelIsTheFormulasAtItsPlaceBySplineOrBackground) {
  ASSERT_EQ(m_oDense.Apply(), 0);
  const auto aMap = m_oDense.Map();
  ASSERT_TRUE(m_oOut.HasSize(61, 52));
  EXPECT_EQ(m_oOut.PelsX(), 19685);
  EXPECT_EQ(m_oOut.PelsY(), 9842);
  TpThinPlateSplines<double> oSpline;
  oSpline.Setup(16, m_oData.m_aTarget.Data(), m_oData.m_aActual[0].Data());
  int nWithSource = 0;
  for (int nY = 0; nY < 52; ++nY) {
    for (int nX = 0; nX < 61; ++nX) {
      double dX, dY;
      oSpline.Transform(nX, nY, &dX, &dY);
      const auto& oEntry = aMap[static_cast<size_t>(nY * 61 + nX)];
      ASSERT_EQ(m_oOut.Row<uint8_t>(nY)[nX], SlowSample(oEntry, m_oIn, m_oTable, 99));
      if (!(dX >= 1 && dY >= 1 && dX <= 87 && dY <= 80)) {
        ASSERT_EQ(oEntry.m_nOffset, -1);
        continue;
      }
      ++nWithSource;
      const int nLeft = static_cast<int>(dX), nTop = static_cast<int>(dY);
      ASSERT_EQ(oEntry.m_nOffset, (nTop - 1) * 92 + nLeft - 1);
      ASSERT_EQ(oEntry.m_nPhase,
                static_cast<unsigned int>(std::floor((dX - nLeft) * 32) + 32 * std::floor((dY - nTop) * 32)));
    }
  }
  EXPECT_GT(nWithSource, 2000);
  EXPECT_LT(nWithSource, 61 * 52);
}

TEST_F(Warp, TheCoarseMapMeetsTheDenseOneAtItsGridAndNearlyBetween) {
  m_oDense.Apply();
  m_oCoarse.Apply();
  const auto aDense = m_oDense.Map(), aCoarse = m_oCoarse.Map();
  const auto Steps = [](const auto& o) {
    return ClVector(o.m_nOffset % 92 * 32 + static_cast<int>(o.m_nPhase % 32),
                    o.m_nOffset / 92 * 32 + static_cast<int>(o.m_nPhase / 32));
  };
  for (int nY = 0; nY < 52; ++nY) {
    for (int nX = 0; nX < 61; ++nX) {
      const auto& oDense = aDense[static_cast<size_t>(nY * 61 + nX)];
      const auto& oCoarse = aCoarse[static_cast<size_t>(nY * 61 + nX)];
      if (nX % 8 == 0 && nY % 8 == 0) {
        ASSERT_EQ(oCoarse.m_nOffset, oDense.m_nOffset);
        ASSERT_EQ(oCoarse.m_nPhase, oDense.m_nPhase);
      }
      if (oDense.m_nOffset < 0 || oCoarse.m_nOffset < 0) continue;
      const ClVector vOff = Steps(oCoarse) - Steps(oDense);
      ASSERT_LE(std::max(std::fabs(vOff.x), std::fabs(vOff.y)), 3);
    }
  }
}

TEST_F(Warp, ARegionIsThatPartOfTheWhole) {
  ClImage oWhole;
  m_oDense.m_pOutImage = &oWhole;
  m_oDense.Apply();
  m_oDense.m_pOutImage = &m_oOut;
  m_oDense.m_nRoiX = 20;
  m_oDense.m_nRoiY = 7;
  m_oDense.m_nRoiWidth = 41;
  m_oDense.m_nRoiHeight = 30;
  m_oDense.Apply();
  ASSERT_TRUE(m_oOut.HasSize(41, 30));
  for (int nY = 0; nY < 30; ++nY)
    EXPECT_EQ(std::memcmp(m_oOut.Row<uint8_t>(nY), oWhole.Row<uint8_t>(nY + 7) + 20, 41), 0) << nY;
}

TEST_F(Warp, EachPlaneOfActualPointsGivesAPlaneOfItsOwn) {
  ClCalibrateGeometricData oData;
  FillData(oData, 3);
  for (ClIpCalibrateGeometricBase* pWarp :
       std::initializer_list<ClIpCalibrateGeometricBase*>{&m_oDense, &m_oCoarse}) {
    pWarp->m_pData = &oData;
    pWarp->Apply();
    ASSERT_EQ(m_oOut.Planes(), 3);
    ClImage aPlanes[3];
    for (int n : {0, 2}) m_oOut.GetPlane(n, aPlanes[n]);
    pWarp->Reset();
    pWarp->m_pData = &m_oData;
    pWarp->Apply();
    for (int nY = 0; nY < 52; ++nY)
      ASSERT_EQ(std::memcmp(aPlanes[0].Row<uint8_t>(nY), m_oOut.Row<uint8_t>(nY), 61), 0);
    EXPECT_NE(std::memcmp(aPlanes[2].Row<uint8_t>(20), m_oOut.Row<uint8_t>(20), 61), 0);
  }
}

TEST_F(Warp, TheMapIsBuiltOnceUntilAReset) {
  m_oDense.m_pInImage = nullptr;
  m_oDense.Apply();
  EXPECT_TRUE(m_oOut.Data() == nullptr) << "without an input only the map is built";
  m_oDense.m_pInImage = &m_oIn;
  m_oDense.Apply();
  EXPECT_EQ(m_oDense.m_nBuilt, 1);
  m_oDense.Reset();
  m_oDense.Apply();
  EXPECT_EQ(m_oDense.m_nBuilt, 2);
}

TEST_F(Warp, RefusesWhatItsMapIsNotMadeFor) {
  for (const auto& [nWidth, nHeight, eType, bAligned] : {std::tuple{91, 83, ClImage::eUint8, true},
                                                         {90, 82, ClImage::eUint8, true},
                                                         {90, 83, ClImage::eInt8, true},
                                                         {90, 83, ClImage::eUint8, false}}) {
    m_oIn.NewWithType(eType, nWidth, nHeight, 1, 0, 0, bAligned);
    EXPECT_EQ(Raised([&] { m_oDense.Apply(); }).first, -44);
  }
  EXPECT_TRUE(m_oOut.Data() == nullptr);
  m_oDense.m_pOutImage = &m_oIn;
  EXPECT_EQ(Raised([&] { m_oDense.Apply(); }).first, -35);
}

TEST_F(Warp, WithoutDataForAMapThereIsNoneUntilAReset) {
  const auto Renewed = [this] {
    m_oDense.Reset();
    return NumberOf([this] { m_oDense.Apply(); });
  };
  ClMemStream oStream;
  EXPECT_EQ(NumberOf([&] { m_oDense.Store(oStream); }), -2);
  m_oData.m_aActual[0].SetEntries(15);
  EXPECT_EQ(Renewed(), -44) << "fewer actual than target points";
  EXPECT_THAT(Raised([&] { m_oDense.Apply(); }), testing::Pair(-2, EndsWith("Calibrate is not initialized")));
  EXPECT_EQ(m_oDense.m_nBuilt, 1);
  m_oData.m_aActual[0].SetEntries(16);
  m_oData.m_nSourceWidth = m_oData.m_nSourceHeight = 70000;
  EXPECT_EQ(Renewed(), -44) << "offsets beyond 32 bits";
  m_oData.m_nSourceWidth = m_oData.m_nSourceHeight = 3;
  FillRandom(m_oIn, 3, 3);
  EXPECT_EQ(Renewed(), 0);
  for (const auto& oEntry : m_oDense.Map()) ASSERT_EQ(oEntry.m_nOffset, -1) << "no room for a window";
  for (unsigned int n = 0; n < 16; ++n) m_oData.m_aTarget[n] = ClVector(n, n);
  EXPECT_EQ(Renewed(), -600) << "points on one line";
  m_oDense.m_pData = nullptr;
  EXPECT_EQ(Renewed(), -37);
}

TEST_F(Warp, RefusesRegionsOutsideTheTargetAndHalfSetOnes) {
  const uint32_t aRegions[][4] = {
      {0, 0, 0, 10}, {0, 0, 10, 0}, {52, 0, 10, 10}, {0, 43, 10, 10}, {0xFFFFFFFF, 0, 10, 10}};
  for (const auto& a : aRegions) {
    m_oDense.m_nRoiX = a[0];
    m_oDense.m_nRoiY = a[1];
    m_oDense.m_nRoiWidth = a[2];
    m_oDense.m_nRoiHeight = a[3];
    const bool bWhole = a[2] != 0 && a[3] != 0;
    EXPECT_THAT(Raised([&] { m_oDense.Apply(); }),
                testing::Pair(-44, EndsWith(bWhole ? "Target subimage not within target image"
                                                   : "Invalid ROI parameters")));
  }
}

/// A stored warp of 5 by 4 pixels from a source of 10 by 9 (rows of 12 bytes) with a random map.
class StoredWarp : public testing::Test {
 protected:
  StoredWarp() {
    for (const char* szTag : {"PRE", "GEO", "001"}) AppendText(m_aBytes, szTag);
    for (const uint32_t nField : {10u, 9u, 5u, 4u, 19685u, 19684u, 1u}) AppendBig(m_aBytes, nField);
    m_aBytes.push_back(33);
    for (const uint32_t nField : {0x4B494600u, 1u}) AppendBig(m_aBytes, nField);
    m_aBytes.push_back(1);
    for (const uint32_t nField : {5u, 4u, 8u, 19685u, 19684u, 0u}) AppendBig(m_aBytes, nField);
    for (const uint32_t nField : {0u, 0u, 0x406FE000u, 0u, 0u}) AppendBig(m_aBytes, nField);
    std::mt19937 oRandom(11);
    for (int n = 0; n < 20; ++n) {
      const bool bSource = n % 5 != 3;
      m_aMap.push_back({bSource ? static_cast<int32_t>(oRandom() % 6 * 12 + oRandom() % 7) : -1,
                        bSource ? static_cast<uint32_t>(oRandom() % 1024) : 0});
      AppendLittle(m_aBytes, static_cast<uint32_t>(m_aMap.back().m_nOffset), 4);
      AppendLittle(m_aBytes, m_aMap.back().m_nPhase, 4);
    }
    AppendBig(m_aBytes, 0x4B494600u);
  }
  /// A failing load leaves no map.
  std::pair<long, std::string> Load(const Bytes& aBytes) {
    const auto oRaised = Raised([&] {
      ClMemStream oStream(aBytes.data(), static_cast<unsigned int>(aBytes.size()));
      m_oWarp.Load(oStream);
    });
    EXPECT_EQ(!m_oWarp.Map().empty(), oRaised.first == 0);
    return oRaised;
  }

  ClDense m_oWarp;
  Bytes m_aBytes;
  std::vector<MXKernels::WarpMapEntry> m_aMap;
};

TEST_F(StoredWarp, LoadsIsUsedAndIsStoredByteForByte) {
  ASSERT_EQ(Load(m_aBytes).first, 0);
  ClImage oIn, oOut;
  FillRandom(oIn, 10, 9);
  m_oWarp.m_pInImage = &oIn;
  m_oWarp.m_pOutImage = &oOut;
  ASSERT_EQ(m_oWarp.Apply(), 0);
  EXPECT_EQ(m_oWarp.m_nBuilt, 0);
  const Table oTable;
  for (int n = 0; n < 20; ++n) {
    EXPECT_EQ(oOut.Row<uint8_t>(n / 5)[n % 5], SlowSample(m_aMap[static_cast<size_t>(n)], oIn, oTable, 33))
        << n;
  }
  EXPECT_EQ(Stored(m_oWarp), m_aBytes);
}

TEST_F(StoredWarp, EveryCutAndEveryWrongFieldIsFoundAndNamed) {
  for (size_t nLength = 0; nLength < m_aBytes.size(); ++nLength)
    EXPECT_EQ(Load(Cut(m_aBytes, nLength)).first, -201) << nLength;
  const std::tuple<size_t, long, const char*> aFields[] = {
      {4, -40, ""},
      {10, -40, ""},
      {41, -40, "KIF Magic is missing"},
      {48, -40, "Wrong KIF version"},
      {49, -39, "nDataType is not the expected."},
      {53, -39, "m_nTargetWidth is not the expected."},
      {61, -39, "m_nPlanes is not the expected."},
      {65, -39, "m_nTargetPelsX is not the expected."},
      {73, -39, "eContent is not the expected."},
      {m_aBytes.size() - 2, -40, "KIF end Magic is missing"}};
  for (const auto& [nOffset, nNumber, szText] : aFields) {
    Bytes aBad = m_aBytes;
    aBad[nOffset] ^= 2;
    EXPECT_THAT(Load(aBad), testing::Pair(nNumber, EndsWith(szText))) << nOffset;
  }
}

TEST_F(StoredWarp, AMapThatPointsOutsideItsSourceOrHasOneOutOfReachIsRefused) {
  const size_t cnMap = m_aBytes.size() - 4 - 20 * 8;
  // The map has no source anywhere: only the test of the offsets' reach can refuse a source that is too
  // large.
  for (size_t n = 0; n < 20 * 8; ++n) m_aBytes[cnMap + n] = n % 8 < 4 ? 0xFF : 0;
  EXPECT_EQ(Load(m_aBytes).first, 0);
  Bytes aBad = m_aBytes;
  for (size_t n = 12; n < 20; ++n) aBad[n] = 0xFF;
  EXPECT_EQ(Load(aBad).first, -39);
  // The last position of a window, the one after it, and the phase after the last.
  for (const auto& [nOffset, nPhase, nNumber] :
       {std::tuple<int, uint32_t, long>{5 * 12 + 6, 1023, 0}, {5 * 12 + 7, 0, -39}, {0, 1024, -39}}) {
    Bytes aEntry;
    AppendLittle(aEntry, static_cast<uint32_t>(nOffset), 4);
    AppendLittle(aEntry, nPhase, 4);
    std::copy(aEntry.begin(), aEntry.end(), m_aBytes.begin() + static_cast<long>(cnMap));
    EXPECT_EQ(Load(m_aBytes).first, nNumber) << nOffset;
  }
}

}  // namespace
