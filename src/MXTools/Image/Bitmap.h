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
  /// Wraps pixels and the caller's header, which its palette follows.
  void Attach(unsigned char* pHeader, unsigned char* pPixels);
  /// Wraps a whole block, with or without a file header. A header that does not lie on a multiple of 4 is
  /// copied.
  void Attach(unsigned char* pBlock, unsigned int nSize);

  /// A new block; with bCopyPixels false the pixels are shared.
  void CopyFrom(const ClBitmap& oOther, bool bCopyPixels);
  /// Errors: -33 for an element type other than eUint8, and for rows that can't be shared.
  void CopyFrom(const ClImage& oImage, bool bCopyPixels);
  /// The same from a block of header, palette and pixels, whose length follows from the header.
  void CopyFrom(const unsigned char* pBlock, bool bCopyPixels);
  /// Writes header, palette and pixels one after the other: BlockSize() bytes.
  void CopyTo(unsigned char* pBlock) const;
  /// Errors: -10 when empty.
  unsigned int BlockSize() const;
  /// An image of its own: one plane for up to 8 bits and a grey palette, four for 32 bits, else three, blue
  /// first. Rows keep the order of the block.
  /// Errors: -10 when empty; -31 for an encoded bitmap.
  void GetImage(ClImage& oImage) const;

  /// The colour of a pixel, blue in the lowest byte, then green, red, and alpha where there is any. An index
  /// without an entry in the palette is black; a depth beyond 32 bits gives all bits set.
  /// Errors: -35 outside; -10 and -31 as GetImage.
  unsigned int GetPixel(long nX, long nY) const;
  /// Sets the pixel so that GetPixel returns nColor, as far as the depth allows; with a palette, its nearest
  /// colour.
  void SetPixel(long nX, long nY, unsigned int nColor);
  /// Whether red, green and blue are equal in each entry of the palette. With bPixels, and without a palette,
  /// in each pixel.
  bool IsGray(bool bPixels) const;

  enum EChannel : int { eBlue = 0, eGreen = 1, eRed = 2, eAlpha = 3 };
  /// One channel as an image of one plane. Errors: -35 for another channel.
  void GetChannel(int nChannel, ClImage& oImage) const;
  /// Errors: -33 for an image that is not of one plane of eUint8, -44 for one of another size.
  void SetChannel(int nChannel, const ClImage& oImage);
  void GetBlueChannel(ClImage& oImage) const { GetChannel(eBlue, oImage); }
  void GetGreenChannel(ClImage& oImage) const { GetChannel(eGreen, oImage); }
  void GetRedChannel(ClImage& oImage) const { GetChannel(eRed, oImage); }
  void GetAlphaChannel(ClImage& oImage) const { GetChannel(eAlpha, oImage); }
  void SetBlueChannel(const ClImage& oImage) { SetChannel(eBlue, oImage); }
  void SetGreenChannel(const ClImage& oImage) { SetChannel(eGreen, oImage); }
  void SetRedChannel(const ClImage& oImage) { SetChannel(eRed, oImage); }
  void SetAlphaChannel(const ClImage& oImage) { SetChannel(eAlpha, oImage); }
  /// All channels at once; NULL leaves one out.
  void SplitChannels(ClImage* pBlue, ClImage* pGreen, ClImage* pRed, ClImage* pAlpha) const;
  /// A new bitmap of the first image's size and resolution: 32 bits with pAlpha, else 24. A channel of NULL
  /// is 0. Errors: as SetChannel; -10 without any image.
  void JoinChannels(const ClImage* pBlue, const ClImage* pGreen, const ClImage* pRed, const ClImage* pAlpha);

  /// The file format. After a failure of Load the bitmap is empty.
  void Load(ClStream& oStream);
  void Load(const char* szName);
  void Store(ClStream& oStream) const;
  void Store(const char* szName) const;

  /// All four release the content and leave the bitmap empty.
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
  /// nBytes of [1, 4], little-endian.
  static uint32_t LongFromMem(const unsigned char* pMemory, unsigned int nBytes);
  static void LongToMem(unsigned char* pMemory, unsigned int nBytes, uint32_t nValue);
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
  /// Where a channel lies in a pixel of 16 or 32 bits.
  struct MaskData {
    explicit MaskData(uint32_t nMask);
    uint32_t Get(uint32_t nPixel) const;
    uint32_t Set(uint32_t nPixel, uint32_t nValue) const;

    uint32_t m_nMask;
    unsigned int m_nLowest = 0;  ///< lowest set bit
    uint32_t m_nLargest = 0;     ///< what its length can hold
  };
  void CheckPlain() const;
  void CheckPosition(long nX, long nY) const;
  long Rows() const;
  unsigned int PaletteColor(uint32_t nIndex) const;
  uint32_t NearestIndex(uint32_t nColor) const;
  /// Of EChannel.
  MaskData GetMask(int nChannel) const;
  void Install(const HeaderHolder& pHeader, const PixelsHolder& pPixels);
  size_t LineOffset(long nY) const { return static_cast<size_t>(nY) * RowSize(); }

  HeaderHolder m_pHeader;
  unsigned char* m_pPalette = nullptr;
  PixelsHolder m_pPixels;

  friend class ClBitmapReader;
};
