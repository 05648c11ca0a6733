// Raw frames: what each mode shows, how bright it is, how noisy, and in which order the planes come.
#include "sensor/Sensor.h"

#include <gmock/gmock.h>

#include <cmath>
#include <numeric>

#include "Frames.h"
#include "TestFiles.h"
#include "scene/SceneReader.h"

namespace Simulator {
namespace {

ClScannerDescription Quiet(const ClScannerDescription& oFrom) {
  ClScannerDescription o = oFrom;
  o.dNoise = 0.0;
  o.eOrder = eOrderDarkFirst;
  return o;
}

ClScannerDescription Scene(const char* szName) {
  return FindScene(szName).aScanners[0];
}

/// The whole platen covered by one ridge: the level is that of the light alone.
ClScannerDescription FullContact(const ClTestFolder& oFolder) {
  ClScannerDescription o;
  ClFingerDescription oFinger;
  oFinger.oPrint.sFile = oFolder.WritePng("black.png", 2000, 2000, [](unsigned, unsigned) { return 0; });
  oFinger.dDryness = 0.0;
  o.aFingers.push_back(oFinger);
  return o;
}

double Mean(const Plane& a) {
  return std::accumulate(a.begin(), a.end(), 0.0) / static_cast<double>(a.size());
}

/// Mean of the pixels of a tap (row and column parity) in the middle of a frame.
double TapMean(const Plane& a, const ClSensorMode& oMode, int nRow, int nColumn) {
  double dSum = 0.0;
  for (int y = oMode.nHeight / 2 - 40 + nRow; y < oMode.nHeight / 2 + 40; y += 2)
    for (int x = oMode.nWidth / 2 - 40 + nColumn; x < oMode.nWidth / 2 + 40; x += 2)
      dSum += a[static_cast<size_t>(y * oMode.nWidth + x)];
  return dSum / 1600.0;
}

TEST(Sensor, EveryModeShowsItsPartOfTheFullSensorMerged) {
  ClSensor oSensor(Quiet(Scene("slap-right")), 1);
  const Plane aFull = Difference(Sequence(oSensor, Settings(oSensor, 7, 1.0)));
  // The exposure relative to full readout, and the first column of the sensor.
  const double adModes[][3] = {{8, 2.0, 960},  {32, 0.5, 0},      {34, 2.0, 0},      {35, 1.0, 0},
                               {36, 4.0, 960}, {6, 1.0 / 3.0, 0}, {38, 1.0 / 3.0, 0}};
  for (const auto& ad : adModes) {
    const ClSensorMode& oMode = *FindSensorMode(static_cast<int>(ad[0]));
    const Plane a = Difference(Sequence(oSensor, Settings(oSensor, oMode.nMode, ad[1])));
    double dSum = 0.0, dWorst = 0.0;
    for (int y = 0; y < oMode.nHeight; ++y) {
      for (int x = 0; x < oMode.nWidth; ++x) {
        double dMerged = 0.0;
        for (int v = 0; v < oMode.nMergeY; ++v)
          for (int u = 0; u < oMode.nMergeX; ++u)
            dMerged += aFull[static_cast<size_t>((y * oMode.nMergeY + v) * cnSensorWidth +
                                                 static_cast<int>(ad[2]) + x * oMode.nMergeX + u)];
        const double dError = std::fabs(a[static_cast<size_t>(y * oMode.nWidth + x)] -
                                        dMerged / (oMode.nMergeX * oMode.nMergeY));
        dSum += dError;
        dWorst = std::max(dWorst, dError);
      }
    }
    // A merged mode is as bright as full readout; taps differ by up to 7 %, and belong to other pixels in it.
    EXPECT_LT(dSum / (oMode.nWidth * oMode.nHeight), 0.8) << "mode " << oMode.nMode;
    EXPECT_LT(dWorst, 26.0) << "mode " << oMode.nMode;
  }
}

TEST(Sensor, TheNominalExposureGivesTheSameGreyWhateverThePowerAndTheRevision) {
  const ClTestFolder oFolder;
  ClScannerDescription oDescription = Quiet(FullContact(oFolder));
  for (const auto& [szSerial, bUsb, szVersion, nExposure] :
       {std::tuple<const char*, bool, const char*, unsigned>{"VT40-AB0001", false, "FPGA:2.07", 300},
        {"VT40-AB0001", true, "FPGA:2.07", 400},
        {"VT40-AB0001", true, "FPGA:2.06", 300},
        {"VT40-AA0001", false, "", 150}}) {
    oDescription.sSerial = szSerial;
    oDescription.bUsbPowered = bUsb;
    oDescription.sVersion = szVersion;
    ClSensor oSensor(oDescription, 1);
    EXPECT_EQ(oSensor.NominalExposure(), nExposure);
    const ClSensorSettings oSettings = Settings(oSensor, 7, 1.0);
    const Plane a = Difference(Sequence(oSensor, oSettings));
    // 150 levels of a ridge and 4 of stray light, in the mean of the taps.
    double dTaps = 0.0;
    for (int i = 0; i < 4; ++i) dTaps += 0.25 * TapMean(a, *oSettings.pMode, i / 2, i % 2);
    EXPECT_NEAR(dTaps, 154.0, 4.0) << szSerial << szVersion;
  }
}

TEST(Sensor, GainExposureAndMaskScaleTheLightAndWhiteIsTheEnd) {
  const ClTestFolder oFolder;
  ClSensor oSensor(Quiet(FullContact(oFolder)), 1);
  ClSensorSettings oSettings = Settings(oSensor, 35, 0.5);
  const Plane aHalf = Difference(Sequence(oSensor, oSettings));
  const double dHalf = TapMean(aHalf, *oSettings.pMode, 0, 0);
  EXPECT_NEAR(dHalf, 77.0, 5.0);
  // The first channel reads odd columns of even rows; the others stay as they are.
  oSettings.anGain[0] *= 2;
  const Plane aRed = Difference(Sequence(oSensor, oSettings));
  EXPECT_NEAR(TapMean(aRed, *oSettings.pMode, 0, 1), 2.0 * TapMean(aHalf, *oSettings.pMode, 0, 1), 2.0);
  EXPECT_EQ(TapMean(aRed, *oSettings.pMode, 0, 0), dHalf);
  oSettings = Settings(oSensor, 35, 4.0);
  std::vector<uint8_t> aBytes = Sequence(oSensor, oSettings);
  EXPECT_EQ(aBytes[oSettings.PlaneBytes() + 680 * 960 + 480], 255);
  oSettings = Settings(oSensor, 35, 1.0);
  oSettings.aMasks = {0x200, 0x400, 0x1000, 0x800, 0, 0};
  aBytes = Sequence(oSensor, oSettings);
  ASSERT_EQ(aBytes.size(), 6u * 960 * 1360);
  const size_t nMid = 680 * 960 + 480;
  EXPECT_NEAR(aBytes[nMid] - aBytes[nMid + 4 * oSettings.PlaneBytes()], 0.4 * 154, 5);
  EXPECT_EQ(aBytes[nMid + 4 * oSettings.PlaneBytes()], aBytes[nMid + 5 * oSettings.PlaneBytes()]);
}

TEST(Sensor, BothPlaneOrdersOccurUnlessOneIsSetAndGiveTheSameDifference) {
  ClScannerDescription oScanner = Scene("finger");
  for (const auto& [eOrder, nLeast, nMost] : {std::tuple<EPlaneOrder, int, int>{eOrderMixed, 11, 29},
                                              {eOrderDarkFirst, 0, 0},
                                              {eOrderLitFirst, 40, 40}}) {
    oScanner.eOrder = eOrder;
    ClSensor oSensor(oScanner, 1);
    int nLitFirst = 0;
    for (uint64_t n = 0; n < 40; ++n) {
      const auto aBytes = Sequence(oSensor, Settings(oSensor, 38, 1.0 / 3.0), n);
      nLitFirst += (aBytes[0] & 15) != 0;
      ASSERT_GT(Mean(Difference(aBytes)), 5.0);  // a wrong tag leaves next to nothing
    }
    EXPECT_TRUE(nLitFirst >= nLeast && nLitFirst <= nMost) << nLitFirst;
  }
}

TEST(Sensor, TheSameSeedAndNumberGiveTheSameBytesWhateverCameBefore) {
  ClSensor oFirst(Scene("finger"), 5), oSecond(Scene("finger"), 5), oOther(Scene("finger"), 6);
  const ClSensorSettings oSettings = Settings(oFirst, 35, 1.0);
  const auto aFirst = Sequence(oFirst, oSettings, 9);
  Sequence(oSecond, Settings(oSecond, 34, 2.0), 3);
  Sequence(oSecond, Settings(oSecond, 38, 0.3), 4);
  oSecond.Free();
  EXPECT_TRUE(aFirst == Sequence(oSecond, oSettings, 9));
  EXPECT_FALSE(aFirst == Sequence(oSecond, oSettings, 10));
  EXPECT_FALSE(aFirst == Sequence(oOther, oSettings, 9));
}

TEST(Sensor, RoomLightFollowsItsListFromPlaneToPlane) {
  // Dark planes of a sequence that begins at 1 s, one of each in every 30th of a second.
  const auto Levels = [](const char* szAmbient) {
    ClScannerDescription o =
        FindScene(std::string(R"({"scanners": [{"noise": 0, "ambient": )") + szAmbient + "}]}").aScanners[0];
    ClSensor oSensor(o, 1);
    ClSensorSettings oSettings = Settings(oSensor, 35, 1.0);
    oSettings.aMasks = {0, 0, 0};
    const std::vector<uint8_t> a = Sequence(oSensor, oSettings, 1, 1.0);
    std::vector<double> aLevels;
    for (auto it = a.begin(); it != a.end(); it += static_cast<ptrdiff_t>(oSettings.PlaneBytes()))
      aLevels.push_back(Mean(Plane(it, it + static_cast<ptrdiff_t>(oSettings.PlaneBytes()))));
    return aLevels;
  };
  const std::vector<double> aStill = Levels("20"), aBefore = Levels(R"([{"at": 2, "level": 20}])");
  EXPECT_EQ(aStill, aBefore);
  EXPECT_EQ(aStill[0], aStill[2]);
  const std::vector<double> aRising = Levels(R"([{"at": 0, "level": 0}, {"at": 2, "level": 60}])");
  EXPECT_NEAR(aRising[0] - aStill[0], 10.0, 0.5);
  EXPECT_NEAR(aRising[2] - aRising[0], 2.0, 0.3);
  const std::vector<double> aSwitched =
      Levels(R"([{"at": 0, "level": 20}, {"at": 1.05, "level": 20}, {"at": 1.05, "level": 80}])");
  EXPECT_EQ(aSwitched[1], aStill[1]);
  EXPECT_NEAR(aSwitched[2] - aStill[2], 60.0, 2.0);
}

}  // namespace
}  // namespace Simulator
