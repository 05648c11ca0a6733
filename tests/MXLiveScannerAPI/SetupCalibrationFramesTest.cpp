// Frames of a set-up scanner: where its dots end up, how even its light becomes, what it allocates.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "Allocations.h"
#include "CalibrationBlocks.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXTools/Exception.h"
#include "Raised.h"

namespace {

using testing::EndsWith;

constexpr const char* cszSerial = "VT40-AD0042";

void SetUpScanner(ClVT40SetupCalibrationData& oSetup, const Bytes& aGeo, const Bytes& aBrightness) {
  oSetup.Setup(aGeo.data(), static_cast<unsigned int>(aGeo.size()), aBrightness.data(),
               static_cast<unsigned int>(aBrightness.size()), nullptr, 0);
}

/// A black frame with a soft white dot at each point, scaled by dX and dY and moved by nLeft columns.
void DrawDots(ClImage& oFrame, int nWidth, int nHeight, double dX, double dY, int nLeft = 0) {
  oFrame.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 0, 0, true);
  oFrame = static_cast<unsigned char>(0);
  for (const ClVector& o : ActualGrid()) {
    const double dAtX = o.x * dX - nLeft;
    const double dAtY = o.y * dY;
    for (int nY = static_cast<int>(dAtY) - 12; nY <= dAtY + 12; ++nY) {
      for (int nX = static_cast<int>(dAtX) - 12; nX <= dAtX + 12; ++nX) {
        if (nX < 0 || nY < 0 || nX >= nWidth || nY >= nHeight) continue;
        const double dFarX = (nX - dAtX) / dX / 8;
        const double dFarY = (nY - dAtY) / dY / 6;
        oFrame.Row<uint8_t>(nY)[nX] = static_cast<uint8_t>(220 * std::exp(-(dFarX * dFarX + dFarY * dFarY)));
      }
    }
  }
}

/// Expects a dot's centre of mass at each target point that lies in the part of the target from nLeft on.
void ExpectDots(const ClImage& oOut, double dScale, int nLeft) {
  int nSeen = 0;
  for (const ClVector& o : TargetGrid()) {
    const double dX = o.x * dScale - nLeft;
    const double dY = o.y * dScale;
    if (dX < 20 || dX > oOut.Width() - 20 || dY > oOut.Height() - 20) continue;
    double dMass = 0;
    ClVector oCentre;
    for (int nY = static_cast<int>(dY) - 14; nY <= dY + 14; ++nY) {
      for (int nX = static_cast<int>(dX) - 14; nX <= dX + 14; ++nX) {
        const double dGrey = oOut.Row<uint8_t>(nY)[nX];
        dMass += dGrey;
        oCentre = oCentre + ClVector(nX, nY) * dGrey;
      }
    }
    ASSERT_GT(dMass, 1000) << o.x << ' ' << o.y;
    oCentre = oCentre * (1 / dMass);
    ASSERT_NEAR(oCentre.x, dX, 0.35) << o.x << ' ' << o.y;
    ASSERT_NEAR(oCentre.y, dY, 0.35) << o.x << ' ' << o.y;
    ++nSeen;
  }
  EXPECT_GE(nSeen, 12);
}

class Frames : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    m_pSetup = std::make_unique<ClVT40SetupCalibrationData>(cszSerial, false);
    SetUpScanner(*m_pSetup, GeometricBlock(ClGeometricRecord()), LegacyBrightnessBlock());
  }
  static void TearDownTestSuite() { m_pSetup.reset(); }

  static std::unique_ptr<ClVT40SetupCalibrationData> m_pSetup;
  ClImage m_oFrame;
  ClImage m_oOut;
};

std::unique_ptr<ClVT40SetupCalibrationData> Frames::m_pSetup;

