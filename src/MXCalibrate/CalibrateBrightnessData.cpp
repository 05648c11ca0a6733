// The two stored forms of illumination samples.
#include "MXCalibrate/CalibrateBrightnessData.h"

#include <algorithm>

#include "MXCalibrate/CalibrateBlock.h"
#include "MXTools/Exception.h"
#include "MXTools/Stream.h"

namespace {

constexpr uint32_t cnLegacyPoints = 64;
constexpr size_t cnLegacyStart = 128;
constexpr size_t cnLegacyRecord = 3 * cnLegacyPoints;
constexpr size_t cnLegacySize = cnLegacyStart + 5 * cnLegacyRecord;

std::vector<uint8_t> Slice(const std::vector<uint8_t>& aBlock, size_t nOffset, size_t nBytes) {
  NeedBytes(aBlock, nOffset, nBytes);
  const auto oFrom = aBlock.begin() + static_cast<std::ptrdiff_t>(nOffset);
  return {oFrom, oFrom + static_cast<std::ptrdiff_t>(nBytes)};
}

}  // namespace

void ClCalibrateBrightnessData::Read(ClStream& oStream) {
  const std::vector<uint8_t> aBlock = ReadCalibrationBlock(oStream);
  Clear();
  Samples mapSamples;
  uint32_t nVersion = 0;
  uint32_t nPoints = cnLegacyPoints;
  if (StartsWithTag(aBlock, "CBD")) {
    nVersion = static_cast<uint32_t>(LittleEndian(aBlock, 4, 2));
    nPoints = static_cast<uint32_t>(LittleEndian(aBlock, 6, 2));
    for (size_t nOffset = 8; nOffset < aBlock.size(); nOffset += 8 + 3 * size_t{nPoints}) {
      mapSamples[LittleEndian(aBlock, nOffset, 8)] = Slice(aBlock, nOffset + 8, 3 * size_t{nPoints});
    }
  } else {
    size_t nOffset = cnLegacyStart;
    for (const uint64_t nKey : cnIlluminationKeys) {
      mapSamples[nKey] = Slice(aBlock, nOffset, cnLegacyRecord);
      nOffset += cnLegacyRecord;
    }
  }
  // Only a whole block counts.
  m_mapSamples.swap(mapSamples);
  m_nSamplePoints = nPoints;
  m_nVersion = nVersion;
}

void ClCalibrateBrightnessData::Write(ClStream& oStream) {
  if (m_nSamplePoints > cnLegacyPoints) {
    KLV_RAISE(ClException, "The brightness format holds 64 sample points.", -44);
  }
  std::vector<uint8_t> aBlock(cnLegacySize, 0);
  size_t nOffset = cnLegacyStart;
  for (const uint64_t nKey : cnIlluminationKeys) {
    GetSamples(nKey, aBlock.data() + nOffset);
    nOffset += cnLegacyRecord;
  }
  oStream.Write(aBlock.data(), static_cast<unsigned int>(aBlock.size()));
}

void ClCalibrateBrightnessData::Clear() {
  m_mapSamples.clear();
  m_nVersion = cnNoVersion;
}

void ClCalibrateBrightnessData::GetSamples(uint64_t nKey, unsigned char* pOut) {
  const std::vector<uint8_t>& aSamples = m_mapSamples[nKey];
  std::copy(aSamples.begin(), aSamples.end(), pOut);
}
