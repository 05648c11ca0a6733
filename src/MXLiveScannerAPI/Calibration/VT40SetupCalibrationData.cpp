// Set-up of a ten-finger scanner: tables by revision, brightness and gains, and the thread that makes the
// maps.
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <optional>
#include <vector>

#include "MXCalibrate/IpInterpolate2D.h"
#include "MXImageProcessing/IpCut.h"
#include "MXTools/Failure.h"
#include "MXTools/HelperThread.h"
#include "MXTools/MemStream.h"

namespace {

constexpr unsigned int cnNewestRevision = 7;
/// The illumination keys.
constexpr unsigned char caKeys[] = {16, 1, 8, 2, 4};

template <typename TData>
void Serialise(TData& oData, TpArrayStatic<char>& aOut) {
  ClMemStream oStream;
  oData.Write(oStream);
  aOut.New(static_cast<unsigned int>(oStream.Size()));
  std::memcpy(aOut.Data(), oStream.GetData(), aOut.Entries());
}

}  // namespace

ClVT40SetupCalibrationData::ClVT40SetupCalibrationData(const char* szSerial, bool bUsbPowered)
    : m_bUsbPowered(bUsbPowered) {
  m_nScannerRevision = ReadScannerRevision(Behind(szSerial, 5));
  CopyBlock(szSerial, static_cast<unsigned int>(std::strlen(szSerial)) + 1, m_aSerial);
  m_nScannerType = 17;
  FillTables();
  m_aMask.New(2);
  for (unsigned int n = 0; n < 2; ++n) {
    m_pMask[n] = std::make_unique<ClIpVT40R4Mask>();
    m_aMask[n] = m_pMask[n].get();
  }
}

void ClVT40SetupCalibrationData::FillTables() {
  if (m_nScannerRevision > cnNewestRevision) KLV_RAISE(ClException, "Scanner revision not supported.", -103);
  if (m_nScannerRevision == 0) {
    m_mapGainLevel = {{1, 0x202420},  {2, 0x3C3C3C}, {4, 0x5A5A5A},
                      {16, 0x070707}, {8, 0x1E1E1E}, {6, 0x00503C}};
    m_mapBrightnessAdjustment = {{1, 0x646464}, {2, 0x0A0A80}, {4, 0x0A8032}, {16, 0xC89632}, {8, 0x64C832}};
    return;
  }
  for (const unsigned char nKey : caKeys) m_mapBrightnessAdjustment[nKey] = 0xC0C0C0;
}

unsigned int ClVT40SetupCalibrationData::GetExposure() {
  if (m_nScannerRevision > cnNewestRevision) KLV_RAISE(ClException, "Scanner not supported.", -103);
  if (m_nScannerRevision == 0) return 150;
  return m_bUsbPowered ? 400 : 300;
}

const ClCalibrateGeometricData& ClVT40SetupCalibrationData::GetGeometricDataFull(bool bSmallImages) {
  return bSmallImages ? m_GeoFullSmall : ClVTSetupCalibrationDataBase::GetGeometricDataFull(bSmallImages);
}

const ClCalibrateGeometricData& ClVT40SetupCalibrationData::GetGeometricDataPreview(bool bSmallImages) {
  return bSmallImages ? m_GeoPreviewSmall
                      : ClVTSetupCalibrationDataBase::GetGeometricDataPreview(bSmallImages);
}

void ClVT40SetupCalibrationData::GetGainData(TpArrayStatic<char>& aOut) {
  Serialise(m_oGain, aOut);
}

void ClVT40SetupCalibrationData::GetBrightnessData(TpArrayStatic<char>& aOut) {
  Serialise(m_oBrightness, aOut);
}

void ClVT40SetupCalibrationData::StoreData(const char* szDirectory) {
  ClVTSetupCalibrationDataBase::StoreData(szDirectory);
  StoreBlock(szDirectory, "brightness.calibrate", m_aBrightnessRaw);
  StoreBlock(szDirectory, "gaindata.calibrate", m_aGainRaw);
}

void ClVT40SetupCalibrationData::Reset(bool bGeometric, bool bBrightness, bool bGain) {
  if (bGeometric) {
    ResetGeo();
    m_oFullWarp.Reset();
    m_oPreviewWarp.Reset();
  }
  if (bBrightness) {
    m_oRefFull.Delete();
    m_oRefPreview.Delete();
    m_aBrightnessRaw.New(0);
  }
  if (bGain) {
    m_aGainRaw.New(0);
    m_mapGainLevel.clear();
  }
}

void ClVT40SetupCalibrationData::Setup(const void* pGeo, unsigned int nGeo, const void* pBrightness,
                                       unsigned int nBrightness, const void* pGain, unsigned int nGain) {
  if (m_nScannerRevision != 0) {
    if (m_nScannerRevision > cnNewestRevision)
      KLV_RAISE(ClException, "Scanner revision not supported.", -103);
    UpdateGainData(pGain, nGain);
  }
  // The destructor joins, so that no exception leaves this function while the thread works on this object.
  std::optional<ClHelperThread> oPrecompute;
  if (pGeo != nullptr) {
    UpdateGeometricData(pGeo, nGeo);
    oPrecompute.emplace([this] { PrecomputeGeometricData(); });
  }
  if (pBrightness != nullptr) UpdateBrightnessData(pBrightness, nBrightness);
  if (oPrecompute.has_value()) oPrecompute->Join();
}

