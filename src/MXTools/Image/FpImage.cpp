// Allocation, sharing, copying and checking of images.
#include "MXTools/FpImage.h"

#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "MXTools/Exception.h"
#include "MXTools/ImageTypeDispatch.h"

namespace {

constexpr double cdNaN = std::numeric_limits<double>::quiet_NaN();

/// Computes the bytes of a row in 64 bits; false when hostile sizes give more than a row may have.
bool RowBytesOf(unsigned char nType, int nWidth, int nPlanes, bool bAligned, int64_t& rnRowBytes) {
  rnRowBytes = 0;
  int64_t nBytes = static_cast<int64_t>(nPlanes) * nWidth;
  if (__builtin_mul_overflow(nBytes, static_cast<int64_t>(nType & ClImage::cnTypeSizeMask), &nBytes))
    return false;
  if (bAligned && nBytes > 0) nBytes = (nBytes + 3) & ~static_cast<int64_t>(3);
  rnRowBytes = nBytes;
  return nBytes <= std::numeric_limits<int>::max();
}

template <typename T>
void CopyPlane(const ClImage& oIn, int nPlane, ClImage& oOut) {
  const int nPlanes = oIn.Planes();
  for (int y = 0; y < oIn.Height(); ++y) {
    const T* pIn = oIn.Row<T>(y) + nPlane;
    T* pOut = oOut.Row<T>(y);
    for (int x = 0; x < oIn.Width(); ++x) pOut[x] = pIn[static_cast<ptrdiff_t>(x) * nPlanes];
  }
}

}  // namespace

ClImage::ClImage() {
  SetFields(eTypeNone, 0, 0, 0, 0, 0, true);
}

ClImage::ClImage(int nWidth, int nHeight, int nPlanes, int nPelsX, int nPelsY) : ClImage() {
  NewWithType(eUint8, nWidth, nHeight, nPlanes, nPelsX, nPelsY, true);
}

void ClImage::Initialize() {
  SetFields(eTypeNone, 0, 0, 0, 0, 0, true);
  m_eContent = eUnknown;
  m_nTag = 0;
  m_pData.reset();
  m_nBlockBytes = 0;
}

void ClImage::SetFields(unsigned char nType, int nWidth, int nHeight, int nPlanes, int nPelsX, int nPelsY,
                        bool bAligned) {
  m_nType = nType;
  m_nWidth = nWidth;
  m_nHeight = nHeight;
  m_nPlanes = nPlanes;
  m_nPelsX = nPelsX;
  m_nPelsY = nPelsY;
  m_bAlignedRows = bAligned;
  ContentFromPlanes(nPlanes);
  BlackWhiteFromType(nType);
}

void ClImage::NewWithType(unsigned char nType, int nWidth, int nHeight, int nPlanes, int nPelsX, int nPelsY,
                          bool bAligned) {
  SetFields(nType, nWidth, nHeight, nPlanes, nPelsX, nPelsY, bAligned);
  int64_t nRowBytes = 0;
  int64_t nBytes = 0;
  const bool bRepresentable = RowBytesOf(nType, nWidth, nPlanes, bAligned, nRowBytes) &&
                              !__builtin_mul_overflow(nRowBytes, static_cast<int64_t>(nHeight), &nBytes) &&
                              nBytes <= std::numeric_limits<ptrdiff_t>::max() - 8;
  const bool bNegative = nHeight < 0 || nWidth < 0 || nPlanes < 0;
  if (bNegative) KLV_RAISE(ClException, "Image area must be positive", -101);
  if (!bRepresentable) {
    Initialize();
    KlvRaiseBadAlloc();
  }
  const size_t nSize = static_cast<size_t>(nBytes);
  if (m_pData.use_count() == 1 && m_nBlockBytes == nSize) return;
  if (nSize == 0) {
    m_pData.reset();
    m_nBlockBytes = 0;
    return;
  }
  // The old block goes first, so that a frame size can change where memory is short.
  m_pData.reset();
  m_nBlockBytes = 0;
  unsigned char* pBlock = new (std::nothrow) unsigned char[(nSize + 7) & ~static_cast<size_t>(7)];
  if (pBlock == nullptr) {
    Initialize();
    KlvRaiseBadAlloc();
  }
  m_pData = boost::shared_ptr<unsigned char>(pBlock, boost::checked_array_deleter<unsigned char>());
  m_nBlockBytes = nSize;
}

