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
using Engine = ClVTLiveCaptureBase;

/// A still pattern with an ellipse of more light on it.
class ClFrame {
 public:
  ClFrame() {
    m_oImage.NewWithType(ClImage::eUint8, cnWidth, cnHeight, 1, 0, 0, true);
    for (int y = 0; y < cnHeight; ++y) {
      for (int x = 0; x < cnWidth; ++x) Row(y)[x] = static_cast<uint8_t>(20 + (x / 40 + y / 40) % 2 * 8);
    }
  }
  ClFrame& Add(int nX, int nY, int nRadiusX, int nRadiusY, int nLight) {
    for (int y = std::max(0, nY - nRadiusY); y <= std::min(cnHeight - 1, nY + nRadiusY); ++y) {
      for (int x = std::max(0, nX - nRadiusX); x <= std::min(cnWidth - 1, nX + nRadiusX); ++x) {
        const double dX = static_cast<double>(x - nX) / nRadiusX, dY = static_cast<double>(y - nY) / nRadiusY;
        if (dX * dX + dY * dY <= 1.0) Row(y)[x] = static_cast<uint8_t>(Row(y)[x] + nLight);
      }
    }
    return *this;
  }
  ClImage& Image() { return m_oImage; }

 private:
  uint8_t* Row(int y) { return m_oImage.Row<uint8_t>(y); }
  ClImage m_oImage;
};

class Pad : public testing::Test {
 protected:
  /// Until the pattern has become background.
  void SetUp() override {
    EXPECT_EQ(m_oDetector.Detect(ClFrame().Image()).eKind, Detector::eFirstFrame);
    for (int n = 0; n < 8; ++n) EXPECT_EQ(See(ClFrame()).eKind, Detector::eNothing);
  }
  Detector::StSight See(ClFrame&& oFrame) { return m_oDetector.Detect(oFrame.Image()); }

  Detector m_oDetector{cnWidth, cnHeight, false};
};

TEST_F(Pad, FollowsATipAcrossAStillPattern) {
  for (int n = 0; n < 20; ++n) {
    const int nX = 200 + 12 * n, nY = 150 + 7 * n;
    const Detector::StSight oSight = See(std::move(ClFrame().Add(nX, nY, 5, 5, 22)));
    ASSERT_EQ(oSight.eKind, Detector::ePen) << n;
    EXPECT_GE(oSight.nWeight, 5);
    EXPECT_NEAR(oSight.dX, cnWidth - nX, 2.0) << "mirrored";
    EXPECT_NEAR(oSight.dMeanY, nY, 2.0);
  }
  EXPECT_EQ(See(ClFrame()).eKind, Detector::eNothing) << "darker is no pen";
}

TEST_F(Pad, TellsTheTipFromWhatIsNoPen) {
  const auto Kind = [this](int nX, int nY, int nRadiusX, int nRadiusY, int nLight) {
    const auto eKind = See(std::move(ClFrame().Add(nX, nY, nRadiusX, nRadiusY, nLight))).eKind;
    for (int n = 0; n < 9; ++n) See(ClFrame());
    return eKind;
  };
  EXPECT_EQ(Kind(480, 340, 5, 5, 22), Detector::ePen);
  EXPECT_EQ(Kind(480, 340, 5, 5, 7), Detector::eNothing) << "too weak";
  EXPECT_EQ(Kind(480, 340, 40, 4, 22), Detector::eNothing) << "too long";
  EXPECT_EQ(Kind(480, 340, 60, 60, 22), Detector::eLargeObject);
  EXPECT_EQ(Kind(30, 340, 5, 5, 22), Detector::eNothing) << "beside the pad";
  EXPECT_EQ(Kind(480, 560, 5, 5, 22), Detector::eNothing) << "below it";
}

TEST_F(Pad, SeesALargeObjectOnlyWhileItMoves) {
  for (int n = 0; n < 6; ++n) {
    const Detector::StSight oSight = See(std::move(ClFrame().Add(300 + 30 * n, 300, 60, 90, 25)));
    ASSERT_EQ(oSight.eKind, Detector::eLargeObject) << n;
    EXPECT_NEAR(oSight.dWide, cnWidth - (300 + 30 * n), 70.0);
  }
  for (int n = 0; n < 9; ++n) EXPECT_EQ(See(std::move(ClFrame().Add(450, 300, 60, 90, 25))).eKind, 1) << n;
}

TEST(HalfPad, IsSearchedDownToItsEnd) {
  Detector oDetector(cnWidth, cnHeight, true);
  oDetector.Detect(ClFrame().Image());
  EXPECT_EQ(oDetector.Detect(ClFrame().Add(480, 620, 5, 5, 22).Image()).eKind, Detector::ePen);
}

/// Pixels of the picture that are drawn.
int Ink(const ClImage& oImage) {
  return static_cast<int>(std::count(oImage.Data(), oImage.Data() + oImage.DataBytes(), 255));
}

