// Images: shapes, sharing, copying, filling and the rules of validity.
#include <gmock/gmock.h>

#include <climits>
#include <cstring>
#include <memory>
#include <new>
#include <tuple>
#include <vector>

#include "MXTools/FpImage.h"
#include "Raised.h"

namespace {

TEST(Image, TheTagOfANewOneIsZeroWhateverTheMemoryHeld) {
  alignas(ClImage) unsigned char aMemory[sizeof(ClImage)];
  std::memset(aMemory, 0xA5, sizeof(aMemory));
  const std::unique_ptr<ClImage, void (*)(ClImage*)> pImage(new (aMemory) ClImage,
                                                            [](ClImage* p) { p->~ClImage(); });
  EXPECT_EQ(pImage->Tag(), 0u);
}

TEST(Image, TypePlanesAndAlignmentDecideRowsBlackWhiteAndContent) {
  ClImage oImage;
  const auto Facts = [&](unsigned char nType, int nPlanes, bool bAligned) {
    oImage.NewWithType(nType, 3, 2, nPlanes, 0, 0, bAligned);
    return std::make_tuple(oImage.RowBytes(), oImage.ElementsPerRow(), oImage.Black(), oImage.White(),
                           oImage.Content());
  };
  EXPECT_EQ(Facts(ClImage::eUint8, 1, true), std::make_tuple(4u, 4, 0.0, 255.0, ClImage::eGrayscale));
  EXPECT_EQ(Facts(ClImage::eUint8, 4, false), std::make_tuple(12u, 12, 0.0, 255.0, ClImage::eRGBA));
  EXPECT_EQ(Facts(ClImage::eUint8, 1, false), std::make_tuple(3u, 3, 0.0, 255.0, ClImage::eGrayscale));
  EXPECT_EQ(Facts(ClImage::eFloat32, 2, true), std::make_tuple(24u, 6, -1.0, 1.0, ClImage::eUnknown));
  EXPECT_EQ(Facts(ClImage::eInt16, 3, true), std::make_tuple(20u, 10, -32768.0, 32767.0, ClImage::eRGB));
  EXPECT_EQ(oImage.SamplesPerRow(), 9);
}

TEST(Image, ABlockOfTheSameSizeIsKeptByItsOnlyHolderAndLeftToAnother) {
  ClImage oImage(100, 12, 1, 0, 0);
  oImage = static_cast<unsigned char>(7);
  const unsigned char* pBlock = oImage.Data();
  oImage.NewWithType(ClImage::eUint8, 12, 100, 1, 9, 9, true);
  EXPECT_EQ(oImage.Data(), pBlock);
  ClImage oOther;
  oOther.Attach(oImage);
  EXPECT_EQ(oOther.Data(), pBlock);
  oImage.NewWithType(ClImage::eUint8, 12, 100, 1, 0, 0, true);
  EXPECT_NE(oImage.Data(), pBlock);
  EXPECT_EQ(oOther.Row<unsigned char>(99)[11], 7);
}

TEST(Image, ABlockOfTheCallersIsUsedAndNotFreed) {
  std::vector<unsigned char> aBlock(3 * 2, 9);
  {
    ClImage oImage;
    oImage.AttachIntern(aBlock.data(), ClImage::eUint8, 3, 2, 1, 1, 2, false);
    oImage.Row<unsigned char>(1)[2] = 1;
    EXPECT_EQ(oImage.Content(), ClImage::eGrayscale);
    ClImage oCopy;
    oCopy = oImage;
    EXPECT_EQ(oCopy.RowBytes(), 4u);
    EXPECT_EQ(oCopy.Row<unsigned char>(1)[2], 1);
    EXPECT_EQ(oCopy.Row<unsigned char>(1)[0], 9);
  }
  EXPECT_EQ(aBlock, (std::vector<unsigned char>{9, 9, 9, 9, 9, 1}));
}

TEST(Image, HostileSizesAreRefusedWithoutOverflow) {
  ClImage oImage;
  const auto New = [&](int nWidth, int nHeight, int nPlanes) {
    return NumberOf([&] { oImage.NewWithType(ClImage::eDouble64, nWidth, nHeight, nPlanes, 0, 0, true); });
  };
  EXPECT_EQ(New(10, -1, 1), -101);
  EXPECT_EQ(New(-10, 10, -1), -101);
  EXPECT_EQ(New(INT_MAX, INT_MAX, INT_MAX), -102);
  EXPECT_EQ(New(INT_MAX, 1, 1), -102);
  EXPECT_EQ(oImage.Data(), nullptr);
  EXPECT_EQ(New(0, 5, 1), 0);
  EXPECT_EQ(oImage.Data(), nullptr);
  EXPECT_EQ(New(5, 0, 0), 0);
  EXPECT_TRUE(oImage.IsValid());
}

TEST(Image, AModelGivesShapeAndMetadataButNoPixels) {
  ClImage oModel(4, 3, 1, 100, 200);
  oModel.SetTag(77);
  oModel.SetContent(ClImage::eHSV);
  oModel.SetBlackWhite(0, 255);
  ClImage oImage;
  oImage.New(oModel);
  EXPECT_TRUE(oImage.HasSize(4, 3));
  EXPECT_EQ(oImage.Tag(), 77u);
  EXPECT_EQ(oImage.Content(), ClImage::eHSV);
  EXPECT_EQ(oImage.PelsY(), 200);
  ClImage oFloat;
  oFloat.NewWithType(oModel, ClImage::eFloat32);
  EXPECT_EQ(oFloat.White(), 1.0);
  EXPECT_EQ(oFloat.Tag(), 77u);
  EXPECT_EQ(NumberOf([&] { oImage.NewWithType(oImage, ClImage::eUint8); }), -44);
}

TEST(Image, FillingTakesOnlyValuesOfItsType) {
  ClImage oBytes(3, 2, 1, 0, 0);
  oBytes = static_cast<unsigned char>(200);
  EXPECT_EQ(oBytes.Row<unsigned char>(1)[2], 200);
  EXPECT_EQ(oBytes.Row<unsigned char>(1)[3], 200) << "the padding is filled too";
  oBytes.FillAligment(0x1FF);
  EXPECT_EQ(oBytes.Row<unsigned char>(0)[3], 0xFF);
  EXPECT_EQ(oBytes.Row<unsigned char>(0)[2], 200);
  EXPECT_EQ(NumberOf([&] { oBytes = 5; }), -101);
  ClImage oInts;
  oInts.NewWithType(ClImage::eInt32, 3, 2, 1, 0, 0, true);
  oInts = -6;
  EXPECT_EQ(oInts.Row<int32_t>(1)[2], -6);
  EXPECT_EQ(NumberOf([&] { oInts = static_cast<unsigned char>(1); }), -101);
}

TEST(Image, ValidityNamesTheFirstBrokenRule) {
  const std::tuple<unsigned char, int, int, double, double, const char*> aCases[] = {
      {ClImage::eUint8, 1, 1, 0, 255, ""},
      {ClImage::eUint8, 1, -1, 2, 1, "\nClImage::IsValid. Wrong width, height or dpi"},
      {ClImage::eUint8, 1, 1, 2, 1, "\nClImage::IsValid. value of Black should be < than value of White"},
      {ClImage::eUint8, 1, 1, -1, 1, "\nClImage::IsValid. Unsigned require data range >= 0"},
      {ClImage::eUint8, 1, 1, 0, 254, "\nClImage::IsValid. Char require data range 0...255"},
      {ClImage::eInt8, 1, 1, -127, 127, "\nClImage::IsValid. Signed Char require data range -128...127"},
      {ClImage::eUint8, 5, 1, 0, 255, "\nClImage::IsValid. Wrong Image Size or wrong number of planes"}};
  for (const auto& [nType, nPlanes, nPels, dBlack, dWhite, szRule] : aCases) {
    ClImage oImage;
    oImage.NewWithType(nType, 4, 4, nPlanes, nPels, 1, true);
    oImage.SetBlackWhite(dBlack, dWhite);
    EXPECT_THAT(Raised([&] { oImage.CheckValid(); }).second, testing::EndsWith(szRule));
    EXPECT_EQ(oImage.IsValid(), *szRule == 0);
  }
}

}  // namespace
