// Feeds stored maps of a warp: a map that loads stays inside its source, and is stored as the same.
#include "MXCalibrate/InterpolationBicubicQuantized.h"
#include "MXCalibrate/TpIpCalibrateGeometric.h"
#include "MXTools/FpImage.h"
#include "SmallGeometry.h"
#include "StreamBytes.h"

namespace {

/// Images above it would be all that is worked on.
constexpr uint32_t cnMostSide = 512;

class ClWarp : public TpIpCalibrateGeometric<ClInterpolationBicubicQuantized<1, 5, 600, 530, 1000>> {
 public:
  Bytes Stored() const {
    return Written([this](ClStream& oStream) { Store(oStream); });
  }
  void Warp() {
    if (m_nSourceWidth > cnMostSide || m_nSourceHeight > cnMostSide) return;
    ClImage oIn, oOut;
    oIn.NewWithType(ClImage::eUint8, static_cast<int>(m_nSourceWidth), static_cast<int>(m_nSourceHeight), 1,
                    0, 0, true);
    oIn = static_cast<unsigned char>(77);
    m_pInImage = &oIn;
    m_pOutImage = &oOut;
    Refused([&] { Apply(); });
  }
};

}  // namespace

std::vector<Bytes> Seeds() {
  ClCalibrateGeometricData oData;
  FillSmallGeometry(oData);
  ClWarp oWarp;
  oWarp.m_pData = &oData;
  oWarp.Initiate();
  return {oWarp.Stored()};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  // Their tables take longer than all the rest.
  static ClWarp s_oWarp, s_oLoaded;
  const Bytes aMap(pData, pData + nSize);
  ClBytesStream oStream(aMap);
  s_oWarp.Reset();
  if (Refused([&] { s_oWarp.Load(oStream); })) {
    Require(Refused([&] { s_oWarp.Stored(); }), "a refused map leaves none");
    return 0;
  }
  const Bytes aStored = s_oWarp.Stored();
  ClBytesStream oAgain(aStored);
  s_oLoaded.Load(oAgain);
  Require(s_oLoaded.Stored() == aStored, "what is stored loads again");
  s_oWarp.Warp();
  return 0;
}
