// The pieces of the signature pad, with frames and points drawn by hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "MXLiveScannerAPI/PenDetector.h"
#include "MXLiveScannerAPI/SignatureStrokes.h"
#include "MXLiveScannerAPI/SignatureTiming.h"
#include "MXLiveScannerAPI/SwipeDetector.h"

namespace {

constexpr int cnWidth = 960, cnHeight = 680;
using Detector = ClPenDetector;

/// What the detector sees of an ellipse of light that comes upon a still pattern which has become background.
Detector::EKind Appears(int nX, int nY, int nRadiusX, int nRadiusY, int nLight, bool bHalf = false) {
  Detector oDetector(cnWidth, cnHeight, bHalf);
  Detector::StSight oSight;
  for (int n = 0; n < 10; ++n) {
    ClImage oFrame;
    oFrame.NewWithType(ClImage::eUint8, cnWidth, cnHeight, 1, 0, 0, true);
    for (int y = 0; y < cnHeight; ++y) {
      for (int x = 0; x < cnWidth; ++x) {
        const double dX = static_cast<double>(x - nX) / nRadiusX, dY = static_cast<double>(y - nY) / nRadiusY;
        const bool bLight = n == 9 && dX * dX + dY * dY <= 1.0;
        oFrame.Row<uint8_t>(y)[x] = static_cast<uint8_t>(20 + (x + y) / 40 % 2 * 8 + (bLight ? nLight : 0));
      }
    }
    oSight = oDetector.Detect(oFrame);
    if (n < 9) {
      EXPECT_EQ(oSight.eKind, n == 0 ? Detector::eFirstFrame : Detector::eNothing);
    }
  }
  if (oSight.eKind == Detector::ePen) {
    EXPECT_NEAR(oSight.dX, cnWidth - nX, 1.0) << "mirrored";
    EXPECT_NEAR(oSight.dMeanY, nY, 1.0);
  }
  return oSight.eKind;
}

TEST(PenDetector, DistinguishesATipFromWhatIsNoPen) {
  EXPECT_EQ(Appears(300, 440, 5, 5, 22), Detector::ePen);
  EXPECT_EQ(Appears(480, 340, 5, 5, 7), Detector::eNothing) << "too weak";
  EXPECT_EQ(Appears(480, 340, 40, 4, 22), Detector::eNothing) << "too long";
  EXPECT_EQ(Appears(480, 340, 60, 60, 22), Detector::eLargeObject);
  EXPECT_EQ(Appears(480, 340, 28, 28, 22), Detector::eLargeObject) << "as small as they come";
  EXPECT_EQ(Appears(480, 340, 26, 26, 22), Detector::eNothing);
  EXPECT_EQ(Appears(30, 340, 5, 5, 22), Detector::eNothing) << "beside the pad";
  EXPECT_EQ(Appears(480, 620, 5, 5, 22), Detector::eNothing) << "below it";
  EXPECT_EQ(Appears(480, 620, 5, 5, 22, true), Detector::ePen) << "half a pad is searched down to its end";
}

int Ink(const ClImage& oImage) {
  return static_cast<int>(std::count(oImage.Data(), oImage.Data() + oImage.DataBytes(), 255));
}

TEST(Strokes, HaveGapsWhereThePenWasUpAndEndWhereThereIsNoMoreRoom) {
  ClSignatureStrokes oStrokes;
  ClImage oFull;
  const auto FullInk = [&] {
    oFull.NewWithType(ClImage::eUint8, 1600, 1600, 1, 0, 0, true);
    oFull = static_cast<unsigned char>(0);
    oStrokes.Draw(oFull);
    return Ink(oFull);
  };
  const auto Point = [&](double dX, double dY) {
    oStrokes.NextFrame();
    return oStrokes.AddPoint(dX, dY, 9);
  };
  const auto FramesWithoutPen = [&](int nFrames) {
    for (int n = 0; n < nFrames; ++n) {
      oStrokes.NextFrame();
      oStrokes.EndStroke();
    }
    return oStrokes.Points();
  };
  oStrokes.Clear();
  oStrokes.Start(800);
  EXPECT_EQ(FramesWithoutPen(5), 0);
  Point(96.5, 34.0);
  EXPECT_EQ(FramesWithoutPen(2), 1);
  Point(192.0, 68.0);
  EXPECT_EQ(Ink(oStrokes.Preview()), 81) << "from column 80 to 160";
  EXPECT_EQ(FramesWithoutPen(5), 3) << "one pen-up";
  Point(480.0, 34.0);
  EXPECT_EQ(FramesWithoutPen(3), 5);
  EXPECT_EQ(Ink(oStrokes.Preview()), 82);
  EXPECT_EQ(FullInk(), 162) << "from column 160 to 320, and a dot";
  EXPECT_EQ(oFull.Row<uint8_t>(120)[240] + oFull.Row<uint8_t>(80)[800], 510);
  oStrokes.Start(800);
  EXPECT_EQ(Ink(oStrokes.Preview()) + oStrokes.Points(), 82) << "the preview of the same height stays";
  oStrokes.Start(400);
  for (int n = 0; n < 2048; ++n) EXPECT_TRUE(Point(10.0 + n % 900, 720.0));
  EXPECT_FALSE(Point(1.0, 1.0));
  EXPECT_EQ(FramesWithoutPen(5), 2048);
  EXPECT_EQ(FullInk() + Ink(oStrokes.Preview()), 0) << "what lies below the pictures is cut";
}

TEST(SwipeDetector, NeedsSixOfNineStepsToOneSide) {
  const auto Last = [](int nStep, int nSteps, int nOtherStep, int nSamples = 10) {
    ClSwipeDetector oSwipe;
    int nX = 500;
    auto eState = oSwipe.Add(nX);
    for (int n = 1; n < nSamples; ++n) eState = oSwipe.Add(nX += n <= nSteps ? nStep : nOtherStep);
    return eState;
  };
  EXPECT_EQ(Last(6, 6, 0), ClVTLiveCaptureBase::eCaptureStateSwipeForward);
  EXPECT_EQ(Last(6, 5, 5), ClVTLiveCaptureBase::eCaptureStateNoFinger);
  EXPECT_EQ(Last(-6, 6, 6), ClVTLiveCaptureBase::eCaptureStateSwipeBack);
  EXPECT_EQ(Last(-6, 5, 0), ClVTLiveCaptureBase::eCaptureStateNoFinger);
  EXPECT_EQ(Last(20, 9, 0, 9), ClVTLiveCaptureBase::eCaptureStateNoFinger) << "too few";
}

TEST(SignatureTiming, ASignatureOf51PointsIsDoneAfterThePauseAndOneOf50Never) {
  // The clock passes its end on the way.
  const ClSignatureTiming::Ticks nStart = std::numeric_limits<ClSignatureTiming::Ticks>::max() - 1000000;
  ClSignatureTiming oTiming(nStart);
  EXPECT_FALSE(oTiming.IsDone(nStart + 2000000, 2.0, 51)) << "more than the time, not as much";
  EXPECT_FALSE(oTiming.IsDone(nStart + 2000001, 2.0, 50));
  EXPECT_FALSE(oTiming.IsDone(nStart + 2000001, 0.0, 51)) << "0 is never";
  EXPECT_TRUE(oTiming.IsDone(nStart + 2000001, 2.0, 51) && oTiming.IsFirstDoneFrame());
  EXPECT_TRUE(oTiming.IsDone(nStart + 2000002, 2.0, 51) && !oTiming.IsFirstDoneFrame());
  oTiming.Touch(nStart + 2000003);
  EXPECT_FALSE(oTiming.IsDone(nStart + 2000004, 2.0, 52));
  EXPECT_TRUE(oTiming.IsDone(nStart + 4000004, 2.0, 52) && oTiming.IsFirstDoneFrame());
}

}  // namespace
