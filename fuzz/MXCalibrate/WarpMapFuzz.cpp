// Feeds stored maps of a warp: a map that loads stays inside its source, and is stored as the same.
#include "MXCalibrate/InterpolationBicubicQuantized.h"
#include "SmallGeometry.h"

namespace {

/// Larger images would take all the time.
constexpr uint32_t cnMostSide = 512;

class ClWarp : public TpIpCalibrateGeometric<ClInterpolationBicubicQuantized<1, 5, 600, 530, 1000>> {
 public:
  Bytes Stored() const {
    return Written([this](ClStream& oStream) { Store(oStream); });
  }
  void Warp() {
    if (m_nSourceWidth > cnMostSide || m_nSourceHeight > cnMostSide) return;
    WarpEvenImage(*this, m_nSourceWidth, m_nSourceHeight);
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

void Feed(const Bytes& aMap) {
  // Their tables take longer than all the rest.
  static ClWarp s_oWarp, s_oLoaded;
  ClBytesStream oStream(aMap);
  s_oWarp.Reset();
  if (Refused([&] { s_oWarp.Load(oStream); })) {
    Require(Refused([&] { s_oWarp.Stored(); }), "a refused map leaves none");
    return;
  }
  const Bytes aStored = s_oWarp.Stored();
  ClBytesStream oAgain(aStored);
  s_oLoaded.Load(oAgain);
  Require(s_oLoaded.Stored() == aStored, "what is stored loads again");
  s_oWarp.Warp();
}
