// The exported functions of the control side.
#include "KelvarinVTScanAPI/VTSim.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "KelvarinVTScanAPI/Guard.h"
#include "scene/Platen.h"
#include "scene/ScanFunctions.h"
#include "scene/SceneReader.h"

using namespace Simulator;

namespace {

template <typename F>
long On(const char* szSerial, F&& fnOperation) noexcept {
  return Guarded([&] {
    const ClBus::ScannerPointer pScanner = ClBus::Get().BySerial(szSerial);
    fnOperation(*pScanner);
  });
}

void NeedFunction(const char* szFunction) {
  NeedPointer(szFunction);
  if (!IsScanFunction(szFunction))
    throw ClSimError(eUnknownName, std::string(szFunction) + " is no function of the scan library");
}

void NeedTime(double dSeconds) {
  if (!(dSeconds >= 0.0 && dSeconds <= 1e6))
    throw ClSimError(eBadValue, "a time lies between 0 and 1000000 seconds");
}

/// Reports the size of a picture and checks the room.
void NeedPicture(const unsigned char* pPicture, unsigned int* pnSize) {
  NeedPointer(pnSize);
  const unsigned nRoom = *pnSize;
  *pnSize = VTSIM_PICTURE_SIDE * VTSIM_PICTURE_SIDE;
  if (nRoom < *pnSize) throw ClSimError(eTooSmall, "the picture has " + std::to_string(*pnSize) + " pixels");
  NeedPointer(pPicture);
}

}  // namespace

extern "C" {

const char* VTSimLastError(void) {
  return GetLastErrorText();
}

long VTSimLoadScene(const char* szScene) {
  return Guarded([&] {
    NeedPointer(szScene);
    ClBus::Get().LoadScene(szScene);
  });
}

long VTSimLay(const char* szSerial, const char* szPlaten) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedPointer(szPlaten);
    oScanner.Lay(ReadPlaten(szPlaten));
  });
}

long VTSimReset(void) {
  return Guarded([] { ClBus::Get().Reset(); });
}

long VTSimGetGroundTruth(const char* szSerial, unsigned char* pPicture, unsigned char* pMask,
                         unsigned int* pnSize) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedPicture(pPicture, pnSize);
    oScanner.GroundTruth(pPicture, pMask);
  });
}

long VTSimGetGroundTruthAt(const char* szSerial, double dTime, unsigned char* pPicture, unsigned char* pMask,
                           unsigned int* pnSize) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedTime(dTime);
    NeedPicture(pPicture, pnSize);
    oScanner.GroundTruthAt(dTime, pPicture, pMask);
  });
}

long VTSimGetUnrolledTruth(const char* szSerial, double dFrom, double dUntil, unsigned char* pPicture,
                           unsigned char* pMask, unsigned int* pnSize) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedTime(dFrom);
    NeedTime(dUntil);
    if (!(dUntil >= dFrom && dUntil - dFrom <= 3600.0))
      throw ClSimError(eBadValue, "the second moment comes at most an hour after the first");
    NeedPicture(pPicture, pnSize);
    oScanner.UnrolledTruth(dFrom, dUntil, pPicture, pMask);
  });
}

long VTSimPictureToSensor(const char* szSerial, double dX, double dY, double* pdSensorX, double* pdSensorY) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedPointer(pdSensorX);
    NeedPointer(pdSensorY);
    if (!std::isfinite(dX) || !std::isfinite(dY)) throw ClSimError(eBadValue, "the point is not finite");
    const ClPoint oPoint = oScanner.PictureToSensor(dX, dY);
    *pdSensorX = oPoint.dX;
    *pdSensorY = oPoint.dY;
  });
}

long VTSimGetTargetDots(const char* szSerial, VTSimPoint* pDots, unsigned int* pnCount) {
  return On(szSerial, [&](ClScanner& oScanner) {
    const std::vector<VTSimPoint> aDots = oScanner.TargetDots();
    HandOut(aDots.data(), aDots.size(), pDots, pnCount);
  });
}

