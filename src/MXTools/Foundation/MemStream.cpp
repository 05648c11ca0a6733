// Growth, bounds and ownership of a stream in memory.
#include "MXTools/MemStream.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>

#include "MXTools/Exception.h"

namespace {

/// Adds room for growth to a size. Raises for a size that no position can reach.
unsigned int WithReserve(uint64_t nBytes) {
  if (nBytes > INT32_MAX) KlvRaiseBadAlloc();
  const double dBytes = static_cast<double>(nBytes) * 1.2;
  return static_cast<unsigned int>(std::min(dBytes, static_cast<double>(INT32_MAX)));
}

}  // namespace

ClMemStream::ClMemStream(unsigned int nSize, bool bWritable) : m_bWritable(bWritable) {
  Allocate(nSize);
  m_nUsed = nSize;
}

ClMemStream::ClMemStream(const unsigned char* pData, unsigned int nSize) {
  Attach(pData, nSize);
}

ClMemStream::ClMemStream(unsigned char* pData, unsigned int nSize, bool bWritable) {
  Attach(pData, nSize, bWritable);
}

ClMemStream::~ClMemStream() {
  try {
    ClMemStream::Close();
  } catch (...) {
    // Bits that find no room any more are lost with the stream.
    Release();
  }
}

void ClMemStream::Attach(unsigned char* pData, unsigned int nSize, bool bWritable) {
  if (nSize > INT32_MAX || (pData == nullptr && nSize != 0))
    KLV_RAISE(ClException, "ClMemStream::Attach. No such block", -44);
  ClMemStream::Close();
  DropBits();
  m_pData = pData;
  m_nUsed = nSize;
  m_nCapacity = nSize;
  m_bAttached = true;
  m_bWritable = bWritable;
}

void ClMemStream::Attach(const unsigned char* pData, unsigned int nSize) {
  // The stream is not writable, so that the block is only read.
  Attach(const_cast<unsigned char*>(pData), nSize, false);
}

bool ClMemStream::Open() {
  m_nPos = 0;
  return true;
}

void ClMemStream::Close() {
  ClStream::Close();
  Release();
}

void ClMemStream::Release() {
  if (!m_bAttached) delete[] m_pData;
  m_pData = nullptr;
  m_nUsed = 0;
  m_nCapacity = 0;
  m_nPos = 0;
  m_bAttached = false;
}

long ClMemStream::Seek(long nOffset, int nWhence) {
  int64_t nTarget = nOffset;
  switch (nWhence) {
    case 0:
      break;
    case 1:
      nTarget += m_nPos;
      break;
    case 2:
      nTarget += m_nUsed;
      break;
    default:
      return -1;
  }
  if (nTarget < 0 || nTarget > INT32_MAX) return -1;
  return SetReadPos(static_cast<unsigned int>(nTarget));
}

// A new block holds zeros and is only written within the used size, so that a gap needs no clearing.
long ClMemStream::SetReadPos(unsigned int nPos) {
  if (nPos > m_nUsed) {
    if (!m_bWritable || nPos >= INT32_MAX) return -1;
    // One byte more than the position, since a fifth of a small number adds nothing.
    ExpandData(std::max(WithReserve(nPos), nPos + 1));
  }
  m_nPos = nPos;
  return 0;
}

void ClMemStream::Allocate(unsigned int nCapacity) {
  if (nCapacity > INT32_MAX) KlvRaiseBadAlloc();
  unsigned char* pData = new (std::nothrow) unsigned char[nCapacity]();
  if (pData == nullptr) KlvRaiseBadAlloc();
  if (m_nUsed != 0) std::memcpy(pData, m_pData, m_nUsed);
  delete[] m_pData;
  m_pData = pData;
  m_nCapacity = nCapacity;
}

void ClMemStream::ExpandData(unsigned int nCapacity) {
  if (m_bAttached) KLV_RAISE(ClExStream, "ClMemStream::ExpandData. Stream too small", -204);
  if (nCapacity == UINT32_MAX) nCapacity = m_nCapacity * 2;
  if (nCapacity <= m_nCapacity) return;
  Allocate(nCapacity);
}

unsigned int ClMemStream::WriteRaw(const void* pData, unsigned int nBytes) {
  if (!m_bWritable) KLV_RAISE(ClExStream, "ClMemStream::WriteRaw. Stream is not open for write", -204);
  if (nBytes == 0) return 0;
  const uint64_t nEnd = static_cast<uint64_t>(m_nPos) + nBytes;
  if (nEnd > m_nCapacity) ExpandData(WithReserve(static_cast<uint64_t>(m_nCapacity) + 8 + nBytes));
  std::memcpy(m_pData + m_nPos, pData, nBytes);
  m_nPos += nBytes;
  m_nUsed = std::max(m_nUsed, m_nPos);
  return nBytes;
}

unsigned int ClMemStream::ReadRaw(void* pData, unsigned int nBytes) {
  if (m_nPos >= m_nUsed) return 0;
  const unsigned int nRead = std::min(nBytes, m_nUsed - m_nPos);
  if (nRead == 0) return 0;
  std::memcpy(pData, m_pData + m_nPos, nRead);
  m_nPos += nRead;
  return nRead;
}
