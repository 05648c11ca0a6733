// Small images for processor tests: made, filled, compared.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "MXTools/Exception.h"
#include "MXTools/FpImage.h"
#include "MXTools/ImageTypeDispatch.h"
#include "MXTools/ParameterContainer.h"
#include "MXTools/ProcessorBase.h"
#include "Raised.h"

template <typename T>
constexpr auto TypeOf() {
  if (std::is_floating_point_v<T>) return sizeof(T) == 4 ? ClImage::eFloat32 : ClImage::eDouble64;
  return static_cast<ClImage::EDataType>(sizeof(T) | (std::is_signed_v<T> ? ClImage::cnTypeSignedBit : 0));
}

/// Sets a published parameter and returns the value that it had.
inline std::string SetParameter(ClProcessorBase& oProcessor, const char* szName, const char* szValue) {
  ClParameterContainer oContainer;
  oProcessor.QueryParameters(oContainer);
  const std::string szBefore = oContainer.Find(szName)->GetValue();
  oContainer.Find(szName)->SetValue(szValue);
  return szBefore;
}

/// Names the instances of typed tests after their element type.
struct ClElementTypeNames {
  template <typename T>
  static std::string GetName(int) {
    const std::string sBits = std::to_string(8 * sizeof(T));
    if (std::is_floating_point_v<T>) return "Float" + sBits;
    return (std::is_signed_v<T> ? "Int" : "Uint") + sBits;
  }
};

/// The suite of what holds for every element type.
template <typename T>
class EveryType : public testing::Test {};
using ByteTypes = testing::Types<uint8_t, int8_t>;
using AllElementTypes = testing::Types<uint8_t, int8_t, uint16_t, int16_t, uint32_t, int32_t, float, double>;
TYPED_TEST_SUITE(EveryType, AllElementTypes, ClElementTypeNames);

/// The suite of what holds for bytes, unsigned and signed.
template <typename T>
class EveryByteType : public testing::Test {};
TYPED_TEST_SUITE(EveryByteType, ByteTypes, ClElementTypeNames);

using Bytes = std::vector<uint8_t>;

/// An image with the given samples, row after row.
template <typename T>
void SetImage(ClImage& oImage, int nWidth, int nHeight, const std::vector<T>& aSamples, int nPlanes = 1,
              bool bAligned = true) {
  oImage.NewWithType(TypeOf<T>(), nWidth, nHeight, nPlanes, 19685, 9842, bAligned);
  ASSERT_EQ(aSamples.size(), static_cast<size_t>(nWidth * nHeight * nPlanes));
  for (int y = 0; y < nHeight; ++y) {
    const auto pBegin = aSamples.begin() + y * oImage.SamplesPerRow();
    std::copy(pBegin, pBegin + oImage.SamplesPerRow(), oImage.Row<T>(y));
  }
}

template <typename T>
std::vector<T> Samples(const ClImage& oImage) {
  std::vector<T> aSamples;
  for (int y = 0; y < oImage.Height(); ++y) {
    aSamples.insert(aSamples.end(), oImage.Row<T>(y), oImage.Row<T>(y) + oImage.SamplesPerRow());
  }
  return aSamples;
}

/// The samples that a run has left in its output; none when it failed.
template <typename T>
std::vector<T> Made(long nResult, const ClImage& oOut) {
  return nResult == 0 ? Samples<T>(oOut) : std::vector<T>();
}

/// Each sample is fnExpected(x, y, plane).
template <typename T, typename TExpected>
void ExpectSamples(const ClImage& oImage, const TExpected& fnExpected) {
  const int nPlanes = oImage.Planes();
  for (int y = 0; y < oImage.Height(); ++y) {
    for (int n = 0; n < oImage.SamplesPerRow(); ++n) {
      ASSERT_EQ(oImage.Row<T>(y)[n], fnExpected(n / nPlanes, y, n % nPlanes))
          << "at " << n / nPlanes << ", " << y << " of " << oImage.Width() << " by " << oImage.Height();
    }
  }
}

