// Feeds blocks of brightness and of gains: a refused block does what its contract says, and the positional
// form that is written of a whole one reads as the same.
#include "MXCalibrate/CalibrateBlock.h"
#include "MXCalibrate/CalibrateBrightnessData.h"
#include "MXCalibrate/CalibrateGainData.h"
#include "ScannerBlocks.h"
#include "StreamBytes.h"

namespace {

constexpr uint32_t cnPoints = 64;

template <typename TData>
Bytes Stored(TData& rData) {
  return Written([&](ClStream& oStream) { rData.Write(oStream); });
}

template <typename TData>
void Read(TData& rData, const Bytes& aBlock) {
  ClBytesStream oStream(aBlock);
  rData.Read(oStream);
}

void FeedBrightness(const Bytes& aBlock) {
  // Measuring optics takes longer than all the rest.
  static const Bytes s_aGood = BrightnessBlock(true);
  ClCalibrateBrightnessData oData;
  Read(oData, s_aGood);
  if (Refused([&] { Read(oData, aBlock); })) {
    Require(!oData.IsValid() && !oData.HasSamples(1), "a refused block leaves no brightness");
    return;
  }
  for (const uint64_t nKey : cnIlluminationKeys) {
    Bytes aSamples(3 * size_t{oData.NumberOfSamplePoints()});
    oData.GetSamples(nKey, aSamples.data());
  }
  // In the positional form fewer points stand elsewhere, and more have no room.
  if (oData.NumberOfSamplePoints() != cnPoints) return;
  const Bytes aStored = Stored(oData);
  // Values that spell the tag of the other form are taken for it.
  if (StartsWithTag(aStored, "CBD")) return;
  ClCalibrateBrightnessData oAgain;
  Read(oAgain, aStored);
  Require(Stored(oAgain) == aStored, "brightness that is written reads again");
}

void FeedGains(const Bytes& aBlock) {
  static const Bytes s_aGood = GainBlock(true);
  ClCalibrateGainData oData;
  Read(oData, s_aGood);
  const Bytes aBefore = Stored(oData);
  if (Refused([&] { Read(oData, aBlock); })) {
    Require(oData.IsValid() && Stored(oData) == aBefore, "a refused block leaves the gains as they were");
    return;
  }
  const Bytes aStored = Stored(oData);
  if (StartsWithTag(aStored, "CGD")) return;
  ClCalibrateGainData oAgain;
  Read(oAgain, aStored);
  Require(Stored(oAgain) == aStored, "gains that are written read again");
}

}  // namespace

std::vector<Bytes> Seeds() {
  return {BrightnessBlock(true), BrightnessBlock(false), GainBlock(true), GainBlock(false)};
}

void Feed(const Bytes& aBlock) {
  FeedBrightness(aBlock);
  FeedGains(aBlock);
}
