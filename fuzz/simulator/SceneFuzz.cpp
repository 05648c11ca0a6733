// Feeds scenes as JSON: what is read lies in its ranges, so that its fingers and its pen have positions at
// any moment.
#include <cmath>

#include "FuzzTarget.h"
#include "scene/FingerMotion.h"
#include "scene/PenPath.h"
#include "scene/SceneReader.h"
#include "scene/SimError.h"

namespace {

using namespace Simulator;

void GoOver(const ClScannerDescription& oScanner, double dSeconds) {
  for (const ClFingerDescription& oFinger : oScanner.aFingers) {
    const ClFingerPose oPose = ClFingerMotion::At(oFinger, dSeconds);
    Require(oPose.nDown >= 0 && oPose.nDown <= ClFingerMotion::nSteps,
            "a finger is down by no more than all");
    Require(std::isfinite(oPose.dXMm) && std::isfinite(oPose.dYMm) && std::isfinite(oPose.dAngle),
            "a finger has a place");
    ClFingerMotion::PressureOf(oPose);
  }
  if (oScanner.oPen.aStrokes.empty()) return;
  const ClPenPath oPath(oScanner.oPen.aStrokes);
  const ClPenTip oTip = oPath.At(dSeconds);
  Require(std::isfinite(oTip.dXMm) && std::isfinite(oTip.dYMm), "a pen has a place");
  for (const ClPenStroke& oStroke : oPath.Strokes())
    Require(oStroke.dBegin <= oStroke.dEnd, "a stroke ends behind its begin");
}

}  // namespace

