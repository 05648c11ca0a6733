// How brightly each place of the platen shines back: the map of the scene in the terms of light.
#include "sensor/Reflectance.h"

#include <algorithm>

#include "sensor/Light.h"

namespace Simulator {

void ClReflectance::Update(const ClPlatenMap& oMap, double dVarianceX, double dVarianceY) {
  if (m_oPicture.Empty()) m_oPicture.Resize(cnPictureSide, cnPictureSide);
  m_bGoesOn = oMap.bGoesOn;
  m_pSheet = oMap.pSheet;
  // The light of the skin leaves a rest up to full light; contact adds its share of that rest.
  constexpr unsigned nValley = static_cast<unsigned>(cdValleyPart * 65536.0);
  for (int y = 0; y < cnPictureSide; ++y) {
    const uint8_t* pContact = oMap.oContact.Row(y);
    const uint8_t* pCover = oMap.oCover.Row(y);
    uint8_t* pOut = m_oPicture.Row(y);
    for (int x = 0; x < cnPictureSide; ++x) {
      const unsigned nSkin = (pCover[x] * nValley + 32768) >> 16;
      pOut[x] = static_cast<uint8_t>(nSkin + (pContact[x] * (255 - nSkin) + 127) / 255);
    }
  }
  if (!m_pSheet) m_oBlur.Process(m_oPicture, dVarianceX, dVarianceY);
  FindOccupied();
}

void ClReflectance::FindOccupied() {
  constexpr int nBlocks = (cnPictureSide + nBlock - 1) / nBlock;
  m_oOccupied.Resize(nBlocks, nBlocks, 0);
  for (int y = 0; y < cnPictureSide; ++y) {
    const uint8_t* pRow = m_oPicture.Row(y);
    for (int b = 0; b < nBlocks; ++b) {
      unsigned nAny = 0;
      for (int x = b * nBlock; x < std::min(cnPictureSide, (b + 1) * nBlock); ++x) nAny |= pRow[x];
      if (nAny) m_oOccupied.At(b, y / nBlock) = 1;
    }
  }
}

void ClReflectance::Free() {
  m_oPicture.Free();
  m_oOccupied.Free();
}

bool ClReflectance::Occupied(int nLeft, int nTop, int nRight, int nBottom) const noexcept {
  if (m_bGoesOn) return true;
  if (m_oOccupied.Empty() || nRight < 0 || nBottom < 0) return false;
  const int nLastX = std::min(nRight / nBlock, m_oOccupied.Width() - 1);
  const int nLastY = std::min(nBottom / nBlock, m_oOccupied.Height() - 1);
  for (int y = std::max(nTop, 0) / nBlock; y <= nLastY; ++y)
    for (int x = std::max(nLeft, 0) / nBlock; x <= nLastX; ++x)
      if (m_oOccupied.At(x, y)) return true;
  return false;
}

}  // namespace Simulator
