// How the tool ends: exit codes, signals, lost scanners, and files and outputs that cannot be written.
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

#include "ToolFixture.h"

namespace {

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
  for (const char* szBlock :
       {R"("GEOCAL": {"flip": [200]})", R"("GEOCAL": {"missing": true})", R"("BRGHTCAL": {"missing": true})"})
    Expect("info" + SceneFile(std::string(R"({"scanners": [{"eprom": {)") + szBlock + "}}]}"), 8,
           "cannot be opened");
  Expect("info" + SceneFile(R"({"scanners": [{}], "libraryVersion": "1.11"})"), 9, "(-103)");
  Expect(
      "info" + SceneFile(R"({"scanners": [{}], "faults": [{"call": "VTScanAPIGetVersion", "result": -60}]})"),
      6, "cannot be opened");
  Expect("info" + SceneFile(
                      R"({"scanners": [{}], "faults": [{"call": "VTScanAPICreateHandle", "result": -777}]})"),
         11, "(-777)");
  for (const char* szCommand : {"led 3 4", "beep"})
    Expect(szCommand + SceneFile(R"({"scanners": [{}], "faults": [
               {"call": "VTScanAPIBeep", "result": -777},
               {"call": "VTScanAPISetStatusLED", "first": 2, "result": -777}]})"),
           11, "of scanner VT40-AB0001");
  Expect("list" + SceneFile(R"({"scanners": [], "colour": 1})"), 7, "\"colour\" is not a known key");
  Expect("list --scene slap-rihgt", 7, "slap-rihgt");
  Expect("capture --print " + m_oFolder.Path("none.png") + Out(), 7, "No such file");
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
  // A chunk that claims 1.6 GB, for which the PNG library would take memory at once.
  const std::string sPng = m_oFolder.Path("claims.png");
  std::ofstream(sPng, std::ios::binary) << std::string(
                                               "\x89PNG\r\n\x1a\n\x64\0\0\x12"
                                               "eXIf",
                                               16)
                                        << std::string(8, '\0');
  Expect("calibrate --from " + sPng + Out(), 7, "a chunk of 1677721618 bytes at 8 is longer than the file");
  Expect("capture --scene finger --out /dev/null/x", 7, "/dev/null/x");
}

TEST_F(Tool, AScannerThatGoesDuringTheCaptureIsLost) {
  Expect(Run("capture --mode off" + Out() + SceneFile(R"({"scanners": [{"serial": "VT40-AB0001"}],
      "faults": [{"unplug": "VT40-AB0001", "at": 0.0001}]})")),
         6, "VT40-AB0001");
  Expect(Run("display Hello" + SceneFile(R"({"scanners": [{}], "faults": [
      {"call": "VTScanAPIApplyInternalCommand", "first": 9, "result": -60}]})")),
         6, "display of scanner VT40-AB0001");
}

TEST_F(Tool, AnUnpluggedScannerIsNoticedBesideACallThatWaits) {
  // No sequence comes, so that the library waits for ten seconds and more.
  const std::string sScene =
      SceneFile(R"({"pacing": "real", "scanners": [{"serial": "VT40-AB0001"}], "faults": [
      {"unplug": "VT40-AB0001", "at": 1}]})");
  const auto tBegin = std::chrono::steady_clock::now();
  Expect(Run("capture --mode auto" + Out() + sScene), 6, "VT40-AB0001 was unplugged");
  EXPECT_LT(std::chrono::steady_clock::now() - tBegin, std::chrono::seconds(5));
}

/// Seconds that a command takes.
double SecondsOf(const std::string& sCommand, int nExit) {
  const auto tBegin = std::chrono::steady_clock::now();
  const int nStatus = std::system((sCommand + " >/dev/null 2>&1").c_str());
  EXPECT_EQ(WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1, nExit) << sCommand;
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - tBegin).count();
}

