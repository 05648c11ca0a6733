// The dots of the calibration target, and stored calibration data, as the library's own classes judge them.
#include "Calibration.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "MXCalibrate/IpCalibrateGeometricBuildRefPointsVT40Donut.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXTools/Exception.h"
#include "MXTools/MemStream.h"
#include "ToolError.h"

namespace {

using ClDonut = ClIpCalibrateGeometricBuildRefPointsVT40Donut;
using Points = ClCalibrateGeometricData::Points;

constexpr unsigned int cnSensorWidth = 3840;
constexpr unsigned int cnSensorHeight = 2720;
constexpr double cdMicrometresPerInch = 25400;
constexpr double cdPitch = 10000;  // micrometres
constexpr int cnSide = 8;

/// The library's text and number in one line.
std::string TextOf(const ClException& oFailure) {
  std::string sText = oFailure.What();
  std::replace(sText.begin(), sText.end(), '\n', ' ');
  return sText + " (" + std::to_string(oFailure.Number()) + ")";
}

/// Calls the library's classes and returns the text of what they raise, or nothing.
template <typename F>
std::string Refusal(F&& fnDo) {
  try {
    fnDo();
  } catch (const ClException& oFailure) {
    return TextOf(oFailure);
  }
  return "";
}

void FindDots(ClDonut& oSearch, ClImage& oImage, ClCalibrateGeometricData& oData) {
  oSearch.m_pInImage = &oImage;
  oSearch.m_pOutData = &oData;
  const std::string sReason = Refusal([&] {
    const long nResult = oSearch.Apply();
    if (nResult != 0) KLV_RAISE_NUMBER(nResult);
  });
  if (!sReason.empty()) throw ClToolError(eExitNegative, "the target's dots: " + sReason);
}

StResidual ResidualOf(const Points& aDots, double dDpiX, double dDpiY) {
  const size_t nDots = aDots.Entries();
  double dMeanX = 0, dMeanY = 0, dAlong = 0, dAcross = 0;
  StResidual o;
  for (unsigned int n = 0; n < nDots; ++n) {
    o.aX.push_back(aDots[n].x * cdMicrometresPerInch / dDpiX);
    o.aY.push_back(aDots[n].y * cdMicrometresPerInch / dDpiY);
    dMeanX += o.aX[n] / static_cast<double>(nDots);
    dMeanY += o.aY[n] / static_cast<double>(nDots);
  }
  const auto GridX = [](size_t n) { return cdPitch * (static_cast<double>(n / cnSide) - 3.5); };
  const auto GridY = [](size_t n) { return cdPitch * (static_cast<double>(n % cnSide) - 3.5); };
  for (size_t n = 0; n < nDots; ++n) {
    dAlong += GridX(n) * (o.aX[n] - dMeanX) + GridY(n) * (o.aY[n] - dMeanY);
    dAcross += GridX(n) * (o.aY[n] - dMeanY) - GridY(n) * (o.aX[n] - dMeanX);
  }
  // This turn brings the grid nearest to the dots.
  const double dTurn = std::atan2(dAcross, dAlong);
  const double dCos = std::cos(dTurn), dSin = std::sin(dTurn);
  for (size_t n = 0; n < nDots; ++n) {
    o.aX[n] -= dMeanX + GridX(n) * dCos - GridY(n) * dSin;
    o.aY[n] -= dMeanY + GridX(n) * dSin + GridY(n) * dCos;
  }
  return o;
}

void TakePixels(const ClPicture& oPicture, ClImage& oImage) {
  oImage.NewWithType(ClImage::eUint8, static_cast<int>(oPicture.nWidth), static_cast<int>(oPicture.nHeight),
                     1, 0, 0, true);
  for (unsigned int y = 0; y < oPicture.nHeight; ++y)
    std::memcpy(oImage.Row<unsigned char>(static_cast<int>(y)), oPicture.Row(y), oPicture.nWidth);
}

/// Sets the search up for a corrected picture, whose pixels are larger.
void SetCorrected(ClDonut& oSearch) {
  const double dScale =
      oSearch.m_dTargetDpiX * oSearch.m_dTargetDpiY / (oSearch.m_dSourceDpiX * oSearch.m_dSourceDpiY);
  oSearch.m_dMinArea *= dScale;
  oSearch.m_dMaxArea *= dScale;
  oSearch.m_dSourceDpiX = oSearch.m_dTargetDpiX;
  oSearch.m_dSourceDpiY = oSearch.m_dTargetDpiY;
}

void UpdateGeometry(ClVT40SetupCalibrationData& oSetup, const std::vector<unsigned char>& aBlock) {
  oSetup.UpdateGeometricData(aBlock.data(), static_cast<unsigned int>(aBlock.size()));
}

/// Makes the map as well, since a grid that passes all tests may still allow none.
void WarpBlank(ClVT40SetupCalibrationData& oSetup) {
  const ClCalibrateGeometricData& oData = oSetup.GetGeometricDataFull(true);
  ClImage oBlank;
  oBlank.NewWithType(ClImage::eUint8, static_cast<int>(oData.m_nSourceWidth),
                     static_cast<int>(oData.m_nSourceHeight), 1, 0, 0, true);
  oBlank = static_cast<unsigned char>(0);
  ClImage oOut;
  oSetup.CalibrateFull(oBlank, oOut);
}

unsigned int CountRepaired(ClVT40SetupCalibrationData& oSetup, const std::vector<unsigned char>& aBlock) {
  ClMemStream oStream(aBlock.data(), static_cast<unsigned int>(aBlock.size()));
  ClCalibrateGeometricData oStored;
  oStored.Read(oStream);
  const Points& aUsed = oSetup.GetGeometricDataFull(false).m_aActual[0];
  unsigned int nRepaired = 0;
  for (unsigned int n = 0; n < aUsed.Entries(); ++n) {
    if ((aUsed[n] - oStored.m_aActual[0][n]).Length() > 0) ++nRepaired;
  }
  return nRepaired;
}

}  // namespace

