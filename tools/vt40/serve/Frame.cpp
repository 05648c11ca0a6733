// Headers, formats, and the blocks that frames are made of.
#include "Frame.h"

#include <turbojpeg.h>

#include <cstring>

#include "ToolError.h"

namespace Serve {
namespace {

/// "VTF1", as the lowest byte goes first.
constexpr uint32_t cnMagic = 0x31465456;
constexpr int cnJpegQuality = 85;
/// Frames that wait in the pool: more only come about while a client is slow.
constexpr size_t cnMostFree = 8;

/// Stores a number, lowest byte first, and returns the position after it.
unsigned char* Store(unsigned char* p, uint64_t nValue, unsigned int nBytes) {
  for (unsigned int n = 0; n < nBytes; ++n) *p++ = static_cast<unsigned char>(nValue >> (8 * n));
  return p;
}

}  // namespace

void Halve(const ClPicture& oPicture, ClPicture& oHalf) {
  oHalf.nWidth = oPicture.nWidth / 2;
  oHalf.nHeight = oPicture.nHeight / 2;
  oHalf.nPelsX = oPicture.nPelsX / 2;
  oHalf.nPelsY = oPicture.nPelsY / 2;
  oHalf.aPixels.resize(static_cast<size_t>(oHalf.nWidth) * oHalf.nHeight);
  unsigned char* pOut = oHalf.aPixels.data();
  for (unsigned int y = 0; y < oHalf.nHeight; ++y) {
    const unsigned char* pUpper = oPicture.Row(2 * y);
    const unsigned char* pLower = pUpper + oPicture.nWidth;
    for (unsigned int x = 0; x < oHalf.nWidth; ++x, pUpper += 2, pLower += 2)
      *pOut++ = static_cast<unsigned char>((pUpper[0] + pUpper[1] + pLower[0] + pLower[1] + 2) / 4);
  }
}

void EncodeJpeg(const ClPicture& oPicture, std::vector<unsigned char>& aBytes) {
  struct StCompressor {
    tjhandle h = tjInitCompress();
    ~StCompressor() {
      if (h != nullptr) tjDestroy(h);
    }
  };
  thread_local const StCompressor oCompressor;
  const int nWidth = static_cast<int>(oPicture.nWidth), nHeight = static_cast<int>(oPicture.nHeight);
  unsigned long nSize = tjBufSize(nWidth, nHeight, TJSAMP_GRAY);
  aBytes.resize(nSize);
  unsigned char* pBytes = aBytes.data();
  if (oCompressor.h == nullptr ||
      tjCompress2(oCompressor.h, oPicture.aPixels.data(), nWidth, 0, nHeight, TJPF_GRAY, &pBytes, &nSize,
                  TJSAMP_GRAY, cnJpegQuality, TJFLAG_NOREALLOC | TJFLAG_FASTDCT) != 0)
    throw ClToolError(eExitFailure, "a frame cannot be made a JPEG");
  aBytes.resize(nSize);
}

const StPayload& ClFrame::Payload(EFrameFormat eFormat, unsigned int nScale) {
  StVariant& oVariant = m_aVariants[eFormat * 2 + (nScale == 2 ? 1 : 0)];
  if (!oVariant.bMade) Make(oVariant, eFormat, nScale);
  return oVariant.oPayload;
}

void ClFrame::Make(StVariant& oVariant, EFrameFormat eFormat, unsigned int nScale) {
  if (nScale == 2) Halve(oPicture, m_oHalf);
  const ClPicture& oSource = nScale == 2 ? m_oHalf : oPicture;
  StPayload& oPayload = oVariant.oPayload;
  if (eFormat == eFormatJpeg) {
    EncodeJpeg(oSource, oVariant.aBytes);
    oPayload.pPixels = oVariant.aBytes.data();
    oPayload.nBytes = oVariant.aBytes.size();
  } else {
    oPayload.pPixels = oSource.aPixels.data();
    oPayload.nBytes = oSource.aPixels.size();
  }
  unsigned char* p = Store(oPayload.aHeader.data(), cnMagic, 4);
  p = Store(p, eFormat, 1);
  p = Store(p, eKind, 1);
  p = Store(p, StPayload::cnHeader, 2);
  p = Store(p, oSource.nWidth, 4);
  p = Store(p, oSource.nHeight, 4);
  p = Store(p, oSource.nPelsX, 4);
  p = Store(p, nNumber, 4);
  uint64_t nTime;
  std::memcpy(&nTime, &dTime, sizeof(nTime));
  Store(p, nTime, 8);
  oVariant.bMade = true;
}

void ClFrame::Renew() {
  for (StVariant& oVariant : m_aVariants) oVariant.bMade = false;
}

std::shared_ptr<ClFrame> ClFramePool::Take() {
  std::unique_ptr<ClFrame> pFrame;
  {
    const std::lock_guard<std::mutex> oLock(m_pRoom->oMutex);
    if (!m_pRoom->aFree.empty()) {
      pFrame = std::move(m_pRoom->aFree.back());
      m_pRoom->aFree.pop_back();
    }
  }
  if (pFrame == nullptr) pFrame = std::make_unique<ClFrame>();
  pFrame->Renew();
  return {pFrame.release(), [pRoom = m_pRoom](ClFrame* p) {
            std::unique_ptr<ClFrame> pBack(p);
            const std::lock_guard<std::mutex> oLock(pRoom->oMutex);
            if (pRoom->aFree.size() < cnMostFree) pRoom->aFree.push_back(std::move(pBack));
          }};
}

}  // namespace Serve
