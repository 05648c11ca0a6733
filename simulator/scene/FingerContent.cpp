// A finger on the platen: laid down, pressed on, lifted.
#include "scene/FingerContent.h"

#include <cmath>
#include <cstring>

#include "scene/FingerMotion.h"
#include "scene/PrintCache.h"
#include "scene/Random.h"

namespace Simulator {
namespace {

// The place at which the pressed-on area ends under ordinary pressure, on the scale of ClPrint::oDepth.
constexpr double g_cdOrdinaryPressure = 0.6;
constexpr double g_cdOrdinaryEdge = 61.0;
// Light from a film of water against that of a ridge.
constexpr double g_cdHaloLight = 0.3;

/// Bilinear sample in 1/256 steps; 0 outside.
int Sample(const TpPlane<uint8_t>& oPlane, int nX256, int nY256) {
  const int nX = nX256 >> 8, nY = nY256 >> 8;
  if (nX < 0 || nY < 0 || nX >= oPlane.Width() || nY >= oPlane.Height()) return 0;
  const int nRight = nX + 1 < oPlane.Width() ? 1 : 0;
  const int nBelow = nY + 1 < oPlane.Height() ? oPlane.Width() : 0;
  const uint8_t* p = oPlane.Row(nY) + nX;
  const int nA = nX256 & 255, nB = nY256 & 255;
  const int nTop = p[0] * (256 - nA) + p[nRight] * nA;
  const int nLow = p[nBelow] * (256 - nA) + p[nBelow + nRight] * nA;
  return (nTop * (256 - nB) + nLow * nB + 32768) >> 16;
}

/// What pressure makes of the print: a table from skin height to contact, and the edge of the pressed-on
/// area.
struct ClPress {
  ClPress(const ClPrint& oPrint, double dPressure, double dHalo) {
    const double dBias = (dPressure - g_cdOrdinaryPressure) * 90.0;
    for (int i = 0; i < g_cnHeights; ++i) {
      // Heights below 0 are those that dryness has taken down.
      const double dContact = 128.0 + (i - g_cnSunken - 128.0 + dBias) * oPrint.dSlope;
      aContact[i] = static_cast<uint8_t>(std::clamp(dContact, 0.0, 255.0));
    }
    const double dEdge = g_cdOrdinaryEdge + (g_cdOrdinaryPressure - dPressure) * 150.0;
    for (int i = 0; i < 256; ++i) {
      const double dIn = std::clamp((i - dEdge + 14.0) / 28.0, 0.0, 1.0);
      aCover[i] = static_cast<uint8_t>(i == 0 ? 0.0 : 255.0 * dIn * dIn * (3.0 - 2.0 * dIn));
      const double dWet = std::clamp(i / std::max(1.0, dEdge), 0.0, 1.0);
      aHalo[i] = static_cast<uint8_t>(255.0 * g_cdHaloLight * dHalo * dWet);
    }
  }

  static constexpr int g_cnSunken = 128;
  static constexpr int g_cnHeights = 256 + g_cnSunken;
  uint8_t aContact[g_cnHeights];
  uint8_t aCover[256];
  uint8_t aHalo[256];
};

/// Dry skin touches in patches: a fixed texture of 64 by 64 values, repeated.
class ClDryness {
 public:
  ClDryness(uint64_t nSeed, double dDryness) : m_aSink(64 * 64) {
    ClRandom oRandom(Mix(nSeed, 0x447279));
    for (int8_t& nSink : m_aSink) {
      const double d = oRandom.Uniform();
      nSink = static_cast<int8_t>(std::min(127.0, dDryness * 190.0 * d * d * d));
    }
  }
  int At(int nX, int nY) const {
    return m_aSink[static_cast<size_t>((nY >> 1) & 63) * 64 + static_cast<size_t>((nX >> 1) & 63)];
  }

 private:
  std::vector<int8_t> m_aSink;
};

/// Positions in the print are counted in 1/65536 pixels.
int ToFixed(double d) {
  return static_cast<int>(std::floor(d * 65536.0 + 0.5));
}

/// Draws stretches of platen rows; the steps are those in the print from one platen pixel to the next.
struct ClRowDrawer {
  const ClPrint& oPrint;
  const ClPress& oPress;
  const ClDryness& oDry;
  int nStepX, nStepY;

