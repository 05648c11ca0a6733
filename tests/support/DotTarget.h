// Pictures of the dot target as a sensor of 3840 by 2720 pixels sees it, with the positions of all its dots.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "MXTools/FpImage.h"
#include "MXTools/Vector.h"
#include "portable/Math.h"

/// 8 by 8 dots, 10 mm apart.
struct ClDotTarget {
  static constexpr int cnWidth = 3840;
  static constexpr int cnHeight = 2720;

  double dRadiusMm = 1.6;
  double dDegrees = 0;
  ClVector vShift;  ///< pixels
  int nDust = 0;
  int nNoise = 0;    ///< half the width of a triangular distribution, grey levels
  double dFall = 0;  ///< share of the light that is lost at the corners
  /// Whole dots beside those of the grid, in mm from the target's middle.
  std::vector<ClVector> aStrays;

  /// Where the sensor shows a position of the target, in mm from its middle.
  ClVector ToSensor(const ClVector& vMm) const {
    const double dTurn = dDegrees * Portable::cdPi / 180;
    const double dU = (vMm.x * std::cos(dTurn) - vMm.y * std::sin(dTurn)) / 40;
    const double dV = (vMm.x * std::sin(dTurn) + vMm.y * std::cos(dTurn)) / 40;
    constexpr double cdInches = 40 / 25.4;
    return ClVector(0.5 * (cnWidth - 1) + 1052 * dU * cdInches, 0.5 * (cnHeight - 1) + 768 * dV * cdInches) +
           vShift;
  }

  /// Dot n of the grid, column after column.
  static ClVector Place(int n) { return {10 * (n / 8 - 3.5), 10 * (n % 8 - 3.5)}; }

  std::vector<ClVector> Truth() const {
    std::vector<ClVector> aPlaces;
    for (int n = 0; n < 64; ++n) aPlaces.push_back(ToSensor(Place(n)));
    return aPlaces;
  }

  void Draw(ClImage& oImage) const {
    oImage.NewWithType(ClImage::eUint8, cnWidth, cnHeight, 1, 41417, 30236, true);
    std::vector<float> aDark(static_cast<size_t>(cnWidth) * cnHeight, 0.0F);
    for (int n = 0; n < 64; ++n) AddDot(aDark, Place(n));
    for (const ClVector& v : aStrays) AddDot(aDark, v);
    std::mt19937 oRandom(1001);
    for (int n = 0; n < nDust; ++n) {
      const ClVector v(Between(oRandom, 0, cnWidth), Between(oRandom, 0, cnHeight));
      AddDisc(aDark, v, Between(oRandom, 1.5, 6), 0.6F);
    }
    uint32_t nNoiseState = 2654435762u;
    for (int y = 0; y < cnHeight; ++y) {
      const double dV = 2.0 * y / cnHeight - 1;
      for (int x = 0; x < cnWidth; ++x) {
        const double dU = 2.0 * x / cnWidth - 1;
        const float fLight = static_cast<float>(210 * (1 - dFall * (dU * dU + dV * dV) / 2));
        const float fClean =
            fLight * (1 - 0.75F * aDark[static_cast<size_t>(y) * cnWidth + static_cast<size_t>(x)]);
        nNoiseState = nNoiseState * 1664525u + 1013904223u;
        const int nDrawn = static_cast<int>((nNoiseState >> 8) % 256 + (nNoiseState >> 20) % 256) - 255;
        const float fNoisy = fClean + static_cast<float>(nDrawn * nNoise) / 255 + 0.5F;
        oImage.Row<uint8_t>(y)[x] = static_cast<uint8_t>(std::min(std::max(fNoisy, 0.0F), 255.0F));
      }
    }
  }

 private:
  static double Between(std::mt19937& rRandom, double dFrom, double dTo) {
    return dFrom + (dTo - dFrom) * (static_cast<double>(rRandom()) / 4294967296.0);
  }

  static void Darken(std::vector<float>& aDark, int x, int y, double dBy) {
    if (x < 0 || y < 0 || x >= cnWidth || y >= cnHeight || dBy <= 0) return;
    float& f = aDark[static_cast<size_t>(y) * cnWidth + static_cast<size_t>(x)];
    f = std::max(f, static_cast<float>(std::min(dBy, 1.0)));
  }

  /// The dot by the local scale and turn of the optics round its centre, soft over one pixel at its edge.
  void AddDot(std::vector<float>& aDark, const ClVector& vMm) const {
    const ClVector vCentre = ToSensor(vMm);
    const ClVector vX = (ToSensor(vMm + ClVector(0.01, 0)) - vCentre) * 100;
    const ClVector vY = (ToSensor(vMm + ClVector(0, 0.01)) - vCentre) * 100;
    const double dArea = vX.x * vY.y - vX.y * vY.x;
    const int nReach = static_cast<int>(dRadiusMm * 45) + 3;
    for (int y = static_cast<int>(vCentre.y) - nReach; y <= vCentre.y + nReach; ++y) {
      for (int x = static_cast<int>(vCentre.x) - nReach; x <= vCentre.x + nReach; ++x) {
        const ClVector v = ClVector(x, y) - vCentre;
        const ClVector vOnTarget((v.x * vY.y - v.y * vY.x) / dArea, (v.y * vX.x - v.x * vX.y) / dArea);
        Darken(aDark, x, y, 0.5 + (dRadiusMm - vOnTarget.Length()) * 35);
      }
    }
  }

  static void AddDisc(std::vector<float>& aDark, const ClVector& vCentre, double dRadius, float fBy) {
    const int nReach = static_cast<int>(dRadius) + 1;
    for (int y = -nReach; y <= nReach; ++y) {
      for (int x = -nReach; x <= nReach; ++x) {
        if (x * x + y * y > dRadius * dRadius) continue;
        Darken(aDark, static_cast<int>(vCentre.x) + x, static_cast<int>(vCentre.y) + y,
               static_cast<double>(fBy));
      }
    }
  }
};
