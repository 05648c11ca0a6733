// Digests of images and numbers, printed stage by stage: a name, a blank, 16 hexadecimal digits.
#pragma once

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <type_traits>

/// FNV-1a over the bytes of numbers, least significant first on every machine.
class ClDigest {
 public:
  template <typename T>
  ClDigest& Add(T tValue) {
    static_assert(std::is_arithmetic_v<T> || std::is_enum_v<T>);
    // The size of a long depends on the build, and NaNs differ in bits that mean nothing.
    if constexpr (std::is_floating_point_v<T>) {
      const double dValue = tValue == tValue ? static_cast<double>(tValue) : 0x1p-1000;
      uint64_t nBits;
      std::memcpy(&nBits, &dValue, sizeof(nBits));
      return AddBytes(nBits, 8);
    } else {
      return AddBytes(static_cast<uint64_t>(tValue), sizeof(T) < 4 ? sizeof(T) : 8);
    }
  }
  template <typename T>
  ClDigest& Add(const T* pValues, size_t nCount) {
    for (size_t n = 0; n < nCount; ++n) Add(pValues[n]);
    return *this;
  }
  uint64_t Value() const { return m_nHash; }

 private:
  ClDigest& AddBytes(uint64_t nValue, size_t nBytes) {
    for (size_t n = 0; n < nBytes; ++n) m_nHash = (m_nHash ^ (nValue >> (8 * n) & 0xFF)) * 0x100000001B3u;
    return *this;
  }

  uint64_t m_nHash = 0xCBF29CE484222325u;
};

inline void PrintStage(const char* szStage, const ClDigest& oDigest) {
  std::printf("%s %016" PRIx64 "\n", szStage, oDigest.Value());
  std::fflush(stdout);
}
