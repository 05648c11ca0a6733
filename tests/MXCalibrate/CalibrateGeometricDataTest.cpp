// Geometric records: every layout, every byte flipped, every cut.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CalibrationBlocks.h"
#include "MXCalibrate/CalibrateGeometricData.h"
#include "MXTools/Exception.h"
#include "MXTools/MemStream.h"
#include "Raised.h"

namespace {

using testing::AnyOf;

long Read(ClCalibrateGeometricData& oData, const Bytes& aBytes) {
  ClMemStream oStream(aBytes.data(), static_cast<unsigned int>(aBytes.size()));
  return NumberOf([&] { oData.Read(oStream); });
}

Bytes Written(const ClCalibrateGeometricData& oData) {
  ClMemStream oStream;
  oData.Write(oStream);
  return Bytes(oStream.GetData(), oStream.GetData() + oStream.Size());
}

/// A record that is short enough to look at: 2 points.
ClGeometricRecord SmallRecord() {
  ClGeometricRecord oRecord;
  oRecord.aTarget = {{1, 2}, {3, 4}};
  oRecord.aActual = {{10.5, 20.25}, {30, 40}};
  return oRecord;
}

TEST(GeometricData, ReadsEachLayoutOfItsHistory) {
  const struct {
    const char* szMagic;
    const char* szType;
    const char* szVersion;
    int nLayout;
  } aRecords[] = {{"CAL", "GEO", "000", 0}, {"CAL", "GEO", "001", 1}, {"Cal", "Fut", "002", 0},
                  {"CAL", "GEO", "002", 2}, {"Cal", "Fut", "003", 3}, {"CAL", "GEO", "004", 4},
                  {"CAL", "GEO", "005", 5}, {"CAL", "GEO", "006", 6}, {"CAL", "GEO", "007", 6}};
  for (const auto& o : aRecords) {
    SCOPED_TRACE(std::string(o.szType) + o.szVersion);
    ClGeometricRecord oRecord = SmallRecord();
    oRecord.szMagic = o.szMagic;
    oRecord.szType = o.szType;
    oRecord.szVersion = o.szVersion;
    oRecord.nPlanes = o.nLayout >= 3 ? 2 : 1;
    oRecord.nBackground = 9;
    ClCalibrateGeometricData oData;
    oData.m_nBackground = 77;
    ASSERT_EQ(Read(oData, GeometricBlock(oRecord, o.nLayout)), 0);
    EXPECT_EQ(oData.m_nSourceWidth, 3840u);
    EXPECT_EQ(oData.m_nSourcePelsX, o.nLayout >= 5 ? 41417u : 0u);
    EXPECT_EQ(oData.m_nSourcePelsY, o.nLayout >= 5 ? 30236u : 0u);
    EXPECT_EQ(oData.m_nTargetHeight, 1600u);
    EXPECT_EQ(oData.m_nTargetPelsY, o.nLayout >= 2 ? 19684u : 19685u);
    EXPECT_EQ(oData.m_nPlanes, o.nLayout >= 3 ? 2u : 1u);
    EXPECT_EQ(oData.m_nBackground, o.nLayout >= 4 ? 9 : 77);
    ASSERT_EQ(oData.m_aTarget.Entries(), 2u);
    EXPECT_EQ(oData.m_aTarget[1].x, 3);
    ASSERT_EQ(oData.m_aActual[oData.m_nPlanes - 1].Entries(), 2u);
    EXPECT_EQ(oData.m_aActual[oData.m_nPlanes - 1][0].y, 20.25);
  }
}

TEST(GeometricData, RefusesForeignTags) {
  const char* aTags[][3] = {
      {"KAL", "GEO", "006"}, {"CAL", "GEX", "006"}, {"Cal", "Fut", "001"}, {"cal", "GEO", "006"}};
  for (const auto& a : aTags) {
    ClGeometricRecord oRecord = SmallRecord();
    oRecord.szMagic = a[0];
    oRecord.szType = a[1];
    oRecord.szVersion = a[2];
    ClCalibrateGeometricData oData;
    EXPECT_EQ(Read(oData, GeometricBlock(oRecord)), -40) << a[0] << a[1] << a[2];
  }
}

TEST(GeometricData, EveryFlippedByteIsFoundExceptWhereItMeansAnotherVersion) {
  const Bytes aGood = GeometricBlock(SmallRecord());
  for (size_t n = 0; n < aGood.size(); ++n) {
    Bytes aBad = aGood;
    aBad[n] ^= 1;
    ClCalibrateGeometricData oData;
    const long nNumber = Read(oData, aBad);
    if (n < 8) {
      EXPECT_EQ(nNumber, -40) << n;
    } else if (n < 12) {
      EXPECT_THAT(nNumber, AnyOf(0, -39, -201)) << n;
    } else if (n >= 44 && n < 48) {
      EXPECT_THAT(nNumber, AnyOf(-39, -201)) << n;
    } else if ((n >= 49 && n < 53) || (n >= 69 && n < 73)) {
      EXPECT_THAT(nNumber, AnyOf(-39, -201)) << n << " is in a count";
    } else {
      EXPECT_EQ(nNumber, -39) << n;
    }
  }
}

TEST(GeometricData, EveryCutIsFound) {
  const Bytes aGood = GeometricBlock(SmallRecord());
  for (size_t nLength = 0; nLength < aGood.size(); ++nLength) {
    ClCalibrateGeometricData oData;
    EXPECT_EQ(Read(oData, Bytes(aGood.begin(), aGood.begin() + static_cast<long>(nLength))), -201) << nLength;
  }
}

TEST(GeometricData, ACountBeyondTheBlockAllocatesNothing) {
  Bytes aBytes = GeometricBlock(SmallRecord());
  aBytes[49] = 0xFF;
  ClCalibrateGeometricData oData;
  EXPECT_EQ(Read(oData, aBytes), -201);
  EXPECT_EQ(oData.m_aTarget.Capacity(), 0u);
}

TEST(GeometricData, RefusesAFourthPlaneInEveryVersion) {
  for (const int nLayout : {3, 4, 5, 6}) {
    ClGeometricRecord oRecord = SmallRecord();
    oRecord.szVersion = "00" + std::to_string(nLayout);
    oRecord.nPlanes = 4;
    ClCalibrateGeometricData oData;
    EXPECT_EQ(Read(oData, GeometricBlock(oRecord, nLayout)), -39) << nLayout;
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

  ClGeometricRecord oOld = SmallRecord();
  oOld.szVersion = "003";
  ASSERT_EQ(Read(oData, GeometricBlock(oOld, 3)), 0);
  EXPECT_STREQ(oData.ReadVersion(), "003");
  ASSERT_EQ(Read(oData, Written(oData)), 0);
  EXPECT_STREQ(oData.ReadVersion(), "006");
}

TEST(GeometricData, ComparesTagsFieldsAndPoints) {
  ClCalibrateGeometricData oLeft;
  ClCalibrateGeometricData oRight;
  ASSERT_EQ(Read(oLeft, GeometricBlock(SmallRecord())), 0);
  oRight = oLeft;
  EXPECT_TRUE(oLeft == oRight);
  oRight.m_aActual[0][1].x += 1e-8;
  EXPECT_TRUE(oLeft == oRight);
  oRight.m_aActual[0][1].x += 1e-6;
  EXPECT_FALSE(oLeft == oRight);
  oRight = oLeft;
  oRight.m_nBackground = 1;
  EXPECT_FALSE(oLeft == oRight);
  oRight = oLeft;
  oRight.m_aTarget.SetEntries(1);
  EXPECT_FALSE(oLeft == oRight);
  ClGeometricRecord oOther = SmallRecord();
  oOther.szVersion = "005";
  ASSERT_EQ(Read(oRight, GeometricBlock(oOther, 5)), 0);
  EXPECT_FALSE(oLeft == oRight) << "read from another version";

  unsigned char aLeft[16];
  unsigned char aRight[16];
  oLeft.GenerateHash(aLeft);
  oRight.GenerateHash(aRight);
  EXPECT_EQ(std::memcmp(aLeft, aRight, 16), 0) << "the version is not hashed";
  oRight.m_aTarget[0].x = 1.5;
  oRight.GenerateHash(aRight);
  EXPECT_NE(std::memcmp(aLeft, aRight, 16), 0);
}

TEST(GeometricData, ClearDropsDataAndKeepsTags) {
  ClCalibrateGeometricData oData;
  EXPECT_FALSE(oData.IsValid());
  ASSERT_EQ(Read(oData, GeometricBlock(SmallRecord())), 0);
  EXPECT_TRUE(oData.IsValid());
  oData.Clear();
  EXPECT_FALSE(oData.IsValid());
  EXPECT_EQ(oData.m_aTarget.Entries(), 0u);
  EXPECT_EQ(oData.m_nSourceWidth, 0u);
  EXPECT_STREQ(oData.ReadVersion(), "006");
}

TEST(GeometricData, LogsALineForEachPair) {
  ClCalibrateGeometricData oData;
  ASSERT_EQ(Read(oData, GeometricBlock(SmallRecord())), 0);
  // Without the environment's permission nothing is written, but every line is formatted.
  oData.m_aActual[0][0] = ClVector(1e300, -1e300);
  EXPECT_NO_THROW(oData.TraceOut());
}

}  // namespace
