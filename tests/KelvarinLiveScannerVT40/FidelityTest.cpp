// Captured pictures against what really lay on the platen: the same ridges, at the same positions, for
// different optics.
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "ApiFixture.h"
#include "Pearson.h"
#include "TemporaryDirectory.h"

namespace {

constexpr int cnSide = VTSIM_PICTURE_SIDE;
/// The grid of dots by which the scanner was calibrated: 70 mm of the platen's 81.28 mm, in the middle.
constexpr int cnGridFirst = 111;
constexpr int cnGridLast = 1489;

struct StPicture {
  std::vector<unsigned char> aPixels = std::vector<unsigned char>(static_cast<size_t>(cnSide) * cnSide);
  int At(int x, int y) const { return aPixels[static_cast<size_t>(y) * cnSide + static_cast<size_t>(x)]; }
};

/// Pearson's coefficient of truth and picture over the skin of a window, the picture read nX and nY pixels
/// further on. Windows with too little skin have none: NaN.
double Correlation(const StPicture& oTruth, const StPicture& oMask, const StPicture& oImage, int nX0, int nY0,
                   int nX1, int nY1, int nX, int nY) {
  ClPearson oPearson;
  for (int y = nY0; y < nY1; ++y) {
    for (int x = nX0; x < nX1; ++x) {
      if (oMask.At(x, y) == 255) oPearson.Add(oTruth.At(x, y), oImage.At(x + nX, y + nY));
    }
  }
  const double dN = oPearson.Pairs();
  return dN < 0.9 * (nX1 - nX0) * (nY1 - nY0) && dN < 50000 ? std::nan("") : oPearson.Coefficient();
}

/// Where a parabola through three neighbouring values has its top, relative to the middle one.
double Vertex(double dBefore, double dMiddle, double dBehind) {
  return 0.5 * (dBefore - dBehind) / (dBefore - 2 * dMiddle + dBehind);
}

struct StShifts {
  int nBlocks = 0;
  double dMeanX = 0, dMeanY = 0, dRms = 0;
};

/// How far the ridges of each block lie from their true position: the peak of the block's correlation,
/// between pixels.
StShifts MeasureShifts(const StPicture& oTruth, const StPicture& oMask, const StPicture& oImage) {
  constexpr int cnBlock = 40;
  constexpr int cnReach = 3;
  StShifts oShifts;
  std::vector<double> aX;
  std::vector<double> aY;
  for (int y = cnGridFirst; y + cnBlock <= cnGridLast; y += cnBlock) {
    for (int x = cnGridFirst; x + cnBlock <= cnGridLast; x += cnBlock) {
      const auto At = [&](int nX, int nY) {
        return Correlation(oTruth, oMask, oImage, x, y, x + cnBlock, y + cnBlock, nX, nY);
      };
      int nBestX = 0;
      int nBestY = 0;
      double dBest = At(0, 0);
      if (std::isnan(dBest)) continue;
      for (int nY = -cnReach; nY <= cnReach; ++nY) {
        for (int nX = -cnReach; nX <= cnReach; ++nX) {
          const double d = At(nX, nY);
          if (d > dBest) dBest = d, nBestX = nX, nBestY = nY;
        }
      }
      if (dBest < 0.5) continue;  // smudged skin has no ridges to measure
      aX.push_back(nBestX + Vertex(At(nBestX - 1, nBestY), dBest, At(nBestX + 1, nBestY)));
      aY.push_back(nBestY + Vertex(At(nBestX, nBestY - 1), dBest, At(nBestX, nBestY + 1)));
    }
  }
  oShifts.nBlocks = static_cast<int>(aX.size());
  for (size_t n = 0; n < aX.size(); ++n) {
    oShifts.dMeanX += aX[n] / oShifts.nBlocks;
    oShifts.dMeanY += aY[n] / oShifts.nBlocks;
  }
  for (size_t n = 0; n < aX.size(); ++n) {
    oShifts.dRms +=
        (std::pow(aX[n] - oShifts.dMeanX, 2) + std::pow(aY[n] - oShifts.dMeanY, 2)) / oShifts.nBlocks;
  }
  oShifts.dRms = std::sqrt(oShifts.dRms);
  return oShifts;
}

class Measured : public Api {
 protected:
  /// Fingers all over the platen, so that its corners are measured too.
  static void LoadFingers(const std::string& sSerial) {
    std::string sFingers;
    for (int n = 0; n < 12; ++n) {
      if (n != 0) sFingers += ",";
      sFingers += R"({"print": {"seed": )" + std::to_string(n + 1) + R"(}, "x": )" +
                  std::to_string(10.5 + 20 * (n % 4)) + R"(, "y": )" + std::to_string(14.0 + 26 * (n / 4)) +
                  "}";
    }
    LoadScene(R"({"scanners": [{"serial": ")" + sSerial + R"(", "fingers": [)" + sFingers + "]}]}");
  }

