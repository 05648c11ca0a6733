// Streams and plain files on disk.
#include "MXTools/FileStream.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "MXTools/File.h"
#include "Raised.h"
#include "TemporaryDirectory.h"

namespace {

class FileStream : public testing::Test {
 protected:
  ClTemporaryDirectory m_oDirectory;
  const std::string m_szFile = m_oDirectory.Path("file");
};

std::string Slurp(const std::string& szFile) {
  ClFileStream oStream(szFile.c_str(), "rb");
  std::string szContent(static_cast<size_t>(oStream.Size()), '\0');
  oStream.Read(&szContent[0], static_cast<unsigned int>(szContent.size()));
  return szContent;
}

TEST_F(FileStream, ItsSizeIsMeasuredWithoutMoving) {
  ClFileStream oStream;
  EXPECT_STREQ(oStream.Name(), "No file open");
  oStream.Open(m_szFile.c_str(), "w+b");
  EXPECT_EQ(oStream.Name(), m_szFile);
  oStream.WriteAutoSwap<uint32_t>(7);
  oStream.WriteString("text");
  EXPECT_EQ(oStream.Size(), 13);
  EXPECT_EQ(oStream.Pos(), 13) << "measuring does not move";
}

TEST_F(FileStream, ReadsAndWritesMayAlternate) {
  ClFileStream oStream(m_szFile.c_str(), "w+b");
  oStream.Write("abcdef", 6);
  oStream.Seek(0u);
  char aRead[2];
  oStream.Read(aRead, 2);
  oStream.Write("XY", 2);
  oStream.Read(aRead, 2);
  EXPECT_EQ(std::string(aRead, 2), "ef");
  oStream.Close();
  EXPECT_EQ(Slurp(m_szFile), "abXYef");
}

TEST_F(FileStream, ABitFlushKeepsTheRestOfTheByteOfAnExistingFile) {
  {
    ClFileStream oStream(m_szFile.c_str(), "wb");
    oStream.Write("\xFF\xFF", 2);
    oStream.WriteBits(1, 1);
  }
  EXPECT_EQ(Slurp(m_szFile), "\xFF\xFF\x80") << "the destructor writes the pending bit, zeros behind it";
  {
    ClFileStream oStream(m_szFile.c_str(), "r+b");
    oStream.BitPosSet(12);
    oStream.WriteBits(0, 2);
    oStream.Close();
  }
  EXPECT_EQ(Slurp(m_szFile), "\xFF\xF3\x80");
}

TEST_F(FileStream, WhatCannotBeOpenedRaisesWithItsName) {
  for (const std::string& szName : {m_oDirectory.Path(""), m_oDirectory.Path("none/file")}) {
    EXPECT_THAT(Raised([&] { ClFileStream(szName.c_str(), "rb"); }),
                testing::Pair(-200, testing::EndsWith("\n" + szName)));
  }
  ClFileStream oStream;
  const char* szNone = nullptr;
  const wchar_t* wszNone = nullptr;
  EXPECT_EQ(NumberOf([&] { oStream.Open(szNone, "rb"); }), -44);
  EXPECT_THAT(Raised([&] { oStream.Open(L"name", wszNone); }),
              testing::Pair(-37, testing::EndsWith("\nthe szMode parameter is invalid.")));
}

TEST_F(FileStream, WideNamesAreUtf8OnDisk) {
  const std::string szNarrow = m_oDirectory.Path(u8"pr\u00FCfung");
  const std::wstring wszWide(m_szFile.begin(), m_szFile.end() - 4);
  ClFileStream((wszWide + L"pr\u00FCfung").c_str(), L"wb").Write("x", 1);
  EXPECT_EQ(Slurp(szNarrow), "x");
  ClFile oFile((wszWide + L"pr\u00FCfung").c_str(), L"rb");
  EXPECT_EQ(oFile.Size(), 1);
}

TEST_F(FileStream, FilesCompareByteByByte) {
  const std::string szOther = m_oDirectory.Path("other");
  ClFile(m_szFile.c_str(), "wb").Write("abcd", 4);
  for (const auto& [szText, nFirst] : {std::pair("abcd", -1L), {"abXd", 3}, {"abcde", 4}}) {
    ClFile(szOther.c_str(), "wb").Write(szText, std::strlen(szText));
    EXPECT_EQ(ClFile::Compare(m_szFile.c_str(), szOther.c_str(), false), nFirst) << szText;
  }
}

TEST_F(FileStream, PlainFilesReportWhatFails) {
  std::string szBack = m_szFile;
  szBack[szBack.rfind('/')] = '\\';
  ClFile oFile(szBack.c_str(), "w+b");
  EXPECT_FALSE(oFile.Eof());
  char cByte;
  EXPECT_EQ(oFile.Read(&cByte, 1), 0u);
  EXPECT_TRUE(oFile.Eof());
  EXPECT_THAT(Raised([&] { oFile.Seek(-1, SEEK_SET); }), testing::Pair(-105, testing::EndsWith("\nfseek")));
}

// A full disk shows when the buffer is written, which may be as late as in fclose.
TEST_F(FileStream, AClosingThatFailsIsNotSwallowed) {
  const auto CloseFull = [] {
    ClFile oFile("/dev/full", "wb");
    oFile.Write("x", 1);
  };
  EXPECT_THROW(CloseFull(), ClExSystem);
  // Small blocks wait in the buffer, large ones are written past it.
  for (const unsigned int nBytes : {1u, 5000u, 1000000u}) {
    const std::string szData(nBytes, 'x');
    ClFileStream oStream("/dev/full", "wb");
    oStream.Write(szData.data(), nBytes);
    EXPECT_THROW(oStream.Close(), ClExStream) << nBytes;
    oStream.Open("/dev/null", "wb");
    oStream.Write(szData.data(), nBytes);
    EXPECT_NO_THROW(oStream.Close()) << "the next file is another one";
  }
}

}  // namespace
