// Scenes from JSON: what is taken over, and what is refused with which words.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "TestFiles.h"
#include "scene/BuiltInScenes.h"
#include "scene/PrintFile.h"
#include "scene/SceneReader.h"

namespace Simulator {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Numbers = std::vector<double>;

std::pair<long, std::string> Refusal(const std::string& sText) {
  return RefusalOf([&] { ReadScene(sText, ""); });
}

TEST(SceneReader, AFullSceneArrivesWithAllItSays) {
  const ClSceneDescription o = ReadScene(R"({
    "pacing": "real",
    "scanners": [
      {"usbPowered": true, "planeOrder": "lit-first", "ambient": 12.5,
       "eprom": {"form": "legacy", "GEOCAL": {"flip": [3, 40]}, "GAINSET": {"missing": true}},
       "fingers": [{"print": {"pattern": "arch", "width": 14}}, {"print": {"file": "slap.png"}}]},
      {"serial": "VT40-AC0002", "product": 16}],
    "faults": [{"call": "VTScanAPIGetVersion", "first": 2, "repeat": 0, "result": -101},
               {"unplug": "VT40-AC0002", "at": 3.5}]})",
                                         "/prints");
  ASSERT_TRUE(o.aScanners.size() == 2 && o.aFaults.size() == 2);
  const ClScannerDescription& oFirst = o.aScanners[0];
  EXPECT_TRUE(o.bRealTime && oFirst.bUsbPowered && oFirst.bLegacyEprom);
  EXPECT_EQ(oFirst.eOrder, eOrderLitFirst);
  EXPECT_TRUE(oFirst.mapEprom.at("GAINSET").bMissing);
  EXPECT_EQ(oFirst.mapEprom.at("GEOCAL").aFlips, (std::vector<unsigned>{3, 40}));
  ASSERT_EQ(oFirst.aFingers.size(), 2u);
  EXPECT_EQ(oFirst.aFingers[0].oPrint.ePattern, ePatternArch);
  EXPECT_EQ(oFirst.aFingers[1].oPrint.sFile, "/prints/slap.png");
  EXPECT_EQ(oFirst.aFingers[1].dDryness, 0.0) << "a real print is as dry as it is";
  EXPECT_THAT((Numbers{oFirst.dAmbient, oFirst.aFingers[0].oPrint.dWidthMm, 1.0 * o.aScanners[1].nProduct,
                       1.0 * o.aFaults[0].nRepeat, o.aFaults[1].dAt}),
              ElementsAre(12.5, 14, 16, 0, 3.5));
}

TEST(SceneReader, WhatHappensOnThePlatenArrives) {
  const ClScannerDescription o = ReadScene(R"({"scanners": [{
       "ambient": [{"at": 1, "level": 3}, {"at": 1, "level": 30}],
       "pen": {"diameter": 0.5, "strokes": [{"at": 1.5, "speed": 9, "line": "straight", "points": [[1, 2], [3, 4, 0.5]]},
                                            {"after": 0.3, "points": [[5, 6]]}]},
       "dirt": [{"x": 1, "y": 2, "width": 3, "length": 4, "angle": 5, "strength": 0.6, "from": 7, "until": 8}],
       "fingers": [{"print": {"material": "halftone", "skin": "child", "height": 15, "scars": 2, "cuts": 3, "creases": 4},
                    "pressure": 0.7, "sweat": 0.6, "stretch": {"x": 1.5, "y": -1, "turn": 8},
                    "settle": {"seconds": 0.5, "x": 1, "y": 2, "turn": 3},
                    "slide": {"start": 1, "until": 2, "speed": 3, "direction": 4, "radius": 5},
                    "roll": {"width": 12, "tilt": 5, "path": [{"strip": -6}, {"at": 1, "strip": 6, "turn": 7},
                                                              {"at": 1, "down": 0}]}},
                   {"roll": {}, "touch": 2}]}]})",
                                           "")
                                     .aScanners[0];
  ASSERT_TRUE(o.aAmbient.size() == 2 && o.aDirt.size() == 1 && o.oPen.aStrokes.size() == 2);
  const ClDirtDescription& oDirt = o.aDirt[0];
  EXPECT_THAT((Numbers{o.aAmbient[1].dLevel, oDirt.dXMm, oDirt.dYMm, oDirt.dWidthMm, oDirt.dLengthMm,
                       oDirt.dAngle, oDirt.dStrength, oDirt.dFrom, oDirt.dUntil}),
              ElementsAre(30, 1, 2, 3, 4, 5, 0.6, 7, 8));
  const ClFingerDescription& oFinger = o.aFingers[0];
  EXPECT_EQ(oFinger.oPrint.eMaterial, eMaterialHalftone);
  EXPECT_EQ(oFinger.dDryness, 0.0) << "only skin is dry";
  EXPECT_THAT((Numbers{oFinger.oPrint.dWidthMm, oFinger.oPrint.dHeightMm, 1.0 * oFinger.oPrint.nScars,
                       1.0 * oFinger.oPrint.nCuts, 1.0 * oFinger.oPrint.nCreases, oFinger.dSweat,
                       oFinger.oStretch.dXMm, oFinger.oStretch.dYMm, oFinger.oStretch.dTurn}),
              ElementsAre(11.5, 15, 2, 3, 4, 0.6, 1.5, -1, 8));
  EXPECT_EQ(oFinger.oSettle.dPressure, 0.7) << "without a word it stays while the finger settles";
  // Values that are left out stay as they were a moment before.
  ASSERT_EQ(oFinger.oRoll.aPath.size(), 3u);
  const ClRollMoment& oLast = oFinger.oRoll.aPath.back();
  const ClSlideDescription& oSlide = oFinger.oSlide;
  EXPECT_THAT((Numbers{oSlide.dSpeed, oSlide.dDirection, oSlide.dRadiusMm, oFinger.oRoll.dTilt,
                       oLast.dSeconds, oLast.dStripMm, oLast.dTurn, oLast.dDown}),
              ElementsAre(3, 4, 5, 5, 1, 6, 7, 0));
  const ClStrokeDescription& oStroke = o.oPen.aStrokes[0];
  ASSERT_EQ(oStroke.aPoints.size(), 2u);
  EXPECT_FALSE(oStroke.bCurve);
  EXPECT_THAT((Numbers{o.oPen.dDiameterMm, oStroke.dAt, oStroke.dSpeed, oStroke.aPoints[1].dYMm,
                       oStroke.aPoints[1].dPause, o.oPen.aStrokes[1].dAfter}),
              ElementsAre(0.5, 1.5, 9, 4, 0.5, 0.3));
  EXPECT_LT(o.oPen.aStrokes[1].dAt, 0.0) << "without a word it follows the one before";
  EXPECT_EQ(o.aFingers[1].dYMm, 20.32) << "a finger that rolls lies where rolls are seen";
  EXPECT_EQ(o.aFingers[1].dLift, 2.0 + o.aFingers[1].oRoll.aPath.back().dSeconds + 0.1);
}

