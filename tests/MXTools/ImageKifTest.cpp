// The image container: its bytes, its versions, and everything that can be wrong with a file.
#include <gtest/gtest.h>

#include "MXTools/FpImage.h"
#include "Raised.h"
#include "StreamContent.h"

namespace {

/// A 3 x 2 image of 16 bits with every field set.
void MakeImage(ClImage& oImage) {
  oImage.NewWithType(ClImage::eUint16, 3, 2, 1, 19685, 9842, true);
  oImage.SetBlackWhite(10, 1000);
  oImage.SetTag(0x01020304);
  for (int y = 0; y < 2; ++y) {
    for (int n = 0; n < 4; ++n) oImage.Row<uint16_t>(y)[n] = static_cast<uint16_t>(y * 256 + n);
  }
}

long LoadNumber(const Bytes& aBytes, bool bFailureFlag, ClImage& oImage) {
  ClMemStream oStream(aBytes.data(), static_cast<unsigned int>(aBytes.size()));
  oStream.m_bFailureFlag = bFailureFlag;
  return NumberOf([&] { oImage.Load(oStream); });
}

TEST(ImageKif, TheBytesAreTheContainersAndComeBack) {
  ClImage oImage;
  MakeImage(oImage);
  const Bytes aBytes = Stored(oImage);
  ASSERT_EQ(aBytes.size(), 54u + 16 + 4);
  const Bytes aHead = {0x4B, 0x49, 0x46, 0, 0, 0, 0, 2, 0x02, 0, 0, 0, 3, 0, 0, 0, 2};
  EXPECT_TRUE(std::equal(aHead.begin(), aHead.end(), aBytes.begin()));
  EXPECT_EQ(aBytes[29], 1) << "aligned rows";
  EXPECT_EQ(aBytes[50], 1) << "tag, highest byte first";
  EXPECT_EQ(aBytes[54 + 8], 1) << "second row, highest byte first";
  ClImage oLoaded;
  ASSERT_EQ(LoadNumber(aBytes, true, oLoaded), 0);
  EXPECT_EQ(oLoaded.White(), 1000.0);
  EXPECT_EQ(oLoaded.Black(), 10.0);
  EXPECT_EQ(oLoaded.Tag(), 0x01020304u);
  EXPECT_EQ(oLoaded.PelsY(), 9842);
  EXPECT_EQ(Stored(oLoaded), aBytes) << "padding too";
}

TEST(ImageKif, OlderVersionsLackFieldsAndAreStoredAsTheNewest) {
  ClImage oImage;
  MakeImage(oImage);
  Bytes aBytes = Stored(oImage);
  aBytes[7] = 1;
  aBytes.erase(aBytes.begin() + 29);
  ClImage oLoaded;
  ASSERT_EQ(LoadNumber(aBytes, true, oLoaded), 0);
  EXPECT_EQ(Stored(oLoaded), Stored(oImage));
  aBytes[7] = 0;
  aBytes.erase(aBytes.begin() + 49, aBytes.begin() + 53);
  ASSERT_EQ(LoadNumber(aBytes, true, oLoaded), 0);
  EXPECT_EQ(oLoaded.Tag(), 0u);
  EXPECT_TRUE(oLoaded.AlignedRows());
}

TEST(ImageKif, AFileCutAtAnyByteIsRefused) {
  ClImage oImage, oLoaded;
  MakeImage(oImage);
  for (Bytes aBytes = Stored(oImage); aBytes.size() > 1;) {
    aBytes.pop_back();
    EXPECT_EQ(LoadNumber(aBytes, true, oLoaded), -201) << aBytes.size();
    EXPECT_EQ(LoadNumber(aBytes, false, oLoaded), -101) << aBytes.size();
  }
}

TEST(ImageKif, HostileFieldsEndInTheirNumbersWithoutAllocatingWhatTheyClaim) {
  ClImage oImage;
  MakeImage(oImage);
  const Bytes aGood = Stored(oImage);
  const auto With = [&](size_t nOffset, Bytes aField) {
    Bytes aBytes = aGood;
    for (size_t n = 0; n < aField.size(); ++n) aBytes.at(nOffset + n) = aField[n];
    return aBytes;
  };
  const Bytes aHuge = {0x7F, 0xFF, 0xFF, 0xFF};
  const Bytes aNegative = {0xFF, 0xFF, 0xFF, 0xFF};
  ClImage oLoaded;
  EXPECT_EQ(LoadNumber(With(0, {0x4C}), true, oLoaded), -101) << "magic";
  EXPECT_EQ(LoadNumber(With(4, {0, 0, 0, 3}), true, oLoaded), -101) << "version";
  for (const unsigned char nSize : Bytes{3, 5, 7, 9, 16, 31}) {
    EXPECT_EQ(LoadNumber(With(8, {nSize}), true, oLoaded), -101) << "elements of " << +nSize << " bytes";
    EXPECT_EQ(LoadNumber(With(8, {nSize}), false, oLoaded), -101) << "elements of " << +nSize << " bytes";
  }
  for (const size_t nOffset : {9u, 13u, 17u}) {
    EXPECT_EQ(LoadNumber(With(nOffset, aHuge), true, oLoaded), -201) << nOffset;
    EXPECT_EQ(LoadNumber(With(nOffset, aHuge), false, oLoaded), -101) << nOffset;
    EXPECT_EQ(LoadNumber(With(nOffset, aNegative), true, oLoaded), -101) << nOffset;
  }
  EXPECT_EQ(LoadNumber(With(aGood.size() - 1, {1}), true, oLoaded), -101) << "end magic";
  ClMemStream oStream(aGood.data(), static_cast<unsigned int>(aGood.size()));
  oStream.SetBigEndian(false);
  EXPECT_THROW(oLoaded.Load(oStream), ClException) << "the other byte order";
}

TEST(ImageKif, ElementsOfASizeThatNoStreamReadsDoNotLoadAsPixelsThatWereNeverRead) {
  ClImage oImage, oLoaded;
  oImage.NewWithType(ClImage::eUint8, 1, 1, 1, 0, 0, false);
  Bytes aBytes = Stored(oImage);
  aBytes[8] = 3;
  // The end mark is where reading continues.
  aBytes.erase(aBytes.begin() + 54);
  for (const bool bFailureFlag : {false, true}) EXPECT_EQ(LoadNumber(aBytes, bFailureFlag, oLoaded), -101);
}

}  // namespace
