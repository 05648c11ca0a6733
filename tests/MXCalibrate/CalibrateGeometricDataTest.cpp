// Geometric records: every layout, every byte flipped, every cut.
#include <gmock/gmock.h>

#include <tuple>

#include "MXCalibrate/CalibrateGeometricData.h"
#include "StoredData.h"

namespace {

using testing::AnyOf;

/// A record that is short enough to look at: 2 points.
ClGeometricRecord SmallRecord(const char* szMagic = "CAL", const char* szType = "GEO",
                              const char* szVersion = "006") {
  ClGeometricRecord oRecord;
  oRecord.szMagic = szMagic;
  oRecord.szType = szType;
  oRecord.szVersion = szVersion;
  oRecord.aTarget = {{1, 2}, {3, 4}};
  oRecord.aActual = {{10.5, 20.25}, {30, 40}};
  return oRecord;
}

TEST(GeometricData, ReadsEachLayoutOfItsHistory) {
  const std::tuple<const char*, const char*, const char*, int> aRecords[] = {
      {"CAL", "GEO", "000", 0}, {"CAL", "GEO", "001", 1}, {"Cal", "Fut", "002", 0},
      {"CAL", "GEO", "002", 2}, {"Cal", "Fut", "003", 3}, {"CAL", "GEO", "004", 4},
      {"CAL", "GEO", "005", 5}, {"CAL", "GEO", "006", 6}, {"CAL", "GEO", "007", 6}};
  for (const auto& [szMagic, szType, szVersion, nLayout] : aRecords) {
    SCOPED_TRACE(std::string(szType) + szVersion);
    ClGeometricRecord oRecord = SmallRecord(szMagic, szType, szVersion);
    oRecord.nPlanes = nLayout >= 3 ? 2 : 1;
    oRecord.nBackground = 9;
    ClCalibrateGeometricData oData;
    oData.m_nBackground = 77;
    ASSERT_EQ(Read(oData, GeometricBlock(oRecord, nLayout)), 0);
    const bool bSourcePels = nLayout >= 5, bPlanes = nLayout >= 3;
    EXPECT_THAT((std::vector<uint32_t>{oData.m_nSourceWidth, oData.m_nSourcePelsX, oData.m_nSourcePelsY,
                                       oData.m_nTargetHeight, oData.m_nTargetPelsY, oData.m_nPlanes,
                                       oData.m_nBackground}),
                testing::ElementsAre(3840, bSourcePels ? 41417 : 0, bSourcePels ? 30236 : 0, 1600,
                                     nLayout >= 2 ? 19684 : 19685, bPlanes ? 2 : 1, nLayout >= 4 ? 9 : 77));
    ASSERT_EQ(oData.m_aTarget.Entries(), 2u);
    EXPECT_EQ(oData.m_aTarget[1].x, 3);
    ASSERT_EQ(oData.m_aActual[oData.m_nPlanes - 1].Entries(), 2u);
    EXPECT_EQ(oData.m_aActual[oData.m_nPlanes - 1][0].y, 20.25);
  }
}

TEST(GeometricData, RefusesForeignTagsAndAFourthPlaneInEveryVersion) {
  const std::tuple<const char*, const char*, const char*, int, long> aRecords[] = {
      {"KAL", "GEO", "006", 6, -40}, {"CAL", "GEX", "006", 6, -40}, {"Cal", "Fut", "001", 6, -40},
      {"cal", "GEO", "006", 6, -40}, {"CAL", "GEO", "003", 3, -39}, {"CAL", "GEO", "004", 4, -39},
      {"CAL", "GEO", "005", 5, -39}, {"CAL", "GEO", "006", 6, -39}};
  for (const auto& [szMagic, szType, szVersion, nLayout, nNumber] : aRecords) {
    ClGeometricRecord oRecord = SmallRecord(szMagic, szType, szVersion);
    oRecord.nPlanes = 4;
    ClCalibrateGeometricData oData;
    EXPECT_EQ(Read(oData, GeometricBlock(oRecord, nLayout)), nNumber) << szMagic << szType << szVersion;
  }
}

TEST(GeometricData, EveryCutAndEveryFlippedByteIsFoundExceptWhereItMeansAnotherVersion) {
  const Bytes aGood = GeometricBlock(SmallRecord());
  for (size_t n = 0; n < aGood.size(); ++n) {
    ClCalibrateGeometricData oData;
    EXPECT_EQ(Read(oData, Cut(aGood, n)), -201) << n;
    Bytes aBad = aGood;
    aBad[n] ^= 1;
    const long nNumber = Read(oData, aBad);
    // Numbers of planes and of points, which may mean more than there is.
    const bool bCount = (n >= 44 && n < 48) || (n >= 49 && n < 53) || (n >= 69 && n < 73);
    if (n >= 8 && n < 12) {
      EXPECT_THAT(nNumber, AnyOf(0, -39, -201)) << n;
    } else {
      EXPECT_TRUE(nNumber == (n < 8 ? -40 : -39) || (bCount && nNumber == -201)) << n << ": " << nNumber;
    }
  }
}

TEST(GeometricData, ACountBeyondTheBlockAllocatesNothing) {
  for (const auto& [nAt, nValue] : {std::pair<size_t, unsigned char>{49, 0xFF}, {52, 6}}) {
    Bytes aBytes = GeometricBlock(SmallRecord());
    aBytes[nAt] = nValue;
    ClCalibrateGeometricData oData;
    EXPECT_EQ(Read(oData, aBytes), -201);
    EXPECT_EQ(oData.m_aTarget.Capacity(), 0u) << "eight bytes a point";
  }
}

TEST(GeometricData, WritesTheNewestVersionByteForByteAndRestoresTheStream) {
  const Bytes aBytes = GeometricBlock(SmallRecord());
  ClMemStream oStream(aBytes.data(), static_cast<unsigned int>(aBytes.size()));
  oStream.SetBigEndian(false);
  ClCalibrateGeometricData oData;
  oData.Read(oStream);
  EXPECT_FALSE(oStream.GetBigEndian4Read());
  EXPECT_FALSE(oStream.m_bFailureFlag);
  EXPECT_EQ(Written(oData), aBytes);

  ASSERT_EQ(Read(oData, GeometricBlock(SmallRecord("CAL", "GEO", "003"), 3)), 0);
  EXPECT_STREQ(oData.ReadVersion(), "003");
  ASSERT_EQ(Read(oData, Written(oData)), 0);
  EXPECT_STREQ(oData.ReadVersion(), "006");
}

TEST(GeometricData, ComparesHashesAndClearsWhatItHolds) {
  ClCalibrateGeometricData oLeft;
  ASSERT_EQ(Read(oLeft, GeometricBlock(SmallRecord())), 0);
  ClCalibrateGeometricData oRight;
  oRight = oLeft;
  oRight.m_aActual[0][1].x += 1e-8;
  EXPECT_TRUE(oLeft == oRight);
  oRight.m_aActual[0][1].x += 1e-6;
  EXPECT_FALSE(oLeft == oRight);
  oRight = oLeft;
  oRight.m_aTarget.SetEntries(1);
  EXPECT_FALSE(oLeft == oRight);
  ASSERT_EQ(Read(oRight, GeometricBlock(SmallRecord("CAL", "GEO", "005"), 5)), 0);
  EXPECT_FALSE(oLeft == oRight) << "read from another version";

  unsigned char aLeft[16], aRight[16];
  oLeft.GenerateHash(aLeft);
  oRight.GenerateHash(aRight);
  EXPECT_EQ(std::memcmp(aLeft, aRight, 16), 0) << "the version is not hashed";
  oRight.m_aTarget[0].x = 1.5;
  oRight.GenerateHash(aRight);
  EXPECT_NE(std::memcmp(aLeft, aRight, 16), 0);
  EXPECT_TRUE(oLeft.IsValid());
  oLeft.Clear();
  EXPECT_FALSE(oLeft.IsValid());
  EXPECT_STREQ(oLeft.ReadVersion(), "006") << "tags stay";
}

}  // namespace
