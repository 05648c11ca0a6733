// The plain conversion of one sample to another element type.
#pragma once

#include <type_traits>

#include "MXTools/ImageTypeDispatch.h"

/// Integer to integer is a cast that keeps the low bits; integer to floating is the value; floating to
/// integer goes toward zero and is limited to the range of U, NaN gives 0.
template <typename U, typename T>
U SampleCast(T nValue) {
  if constexpr (std::is_same_v<U, T>) {
    return nValue;
  } else if constexpr (std::is_floating_point_v<T>) {
    return ElementFromDouble<U>(static_cast<double>(nValue));
  } else {
    return static_cast<U>(nValue);
  }
}
