// Names of files as text, and what changes files and directories on disk.
#include "MXTools/FileSystem.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <string>
#include <tuple>

#include "MXTools/FindFile.h"
#include "Raised.h"
#include "TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;

/// The text that a call makes of a buffer of 64 letters, or its error number.
std::string Text(const std::string& szBefore, const std::function<void(char*, unsigned int)>& oCall) {
  std::string szBuffer = szBefore;
  szBuffer.resize(64);
  const long nNumber = NumberOf([&] { oCall(&szBuffer[0], 64); });
  return nNumber == 0 ? szBuffer.c_str() : std::to_string(nNumber);
}

std::string WithExtension(const char* szExt, const std::string& szName) {
  return Text(szName, [&](char* sz, unsigned int n) { FileSystem::ChangeExtension(szExt, sz, n); });
}
std::string Added(const std::string& szPath, const char* szAppend) {
  return Text(szPath, [&](char* sz, unsigned int n) { FileSystem::AddPath(sz, n, szAppend); });
}
std::string Absolute(const char* szRoot, const char* szRelative) {
  return Text("", [&](char* sz, unsigned int n) { FileSystem::MakeAbsolutePath(szRoot, szRelative, sz, n); });
}
std::string Relative(const char* szRoot, const char* szPath) {
  return Text("", [&](char* sz, unsigned int n) { FileSystem::MakeRelativePath(szRoot, szPath, sz, n); });
}

TEST(FileNames, AnExtensionIsReplacedOrAddedInTheFilePartOnly) {
  EXPECT_EQ(WithExtension("bmp", "a/b.c/d"), "a/b.c/d.bmp");
  EXPECT_EQ(WithExtension(".bmp", "a\\d.tar.gz"), "a\\d.tar.bmp");
  EXPECT_EQ(WithExtension("bmp", ""), "-101");
  EXPECT_EQ(WithExtension("bmp", "a/"), "-101");
  EXPECT_EQ(WithExtension(nullptr, "a"), "-23");
}

TEST(FileNames, PathsAreJoinedByOneSeparatorAndEndInOne) {
  EXPECT_EQ(Added("a", "b"), "a/b/");
  EXPECT_EQ(Added("a\\", "b/"), "a\\b/");
  EXPECT_EQ(Added("a", ""), "a/");
  EXPECT_EQ(Added("", ""), "");
  EXPECT_EQ(Added("a", nullptr), "-23");
}

TEST(FileNames, RelativeAndAbsoluteOnesGoIntoEachOther) {
  EXPECT_EQ(Absolute("/a/b/", "c"), "/a/b/c");
  EXPECT_EQ(Absolute("/a/b/", "./../c"), "/a/c");
  EXPECT_EQ(Absolute("/a/", "../../../c"), "/c");
  EXPECT_EQ(Absolute("/a/", "/x"), "/x");
  EXPECT_EQ(Absolute("a/", "c"), "-101");
  EXPECT_EQ(Absolute("/a", "c"), "-101");
  EXPECT_EQ(Absolute(nullptr, "c"), "-23");
  EXPECT_EQ(Relative("/a/b/", "/a/b/c"), "c");
  EXPECT_EQ(Relative("/a/bc/", "/a/bd/e"), "../bd/e") << "whole directories are compared, not letters";
  EXPECT_EQ(Relative("/a/b/c/", "/x"), "../../../x");
  EXPECT_EQ(Absolute("/a/bc/", Relative("/a/bc/", "/a/bd/e").c_str()), "/a/bd/e");
}

