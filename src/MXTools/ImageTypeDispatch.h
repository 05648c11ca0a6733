// The one place where an image's element type becomes a template argument.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "MXTools/FpImage.h"

/// Stands for an element type in a generic call.
template <typename T>
struct TpElementType {
  using Type = T;
};

/// Calls oCall(TpElementType<T>()) with the C++ type of the element type and returns its result; a type that
/// is none of the eight returns nUnknown.
///
/// The levels of a dispatch over several images nest:
/// DispatchElementType(in1, -101, [&](auto t) { return Level2<typename decltype(t)::Type>(...); }).
template <typename TCall>
long DispatchElementType(unsigned char nType, long nUnknown, TCall&& oCall) {
  switch (nType) {
    case ClImage::eUint8:
      return oCall(TpElementType<uint8_t>());
    case ClImage::eInt8:
      return oCall(TpElementType<int8_t>());
    case ClImage::eUint16:
      return oCall(TpElementType<uint16_t>());
    case ClImage::eInt16:
      return oCall(TpElementType<int16_t>());
    case ClImage::eUint32:
      return oCall(TpElementType<uint32_t>());
    case ClImage::eInt32:
      return oCall(TpElementType<int32_t>());
    case ClImage::eFloat32:
      return oCall(TpElementType<float>());
    case ClImage::eDouble64:
      return oCall(TpElementType<double>());
    default:
      return nUnknown;
  }
}

/// A double as an element: limits are those of T, fractions are cut toward zero, NaN becomes 0.
template <typename T>
T ElementFromDouble(double dValue) {
  using Limits = std::numeric_limits<T>;
  if constexpr (std::is_same_v<T, double>) {
    return dValue;
  } else if constexpr (std::is_same_v<T, float>) {
    if (std::isinf(dValue)) return static_cast<float>(dValue);
    return static_cast<float>(std::min<double>(std::max<double>(dValue, Limits::lowest()), Limits::max()));
  } else {
    if (std::isnan(dValue)) return 0;
    if (dValue <= static_cast<double>(Limits::lowest())) return Limits::lowest();
    if (dValue >= static_cast<double>(Limits::max())) return Limits::max();
    return static_cast<T>(dValue);
  }
}
