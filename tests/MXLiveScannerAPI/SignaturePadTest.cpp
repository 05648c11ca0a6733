// From pictures of a pen to the end of a signature.
#include <gtest/gtest.h>

#include <vector>

#include "MXLiveScannerAPI/SignaturePad.h"
#include "TestPicture.h"

namespace {

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
