// The functions of the scan library, as the player exports them.
#include "play/PlayedCall.h"

namespace Recording {
namespace {

std::atomic<bool> s_bUsed{false};

void NeedPointer(const void* p) {
  if (p == nullptr) throw ClPlayError(ePlayBadPointer, "a pointer is NULL");
}

}  // namespace

/// A call that sets the sensor up: what was not recorded is refused, since there are no frames of it.
template <uint16_t nFunction>
struct TpPlaySetting {
  template <typename... TArguments>
  static long Answer(ClPlayer& oPlayer, void* hDevice, TArguments... aArguments) {
    const StCall oAsked = AskedCall(nFunction, aArguments...);
    long nResult = ePlayBadValue;
    try {
      nResult = static_cast<long>(oPlayer.Answer(hDevice, oAsked, true).nResult);
    } catch (const ClPlayError&) {
      oPlayer.Change(hDevice, oAsked, nResult);
      throw;
    }
    oPlayer.Change(hDevice, oAsked, nResult);
    return nResult;
  }
};

/// The pixels after a header: the recorded ones of the same header.
template <uint16_t nFunction>
struct TpPlayImage {
  template <typename... TMore>
  static long Answer(ClPlayer& oPlayer, void* hDevice, const tagBITMAPINFOHEADER* pHeader, TMore... aMore) {
    NeedPointer(pHeader);
    const StCall& oAnswer = oPlayer.Answer(hDevice, AskedCall(nFunction, hDevice, pHeader, aMore...), true);
    if (oAnswer.nResult != 0) return static_cast<long>(oAnswer.nResult);
    const StField* pField = oAnswer.Find(1, eGot);
    if (pField == nullptr) throw ClPlayError(ePlayNotRecorded, "the recording lacks the image");
    const std::vector<uint8_t> aPixels = oPlayer.Content(*pField);
    const uint64_t nRows = pHeader->biHeight < 0 ? 0U - static_cast<uint32_t>(pHeader->biHeight)
                                                 : static_cast<uint32_t>(pHeader->biHeight);
    if (pHeader->biWidth < 0 || aPixels.size() != static_cast<uint64_t>(pHeader->biWidth) * nRows)
      throw ClPlayError(ePlayNotRecorded, "the recorded image has another size than its header says");
    const size_t nPalette = pHeader->biClrUsed != 0 ? pHeader->biClrUsed : 256;
    // The caller owns the block that its header begins.
    auto* pTo = reinterpret_cast<uint8_t*>(const_cast<tagBITMAPINFOHEADER*>(pHeader));
    std::memcpy(pTo + pHeader->biSize + 4 * nPalette, aPixels.data(), aPixels.size());
    return 0;
  }
};

template <>
struct TpPlay<eVTScanAPICreateHandle> {
  static long Answer(ClPlayer& oPlayer, void*, unsigned int nId, void** phDevice) {
    NeedPointer(phDevice);
    *phDevice = nullptr;
    return oPlayer.Open(AskedCall(eVTScanAPICreateHandle, nId, phDevice), phDevice);
  }
};

template <>
struct TpPlay<eVTScanAPIDestroyHandle> {
  static long Answer(ClPlayer& oPlayer, void*, void** phDevice) {
    NeedPointer(phDevice);
    void* hDevice = *phDevice;
    *phDevice = nullptr;
    oPlayer.Close(hDevice);
    return 0;
  }
};

template <>
struct TpPlay<eVTScanAPIGetResolution> {
  static long Answer(ClPlayer& oPlayer, void* hDevice, void*, unsigned int* pnWidth, unsigned int* pnHeight) {
    NeedPointer(pnWidth);
    NeedPointer(pnHeight);
    oPlayer.Resolution(hDevice, *pnWidth, *pnHeight);
    return 0;
  }
};

template <>
struct TpPlay<eVTScanAPIEnableCapture> {
  static long Answer(ClPlayer& oPlayer, void* hDevice, void*, int bEnable) {
    const long nResult = TpPlayFreely<eVTScanAPIEnableCapture>::Answer(oPlayer, hDevice, hDevice, bEnable);
    return nResult != 0 ? nResult : oPlayer.EnableCapture(hDevice, bEnable != 0);
  }
};

template <>
struct TpPlay<eVTScanAPILockRawSequence> {
  static long Answer(ClPlayer& oPlayer, void* hDevice, void*, void** ppSequence) {
    NeedPointer(ppSequence);
    *ppSequence = nullptr;
    return oPlayer.LockSequence(hDevice, ppSequence, nullptr);
  }
};

template <>
struct TpPlay<eVTScanAPIReleaseRawSequence> {
  static long Answer(ClPlayer& oPlayer, void* hDevice, void*, void** ppSequence) {
    NeedPointer(ppSequence);
    void* pSequence = *ppSequence;
    *ppSequence = nullptr;
    oPlayer.ReleaseSequence(hDevice, pSequence);
    return TpPlayFreely<eVTScanAPIReleaseRawSequence>::Answer(oPlayer, hDevice, hDevice, ppSequence);
  }
};

template <>
struct TpPlay<eVTScanAPIGetImageSequence> {
  static long Answer(ClPlayer& oPlayer, void* hDevice, void*, void* pBuffer, unsigned int nBytes,
                     unsigned int) {
    NeedPointer(pBuffer);
    void* pSequence = nullptr;
    size_t nSequence = 0;
    const long nResult = oPlayer.LockSequence(hDevice, &pSequence, &nSequence);
    if (nResult != 0 || pSequence == nullptr) return nResult;
    if (nSequence <= nBytes) std::memcpy(pBuffer, pSequence, nSequence);
    oPlayer.ReleaseSequence(hDevice, pSequence);
    if (nSequence > nBytes)
      throw ClPlayError(ePlayTooSmall, "the sequence has " + std::to_string(nSequence) + " bytes");
    return 0;
  }
};

template <>
struct TpPlay<eVTScanAPIGetImage> {
  static long Answer(ClPlayer& oPlayer, void* hDevice, void*, const tagBITMAPINFOHEADER* pHeader,
                     unsigned char n, char c) {
    return TpPlayImage<eVTScanAPIGetImage>::Answer(oPlayer, hDevice, pHeader, n, c);
  }
};

template <>
struct TpPlay<eVTScanAPIGetImageEx> {
  static long Answer(ClPlayer& oPlayer, void* hDevice, void*, const tagBITMAPINFOHEADER* pHeader, int n) {
    return TpPlayImage<eVTScanAPIGetImageEx>::Answer(oPlayer, hDevice, pHeader, n);
  }
};

template <>
struct TpPlay<eVTScanAPISetCaptureMode> : TpPlaySetting<eVTScanAPISetCaptureMode> {};
template <>
struct TpPlay<eVTScanAPISetResolution> : TpPlaySetting<eVTScanAPISetResolution> {};
template <>
struct TpPlay<eVTScanAPISetCaptureSequence> : TpPlaySetting<eVTScanAPISetCaptureSequence> {};
template <>
struct TpPlay<eVTScanAPISetCaptureSequenceEx> : TpPlaySetting<eVTScanAPISetCaptureSequenceEx> {};
template <>
struct TpPlay<eVTScanAPISetStatusLED> : TpPlayFreely<eVTScanAPISetStatusLED> {};
template <>
struct TpPlay<eVTScanAPISetVSYNC> : TpPlayFreely<eVTScanAPISetVSYNC> {};
template <>
struct TpPlay<eVTScanAPISetGlobalGain> : TpPlayFreely<eVTScanAPISetGlobalGain> {};
template <>
struct TpPlay<eVTScanAPISetGain> : TpPlayFreely<eVTScanAPISetGain> {};
template <>
struct TpPlay<eVTScanAPIBeep> : TpPlayFreely<eVTScanAPIBeep> {};
template <>
struct TpPlay<eVTScanAPISetLED> : TpPlayFreely<eVTScanAPISetLED> {};
template <>
struct TpPlay<eVTScanAPISetLEDEx> : TpPlayFreely<eVTScanAPISetLEDEx> {};
template <>
struct TpPlay<eVTScanAPIApplyInternalCommand> : TpPlayFreely<eVTScanAPIApplyInternalCommand> {};
template <>
struct TpPlay<eVTScanAPIInitialize> {
  static long Answer(ClPlayer& oPlayer, void*, void* pReserved) {
    s_bUsed = true;
    return TpPlayFreely<eVTScanAPIInitialize>::Answer(oPlayer, nullptr, pReserved);
  }
};
template <>
struct TpPlay<eVTScanAPIUninitialize> : TpPlayFreely<eVTScanAPIUninitialize> {};

}  // namespace Recording

