// Feeds the liveness library what reaches it from outside: fault texts of the environment, names of
// properties, pictures.
#include "FuzzTarget.h"
#include "KelvarinFakeFingerDetectionVT40/Detection.h"
#include "KelvarinFakeFingerDetectionVT40/LivenessScore.h"
#include "scene/SimError.h"

namespace {

using namespace Simulator;

// The score, which takes longer than all the rest, needs 5000 places: a picture of this side has 72 x 72.
constexpr unsigned int cnMostSide = 104;

template <typename TCall>
void Try(TCall&& fnCall) {
  RefusedWith<ClSimError>(fnCall);
}

}  // namespace

std::vector<Bytes> Seeds() {
  std::vector<Bytes> aSeeds;
  for (const char* szSeed :
       {"FD_VT40Initialize=-101,FD_VT40GetFakeFingerDetectionScore=-60|dScore", "=1|nScores", "|version"}) {
    Bytes aSeed = BytesOf(szSeed, '|');
    aSeed.insert(aSeed.end(), {0, 80, 80, 7, 250, 30, 30, 200});
    aSeeds.push_back(aSeed);
  }
  return aSeeds;
}

void Feed(const Bytes& aInput) {
  ClFuzzInput oInput(aInput);
  ClDetection oDetection;
  // What setenv is given stays in memory for good: gigabytes after millions of inputs.
  std::string sFaults = "KELVARIN_FDSIM_FAULTS=" + oInput.Text();
  putenv(sFaults.data());
  Try([&] { oDetection.ReadFaultsAtRest(); });
  unsetenv("KELVARIN_FDSIM_FAULTS");
  long nResult = 0;
  oDetection.Faults().Strikes("FD_VT40Initialize", false, nResult);
  oDetection.Initialize();
  void* hDetection = oDetection.Create();
  const std::string sName = oInput.Text();
  Try([&] { oDetection.Text(hDetection, sName); });
  Try([&] { oDetection.Refuse(hDetection, sName); });
  const unsigned int nWidth = std::min(oInput.Byte(), cnMostSide);
  const unsigned int nHeight = std::min(oInput.Byte(), cnMostSide);
  // The input is laid out again and again until the picture is full.
  Bytes aPattern = oInput.Rest();
  aPattern.push_back(0);
  Bytes aPicture(size_t{2} * nWidth * nHeight);
  for (size_t nAt = 0; nAt < aPicture.size(); nAt += aPattern.size())
    std::copy_n(aPattern.begin(), std::min(aPattern.size(), aPicture.size() - nAt), &aPicture[nAt]);
  Try([&] {
    const double dScore =
        oDetection.Score(hDetection, nWidth, nHeight, aPicture.data(), aPicture.data() + aPicture.size() / 2);
    Require(dScore >= 0.0 && dScore <= 100.0, "a score lies between 0 and 100");
    Require(nWidth >= cnLeastSide && nHeight >= cnLeastSide, "small pictures are refused");
  });
}
