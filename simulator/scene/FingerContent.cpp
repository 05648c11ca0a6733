// A finger on the platen: laid down, pressed on, rolled, lifted.
#include "scene/FingerContent.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "portable/Math.h"
#include "scene/PrintCache.h"
#include "scene/SmoothNoise.h"

namespace Simulator {
namespace {

// Where the pressed-on area ends under ordinary pressure, on the scale of ClPrint::oDepth.
constexpr double cdOrdinaryPressure = 0.6;
constexpr double cdOrdinaryEdge = 61.0;
// Light from a film of water, relative to that of a ridge.
constexpr double cdHaloLight = 0.3;
// Steps in which a roll is followed when all of it is to be drawn.
constexpr double cdUnrollSeconds = 1.0 / 240.0;
// Room round a print for the largest stretch, in pixels.
constexpr double cdMostStretch = 110.0;
// Pixels over which a stretched print is taken as straight.
constexpr int cnStretchPart = 16;

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
      // Dryness lowers heights, some of them below 0, and sweat raises them.
      const double dContact = 128.0 + (i - cnSunken - 128.0 + dBias) * oPrint.dSlope;
      aContact[i] = static_cast<uint8_t>(std::clamp(dContact, 0.0, 255.0));
    }
    const double dEdge = EdgeOf(dPressure);
    for (int i = 0; i < 256; ++i) {
      const double dIn = std::clamp((i - dEdge + 14.0) / 28.0, 0.0, 1.0);
      aCover[i] = static_cast<uint8_t>(i == 0 ? 0.0 : 255.0 * dIn * dIn * (3.0 - 2.0 * dIn));
      const double dWet = std::clamp(i / std::max(1.0, dEdge), 0.0, 1.0);
      aHalo[i] = static_cast<uint8_t>(255.0 * cdHaloLight * dHalo * dWet);
    }
  }

  /// The depth at which the skin is half on.
  static double EdgeOf(double dPressure) { return cdOrdinaryEdge + (cdOrdinaryPressure - dPressure) * 150.0; }

  static constexpr int cnSunken = 128;
  static constexpr int cnHeights = 256 + cnSunken + 128;
  uint8_t aContact[cnHeights];
  uint8_t aCover[256];
  uint8_t aHalo[256];
};

/// What dryness and sweat take from the height of the skin: dry skin touches in patches, sweat fills
/// valleys in larger ones. A fixed texture, repeated.
class ClMoisture {
 public:
  ClMoisture(uint64_t nSeed, double dDryness, double dSweat) : m_aSink(64 * 64) {
    ClRandom oRandom(Mix(nSeed, 0x447279));
    for (int8_t& nSink : m_aSink) {
      const double d = oRandom.Uniform();
      nSink = static_cast<int8_t>(std::min(127.0, dDryness * 190.0 * d * d * d));
    }
    if (dSweat > 0.0) AddSweat(nSeed, dSweat);
  }
  int At(int nX, int nY) const {
    const int nDry = m_aSink[static_cast<size_t>((nY >> 1) & 63) * 64 + static_cast<size_t>((nX >> 1) & 63)];
    return m_aWet.empty() ? nDry
                          : nDry - m_aWet[static_cast<size_t>((nY >> 1) & 255) * 256 +
                                          static_cast<size_t>((nX >> 1) & 255)];
  }

 private:
  void AddSweat(uint64_t nSeed, double dSweat) {
    const ClSmoothNoise oBroad(Mix(nSeed, 0x576574), 24.0), oFine(Mix(nSeed, 0x57657432), 5.0);
    m_aWet.resize(256 * 256);
    for (int y = 0; y < 256; ++y)
      for (int x = 0; x < 256; ++x)
        m_aWet[static_cast<size_t>(y) * 256 + static_cast<size_t>(x)] = static_cast<int8_t>(
            std::clamp(dSweat * (55.0 + 60.0 * oBroad.At(x, y) + 25.0 * oFine.At(x, y)), 0.0, 127.0));
  }

  std::vector<int8_t> m_aSink;
  std::vector<int8_t> m_aWet;
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
  const ClMoisture& oMoisture;

