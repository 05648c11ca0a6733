// The file: what is written is read again, and what is damaged ends the reading there.
#include <gmock/gmock.h>

#include <random>

#include "Allocations.h"
#include "MadeRecording.h"
#include "format/Blur.h"
#include "format/RecordingReader.h"

using namespace Recording;
using testing::HasSubstr;

namespace {

std::vector<uint8_t> Noise(size_t nBytes) {
  std::mt19937 oRandom(1);
  std::vector<uint8_t> aBytes(nBytes);
  for (uint8_t& n : aBytes) n = static_cast<uint8_t>(oRandom());
  return aBytes;
}

std::string Refusal(const std::string& sFile) {
  try {
    ClRecording oRecording(sFile);
    return "";
  } catch (const ClRecordingError& oError) {
    return oError.what();
  }
}

/// Facts, a call with every type of field, a call with data, a loss and the end.
void Fill(ClMadeRecording& oMade) {
  oMade.Writer().Write(eBlockFacts, "wordSize=64\nnew=1\n", 18);
  oMade.Call(
      eVTScanAPIGetPropertyDoubleA,
      [](ClCallRecord& o) {
        o.AddText(1, eGiven, "Fr\xC3\xA4me");
        o.AddText(2, eGiven, L"\x20AC\x1F5A8\xE4");
        o.AddNull(3, eGiven);
        o.AddNumber(4, eGot, -5);
        o.AddReal(5, eGot, 0.1);
        o.AddBytes(6, eGot, "\0\1", 2);
      },
      -60, 3);
  oMade.Sequence(9, 5000);
  const std::vector<uint8_t> aLoss(24, 1);
  oMade.Writer().Write(eBlockLoss, aLoss.data(), aLoss.size());
  oMade.Writer().Write(eBlockEnd, std::vector<uint8_t>(32).data(), 32);
}

}  // namespace

TEST(Format, WhatIsWrittenIsReadAgain) {
  ClMadeRecording oMade(eFileSimulated);
  Fill(oMade);
  const ClRecording oRecording(oMade.Path());
  EXPECT_TRUE(oRecording.IsSimulated() && !oRecording.IsBlurred() && oRecording.IsWhole());
  EXPECT_EQ(oRecording.Damage(), "");
  EXPECT_EQ(oRecording.Start(), 1700000000000000000);
  EXPECT_EQ(oRecording.Facts().at("wordSize"), "64");
  EXPECT_EQ(oRecording.Loss().nBytes, 0x0101010101010101U);
  ASSERT_EQ(oRecording.Calls().size(), 2U);
  const StCall& oCall = oRecording.Calls()[0];
  EXPECT_EQ(oCall.nFunction, eVTScanAPIGetPropertyDoubleA);
  EXPECT_EQ(oCall.nResult, -60);
  EXPECT_EQ(oCall.nDevice, 3U);
  EXPECT_EQ(oCall.nEnd - oCall.nBegin, 1000);
  EXPECT_EQ(oCall.Find(1, eGiven)->sBytes, "Fr\xC3\xA4me");
  EXPECT_EQ(oCall.Find(2, eGiven)->sBytes, "\xE2\x82\xAC\xF0\x9F\x96\xA8\xC3\xA4");
  EXPECT_EQ(oCall.Find(3, eGiven)->eType, eFieldNull);
  EXPECT_EQ(oCall.Number(4, eGot, 0), -5);
  EXPECT_EQ(oCall.Find(4, eGiven), nullptr);
  EXPECT_EQ(oCall.Find(5, eGot)->dReal, 0.1);
  EXPECT_EQ(oCall.Find(6, eGot)->sBytes, std::string("\0\1", 2));
  EXPECT_EQ(oRecording.Data(oRecording.Calls()[1].Find(1, eGot)->nBlock), std::vector<uint8_t>(5000, 9));
}

TEST(Format, NoWordSizeShowsInTheBytes) {
  ClMadeRecording oMade;
  oMade.Call(eVTScanAPISetPropertyLongA, [](ClCallRecord& o) {
    o.AddText(1, eGiven, "n");
    o.AddNumber(2, eGiven, -1);
  });
  // What compressors make of data is theirs; these blocks are as they are on every machine.
  const std::vector<uint8_t> aBytes = oMade.Bytes();
  EXPECT_EQ(aBytes.size(), 32U + 28 + 40 + 9 + 16);
  EXPECT_EQ(Checksum(aBytes.data(), aBytes.size()), 1079470067U);
}

