// Feeds geometric records: what is read is written and read again as the same, and small ones warp an image.
#include "MXCalibrate/InterpolationBicubicQuantized.h"
#include "MXCalibrate/TpIpCalibrateGeometricSubsample.h"
#include "ScannerBlocks.h"
#include "SmallGeometry.h"

namespace {

using Table = ClInterpolationBicubicQuantized<1, 5, 600, 530, 1000>;

constexpr uint32_t cnMostSide = 48;
constexpr unsigned int cnMostPoints = 16;

Bytes Stored(const ClCalibrateGeometricData& oData) {
  return Written([&](ClStream& oStream) { oData.Write(oStream); });
}

bool IsSmall(const ClCalibrateGeometricData& oData) {
  return oData.m_nSourceWidth <= cnMostSide && oData.m_nSourceHeight <= cnMostSide &&
         oData.m_nTargetWidth <= cnMostSide && oData.m_nTargetHeight <= cnMostSide &&
         oData.m_aTarget.Entries() <= cnMostPoints;
}

void Warp(ClIpCalibrateGeometricBase& oWarp, const ClCalibrateGeometricData& oData) {
  oWarp.Reset();
  oWarp.m_pData = &oData;
  WarpEvenImage(oWarp, oData.m_nSourceWidth, oData.m_nSourceHeight);
}

}  // namespace

std::vector<Bytes> Seeds() {
  std::vector<Bytes> aSeeds = GeometryBlocks();
  ClCalibrateGeometricData oSmall;
  FillSmallGeometry(oSmall);
  aSeeds.push_back(Stored(oSmall));
  Bytes aWithoutChecksum(aSeeds.back().begin(), aSeeds.back().end() - 4);
  aWithoutChecksum[10] = '5';
  aSeeds.push_back(aWithoutChecksum);
  return aSeeds;
}

Bytes Repaired(const Bytes& aInput) {
  return WithRightChecksum(aInput);
}

void Feed(const Bytes& aRecord) {
  ClBytesStream oStream(aRecord);
  ClCalibrateGeometricData oData;
  if (Refused([&] { oData.Read(oStream); })) return;
  const Bytes aStored = Stored(oData);
  ClBytesStream oAgain(aStored);
  ClCalibrateGeometricData oRead;
  oRead.Read(oAgain);
  Require(Stored(oRead) == aStored, "what is written reads again");
  unsigned char aDigest[2][16];
  oData.GenerateHash(aDigest[0]);
  oRead.GenerateHash(aDigest[1]);
  Require(std::memcmp(aDigest[0], aDigest[1], sizeof(aDigest[0])) == 0, "the same data has the same hash");
  if (!IsSmall(oData)) return;
  // Their tables take longer than all the rest.
  static TpIpCalibrateGeometric<Table> s_oDense;
  static TpIpCalibrateGeometricSubsample<Table> s_oCoarse;
  Warp(s_oDense, oData);
  Warp(s_oCoarse, oData);
}
