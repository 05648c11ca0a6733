// Brightness and gain blocks in both of their forms, and cut at every byte.
#include <gtest/gtest.h>

#include "MXCalibrate/CalibrateBrightnessData.h"
#include "MXCalibrate/CalibrateGainData.h"
#include "StoredData.h"

namespace {

TEST(BrightnessData, ReadsTheLegacyFormAndWritesItBackBehind128Zeros) {
  const Bytes aBlock = LegacyBrightnessBlock();
  ClCalibrateBrightnessData oData;
  EXPECT_FALSE(oData.IsValid());
  ASSERT_EQ(Read(oData, aBlock), 0);
  EXPECT_EQ(oData.GetVersion(), 0u);
  EXPECT_EQ(oData.NumberOfSamplePoints(), 64u);
  Bytes aSamples(192);
  oData.GetSamples(1, aSamples.data());
  EXPECT_EQ(aSamples, Bytes(aBlock.begin() + 320, aBlock.begin() + 512));
  const Bytes aWritten = Written(oData);
  ASSERT_EQ(aWritten.size(), 1088u);
  EXPECT_EQ(Cut(aWritten, 128), Bytes(128, 0));
  EXPECT_TRUE(std::equal(aBlock.begin() + 128, aBlock.end(), aWritten.begin() + 128));
}

TEST(BrightnessData, ReadsTheCurrentFormAndALaterRecordOfAKeyWins) {
  Bytes aBlock = CurrentBrightnessBlock();
  AppendLittle(aBlock, 4, 8);
  AppendAll(aBlock, Bytes(192, 42));
  ClCalibrateBrightnessData oData;
  ASSERT_EQ(Read(oData, aBlock), 0);
  EXPECT_EQ(oData.GetVersion(), 3u);
  Bytes aSamples(192);
  oData.GetSamples(1, aSamples.data());
  EXPECT_EQ(aSamples, IlluminationSamples());
  oData.GetSamples(4, aSamples.data());
  EXPECT_EQ(aSamples, Bytes(192, 42));
  EXPECT_FALSE(oData.HasSamples(2));
  oData.GetSamples(2, aSamples.data());
  EXPECT_TRUE(oData.HasSamples(2));
  EXPECT_EQ(aSamples, Bytes(192, 42)) << "an absent key copies nothing";
}

TEST(BrightnessData, FewerThan64PointsAreWrittenInFrontOfZerosAndMoreAreRefused) {
  ClCalibrateBrightnessData oData;
  Bytes aBlock = {'C', 'B', 'D', 0, 1, 0, 2, 0, 16, 0, 0, 0, 0, 0, 0, 0, 5, 5, 5, 5, 5, 5};
  ASSERT_EQ(Read(oData, aBlock), 0);
  const Bytes aWritten = Written(oData);
  EXPECT_EQ(Bytes(aWritten.begin() + 128, aWritten.begin() + 136), (Bytes{5, 5, 5, 5, 5, 5, 0, 0}));
  aBlock[6] = 65;
  aBlock.resize(16 + 3 * 65, 5);
  ASSERT_EQ(Read(oData, aBlock), 0);
  EXPECT_THROW(Written(oData), ClException);
}

/// Every cut is refused and leaves no data, except after a whole record of the current form.
template <typename TData>
void ExpectCutsFound(const Bytes& aLegacy, const Bytes& aCurrent, size_t nHead, size_t nRecord) {
  for (const Bytes& aBlock : {aLegacy, aCurrent}) {
    for (size_t nLength = 0; nLength < aBlock.size(); ++nLength) {
      TData oData;
      const bool bWhole = aBlock[0] == 'C' && nLength >= nHead && (nLength - nHead) % nRecord == 0;
      EXPECT_EQ(Read(oData, Cut(aBlock, nLength)), bWhole ? 0 : -201) << nLength;
      EXPECT_EQ(oData.IsValid(), bWhole) << nLength;
    }
  }
}

TEST(LightBlocks, EveryCutOfEitherFormIsFoundAndLeavesNoData) {
  ExpectCutsFound<ClCalibrateBrightnessData>(LegacyBrightnessBlock(), CurrentBrightnessBlock(), 8, 200);
  ExpectCutsFound<ClCalibrateGainData>(LegacyGainBlock(), CurrentGainBlock(), 6, 14);
  ClCalibrateBrightnessData oData;
  ASSERT_EQ(Read(oData, LegacyBrightnessBlock()), 0);
  EXPECT_EQ(Read(oData, Cut(LegacyBrightnessBlock(), 1087)), -201);
  EXPECT_FALSE(oData.IsValid()) << "what was there before goes";
}

TEST(GainData, BothFormsGiveTheSameLevels) {
  for (const Bytes& aBlock : {LegacyGainBlock(), CurrentGainBlock()}) {
    ClCalibrateGainData oData;
    ASSERT_EQ(Read(oData, aBlock), 0);
    EXPECT_EQ(oData.GetGain(16), 0x112233u);
    EXPECT_EQ(oData.GetGain(1), 0x224466u);
    EXPECT_EQ(oData.GetWhitePatchGrey(8), 0x030609u);
    EXPECT_EQ(oData.GetWhitePatchGrey(4), 0x050A0Fu);
    EXPECT_EQ(oData.GetGain(3), 0u);
    EXPECT_EQ(Written(oData), LegacyGainBlock());
  }
}

TEST(GainData, AReadKeepsKeysThatItDoesNotBring) {
  ClCalibrateGainData oData;
  ASSERT_EQ(Read(oData, LegacyGainBlock()), 0);
  const Bytes aEmpty = {'C', 'G', 'D', 0, 1, 0};
  ASSERT_EQ(Read(oData, aEmpty), 0);
  EXPECT_EQ(oData.GetVersion(), 1u);
  EXPECT_TRUE(oData.IsValid());
  EXPECT_EQ(oData.GetGain(16), 0x112233u);
  oData.Clear();
  EXPECT_FALSE(oData.IsValid());
  EXPECT_EQ(oData.GetGain(16), 0u);
}

}  // namespace
