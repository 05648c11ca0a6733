// Tests of the two-image base and of the difference.
#include <cmath>

#include "MXImageProcessing/IpSubtract.h"
#include "MXTools/ParameterContainer.h"
#include "TestImages.h"

namespace {

/// What the output holds for a mathematical result: limited, then cut toward zero for integers.
long double Limited(long double dValue, const ClImage& oOut) {
  const long double dLow = std::min(oOut.Black(), oOut.White()), dHigh = std::max(oOut.Black(), oOut.White());
  const long double dLimited = std::min(std::max(dValue, dLow), dHigh);
  return oOut.IsFloating() ? dLimited : std::trunc(dLimited);
}

void SetParameter(ClIpSubtract& oSubtract, const char* szName, const char* szValue) {
  ClParameterContainer oContainer;
  oSubtract.QueryParameters(oContainer);
  ASSERT_NE(oContainer.Find(szName), nullptr);
  oContainer.Find(szName)->SetValue(szValue);
}

/// A rule that only the generic path serves: 10 * first + second.
class ClWeighted : public ClIp2to1Base {
 public:
  explicit ClWeighted(bool bTable) : ClIp2to1Base(bTable) {}
  ClProcessorBase* Create() const override { return new ClWeighted(false); }
  const char* Name() const override { return "ClWeighted"; }
  int m_nCalls = 0;

 protected:
  double GetValue(ClImage&, ClImage&, ClImage&, double dA, double dB) override {
    ++m_nCalls;
    return 10 * dA + dB;
  }
};

}  // namespace

TEST(Subtract, EveryMixOfTheEightTypesGivesTheLimitedDifference) {
  std::mt19937 oRandom(11);
  for (const unsigned char nType1 : g_aTypes) {
    for (const unsigned char nType2 : g_aTypes) {
      for (const unsigned char nTypeOut : g_aTypes) {
        ClImage oIn1, oIn2, oOut;
        SetRandomOfType(oIn1, nType1, 11, 3, oRandom);
        SetRandomOfType(oIn2, nType2, 11, 3, oRandom);
        ClIpSubtract oSubtract;
        ASSERT_EQ(oSubtract.ApplyParam(oIn1, oIn2, oOut, nTypeOut), 0);
        ASSERT_EQ(oOut.DataType(), nTypeOut);
        for (int y = 0; y < 3; ++y) {
          for (int x = 0; x < 11; ++x) {
            long double dExpected = Limited(SampleAt(oIn1, x, y) - SampleAt(oIn2, x, y), oOut);
            if (nTypeOut == ClImage::eFloat32) dExpected = static_cast<float>(dExpected);
            ASSERT_EQ(SampleAt(oOut, x, y), dExpected)
                << int{nType1} << " - " << int{nType2} << " into " << int{nTypeOut};
          }
        }
      }
    }
  }
}

TEST(Subtract, TheOutputMayBeEitherInput) {
  ClImage oA, oB;
  ClIpSubtract oSubtract;
  SetImage<uint8_t>(oA, 3, 1, {10, 200, 5});
  SetImage<uint8_t>(oB, 3, 1, {1, 250, 5});
  ASSERT_EQ(oSubtract.ApplyParam(oA, oB, oA, ClImage::cnTypeDefault), 0);
  EXPECT_EQ(Samples<uint8_t>(oA), (std::vector<uint8_t>{9, 0, 0}));
  ASSERT_EQ(oSubtract.ApplyParam(oA, oB, oB, ClImage::eInt16), 0);
  EXPECT_EQ(Samples<int16_t>(oB), (std::vector<int16_t>{8, -250, -5}));
  EXPECT_EQ(Samples<uint8_t>(oA), (std::vector<uint8_t>{9, 0, 0}));
}

TEST(Subtract, TheRangeFollowsTheInputsOrTheUser) {
  ClImage oA, oB, oOut;
  SetImage<uint8_t>(oA, 4, 1, {0, 255, 10, 100});
  SetImage<uint8_t>(oB, 4, 1, {255, 0, 20, 50});
  ClIpSubtract oSubtract;
  SetParameter(oSubtract, "Data Output Range", "InputDependent");
  ASSERT_EQ(oSubtract.ApplyParam(oA, oB, oOut, ClImage::eInt16), 0);
  EXPECT_EQ(Samples<int16_t>(oOut), (std::vector<int16_t>{-255, 255, -10, 50}));
  EXPECT_EQ(oOut.White(), 32767);
  // The limits of the inputs, -255 to 255, are cut to those of the output.
  ASSERT_EQ(oSubtract.ApplyParam(oA, oB, oOut, ClImage::eUint8), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (std::vector<uint8_t>{0, 255, 0, 50}));

  SetParameter(oSubtract, "Data Output Range", "UserDependent");
  SetParameter(oSubtract, "LowerBound", "-20.7");
  SetParameter(oSubtract, "UpperBound", "60");
  ASSERT_EQ(oSubtract.ApplyParam(oA, oB, oOut, ClImage::eInt16), 0);
  EXPECT_EQ(Samples<int16_t>(oOut), (std::vector<int16_t>{-20, 60, -10, 50}));
  EXPECT_EQ(oOut.Black(), -20);
  EXPECT_EQ(oOut.White(), 60);
}

