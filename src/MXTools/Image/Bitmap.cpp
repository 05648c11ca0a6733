// Blocks, headers and sharing of bitmaps in memory.
#include "MXTools/Bitmap.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "MXTools/Exception.h"
#include "MXTools/FpImage.h"

namespace {

[[noreturn]] void RaiseSize() {
  KLV_RAISE(ClException, "ClBitmap, size of the bitmap is not supported.", -32);
}

uint64_t RowBytes(int64_t nWidth, unsigned int nBits) {
  if (nWidth < 0 || nWidth > INT32_MAX) RaiseSize();
  return (((static_cast<uint64_t>(nWidth) * nBits + 7) >> 3) + 3) & ~uint64_t{3};
}

unsigned int PlainBytes(int64_t nWidth, int64_t nHeight, unsigned int nBits) {
  if (nHeight <= INT32_MIN || nHeight > INT32_MAX) RaiseSize();
  const uint64_t nRows = static_cast<uint64_t>(nHeight < 0 ? -nHeight : nHeight);
  // Below 2^34 times 2^31, so that the product can't wrap.
  const uint64_t nBytes = RowBytes(nWidth, nBits) * nRows;
  if (nBytes > INT32_MAX) RaiseSize();
  return static_cast<unsigned int>(nBytes);
}

/// Header and what stands between it and the pixels.
uint64_t HeadBytes(const tagBITMAPINFOHEADER* pHeader) {
  return cnBitmapInfoHeaderSize + static_cast<uint64_t>(ClBitmap::PalSize(pHeader)) * 4;
}

void CheckBitCount(long nBits) {
  if (!ClBitmap::IsValidBitCount(nBits))
    KLV_RAISE(ClException, "The Bitmap format does only support 1, 4, 8, 16, 24 and 32 bit counts!", -12);
}

void PutLong(unsigned char* pOut, uint32_t nValue) {
  std::memcpy(pOut, &nValue, sizeof(nValue));
}

}  // namespace

bool ClBitmap::IsValidBitCount(long nBits) {
  return nBits == 1 || nBits == 4 || nBits == 8 || nBits == 16 || nBits == 24 || nBits == 32;
}

unsigned int ClBitmap::PalSize(const tagBITMAPINFOHEADER* pHeader) {
  if (pHeader == nullptr) KLV_RAISE_NUMBER(-10);
  if (pHeader->biBitCount < 9)
    return pHeader->biClrUsed != 0 ? pHeader->biClrUsed : 1u << pHeader->biBitCount;
  return pHeader->biCompression == eBitFields ? 3 : pHeader->biClrUsed;
}

unsigned int ClBitmap::RowSize(const tagBITMAPINFOHEADER* pHeader) {
  if (pHeader == nullptr) KLV_RAISE_NUMBER(-10);
  return static_cast<unsigned int>(RowBytes(pHeader->biWidth, pHeader->biBitCount));
}

unsigned int ClBitmap::ImageSize(const tagBITMAPINFOHEADER* pHeader) {
  if (pHeader == nullptr) KLV_RAISE_NUMBER(-10);
  const unsigned int nPlain = PlainBytes(pHeader->biWidth, pHeader->biHeight, pHeader->biBitCount);
  const bool bEncoded = pHeader->biCompression == eRLE8 || pHeader->biCompression == eRLE4;
  if (!bEncoded) return nPlain;
  if (pHeader->biSizeImage > INT32_MAX) RaiseSize();
  return pHeader->biSizeImage;
}

unsigned char* ClBitmap::MemToBitmapInfoHeader(unsigned char* pMemory) {
  if (pMemory == nullptr) KLV_RAISE(ClException, "ClBitmap::Attach, Pointer is NULL.", -10);
  if (pMemory[0] == 'B' && pMemory[1] == 'M')
    KLV_RAISE(ClException, "ClBitmap::Attach, Bitmapfileheader found Bitmapinfoheader expected.", -36);
  tagBITMAPINFOHEADER oHeader;
  std::memcpy(&oHeader, pMemory, sizeof(oHeader));
  if (oHeader.biSize != cnBitmapInfoHeaderSize)
    KLV_RAISE(ClException, "ClBitmap::Attach, Bitmap Header size is not known.", -32);
  if (oHeader.biPlanes != 1) KLV_RAISE(ClException, "ClBitmap::Attach, pBI->biPlanes != 1.", -11);
  if (oHeader.biCompression > eBitFields)
    KLV_RAISE(ClException, "ClBitmap::Attach, Not Supported FOCC.", -31);
  CheckBitCount(oHeader.biBitCount);
  return pMemory;
}