TEST_F(Frames, EachKindShowsTheDotsOfTheTargetInTheirPlaces) {
  using Setup = ClVT40SetupCalibrationData;
  // A roll is the middle of the upper half; a full frame after it shows that no region stays set.
  const struct {
    void (Setup::*pfnCalibrate)(ClImage&, ClImage&);
    int nWidth, nHeight;
    double dX, dY;
    int nFirstColumn, nSide;
    double dScale;
    int nLeft, nPels;
  } aKinds[] = {{&Setup::CalibratePreview, 1920, 1360, 0.5, 0.5, 0, 800, 0.5, 0, 9842},
                {&Setup::CalibratePreview, 960, 1360, 0.25, 0.5, 0, 800, 0.5, 0, 9842},
                {&Setup::CalibrateRoll, 1920, 1362, 1, 1, 960, 800, 1, 400, 19685},
                {&Setup::CalibrateRoll, 960, 1362, 0.5, 1, 480, 800, 1, 400, 19685},
                {&Setup::CalibrateFull, 3840, 2720, 1, 1, 0, 1600, 1, 0, 19685},
                {&Setup::CalibrateFull, 1920, 2720, 0.5, 1, 0, 1600, 1, 0, 19685}};
  for (const auto& o : aKinds) {
    SCOPED_TRACE(testing::Message() << o.nWidth << " x " << o.nHeight);
    DrawDots(m_oFrame, o.nWidth, o.nHeight, o.dX, o.dY, o.nFirstColumn);
    (m_pSetup.get()->*o.pfnCalibrate)(m_oFrame, m_oOut);
    ASSERT_TRUE(m_oOut.HasSize(o.nSide, o.nSide));
    EXPECT_EQ(m_oOut.PelsX(), o.nPels);
    ExpectDots(m_oOut, o.dScale, o.nLeft);
  }
}

TEST_F(Frames, OtherSizesAndTypesAreRefusedAndLeaveTheOutputAlone) {
  using Setup = ClVT40SetupCalibrationData;
  for (const auto& [pfnCalibrate, eType, nWidth, nHeight, nNumber] :
       {std::tuple{&Setup::CalibratePreview, ClImage::eUint8, 800, 800, -103L},
        {&Setup::CalibrateFull, ClImage::eUint8, 1920, 1360, -103L},
        {&Setup::CalibrateRoll, ClImage::eUint8, 1920, 1360, -103L},
        {&Setup::CalibrateRoll, ClImage::eUint8, 960, 1360, -103L},
        {&Setup::CalibrateRoll, ClImage::eInt16, 960, 1362, -103L},
        {&Setup::CalibratePreview, ClImage::eInt16, 1920, 1360, -44L}}) {
    m_oFrame.NewWithType(eType, nWidth, nHeight, 1, 0, 0, true);
    // This is a copy, since older compilers let no closure capture the names of a structured binding.
    const auto pfn = pfnCalibrate;
    const auto oRaised = Raised([&] { (m_pSetup.get()->*pfn)(m_oFrame, m_oOut); });
    EXPECT_EQ(oRaised.first, nNumber) << nWidth;
    EXPECT_EQ(oRaised.second.find("Unsupported image dimensions.") != std::string::npos, nNumber == -103);
  }
  EXPECT_TRUE(m_oOut.Data() == nullptr);
}

/// A picture whose grey is a quarter of the light of IlluminationSamples, so that 4 times the
/// reference flattens it. dScale is the target's size relative to the full one.
void DrawLight(ClImage& oImage, int nWidth, int nHeight, double dScale, int nLeft) {
  oImage.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 0, 0, true);
  for (int nY = 0; nY < nHeight; ++nY) {
    for (int nX = 0; nX < nWidth; ++nX) {
      const double dX = ((nX + nLeft) / dScale - 800) / 800;
      const double dY = (nY / dScale - 800) / 800;
      oImage.Row<uint8_t>(nY)[nX] = static_cast<uint8_t>(100 * (1 - (dX * dX + dY * dY) / 6));
    }
  }
}

/// Expects the grey everywhere inside the grid.
void ExpectEven(const ClImage& oOut, double dScale, int nLeft, int nGrey) {
  for (int nY = static_cast<int>(150 * dScale); nY < std::min(1450 * dScale, oOut.Height() + 0.0); nY += 7) {
    for (int nX = 0; nX < oOut.Width(); nX += 7) {
      const double dTarget = (nX + nLeft) / dScale;
      if (dTarget < 150 || dTarget > 1450) continue;
      ASSERT_NEAR(oOut.Row<uint8_t>(nY)[nX], nGrey, 4) << nX << ' ' << nY;
    }
  }
}

TEST_F(Frames, RectifiedPicturesBecomeEven) {
  DrawLight(m_oFrame, 800, 800, 0.5, 0);
  m_pSetup->AdjustBrightnessPreview(m_oFrame, m_oOut, 200);
  ExpectEven(m_oOut, 0.5, 0, 100);
  DrawLight(m_oFrame, 1600, 1600, 1, 0);
  m_pSetup->AdjustBrightnessFull(m_oFrame, m_oOut, 200);
  ExpectEven(m_oOut, 1, 0, 100);
  DrawLight(m_oFrame, 800, 800, 1, 400);
  m_pSetup->AdjustBrightnessRoll(m_oFrame, m_oOut, 240);
  ExpectEven(m_oOut, 1, 400, 120);
}

