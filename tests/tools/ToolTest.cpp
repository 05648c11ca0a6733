// The command-line tool as a process: exit codes, facts and files.
#include <gtest/gtest.h>
#include <png.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "TemporaryDirectory.h"

namespace {

struct StRun {
  int nExit = -1;
  std::string sOutput;  ///< standard output and standard error
};

class Tool : public testing::Test {
 protected:
  static StRun Run(const std::string& sArguments) {
    return RunCommand(std::string(KLV_RUN KLV_TOOL) + " " + sArguments);
  }
  static StRun RunCommand(const std::string& sCommand) {
    StRun oRun;
    std::FILE* pPipe = popen((sCommand + " 2>&1").c_str(), "r");
    if (pPipe == nullptr) return oRun;
    char aBuffer[4096];
    for (size_t n; (n = std::fread(aBuffer, 1, sizeof(aBuffer), pPipe)) != 0;)
      oRun.sOutput.append(aBuffer, n);
    const int nStatus = pclose(pPipe);
    oRun.nExit = WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
    return oRun;
  }
  static void Expect(const StRun& oRun, int nExit, const char* szText) {
    EXPECT_EQ(oRun.nExit, nExit) << oRun.sOutput;
    EXPECT_NE(oRun.sOutput.find(szText), std::string::npos) << oRun.sOutput;
  }
  static nlohmann::json FactsOf(const std::string& sArguments, int nExit = 0) {
    const StRun oRun = Run(sArguments + " --json");
    EXPECT_EQ(oRun.nExit, nExit) << oRun.sOutput;
    return nlohmann::json::parse(oRun.sOutput);
  }

  std::string Out() const { return " --out " + m_oFolder.Path(); }
  std::vector<unsigned char> FileOf(const std::string& sName) const {
    std::ifstream oFile(m_oFolder.Path(sName), std::ios::binary);
    return {std::istreambuf_iterator<char>(oFile), {}};
  }
  std::string SceneFile(const std::string& sText) const {
    const std::string sFile = m_oFolder.Path("scene.json");
    std::ofstream(sFile) << sText;
    return " --scene " + sFile;
  }