std::vector<Bytes> Seeds() {
  std::vector<Bytes> aSeeds;
  for (
      const char* szScene : {
          R"({"seed": 7, "pacing": "real", "libraryVersion": "1.2", "faultSeed": 9, "faults": [
               {"call": "VTScanAPIGetVersion", "first": 2, "repeat": 0, "result": -101},
               {"random": "*", "probability": 0.1, "result": -60}, {"unplug": "A", "at": 3.5}, {"plug": "A", "at": 6}]})",
          R"({"scanners": [{"serial": "VT40-AC0001", "product": 16, "usbPowered": true, "version": "FPGA:2.06",
               "planeOrder": "lit-first", "ambient": [{"at": 1, "level": 3}, {"at": 1, "level": 30}], "noise": 0,
               "eprom": {"form": "legacy", "GEOCAL": {"flip": [3, 40]}, "GAINSET": {"missing": true},
                         "BRGHTCAL": {"file": "x", "cut": 100}}}]})",
          R"({"scanners": [{"fingers": [{"print": {"seed": 5, "pattern": "arch", "width": 14, "height": 9,
               "ridgePeriod": 0.5, "pores": 1, "skin": "elderly", "creases": 2, "scars": 1,
               "cuts": 1, "material": "halftone"}, "x": 10, "y": 20, "angle": -30, "pressure": 0.9,
               "dryness": 0.5, "sweat": 0.5, "stretch": {"x": 1, "y": -1, "turn": 5}, "touch": 1, "lift": 2.5, "touchSeconds": 0.5, "liftSeconds": 0.1, "repeat": 4, "halo": 0.5,
               "settle": {"seconds": 0.5, "x": 1, "y": 2, "turn": 3, "pressure": 0.1},
               "slide": {"start": 1, "until": 2, "speed": 3, "direction": 4, "radius": 5},
               "press": {"start": 1, "seconds": 2, "pressure": 0.9}}, {"print": {"file": "slap.png"}}]}]})",
          R"({"scanners": [{"fingers": [{"roll": {"width": 12, "tilt": 5, "path": [{"strip": -6},
               {"at": 1, "strip": 6, "turn": 7}, {"at": 1, "down": 0}]}}]}]})",
          R"({"scanners": [{"pen": {"diameter": 0.5, "strength": 1, "strokes": [
               {"at": 1.5, "speed": 9, "line": "straight", "points": [[1, 2], [3, 4, 0.5]]},
               {"after": 0.3, "points": [[5, 6], [7, 8], [9, 3]]}]}}]})",
          R"({"scanners": [{"dirt": [{"x": 1, "y": 2, "width": 3, "length": 4, "angle": 5, "strength": 0.6, "from": 7,
               "until": 8}], "target": {"seed": 2, "x": 3, "y": 4, "angle": 1, "radius": 2, "uneven": 0.1, "dust": 9,
               "scratches": 3, "missing": [3, 63], "doubled": [1]}}]})",
          R"({"faults": [{"call": "VTScanAPIGetVersion", "first": 2, "repeat": 0, "result": -101},
               {"random": "VTScanAPIBeep", "probability": 0.1, "result": -60}, {"random": "*", "probability": 0},
               {"unplug": "VT40-AB0001", "at": 3.5}, {"plug": "VT40-AB0001", "at": 6}]})",
          R"({"scanners": [{"ambient": 4, "eprom": {"GEOCAL": {"flip": [3, 40]}, "GAINSET": {"missing": true}},
               "optics": {"blur": 1.5, "bend": 0.1, "shade": 0.2},
               "sheets": [{"kind": "bars", "x": 40, "y": 41, "angle": 1, "from": 1, "until": 2}, {"kind": "steps"}]},
               {"serial": "VT40-AB0002", "fingers": [{"print": {"skin": "child", "pattern": "any"}}]}]})",
          R"({"scanners": [{"fingers": [{"print": {"file": "/nowhere/print.png"}}]}]})"})
    aSeeds.push_back(BytesOf(szScene));
  // Each is refused for one reason.
  for (const char* szScanner : {R"("pen": {"strokes": [{"points": [[1, 2], [3]]}]})",
                                R"("pen": {"strokes": [{"points": [[1, 2], [3, "4"]]}]})",
                                R"("pen": {"strokes": [{"points": [[1, 2], [-60, 4]]}]})",
                                R"("pen": {"strokes": [{"points": [[1, 2], [3, 4, -1]]}]})",
                                R"("fingers": [{"slide": {"start": 2, "until": 1}}])",
                                R"("fingers": [{"touch": 2, "lift": 1}])", R"("target": {"missing": ["x"]})",
                                R"("target": {"missing": [64]})", R"("eprom": {"GEOCAL": {"flip": ["x"]}})",
                                R"("ambient": [{"at": 2}, {"at": 1}])", R"("serial": "A"}, {"serial": "A")"})
    aSeeds.push_back(BytesOf(R"({"scanners": [{)" + std::string(szScanner) + "}]}"));
  for (const char* szRest :
       {R"("faults": [{"call": "nothing"}])", R"("faults": [{"call": "x", "plug": "y"}])",
        R"("pacing": "never")", R"("seed": -1)", R"("pacing": "real")"})
    aSeeds.push_back(BytesOf("{" + std::string(szRest) + "}"));
  aSeeds.push_back(BytesOf(R"({"libraryVersion": ")" + std::string(256, 'v') + R"("})"));
  for (const char* szKey : {"version", "serial"})
    aSeeds.push_back(
        BytesOf(R"({"scanners": [{")" + std::string(szKey) + R"(": ")" + std::string(256, 'v') + R"("}]})"));
  return aSeeds;
}

void Feed(const Bytes& aInput) {
  ClSceneDescription oScene;
  // Files of the machine are no part of the input.
  const auto Read = [&] { oScene = ReadScene(std::string(aInput.begin(), aInput.end()), "/nowhere"); };
  if (RefusedWith<ClSimError>(Read)) return;
  for (const ClScannerDescription& oScanner : oScene.aScanners)
    for (const double dSeconds : {0.0, 1.25, 3600.5, 1e7}) GoOver(oScanner, dSeconds);
}
