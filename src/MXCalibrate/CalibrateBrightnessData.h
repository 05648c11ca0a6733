// Samples of the illumination at the points of the calibration grid.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

class ClStream;

/// Three planes of grey values for each illumination key.
///
/// There are two stored forms, both little-endian. One has "CBD" and a zero byte, version and number of
/// sample points in 16 bits each, then records of an 8-byte key and three planes of samples. The legacy form,
/// known by any other first bytes, has 128 bytes without meaning and five blocks of 192 bytes, for 64 points
/// and the keys 16, 1, 8, 2, 4.
///
/// Threads  thread-bound: look-ups enter keys.
/// Errors   ClExStreamUnexpectedEnd -201 for a block that is too short for its form; the object is then
///          empty.
class ClCalibrateBrightnessData {
 public:
  static constexpr uint32_t cnNoVersion = 0xFFFFFFFFu;

  virtual ~ClCalibrateBrightnessData() = default;

  /// Replaces everything by what the stream holds from its position on.
  void Read(ClStream& oStream);
  /// Writes the legacy form, whatever was read. It does not hold the number of sample points: the planes of
  /// fewer than 64 points stand one after the other at the start of their block, which is then read as 64
  /// other points. Errors: -44 for more than 64 sample points.
  void Write(ClStream& oStream);
  /// Drops samples and version; the number of sample points stays.
  void Clear();

  bool IsValid() const { return m_nVersion != cnNoVersion; }
  uint32_t GetVersion() const { return m_nVersion; }
  uint32_t NumberOfSamplePoints() const { return m_nSamplePoints; }
  bool HasSamples(uint64_t nKey) const { return m_mapSamples.count(nKey) != 0; }
  /// Copies 3 * NumberOfSamplePoints() bytes, plane after plane; an absent key copies nothing and is entered.
  void GetSamples(uint64_t nKey, unsigned char* pOut);

 private:
  using Samples = std::map<uint64_t, std::vector<uint8_t>>;

  uint32_t m_nVersion = cnNoVersion;
  uint32_t m_nSamplePoints = 0;
  Samples m_mapSamples;
};