void ClImage::NewWithType(const ClImage& oModel, unsigned char nType) {
  if (&oModel == this) KLV_RAISE(ClException, "this function dose not work on the same image.", -44);
  NewWithType(nType, oModel.m_nWidth, oModel.m_nHeight, oModel.m_nPlanes, oModel.m_nPelsX, oModel.m_nPelsY,
              true);
  m_eContent = oModel.m_eContent;
  m_nTag = oModel.m_nTag;
}

void ClImage::New(const ClImage& oModel) {
  if (&oModel == this) return;
  NewWithType(oModel, oModel.m_nType);
  m_dWhite = oModel.m_dWhite;
  m_dBlack = oModel.m_dBlack;
}

void ClImage::TakeFields(const ClImage& oOther) {
  SetFields(oOther.m_nType, oOther.m_nWidth, oOther.m_nHeight, oOther.m_nPlanes, oOther.m_nPelsX,
            oOther.m_nPelsY, oOther.m_bAlignedRows);
  m_eContent = oOther.m_eContent;
  m_dBlack = oOther.m_dBlack;
  m_dWhite = oOther.m_dWhite;
  m_nTag = oOther.m_nTag;
}

void ClImage::Attach(const ClImage& oOther) {
  if (&oOther == this) return;
  Delete();
  TakeFields(oOther);
  m_pData = oOther.m_pData;
  m_nBlockBytes = oOther.m_nBlockBytes;
}

void ClImage::Attach(void* pData, const ClImage& oModel) {
  if (&oModel != this) {
    Delete();
    TakeFields(oModel);
  }
  m_pData.reset(static_cast<unsigned char*>(pData), void_deleter());
  m_nBlockBytes = DataBytes();
}

void ClImage::AttachIntern(void* pData, unsigned char nType, int nWidth, int nHeight, int nPlanes, int nPelsX,
                           int nPelsY, bool bAligned) {
  Delete();
  SetFields(nType, nWidth, nHeight, nPlanes, nPelsX, nPelsY, bAligned);
  m_pData.reset(static_cast<unsigned char*>(pData), void_deleter());
  m_nBlockBytes = DataBytes();
}

ClImage& ClImage::operator=(const ClImage& oOther) {
  if (&oOther == this) return *this;
  New(oOther);
  if (oOther.m_pData.get() == nullptr || m_pData.get() == nullptr) return *this;
  const size_t nRowBytes = RowBytes();
  const size_t nOtherRowBytes = oOther.RowBytes();
  if (nRowBytes == nOtherRowBytes) {
    std::memcpy(m_pData.get(), oOther.m_pData.get(), DataBytes());
    return *this;
  }
  for (int y = 0; y < m_nHeight; ++y) {
    unsigned char* pRow = Row<unsigned char>(y);
    std::memcpy(pRow, oOther.Row<unsigned char>(y), nOtherRowBytes);
    std::memset(pRow + nOtherRowBytes, 0, nRowBytes - nOtherRowBytes);
  }
  return *this;
}

ClImage& ClImage::operator=(const unsigned char& nValue) {
  if (nValue != 0 && ElementSize() != 1) KLV_RAISE(ClException, "Image Type is not the assigned type", -101);
  if (m_pData.get() != nullptr) std::memset(m_pData.get(), nValue, DataBytes());
  return *this;
}

ClImage& ClImage::operator=(const int& nValue) {
  if (nValue == 0) return *this = static_cast<unsigned char>(0);
  if (m_nType != eInt32) KLV_RAISE(ClException, "Image Type is not the assigned type", -101);
  if (m_pData.get() == nullptr) return *this;
  for (int y = 0; y < m_nHeight; ++y) std::fill_n(Row<int32_t>(y), SamplesPerRow(), nValue);
  return *this;
}

void ClImage::FillAligment(int nValue) {
  if (m_pData.get() == nullptr) return;
  const size_t nUsed = static_cast<size_t>(SamplesPerRow()) * static_cast<size_t>(ElementSize());
  const size_t nPadding = RowBytes() - nUsed;
  for (int y = 0; nPadding != 0 && y < m_nHeight; ++y) {
    std::memset(Row<unsigned char>(y) + nUsed, nValue & 0xFF, nPadding);
  }
}

