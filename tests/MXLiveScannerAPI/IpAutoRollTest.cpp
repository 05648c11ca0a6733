// Rolls of drawn frames: the life of a roll, what it paints, and each verdict on both sides of its limit.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <random>
#include <vector>

#include "MXLiveScannerAPI/IpAutoRoll.h"
#include "MXTools/Exception.h"
#include "PlainRoll.h"
#include "Raised.h"
#include "portable/Math.h"

namespace {

constexpr int cnSize = 400;

/// Ridges of the unrolled finger, 9 pixels apart, at a position on the platen.
unsigned char Skin(double dX, double dY) {
  const double dDistance = std::hypot(dX - 200.0, dY - 500.0);
  return static_cast<unsigned char>(130.0 + 90.0 * std::sin(dDistance * 2.0 * Portable::cdPi / 9.0));
}

/// One frame: the ellipse in contact, and how far the skin has drifted against the platen.
struct StContact {
  double dX = 200.0;
  double dY = 200.0;
  double dHalfWidth = 45.0;
  double dHalfHeight = 110.0;
  double dTilt = 0.0;  // of the ellipse, radians
  double dDrift = 0.0;
};

void Draw(const StContact& oContact, ClImage& oFrame) {
  oFrame.NewWithType(ClImage::eUint8, cnSize, cnSize, 1, 19685, 19685, true);
  for (int y = 0; y < cnSize; ++y) {
    unsigned char* pRow = oFrame.Row<unsigned char>(y);
    for (int x = 0; x < cnSize; ++x) {
      const double dX = x - oContact.dX, dY = y - oContact.dY;
      const double dAcross = std::cos(oContact.dTilt) * dX + std::sin(oContact.dTilt) * dY;
      const double dAlong = std::cos(oContact.dTilt) * dY - std::sin(oContact.dTilt) * dX;
      // Like the mask's, the edge fades within some pixels.
      const double dInside = 1.0 - std::hypot(dAcross / oContact.dHalfWidth, dAlong / oContact.dHalfHeight);
      const double dShare = std::clamp(dInside * oContact.dHalfWidth / 12.0, 0.0, 1.0);
      pRow[x] = static_cast<unsigned char>(255.0 - dShare * (255.0 - Skin(x, y + oContact.dDrift)));
    }
  }
}

class Roll : public testing::Test {
 protected:
  Roll() { m_oRoll.SetAutoRotate(false); }

  long Show(const StContact& oContact) {
    Draw(oContact, m_oFrame);
    return m_oRoll.ApplyParam(m_oFrame, m_oOut);
  }
  void Empty(int nWidth = cnSize, int nHeight = cnSize) {
    m_oFrame.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 19685, 19685, true);
    m_oFrame = static_cast<unsigned char>(255);
  }
  long ShowEmpty() {
    Empty();
    return m_oRoll.ApplyParam(m_oFrame, m_oOut);
  }
  /// nFrames from dFrom to dTo, each changed by fnChange(n, contact), then an empty one; returns the verdict.
  using Change = std::function<void(int, StContact&)>;
  static void Still(int, StContact&) {}
  long Perform(double dFrom, double dTo, int nFrames, const Change& fnChange) {
    for (int n = 0; n < nFrames; ++n) {
      StContact oContact;
      oContact.dX = dFrom + (dTo - dFrom) * n / (nFrames - 1);
      fnChange(n, oContact);
      Show(oContact);
    }
    return ShowEmpty();
  }
  /// The painted columns of a row: how many, and their mean.
  struct StPainted {
    int nCount = 0;
    double dColumn = 0.0;
  };
  StPainted PaintedIn(int nRow) const {
    StPainted oPainted;
    for (int x = 0; x < cnSize; ++x) {
      if (m_oOut.Row<unsigned char>(nRow)[x] >= 250) continue;
      ++oPainted.nCount;
      oPainted.dColumn += x;
    }
    if (oPainted.nCount > 0) oPainted.dColumn /= oPainted.nCount;
    return oPainted;
  }
  int PaintedWidth() const { return PaintedIn(200).nCount; }

  ClIpAutoRoll m_oRoll;
  ClImage m_oFrame;
  ClImage m_oOut;
};

TEST_F(Roll, ACleanOnePaintsTheSkinAsItLiesOnThePlaten) {
  EXPECT_EQ(ShowEmpty(), 0);
  EXPECT_EQ(m_oRoll.GetProcessorState(), ClIpAutoRoll::eStateIdle);
  StContact oFirst;
  oFirst.dX = 120.0;
  Show(oFirst);
  EXPECT_EQ(m_oRoll.GetProcessorState(), ClIpAutoRoll::eStateRolling);
  EXPECT_EQ(PaintedWidth(), 0) << "the first frame is measured only";
  EXPECT_EQ(Perform(126.0, 290.0, 20, Still), 0);
  EXPECT_EQ(m_oRoll.GetProcessorState(), ClIpAutoRoll::eStateFinished);
  EXPECT_GT(PaintedWidth(), 240) << "one contact is 90 wide";
  int nWrong = 0;
  for (int y = 150; y < 250; ++y) {
    for (int x = 100; x < 310; ++x) nWrong += std::abs(m_oOut.Row<unsigned char>(y)[x] - Skin(x, y)) > 40;
  }
  EXPECT_EQ(nWrong, 0) << "no seam is wider than the fading edges";
  ShowEmpty();
  EXPECT_GT(PaintedWidth(), 240) << "the finished print stays";
  Show(oFirst);
  EXPECT_EQ(PaintedWidth(), 0) << "the next finger begins on white";
  EXPECT_EQ(m_oRoll.GetProcessorState(), ClIpAutoRoll::eStateRolling);
}

