// What all kernel tests share: levels, row lengths, guarded outputs and a fixed source of samples.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "MXKernels/Level.h"
#include "MXKernels/Reference.h"

/// Restores the level that was in force.
class ClLevelGuard {
 public:
  ClLevelGuard() : m_eLevel(MXKernels::Level()) {}
  ~ClLevelGuard() { MXKernels::SetLevel(m_eLevel); }
  ClLevelGuard(const ClLevelGuard&) = delete;
  ClLevelGuard& operator=(const ClLevelGuard&) = delete;

 private:
  MXKernels::ELevel m_eLevel;
};

using Bytes = std::vector<uint8_t>;
using Words = std::vector<uint16_t>;

/// An output row between guard elements that a kernel must leave alone.
template <typename T>
class TpGuardedRow {
 public:
  explicit TpGuardedRow(size_t nCount)
      : m_nCount(nCount), m_aData(nCount + 2 * cnGuard, static_cast<T>(cnPattern)) {}
  /// The row begins as a copy of another one, for kernels that add to it or work in place.
  explicit TpGuardedRow(const std::vector<T>& aStart) : TpGuardedRow(aStart.size()) {
    std::copy(aStart.begin(), aStart.end(), Data());
  }

  T* Data() { return m_aData.data() + cnGuard; }
  std::vector<T> Row() const { return {m_aData.data() + cnGuard, m_aData.data() + cnGuard + m_nCount}; }
  bool GuardsIntact() const {
    const auto fnIntact = [](T nElement) { return nElement == static_cast<T>(cnPattern); };
    return std::all_of(m_aData.begin(), m_aData.begin() + cnGuard, fnIntact) &&
           std::all_of(m_aData.end() - cnGuard, m_aData.end(), fnIntact);
  }

 private:
  static constexpr size_t cnGuard = 64;
  static constexpr unsigned cnPattern = 0xA5;
  size_t m_nCount;
  std::vector<T> m_aData;
};

/// Rows of samples with many extremes; each row is a block of exactly its size, so that a sanitizer
/// sees every read past it.
class ClSamples {
 public:
  template <typename T>
  std::vector<T> Row(size_t nCount, unsigned nMax = static_cast<T>(~T{0})) {
    std::vector<T> aRow(nCount);
    for (T& nSample : aRow) {
      const unsigned nKind = m_oRandom() % 8;
      nSample = static_cast<T>(nKind == 0 ? 0 : nKind == 1 ? nMax : m_oRandom() % (nMax + 1U));
    }
    return aRow;
  }
  unsigned Number(unsigned nMax) { return static_cast<unsigned>(m_oRandom() % (nMax + 1U)); }

 private:
  std::mt19937 m_oRandom{20240229};
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

template <typename T>
void ExpectSameAndGuarded(const TpGuardedRow<T>& oActual, const TpGuardedRow<T>& oExpected) {
  EXPECT_EQ(oActual.Row(), oExpected.Row());
  EXPECT_TRUE(oActual.GuardsIntact());
}

/// fnCall(kernel, outputs...) leaves the same in the outputs for a kernel and its plain twin; each output
/// begins as the given row. A call that reads its output too works in place.
template <typename TKernel, typename TCall, typename... T>
void ExpectLikeReference(TKernel pfnKernel, TKernel pfnReference, const TCall& fnCall,
                         const std::vector<T>&... aStarts) {
  std::tuple<TpGuardedRow<T>...> aActual(aStarts...), aExpected(aStarts...);
  std::apply([&](auto&... o) { fnCall(pfnKernel, o.Data()...); }, aActual);
  std::apply([&](auto&... o) { fnCall(pfnReference, o.Data()...); }, aExpected);
  std::apply(
      [&](const auto&... oActual) {
        std::apply([&](const auto&... oExpected) { (ExpectSameAndGuarded(oActual, oExpected), ...); },
                   aExpected);
      },
      aActual);
}

/// The same for a kernel and the twin of its name.
#define EXPECT_LIKE_REFERENCE(Kernel, ...) ExpectLikeReference(Kernel, Reference::Kernel, __VA_ARGS__)
