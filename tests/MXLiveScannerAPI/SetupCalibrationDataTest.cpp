// Set-up of a scanner: serial numbers, blocks that are wrong, tables by revision.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <limits>
#include <map>

#include "CalibrationBlocks.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXTools/Exception.h"
#include "Raised.h"
#include "TemporaryDirectory.h"

namespace {

using testing::EndsWith;

constexpr const char* cszSerial = "VT40-AD0042";

unsigned int Size(const Bytes& aBytes) {
  return static_cast<unsigned int>(aBytes.size());
}

void UpdateGeometry(ClVT40SetupCalibrationData& oSetup, const Bytes& aBlock) {
  oSetup.UpdateGeometricData(aBlock.data(), Size(aBlock));
}

std::pair<long, std::string> Refusal(const ClGeometricRecord& oRecord, const char* szSerial = cszSerial) {
  ClVT40SetupCalibrationData oSetup(szSerial, false);
  auto oRaised = Raised([&] { UpdateGeometry(oSetup, GeometricBlock(oRecord)); });
  EXPECT_EQ(oSetup.GetGeometricDataFull(false).IsValid(), oRaised.first == 0);
  return oRaised;
}

TEST(SetupObject, IsChosenByTheSerialNumber) {
  // The letters of the revision stand one character earlier in the serial of a single-finger scanner.
  for (const auto& [szSerial, nType, nRevision] :
       {std::tuple<const char*, unsigned int, unsigned int>{"VT40-AA0001", 17, 0},
        {"vt40-abXYZ", 17, 1},
        {"VT41AB0001", 16, 1},
        {"vt4-ab", 16, 1},
        {"VT4 Ab-1", 16, 1},
        {"VT4-BC", 16, 28}}) {
    const std::unique_ptr<ClVTSetupCalibrationDataBase> pSetup(
        ClVTSetupCalibrationDataBase::GetSetupObject(szSerial));
    EXPECT_EQ(pSetup->GetScannerType(), nType) << szSerial;
    EXPECT_EQ(pSetup->GetScannerRevision(), nRevision) << szSerial;
    EXPECT_EQ(pSetup->GetMaskProcessor(0) == pSetup->GetMaskProcessor(1), nType == 16);
  }
}

TEST(SetupObject, NamesWhatIsWrongWithASerialNumber) {
  const std::pair<const char*, std::vector<const char*>> aTexts[] = {
      {"serial parameter contains NULL pointer", {nullptr}},
      {"serial number too short", {"", "VT", "VT4", "VT40", "VT40-A", "VT41A"}},
      {"invalid serial", {"VT4-0B", "VT41-AB", "VT40-1A01", "VT40-A\xC4"}},
      {"serial number has unknown format", {"VT5-AA0001", "VX40-AA01"}}};
  for (const auto& [szText, aSerials] : aTexts) {
    for (const char* szSerial : aSerials) {
      const auto oRaised = Raised([&] { ClVTSetupCalibrationDataBase::GetSetupObject(szSerial); });
      EXPECT_THAT(oRaised, testing::Pair(-44, EndsWith(szText))) << (szSerial ? szSerial : "NULL");
    }
  }
}

TEST(Revision, DecidesOnTablesAndExposure) {
  ClVT40SetupCalibrationData oFirst("VT40-AA0001", true);
  EXPECT_EQ(oFirst.GetExposure(), 150u);
  EXPECT_EQ(oFirst.GetGainLevel(1), 0x202420u);
  EXPECT_EQ(oFirst.GetBrightnessAdjustment(16), 0xC89632u);
  ClVT40SetupCalibrationData oLater("VT40-AH0001", false);
  EXPECT_EQ(oLater.GetExposure(), 300u);
  EXPECT_EQ(oLater.GetGainLevel(1), 0u);
  EXPECT_EQ(oLater.GetBrightnessAdjustment(4), 0xC0C0C0u);
  EXPECT_EQ(ClVT40SetupCalibrationData("VT40-AD0001", true).GetExposure(), 400u);
  EXPECT_THAT(Raised([] { ClVT40SetupCalibrationData("VT40-AI0001", true); }),
              testing::Pair(-103, EndsWith("Scanner revision not supported.")));
}

TEST(Gain, IsTheSameFromBothFormsAndHalvedByteByByteWithoutUsbPower) {
  ClVT40SetupCalibrationData oUsb(cszSerial, true);
  ClVT40SetupCalibrationData oSetup(cszSerial, false);
  for (Bytes aBlock : {LegacyGainBlock(), CurrentGainBlock()}) {
    oUsb.UpdateGainData(aBlock.data(), Size(aBlock));
    oSetup.UpdateGainData(aBlock.data(), Size(aBlock));
    EXPECT_EQ(oUsb.GetGainLevel(1), 0x224466u);
    EXPECT_EQ(oSetup.GetGainLevel(1), 0x112233u);
    EXPECT_EQ(oSetup.GetGainLevel(4), 0x55AAFFu) << "only that of all channels";
  }
  Bytes aBlock(30, 0);
  for (const size_t n : {6u, 8u, 10u}) aBlock[n] = 0x81;
  oSetup.UpdateGainData(aBlock.data(), 30);
  oSetup.UpdateGainData(nullptr, 0);
  oSetup.UpdateGainData(aBlock.data(), 0);
  EXPECT_EQ(oSetup.GetGainLevel(1), 0x404040u);
  EXPECT_EQ(Raised([&] { oSetup.UpdateGainData(aBlock.data(), 29); }).first, -201);
  oSetup.Reset(false, false, true);
  EXPECT_EQ(oSetup.GetGainLevel(1), 0u);
}

TEST(Geometry, GivesEachKindOfFrameItsDataSet) {
  ClGeometricRecord oRecord;
  oRecord.nBackground = 255;
  ClVT40SetupCalibrationData oSetup(cszSerial, false);
  UpdateGeometry(oSetup, GeometricBlock(oRecord));
  const struct {
    const ClCalibrateGeometricData& oData;
    std::vector<uint32_t> aFields;
    double dX, dY, dTarget;
  } aSets[] = {
      {oSetup.GetGeometricDataFull(false), {3840, 2720, 41417, 30236, 1600, 1600, 19685, 0}, 1, 1, 1},
      {oSetup.GetGeometricDataFull(true), {1920, 2720, 20708, 30236, 1600, 1600, 19685, 0}, 2, 1, 1},
      {oSetup.GetGeometricDataPreview(false), {1920, 1360, 20708, 15118, 800, 800, 9842, 0}, 2, 2, 2},
      {oSetup.GetGeometricDataPreview(true), {960, 1360, 10354, 15118, 800, 800, 9842, 0}, 4, 2, 2}};
  for (const auto& [o, aFields, dX, dY, dTarget] : aSets) {
    EXPECT_EQ((std::vector<uint32_t>{o.m_nSourceWidth, o.m_nSourceHeight, o.m_nSourcePelsX, o.m_nSourcePelsY,
                                     o.m_nTargetWidth, o.m_nTargetHeight, o.m_nTargetPelsX, o.m_nBackground}),
              aFields);
    EXPECT_NEAR(o.m_aActual[0][10].x * dX, oRecord.aActual[10].x, 0.001);
    EXPECT_NEAR(o.m_aActual[0][10].y * dY, oRecord.aActual[10].y, 0.001);
    EXPECT_NEAR(o.m_aTarget[63].x * dTarget, oRecord.aTarget[63].x, 0.001);
  }
  TpArrayStatic<char> aOut;
  oSetup.GetGeometricData(aOut);
  oRecord.nBackground = 0;
  EXPECT_EQ(Bytes(aOut.Data(), aOut.Data() + aOut.Entries()), GeometricBlock(oRecord));
  oSetup.Reset(true, false, false);
  EXPECT_FALSE(oSetup.GetGeometricDataFull(false).IsValid());
}

TEST(Geometry, RefusesGridsThatCannotBeAScanners) {
  EXPECT_EQ(Refusal(ClGeometricRecord()).first, 0);
  std::vector<ClGeometricRecord> aRecords(12);
  aRecords[0].nPlanes = 0;
  aRecords[1].nPlanes = 2;
  aRecords[2].nTargetWidth = 1599;
  aRecords[3].nTargetHeight = 800;
  aRecords[4].nSourceWidth = 0;
  aRecords[5].nSourceHeight = 0;
  aRecords[6].nSourceWidth = 0xFFFFFFFF;
  aRecords[7].aActual.pop_back();
  aRecords[8].aTarget.pop_back();
  aRecords[9].aActual[20].x = std::numeric_limits<double>::quiet_NaN();
  aRecords[10].aTarget[63].y = std::numeric_limits<double>::infinity();
  aRecords[11].aActual.emplace_back(1, 2);
  for (size_t n = 0; n < aRecords.size(); ++n) {
    EXPECT_THAT(Refusal(aRecords[n]),
                testing::Pair(-39, EndsWith("invalid calibration data found in scanner eprom.")))
        << n;
  }
  ClGeometricRecord oRecord;
  Bytes aCut = GeometricBlock(oRecord);
  aCut.pop_back();
  ClVT40SetupCalibrationData oSetup(cszSerial, false);
  EXPECT_EQ(Raised([&] { UpdateGeometry(oSetup, aCut); }).first, -201);
}

TEST(Geometry, TheFirstRevisionMayHaveMorePointsOnTheSensorThanTargets) {
  for (const auto& [nTargets, nActuals, nNumber] :
       {std::tuple<size_t, size_t, long>{50, 64, 0}, {50, 63, -39}, {65, 64, -39}, {0, 64, -39}}) {
    ClGeometricRecord oRecord;
    oRecord.aTarget.resize(nTargets, {1, 2});
    oRecord.aActual.resize(nActuals);
    EXPECT_EQ(Refusal(oRecord, "VT40-AA0001").first, nNumber) << nTargets << ' ' << nActuals;
  }
}

using Offsets = std::map<unsigned int, ClVector>;

/// A straight grid of 400 by 300, in which each point is the middle of its neighbours, with some points off
/// it.
std::vector<ClVector> GridOff(const Offsets& mapOff) {
  std::vector<ClVector> aPoints;
  for (int n = 0; n < 64; ++n) aPoints.emplace_back(600 + 400 * (n / 8), 300 + 300 * (n % 8));
  for (const auto& [n, vOff] : mapOff) aPoints[n] = aPoints[n] + vOff;
  return aPoints;
}

/// Expects that the set-up turns a grid that is off by mapOff into one that is off by mapStillOff.
void ExpectRepair(ClVT40SetupCalibrationData& oSetup, const Offsets& mapOff, const Offsets& mapStillOff) {
  SCOPED_TRACE(testing::Message() << "point " << mapOff.begin()->first);
  ClGeometricRecord oRecord;
  oRecord.aActual = GridOff(mapOff);
  UpdateGeometry(oSetup, GeometricBlock(oRecord));
  const std::vector<ClVector> aExpected = GridOff(mapStillOff);
  const auto& aPoints = oSetup.GetGeometricDataFull(false).m_aActual[0];
  for (unsigned int n = 0; n < 64; ++n) {
    EXPECT_EQ(aPoints[n].x, aExpected[n].x) << n;
    EXPECT_EQ(aPoints[n].y, aExpected[n].y) << n;
  }
}

TEST(Geometry, APointMoreThan15PixelsOffItsNeighboursMovesToTheirMiddle) {
  ClVT40SetupCalibrationData oSetup(cszSerial, false);
  for (unsigned int nColumn = 1; nColumn < 7; ++nColumn) {
    for (unsigned int nRow = 1; nRow < 7; ++nRow) {
      const unsigned int n = 8 * nColumn + nRow;
      for (const ClVector& vOff : {ClVector(15.25, 0), ClVector(0, -16), ClVector(-18, 24), ClVector(29, 0)})
        ExpectRepair(oSetup, {{n, vOff}}, {});
      for (const ClVector& vOff : {ClVector(14, 0), ClVector(0, -15), ClVector(9, 12)})
        ExpectRepair(oSetup, {{n, vOff}}, {{n, vOff}});
      // Beyond 30 pixels the neighbour before the stray moves half as far, and the stray stays off by half of
      // that; points on the edge never move.
      const auto Halved = [n](unsigned int nBefore, bool bBorder, const ClVector& vOff) {
        return bBorder ? Offsets{} : Offsets{{nBefore, vOff * 0.5}, {n, vOff * 0.25}};
      };
      ExpectRepair(oSetup, {{n, {40, 0}}}, Halved(n - 1, nRow == 1, {40, 0}));
      ExpectRepair(oSetup, {{n, {0, 40}}}, Halved(n - 8, nColumn == 1, {0, 40}));
    }
  }
  ExpectRepair(oSetup, {{3, {0, 28}}}, {{3, {0, 28}}});
  // Two in a column: row 1 goes half way to the 100 of row 2, row 2 half way between that and the 40 of row
  // 3, row 3 half way to row 4; row 4 is 11.25 off then and stays.
  ExpectRepair(oSetup, {{18, {100, 0}}, {19, {40, 0}}}, {{17, {50, 0}}, {18, {45, 0}}, {19, {22.5, 0}}});
}

TEST(Geometry, RefusesGridsThatAreNotTheTargetsButForTheFirstRevision) {
  std::vector<ClGeometricRecord> aRecords(2);
  aRecords[0].aTarget[20].x += 10.5;
  aRecords[1].aActual[20].y += 110;
  for (size_t n = 0; n < aRecords.size(); ++n) {
    EXPECT_THAT(Refusal(aRecords[n]),
                testing::Pair(-39, EndsWith(n < 1 ? "Target data is corrupt" : "Source data is corrupt")))
        << n;
    EXPECT_EQ(Refusal(aRecords[n], "VT40-AA0001").first, 0) << n;
  }
}

TEST(Brightness, NeedsGeometryAndWholeSamplesOfKeyOne) {
  ClVT40SetupCalibrationData oSetup(cszSerial, false);
  const Bytes aGood = LegacyBrightnessBlock();
  const auto oUpdate = [&](const Bytes& aBlock) {
    return Raised([&] { oSetup.UpdateBrightnessData(aBlock.data(), Size(aBlock)); });
  };
  EXPECT_THAT(oUpdate(aGood),
              testing::Pair(-1, EndsWith("Update of brightness data not possible without geometric data.")));
  EXPECT_EQ(Raised([&] { oSetup.Setup(nullptr, 0, aGood.data(), Size(aGood), nullptr, 0); }).first, -1);
  UpdateGeometry(oSetup, GeometricBlock(ClGeometricRecord()));
  EXPECT_EQ(oUpdate(aGood).first, 0);
  EXPECT_EQ(oUpdate(CurrentBrightnessBlock()).first, 0);
  EXPECT_EQ(oUpdate(Bytes(aGood.begin(), aGood.end() - 1)).first, -201);
  Bytes aOther = CurrentBrightnessBlock();
  aOther[8 + 200] = 2;
  EXPECT_EQ(oUpdate(aOther).first, -39) << "no key 1";
  Bytes aFew = {'C', 'B', 'D', 0, 1, 0, 63, 0, 1, 0, 0, 0, 0, 0, 0, 0};
  aFew.resize(aFew.size() + 3 * 63, 100);
  EXPECT_THAT(oUpdate(aFew), testing::Pair(-39, EndsWith("Brightness calibration data invalid.")));
}

TEST(Brightness, IsTheLuminanceOfThePlanesAtEachPoint) {
  Bytes aBlock = {'C', 'B', 'D', 0, 1, 0, 64, 0, 1, 0, 0, 0, 0, 0, 0, 0};
  for (const int nPlane : {100, 50, 200})
    aBlock.resize(aBlock.size() + 64, static_cast<unsigned char>(nPlane));
  ClVT40SetupCalibrationData oSetup(cszSerial, false);
  UpdateGeometry(oSetup, GeometricBlock(ClGeometricRecord()));
  oSetup.UpdateBrightnessData(aBlock.data(), Size(aBlock));
  ClImage oFrame(800, 800, 1, 0, 0);
  oFrame = static_cast<unsigned char>(60);
  ClImage oOut;
  oSetup.AdjustBrightnessPreview(oFrame, oOut, 255);
  for (const ClVector& o : TargetGrid())
    EXPECT_NEAR(oOut.Row<uint8_t>(static_cast<int>(o.y / 2))[static_cast<int>(o.x / 2)], 255 * 60 / 81, 3);
}

TEST(Brightness, TwoPointsInOnePlaceAreRefusedWhereverTheyAre) {
  ClVT40SetupCalibrationData oSetup("VT40-AA0042", false);
  const Bytes aBlock = LegacyBrightnessBlock();
  for (size_t n = 1; n < 64; ++n) {
    ClGeometricRecord oRecord;
    oRecord.aTarget[n] = oRecord.aTarget[n * n % 29 % n];
    UpdateGeometry(oSetup, GeometricBlock(oRecord));
    EXPECT_EQ(Raised([&] { oSetup.UpdateBrightnessData(aBlock.data(), Size(aBlock)); }).first, -39) << n;
  }
}

TEST(Setup, StoresTheBlocksByteForByte) {
  const ClTemporaryDirectory oDirectory;
  ClVT40SetupCalibrationData oSetup(cszSerial, false);
  const Bytes aGeo = GeometricBlock(ClGeometricRecord());
  const Bytes aBrightness = CurrentBrightnessBlock();
  const Bytes aGain = CurrentGainBlock();
  oSetup.Setup(aGeo.data(), Size(aGeo), aBrightness.data(), Size(aBrightness), aGain.data(), Size(aGain));
  oSetup.StoreData(oDirectory.Path("").c_str());
  const std::pair<const char*, const Bytes&> aFiles[] = {
      {"geometric.calibrate", aGeo}, {"brightness.calibrate", aBrightness}, {"gaindata.calibrate", aGain}};
  for (const auto& [szName, aBlock] : aFiles) {
    std::ifstream oFile(oDirectory.Path(szName), std::ios::binary);
    EXPECT_EQ(Bytes(std::istreambuf_iterator<char>(oFile), {}), aBlock) << szName;
  }
  EXPECT_EQ(Raised([&] { oSetup.StoreData(oDirectory.Path("missing").c_str()); }).first, -200);
  EXPECT_EQ(Raised([&] { oSetup.StoreData(nullptr); }).first, -44);
}

}  // namespace
