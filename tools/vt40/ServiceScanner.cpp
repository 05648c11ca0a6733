// A scanner as a service program has it, with the scan library in hand: its raw picture and what it stores.
#include "ServiceScanner.h"

#include <cstring>
#include <memory>

#include "ExitCodes.h"
#include "MXKernels/PointRows.h"
#include "MXLibraryLoaders/KelvarinVTScanAPIWrapper.h"
#include "MXLiveScannerAPI/RawSequenceLock.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXTools/Exception.h"
#include "MXVTScanAPI/MXVTScanAPIWrapper.h"
#include "ToolError.h"

namespace {

constexpr unsigned int cnProduct = 17;
constexpr unsigned int cnMostDevices = 127;
constexpr unsigned int cnFileRoom = 8192;
constexpr long cnDisconnected = -60;
constexpr unsigned int cnWidth = 3840;
constexpr unsigned int cnHeight = 2720;
constexpr unsigned int cnPelsX = 41417;
constexpr unsigned int cnPelsY = 30236;

void Check(long nResult) {
  if (nResult != 0) KLV_RAISE_NUMBER(nResult);
}

/// Does something with the scanner; what the library's classes raise becomes an error of the tool.
template <typename F>
void WithScanner(const std::string& sSerial, F&& fnDo) {
  try {
    fnDo();
  } catch (const ClException& oFailure) {
    throw ClToolError(
        ExitCodeOf(oFailure.Number()),
        "scanner " + sSerial + ": " + oFailure.What() + " (" + std::to_string(oFailure.Number()) + ")",
        oFailure.Number());
  }
}

}  // namespace

struct ClServiceScanner::StDevice {
  ClKelvarinVTScanAPIWrapper oLibrary{"", ClKelvarinVTScanAPIWrapper::m_ssLibName};
  void* hDevice = nullptr;

  ~StDevice() {
    if (hDevice != nullptr) oLibrary.VTScanAPIDestroyHandle(&hDevice);
  }

  unsigned int IdOf(const std::string& sSerial) {
    unsigned int aIds[cnMostDevices];
    unsigned int nCount = cnMostDevices;
    Check(oLibrary.VTScanAPIQueryDevices(aIds, &nCount, cnProduct));
    for (unsigned int n = 0; n < nCount; ++n) {
      char szSerial[17] = "";
      unsigned int nSize = sizeof(szSerial) - 1;
      if (oLibrary.VTScanAPIGetDeviceSerial(aIds[n], szSerial, &nSize) == 0 && sSerial == szSerial)
        return aIds[n];
    }
    throw ClToolError(eExitNoScanner, "no scanner " + sSerial + " is connected; see vt40 list");
  }

  std::vector<unsigned char> ReadFile(const char* szName) {
    std::vector<unsigned char> aFile(cnFileRoom);
    unsigned int nSize = cnFileRoom;
    const long nResult = oLibrary.VTScanAPIReadEPROMFile(hDevice, szName, aFile.data(), &nSize);
    if (nResult == cnDisconnected) Check(nResult);
    aFile.resize(nResult == 0 && nSize <= cnFileRoom ? nSize : 0);
    return aFile;
  }

  bool UsbPowered() {
    long nPowered = 0;
    return oLibrary.VTScanAPIGetPropertyLongA != nullptr &&
           oLibrary.VTScanAPIGetPropertyLongA(hDevice, "USBPowered", &nPowered) == 0 && nPowered == 1;
  }
};

ClServiceScanner::ClServiceScanner(const std::string& sSerial) : m_sSerial(sSerial), m_pDevice(nullptr) {
  WithScanner(m_sSerial, [this] {
    auto pDevice = std::make_unique<StDevice>();
    Check(pDevice->oLibrary.VTScanAPICreateHandle(pDevice->IdOf(m_sSerial), &pDevice->hDevice));
    m_pDevice = pDevice.release();
  });
}

ClServiceScanner::~ClServiceScanner() {
  delete m_pDevice;
}

StCalibrationBlocks ClServiceScanner::Blocks() const {
  StCalibrationBlocks oBlocks;
  oBlocks.bOfScanner = true;
  WithScanner(m_sSerial, [&] {
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
  WithScanner(m_sSerial, [&] {
    ClMXVTScanAPIWrapper oScanner(&m_pDevice->oLibrary, m_pDevice->hDevice);
    ClVT40SetupCalibrationData oSetup(m_sSerial.c_str(), m_pDevice->UsbPowered());
    const std::vector<unsigned char> aGains = m_pDevice->ReadFile("GAINSET");
    if (!aGains.empty() && oSetup.GetScannerRevision() != 0)
      oSetup.UpdateGainData(aGains.data(), static_cast<unsigned int>(aGains.size()));
    const unsigned int nGain = oSetup.GetGainLevel(1);
    oScanner.SetGain(static_cast<int>(nGain & 0xFF), static_cast<int>(nGain >> 8 & 0xFF),
                     static_cast<int>(nGain >> 16 & 0xFF));
    oScanner.SetVSYNCLength(static_cast<unsigned short>(oSetup.GetExposure()));
    unsigned long long aMasks[] = {0, 1};
    Check(oScanner.SetCaptureMode(ClMXVTScanAPIHandleBase::eScanModeFull, 2, aMasks, 2));
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
