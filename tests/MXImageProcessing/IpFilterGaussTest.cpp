// Tests of the linear filters against plain ones.
#include <cmath>

#include "FilterWindows.h"
#include "MXImageProcessing/IpFilterGauss.h"

namespace {

/// A filter with coefficients of any kind.
class ClIpAnyFilter : public ClIpLinFilterBase {
 public:
  explicit ClIpAnyFilter(std::vector<double> aTaps) : m_aTaps(std::move(aTaps)) {}
  ClProcessorBase* Create() const override { return nullptr; }
  const char* Name() const override { return "ClIpAnyFilter"; }
  void CalcFilter(TpArrayStatic<double>& oReal, long nWidth) override {
    for (long n = 0; n < nWidth; ++n)
      oReal[static_cast<unsigned int>(n)] = m_aTaps[static_cast<size_t>(n) % m_aTaps.size()];
  }

 private:
  std::vector<double> m_aTaps;
};

std::vector<int64_t> FixedPoint(const std::vector<double>& aTaps) {
  double dPositive = 0, dNegative = 0;
  for (const double d : aTaps) (d >= 0 ? dPositive : dNegative) += std::fabs(d);
  const double dNorm = dNegative > 0 ? 2 * std::max(dPositive, dNegative) : dPositive;
  std::vector<int64_t> aFixed;
  for (const double d : aTaps) aFixed.push_back(static_cast<int64_t>(d / dNorm * 4095));
  return aFixed;
}

std::vector<double> Bell(double dSigma, long nWidth) {
  std::vector<double> aTaps;
  for (long n = 0; n < nWidth; ++n)
    aTaps.push_back(std::exp(-0.5 * std::pow(static_cast<double>(n - nWidth / 2) / dSigma, 2)));
  return aTaps;
}

/// What a weighted sum with 12 or 24 fractional bits becomes; an integer type keeps its low bits.
template <typename T, typename S>
T Scaled(S oSum, bool bTwice) {
  if constexpr (std::is_floating_point_v<T>) return static_cast<T>(oSum / (bTwice ? 4096.0 * 4096 : 4096.0));
  return static_cast<T>(bTwice ? static_cast<int64_t>(oSum) >> 24 : static_cast<int64_t>(oSum) / 4096);
}

template <typename T>
void ExpectWeighted(const ClImage& oIn, const ClImage& oOut, const std::vector<int64_t>& aTaps, long nMode) {
  using S = std::conditional_t<std::is_floating_point_v<T>, double, int64_t>;
  const bool bX = (nMode & 1) != 0, bY = (nMode & 2) != 0;
  const int nHead = (static_cast<int>(aTaps.size()) - 1) / 2, nTaps = static_cast<int>(aTaps.size());
  const auto TapAt = [&](int k) { return static_cast<S>(aTaps[static_cast<size_t>(k)]); };
  ExpectSamples<T>(oOut, [&](int x, int y, int) {
    S oSum = 0;
    for (int r = 0; r < (bY ? nTaps : 1); ++r) {
      const T* pRow = oIn.Row<T>(bY ? std::clamp(y + r - nHead, 0, oIn.Height() - 1) : y);
      for (int c = 0; c < (bX ? nTaps : 1); ++c) {
        const T nSample = pRow[bX ? std::clamp(x + c - nHead, 0, oIn.Width() - 1) : x];
        oSum += (bY ? TapAt(r) : S{1}) * (bX ? TapAt(c) : S{1}) * static_cast<S>(nSample);
      }
    }
    return Scaled<T>(oSum, bX && bY);
  });
}

}  // namespace

TYPED_TEST(EveryType, TheBellWeighsTheWindowAndIsCutOnce) {
  std::mt19937 oRandom(11);
  ClIpFilterGauss oGauss;
  for (const auto& [nWidth, nHeight] : g_aSizes) {
    ClImage oIn, oOut;
    SetRandom<TypeParam>(oIn, nWidth, nHeight, oRandom);
    for (const double dSigma : {0.4, 1.0, 2.3}) {
      for (const long nMode : {1L, 2L, 3L}) {
        oGauss.nMode = nMode;
        ASSERT_EQ(oGauss.ApplyParam(oIn, oOut, dSigma, 0), 0);
        // Along each filtered axis the width stays below the extent, and odd.
        long nTaps = std::max(3L, static_cast<long>(8 * dSigma)) | 1;
        if (nMode & 1) nTaps = std::min<long>(nTaps, nWidth - 1 - nWidth % 2);
        if (nMode & 2) nTaps = std::min<long>(nTaps, nHeight - 1 - nHeight % 2);
        ASSERT_EQ(oGauss.nFilterWidth, nTaps);
        if (nTaps < 0) continue;
        ASSERT_EQ(oOut.DataType(), oIn.DataType());
        if (nTaps > 1) {
          ExpectWeighted<TypeParam>(oIn, oOut, FixedPoint(Bell(dSigma, nTaps)), nMode);
        } else {
          EXPECT_EQ(Samples<TypeParam>(oOut), Samples<TypeParam>(oIn));
        }
      }
    }
  }
}

