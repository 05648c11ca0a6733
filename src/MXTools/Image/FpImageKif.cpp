// The system's own image container, read and written through any stream.
#include "MXTools/Exception.h"
#include "MXTools/FileStream.h"
#include "MXTools/FpImage.h"
#include "MXTools/NewFile.h"
#include "MXTools/Stream.h"

namespace {

constexpr unsigned int cnMagic = 0x4B494600;
constexpr unsigned int cnVersion = 2;

/// What precedes the pixels.
struct StKifHeader {
  unsigned int nVersion = 0;
  unsigned char nType = 0;
  int nWidth = 0;
  int nHeight = 0;
  int nPlanes = 0;
  int nPelsX = 0;
  int nPelsY = 0;
  unsigned char nAligned = 1;
  int nContent = 0;
  double dWhite = 0;
  double dBlack = 0;
  unsigned int nTag = 0;
};

void ReadMagic(ClStream& oStream, const char* szText) {
  unsigned int nMagic = 0;
  // The mark's last byte is 0: without the count, a mark that lacks that byte would look whole.
  const unsigned int nRead = oStream.ReadAutoSwap(nMagic);
  if (nRead != sizeof(nMagic) || nMagic != cnMagic) KLV_RAISE(ClException, szText, -101);
}

StKifHeader ReadHeader(ClStream& oStream) {
  StKifHeader oHeader;
  ReadMagic(oStream, "KIF Magic is missing");
  oStream.ReadAutoSwap(oHeader.nVersion);
  if (oHeader.nVersion > cnVersion) KLV_RAISE(ClException, "Wrong KIF version", -101);
  oStream.ReadAutoSwap(oHeader.nType);
  oStream.ReadAutoSwap(oHeader.nWidth);
  oStream.ReadAutoSwap(oHeader.nHeight);
  oStream.ReadAutoSwap(oHeader.nPlanes);
  oStream.ReadAutoSwap(oHeader.nPelsX);
  oStream.ReadAutoSwap(oHeader.nPelsY);
  if (oHeader.nVersion >= 2) oStream.ReadAutoSwap(oHeader.nAligned);
  oStream.ReadAutoSwap(oHeader.nContent);
  oStream.ReadAutoSwap(oHeader.dWhite);
  oStream.ReadAutoSwap(oHeader.dBlack);
  if (oHeader.nVersion >= 1) oStream.ReadAutoSwap(oHeader.nTag);
  return oHeader;
}

/// A header may claim any size: nothing is allocated for pixels that the stream does not hold or can't move.
void CheckPixels(ClStream& oStream, const StKifHeader& oHeader) {
  if (oHeader.nWidth <= 0 || oHeader.nHeight <= 0 || oHeader.nPlanes <= 0) return;
  // This comes first: without a known element size nothing says how many bytes there should be.
  const int nSize = oHeader.nType & ClImage::cnTypeSizeMask;
  if (nSize > 8 || (nSize & (nSize - 1)) != 0)
    KLV_RAISE(ClException, "KIF element size is not supported", -101);
  if (!oStream.IsSeekable()) return;
  const int64_t nLeft = static_cast<int64_t>(oStream.Size()) - oStream.Pos();
  const int64_t nSamples = static_cast<int64_t>(oHeader.nWidth) * oHeader.nPlanes;
  int64_t nBytes = 0;
  const bool bTooMuch = __builtin_mul_overflow(nSamples, static_cast<int64_t>(oHeader.nHeight), &nBytes) ||
                        __builtin_mul_overflow(nBytes, static_cast<int64_t>(nSize), &nBytes) ||
                        nBytes > nLeft;
  if (!bTooMuch) return;
  if (oStream.m_bFailureFlag) KLV_RAISE(ClExStreamUnexpectedEnd, "Unexpected end of stream", -201);
  KLV_RAISE(ClException, "KIF end Magic is missing", -101);
}

unsigned int ElementCount(const ClImage& oImage) {
  const uint64_t nElements =
      static_cast<uint64_t>(oImage.ElementsPerRow()) * static_cast<uint64_t>(oImage.Height());
  // Streams count in 32 bits.
  if (nElements > UINT32_MAX) KlvRaiseBadAlloc();
  return static_cast<unsigned int>(nElements);
}

}  // namespace

void ClImage::Load(ClStream& oStream) {
  Delete();
  const StKifHeader oHeader = ReadHeader(oStream);
  CheckPixels(oStream, oHeader);
  NewWithType(oHeader.nType, oHeader.nWidth, oHeader.nHeight, oHeader.nPlanes, oHeader.nPelsX, oHeader.nPelsY,
              oHeader.nAligned != 0);
  m_eContent = static_cast<EContent>(oHeader.nContent);
  m_nTag = oHeader.nTag;
  m_dWhite = oHeader.dWhite;
  m_dBlack = oHeader.dBlack;
  if (const unsigned int nElements = ElementCount(*this)) {
    oStream.ReadNumericArray(Data(), nElements, static_cast<unsigned int>(ElementSize()));
  }
  ReadMagic(oStream, "KIF end Magic is missing");
}

void ClImage::Store(ClStream& oStream) const {
  oStream.WriteAutoSwap(cnMagic);
  oStream.WriteAutoSwap(cnVersion);
  oStream.WriteAutoSwap(m_nType);
  oStream.WriteAutoSwap(m_nWidth);
  oStream.WriteAutoSwap(m_nHeight);
  oStream.WriteAutoSwap(m_nPlanes);
  oStream.WriteAutoSwap(m_nPelsX);
  oStream.WriteAutoSwap(m_nPelsY);
  oStream.WriteAutoSwap(static_cast<unsigned char>(m_bAlignedRows ? 1 : 0));
  oStream.WriteAutoSwap(static_cast<int>(m_eContent));
  oStream.WriteAutoSwap(m_dWhite);
  oStream.WriteAutoSwap(m_dBlack);
  oStream.WriteAutoSwap(m_nTag);
  if (const unsigned int nElements = ElementCount(*this)) {
    oStream.WriteNumericArray(Data(), nElements, static_cast<unsigned int>(ElementSize()));
  }
  oStream.WriteAutoSwap(cnMagic);
}

void ClImage::Load(const char* szPath) {
  ClFileStream oStream(szPath, "rb");
  Load(oStream);
  oStream.Close();
}

void ClImage::Store(const char* szPath) const {
  ClNewFile oFile(szPath);
  ClFileStream oStream(oFile.WrittenName(), "wb");
  Store(oStream);
  oStream.Close();
  oFile.Keep();
}
