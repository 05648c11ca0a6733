// A BMP in memory: header, palette or masks, and pixel rows, as the format lays them out.
#pragma once

#include <boost/noncopyable.hpp>
#include <boost/shared_array.hpp>
#include <boost/shared_ptr.hpp>
#include <cstdint>

#include "MXTools/BitmapInfoHeader.h"

class ClImage;
class ClStream;

/// Header, palette and pixels, each shared with others through a holder.
///
/// Domain     1, 4, 8, 16, 24 and 32 bits a pixel; a block of less than 2^31 bytes.
/// Range      rows lie in the order of the block, row 0 first, each padded to a multiple of 4 bytes; nothing
///            is turned.
/// Units      resolution in pels per metre.
/// Ownership  the holders keep what was made or shared here; a block that was attached by pointer stays the
///            caller's.
/// Threads    thread-bound. The holders' counts are atomic, so that two bitmaps that share a block may be in
///            two threads; the pixels are not guarded.
/// Errors     those of the format (-10 to -12, -31 to -33, -36, -38, -210); ClExBadAlloc -102; -201 for a
///            file cut short.
/// Cost       Attach moves holders only.
class ClBitmap : private boost::noncopyable {
 public:
  /// 500 dots per inch.
  static constexpr int cn500DPI = 19685;

  enum ECompression : uint32_t { ePlain = 0, eRLE8 = 1, eRLE4 = 2, eBitFields = 3 };

  ClBitmap() = default;
  virtual ~ClBitmap() = default;

  /// A block of its own with header, grey ramp or masks, and pixels of 0.
  void Create(long nWidth, long nHeight, long nBits, long nCompression);
  void Create(const ClBitmap& oModel);

  /// Shares header and pixels. Errors: -12.
  void Attach(const ClBitmap& oOther);
  /// Shares the pixels under a header of its own; an empty image empties the bitmap.
  /// Errors: -33 for an image that is no plain BMP in memory; the old content stays.
  void Attach(const ClImage& oImage);
  /// Wraps the caller's header, with its palette behind it, and pixels.
  void Attach(unsigned char* pHeader, unsigned char* pPixels);
  /// Wraps a whole block, with or without a file header. A header that does not lie on a multiple of 4 is
  /// copied.
  void Attach(unsigned char* pBlock, unsigned int nSize);

  /// A new block; with bCopyPixels false the pixels are shared.
  void CopyFrom(const ClBitmap& oOther, bool bCopyPixels);
  /// Errors: -33 for an element type other than eUint8, and for rows that can't be shared.
  void CopyFrom(const ClImage& oImage, bool bCopyPixels);

  /// The file format. After a failure of Load the bitmap is empty.
  void Load(ClStream& oStream);
  void Load(const char* szName);
  void Store(ClStream& oStream) const;
  void Store(const char* szName) const;

  /// Let the content go. Four names of one operation.
  void ClearFree();
  void Clear() { ClearFree(); }
  void Free() { ClearFree(); }
  void Detach() { ClearFree(); }
  /// Makes a shared or foreign content the bitmap's own.
  void DetachThis();

  /// Fills the pixels.
  ClBitmap& operator=(unsigned char nValue);
  bool operator==(const ClBitmap& oOther) const;
  bool operator!=(const ClBitmap& oOther) const { return !(*this == oOther); }
  bool IsEqualSize(const ClBitmap& oOther) const;

  bool IsEmpty() const { return m_pHeader == nullptr; }
  /// NULL when empty.
  const tagBITMAPINFOHEADER* Header() const { return m_pHeader.get(); }
  tagBITMAPINFOHEADER* Header() { return m_pHeader.get(); }
  /// Entries of 4 bytes, blue first, or three masks; NULL when there are none.
  const unsigned char* Palette() const { return m_pPalette; }
  unsigned char* Palette() { return m_pPalette; }
  const unsigned char* Pixels() const { return m_pPixels.get(); }
  unsigned char* Pixels() { return m_pPixels.get(); }
  const boost::shared_array<unsigned char>& PixelHolder() const { return m_pPixels; }
  /// Row nY of [0, |biHeight|). Errors: -10 when empty.
  const unsigned char* Line(long nY) const { return m_pPixels.get() + LineOffset(nY); }
  unsigned char* Line(long nY) { return m_pPixels.get() + LineOffset(nY); }
  /// Bytes of a row. Errors: -10 when empty.
  unsigned int RowSize() const { return RowSize(m_pHeader.get()); }

  static bool IsValidBitCount(long nBits);
  /// Palette entries or masks. Errors: ClExKelvarin -10 without a header.
  static unsigned int PalSize(const tagBITMAPINFOHEADER* pHeader);
  static unsigned int RowSize(const tagBITMAPINFOHEADER* pHeader);
  /// Bytes of the pixels as they are stored. Errors: -32 for a size that no block can have.
  static unsigned int ImageSize(const tagBITMAPINFOHEADER* pHeader);
  /// Judges a header in memory. Errors: -10, -36, -32, -11, -31, -12, in this order.
  static unsigned char* MemToBitmapInfoHeader(unsigned char* pMemory);
  /// The same for a block that may begin with a file header. Errors: -10 as well for a block that ends in it.
  static unsigned char* CheckPtr(unsigned char* pBlock, unsigned int nSize);

 private:
  using HeaderHolder = boost::shared_ptr<tagBITMAPINFOHEADER>;
  using PixelsHolder = boost::shared_array<unsigned char>;

  static HeaderHolder AllocBlock(uint64_t nHeadBytes, uint64_t nPixelBytes);
  static HeaderHolder BitmapAlloc(long nWidth, long nHeight, long nBits, long nCompression, bool bPixels);
  static void FillBI(tagBITMAPINFOHEADER* pHeader, long nWidth, long nHeight, long nBits, long nCompression);
  static void FillBIFromImage(tagBITMAPINFOHEADER* pHeader, const ClImage& oImage);
  static HeaderHolder CopyHead(const unsigned char* pHeader, uint64_t nPixelBytes);
  static PixelsHolder PixelsBehind(const HeaderHolder& pHeader);
  static PixelsHolder SharePixels(const ClImage& oImage);
  void Install(const HeaderHolder& pHeader, const PixelsHolder& pPixels);
  size_t LineOffset(long nY) const { return static_cast<size_t>(nY) * RowSize(); }

  HeaderHolder m_pHeader;
  unsigned char* m_pPalette = nullptr;
  PixelsHolder m_pPixels;

  friend class ClBitmapReader;
};