void ClVT40SetupCalibrationData::PrecomputeGeometricData() {
  // Frames of all columns, which the engine does not take, get their maps when the first of them comes.
  MakeMap(m_oPreviewWarpSmall);
  MakeMap(m_oFullWarpSmall);
}

void ClVT40SetupCalibrationData::MakeMap(ClIpCalibrateGeometricBase& oWarp) noexcept {
  try {
    oWarp.Initiate();
  } catch (...) {
    std::puts(Klv::FailureText());
  }
}

void ClVT40SetupCalibrationData::UpdateGainData(const void* pData, unsigned int nSize) {
  if (pData == nullptr || nSize == 0) return;
  CopyBlock(pData, nSize, m_aGainRaw);
  ClMemStream oBlock(static_cast<const unsigned char*>(pData), nSize);
  m_oGain.Read(oBlock);
  // The data are written and read back, so that either stored form is reduced to the five keys of the legacy
  // one.
  ClMemStream oLegacy;
  m_oGain.Write(oLegacy);
  oLegacy.Open();
  m_oGain.Read(oLegacy);
  if (!m_oGain.IsValid()) KLV_RAISE(ClException, "Calibration data corrupt.", -39);
  for (const unsigned char nKey : caKeys) m_mapGainLevel[nKey] = m_oGain.GetGain(nKey);
  // Each of the three bytes is halved; the mask keeps a channel's lowest bit out of the channel below it.
  if (!m_bUsbPowered) m_mapGainLevel[1] = (m_mapGainLevel[1] >> 1) & 0x7F7F7F7F;
}

void ClVT40SetupCalibrationData::UpdateBrightnessData(const void* pData, unsigned int nSize) {
  if (m_GeoFull.m_nPlanes == 0) {
    KLV_RAISE(ClException, "Update of brightness data not possible without geometric data.", -1);
  }
  CopyBlock(pData, nSize, m_aBrightnessRaw);
  ClMemStream oBlock(static_cast<const unsigned char*>(pData), nSize);
  m_oBrightness.Read(oBlock);
  const size_t nSamples = m_oBrightness.NumberOfSamplePoints();
  const unsigned int nPoints = m_GeoPreview.m_aTarget.Entries();
  constexpr uint64_t cnKey = 1;
  if (!m_oBrightness.IsValid() || !m_oBrightness.HasSamples(cnKey) || nSamples < nPoints) {
    KLV_RAISE(ClException, "Brightness calibration data invalid.", -39);
  }
  std::vector<unsigned char> aSamples(3 * nSamples);
  m_oBrightness.GetSamples(cnKey, aSamples.data());
  std::vector<double> aLuminance(nPoints);
  for (size_t n = 0; n < nPoints; ++n) {
    aLuminance[n] = (30 * aSamples[n] + 59 * aSamples[nSamples + n] + 11 * aSamples[2 * nSamples + n]) / 100;
  }
  const double* pValues = aLuminance.data();
  DrawReference(pValues, m_GeoPreview.m_aTarget, m_GeoPreview.m_nTargetWidth, m_GeoPreview.m_nTargetHeight,
                m_oRefPreview);
  DrawReference(pValues, m_GeoFull.m_aTarget, m_GeoFull.m_nTargetWidth, m_GeoFull.m_nTargetHeight,
                m_oRefFull);
  KLV_CHECK(ClIpCut().ApplyParam(m_oRefFull, 400, 0, 800, 800, m_oRefRoll));
  // Raw frames are not warped: their references lie in the sensor's co-ordinates.
  DrawReference(pValues, m_GeoQuarter.m_aActual[0], m_GeoQuarter.m_nSourceWidth, m_GeoQuarter.m_nSourceHeight,
                m_oRefMiniRAW);
  DrawReference(pValues, m_GeoQuarterSmall.m_aActual[0], m_GeoQuarterSmall.m_nSourceWidth,
                m_GeoQuarterSmall.m_nSourceHeight, m_oRefMiniRAWSmall);
  // Signature frames have the size and the points of a quarter.
  m_oRefSignature = m_oRefMiniRAW;
  KLV_CHECK(ClIpCut().ApplyParam(m_oRefSignature, 0, 0, m_oRefSignature.Width(), m_oRefSignature.Height() / 2,
                                 m_oRefSignatureHalf));
}

void ClVT40SetupCalibrationData::DrawReference(const double* pValues, const Points& aPoints, uint32_t nWidth,
                                               uint32_t nHeight, ClImage& oOut) {
  // Scanners of the first revision may have more points on the sensor than values.
  Points aValued;
  aValued.CopyFrom(aPoints);
  aValued.SetEntries(m_GeoPreview.m_aTarget.Entries());
  ClIpInterpolate2D<ClRadialBasisSquaredDist> oInterpolate;
  oInterpolate.m_pValues = pValues;
  oInterpolate.m_pPoints = &aValued;
  oInterpolate.nInTargetWidth = static_cast<int>(nWidth);
  oInterpolate.nInTargetHeight = static_cast<int>(nHeight);
  oInterpolate.m_nBlockSize = 4;
  oInterpolate.m_nDataType = ClImage::eUint8;
  oInterpolate.m_dLowerLimit = 10.0;
  oInterpolate.m_dUpperLimit = 255.0;
  oInterpolate.m_aOutput.New(1);
  oInterpolate.m_aOutput[0] = &oOut;
  if (oInterpolate.Apply() != 0) KLV_RAISE(ClException, "Brightness calibration data invalid.", -39);
}
