// The steps of the capture modes at their limits, with frames made by hand.
#include <gtest/gtest.h>

#include <vector>

#include "MXCalibrate/CalibrateGeometricData.h"
#include "MXLiveScannerAPI/CaptureCheck.h"
#include "MXLiveScannerAPI/DirtMeter.h"
#include "MXLiveScannerAPI/FingerDetector.h"
#include "MXLiveScannerAPI/FrameRoad.h"
#include "MXLiveScannerAPI/MaskChange.h"
#include "MXLiveScannerAPI/SignaturePad.h"

namespace {

class Picture : public ClImage {
 public:
  Picture(int nWidth, int nHeight, int nGrey) {
    NewWithType(eUint8, nWidth, nHeight, 1, 0, 0, true);
    ClImage::operator=(static_cast<unsigned char>(nGrey));
  }
  /// 200 by 100, of which the first pixels have a grey each.
  Picture(const std::vector<uint8_t>& aFirst, int nOthers) : Picture(200, 100, nOthers) {
    for (size_t n = 0; n < aFirst.size(); ++n) Row<uint8_t>(static_cast<int>(n / 200))[n % 200] = aFirst[n];
  }
  void Fill(int nX, int nY, int nWidth, int nHeight, int nGrey) {
    for (int y = nY; y < nY + nHeight; ++y)
      std::fill_n(Row<uint8_t>(y) + nX, nWidth, static_cast<uint8_t>(nGrey));
  }
};

Picture MaskOf(size_t nFingerPixels) {
  return Picture(std::vector<uint8_t>(nFingerPixels, 254), 255);
}

TEST(FingerDetector, DecidesByTheCountAndItsChangeEachAtItsLimit) {
  const Picture oFrame(200, 100, 0);
  const struct {
    size_t nBefore, nCount;
    ClFingerDetector::EDecision eWanted;
  } aCases[] = {{1000, 1000, ClFingerDetector::eNoFinger}, {1001, 1001, ClFingerDetector::eSteady},
                {2000, 1800, ClFingerDetector::eUnsteady}, {2000, 1801, ClFingerDetector::eSteady},
                {2000, 2199, ClFingerDetector::eSteady},   {2000, 2200, ClFingerDetector::eUnsteady},
                {0, 5000, ClFingerDetector::eUnsteady},    {0, 5001, ClFingerDetector::eSteady}};
  for (const auto& oCase : aCases) {
    ClFingerDetector oDetector;
    oDetector.Add(oFrame, MaskOf(oCase.nBefore));
    EXPECT_EQ(oDetector.Add(oFrame, MaskOf(oCase.nCount)), oCase.eWanted)
        << oCase.nBefore << " to " << oCase.nCount;
  }
}

TEST(FingerDetector, ComparesEachFrameWithTheOneBeforeAndTheFirstWithBlack) {
  std::vector<uint8_t> aJustStill(1537, 255);  // 99999999 in squares
  aJustStill.insert(aJustStill.end(), {237, 20, 2, 1});
  std::vector<uint8_t> aMoved = aJustStill;
  aMoved.push_back(1);
  const Picture oMask = MaskOf(6000);
  ClFingerDetector oDetector;
  EXPECT_EQ(oDetector.Add(Picture(aJustStill, 0), oMask), ClFingerDetector::eSteady);
  oDetector.Reset();
  EXPECT_EQ(oDetector.Add(Picture(aMoved, 0), oMask), ClFingerDetector::eNoFinger);
  EXPECT_EQ(oDetector.Add(Picture(aMoved, 0), oMask), ClFingerDetector::eSteady);
  EXPECT_EQ(oDetector.Add(Picture(200, 100, 0), oMask), ClFingerDetector::eNoFinger) << "in either direction";
  EXPECT_EQ(oDetector.Add(Picture(200, 100, 0), oMask), ClFingerDetector::eSteady);
}

TEST(CaptureCheck, ATenthOfTheLitPixelsMayLoseAQuarterOfTheirLight) {
  const Picture oPreview(100, 10, 100);
  const auto IsGoodWith = [&](int nDarker, int nGrey) {
    Picture oCapture(100, 10, 100);
    for (int n = 0; n < nDarker; ++n) oCapture.Fill(10 + n % 10, n / 10, 1, 1, nGrey);
    return ClCaptureCheck::KeepsItsLight(oPreview, oCapture);
  };
  // 720 pixels count: the middle 80 columns of the first 9 rows.
  EXPECT_TRUE(IsGoodWith(71, 74));
  EXPECT_FALSE(IsGoodWith(72, 74));
  EXPECT_TRUE(IsGoodWith(90, 75));
  Picture oMargins(100, 10, 100);
  oMargins.Fill(0, 0, 10, 10, 0);
  oMargins.Fill(90, 0, 10, 10, 0);
  oMargins.Fill(0, 9, 100, 1, 0);
  EXPECT_TRUE(ClCaptureCheck::KeepsItsLight(oPreview, oMargins));
  const Picture oRow(100, 1, 100);
  EXPECT_FALSE(ClCaptureCheck::KeepsItsLight(oRow, oRow)) << "no row is left";
}

TEST(CaptureCheck, PixelsUpTo16AreDark) {
  const Picture oDark(100, 10, 16), oLit(100, 10, 17);
  EXPECT_FALSE(ClCaptureCheck::KeepsItsLight(oDark, oDark)) << "nothing is lit";
  EXPECT_TRUE(ClCaptureCheck::KeepsItsLight(oLit, oLit));
}

TEST(MaskChange, ACaptureNeedsMoreThanAThousandPixelsAtThePreviewsScale) {
  ClMaskChange oChange(false);
  Picture oNothing(200, 200, 255);
  const auto IsComplete = [&](int nExtra, int nGrey) {
    Picture oCapture(400, 400, 255);
    oCapture.Fill(100, 100, 40, 100, nGrey);
    oCapture.Fill(100, 200, nExtra, 1, nGrey);
    return oChange.IsComplete(oNothing, oCapture);
  };
  EXPECT_FALSE(IsComplete(3, 160));
  EXPECT_TRUE(IsComplete(4, 160));
  EXPECT_FALSE(IsComplete(4, 161)) << "too bright for a ridge";
}

TEST(MaskChange, ACaptureThatLostAFifthOfItsPixelsIsNotComplete) {
  // The comparison widens each area by 3 pixels to all sides: 106 rows, of which 100 count as the capture's
  // own.
  const auto IsComplete = [](int nColumns, bool bSkipTop, int nTopColumns, int nGained = 0) {
    Picture oPreview(200, 200, 255), oCapture(400, 400, 255);
    oPreview.Fill(60, 60, 60, 100, 0);
    oCapture.Fill(120, 120, 2 * nColumns, 200, 0);
    oCapture.Fill(270, 120, 2 * nGained, 200, 0);
    oPreview.Fill(20, 10, nTopColumns, 20, 0);
    return ClMaskChange(bSkipTop).IsComplete(oPreview, oCapture);
  };
  EXPECT_TRUE(IsComplete(51, false, 0)) << "954 of 1020";
  EXPECT_FALSE(IsComplete(50, false, 0)) << "1060 of 1000";
  EXPECT_FALSE(IsComplete(60, false, 100));
  EXPECT_TRUE(IsComplete(60, true, 100)) << "the upper fifth does not count";
  EXPECT_TRUE(IsComplete(10, false, 0, 50)) << "a finger that has moved";
}

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
  struct Specks : Picture {
    explicit Specks(int nGrey) : Picture(174, 246, 0) {
      for (int y = 5; y < 246; y += 10)
        for (int x = 5; x < 174; x += 10) Fill(x, y, 1, 1, nGrey);
    }
  };
  /// Every second frame counts.
  ClDirtMeter::ESight AddTwice(const ClImage& oFrame) {
    EXPECT_NE(m_oMeter.Add(oFrame), ClDirtMeter::eMeasured);
    return m_oMeter.Add(oFrame);
  }

