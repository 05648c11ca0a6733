// The stages of a sequence, made by the library's own classes in the order in which the engine uses them.
#include <cstring>

#include "MXImageProcessing/IpFlip.h"
#include "MXLiveScannerAPI/FrameRoad.h"
#include "MXLiveScannerAPI/RawSequenceLock.h"
#include "MXLiveScannerTools/IpLocalWhiteBalance.h"
#include "ServiceDevice.h"

namespace {

constexpr unsigned int cnFullPels = 19685;
constexpr unsigned int cnPreviewPels = 9842;
constexpr unsigned int cnPictureSide = 1600;

ClPicture PictureOf(const ClImage& oImage, unsigned int nPelsX, unsigned int nPelsY) {
  ClPicture oPicture;
  oPicture.nWidth = static_cast<unsigned int>(oImage.Width());
  oPicture.nHeight = static_cast<unsigned int>(oImage.Height());
  oPicture.nPelsX = nPelsX;
  oPicture.nPelsY = nPelsY;
  oPicture.aPixels.resize(static_cast<size_t>(oPicture.nWidth) * oPicture.nHeight);
  for (unsigned int y = 0; y < oPicture.nHeight; ++y) {
    std::memcpy(oPicture.aPixels.data() + static_cast<size_t>(y) * oPicture.nWidth,
                oImage.Row<unsigned char>(static_cast<int>(y)), oPicture.nWidth);
  }
  return oPicture;
}

}  // namespace

ClVT40SetupCalibrationData& ClServiceScanner::Setup() {
  if (m_pDevice->pSetup) return *m_pDevice->pSetup;
  auto pSetup = std::make_unique<ClVT40SetupCalibrationData>(m_sSerial.c_str(), m_pDevice->UsbPowered());
  m_pDevice->ReadGains(*pSetup);
  const StCalibrationBlocks oBlocks = Blocks();
  const auto SizeOf = [](const std::vector<unsigned char>& a) { return static_cast<unsigned int>(a.size()); };
  pSetup->Setup(oBlocks.aGeometry.data(), SizeOf(oBlocks.aGeometry), oBlocks.aBrightness.data(),
                SizeOf(oBlocks.aBrightness), nullptr, 0);
  m_pDevice->pSetup = std::move(pSetup);
  return *m_pDevice->pSetup;
}

StGridPoints ClServiceScanner::GridPoints() {
  StGridPoints oPoints;
  WithDevice(m_sSerial, [&] {
    const ClCalibrateGeometricData& oData = Setup().GetGeometricDataFull(false);
    for (unsigned int n = 0; n < oData.m_aTarget.Entries(); ++n) {
      oPoints.aPicture.push_back({cnPictureSide - 1 - oData.m_aTarget[n].x, oData.m_aTarget[n].y});
      oPoints.aSensor.push_back({oData.m_aActual[0][n].x, oData.m_aActual[0][n].y});
    }
  });
  return oPoints;
}

StStages ClServiceScanner::Stages(bool bPreview) {
  StStages oStages;
  WithDevice(m_sSerial, [&] {
    ClVT40SetupCalibrationData& oSetup = Setup();
    ClFrameRoad oRoad(oSetup, bPreview ? ClFrameRoad::ePreview : ClFrameRoad::eFull, true, bPreview ? 0 : 1);
    ClMXVTScanAPIWrapper oScanner(&m_pDevice->oLibrary, m_pDevice->hDevice);
    m_pDevice->SetGains(oScanner, oSetup);
    // Merged pixels differ in sensitivity: a preview takes the exposure of the full sensor, a capture twice
    // that.
    oScanner.SetVSYNCLength(static_cast<unsigned short>(oSetup.GetExposure() * (bPreview ? 1 : 2)));
    unsigned long long aMasks[] = {0, 1};
    CheckNumber(oScanner.SetCaptureMode(
        bPreview ? ClMXVTScanAPIHandleBase::eScanMode960x1360 : ClMXVTScanAPIHandleBase::eScanMode1920x2720,
        2, aMasks, 2));
    oScanner.EnableCaptureThread(true);
    {
      ClRawSequenceLock oSequence(oScanner);
      ClFrameRoad::Difference(oSequence.Data(), oRoad.Raw());
      oSequence.Release();
    }
    oScanner.EnableCaptureThread(false);
    const unsigned int nPels = bPreview ? cnPreviewPels : cnFullPels;
    ClImage oBalanced, oWarped, oRectified, oMasked;
    ClIpLocalWhiteBalance().ApplyParam(oRoad.Raw(), oBalanced);
    if (bPreview) {
      oSetup.CalibratePreview(oBalanced, oWarped);
      oRoad.Rectify(oRectified);
    } else {
      oSetup.CalibrateFull(oBalanced, oWarped);
      oRoad.RectifyShot(oRectified);
    }
    ClIpFlip().ApplyParam(oWarped, oWarped, true, false);
    oRoad.Mask(oRectified, oMasked);
    oStages.nMergeX = bPreview ? 4 : 2;
    oStages.nMergeY = bPreview ? 2 : 1;
    oStages.oRaw = PictureOf(oRoad.Raw(), 0, 0);
    oStages.oBalanced = PictureOf(oBalanced, 0, 0);
    oStages.oWarped = PictureOf(oWarped, nPels, nPels);
    oStages.oRectified = PictureOf(oRectified, nPels, nPels);
    oStages.oMasked = PictureOf(oMasked, nPels, nPels);
  });
  return oStages;
}