  void Draw(int nX, int nY, int nCount, uint8_t* pContact, uint8_t* pCover) const {
    for (int i = 0; i < nCount; ++i, nX += nStepX, nY += nStepY) {
      const int nX256 = (nX + 128) >> 8, nY256 = (nY + 128) >> 8;
      const int nDepth = Sample(oPrint.oDepth, nX256, nY256), nCover = oPress.aCover[nDepth];
      pContact[i] = std::max(pContact[i], oPress.aHalo[nDepth]);
      if (nCover == 0) continue;
      const int nHeight = Sample(oPrint.oRidge, nX256, nY256) - oDry.At(nX256 >> 8, nY256 >> 8);
      const int nContact = oPress.aContact[nHeight + ClPress::g_cnSunken] * nCover / 255;
      pContact[i] = std::max(pContact[i], static_cast<uint8_t>(nContact));
      pCover[i] = std::max(pCover[i], static_cast<uint8_t>(nCover));
    }
  }
};

}  // namespace

ClFingerContent::ClFingerContent(const ClFingerDescription& oDescription)
    : m_oDescription(oDescription), m_pPrint(GetPrint(oDescription.oPrint)) {}

uint64_t ClFingerContent::StateAt(double dSeconds) const {
  const ClFingerPose oPose = ClFingerMotion::At(m_oDescription, dSeconds);
  uint64_t nState = static_cast<uint64_t>(oPose.nDown);
  for (const double d : {oPose.dXMm, oPose.dYMm, oPose.dAngle, oPose.dPressure}) {
    uint64_t nBits;
    std::memcpy(&nBits, &d, sizeof nBits);
    nState = Mix(nState, nBits);
  }
  return nState;
}

void ClFingerContent::Count(double dSeconds, ClPlatenFacts& oFacts) const {
  const ClFingerPose oPose = ClFingerMotion::At(m_oDescription, dSeconds);
  oFacts.nFingers += oPose.nDown > 0;
  oFacts.nMoving += oPose.bMoving;
}

void ClFingerContent::Draw(double dSeconds, ClPlatenMap& oMap) const {
  const ClFingerPose oPose = ClFingerMotion::At(m_oDescription, dSeconds);
  if (oPose.nDown == 0) return;
  const double dDown = static_cast<double>(oPose.nDown) / ClFingerMotion::nSteps;
  const ClPress oPress(*m_pPrint,
                       oPose.nDown == ClFingerMotion::nSteps
                           ? oPose.dPressure
                           : oPose.dPressure * (0.4 + 0.6 * dDown) - 0.4 * (1.0 - dDown),
                       m_oDescription.dHalo);
  const ClDryness oDry(m_oDescription.oPrint.nSeed, m_oDescription.dDryness);
  const TpPlane<uint8_t>& oRidge = m_pPrint->oRidge;
  const double dTurn = oPose.dAngle * 3.14159265358979323846 / 180.0;
  const double dCos = std::cos(dTurn), dSin = std::sin(dTurn);
  const double dMidX = MmToPixel(oPose.dXMm), dMidY = MmToPixel(oPose.dYMm);
  const double dHalfX = 0.5 * (oRidge.Width() * std::fabs(dCos) + oRidge.Height() * std::fabs(dSin)) + 1.0;
  const double dHalfY = 0.5 * (oRidge.Width() * std::fabs(dSin) + oRidge.Height() * std::fabs(dCos)) + 1.0;
  const int nLeft = std::max(0, static_cast<int>(std::floor(dMidX - dHalfX)));
  const int nRight = std::min(g_cnPictureSide, static_cast<int>(std::ceil(dMidX + dHalfX)) + 1);
  const int nTop = std::max(0, static_cast<int>(std::floor(dMidY - dHalfY)));
  const int nEnd = std::min(g_cnPictureSide, static_cast<int>(std::ceil(dMidY + dHalfY)) + 1);
  const ClRowDrawer oDrawer{*m_pPrint, oPress, oDry, ToFixed(dCos), ToFixed(dSin)};
  for (int y = nTop; y < nEnd; ++y) {
    // Back from the platen into the print: a turn the other way, y running down.
    const double dX = (nLeft - dMidX) * dCos - (y - dMidY) * dSin + 0.5 * (oRidge.Width() - 1);
    const double dY = (nLeft - dMidX) * dSin + (y - dMidY) * dCos + 0.5 * (oRidge.Height() - 1);
    oDrawer.Draw(ToFixed(dX), ToFixed(dY), nRight - nLeft, oMap.oContact.Row(y) + nLeft,
                 oMap.oCover.Row(y) + nLeft);
  }
}

}  // namespace Simulator
