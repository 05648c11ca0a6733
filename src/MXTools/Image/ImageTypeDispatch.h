// The one place where an image's element type becomes a template argument.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "MXTools/FpImage.h"
#include "MXTools/NumberLimits.h"

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

/// A double as an element: as Klv::ClampNumber, but infinity stays for floating types.
template <typename T>
T ElementFromDouble(double dValue) {
  if constexpr (std::is_floating_point_v<T>) {
    if (std::isinf(dValue)) return static_cast<T>(dValue);
  }
  return Klv::ClampNumber<T>(dValue);
}