  /// Opens the scanner and takes a picture, and the truth.
  void Take(const std::string& sSerial) {
    ASSERT_EQ(Open(sSerial.c_str()), 0);
    const StDelivered oShot = Image();
    ASSERT_EQ(oShot.nError, 0);
    m_oImage.aPixels = oShot.aPixels;
    unsigned int nSize = static_cast<unsigned int>(m_oTruth.aPixels.size());
    ASSERT_EQ(VTSimGetGroundTruth(nullptr, m_oTruth.aPixels.data(), m_oMask.aPixels.data(), &nSize), 0);
    ASSERT_EQ(LS_VT40CloseScanner(&m_h), 0);
  }

  void Measure(StShifts& oShifts) const {
    oShifts = MeasureShifts(m_oTruth, m_oMask, m_oImage);
    ASSERT_GT(oShifts.nBlocks, 100);
    EXPECT_LE(std::fabs(oShifts.dMeanX), 1.0);
    EXPECT_LE(std::fabs(oShifts.dMeanY), 1.0);
  }

  StPicture m_oImage, m_oTruth, m_oMask;
};

TEST_F(Measured, RidgesLieWhereTheyAreOnThePlaten) {
  // Three optics.
  for (const char* szSerial : {"VT40-AA1001", "VT40-AB2002", "VT40-AD3003"}) {
    SCOPED_TRACE(szSerial);
    LoadFingers(szSerial);
    StShifts oShifts;
    ASSERT_NO_FATAL_FAILURE(Take(szSerial));
    ASSERT_NO_FATAL_FAILURE(Measure(oShifts));
    EXPECT_LE(oShifts.dRms, 0.5);
    EXPECT_GE(Correlation(m_oTruth, m_oMask, m_oImage, cnGridFirst, cnGridFirst, cnGridLast, cnGridLast,
                          static_cast<int>(std::lround(oShifts.dMeanX)),
                          static_cast<int>(std::lround(oShifts.dMeanY))),
              0.85);
  }
}

class MadeRecord : public Measured {
 protected:
  /// The record that the tool makes from a target that lies on the scanner.
  static std::vector<char> Make(const std::string& sSerial) {
    const ClTemporaryDirectory oFolder;
    const std::string sCommand = std::string(KLV_RUN KLV_TOOL) + " calibrate --out " + oFolder.Path() +
                                 R"( --scene '{"scanners": [{"serial": ")" + sSerial +
                                 R"(", "target": {}}]}' >/dev/null)";
    EXPECT_EQ(std::system(sCommand.c_str()), 0);
    std::ifstream oFile(oFolder.Path("geometric.calibrate"), std::ios::binary);
    return {std::istreambuf_iterator<char>(oFile), {}};
  }

  /// The truth half a pixel to the left and further down.
  void MoveTruth() {
    const StPicture oTruth = m_oTruth;
    for (int y = 1; y < cnSide; ++y) {
      for (int x = 0; x + 1 < cnSide; ++x) {
        const int nSum =
            oTruth.At(x, y) + oTruth.At(x + 1, y) + oTruth.At(x, y - 1) + oTruth.At(x + 1, y - 1);
        m_oTruth.aPixels[static_cast<size_t>(y) * cnSide + static_cast<size_t>(x)] =
            static_cast<unsigned char>(nSum / 4);
      }
    }
  }
};

TEST_F(MadeRecord, ServesAsWellAsTheFactorys) {
  const std::string sSerial = "VT40-AC2001";
  const std::vector<char> aRecord = Make(sSerial);
  LoadFingers(sSerial);
  StShifts oFactory;
  ASSERT_NO_FATAL_FAILURE(Take(sSerial));
  ASSERT_NO_FATAL_FAILURE(Measure(oFactory));
  ASSERT_EQ(VTSimSetEpromFile(nullptr, "GEOCAL", aRecord.data(), static_cast<unsigned>(aRecord.size())), 0);
  StShifts oMade;
  ASSERT_NO_FATAL_FAILURE(Take(sSerial));
  // The grid's middle lies at 800 in a made record and at 799.5 in the factory's, and the picture is
  // mirrored. Shifts of half a pixel can't be measured well.
  MoveTruth();
  ASSERT_NO_FATAL_FAILURE(Measure(oMade));
  EXPECT_LE(oMade.dRms, oFactory.dRms + 0.1);
  EXPECT_NEAR(oMade.dMeanX, oFactory.dMeanX, 0.1);
  EXPECT_NEAR(oMade.dMeanY, oFactory.dMeanY, 0.1);
}

}  // namespace
