// The scan library's functions: devices, handles, files, registers, and what they answer to misuse.
#include <gmock/gmock.h>

#include <cstdlib>
#include <thread>

#include "KelvarinVTScanAPI/VTScanAPI.h"
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
  unsigned nIndex = 9;
  EXPECT_EQ(VTScanAPIGetDeviceIndex(hDevice, &nIndex), 0);
  EXPECT_EQ(nIndex, 2u);
}

TEST_F(SimulatorTest, ADeviceOpensOnceAndItsHandleDiesWithTheClose) {
  Start("empty");
  void* hFirst = Open();
  void* hSecond = hFirst;
  EXPECT_EQ(VTScanAPICreateHandle(FirstId(), &hSecond), -61);
  EXPECT_EQ(hSecond, nullptr);
  void* hCopy = hFirst;
  EXPECT_EQ(VTScanAPIDestroyHandle(&hFirst), 0);
  EXPECT_EQ(hFirst, nullptr);
  EXPECT_EQ(VTScanAPIDestroyHandle(&hCopy), -43);
  EXPECT_EQ(hCopy, nullptr) << "cleared whatever the answer";
  EXPECT_NE(Open(), nullptr);
}

TEST_F(SimulatorTest, FunctionsOfADeviceRefuseForeignHandlesMissingPointersAndWrongValues) {
  Start("empty");
  void* hDevice = Open();
  unsigned n = 0;
  long l = 0;
  for (void* h : {static_cast<void*>(nullptr), static_cast<void*>(&n)}) {
    void* hCopy = h;
    EXPECT_EQ(VTScanAPIGetVersion(h, nullptr, &n), -43);
    EXPECT_EQ(VTScanAPIReleaseRawSequence(h, &hCopy), -43);
    EXPECT_EQ(VTScanAPIEnableCapture(h, 1), -43);
  }
  const long anNoPointer[] = {VTScanAPICreateHandle(FirstId(), nullptr),
                              VTScanAPIDestroyHandle(nullptr),
                              VTScanAPIGetVersion(hDevice, nullptr, nullptr),
                              VTScanAPIGetResolution(hDevice, &n, nullptr),
                              VTScanAPIReadEPROMFile(hDevice, "GEOCAL", nullptr, nullptr),
                              VTScanAPIGetPropertyLongA(hDevice, "USBPowered", nullptr),
                              VTScanAPISetCaptureMode(hDevice, 35, 2, nullptr, 2),
                              VTScanAPILockRawSequence(hDevice, nullptr),
                              VTScanAPIApplyInternalCommand(hDevice, 1, nullptr, nullptr)};
  EXPECT_THAT(anNoPointer, testing::Each(-701));
  EXPECT_EQ(VTScanAPISetGain(hDevice, 1, 256, 1), -44);
  EXPECT_EQ(VTScanAPISetResolution(hDevice, 37), -44);
  EXPECT_EQ(VTScanAPIApplyInternalCommand(hDevice, 5, &n, &n), -44);
  EXPECT_EQ(VTScanAPIGetPropertyLongA(hDevice, "usbpowered", &l), -206);
  EXPECT_EQ(VTScanAPISetPropertyA(hDevice, "version", "2.0"), -47);
}

TEST_F(SimulatorTest, PropertiesAndTextsAreWideToo) {
  Start(R"({"libraryVersion": "1.12", "scanners": [{}]})");
  wchar_t wszText[16];
  unsigned nSize = 16;
  ASSERT_EQ(VTScanAPIGetPropertyW(Open(), L"version", wszText, &nSize), 0);
  EXPECT_STREQ(wszText, L"1.12");
  EXPECT_STREQ(VTScanAPIGetErrorDescriptionA(-60), "The device is disconnected or does not answer.");
  EXPECT_STREQ(VTScanAPIGetErrorDescriptionW(12345), L"Unknown error code.");
}

