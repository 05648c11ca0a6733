// The scan library's functions: devices, handles, files, registers, and what they answer to misuse.
#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>

#include "SimulatorFixture.h"

namespace {

using testing::HasSubstr;

TEST_F(SimulatorTest, NothingWorksBeforeInitialisationAndInitialisationsAreCounted) {
  unsigned nCount = 0;
  void* hDevice = nullptr;
  EXPECT_EQ(VTScanAPIQueryDevices(nullptr, &nCount, 17), -2);
  EXPECT_EQ(VTScanAPICreateHandle(1, &hDevice), -2);
  EXPECT_EQ(VTScanAPIUninitialize(), -2);
  ASSERT_EQ(VTScanAPIInitialize(nullptr), 0);
  ASSERT_EQ(VTScanAPIInitialize(nullptr), 0);
  hDevice = Open();
  void* hSecond = hDevice;
  EXPECT_EQ(VTScanAPICreateHandle(FirstId(), &hSecond), -61) << "it is open";
  EXPECT_EQ(hSecond, nullptr);
  EXPECT_EQ(VTScanAPIUninitialize(), 0);
  EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 1), 0) << "one user is left";
  EXPECT_EQ(VTScanAPIUninitialize(), 0);
  EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 1), -2);
  ASSERT_EQ(VTScanAPIInitialize(nullptr), 0);
  EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 1), -43) << "the old handle";
  void* hNew = Open();
  void* hCopy = hDevice;
  EXPECT_EQ(VTScanAPIDestroyHandle(&hDevice), 0) << "it has not been closed yet";
  EXPECT_EQ(VTScanAPIDestroyHandle(&hCopy), -43);
  EXPECT_EQ(VTScanAPISetVSYNC(hNew, 1), 0);
}

TEST_F(SimulatorTest, DevicesAreListedByProductAndSizesAreNegotiated) {
  Start(
      R"({"scanners": [{"serial": "VT40-AB0001"}, {"serial": "VT4AB0002", "product": 16}, {"serial": "VT40-AC0003"}]})");
  unsigned aIds[4] = {}, nCount = 1;
  EXPECT_EQ(VTScanAPIQueryDevices(aIds, &nCount, 17), -702);
  EXPECT_EQ(nCount, 2u);
  ASSERT_EQ(VTScanAPIQueryDevices(aIds, &nCount, 17), 0);
  char szSerial[16] = {};
  unsigned nSize = 11;
  EXPECT_EQ(VTScanAPIGetDeviceSerial(aIds[1], szSerial, &nSize), -702);
  ASSERT_EQ(VTScanAPIGetDeviceSerial(aIds[1], szSerial, &nSize), 0);
  EXPECT_STREQ(szSerial, "VT40-AC0003");
  EXPECT_EQ(VTScanAPIGetDeviceSerial(4711, szSerial, &nSize), -44);
  void* hDevice = nullptr;
  ASSERT_EQ(VTScanAPICreateHandle(aIds[1], &hDevice), 0);
  nSize = 0;
  EXPECT_EQ(VTScanAPIGetHandleSerial(hDevice, nullptr, &nSize), -702);
  EXPECT_EQ(nSize, 12u);
}

TEST_F(SimulatorTest, FunctionsOfADeviceRefuseForeignHandlesMissingPointersAndWrongValues) {
  Start("empty");
  void* hDevice = Open();
  unsigned n = 0;
  long l = 0;
  for (void* h : {static_cast<void*>(nullptr), static_cast<void*>(&n)})
    EXPECT_EQ(VTScanAPIGetVersion(h, nullptr, &n), -43);
  EXPECT_EQ(VTScanAPIGetResolution(hDevice, &n, nullptr), -701);
  EXPECT_EQ(VTScanAPISetCaptureMode(hDevice, 35, 2, nullptr, 2), -701);
  EXPECT_EQ(VTScanAPISetGain(hDevice, 1, 256, 1), -44);
  EXPECT_EQ(VTScanAPISetResolution(hDevice, 37), -44);
  EXPECT_EQ(VTScanAPIGetPropertyLongA(hDevice, "usbpowered", &l), -206);
  EXPECT_EQ(VTScanAPISetPropertyA(hDevice, "version", "2.0"), -47);
}