TEST(Format, DataComesBackWhetherItCompressesOrNot) {
  for (const std::vector<uint8_t>& aData :
       {Noise(70000), std::vector<uint8_t>(70000, 3), std::vector<uint8_t>(1, 3), std::vector<uint8_t>()}) {
    ClMadeRecording oMade;
    const uint32_t nBlock = oMade.Writer().WriteCompressed(eBlockData, aData.data(), aData.size());
    EXPECT_EQ(ClRecording(oMade.Path()).Data(nBlock), aData);
  }
}

TEST(Format, ACutFileIsGoodUpToItsLastWholeBlock) {
  ClMadeRecording oMade;
  Fill(oMade);
  const std::vector<uint8_t> aWhole = oMade.Bytes();
  uint64_t nBefore = 0;
  for (size_t nBytes = 0; nBytes < aWhole.size(); ++nBytes) {
    oMade.Replace({aWhole.begin(), aWhole.begin() + static_cast<std::ptrdiff_t>(nBytes)});
    if (nBytes < cnFileHeader) {
      EXPECT_THAT(Refusal(oMade.Path()), HasSubstr("too short"));
      continue;
    }
    const ClRecording oRecording(oMade.Path());
    EXPECT_FALSE(oRecording.IsWhole());
    EXPECT_GE(oRecording.BlockCount(), nBefore) << nBytes;
    EXPECT_EQ(oRecording.Damage().empty(), nBytes == cnFileHeader || oRecording.BlockCount() > nBefore)
        << nBytes;
    nBefore = oRecording.BlockCount();
  }
  EXPECT_EQ(nBefore, 5U);
}

TEST(Format, NoByteChangesUnnoticed) {
  ClMadeRecording oMade;
  Fill(oMade);
  const std::vector<uint8_t> aWhole = oMade.Bytes();
  for (size_t n = 0; n < aWhole.size(); ++n) {
    std::vector<uint8_t> aChanged = aWhole;
    aChanged[n] ^= 0x10;
    oMade.Replace(aChanged);
    if (n < cnFileHeader) {
      EXPECT_NE(Refusal(oMade.Path()), "") << n;
      continue;
    }
    const ClRecording oRecording(oMade.Path());
    bool bNoticed = !oRecording.Damage().empty();
    // A piece of data shows when it is read.
    for (const StCall& oCall : oRecording.Calls()) {
      const StField* pData = oCall.Find(1, eGot);
      if (pData == nullptr) continue;
      try {
        oRecording.Data(pData->nBlock);
      } catch (const ClRecordingError&) {
        bNoticed = true;
      }
    }
    EXPECT_TRUE(bNoticed) << n;
  }
}

TEST(Format, BlocksThatAreOutOfOrderEndTheReading) {
  ClMadeRecording oMade;
  for (const char* szFact : {"a=1\n", "b=2\n"}) oMade.Writer().Write(eBlockFacts, szFact, 4);
  std::vector<uint8_t> aFile = oMade.Bytes();
  const auto pFirst = aFile.begin() + cnFileHeader;
  std::swap_ranges(pFirst, pFirst + cnBlockHeader + 4, pFirst + cnBlockHeader + 4);
  oMade.Replace(aFile);
  const ClRecording oRecording(oMade.Path());
  EXPECT_EQ(oRecording.BlockCount(), 0U);
  EXPECT_THAT(oRecording.Damage(), HasSubstr("block 0 at byte 32"));
}

TEST(Format, RefusesWhatIsNoRecordingWithItsReason) {
  ClMadeRecording oMade;
  std::vector<uint8_t> aHeader = oMade.Bytes();
  aHeader[8] = 2;
  Store(&aHeader[28], Checksum(aHeader.data(), 28), 4);
  oMade.Replace(aHeader);
  EXPECT_THAT(Refusal(oMade.Path()), HasSubstr("version 2; this program reads version 1"));
  oMade.Replace(std::vector<uint8_t>(100, 'x'));
  EXPECT_THAT(Refusal(oMade.Path()), HasSubstr("is no recording"));
  EXPECT_THAT(Refusal("/nowhere/x"), HasSubstr("/nowhere/x"));
  EXPECT_THAT(Refusal("/dev/zero"), HasSubstr("no regular file"));
}