unsigned char* ClBitmap::CheckPtr(unsigned char* pBlock, unsigned int nSize) {
  const bool bFileHeader = pBlock != nullptr && nSize >= 2 && pBlock[0] == 'B' && pBlock[1] == 'M';
  const unsigned int nSkip = bFileHeader ? cnBitmapFileHeaderSize : 0;
  if (pBlock != nullptr && (nSize <= nSkip || nSize - nSkip < cnBitmapInfoHeaderSize))
    KLV_RAISE(ClException, "ClBitmap::Attach, the block is shorter than its header.", -10);
  return MemToBitmapInfoHeader(pBlock == nullptr ? nullptr : pBlock + nSkip);
}

ClBitmap::HeaderHolder ClBitmap::AllocBlock(uint64_t nHeadBytes, uint64_t nPixelBytes) {
  if (nHeadBytes + nPixelBytes > INT32_MAX) RaiseSize();
  const size_t nBytes = static_cast<size_t>(nHeadBytes + nPixelBytes);
  unsigned char* pBlock = new (std::nothrow) unsigned char[nBytes]();
  if (pBlock == nullptr) KlvRaiseBadAlloc();
  return HeaderHolder(reinterpret_cast<tagBITMAPINFOHEADER*>(pBlock),
                      [](tagBITMAPINFOHEADER* p) { delete[] reinterpret_cast<unsigned char*>(p); });
}

ClBitmap::HeaderHolder ClBitmap::BitmapAlloc(long nWidth, long nHeight, long nBits, long nCompression,
                                             bool bPixels) {
  CheckBitCount(nBits);
  if (nCompression < static_cast<long>(ePlain) || nCompression > static_cast<long>(eBitFields))
    KLV_RAISE(ClException, "ClBitmap::Create, Not Supported FOCC.", -31);
  const unsigned int nPixelBytes = PlainBytes(nWidth, nHeight, static_cast<unsigned int>(nBits));
  unsigned int nHeadBytes = cnBitmapInfoHeaderSize;
  if (nBits <= 8) {
    nHeadBytes += 4u << nBits;
  } else if (nCompression == eBitFields) {
    nHeadBytes += 12;
  }
  return AllocBlock(nHeadBytes, bPixels ? nPixelBytes : 0);
}

void ClBitmap::FillBI(tagBITMAPINFOHEADER* pHeader, long nWidth, long nHeight, long nBits,
                      long nCompression) {
  *pHeader = tagBITMAPINFOHEADER();
  pHeader->biSize = cnBitmapInfoHeaderSize;
  pHeader->biWidth = static_cast<int32_t>(nWidth);
  pHeader->biHeight = static_cast<int32_t>(nHeight);
  pHeader->biPlanes = 1;
  pHeader->biBitCount = static_cast<uint16_t>(nBits);
  pHeader->biCompression = static_cast<uint32_t>(nCompression);
  pHeader->biSizeImage = PlainBytes(nWidth, nHeight, pHeader->biBitCount);
  unsigned char* pPalette = reinterpret_cast<unsigned char*>(pHeader) + cnBitmapInfoHeaderSize;
  if (nBits < 9) {
    const unsigned int nEntries = PalSize(pHeader);
    const unsigned int nStep = 255 / ((1u << nBits) - 1);
    for (unsigned int n = 0; n < nEntries; ++n) PutLong(pPalette + 4 * n, n * nStep * 0x010101u);
  } else if (nCompression == eBitFields) {
    PutLong(pPalette, nBits > 16 ? 255 : 31);
    PutLong(pPalette + 4, nBits > 16 ? 65280 : 992);
    PutLong(pPalette + 8, nBits > 16 ? 0xFF0000 : 31744);
  }
}

void ClBitmap::FillBIFromImage(tagBITMAPINFOHEADER* pHeader, const ClImage& oImage) {
  FillBI(pHeader, oImage.Width(), oImage.Height(), oImage.Planes() * 8L, ePlain);
  pHeader->biXPelsPerMeter = oImage.PelsX();
  pHeader->biYPelsPerMeter = oImage.PelsY();
}

/// A new block with the header and palette of another one.
ClBitmap::HeaderHolder ClBitmap::CopyHead(const unsigned char* pHeader, uint64_t nPixelBytes) {
  tagBITMAPINFOHEADER oHeader;
  std::memcpy(&oHeader, pHeader, sizeof(oHeader));
  const uint64_t nHeadBytes = HeadBytes(&oHeader);
  HeaderHolder pCopy = AllocBlock(nHeadBytes, nPixelBytes);
  std::memcpy(reinterpret_cast<unsigned char*>(pCopy.get()), pHeader, static_cast<size_t>(nHeadBytes));
  return pCopy;
}

