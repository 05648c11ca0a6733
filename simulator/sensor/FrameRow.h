// Makes the bytes of one sensor row from signal, gain, offset and noise.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Simulator {

/// The fractions of a grey level in which rows are computed.
constexpr int cnLevelSteps = 16;

/// What one row is made of. All arrays have at least as many entries as the row has pixels.
///
/// pSignal    light, cnSignalSteps to a level at nominal gain, below 32768; null for a dark row.
/// pGain      amplification, 8192 being nominal.
/// pBase      level without light (ambient light and offset), cnLevelSteps to a level,
///            at most 8191.
/// pNoise     random numbers of ClNoise, new for each row.
/// pFixed     such numbers that never change for a row of the sensor: its fixed pattern.
/// nReadNoise standard deviation of the noise in the dark, 512 to a level.
/// nShotNoise by how much 65536 steps of signal raise that.
/// nFixed     standard deviation of the fixed pattern, 512 to a level.
struct ClFrameRow {
  const uint16_t* pSignal;
  const uint16_t* pGain;
  const int16_t* pBase;
  const int16_t* pNoise;
  const int16_t* pFixed;
  uint16_t nReadNoise;
  uint16_t nShotNoise;
  int16_t nFixed;
};

void MakeRow(const ClFrameRow& oRow, uint8_t* pOut, size_t nCount) noexcept;

}  // namespace Simulator
