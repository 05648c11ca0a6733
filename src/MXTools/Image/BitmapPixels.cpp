// Pixels of a bitmap by their colour: single ones, channels, and images of them.
#include <algorithm>
#include <cstring>

#include "MXTools/Bitmap.h"
#include "MXTools/Exception.h"
#include "MXTools/FpImage.h"

namespace {

constexpr uint32_t cnColorBits = 0xFFFFFF;

uint32_t ChannelOf(uint32_t nColor, int nChannel) {
  return nColor >> (8 * nChannel) & 0xFF;
}

bool IsGrayColor(uint32_t nColor) {
  return ChannelOf(nColor, ClBitmap::eBlue) == ChannelOf(nColor, ClBitmap::eGreen) &&
         ChannelOf(nColor, ClBitmap::eGreen) == ChannelOf(nColor, ClBitmap::eRed);
}

void CheckChannel(int nChannel) {
  if (nChannel < ClBitmap::eBlue || nChannel > ClBitmap::eAlpha)
    KLV_RAISE(ClException, "ClBitmap, there is no such channel.", -35);
}

}  // namespace

uint32_t ClBitmap::LongFromMem(const unsigned char* pMemory, unsigned int nBytes) {
  uint32_t nValue = 0;
  for (unsigned int n = 0; n < nBytes; ++n) nValue |= static_cast<uint32_t>(pMemory[n]) << (8 * n);
  return nValue;
}

void ClBitmap::LongToMem(unsigned char* pMemory, unsigned int nBytes, uint32_t nValue) {
  for (unsigned int n = 0; n < nBytes; ++n) pMemory[n] = static_cast<unsigned char>(nValue >> (8 * n));
}

ClBitmap::MaskData::MaskData(uint32_t nMask) : m_nMask(nMask) {
  if (nMask == 0) return;
  while ((nMask >> m_nLowest & 1) == 0) ++m_nLowest;
  m_nLargest = nMask >> m_nLowest;
  // A mask with holes reaches up to its highest bit.
  for (unsigned int n = 1; n < 32; n *= 2) m_nLargest |= m_nLargest >> n;
}

uint32_t ClBitmap::MaskData::Get(uint32_t nPixel) const {
  if (m_nLargest == 0) return 0;
  return static_cast<uint32_t>(uint64_t{(nPixel & m_nMask) >> m_nLowest} * 255 / m_nLargest);
}

uint32_t ClBitmap::MaskData::Set(uint32_t nPixel, uint32_t nValue) const {
  if (m_nLargest == 0) return nPixel;
  // Up to eight bits the nearest field value is taken, beyond them the least one from which Get returns
  // nValue.
  const uint32_t nRounding = m_nLargest > 255 ? 254 : 127;
  const auto nField = static_cast<uint32_t>((uint64_t{nValue} * m_nLargest + nRounding) / 255);
  return (nPixel & ~m_nMask) | (nField << m_nLowest & m_nMask);
}

ClBitmap::MaskData ClBitmap::GetMask(int nChannel) const {
  const bool bWide = m_pHeader->biBitCount > 16;
  // The order is red, green, blue, as in a block's own masks.
  uint32_t aMasks[3] = {31744, 992, 31};
  if (bWide) aMasks[0] = 0xFF0000, aMasks[1] = 65280, aMasks[2] = 255;
  if (m_pHeader->biCompression == eBitFields) {
    for (unsigned int n = 0; n < 3; ++n) aMasks[n] = LongFromMem(m_pPalette + 4 * n, 4);
  }
  if (nChannel != eAlpha) return MaskData(aMasks[eRed - nChannel]);
  // Alpha has the bits that no colour uses: the top bit or byte of the usual layouts.
  return MaskData(~(aMasks[0] | aMasks[1] | aMasks[2]) & (bWide ? UINT32_MAX : 0xFFFF));
}

void ClBitmap::CheckPlain() const {
  if (IsEmpty()) KLV_RAISE_NUMBER(-10);
  if (m_pHeader->biCompression == eRLE8 || m_pHeader->biCompression == eRLE4)
    KLV_RAISE(ClException, "ClBitmap, the pixels are encoded.", -31);
}

long ClBitmap::Rows() const {
  return m_pHeader->biHeight < 0 ? -static_cast<long>(m_pHeader->biHeight) : m_pHeader->biHeight;
}