/// The pixels of a block that holds its own.
ClBitmap::PixelsHolder ClBitmap::PixelsBehind(const HeaderHolder& pHeader) {
  unsigned char* pPixels = reinterpret_cast<unsigned char*>(pHeader.get()) + HeadBytes(pHeader.get());
  return PixelsHolder(pPixels, [pHeader](unsigned char*) {});
}

ClBitmap::PixelsHolder ClBitmap::SharePixels(const ClImage& oImage) {
  if (RowBytes(oImage.Width(), static_cast<unsigned int>(oImage.Planes()) * 8) != oImage.RowBytes())
    KLV_RAISE(ClException, "Only images with unsigned 4 Byte rows supported", -33);
  const boost::shared_ptr<unsigned char> pHolder = oImage.m_pData;
  return PixelsHolder(pHolder.get(), [pHolder](unsigned char*) {});
}

void ClBitmap::Install(const HeaderHolder& pHeader, const PixelsHolder& pPixels) {
  unsigned char* pBlock = reinterpret_cast<unsigned char*>(pHeader.get());
  m_pPalette = PalSize(pHeader.get()) == 0 ? nullptr : pBlock + cnBitmapInfoHeaderSize;
  m_pHeader = pHeader;
  m_pPixels = pPixels;
}

void ClBitmap::ClearFree() {
  m_pHeader.reset();
  m_pPalette = nullptr;
  m_pPixels.reset();
}

void ClBitmap::Create(long nWidth, long nHeight, long nBits, long nCompression) {
  const HeaderHolder pHeader = BitmapAlloc(nWidth, nHeight, nBits, nCompression, true);
  FillBI(pHeader.get(), nWidth, nHeight, nBits, nCompression);
  Install(pHeader, PixelsBehind(pHeader));
}

void ClBitmap::Create(const ClBitmap& oModel) {
  const tagBITMAPINFOHEADER* pModel = oModel.Header();
  if (pModel == nullptr) KLV_RAISE_NUMBER(-10);
  Create(pModel->biWidth, pModel->biHeight, pModel->biBitCount, static_cast<long>(pModel->biCompression));
}

void ClBitmap::Attach(const ClBitmap& oOther) {
  if (this == &oOther) return;
  if (oOther.IsEmpty()) {
    ClearFree();
    return;
  }
  CheckBitCount(oOther.m_pHeader->biBitCount);
  m_pHeader = oOther.m_pHeader;
  m_pPalette = oOther.m_pPalette;
  m_pPixels = oOther.m_pPixels;
}

void ClBitmap::Attach(const ClImage& oImage) {
  if (oImage.Data() == nullptr) {
    ClearFree();
    return;
  }
  const int nPlanes = oImage.Planes();
  if (nPlanes != 1 && nPlanes != 3 && nPlanes != 4)
    KLV_RAISE(ClException, "Only grey scale, RGB and RGBA images supported", -33);
  if (oImage.DataType() != ClImage::eUint8)
    KLV_RAISE(ClException, "Only unsigned 8 bit images supported", -33);
  const PixelsHolder pPixels = SharePixels(oImage);
  const HeaderHolder pHeader = BitmapAlloc(oImage.Width(), oImage.Height(), nPlanes * 8L, ePlain, false);
  FillBIFromImage(pHeader.get(), oImage);
  Install(pHeader, pPixels);
}

void ClBitmap::Attach(unsigned char* pHeader, unsigned char* pPixels) {
  if (pHeader == nullptr) KLV_RAISE(ClException, "No Bitmap to Attach", -10);
  if (pPixels == nullptr) KLV_RAISE(ClException, "No Pixel data to Attach", -10);
  MemToBitmapInfoHeader(pHeader);
  HeaderHolder pHead;
  if (reinterpret_cast<uintptr_t>(pHeader) % alignof(tagBITMAPINFOHEADER) == 0) {
    pHead.reset(reinterpret_cast<tagBITMAPINFOHEADER*>(pHeader), [](tagBITMAPINFOHEADER*) {});
  } else {
    pHead = CopyHead(pHeader, 0);
  }
  ImageSize(pHead.get());
  Install(pHead, PixelsHolder(pPixels, [](unsigned char*) {}));
}

void ClBitmap::Attach(unsigned char* pBlock, unsigned int nSize) {
  if (pBlock == nullptr) KLV_RAISE(ClException, "No Bitmap to Attach", -10);
  unsigned char* pHeader = CheckPtr(pBlock, nSize);
  tagBITMAPINFOHEADER oHeader;
  std::memcpy(&oHeader, pHeader, sizeof(oHeader));
  const uint64_t nHeadBytes = HeadBytes(&oHeader);
  const uint64_t nLeft = nSize - static_cast<uint64_t>(pHeader - pBlock);
  if (nHeadBytes + ImageSize(&oHeader) > nLeft) KLV_RAISE(ClException, "No Pixel data to Attach", -10);
  Attach(pHeader, pHeader + nHeadBytes);
}

