// The scenes that need no file.
#include "scene/BuiltInScenes.h"

#include "scene/PenScenes.h"
#include "scene/Random.h"
#include "scene/RollScenes.h"
#include "scene/StagedScenes.h"
#include "scene/TargetContent.h"

namespace Simulator {
namespace {

struct ClRow {
  const char* szScene;
  uint64_t nSeed;
  EPattern ePattern;
  double dWidth, dHeight;  // of the print
  double dX, dY, dAngle;   // position of its middle; the tip leans to the left for positive angles
};

// Right hands have the index finger on the left of the picture, left hands on the right; slanted loops run
// out towards the little finger. Positions follow a relaxed hand.
constexpr ClRow caRows[] = {
    {"finger", 11, ePatternWhorl, 16.5, 23.0, 40.6, 40.6, 0.0},
    {"slap-right", 21, ePatternRightLoop, 15.4, 22.0, 14.5, 42.5, -2.0},
    {"slap-right", 22, ePatternWhorl, 16.2, 23.5, 33.2, 27.5, 2.0},
    {"slap-right", 23, ePatternWhorl, 15.6, 22.5, 51.0, 31.0, 7.0},
    {"slap-right", 24, ePatternRightLoop, 13.2, 19.5, 68.5, 48.5, 13.0},
    {"slap-left", 34, ePatternLeftLoop, 13.2, 19.5, 12.8, 48.5, -13.0},
    {"slap-left", 33, ePatternWhorl, 15.6, 22.5, 30.3, 31.0, -7.0},
    {"slap-left", 32, ePatternLeftLoop, 16.2, 23.5, 48.1, 27.5, -2.0},
    {"slap-left", 31, ePatternArch, 15.4, 22.0, 66.8, 42.5, 2.0},
    {"thumbs", 41, ePatternLeftLoop, 19.5, 27.0, 27.5, 41.0, -6.0},
    {"thumbs", 42, ePatternWhorl, 19.5, 27.0, 53.8, 41.0, 6.0},
};

constexpr const char* caszNames[] = {"empty", "finger", "slap-right", "slap-left", "thumbs"};
constexpr char cszTarget[] = "target";
constexpr char cszQuality[] = "quality";

/// Takes ":17" off the name and stores the number. Only digits after the colon are a seed.
std::string CutSeed(const std::string& sName, uint64_t& nSeed) {
  const size_t nColon = sName.rfind(':');
  if (nColon == std::string::npos) return sName;
  const std::string sSeed = sName.substr(nColon + 1);
  // Fifteen digits fit any number that scene files take.
  if (sSeed.empty() || sSeed.size() > 15 || sSeed.find_first_not_of("0123456789") != std::string::npos)
    return sName;
  nSeed = std::stoull(sSeed);
  return sName.substr(0, nColon);
}

/// Sheet after sheet for what the sequences take that a host looks at, then a hand. Position and turn of each
/// sheet are drawn from the seed.
void StageQuality(uint64_t nSeed, ClScannerDescription& oScanner) {
  ClRandom oRandom(Mix(nSeed, MixText(cszQuality)));
  double dUntil = 0.0;
  for (int n = 0; n < cnSheetKinds; ++n) {
    ClSheetDescription oSheet;
    oSheet.eKind = static_cast<ESheet>(n);
    oSheet.dXMm += oRandom.Range(-1.0, 1.0);
    oSheet.dYMm += oRandom.Range(-1.0, 1.0);
    oSheet.dAngle = oRandom.Range(-1.0, 1.0);
    oSheet.dFrom = dUntil;
    oSheet.dUntil = dUntil += oSheet.eKind <= eSheetEdges ? 1.0 : 0.5;
    oScanner.aSheets.push_back(oSheet);
  }
  oScanner.aFingers = StillFingers("slap-right");
}

}  // namespace

std::vector<ClFingerDescription> StillFingers(const std::string& sScene) {
  std::vector<ClFingerDescription> aFingers;
  for (const ClRow& oRow : caRows) {
    if (sScene != oRow.szScene) continue;
    ClFingerDescription oFinger;
    oFinger.oPrint.nSeed = oRow.nSeed;
    oFinger.oPrint.ePattern = oRow.ePattern;
    oFinger.oPrint.dWidthMm = oRow.dWidth;
    oFinger.oPrint.dHeightMm = oRow.dHeight;
    oFinger.dXMm = oRow.dX;
    oFinger.dYMm = oRow.dY;
    oFinger.dAngle = oRow.dAngle;
    aFingers.push_back(oFinger);
  }
  return aFingers;
}

bool FindBuiltInScene(const std::string& sName, ClSceneDescription& oScene) {
  uint64_t nSeed = 1;
  const std::string sScene = CutSeed(sName, nSeed);
  ClScannerDescription oScanner;
  bool bFound = StageScene(sScene, nSeed, oScanner) || StageRoll(sScene, nSeed, oScanner) ||
                StagePen(sScene, nSeed, oScanner);
  for (const char* szName : caszNames) {
    if (sScene != szName) continue;
    oScanner.aFingers = StillFingers(sScene);
    bFound = true;
  }
  if (sScene == cszTarget) {
    oScanner.oTarget = PlainTarget(nSeed);
    bFound = true;
  }
  if (sScene == cszQuality) {
    StageQuality(nSeed, oScanner);
    bFound = true;
  }
  if (!bFound) return false;
  oScene = ClSceneDescription();
  oScene.nSeed = nSeed;
  oScene.aScanners.push_back(oScanner);
  return true;
}

std::string BuiltInSceneNames() {
  std::string sNames = PenSceneNames() + ", ";
  for (const char* szName : caszNames) sNames += std::string(szName) + ", ";
  return sNames + StagedSceneNames() + ", " + RollSceneNames() + ", " + cszTarget + ", " + cszQuality;
}

}  // namespace Simulator