  void Draw(int nX, int nY, int nStepX, int nStepY, int nCount, const ClStripPress* pStrip, uint8_t* pContact,
            uint8_t* pCover) const {
    for (int i = 0; i < nCount; ++i, nX += nStepX, nY += nStepY) {
      const int nStrip = pStrip ? pStrip->DepthAt(i) : 255;
      if (nStrip == 0) continue;
      const int nX256 = (nX + 128) >> 8, nY256 = (nY + 128) >> 8;
      const int nDepth = Sample(oPrint.oDepth, nX256, nY256) * nStrip / 255, nCover = oPress.aCover[nDepth];
      pContact[i] = std::max(pContact[i], oPress.aHalo[nDepth]);
      if (nCover == 0) continue;
      const int nHeight = Sample(oPrint.oRidge, nX256, nY256) - oMoisture.At(nX256 >> 8, nY256 >> 8);
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

ClSkinMap ClFingerContent::MapOf(const ClFingerPose& oPose) const {
  return ClSkinMap(oPose, m_oDescription.oStretch, m_pPrint->oRidge.Width(), m_pPrint->oRidge.Height());
}

void ClFingerContent::DrawSkin(const ClFingerPose& oPose, const ClStrip& oStrip, ClPlatenMap& oMap) const {
  const ClPress oPress(*m_pPrint, ClFingerMotion::PressureOf(oPose), m_oDescription.dHalo);
  const ClMoisture oMoisture(m_oDescription.oPrint.nSeed, m_oDescription.dDryness, m_oDescription.dSweat);
  const TpPlane<uint8_t>& oRidge = m_pPrint->oRidge;
  const ClSkinMap oSkin = MapOf(oPose);
  const double dCos = oSkin.Cos(), dSin = oSkin.Sin();
  const double dSpare = 1.0 + (oSkin.Stretched() ? cdMostStretch : 0.0);
  const double dHalfX = 0.5 * (oRidge.Width() * std::fabs(dCos) + oRidge.Height() * std::fabs(dSin)) + dSpare;
  const double dHalfY = 0.5 * (oRidge.Width() * std::fabs(dSin) + oRidge.Height() * std::fabs(dCos)) + dSpare;
  const int nLeft = std::max(0, static_cast<int>(std::floor(oSkin.MiddleX() - dHalfX)));
  const int nRight = std::min(cnPictureSide, static_cast<int>(std::ceil(oSkin.MiddleX() + dHalfX)) + 1);
  const int nTop = std::max(0, static_cast<int>(std::floor(oSkin.MiddleY() - dHalfY)));
  const int nEnd = std::min(cnPictureSide, static_cast<int>(std::ceil(oSkin.MiddleY() + dHalfY)) + 1);
  const ClRowDrawer oDrawer{*m_pPrint, oPress, oMoisture};
  // Directions count counter-clockwise while rows run down.
  const double dAcrossX = Portable::Cos(m_oDescription.oRoll.dTilt * cdDegree);
  const double dAcrossY = -Portable::Sin(m_oDescription.oRoll.dTilt * cdDegree);
  ClStripPress oStripPress{static_cast<float>(oStrip.dLow), static_cast<float>(oStrip.dHigh),
                           ClStripPress::cfFall / static_cast<float>(std::max(1.0, oStrip.dHalf)), 0.0f,
                           0.0f};
  const int nPart = oSkin.Stretched() ? cnStretchPart : std::max(1, nRight - nLeft);
  for (int y = nTop; y < nEnd; ++y) {
    double dX, dY;
    oSkin.ToPrint(nLeft, y, dX, dY);
    for (int x = nLeft; x < nRight; x += nPart) {
      double dStepX = dCos, dStepY = dSin, dNextX = dX, dNextY = dY;
      if (oSkin.Stretched()) {
        oSkin.ToPrint(x + nPart, y, dNextX, dNextY);
        dStepX = (dNextX - dX) / nPart;
        dStepY = (dNextY - dY) / nPart;
      }
      oStripPress.fStart = static_cast<float>((dX - 0.5 * (oRidge.Width() - 1)) * dAcrossX +
                                              (dY - 0.5 * (oRidge.Height() - 1)) * dAcrossY);
      oStripPress.fStep = static_cast<float>(dStepX * dAcrossX + dStepY * dAcrossY);
      oDrawer.Draw(ToFixed(dX), ToFixed(dY), ToFixed(dStepX), ToFixed(dStepY), std::min(nPart, nRight - x),
                   oStrip.bWhole ? nullptr : &oStripPress, oMap.oContact.Row(y) + x, oMap.oCover.Row(y) + x);
      dX = dNextX;
      dY = dNextY;
    }
  }
}

const ClPrintTruth& ClFingerContent::Truth() const {
  std::call_once(m_oMeasured, [this] {
    m_pTruth = std::make_unique<const ClPrintTruth>(MeasurePrint(m_oDescription.oPrint));
  });
  return *m_pTruth;
}

bool ClFingerContent::Touches(const ClFingerPose& oPose, const ClStrip& oStrip, double dPrintX,
                              double dPrintY) const {
  const int nX = static_cast<int>(std::floor(dPrintX + 0.5)),
            nY = static_cast<int>(std::floor(dPrintY + 0.5));
  const TpPlane<uint8_t>& oDepth = m_pPrint->oDepth;
  if (nX < 0 || nY < 0 || nX >= oDepth.Width() || nY >= oDepth.Height()) return false;
  int nDepth = oDepth.At(nX, nY);
  if (!oStrip.bWhole) {
    const double dTilt = m_oDescription.oRoll.dTilt * cdDegree;
    const double dAcross = (dPrintX - 0.5 * (oDepth.Width() - 1)) * Portable::Cos(dTilt) -
                           (dPrintY - 0.5 * (oDepth.Height() - 1)) * Portable::Sin(dTilt);
    const ClStripPress oPress{static_cast<float>(oStrip.dLow), static_cast<float>(oStrip.dHigh),
                              ClStripPress::cfFall / static_cast<float>(std::max(1.0, oStrip.dHalf)),
                              static_cast<float>(dAcross), 0.0f};
    nDepth = nDepth * oPress.DepthAt(0) / 255;
  }
  return nDepth > std::max(0.0, ClPress::EdgeOf(ClFingerMotion::PressureOf(oPose)));
}

void ClFingerContent::AddMinutiae(double dSeconds, std::vector<ClMinutia>& aMinutiae) const {
  const ClFingerPose oPose = ClFingerMotion::At(m_oDescription, dSeconds);
  if (oPose.nDown == 0) return;
  const ClSkinMap oSkin = MapOf(oPose);
  const ClStrip oStrip = StripAt(oPose);
  for (const ClPrintTruth::ClPoint& o : Truth().aPoints) {
    const double dX = o.dX / cdPixelMm + 0.5 * (m_pPrint->oRidge.Width() - 1);
    const double dY = 0.5 * (m_pPrint->oRidge.Height() - 1) - o.dY / cdPixelMm;
    ClMinutia oMinutia{0,   o.ePoint, Touches(oPose, oStrip, dX, dY),
                       0.0, 0.0,      oSkin.TurnedDirection(dX, dY, o.dDirection)};
    oSkin.ToPlaten(dX, dY, oMinutia.dX, oMinutia.dY);
    aMinutiae.push_back(oMinutia);
  }
}

void ClFingerContent::AddRidges(double dSeconds, TpPlane<ClRidgeHere>& oRidges) const {
  const ClFingerPose oPose = ClFingerMotion::At(m_oDescription, dSeconds);
  if (oPose.nDown == 0 || Truth().oRidges.Empty()) return;
  const ClSkinMap oSkin = MapOf(oPose);
  const ClStrip oStrip = StripAt(oPose);
  for (int y = 0; y < oRidges.Height(); ++y) {
    for (int x = 0; x < oRidges.Width(); ++x) {
      double dX, dY;
      oSkin.ToPrint((x + 0.5) * cnRidgeBlock - 0.5, (y + 0.5) * cnRidgeBlock - 0.5, dX, dY);
      const ClPrintTruth::ClRidge oRidge =
          Truth().RidgeAt((dX - 0.5 * (m_pPrint->oRidge.Width() - 1)) * cdPixelMm,
                          (0.5 * (m_pPrint->oRidge.Height() - 1) - dY) * cdPixelMm);
      if (oRidge.fPeriodMm == 0.0f || !Touches(oPose, oStrip, dX, dY)) continue;
      oRidges.At(x, y) = {static_cast<float>(oSkin.TurnedDirection(dX, dY, oRidge.fDirection)),
                          oRidge.fPeriodMm / static_cast<float>(cdPixelMm)};
    }
  }
}

}  // namespace Simulator