void ClBitmap::CheckPosition(long nX, long nY) const {
  CheckPlain();
  if (nX < 0 || nX >= m_pHeader->biWidth || nY < 0 || nY >= Rows())
    KLV_RAISE(ClException, "ClBitmap, there is no such pixel.", -35);
}

unsigned int ClBitmap::PaletteColor(uint32_t nIndex) const {
  // The fourth byte of an entry is reserved.
  return nIndex < PalSize(Header()) ? LongFromMem(m_pPalette + 4 * nIndex, 4) & cnColorBits : 0;
}

uint32_t ClBitmap::NearestIndex(uint32_t nColor) const {
  const uint32_t nEntries = std::min(PalSize(Header()), 1u << m_pHeader->biBitCount);
  uint32_t nNearest = 0, nLeast = UINT32_MAX;
  for (uint32_t n = 0; n < nEntries && nLeast != 0; ++n) {
    uint32_t nDistance = 0;
    for (int nChannel = eBlue; nChannel <= eRed; ++nChannel) {
      const uint32_t nDifference = ChannelOf(nColor, nChannel) - ChannelOf(PaletteColor(n), nChannel);
      nDistance += nDifference * nDifference;
    }
    if (nDistance < nLeast) {
      nLeast = nDistance;
      nNearest = n;
    }
  }
  return nNearest;
}

unsigned int ClBitmap::GetPixel(long nX, long nY) const {
  CheckPosition(nX, nY);
  const unsigned int nBits = m_pHeader->biBitCount;
  if (nBits > 32) return UINT32_MAX;
  const uint64_t nBit = static_cast<uint64_t>(nX) * nBits;
  const unsigned char* pPixel = Line(nY) + nBit / 8;
  if (nBits <= 8) {
    const uint32_t nShift = static_cast<uint32_t>(8 - nBits - nBit % 8);
    return PaletteColor(*pPixel >> nShift & ((1u << nBits) - 1));
  }
  const uint32_t nPixel = LongFromMem(pPixel, nBits / 8);
  if (nBits == 24) return nPixel;
  uint32_t nColor = 0;
  for (int nChannel = eBlue; nChannel <= eAlpha; ++nChannel)
    nColor |= GetMask(nChannel).Get(nPixel) << (8 * nChannel);
  return nColor;
}

void ClBitmap::SetPixel(long nX, long nY, unsigned int nColor) {
  CheckPosition(nX, nY);
  const unsigned int nBits = m_pHeader->biBitCount;
  if (nBits > 32) return;
  const uint64_t nBit = static_cast<uint64_t>(nX) * nBits;
  unsigned char* pPixel = Line(nY) + nBit / 8;
  if (nBits <= 8) {
    const uint32_t nShift = static_cast<uint32_t>(8 - nBits - nBit % 8);
    const uint32_t nMask = ((1u << nBits) - 1) << nShift;
    *pPixel = static_cast<unsigned char>((*pPixel & ~nMask) | (NearestIndex(nColor) << nShift));
    return;
  }
  uint32_t nPixel = nColor;
  if (nBits != 24) {
    nPixel = LongFromMem(pPixel, nBits / 8);
    for (int nChannel = eBlue; nChannel <= eAlpha; ++nChannel)
      nPixel = GetMask(nChannel).Set(nPixel, ChannelOf(nColor, nChannel));
  }
  LongToMem(pPixel, nBits / 8, nPixel);
}

bool ClBitmap::IsGray(bool bPixels) const {
  CheckPlain();
  if (m_pHeader->biBitCount <= 8 && !bPixels) {
    const unsigned int nEntries = PalSize(Header());
    for (unsigned int n = 0; n < nEntries; ++n)
      if (!IsGrayColor(PaletteColor(n))) return false;
    return true;
  }
  for (long y = 0; m_pHeader->biWidth > 0 && y < Rows(); ++y) {
    for (long x = 0; x < m_pHeader->biWidth; ++x)
      if (!IsGrayColor(GetPixel(x, y))) return false;
  }
  return true;
}

