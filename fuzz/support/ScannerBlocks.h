// Calibration records as the simulated scanner carries them, and what older ones look like.
#pragma once

#include <cstring>

#include "FuzzTarget.h"
#include "MXTools/CRC32.h"
#include "sensor/EpromFiles.h"

/// A geometric record of the newest version with its checksum put right: where its counts say that it stands,
/// or at the end.
inline Bytes WithRightChecksum(Bytes aRecord) {
  constexpr size_t cnPlanes = 44, cnHeader = 49, cnPoint = 8;
  if (aRecord.size() < cnHeader + 4 || aRecord[10] != '6') return aRecord;
  const auto Number = [&](size_t nAt) {
    uint64_t nValue = 0;
    for (size_t n = 0; n < 4; ++n) nValue = nValue << 8 | aRecord[nAt + n];
    return nValue;
  };
  uint64_t nEnd = cnHeader;
  for (uint64_t nArray = 0; nArray <= Number(cnPlanes); ++nArray) {
    if (nEnd + 4 > aRecord.size()) break;
    nEnd += 4 + cnPoint * Number(static_cast<size_t>(nEnd));
  }
  const size_t nAt = static_cast<size_t>(std::min<uint64_t>(nEnd, aRecord.size() - 4));
  const uint32_t nSum = ClCRC32().Get_CRC(aRecord.data(), static_cast<unsigned int>(nAt));
  for (size_t n = 0; n < 4; ++n) aRecord[nAt + n] = static_cast<uint8_t>(nSum >> (24 - 8 * n));
  return aRecord;
}

/// The record of the newest version, whose checksum hardly any change survives, and older ones, which have
/// none.
inline std::vector<Bytes> GeometryBlocks() {
  const Bytes aNewest = Simulator::EncodeGeometry(Simulator::MeasureGeometry(Simulator::ClOptics(3)));
  Bytes aWithoutChecksum(aNewest.begin(), aNewest.end() - 4);
  std::memcpy(aWithoutChecksum.data() + 8, "005", 4);
  Bytes aWithoutSourcePels = aWithoutChecksum;
  aWithoutSourcePels.erase(aWithoutSourcePels.begin() + 20, aWithoutSourcePels.begin() + 28);
  std::memcpy(aWithoutSourcePels.data() + 8, "004", 4);
  return {aNewest, aWithoutChecksum, aWithoutSourcePels};
}

inline Bytes BrightnessBlock(bool bLegacy) {
  return Simulator::EncodeBrightness(Simulator::MeasureBrightness(Simulator::ClOptics(3)), bLegacy);
}

inline Bytes GainBlock(bool bLegacy) {
  return Simulator::EncodeGains(Simulator::MeasureGains(3, 1), bLegacy);
}