TEST_F(SimulatorTest, FilesOfTheEepromCanBeCutReplacedTakenAwayAndRestored) {
  Start(
      R"({"scanners": [{"eprom": {"form": "legacy", "GEOCAL": {"flip": [0, 5000]}, "BRGHTCAL": {"cut": 100}}}]})");
  void* hDevice = Open();
  EXPECT_EQ(ReadEprom(hDevice, "GEOCAL")[0], 'C' ^ 0xFF);
  EXPECT_EQ(ReadEprom(hDevice, "BRGHTCAL").size(), 100u);
  ASSERT_EQ(VTSimRestoreEpromFile(nullptr, "BRGHTCAL"), 0);
  EXPECT_EQ(ReadEprom(hDevice, "BRGHTCAL").size(), 1088u);
  ASSERT_EQ(VTSimSetEpromFile(nullptr, "GAINSET", "CGD", 4), 0);
  EXPECT_EQ(ReadEprom(hDevice, "GAINSET"), (std::vector<unsigned char>{'C', 'G', 'D', 0}));
  ASSERT_EQ(VTSimSetEpromFile(nullptr, "GAINSET", nullptr, 0), 0);
  char aRoom[64];
  unsigned nSize = sizeof aRoom;
  ASSERT_EQ(VTScanAPIListEPROMFile(hDevice, aRoom, &nSize), 0);
  EXPECT_STREQ(aRoom, "GEOCAL;BRGHTCAL");
}

TEST_F(SimulatorTest, WhatTheHostSetsShowsOnTheControlSide) {
  Start("empty");
  void* hDevice = Open();
  EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 600), 0);
  EXPECT_EQ(VTScanAPISetGain(hDevice, 10, 20, 30), 0);
  EXPECT_EQ(VTScanAPISetLEDEx(hDevice, 0x1234), 0);
  SetMode(hDevice, 35, {0, 1});
  const VTSimState o = State();
  EXPECT_EQ(o.nExposure, 600u);
  EXPECT_THAT(o.anGain, testing::ElementsAre(10, 20, 30));
  EXPECT_EQ(o.nSensorMode, 35);
  EXPECT_EQ(o.nPlanes, 2u);
  unsigned char aBytes[6] = {1, 2, 0, 0, 0, 0xF7};
  unsigned nSize = 6;
  EXPECT_EQ(VTScanAPIApplyInternalCommand(hDevice, 1, aBytes, &nSize), 0);
  EXPECT_EQ(State().nStatusLed, 0xF70000000201ull);
  VTSimLight aLights[8];
  unsigned nLights = 8;
  ASSERT_EQ(VTSimGetLights(nullptr, aLights, &nLights), 0);
  ASSERT_EQ(nLights, 4u);
  EXPECT_EQ(aLights[0].nWord, 0x1234u);
  // 0x201: the second cell begins at bit 9.
  EXPECT_THAT(aLights[3].anLed, testing::ElementsAre(1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST_F(SimulatorTest, AnUnpluggedScannerAnswersNothingAndItsHandleStaysDead) {
  Start("empty");
  void* hDevice = Open();
  ASSERT_EQ(VTSimUnplug(nullptr), 0);
  unsigned nCount = 1;
  int nStatus = 1;
  EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 1), -60);
  EXPECT_EQ(VTScanAPIGetPlugStatus(hDevice, &nStatus), 0);
  EXPECT_EQ(nStatus, 0);
  EXPECT_EQ(VTScanAPIQueryDevices(nullptr, &nCount, 17), 0);
  EXPECT_EQ(nCount, 0u);
  ASSERT_EQ(VTSimPlug(nullptr), 0);
  EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 1), -60);
  void* hNew = Open();
  EXPECT_EQ(VTScanAPIDestroyHandle(&hDevice), 0) << "leaves the new session alone";
  EXPECT_EQ(VTScanAPISetVSYNC(hNew, 1), 0);
  EXPECT_THAT(FaultLog(), HasSubstr("unplugged VT40-AB0001"));
}