void ClBitmap::CopyFrom(const ClBitmap& oOther, bool bCopyPixels) {
  if (oOther.IsEmpty()) {
    ClearFree();
    return;
  }
  const unsigned char* pOther = reinterpret_cast<const unsigned char*>(oOther.Header());
  if (!bCopyPixels) {
    Install(CopyHead(pOther, 0), PixelsHolder(oOther.m_pPixels));
    return;
  }
  const unsigned int nPixelBytes = ImageSize(oOther.Header());
  const HeaderHolder pHeader = CopyHead(pOther, nPixelBytes);
  const PixelsHolder pPixels = PixelsBehind(pHeader);
  std::copy_n(oOther.Pixels(), nPixelBytes, pPixels.get());
  Install(pHeader, pPixels);
}

void ClBitmap::CopyFrom(const ClImage& oImage, bool bCopyPixels) {
  if (oImage.Data() == nullptr) {
    ClearFree();
    return;
  }
  if (oImage.DataType() != ClImage::eUint8)
    KLV_RAISE(ClException, "Only unsigned 8 bit images supported", -33);
  const HeaderHolder pHeader =
      BitmapAlloc(oImage.Width(), oImage.Height(), oImage.Planes() * 8L, ePlain, bCopyPixels);
  FillBIFromImage(pHeader.get(), oImage);
  if (!bCopyPixels) {
    Install(pHeader, SharePixels(oImage));
    return;
  }
  const PixelsHolder pPixels = PixelsBehind(pHeader);
  const size_t nRowSize = RowSize(pHeader.get());
  const size_t nRows = static_cast<size_t>(oImage.Height());
  if (nRowSize == oImage.RowBytes()) {
    std::memcpy(pPixels.get(), oImage.Data(), nRowSize * nRows);
  } else {
    for (size_t nY = 0; nY < nRows; ++nY)
      std::memcpy(pPixels.get() + nY * nRowSize, oImage.Row<unsigned char>(static_cast<int>(nY)),
                  oImage.RowBytes());
  }
  Install(pHeader, pPixels);
}

void ClBitmap::CopyFrom(const unsigned char* pBlock, bool bCopyPixels) {
  unsigned char* pHeader = MemToBitmapInfoHeader(const_cast<unsigned char*>(pBlock));
  ClBitmap oOther;
  tagBITMAPINFOHEADER oHeader;
  std::memcpy(&oHeader, pHeader, sizeof(oHeader));
  oOther.Attach(pHeader, pHeader + HeadBytes(&oHeader));
  CopyFrom(oOther, bCopyPixels);
}

void ClBitmap::CopyTo(unsigned char* pBlock) const {
  const unsigned int nPixelBytes = ImageSize(Header());
  const auto nHeadBytes = static_cast<size_t>(HeadBytes(Header()));
  std::memcpy(pBlock, Header(), nHeadBytes);
  std::copy_n(Pixels(), nPixelBytes, pBlock + nHeadBytes);
}

unsigned int ClBitmap::BlockSize() const {
  return static_cast<unsigned int>(HeadBytes(Header()) + ImageSize(Header()));
}

void ClBitmap::DetachThis() {
  CopyFrom(*this, true);
}

ClBitmap& ClBitmap::operator=(unsigned char nValue) {
  if (!IsEmpty()) std::memset(m_pPixels.get(), nValue, ImageSize(Header()));
  return *this;
}

bool ClBitmap::IsEqualSize(const ClBitmap& oOther) const {
  if (IsEmpty() || oOther.IsEmpty()) return IsEmpty() == oOther.IsEmpty();
  return m_pHeader->biWidth == oOther.m_pHeader->biWidth && m_pHeader->biHeight == oOther.m_pHeader->biHeight;
}

bool ClBitmap::operator==(const ClBitmap& oOther) const {
  if (IsEmpty() || oOther.IsEmpty()) return IsEmpty() == oOther.IsEmpty();
  if (std::memcmp(Header(), oOther.Header(), sizeof(tagBITMAPINFOHEADER)) != 0) return false;
  const size_t nPaletteBytes = 4 * static_cast<size_t>(PalSize(Header()));
  return std::equal(Palette(), Palette() + nPaletteBytes, oOther.Palette()) &&
         std::equal(Pixels(), Pixels() + ImageSize(Header()), oOther.Pixels());
}