TEST(SceneReader, TheTargetIsWhatItsSeedSaysButForWhatIsSaid) {
  const ClTargetDescription o =
      ReadScene(R"({"scanners": [{"target": {"seed": 9, "angle": -3, "scratches": 0, "missing": [3, 63]}}]})",
                "")
          .aScanners[0]
          .oTarget;
  EXPECT_EQ(o.dRadiusMm, FindScene("target:9").aScanners[0].oTarget.dRadiusMm);
  EXPECT_TRUE(o.bThere && o.nDust > 0 && o.nScratches == 0);
  EXPECT_EQ(o.dAngle, -3);
  EXPECT_EQ(o.aMissing, (std::vector<unsigned>{3, 63}));
}

TEST(SceneReader, AFileCanTakeThePlaceOfOneInTheEeprom) {
  const ClTestFolder oFolder;
  oFolder.Write("geo.bin", "GEO");
  oFolder.Write("large.bin", std::string(8193, 'x'));
  const std::string sScene = oFolder.Write(
      "scene.json", R"({"scanners": [{"eprom": {"GEOCAL": {"file": "geo.bin"}, "GAINSET": {"cut": 3}}}]})");
  const ClScannerDescription oScanner = FindScene(sScene).aScanners[0];
  EXPECT_EQ(oScanner.mapEprom.at("GEOCAL").aData, (std::vector<uint8_t>{'G', 'E', 'O'}));
  EXPECT_FALSE(oScanner.mapEprom.at("GAINSET").bReplaced);
  for (const auto& [sFile, nNumber] : {std::pair<std::string, long>{oFolder.Path("none.bin"), -200},
                                       {oFolder.Path("large.bin"), -44},
                                       {oFolder.Path("."), -203}}) {
    const std::string sText = R"({"scanners": [{"eprom": {"GEOCAL": {"file": ")" + sFile + "\"}}}]}";
    EXPECT_EQ(Refusal(sText).first, nNumber) << sFile;
    EXPECT_THAT(Refusal(sText).second, HasSubstr(sFile));
  }
}

TEST(SceneReader, WhatMayNeverEndOrNeverBeginIsRefusedUnread) {
  const ClTestFolder oFolder;
  const std::string sPipe = oFolder.Path("pipe"), sLarge = oFolder.Write("large", "{");
  ASSERT_EQ(mkfifo(sPipe.c_str(), 0600), 0);
  std::filesystem::resize_file(sLarge, 16777217);
  for (const auto& oRefused : {std::pair<std::string, const char*>{"/dev/zero", "is no regular file"},
                               {sPipe, "is no regular file"},
                               {sLarge, "has more than 16777216 bytes"}}) {
    const std::string sText = "scene file \"" + oRefused.first + "\" " + oRefused.second;
    EXPECT_EQ(RefusalOf([&] { FindScene(oRefused.first); }).second, sText);
  }
  EXPECT_THAT(RefusalOf([&] { ReadPrintFile(sPipe); }).second, HasSubstr("no regular file"));
}

