// A second frame of the same size must not allocate; this program counts every allocation.
#include <gtest/gtest.h>

#include <tuple>

#include "Allocations.h"
#include "MXImageProcessing/IpBinarizeLocal2.h"
#include "MXImageProcessing/IpConnectedComponent2.h"
#include "MXImageProcessing/IpFilterGauss.h"
#include "MXImageProcessing/IpFilterMid.h"
#include "MXImageProcessing/IpFilterMin.h"
#include "MXImageProcessing/IpFlip.h"
#include "MXLiveScannerTools/IpAdjustBrightness.h"
#include "MXLiveScannerTools/IpLocalWhiteBalance.h"
#include "MXLiveScannerTools/IpVT40R4Mask.h"

namespace {

/// Frames that differ from run to run: ridges whose position and number change with nRun.
void FillFrame(ClImage& oImage, int nWidth, int nHeight, int nPels, int nRun) {
  oImage.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, nPels, nPels, true);
  for (int y = 0; y < nHeight; ++y) {
    for (int x = 0; x < nWidth; ++x) {
      const bool bFinger = x > nWidth / 5 + nRun && x < nWidth * 4 / 5 && y > nHeight / 4;
      oImage.Row<unsigned char>(y)[x] =
          static_cast<unsigned char>(bFinger ? 40 + 50 * ((x + y / 3 + nRun) % 4) : (x * y) % 11);
    }
  }
}

/// A run after two that let everything grow makes no allocation.
template <typename TRun>
void ExpectNoAllocationsInALaterRun(TRun&& fnRun) {
  fnRun(1);
  fnRun(0);
  const long nBefore = Allocations::Count();
  fnRun(2);
  EXPECT_EQ(Allocations::Count(), nBefore);
}

}  // namespace

TEST(SteadyState, TheMaskAllocatesNothingOnEitherPathAlsoInPlace) {
  ClImage oIn, oOut;
  for (const auto& [pOut, nWidth, nPels] :
       {std::tuple(&oOut, 160, 9842), {&oOut, 240, 19685}, {&oIn, 160, 9842}}) {
    ClIpVT40R4Mask oMask;
    ExpectNoAllocationsInALaterRun([&, pTo = pOut, nColumns = nWidth, nResolution = nPels](int nRun) {
      FillFrame(oIn, nColumns, nColumns + 20, nResolution, nRun);
      oMask.ApplyParam(oIn, *pTo);
    });
  }
}

TEST(SteadyState, WhiteBalanceBrightnessAndMirrorAllocateNothing) {
  ClImage oFrame, oOut, oReference;
  FillFrame(oReference, 100, 80, 0, 7);
  ClIpLocalWhiteBalance oBalance;
  ClIpAdjustBrightness oAdjust;
  ClIpFlip oFlip;
  ExpectNoAllocationsInALaterRun([&](int nRun) {
    FillFrame(oFrame, 100, 80, 0, nRun);
    oBalance.ApplyParam(oFrame, oFrame);
    oFlip.ApplyParam(oFrame, oFrame, true, false);
    oAdjust.ApplyParam(oFrame, oReference, oFrame, 128.0);
    oAdjust.ApplyParam(oFrame, oReference, oOut, 128.0);
  });
}

TEST(SteadyState, FiltersThresholdsAndObjectsAllocateNothing) {
  ClImage oFrame, oOut, oObjects;
  ClIpFilterMid oMid;
  ClIpFilterMin oMin;
  ClIpFilterGauss oGauss;
  ClIpBinarizeLocal2 oBinarize;
  ClIpConnectedComponent2 oComponents;
  ClIpConnectedComponent2::ComponentsArray_t aFound;
  ExpectNoAllocationsInALaterRun([&](int nRun) {
    FillFrame(oFrame, 100, 80, 0, nRun);
    oMid.ApplyParam(oFrame, oOut, 15);
    oMin.ApplyParam(oFrame, oOut, 7, ClIpFilterBase::eModeXY);
    oGauss.ApplyParam(oFrame, oOut, 1.5, 0);
    oBinarize.ApplyParam(oFrame, oOut, 11, 11, 0);
    // As many objects each time: the array of results has room for just them.
    FillFrame(oObjects, 100, 80, 0, 0);
    oBinarize.ApplyParam(oObjects, oObjects, 11, 11, 0);
    oComponents.ApplyParam(oObjects, aFound, &oFrame);
  });
}

TEST(SteadyState, TheCounterCounts) {
  const long nBefore = Allocations::Count();
  ClImage oImage(10, 10, 1, 0, 0);
  EXPECT_GT(Allocations::Count(), nBefore);
}
