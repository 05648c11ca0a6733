// One scanner on the bus: what the control side reads of it and does to it.
#include <algorithm>
#include <cmath>
#include <utility>

#include "KelvarinVTScanAPI/Scanner.h"
#include "portable/Math.h"
#include "scene/Sheet.h"

namespace Simulator {
namespace {

/// Radians as degrees from 0 to below dTurn.
double Degrees(double dRadians, double dTurn) {
  const double dTurns = dRadians * (180.0 / Portable::cdPi) / dTurn;
  const double dPart = dTurns - std::floor(dTurns);
  return dPart < 1.0 ? dPart * dTurn : 0.0;
}

}  // namespace

void ClScanner::TakeDescription(const ClScannerDescription& oDescription, const ClSceneDescription& oScene) {
  m_bRealTime = oScene.bRealTime;
  m_bUsbPowered = oDescription.bUsbPowered;
  m_sVersion = oDescription.sVersion;
  m_mapEprom.clear();
  for (const auto& oEntry : oDescription.mapEprom) {
    ClChange oChange{oEntry.second.bMissing,
                     oEntry.second.bReplaced ? oEntry.second.aData : *m_oSensor.EpromFile(oEntry.first)};
    for (const unsigned nOffset : oEntry.second.aFlips)
      if (nOffset < oChange.aData.size())
        oChange.aData[nOffset] = static_cast<uint8_t>(~oChange.aData[nOffset]);
    if (oEntry.second.nCut >= 0)
      oChange.aData.resize(std::min(oChange.aData.size(), static_cast<size_t>(oEntry.second.nCut)));
    m_mapEprom[oEntry.first] = oChange;
  }
  m_aPlans.clear();
  for (const ClFaultDescription& oFault : oScene.aFaults) {
    const bool bPlug = oFault.eKind == ClFaultDescription::ePlug;
    if ((bPlug || oFault.eKind == ClFaultDescription::eUnplug) && oFault.sName == m_sSerial)
      m_aPlans.push_back({oFault.dAt, bPlug});
  }
  m_oBeeps.Clear();
  m_oLights.Clear();
  m_oDisplay = ClCharacterDisplay();
  m_nBeeps = m_nStatusWrites = 0;
  m_nSequences = m_nFrames = m_nSteadySince = 0;
  m_bHold = false;
  m_nPasses = 0;
  m_oDelay = Clock::duration(0);
  m_dTime = m_dShownTime = 0.0;
  m_oStart = m_oDue = Clock::now();
  m_bStarted = m_bCapture;
}

void ClScanner::SetScene(const ClScannerDescription& oDescription, const ClSceneDescription& oScene) {
  std::lock_guard<std::mutex> oRender(m_oRender);
  m_oSensor.SetScene(oDescription, oScene.nSeed);
  Guard oGuard(m_oState);
  TakeDescription(oDescription, oScene);
  if (!m_bPlugged) Plug(true);
  Restart();
}

void ClScanner::Lay(const ClScannerDescription& oDescription) {
  ClPlatenScene oPlaten(oDescription);  // makes prints, for which no frame need wait
  std::lock_guard<std::mutex> oRender(m_oRender);
  m_oSensor.Lay(oDescription, std::move(oPlaten));
}

void ClScanner::GroundTruth(uint8_t* pPicture, uint8_t* pCover) {
  std::lock_guard<std::mutex> oRender(m_oRender);
  double dTime;
  {
    Guard oGuard(m_oState);
    dTime = m_dShownTime;
  }
  m_oSensor.GroundTruth(dTime, pPicture, pCover);
}

std::vector<VTSimPoint> ClScanner::TargetDots() {
  std::lock_guard<std::mutex> oRender(m_oRender);
  std::vector<VTSimPoint> aDots;
  for (const ClPoint& oPoint : m_oSensor.TargetDots()) aDots.push_back({oPoint.dX, oPoint.dY});
  return aDots;
}

ClPoint ClScanner::PictureToSensor(double dX, double dY) {
  std::lock_guard<std::mutex> oRender(m_oRender);
  return m_oSensor.Optics().PictureToSensor(dX, dY);
}

void ClScanner::Optics(VTSimOptics& oOptics) {
  std::lock_guard<std::mutex> oRender(m_oRender);
  const ClOptics& o = m_oSensor.Optics();
  oOptics.dSpreadX = o.Spread().dX;
  oOptics.dSpreadY = o.Spread().dY;
  oOptics.dPixelMmX = o.PixelMm().dX;
  oOptics.dPixelMmY = o.PixelMm().dY;
}

std::vector<VTSimSheetField> ClScanner::SheetAt(double dTime, VTSimSheet& oSheet) {
  std::lock_guard<std::mutex> oRender(m_oRender);
  std::vector<VTSimSheetField> aFields;
  const ClSheetDescription* pSheet = m_oSensor.SheetAt(dTime);
  oSheet = VTSimSheet{-1, 0.0, 0.0, 0.0};
  if (!pSheet) return aFields;
  oSheet = {pSheet->eKind, pSheet->dXMm, pSheet->dYMm, pSheet->dAngle};
  for (const ClSheetField& o : SheetFields(pSheet->eKind))
    aFields.push_back(
        {o.eKind, o.bAlongX, o.dX, o.dY, o.dWidth, o.dHeight, o.dTurn, o.dFrequency, o.dLow, o.dHigh});
  return aFields;
}

void ClScanner::GroundTruthAt(double dTime, uint8_t* pPicture, uint8_t* pCover) {
  std::lock_guard<std::mutex> oRender(m_oRender);
  m_oSensor.GroundTruth(dTime, pPicture, pCover);
}

void ClScanner::UnrolledTruth(double dFrom, double dUntil, uint8_t* pPicture, uint8_t* pCover) {
  std::lock_guard<std::mutex> oRender(m_oRender);
  m_oSensor.UnrolledTruth(dFrom, dUntil, pPicture, pCover);
}

std::vector<VTSimMinutia> ClScanner::Minutiae(double dTime) {
  std::lock_guard<std::mutex> oRender(m_oRender);
  std::vector<ClMinutia> aFound;
  m_oSensor.Scene().AddMinutiae(dTime, aFound);
  std::vector<VTSimMinutia> aMinutiae;
  aMinutiae.reserve(aFound.size());
  for (const ClMinutia& o : aFound)
    aMinutiae.push_back({o.nFinger, o.ePoint, o.bDown, o.dX, o.dY, Degrees(o.dDirection, 360.0)});
  return aMinutiae;
}

std::vector<VTSimRidge> ClScanner::Ridges(double dTime) {
  static_assert(VTSIM_RIDGE_SIDE * cnRidgeBlock == cnPictureSide, "squares fill the picture");
  std::lock_guard<std::mutex> oRender(m_oRender);
  TpPlane<ClRidgeHere> oRidges(VTSIM_RIDGE_SIDE, VTSIM_RIDGE_SIDE);
  m_oSensor.Scene().AddRidges(dTime, oRidges);
  std::vector<VTSimRidge> aRidges;
  for (size_t i = 0; i < oRidges.Count(); ++i) {
    const ClRidgeHere& o = oRidges.Data()[i];
    aRidges.push_back({o.fPeriod == 0.0f ? 0.0 : Degrees(o.fDirection, 180.0), o.fPeriod});
  }
  return aRidges;
}

VTSimPen ClScanner::PenAt(double dTime) {
  std::lock_guard<std::mutex> oRender(m_oRender);
  VTSimPen oPen = VTSimPen();
  oPen.nStroke = -1;
  const ClPenPath* pPath = m_oSensor.Pen();
  if (!pPath) return oPen;
  const ClPenTip oTip = pPath->At(dTime);
  oPen.bDown = oTip.bDown;
  oPen.nStroke = oTip.nStroke;
  oPen.dX = MmToPixel(oTip.dXMm);
  oPen.dY = MmToPixel(oTip.dYMm);
  const ClPoint oSensor = m_oSensor.Optics().PictureToSensor(oPen.dX, oPen.dY);
  oPen.dSensorX = oSensor.dX;
  oPen.dSensorY = oSensor.dY;
  return oPen;
}

std::vector<VTSimStroke> ClScanner::PenStrokes() {
  std::lock_guard<std::mutex> oRender(m_oRender);
  std::vector<VTSimStroke> aStrokes;
  if (const ClPenPath* pPath = m_oSensor.Pen())
    for (const ClPenStroke& oStroke : pPath->Strokes()) aStrokes.push_back({oStroke.dBegin, oStroke.dEnd});
  return aStrokes;
}

unsigned ClScanner::Frames(uint64_t nFirst, VTSimFrame* pFrames, unsigned nRoom) {
  Guard oGuard(m_oState);
  const uint64_t nOldest = m_nSequences - std::min<uint64_t>(m_nSequences, cnFramesKept);
  unsigned nCount = 0;
  for (uint64_t n = std::max(nFirst, nOldest); n < m_nSequences && nCount < nRoom; ++n)
    pFrames[nCount++] = m_aFrames[static_cast<size_t>(n % cnFramesKept)];
  return nCount;
}

bool ClScanner::WaitForSequences(uint64_t nCount, std::chrono::milliseconds oTimeout) {
  Guard oGuard(m_oState);
  return m_oChanged.wait_for(oGuard, oTimeout, [&] { return m_nSequences >= nCount; });
}

void ClScanner::State(VTSimState& oState) {
  Guard oGuard(m_oState);
  FollowPlans();
  oState.bPlugged = m_bPlugged;
  oState.bOpen = m_nSession != 0;
  oState.bCaptureEnabled = m_bCapture;
  oState.nSensorMode = m_oSettings.pMode ? m_oSettings.pMode->nMode : 0;
  oState.nPlanes = static_cast<unsigned>(m_oSettings.aMasks.size());
  oState.nExposure = m_oSettings.nExposure;
  std::copy(m_oSettings.anGain.begin(), m_oSettings.anGain.end(), oState.anGain);
  oState.nIllumination = m_nIllumination;
  oState.nStatusLed = m_nStatusLed;
  oState.nStatusWrites = m_nStatusWrites;
  oState.nSequences = m_nSequences;
  oState.nLockedSequences = static_cast<unsigned>(
      std::count_if(m_aBlocks.begin(), m_aBlocks.end(), [](const auto& pBlock) { return pBlock->bOut; }));
  oState.bWaiting = m_bWaiting;
  oState.nBeeps = m_nBeeps;
  oState.dTime = Time();
}

std::vector<VTSimBeep> ClScanner::Beeps() {
  Guard oGuard(m_oState);
  return m_oBeeps.All();
}

std::vector<VTSimLight> ClScanner::Lights() {
  Guard oGuard(m_oState);
  return m_oLights.All();
}

void ClScanner::Display(VTSimDisplay& oDisplay) {
  Guard oGuard(m_oState);
  for (int n = 0; n < ClCharacterDisplay::nLines; ++n) {
    const size_t nCopied = m_oDisplay.Line(n).copy(oDisplay.aszLines[n], sizeof oDisplay.aszLines[n] - 1);
    oDisplay.aszLines[n][nCopied] = '\0';
  }
  oDisplay.bOn = m_oDisplay.On();
  oDisplay.bFourWires = m_oDisplay.FourWires();
  oDisplay.nCommands = m_oDisplay.Commands();
  oDisplay.nCharacters = m_oDisplay.Characters();
  oDisplay.nLost = m_oDisplay.Lost();
}

void ClScanner::Advance(double dSeconds) {
  Guard oGuard(m_oState);
  m_dTime += dSeconds;
  m_dShownTime = Time();
  FollowPlans();
  m_oChanged.notify_all();
}

void ClScanner::SetPlugged(bool bPlugged) {
  Guard oGuard(m_oState);
  Plug(bPlugged);
}

void ClScanner::PlanPlug(double dTime, bool bPlugged) {
  Guard oGuard(m_oState);
  m_aPlans.push_back({dTime, bPlugged});
  m_oChanged.notify_all();
}

void ClScanner::SetEprom(const std::string& sName, const ByteBlock* pData) {
  Guard oGuard(m_oState);
  m_mapEprom[sName] = pData ? ClChange{false, *pData} : ClChange{true, {}};
  m_fnNote("file " + sName + " of " + m_sSerial +
           (pData ? " replaced by " + std::to_string(pData->size()) + " bytes" : " taken away"));
}

void ClScanner::RestoreEprom(const std::string& sName) {
  Guard oGuard(m_oState);
  m_mapEprom.erase(sName);
}

void ClScanner::SetVersion(const std::string& sVersion) {
  Guard oGuard(m_oState);
  m_sVersion = sVersion;
}

void ClScanner::Hold(bool bHold) {
  Guard oGuard(m_oState);
  m_bHold = bHold;
  m_nPasses = 0;
  m_oChanged.notify_all();
}

void ClScanner::Pass(unsigned nCount) {
  Guard oGuard(m_oState);
  m_nPasses += nCount;
  m_oChanged.notify_all();
}

void ClScanner::Delay(unsigned nMilliseconds) {
  Guard oGuard(m_oState);
  m_oDelay = std::chrono::milliseconds(nMilliseconds);
  m_fnNote("a sequence of " + m_sSerial + " delayed by " + std::to_string(nMilliseconds) + " ms");
}

void ClScanner::ClearFaults() {
  Guard oGuard(m_oState);
  m_aPlans.clear();
  m_bHold = false;
  m_nPasses = 0;
  m_oDelay = Clock::duration(0);
  m_oChanged.notify_all();
}

}  // namespace Simulator