TEST(FileNames, ABufferOfEverySizeGetsTheWholeTextOrNothingAfterItsEnd) {
  setenv("HOME", "/home/me", 1);
  using namespace FileSystem;
  const std::tuple<std::string, std::string, std::function<void(char*, unsigned int)>> aCases[] = {
      {"", "a/b\\", [](char* sz, unsigned int n) { GetPath("a/b\\c.d", sz, n); }},
      {"", "", [](char* sz, unsigned int n) { GetPath("c.d", sz, n); }},
      {"", "c.d", [](char* sz, unsigned int n) { GetFileName("a/b\\c.d", sz, n); }},
      {"", "b.tar", [](char* sz, unsigned int n) { GetFileNameWithoutExt("a.x/b.tar.gz", sz, n); }},
      {"", "a/", [](char* sz, unsigned int n) { GetPathAndName("a/c", sz, n, nullptr, 0); }},
      {"", "/home/me/", [](char* sz, unsigned int n) { GetTempFileDir(sz, n); }},
      {"", "/a/c/d", [](char* sz, unsigned int n) { MakeAbsolutePath("/a/b/", "../c/d", sz, n); }},
      {"", "/x/y", [](char* sz, unsigned int n) { MakeAbsolutePath("/a/b/", "/x/y", sz, n); }},
      {"", "../../x", [](char* sz, unsigned int n) { MakeRelativePath("/a/b/", "/x", sz, n); }},
      {"", "c/d", [](char* sz, unsigned int n) { MakeRelativePath("/a/b/", "c/d", sz, n); }},
      {"ab", "ab/c/", [](char* sz, unsigned int n) { AddPath(sz, n, "c"); }},
      {"ab.c", "ab.html", [](char* sz, unsigned int n) { ChangeExtension("html", sz, n); }},
      {"", "/s/d", [](char* sz, unsigned int n) {
         if (NormalizeFilename("\\\\s\\d", sz, n) != 0) KLV_RAISE_NUMBER(-21);
       }}};
  for (const auto& [szBefore, szAfter, oCall] : aCases) {
    for (size_t nSize = szBefore.size() + 1; nSize < szAfter.size() + 3; ++nSize) {
      std::string szBuffer(64, '\xA5');
      szBuffer.replace(0, szBefore.size() + 1, szBefore.c_str(), szBefore.size() + 1);
      const long nNumber =
          NumberOf([&, &oFill = oCall] { oFill(&szBuffer[0], static_cast<unsigned int>(nSize)); });
      EXPECT_EQ(szBuffer.substr(nSize), std::string(64 - nSize, '\xA5')) << szAfter << ", " << nSize;
      const bool bNormalized = szAfter == "/s/d";  // told the size of what goes in
      const bool bFits = nSize > szAfter.size() + (bNormalized ? 1 : 0);
      EXPECT_EQ(nNumber, bFits ? 0 : -21) << szAfter << ", " << nSize;
      EXPECT_TRUE(!bFits || szBuffer.c_str() == szAfter) << szBuffer;
    }
  }
}

TEST(WildCard, AStarIsAnyRunAndAQuestionMarkOneCharacterButNoDot) {
  const std::tuple<const char*, const char*, bool> aCases[] = {
      {"a?c", "abc", true},       {"a?c", "a.c", false}, {"a?", "a", false},
      {"*.bmp", "x.y.bmp", true}, {"*ab", "aab", true},  {"a*b**c", "a1b2c3c", true},
      {"a*b*c", "a1b2c3", false}, {"*", "", true},       {"", "a", false}};
  for (const auto& [szPattern, szName, bMatch] : aCases)
    EXPECT_EQ(FileSystem::ClWildCard(szPattern).Match(szName), bMatch) << szPattern << " " << szName;
  const char szText[] = "abc.x";
  EXPECT_TRUE(FileSystem::ClWildCard("ab?").Match(szText, szText + 3));
}

class Disk : public testing::Test {
 protected:
  void Write(const std::string& szName, const std::string& szContent) const {
    std::ofstream(m_oDirectory.Path(szName), std::ios::binary) << szContent;
  }
  std::string Read(const std::string& szName) const {
    std::ifstream oFile(m_oDirectory.Path(szName), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(oFile), {});
  }
  bool Exists(const std::string& szName) const { return fs::exists(m_oDirectory.Path(szName)); }
  void Create(const std::string& szName, bool bRecursive) const {
    FileSystem::CreateDirectory(m_oDirectory.Path(szName).c_str(), bRecursive);
  }
  std::set<std::string> Find(const std::string& szPattern) const {
    std::set<std::string> aNames;
    FileSystem::ClFindFile oFind(m_oDirectory.Path(szPattern).c_str());
    for (; oFind.HasEntry(); oFind.Next()) {
      const char* szKind = oFind.IsSubDirectory() ? "/" : oFind.IsSystemFile() ? "!" : "";
      aNames.insert(oFind.Name() + std::string(szKind));
    }
    return aNames;
  }
  ClTemporaryDirectory m_oDirectory;
};

TEST_F(Disk, DirectoriesAreMadeWithTheirParentsAndTwice) {
  EXPECT_THROW(Create("a/b/c", false), ClExSystem);
  Create("a/b/c/", true);
  Create("a/b/c", false);
  EXPECT_TRUE(Exists("a/b/c"));
  Write("file", "x");
  EXPECT_THROW(Create("file/d", true), ClExSystem);
  EXPECT_THROW(FileSystem::CreateDirectory("", true), ClException);
}

