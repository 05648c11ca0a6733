// The exported functions of the liveness library's control side.
#include "KelvarinFakeFingerDetectionVT40/FDSim.h"

#include "KelvarinFakeFingerDetectionVT40/Detection.h"
#include "boundary/Boundary.h"

using namespace Simulator;

extern "C" {

const char* FDSimLastError(void) {
  return GetLastErrorText();
}

long FDSimReset(void) {
  return Guarded([] { ClDetection::Get().Reset(); });
}

long FDSimGetState(FDSimState* pState) {
  return Guarded([&] {
    NeedPointer(pState);
    if (pState->nStructSize != sizeof(FDSimState)) throw ClSimError(eBadValue, "nStructSize is wrong");
    ClDetection::Get().State(*pState);
  });
}

long FDSimFailCall(const char* szFunction, unsigned int nFirst, unsigned int nRepeat, long nResult) {
  return Guarded([&] {
    NeedPointer(szFunction);
    if (nFirst == 0) throw ClSimError(eBadValue, "calls are counted from 1");
    ClDetection::Get().Faults().FailCall(szFunction, nFirst, nRepeat, nResult);
  });
}

long FDSimOrderScore(double dScore) {
  return Guarded([&] {
    if (!(dScore <= 100.0)) throw ClSimError(eBadValue, "a score is at most 100");
    ClDetection::Get().OrderScore(dScore);
  });
}

long FDSimGetCallCount(const char* szFunction, unsigned long long* pnCount) {
  return Guarded([&] {
    NeedPointer(szFunction);
    NeedPointer(pnCount);
    *pnCount = ClDetection::Get().Faults().CallCount(szFunction);
  });
}

}  // extern "C"
