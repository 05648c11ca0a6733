// The window of the single-finger scanner and the profile of its light.
#include "MXLiveScannerAPI/VT4SetupCalibrationData.h"

#include <cstring>
#include <vector>

#include "MXCalibrate/CalibrateBlock.h"
#include "MXImageProcessing/IpFilterMid.h"
#include "MXTools/Bitmap.h"
#include "MXTools/Failure.h"

namespace {

constexpr unsigned int cnBlockSize = 12;
constexpr uint32_t cnWindowWidth = 1240;
constexpr uint32_t cnWindowHeight = 430;
constexpr int cnHalvedWidth = 620;
constexpr int cnMiniWidth = 360;
constexpr int cnMiniHeight = 256;
constexpr long cnProfileFilterWidth = 15;

/// With a centre near the edge the window begins left of the frame or above it: the difference is negative,
/// and ClIpCut refuses it.
long WindowStart(uint32_t nCentre, uint32_t nExtent) {
  return static_cast<int32_t>(nCentre - nExtent / 2);
}

/// The light grows from the window's edge to row 180 and falls off again until row 360.
unsigned char Profile(int nRow) {
  if (nRow < 180) return static_cast<unsigned char>(165 + nRow / 2);
  if (nRow < 360) return static_cast<unsigned char>(165 + (360 - nRow) / 2);
  return 165;
}

}  // namespace

ClVT4SetupCalibrationData::ClVT4SetupCalibrationData(const char* szSerial) {
  m_nScannerType = 16;
  if (szSerial == nullptr) return;
  m_nScannerRevision = ReadScannerRevision(Behind(szSerial, 4));
  CopyBlock(szSerial, static_cast<unsigned int>(std::strlen(szSerial)) + 1, m_aSerial);
}

void ClVT4SetupCalibrationData::Reset(bool bGeometric, bool /*bBrightness*/) {
  if (bGeometric) ResetGeo();
}

void ClVT4SetupCalibrationData::Setup(const void* pGeo, unsigned int nGeo, const void* /*pSupplemental*/,
                                      unsigned int /*nSupplemental*/) {
  UpdateGeometricData(pGeo, nGeo);
}

void ClVT4SetupCalibrationData::UpdateGeometricData(const void* pData, unsigned int nSize) {
  if (pData == nullptr || nSize != cnBlockSize) {
    KLV_RAISE(ClException, "Wrong size of geometric calibration data.", -101);
  }
  const uint8_t* pBytes = static_cast<const uint8_t*>(pData);
  const std::vector<uint8_t> aBlock(pBytes, pBytes + cnBlockSize);
  m_nCentreX = static_cast<uint32_t>(LittleEndian(aBlock, 4, 4));
  m_nCentreY = static_cast<uint32_t>(LittleEndian(aBlock, 8, 4));
  ClImage oProfile(cnHalvedWidth, static_cast<int>(cnWindowHeight), 1, 0, 0);
  for (int nY = 0; nY < oProfile.Height(); ++nY) {
    std::memset(oProfile.Row<uint8_t>(nY), Profile(nY), static_cast<size_t>(oProfile.Width()));
  }
  ClImage oSmooth;
  KLV_CHECK(ClIpFilterMid().ApplyParam(oProfile, oSmooth, cnProfileFilterWidth));
  m_oBrightness.Swap(oSmooth);
}

void ClVT4SetupCalibrationData::CutWindow(ClImage& oIn) {
  KLV_CHECK(m_oCut.ApplyParam(oIn, WindowStart(m_nCentreX, cnWindowWidth),
                              WindowStart(m_nCentreY, cnWindowHeight), cnWindowWidth, cnWindowHeight,
                              m_oWindow));
  KLV_CHECK(m_oSubsample.ApplyParam(m_oWindow, 2, 1, m_oHalved, true));
}

void ClVT4SetupCalibrationData::CalibrateFull(ClImage& oIn, ClImage& oOut) {
  CutWindow(oIn);
  KLV_CHECK(m_oAdjust.ApplyParam(m_oHalved, m_oBrightness, oOut, 255.0));
}

void ClVT4SetupCalibrationData::CalibrateMini(ClImage& oIn, ClImage& oOut) {
  CutWindow(oIn);
  m_oHalved.SetPels(ClBitmap::cn500DPI, ClBitmap::cn500DPI);
  KLV_CHECK(m_oRescale.ApplyParamSize(m_oHalved, oOut, cnMiniWidth, cnMiniHeight, ClIpRescale::ModeBiLinear));
  oOut.SetPels(ClBitmap::cn500DPI, ClBitmap::cn500DPI);
}
