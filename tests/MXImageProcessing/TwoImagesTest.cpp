// Tests of the two-image processors: their rules, their canvas, their limits.
#include <cmath>
#include <cstring>

#include "MXImageProcessing/IpAnd.h"
#include "MXImageProcessing/IpDelta.h"
#include "MXImageProcessing/IpMultiply.h"
#include "MXImageProcessing/IpSubtract.h"
#include "TestImages.h"

namespace {

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

/// Each rule as long double arithmetic, which is exact for differences of all types and products of integers.
template <typename TProcessor>
long double PlainRule(long double dA, long double dB) {
  if (std::is_same_v<TProcessor, ClIpMultiply>) return dA * dB;
  return std::is_same_v<TProcessor, ClIpDelta> ? std::fabs(dA - dB) : dA - dB;
}

/// What an output of this type holds for it: within black and white and the type's range, truncated.
double PlainSample(long double dResult, const ClImage& oOut) {
  const long double dLower = AsElement(std::min(oOut.Black(), oOut.White()), oOut.DataType());
  const long double dUpper = AsElement(std::max(oOut.Black(), oOut.White()), oOut.DataType());
  return AsElement(static_cast<double>(std::min(std::max(dResult, dLower), dUpper)), oOut.DataType());
}

template <typename TProcessor>
class TwoImageRule : public testing::Test {};
using TwoImageProcessors = testing::Types<ClIpSubtract, ClIpMultiply, ClIpDelta>;
struct ClProcessorNames {
  template <typename TProcessor>
  static std::string GetName(int) {
    return TProcessor().Name();
  }
};
TYPED_TEST_SUITE(TwoImageRule, TwoImageProcessors, ClProcessorNames);

TYPED_TEST(TwoImageRule, HoldsForEveryMixOfTypesAndPlanesInLongRowsThatAreNotAlignedAndOverEitherInput) {
  std::mt19937 oRandom(11);
  for (int nMix = 0; nMix < 512; ++nMix) {
    const unsigned char nType1 = g_aTypes[nMix / 64], nType2 = g_aTypes[nMix / 8 % 8],
                        nTypeOut = g_aTypes[nMix % 8];
    const int nPlanes1 = nMix % 3 == 0 ? 3 : 1, nPlanes2 = nMix % 2 == 0 ? 1 : nPlanes1;
    ClImage oIn1, oIn2, oOut;
    SetRandomOfType(oIn1, nType1, 259, 2, oRandom, nPlanes1);
    SetRandomOfType(oIn2, nType2, 259, 2, oRandom, nPlanes2, false);
    TypeParam oProcessor;
    ASSERT_EQ(oProcessor.ApplyParam(oIn1, oIn2, oOut, nTypeOut), 0);
    ASSERT_EQ(oOut.DataType(), nTypeOut);
    SCOPED_TRACE(testing::Message() << int{nType1} << " and " << int{nType2} << " into " << int{nTypeOut});
    ExpectNumbers(oOut, [&](int x, int y, int k) {
      const long double dSecond = SampleAt(oIn2, x * nPlanes2 + (nPlanes1 == nPlanes2 ? k : 0), y);
      return PlainSample(PlainRule<TypeParam>(SampleAt(oIn1, x * nPlanes1 + k, y), dSecond), oOut);
    });
    for (ClImage* pOver : {&oIn1, &oIn2}) {
      ClImage oKeep;
      oKeep = *pOver;
      ASSERT_EQ(oProcessor.ApplyParam(oIn1, oIn2, *pOver, nTypeOut), 0);
      ExpectNumbers(*pOver, [&](int x, int y, int k) { return SampleAt(oOut, x * nPlanes1 + k, y); });
      pOver->Swap(oKeep);
    }
  }
}

TEST(Multiply, TheOutputsRangeIsThatOfTheFourProducts) {
  ClImage oA, oB, oOut;
  SetImage<int8_t>(oA, 4, 1, {-128, -128, 127, 0});
  SetImage<uint8_t>(oB, 4, 1, {255, 1, 255, 9});
  ClIpMultiply oMultiply;
  ASSERT_EQ(oMultiply.ApplyParam(oA, oB, oOut, ClImage::eInt16), 0);
  EXPECT_EQ(Samples<int16_t>(oOut), (std::vector<int16_t>{-32640, -128, 32385, 0}));
  EXPECT_EQ(oOut.Black(), -32640);
  EXPECT_EQ(oOut.White(), 32385);
  ASSERT_EQ(oMultiply.ApplyParam(oA, oB, oOut, ClImage::eUint16), 0);
  EXPECT_EQ(Samples<uint16_t>(oOut), (std::vector<uint16_t>{0, 0, 32385, 0}));
  EXPECT_EQ(oOut.Black(), 0);
  // Limits saturate to the range of the type.
  ASSERT_EQ(oMultiply.ApplyParam(oA, oB, oOut, ClImage::cnTypeDefault), 0);
  EXPECT_EQ(Samples<int8_t>(oOut), (std::vector<int8_t>{-128, -128, 127, 0}));
}

TEST(And, JoinsTheBitsOfEveryIntegerTypeOneMaskSampleForThreeAndFourPlanes) {
  std::mt19937 oRandom(13);
  for (int nCase = 0; nCase < 6 * 4 * 2; ++nCase) {
    const unsigned char nType = g_aTypes[nCase % 6];
    const int nPlanes1 = 1 + nCase / 6 % 4, nPlanes2 = nCase < 24 ? 1 : nPlanes1;
    ClImage oIn1, oIn2, oOut;
    SetRandomOfType(oIn1, nType, 37, 2, oRandom, nPlanes1);
    SetRandomOfType(oIn2, nType, 37, 2, oRandom, nPlanes2);
    ClIpAnd oAnd;
    ASSERT_EQ(oAnd.ApplyParam(oIn1, oIn2, oOut, ClImage::cnTypeDefault), 0);
    const bool bFits = nPlanes2 != 1 || nPlanes1 != 2;
    ExpectNumbers(oOut, [&](int x, int y, int k) {
      const auto nFirst = static_cast<int64_t>(SampleAt(oIn1, x * nPlanes1 + k, y));
      const auto nMask = static_cast<int64_t>(SampleAt(oIn2, nPlanes2 == 1 ? x : x * nPlanes1 + k, y));
      return bFits ? nFirst & nMask : 0;
    });
  }
}

TEST(And, RefusesTypesAndPlanesThatDoNotFit) {
  ClAnyImages o;
  ClIpAnd oAnd;
  const auto Apply = [&](ClImage& oFirst, ClImage& oSecond, unsigned char nType = ClImage::cnTypeDefault) {
    return oAnd.ApplyParam(oFirst, oSecond, o.m_oOut, nType);
  };
  EXPECT_EQ(Apply(o.m_oByte, o.m_oWord), -37);
  EXPECT_EQ(Apply(o.m_oFloat, o.m_oFloat), -37);
  EXPECT_EQ(Apply(o.m_oByte, o.m_oColor), -37);
  EXPECT_EQ(Apply(o.m_oEmpty, o.m_oEmpty), -37);
  EXPECT_EQ(Apply(o.m_oByte, o.m_oByte, ClImage::eUint16), -101);
  EXPECT_EQ(Apply(o.m_oByte, o.m_oByte), 0);
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
  // The limits of the inputs, -255 to 255, saturate to the type of the output.
  EXPECT_EQ(Made<uint8_t>(oSubtract.ApplyParam(oA, oB, oOut, ClImage::eUint8), oOut), (Bytes{0, 255, 0, 50}));

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
  EXPECT_EQ(Samples<uint8_t>(oOut), (Bytes{100, 101, 102, 77, 110, 110, 110, 3, 77, 4, 5, 6}));
  oSubtract.OffsetX = -1;
  oSubtract.OffsetY = 0;
  ASSERT_EQ(oSubtract.ApplyParam(oA, oB, oOut, ClImage::cnTypeDefault), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (Bytes{1, 98, 98, 102, 4, 105, 105, 112}));
  EXPECT_EQ(oOut.PelsX(), 19685);
  // No overlap is left.
  oSubtract.OffsetX = 4;
  EXPECT_EQ(Made<uint8_t>(oSubtract.ApplyParam(oA, oB, oOut, ClImage::cnTypeDefault), oOut),
            (Bytes{100, 101, 102, 77, 1, 2, 3, 110, 111, 112, 77, 4, 5, 6}));
  oSubtract.OffsetX = 2147483647L;
  EXPECT_EQ(NumberOf([&] { oSubtract.ApplyParam(oA, oB, oOut, ClImage::cnTypeDefault); }), -44);
}

TEST(TwoImages, ThreePlanesBesideOneAreClearedWhereTheImagesMeet) {
  ClImage oColor, oGrey, oOut;
  SetImage<uint8_t>(oColor, 2, 1, {10, 20, 30, 40, 50, 60}, 3);
  SetImage<uint8_t>(oGrey, 2, 1, {1, 2});
  SetImage<uint8_t>(oOut, 2, 1, {200, 201});
  ASSERT_EQ(ClIpSubtract().ApplyParam(oGrey, oColor, oOut, ClImage::cnTypeDefault), 0);
  EXPECT_EQ(Samples<uint8_t>(oOut), (Bytes{0, 0}));
}

TEST(TwoImages, OnePlaneIsTakenFromWhereTheOverlapBeginsInIt) {
  ClImage oColor, oGrey, oFour, oOut;
  SetImage<uint8_t>(oColor, 2, 1, {10, 20, 30, 40, 50, 60}, 3);
  SetImage<uint8_t>(oGrey, 2, 1, {1, 2});
  SetImage<uint8_t>(oFour, 2, 1, {3, 4, 6, 7, 8, 9, 10, 11}, 4);
  const auto Overlaid = [&](ClIp2to1Base& oProcessor, ClImage& oFirst) {
    oProcessor.SizeMustBeEqual = false;
    oProcessor.OffsetX = -1;
    EXPECT_EQ(oProcessor.ApplyParam(oFirst, oGrey, oOut, ClImage::cnTypeDefault), 0);
    return Samples<uint8_t>(oOut);
  };
  ClIpSubtract oSubtract;
  EXPECT_EQ(Overlaid(oSubtract, oColor), (Bytes{1, 1, 1, 8, 18, 28, 40, 50, 60}));
  ClWeighted oWeighted(false);
  EXPECT_EQ(Overlaid(oWeighted, oColor), (Bytes{1, 1, 1, 102, 202, 255, 40, 50, 60}));
  // On four planes one plane is not copied, but its samples are the mask.
  ClIpAnd oAnd;
  EXPECT_EQ(Overlaid(oAnd, oFour), (Bytes{0, 0, 0, 0, 2, 0, 2, 2, 8, 9, 10, 11}));
}

TYPED_TEST(TwoImageRule, NoNumberStaysNoNumberInAFloatAndIsTheLowerLimitOfAnInteger) {
  ClImage oNaN, oOne, oOut;
  SetImage<float>(oNaN, 1, 1, {NAN});
  SetImage<float>(oOne, 1, 1, {1});
  TypeParam oProcessor;
  ASSERT_EQ(oProcessor.ApplyParam(oNaN, oOne, oOut, ClImage::cnTypeDefault), 0);
  EXPECT_TRUE(std::isnan(oOut.Row<float>(0)[0]));
  ASSERT_EQ(oProcessor.ApplyParam(oOne, oNaN, oOut, ClImage::eInt8), 0);
  EXPECT_EQ(oOut.Row<int8_t>(0)[0], oOut.Black());
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
  ClAnyImages o;
  ClImage oLow;
  SetImage<uint8_t>(oLow, 2, 1, {1, 2});
  ClIpSubtract oSubtract;
  const auto Apply = [&](ClImage& oSecond, unsigned char nType = ClImage::cnTypeDefault) {
    return oSubtract.ApplyParam(o.m_oByte, oSecond, o.m_oOut, nType);
  };
  EXPECT_EQ(oSubtract.Apply(), -37);
  EXPECT_EQ(Apply(o.m_oEmpty), -37);
  EXPECT_EQ(Apply(oLow), -44);
  oSubtract.OffsetX = 1;
  EXPECT_EQ(Apply(o.m_oByte), -44);
  oSubtract.OffsetX = 0;
  EXPECT_EQ(Apply(o.m_oByte, 3), -101);
  EXPECT_EQ(Apply(o.m_oUnknown), -101);
  EXPECT_EQ(Apply(o.m_oByte), 0);
}