TEST_F(Roll, GetsEachVerdictBeyondItsLimitAndNotAtIt) {
  const auto Slip = [](std::vector<int> aFrames) {
    return [aFrames = std::move(aFrames)](int n, StContact& oContact) {
      for (const int nFrame : aFrames) oContact.dDrift += n >= nFrame ? 3.6 : 0.0;
    };
  };
  const auto Back = [](double dStep) {
    return [dStep](int n, StContact& oContact) {
      oContact.dX = n < 20 ? 120.0 + 8.0 * n + (n > 0 ? 5.0 : 0.0) : 285.0 - dStep * (n - 19);
      // The first three frames set the direction.
      if (n == 2) oContact.dX = 141.0;
    };
  };
  const auto Twist = [](int nFrames) {
    return [nFrames](int n, StContact& oContact) { oContact.dTilt = n >= 6 && n < 6 + nFrames ? 0.9 : 0.0; };
  };
  const auto Broad = [](double dHalfWidth) {
    return [dHalfWidth](int, StContact& oContact) { oContact.dHalfWidth = dHalfWidth; };
  };
  struct StCase {
    const char* szWhat;
    double dFrom, dTo;
    int nFrames;
    Change fnChange;
    long nGrade;
  };
  const StCase aCases[] = {{"two frames slip", 120, 280, 20, Slip({6, 7}), 0},
                           {"an interrupted run of slips starts again", 120, 280, 20, Slip({6, 7, 9, 10}), 0},
                           {"three frames in a row slip", 120, 280, 20, Slip({6, 7, 8}), -801},
                           {"frames share too little", 60, 340, 4, Still, -802},
                           {"a new roll has a new grade and a free direction", 280, 120, 20, Still, 0},
                           {"20 columns back in three frames", 0, 0, 24, Back(10.0), 0},
                           {"21 columns back in three frames", 0, 0, 24, Back(10.5), -803},
                           {"two frames are twisted", 120, 280, 20, Twist(2), 0},
                           {"three frames are twisted", 120, 280, 20, Twist(3), -804},
                           {"hardly wider than one contact", 190, 215, 8, Still, -805},
                           {"wide enough", 180, 250, 12, Still, 0},
                           {"a broad finger", 120, 280, 20, Broad(75.0), 0},
                           {"a narrow one behind it", 160, 240, 20, Broad(30.0), 0}};
  for (const StCase& o : aCases)
    EXPECT_EQ(Perform(o.dFrom, o.dTo, o.nFrames, o.fnChange), o.nGrade) << o.szWhat;
  Show({});
  EXPECT_EQ(ShowEmpty(), -805) << "one frame has painted nothing";
  EXPECT_EQ(PaintedWidth(), 0);
}

TEST_F(Roll, AFingerIsMoreThanAThousandDarkPixelsInTheMiddle) {
  const auto ShowDark = [&](int nPixels) {
    Empty();
    for (int n = 0; n < nPixels; ++n) m_oFrame.Row<unsigned char>(200 + n / 40)[180 + n % 40] = 128;
    m_oRoll.ApplyParam(m_oFrame, m_oOut);
    return m_oRoll.GetProcessorState();
  };
  EXPECT_EQ(ShowDark(1000), ClIpAutoRoll::eStateIdle);
  EXPECT_EQ(ShowDark(1001), ClIpAutoRoll::eStateRolling);
}

TEST_F(Roll, PostProcessingCentresThePrintAndTurnsItUpright) {
  m_oRoll.SetAutoRotate(true);
  const auto Tilt = [](int, StContact& oContact) {
    oContact.dTilt = 0.35;
    // The finger rolls square to its axis.
    oContact.dY = 180.0 + (oContact.dX - 180.0) * std::tan(oContact.dTilt);
  };
  EXPECT_EQ(Perform(130.0, 230.0, 14, Tilt), 0);
  double dX = 0.0, dY = 0.0, dCount = 0.0;
  for (int y = 0; y < cnSize; ++y) {
    const StPainted oRow = PaintedIn(y);
    dCount += oRow.nCount;
    dX += oRow.dColumn * oRow.nCount;
    dY += 1.0 * y * oRow.nCount;
  }
  EXPECT_NEAR(dX / dCount, 200.0, 3.0);
  EXPECT_NEAR(dY / dCount, 200.0, 3.0);
  EXPECT_NEAR(PaintedIn(140).dColumn, PaintedIn(260).dColumn, 4.0) << "tilted they would lie 44 apart";
}

