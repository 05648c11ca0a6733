// The calibration files that a scanner carries in its EEPROM.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "sensor/Optics.h"

namespace Simulator {

using ByteBlock = std::vector<uint8_t>;

/// The illumination keys, in the order of the positional (legacy) forms.
constexpr std::array<unsigned, 5> caIlluminationKeys = {16, 1, 8, 2, 4};
constexpr int cnGridSide = 8;

/// A correspondence of target and sensor points.
struct ClGeometry {
  uint32_t nSourceWidth, nSourceHeight, nSourcePelsX, nSourcePelsY;
  uint32_t nTargetWidth, nTargetHeight, nTargetPelsX, nTargetPelsY;
  uint8_t nBackground;
  std::vector<ClPoint> aTarget, aActual;
};

/// Three planes of samples for each key; all planes of all keys have the same number of samples.
using BrightnessTable = std::map<unsigned, std::array<std::vector<uint8_t>, 3>>;

/// Channel gains and white patch greys, three bytes each, least significant first.
struct ClGainEntry {
  std::array<uint8_t, 3> anGain;
  std::array<uint8_t, 3> anWhitePatch;
};
using GainTable = std::map<unsigned, ClGainEntry>;

/// "GEOCAL", version "006": big-endian, ending in a CRC.
ByteBlock EncodeGeometry(const ClGeometry& oGeometry);
/// "BRGHTCAL": the "CBD" form or the positional one of 1088 bytes.
ByteBlock EncodeBrightness(const BrightnessTable& oTable, bool bLegacy);
/// "GAINSET": the "CGD" form or the positional one of 30 bytes.
ByteBlock EncodeGains(const GainTable& oTable, bool bLegacy);

/// What a factory would find with its 8 x 8 dot target (10 mm pitch, in the middle of the platen) and its
/// grey card. Target points lie in the picture before it is mirrored.
ClGeometry MeasureGeometry(const ClOptics& oOptics);
BrightnessTable MeasureBrightness(const ClOptics& oOptics);
/// The gains that give the nominal level on full power; the host halves those of key 1 on little power.
GainTable MeasureGains(uint64_t nSeed, unsigned nRevision);

}  // namespace Simulator
