// A finger on the platen: laid down, pressed on, rolled, lifted.
#include "scene/FingerContent.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "portable/Math.h"
#include "scene/PrintCache.h"
#include "scene/Random.h"

namespace Simulator {
namespace {

// Where the pressed-on area ends under ordinary pressure, on the scale of ClPrint::oDepth.
constexpr double cdOrdinaryPressure = 0.6;
constexpr double cdOrdinaryEdge = 61.0;
// Light from a film of water, relative to that of a ridge.
constexpr double cdHaloLight = 0.3;
constexpr double cdDegree = Portable::cdPi / 180.0;
// Steps in which a roll is followed when all of it is to be drawn.
constexpr double cdUnrollSeconds = 1.0 / 240.0;

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

/// How pressure changes the print: a table from skin height to contact, and the edge of the pressed-on area.
struct ClPress {
  ClPress(const ClPrint& oPrint, double dPressure, double dHalo) {
    const double dBias = (dPressure - cdOrdinaryPressure) * 90.0;
    for (int i = 0; i < cnHeights; ++i) {
      // Dryness lowers heights, some of them below 0.
      const double dContact = 128.0 + (i - cnSunken - 128.0 + dBias) * oPrint.dSlope;
      aContact[i] = static_cast<uint8_t>(std::clamp(dContact, 0.0, 255.0));
    }
    const double dEdge = cdOrdinaryEdge + (cdOrdinaryPressure - dPressure) * 150.0;
    for (int i = 0; i < 256; ++i) {
      const double dIn = std::clamp((i - dEdge + 14.0) / 28.0, 0.0, 1.0);
      aCover[i] = static_cast<uint8_t>(i == 0 ? 0.0 : 255.0 * dIn * dIn * (3.0 - 2.0 * dIn));
      const double dWet = std::clamp(i / std::max(1.0, dEdge), 0.0, 1.0);
      aHalo[i] = static_cast<uint8_t>(255.0 * cdHaloLight * dHalo * dWet);
    }
  }

  static constexpr int cnSunken = 128;
  static constexpr int cnHeights = 256 + cnSunken;
  uint8_t aContact[cnHeights];
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

/// How firmly the parts of a rolling finger are pressed on, on the scale of ClPrint::oDepth.
struct ClStripPress {
  float fLow, fHigh;  ///< ends of the part that is pressed on most, in pixels across the strip
  float fFall;        ///< for each pixel beyond
  float fStart;       ///< position across the strip of the stretch's first pixel
  float fStep;        ///< from one platen pixel to the next

  int DepthAt(int i) const {
    const float fPlace = fStart + static_cast<float>(i) * fStep;
    const float fAway = std::max(0.0f, std::max(fLow - fPlace, fPlace - fHigh));
    return static_cast<int>(std::clamp(cfDeepest - fAway * fFall, 0.0f, 255.0f));
  }

  // Depth falls from the middle to the edge as it does across a generated print.
  static constexpr float cfDeepest = 255.0f * 1.12f / 0.5f;
  static constexpr float cfFall = 255.0f / 0.5f;
};

/// Draws stretches of platen rows; the steps are those in the print from one platen pixel to the next.
struct ClRowDrawer {
  const ClPrint& oPrint;
  const ClPress& oPress;
  const ClDryness& oDry;
  int nStepX, nStepY;