TEST_F(SimulatorTest, TheChosenCallFailsAndWhatGivesBackDoesSoAllTheSame) {
  Start("empty");
  void* hDevice = Open();
  ASSERT_EQ(VTScanAPISetVSYNC(hDevice, 100), 0);
  ASSERT_EQ(VTSimFailCall("VTScanAPISetVSYNC", 2, 2, -101), 0);
  EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 101), 0);
  EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 102), -101);
  EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 103), -101);
  EXPECT_EQ(State().nExposure, 101u) << "a failing call does nothing";
  EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 104), 0);
  EXPECT_EQ(FaultLog(),
            "call 3 of VTScanAPISetVSYNC answered -101\ncall 4 of VTScanAPISetVSYNC answered -101\n");
  ASSERT_EQ(VTSimFailCall("VTScanAPIDestroyHandle", 1, 0, -105), 0);
  EXPECT_EQ(VTScanAPIDestroyHandle(&hDevice), -105);
  EXPECT_EQ(hDevice, nullptr);
  EXPECT_NE(Open(), nullptr);
}

TEST_F(SimulatorTest, RandomFaultsFollowFromTheirSeed) {
  const auto Run = [](unsigned long long nSeed) {
    Start("empty");
    void* hDevice = Open();
    EXPECT_EQ(VTSimFailRandomly(nullptr, nSeed, 0.25, -60), 0);
    std::string sPattern;
    for (int i = 0; i < 200; ++i) sPattern += VTScanAPISetVSYNC(hDevice, 1) ? 'x' : '.';
    VTSimClearFaults();
    EXPECT_EQ(VTScanAPIDestroyHandle(&hDevice), 0);
    VTScanAPIUninitialize();
    return sPattern;
  };
  const std::string sFirst = Run(5);
  EXPECT_EQ(sFirst, Run(5));
  EXPECT_NE(sFirst, Run(6));
  EXPECT_NEAR(static_cast<double>(std::count(sFirst.begin(), sFirst.end(), 'x')), 50.0, 25.0);
}

TEST_F(SimulatorTest, ABadSceneChangesNothingAndAGoodOneKeepsTheHandles) {
  Start("empty");
  void* hDevice = Open();
  EXPECT_EQ(VTSimLoadScene("{\"sead\": 1}"), -44);
  EXPECT_THAT(VTSimLastError(), HasSubstr("sead"));
  EXPECT_EQ(VTSimLoadScene("{\"scanners\": [{\"fingers\": [{\"print\": {\"file\": \"/none.png\"}}]}]}"),
            -200);
  EXPECT_THAT(VTSimLastError(), HasSubstr("/none.png"));
  EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 1), 0);
  EXPECT_EQ(VTSimLoadScene("finger"), 0);
  EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 1), 0);
  EXPECT_EQ(VTSimLoadScene(R"({"scanners": [{"serial": "VT40-AB0002"}]})"), 0);
  EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 1), -60);
  EXPECT_EQ(VTSimUnplug("VT40-AB0001"), -44);
}

TEST_F(SimulatorTest, ReportsWhereTheTargetsDotsAreWhereOneLies) {
  Start("empty");
  std::vector<VTSimPoint> aDots(64);
  unsigned nCount = 64;
  EXPECT_EQ(VTSimGetTargetDots(nullptr, aDots.data(), &nCount), 0);
  EXPECT_EQ(nCount, 0u);
  // What turns to the left on the platen is seen to turn to the right, about the middle of the picture.
  ASSERT_EQ(VTSimLoadScene(R"({"scanners": [{"target": {"angle": 3}}]})"), 0);
  EXPECT_EQ(VTSimGetTargetDots(nullptr, aDots.data(), &nCount), -702);
  EXPECT_EQ(VTSimGetTargetDots(nullptr, aDots.data(), &nCount), 0);
  ASSERT_EQ(nCount, 64u);
  EXPECT_GT(aDots[56].dY, aDots[0].dY + 70.0);
}

