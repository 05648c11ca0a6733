// The BMP file format: reading and writing.
#include <algorithm>
#include <cstring>

#include "MXTools/Bitmap.h"
#include "MXTools/Exception.h"
#include "MXTools/FileStream.h"
#include "MXTools/NewFile.h"
#include "MXTools/Stream.h"

namespace {

constexpr unsigned int cnMaskBytes = 12;
constexpr uint16_t cnSignature = 19778;

bool IsHeaderSize(uint32_t nSize) {
  return nSize == 40 || nSize == 108 || nSize == 124;
}

/// Sets the format's byte order and makes a read beyond the end fail, until the transfer ends.
class ClFormatOfStream {
 public:
  explicit ClFormatOfStream(ClStream& oStream)
      : m_oStream(oStream),
        m_bFailureFlag(oStream.m_bFailureFlag),
        m_bRead(oStream.SetBigEndian4Read(false)),
        m_bWrite(oStream.SetBigEndian4Write(false)) {
    m_oStream.m_bFailureFlag = true;
  }
  ClFormatOfStream(const ClFormatOfStream&) = delete;
  ClFormatOfStream& operator=(const ClFormatOfStream&) = delete;
  ~ClFormatOfStream() {
    m_oStream.m_bFailureFlag = m_bFailureFlag;
    m_oStream.SetBigEndian4Read(m_bRead);
    m_oStream.SetBigEndian4Write(m_bWrite);
  }

 private:
  ClStream& m_oStream;
  bool m_bFailureFlag;
  bool m_bRead;
  bool m_bWrite;
};

}  // namespace

/// One reading of a file, from its signature to its last row.
class ClBitmapReader {
 public:
  explicit ClBitmapReader(ClStream& oStream) : m_oStream(oStream) {}

  void Read(ClBitmap& oBitmap) {
    ReadSignature();
    ReadHeader();
    LimitPalette();
    const bool bEncoded = m_oHeader.biCompression == ClBitmap::eRLE8;
    tagBITMAPINFOHEADER oPlain = m_oHeader;
    if (bEncoded) {
      oPlain.biCompression = ClBitmap::ePlain;
      oPlain.biSizeImage = 0;
    }
    const unsigned int nPixelBytes = ClBitmap::ImageSize(&oPlain);
    if (bEncoded) oPlain.biSizeImage = nPixelBytes;
    RequireLeft(static_cast<uint64_t>(m_nPaletteRead) * 4 +
                (bEncoded ? LeastEncodedBytes(nPixelBytes) : nPixelBytes));
    const uint64_t nPaletteBytes = static_cast<uint64_t>(ClBitmap::PalSize(&oPlain)) * 4;
    const ClBitmap::HeaderHolder pHeader =
        ClBitmap::AllocBlock(cnBitmapInfoHeaderSize + nPaletteBytes, nPixelBytes);
    *pHeader = oPlain;
    ReadPalette(reinterpret_cast<unsigned char*>(pHeader.get()) + cnBitmapInfoHeaderSize);
    const ClBitmap::PixelsHolder pPixels = ClBitmap::PixelsBehind(pHeader);
    m_pPixels = pPixels.get();
    m_nRowSize = ClBitmap::RowSize(pHeader.get());
    if (bEncoded) {
      DecodeRLE8();
    } else {
      // Rows without columns take no bytes, so that even a short file may claim billions of them.
      const int32_t nRows = m_nRowSize == 0 ? 0 : m_oHeader.biHeight;
      for (int32_t nY = 0; nY < nRows; ++nY) m_oStream.Read(Row(nY), m_nRowSize);
    }
    oBitmap.Install(pHeader, pPixels);
  }

 private:
  void ReadSignature() {
    uint16_t nSignature = 0;
    m_oStream.ReadAutoSwap(nSignature);
    if (nSignature == cnSignature) {
      uint32_t nIgnored = 0;
      m_oStream.ReadAutoSwap(nIgnored);
      m_oStream.ReadAutoSwap(nIgnored);
      m_oStream.ReadAutoSwap(m_nOffset);
      m_nOffset = std::max(m_nOffset, cnBitmapFileHeaderSize + cnBitmapInfoHeaderSize);
      m_oStream.ReadAutoSwap(m_oHeader.biSize);
    } else if (IsHeaderSize(nSignature)) {
      uint16_t nHigh = 0;
      m_oStream.ReadAutoSwap(nHigh);
      m_oHeader.biSize = nSignature | static_cast<uint32_t>(nHigh) << 16;
    } else {
      KLV_RAISE(ClException, "ClBitmap::Load. Fileheader Signature is Missing", -210);
    }
    if (!IsHeaderSize(m_oHeader.biSize))
      KLV_RAISE(ClException, "ClBitmap::Load. BitmapInfoHeader is not valid.", -32);
  }

