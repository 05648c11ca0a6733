// Surfaces through scattered values.
#include <gmock/gmock.h>

#include <random>

#include "MXCalibrate/IpInterpolate2D.h"
#include "MXTools/FpImage.h"
#include "Raised.h"

namespace {

using testing::EndsWith;

class Interpolate2D : public testing::Test {
 protected:
  Interpolate2D() {
    for (const ClVector& o : {ClVector(2, 3), ClVector(12, 2), ClVector(7, 11), ClVector(15, 14)})
      m_aPoints.Add(o);
    m_oProcessor.m_pValues = m_aValues;
    m_oProcessor.m_pPoints = &m_aPoints;
    m_oProcessor.nInTargetWidth = 18;
    m_oProcessor.nInTargetHeight = 16;
    m_oProcessor.m_nDataType = ClImage::eDouble64;
    m_oProcessor.m_aOutput.New(1);
    m_oProcessor.m_aOutput[0] = &m_oOut;
  }

  double m_aValues[8] = {10, 60, 35.5, -20, 1, 2, 3, 4};
  ClIpInterpolate2DBase::Points m_aPoints;
  ClImage m_oOut;
  ClIpInterpolate2D<ClRadialBasisSquaredDist> m_oProcessor;
};

TEST_F(Interpolate2D, MeetsEachValueAtItsPointForEachImage) {
  ClImage oSecond;
  m_oProcessor.m_nImages = 2;
  m_oProcessor.m_aOutput.New(2);
  m_oProcessor.m_aOutput[0] = &m_oOut;
  m_oProcessor.m_aOutput[1] = &oSecond;
  ASSERT_EQ(m_oProcessor.Apply(), 0);
  for (unsigned int n = 0; n < 4; ++n) {
    const int nX = static_cast<int>(m_aPoints[n].x), nY = static_cast<int>(m_aPoints[n].y);
    EXPECT_NEAR(m_oOut.Row<double>(nY)[nX], m_aValues[n], 1e-9);
    EXPECT_NEAR(oSecond.Row<double>(nY)[nX], m_aValues[4 + n], 1e-9);
  }
}

TEST_F(Interpolate2D, BlocksAreBilinearInIntegersAndReachTheLastRowAndColumn) {
  ClImage oExact;
  m_oProcessor.m_nDataType = ClImage::eUint8;
  m_oProcessor.m_dLowerLimit = -5;
  m_oProcessor.m_dUpperLimit = 300;
  m_oProcessor.m_aOutput[0] = &oExact;
  m_oProcessor.Apply();
  m_oProcessor.m_aOutput[0] = &m_oOut;
  for (const auto& [nWidth, nHeight, nBlock] :
       {std::tuple<int, int, unsigned int>{16, 16, 4}, {18, 15, 4}, {18, 16, 100}}) {
    m_oProcessor.nInTargetWidth = nWidth;
    m_oProcessor.nInTargetHeight = nHeight;
    m_oProcessor.m_nBlockSize = nBlock;
    ASSERT_EQ(m_oProcessor.Apply(), 0);
    const int nStep = static_cast<int>(nBlock);
    for (int nY = 0; nY < nHeight; ++nY) {
      for (int nX = 0; nX < nWidth; ++nX) {
        const int nX0 = nX / nStep * nStep, nX1 = std::min(nX0 + nStep, nWidth - 1);
        const int nY0 = nY / nStep * nStep, nY1 = std::min(nY0 + nStep, nHeight - 1);
        const int nWide = std::max(1, nX1 - nX0), nHigh = std::max(1, nY1 - nY0);
        // Between two samples of a row or column, in parts of the block's side.
        const auto InRow = [&](const uint8_t* pRow) {
          return pRow[nX0] * (nX0 + nWide - nX) + pRow[nX1] * (nX - nX0);
        };
        const int nExpected = (InRow(oExact.Row<uint8_t>(nY0)) * (nY0 + nHigh - nY) +
                               InRow(oExact.Row<uint8_t>(nY1)) * (nY - nY0)) /
                              (nWide * nHigh);
        ASSERT_EQ(m_oOut.Row<uint8_t>(nY)[nX], nExpected) << nWidth << ": " << nX << ' ' << nY;
      }
    }
  }
}

TEST_F(Interpolate2D, LargeBlocksDoNotWrapTheSumsOf16BitSamples) {
  m_oProcessor.m_nDataType = ClImage::eUint16;
  m_oProcessor.m_dLowerLimit = m_oProcessor.m_dUpperLimit = 60000;
  m_oProcessor.m_nBlockSize = 300;
  m_oProcessor.nInTargetWidth = m_oProcessor.nInTargetHeight = 400;
  ASSERT_EQ(m_oProcessor.Apply(), 0);
  EXPECT_EQ(m_oOut.Row<uint16_t>(150)[150], 60000);
  EXPECT_EQ(m_oOut.Row<uint16_t>(399)[350], 60000);
}

TEST_F(Interpolate2D, ValuesStayWithinTheLimitsAndThoseOfTheType) {
  m_oProcessor.m_nDataType = ClImage::eUint8;
  m_oProcessor.m_dLowerLimit = 10;
  m_oProcessor.m_dUpperLimit = 50;
  ASSERT_EQ(m_oProcessor.Apply(), 0);
  EXPECT_EQ(m_oOut.Row<uint8_t>(14)[15], 10) << "the value there is -20";
  EXPECT_EQ(m_oOut.Row<uint8_t>(2)[12], 50);
  m_oProcessor.m_dLowerLimit = -1e300;
  m_oProcessor.m_nDataType = ClImage::eInt8;
  ASSERT_EQ(m_oProcessor.Apply(), 0);
  EXPECT_NEAR(m_oOut.Row<int8_t>(14)[15], -20, 1);
}

TEST_F(Interpolate2D, ReturnsMinus44ForUnknownTypesAndASinglePoint) {
  m_oProcessor.m_nDataType = 3;
  EXPECT_EQ(m_oProcessor.Apply(), -44);
  m_oProcessor.m_nDataType = ClImage::eUint8;
  m_aPoints.SetEntries(1);
  EXPECT_EQ(m_oProcessor.Apply(), -44) << "a single basis is 0 at its own point";
}

TEST_F(Interpolate2D, RefusesGridsInWhichTwoPointsCoincideOrNearlyDoAndNoOthers) {
  std::mt19937 oRandom(1);
  const auto Uniform = [&](double dFrom, double dTo) {
    return std::uniform_real_distribution<>(dFrom, dTo)(oRandom);
  };
  std::vector<double> aValues(64);
  m_oProcessor.m_pValues = aValues.data();
  m_aPoints.SetEntries(64);
  for (int nTrial = 0; nTrial < 100; ++nTrial) {
    for (unsigned int n = 0; n < 64; ++n) {
      m_aPoints[n] = ClVector(200 * (n / 8) + Uniform(-40, 40), 200 * (n % 8) + Uniform(-40, 40));
      aValues[n] = Uniform(10, 255);
    }
    EXPECT_EQ(m_oProcessor.Apply(), 0) << nTrial;
    const auto nTwin = static_cast<unsigned int>(oRandom() % 64);
    const auto nOther = static_cast<unsigned int>(nTwin + 1 + oRandom() % 63) % 64;
    m_aPoints[nOther] = m_aPoints[nTwin] + ClVector(3e-5, 0);
    aValues[nOther] = aValues[nTwin] + 50;
    EXPECT_EQ(m_oProcessor.Apply(), -44) << nTrial;
    m_aPoints[nOther] = m_aPoints[nTwin];
    EXPECT_EQ(m_oProcessor.Apply(), -44) << nTrial;
    aValues[nOther] = aValues[nTwin];
    EXPECT_EQ(m_oProcessor.Apply(), -44) << nTrial << ", with one value";
  }
}

TEST_F(Interpolate2D, NamesAMissingParameter) {
  const auto ExpectRefusal = [this](const std::string& sWhat) {
    EXPECT_FALSE(m_oProcessor.CanApply());
    EXPECT_THAT(Raised([&] { m_oProcessor.Apply(); }),
                testing::Pair(-44, EndsWith("invalid parameter (" + sWhat + ")")));
  };
  m_oProcessor.m_nBlockSize = 0;
  ExpectRefusal("blocksize");
  m_oProcessor.nInTargetHeight = 0;
  ExpectRefusal("target height");
  m_oProcessor.m_pPoints = nullptr;
  ExpectRefusal("input reference points");
  m_oProcessor.m_pValues = nullptr;
  ExpectRefusal("input interpolation values");
  m_oProcessor.m_aOutput[0] = nullptr;
  ExpectRefusal("NULL output image");
  m_oProcessor.m_nImages = 3;
  ExpectRefusal("output image array");
}

}  // namespace
