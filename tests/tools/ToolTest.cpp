// The command-line tool as a process: exit codes, facts and files.
#include <png.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "ToolFixture.h"

namespace {

unsigned long LittleEndian(const std::vector<unsigned char>& aBytes, size_t nOffset) {
  unsigned long nValue = 0;
  for (size_t n = 4; n-- > 0;) nValue = nValue << 8 | aBytes.at(nOffset + n);
  return nValue;
}

TEST_F(Tool, ListsScannersAndWhatTheyAre) {
  EXPECT_EQ(Run("list --scene finger 2>/dev/null").sOutput, "VT40-AB0001\n");
  const nlohmann::json oFacts = FactsOf("info --scene finger");
  EXPECT_EQ(oFacts["library"], "1.5.1421.5");
  EXPECT_EQ(oFacts["image"]["width"], 1600);
  EXPECT_EQ(oFacts["preview"]["pelsPerMetre"], 9842);
  EXPECT_EQ(Run("property get --scene finger nAutoCaptureBeep 2>/dev/null").sOutput, "0\n");
  EXPECT_EQ(Run("property set --scene finger nAutoCaptureBeep 1").nExit, 0);
}

TEST_F(Tool, SetsLightsBuzzerAndDisplay) {
  const auto Facts = [](const std::string& sArguments) {
    nlohmann::json oFacts = FactsOf(sArguments + " --scene empty");
    for (const char* szCommon : {"serial", "scanLibrary", "simulated", "exitCode"}) oFacts.erase(szCommon);
    return oFacts.dump();
  };
  EXPECT_EQ(Facts("led 3 4"), R"({"led":3,"state":4})");
  EXPECT_EQ(Facts("beep"), R"({"values":[300,100]})");
  EXPECT_EQ(Facts("display \"Put your thumb on the platen now\""),
            R"({"lines":["Put your thumb o","n the platen now"]})");
  EXPECT_EQ(Facts("display Hello World"), R"({"lines":["Hello           ","World"]})");
}

/// A copy of tool and libraries but for those whose name holds szLeftOut, and how to start it there.
std::string InstallWithout(const ClTemporaryDirectory& oFolder, const std::string& szLeftOut) {
  namespace fs = std::filesystem;
  const fs::path oBuild = fs::path(KLV_TOOL).parent_path().parent_path();
  for (const char* szFolder : {"bin", "lib/kelvarin-vt40/simulator"}) {
    fs::create_directories(oFolder.Path(szFolder));
    for (const auto& oEntry : fs::directory_iterator(oBuild / szFolder)) {
      const std::string sName = oEntry.path().filename().string();
      if ((sName == "vt40" || sName.rfind("lib", 0) == 0) && sName.find(szLeftOut) == std::string::npos)
        fs::copy(oEntry, oFolder.Path(szFolder));
    }
  }
  for (const auto& oEntry : fs::directory_iterator(oBuild / "lib")) {
    if (oEntry.path().filename().string().rfind("libKelvarin", 0) == 0) fs::copy(oEntry, oFolder.Path("lib"));
  }
  // The tool runs in that directory, so that nothing is found by way of the working directory.
  return "cd " + oFolder.Path("bin") + " && LD_LIBRARY_PATH=../lib " KLV_RUN "./vt40 ";
}

TEST_F(Tool, WithoutTheLivenessLibraryAutoLiveIsRefused) {
  const std::string sTool = InstallWithout(m_oFolder, "fakefinger");
  EXPECT_EQ(RunCommand(sTool + "capture --mode off --scene finger" + Out()).nExit, 0);
  Expect(RunCommand(sTool + "capture --mode auto-live --scene settling-slap" + Out()), 10, "(-103)");
}

TEST_F(Tool, ASimulatedScannerIsUsedOnlyWhenAskedForAndAlwaysSaysSo) {
  Expect(Run("list"), 9, "--simulate");
  Expect(RunCommand("KELVARIN_VTSIM_SCENE=finger " KLV_RUN KLV_TOOL " list"), 9, "--simulate");
  Expect(RunCommand("KELVARIN_SDK_SIMULATE=1 " KLV_RUN KLV_TOOL " list"), 0, "the scanner is simulated");
  EXPECT_EQ(FactsOf("list --simulate")["simulated"], true);
  const StRun oLogged =
      RunCommand("KELVARIN_SDK_LOG=1 " KLV_RUN KLV_TOOL " info --simulate --json 2>/dev/null");
  EXPECT_EQ(nlohmann::json::parse(oLogged.sOutput)["simulated"], true) << "the library's lines go elsewhere";
  Expect(Run("capture --mode off --scene finger" + Out()), 0, "pels per metre, simulated");
  const std::vector<unsigned char> aPng = FileOf("full.png");
  for (const std::string& sText :
       {std::string("Simulated\0yes", 13), std::string("Serial Number\0VT40-AB0001", 25),
        std::string("Capture Mode\0off", 16)})
    EXPECT_NE(std::search(aPng.begin(), aPng.end(), sText.begin(), sText.end()), aPng.end()) << sText;
  Expect(RunCommand(InstallWithout(m_oFolder, "vtscanapi") + "list --simulate"), 9, "is not installed");
}

TEST_F(Tool, WithRootsRightsAScanLibraryThatOthersCanWriteIsRefused) {
  namespace fs = std::filesystem;
  const fs::path oLibrary = fs::path(KLV_TOOL).parent_path().parent_path() /
                            "lib/kelvarin-vt40/simulator/libkelvarinvtscanapi.gcc.Release.32.so";
  fs::copy(oLibrary, m_oFolder.Path());
  // Whoever runs the tests: in a name space of its own a user is root.
  const std::string sRun = "cd " + m_oFolder.Path() + " && " + (geteuid() == 0 ? "" : "unshare -r ") +
                           KLV_RUN KLV_TOOL " list --json 2>/dev/null";
  const auto Run = [&](const char* szName, mode_t nMode) {
    EXPECT_EQ(chmod(m_oFolder.Path(szName).c_str(), nMode), 0);
    return nlohmann::json::parse(RunCommand(sRun).sOutput);
  };
  EXPECT_EQ(Run("", 0755)["scanLibrary"]["path"], m_oFolder.Path("libkelvarinvtscanapi.gcc.Release.32.so"));
  EXPECT_EQ(Run("", 0777)["error"]["name"], "SCAN_LIBRARY");
  EXPECT_EQ(Run("", 0755)["exitCode"], 0);
  EXPECT_EQ(Run("libkelvarinvtscanapi.gcc.Release.32.so", 0664)["exitCode"], 9);
}

TEST_F(Tool, CapturesIntoPngFilesWithTheirResolution) {
  const nlohmann::json oFacts = FactsOf("capture --scene finger" + Out());
  EXPECT_EQ(oFacts["done"], true);
  EXPECT_EQ(oFacts["pictures"].size(), 2u);
  for (const auto& [szName, nSide, nPels] :
       {std::make_tuple("preview.png", 800u, 9842u), std::make_tuple("full.png", 1600u, 19685u)}) {
    std::FILE* pFile = std::fopen(m_oFolder.Path(szName).c_str(), "rb");
    ASSERT_NE(pFile, nullptr);
    png_structp pPng = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop pInfo = png_create_info_struct(pPng);
    png_init_io(pPng, pFile);
    png_read_info(pPng, pInfo);
    EXPECT_EQ(png_get_image_width(pPng, pInfo), nSide);
    EXPECT_EQ(png_get_image_height(pPng, pInfo), nSide);
    EXPECT_EQ(png_get_pixels_per_meter(pPng, pInfo), nPels);
    png_destroy_read_struct(&pPng, &pInfo, nullptr);
    std::fclose(pFile);
  }
}

TEST_F(Tool, WritesTheOtherFormatsByteByByte) {
  ASSERT_EQ(Run("capture --scene finger --mode off --format bmp" + Out()).nExit, 0);
  const std::vector<unsigned char> aBmp = FileOf("full.bmp");
  ASSERT_EQ(aBmp.size(), 14u + 40 + 1024 + 1600 * 1600);
  EXPECT_EQ(aBmp[0], 'B');
  EXPECT_EQ(LittleEndian(aBmp, 2), aBmp.size());
  EXPECT_EQ(LittleEndian(aBmp, 10), 14u + 40 + 1024);
  EXPECT_EQ(LittleEndian(aBmp, 18), 1600u);
  EXPECT_EQ(LittleEndian(aBmp, 38), 19685u);
  ASSERT_EQ(Run("capture --scene finger --mode full --frames 1 --format kif" + Out()).nExit, 0);
  const std::vector<unsigned char> aKif = FileOf("full.kif");
  ASSERT_EQ(aKif.size(), 54u + 1600 * 1600 + 4);
  EXPECT_EQ((std::vector<unsigned char>{aKif.begin(), aKif.begin() + 13}),
            (std::vector<unsigned char>{0x4B, 0x49, 0x46, 0, 0, 0, 0, 2, 1, 0, 0, 6, 0x40}));
  EXPECT_TRUE(std::equal(aKif.begin(), aKif.begin() + 4, aKif.end() - 4));
}

TEST_F(Tool, RollsAFingerAndEndsWithTheVerdict) {
  // However slow this machine is, the finger is seen at each of its positions.
  const std::string sScene = SceneFile(R"({"pacing": "consumer", "scanners": [{"fingers": [
      {"print": {"seed": 3, "width": 27}, "touch": 0.3, "lift": 3.4,
       "roll": {"path": [{"at": 0.4, "strip": 7}, {"at": 2.9, "strip": -7}]}}]}]})");
  const nlohmann::json oFacts = FactsOf("roll --frames " + m_oFolder.Path("frames") + sScene + Out());
  EXPECT_EQ(oFacts["result"], 0);
  EXPECT_EQ(oFacts["pictures"][0]["pelsPerMetre"], 19685);
  EXPECT_GT(oFacts["millimetres"], 22.0);
  const auto itFrames = std::filesystem::directory_iterator(m_oFolder.Path("frames"));
  EXPECT_EQ(std::distance(begin(itFrames), end(itFrames)), oFacts["frames"].size());
  EXPECT_TRUE(std::filesystem::exists(m_oFolder.Path("frames/frame-0001.png")));
  EXPECT_EQ(oFacts["verdict"]["name"], "KLV_SUCCESS");
  const StRun oShort =
      RunCommand("KELVARIN_VTSIM_PACING=consumer " KLV_RUN KLV_TOOL
                 " roll --no-postprocess --format bmp --json --scene roll-short 2>/dev/null" +
                 Out());
  EXPECT_EQ(oShort.nExit, 1);
  EXPECT_EQ(nlohmann::json::parse(oShort.sOutput)["verdict"]["name"], "KLV_VERDICT_TOO_SMALL");
  EXPECT_EQ(FileOf("roll.bmp").size(), 14u + 40 + 1024 + 800 * 800);
}

