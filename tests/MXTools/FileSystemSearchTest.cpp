// File names and the search along path lists.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <string>

#include "MXTools/Exception.h"
#include "MXTools/FileSystem.h"
#include "MXTools/XChar.h"
#include "TemporaryDirectory.h"

namespace {

TEST(GetNextPath, EntriesComeOneByOneAndEmptyOnesDoNot) {
  const char* szCursor = ";;a; b\xC3\xBC c\n;";
  char szEntry[16];
  EXPECT_EQ(GetNextPath(&szCursor, szEntry, sizeof(szEntry)), 1u);
  EXPECT_STREQ(szEntry, "a");
  EXPECT_EQ(GetNextPath(&szCursor, szEntry, sizeof(szEntry)), 5u);
  EXPECT_STREQ(szEntry, "b\xC3\xBC c") << "a blank within stays, letters beyond ASCII are no white space";
  EXPECT_EQ(GetNextPath(&szCursor, szEntry, sizeof(szEntry)), 0u);
}

TEST(GetNextPath, ABufferWithoutRoomForTheZeroLeavesTheCursor) {
  const char* szList = "abc;d";
  const char* szCursor = szList;
  char szEntry[4];
  EXPECT_EQ(GetNextPath(&szCursor, szEntry, 3), 3u);
  EXPECT_EQ(GetNextPath(&szCursor, nullptr, 100), 3u);
  EXPECT_EQ(szCursor, szList);
  EXPECT_EQ(GetNextPath(&szCursor, szEntry, 4), 3u);
  EXPECT_EQ(szCursor, szList + 3);
}

TEST(NormalizeFilename, BackslashesTurnAndALeadingPairLosesOne) {
  char szOut[32] = "";
  EXPECT_EQ(FileSystem::NormalizeFilename("\\\\server\\dir", nullptr, 99), 13u);
  EXPECT_EQ(FileSystem::NormalizeFilename("\\\\server\\dir", szOut, 13), 0u);
  EXPECT_STREQ(szOut, "/server/dir");
  wchar_t wszName[] = L"a\\b";
  EXPECT_EQ(FileSystem::NormalizeFilename(wszName, wszName, 4), 0u);
  EXPECT_EQ(std::wcscmp(wszName, L"a/b"), 0);
  const char* szNone = nullptr;
  EXPECT_THROW(FileSystem::NormalizeFilename(szNone, szOut, 4), ClExKelvarin);
}

class SearchPath : public testing::Test {
 protected:
  void Touch(const std::string& szName) const {
    std::filesystem::create_directories(std::filesystem::path(m_oDirectory.Path(szName)).parent_path());
    std::ofstream(m_oDirectory.Path(szName)) << "x";
  }
  std::string Find(const std::string& szPath, const char* szName, const char* szExt = nullptr) const {
    char szOut[FileSystem::cnMaxPath] = "";
    char* szFile = nullptr;
    const unsigned int nLength =
        FileSystem::SearchPath(szPath.c_str(), szName, szExt, sizeof(szOut), szOut, &szFile);
    EXPECT_EQ(nLength, std::string(szOut).size());
    if (nLength != 0) {
      EXPECT_EQ(std::filesystem::path(szOut).filename().string(), szFile);
    }
    return szOut;
  }
  ClTemporaryDirectory m_oDirectory;
};

TEST_F(SearchPath, TheFirstDirectoryThatHasTheFileWins) {
  const std::string szList = m_oDirectory.Path("one") + ";" + m_oDirectory.Path("two/");
  Touch("two/lib.so");
  EXPECT_EQ(Find(szList, "lib.so"), m_oDirectory.Path("two/lib.so"));
  Touch("one/lib.so");
  EXPECT_EQ(Find(szList, "lib.so"), m_oDirectory.Path("one/lib.so"));
  EXPECT_EQ(Find(szList, "other.so"), "");
  EXPECT_EQ(FileSystem::SearchPath(szList.c_str(), nullptr, nullptr, 0, nullptr, nullptr), 0u);
}

TEST_F(SearchPath, AnExtensionIsAddedToANameWithoutOneAndMustBeginWithADot) {
  Touch("one/lib.so");
  const std::string szOne = m_oDirectory.Path("one"), szFile = m_oDirectory.Path("one/lib.so");
  EXPECT_EQ(Find(szOne, "lib", ".so"), szFile);
  EXPECT_EQ(Find(szOne, "lib", "so"), "");
  EXPECT_EQ(Find(szOne, "lib.so", ".dll"), szFile);
  char szOut[8] = "kept";
  EXPECT_EQ(FileSystem::SearchPath(szOne.c_str(), "lib.so", nullptr, 8, szOut, nullptr), szFile.size())
      << "a result that does not fit is the length alone";
  EXPECT_STREQ(szOut, "kept");
}

TEST_F(SearchPath, ADotIsTheWorkingDirectoryAndTheResultIsAbsolute) {
  Touch("here.txt");
  const std::filesystem::path oBefore = std::filesystem::current_path();
  std::filesystem::current_path(m_oDirectory.Path(""));
  const std::string szFound = Find("none;.", "here.txt");
  char szDefault[FileSystem::cnMaxPath] = "";
  EXPECT_NE(SearchDefaultPath("here.txt", nullptr, sizeof(szDefault), szDefault, nullptr), 0u);
  std::filesystem::current_path(oBefore);
  EXPECT_EQ(szFound, m_oDirectory.Path("here.txt"));
  EXPECT_EQ(szFound, szDefault);
}

TEST_F(SearchPath, TheDefaultPlacesAreTheListsOfTheEnvironment) {
  Touch("bin/tool");
  Touch("lib/tool.so");
  ASSERT_EQ(
      setenv("LD_LIBRARY_PATH", (m_oDirectory.Path("none") + ":" + m_oDirectory.Path("lib")).c_str(), 1), 0);
  char szOut[FileSystem::cnMaxPath] = "";
  const unsigned int nLength = FileSystem::SearchPath(nullptr, "tool", ".so", sizeof(szOut), szOut, nullptr);
  unsetenv("LD_LIBRARY_PATH");
  EXPECT_EQ(szOut, m_oDirectory.Path("lib/tool.so"));
  EXPECT_EQ(nLength, std::string(szOut).size());
}

TEST(XChar, TextGoesToUtf8AndBackAndIsMeasuredFirst) {
  const wchar_t wszText[] = L"\u00FC\u20AC";
  EXPECT_EQ(ConvertWideCharToSBCS(wszText, sizeof(wszText), nullptr, 0), 6);
  char szText[6];
  EXPECT_EQ(ConvertWideCharToSBCS(wszText, sizeof(wszText), szText, 5), -1);
  EXPECT_EQ(ConvertWideCharToSBCS(wszText, sizeof(wszText), szText, 6), 6);
  EXPECT_STREQ(szText, "\xC3\xBC\xE2\x82\xAC");
  wchar_t wszBack[3];
  EXPECT_EQ(ConvertSBCSToWidechar(szText, 6, wszBack, sizeof(wszBack)), 3);
  EXPECT_STREQ(wszBack, wszText);
  EXPECT_EQ(ConvertSBCSToWidechar(nullptr, 6, nullptr, 0), 0);
  EXPECT_EQ(ConvertSBCSToWidechar("\xFF", 1, wszBack, sizeof(wszBack)), -1);
  EXPECT_THROW(ConvertSBCSToWidechar("\xFF", 1, nullptr, 0), ClExSystem);
  // Longer than what is counted at a time.
  EXPECT_EQ(NarrowText(std::wstring(300, L'\u00FC').c_str()).size(), 600u);
}

}  // namespace
