// What the capture engine calls for every frame: rectifying and flattening.
#include <algorithm>
#include <cstring>

#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXTools/Failure.h"

namespace {

constexpr int cnRollWorkWidth = 1280;
constexpr int cnRollWorkHeight = 1362;
/// Rows that a roll frame has beyond half the height.
constexpr uint32_t cnRollExtraRows = 2;

[[noreturn]] void RaiseUnsupported() {
  KLV_RAISE(ClException, "Unsupported image dimensions.", -103);
}

bool HasSourceSize(const ClImage& oImage, const ClCalibrateGeometricData& oData) {
  return oImage.HasSize(static_cast<int>(oData.m_nSourceWidth), static_cast<int>(oData.m_nSourceHeight));
}

bool HasRollSize(const ClImage& oImage, const ClCalibrateGeometricData& oData) {
  return oImage.HasSize(static_cast<int>(oData.m_nSourceWidth / 2),
                        static_cast<int>(oData.m_nSourceHeight / 2 + cnRollExtraRows));
}

bool HasSizeOf(const ClImage& oImage, const ClImage& oOther) {
  return oImage.HasSize(oOther.Width(), oOther.Height());
}

/// Limits a warp, for its own lifetime, to the middle of the full target, which a roll covers.
class ClRollRegion {
 public:
  explicit ClRollRegion(ClIpCalibrateGeometricBase& oWarp) : m_oWarp(oWarp) { Set(400, 800, 800); }
  ~ClRollRegion() { Set(0, 0, 0); }
  ClRollRegion(const ClRollRegion&) = delete;
  ClRollRegion& operator=(const ClRollRegion&) = delete;

 private:
  void Set(uint32_t nX, uint32_t nWidth, uint32_t nHeight) {
    m_oWarp.m_nRoiX = nX;
    m_oWarp.m_nRoiY = 0;
    m_oWarp.m_nRoiWidth = nWidth;
    m_oWarp.m_nRoiHeight = nHeight;
  }

  ClIpCalibrateGeometricBase& m_oWarp;
};

}  // namespace

void ClVT40SetupCalibrationData::Warp(ClIpCalibrateGeometricBase& oWarp, const ClImage& oIn, ClImage& oOut) {
  MakeMap(oWarp);
  oWarp.m_pInImage = &oIn;
  oWarp.m_pOutImage = &oOut;
  KLV_CHECK(oWarp.Apply());
}

void ClVT40SetupCalibrationData::CalibratePreview(ClImage& oIn, ClImage& oOut) {
  if (HasSourceSize(oIn, m_GeoPreview)) {
    Warp(m_oPreviewWarp, oIn, oOut);
  } else if (HasSourceSize(oIn, m_GeoPreviewSmall)) {
    Warp(m_oPreviewWarpSmall, oIn, oOut);
  } else {
    RaiseUnsupported();
  }
}

void ClVT40SetupCalibrationData::CalibrateFull(ClImage& oIn, ClImage& oOut) {
  if (HasSourceSize(oIn, m_GeoFull)) {
    KLV_CHECK(m_oFullFilter.ApplyParam(oIn, m_oFullReduced, cnWorkWidth, cnWorkHeight));
    Warp(m_oFullWarp, m_oFullReduced, oOut);
  } else if (HasSourceSize(oIn, m_GeoFullSmall)) {
    Warp(m_oFullWarpSmall, oIn, oOut);
  } else {
    RaiseUnsupported();
  }
}

ClVT40SetupCalibrationData::StDirect ClVT40SetupCalibrationData::DirectPreview(const ClImage& oIn) const {
  if (HasSourceSize(oIn, m_GeoPreview)) return {&m_oPreviewWarp, &m_oRefPreview};
  if (HasSourceSize(oIn, m_GeoPreviewSmall)) return {&m_oPreviewWarpSmall, &m_oRefPreview};
  return {nullptr, nullptr};
}

ClVT40SetupCalibrationData::StDirect ClVT40SetupCalibrationData::DirectFull(const ClImage& oIn) const {
  const bool bReduced = HasSourceSize(oIn, m_GeoFull);
  if (bReduced || !HasSourceSize(oIn, m_GeoFullSmall)) return {nullptr, nullptr};
  return {&m_oFullWarpSmall, &m_oRefFull};
}