TEST_F(Tool, CalibratesFromTheTargetAndJudgesWhatIsStored) {
  const nlohmann::json oFacts = FactsOf("calibrate --scene target" + Out());
  EXPECT_EQ(oFacts["dots"], 64);
  EXPECT_GT(oFacts["residualMicrometres"]["before"]["rms"], 100.0);
  EXPECT_LT(oFacts["residualMicrometres"]["after"]["rms"], 10.0);
  EXPECT_TRUE(std::filesystem::exists(m_oFolder.Path("residual.png")));
  const std::vector<unsigned char> aRecord = FileOf("geometric.calibrate");
  const std::string sRaw = m_oFolder.Path("raw.png");
  EXPECT_EQ(Run("calibrate --from " + sRaw + " --out " + m_oFolder.Path("again")).nExit, 0);
  EXPECT_EQ(FileOf("again/geometric.calibrate"), aRecord);

  const std::string sCheck = "calibrate --check " + m_oFolder.Path();
  EXPECT_EQ(Run(sCheck).sOutput, "geometric.calibrate   good\n");
  const std::string sStored =
      R"({"scanners": [{"eprom": {"GEOCAL": {"file": "geometric.calibrate"BAD}}, "fingers": [{}]}]})";
  const auto Stored = [&](const std::string& sBad) {
    return SceneFile(std::string(sStored).replace(sStored.find("BAD"), 3, sBad));
  };
  EXPECT_EQ(Run("capture --mode off" + Out() + Stored("")).nExit, 0) << "the scanner works with it";
  EXPECT_EQ(Run("calibrate --check" + Stored("")).nExit, 0);
  Expect(
      Run("calibrate --check" + SceneFile(R"({"scanners": [{"eprom": {"BRGHTCAL": {"missing": true}}}]})")),
      1, "Error reading brightness calibration data.");
  const nlohmann::json oGeometry = FactsOf("calibrate --check" + Stored(R"(, "flip": [200])"), 1)["data"][0];
  EXPECT_EQ(oGeometry["good"], false);
  EXPECT_NE(oGeometry["reason"].get<std::string>().find("Calibration Data currupt"), std::string::npos);
}

