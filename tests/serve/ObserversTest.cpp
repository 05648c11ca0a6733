// What a frame shows, on both sides of each limit.
#include "Observers.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

using namespace std::chrono_literals;

/// A white picture of 100 columns whose first pixels have a grey value.
ClPicture PictureOf(unsigned int nPixels, unsigned char nGrey) {
  ClPicture oPicture{100, 100, 10000, 10000, std::vector<unsigned char>(10000, 255)};
  std::fill_n(oPicture.aPixels.begin(), nPixels, nGrey);
  return oPicture;
}

TEST(FingerObserver, NamesWhyThereIsNoCaptureYet) {
  ClFingerObserver oObserver;
  const auto State = [&](unsigned int nPixels, unsigned char nGrey, bool bDone = false, bool bTaken = false) {
    const StFingers oSeen = oObserver.Observe(PictureOf(nPixels, nGrey), bDone, bTaken);
    return std::string(oSeen.szState) + (oSeen.szReason[0] != '\0' ? ": " : "") + oSeen.szReason;
  };
  EXPECT_EQ(State(1000, 0), "no finger: nothing lies on the platen");
  EXPECT_EQ(State(1001, 0), "hold still: the fingers have just come to rest");
  // Beyond a tenth more or less than before, the area changes.
  EXPECT_EQ(State(1101, 0), "finger: the area of the fingers changes");
  EXPECT_EQ(State(1200, 0), "hold still: the fingers have just come to rest");
  // 3000 pixels that change by 200 are more than the squares may come to, by 100 they are not.
  EXPECT_EQ(State(4000, 200), "finger: the area of the fingers changes");
  EXPECT_EQ(State(4000, 0), "finger: the fingers move");
  EXPECT_EQ(State(4000, 100), "hold still: the fingers have just come to rest");
  EXPECT_EQ(State(4000, 100, true), "done");
  EXPECT_EQ(State(4000, 100, true, true), "lift: these fingers are captured; lift them");
}

TEST(Strip, BeginsAndEndsWithColumnsOfTenDarkPixels) {
  ClPicture oPicture{6, 20, 1000, 1000, std::vector<unsigned char>(120, 128)};
  EXPECT_EQ(StripOf(oPicture).Width(), 0u);
  for (const auto& [x, nDark] : {std::pair(0u, 9u), {1u, 10u}, {4u, 10u}, {5u, 9u}})
    for (unsigned int y = 0; y < nDark; ++y) oPicture.aPixels[y * 6 + x] = 127;
  EXPECT_EQ(StripOf(oPicture).nFirst, 1u);
  EXPECT_EQ(StripOf(oPicture).nEnd, 5u);
  EXPECT_EQ(Millimetres(StripOf(oPicture), oPicture), 4.0);
  oPicture.nPelsX = 0;
  EXPECT_EQ(Millimetres(StripOf(oPicture), oPicture), 0.0);
}

TEST(PenRest, ComesAfterTheTimeAndEnoughPreviewsWithoutNewInk) {
  const auto tStart = ClPenRest::Clock::time_point(100s);
  ClPenRest oRest;
  StInk oInk = InkOf(PictureOf(0, 0));
  for (int n = 0; n < 20; ++n) EXPECT_FALSE(oRest.HasCome(oInk, 2.0, tStart + n * 1s));
  oInk = InkOf(PictureOf(250, 127));
  EXPECT_EQ(JsonOf(oInk), nlohmann::ordered_json::parse(
                              R"({"pixels": 250, "left": 0, "top": 0, "width": 100, "height": 3})"));
  EXPECT_FALSE(oRest.HasCome(oInk, 2.0, tStart));
  // A stall of this program gives few previews.
  for (int n = 1; n < 8; ++n) EXPECT_FALSE(oRest.HasCome(oInk, 2.0, tStart + 5s));
  EXPECT_TRUE(oRest.HasCome(oInk, 2.0, tStart + 5s));
  EXPECT_FALSE(oRest.HasCome(InkOf(PictureOf(251, 0)), 2.0, tStart + 6s));
  for (int n = 0; n < 10; ++n) EXPECT_FALSE(oRest.HasCome(InkOf(PictureOf(251, 0)), 2.0, tStart + 7999ms));
  EXPECT_TRUE(oRest.HasCome(InkOf(PictureOf(251, 0)), 2.0, tStart + 8s));
}

}  // namespace