TEST(Format, SizesThatAreMadeUpTakeNoMemory) {
  ClMadeRecording oMade;
  // A frame of zstd that is said to hold a quarter of a gigabyte, and holds a thousand bytes.
  oMade.Writer().WriteCompressed(eBlockData, std::vector<uint8_t>(1000, 1).data(), 1000);
  std::vector<uint8_t> aFile = oMade.Bytes();
  Store(&aFile[cnFileHeader + 12], cnLargestContent, 4);
  Store(&aFile[cnFileHeader + 24], Checksum(&aFile[cnFileHeader], 24), 4);
  oMade.Replace(aFile);
  const ClRecording oRecording(oMade.Path());
  ASSERT_EQ(oRecording.BlockCount(), 1U);
  Allocations::ForgetLargest();
  EXPECT_THROW(oRecording.Data(0), ClRecordingError);
  EXPECT_LT(Allocations::Largest(), 10000U);
  Store(&aFile[cnFileHeader + 12], cnLargestContent + 1, 4);
  Store(&aFile[cnFileHeader + 24], Checksum(&aFile[cnFileHeader], 24), 4);
  oMade.Replace(aFile);
  EXPECT_THAT(ClRecording(oMade.Path()).Damage(), HasSubstr("block 0 at byte 32"));
}

TEST(Format, ACallThatNamesNoDataEndsTheReading) {
  ClMadeRecording oMade;
  oMade.Call(eVTScanAPIInitialize);
  std::vector<uint8_t> aCall = [] {
    ClCallRecord oCall(eVTScanAPILockRawSequence);
    oCall.AddFrames(1, eGot, "", cnCallHeader, 8, 5);  // as long as the block that it is said to be
    oCall.SetHead(1, 1, 0, 0, 0);
    return std::vector<uint8_t>(oCall.Bytes(), oCall.Bytes() + oCall.Size());
  }();
  Store(&aCall[cnCallHeader + cnFieldHeader], 0, 4);  // a call, and no data
  oMade.Writer().Write(eBlockCall, aCall.data(), aCall.size());
  const ClRecording oRecording(oMade.Path());
  EXPECT_EQ(oRecording.Calls().size(), 1U);
  EXPECT_THAT(oRecording.Damage(), HasSubstr("names data that is not there"));
}

TEST(Format, AFieldThatGoesBeyondItsCallIsRefused) {
  ClCallRecord oCall(eVTScanAPIListEPROMFile);
  oCall.AddText(1, eGot, "text");
  oCall.SetHead(1, 1, 0, 0, 0);
  std::vector<uint8_t> aCall(oCall.Bytes(), oCall.Bytes() + oCall.Size());
  EXPECT_EQ(ParseCall(aCall).aFields.size(), 1U);
  for (const uint64_t nBytes : {uint64_t{5}, uint64_t{0xFFFFFFFF}}) {
    Store(&aCall[cnCallHeader + 4], nBytes, 4);
    EXPECT_THROW(ParseCall(aCall), ClRecordingError);
  }
  Store(&aCall[cnCallHeader + 4], 4, 4);
  aCall[12] = 2;
  EXPECT_THROW(ParseCall(aCall), ClRecordingError);
}

TEST(Blur, RidgesGoAndLightAndAreaStay) {
  constexpr uint32_t cnWidth = 960, cnHeight = 240;
  std::vector<uint8_t> aFrame(cnWidth * cnHeight);
  // A finger from column 300 to 700 with ridges twelve samples apart, over two taps that differ by 40.
  for (uint32_t y = 0; y < cnHeight; ++y)
    for (uint32_t x = 0; x < cnWidth; ++x)
      aFrame[y * cnWidth + x] = static_cast<uint8_t>((x < 300 || x >= 700 ? 20
                                                      : x % 12 < 6        ? 80
                                                                          : 160) +
                                                     (x % 2 == 0 ? 0 : 40));
  ClBlur().BlurFrames(aFrame.data(), aFrame.size(), cnWidth, cnHeight);
  const auto At = [&](uint32_t x, uint32_t y) { return static_cast<int>(aFrame[y * cnWidth + x]); };
  for (uint32_t y = 100; y < 140; ++y) {
    for (uint32_t x = 400; x < 600; x += 2) {
      EXPECT_NEAR(At(x, y), 120, 6) << x << ' ' << y;
      EXPECT_NEAR(At(x + 1, y), 160, 6);
    }
    EXPECT_EQ(At(100, y), 20);
    EXPECT_EQ(At(101, y), 60);
    EXPECT_LT(At(270, y), 25);  // the finger's edge moves by less than its blur
    EXPECT_GT(At(730 - 60, y), 110);
  }
}
