// Rolls seeded variants of each built-in roll and prints how often which verdict came, as a table in Markdown.
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "RollRun.h"

namespace {

constexpr long canVerdicts[] = {0, -801, -802, -803, -804, -805};

struct StScene {
  const char* szName;
  long nVerdict;
};
constexpr StScene caScenes[] = {{"roll-right", 0},   {"roll-left", 0},    {"roll-slipped", -801},
                                {"roll-fast", -802}, {"roll-back", -803}, {"roll-twisted", -804},
                                {"roll-short", -805}};

/// What came of one scene's variants.
struct StTally {
  std::map<long, int> mapVerdicts;
  double dWorstCorrelation = 2.0, dWorstGrowth = 99.0;
  int nExpected = 0;
};

void RollOne(void* h, const std::string& sScene, const StScene& oScene, StTally& oTally) {
  if (StartRoll(h, sScene) != 0) {
    std::fprintf(stderr, "%s: %s\n", sScene.c_str(), VTSimLastError());
    std::exit(2);
  }
  const StRollImage oRoll = RunRoll(h);
  const long nVerdict = oRoll.nError != 0 ? oRoll.nError : oRoll.bDone == 0 ? 1 : oRoll.nResult;
  ++oTally.mapVerdicts[nVerdict];
  oTally.nExpected += nVerdict == oScene.nVerdict;
  const std::vector<VTSimFrame> aFrames = FramesFrom(0);
  // No worker is to wait for a sequence while the pictures are compared.
  VTSimHoldSequences(nullptr, 0);
  LS_VT40SetCaptureMode(h, KLV_VT40_CAPTURE_MODE_OFF);
  const StRollQuality oQuality = MeasureRoll(oRoll.aPixels, aFrames);
  oTally.dWorstCorrelation = std::min(oTally.dWorstCorrelation, oQuality.dCorrelation);
  oTally.dWorstGrowth = std::min(oTally.dWorstGrowth, oQuality.dGrowth);
  std::fprintf(stderr, "%-18s %5ld  correlation %.3f  growth %.2f%s\n", sScene.c_str(), nVerdict,
               oQuality.dCorrelation, oQuality.dGrowth, nVerdict == oScene.nVerdict ? "" : "  <--");
}

void PrintRow(const StScene& oScene, int nSeeds, StTally& oTally) {
  std::printf("| `%s` | %d |", oScene.szName, nSeeds);
  int nOther = nSeeds;
  for (const long nVerdict : canVerdicts) {
    const int nCount = oTally.mapVerdicts[nVerdict];
    nOther -= nCount;
    std::printf(nVerdict == oScene.nVerdict ? " **%d** |" : nCount == 0 ? " |" : " %d |", nCount);
  }
  std::printf(nOther == 0 ? " |" : " %d |", nOther);
  if (oScene.nVerdict == 0) {
    std::printf(" %.3f | %.2f |\n", oTally.dWorstCorrelation, oTally.dWorstGrowth);
  } else {
    std::printf(" | |\n");
  }
}

}  // namespace

/// Arguments: variants of a good roll, of a bad roll. Ends with 1 when
/// fewer than 98 of 100 good rolls or 95 of 100 bad ones got their verdict, or a good picture is not the finger's.
int main(int nArguments, char** ppArguments) {
  const int nGood = nArguments > 1 ? std::atoi(ppArguments[1]) : 50;
  const int nBad = nArguments > 2 ? std::atoi(ppArguments[2]) : nGood;
  void* h = nullptr;
  if (nGood < 1 || nBad < 0 || VTSimLoadScene("empty") != 0 || LS_VT40Initialize(nullptr) != 0 ||
      LS_VT40OpenScanner("VT40-AB0001", &h) != 0) {
    std::fprintf(stderr,
                 "usage: roll_verdicts [GOOD [BAD]]; the scanner did not open or the numbers are wrong\n");
    return 2;
  }
  std::printf(
      "| scene | rolls | 0 | -801 | -802 | -803 | -804 | -805 | other | least correlation | least growth "
      "|\n");
  std::printf("|---|---|---|---|---|---|---|---|---|---|---|\n");
  bool bPassed = true;
  for (const StScene& oScene : caScenes) {
    const bool bGood = oScene.nVerdict == 0;
    const int nSeeds = bGood ? nGood : nBad;
    StTally oTally;
    for (int nSeed = 1; nSeed <= nSeeds; ++nSeed)
      RollOne(h, std::string(oScene.szName) + ":" + std::to_string(nSeed), oScene, oTally);
    PrintRow(oScene, nSeeds, oTally);
    bPassed = bPassed && 100 * oTally.nExpected >= (bGood ? 98 : 95) * nSeeds;
    if (bGood) bPassed = bPassed && oTally.dWorstCorrelation >= 0.85 && oTally.dWorstGrowth >= 1.5;
  }
  VTSimHoldSequences(nullptr, 0);
  LS_VT40CloseScanner(&h);
  LS_VT40Uninitialize();
  return bPassed ? 0 : 1;
}
