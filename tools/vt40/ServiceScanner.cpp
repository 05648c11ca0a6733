// A scanner as a service program has it, with the scan library in hand: its raw picture and what it stores.
#include "ServiceScanner.h"

#include <memory>

#include "MXKernels/PointRows.h"
#include "MXLiveScannerAPI/RawSequenceLock.h"
#include "ServiceDevice.h"

namespace {

constexpr unsigned int cnWidth = 3840;
constexpr unsigned int cnHeight = 2720;
constexpr unsigned int cnPelsX = 41417;
constexpr unsigned int cnPelsY = 30236;

}  // namespace

ClServiceScanner::ClServiceScanner(const std::string& sSerial) : m_sSerial(sSerial), m_pDevice(nullptr) {
  WithDevice(m_sSerial, [this] {
    auto pDevice = std::make_unique<StDevice>();
    CheckNumber(pDevice->oLibrary.VTScanAPICreateHandle(pDevice->IdOf(m_sSerial), &pDevice->hDevice));
    m_pDevice = pDevice.release();
  });
}

ClServiceScanner::~ClServiceScanner() {
  delete m_pDevice;
}

StCalibrationBlocks ClServiceScanner::Blocks() const {
  StCalibrationBlocks oBlocks;
  oBlocks.bOfScanner = true;
  WithDevice(m_sSerial, [&] {
    oBlocks.aGeometry = m_pDevice->ReadFile("GEOCAL");
    oBlocks.aBrightness = m_pDevice->ReadFile("BRGHTCAL");
    oBlocks.aGains = m_pDevice->ReadFile("GAINSET");
  });
  return oBlocks;
}

ClPicture ClServiceScanner::RawPicture() const {
  ClPicture oPicture;
  oPicture.nWidth = cnWidth;
  oPicture.nHeight = cnHeight;
  oPicture.nPelsX = cnPelsX;
  oPicture.nPelsY = cnPelsY;
  const size_t nPlane = static_cast<size_t>(cnWidth) * cnHeight;
  oPicture.aPixels.resize(nPlane);
  WithDevice(m_sSerial, [&] {
    ClVT40SetupCalibrationData oSetup(m_sSerial.c_str(), m_pDevice->UsbPowered());
    m_pDevice->ReadGains(oSetup);
    ClMXVTScanAPIWrapper oScanner(&m_pDevice->oLibrary, m_pDevice->hDevice);
    m_pDevice->SetGains(oScanner, oSetup);
    oScanner.SetVSYNCLength(static_cast<unsigned short>(oSetup.GetExposure()));
    unsigned long long aMasks[] = {0, 1};
    CheckNumber(oScanner.SetCaptureMode(ClMXVTScanAPIHandleBase::eScanModeFull, 2, aMasks, 2));
    oScanner.EnableCaptureThread(true);
    ClRawSequenceLock oSequence(oScanner);
    const unsigned char* pFirst = static_cast<const unsigned char*>(oSequence.Data());
    const unsigned char* pSecond = pFirst + nPlane;
    // The first byte of a sequence says which of the two comes first.
    const bool bDarkFirst = (pFirst[0] & 0x0F) == 0;
    MXKernels::SubtractSaturated(bDarkFirst ? pSecond : pFirst, bDarkFirst ? pFirst : pSecond,
                                 oPicture.aPixels.data(), nPlane);
    oSequence.Release();
    oScanner.EnableCaptureThread(false);
  });
  return oPicture;
}
