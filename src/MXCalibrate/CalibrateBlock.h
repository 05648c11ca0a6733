// Reading of the small little-endian calibration blocks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class ClStream;

/// The illumination keys in the order in which the legacy blocks store them.
constexpr uint64_t cnIlluminationKeys[5] = {16, 1, 8, 2, 4};

/// The bytes that the stream holds from its position on.
std::vector<uint8_t> ReadCalibrationBlock(ClStream& oStream);

/// True when the block starts with the three letters and a zero byte.
bool StartsWithTag(const std::vector<uint8_t>& aBlock, const char (&szTag)[4]);

/// Raises ClExStreamUnexpectedEnd -201 unless nBytes are there from nOffset on.
void NeedBytes(const std::vector<uint8_t>& aBlock, size_t nOffset, size_t nBytes);

/// nBytes of [1, 8] from nOffset on, least significant first.
uint64_t LittleEndian(const std::vector<uint8_t>& aBlock, size_t nOffset, unsigned int nBytes);