  const Picture m_oBlack{174, 246, 0};
  ClDirtMeter m_oMeter{Calibration(), m_oBlack};
};

TEST_F(DirtMeter, TheBrightestTenthOfThePlatenShowsWhetherItIsCovered) {
  Picture oFrame(174, 246, 255);
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
    EXPECT_EQ(m_oMeter.Add(Picture(174, 246, 200)), ClDirtMeter::eCovered);
    EXPECT_EQ(m_oMeter.Add(Picture(174, 246, 200)), ClDirtMeter::eCovered)
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
  const Picture oFrame(4, 4, 0);
  ClDirtMeter oMeter(oData, oFrame);
  for (int n = 0; n < 34; ++n) oMeter.Add(oFrame);
  EXPECT_EQ(oMeter.Level(), 0);
}

TEST(FrameRoad, TheTwoPlanesOfASequenceMayComeInEitherOrder) {
  Picture oDifference(4, 1, 9);
  const unsigned char aDarkFirst[] = {0x30, 5, 80, 0, 0x41, 9, 70, 255};
  const unsigned char aLitFirst[] = {0x41, 9, 70, 255, 0x30, 5, 80, 0};
  for (const unsigned char* pSequence : {aDarkFirst, aLitFirst}) {
    ClFrameRoad::Difference(pSequence, oDifference);
    const uint8_t* pRow = oDifference.Row<uint8_t>(0);
    EXPECT_EQ(std::vector<int>(pRow, pRow + 4), (std::vector<int>{0x11, 4, 0, 255}));
  }
}