class Strokes : public testing::Test {
 protected:
  void SetUp() override {
    m_oStrokes.Start(800);
    m_oFull.NewWithType(ClImage::eUint8, 1600, 1600, 1, 0, 0, true);
  }
  void Frames(int nFrames) {
    for (int n = 0; n < nFrames; ++n) {
      m_oStrokes.NextFrame();
      m_oStrokes.EndStroke();
    }
  }
  void Point(double dX, double dY) {
    m_oStrokes.NextFrame();
    EXPECT_TRUE(m_oStrokes.AddPoint(dX, dY, 9));
  }
  int FullInk() {
    m_oFull = static_cast<unsigned char>(0);
    m_oStrokes.Draw(m_oFull);
    return Ink(m_oFull);
  }

  ClSignatureStrokes m_oStrokes;
  ClImage m_oFull;
};

TEST_F(Strokes, AreLinesInBothPicturesWithGapsWhereThePenWasUp) {
  Point(96.5, 34.0);
  Frames(2);
  Point(192.0, 68.0);
  EXPECT_EQ(m_oStrokes.Points(), 2) << "two frames without the pen end no stroke";
  EXPECT_EQ(Ink(m_oStrokes.Preview()), 81) << "both ends from column 80 to 160";
  Frames(5);
  EXPECT_EQ(m_oStrokes.Points(), 3) << "one pen-up";
  Point(480.0, 34.0);
  EXPECT_EQ(Ink(m_oStrokes.Preview()), 82);
  Frames(3);
  EXPECT_EQ(FullInk(), 162) << "from column 160 to 320 inclusive, and a dot";
  for (const auto& [x, y] : {std::pair(160, 80), std::pair(240, 120), std::pair(800, 80)}) {
    EXPECT_EQ(m_oFull.Row<uint8_t>(y)[x], 255) << x;
  }
  m_oStrokes.Start(800);
  EXPECT_EQ(m_oStrokes.Points(), 0);
  EXPECT_EQ(Ink(m_oStrokes.Preview()), 82) << "the preview of the same height stays";
  m_oStrokes.Start(400);
  EXPECT_EQ(Ink(m_oStrokes.Preview()), 0);
}

TEST_F(Strokes, BeyondTheRoomAreDroppedAndOutsideThePictureAreCut) {
  for (int n = 0; n < 2048; ++n) Point(10.0 + n % 900, 720.0);
  EXPECT_FALSE(m_oStrokes.AddPoint(1.0, 1.0, 9));
  Frames(5);
  EXPECT_EQ(m_oStrokes.Points(), 2048);
  EXPECT_EQ(FullInk() + Ink(m_oStrokes.Preview()), 0) << "below both pictures";
  m_oStrokes.Clear();
  EXPECT_EQ(m_oStrokes.Points(), 0);
  Frames(5);
  EXPECT_EQ(m_oStrokes.Points(), 0) << "no pen-up without a point";
}

TEST(Swipe, NeedsSixOfNineStepsToOneSide) {
  const auto Last = [](int nStep, int nSteps, int nOtherStep) {
    ClSwipeDetector oSwipe;
    int nX = 500;
    auto eState = oSwipe.Add(nX);
    for (int n = 0; n < 9; ++n) eState = oSwipe.Add(nX += n < nSteps ? nStep : nOtherStep);
    return eState;
  };
  EXPECT_EQ(Last(6, 6, 0), Engine::eCaptureStateSwipeForward);
  EXPECT_EQ(Last(6, 5, 5), Engine::eCaptureStateNoFinger);
  EXPECT_EQ(Last(-6, 6, 6), Engine::eCaptureStateSwipeBack);
  EXPECT_EQ(Last(-6, 5, 0), Engine::eCaptureStateNoFinger);
  ClSwipeDetector oSwipe;
  for (int n = 0; n < 9; ++n) EXPECT_EQ(oSwipe.Add(20 * n), Engine::eCaptureStateNoFinger) << "too few";
  oSwipe.Reset();
  EXPECT_EQ(oSwipe.Add(500), Engine::eCaptureStateNoFinger);
}

TEST(Timing, ASignatureOf51PointsIsDoneAfterThePauseAndOneOf50Never) {
  // The clock passes its end on the way.
  const ClSignatureTiming::Ticks nStart = std::numeric_limits<ClSignatureTiming::Ticks>::max() - 1000000;
  ClSignatureTiming oTiming(nStart);
  EXPECT_FALSE(oTiming.IsDone(nStart + 2000000, 2.0, 51)) << "more than the time, not as much";
  EXPECT_FALSE(oTiming.IsDone(nStart + 2000001, 2.0, 50));
  EXPECT_FALSE(oTiming.IsDone(nStart + 2000001, 0.0, 51)) << "0 is never";
  EXPECT_TRUE(oTiming.IsDone(nStart + 2000001, 2.0, 51));
  EXPECT_TRUE(oTiming.IsFirstDoneFrame());
  EXPECT_TRUE(oTiming.IsDone(nStart + 2000002, 2.0, 51));
  EXPECT_FALSE(oTiming.IsFirstDoneFrame());
  EXPECT_TRUE(oTiming.HasPaused(nStart + 2000002, 2.0));
  oTiming.Touch(nStart + 2000003);
  EXPECT_FALSE(oTiming.IsDone(nStart + 2000004, 2.0, 52));
  EXPECT_TRUE(oTiming.IsDone(nStart + 4000004, 2.0, 52));
  EXPECT_TRUE(oTiming.IsFirstDoneFrame()) << "a second completion";
}

}  // namespace