TEST_F(SimulatorTest, ReportsHowTheOpticsBlursAndWhichSheetLiesThereWhen) {
  Start(
      R"({"scanners": [{"serial": "VT40-AB0001", "sheets": [{"kind": "bars", "x": 41, "angle": 2, "from": 1, "until": 2}]},
                         {"serial": "VT40-AB0002", "optics": {"blur": 2}}]})");
  VTSimOptics o{sizeof(VTSimOptics), 0, 0, 0, 0}, oWorse = o;
  ASSERT_EQ(VTSimGetOptics("VT40-AB0001", &o), 0);
  ASSERT_EQ(VTSimGetOptics("VT40-AB0002", &oWorse), 0);
  for (const double d : {o.dSpreadX, o.dSpreadY, oWorse.dSpreadX / 2, oWorse.dSpreadY / 2})
    EXPECT_TRUE(d >= 0.3 && d <= 0.45) << d;
  EXPECT_NE(o.dSpreadX, oWorse.dSpreadX / 2);
  // 1052 and 768 pixels to the inch.
  EXPECT_NEAR(o.dPixelMmX, 0.0240, 0.0002);
  EXPECT_NEAR(o.dPixelMmY, 0.0328, 0.0003);
  o.nStructSize = 1;
  EXPECT_EQ(VTSimGetOptics(nullptr, &o), -44);
  VTSimSheet oSheet;
  std::vector<VTSimSheetField> aFields(1024);
  unsigned nCount = 0;
  EXPECT_EQ(VTSimGetSheetAt(nullptr, 1.5, &oSheet, aFields.data(), &nCount), -702);
  ASSERT_LE(nCount, aFields.size());
  ASSERT_EQ(VTSimGetSheetAt(nullptr, 1.5, &oSheet, aFields.data(), &nCount), 0);
  EXPECT_EQ(oSheet.nKind, VTSIM_SHEET_BARS);
  EXPECT_EQ(oSheet.dX, 41.0);
  EXPECT_EQ(oSheet.dAngle, 2.0);
  unsigned nWaves = 0;
  for (unsigned n = 0; n < nCount; ++n)
    nWaves += aFields[n].nKind == VTSIM_FIELD_BARS && aFields[n].dFrequency == 10.0;
  EXPECT_EQ(nWaves, 18u);
  for (const double dTime : {0.9, 2.0}) {
    nCount = 1024;
    ASSERT_EQ(VTSimGetSheetAt(nullptr, dTime, &oSheet, aFields.data(), &nCount), 0);
    EXPECT_EQ(oSheet.nKind, -1);
    EXPECT_EQ(nCount, 0u);
  }
}

TEST_F(SimulatorTest, ListsMinutiaeAndRidgesOfTheFingersThatAreDown) {
  Start(
      R"({"scanners": [{"target": {}, "fingers": [{"x": 25, "touch": 1}, {"print": {"pattern": "right-loop"}, "x": 55}]}]})");
  unsigned nCount = 0;
  ASSERT_EQ(VTSimGetMinutiaeAt(nullptr, 0.5, nullptr, &nCount), -702) << "one finger is down";
  std::vector<VTSimMinutia> aOne(nCount);
  ASSERT_EQ(VTSimGetMinutiaeAt(nullptr, 0.5, aOne.data(), &nCount), 0);
  int anKinds[5] = {};
  for (const VTSimMinutia& o : aOne) {
    EXPECT_EQ(o.nFinger, 1u);
    EXPECT_TRUE(o.dDirection >= 0.0 && o.dDirection < 360.0);
    ++anKinds[o.nKind];
  }
  EXPECT_TRUE(anKinds[VTSIM_MINUTIA_ENDING] > 5 && anKinds[VTSIM_MINUTIA_BIFURCATION] > 5);
  EXPECT_TRUE(anKinds[VTSIM_MINUTIA_CORE] == 1 && anKinds[VTSIM_MINUTIA_DELTA] == 1);
  nCount = 0;
  ASSERT_EQ(VTSimGetMinutiaeAt(nullptr, 2.0, nullptr, &nCount), -702);
  EXPECT_GT(nCount, aOne.size() + 10) << "both are";
  std::vector<VTSimRidge> aRidges(VTSIM_RIDGE_SIDE * VTSIM_RIDGE_SIDE);
  nCount = VTSIM_RIDGE_SIDE * VTSIM_RIDGE_SIDE - 1;
  EXPECT_EQ(VTSimGetRidgesAt(nullptr, 0.5, aRidges.data(), &nCount), -702);
  ASSERT_EQ(VTSimGetRidgesAt(nullptr, 0.5, aRidges.data(), &nCount), 0);
  // Squares of 0.4064 mm: the middles of the two fingers, of which the first is not there yet.
  EXPECT_EQ(aRidges[100 * VTSIM_RIDGE_SIDE + 61].dPeriod, 0.0);
  EXPECT_NEAR(aRidges[100 * VTSIM_RIDGE_SIDE + 135].dPeriod, 9.0, 3.0);
  EXPECT_EQ(VTSimGetRidgesAt(nullptr, -1.0, aRidges.data(), &nCount), -44);
}

