// Makes the bytes of one sensor row from signal, gain, offset and noise.
#include "sensor/FrameRow.h"

#include <algorithm>

namespace Simulator {
namespace {

// 16-bit products of which the upper half is kept: compilers turn these into one vector instruction each.
inline uint16_t UpperHalf(uint16_t nA, uint16_t nB) noexcept {
  return static_cast<uint16_t>((static_cast<uint32_t>(nA) * nB) >> 16);
}
inline int16_t UpperHalf(int16_t nA, int16_t nB) noexcept {
  return static_cast<int16_t>((static_cast<int32_t>(nA) * nB) >> 16);
}

constexpr int16_t cnWhite = 256 * cnLevelSteps - 1;

inline uint8_t ToByte(int16_t nLevel) noexcept {
  const int16_t nHeld = std::min(std::max(nLevel, static_cast<int16_t>(0)), cnWhite);
  return static_cast<uint8_t>(nHeld / cnLevelSteps);
}

void MakeLitRow(const ClFrameRow& oRow, uint8_t* pOut, size_t nCount) noexcept {
  // These are locals, since the compiler must assume that writes to pOut change what the argument leads to.
  const uint16_t *pSignal = oRow.pSignal, *pGain = oRow.pGain;
  const int16_t *pBase = oRow.pBase, *pNoise = oRow.pNoise, *pFixed = oRow.pFixed;
  const uint16_t nReadNoise = oRow.nReadNoise, nShotNoise = oRow.nShotNoise;
  const int16_t nFixed = oRow.nFixed;
  for (size_t i = 0; i < nCount; ++i) {
    // The limit is far above white, and keeps all sums within 16 bits.
    const int16_t nLight =
        std::min(static_cast<int16_t>(UpperHalf(pSignal[i], pGain[i])), static_cast<int16_t>(0x2000));
    const int16_t nSpread =
        static_cast<int16_t>(nReadNoise + UpperHalf(static_cast<uint16_t>(nLight), nShotNoise));
    pOut[i] = ToByte(static_cast<int16_t>(pBase[i] + nLight + UpperHalf(pNoise[i], nSpread) +
                                          UpperHalf(pFixed[i], nFixed)));
  }
}

void MakeDarkRow(const ClFrameRow& oRow, uint8_t* pOut, size_t nCount) noexcept {
  const int16_t *pBase = oRow.pBase, *pNoise = oRow.pNoise, *pFixed = oRow.pFixed;
  const int16_t nSpread = static_cast<int16_t>(oRow.nReadNoise), nFixed = oRow.nFixed;
  for (size_t i = 0; i < nCount; ++i)
    pOut[i] =
        ToByte(static_cast<int16_t>(pBase[i] + UpperHalf(pNoise[i], nSpread) + UpperHalf(pFixed[i], nFixed)));
}

}  // namespace

void MakeRow(const ClFrameRow& oRow, uint8_t* pOut, size_t nCount) noexcept {
  if (oRow.pSignal)
    MakeLitRow(oRow, pOut, nCount);
  else
    MakeDarkRow(oRow, pOut, nCount);
}

}  // namespace Simulator
