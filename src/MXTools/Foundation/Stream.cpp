// Typed transfer of numbers, arrays and strings over the raw operations of a stream.
#include "MXTools/Stream.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "MXTools/Exception.h"

namespace {

constexpr unsigned int cnSwapBlock = 4096;
constexpr unsigned int cnInvalid = 0xFFFFFFFFu;

bool IsElementSize(unsigned int nSize) {
  return nSize == 1 || nSize == 2 || nSize == 4 || nSize == 8;
}

/// The byte size of an array, refused where a transfer can't count it.
unsigned int ArrayBytes(unsigned int nCount, unsigned int nElementSize) {
  const uint64_t nBytes = static_cast<uint64_t>(nCount) * nElementSize;
  if (nBytes > INT32_MAX) KLV_RAISE(ClExStream, "ClStream: array too big", -204);
  return static_cast<unsigned int>(nBytes);
}

}  // namespace

void ClStream::Close() {
  if (m_nBitCount != 0 && m_eBitState == eBitsWritten) Flush();
}

long ClStream::Pos() const {
  return 0;
}

long ClStream::Size() const {
  return 0;
}

void ClStream::Flush() {
  BitFlush();
}

long ClStream::Seek(long, int) {
  return 0;
}

const char* ClStream::Name() const {
  return "Unknown Stream";
}

bool ClStream::SetBigEndian4Read(bool bBigEndian) {
  const bool bBefore = GetBigEndian4Read();
  m_bSwapOnRead = bBigEndian == (IsNotNetorder() != 0);
  return bBefore;
}

bool ClStream::SetBigEndian4Write(bool bBigEndian) {
  const bool bBefore = GetBigEndian4Write();
  m_bSwapOnWrite = bBigEndian == (IsNotNetorder() != 0);
  return bBefore;
}

bool ClStream::SetBigEndian(bool bBigEndian) {
  SetBigEndian4Write(bBigEndian);
  return SetBigEndian4Read(bBigEndian);
}

void ClStream::RaiseUnexpectedEnd() {
  KLV_RAISE(ClExStreamUnexpectedEnd, "Unexpected end of stream", -201);
}

unsigned int ClStream::CheckTransfer(unsigned int nDone, unsigned int nWanted) const {
  if (m_bFailureFlag && nDone < nWanted) RaiseUnexpectedEnd();
  return nDone;
}

unsigned int ClStream::ReadNumber(void* pValue, unsigned int nSize) {
  CheckBitPosByteAlignment();
  if (!m_bSwapOnRead || nSize == 1) return CheckTransfer(ReadRaw(pValue, nSize), nSize);
  return CheckTransfer(ReadSwapped(static_cast<unsigned char*>(pValue), 1, nSize), nSize);
}

unsigned int ClStream::WriteNumber(const void* pValue, unsigned int nSize) {
  CheckBitPosByteAlignment();
  if (!m_bSwapOnWrite || nSize == 1) return CheckTransfer(WriteRaw(pValue, nSize), nSize);
  return CheckTransfer(WriteSwapped(static_cast<const unsigned char*>(pValue), 1, nSize), nSize);
}

unsigned int ClStream::Read(void* pData, unsigned int nBytes) {
  CheckBitPosByteAlignment();
  return CheckTransfer(ReadRaw(pData, nBytes), nBytes);
}

unsigned int ClStream::Write(const void* pData, unsigned int nBytes) {
  CheckBitPosByteAlignment();
  return CheckTransfer(WriteRaw(pData, nBytes), nBytes);
}

long ClStream::Seek(unsigned int nPos) {
  CheckBitPosByteAlignment();
  if (nPos > INT32_MAX) KLV_RAISE(ClException, "nPos is too big.", -35);
  return Seek(static_cast<long>(nPos), 0);
}

unsigned int ClStream::ReadNumericArray(void* pData, unsigned int nCount, unsigned int nElementSize) {
  CheckBitPosByteAlignment();
  if (!IsElementSize(nElementSize)) return cnInvalid;
  const unsigned int nBytes = ArrayBytes(nCount, nElementSize);
  if (!m_bSwapOnRead || nElementSize == 1) return CheckTransfer(ReadRaw(pData, nBytes), nBytes);
  return CheckTransfer(ReadSwapped(static_cast<unsigned char*>(pData), nCount, nElementSize), nBytes);
}

