// The blur of what is laid on the platen as a picture.
#include "sensor/Blur.h"

#include <gmock/gmock.h>

#include "Frames.h"
#include "scene/SceneReader.h"

namespace Simulator {
namespace {

TEST(Blur, APointKeepsItsLightAndGetsTheVariances) {
  for (const auto& [dX, dY] : {std::pair{0.05, 0.1}, {0.9, 0.3}, {2.0, 0.0}}) {
    TpPlane<uint8_t> oPicture(41, 41, 0);
    // A block of 9 by 9, since single steps of a grey value would be rounded away.
    for (int y = 16; y < 25; ++y)
      for (int x = 16; x < 25; ++x) oPicture.At(x, y) = 250;
    ClBlur().Process(oPicture, dX, dY);
    double dSum = 0.0, dXX = 0.0, dYY = 0.0;
    for (int y = 0; y < 41; ++y) {
      for (int x = 0; x < 41; ++x) {
        dSum += oPicture.At(x, y);
        dXX += oPicture.At(x, y) * (x - 20.0) * (x - 20.0);
        dYY += oPicture.At(x, y) * (y - 20.0) * (y - 20.0);
        EXPECT_EQ(oPicture.At(x, y), oPicture.At(x, 40 - y)) << x << ", " << y;
      }
    }
    EXPECT_NEAR(dSum, 250.0 * 81.0, 60.0);
    // The block itself has a variance of 80 / 12.
    EXPECT_NEAR(dXX / dSum, 80.0 / 12.0 + dX, 0.05);
    EXPECT_NEAR(dYY / dSum, 80.0 / 12.0 + dY, 0.05);
  }
}

TEST(Blur, EvenAreasStayAsTheyAreUpToTheEdge) {
  TpPlane<uint8_t> oPicture(5, 4, 77);
  ClBlur().Process(oPicture, 1.3, 0.7);
  for (size_t n = 0; n < oPicture.Count(); ++n) EXPECT_EQ(oPicture.Data()[n], 77);
}

TEST(Blur, PrintsAreSoftenedByTheirScannersOpticsAndMoreByAWorseOne) {
  const auto Spread = [](const char* szMore) {
    ClScannerDescription o =
        FindScene(std::string(R"({"scanners": [{"noise": 0, "planeOrder": "dark-first", )") + szMore + "}]}")
            .aScanners[0];
    ClSensor oSensor(o, 1);
    const Plane a = Difference(Sequence(oSensor, Settings(oSensor, 34, 2.0)));
    double dSquares = 0.0;
    for (int y = 1200; y < 1500; ++y)
      for (int x = 900; x < 1020; ++x) {
        const int nStep = a[static_cast<size_t>(y * 1920 + x)] - a[static_cast<size_t>(y * 1920 + x - 1)];
        dSquares += nStep * nStep;
      }
    return dSquares;
  };
  const double dSharp = Spread(R"("optics": {"blur": 0}, "fingers": [{}])");
  const double dOwn = Spread(R"("fingers": [{}])");
  EXPECT_LT(dOwn, 0.98 * dSharp);
  EXPECT_GT(dOwn, 0.80 * dSharp);
  EXPECT_LT(Spread(R"("optics": {"blur": 4}, "fingers": [{}])"), 0.7 * dOwn);
}

}  // namespace
}  // namespace Simulator