TEST(TwoImages, AnOffsetMakesACanvasWithBothImagesAndTheRuleInTheOverlap) {
  ClImage oA, oB, oOut;
  SetImage<uint8_t>(oA, 3, 2, {100, 101, 102, 110, 111, 112});
  SetImage<uint8_t>(oB, 3, 2, {1, 2, 3, 4, 5, 6});
  ClIpSubtract oSubtract;
  oSubtract.SizeMustBeEqual = false;
  oSubtract.OffsetX = 1;
  oSubtract.OffsetY = 1;
  oSubtract.FillColor = 77;
  ASSERT_EQ(oSubtract.ApplyParam(oA, oB, oOut, ClImage::cnTypeDefault), 0);
  ASSERT_TRUE(oOut.HasSize(4, 3));
  EXPECT_EQ(Samples<uint8_t>(oOut), (std::vector<uint8_t>{100, 101, 102, 77, 110, 110, 110, 3, 77, 4, 5, 6}));
  oSubtract.OffsetX = -1;
  oSubtract.OffsetY = 0;
  ASSERT_EQ(oSubtract.ApplyParam(oA, oB, oOut, ClImage::cnTypeDefault), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (std::vector<uint8_t>{1, 98, 98, 102, 4, 105, 105, 112}));
  EXPECT_EQ(oOut.PelsX(), 19685);
}

TEST(TwoImages, AnOffsetBeyondTheImagesLeavesNoOverlap) {
  ClImage oA, oB, oOut;
  SetImage<uint8_t>(oA, 2, 1, {50, 60});
  SetImage<uint8_t>(oB, 1, 1, {9});
  ClIpSubtract oSubtract;
  oSubtract.SizeMustBeEqual = false;
  oSubtract.OffsetX = 4;
  ASSERT_EQ(oSubtract.ApplyParam(oA, oB, oOut, ClImage::cnTypeDefault), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (std::vector<uint8_t>{50, 60, 0, 0, 9}));
  oSubtract.OffsetX = 2147483647L;
  EXPECT_EQ(RaisedNumber([&] { oSubtract.ApplyParam(oA, oB, oOut, ClImage::cnTypeDefault); }), -44);
}

TEST(TwoImages, OnePlaneGoesWithEachOfThreeAndOtherMixesAreCleared) {
  ClImage oColor, oGrey, oOut;
  SetImage<uint8_t>(oColor, 2, 1, {10, 20, 30, 40, 50, 60}, 3);
  SetImage<uint8_t>(oGrey, 2, 1, {1, 2});
  ClIpSubtract oSubtract;
  ASSERT_EQ(oSubtract.ApplyParam(oColor, oGrey, oOut, ClImage::cnTypeDefault), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (std::vector<uint8_t>{9, 19, 29, 38, 48, 58}));
  SetImage<uint8_t>(oOut, 2, 1, {200, 201});
  ASSERT_EQ(oSubtract.ApplyParam(oGrey, oColor, oOut, ClImage::cnTypeDefault), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (std::vector<uint8_t>{0, 0}));
}

TEST(TwoImages, ASubclassWithOnlyTheRuleIsServedWithAndWithoutATable) {
  ClImage oA, oB, oOut;
  SetImage<int8_t>(oA, 4, 1, {-128, -1, 3, 12});
  SetImage<uint8_t>(oB, 4, 1, {255, 4, 0, 7});
  for (const bool bTable : {false, true}) {
    ClWeighted oWeighted(bTable);
    ASSERT_EQ(oWeighted.ApplyParam(oA, oB, oOut, ClImage::eInt16), 0);
    EXPECT_EQ(Samples<int16_t>(oOut), (std::vector<int16_t>{-1025, -6, 30, 127}));
    EXPECT_EQ(oWeighted.m_nCalls, bTable ? 65536 : 4);
    ASSERT_EQ(oWeighted.ApplyParam(oA, oB, oOut, ClImage::cnTypeDefault), 0);
    EXPECT_EQ(Samples<int8_t>(oOut), (std::vector<int8_t>{-128, -6, 30, 127}));
  }
}

TEST(TwoImages, ErrorsHaveTheirNumbers) {
  ClImage oA, oB, oEmpty, oOut;
  SetImage<uint8_t>(oA, 2, 2, {1, 2, 3, 4});
  SetImage<uint8_t>(oB, 2, 1, {1, 2});
  ClIpSubtract oSubtract;
  EXPECT_EQ(oSubtract.Apply(), -37);
  EXPECT_EQ(oSubtract.ApplyParam(oA, oEmpty, oOut, ClImage::cnTypeDefault), -37);
  EXPECT_EQ(oSubtract.ApplyParam(oA, oB, oOut, ClImage::cnTypeDefault), -44);
  oSubtract.OffsetX = 1;
  EXPECT_EQ(oSubtract.ApplyParam(oA, oA, oOut, ClImage::cnTypeDefault), -44);
  oSubtract.OffsetX = 0;
  EXPECT_EQ(oSubtract.ApplyParam(oA, oA, oOut, 3), -101);
  EXPECT_EQ(oSubtract.ApplyParam(oA, oA, oOut, ClImage::cnTypeDefault), 0);
}
