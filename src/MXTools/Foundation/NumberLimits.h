// Conversions between numeric types that are never undefined.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace Klv {

/// True when dValue lies within the limits of T. NaN fits a floating type only.
template <typename T>
bool FitsNumber(double dValue) {
  using Limits = std::numeric_limits<T>;
  if constexpr (std::is_floating_point_v<T>) {
    return !(dValue < static_cast<double>(Limits::lowest()) || dValue > static_cast<double>(Limits::max()));
  } else if constexpr (Limits::digits <= 53) {
    return dValue >= static_cast<double>(Limits::min()) && dValue <= static_cast<double>(Limits::max());
  } else {
    // A double cannot hold the largest 64-bit integer, but holds the power of two above it.
    return dValue >= static_cast<double>(Limits::min()) && dValue < std::ldexp(1.0, Limits::digits);
  }
}

/// dValue as T, saturated; an integer T truncates, and gives 0 for NaN.
template <typename T>
T ClampNumber(double dValue) {
  if (FitsNumber<T>(dValue)) return static_cast<T>(dValue);
  if (std::isnan(dValue)) return T(0);
  return dValue < 0 ? std::numeric_limits<T>::lowest() : std::numeric_limits<T>::max();
}

/// True when the integer lies within the limits of T.
template <typename T, typename TInteger>
bool FitsInteger(TInteger nValue) {
  using Limits = std::numeric_limits<T>;
  if constexpr (std::is_floating_point_v<T>) {
    return true;
  } else if constexpr (std::is_unsigned_v<TInteger>) {
    return nValue <= static_cast<uint64_t>(Limits::max());
  } else if constexpr (std::is_unsigned_v<T>) {
    return nValue >= 0 && static_cast<uint64_t>(nValue) <= static_cast<uint64_t>(Limits::max());
  } else {
    return static_cast<int64_t>(nValue) >= static_cast<int64_t>(Limits::min()) &&
           static_cast<int64_t>(nValue) <= static_cast<int64_t>(Limits::max());
  }
}

}  // namespace Klv
