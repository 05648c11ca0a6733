// Every processor on seeded images of every element type that it takes; a digest for each.
#include <random>
#include <string>

#include "AllProcessors.h"
#include "Digest.h"
#include "DotTarget.h"
#include "MXImageProcessing/Histogram.h"
#include "MXMath/RegressionLine.h"
#include "MXMath/ThinPlateSplinesBOOST.h"
#include "MXTools/Exception.h"
#include "MXTools/FpImage.h"
#include "MXTools/ImageTypeDispatch.h"
#include "portable/Math.h"

namespace {

using Types_t = std::initializer_list<unsigned char>;
constexpr Types_t g_aBytes = {ClImage::eUint8, ClImage::eInt8};
constexpr Types_t g_aSmall = {ClImage::eUint8, ClImage::eInt8, ClImage::eUint16, ClImage::eInt16};
constexpr Types_t g_aWhole = {ClImage::eUint8, ClImage::eInt8,   ClImage::eUint16,
                              ClImage::eInt16, ClImage::eUint32, ClImage::eInt32};
constexpr Types_t g_aAll = {ClImage::eUint8,  ClImage::eInt8,  ClImage::eUint16,  ClImage::eInt16,
                            ClImage::eUint32, ClImage::eInt32, ClImage::eFloat32, ClImage::eDouble64};

/// Rings with noise, over the whole range of the type; fractions for floating types.
void Draw(ClImage& oImage, unsigned char nType, int nWidth, int nHeight, int nPlanes, unsigned int nSeed) {
  oImage.NewWithType(nType, nWidth, nHeight, nPlanes, 19685, 9842, true);
  std::mt19937 oRandom(nSeed);
  DispatchElementType(nType, 0, [&](auto oElement) {
    using T = typename decltype(oElement)::Type;
    for (int y = 0; y < nHeight; ++y) {
      for (int x = 0; x < nWidth * nPlanes; ++x) {
        const int nX = x / nPlanes - nWidth / 2, nY = y - nHeight / 3;
        const uint32_t nRings = static_cast<uint32_t>(nX * nX + nY * nY) << 20;
        const uint32_t nValue = (nRings >> 1) + (static_cast<uint32_t>(oRandom()) >> 2);
        if constexpr (std::is_floating_point_v<T>)
          oImage.Row<T>(y)[x] = static_cast<T>(static_cast<int32_t>(nValue)) / T{12345.5};
        else
          oImage.Row<T>(y)[x] = static_cast<T>(nValue >> (32 - 8 * sizeof(T)));
      }
    }
    return 0L;
  });
}

void Add(ClDigest& oDigest, const ClImage& o) {
  oDigest.Add(o.DataType()).Add(o.Content()).Add(o.Width()).Add(o.Height()).Add(o.Planes());
  oDigest.Add(o.PelsX()).Add(o.PelsY()).Add(o.Black()).Add(o.White());
  if (!o.IsValid()) return;
  DispatchElementType(o.DataType(), 0, [&](auto oElement) {
    for (int y = 0; y < o.Height(); ++y)
      oDigest.Add(o.Row<typename decltype(oElement)::Type>(y), static_cast<size_t>(o.SamplesPerRow()));
    return 0L;
  });
}

/// One digest over a run for each type; fnRun gets input and output and gives the result.
template <typename TRun>
void Stage(const char* szStage, Types_t aTypes, TRun fnRun, int nWidth = 101, int nHeight = 76,
           int nPlanes = 1) {
  ClDigest oDigest;
  for (const unsigned char nType : aTypes) {
    ClImage oIn, oOut;
    Draw(oIn, nType, nWidth, nHeight, nPlanes, nType);
    long nResult;
    try {
      nResult = fnRun(oIn, oOut);
    } catch (const ClException& o) {
      std::fprintf(stderr, "%s: %s\n", szStage, o.What());
      nResult = o.Number();
    }
    if (nResult < 0) std::fprintf(stderr, "%s, type %02x: %ld\n", szStage, nType, nResult);
    oDigest.Add(static_cast<int>(nResult));
    // The output of a refused run has no meaning.
    if (nResult >= 0) Add(oDigest, oOut);
  }
  PrintStage(szStage, oDigest);
}

/// A processor of two images in every pair of types.
template <typename TProcessor>
void StagePairs(const char* szStage, Types_t aTypes, bool bMixed) {
  Stage(szStage, aTypes, [&](ClImage& oIn, ClImage& oOut) {
    ClDigest oDigest;
    long nResult = 0;
    for (const unsigned char nType : aTypes) {
      if (!bMixed && nType != oIn.DataType()) continue;
      ClImage oSecond;
      Draw(oSecond, nType, 101, 76, 1, 77);
      TProcessor oProcessor;
      nResult += oProcessor.ApplyParam(oIn, oSecond, oOut, ClImage::cnTypeDefault);
      Add(oDigest, oOut);
    }
    return nResult + static_cast<long>(oDigest.Value() & 0xFFFFFF);
  });
}

void Arithmetic() {
  StagePairs<ClIpAnd>("and", g_aWhole, false);
  StagePairs<ClIpSubtract>("subtract", g_aAll, true);
  StagePairs<ClIpMultiply>("multiply", g_aAll, true);
  StagePairs<ClIpDelta>("delta", g_aAll, true);
  Stage("invert", g_aAll, [](auto& a, auto& b) { return ClIpInvert().ApplyParam(a, b); });
  Stage("scale", g_aAll, [](auto& a, auto& b) { return ClIpScale().ApplyParam(a, b, 0.7); });
  Stage("saturate", g_aAll, [](auto& a, auto& b) { return ClIpSaturate().ApplyParam(a, b, 3.0, 90.0); });
  for (const unsigned char nType : g_aAll)
    Stage(("convert-" + std::to_string(nType)).c_str(), g_aAll,
          [nType](auto& a, auto& b) { return ClIpConvertDataType().ApplyParam(a, b, nType); });
}

void Thresholds() {
  Stage("threshold", g_aAll, [](ClImage& a, ClImage& b) {
    return ClIpBinarizeGlobal().ApplyParam(a, b, a.IsFloating() ? 0.6 : 60.0);
  });
  Stage("local-threshold", g_aBytes,
        [](auto& a, auto& b) { return ClIpBinarizeLocal2().ApplyParam(a, b, 13, 9, 4); });
  Stage("components", {ClImage::eUint8}, [](ClImage& oIn, ClImage& oOut) {
    ClImage oObjects;
    ClIpBinarizeLocal2().ApplyParam(oIn, oObjects, 13, 9, 4);
    ClIpConnectedComponent2::ComponentsArray_t aComponents;
    ClDigest oDigest;
    long nResult = ClIpConnectedComponent2().ApplyParam(oObjects, aComponents, &oIn, &oOut);
    for (unsigned int n = 0; n < aComponents.Entries(); ++n) {
      const auto& o = aComponents[n];
      for (const double d :
           {o.vCentre.x, o.vCentre.y, o.dArea, o.dEccentricity, o.dGrey, o.dAngle, o.dMu11, o.dMu02})
        oDigest.Add(d);
    }
    return nResult + static_cast<long>(oDigest.Value() & 0xFFFFFF);
  });
  ClImage oImage;
  Draw(oImage, ClImage::eUint8, 101, 76, 1, 5);
  ClHistogram oHistogram;
  oHistogram.Create(oImage);
  double dMean1, dDeviation1, dMean2, dDeviation2;
  ClDigest oDigest;
  oDigest.Add(oHistogram.TwoMeansClustering(dMean1, dDeviation1, dMean2, dDeviation2, 100u));
  for (const double d : {dMean1, dDeviation1, dMean2, dDeviation2}) oDigest.Add(d);
  oDigest.Add(oHistogram.TwoMeansClustering(true)).Add(oHistogram.GetStdDeviation(3, 250));
  oHistogram.LowPass(5);
  for (int n = 0; n < 256; ++n) oDigest.Add(oHistogram.Count(static_cast<unsigned char>(n)));
  PrintStage("histogram", oDigest);
}

template <typename TFilter>
void Filter(const char* szFilter) {
  for (const long nMode : {1L, 2L, 3L})
    Stage((szFilter + std::to_string(nMode)).c_str(), g_aAll,
          [nMode](auto& a, auto& b) { return TFilter().ClIpFilterBase::ApplyParam(a, b, 7, nMode); });
}

void Filters() {
  Filter<ClIpFilterMin>("min-");
  Filter<ClIpFilterMax>("max-");
  Filter<ClIpFilterMid>("mid-");
  Stage("mid-3", g_aAll, [](auto& a, auto& b) { return ClIpFilterMid().ApplyParam(a, b, 3); });
  for (const double dSigma : {0.5, 1.0, 1.7, 4.2})
    Stage(("gauss-" + std::to_string(dSigma)).c_str(), g_aAll,
          [dSigma](auto& a, auto& b) { return ClIpFilterGauss().ApplyParam(a, b, dSigma, 0); });
}

void Geometry() {
  Stage("cut", g_aAll, [](auto& a, auto& b) { return ClIpCut().ApplyParam(a, 5, 7, 60, 50, b); });
  Stage("flip", g_aAll, [](auto& a, auto& b) { return ClIpFlip().ApplyParam(a, b, true, true); });
  Stage("move", g_aAll, [](auto& a, auto& b) { return ClIpMoveImage().ApplyParam(a, b, 9, -4, 33.0); });
  Stage("subsample", g_aSmall, [](auto& a, auto& b) { return ClIpSubsample().ApplyParam(a, 3, 2, b, true); });
  for (const bool bSmooth : {false, true}) {
    // At a twelfth, a sixth and a quarter of a turn, fixed-point numbers fall exactly on a step; the others
    // lie between.
    for (const double dAngle : {0.5235987755982988, -1.0471975511965976, 1.5707963267948966, 0.1, 2.9})
      Stage(("rotate-" + std::to_string(dAngle) + (bSmooth ? "-smooth" : "")).c_str(), g_aBytes,
            [=](ClImage& a, ClImage& b) {
              return ClIpRotate().ApplyParam(a, b, {50, 38}, dAngle, true, bSmooth);
            });
  }
  Stage("rescale-whole", g_aBytes, [](ClImage& a, ClImage& b) {
    return ClIpRescale().ApplyParamPels(a, b, a.PelsX() / 5, a.PelsY() / 2, ClIpRescale::ModeWholeNumbered);
  });
  for (int nMode = 1; nMode <= 4; ++nMode)
    Stage(("rescale-" + std::to_string(nMode)).c_str(), g_aBytes, [nMode](ClImage& a, ClImage& b) {
      return ClIpRescale().ApplyParamSize(a, b, 140, 51, static_cast<ClIpRescale::eProcessingMode>(nMode));
    });
  Stage(
      "planes", g_aAll,
      [](ClImage& a, ClImage& b) {
        ClImage aPlanes[3];
        ClIpSplitPlanes().ApplyParam(a, &aPlanes[0], &aPlanes[1], &aPlanes[2], nullptr);
        return ClIpJoinPlanes().ApplyParam(b, &aPlanes[2], &aPlanes[0], &aPlanes[1], nullptr);
      },
      101, 76, 3);
}

void SensorTools() {
  Stage(
      "white-balance", g_aSmall, [](auto& a, auto& b) { return ClIpLocalWhiteBalance().ApplyParam(a, b); },
      120, 90);
  Stage("brightness", g_aSmall, [](ClImage& a, ClImage& b) {
    ClImage oReference;
    Draw(oReference, a.DataType(), 101, 76, 1, 9);
    return ClIpAdjustBrightness().ApplyParam(a, oReference, b, 200.0);
  });
  Stage(
      "mosaic", g_aSmall,
      [](ClImage& a, ClImage& b) {
        ClImage oRed, oBlue;
        ClIpBayerDecomposition oProcessor;
        oProcessor.m_pInImage = &a;
        oProcessor.m_pOutImageRed = &oRed;
        oProcessor.m_pOutImageGreen = &b;
        oProcessor.m_pOutImageBlue = &oBlue;
        return oProcessor.Apply();
      },
      100, 76);
  Stage("lanczos", {ClImage::eUint8},
        [](auto& a, auto& b) { return ClIpSubsampleFilter<ClFilterLanczos2>().ApplyParam(a, b, 67, 76); });
  Stage(
      "mask", {ClImage::eUint8}, [](auto& a, auto& b) { return ClIpVT40R4Mask().ApplyParam(a, b, 250, 1.0); },
      800, 800);
}

void FillWarp(ClCalibrateGeometricData& oData) {
  oData.m_nSourceWidth = 320;
  oData.m_nSourceHeight = 300;
  oData.m_nTargetWidth = 200;
  oData.m_nTargetHeight = 180;
  oData.m_nPlanes = 1;
  for (int n = 0; n < 64; ++n) {
    const double dX = 10 + 25 * (n / 8), dY = 8 + 23 * (n % 8);
    oData.m_aTarget.Add(ClVector(dX, dY));
    oData.m_aActual[0].Add(
        ClVector(1.5 * dX + 0.05 * dY + 0.0003 * dX * dY, 1.55 * dY - 0.03 * dX + 0.0002 * dX * dX));
  }
}

template <template <class> class TWarp, typename TTable>
void Warp(const char* szStage) {
  Stage(
      szStage, {ClImage::eUint8},
      [](ClImage& a, ClImage& b) {
        ClCalibrateGeometricData oData;
        FillWarp(oData);
        TWarp<TTable> oWarp;
        oWarp.m_pData = &oData;
        oWarp.m_pInImage = &a;
        oWarp.m_pOutImage = &b;
        return oWarp.Apply();
      },
      320, 300);
}

void Calibration() {
  Warp<TpIpCalibrateGeometric, ClInterpolationBicubicQuantized<1, 5, 600, 530, 1000>>("warp-600-530-1000");
  Warp<TpIpCalibrateGeometricSubsample, ClInterpolationBicubicQuantized<1, 5, 450, 398, 750>>(
      "warp-450-398-750");
  Warp<TpIpCalibrateGeometricSubsample, ClInterpolationBicubicQuantized<1, 5, 800, 500, 1000>>(
      "warp-800-500-1000");
  Warp<TpIpCalibrateGeometricSubsample, ClInterpolationBicubicQuantized<1, 5, 600, 375, 750>>(
      "warp-600-375-750");
  for (const unsigned char nType : g_aAll)
    Stage(("interpolate-" + std::to_string(nType)).c_str(), {ClImage::eUint8}, [nType](ClImage&, ClImage& b) {
      ClCalibrateGeometricData oData;
      FillWarp(oData);
      double adValues[64];
      for (int n = 0; n < 64; ++n) adValues[n] = 20 + n * 37 % 70;
      ClIpInterpolate2D<ClRadialBasisSquaredDist> oProcessor;
      oProcessor.m_pValues = adValues;
      oProcessor.m_pPoints = &oData.m_aTarget;
      oProcessor.nInTargetWidth = 200;
      oProcessor.nInTargetHeight = 180;
      oProcessor.m_nBlockSize = 4;
      oProcessor.m_nDataType = nType;
      oProcessor.m_aOutput.New(1);
      oProcessor.m_aOutput[0] = &b;
      return oProcessor.Apply();
    });
}

/// The search for the dots, and the splines and lines that it fits.
void DotSearch() {
  ClDotTarget oTarget;
  oTarget.nNoise = 8;
  oTarget.nDust = 50;
  oTarget.dFall = 0.2;
  ClImage oImage;
  oTarget.Draw(oImage);
  ClDigest oDigest;
  Add(oDigest, oImage);
  PrintStage("dot-target", oDigest);
  ClCalibrateGeometricData oData;
  ClIpCalibrateGeometricBuildRefPointsVT40Donut oSearch;
  oSearch.m_pInImage = &oImage;
  oSearch.m_pOutData = &oData;
  const long nResult = oSearch.Apply();
  oDigest.Add(static_cast<int>(nResult));
  for (unsigned int n = 0; n < oData.m_aActual[0].Entries(); ++n)
    oDigest.Add(oData.m_aActual[0][n].x).Add(oData.m_aActual[0][n].y);
  PrintStage("dot-search", oDigest);
}

void Mathematics() {
  std::mt19937_64 oRandom(1);
  ClDigest oDigest;
  for (int n = 0; n < 20000; ++n) {
    const double dUnit = static_cast<double>(oRandom() >> 11) * 0x1p-53, dWide = (dUnit - 0.5) * 1400;
    for (const double d :
         {Portable::Log(dUnit), Portable::Exp(dWide), Portable::Sin(dWide), Portable::Cos(dWide),
          Portable::Atan2(dUnit, dWide), Portable::Acos(2 * dUnit - 1)})
      oDigest.Add(d);
  }
  PrintStage("mathematics", oDigest);
  ClRegressionLine oFirst, oSecond;
  for (int n = 0; n < 40; ++n) {
    oFirst.AddToLine(ClVector(n, 0.3 * n + n % 3));
    oSecond.AddToLine(ClVector(0.2 * n + n % 5, n));
  }
  oDigest.Add(oFirst.DistFromLine(ClVector(3, 9))).Add(oFirst.CrossPhi(oSecond));
  PrintStage("lines", oDigest);
}

}  // namespace

int main() {
  Mathematics();
  Arithmetic();
  Thresholds();
  Filters();
  Geometry();
  SensorTools();
  Calibration();
  DotSearch();
}