double StResidual::Of(size_t nDot) const {
  return std::hypot(aX[nDot], aY[nDot]);
}

double StResidual::Rms() const {
  double dSquares = 0;
  for (size_t n = 0; n < aX.size(); ++n) dSquares += Of(n) * Of(n);
  return std::sqrt(dSquares / static_cast<double>(aX.size()));
}

double StResidual::Most() const {
  double dMost = 0;
  for (size_t n = 0; n < aX.size(); ++n) dMost = std::max(dMost, Of(n));
  return dMost;
}

StCalibration CalibrateFrom(const ClPicture& oRaw, const std::string& sSerial) {
  if (oRaw.nWidth != cnSensorWidth || oRaw.nHeight != cnSensorHeight) {
    throw ClToolError(eExitFile, "the picture has " + std::to_string(oRaw.nWidth) + " x " +
                                     std::to_string(oRaw.nHeight) +
                                     " pixels; one of the full sensor has 3840 x 2720");
  }
  ClImage oImage;
  TakePixels(oRaw, oImage);
  ClDonut oSearch;
  ClCalibrateGeometricData oData;
  FindDots(oSearch, oImage, oData);
  StCalibration oResult;
  oResult.oBefore = ResidualOf(oData.m_aActual[0], oSearch.m_dSourceDpiX, oSearch.m_dSourceDpiY);
  ClMemStream oStream;
  oData.Write(oStream);
  oResult.aRecord.assign(oStream.GetData(), oStream.GetData() + oStream.Size());
  ClImage oCorrected;
  const std::string sReason = Refusal([&] {
    ClVT40SetupCalibrationData oSetup(sSerial.c_str(), false);
    UpdateGeometry(oSetup, oResult.aRecord);
    oSetup.CalibrateFull(oImage, oCorrected);
  });
  if (!sReason.empty()) throw ClToolError(eExitNegative, "the library refuses the record: " + sReason);
  ClDonut oSecond;
  SetCorrected(oSecond);
  FindDots(oSecond, oCorrected, oData);
  oResult.oAfter = ResidualOf(oData.m_aActual[0], oSecond.m_dSourceDpiX, oSecond.m_dSourceDpiY);
  return oResult;
}

std::vector<StBlockVerdict> JudgeBlocks(const StCalibrationBlocks& oBlocks, const std::string& sSerial) {
  std::unique_ptr<ClVT40SetupCalibrationData> pSetup;
  const std::string sNoSerial =
      Refusal([&] { pSetup = std::make_unique<ClVT40SetupCalibrationData>(sSerial.c_str(), false); });
  if (!sNoSerial.empty()) throw ClToolError(eExitUsage, "\"" + sSerial + "\": " + sNoSerial);
  const auto SizeOf = [](const std::vector<unsigned char>& a) { return static_cast<unsigned int>(a.size()); };
  std::vector<StBlockVerdict> aVerdicts;
  StBlockVerdict oGeometry{"geometric.calibrate", "", 0};
  oGeometry.sReason = Refusal([&] {
    if (oBlocks.aGeometry.empty()) KLV_RAISE(ClException, "Error reading geometric calibration data.", -200);
    UpdateGeometry(*pSetup, oBlocks.aGeometry);
    oGeometry.nRepaired = CountRepaired(*pSetup, oBlocks.aGeometry);
    WarpBlank(*pSetup);
  });
  aVerdicts.push_back(oGeometry);
  const std::vector<unsigned char>& aBrightness = oBlocks.aBrightness;
  if (oBlocks.bOfScanner || !aBrightness.empty()) {
    const std::string sReason = Refusal([&] {
      if (aBrightness.empty()) KLV_RAISE(ClException, "Error reading brightness calibration data.", -200);
      pSetup->UpdateBrightnessData(aBrightness.data(), SizeOf(aBrightness));
    });
    aVerdicts.push_back({"brightness.calibrate", sReason, 0});
  }
  if (!oBlocks.aGains.empty()) {
    const std::string sReason =
        Refusal([&] { pSetup->UpdateGainData(oBlocks.aGains.data(), SizeOf(oBlocks.aGains)); });
    aVerdicts.push_back({"gaindata.calibrate", sReason, 0});
  }
  return aVerdicts;
}