TEST_F(SimulatorTest, FilesOfTheEepromCanBeReadCutReplacedTakenAwayAndRestored) {
  Start(
      R"({"scanners": [{"eprom": {"form": "legacy", "GEOCAL": {"flip": [0, 5000]}, "BRGHTCAL": {"cut": 100}}}]})");
  void* hDevice = Open();
  const std::vector<unsigned char> aGeo = ReadEprom(hDevice, "GEOCAL");
  ASSERT_EQ(aGeo.size(), 49u + 2 * (4 + 8 * 64) + 4);
  EXPECT_EQ(aGeo[0], 'C' ^ 0xFF);
  EXPECT_EQ(ReadEprom(hDevice, "BRGHTCAL").size(), 100u);
  ASSERT_EQ(VTSimRestoreEpromFile(nullptr, "BRGHTCAL"), 0);
  EXPECT_EQ(ReadEprom(hDevice, "BRGHTCAL").size(), 1088u);
  char aRoom[64];
  unsigned nSize = 29;
  EXPECT_EQ(VTScanAPIReadEPROMFile(hDevice, "GAINSET", aRoom, &nSize), -702);
  EXPECT_EQ(nSize, 30u);
  ASSERT_EQ(VTSimSetEpromFile(nullptr, "GAINSET", "CGD", 4), 0);
  EXPECT_EQ(ReadEprom(hDevice, "GAINSET"), (std::vector<unsigned char>{'C', 'G', 'D', 0}));
  ASSERT_EQ(VTSimSetEpromFile(nullptr, "GAINSET", nullptr, 0), 0);
  EXPECT_EQ(VTScanAPIReadEPROMFile(hDevice, "GAINSET", aRoom, &nSize), -200);
  nSize = sizeof aRoom;
  ASSERT_EQ(VTScanAPIListEPROMFile(hDevice, aRoom, &nSize), 0);
  EXPECT_STREQ(aRoom, "GEOCAL;BRGHTCAL");
}

TEST_F(SimulatorTest, WhatTheHostSetsShowsOnTheControlSide) {
  Start("empty");
  void* hDevice = Open();
  EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 600), 0);
  EXPECT_EQ(VTScanAPISetGain(hDevice, 10, 20, 30), 0);
  EXPECT_EQ(VTScanAPISetLEDEx(hDevice, 0x1234), 0);
  EXPECT_EQ(VTScanAPISetStatusLED(hDevice, 0x0007000000000002ull), 0);
  SetMode(hDevice, 35, {0, 1});
  const VTSimState o = State();
  EXPECT_EQ(o.nExposure, 600u);
  EXPECT_THAT(o.anGain, testing::ElementsAre(10, 20, 30));
  EXPECT_EQ(o.nIllumination, 0x1234u);
  EXPECT_EQ(o.nStatusLed, 0x0007000000000002ull);
  EXPECT_EQ(o.nSensorMode, 35);
  EXPECT_EQ(o.nPlanes, 2u);
  EXPECT_EQ(o.bCaptureEnabled, 0);
  unsigned char aBytes[6] = {1, 2, 0, 0, 0, 0xF7};
  unsigned nSize = 6;
  EXPECT_EQ(VTScanAPIApplyInternalCommand(hDevice, 1, aBytes, &nSize), 0);
  EXPECT_EQ(State().nStatusLed, 0xF70000000201ull);
  EXPECT_EQ(VTScanAPISetGlobalGain(hDevice, 77), 0);
  EXPECT_THAT(State().anGain, testing::ElementsAre(77, 77, 77));
  VTSimLight aLights[8];
  unsigned nLights = 8;
  ASSERT_EQ(VTSimGetLights(nullptr, aLights, &nLights), 0);
  ASSERT_EQ(nLights, 5u);
  const int anKinds[] = {VTSIM_LIGHT_PLATEN, VTSIM_LIGHT_STATUS, VTSIM_LIGHT_SEQUENCE, VTSIM_LIGHT_SEQUENCE,
                         VTSIM_LIGHT_STATUS};
  for (size_t n = 0; n < 5; ++n) EXPECT_EQ(aLights[n].nKind, anKinds[n]) << n;
  EXPECT_EQ(aLights[0].nWord, 0x1234u);
  // 0x201: the second cell begins at bit 9.
  EXPECT_THAT(aLights[4].anLed, testing::ElementsAre(1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST_F(SimulatorTest, ThePenIsToldForAnyMomentInPictureAndSensor) {
  Start(
      R"({"scanners": [{"pen": {"strokes": [{"at": 1, "line": "straight", "points": [[10, 20], [40, 20]]}]}},
                         {"serial": "VT40-AB0002"}]})");
  VTSimStroke oStroke;
  unsigned nStrokes = 0;
  EXPECT_EQ(VTSimGetPenStrokes(nullptr, &oStroke, &nStrokes), -702);
  ASSERT_EQ(VTSimGetPenStrokes(nullptr, &oStroke, &nStrokes), 0);
  EXPECT_DOUBLE_EQ(oStroke.dEnd, 1.5);
  VTSimPen o;
  ASSERT_EQ(VTSimGetPenAt(nullptr, 1.25, &o), 0);
  EXPECT_TRUE(o.bDown == 1 && o.nStroke == 0);
  EXPECT_NEAR(o.dX, 25.0 * 1600 / 81.28 - 0.5, 0.02);
  double dX = 0.0, dY = 0.0;
  ASSERT_EQ(VTSimPictureToSensor(nullptr, o.dX, o.dY, &dX, &dY), 0);
  EXPECT_TRUE(o.dSensorX == dX && o.dSensorY == dY);
  EXPECT_EQ(VTSimGetPenAt(nullptr, -1.0, &o), -44);
  ASSERT_EQ(VTSimGetPenAt("VT40-AB0002", 1.25, &o), 0);
  EXPECT_EQ(o.nStroke, -1) << "that one has no pen";
}