KLV_RECORDED_SCAN_FUNCTIONS(KLV_EXPORT_PLAYED)

/// Why this thread's last call was refused; "" when none was.
extern "C" __attribute__((visibility("default"))) const char* VTPlayLastError() {
  return Recording::LastRefusal();
}

/// Reads the recording; why that does not go, "" when it does.
extern "C" __attribute__((visibility("default"))) const char* VTPlayOpen() {
  const long nResult = Recording::Played([] {
    Recording::ThePlayer();
    return 0L;
  });
  return nResult == 0 ? "" : Recording::LastRefusal();
}

/// 1 when an application has started the scan library by this player.
extern "C" __attribute__((visibility("default"))) int VTPlayIsUsed() {
  return Recording::s_bUsed ? 1 : 0;
}

/// 1 when the recording is one of a simulated scanner.
extern "C" __attribute__((visibility("default"))) int VTPlayIsSimulated() {
  int nSimulated = 0;
  Recording::Played([&] {
    nSimulated = Recording::ThePlayer().Recording().IsSimulated() ? 1 : 0;
    return 0L;
  });
  return nSimulated;
}

/// 1 when more sequences were asked for than were recorded.
extern "C" __attribute__((visibility("default"))) int VTPlayIsAtEnd() {
  int nEnd = 0;
  Recording::Played([&] {
    nEnd = Recording::ThePlayer().IsAtEnd() ? 1 : 0;
    return 0L;
  });
  return nEnd;
}
