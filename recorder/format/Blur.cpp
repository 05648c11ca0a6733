// Means over boxes, by sums that move along.
#include "format/Blur.h"

#include <algorithm>
#include <cstddef>

namespace Recording {
namespace {

// A finger's ridges are half a millimetre apart and the platen is 81 mm wide: a 45th are more than two of
// them, also in the modes that show a part of the sensor, where they are twice as far apart.
constexpr uint32_t cnParts = 45;

/// The mean of each sample's surroundings along one line, whose samples are nStep apart.
void BlurLine(const uint8_t* pFrom, uint8_t* pTo, size_t nCount, size_t nStep, size_t nReach) {
  uint32_t nSum = 0;
  size_t nBegin = 0, nEnd = 0;
  for (size_t i = 0; i < nCount; ++i) {
    for (; nEnd < std::min(nCount, i + nReach + 1); ++nEnd) nSum += pFrom[nEnd * nStep];
    for (; nBegin + nReach < i; ++nBegin) nSum -= pFrom[nBegin * nStep];
    const auto nSamples = static_cast<uint32_t>(nEnd - nBegin);
    pTo[i * nStep] = static_cast<uint8_t>((nSum + nSamples / 2) / nSamples);
  }
}

}  // namespace

void ClBlur::BlurFrames(uint8_t* pFrames, uint64_t nBytes, uint32_t nWidth, uint32_t nHeight) {
  const uint64_t nPlane = uint64_t{nWidth} * nHeight;
  if (nPlane == 0 || nBytes % nPlane != 0) return;
  // Every other column and row makes a phase, so that a reach has half as many of its samples on either side.
  const uint32_t nReach = std::max(1U, nWidth / cnParts / 4);
  for (uint64_t n = 0; n < nBytes; n += nPlane)
    for (uint32_t nPhase = 0; nPhase < 4; ++nPhase)
      BlurPhase(pFrames + n, nWidth, nHeight, nPhase % 2, nPhase / 2, nReach);
}

void ClBlur::BlurPhase(uint8_t* pPlane, uint32_t nWidth, uint32_t nHeight, uint32_t nX, uint32_t nY,
                       uint32_t nReach) {
  const size_t nColumns = (nWidth + 1 - nX) / 2, nRows = (nHeight + 1 - nY) / 2;
  if (nColumns == 0 || nRows == 0) return;
  m_aPhase.resize(nColumns * nRows);
  m_aOther.resize(nColumns * nRows);
  for (size_t y = 0; y < nRows; ++y)
    for (size_t x = 0; x < nColumns; ++x)
      m_aPhase[y * nColumns + x] = pPlane[(2 * y + nY) * nWidth + 2 * x + nX];
  for (int nPass = 0; nPass < 3; ++nPass) {
    for (size_t y = 0; y < nRows; ++y)
      BlurLine(&m_aPhase[y * nColumns], &m_aOther[y * nColumns], nColumns, 1, nReach);
    for (size_t x = 0; x < nColumns; ++x) BlurLine(&m_aOther[x], &m_aPhase[x], nRows, nColumns, nReach);
  }
  for (size_t y = 0; y < nRows; ++y)
    for (size_t x = 0; x < nColumns; ++x)
      pPlane[(2 * y + nY) * nWidth + 2 * x + nX] = m_aPhase[y * nColumns + x];
}

}  // namespace Recording