/// What a processor's summary of its parameters says, in a text of nSize characters at most.
inline std::string Summary(const ClProcessorBase& oProcessor, unsigned int nSize = 80) {
  char szText[80];
  oProcessor.ParameterString(szText, nSize);
  return szText;
}

/// Samples over the whole range of an integer type with many extremes; quarters between -64 and 64 for
/// floating types, whose sums are exact.
template <typename T>
T RandomSample(std::mt19937& oRandom) {
  if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(static_cast<int>(oRandom() % 512) - 256) / 4;
  } else {
    switch (oRandom() % 8) {
      case 0:
        return std::numeric_limits<T>::lowest();
      case 1:
        return std::numeric_limits<T>::max();
      default:
        return static_cast<T>(oRandom());
    }
  }
}

template <typename T>
void SetRandom(ClImage& oImage, int nWidth, int nHeight, std::mt19937& oRandom, int nPlanes = 1,
               bool bAligned = true) {
  std::vector<T> aSamples(static_cast<size_t>(nWidth * nHeight * nPlanes));
  for (T& nSample : aSamples) nSample = RandomSample<T>(oRandom);
  SetImage(oImage, nWidth, nHeight, aSamples, nPlanes, bAligned);
}

/// A random image of any type, chosen at run time.
inline void SetRandomOfType(ClImage& oImage, unsigned char nType, int nWidth, int nHeight,
                            std::mt19937& oRandom, int nPlanes = 1, bool bAligned = true) {
  DispatchElementType(nType, 0, [&](auto oElement) {
    SetRandom<typename decltype(oElement)::Type>(oImage, nWidth, nHeight, oRandom, nPlanes, bAligned);
    return 0L;
  });
}

/// Sample nX of row nY of an image of any type; exact for every type.
inline long double SampleAt(const ClImage& oImage, int nX, int nY) {
  long double dValue = 0;
  DispatchElementType(oImage.DataType(), 0, [&](auto oElement) {
    dValue = oImage.Row<typename decltype(oElement)::Type>(nY)[nX];
    return 0L;
  });
  return dValue;
}

/// A number as an element type holds it: limited and truncated.
inline double AsElement(double dValue, unsigned char nType) {
  DispatchElementType(nType, 0, [&](auto oElement) {
    dValue = static_cast<double>(ElementFromDouble<typename decltype(oElement)::Type>(dValue));
    return 0L;
  });
  return dValue;
}

/// ExpectSamples for an image of any type: each sample is fnExpected(x, y, plane) as a number.
template <typename TExpected>
void ExpectNumbers(const ClImage& oImage, const TExpected& fnExpected) {
  DispatchElementType(oImage.DataType(), 0, [&](auto oElement) {
    ExpectSamples<typename decltype(oElement)::Type>(oImage, fnExpected);
    return 0L;
  });
}

constexpr unsigned char g_aTypes[] = {ClImage::eUint8,   ClImage::eInt8,    ClImage::eUint16,
                                      ClImage::eInt16,   ClImage::eUint32,  ClImage::eInt32,
                                      ClImage::eFloat32, ClImage::eDouble64};

/// The images for tests of what processors take or refuse: 2 by 2 samples, but for the empty ones.
struct ClAnyImages {
  ClAnyImages() {
    SetImage<uint8_t>(m_oByte, 2, 2, {1, 2, 3, 4});
    SetImage<uint16_t>(m_oWord, 2, 2, {1, 2, 3, 4});
    SetImage<int32_t>(m_oLong, 2, 2, {1, 2, 3, 4});
    SetImage<float>(m_oFloat, 2, 2, {1, 2, 3, 4});
    SetImage<uint8_t>(m_oColor, 2, 2, std::vector<uint8_t>(12, 1), 3);
    m_oUnknown.NewWithType(3, 2, 2, 1, 0, 0, true);
    m_oNoPixels.NewWithType(ClImage::eUint8, 0, 0, 1, 0, 0, true);
  }
  ClImage m_oByte, m_oWord, m_oLong, m_oFloat, m_oColor, m_oUnknown, m_oNoPixels, m_oEmpty, m_oOut;
};
