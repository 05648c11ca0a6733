// The two stored forms of the sensor's gains.
#include "MXCalibrate/CalibrateGainData.h"

#include "MXCalibrate/CalibrateBlock.h"
#include "MXTools/Stream.h"

namespace {

constexpr size_t cnGroupSize = 6;

/// The bytes 0, 2 and 4 of a group from nOffset on, as 24 bits.
uint32_t EverySecondByte(const std::vector<uint8_t>& aBlock, size_t nOffset) {
  return static_cast<uint32_t>(aBlock[nOffset] | aBlock[nOffset + 2] << 8 | aBlock[nOffset + 4] << 16);
}

}  // namespace

void ClCalibrateGainData::Read(ClStream& oStream) {
  const std::vector<uint8_t> aBlock = ReadCalibrationBlock(oStream);
  std::map<uint64_t, uint32_t> mapGain = m_mapGain;
  std::map<uint64_t, uint32_t> mapGrey = m_mapWhitePatchGrey;
  const auto oTakeGroup = [&](uint64_t nKey, size_t nOffset) {
    NeedBytes(aBlock, nOffset, cnGroupSize);
    mapGain[nKey] = EverySecondByte(aBlock, nOffset);
    mapGrey[nKey] = EverySecondByte(aBlock, nOffset + 1);
  };
  uint32_t nVersion = 0;
  if (StartsWithTag(aBlock, "CGD")) {
    nVersion = static_cast<uint32_t>(LittleEndian(aBlock, 4, 2));
    for (size_t nOffset = 6; nOffset < aBlock.size(); nOffset += 8 + cnGroupSize) {
      oTakeGroup(LittleEndian(aBlock, nOffset, 8), nOffset + 8);
    }
  } else {
    size_t nOffset = 0;
    for (const uint64_t nKey : cnIlluminationKeys) {
      oTakeGroup(nKey, nOffset);
      nOffset += cnGroupSize;
    }
  }
  // Only a whole block counts.
  m_mapGain.swap(mapGain);
  m_mapWhitePatchGrey.swap(mapGrey);
  m_nVersion = nVersion;
}

void ClCalibrateGainData::Write(ClStream& oStream) {
  std::vector<uint8_t> aBlock;
  for (const uint64_t nKey : cnIlluminationKeys) {
    const uint32_t nGain = GetGain(nKey);
    const uint32_t nGrey = GetWhitePatchGrey(nKey);
    for (unsigned int nShift = 0; nShift < 24; nShift += 8) {
      aBlock.push_back(static_cast<uint8_t>(nGain >> nShift));
      aBlock.push_back(static_cast<uint8_t>(nGrey >> nShift));
    }
  }
  oStream.Write(aBlock.data(), static_cast<unsigned int>(aBlock.size()));
}

void ClCalibrateGainData::Clear() {
  m_mapGain.clear();
  m_mapWhitePatchGrey.clear();
  m_nVersion = cnNoVersion;
}
