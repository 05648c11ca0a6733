// The exported functions of the scan library that open devices and read what they are.
#include "KelvarinVTScanAPI/VTScanAPI.h"

#include "KelvarinVTScanAPI/Guard.h"
#include "boundary/ErrorText.h"

using namespace Simulator;

namespace {

std::string Narrow(const wchar_t* wszText) {
  std::string sText;
  for (; *wszText; ++wszText) sText += *wszText < 128 ? static_cast<char>(*wszText) : '?';
  return sText;
}

std::wstring Widen(const std::string& sText) {
  return std::wstring(sText.begin(), sText.end());
}

[[noreturn]] void UnknownProperty(const std::string& sName) {
  throw ClSimError(eUnknownName, "no property \"" + sName + "\"");
}

std::string PropertyText(ClScanner& oScanner, ClScanner::Session nSession, const std::string& sName) {
  oScanner.Check(nSession);
  if (sName == "version" || sName == "Version") return ClBus::Get().LibraryVersion();
  if (sName == "USBPowered") return oScanner.UsbPowered(nSession) ? "1" : "0";
  UnknownProperty(sName);
}

/// No property can be set; the result is different for known and unknown ones.
[[noreturn]] void RefuseProperty(ClScanner& oScanner, ClScanner::Session nSession, const std::string& sName) {
  oScanner.Check(nSession);
  if (sName == "version" || sName == "Version" || sName == "USBPowered" || sName == "FrameRate")
    throw ClSimError(eReadOnly, "property \"" + sName + "\" can't be set");
  UnknownProperty(sName);
}

}  // namespace

extern "C" {

long VTScanAPIInitialize(void*) {
  // The scene comes first, since its faults may be for this very call.
  const long nResult = Guarded([] { ClBus::Get().Prepare(); });
  if (nResult != 0) return nResult;
  return Called("VTScanAPIInitialize", false, [] { ClBus::Get().Initialize(); });
}

long VTScanAPIUninitialize(void) {
  return CalledToGiveBack("VTScanAPIUninitialize", false, [] { ClBus::Get().Uninitialize(); });
}

long VTScanAPIQueryDevices(unsigned int* pIds, unsigned int* pnCount, unsigned int nProductId) {
  return Called("VTScanAPIQueryDevices", false, [&] {
    const std::vector<unsigned> aIds = ClBus::Get().Query(nProductId);
    HandOut(aIds.data(), aIds.size(), pIds, pnCount);
  });
}

long VTScanAPIGetDeviceSerial(unsigned int nId, char* pszSerial, unsigned int* pnSize) {
  return Called("VTScanAPIGetDeviceSerial", false,
                [&] { HandOutText(ClBus::Get().ById(nId)->Serial(), pszSerial, pnSize); });
}

long VTScanAPIGetVersion(void* hDevice, char* pszVersion, unsigned int* pnSize) {
  return CalledOn("VTScanAPIGetVersion", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    HandOutText(oScanner.Version(nSession), pszVersion, pnSize);
  });
}

long VTScanAPIGetHandleSerial(void* hDevice, char* pszSerial, unsigned int* pnSize) {
  return CalledOn("VTScanAPIGetHandleSerial", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    oScanner.Check(nSession);
    HandOutText(oScanner.Serial(), pszSerial, pnSize);
  });
}

long VTScanAPICreateHandle(unsigned int nId, void** phDevice) {
  return Called("VTScanAPICreateHandle", false, [&] {
    NeedPointer(phDevice);
    *phDevice = nullptr;
    *phDevice = ClBus::Get().Open(nId);
  });
}

long VTScanAPIDestroyHandle(void** phDevice) {
  return CalledToGiveBack("VTScanAPIDestroyHandle", true, [&] {
    NeedPointer(phDevice);
    void* hDevice = *phDevice;
    *phDevice = nullptr;
    ClBus::Get().Close(hDevice);
  });
}

long VTScanAPIGetDeviceIndex(void* hDevice, unsigned int* pnIndex) {
  return CalledOn("VTScanAPIGetDeviceIndex", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    NeedPointer(pnIndex);
    oScanner.Check(nSession);
    *pnIndex = ClBus::Get().IndexOf(oScanner);
  });
}

