// The bit layer of a stream: most significant bit first, over a buffer of one byte.
#include <cstdint>

#include "MXTools/Exception.h"
#include "MXTools/Stream.h"

void ClStream::CheckBitPosByteAlignment() const {
  if (m_nBitCount != 0) KLV_RAISE(ClException, "the last bit I/O was finish with out bitflush.", -39);
}

void ClStream::DropBits() {
  m_nBitCount = 0;
  m_nBitBuffer = 0;
}

unsigned int ClStream::BitsNeedForWrite(long nValue) {
  if (nValue < 0) return 32;
  unsigned int nBits = 0;
  for (unsigned int nBit = 0; nBit <= 30; ++nBit)
    if (((static_cast<unsigned long>(nValue) >> nBit) & 1u) != 0) nBits = nBit + 1;
  return nBits;
}

void ClStream::ReadBytesForBits(unsigned char* pBytes, unsigned int nBytes) {
  if (ReadRaw(pBytes, nBytes) < nBytes) RaiseUnexpectedEnd();
}

void ClStream::WriteBytesOfBits(const unsigned char* pBytes, unsigned int nBytes) {
  CheckTransfer(WriteRaw(pBytes, nBytes), nBytes);
}

void ClStream::ReadBits(unsigned int& rnValue, unsigned int nCount) {
  rnValue = 0;
  if (nCount == 0) return;
  if (nCount > 32) KLV_RAISE(ClExRange, "ReadBits takes 32 bits at most", -35);
  // Bits that wait to be written can't be mixed with bits that are read.
  if (m_eBitState == eBitsWritten) CheckBitPosByteAlignment();
  if (m_nBitCount != 0 && m_eBitState == eBitsPlaced) {
    Seek(1L, 1);
    m_nBitBuffer = static_cast<unsigned char>(m_nBitBuffer << m_nBitCount);
  }
  m_eBitState = eBitsRead;
  if (m_nBitCount == 0) ReadBytesForBits(&m_nBitBuffer, 1);

  if (nCount + m_nBitCount <= 8) {
    rnValue = static_cast<unsigned int>(m_nBitBuffer) >> (8 - nCount);
    m_nBitBuffer = static_cast<unsigned char>(m_nBitBuffer << nCount);
    m_nBitCount = (nCount + m_nBitCount) % 8;
    return;
  }
  uint64_t nValue = static_cast<unsigned int>(m_nBitBuffer) >> m_nBitCount;
  unsigned int nLeft = nCount - (8 - m_nBitCount);
  DropBits();
  unsigned char aBytes[4];
  ReadBytesForBits(aBytes, (nLeft + 7) / 8);
  const unsigned char* pByte = aBytes;
  for (; nLeft >= 8; nLeft -= 8) nValue = (nValue << 8) | *pByte++;
  if (nLeft != 0) {
    nValue = (nValue << nLeft) | (static_cast<unsigned int>(*pByte) >> (8 - nLeft));
    m_nBitBuffer = static_cast<unsigned char>(*pByte << nLeft);
    m_nBitCount = nLeft;
  }
  rnValue = static_cast<unsigned int>(nValue);
}

void ClStream::WriteBits(unsigned int nValue, unsigned int nCount) {
  if (nCount == 0) return;
  if (nCount > 32) KLV_RAISE(ClExRange, "WriteBits takes 32 bits at most", -35);
  if (m_eBitState == eBitsRead) CheckBitPosByteAlignment();
  m_eBitState = eBitsWritten;
  if (nCount < 32) nValue &= (1u << nCount) - 1;

  if (nCount <= 8 && nCount + m_nBitCount <= 8) {
    const unsigned int nShift = 8 - m_nBitCount - nCount;
    const unsigned int nField = ((1u << nCount) - 1) << nShift;
    m_nBitBuffer = static_cast<unsigned char>((m_nBitBuffer & ~nField) | (nValue << nShift));
    m_nBitCount += nCount;
    if (m_nBitCount == 8) {
      const unsigned char nByte = m_nBitBuffer;
      DropBits();
      WriteBytesOfBits(&nByte, 1);
    }
    return;
  }
  unsigned char aBytes[5];
  unsigned int nBytes = 0;
  unsigned int nLeft = nCount;
  if (m_nBitCount != 0) {
    nLeft -= 8 - m_nBitCount;
    const unsigned int nHigh = m_nBitBuffer & (0xFF00u >> m_nBitCount);
    aBytes[nBytes++] = static_cast<unsigned char>(nHigh | (nValue >> nLeft));
  }
  for (; nLeft >= 8; nLeft -= 8) aBytes[nBytes++] = static_cast<unsigned char>(nValue >> (nLeft - 8));
  DropBits();
  WriteBytesOfBits(aBytes, nBytes);
  m_nBitBuffer = static_cast<unsigned char>(nValue << (8 - nLeft));
  m_nBitCount = nLeft;
}

void ClStream::BitFlush() {
  if (m_nBitCount == 0) return;
  // Bits that were only read are in the stream already, and its position is after them.
  if (m_eBitState == eBitsRead) {
    DropBits();
    return;
  }
  unsigned char nThere = 0;
  if (IsSeekable()) {
    if (ReadRaw(&nThere, 1) == 1) {
      Seek(-1L, 1);
    } else {
      nThere = 0;
    }
  }
  const unsigned int nHigh = 0xFF00u >> m_nBitCount;
  const unsigned char nByte = static_cast<unsigned char>((m_nBitBuffer & nHigh) | (nThere & ~nHigh));
  DropBits();
  if (WriteRaw(&nByte, 1) != 1) KLV_RAISE(ClExStreamFailToWrite, "Fail to write BitBuffer into stream", -202);
}

unsigned int ClStream::BitPos() const {
  const unsigned int nPos = static_cast<unsigned int>(Pos()) * 8;
  if (m_nBitCount == 0) return nPos;
  return m_eBitState == eBitsRead ? nPos + m_nBitCount - 8 : nPos + m_nBitCount;
}

void ClStream::BitPosSet(unsigned int nBitPos) {
  // Bits that were placed but not changed need no flush, which would fail on a stream that can't be written.
  if (m_eBitState == eBitsPlaced) DropBits();
  BitFlush();
  Seek(static_cast<long>(nBitPos / 8), 0);
  if (nBitPos % 8 == 0) return;
  if (ReadRaw(&m_nBitBuffer, 1) == 1) {
    Seek(-1L, 1);
  } else {
    m_nBitBuffer = 0;
  }
  m_eBitState = eBitsPlaced;
  m_nBitCount = nBitPos % 8;
}

void ClStream::BitSeek(long nOffset, int nWhence) {
  if (!IsSeekable()) return;
  int64_t nTarget = nOffset;
  switch (nWhence) {
    case 0:
      break;
    case 1:
      nTarget += static_cast<int64_t>(Pos()) * 8 + m_nBitCount;
      break;
    case 2:
      nTarget += static_cast<int64_t>(Size()) * 8;
      break;
    default:
      return;
  }
  if (nTarget < 0 || nTarget > static_cast<int64_t>(UINT32_MAX))
    KLV_RAISE(ClExRange, "BitSeek leaves the stream", -35);
  BitPosSet(static_cast<unsigned int>(nTarget));
}