TEST_F(Tool, TakesASignatureWhenThePenRests) {
  const auto Stroke = [&](const std::string& sPacing) {
    return SceneFile(R"({"pacing": ")" + sPacing + R"(", "scanners": [{"pen": {"strokes": [
      {"at": 0.5, "line": "straight", "speed": 40, "points": [[10, 15], [70, 25]]}]}}]})");
  };
  // However slow this machine is, no frame of the stroke is dropped.
  const nlohmann::json oFacts = FactsOf("sign --half --time 0.4 --format bmp" + Stroke("consumer") + Out());
  EXPECT_EQ(oFacts["done"], true);
  EXPECT_GT(oFacts["ink"]["width"], 900);
  EXPECT_LT(oFacts["ink"]["height"], 300);
  EXPECT_EQ(FileOf("preview.bmp").size(), 14u + 40 + 1024 + 800 * 400);
  EXPECT_EQ(FileOf("signature.bmp").size(), 14u + 40 + 1024 + 1600 * 800);
  const StRun oEndless = Run("sign --time 0 --timeout 3 --sigma 4" + Stroke("real") + Out());
  EXPECT_EQ(oEndless.nExit, 0) << oEndless.sOutput;
  EXPECT_TRUE(std::filesystem::exists(m_oFolder.Path("signature.png")));
}

