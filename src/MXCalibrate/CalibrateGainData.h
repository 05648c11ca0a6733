// The sensor's gains and the grey of its white patch, as measured for a scanner.
#pragma once

#include <cstdint>
#include <map>

class ClStream;

/// Two 24-bit values for each illumination key.
///
/// There are two stored forms, both little-endian. One has "CGD" and a zero byte, a version in 16 bits, then
/// records of an 8-byte key and six bytes: gain and white patch grey in turn, lowest bytes first. The legacy
/// form, known by any other first bytes, has those six bytes for each of the keys 16, 1, 8, 2, 4.
///
/// Threads  thread-bound: look-ups enter keys.
/// Errors   ClExStreamUnexpectedEnd -201 for a block that is too short for its form; nothing has changed
///          then.
class ClCalibrateGainData {
 public:
  static constexpr uint32_t cnNoVersion = 0xFFFFFFFFu;

  virtual ~ClCalibrateGainData() = default;

  /// Adds what the stream holds from its position on; keys that it does not hold stay.
  void Read(ClStream& oStream);
  /// Writes the legacy form, whatever was read.
  void Write(ClStream& oStream);
  void Clear();

  bool IsValid() const { return m_nVersion != cnNoVersion; }
  uint32_t GetVersion() const { return m_nVersion; }
  /// 0 for an absent key, which is entered. A gain packs three channels, the lowest byte first.
  uint32_t GetGain(uint64_t nKey) { return m_mapGain[nKey]; }
  uint32_t GetWhitePatchGrey(uint64_t nKey) { return m_mapWhitePatchGrey[nKey]; }

 private:
  uint32_t m_nVersion = cnNoVersion;
  std::map<uint64_t, uint32_t> m_mapGain;
  std::map<uint64_t, uint32_t> m_mapWhitePatchGrey;
};
