// The product's rule and its limits.
#include "MXImageProcessing/IpMultiply.h"

#include <limits>

#include "MXImageProcessing/MakeProcessor.h"
#include "TpIp2to1RuleImpl.h"

struct ClRuleMultiply {
  static constexpr std::nullptr_t cpBytes = nullptr;

  /// Holds for two bytes, or a byte and a word, but not for two unsigned words.
  static bool ResultFitsIn32Bits(int nSize1, int nSize2) { return nSize1 + nSize2 < 4; }
  template <typename W>
  static W Apply(W nA, W nB) {
    if constexpr (std::is_same_v<W, int64_t>) {
      // Only the product of two unsigned 32-bit numbers can pass 63 bits; it is then above every limit.
      constexpr auto cnLargest = std::numeric_limits<int64_t>::max();
      const uint64_t nProduct = static_cast<uint64_t>(nA) * static_cast<uint64_t>(nB);
      const bool bPositive = (nA >= 0) == (nB >= 0);
      if (bPositive && nProduct > static_cast<uint64_t>(cnLargest)) return cnLargest;
      return static_cast<int64_t>(nProduct);
    } else {
      return nA * nB;
    }
  }
};
template class TpIp2to1Rule<ClRuleMultiply>;

ClProcessorBase* ClIpMultiply::Create() const {
  return MakeProcessor<ClIpMultiply>();
}

ClIpMultiply::ClLimits ClIpMultiply::Limits(const ClImage& oIn1, const ClImage& oIn2, ClImage& oOut) const {
  const auto [dSmallest, dLargest] = std::minmax({oIn1.Black() * oIn2.Black(), oIn1.Black() * oIn2.White(),
                                                  oIn1.White() * oIn2.Black(), oIn1.White() * oIn2.White()});
  const bool bUnsigned = !oOut.IsSigned() && !oOut.IsFloating();
  oOut.SetBlackWhite(bUnsigned ? std::max(dSmallest, 0.0) : dSmallest, dLargest);
  return LimitsOf(oOut);
}