void ClBitmap::GetImage(ClImage& oImage) const {
  CheckPlain();
  const int nWidth = m_pHeader->biWidth, nHeight = static_cast<int>(Rows());
  const unsigned int nBits = m_pHeader->biBitCount;
  const bool bGray = nBits <= 8 && IsGray(false);
  const int nPlanes = bGray ? 1 : nBits == 32 ? 4 : 3;
  // The image may be the one that this bitmap is attached to.
  ClImage oNew;
  oNew.NewWithType(ClImage::eUint8, nWidth, nHeight, nPlanes, m_pHeader->biXPelsPerMeter,
                   m_pHeader->biYPelsPerMeter, true);
  const bool bUsual = nBits == 32 && GetMask(eRed).m_nMask == 0xFF0000 && GetMask(eGreen).m_nMask == 65280 &&
                      GetMask(eBlue).m_nMask == 255;
  unsigned char aGray[256];
  for (uint32_t n = 0; bGray && n < 256; ++n) aGray[n] = static_cast<unsigned char>(PaletteColor(n));
  for (int y = 0; nWidth > 0 && y < nHeight; ++y) {
    unsigned char* pOut = oNew.Row<unsigned char>(y);
    const unsigned char* pIn = Line(y);
    if (bGray && nBits == 8) {
      std::transform(pIn, pIn + nWidth, pOut, [&aGray](unsigned char n) { return aGray[n]; });
    } else if (nBits == 24 || bUsual) {
      std::memcpy(pOut, pIn, static_cast<size_t>(nWidth) * static_cast<size_t>(nPlanes));
    } else {
      for (int x = 0; x < nWidth; ++x, pOut += nPlanes)
        LongToMem(pOut, static_cast<unsigned int>(nPlanes), GetPixel(x, y));
    }
  }
  oImage.Swap(oNew);
}

void ClBitmap::GetChannel(int nChannel, ClImage& oImage) const {
  CheckPlain();
  CheckChannel(nChannel);
  ClImage oNew;
  oNew.NewWithType(ClImage::eUint8, m_pHeader->biWidth, static_cast<int>(Rows()), 1,
                   m_pHeader->biXPelsPerMeter, m_pHeader->biYPelsPerMeter, true);
  for (int y = 0; oNew.Width() > 0 && y < oNew.Height(); ++y) {
    unsigned char* pOut = oNew.Row<unsigned char>(y);
    for (int x = 0; x < oNew.Width(); ++x)
      pOut[x] = static_cast<unsigned char>(ChannelOf(GetPixel(x, y), nChannel));
  }
  oImage.Swap(oNew);
}

void ClBitmap::SetChannel(int nChannel, const ClImage& oImage) {
  CheckPlain();
  CheckChannel(nChannel);
  if (oImage.DataType() != ClImage::eUint8 || oImage.Planes() != 1)
    KLV_RAISE(ClException, "Only unsigned 8 bit images supported", -33);
  if (oImage.Width() != m_pHeader->biWidth || oImage.Height() != Rows())
    KLV_RAISE(ClException, "ClBitmap, the channel has another size.", -44);
  for (int y = 0; oImage.Width() > 0 && y < oImage.Height(); ++y) {
    const unsigned char* pIn = oImage.Row<unsigned char>(y);
    for (int x = 0; x < oImage.Width(); ++x) {
      const uint32_t nOthers = GetPixel(x, y) & ~(0xFFu << (8 * nChannel));
      SetPixel(x, y, nOthers | static_cast<uint32_t>(pIn[x]) << (8 * nChannel));
    }
  }
}

void ClBitmap::SplitChannels(ClImage* pBlue, ClImage* pGreen, ClImage* pRed, ClImage* pAlpha) const {
  ClImage* const aImages[] = {pBlue, pGreen, pRed, pAlpha};
  for (int nChannel = eBlue; nChannel <= eAlpha; ++nChannel)
    if (aImages[nChannel] != nullptr) GetChannel(nChannel, *aImages[nChannel]);
}

void ClBitmap::JoinChannels(const ClImage* pBlue, const ClImage* pGreen, const ClImage* pRed,
                            const ClImage* pAlpha) {
  const ClImage* const aImages[] = {pBlue, pGreen, pRed, pAlpha};
  const auto ppFirst =
      std::find_if(std::begin(aImages), std::end(aImages), [](auto p) { return p != nullptr; });
  if (ppFirst == std::end(aImages)) KLV_RAISE_NUMBER(-10);
  ClBitmap oNew;
  oNew.Create((*ppFirst)->Width(), (*ppFirst)->Height(), pAlpha != nullptr ? 32 : 24, ePlain);
  oNew.m_pHeader->biXPelsPerMeter = (*ppFirst)->PelsX();
  oNew.m_pHeader->biYPelsPerMeter = (*ppFirst)->PelsY();
  for (int nChannel = eBlue; nChannel <= eAlpha; ++nChannel)
    if (aImages[nChannel] != nullptr) oNew.SetChannel(nChannel, *aImages[nChannel]);
  Attach(oNew);
}