  void ReadHeader() {
    m_nHeaderRead = m_oHeader.biSize;
    m_oStream.ReadAutoSwap(m_oHeader.biWidth);
    m_oStream.ReadAutoSwap(m_oHeader.biHeight);
    m_oStream.ReadAutoSwap(m_oHeader.biPlanes);
    m_oStream.ReadAutoSwap(m_oHeader.biBitCount);
    m_oStream.ReadAutoSwap(m_oHeader.biCompression);
    m_oStream.ReadAutoSwap(m_oHeader.biSizeImage);
    m_oStream.ReadAutoSwap(m_oHeader.biXPelsPerMeter);
    m_oStream.ReadAutoSwap(m_oHeader.biYPelsPerMeter);
    m_oStream.ReadAutoSwap(m_oHeader.biClrUsed);
    m_oStream.ReadAutoSwap(m_oHeader.biClrImportant);
    m_oHeader.biSize = cnBitmapInfoHeaderSize;
    if (m_nHeaderRead > cnBitmapInfoHeaderSize) {
      // The larger headers carry the masks in themselves.
      m_oStream.Read(m_aMasks, sizeof(m_aMasks));
      Skip(m_nHeaderRead - cnBitmapInfoHeaderSize - cnMaskBytes);
    }
    const uint32_t nCompression = m_oHeader.biCompression;
    const bool bKnown = nCompression == ClBitmap::ePlain || nCompression == ClBitmap::eBitFields ||
                        (nCompression == ClBitmap::eRLE8 && m_oHeader.biBitCount == 8);
    if (!bKnown) KLV_RAISE(ClException, "ClBitmap::Load. Unsupported compressions mode", -31);
    // The header is checked before anything is allocated by its sizes.
    ClBitmap::MemToBitmapInfoHeader(reinterpret_cast<unsigned char*>(&m_oHeader));
    ClBitmap::ImageSize(&m_oHeader);
    m_bTopDown = m_oHeader.biHeight < 0;
    if (m_bTopDown) m_oHeader.biHeight = -m_oHeader.biHeight;
  }

  bool MasksInHeader() const {
    return m_nHeaderRead > cnBitmapInfoHeaderSize && m_oHeader.biBitCount > 8 &&
           m_oHeader.biCompression == ClBitmap::eBitFields;
  }

  /// A palette can't be larger than the room that the file gives it.
  void LimitPalette() {
    uint32_t nLimit = UINT32_MAX;
    if (m_nOffset != 0) {
      const uint32_t nHeads = m_nHeaderRead + cnBitmapFileHeaderSize;
      nLimit = m_nOffset > nHeads ? (m_nOffset - nHeads) / 4 : 0;
    }
    const bool bMasks = m_oHeader.biBitCount > 8 && m_oHeader.biCompression == ClBitmap::eBitFields;
    if (bMasks) {
      m_nPaletteRead = MasksInHeader() ? 0 : 3;
      return;
    }
    if (m_oHeader.biBitCount <= 8) nLimit = std::min(nLimit, 1u << m_oHeader.biBitCount);
    const uint32_t nWanted = ClBitmap::PalSize(&m_oHeader);
    m_nPaletteRead = std::min(nWanted, nLimit);
    if (m_nPaletteRead < nWanted) m_oHeader.biClrUsed = m_nPaletteRead;
    m_oHeader.biClrImportant = std::min(m_oHeader.biClrImportant, ClBitmap::PalSize(&m_oHeader));
  }

  void ReadPalette(unsigned char* pPalette) {
    if (MasksInHeader()) {
      std::memcpy(pPalette, m_aMasks, sizeof(m_aMasks));
    } else if (m_nPaletteRead != 0) {
      m_oStream.Read(pPalette, m_nPaletteRead * 4);
    }
    const uint64_t nDone =
        static_cast<uint64_t>(cnBitmapFileHeaderSize) + m_nHeaderRead + m_nPaletteRead * 4u;
    if (m_nOffset > nDone) Skip(static_cast<unsigned int>(m_nOffset - nDone));
  }

  void RequireLeft(uint64_t nBytes) const {
    if (!m_oStream.IsSeekable()) return;
    const int64_t nLeft = static_cast<int64_t>(m_oStream.Size()) - m_oStream.Pos();
    if (nLeft < 0 || nBytes > static_cast<uint64_t>(nLeft))
      KLV_RAISE(ClExStreamUnexpectedEnd, "Unexpected end of stream", -201);
  }

  void Skip(unsigned int nBytes) {
    unsigned char aIgnored[256];
    while (nBytes != 0) nBytes -= m_oStream.Read(aIgnored, std::min<unsigned int>(nBytes, sizeof(aIgnored)));
  }

  /// A byte of runs gives less than 128 pixels. A small bitmap may leave out pixels; a large one has to be
  /// long enough to fill all of them, so that no short file makes gigabytes be allocated.
  static uint64_t LeastEncodedBytes(unsigned int nPixelBytes) {
    constexpr unsigned int cnSmall = 1u << 26;
    return nPixelBytes > cnSmall ? (nPixelBytes - cnSmall) / 128 : 0;
  }

