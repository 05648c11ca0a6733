// What crosses the ridges of a finger: creases, scars and cuts; and its pores.
#include "scene/SkinMarks.h"

#include <algorithm>
#include <cmath>

#include "portable/Math.h"
#include "scene/Platen.h"
#include "scene/SmoothNoise.h"

namespace Simulator {
namespace {

/// How many creases a finger has of which the scene says nothing.
int CreasesOf(const ClPrintDescription& oDescription) {
  if (oDescription.nCreases >= 0) return oDescription.nCreases;
  const uint64_t nDraw = Mix(oDescription.nSeed, 0x437265617365) >> 33;
  switch (oDescription.eSkin) {
    case eSkinChild:
      return 0;
    case eSkinElderly:
      return 14 + static_cast<int>(nDraw % 11);
    default:
      return std::max(0, static_cast<int>(nDraw % 6) - 2);
  }
}

}  // namespace

void ClSkinMarks::ClMark::At(double dPart, double& dX, double& dY) const {
  const double dA = (1.0 - dPart) * (1.0 - dPart), dB = 2.0 * dPart * (1.0 - dPart), dC = dPart * dPart;
  dX = dA * adX[0] + dB * adX[1] + dC * adX[2];
  dY = dA * adY[0] + dB * adY[1] + dC * adY[2];
}

double ClSkinMarks::ClMark::Length() const {
  return Portable::Hypot(adX[2] - adX[0], adY[2] - adY[0]);
}

ClSkinMarks::ClSkinMarks(const ClPrintDescription& oDescription) {
  ClRandom oRandom(Mix(oDescription.nSeed, 0x4D61726B));
  // The creases of old skin run in two directions, most of them across the finger.
  const double adTurn[2] = {oRandom.Range(-0.5, 0.5), oRandom.Range(0.5, 2.2)};
  for (int i = 0; i < CreasesOf(oDescription); ++i)
    Add(Mix(oDescription.nSeed, 1000u + static_cast<unsigned>(i)), eCrease,
        adTurn[oRandom.Uniform() < 0.7 ? 0 : 1] + oRandom.Range(-0.3, 0.3), oDescription);
  for (int i = 0; i < oDescription.nScars; ++i)
    Add(Mix(oDescription.nSeed, 2000u + static_cast<unsigned>(i)), eScar, oRandom.Range(0.0, Portable::cdPi),
        oDescription);
  for (int i = 0; i < oDescription.nCuts; ++i)
    Add(Mix(oDescription.nSeed, 3000u + static_cast<unsigned>(i)), eCut, oRandom.Range(0.0, Portable::cdPi),
        oDescription);
}

void ClSkinMarks::Add(uint64_t nSeed, EKind eKind, double dTurn, const ClPrintDescription& oDescription) {
  ClRandom oRandom(nSeed);
  const double dScale = oDescription.dHeightMm / 23.0;
  const double dX = oDescription.dWidthMm * oRandom.Range(-0.36, 0.36),
               dY = oDescription.dHeightMm * oRandom.Range(-0.4, 0.36);
  const double dHalf =
      0.5 * dScale * oRandom.Range(eKind == eCrease ? 2.5 : 4.0, eKind == eCrease ? 9.0 : 8.0);
  const double dAlongX = dHalf * Portable::Cos(dTurn), dAlongY = dHalf * Portable::Sin(dTurn);
  const double dBend = eKind == eCut ? 0.04 : 0.22, dAside = oRandom.Range(-dBend, dBend);
  ClMark o{eKind,
           {dX - dAlongX, dX - dAside * dAlongY, dX + dAlongX},
           {dY - dAlongY, dY + dAside * dAlongX, dY + dAlongY},
           0.0,
           0.0,
           nSeed};
  switch (eKind) {
    case eCrease:
      o.dHalfWidth = oRandom.Range(0.035, 0.085);
      o.dStrength = oRandom.Range(90.0, 220.0);
      break;
    case eScar:
      o.dHalfWidth = oRandom.Range(0.16, 0.3);
      o.dStrength = oRandom.Range(130.0, 200.0);
      break;
    case eCut:
      o.dHalfWidth = oRandom.Range(0.08, 0.16);
      o.dStrength = 255.0;
      break;
  }
  m_aMarks.push_back(o);
}

bool ClSkinMarks::InScar(double dX, double dY) const {
  for (const ClMark& o : m_aMarks) {
    if (o.eKind != eScar) continue;
    const int nSteps = std::max(2, static_cast<int>(o.Length() / (0.6 * o.dHalfWidth)));
    for (int i = 0; i <= nSteps; ++i) {
      double dAtX, dAtY;
      o.At(static_cast<double>(i) / nSteps, dAtX, dAtY);
      dAtX -= dX;
      dAtY -= dY;
      if (dAtX * dAtX + dAtY * dAtY < o.dHalfWidth * o.dHalfWidth) return true;
    }
  }
  return false;
}

void ClSkinMarks::Draw(const ClMark& oMark, TpPlane<uint8_t>& oDepth) {
  // Dabs along the line, of which the deepest counts. It becomes narrow towards its ends and is nowhere even.
  const ClSmoothNoise oUneven(oMark.nSeed, 7.0);
  const int nSteps = std::max(2, static_cast<int>(oMark.Length() / cdPixelMm * 1.25));
  for (int i = 0; i <= nSteps; ++i) {
    const double dPart = static_cast<double>(i) / nSteps;
    double dX, dY;
    oMark.At(dPart, dX, dY);
    dX = dX / cdPixelMm + 0.5 * (oDepth.Width() - 1);
    dY = 0.5 * (oDepth.Height() - 1) - dY / cdPixelMm;
    const double dTaper = std::min(1.0, 6.0 * std::min(dPart, 1.0 - dPart));
    const double dRough = oMark.eKind == eCut ? 0.15 : 0.45;
    const double dRadius =
        std::max(0.45, oMark.dHalfWidth / cdPixelMm * dTaper * (1.0 + dRough * oUneven.At(i, 0.0)));
    const double dStrength =
        oMark.dStrength * (oMark.eKind == eCut ? 1.0 : 0.55 + 0.45 * dTaper + 0.25 * oUneven.At(i, 40.0));
    // A crease fades out to its sides, a wound has edges.
    const double dEdge = oMark.eKind == eCrease ? 0.0 : 0.7;
    const int nReach = static_cast<int>(std::ceil(2.5 * dRadius));
    const int nX = static_cast<int>(std::floor(dX + 0.5)), nY = static_cast<int>(std::floor(dY + 0.5));
    for (int y = std::max(0, nY - nReach); y <= std::min(oDepth.Height() - 1, nY + nReach); ++y) {
      for (int x = std::max(0, nX - nReach); x <= std::min(oDepth.Width() - 1, nX + nReach); ++x) {
        const double dAway = std::sqrt((x - dX) * (x - dX) + (y - dY) * (y - dY)) / dRadius;
        const double dOut = std::max(0.0, dAway - dEdge) / (1.0 - dEdge * 0.5);
        const double dValue = std::clamp(dStrength * Portable::Exp(-0.5 * dOut * dOut), 0.0, 255.0);
        oDepth.At(x, y) = std::max(oDepth.At(x, y), static_cast<uint8_t>(dValue));
      }
    }
  }
}

void ClSkinMarks::Engrave(TpPlane<uint8_t>& oRidge) const {
  if (m_aMarks.empty()) return;
  TpPlane<uint8_t> oDepth(oRidge.Width(), oRidge.Height());
  for (const ClMark& o : m_aMarks) Draw(o, oDepth);
  for (size_t i = 0; i < oRidge.Count(); ++i)
    oRidge.Data()[i] = static_cast<uint8_t>(std::max(0, oRidge.Data()[i] - oDepth.Data()[i]));
}

void ClSkinMarks::AddPores(uint64_t nSeed, double dPores, TpPlane<uint8_t>& oRidge) {
  constexpr int nCell = 9;
  ClRandom oRandom(Mix(nSeed, 3));
  for (int nTop = 0; nTop + nCell < oRidge.Height(); nTop += nCell) {
    for (int nLeft = 0; nLeft + nCell < oRidge.Width(); nLeft += nCell) {
      if (oRandom.Uniform() >= dPores) continue;
      const int nDropX = static_cast<int>(oRandom.Range(0.0, nCell));
      int nBestX = nLeft + nDropX, nBestY = nTop;
      for (int y = nTop; y < nTop + nCell; ++y)
        if (oRidge.At(nBestX, y) > oRidge.At(nBestX, nBestY)) nBestY = y;
      if (oRidge.At(nBestX, nBestY) < 200) continue;
      // Most pores are small; a few are open to the valley at one side.
      const double dSize = oRandom.Uniform(), dRadius = 0.5 + 0.35 * dSize + 0.65 * dSize * dSize * dSize;
      const double dSquare = 1.0 / (dRadius * dRadius);
      const int nReach = static_cast<int>(3.0 * dRadius);
      for (int y = std::max(0, nBestY - nReach); y <= std::min(oRidge.Height() - 1, nBestY + nReach); ++y) {
        for (int x = std::max(0, nBestX - nReach); x <= std::min(oRidge.Width() - 1, nBestX + nReach); ++x) {
          const double dAway = (x - nBestX) * (x - nBestX) + (y - nBestY) * (y - nBestY);
          const double dCut = 180.0 * Portable::Exp(-0.5 * dAway * dSquare);
          oRidge.At(x, y) = static_cast<uint8_t>(std::max(0.0, oRidge.At(x, y) - dCut));
        }
      }
    }
  }
}

}  // namespace Simulator