TEST_F(Disk, ARecursiveRemovalTakesAllButWhatLinksPointAt) {
  Create("kept", false);
  Write("kept/file", "x");
  Create("gone/sub/deep", true);
  Write("gone/sub/.hidden", "x");
  fs::create_directory_symlink(m_oDirectory.Path("kept"), m_oDirectory.Path("gone/link"));
  const std::string szGone = m_oDirectory.Path("gone");
  EXPECT_THROW(FileSystem::RemoveDirectory(szGone.c_str(), false), ClExSystem);
  FileSystem::RemoveDirectory(szGone.c_str(), true);
  EXPECT_FALSE(Exists("gone"));
  EXPECT_TRUE(Exists("kept/file"));
  FileSystem::RemoveDirectory(szGone.c_str(), true);
}

TEST_F(Disk, FilesAreCopiedWholeAndNotOntoThemselves) {
  const std::string szContent(16384 * 2 + 5, 'k');
  Write("from", szContent);
  const std::string szFrom = m_oDirectory.Path("from"), szTo = m_oDirectory.Path("to");
  FileSystem::CopyFile(szFrom.c_str(), szTo.c_str());
  EXPECT_EQ(Read("to"), szContent);
  FileSystem::CopyFile(szFrom.c_str(), szFrom.c_str());
  EXPECT_EQ(Read("from"), szContent);
  FileSystem::RenameFile(szTo.c_str(), m_oDirectory.Path("new").c_str());
  FileSystem::RemoveFile(szFrom.c_str());
  EXPECT_TRUE(Exists("new") && !Exists("from") && !Exists("to"));
  EXPECT_THROW(FileSystem::RemoveFile(szFrom.c_str()), ClExSystem);
  EXPECT_THROW(FileSystem::RenameFile(szFrom.c_str(), szTo.c_str()), ClExSystem);
  EXPECT_EQ(NumberOf([&] { FileSystem::CopyFile(szFrom.c_str(), szTo.c_str()); }), -200);
}

TEST_F(Disk, ACopyThatCanNotBeReadOrWrittenIsReported) {
  Write("small", "x");
  Write("large", std::string(100000, 'x'));
  for (const char* szName : {"small", "large"}) {
    const std::string szFrom = m_oDirectory.Path(szName);
    EXPECT_THROW(FileSystem::CopyFile(szFrom.c_str(), "/dev/full"), ClExSystem) << szName;
    EXPECT_THROW(FileSystem::CopyFile(szFrom.c_str(), "/"), ClExFilesystem) << szName;
  }
  EXPECT_THROW(FileSystem::CopyFile("/", m_oDirectory.Path("to").c_str()), ClExSystem) << "a directory";
  EXPECT_THROW(FileSystem::CreateDirectory(m_oDirectory.Path("small/below").c_str(), true), ClExSystem);
  EXPECT_THROW(FileSystem::RemoveDirectory(m_oDirectory.Path("small").c_str(), true), ClExSystem);
}

TEST_F(Disk, EntriesAreFoundByPattern) {
  Write("one.bmp", "x");
  Write("two.bmp", "x");
  Write("two.txt", "x");
  Create("dir.bmp", false);
  EXPECT_THAT(Find("*.bmp"), testing::ElementsAre("dir.bmp/", "one.bmp", "two.bmp"));
  EXPECT_THAT(Find("t*"), testing::ElementsAre("two.bmp", "two.txt"));
  EXPECT_THAT(Find("*"), testing::ElementsAre(".!", "..!", "dir.bmp/", "one.bmp", "two.bmp", "two.txt"));
  EXPECT_TRUE(Find("none/*").empty());
  EXPECT_THROW(FileSystem::ClFindFile("*.bmp"), ClException);
}

TEST_F(Disk, ATemporaryNameIsNewAndItsFileIsThere) {
  std::string szPattern = m_oDirectory.Path("tmpXXXXXX");
  EXPECT_EQ(FileSystem::MakeTempFileName(&szPattern[0]), szPattern.data());
  EXPECT_TRUE(fs::exists(szPattern));
  std::string szBad = m_oDirectory.Path("none/tmpXXXXXX");
  EXPECT_EQ(FileSystem::MakeTempFileName(&szBad[0]), nullptr);
}

}  // namespace
