// Blurs a picture of light by a small point spread.
#include "sensor/Blur.h"

#include <algorithm>
#include <cmath>

namespace Simulator {
namespace {

constexpr uint32_t cnWhole = 65536;
/// A mean over three has this variance at most, so that its response stays above zero.
constexpr double cdMostVariance = 0.4;

int Passes(double dVariance) {
  return static_cast<int>(std::ceil(dVariance / cdMostVariance));
}

/// The share of each neighbour, of cnWhole.
uint32_t Share(double dVariance) {
  return static_cast<uint32_t>(std::lround(0.5 * dVariance / Passes(dVariance) * cnWhole));
}

/// pOut may be pHere.
void MixRow(const uint8_t* pBefore, const uint8_t* pHere, const uint8_t* pAfter, uint32_t nShare,
            uint8_t* pOut, size_t nCount) noexcept {
  const uint32_t nRest = cnWhole - 2 * nShare;
  for (size_t i = 0; i < nCount; ++i) {
    const uint32_t nSides = static_cast<uint32_t>(pBefore[i]) + pAfter[i];
    pOut[i] = static_cast<uint8_t>((pHere[i] * nRest + nSides * nShare + cnWhole / 2) >> 16);
  }
}

void BlurAlongRows(TpPlane<uint8_t>& oPicture, uint32_t nShare, std::vector<uint8_t>& aRow) {
  const size_t nWidth = static_cast<size_t>(oPicture.Width());
  aRow.resize(nWidth + 2);
  for (int y = 0; y < oPicture.Height(); ++y) {
    uint8_t* pRow = oPicture.Row(y);
    std::copy_n(pRow, nWidth, aRow.data() + 1);
    aRow.front() = pRow[0];
    aRow.back() = pRow[nWidth - 1];
    MixRow(aRow.data(), aRow.data() + 1, aRow.data() + 2, nShare, pRow, nWidth);
  }
}

void BlurDownColumns(TpPlane<uint8_t>& oPicture, uint32_t nShare, std::vector<uint8_t>& aBefore,
                     std::vector<uint8_t>& aHere) {
  const size_t nWidth = static_cast<size_t>(oPicture.Width());
  const int nHeight = oPicture.Height();
  aBefore.assign(oPicture.Row(0), oPicture.Row(0) + nWidth);
  aHere.resize(nWidth);
  for (int y = 0; y < nHeight; ++y) {
    uint8_t* pRow = oPicture.Row(y);
    std::copy_n(pRow, nWidth, aHere.data());
    MixRow(aBefore.data(), aHere.data(), oPicture.Row(std::min(y + 1, nHeight - 1)), nShare, pRow, nWidth);
    aBefore.swap(aHere);
  }
}

}  // namespace

void ClBlur::Process(TpPlane<uint8_t>& oPicture, double dVarianceX, double dVarianceY) {
  if (oPicture.Empty()) return;
  for (int n = 0; n < Passes(dVarianceX); ++n) BlurAlongRows(oPicture, Share(dVarianceX), m_aRow);
  for (int n = 0; n < Passes(dVarianceY); ++n) BlurDownColumns(oPicture, Share(dVarianceY), m_aRow, m_aOther);
}

}  // namespace Simulator
