// Scenes from JSON: what is taken over, and what is refused with which words.
#include <gmock/gmock.h>

#include "TestFiles.h"
#include "scene/BuiltInScenes.h"
#include "scene/SceneReader.h"
#include "scene/SimError.h"

namespace Simulator {
namespace {

using testing::HasSubstr;

/// The number and words with which a scene is refused; number 0 when it is taken.
std::pair<long, std::string> Refusal(const std::string& sText) {
  try {
    ReadScene(sText, "");
    return {0, ""};
  } catch (const ClSimError& oError) {
    return {oError.Number(), oError.what()};
  }
}

TEST(SceneReader, AFullSceneArrivesWithAllItSays) {
  const ClSceneDescription o = ReadScene(R"({
    "seed": 7, "pacing": "real", "libraryVersion": "1.11", "faultSeed": 9,
    "scanners": [
      {"serial": "VT40-AC0001", "usbPowered": true, "version": "FPGA:2.06", "planeOrder": "lit-first",
       "ambient": 12.5, "noise": 0,
       "eprom": {"form": "legacy", "GEOCAL": {"flip": [3, 40]}, "GAINSET": {"missing": true}, "BRGHTCAL": {"cut": 100}},
       "fingers": [{"print": {"seed": 5, "pattern": "arch", "width": 14}, "x": 10, "y": 20, "angle": -30,
                    "pressure": 0.9, "dryness": 0.5, "touch": 1, "lift": 2.5},
                   {"print": {"file": "slap.png"}}]},
      {"serial": "VT40-AC0002", "product": 16}],
    "faults": [{"call": "VTScanAPIGetVersion", "first": 2, "repeat": 0, "result": -101},
               {"unplug": "VT40-AC0001", "at": 3.5}]})",
                                         "/prints");
  EXPECT_EQ(o.nSeed, 7u);
  EXPECT_TRUE(o.bRealTime);
  EXPECT_EQ(o.sLibraryVersion, "1.11");
  ASSERT_EQ(o.aScanners.size(), 2u);
  const ClScannerDescription& oFirst = o.aScanners[0];
  EXPECT_TRUE(oFirst.bUsbPowered && oFirst.bLegacyEprom);
  EXPECT_EQ(oFirst.sVersion, "FPGA:2.06");
  EXPECT_EQ(oFirst.eOrder, eOrderLitFirst);
  EXPECT_EQ(oFirst.dAmbient, 12.5);
  EXPECT_TRUE(oFirst.mapEprom.at("GAINSET").bMissing);
  EXPECT_EQ(oFirst.mapEprom.at("BRGHTCAL").nCut, 100);
  EXPECT_EQ(oFirst.mapEprom.at("GEOCAL").aFlips, (std::vector<unsigned>{3, 40}));
  ASSERT_EQ(oFirst.aFingers.size(), 2u);
  const ClFingerDescription& oFinger = oFirst.aFingers[0];
  EXPECT_EQ(oFinger.oPrint.ePattern, ePatternArch);
  EXPECT_EQ(oFinger.oPrint.dWidthMm, 14.0);
  EXPECT_EQ(oFinger.dAngle, -30.0);
  EXPECT_EQ(oFinger.dLift, 2.5);
  EXPECT_EQ(oFirst.aFingers[1].oPrint.sFile, "/prints/slap.png");
  EXPECT_EQ(oFirst.aFingers[1].dDryness, 0.0) << "a real print is as dry as it is";
  EXPECT_EQ(o.aScanners[1].nProduct, 16u);
  ASSERT_EQ(o.aFaults.size(), 2u);
  EXPECT_EQ(o.aFaults[0].nResult, -101);
  EXPECT_EQ(o.aFaults[0].nRepeat, 0u);
  EXPECT_EQ(o.aFaults[1].dAt, 3.5);
}