TEST(SceneReader, WhatIsWrongIsRefusedWithItsPlaceAndRange) {
  // Lists in a list must not use up the stack.
  const std::string sDeep = std::string(300000, '[') + std::string(300000, ']');
  const std::pair<std::string, const char*> aScenes[] = {
      {R"({"scaners": []})", "\"scaners\" is not a known key"},
      {R"({"seed": -1})", "\"seed\" is -1"},
      {R"({"seed": 1e30})", "\"seed\" must be a whole number"},
      {R"({"pacing": "fast"})", "is \"fast\" and must be one of"},
      {R"({"scanners": [{"fingers": [{"stretch": {"turn": 21}}]}]})",
       "\"scanners[0].fingers[0].stretch.turn\" is 21"},
      {R"({"scanners": [{"fingers": [{"presure": 1}]}]})",
       "\"scanners[0].fingers[0].presure\" is not a known key"},
      {R"({"scanners": [{"fingers": [{"pressure": 1.5}]}]})",
       "fingers[0].pressure\" is 1.5 and must lie between 0 and 1"},
      {R"({"scanners": [{"pen": {"strokes": [{"points": [)" + sDeep + "]}]}}]}",
       "points[0]\" must be [x, y]"},
      {R"({"faults": [{"call": "VTScanAPIOpen"}]})", "VTScanAPIOpen\", which is no function"},
      {R"({"faults": [{"random": "FD_VT40Initialize"}]})", "faults[0].random"},
      {R"({"scanners": [{"serial": "A"}], "faults": [{"unplug": "B"}]})", "\"B\", which no scanner has"}};
  for (const auto& [sText, szWords] : aScenes)
    EXPECT_THAT(Refusal(sText), testing::Pair(-44, HasSubstr(szWords))) << szWords;
}

TEST(SceneReader, WhatMakesNoSenseIsRefused) {
  std::vector<std::string> aScenes, aScanners;
  for (const char* szScene :
       {"", "[]", "{", R"({"scanners": {}})", R"({"scanners": [1]})", R"({"seed": "1"})",
        R"({"faults": [{"call": "VTScanAPIBeep", "plug": "b"}]})", R"({"faults": [{}]})"})
    aScenes.emplace_back(szScene);
  for (const char* szScanner :
       {R"("serial": "")", R"("serial": "0123456789ABCDEF")", "}, {", R"("ambient": [{"at": 2}, {"at": 1}])",
        R"("eprom": {"GEOCAL": {"flip": [-1]}})", R"("target": {"missing": [64]})"})
    aScanners.emplace_back(szScanner);
  for (const char* szFinger : {R"("touch": 2, "lift": 1)", R"("touch": 1, "lift": 3, "repeat": 2)",
                               R"("repeat": 2)", R"("slide": {"start": 2, "until": 1})",
                               R"("roll": {"path": [{"at": 2}, {"at": 1}]})", R"("roll": {"width": 0})"})
    aScanners.push_back(std::string(R"("fingers": [{)") + szFinger + "}]");
  for (const char* szPoints : {"", "[1, 2, 3, 4]", R"([1, "2"])", "[1, 131]", "[1, 2, -1]"})
    aScanners.push_back(std::string(R"("pen": {"strokes": [{"points": [)") + szPoints + "]}]}");
  for (const std::string& s : aScanners) aScenes.push_back(R"({"scanners": [{)" + s + "}]}");
  for (const std::string& s : aScenes) EXPECT_EQ(Refusal(s).first, -44) << s;
}

TEST(SceneReader, ASceneIsFoundByNamePathOrText) {
  for (const auto& [szName, nFingers] : {std::pair("slap-right", 4u), {"thumbs", 2u}, {"empty", 0u}})
    EXPECT_EQ(FindScene(szName).aScanners[0].aFingers.size(), nFingers) << szName;
  EXPECT_EQ(FindScene("settling-slap:17").nSeed, 17u);
  EXPECT_NE(FindScene("settling-slap:17").aScanners[0].aFingers[0].dTouch,
            FindScene("settling-slap:18").aScanners[0].aFingers[0].dTouch);
  EXPECT_EQ(FindScene("slap-left:5").nSeed, 5u);
  EXPECT_EQ(FindScene(" {\"scanners\": []}").aScanners.size(), 0u);
  const ClTestFolder oFolder;
  const std::string sPath =
      oFolder.Write("scene.json", R"({"scanners": [{"fingers": [{"print": {"file": "a.png"}}]}]})");
  EXPECT_EQ(FindScene(sPath).aScanners[0].aFingers[0].oPrint.sFile, oFolder.Path("a.png"));
  for (const char* szWrong : {"slap-rihgt", "finger:", "finger:x", "finger:1234567890123456"}) {
    const auto oRefusal = RefusalOf([&] { FindScene(szWrong); });
    EXPECT_THAT(oRefusal,
                testing::Pair(-200, testing::AllOf(HasSubstr("slap-right"), HasSubstr("settling-slap"))));
  }
}

}  // namespace
}  // namespace Simulator