  unsigned char* Row(int32_t nY) {
    const int32_t nInBlock = m_bTopDown ? m_oHeader.biHeight - 1 - nY : nY;
    return m_pPixels + static_cast<size_t>(nInBlock) * m_nRowSize;
  }

  unsigned char ReadByte() {
    unsigned char nByte = 0;
    m_oStream.Read(&nByte, 1);
    return nByte;
  }

  /// A row ends where its padding does: some writers encode the padding too.
  void PutPixel(unsigned char nValue) {
    if (m_nX >= m_nRowSize && m_nRowSize > 0) {
      m_nY += m_nX / m_nRowSize;
      m_nX %= m_nRowSize;
    }
    if (m_nY >= m_oHeader.biHeight || m_nRowSize == 0)
      KLV_RAISE(ClException, "ClBitmap::Load. RLE Encoding corrupt", -38);
    if (m_nX < m_oHeader.biWidth) Row(static_cast<int32_t>(m_nY))[m_nX] = nValue;
    ++m_nX;
  }

  void DecodeRLE8() {
    for (;;) {
      const unsigned char nCount = ReadByte();
      const unsigned char nValue = ReadByte();
      if (nCount != 0) {
        for (unsigned int n = 0; n < nCount; ++n) PutPixel(nValue);
      } else if (nValue == 0) {
        m_nX = 0;
        ++m_nY;
      } else if (nValue == 1) {
        return;
      } else if (nValue == 2) {
        m_nX += ReadByte();
        m_nY += ReadByte();
      } else {
        for (unsigned int n = 0; n < nValue; ++n) PutPixel(ReadByte());
        if (nValue % 2 != 0) ReadByte();
      }
    }
  }

  ClStream& m_oStream;
  tagBITMAPINFOHEADER m_oHeader = {};
  uint32_t m_nHeaderRead = 0;
  uint32_t m_nOffset = 0;
  uint32_t m_nPaletteRead = 0;
  unsigned char m_aMasks[cnMaskBytes] = {};
  bool m_bTopDown = false;
  unsigned char* m_pPixels = nullptr;
  unsigned int m_nRowSize = 0;
  int64_t m_nX = 0;
  int64_t m_nY = 0;
};

void ClBitmap::Load(ClStream& oStream) {
  ClearFree();
  const ClFormatOfStream oFormat(oStream);
  ClBitmapReader(oStream).Read(*this);
}

void ClBitmap::Load(const char* szName) {
  ClFileStream oStream(szName, "rb");
  Load(oStream);
}

void ClBitmap::Store(ClStream& oStream) const {
  const unsigned int nPaletteBytes = PalSize(Header()) * 4;
  const tagBITMAPINFOHEADER& rHeader = *Header();
  uint32_t nImageBytes = rHeader.biSizeImage;
  if (nImageBytes == 0) {
    if (rHeader.biCompression != ePlain)
      KLV_RAISE(
          ClException,
          "Bitmap Store: Combination of biSizeImage not set and compression set to other than plain not "
          "allowed",
          -33);
    nImageBytes = ImageSize(&rHeader);
  }
  const ClFormatOfStream oFormat(oStream);
  oStream.WriteAutoSwap(cnSignature);
  oStream.WriteAutoSwap(
      static_cast<uint32_t>(cnBitmapInfoHeaderSize + cnBitmapFileHeaderSize + nPaletteBytes + nImageBytes));
  oStream.WriteAutoSwap(uint32_t{0});
  oStream.WriteAutoSwap(
      static_cast<uint32_t>(cnBitmapInfoHeaderSize + nPaletteBytes + cnBitmapFileHeaderSize));
  oStream.WriteAutoSwap(rHeader.biSize);
  oStream.WriteAutoSwap(rHeader.biWidth);
  oStream.WriteAutoSwap(rHeader.biHeight);
  oStream.WriteAutoSwap(rHeader.biPlanes);
  oStream.WriteAutoSwap(rHeader.biBitCount);
  oStream.WriteAutoSwap(rHeader.biCompression);
  oStream.WriteAutoSwap(rHeader.biSizeImage);
  oStream.WriteAutoSwap(rHeader.biXPelsPerMeter);
  oStream.WriteAutoSwap(rHeader.biYPelsPerMeter);
  oStream.WriteAutoSwap(rHeader.biClrUsed);
  oStream.WriteAutoSwap(rHeader.biClrImportant);
  if (nPaletteBytes != 0) oStream.Write(m_pPalette, nPaletteBytes);
  oStream.Write(m_pPixels.get(), ImageSize(&rHeader));
}

void ClBitmap::Store(const char* szName) const {
  ClNewFile oFile(szName);
  ClFileStream oStream(oFile.WrittenName(), "wb");
  Store(oStream);
  oStream.Close();
  oFile.Keep();
}
