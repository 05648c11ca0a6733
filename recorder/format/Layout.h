// The numbers of the file format, docs/recordings.md, and how they are stored.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Recording {

constexpr char cacFileMark[8] = {'K', 'L', 'V', 'V', 'T', 'R', 'E', 'C'};
constexpr char cacBlockMark[4] = {'V', 'T', 'R', 'B'};
constexpr uint16_t cnVersion = 1;
constexpr size_t cnFileHeader = 32;
constexpr size_t cnBlockHeader = 28;
constexpr size_t cnCallHeader = 40;
constexpr size_t cnFieldHeader = 8;
constexpr uint32_t cnLargestContent = 268435456;
constexpr uint32_t cnLargestOverhead = 65536;
constexpr uint32_t cnDroppedData = 4294967295U;

enum EFileFlag : uint16_t { eFileSimulated = 1, eFileBlurred = 2 };
enum EBlock : uint8_t { eBlockFacts = 1, eBlockData = 2, eBlockCall = 3, eBlockLoss = 4, eBlockEnd = 5 };
enum ECoding : uint8_t { eCodingPlain = 0, eCodingZstd = 1 };
enum ECallFlag : uint16_t { eCallDataDropped = 1 };
enum EDirection : uint8_t { eGiven = 0, eGot = 1 };
enum EFieldType : uint8_t {
  eFieldNull = 0,
  eFieldNumber = 1,
  eFieldReal = 2,
  eFieldText = 3,
  eFieldBytes = 4,
  eFieldData = 5
};
/// Fields that the recorder adds to the arguments.
enum EAddedField : uint8_t { eAddedWidth = 240, eAddedHeight = 241, eAddedPlanes = 242, eAddedMode = 243 };

/// Stores the low nBytes bytes of a number, the lowest first, and returns the position after them.
inline uint8_t* Store(uint8_t* p, uint64_t n, size_t nBytes) {
  for (size_t i = 0; i < nBytes; ++i) *p++ = static_cast<uint8_t>(n >> (8 * i));
  return p;
}

/// The number that Store has stored.
inline uint64_t Load(const uint8_t* p, size_t nBytes) {
  uint64_t n = 0;
  for (size_t i = 0; i < nBytes; ++i) n |= static_cast<uint64_t>(p[i]) << (8 * i);
  return n;
}

}  // namespace Recording
