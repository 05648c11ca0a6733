// The byte and bit stream on which every stored format is written.
#pragma once

#include <boost/noncopyable.hpp>
#include <type_traits>

/// Typed transfer over raw bytes: a byte order for each direction, counted strings and a bit layer.
///
/// Domain     numbers of 1, 2, 4 and 8 bytes; positions below 2^31.
/// Range      a new stream is big-endian in both directions.
/// Ownership  none of its own; what a derived class holds ends with Close.
/// Threads    thread-bound.
/// Errors     ClExStreamUnexpectedEnd -201 on a short transfer while m_bFailureFlag is set; ClException -39
///            when bytes are moved in the middle of a byte. Nothing is rolled back.
/// Cost       arrays move in blocks, in one of them when no byte order has to be turned.
class ClStream : private boost::noncopyable {
 public:
  virtual ~ClStream() = default;

  virtual void Close();
  virtual long Pos() const;
  virtual long Size() const;
  virtual void Flush();
  /// nWhence: 0 from the start, 1 from the position, 2 from the end. Result 0, or -1 when it can't be
  /// reached.
  virtual long Seek(long nOffset, int nWhence);
  virtual const char* Name() const;
  virtual bool IsSeekable() const = 0;
  /// Both give the number of bytes that were moved.
  virtual unsigned int WriteRaw(const void* pData, unsigned int nBytes) = 0;
  virtual unsigned int ReadRaw(void* pData, unsigned int nBytes) = 0;

  /// The host is little-endian, so that big-endian on the stream means turning the bytes.
  static int IsNotNetorder() { return 1; }
  /// The setters give the state before.
  bool SetBigEndian4Read(bool bBigEndian);
  bool SetBigEndian4Write(bool bBigEndian);
  bool SetBigEndian(bool bBigEndian);
  bool GetBigEndian4Read() const { return m_bSwapOnRead == (IsNotNetorder() != 0); }
  bool GetBigEndian4Write() const { return m_bSwapOnWrite == (IsNotNetorder() != 0); }
  bool GetBigEndian() const { return GetBigEndian4Read(); }

  /// Moves one number in the byte order of the direction; gives the bytes that were moved.
  template <typename T>
  unsigned int ReadAutoSwap(T& rValue) {
    static_assert(std::is_arithmetic<T>::value || std::is_enum<T>::value, "numbers only");
    return ReadNumber(&rValue, static_cast<unsigned int>(sizeof(T)));
  }
  template <typename T>
  unsigned int WriteAutoSwap(const T& rValue) {
    static_assert(std::is_arithmetic<T>::value || std::is_enum<T>::value, "numbers only");
    return WriteNumber(&rValue, static_cast<unsigned int>(sizeof(T)));
  }

  unsigned int Read(void* pData, unsigned int nBytes);
  unsigned int Write(const void* pData, unsigned int nBytes);
  /// Errors: ClException -35 from 2^31 on.
  long Seek(unsigned int nPos);
  /// Elements of 1, 2, 4 or 8 bytes; any other size moves nothing and gives all bits set. Gives the bytes
  /// moved.
  unsigned int ReadNumericArray(void* pData, unsigned int nCount, unsigned int nElementSize);
  unsigned int WriteNumericArray(const void* pData, unsigned int nCount, unsigned int nElementSize);

  /// A 32-bit length that counts the closing zero, then the characters; NULL counts as the empty text.
  unsigned int WriteString(const char* szText);
  /// Replaces *pszText, which the caller owns as an array; a stored length of 0 leaves it NULL.
  /// Errors: -201 for a length beyond the end of a seekable stream, whatever the failure flag says.
  unsigned int ReadString(char** pszText);
  /// Cuts a longer text to nSize and reads past the rest of it; the last byte of the buffer is always zero.
  unsigned int ReadString(char* szBuffer, unsigned int nSize);

  /// nCount bits of [0, 32], most significant first. Errors: -201 at the end, whatever the failure flag says.
  void ReadBits(unsigned int& rnValue, unsigned int nCount);
  void WriteBits(unsigned int nValue, unsigned int nCount);
  /// Completes a partly written byte, or the one that BitPosSet went into, and moves on by it: with the bits
  /// that stand there on a seekable stream, else with zeros. Bits that were only read are dropped.
  /// Errors: ClExStreamFailToWrite -202.
  void BitFlush();
  void ReadBitFlush() { DropBits(); }
  unsigned int BitPos() const;
  /// Goes to a bit. What is written next joins the bits that stand before it in its byte.
  void BitPosSet(unsigned int nBitPos);
  /// As Seek, in bits. Does nothing on a stream that can't seek.
  void BitSeek(long nOffset, int nWhence);
  /// Bits that hold the value; 32 for a negative one.
  static unsigned int BitsNeedForWrite(long nValue);
  /// Errors: ClException -39 while a byte is half used.
  void CheckBitPosByteAlignment() const;

  /// Set: a typed transfer that moves too few bytes raises. Clear: it gives the number.
  bool m_bFailureFlag = false;

 protected:
  ClStream() = default;
  void DropBits();
  [[noreturn]] static void RaiseUnexpectedEnd();

 private:
  /// What stands in the bit buffer while the bit count isn't 0.
  enum EBitState {
    eBitsRead,    ///< the rest of a byte that was read, moved up; Pos() is after it
    eBitsPlaced,  ///< the byte at Pos(), in place
    eBitsWritten  ///< bits for the byte at Pos(), in place
  };

  unsigned int ReadNumber(void* pValue, unsigned int nSize);
  unsigned int WriteNumber(const void* pValue, unsigned int nSize);
  unsigned int ReadSwapped(unsigned char* pData, unsigned int nCount, unsigned int nElementSize);
  unsigned int WriteSwapped(const unsigned char* pData, unsigned int nCount, unsigned int nElementSize);
  unsigned int CheckTransfer(unsigned int nDone, unsigned int nWanted) const;
  void CheckRoom(unsigned int nBytes) const;
  void ReadBytesForBits(unsigned char* pBytes, unsigned int nBytes);
  void WriteBytesOfBits(const unsigned char* pBytes, unsigned int nBytes);

  EBitState m_eBitState = eBitsRead;
  unsigned int m_nBitCount = 0;
  unsigned char m_nBitBuffer = 0;
  bool m_bSwapOnRead = true;
  bool m_bSwapOnWrite = true;
};
