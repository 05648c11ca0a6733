// Bitmaps in memory, sharing with images, and the file format.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <tuple>

#include "BitmapFiles.h"
#include "MXTools/FpImage.h"

namespace {

using testing::ElementsAre;

/// A bare header as a file holds it.
Bytes HeaderBytes(int32_t nWidth, int32_t nHeight, uint32_t nBits, uint32_t nCompression, uint32_t nClrUsed) {
  Bytes aBytes;
  const auto nWide = static_cast<uint32_t>(nWidth), nHigh = static_cast<uint32_t>(nHeight);
  Append(aBytes, {{40, 4}, {nWide, 4}, {nHigh, 4}, {1, 2}, {nBits, 2}, {nCompression, 4}});
  Append(aBytes, {{0, 4}, {19685, 4}, {19685, 4}, {nClrUsed, 4}, {0, 4}});
  return aBytes;
}

TEST(Bitmap, ANewOneHasPaddedRowsAndAGreyRamp) {
  ClBitmap oBitmap;
  oBitmap.Create(101, 3, 8, 0);
  EXPECT_EQ(oBitmap.RowSize(), 104u);
  EXPECT_EQ(oBitmap.Header()->biSizeImage, 312u);
  EXPECT_EQ(oBitmap.Line(2) - oBitmap.Pixels(), 208);
  EXPECT_EQ(ClBitmap::PalSize(oBitmap.Header()), 256u);
  EXPECT_THAT(Bytes(oBitmap.Palette() + 4 * 255, oBitmap.Palette() + 4 * 256), ElementsAre(255, 255, 255, 0));
  oBitmap.Create(9, 1, 4, 0);
  EXPECT_EQ(oBitmap.RowSize(), 8u);
  EXPECT_EQ(oBitmap.Palette()[4 * 3], 51) << "a step of 255 / 15";
  oBitmap.Create(2, 2, 32, ClBitmap::eBitFields);
  EXPECT_THAT(Bytes(oBitmap.Palette(), oBitmap.Palette() + 12),
              ElementsAre(255, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 0));
}

TEST(Bitmap, SizesThatNoBlockCanHaveAreRefused) {
  ClBitmap oBitmap;
  for (const auto& [nWidth, nHeight] :
       {std::pair(65536, 65536), {INT32_MAX, INT32_MAX}, {-1, 1}, {1, INT32_MIN}})
    EXPECT_EQ(NumberOf([&, x = nWidth, y = nHeight] { oBitmap.Create(x, y, 8, 0); }), -32) << nWidth;
  EXPECT_EQ(NumberOf([&] { oBitmap.Create(1, 1, 2, 0); }), -12);
  EXPECT_TRUE(oBitmap.IsEmpty());
  EXPECT_EQ(NumberOf([&] { oBitmap.RowSize(); }), -10);
}

TEST(Bitmap, AnImageAndABitmapShareTheirPixelsBothWays) {
  ClBitmap oBitmap;
  {
    ClImage oImage(100, 2, 1, 19685, 9842);
    oImage = static_cast<unsigned char>(3);
    oBitmap.Attach(oImage);
    EXPECT_EQ(oBitmap.Pixels(), oImage.Data());
    EXPECT_EQ(oBitmap.Header()->biYPelsPerMeter, 9842);
  }
  EXPECT_EQ(oBitmap.Line(1)[99], 3) << "the block outlives the image";
  ClImage oBack;
  EXPECT_TRUE(oBack.Attach(oBitmap));
  oBitmap.ClearFree();
  EXPECT_EQ(oBack.Row<unsigned char>(1)[99], 3);
  EXPECT_EQ(oBack.PelsX(), 19685);
  oBitmap.Create(8, 4, 8, 0);
  oBack.Attach(oBitmap);
  oBack.NewWithType(ClImage::eUint8, 8, 4, 1, 0, 0, true);
  EXPECT_NE(oBack.Data(), oBitmap.Pixels()) << "new pixels are not written into the bitmap's";
}

TEST(Bitmap, OnlyImagesWithTheRowsOfABmpAttach) {
  ClBitmap oBitmap;
  Bytes aPixels(400 * 8);
  const auto Attach = [&](unsigned char nType, int nWidth, int nPlanes, bool bAligned) {
    ClImage oImage;
    oImage.AttachIntern(aPixels.data(), nType, nWidth, 2, nPlanes, 0, 0, bAligned);
    return NumberOf([&] { oBitmap.Attach(oImage); });
  };
  EXPECT_EQ(Attach(ClImage::eUint8, 100, 1, false), 0);
  EXPECT_EQ(Attach(ClImage::eUint8, 101, 1, false), -33);
  EXPECT_EQ(Attach(ClImage::eUint16, 100, 1, true), -33);
  EXPECT_EQ(Attach(ClImage::eUint8, 100, 2, true), -33);
  EXPECT_EQ(oBitmap.Header()->biWidth, 100) << "a refused image leaves the old content";
  EXPECT_EQ(oBitmap.Pixels(), aPixels.data());
}

TEST(Bitmap, ACopyOfAnImageHasRowsOfItsOwn) {
  Bytes aPixels(202);
  std::iota(aPixels.begin(), aPixels.end(), static_cast<unsigned char>(0));
  ClImage oImage;
  oImage.AttachIntern(aPixels.data(), ClImage::eUint8, 101, 2, 1, 0, 0, false);
  ClBitmap oBitmap;
  oBitmap.CopyFrom(oImage, true);
  aPixels[101] = 0;
  EXPECT_EQ(oBitmap.Line(1)[0], 101);
  EXPECT_EQ(oBitmap.Line(1)[100], 201);
  EXPECT_EQ(NumberOf([&] { oBitmap.CopyFrom(oImage, false); }), -33);

  ClBitmap oShared, oOwn;
  oShared.CopyFrom(oBitmap, false);
  oOwn.CopyFrom(oBitmap, true);
  EXPECT_EQ(oShared.Pixels(), oBitmap.Pixels());
  EXPECT_NE(oShared.Header(), oBitmap.Header());
  oShared.DetachThis();
  oShared = static_cast<unsigned char>(9);
  EXPECT_TRUE(oOwn == oBitmap);
  EXPECT_FALSE(oShared == oBitmap);
}

TEST(Bitmap, AHeaderInMemoryIsJudgedFieldByField) {
  const auto Judge = [](Bytes aBlock) {
    ClBitmap oBitmap;
    return NumberOf([&] { oBitmap.Attach(aBlock.data(), static_cast<unsigned int>(aBlock.size())); });
  };
  Bytes aGood = HeaderBytes(4, 2, 24, 0, 0);
  aGood.resize(40 + 24);
  EXPECT_EQ(Judge(aGood), 0);
  Bytes aFile(14, 0);
  aFile[0] = 'B';
  aFile[1] = 'M';
  EXPECT_EQ(Judge(aFile), -10);
  aFile.insert(aFile.end(), aGood.begin(), aGood.end());
  EXPECT_EQ(Judge(aFile), 0);
  EXPECT_EQ(NumberOf([&] { ClBitmap::MemToBitmapInfoHeader(aFile.data()); }), -36);
  EXPECT_EQ(NumberOf([&] { ClBitmap::MemToBitmapInfoHeader(nullptr); }), -10);
  for (const auto& [nOffset, nValue, nNumber] :
       std::vector<std::tuple<size_t, int, long>>{{0, 41, -32}, {12, 2, -11}, {16, 4, -31}, {14, 2, -12}}) {
    Bytes aBad = aGood;
    aBad[nOffset] = static_cast<unsigned char>(nValue);
    EXPECT_EQ(Judge(aBad), nNumber) << nOffset;
  }
  aGood.pop_back();
  EXPECT_EQ(Judge(aGood), -10) << "a block without all of its pixels";
}

TEST(BitmapFile, TheBytesAreTheFormatsWithAndWithoutAFileHeaderAndTopDown) {
  ClBitmap oBitmap;
  oBitmap.Create(3, 2, 24, 0);
  std::iota(oBitmap.Pixels(), oBitmap.Pixels() + 24, static_cast<unsigned char>(0));
  Bytes aFile = Stored(oBitmap);
  EXPECT_EQ(aFile.size(), 54u + 24);
  EXPECT_THAT(Bytes(aFile.begin(), aFile.begin() + 18),
              ElementsAre('B', 'M', 78, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0));
  ClBitmap oLoaded;
  EXPECT_EQ(Load(oLoaded, Bytes(aFile.begin() + 14, aFile.end())), 0) << "without a file header";
  EXPECT_TRUE(oLoaded == oBitmap);

  // Row 0 of the file is the last row of a top-down block.
  Bytes aTopDown = aFile;
  const int32_t nMinusTwo = -2;
  std::memcpy(aTopDown.data() + 22, &nMinusTwo, sizeof(nMinusTwo));
  std::swap_ranges(aTopDown.begin() + 54, aTopDown.begin() + 66, aTopDown.begin() + 66);
  EXPECT_EQ(Load(oLoaded, aTopDown), 0);
  EXPECT_TRUE(oLoaded == oBitmap);
}

TEST(BitmapFile, HostileHeadersAreRefusedBeforeAnythingIsAllocated) {
  ClBitmap oBitmap;
  EXPECT_EQ(Load(oBitmap, HeaderBytes(30000, 30000, 8, 0, 0)), -201);
  EXPECT_EQ(Load(oBitmap, HeaderBytes(0x7FFFFFFF, 0x7FFFFFFF, 32, 0, 0)), -32);
  EXPECT_EQ(Load(oBitmap, HeaderBytes(1, INT32_MIN, 8, 0, 0)), -32);
  EXPECT_EQ(Load(oBitmap, HeaderBytes(1, 1, 24, 0, 0xFFFFFFFF)), -201);
  EXPECT_EQ(Load(oBitmap, HeaderBytes(1, 1, 24, 2, 0)), -31);
  EXPECT_EQ(Load(oBitmap, HeaderBytes(1, 1, 7, 0, 0)), -12);
  EXPECT_EQ(Load(oBitmap, Bytes(80, 'x')), -210);
}

TEST(BitmapFile, APaletteIsCutToTheRoomThatTheOffsetLeaves) {
  Bytes aFile = {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 62, 0, 0, 0};
  const Bytes aHeader = HeaderBytes(1, 1, 8, 0, 0);
  aFile.insert(aFile.end(), aHeader.begin(), aHeader.end());
  Append(aFile, {{0x04030201, 4}, {0x08070605, 4}, {0x01010101, 4}});
  ClBitmap oBitmap;
  ASSERT_EQ(Load(oBitmap, aFile), 0);
  EXPECT_EQ(oBitmap.Header()->biClrUsed, 2u);
  EXPECT_THAT(Bytes(oBitmap.Palette(), oBitmap.Palette() + 8), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
  EXPECT_EQ(oBitmap.Pixels()[0], 1);
}

TEST(BitmapFile, BillionsOfRowsWithoutPixelsAreNotReadOneByOne) {
  struct StCounted : ClMemStream {
    using ClMemStream::ClMemStream;
    unsigned int ReadRaw(void* pData, unsigned int nBytes) override {
      if (++nReads > 1000) KLV_RAISE_NUMBER(-999);
      return ClMemStream::ReadRaw(pData, nBytes);
    }
    int nReads = 0;
  };
  const Bytes aFile = HeaderBytes(0, INT32_MAX, 24, 0, 0);
  StCounted oStream(aFile.data(), static_cast<unsigned int>(aFile.size()));
  ClBitmap oBitmap;
  EXPECT_EQ(NumberOf([&] { oBitmap.Load(oStream); }), 0);
  // Their rows are not gone over either: each of these would take seconds.
  EXPECT_TRUE(oBitmap.IsGray(true));
  ClImage oChannel;
  oBitmap.GetChannel(ClBitmap::eRed, oChannel);
  EXPECT_EQ(oChannel.Height(), INT32_MAX);
  oBitmap.SetChannel(ClBitmap::eRed, oChannel);
}

TEST(BitmapFile, RunsBecomePlainPixels) {
  const auto LoadRuns = [](ClBitmap& rBitmap, const Bytes& aRuns, int nWidth = 4) {
    Bytes aFile = HeaderBytes(nWidth, 3, 8, 1, 1);
    Append(aFile, {{0, 4}});
    aFile.insert(aFile.end(), aRuns.begin(), aRuns.end());
    return Load(rBitmap, aFile);
  };
  ClBitmap oBitmap;
  // Six of 7 wrap into row 1; on to row 2; one right; three literals and their pad; the end.
  ASSERT_EQ(LoadRuns(oBitmap, {6, 7, 0, 0, 0, 2, 1, 0, 0, 3, 1, 2, 3, 99, 0, 1}), 0);
  EXPECT_EQ(oBitmap.Header()->biCompression, 0u);
  EXPECT_EQ(oBitmap.Header()->biSizeImage, 12u);
  EXPECT_THAT(Bytes(oBitmap.Pixels(), oBitmap.Pixels() + 12),
              ElementsAre(7, 7, 7, 7, 7, 7, 0, 0, 0, 1, 2, 3));
  EXPECT_EQ(LoadRuns(oBitmap, {12, 1, 0, 1}), 0) << "a full block";
  EXPECT_EQ(LoadRuns(oBitmap, {13, 1, 0, 1}), -38);
  EXPECT_EQ(LoadRuns(oBitmap, {0, 2, 0, 3, 0, 1}), 0) << "a move past the end writes nothing";
  EXPECT_EQ(LoadRuns(oBitmap, {0, 2, 0, 3, 1, 1}), -38);
  EXPECT_EQ(LoadRuns(oBitmap, {6, 7, 0}), -201);
  ASSERT_EQ(LoadRuns(oBitmap, {4, 7, 0, 0, 4, 8, 2, 9, 0, 1}, 3), 0) << "rows with their padding";
  EXPECT_THAT(Bytes(oBitmap.Pixels(), oBitmap.Pixels() + 12),
              ElementsAre(7, 7, 7, 0, 8, 8, 8, 0, 9, 9, 0, 0));
}

}  // namespace