long VTScanAPIGetPlugStatus(void* hDevice, int* pnStatus) {
  return CalledOn("VTScanAPIGetPlugStatus", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    NeedPointer(pnStatus);
    *pnStatus = oScanner.Plugged(nSession) ? 1 : 0;
  });
}

long VTScanAPIListEPROMFile(void* hDevice, char* pszList, unsigned int* pnSize) {
  return CalledOn("VTScanAPIListEPROMFile", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    HandOutText(oScanner.EpromList(nSession), pszList, pnSize);
  });
}

long VTScanAPIReadEPROMFile(void* hDevice, const char* pszName, void* pData, unsigned int* pnSize) {
  return CalledOn("VTScanAPIReadEPROMFile", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    NeedPointer(pszName);
    const ByteBlock aData = oScanner.ReadEprom(nSession, pszName);
    HandOut(aData.data(), aData.size(), static_cast<uint8_t*>(pData), pnSize);
  });
}

long VTScanAPISetPropertyA(void* hDevice, const char* pszName, const char* pszValue) {
  return CalledOn("VTScanAPISetPropertyA", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    NeedPointer(pszName);
    NeedPointer(pszValue);
    RefuseProperty(oScanner, nSession, pszName);
  });
}

long VTScanAPISetPropertyW(void* hDevice, const wchar_t* pszName, const wchar_t* pszValue) {
  return CalledOn("VTScanAPISetPropertyW", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    NeedPointer(pszName);
    NeedPointer(pszValue);
    RefuseProperty(oScanner, nSession, Narrow(pszName));
  });
}

long VTScanAPIGetPropertyA(void* hDevice, const char* pszName, char* pszValue, unsigned int* pnSize) {
  return CalledOn("VTScanAPIGetPropertyA", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    NeedPointer(pszName);
    HandOutText(PropertyText(oScanner, nSession, pszName), pszValue, pnSize);
  });
}

long VTScanAPIGetPropertyW(void* hDevice, const wchar_t* pszName, wchar_t* pszValue, unsigned int* pnSize) {
  return CalledOn("VTScanAPIGetPropertyW", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    NeedPointer(pszName);
    HandOutText(Widen(PropertyText(oScanner, nSession, Narrow(pszName))), pszValue, pnSize);
  });
}

long VTScanAPIGetPropertyLongA(void* hDevice, const char* pszName, long* pnValue) {
  return CalledOn("VTScanAPIGetPropertyLongA", hDevice,
                  [&](ClScanner& oScanner, ClScanner::Session nSession) {
                    NeedPointer(pszName);
                    NeedPointer(pnValue);
                    const bool bPowered = oScanner.UsbPowered(nSession);
                    if (std::strcmp(pszName, "USBPowered") != 0) UnknownProperty(pszName);
                    *pnValue = bPowered ? 1 : 0;
                  });
}

long VTScanAPISetPropertyLongA(void* hDevice, const char* pszName, long) {
  return CalledOn("VTScanAPISetPropertyLongA", hDevice,
                  [&](ClScanner& oScanner, ClScanner::Session nSession) {
                    NeedPointer(pszName);
                    RefuseProperty(oScanner, nSession, pszName);
                  });
}

long VTScanAPIGetPropertyDoubleA(void* hDevice, const char* pszName, double* pdValue) {
  return CalledOn("VTScanAPIGetPropertyDoubleA", hDevice,
                  [&](ClScanner& oScanner, ClScanner::Session nSession) {
                    NeedPointer(pszName);
                    NeedPointer(pdValue);
                    const double dRate = oScanner.FrameRate(nSession);
                    if (std::strcmp(pszName, "FrameRate") != 0) UnknownProperty(pszName);
                    *pdValue = dRate;
                  });
}

long VTScanAPISetPropertyDoubleA(void* hDevice, const char* pszName, double) {
  return CalledOn("VTScanAPISetPropertyDoubleA", hDevice,
                  [&](ClScanner& oScanner, ClScanner::Session nSession) {
                    NeedPointer(pszName);
                    RefuseProperty(oScanner, nSession, pszName);
                  });
}

// The interface hands out writable pointers by its type; nobody may write through them.
char* VTScanAPIGetErrorDescriptionA(long nError) {
  return const_cast<char*>(ErrorText(nError));
}

wchar_t* VTScanAPIGetErrorDescriptionW(long nError) {
  return const_cast<wchar_t*>(ErrorTextWide(nError));
}

}  // extern "C"
