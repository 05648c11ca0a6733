// Log lines as they leave a process, for each setting of the environment that it was started with.
#include <gmock/gmock.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;

std::vector<std::string> LinesWith(const std::string& szEnvironment) {
  const std::string szCommand = "env -u KELVARIN_SDK_LOG -u KELVARIN_SDK_LOG_LEVEL " + szEnvironment +
                                " " KLV_RUN "'" KLV_LOG_PROGRAM "'";
  std::vector<std::string> aLines;
  FILE* pPipe = popen(szCommand.c_str(), "r");
  if (pPipe == nullptr) return aLines;
  char szLine[4096];
  while (std::fgets(szLine, sizeof(szLine), pPipe) != nullptr) {
    std::string szText = szLine;
    szText.pop_back();
    aLines.push_back(szText);
  }
  EXPECT_EQ(pclose(pPipe), 0);
  return aLines;
}

const char* const cszLimits = "limits 0 -49 -49";
const char* const cszWords = "words 0 0 1";

TEST(Logging, NothingIsWrittenUnlessTheSwitchIsExactlyOne) {
  for (const char* szEnvironment :
       {"", "KELVARIN_SDK_LOG=2", "KELVARIN_SDK_LOG=true", "KELVARIN_SDK_LOG=1x", "KELVARIN_SDK_LOG_LEVEL=7"})
    EXPECT_THAT(LinesWith(szEnvironment), ElementsAre(cszLimits, cszWords)) << szEnvironment;
}

TEST(Logging, ALineIsTimeStampLevelAndMessage) {
  const std::vector<std::string> aLines = LinesWith("KELVARIN_SDK_LOG=1");
  ASSERT_EQ(aLines.size(), 7u);
  const std::string szStamp = "20[0-9][0-9]-[A-Z][a-z][a-z]-[0-3][0-9] [0-9:]{8}(\\.[0-9]{6})? ";
  EXPECT_THAT(aLines[0], MatchesRegex(szStamp + "\\[Error\\] - LS_VT40GetImage Error\\(-43\\): text"));
  EXPECT_THAT(aLines[1], HasSubstr(" [Debug] - LS_VT40GetImage Enter"));
  EXPECT_THAT(aLines[2], HasSubstr(" [Emergency] - first"));
  EXPECT_THAT(aLines[3], HasSubstr(" [Unknown] - odd"));
  EXPECT_THAT(aLines[4], HasSubstr(" [Error] - " + std::string(1023, 'a')));
  EXPECT_EQ(aLines[5], cszLimits);
}

TEST(Logging, TheLevelDropsWhatIsLessUrgentAndIsIgnoredOutsideItsRange) {
  const std::vector<std::string> aErrors = LinesWith("KELVARIN_SDK_LOG=1 KELVARIN_SDK_LOG_LEVEL=3");
  ASSERT_EQ(aErrors.size(), 6u);
  EXPECT_THAT(aErrors[0], HasSubstr("[Error]"));
  EXPECT_THAT(aErrors[1], HasSubstr("[Emergency]"));
  EXPECT_EQ(LinesWith("KELVARIN_SDK_LOG=1 KELVARIN_SDK_LOG_LEVEL=8").size(), 7u);
  EXPECT_EQ(LinesWith("KELVARIN_SDK_LOG=1 KELVARIN_SDK_LOG_LEVEL=-1").size(), 7u);
}

}  // namespace
