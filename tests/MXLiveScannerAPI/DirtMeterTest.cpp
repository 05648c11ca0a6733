// How dirty the platen is.
#include <gtest/gtest.h>

#include <vector>

#include "MXCalibrate/CalibrateGeometricData.h"
#include "MXLiveScannerAPI/DirtMeter.h"
#include "TestPicture.h"

namespace {

/// A meter of frames of 174 by 246, whose platen reaches from (20, 30) to (149, 199).
class DirtMeter : public testing::Test {
 protected:
  struct Calibration : ClCalibrateGeometricData {
    Calibration() {
      m_nSourceWidth = 174;
      m_nSourceHeight = 246;
      m_aActual[0].Add({149.9, 30.9});
      m_aActual[0].Add({20.9, 199.9});
    }
  };
  /// Single pixels on black, ten apart.
  struct Specks : ClTestPicture {
    explicit Specks(int nGrey) : ClTestPicture(174, 246, 0) {
      for (int y = 5; y < 246; y += 10)
        for (int x = 5; x < 174; x += 10) Fill(x, y, 1, 1, nGrey);
    }
  };
  /// Every second frame counts.
  ClDirtMeter::ESight AddTwice(const ClImage& oFrame) {
    EXPECT_NE(m_oMeter.Add(oFrame), ClDirtMeter::eMeasured);
    return m_oMeter.Add(oFrame);
  }

  const ClTestPicture m_oBlack{174, 246, 0};
  ClDirtMeter m_oMeter{Calibration(), m_oBlack};
};

TEST_F(DirtMeter, TheBrightestTenthOfThePlatenShowsWhetherItIsCovered) {
  ClTestPicture oFrame(174, 246, 255);
  oFrame.Fill(20, 30, 130, 170, 24);
  EXPECT_EQ(m_oMeter.Add(oFrame), ClDirtMeter::eEmpty) << "what lies outside does not count";
  oFrame.Fill(20, 30, 1, 1, 25);
  EXPECT_EQ(m_oMeter.Add(oFrame), ClDirtMeter::eCovered);
  oFrame.Fill(20, 30, 1, 1, 24);
  oFrame.Fill(149, 199, 1, 1, 25);
  EXPECT_EQ(m_oMeter.Add(oFrame), ClDirtMeter::eCovered) << "the outermost points are part of it";
}

TEST_F(DirtMeter, ASpeckStandsOutOfSixteenEmptyFramesBy23) {
  // The mean round a speck is a ninth of it: 25 stands out by 23, 24 by 22.
  for (const auto& [nBright, nWanted] : {std::pair{8, 0}, std::pair{9, 100}}) {
    m_oMeter.Reset();
    EXPECT_EQ(AddTwice(m_oBlack), ClDirtMeter::eEmpty);
    for (int n = 0; n < 15; ++n) EXPECT_EQ(AddTwice(Specks(n < nBright ? 2 : 1)), ClDirtMeter::eEmpty);
    EXPECT_EQ(m_oMeter.Add(ClTestPicture(174, 246, 200)), ClDirtMeter::eCovered);
    EXPECT_EQ(m_oMeter.Add(ClTestPicture(174, 246, 200)), ClDirtMeter::eCovered)
        << "a finger leaves the measure alone";
    EXPECT_EQ(AddTwice(Specks(1)), ClDirtMeter::eMeasured);
    EXPECT_EQ(m_oMeter.Level(), nWanted);
  }
  for (int n = 0; n < 15; ++n) AddTwice(m_oBlack);
  EXPECT_EQ(m_oMeter.Level(), 0) << "old frames leave the sum";
}

TEST(SmallDirtMeter, MeasuresFramesWhoseBlocksAreEmpty) {
  ClCalibrateGeometricData oData;
  oData.m_nSourceWidth = oData.m_nSourceHeight = 4;
  oData.m_aActual[0].Add({0, 0});
  oData.m_aActual[0].Add({3, 3});
  const ClTestPicture oFrame(4, 4, 0);
  ClDirtMeter oMeter(oData, oFrame);
  for (int n = 0; n < 34; ++n) oMeter.Add(oFrame);
  EXPECT_EQ(oMeter.Level(), 0);
}

}  // namespace