/// A pad that sees a pen every tenth of a second.
class SignaturePad : public testing::Test {
 protected:
  SignaturePad() { m_oPad.Start(800, 0); }
  ClSignaturePad::StOutcome Add(ClPenDetector::EKind eKind, double dX = 0.0, double dWide = 0.0) {
    ClPenDetector::StSight oSight;
    oSight.eKind = eKind;
    oSight.dX = dX;
    oSight.dMeanY = 100.0;
    oSight.nWeight = 9;
    oSight.dWide = dWide;
    m_nNow += 100000;
    return m_oPad.Follow(oSight, m_nNow, 2.0);
  }
  bool HasInk() {
    ClImage oPreview;
    m_oPad.CopyPreview(oPreview);
    return std::count(oPreview.Data(), oPreview.Data() + oPreview.DataBytes(), 255) > 0;
  }

  ClSignaturePad m_oPad;
  ClSignaturePad::Ticks m_nNow = 0;
};

TEST_F(SignaturePad, IsDoneOnceAfterThePauseAndBeginsAnewWithThePen) {
  for (int n = 0; n < 51; ++n) Add(ClPenDetector::ePen, 100.0 + n);
  for (int n = 0; n < 20; ++n)
    EXPECT_EQ(Add(ClPenDetector::eNothing).eState, ClVTLiveCaptureBase::eCaptureStateNoFinger);
  const ClSignaturePad::StOutcome oDone = Add(ClPenDetector::eNothing);
  EXPECT_EQ(oDone.eState, ClVTLiveCaptureBase::eCaptureStateDone);
  EXPECT_TRUE(oDone.bJustDone);
  EXPECT_FALSE(Add(ClPenDetector::eNothing).bJustDone);
  EXPECT_TRUE(HasInk());
  EXPECT_EQ(Add(ClPenDetector::ePen, 300.0).eState, ClVTLiveCaptureBase::eCaptureStateNoFinger);
  EXPECT_FALSE(HasInk()) << "what was written before was another signature";
}

TEST_F(SignaturePad, AHandIsJudgedByItsOwnPlaceAndKeepsTheSignatureOpen) {
  for (int n = 0; n < 51; ++n) Add(ClPenDetector::ePen, 100.0 + n);
  auto eState = ClVTLiveCaptureBase::eCaptureStateNone;
  for (int n = 0; n < 25; ++n) eState = Add(ClPenDetector::eLargeObject, 500.0, 900.0 - 10.0 * n).eState;
  EXPECT_EQ(eState, ClVTLiveCaptureBase::eCaptureStateSwipeBack);
  m_oPad.ResetSwipe();
  EXPECT_EQ(Add(ClPenDetector::eLargeObject, 0.0, 0.0).eState, ClVTLiveCaptureBase::eCaptureStateNoFinger);
}

}  // namespace