  const ClTemporaryDirectory m_oFolder;
};

unsigned long LittleEndian(const std::vector<unsigned char>& aBytes, size_t nOffset) {
  unsigned long nValue = 0;
  for (size_t n = 4; n-- > 0;) nValue = nValue << 8 | aBytes.at(nOffset + n);
  return nValue;
}

TEST_F(Tool, ListsScannersAndWhatTheyAre) {
  EXPECT_EQ(Run("list --scene finger").sOutput, "VT40-AB0001\n");
  const nlohmann::json oFacts = FactsOf("info --scene finger");
  EXPECT_EQ(oFacts["library"], "1.5.1421.5");
  EXPECT_EQ(oFacts["image"]["width"], 1600);
  EXPECT_EQ(oFacts["preview"]["pelsPerMetre"], 9842);
  EXPECT_EQ(Run("property get --scene finger nAutoCaptureBeep").sOutput, "0\n");
  EXPECT_EQ(Run("property set --scene finger nAutoCaptureBeep 1").nExit, 0);
}

TEST_F(Tool, SetsLightsBuzzerAndDisplay) {
  const auto Facts = [](const std::string& sArguments) {
    nlohmann::json oFacts = FactsOf(sArguments + " --scene empty");
    oFacts.erase("serial");
    return oFacts.dump();
  };
  EXPECT_EQ(Facts("led 3 4"), R"({"led":3,"state":4})");
  EXPECT_EQ(Facts("beep"), R"({"values":[300,100]})");
  EXPECT_EQ(Facts("display \"Put your thumb on the platen now\""),
            R"({"lines":["Put your thumb o","n the platen now"]})");
  EXPECT_EQ(Facts("display Hello World"), R"({"lines":["Hello           ","World"]})");
}

TEST_F(Tool, WithoutTheLivenessLibraryAutoLiveIsRefused) {
  const std::filesystem::path oBuild = std::filesystem::path(KLV_TOOL).parent_path().parent_path();
  std::filesystem::create_directory(m_oFolder.Path("bin"));
  std::filesystem::create_directory(m_oFolder.Path("lib"));
  std::filesystem::copy(KLV_TOOL, m_oFolder.Path("bin"));
  for (const auto& oEntry : std::filesystem::directory_iterator(oBuild / "lib")) {
    if (oEntry.path().filename().string().find("fakefinger") == std::string::npos)
      std::filesystem::copy(oEntry, m_oFolder.Path("lib"));
  }
  // The tool runs in that directory, so that nothing is found by way of the working directory.
  const std::string sTool = "cd " + m_oFolder.Path("bin") + " && LD_LIBRARY_PATH=../lib " KLV_RUN "./vt40 ";
  EXPECT_EQ(RunCommand(sTool + "capture --mode off --scene finger" + Out()).nExit, 0);
  Expect(RunCommand(sTool + "capture --mode auto-live --scene settling-slap" + Out()), 2, "(-103)");
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
  Expect(RunCommand("KELVARIN_VTSIM_PACING=consumer " KLV_RUN KLV_TOOL
                    " roll --no-postprocess --format bmp --scene roll-short" +
                    Out()),
         1, "too small");
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

TEST_F(Tool, EndsWithTheCodeOfWhatWentWrong) {
  const auto Expect = [](const std::string& sArguments, int nExit, const char* szText) {
    SCOPED_TRACE(sArguments);
    Tool::Expect(Run(sArguments), nExit, szText);
  };
  Expect("capture --scene empty" + Out(), 1, "no finger");
  Expect("capture --mode sideways", 2, "--mode");
  Expect("capture --scene empty --print x.png", 2, "exclude each other");
  Expect("property get --scene finger none", 2, "unknown");
  Expect("roll --timeout 1 --scene empty" + Out(), 5, "no finger rolled");
  Expect("sign --timeout 1 --scene empty" + Out(), 5, "nothing was signed");
  Expect("sign --sigma 0.4", 2, "--sigma");
  Expect("led 12 0", 2, "12");
  Expect("display", 2, "text is required");
  Expect("display 'This text is longer than it may be'", 2, "34 characters");
  Expect("display 'Seventeen letters' x", 2, "17 characters");
  Expect("display Übung", 2, "ASCII");
  Expect("list" + SceneFile(R"({"scanners": []})"), 3, "no scanner");
  Expect("info --scene finger --serial VT40-XX", 3, "VT40-XX");
  Expect("info" +
             SceneFile(R"({"scanners": [{}], "faults": [{"call": "VTScanAPICreateHandle", "result": -61}]})"),
         4, "cannot be opened");
  Expect("list" + SceneFile(R"({"scanners": [], "colour": 1})"), 7, "scene");
  Expect("list --scene slap-rihgt", 7, "slap-rihgt");
  Expect("capture --print " + m_oFolder.Path("none.png"), 7, "No such file");
  Expect(R"(calibrate --scene '{"scanners": [{"target": {"missing": [5]}}]}')" + Out(), 1, "dot count");
  Expect("calibrate --check x --from y.png", 2, "excludes");
  Expect("calibrate --check --scene empty --serial VT40-XX", 3, "VT40-XX");
  Expect("calibrate --check /dev/null", 7, "/dev/null/geometric.calibrate");
  const std::string sBlock = m_oFolder.Path("geometric.calibrate");
  std::ofstream(sBlock) << std::string(8193, 'x');
  Expect("calibrate --check " + m_oFolder.Path(), 7, "more than the 8192 bytes");
  std::filesystem::remove(sBlock);
  ASSERT_EQ(mkfifo(sBlock.c_str(), 0600), 0);
  for (const std::string& sFile : {sBlock, std::string("/dev/zero")}) {
    Expect("calibrate --from " + sFile + Out(), 7, "no regular file");
    Expect("capture --print " + sFile + Out(), 7, "no regular file");
    Expect("list --scene " + sFile, 7, "scene");
  }
  Expect("calibrate --check " + m_oFolder.Path(), 7, "no regular file");
  Expect("calibrate --from /dev/null" + Out(), 7, "/dev/null");
  Expect("capture --scene finger --out /dev/null/x", 7, "/dev/null/x");
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

TEST_F(Tool, AScannerThatGoesDuringTheCaptureIsLost) {
  Expect(Run("capture --mode off" + Out() + SceneFile(R"({"scanners": [{"serial": "VT40-AB0001"}],
      "faults": [{"unplug": "VT40-AB0001", "at": 0.0001}]})")),
         6, "VT40-AB0001");
  Expect(Run("display Hello" + SceneFile(R"({"scanners": [{}], "faults": [
      {"call": "VTScanAPIApplyInternalCommand", "first": 9, "result": -60}]})")),
         6, "display of scanner VT40-AB0001");
}

}  // namespace