TEST_F(SimulatorTest, AnUnpluggedScannerAnswersNothingAndItsHandleStaysDead) {
  Start("empty");
  void* hDevice = Open();
  ASSERT_EQ(VTSimUnplug(nullptr), 0);
  unsigned n = 1, nCount = 1, nId = 0;
  int nStatus = 1;
  EXPECT_EQ(VTScanAPIGetVersion(hDevice, nullptr, &n), -60);
  EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 1), -60);
  EXPECT_EQ(VTScanAPIEnableCapture(hDevice, 0), -60);
  EXPECT_EQ(VTScanAPIGetPlugStatus(hDevice, &nStatus), 0);
  EXPECT_EQ(nStatus, 0);
  EXPECT_EQ(VTScanAPIQueryDevices(&nId, &nCount, 17), 0);
  EXPECT_EQ(nCount, 0u);
  ASSERT_EQ(VTSimPlug(nullptr), 0);
  EXPECT_EQ(VTScanAPISetVSYNC(hDevice, 1), -60);
  void* hNew = Open();
  EXPECT_EQ(VTScanAPISetVSYNC(hNew, 1), 0);
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
  unsigned long long nCalls = 0;
  EXPECT_EQ(VTSimGetCallCount("VTScanAPISetVSYNC", &nCalls), 0);
  EXPECT_EQ(nCalls, 5u);
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

TEST_F(SimulatorTest, TellsWhereTheTargetsDotsAreWhereOneLies) {
  Start("empty");
  std::vector<VTSimPoint> aDots(64);
  unsigned nCount = 64;
  EXPECT_EQ(VTSimGetTargetDots(nullptr, aDots.data(), &nCount), 0);
  EXPECT_EQ(nCount, 0u);
  ASSERT_EQ(VTSimLoadScene("target"), 0);
  EXPECT_EQ(VTSimGetTargetDots(nullptr, aDots.data(), &nCount), -702);
  EXPECT_EQ(nCount, 64u);
  EXPECT_EQ(VTSimGetTargetDots(nullptr, aDots.data(), &nCount), 0);
  // The first dot is the one at the top right of the picture.
  const double dFar = 799.5 + 35.0 / 81.28 * 1600.0, dNear = 1599.0 - dFar;
  double dX = 0.0, dY = 0.0;
  ASSERT_EQ(VTSimPictureToSensor(nullptr, dFar, dNear, &dX, &dY), 0);
  EXPECT_NEAR(aDots[0].dX, dX, 1e-6);
  EXPECT_NEAR(aDots[0].dY, dY, 1e-6);
  EXPECT_NEAR(aDots[56].dY, dY, 30.0);
  // What turns to the left on the platen is seen to turn to the right.
  ASSERT_EQ(VTSimLoadScene(R"({"scanners": [{"target": {"angle": 3}}]})"), 0);
  EXPECT_EQ(VTSimGetTargetDots(nullptr, aDots.data(), &nCount), 0);
  EXPECT_GT(aDots[56].dY, aDots[0].dY + 70.0);
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
