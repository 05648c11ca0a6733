// Calibration blocks put together byte by byte, without the code under test.
#pragma once

#include <boost/crc.hpp>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "MXTools/Vector.h"

using Bytes = std::vector<unsigned char>;

/// Appends byte by byte, since g++ 12 warns of overflows that don't exist when a range is inserted.
template <typename TRange>
void AppendAll(Bytes& aBytes, const TRange& aMore) {
  for (const auto nByte : aMore) aBytes.push_back(static_cast<unsigned char>(nByte));
}

inline void AppendText(Bytes& aBytes, const std::string& szText) {
  for (size_t n = 0; n < 4; ++n)
    aBytes.push_back(static_cast<unsigned char>(n < szText.size() ? szText[n] : 0));
}

inline void AppendBig(Bytes& aBytes, uint32_t nValue) {
  for (int nShift = 24; nShift >= 0; nShift -= 8)
    aBytes.push_back(static_cast<unsigned char>(nValue >> nShift));
}

inline void AppendLittle(Bytes& aBytes, uint64_t nValue, int nBytes) {
  for (int n = 0; n < nBytes; ++n) aBytes.push_back(static_cast<unsigned char>(nValue >> (8 * n)));
}

inline void AppendPoints(Bytes& aBytes, const std::vector<ClVector>& aPoints) {
  AppendBig(aBytes, static_cast<uint32_t>(aPoints.size()));
  for (const ClVector& o : aPoints) {
    for (const double dValue : {o.x, o.y}) {
      const float fValue = static_cast<float>(dValue);
      uint32_t nBits;
      std::memcpy(&nBits, &fValue, sizeof(nBits));
      AppendBig(aBytes, nBits);
    }
  }
}

/// The platen's 64 grid points in a 1600 by 1600 image, column after column, 10 mm apart at 500 dpi.
inline std::vector<ClVector> TargetGrid() {
  constexpr double cdPitch = 10 * 500 / 25.4;
  std::vector<ClVector> aPoints;
  for (int n = 0; n < 64; ++n)
    aPoints.emplace_back(800 + cdPitch * (n / 8 - 3.5), 800 + cdPitch * (n % 8 - 3.5));
  return aPoints;
}

/// Where a 3840 by 2720 sensor shows them, with a keystone and some barrel.
inline std::vector<ClVector> ActualGrid() {
  std::vector<ClVector> aPoints;
  for (const ClVector& o : TargetGrid()) {
    const double dX = (o.x - 800) / 800;
    const double dY = (o.y - 800) / 800;
    const double dBarrel = 1 - 0.02 * (dX * dX + dY * dY);
    aPoints.emplace_back(1920 + 1750 * dX * dBarrel * (1 + 0.02 * dY), 1360 + 1270 * dY * dBarrel);
  }
  return aPoints;
}

struct ClGeometricRecord {
  std::string szMagic = "CAL";
  std::string szType = "GEO";
  std::string szVersion = "006";
  uint32_t nSourceWidth = 3840;
  uint32_t nSourceHeight = 2720;
  uint32_t nTargetWidth = 1600;
  uint32_t nTargetHeight = 1600;
  uint32_t nPlanes = 1;
  unsigned char nBackground = 0;
  std::vector<ClVector> aTarget = TargetGrid();
  std::vector<ClVector> aActual = ActualGrid();
};

/// The record in the layout of nLayout, 0 to 6; the version text is the record's own.
inline Bytes GeometricBlock(const ClGeometricRecord& o, int nLayout = 6) {
  Bytes aBytes;
  AppendText(aBytes, o.szMagic);
  AppendText(aBytes, o.szType);
  AppendText(aBytes, o.szVersion);
  AppendBig(aBytes, o.nSourceWidth);
  AppendBig(aBytes, o.nSourceHeight);
  if (nLayout >= 5) {
    AppendBig(aBytes, 41417);
    AppendBig(aBytes, 30236);
  }
  AppendBig(aBytes, o.nTargetWidth);
  AppendBig(aBytes, o.nTargetHeight);
  if (nLayout >= 2) {
    AppendBig(aBytes, 19685);
    AppendBig(aBytes, 19684);
  }
  if (nLayout >= 3) AppendBig(aBytes, o.nPlanes);
  if (nLayout >= 4) aBytes.push_back(o.nBackground);
  if (nLayout <= 2) AppendPoints(aBytes, o.aActual);
  AppendPoints(aBytes, o.aTarget);
  for (uint32_t n = 0; nLayout > 2 && n < o.nPlanes; ++n) AppendPoints(aBytes, o.aActual);
  if (nLayout >= 6) {
    boost::crc_optimal<32, 0x04C11DB7, 0xFFFFFFFF, 0xFFFFFFFF, false, false> oCrc;
    oCrc.process_bytes(aBytes.data(), aBytes.size());
    AppendBig(aBytes, oCrc.checksum());
  }
  return aBytes;
}

/// The light at the grid points: 200 in the middle, a third less towards the corners, the same in three
/// planes.
inline Bytes IlluminationSamples() {
  Bytes aSamples;
  for (int nPlane = 0; nPlane < 3; ++nPlane) {
    for (const ClVector& o : TargetGrid()) {
      const double dX = (o.x - 800) / 800;
      const double dY = (o.y - 800) / 800;
      aSamples.push_back(static_cast<unsigned char>(200 * (1 - (dX * dX + dY * dY) / 6)));
    }
  }
  return aSamples;
}

inline Bytes LegacyBrightnessBlock() {
  Bytes aBytes(128, 0xEE);
  const Bytes aSamples = IlluminationSamples();
  for (int n = 0; n < 5; ++n) {
    for (const unsigned char nSample : aSamples) aBytes.push_back(static_cast<unsigned char>(nSample - n));
  }
  return aBytes;
}

inline Bytes CurrentBrightnessBlock() {
  Bytes aBytes;
  AppendText(aBytes, "CBD");
  AppendLittle(aBytes, 3, 2);
  AppendLittle(aBytes, 64, 2);
  for (const uint64_t nKey : {4u, 1u, 256u}) {
    AppendLittle(aBytes, nKey, 8);
    for (const unsigned char nSample : IlluminationSamples()) {
      aBytes.push_back(static_cast<unsigned char>(nSample - (nKey == 1 ? 0 : 7)));
    }
  }
  return aBytes;
}

/// Gains 0x112233 * rank and greys 0x010203 * rank for the keys 16, 1, 8, 2, 4 of rank 1 to 5.
inline Bytes LegacyGainBlock() {
  Bytes aBytes;
  for (uint32_t nRank = 1; nRank <= 5; ++nRank) {
    for (int nShift = 0; nShift < 24; nShift += 8) {
      aBytes.push_back(static_cast<unsigned char>((0x112233 * nRank) >> nShift));
      aBytes.push_back(static_cast<unsigned char>((0x010203 * nRank) >> nShift));
    }
  }
  return aBytes;
}

inline Bytes CurrentGainBlock() {
  Bytes aBytes;
  AppendText(aBytes, "CGD");
  AppendLittle(aBytes, 2, 2);
  const Bytes aGroups = LegacyGainBlock();
  const uint64_t aKeys[5] = {16, 1, 8, 2, 4};
  for (int n = 0; n < 5; ++n) {
    AppendLittle(aBytes, aKeys[n], 8);
    AppendAll(aBytes, Bytes(aGroups.begin() + 6 * n, aGroups.begin() + 6 * n + 6));
  }
  return aBytes;
}