long VTSimGetOptics(const char* szSerial, VTSimOptics* pOptics) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedPointer(pOptics);
    if (pOptics->nStructSize != sizeof(VTSimOptics)) throw ClSimError(eBadValue, "nStructSize is wrong");
    oScanner.Optics(*pOptics);
  });
}

long VTSimGetSheetAt(const char* szSerial, double dTime, VTSimSheet* pSheet, VTSimSheetField* pFields,
                     unsigned int* pnCount) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedTime(dTime);
    NeedPointer(pSheet);
    const std::vector<VTSimSheetField> aFields = oScanner.SheetAt(dTime, *pSheet);
    HandOut(aFields.data(), aFields.size(), pFields, pnCount);
  });
}

long VTSimGetMinutiaeAt(const char* szSerial, double dTime, VTSimMinutia* pMinutiae, unsigned int* pnCount) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedTime(dTime);
    const std::vector<VTSimMinutia> aMinutiae = oScanner.Minutiae(dTime);
    HandOut(aMinutiae.data(), aMinutiae.size(), pMinutiae, pnCount);
  });
}

long VTSimGetRidgesAt(const char* szSerial, double dTime, VTSimRidge* pRidges, unsigned int* pnCount) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedTime(dTime);
    const std::vector<VTSimRidge> aRidges = oScanner.Ridges(dTime);
    HandOut(aRidges.data(), aRidges.size(), pRidges, pnCount);
  });
}

long VTSimGetPenAt(const char* szSerial, double dTime, VTSimPen* pPen) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedTime(dTime);
    NeedPointer(pPen);
    *pPen = oScanner.PenAt(dTime);
  });
}

long VTSimGetPenStrokes(const char* szSerial, VTSimStroke* pStrokes, unsigned int* pnCount) {
  return On(szSerial, [&](ClScanner& oScanner) {
    const std::vector<VTSimStroke> aStrokes = oScanner.PenStrokes();
    HandOut(aStrokes.data(), aStrokes.size(), pStrokes, pnCount);
  });
}

long VTSimGetState(const char* szSerial, VTSimState* pState) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedPointer(pState);
    if (pState->nStructSize != sizeof(VTSimState)) throw ClSimError(eBadValue, "nStructSize is wrong");
    oScanner.State(*pState);
  });
}

long VTSimGetBeeps(const char* szSerial, VTSimBeep* pBeeps, unsigned int* pnCount) {
  return On(szSerial, [&](ClScanner& oScanner) {
    const std::vector<VTSimBeep> aBeeps = oScanner.Beeps();
    HandOut(aBeeps.data(), aBeeps.size(), pBeeps, pnCount);
  });
}

long VTSimGetLights(const char* szSerial, VTSimLight* pLights, unsigned int* pnCount) {
  return On(szSerial, [&](ClScanner& oScanner) {
    const std::vector<VTSimLight> aLights = oScanner.Lights();
    HandOut(aLights.data(), aLights.size(), pLights, pnCount);
  });
}

long VTSimGetDisplay(const char* szSerial, VTSimDisplay* pDisplay) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedPointer(pDisplay);
    if (pDisplay->nStructSize != sizeof(VTSimDisplay)) throw ClSimError(eBadValue, "nStructSize is wrong");
    oScanner.Display(*pDisplay);
  });
}

long VTSimGetFrames(const char* szSerial, unsigned long long nFirst, VTSimFrame* pFrames,
                    unsigned int* pnCount) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedPointer(pnCount);
    if (*pnCount != 0) NeedPointer(pFrames);
    *pnCount = oScanner.Frames(nFirst, pFrames, *pnCount);
  });
}

long VTSimWaitForSequences(const char* szSerial, unsigned long long nCount, unsigned int nMilliseconds) {
  return On(szSerial, [&](ClScanner& oScanner) {
    if (!oScanner.WaitForSequences(nCount, std::chrono::milliseconds(nMilliseconds)))
      throw ClSimError(eBadState, "only fewer sequences were handed out in time");
  });
}

