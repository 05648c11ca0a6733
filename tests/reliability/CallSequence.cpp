// The life of a player: what a sequence begins with, and what must hold after it.
#include "CallSequence.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "Allocations.h"
#include "KelvarinFakeFingerDetectionVT40/FDSim.h"
#include "KelvarinVTScanAPI/VTSim.h"
#include "QuickClock.h"
#include "SequenceContent.h"

namespace Reliability {
namespace {

/// 15 seconds become a twentieth of one.
constexpr int cnClockScale = 300;
/// So many sequences share an open scanner if none of them disturbs it.
constexpr unsigned cnMostShared = 1024;
constexpr size_t cnHead = 4;
constexpr char cszLibrary[] = "libKelvarinLiveScannerVT40";

}  // namespace

ClSequencePlayer::ClSequencePlayer() {
  SetClockScale(cnClockScale);
  m_oPlay.aSlots[0].szSerial = SerialOf(false);
  m_oPlay.aSlots[1].szSerial = SerialOf(true);
  Allocations::Watch(cszLibrary);
  Begin();
}

ClSequencePlayer::~ClSequencePlayer() {
  End();
  SetClockScale(1);
}

void ClSequencePlayer::Begin() {
  Require(VTSimLoadScene(SceneOf(0).c_str()) == 0, VTSimLastError());
  Require(LS_VT40Initialize(nullptr) == 0, "the library can be initialised");
  StSlot& rSlot = m_oPlay.aSlots[0];
  const long nOpened = LS_VT40OpenScanner(rSlot.szSerial, &rSlot.h);
  Require(nOpened == 0, "the next opening works, and answers " + std::to_string(nOpened));
  rSlot.nMode = KLV_VT40_CAPTURE_MODE_OFF;
  m_oPlay.bDisturbed = false;
  m_nPlayed = 0;
}

void ClSequencePlayer::Close(void* h) {
  if (h == nullptr) return;
  m_oPlay.hStale = h;
  const long nClosed = LS_VT40CloseScanner(&h);
  Require(nClosed == 0 && h == nullptr, "a scanner can be closed, and answers " + std::to_string(nClosed));
}

/// Closes all that is open, whatever state it is in.
void ClSequencePlayer::End() {
  Require(LS_VT40Initialize(nullptr) == 0, "the library can be initialised once more");
  for (StSlot& rSlot : m_oPlay.aSlots) {
    Close(std::exchange(rSlot.h, nullptr));
    rSlot.nMode = cnModes;
  }
  for (void* h : std::exchange(m_oPlay.aReplaced, {})) Close(h);
  while (LS_VT40Uninitialize() == 0) {
  }
  VTSimReset();
}

void ClSequencePlayer::Restore() {
  Allocations::Ignore();
  // Frames would flow once nothing holds them back any more; whether this works is asked afterwards.
  for (StSlot& rSlot : m_oPlay.aSlots) LS_VT40SetCaptureMode(rSlot.h, KLV_VT40_CAPTURE_MODE_OFF);
  VTSimClearFaults();
  FDSimReset();
  FDSimOrderScore(-1.0);
  if (m_oPlay.bDisturbed || ++m_nPlayed == cnMostShared) {
    End();
    Begin();
  } else {
    Require(VTSimLoadScene(SceneOf(0).c_str()) == 0, VTSimLastError());
    // Nobody looks at the frames.
    for (StSlot& rSlot : m_oPlay.aSlots) VTSimHoldSequences(rSlot.szSerial, 1);
    CheckUsable();
    VTSimClearFaults();
  }
}

void ClSequencePlayer::CheckUsable() {
  for (StSlot& rSlot : m_oPlay.aSlots) {
    if (rSlot.h == nullptr) continue;
    for (const int nMode : {KLV_VT40_CAPTURE_MODE_PREVIEW, KLV_VT40_CAPTURE_MODE_OFF}) {
      const long nSwitched = LS_VT40SetCaptureMode(rSlot.h, nMode);
      Require(nSwitched == 0, "a scanner can be switched, and answers " + std::to_string(nSwitched));
    }
    rSlot.nMode = KLV_VT40_CAPTURE_MODE_OFF;
    Require(LS_VT40SetPropertyLongA(rSlot.h, "nSignatureSensorMode", 0) == 0, "a property can be set");
    Require(LS_VT40SetPropertyDoubleA(rSlot.h, "dSignatureFilterSigma", 1.0) == 0, "likewise");
  }
}

/// The mode in which a sequence begins; below 0 it stays "off".
void ClSequencePlayer::Select(int nMode) {
  StSlot& rSlot = m_oPlay.aSlots[0];
  if (nMode < 0 || rSlot.h == nullptr) return;
  const long nSelected = LS_VT40SetCaptureMode(rSlot.h, nMode);
  Require(nSelected == 0, "a mode can be selected, and answers " + std::to_string(nSelected));
  rSlot.nMode = nMode;
}

void ClSequencePlayer::Play(const Sequence_t& aSequence) {
  if (aSequence.size() <= cnHead) return;
  const uint8_t* pSteps = aSequence.data() + cnHead;
  const uint8_t* pEnd = aSequence.data() + aSequence.size();
  const unsigned nFlow = aSequence[3] / 4u;
  m_oPlay.bHeld = nFlow != 0;
  for (const StSlot& rSlot : m_oPlay.aSlots) m_oPlay.Flow(rSlot.szSerial, 0);
  Select(aSequence[0] / 2 % (cnModes + 1) - 1);
  if (aSequence[1] != 0) VTSimLoadScene(SceneOf(aSequence[1]).c_str());
  for (const StSlot& rSlot : m_oPlay.aSlots) m_oPlay.Flow(rSlot.szSerial, nFlow - 1);
  if (LosesFirst(aSequence[1])) m_oPlay.bDisturbed = true;
  const long nFailing = aSequence[2] | long{aSequence[3] % 4} << 8;
  if (nFailing != 0) Allocations::FailNth(nFailing);
  if ((aSequence[0] & 1) == 0) {
    ClSteps(m_oPlay, pSteps, pEnd).Run();
  } else {
    const uint8_t* pMiddle = pSteps + (pEnd - pSteps) / 2;
    std::thread oOther([&] { ClSteps(m_oPlay, pMiddle, pEnd).Run(); });
    ClSteps(m_oPlay, pSteps, pMiddle).Run();
    oOther.join();
  }
  Restore();
}

std::vector<Sequence_t> ClSequencePlayer::Pairs() {
  const std::vector<Interface::StFunction> aFunctions = Interface::Functions();
  const auto NumberOfFunction = [&](const char* szName) {
    const auto it = std::find_if(aFunctions.begin(), aFunctions.end(),
                                 [szName](const Interface::StFunction& o) { return o.sName == szName; });
    return static_cast<uint8_t>(it - aFunctions.begin());
  };
  const uint8_t nSwitch = NumberOfFunction("LS_VT40SetCaptureMode");
  const uint8_t nClose = NumberOfFunction("LS_VT40CloseScanner");
  const auto Put = [&](Sequence_t& rSequence, size_t nFunction, uint8_t nLast) {
    rSequence.push_back(static_cast<uint8_t>(nFunction));
    if (ClSteps::NeedsOpening(aFunctions[nFunction].sName)) rSequence.insert(rSequence.end(), {1, 0});
    rSequence.insert(rSequence.end(), {0, 0, nLast});
  };
  std::vector<Sequence_t> aPairs;
  for (size_t nFunction = 0; nFunction < aFunctions.size(); ++nFunction) {
    for (int nMode = 0; nMode <= cnModes; ++nMode) {
      Sequence_t aSequence(cnHead);
      Put(aSequence, nMode < cnModes ? nSwitch : nClose, static_cast<uint8_t>(nMode < cnModes ? nMode : 0));
      Put(aSequence, nFunction, 0);
      aPairs.push_back(aSequence);
    }
  }
  return aPairs;
}

}  // namespace Reliability
