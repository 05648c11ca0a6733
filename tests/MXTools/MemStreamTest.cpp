// Streams in memory: byte order, arrays, strings, growth and bounds.
#include <gmock/gmock.h>

#include <cstdint>

#include "Raised.h"
#include "StreamContent.h"

namespace {

using testing::ElementsAre;

TEST(Stream, NumbersOfEveryWidthAreBigEndianUntilADirectionIsToldOtherwise) {
  ClMemStream oStream;
  EXPECT_TRUE(oStream.GetBigEndian());
  EXPECT_EQ(oStream.WriteAutoSwap<uint8_t>(0xAB), 1u);
  EXPECT_EQ(oStream.WriteAutoSwap<uint16_t>(0x0102), 2u);
  EXPECT_EQ(oStream.WriteAutoSwap<uint32_t>(1), 4u);
  EXPECT_EQ(oStream.WriteAutoSwap(1.0), 8u);
  EXPECT_THAT(Content(oStream), ElementsAre(0xAB, 1, 2, 0, 0, 0, 1, 0x3F, 0xF0, 0, 0, 0, 0, 0, 0));
  uint32_t nValue = 0;
  double dValue = 0;
  oStream.Seek(3u);
  EXPECT_EQ(oStream.ReadAutoSwap(nValue) + oStream.ReadAutoSwap(dValue), 12u);
  EXPECT_EQ(nValue + dValue, 2.0);

  EXPECT_TRUE(oStream.SetBigEndian4Read(false));
  oStream.Seek(3u);
  oStream.ReadAutoSwap(nValue);
  EXPECT_EQ(nValue, 0x01000000u);
  EXPECT_TRUE(oStream.SetBigEndian4Write(false)) << "each direction for itself";
}

// More elements than one block of the transfer holds, so that the transfer goes over the ends of blocks.
TEST(Stream, ArraysSurviveBothByteOrdersAndAreTurnedElementByElement) {
  std::vector<uint32_t> aValues(3000);
  for (size_t n = 0; n < aValues.size(); ++n) aValues[n] = static_cast<uint32_t>(n * 2654435761u);
  for (bool bBigEndian : {true, false}) {
    ClMemStream oStream;
    oStream.SetBigEndian(bBigEndian);
    EXPECT_EQ(oStream.WriteNumericArray(aValues.data(), 3000, 4), 12000u);
    EXPECT_EQ(oStream.GetData()[4], static_cast<unsigned char>(aValues[1] >> (bBigEndian ? 24 : 0)));
    oStream.Seek(0u);
    std::vector<uint32_t> aRead(3000);
    EXPECT_EQ(oStream.ReadNumericArray(aRead.data(), 3000, 4), 12000u);
    EXPECT_EQ(aRead, aValues);
  }
}

TEST(Stream, StringsAreCountedWithTheirZeroAndCutToTheBuffer) {
  ClMemStream oStream;
  EXPECT_EQ(oStream.WriteString("ab"), 7u);
  EXPECT_EQ(oStream.WriteString(nullptr), 5u);
  EXPECT_THAT(Content(oStream), ElementsAre(0, 0, 0, 3, 'a', 'b', 0, 0, 0, 0, 1, 0));
  oStream.WriteString("0123456789012345678");
  oStream.Seek(0u);
  char* szText = new char[1];
  EXPECT_EQ(oStream.ReadString(&szText), 7u);
  EXPECT_STREQ(szText, "ab");
  EXPECT_EQ(oStream.ReadString(&szText), 5u);
  EXPECT_STREQ(szText, "");
  delete[] szText;
  char szBuffer[8];
  EXPECT_EQ(oStream.ReadString(szBuffer, sizeof(szBuffer)), 24u) << "passed as a whole";
  EXPECT_STREQ(szBuffer, "0123456");
}

TEST(Stream, AStoredLengthBeyondTheEndIsRefusedBeforeAnythingIsAllocated) {
  const Bytes aHuge = {0xFF, 0xFF, 0xFF, 0xFF, 'a', 0}, aOneMore = {0, 0, 0, 3, 'a', 0};
  for (const Bytes& aStored : {aHuge, Bytes(aHuge.begin(), aHuge.end() - 2), aOneMore}) {
    ClMemStream oStream(aStored.data(), static_cast<unsigned int>(aStored.size()));
    char* szText = nullptr;
    EXPECT_EQ(NumberOf([&] { oStream.ReadString(&szText); }), -201);
    EXPECT_EQ(szText, nullptr);
  }
}

TEST(MemStream, TheGapOfASeekPastTheEndIsZeroAndCountsOnlyWithAWrite) {
  for (long nPos = 1; nPos <= 5; ++nPos) {
    ClMemStream oStream;
    EXPECT_EQ(oStream.Seek(nPos, 0), 0);
    EXPECT_EQ(oStream.Size(), 0);
    oStream.Write("x", 1);
    Bytes aExpected(static_cast<size_t>(nPos), 0);
    aExpected.push_back('x');
    EXPECT_EQ(Content(oStream), aExpected);
  }
}

TEST(MemStream, SeekReachesWhatIsThereAndRefusesTheRest) {
  unsigned char aData[4] = {};
  ClMemStream oReadOnly(static_cast<const unsigned char*>(aData), 4);
  EXPECT_EQ(oReadOnly.Seek(4L, 0), 0);
  EXPECT_EQ(oReadOnly.Seek(5L, 0), -1);
  EXPECT_EQ(oReadOnly.Seek(-5L, 2), -1);
  EXPECT_EQ(oReadOnly.Seek(0L, 3), -1);
  EXPECT_EQ(oReadOnly.Pos(), 4) << "a refused seek does not move";
  EXPECT_EQ(oReadOnly.Seek(-1L, 1), 0);
  EXPECT_EQ(oReadOnly.Pos(), 3);
  EXPECT_EQ(NumberOf([&] { oReadOnly.Seek(0x80000000u); }), -35);
  EXPECT_EQ(NumberOf([&] { oReadOnly.Write("x", 1); }), -204);
}

TEST(MemStream, AnAttachedBlockIsWrittenInPlaceAndNeverGrows) {
  unsigned char aData[4] = {};
  ClMemStream oStream(aData, 4, true);
  oStream.WriteAutoSwap<uint32_t>(0x01020304);
  EXPECT_EQ(aData[3], 4);
  const std::string szText = Raised([&] { oStream.Write("x", 1); }).second;
  EXPECT_THAT(szText, testing::EndsWith("\nClMemStream::ExpandData. Stream too small"));
  oStream.Close();
  EXPECT_EQ(oStream.Size(), 0);
  oStream.Write("now its own block", 17);
  EXPECT_EQ(oStream.Size(), 17);
  EXPECT_EQ(aData[0], 1);
}

TEST(StreamBits, BitsJoinMostSignificantFirstAndBlockByteTransfers) {
  ClMemStream oStream;
  for (unsigned int nValue : {5u, 2u, 7u}) oStream.WriteBits(nValue, 3);
  EXPECT_EQ(oStream.BitPos(), 9u);
  EXPECT_THAT(Raised([&] { oStream.Write("x", 1); }).second,
              testing::EndsWith("the last bit I/O was finish with out bitflush."));
  oStream.Flush();
  // 101 010 111 -> 10101011 1.......
  EXPECT_THAT(Content(oStream), ElementsAre(0xAB, 0x80));
  EXPECT_EQ(oStream.BitPos(), 16u);
}

TEST(StreamBits, EveryWidthAtEveryOffsetComesBack) {
  for (unsigned int nOffset = 0; nOffset < 8; ++nOffset) {
    for (unsigned int nCount = 0; nCount <= 32; ++nCount) {
      const unsigned int nMask = nCount == 32 ? 0xFFFFFFFFu : (1u << nCount) - 1;
      const unsigned int nValue = 0xDEADBEEFu & nMask;
      ClMemStream oStream;
      oStream.WriteBits(0, nOffset);
      oStream.WriteBits(nValue, nCount);
      ASSERT_EQ(oStream.Size(), (nOffset + nCount) / 8) << "the rest is pending";
      oStream.WriteBits(1, 1);
      ASSERT_EQ(oStream.BitPos(), nOffset + nCount + 1);
      oStream.Flush();
      oStream.Seek(0u);
      unsigned int nLead = 9, nRead = 9, nLast = 9;
      oStream.ReadBits(nLead, nOffset);
      oStream.ReadBits(nRead, nCount);
      oStream.ReadBits(nLast, 1);
      ASSERT_EQ(nLead, 0u);
      ASSERT_EQ(nRead, nValue) << nCount << " bits at " << nOffset;
      ASSERT_EQ(nLast, 1u);
    }
  }
}

TEST(Stream, SizesThatNoTransferHasAreRefused) {
  ClMemStream oStream(8, true);
  unsigned int nValue = 0;
  EXPECT_EQ(NumberOf([&] { oStream.WriteBits(0, 33); }), -35);
  EXPECT_EQ(NumberOf([&] { oStream.ReadBits(nValue, 33); }), -35);
  EXPECT_EQ(oStream.ReadNumericArray(&nValue, 1, 3), 0xFFFFFFFFu);
  EXPECT_EQ(oStream.WriteNumericArray(&nValue, 1, 0), 0xFFFFFFFFu);
}

TEST(StreamBits, AFlushKeepsTheBitsThatFollow) {
  unsigned char aData[2] = {0xFF, 0xFF};
  ClMemStream oStream(aData, 2, true);
  oStream.WriteBits(0, 3);
  oStream.Flush();
  EXPECT_EQ(aData[0], 0x1F);
  EXPECT_EQ(oStream.Pos(), 1);

  oStream.BitPosSet(11);
  EXPECT_EQ(oStream.BitPos(), 11u);
  oStream.WriteBits(0, 2);
  EXPECT_EQ(oStream.BitPos(), 13u);
  oStream.Close();
  EXPECT_EQ(aData[1], 0xE7) << "11100111: only bits 3 and 4 were written";
}

TEST(StreamBits, AFlushAfterASetPositionMovesOnByTheByteThatItWrites) {
  unsigned char aData[2] = {0x5A, 0xFF};
  ClMemStream oStream(aData, 2, true), oEmpty;
  oStream.BitPosSet(3);
  oStream.BitFlush();
  EXPECT_EQ(oStream.BitPos(), 8u);
  EXPECT_EQ(aData[0], 0x5A);
  oEmpty.BitPosSet(3);
  oEmpty.BitFlush();
  oEmpty.BitPosSet(10);
  oEmpty.WriteBits(1, 1);
  oEmpty.Flush();
  EXPECT_THAT(Content(oEmpty), ElementsAre(0, 0x20)) << "at the end there is no step back";
}

TEST(StreamBits, ABitPositionServesReadersOfReadOnlyStreamsToo) {
  const unsigned char aData[3] = {0x00, 0x1A, 0x80};
  ClMemStream oStream(aData, 3);
  oStream.BitPosSet(7);
  oStream.BitSeek(11, 0);
  unsigned int nValue = 0;
  oStream.ReadBits(nValue, 6);
  EXPECT_EQ(nValue, 0x35u) << "11010 1";
  oStream.BitSeek(-8, 2);
  oStream.ReadBits(nValue, 1);
  EXPECT_EQ(nValue, 1u);
  EXPECT_EQ(NumberOf([&] { oStream.ReadBits(nValue, 8); }), -201) << "whatever the failure flag says";
  oStream.ReadBitFlush();
  EXPECT_EQ(oStream.BitPos(), 24u);
}

TEST(StreamBits, ANumberNeedsTheBitsUpToItsHighest) {
  for (const auto& [nValue, nBits] : {std::pair(0L, 0u), {1, 1}, {255, 8}, {0x7FFFFFFF, 31}, {-1, 32}})
    EXPECT_EQ(ClStream::BitsNeedForWrite(nValue), nBits) << nValue;
}

}  // namespace