TEST_F(Roll, AResetBeginsAfreshAndFreesTheSize) {
  StContact oContact;
  Show(oContact);
  oContact.dX = 206.0;
  Show(oContact);
  m_oRoll.ResetProcessor();
  EXPECT_EQ(m_oRoll.GetProcessorState(), ClIpAutoRoll::eStateIdle);
  EXPECT_EQ(ShowEmpty(), 0);
  EXPECT_EQ(PaintedWidth(), 0);
  Empty(300, 200);
  const auto Number = [&](ClImage& oIn) { return NumberOf([&] { m_oRoll.ApplyParam(oIn, m_oOut); }); };
  EXPECT_EQ(Number(m_oFrame), -44);
  m_oRoll.ResetProcessor();
  EXPECT_EQ(Number(m_oFrame), 0);
  ClImage oOther;
  oOther.NewWithType(ClImage::eInt16, 300, 200, 1, 0, 0, true);
  EXPECT_EQ(Number(oOther), -33);
  m_oRoll.ResetProcessor();
  oOther.NewWithType(ClImage::eUint8, 300, 200, 3, 0, 0, true);
  EXPECT_EQ(Number(oOther), -101);
  m_oRoll.ResetProcessor();
  Empty(300, 1);
  EXPECT_EQ(Number(m_oFrame), -101);
}

/// Frames of a finger that rolls over the borders of the image: grey ridges, and specks up to its edges.
void DrawAny(std::mt19937& oRandom, int nWidth, int nHeight, int nShift, ClImage& oFrame) {
  oFrame.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 19685, 19685, true);
  oFrame = static_cast<unsigned char>(255);
  const auto Below = [&](int n) { return static_cast<int>(oRandom() % static_cast<unsigned>(n)); };
  const int nPeriod = 3 + Below(3);
  for (int y = 0; y < nHeight; ++y) {
    for (int x = 0; x < nWidth; ++x) {
      const double dX = 2.5 * (x - nShift) / nWidth, dY = 2.0 * y / nHeight - 1.0;
      if (dX * dX + dY * dY > 1.1) continue;
      oFrame.Row<unsigned char>(y)[x] =
          static_cast<unsigned char>((x + y) % nPeriod < 2 ? 20 + Below(100) : 140 + Below(116));
    }
  }
  for (int n = Below(9); n > 0; --n) {
    const int x = Below(3) == 0 ? Below(2) * (nWidth - 1) : Below(nWidth);
    const int y = Below(3) == 0 ? Below(2) * (nHeight - 1) : Below(nHeight);
    oFrame.Row<unsigned char>(y)[x] = static_cast<unsigned char>(Below(256));
  }
}

TEST(RollOfAnySize, EqualsThePlainRoadFrameByFrame) {
  const std::pair<int, int> aSizes[] = {{200, 150}, {129, 130}, {64, 300}, {191, 67}, {13, 900},
                                        {1900, 10}, {20, 500},  {14, 700}, {600, 14}, {5000, 4}};
  std::mt19937 oRandom(11);
  for (const auto& [nWidth, nHeight] : aSizes) {
    ClPlainRoll oPlain;
    ClIpAutoRoll oRoll;
    ClRollFrame aFrames[2];
    ClRollMeans oMeans;
    ClImage oFrame, oExpected, oActual, oScratch;
    for (int n = 0; n < 33; ++n) {
      SCOPED_TRACE(testing::Message() << nWidth << " by " << nHeight << ", frame " << n);
      const int nStep = n / 11 == 2 ? 1 : nWidth / 12;
      DrawAny(oRandom, nWidth, nHeight, n % 11 == 10 ? -nWidth : n % 11 * nStep, oFrame);
      const long nVerdict = oPlain.Show(oFrame, oExpected);
      EXPECT_EQ(oRoll.ApplyParam(oFrame, oActual), nVerdict);
      aFrames[n % 2].Take(oFrame);
      aFrames[n % 2].MeasureRidges(oFrame, oMeans, oScratch);
      if (oPlain.HasCompared()) {
        const auto oDifference = aFrames[n % 2].DifferenceFrom(aFrames[1 - n % 2]);
        EXPECT_EQ(oDifference.nSum, static_cast<uint64_t>(oPlain.Sum()));
        EXPECT_EQ(oDifference.nCount, static_cast<uint64_t>(oPlain.Count()));
      }
      for (int y = 0; y < nHeight; ++y)
        ASSERT_EQ(std::memcmp(oActual.Row<char>(y), oExpected.Row<char>(y), static_cast<size_t>(nWidth)), 0)
            << y;
    }
    EXPECT_EQ(oRoll.GetProcessorState(), ClIpAutoRoll::eStateFinished);
  }
}

}  // namespace