TEST_F(Tool, SignalsEndItWithinASecondAndWhatWasTakenIsWritten) {
  // The first sequence comes, and from then on the scan library keeps its callers waiting.
  const std::string sSilent = SceneFile(R"({"pacing": "real", "scanners": [{"fingers": [{}]}], "faults": [
      {"call": "VTScanAPILockRawSequence", "first": 4, "repeat": 0, "result": -101}]})");
  // A slow machine has begun by the signal, and has a second more than is promised for its end.
  const auto ExpectEnd = [&](const std::string& sSignal, int nExit, const std::string& sArguments) {
    constexpr double cdSignal = 2.0, cdEnd = 2.0;
    const std::string sTool = "timeout --preserve-status -s " + sSignal + " 2 " KLV_RUN KLV_TOOL " ";
    EXPECT_LT(SecondsOf(sTool + sArguments + Out(), nExit), cdSignal + cdEnd) << sArguments;
  };
  ExpectEnd("TERM", 143, "roll --scene empty");
  for (const auto& [szSignal, nExit] : {std::pair{"INT", 130}, {"TERM", 143}}) {
    ExpectEnd(szSignal, nExit, "capture --frames 100000 --scene finger");
    EXPECT_TRUE(std::filesystem::remove(m_oFolder.Path("preview.png")));
  }
  ExpectEnd("TERM", 143, "capture --mode full --frames 9 " + sSilent);
}

TEST_F(Tool, AFolderIsTriedFirstAndAFullDiskLeavesNoHalfFile) {
  // Where nothing can be written, nothing is captured: a scene that does not exist is not even read.
  for (const char* szCommand : {"capture", "roll", "sign"})
    Expect(Run(std::string(szCommand) + " --scene none --out /dev/null/x"), 7, "/dev/null/x");
  const std::string sLimited =
      "ulimit -f 40; trap '' XFSZ; " KLV_RUN KLV_TOOL " capture --mode off --scene finger";
  std::ofstream(m_oFolder.Path("full.png")) << "the last one";
  Expect(RunCommand(sLimited + Out()), 7, "full.png: File too large");
  EXPECT_EQ(FileOf("full.png").size(), 12u) << "the file that was there stands";
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_oFolder.Path()), {}), 1);
}

TEST_F(Tool, AnOutputThatCannotBeWrittenIsAFailureOfItsOwn) {
  for (const char* szOutput : {">/dev/full", ">&-"})
    Expect(Run(std::string("list --simulate --json ") + szOutput), 7,
           "the standard output cannot be written");
  // A reader that has gone: the pipe's other end is closed before the tool has found its scanner.
  const std::string sCode = m_oFolder.Path("code");
  RunCommand("(sleep 0.3; " KLV_RUN KLV_TOOL " list --simulate; echo $? >" + sCode + ") | true");
  EXPECT_EQ(FileOf("code"), (std::vector<unsigned char>{'7', '\n'}));
}

TEST_F(Tool, MistakesInTheLineAreAnsweredWithTheNearestName) {
  Expect(Run("captrue"), 2, "did you mean \"capture\"?");
  Expect(Run("capture --simluate"), 2, "did you mean \"--simulate\"?");
  Expect(Run("--simulate capture"), 2, "\"--simulate\" must stand after \"capture\"");
  Expect(Run("capture --record x"), 2, "\"--record\" must stand before the command");
  Expect(Run("list capture"), 2, "\"capture\" is unknown; see vt40 list --help");
  Expect(Run("capture --frames 3 --mode auto"), 2, "--frames: has no effect with --mode auto");
  Expect(Run("capture --count 3"), 2, "--count: has no effect with --mode preview");
  Expect(Run("capture --min-score 3 --mode auto"), 2, "--min-score");
  const nlohmann::json oFacts = FactsOf("capture --frames x", 2);
  EXPECT_EQ(oFacts["error"]["name"], "USAGE");
  EXPECT_EQ(oFacts["exitCode"], 2);
  for (const char* szArtefact : {"{false}", "(1x)", "INT in"})
    EXPECT_EQ(Run("roll --help; " KLV_RUN KLV_TOOL " display --help; " KLV_RUN KLV_TOOL " led --help")
                  .sOutput.find(szArtefact),
              std::string::npos);
}

// The planted libraries are copies of the simulated one, as it was built.
TEST_F(Tool, LoadsTheScanLibraryThatTheSearchFindsFirstOrNone) {
  Expect(RunCommand(KLV_CHECKS "/check-search " KLV_TOOL), 0, "15 scenarios");
}

}  // namespace