void ClImage::GetPlane(int nPlane, ClImage& oOut) const {
  DispatchElementType(m_nType, 0, [&](auto oElement) {
    using T = typename decltype(oElement)::Type;
    oOut.NewWithType(m_nType, m_nWidth, m_nHeight, 1, m_nPelsX, m_nPelsY, true);
    if (m_pData.get() != nullptr) CopyPlane<T>(*this, nPlane, oOut);
    return 0L;
  });
}

void ClImage::Swap(ClImage& oOther) {
  if (&oOther == this) return;
  std::swap(m_nType, oOther.m_nType);
  std::swap(m_eContent, oOther.m_eContent);
  std::swap(m_nWidth, oOther.m_nWidth);
  std::swap(m_nHeight, oOther.m_nHeight);
  std::swap(m_nPelsX, oOther.m_nPelsX);
  std::swap(m_nPelsY, oOther.m_nPelsY);
  m_pData.swap(oOther.m_pData);
  std::swap(m_nBlockBytes, oOther.m_nBlockBytes);
  std::swap(m_bAlignedRows, oOther.m_bAlignedRows);
  std::swap(m_nPlanes, oOther.m_nPlanes);
  std::swap(m_dBlack, oOther.m_dBlack);
  std::swap(m_dWhite, oOther.m_dWhite);
  std::swap(m_nTag, oOther.m_nTag);
}

void ClImage::HandOver(ClImage& oOther) {
  if (&oOther == this) return;
  Swap(oOther);
  if (boost::get_deleter<void_deleter>(m_pData) != nullptr) Initialize();
}

size_t ClImage::RowBytes() const {
  int64_t nRowBytes = 0;
  if (!RowBytesOf(m_nType, m_nWidth, m_nPlanes, m_bAlignedRows, nRowBytes) || nRowBytes < 0) return 0;
  return static_cast<size_t>(nRowBytes);
}

int ClImage::ElementsPerRow() const {
  return ElementSize() == 0 ? 0 : static_cast<int>(RowBytes() / static_cast<size_t>(ElementSize()));
}

void ClImage::ContentFromPlanes(int nPlanes) {
  switch (nPlanes) {
    case 1:
      m_eContent = eGrayscale;
      break;
    case 3:
      m_eContent = eRGB;
      break;
    case 4:
      m_eContent = eRGBA;
      break;
    default:
      m_eContent = eUnknown;
  }
}

void ClImage::BlackWhiteFromType(unsigned char nType) {
  SetBlackWhite(cdNaN, cdNaN);
  DispatchElementType(nType, 0, [this](auto oElement) {
    using T = typename decltype(oElement)::Type;
    if constexpr (std::is_floating_point_v<T>) {
      SetBlackWhite(-1.0, 1.0);
    } else {
      SetBlackWhite(static_cast<double>(std::numeric_limits<T>::lowest()),
                    static_cast<double>(std::numeric_limits<T>::max()));
    }
    return 0L;
  });
}

const char* ClImage::BrokenRule() const {
  if (m_nWidth < 0 || m_nHeight < 0 || m_nPelsX < 0 || m_nPelsY < 0) {
    return "ClImage::IsValid. Wrong width, height or dpi";
  }
  if (m_dBlack > m_dWhite) return "ClImage::IsValid. value of Black should be < than value of White";
  if (m_dBlack < 0 && !IsSigned()) return "ClImage::IsValid. Unsigned require data range >= 0";
  if (m_nType == eUint8 && !(m_dBlack == 0 && m_dWhite == 255)) {
    return "ClImage::IsValid. Char require data range 0...255";
  }
  if (m_nType == eInt8 && !(m_dBlack == -128 && m_dWhite == 127)) {
    return "ClImage::IsValid. Signed Char require data range -128...127";
  }
  if (m_nWidth != 0 && m_nHeight != 0 && (m_nPlanes < 1 || m_nPlanes > 4)) {
    return "ClImage::IsValid. Wrong Image Size or wrong number of planes";
  }
  return nullptr;
}

bool ClImage::IsValid() const {
  return BrokenRule() == nullptr;
}

void ClImage::CheckValid() const {
  if (const char* szRule = BrokenRule()) KLV_RAISE(ClException, szRule, -101);
}