TEST(SceneReader, AnUnknownKeyIsRefusedByNameAndPlace) {
  const auto oRefusal = Refusal(R"({"scanners": [{"fingers": [{"presure": 1}]}]})");
  EXPECT_EQ(oRefusal.first, -44);
  EXPECT_THAT(oRefusal.second, HasSubstr("\"scanners[0].fingers[0].presure\" is not a known key"));
  EXPECT_THAT(Refusal(R"({"scaners": []})").second, HasSubstr("\"scaners\" is not a known key"));
}

TEST(SceneReader, AValueOutOfRangeIsRefusedWithTheValueAndTheRange) {
  const auto oRefusal = Refusal(R"({"scanners": [{"fingers": [{"pressure": 1.5}]}]})");
  EXPECT_EQ(oRefusal.first, -44);
  EXPECT_THAT(oRefusal.second,
              HasSubstr("\"scanners[0].fingers[0].pressure\" is 1.5 and must lie between 0 and 1"));
  EXPECT_THAT(Refusal(R"({"seed": -1})").second, HasSubstr("\"seed\" is -1"));
  EXPECT_THAT(Refusal(R"({"seed": 1e30})").second, HasSubstr("\"seed\" must be a whole number"));
  EXPECT_THAT(Refusal(R"({"pacing": "fast"})").second, HasSubstr("is \"fast\" and must be one of"));
}

TEST(SceneReader, WhatIsNoSceneAtAllIsRefused) {
  for (const char* szText :
       {"", "[]", "{", "{\"scanners\": {}}", "{\"scanners\": [1]}", "{\"seed\": \"1\"}",
        "{\"scanners\": [{\"serial\": \"\"}]}", "{\"scanners\": [{\"serial\": \"0123456789ABCDEF\"}]}",
        "{\"scanners\": [{}, {}]}", "{\"scanners\": [{\"fingers\": [{\"touch\": 2, \"lift\": 1}]}]}",
        "{\"faults\": [{\"call\": \"a\", \"plug\": \"b\"}]}", "{\"faults\": [{}]}",
        "{\"scanners\": [{\"eprom\": {\"GEOCAL\": {\"flip\": [-1]}}}]}"})
    EXPECT_EQ(Refusal(szText).first, -44) << szText;
}

TEST(SceneReader, ASceneIsFoundByNamePathOrText) {
  EXPECT_EQ(FindScene("slap-right").aScanners[0].aFingers.size(), 4u);
  EXPECT_EQ(FindScene("thumbs").aScanners[0].aFingers.size(), 2u);
  EXPECT_EQ(FindScene("finger").aScanners[0].aFingers.size(), 1u);
  EXPECT_EQ(FindScene("empty").aScanners[0].aFingers.size(), 0u);
  EXPECT_EQ(FindScene(" {\"scanners\": []}").aScanners.size(), 0u);
  const ClTestFolder oFolder;
  const std::string sPath =
      oFolder.Write("scene.json", R"({"scanners": [{"fingers": [{"print": {"file": "a.png"}}]}]})");
  EXPECT_EQ(FindScene(sPath).aScanners[0].aFingers[0].oPrint.sFile, oFolder.Path("a.png"));
  try {
    FindScene("slap-rihgt");
    FAIL() << "a misspelt name was taken";
  } catch (const ClSimError& oError) {
    EXPECT_EQ(oError.Number(), -200);
    EXPECT_THAT(oError.what(), HasSubstr("slap-right"));
  }
}

TEST(BuiltInScenes, TheLeftSlapHasItsIndexFingerOnTheRight) {
  // The little finger is the smallest and lies lowest.
  const ClSceneDescription oRight = FindScene("slap-right"), oLeft = FindScene("slap-left");
  const auto& aRight = oRight.aScanners[0].aFingers;
  const auto& aLeft = oLeft.aScanners[0].aFingers;
  EXPECT_EQ(aRight.back().oPrint.dWidthMm, 13.2);
  EXPECT_GT(aRight.back().dXMm, 60.0);
  EXPECT_EQ(aLeft.front().oPrint.dWidthMm, 13.2);
  EXPECT_LT(aLeft.front().dXMm, 20.0);
}

}  // namespace
}  // namespace Simulator
