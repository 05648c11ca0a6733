// The default print format of each numeric type.
#pragma once

namespace Klv {

/// Format: the printf format of a T.
template <typename T>
struct ClNumericFormat;

template <>
struct ClNumericFormat<unsigned char> {
  static constexpr const char* Format = "%u";
};
template <>
struct ClNumericFormat<unsigned short> {
  static constexpr const char* Format = "%u";
};
template <>
struct ClNumericFormat<unsigned int> {
  static constexpr const char* Format = "%u";
};
template <>
struct ClNumericFormat<int> {
  static constexpr const char* Format = "%d";
};
template <>
struct ClNumericFormat<long> {
  static constexpr const char* Format = "%ld";
};
template <>
struct ClNumericFormat<unsigned long> {
  static constexpr const char* Format = "%lu";
};
template <>
struct ClNumericFormat<long long> {
  static constexpr const char* Format = "%lld";
};
template <>
struct ClNumericFormat<unsigned long long> {
  static constexpr const char* Format = "%llu";
};
template <>
struct ClNumericFormat<float> {
  static constexpr const char* Format = "%f";
};
template <>
struct ClNumericFormat<double> {
  static constexpr const char* Format = "%f";
};

}  // namespace Klv