TEST_F(Frames, RawPicturesAreFlattenedInTheSensorsCoordinates) {
  using Setup = ClVT40SetupCalibrationData;
  const auto oAdjust = [&](auto pfnAdjust, int nWidth, int nHeight) {
    m_oFrame.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 0, 0, true);
    m_oFrame = static_cast<unsigned char>(100);
    return Raised([&] { (m_pSetup.get()->*pfnAdjust)(m_oFrame, m_oOut, 255); });
  };
  for (const auto& [pfnAdjust, nWidth] : {std::pair{&Setup::AdjustBrightnessMiniRAW, 960},
                                          {&Setup::AdjustBrightnessMiniRAW, 480},
                                          {&Setup::AdjustBrightnessSignature, 960}}) {
    ASSERT_EQ(oAdjust(pfnAdjust, nWidth, 680).first, 0);
    // A value of 255 with a flat 100 gives 255 * 100 / reference: the reference itself at the grid's points.
    for (size_t n : {27u, 36u, 9u, 54u}) {
      const ClVector o = ActualGrid()[n];
      const int nGrey = m_oOut.Row<uint8_t>(static_cast<int>(o.y / 4))[static_cast<int>(o.x * nWidth / 3840)];
      EXPECT_NEAR(nGrey, 255 * 100 / IlluminationSamples()[n], 3) << n;
    }
  }
  EXPECT_EQ(oAdjust(&Setup::AdjustBrightnessSignature, 480, 680).first, -44)
      << "the right height with another width";
  EXPECT_EQ(oAdjust(&Setup::AdjustBrightnessSignature, 960, 340).first, 0);
  EXPECT_TRUE(m_oOut.HasSize(960, 340));
  EXPECT_EQ(oAdjust(&Setup::AdjustBrightnessMiniRAW, 960, 340).first, -103);
  EXPECT_THAT(oAdjust(&Setup::AdjustBrightnessSignature, 960, 341).second, EndsWith("Wrong image size."));
}

TEST_F(Frames, ASecondFrameOfARollAllocatesNothing) {
  ClImage oFlat;
  DrawDots(m_oFrame, 1920, 1362, 1, 1, 960);
  long nBefore = 0;
  for (int nFrame = 0; nFrame < 2; ++nFrame) {
    nBefore = Allocations::Count();
    m_pSetup->CalibrateRoll(m_oFrame, m_oOut);
    m_pSetup->AdjustBrightnessRoll(m_oOut, oFlat, 224);
  }
  EXPECT_EQ(Allocations::Count(), nBefore);
}

TEST_F(Frames, ADamagedBrightnessBlockStillLeavesFinishedMaps) {
  ClVT40SetupCalibrationData oSetup(cszSerial, false);
  Bytes aBrightness = LegacyBrightnessBlock();
  aBrightness.pop_back();
  EXPECT_EQ(Raised([&] { SetUpScanner(oSetup, GeometricBlock(ClGeometricRecord()), aBrightness); }).first,
            -201);
  DrawDots(m_oFrame, 960, 1360, 0.25, 0.5);
  oSetup.CalibratePreview(m_oFrame, m_oOut);
  ExpectDots(m_oOut, 0.5, 0);
  EXPECT_EQ(Raised([&] { oSetup.AdjustBrightnessPreview(m_oOut, m_oOut, 224); }).first, -44)
      << "no reference";
}

TEST_F(Frames, AGridThatAllowsNoMapIsMissedByEachFrame) {
  ClGeometricRecord oRecord;
  for (size_t n = 0; n < 64; ++n) oRecord.aTarget[n] = ClVector(10.0 * static_cast<double>(n), 5);
  // Later revisions refuse such a grid at once.
  ClVT40SetupCalibrationData oSetup("VT40-AA0042", false);
  testing::internal::CaptureStdout();
  SetUpScanner(oSetup, GeometricBlock(oRecord), LegacyBrightnessBlock());
  EXPECT_THAT(testing::internal::GetCapturedStdout(), testing::HasSubstr("singularity detected"));
  for (const int nWidth : {960, 1920, 1920}) {
    DrawDots(m_oFrame, nWidth, 1360, nWidth / 3840.0, 0.5);
    EXPECT_THAT(Raised([&] { oSetup.CalibratePreview(m_oFrame, m_oOut); }),
                testing::Pair(-2, EndsWith("Calibrate is not initialized")));
  }
}

}  // namespace
