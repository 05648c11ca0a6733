// Feeds geometric records: what is read is written and read again as the same, and small ones warp an image.
#include "MXCalibrate/CalibrateGeometricData.h"
#include "MXCalibrate/InterpolationBicubicQuantized.h"
#include "MXCalibrate/TpIpCalibrateGeometric.h"
#include "MXCalibrate/TpIpCalibrateGeometricSubsample.h"
#include "MXTools/FpImage.h"
#include "ScannerBlocks.h"
#include "SmallGeometry.h"
#include "StreamBytes.h"

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
  ClImage oIn, oOut;
  oIn.NewWithType(ClImage::eUint8, static_cast<int>(oData.m_nSourceWidth),
                  static_cast<int>(oData.m_nSourceHeight), 1, 0, 0, true);
  oIn = static_cast<unsigned char>(77);
  oWarp.Reset();
  oWarp.m_pData = &oData;
  oWarp.m_pInImage = &oIn;
  oWarp.m_pOutImage = &oOut;
  Refused([&] { oWarp.Apply(); });
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

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  const Bytes aRecord(pData, pData + nSize);
  ClBytesStream oStream(aRecord);
  ClCalibrateGeometricData oData;
  if (Refused([&] { oData.Read(oStream); })) return 0;
  const Bytes aStored = Stored(oData);
  ClBytesStream oAgain(aStored);
  ClCalibrateGeometricData oRead;
  oRead.Read(oAgain);
  Require(Stored(oRead) == aStored, "what is written reads again");
  unsigned char aDigest[2][16];
  oData.GenerateHash(aDigest[0]);
  oRead.GenerateHash(aDigest[1]);
  Require(std::memcmp(aDigest[0], aDigest[1], sizeof(aDigest[0])) == 0, "the same data has the same hash");
  if (!IsSmall(oData)) return 0;
  // Their tables take longer than all the rest.
  static TpIpCalibrateGeometric<Table> s_oDense;
  static TpIpCalibrateGeometricSubsample<Table> s_oCoarse;
  Warp(s_oDense, oData);
  Warp(s_oCoarse, oData);
  return 0;
}
