// An open device of the scan library, as the sources of the service scanner share it.
#pragma once

#include <memory>

#include "ExitCodes.h"
#include "MXLibraryLoaders/KelvarinVTScanAPIWrapper.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXTools/Exception.h"
#include "MXVTScanAPI/MXVTScanAPIWrapper.h"
#include "ServiceScanner.h"
#include "ToolError.h"

inline void CheckNumber(long nResult) {
  if (nResult != 0) KLV_RAISE_NUMBER(nResult);
}

/// Does something with the scanner; what the library's classes raise becomes an error of the tool.
template <typename F>
void WithDevice(const std::string& sSerial, F&& fnDo) {
  try {
    fnDo();
  } catch (const ClException& oFailure) {
    throw ClToolError(
        ExitCodeOf(oFailure.Number()),
        "scanner " + sSerial + ": " + oFailure.What() + " (" + std::to_string(oFailure.Number()) + ")",
        oFailure.Number());
  }
}

/// An open device and the scan library, for the sources of ClServiceScanner.
struct ClServiceScanner::StDevice {
  static constexpr unsigned int nProduct = 17;
  static constexpr unsigned int nMostDevices = 127;
  static constexpr unsigned int nFileRoom = 8192;
  static constexpr long nDisconnected = -60;

  ClKelvarinVTScanAPIWrapper oLibrary{"", ClKelvarinVTScanAPIWrapper::m_ssLibName};
  void* hDevice = nullptr;
  std::unique_ptr<ClVT40SetupCalibrationData> pSetup;  ///< made when pictures are first rectified

  ~StDevice() {
    if (hDevice != nullptr) oLibrary.VTScanAPIDestroyHandle(&hDevice);
  }

  unsigned int IdOf(const std::string& sSerial) {
    unsigned int aIds[nMostDevices];
    unsigned int nCount = nMostDevices;
    CheckNumber(oLibrary.VTScanAPIQueryDevices(aIds, &nCount, nProduct));
    for (unsigned int n = 0; n < nCount; ++n) {
      char szSerial[17] = "";
      unsigned int nSize = sizeof(szSerial) - 1;
      if (oLibrary.VTScanAPIGetDeviceSerial(aIds[n], szSerial, &nSize) == 0 && sSerial == szSerial)
        return aIds[n];
    }
    throw ClToolError(eExitNoScanner, "no scanner " + sSerial + " is connected; see vt40 list");
  }

  std::vector<unsigned char> ReadFile(const char* szName) {
    std::vector<unsigned char> aFile(nFileRoom);
    unsigned int nSize = nFileRoom;
    const long nResult = oLibrary.VTScanAPIReadEPROMFile(hDevice, szName, aFile.data(), &nSize);
    if (nResult == nDisconnected) CheckNumber(nResult);
    aFile.resize(nResult == 0 && nSize <= nFileRoom ? nSize : 0);
    return aFile;
  }

  void ReadGains(ClVT40SetupCalibrationData& oSetup) {
    const std::vector<unsigned char> aGains = ReadFile("GAINSET");
    if (!aGains.empty() && oSetup.GetScannerRevision() != 0)
      oSetup.UpdateGainData(aGains.data(), static_cast<unsigned int>(aGains.size()));
  }

  static void SetGains(ClMXVTScanAPIWrapper& oScanner, ClVT40SetupCalibrationData& oSetup) {
    const unsigned int nGain = oSetup.GetGainLevel(1);
    oScanner.SetGain(static_cast<int>(nGain & 0xFF), static_cast<int>(nGain >> 8 & 0xFF),
                     static_cast<int>(nGain >> 16 & 0xFF));
  }

  bool UsbPowered() {
    long nPowered = 0;
    return oLibrary.VTScanAPIGetPropertyLongA != nullptr &&
           oLibrary.VTScanAPIGetPropertyLongA(hDevice, "USBPowered", &nPowered) == 0 && nPowered == 1;
  }
};
