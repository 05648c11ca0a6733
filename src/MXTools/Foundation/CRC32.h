// The checksum over calibration data.
#pragma once

#include <cstdint>

/// CRC-32/BZIP2: polynomial 0x04C11DB7, most significant bit first, start and final complement. Not the
/// reflected CRC of zlib.
///
/// Range    no bytes give 0.
/// Threads  thread-safe, but for InitCRC32.
class ClCRC32 {
 public:
  ClCRC32();
  virtual ~ClCRC32() = default;

  /// Fills the table that all objects share.
  static void InitCRC32(unsigned int nPolynomial);
  uint32_t Get_CRC(const unsigned char* pData, unsigned int nLength) const;

 private:
  static uint32_t m_aCRC_Table[256];
  static bool m_bInit;
};
