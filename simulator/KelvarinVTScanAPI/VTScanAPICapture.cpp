// The exported functions of the scan library that set a device up and take pictures with it.
#include "KelvarinVTScanAPI/Guard.h"
#include "KelvarinVTScanAPI/VTScanAPI.h"

using namespace Simulator;

namespace {

constexpr int cnConfigureLeds = 0;
constexpr int cnSetStatusLeds = 1;
constexpr uint32_t cnGreyPalette = 256;

/// Sets a register of a device to a value that has been checked.
template <typename F>
long Set(const char* szFunction, void* hDevice, F&& fnSet) noexcept {
  return CalledOn(szFunction, hDevice, fnSet);
}

unsigned CheckedGain(int nGain) {
  if (nGain < 0 || nGain > 255)
    throw ClSimError(eBadValue, "gain " + std::to_string(nGain) + " is not within 0 and 255");
  return static_cast<unsigned>(nGain);
}

/// Exposes one frame into the pixels that follow a BMP header and its palette. Rows are in the order in which
/// the sensor reads them.
void FillImage(ClScanner& oScanner, ClScanner::Session nSession, const tagBITMAPINFOHEADER* pHeader,
               uint64_t nMask) {
  NeedPointer(pHeader);
  oScanner.Check(nSession);
  if (pHeader->biSize != sizeof(tagBITMAPINFOHEADER) || pHeader->biBitCount != 8 || pHeader->biPlanes != 1 ||
      pHeader->biCompression != 0 || pHeader->biHeight == INT32_MIN)
    throw ClSimError(eBadValue, "the header is not that of an 8-bit grey image");
  const uint32_t nPalette = pHeader->biClrUsed ? pHeader->biClrUsed : cnGreyPalette;
  if (nPalette > cnGreyPalette) throw ClSimError(eBadValue, "the palette has more than 256 entries");
  std::vector<uint8_t> aFrame;
  const int nHeight = pHeader->biHeight < 0 ? -pHeader->biHeight : pHeader->biHeight;
  oScanner.TakeFrame(nSession, nMask, pHeader->biWidth, nHeight, aFrame);
  // All sensor widths are multiples of 4, so rows have no padding. The caller owns the block that its header
  // begins.
  auto* pPixels =
      reinterpret_cast<uint8_t*>(const_cast<tagBITMAPINFOHEADER*>(pHeader)) + pHeader->biSize + 4 * nPalette;
  std::memcpy(pPixels, aFrame.data(), aFrame.size());
}

}  // namespace

extern "C" {

long VTScanAPISetCaptureSequence(void* hDevice, unsigned char nCount, unsigned char* pLed, unsigned char*) {
  return CalledOn("VTScanAPISetCaptureSequence", hDevice,
                  [&](ClScanner& oScanner, ClScanner::Session nSession) {
                    if (nCount > 0) NeedPointer(pLed);
                    oScanner.SetMasks(nSession, std::vector<uint64_t>(pLed, pLed + nCount));
                  });
}

long VTScanAPISetCaptureSequenceEx(void* hDevice, unsigned int nCount, unsigned int* pSequence) {
  return CalledOn("VTScanAPISetCaptureSequenceEx", hDevice,
                  [&](ClScanner& oScanner, ClScanner::Session nSession) {
                    if (nCount > 0) NeedPointer(pSequence);
                    if (nCount > 16) throw ClSimError(eBadValue, "a sequence has at most 16 frames");
                    oScanner.SetMasks(nSession, std::vector<uint64_t>(pSequence, pSequence + nCount));
                  });
}

long VTScanAPISetStatusLED(void* hDevice, unsigned long long nPattern) {
  return Set("VTScanAPISetStatusLED", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    oScanner.SetStatusLed(nSession, nPattern);
  });
}

long VTScanAPISetResolution(void* hDevice, EVTScanMode_t eMode) {
  return Set("VTScanAPISetResolution", hDevice,
             [&](ClScanner& oScanner, ClScanner::Session nSession) { oScanner.SetMode(nSession, eMode); });
}

long VTScanAPIGetResolution(void* hDevice, unsigned int* pnWidth, unsigned int* pnHeight) {
  return CalledOn("VTScanAPIGetResolution", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    NeedPointer(pnWidth);
    NeedPointer(pnHeight);
    oScanner.Resolution(nSession, *pnWidth, *pnHeight);
  });
}

long VTScanAPISetVSYNC(void* hDevice, unsigned short nLength) {
  return Set("VTScanAPISetVSYNC", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    oScanner.SetExposure(nSession, nLength);
  });
}

long VTScanAPISetGlobalGain(void* hDevice, unsigned char nGain) {
  return Set("VTScanAPISetGlobalGain", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    oScanner.SetGain(nSession, {nGain, nGain, nGain});
  });
}

long VTScanAPISetGain(void* hDevice, int nArg1, int nArg2, int nArg3) {
  return Set("VTScanAPISetGain", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    oScanner.SetGain(nSession, {CheckedGain(nArg1), CheckedGain(nArg2), CheckedGain(nArg3)});
  });
}

