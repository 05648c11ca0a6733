// A stream over a block of memory.
#pragma once

#include "MXTools/Stream.h"

/// Domain     at most 2^31 - 1 bytes.
/// Range      the used size is what was written or attached; what was sought past it reads as zeros once a
///            write has passed it.
/// Ownership  owns its block, but for an attached one, which stays the caller's and must outlive the stream.
/// Threads    thread-bound.
/// Errors     ClExStream -204 on a write to a read-only stream or past the end of an attached one;
///            ClExBadAlloc.
class ClMemStream : public ClStream {
 public:
  /// Empty, writable, grows on demand.
  ClMemStream() = default;
  /// nSize bytes of zero, at position 0, to be read or written over.
  ClMemStream(unsigned int nSize, bool bWritable);
  ClMemStream(const unsigned char* pData, unsigned int nSize);
  ClMemStream(unsigned char* pData, unsigned int nSize, bool bWritable);
  ~ClMemStream() override;

  void Attach(unsigned char* pData, unsigned int nSize, bool bWritable);
  /// Read-only.
  void Attach(const unsigned char* pData, unsigned int nSize);
  bool Open();

  using ClStream::Seek;
  void Close() override;
  long Pos() const override { return static_cast<long>(m_nPos); }
  long Size() const override { return static_cast<long>(m_nUsed); }
  long Seek(long nOffset, int nWhence) override;
  const char* Name() const override { return "Mem Stream"; }
  bool IsSeekable() const override { return true; }
  unsigned int WriteRaw(const void* pData, unsigned int nBytes) override;
  unsigned int ReadRaw(void* pData, unsigned int nBytes) override;
  /// The block; NULL while nothing is used. Valid until the next write or Close.
  virtual const unsigned char* GetData() const { return m_nUsed == 0 ? nullptr : m_pData; }

  /// Goes to a position; one past the used size needs a writable stream. Result 0, or -1 and no move.
  long SetReadPos(unsigned int nPos);
  /// Makes room; all bits set means double the room.
  void ExpandData(unsigned int nCapacity);

 private:
  void Allocate(unsigned int nCapacity);
  void Release();

  unsigned char* m_pData = nullptr;
  unsigned int m_nUsed = 0;
  unsigned int m_nCapacity = 0;
  unsigned int m_nPos = 0;
  bool m_bAttached = false;
  bool m_bWritable = true;
};