  void Draw(int nX, int nY, int nCount, const ClStripPress* pStrip, uint8_t* pContact,
            uint8_t* pCover) const {
    for (int i = 0; i < nCount; ++i, nX += nStepX, nY += nStepY) {
      const int nStrip = pStrip ? pStrip->DepthAt(i) : 255;
      if (nStrip == 0) continue;
      const int nX256 = (nX + 128) >> 8, nY256 = (nY + 128) >> 8;
      const int nDepth = Sample(oPrint.oDepth, nX256, nY256) * nStrip / 255, nCover = oPress.aCover[nDepth];
      pContact[i] = std::max(pContact[i], oPress.aHalo[nDepth]);
      if (nCover == 0) continue;
      const int nHeight = Sample(oPrint.oRidge, nX256, nY256) - oDry.At(nX256 >> 8, nY256 >> 8);
      const int nContact = oPress.aContact[nHeight + ClPress::cnSunken] * nCover / 255;
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
  for (const double d : {oPose.dXMm, oPose.dYMm, oPose.dAngle, oPose.dPressure, oPose.dStripMm}) {
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
  if (oPose.nDown != 0) DrawSkin(oPose, StripAt(oPose), oMap);
}

void ClFingerContent::DrawUnrolled(double dFrom, double dUntil, ClPlatenMap& oMap) const {
  if (m_oDescription.oRoll.dWidthMm == 0.0) return;
  // The unrolled print has neither slip nor turn: all skin lies where it would lie if the finger had rolled
  // without them. The strips of all moments together give its edges.
  ClFingerPose oFlat;
  double dLeft = std::numeric_limits<double>::infinity(), dRight = -dLeft, dWidest = 0.0;
  const int nSteps = static_cast<int>(std::ceil((dUntil - dFrom) / cdUnrollSeconds));
  for (int i = 0; i <= nSteps; ++i) {
    const ClFingerPose oPose =
        ClFingerMotion::At(m_oDescription, std::min(dUntil, dFrom + i * cdUnrollSeconds));
    if (oPose.nDown == 0) continue;
    const ClStrip oStrip = StripAt(oPose);
    dLeft = std::min(dLeft, oStrip.dLow - oStrip.dHalf);
    dRight = std::max(dRight, oStrip.dHigh + oStrip.dHalf);
    dWidest = std::max(dWidest, oStrip.dHalf);
    oFlat.dPressure = std::max(oFlat.dPressure, oPose.dPressure);
  }
  if (dWidest == 0.0) return;
  oFlat.nDown = ClFingerMotion::nSteps;
  oFlat.dXMm = m_oDescription.dXMm;
  oFlat.dYMm = m_oDescription.dYMm;
  oFlat.dAngle = m_oDescription.dAngle;
  DrawSkin(oFlat, {false, dLeft + dWidest, dRight - dWidest, dWidest}, oMap);
}

ClFingerContent::ClStrip ClFingerContent::StripAt(const ClFingerPose& oPose) const {
  if (m_oDescription.oRoll.dWidthMm == 0.0) return {};
  // The finger is like a cylinder pressed on a plane: the strip's width grows with the root of the force.
  const double dPressure = std::max(0.06, ClFingerMotion::PressureOf(oPose));
  const double dMiddle = oPose.dStripMm / cdPixelMm;
  return {false, dMiddle, dMiddle,
          0.5 * m_oDescription.oRoll.dWidthMm / cdPixelMm * std::sqrt(dPressure / cdOrdinaryPressure)};
}

void ClFingerContent::DrawSkin(const ClFingerPose& oPose, const ClStrip& oStrip, ClPlatenMap& oMap) const {
  const ClPress oPress(*m_pPrint, ClFingerMotion::PressureOf(oPose), m_oDescription.dHalo);
  const ClDryness oDry(m_oDescription.oPrint.nSeed, m_oDescription.dDryness);
  const TpPlane<uint8_t>& oRidge = m_pPrint->oRidge;
  const double dTurn = oPose.dAngle * cdDegree;
  const double dCos = Portable::Cos(dTurn), dSin = Portable::Sin(dTurn);
  const double dMidX = MmToPixel(oPose.dXMm), dMidY = MmToPixel(oPose.dYMm);
  const double dHalfX = 0.5 * (oRidge.Width() * std::fabs(dCos) + oRidge.Height() * std::fabs(dSin)) + 1.0;
  const double dHalfY = 0.5 * (oRidge.Width() * std::fabs(dSin) + oRidge.Height() * std::fabs(dCos)) + 1.0;
  const int nLeft = std::max(0, static_cast<int>(std::floor(dMidX - dHalfX)));
  const int nRight = std::min(cnPictureSide, static_cast<int>(std::ceil(dMidX + dHalfX)) + 1);
  const int nTop = std::max(0, static_cast<int>(std::floor(dMidY - dHalfY)));
  const int nEnd = std::min(cnPictureSide, static_cast<int>(std::ceil(dMidY + dHalfY)) + 1);
  const ClRowDrawer oDrawer{*m_pPrint, oPress, oDry, ToFixed(dCos), ToFixed(dSin)};
  // Directions count counter-clockwise while rows run down.
  const double dAcrossX = Portable::Cos(m_oDescription.oRoll.dTilt * cdDegree);
  const double dAcrossY = -Portable::Sin(m_oDescription.oRoll.dTilt * cdDegree);
  ClStripPress oStripPress{static_cast<float>(oStrip.dLow), static_cast<float>(oStrip.dHigh),
                           ClStripPress::cfFall / static_cast<float>(std::max(1.0, oStrip.dHalf)), 0.0f,
                           static_cast<float>(dCos * dAcrossX + dSin * dAcrossY)};
  for (int y = nTop; y < nEnd; ++y) {
    // This turns the other way, from the platen back into the print, with y running down.
    const double dX = (nLeft - dMidX) * dCos - (y - dMidY) * dSin + 0.5 * (oRidge.Width() - 1);
    const double dY = (nLeft - dMidX) * dSin + (y - dMidY) * dCos + 0.5 * (oRidge.Height() - 1);
    oStripPress.fStart = static_cast<float>((dX - 0.5 * (oRidge.Width() - 1)) * dAcrossX +
                                            (dY - 0.5 * (oRidge.Height() - 1)) * dAcrossY);
    oDrawer.Draw(ToFixed(dX), ToFixed(dY), nRight - nLeft, oStrip.bWhole ? nullptr : &oStripPress,
                 oMap.oContact.Row(y) + nLeft, oMap.oCover.Row(y) + nLeft);
  }
}

}  // namespace Simulator