long VTScanAPIGetImage(void* hDevice, const tagBITMAPINFOHEADER* pHeader, unsigned char nArg, char) {
  return CalledOn("VTScanAPIGetImage", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    FillImage(oScanner, nSession, pHeader, nArg);
  });
}

long VTScanAPIGetImageEx(void* hDevice, const tagBITMAPINFOHEADER* pHeader, int nArg) {
  return CalledOn("VTScanAPIGetImageEx", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    FillImage(oScanner, nSession, pHeader, static_cast<uint32_t>(nArg));
  });
}

long VTScanAPIGetImageSequence(void* hDevice, void* pBuffer, unsigned int nArg1, unsigned int) {
  return CalledOn("VTScanAPIGetImageSequence", hDevice,
                  [&](ClScanner& oScanner, ClScanner::Session nSession) {
                    NeedPointer(pBuffer);
                    size_t nBytes = 0;
                    void* pSequence = oScanner.LockSequence(nSession, &nBytes);
                    const bool bFits = nBytes <= nArg1;
                    if (bFits) std::memcpy(pBuffer, pSequence, nBytes);
                    oScanner.ReleaseSequence(nSession, pSequence);
                    if (!bFits)
                      throw ClSimError(eTooSmall, "the sequence has " + std::to_string(nBytes) + " bytes");
                  });
}

long VTScanAPIEnableCapture(void* hDevice, int bEnable) {
  return Set("VTScanAPIEnableCapture", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    oScanner.EnableCapture(nSession, bEnable != 0);
  });
}

long VTScanAPIBeep(void* hDevice, unsigned int nArg1, unsigned int nArg2) {
  return Set("VTScanAPIBeep", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    oScanner.Beep(nSession, nArg1, nArg2);
  });
}

long VTScanAPISetLED(void* hDevice, unsigned int nPattern) {
  return Set("VTScanAPISetLED", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    oScanner.SetIllumination(nSession, nPattern);
  });
}

long VTScanAPISetLEDEx(void* hDevice, unsigned int nPattern) {
  return Set("VTScanAPISetLEDEx", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    oScanner.SetIllumination(nSession, nPattern);
  });
}

long VTScanAPIApplyInternalCommand(void* hDevice, int nCommand, void* pData, void* pnSize) {
  return CalledOn("VTScanAPIApplyInternalCommand", hDevice,
                  [&](ClScanner& oScanner, ClScanner::Session nSession) {
                    NeedPointer(pnSize);
                    uint32_t nSize;
                    std::memcpy(&nSize, pnSize, sizeof nSize);
                    if (nSize > 0) NeedPointer(pData);
                    oScanner.Check(nSession);
                    if (nCommand == cnConfigureLeds)
                      return;  // a byte for each LED; this light has one configuration
                    if (nCommand != cnSetStatusLeds)
                      throw ClSimError(eBadValue, "no command " + std::to_string(nCommand));
                    if (nSize > 8) throw ClSimError(eBadValue, "the status LEDs have at most 8 bytes");
                    uint64_t nPattern = 0;
                    for (uint32_t i = 0; i < nSize; ++i)
                      nPattern |= static_cast<uint64_t>(static_cast<const uint8_t*>(pData)[i]) << (8 * i);
                    oScanner.SetStatusLed(nSession, nPattern);
                  });
}

long VTScanAPILockRawSequence(void* hDevice, void** ppSequence) {
  return CalledOn("VTScanAPILockRawSequence", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
    NeedPointer(ppSequence);
    *ppSequence = nullptr;
    *ppSequence = oScanner.LockSequence(nSession);
  });
}

long VTScanAPIReleaseRawSequence(void* hDevice, void** ppSequence) {
  return CalledToGiveBack("VTScanAPIReleaseRawSequence", true, [&] {
    const ClBus::ClDevice oDevice = ClBus::Get().Device(hDevice);
    NeedPointer(ppSequence);
    void* pSequence = *ppSequence;
    *ppSequence = nullptr;
    oDevice.pScanner->ReleaseSequence(oDevice.nSession, pSequence);
  });
}

long VTScanAPISetCaptureMode(void* hDevice, EVTScanMode_t eMode, unsigned int nCount,
                             unsigned long long* pMasks, unsigned int nMasks) {
  const long nResult =
      CalledOn("VTScanAPISetCaptureMode", hDevice, [&](ClScanner& oScanner, ClScanner::Session nSession) {
        if (nCount > 0) NeedPointer(pMasks);
        if (nMasks == 0) throw ClSimError(eBadValue, "no LED words");
        if (nCount > 16) throw ClSimError(eBadValue, "a sequence has at most 16 frames");
        oScanner.SetCaptureMode(nSession, eMode, std::vector<uint64_t>(pMasks, pMasks + nCount));
      });
  if (nResult != 0) {
    // A host that relies on the new mode must not get frames of the old size.
    char szReason[256];
    std::strncpy(szReason, GetLastErrorText(), sizeof szReason - 1);
    szReason[sizeof szReason - 1] = 0;
    Guarded([&] { ClBus::Get().Device(hDevice).pScanner->ForgetMode(); });
    SetLastError(szReason);
  }
  return nResult;
}

}  // extern "C"