TEST_F(Tool, TheManualPageDescribesEveryCommandAndOption) {
  std::ifstream oFile(KLV_MAN_PAGE);
  std::string sPage{std::istreambuf_iterator<char>(oFile), {}};
  // Dashes are escaped there.
  sPage.erase(std::remove(sPage.begin(), sPage.end(), '\\'), sPage.end());
  std::string sHelp = Run("--help").sOutput;
  std::istringstream oCommands(sHelp.substr(sHelp.find("Subcommands:\n")));
  int nCommands = 0;
  std::string sLine;
  std::getline(oCommands, sLine);
  while (std::getline(oCommands, sLine) && sLine.rfind("  ", 0) == 0) {
    // A description that goes on.
    if (sLine[2] == ' ') continue;
    const std::string sCommand = sLine.substr(2, sLine.find(' ', 2) - 2);
    EXPECT_TRUE(sPage.find("\n.B " + sCommand + "\n") != std::string::npos ||
                sPage.find("\n.BI " + sCommand + " ") != std::string::npos ||
                sPage.find("\n.BI \"" + sCommand + " ") != std::string::npos)
        << sCommand;
    sHelp += Run(sCommand + " --help").sOutput;
    ++nCommands;
  }
  EXPECT_GE(nCommands, 10) << sHelp;
  for (size_t nAt = 0; (nAt = sHelp.find("--", nAt)) != std::string::npos; ++nAt) {
    const size_t nEnd = sHelp.find_first_not_of("abcdefghijklmnopqrstuvwxyz-", nAt);
    EXPECT_NE(sPage.find(sHelp.substr(nAt, nEnd - nAt)), std::string::npos) << sHelp.substr(nAt, nEnd - nAt);
  }
}

}  // namespace
