// What all kernel tests share: levels, row lengths, guarded outputs, a fixed source of samples and the
// comparison.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <tuple>
#include <vector>

#include "MXKernels/Reference.h"

/// Restores the level that was in force, without asking the processor whether it has it.
class ClLevelGuard {
 public:
  ClLevelGuard() : m_eLevel(MXKernels::Level()) {}
  ~ClLevelGuard() { MXKernels::Detail::g_nLevel.store(m_eLevel); }
  ClLevelGuard(const ClLevelGuard&) = delete;
  ClLevelGuard& operator=(const ClLevelGuard&) = delete;

 private:
  MXKernels::ELevel m_eLevel;
};

using Bytes = std::vector<uint8_t>;
using Words = std::vector<uint16_t>;

/// Rows of samples with many extremes; each row is a block of exactly its size, so that a sanitizer
/// sees every read past it.
class ClSamples {
 public:
  template <typename T>
  std::vector<T> Row(size_t nCount, unsigned nMax = static_cast<unsigned>(static_cast<T>(~T{0}))) {
    std::vector<T> aRow(nCount);
    for (T& nSample : aRow) {
      const unsigned nKind = m_oRandom() % 8;
      nSample = static_cast<T>(nKind == 0 ? 0 : nKind == 1 ? nMax : Number(nMax));
    }
    return aRow;
  }
  unsigned Number(unsigned nMax) { return static_cast<unsigned>(m_oRandom() % (uint64_t{nMax} + 1)); }

 private:
  std::mt19937 m_oRandom{20240229};
};

/// An argument that a kernel writes to: a row that begins as the given one, between guard elements that must
/// stay.
template <typename T>
class TpOutput {
 public:
  explicit TpOutput(const std::vector<T>& aStart) : m_aData(aStart.size() + 2 * cnGuard, cnPattern) {
    std::copy(aStart.begin(), aStart.end(), Get());
  }
  T* Get() { return m_aData.data() + cnGuard; }
  void ExpectSame(const TpOutput& oExpected) const {
    EXPECT_EQ(m_aData, oExpected.m_aData);
    const auto fnIntact = [](T nElement) { return nElement == cnPattern; };
    EXPECT_TRUE(std::all_of(m_aData.begin(), m_aData.begin() + cnGuard, fnIntact));
    EXPECT_TRUE(std::all_of(m_aData.end() - cnGuard, m_aData.end(), fnIntact));
  }

 private:
  static constexpr size_t cnGuard = 64;
  static constexpr T cnPattern = 0x5A;
  std::vector<T> m_aData;
};

/// Calls fnTest() at every level that this machine has.
template <typename TTest>
void ForEveryLevel(TTest fnTest) {
  const ClLevelGuard oGuard;
  for (int n = 0; n < MXKernels::eLevelCount; ++n) {
    const auto eLevel = static_cast<MXKernels::ELevel>(n);
    if (!MXKernels::SetLevel(eLevel)) continue;
    SCOPED_TRACE(MXKernels::LevelName(eLevel));
    fnTest();
  }
}

/// Calls oTest(nCount, oSamples) at every level for counts from 0 to three vectors of 64 and one more.
template <typename TTest>
void ForEveryLevelAndTail(TTest oTest) {
  ForEveryLevel([&] {
    ClSamples oSamples;
    for (size_t nCount = 0; nCount <= 3 * 64 + 1 && !testing::Test::HasFailure(); ++nCount) {
      SCOPED_TRACE(nCount);
      oTest(nCount, oSamples);
    }
  });
}

/// Expects that fnCall(outputs...) writes the same at the level in force as at the plain one.
template <typename TCall, typename... TArgument>
void ExpectSameResults(const TCall& fnCall, std::tuple<TArgument...> aActual) {
  auto aExpected = aActual;
  const auto Call = [&](auto&... o) { fnCall(o.Get()...); };
  std::apply(Call, aActual);
  {
    const ClLevelGuard oGuard;
    MXKernels::SetLevel(MXKernels::eLevelScalar);
    std::apply(Call, aExpected);
  }
  std::apply(
      [&](const auto&... oActual) {
        std::apply([&](const auto&... oExpected) { (oActual.ExpectSame(oExpected), ...); }, aExpected);
      },
      aActual);
}

/// The same for outputs that begin as the given rows. A call that reads its output too works in place.
template <typename TCall, typename... T>
void ExpectLikeReference(const TCall& fnCall, const std::vector<T>&... aStarts) {
  ExpectSameResults(fnCall, std::tuple(TpOutput<T>(aStarts)...));
}
