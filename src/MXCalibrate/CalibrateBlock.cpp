// Reading of the small little-endian calibration blocks.
#include "MXCalibrate/CalibrateBlock.h"

#include <cstring>

#include "MXTools/Exception.h"
#include "MXTools/Stream.h"

std::vector<uint8_t> ReadCalibrationBlock(ClStream& oStream) {
  const int64_t nLeft = static_cast<int64_t>(oStream.Size()) - oStream.Pos();
  std::vector<uint8_t> aBlock(nLeft > 0 ? static_cast<size_t>(nLeft) : 0);
  size_t nRead = 0;
  if (!aBlock.empty()) nRead = oStream.ReadRaw(aBlock.data(), static_cast<unsigned int>(aBlock.size()));
  aBlock.resize(nRead);
  return aBlock;
}

bool StartsWithTag(const std::vector<uint8_t>& aBlock, const char (&szTag)[4]) {
  return aBlock.size() >= sizeof(szTag) && std::memcmp(aBlock.data(), szTag, sizeof(szTag)) == 0;
}

void NeedBytes(const std::vector<uint8_t>& aBlock, size_t nOffset, size_t nBytes) {
  if (nOffset > aBlock.size() || nBytes > aBlock.size() - nOffset) {
    KLV_RAISE(ClExStreamUnexpectedEnd, "Unexpected end of stream", -201);
  }
}

uint64_t LittleEndian(const std::vector<uint8_t>& aBlock, size_t nOffset, unsigned int nBytes) {
  NeedBytes(aBlock, nOffset, nBytes);
  uint64_t nValue = 0;
  for (unsigned int n = nBytes; n-- > 0;) nValue = nValue << 8 | aBlock[nOffset + n];
  return nValue;
}