long VTSimAdvance(const char* szSerial, double dSeconds) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedTime(dSeconds);
    oScanner.Advance(dSeconds);
  });
}

long VTSimUnplug(const char* szSerial) {
  return On(szSerial, [](ClScanner& oScanner) { oScanner.SetPlugged(false); });
}

long VTSimPlug(const char* szSerial) {
  return On(szSerial, [](ClScanner& oScanner) { oScanner.SetPlugged(true); });
}

long VTSimUnplugAt(const char* szSerial, double dTime) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedTime(dTime);
    oScanner.PlanPlug(dTime, false);
  });
}

long VTSimPlugAt(const char* szSerial, double dTime) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedTime(dTime);
    oScanner.PlanPlug(dTime, true);
  });
}

long VTSimSetEpromFile(const char* szSerial, const char* szName, const void* pData, unsigned int nSize) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedPointer(szName);
    const auto* pBytes = static_cast<const uint8_t*>(pData);
    const ByteBlock aData(pBytes, pData ? pBytes + nSize : pBytes);
    oScanner.SetEprom(szName, pData ? &aData : nullptr);
  });
}

long VTSimRestoreEpromFile(const char* szSerial, const char* szName) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedPointer(szName);
    oScanner.RestoreEprom(szName);
  });
}

long VTSimSetDeviceVersion(const char* szSerial, const char* szVersion) {
  return On(szSerial, [&](ClScanner& oScanner) {
    NeedPointer(szVersion);
    oScanner.SetVersion(szVersion);
  });
}

long VTSimSetLibraryVersion(const char* szVersion) {
  return Guarded([&] {
    NeedPointer(szVersion);
    ClBus::Get().Prepare();
    ClBus::Get().SetLibraryVersion(szVersion);
  });
}

long VTSimHoldSequences(const char* szSerial, int bHold) {
  return On(szSerial, [&](ClScanner& oScanner) { oScanner.Hold(bHold != 0); });
}

long VTSimPassSequences(const char* szSerial, unsigned int nCount) {
  return On(szSerial, [&](ClScanner& oScanner) { oScanner.Pass(nCount); });
}

long VTSimDelaySequence(const char* szSerial, unsigned int nMilliseconds) {
  return On(szSerial, [&](ClScanner& oScanner) { oScanner.Delay(nMilliseconds); });
}

long VTSimFailCall(const char* szFunction, unsigned int nFirst, unsigned int nRepeat, long nResult) {
  return Guarded([&] {
    NeedFunction(szFunction);
    if (nFirst == 0) throw ClSimError(eBadValue, "calls are counted from 1");
    ClBus::Get().Prepare();
    ClBus::Get().Faults().FailCall(szFunction, nFirst, nRepeat, nResult);
  });
}

long VTSimFailRandomly(const char* szFunction, unsigned long long nSeed, double dProbability, long nResult) {
  return Guarded([&] {
    if (!(dProbability >= 0.0 && dProbability <= 1.0))
      throw ClSimError(eBadValue, "a probability lies between 0 and 1");
    if (szFunction != nullptr && std::strcmp(szFunction, "*") != 0) NeedFunction(szFunction);
    ClBus::Get().Prepare();
    ClBus::Get().Faults().FailRandomly(szFunction ? szFunction : "*", nSeed, dProbability, nResult);
  });
}

long VTSimClearFaults(void) {
  return Guarded([] { ClBus::Get().ClearFaults(); });
}

long VTSimGetFaultLog(char* pszLog, unsigned int* pnSize) {
  return Guarded([&] { HandOutText(ClBus::Get().Faults().Log(), pszLog, pnSize); });
}

long VTSimGetCallCount(const char* szFunction, unsigned long long* pnCount) {
  return Guarded([&] {
    NeedPointer(szFunction);
    NeedPointer(pnCount);
    *pnCount = ClBus::Get().Faults().CallCount(szFunction);
  });
}

}  // extern "C"
