// How the weights of the warp come about.
#include "MXCalibrate/InterpolationBicubicQuantized.h"

#include <cmath>

#include "MXImageProcessing/IpFilterMid.h"
#include "MXTools/FpImage.h"
#include "portable/Math.h"

namespace {

/// Five source pixels, so that the outermost weight's box lies inside.
constexpr int cnSize = 5 * ClInterpolationBicubicTable::cnSteps;
constexpr int cnCentre = cnSize / 2;

void DrawKernel(double dC, double dD, double dE, ClImage& oKernel) {
  oKernel.NewWithType(ClImage::eInt32, cnSize, cnSize, 1, 0, 0, true);
  for (int nY = 0; nY < cnSize; ++nY) {
    const double dV = (nY - cnCentre) / static_cast<double>(ClInterpolationBicubicTable::cnSteps) * dE;
    int32_t* pRow = oKernel.Row<int32_t>(nY);
    for (int nX = 0; nX < cnSize; ++nX) {
      const double dU = (nX - cnCentre) / static_cast<double>(ClInterpolationBicubicTable::cnSteps);
      const double dQ = dV * dV + dU * dU;
      pRow[nX] = static_cast<int32_t>(Portable::Exp(-dQ / (2 * dD * dD)) * (2 * dC * dC - dQ) /
                                      (dD * dD * dD * dD) * 1024);
    }
  }
}

}  // namespace

ClInterpolationBicubicTable::ClInterpolationBicubicTable(double dC, double dD, double dE)
    : m_aWeights(cnSteps * cnSteps) {
  ClImage oKernel;
  ClImage oBoxed;
  DrawKernel(dC, dD, dE, oKernel);
  ClIpFilterMid().ApplyParam(oKernel, oBoxed, 31);
  for (int nPhase = 0; nPhase < cnSteps * cnSteps; ++nPhase) {
    const int nTop = cnCentre - cnSteps - nPhase / cnSteps;
    const int nLeft = cnCentre - cnSteps - nPhase % cnSteps;
    double dSum = 0;
    for (int nR = 0; nR < 4; ++nR) {
      const int32_t* pRow = oBoxed.Row<int32_t>(nTop + nR * cnSteps);
      for (int nK = 0; nK < 4; ++nK) dSum += pRow[nLeft + nK * cnSteps];
    }
    Weights& aWeights = m_aWeights[static_cast<unsigned int>(nPhase)];
    for (int nR = 0; nR < 4; ++nR) {
      const int32_t* pRow = oBoxed.Row<int32_t>(nTop + nR * cnSteps);
      for (int nK = 0; nK < 4; ++nK) {
        const double dSample = pRow[nLeft + nK * cnSteps];
        aWeights[nR][nK] = static_cast<int16_t>(dSample * 1024.0 / dSum);
      }
    }
  }
}
