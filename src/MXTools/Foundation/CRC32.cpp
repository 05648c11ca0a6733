// Table-driven CRC, a byte at a time.
#include "MXTools/CRC32.h"

#include <mutex>

uint32_t ClCRC32::m_aCRC_Table[256];
bool ClCRC32::m_bInit = false;

// Devices may be set up at the same time, each in a thread of its own: only the first one fills the table.
ClCRC32::ClCRC32() {
  static std::once_flag oFirst;
  std::call_once(oFirst, [] {
    if (!m_bInit) InitCRC32(0x04C11DB7u);
  });
}

void ClCRC32::InitCRC32(unsigned int nPolynomial) {
  for (uint32_t nByte = 0; nByte < 256; ++nByte) {
    uint32_t nValue = nByte << 24;
    for (int nRound = 0; nRound < 8; ++nRound)
      nValue = (nValue & 0x80000000u) != 0 ? (nValue << 1) ^ nPolynomial : nValue << 1;
    m_aCRC_Table[nByte] = nValue;
  }
  m_bInit = true;
}

uint32_t ClCRC32::Get_CRC(const unsigned char* pData, unsigned int nLength) const {
  if (nLength == 0) return 0;
  uint32_t nCrc = 0xFFFFFFFFu;
  for (unsigned int n = 0; n < nLength; ++n) nCrc = (nCrc << 8) ^ m_aCRC_Table[(nCrc >> 24) ^ pData[n]];
  return ~nCrc;
}