void ClVT40SetupCalibrationData::CalibrateRoll(ClImage& oIn, ClImage& oOut) {
  if (HasRollSize(oIn, m_GeoFull)) {
    KLV_CHECK(m_oRollFilter.ApplyParam(oIn, m_oRollReduced, cnRollWorkWidth, cnRollWorkHeight));
    WarpRoll(m_oFullWarp, m_oRollReduced, m_GeoFullWork, m_oRollFrame, oOut);
  } else if (HasRollSize(oIn, m_GeoFullSmall)) {
    WarpRoll(m_oFullWarpSmall, oIn, m_GeoFullSmall, m_oRollFrameSmall, oOut);
  } else {
    RaiseUnsupported();
  }
}

void ClVT40SetupCalibrationData::WarpRoll(ClIpCalibrateGeometricBase& oWarp, const ClImage& oStrip,
                                          const ClCalibrateGeometricData& oData, ClImage& oFrame,
                                          ClImage& oOut) {
  if (oStrip.DataType() != ClImage::eUint8 || oStrip.Planes() != 1) RaiseUnsupported();
  // Only the strip is ever written, so that the rest needs to be cleared only once.
  if (!HasSourceSize(oFrame, oData)) {
    oFrame.NewWithType(ClImage::eUint8, static_cast<int>(oData.m_nSourceWidth),
                       static_cast<int>(oData.m_nSourceHeight), 1, 0, 0, true);
    oFrame = static_cast<unsigned char>(0);
  }
  const int nRows = std::min(oStrip.Height(), oFrame.Height());
  for (int nY = 0; nY < nRows; ++nY) {
    std::memcpy(oFrame.Row<uint8_t>(nY) + oFrame.Width() / 4, oStrip.Row<uint8_t>(nY),
                static_cast<size_t>(oStrip.Width()));
  }
  const ClRollRegion oRegion(oWarp);
  Warp(oWarp, oFrame, oOut);
}

void ClVT40SetupCalibrationData::AdjustBrightnessPreview(ClImage& oIn, ClImage& oOut, unsigned char nTarget) {
  KLV_CHECK(m_oAdjustPreview.ApplyParam(oIn, m_oRefPreview, oOut, nTarget));
}

void ClVT40SetupCalibrationData::AdjustBrightnessFull(ClImage& oIn, ClImage& oOut, unsigned char nTarget) {
  KLV_CHECK(m_oAdjustFull.ApplyParam(oIn, m_oRefFull, oOut, nTarget));
}

void ClVT40SetupCalibrationData::AdjustBrightnessRoll(ClImage& oIn, ClImage& oOut, unsigned char nTarget) {
  KLV_CHECK(m_oAdjustRoll.ApplyParam(oIn, m_oRefRoll, oOut, nTarget));
}

void ClVT40SetupCalibrationData::AdjustBrightnessMiniRAW(ClImage& oIn, ClImage& oOut, unsigned char nTarget) {
  ClImage* pReference = HasSizeOf(oIn, m_oRefMiniRAW)        ? &m_oRefMiniRAW
                        : HasSizeOf(oIn, m_oRefMiniRAWSmall) ? &m_oRefMiniRAWSmall
                                                             : nullptr;
  if (pReference == nullptr) RaiseUnsupported();
  KLV_CHECK(m_oAdjustMiniRAW.ApplyParam(oIn, *pReference, oOut, nTarget));
}

void ClVT40SetupCalibrationData::AdjustBrightnessSignature(ClImage& oIn, ClImage& oOut,
                                                           unsigned char nTarget) {
  ClImage* pReference = oIn.Height() == m_oRefSignature.Height()       ? &m_oRefSignature
                        : oIn.Height() == m_oRefSignatureHalf.Height() ? &m_oRefSignatureHalf
                                                                       : nullptr;
  if (pReference == nullptr) KLV_RAISE(ClException, "Wrong image size.", -44);
  KLV_CHECK(m_oAdjustSignature.ApplyParam(oIn, *pReference, oOut, nTarget));
}
