// The functions of the liveness library, as the player exports them: scores come in the order of the
// recording.
#include "play/PlayedCall.h"

namespace Recording {

template <>
struct TpPlay<eFD_VT40Initialize> {
  static long Answer(ClPlayer& oPlayer, void*, void* pReserved) {
    // A recording without the library is played as if it were missing, which applications notice here.
    return static_cast<long>(oPlayer.Answer(nullptr, AskedCall(eFD_VT40Initialize, pReserved), true).nResult);
  }
};

template <>
struct TpPlay<eFD_VT40CreateFakeDetectionVT40Handle> {
  static long Answer(ClPlayer& oPlayer, void*, void** phDetection) {
    if (phDetection == nullptr) throw ClPlayError(ePlayBadPointer, "a pointer is NULL");
    *phDetection = nullptr;
    return oPlayer.Open(AskedCall(eFD_VT40CreateFakeDetectionVT40Handle, phDetection), phDetection);
  }
};

template <>
struct TpPlay<eFD_VT40DestroyHandle> {
  static long Answer(ClPlayer& oPlayer, void*, void** phDetection) {
    if (phDetection == nullptr) throw ClPlayError(ePlayBadPointer, "a pointer is NULL");
    void* hDetection = *phDetection;
    *phDetection = nullptr;
    oPlayer.Close(hDetection);
    return 0;
  }
};

template <>
struct TpPlay<eFD_VT40Uninitialize> : TpPlayFreely<eFD_VT40Uninitialize> {};

}  // namespace Recording

KLV_RECORDED_LIVENESS_FUNCTIONS(KLV_EXPORT_PLAYED)

/// Marks the library as a player, which a recorder does not record.
extern "C" __attribute__((visibility("default"))) const char* VTPlayLastError() {
  return Recording::LastRefusal();
}