unsigned int ClStream::WriteNumericArray(const void* pData, unsigned int nCount, unsigned int nElementSize) {
  CheckBitPosByteAlignment();
  if (!IsElementSize(nElementSize)) return cnInvalid;
  const unsigned int nBytes = ArrayBytes(nCount, nElementSize);
  if (!m_bSwapOnWrite || nElementSize == 1) return CheckTransfer(WriteRaw(pData, nBytes), nBytes);
  return CheckTransfer(WriteSwapped(static_cast<const unsigned char*>(pData), nCount, nElementSize), nBytes);
}

// When the stream ends within a number, the bytes that came fill the number's end; its other bytes stay.
unsigned int ClStream::ReadSwapped(unsigned char* pData, unsigned int nCount, unsigned int nElementSize) {
  unsigned char aBlock[cnSwapBlock];
  unsigned int nDone = 0;
  for (unsigned int nLeft = nCount * nElementSize; nLeft != 0;) {
    const unsigned int nWanted = std::min(nLeft, cnSwapBlock);
    const unsigned int nRead = ReadRaw(aBlock, nWanted);
    for (unsigned int n = 0; n < nRead; ++n) {
      const unsigned int nInElement = n % nElementSize;
      pData[n - nInElement + (nElementSize - 1 - nInElement)] = aBlock[n];
    }
    nDone += nRead;
    if (nRead < nWanted) break;
    pData += nRead;
    nLeft -= nRead;
  }
  return nDone;
}

unsigned int ClStream::WriteSwapped(const unsigned char* pData, unsigned int nCount,
                                    unsigned int nElementSize) {
  unsigned char aBlock[cnSwapBlock];
  unsigned int nDone = 0;
  for (unsigned int nLeft = nCount * nElementSize; nLeft != 0;) {
    const unsigned int nWanted = std::min(nLeft, cnSwapBlock);
    for (unsigned int n = 0; n < nWanted; n += nElementSize)
      std::reverse_copy(pData + n, pData + n + nElementSize, aBlock + n);
    const unsigned int nWritten = WriteRaw(aBlock, nWanted);
    nDone += nWritten;
    if (nWritten < nWanted) break;
    pData += nWritten;
    nLeft -= nWritten;
  }
  return nDone;
}

unsigned int ClStream::WriteString(const char* szText) {
  CheckBitPosByteAlignment();
  if (szText == nullptr) szText = "";
  const size_t nSize = std::strlen(szText) + 1;
  if (nSize > INT32_MAX) KLV_RAISE(ClExStream, "ClStream: text too long", -204);
  const unsigned int nLength = static_cast<unsigned int>(nSize);
  const unsigned int nDone = WriteAutoSwap(nLength);
  return nDone + Write(szText, nLength);
}

// A stored length is not trusted: where the size of the stream is known, no more is allocated than is left.
void ClStream::CheckRoom(unsigned int nBytes) const {
  if (nBytes > INT32_MAX) RaiseUnexpectedEnd();
  if (!IsSeekable()) return;
  const int64_t nLeft = static_cast<int64_t>(Size()) - Pos();
  if (nBytes > nLeft) RaiseUnexpectedEnd();
}

unsigned int ClStream::ReadString(char** pszText) {
  CheckBitPosByteAlignment();
  delete[] * pszText;
  *pszText = nullptr;
  unsigned int nLength = 0;
  const unsigned int nDone = ReadAutoSwap(nLength);
  if (nDone < sizeof(nLength) || nLength == 0) return nDone;
  CheckRoom(nLength);
  // The block has one byte more, so that a text stored without its closing zero still ends.
  std::unique_ptr<char[]> szText(new (std::nothrow) char[static_cast<size_t>(nLength) + 1]());
  if (szText == nullptr) KlvRaiseBadAlloc();
  const unsigned int nRead = Read(szText.get(), nLength);
  *pszText = szText.release();
  return nDone + nRead;
}

unsigned int ClStream::ReadString(char* szBuffer, unsigned int nSize) {
  CheckBitPosByteAlignment();
  if (szBuffer == nullptr || nSize == 0) KLV_RAISE(ClException, "ReadString needs a buffer", -44);
  std::memset(szBuffer, 0, nSize);
  unsigned int nLength = 0;
  unsigned int nDone = ReadAutoSwap(nLength);
  if (nDone < sizeof(nLength)) return nDone;
  const unsigned int nKept = std::min(nLength, nSize);
  nDone += Read(szBuffer, nKept);
  char aRest[256];
  for (unsigned int nLeft = nLength - nKept; nLeft != 0;) {
    const unsigned int nWanted = std::min<unsigned int>(nLeft, sizeof(aRest));
    const unsigned int nRead = Read(aRest, nWanted);
    nDone += nRead;
    if (nRead < nWanted) break;
    nLeft -= nRead;
  }
  szBuffer[nSize - 1] = 0;
  return nDone;
}