TEST_F(SimulatorTest, SaysWhereAPointOfThePictureFallsOnTheSensor) {
  Start(R"({"scanners": [{"target": {}}]})");
  VTSimPoint aDots[64], o;
  unsigned nCount = 64;
  ASSERT_EQ(VTSimGetTargetDots(nullptr, aDots, &nCount), 0);
  // The dots lie 10 mm apart round the middle of 81.28 mm; 0 is the centre of the first pixel. The first
  // column is the left one of the sensor, which sees the platen mirrored.
  const auto Pixel = [](unsigned n) { return (40.64 + 10.0 * (n - 3.5)) / 25.4 * 500 - 0.5; };
  for (unsigned n = 0; n < 64; ++n) {
    ASSERT_EQ(VTSimPictureToSensor(nullptr, Pixel(7 - n / 8), Pixel(n % 8), &o.dX, &o.dY), 0);
    ASSERT_NEAR(o.dX, aDots[n].dX, 0.01) << n;
    ASSERT_NEAR(o.dY, aDots[n].dY, 0.01) << n;
  }
  EXPECT_EQ(VTSimPictureToSensor(nullptr, NAN, 0, &o.dX, &o.dY), -44);
  EXPECT_EQ(VTSimPictureToSensor(nullptr, 0, 0, &o.dX, nullptr), -701);
}

TEST_F(SimulatorTest, TheEnvironmentsSceneHoldsFromTheFirstCallOnWithWhatIsSetBefore) {
  const auto Choose = [](const char* szScene) { setenv("KELVARIN_VTSIM_SCENE", szScene, 1); };
  Choose(R"({"scanners": [{"serial": "VT40-AC0077"}], "faults": [
      {"call": "VTScanAPIInitialize", "result": -105}, {"call": "VTScanAPISetVSYNC", "result": -106}]})");
  ASSERT_EQ(VTSimReset(), 0);
  char szText[16];
  for (const char* szLife : {"first", "second"}) {
    SCOPED_TRACE(szLife);
    ASSERT_EQ(VTSimFailCall("VTScanAPIQueryDevices", 1, 1, -107), 0);
    ASSERT_EQ(VTSimSetLibraryVersion("1.99"), 0);
    EXPECT_EQ(VTScanAPIInitialize(nullptr), -105) << "the scene's own fault";
    EXPECT_EQ(VTScanAPIInitialize(nullptr), 0);
    unsigned nSize = sizeof szText;
    EXPECT_EQ(VTScanAPIQueryDevices(nullptr, &nSize, 17), -107);
    EXPECT_EQ(VTScanAPIGetDeviceSerial(FirstId(), szText, &nSize), 0);
    EXPECT_STREQ(szText, "VT40-AC0077");
    void* hDevice = Open();
    EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 1), -106);
    EXPECT_EQ(VTScanAPIGetPropertyA(hDevice, "version", szText, &nSize), 0);
    EXPECT_STREQ(szText, "1.99");
    EXPECT_EQ(VTScanAPIUninitialize(), 0);
  }
  EXPECT_EQ(VTScanAPIInitialize(nullptr), -105) << "also when nothing was set before";
  Choose("no-such-scene");
  ASSERT_EQ(VTSimReset(), 0);
  EXPECT_EQ(VTScanAPIInitialize(nullptr), -200);
  EXPECT_THAT(VTSimLastError(), HasSubstr("no-such-scene"));
  unsetenv("KELVARIN_VTSIM_SCENE");
  EXPECT_EQ(VTScanAPIInitialize(nullptr), 0);
}

}  // namespace
