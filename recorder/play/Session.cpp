// Sequences are sorted by the setting in which they were taken.
#include "play/Session.h"

#include <algorithm>

#include "format/Functions.h"

namespace Recording {
namespace {

/// A device is to answer within two seconds; a recording that stands still for longer is not waited for.
constexpr int64_t cnLongestGap = 1900000000;

void NoteSize(StSession& oSession, const StCall& oCall) {
  const int64_t nWidth = oCall.Number(eAddedWidth, eGot, 0);
  const int64_t nHeight = oCall.Number(eAddedHeight, eGot, 0);
  if (nWidth <= 0 || nHeight <= 0) return;
  oSession.mapSizes[oCall.Number(eAddedMode, eGot, -1)] = {static_cast<uint32_t>(nWidth),
                                                           static_cast<uint32_t>(nHeight)};
}

/// What passes between two times, at most the longest gap. A damaged recording has any times.
int64_t Gap(int64_t nFrom, int64_t nTo) {
  if (nTo <= nFrom) return 0;
  const uint64_t nGap = static_cast<uint64_t>(nTo) - static_cast<uint64_t>(nFrom);
  return static_cast<int64_t>(std::min(nGap, static_cast<uint64_t>(cnLongestGap)));
}

bool HasFrames(const StCall& oCall) {
  const StField* pField = oCall.Find(1, eGot);
  return pField != nullptr && pField->eType == eFieldData && pField->nBlock != cnDroppedData;
}

}  // namespace

void StSetting::Apply(const StCall& oCall, long nResult) {
  const auto TakeLights = [&](size_t nCount, size_t nArray) {
    const StField* pWords = oCall.Find(nArray, eGiven);
    nPlanes = static_cast<uint64_t>(std::clamp(oCall.Number(nCount, eGiven, 0), int64_t{0}, int64_t{16}));
    sLights = pWords != nullptr ? pWords->sBytes : "";
  };
  switch (oCall.nFunction) {
    case eVTScanAPISetCaptureMode:
      nMode = nResult == 0 ? oCall.Number(1, eGiven, -1) : -1;
      TakeLights(2, 3);
      break;
    case eVTScanAPISetResolution:
      nMode = nResult == 0 ? oCall.Number(1, eGiven, -1) : -1;
      break;
    case eVTScanAPISetCaptureSequence:
    case eVTScanAPISetCaptureSequenceEx:
      if (nResult == 0) TakeLights(1, 2);
      break;
    default:
      break;
  }
}

std::unique_ptr<StSession> MakeSession(const std::vector<StRecorded>& aCalls) {
  auto pSession = std::make_unique<StSession>();
  StSetting oSetting;
  bool bCapture = false;
  int64_t nLast = 0;
  bool bAny = false;
  for (const StRecorded& oRecorded : aCalls) {
    const StCall& oCall = *oRecorded.pCall;
    oSetting.Apply(oCall, static_cast<long>(oCall.nResult));
    NoteSize(*pSession, oCall);
    if (oCall.nFunction == eVTScanAPIEnableCapture && oCall.nResult == 0)
      bCapture = oCall.Number(1, eGiven, 0) != 0;
    const bool bSequence =
        oCall.nFunction == eVTScanAPILockRawSequence || oCall.nFunction == eVTScanAPIGetImageSequence;
    if (!bSequence) {
      pSession->oAnswers.Add(oRecorded);
      continue;
    }
    // What failed because the capture was being ended says nothing of the device; what was dropped is a lost
    // frame.
    if (oCall.nResult != 0 ? !bCapture : !HasFrames(oCall)) continue;
    pSession->mapStreams[oSetting.Name()].aEvents.push_back(
        {&oCall, oRecorded.nOrder, Gap(bAny ? nLast : oCall.nBegin, oCall.nEnd)});
    nLast = oCall.nEnd;
    bAny = true;
  }
  return pSession;
}

}  // namespace Recording