TYPED_TEST(EveryType, NegativeCoefficientsAndEvenWidthsAreWeighedLikeAnyOther) {
  std::mt19937 oRandom(12);
  ClImage oIn, oOut, oDx, oDy;
  SetRandom<TypeParam>(oIn, 24, 19, oRandom);
  SetRandom<int8_t>(oDx, 24, 19, oRandom);
  SetRandom<int8_t>(oDy, 24, 19, oRandom);
  for (const auto& aTaps : {std::vector<double>{-1, 0, 1}, {-1, 3, 2, -0.5}, {1, 2, 2, 1}}) {
    ClIpAnyFilter oFilter(aTaps);
    oFilter.pInDxImage = &oDx;
    oFilter.pInDyImage = &oDy;
    const auto aFixed = FixedPoint(aTaps);
    for (const long nMode : {1L, 2L, 3L, 8L, 16L}) {
      ASSERT_EQ(oFilter.ApplyParam(oIn, oOut, static_cast<long>(aTaps.size()), nMode), 0);
      EXPECT_EQ(oOut.IsSigned(), oIn.IsSigned() || aTaps[0] < 0);
      EXPECT_EQ(oOut.Black() < 0, oOut.IsSigned());
      EXPECT_EQ(oOut.White() - oOut.Black(), oIn.White() - oIn.Black());
      if (nMode <= 3) {
        ExpectWeighted<TypeParam>(oIn, oOut, aFixed, nMode);
        continue;
      }
      const long nHead = static_cast<long>(aTaps.size() - 1) / 2;
      ExpectSamples<TypeParam>(oOut, [&](int x, int y, int) {
        const auto aWindow = DirectedWindow<TypeParam>(oIn, oDx, oDy, x, y, nMode == 16, -nHead,
                                                       static_cast<long>(aTaps.size()) - 1 - nHead);
        std::conditional_t<std::is_floating_point_v<TypeParam>, double, int64_t> oSum = 0;
        for (size_t k = 0; k < aWindow.size(); ++k)
          oSum += static_cast<decltype(oSum)>(aFixed[k]) * static_cast<decltype(oSum)>(aWindow[k]);
        // Directed sums are shifted, as those of two axes are.
        return Scaled<TypeParam>(oSum * 4096, true);
      });
    }
  }
}

TEST(FilterGauss, TheWidthFollowsTheDeviation) {
  for (const auto& [dDeviation, nWidth] :
       {std::pair(0.0, 1L), {-2.0, 1L}, {std::nan(""), 1L}, {0.49, 3L}, {0.5, 5L}, {1.0, 9L}}) {
    EXPECT_EQ(ClIpFilterGauss::CalcFilterWidth(dDeviation), nWidth);
  }
  EXPECT_GT(ClIpFilterGauss::CalcFilterWidth(HUGE_VAL), 0);
  std::mt19937 oRandom(13);
  ClImage oIn, oOut;
  SetRandom<uint8_t>(oIn, 12, 11, oRandom);
  ClIpFilterGauss oGauss;
  // Without a deviation only the pixel itself counts: as it is in a width of 1, times 4095 / 4096 in a width
  // of 3.
  EXPECT_EQ(Made<uint8_t>(oGauss.ApplyParam(oIn, oOut, 0.0, 0), oOut), Samples<uint8_t>(oIn));
  // The largest sums of bytes do not turn negative.
  ASSERT_EQ(oGauss.ApplyParam(oIn, oOut, 1e-300, 3), 0);
  ExpectWeighted<uint8_t>(oIn, oOut, {0, 4095, 0}, 3);
  EXPECT_EQ(Summary(oGauss), "S[0.00] W[3] M[XY] S[Unsigned]");
  EXPECT_EQ(NumberOf([&] { Summary(oGauss, 30); }), -101);
}

TEST(FilterGauss, ErrorsHaveTheirNumbers) {
  ClAnyImages o;
  ClImage oIn;
  SetImage<uint8_t>(oIn, 4, 4, Bytes(16, 7));
  ClIpFilterGauss oGauss;
  EXPECT_EQ(oGauss.Apply(), -35);
  EXPECT_EQ(oGauss.ApplyParam(oIn, oIn, 1.0, 3), -10);
  EXPECT_EQ(NumberOf([&] { oGauss.ApplyParam(oIn, o.m_oOut, HUGE_VAL, 3); }), -44);
  ClIpAnyFilter oFilter({1});
  const auto Apply = [&](ClImage& oFrom, long nWidth, long nMode) {
    return NumberOf([&] { oFilter.ApplyParam(oFrom, o.m_oOut, nWidth, nMode); });
  };
  EXPECT_EQ(oFilter.Apply(), -35);
  EXPECT_EQ(Apply(oIn, 3, 7), -35);
  EXPECT_EQ(Apply(oIn, 0, ClIpFilterBase::eModeX), -101);
  EXPECT_EQ(Apply(oIn, 3, ClIpFilterBase::eModeDirected), -701);
  oIn.SetDataType(3);
  EXPECT_EQ(Apply(oIn, 3, ClIpFilterBase::eModeX), -35);
}
