// Pixels of bitmaps by colour in every depth, channels, images, flat blocks, and cut files.
#include <gtest/gtest.h>

#include <random>

#include "BitmapFiles.h"
#include "MXTools/FpImage.h"

namespace {

struct ClDepth {
  long m_nBits, m_nCompression;
  /// Largest distance of a channel from what was asked for.
  int m_nPrecision;
};

// Half a step of a grey ramp, or of five bits; a grey ramp takes greys alone.
const ClDepth g_aDepths[] = {{1, 0, 128}, {4, 0, 9},  {8, 0, 0},  {16, 0, 5},
                             {16, 3, 5},  {24, 0, 0}, {32, 0, 0}, {32, 3, 0}};

/// Random colours in all pixels, set in no order.
void Fill(ClBitmap& rBitmap, const ClDepth& oDepth, int nWidth, int nHeight, unsigned int nSeed) {
  std::mt19937 oRandom(nSeed);
  rBitmap.Create(nWidth, nHeight, oDepth.m_nBits, oDepth.m_nCompression);
  std::vector<unsigned int> aColors(static_cast<size_t>(nWidth * nHeight), 0);
  for (int n = 0; n < 5 * nWidth * nHeight; ++n) {
    const int x = static_cast<int>(oRandom() % static_cast<unsigned int>(nWidth));
    const int y = static_cast<int>(oRandom() % static_cast<unsigned int>(nHeight));
    unsigned int nColor =
        static_cast<unsigned int>(oRandom()) & (oDepth.m_nBits == 32 ? 0xFFFFFFFF : 0xFFFFFF);
    if (oDepth.m_nBits <= 8) nColor = (nColor & 255) * 0x010101;
    rBitmap.SetPixel(x, y, nColor);
    aColors[static_cast<size_t>(y * nWidth + x)] = nColor;
  }
  for (int n = 0; n < nWidth * nHeight; ++n) {
    const unsigned int nColor = rBitmap.GetPixel(n % nWidth, n / nWidth);
    for (int nShift = 0; nShift < (oDepth.m_nBits == 32 ? 32 : 24); nShift += 8) {
      ASSERT_NEAR(nColor >> nShift & 255, aColors[static_cast<size_t>(n)] >> nShift & 255,
                  oDepth.m_nPrecision)
          << oDepth.m_nBits;
    }
  }
}

TEST(BitmapPixels, EveryDepthKeepsWhatIsSetAndGivesItToImagesFilesAndBlocks) {
  for (const ClDepth& oDepth : g_aDepths) {
    SCOPED_TRACE(testing::Message() << oDepth.m_nBits << " bits, compression " << oDepth.m_nCompression);
    ClBitmap oBitmap, oCopy, oLoaded;
    Fill(oBitmap, oDepth, 13, 7, 51);
    ClImage oImage;
    oBitmap.GetImage(oImage);
    const int nPlanes = oDepth.m_nBits <= 8 ? 1 : oDepth.m_nBits == 32 ? 4 : 3;
    ASSERT_EQ(oImage.Planes(), nPlanes);
    for (int n = 0; n < 13 * 7 * nPlanes; ++n) {
      const int x = n / nPlanes % 13, y = n / nPlanes / 13, k = n % nPlanes;
      ASSERT_EQ(oImage.Row<unsigned char>(y)[x * nPlanes + k], oBitmap.GetPixel(x, y) >> (8 * k) & 255)
          << "blue is plane 0";
    }
    Bytes aBlock(oBitmap.BlockSize() + 4, 0xA5);
    oBitmap.CopyTo(aBlock.data());
    EXPECT_EQ(Bytes(aBlock.end() - 4, aBlock.end()), Bytes(4, 0xA5));
    oCopy.CopyFrom(aBlock.data(), true);
    EXPECT_TRUE(oCopy == oBitmap);
    oLoaded.CopyFrom(aBlock.data(), false);
    EXPECT_EQ(oLoaded.Pixels(), aBlock.data() + aBlock.size() - 4 - ClBitmap::ImageSize(oBitmap.Header()));
    ASSERT_EQ(Load(oLoaded, Stored(oBitmap)), 0);
    EXPECT_TRUE(oLoaded == oBitmap);
    oCopy.SetPixel(12, 6, ~oCopy.GetPixel(12, 6));
    EXPECT_FALSE(oCopy == oBitmap);
  }
}

TEST(BitmapPixels, HandMadePixels) {
  ClBitmap oBitmap;
  oBitmap.Create(3, 1, 4, 0);
  oBitmap.Pixels()[0] = 0xF3;
  EXPECT_EQ(oBitmap.GetPixel(0, 0), 0xFFFFFFu) << "the left pixel is in the high bits";
  EXPECT_EQ(oBitmap.GetPixel(1, 0), 0x333333u);
  oBitmap.Create(2, 1, 16, 0);
  ClBitmap::LongToMem(oBitmap.Pixels(), 4, 0x801F7C00);
  EXPECT_EQ(oBitmap.GetPixel(0, 0), 0xFF0000u) << "red is on top";
  EXPECT_EQ(oBitmap.GetPixel(1, 0), 0xFF0000FFu) << "and the bit above it is alpha";
  ClBitmap::LongToMem(oBitmap.Pixels(), 2, 3 << 5);
  EXPECT_EQ(oBitmap.GetPixel(0, 0), 24u << 8) << "3 * 255 / 31, cut";
  oBitmap.Create(1, 1, 32, 3);
  ClBitmap::LongToMem(oBitmap.Pixels(), 4, 0x04030201);
  EXPECT_EQ(oBitmap.GetPixel(0, 0), 0x04010203u) << "mask 0 is red";
  // Ten bits a channel.
  for (unsigned int n = 0; n < 3; ++n) ClBitmap::LongToMem(oBitmap.Palette() + 4 * n, 4, 1023u << (10 * n));
  oBitmap.SetPixel(0, 0, 0x123456);
  EXPECT_EQ(oBitmap.GetPixel(0, 0) & 0xFFFFFF, 0x123456u);
}

TEST(BitmapPixels, PalettesDecideWhatIsGrayAndAMissingEntryIsBlack) {
  ClBitmap oBitmap;
  oBitmap.Create(2, 1, 8, 0);
  ClImage oImage;
  // The ramp upside down: values, not indices, make the image.
  for (unsigned int n = 0; n < 256; ++n)
    ClBitmap::LongToMem(oBitmap.Palette() + 4 * n, 4, (255 - n) * 0x010101);
  oBitmap.Pixels()[0] = 5;
  oBitmap.GetImage(oImage);
  EXPECT_EQ(oImage.Planes(), 1);
  EXPECT_EQ(oImage.Data()[0], 250);
  ClBitmap::LongToMem(oBitmap.Palette() + 4 * 9, 4, 0x0000FF);
  EXPECT_FALSE(oBitmap.IsGray(false));
  EXPECT_TRUE(oBitmap.IsGray(true)) << "no pixel takes the blue entry";
  oBitmap.GetImage(oImage);
  EXPECT_EQ(oImage.Planes(), 3);
  oBitmap.SetPixel(1, 0, 0x0101F0);
  EXPECT_EQ(oBitmap.Pixels()[1], 9) << "the nearest entry";
  EXPECT_FALSE(oBitmap.IsGray(true));
  oBitmap.Header()->biClrUsed = 9;
  EXPECT_EQ(oBitmap.GetPixel(1, 0), 0u);
  oBitmap.Create(2, 2, 24, 0);
  oBitmap.SetPixel(1, 1, 0x808080);
  EXPECT_TRUE(oBitmap.IsGray(false));
  oBitmap.SetPixel(1, 1, 0x808081);
  EXPECT_FALSE(oBitmap.IsGray(false));
}

TEST(BitmapPixels, ChannelsComeApartAndTogether) {
  ClBitmap oBitmap, oJoined;
  Fill(oBitmap, g_aDepths[6], 5, 3, 52);
  ClImage oBlue, oGreen, oRed, oAlpha;
  oBitmap.SplitChannels(&oBlue, &oGreen, &oRed, &oAlpha);
  EXPECT_EQ(oRed.Row<unsigned char>(2)[4], oBitmap.GetPixel(4, 2) >> 16 & 255);
  oJoined.JoinChannels(&oBlue, &oGreen, &oRed, &oAlpha);
  EXPECT_TRUE(oJoined == oBitmap);
  oJoined.SetGreenChannel(oRed);
  for (int n = 0; n < 15; ++n) {
    const unsigned int nColor = oBitmap.GetPixel(n % 5, n / 5);
    ASSERT_EQ(oJoined.GetPixel(n % 5, n / 5), (nColor & 0xFFFF00FF) | (nColor >> 8 & 0xFF00));
  }
  oJoined.JoinChannels(nullptr, &oGreen, nullptr, nullptr);
  EXPECT_EQ(oJoined.Header()->biBitCount, 24);
  EXPECT_EQ(oJoined.GetPixel(1, 1), oBitmap.GetPixel(1, 1) & 0xFF00);
}

TEST(BitmapPixels, WhatCanNotBeReachedRaises) {
  ClBitmap oBitmap;
  ClImage oImage(3, 2, 1, 0, 0), oColor(2, 2, 3, 0, 0);
  EXPECT_EQ(NumberOf([&] { oBitmap.GetImage(oImage); }), -10);
  EXPECT_EQ(NumberOf([&] { oBitmap.JoinChannels(nullptr, nullptr, nullptr, nullptr); }), -10);
  oBitmap.Create(2, 2, 24, 0);
  for (const auto& [nX, nY] : {std::pair(-1, 0), {2, 0}, {0, -1}, {0, 2}}) {
    EXPECT_EQ(NumberOf([&, x = nX, y = nY] { oBitmap.GetPixel(x, y); }), -35);
    EXPECT_EQ(NumberOf([&, x = nX, y = nY] { oBitmap.SetPixel(x, y, 0); }), -35);
  }
  EXPECT_EQ(NumberOf([&] { oBitmap.SetRedChannel(oImage); }), -44);
  EXPECT_EQ(NumberOf([&] { oBitmap.SetRedChannel(oColor); }), -33);
  EXPECT_EQ(NumberOf([&] { oBitmap.GetChannel(4, oImage); }), -35);
  oBitmap.Create(2, 2, 8, ClBitmap::eRLE8);
  EXPECT_EQ(NumberOf([&] { oBitmap.GetImage(oImage); }), -31);
}

/// A file of each kind that the reader knows.
std::vector<Bytes> GoodFiles() {
  std::vector<Bytes> aFiles;
  for (const ClDepth& oDepth : g_aDepths) {
    ClBitmap oBitmap;
    Fill(oBitmap, oDepth, 5, 3, 53);
    aFiles.push_back(Stored(oBitmap));
  }
  Bytes aTopDown = aFiles[5];
  ClBitmap::LongToMem(aTopDown.data() + 22, 4, static_cast<uint32_t>(-3));
  aFiles.push_back(aTopDown);
  // The 8-bit one as runs: a run, a literal, the end of a row, a move, the end.
  Bytes aRuns(aFiles[2].begin(), aFiles[2].begin() + 54 + 1024);
  aRuns[30] = 1;
  for (const int n : {3, 7, 0, 3, 1, 2, 3, 0, 0, 0, 0, 2, 1, 0, 2, 9, 0, 1})
    aRuns.push_back(static_cast<unsigned char>(n));
  aFiles.push_back(aRuns);
  // Masks within a header of 108 bytes.
  Bytes aMasks = aFiles[7];
  aMasks[14] = 108;
  aMasks[10] = 122;
  aMasks.insert(aMasks.begin() + 66, 56, 0);
  aFiles.push_back(aMasks);
  return aFiles;
}

TEST(BitmapFile, EveryKindOfFileIsRefusedWhenItIsCutAtAnyByte) {
  for (const Bytes& aFile : GoodFiles()) {
    ClBitmap oLoaded;
    ASSERT_EQ(Load(oLoaded, aFile), 0) << aFile.size();
    for (size_t nCut = 0; nCut < aFile.size(); ++nCut) {
      ASSERT_EQ(Load(oLoaded, Bytes(aFile.begin(), aFile.begin() + static_cast<ptrdiff_t>(nCut))), -201)
          << nCut;
      ASSERT_TRUE(oLoaded.IsEmpty());
    }
  }
}

TEST(BitmapFile, AFewRunsCanNotAskForGigabytes) {
  Bytes aFile = GoodFiles()[9];
  ClBitmap::LongToMem(aFile.data() + 18, 4, 40000);
  ClBitmap::LongToMem(aFile.data() + 22, 4, 40000);
  ClBitmap oLoaded;
  EXPECT_EQ(Load(oLoaded, aFile), -201);
  ClBitmap::LongToMem(aFile.data() + 18, 4, 1000);
  ClBitmap::LongToMem(aFile.data() + 22, 4, 1000);
  EXPECT_EQ(Load(oLoaded, aFile), 0) << "a bitmap of which little is drawn";
}

TEST(BitmapFile, AFullDiskIsReported) {
  ClBitmap oBitmap;
  oBitmap.Create(500, 500, 8, 0);
  EXPECT_EQ(NumberOf([&] { oBitmap.Store("/dev/full"); }), -201);
  ClImage oImage(500, 500, 1, 0, 0);
  oImage = static_cast<unsigned char>(1);
  EXPECT_EQ(NumberOf([&] { oImage.Store("/dev/full"); }), -204);
}

}  // namespace
