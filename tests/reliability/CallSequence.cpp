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
constexpr unsigned cnMostShared = 256;
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
  VTSimHoldSequences(nullptr, 0);
  VTSimHoldSequences(SerialOf(true), 0);
  VTSimClearFaults();
  FDSimReset();
  FDSimOrderScore(-1.0);
  if (m_oPlay.bDisturbed || ++m_nPlayed == cnMostShared) {
    End();
    Begin();
  } else {
    Require(VTSimLoadScene(SceneOf(0).c_str()) == 0, VTSimLastError());
    // Nobody looks at the frames.
    VTSimHoldSequences(nullptr, 1);
    CheckUsable();
    VTSimHoldSequences(nullptr, 0);
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
  Select(aSequence[0] / 2 % (cnModes + 1) - 1);
  if (aSequence[1] != 0) VTSimLoadScene(SceneOf(aSequence[1]).c_str());
  if (LosesFirst(aSequence[1])) m_oPlay.bDisturbed = true;
  const long nFailing = aSequence[2] | long{aSequence[3]} << 8;
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
  std::vector<Sequence_t> aPairs;
  for (size_t nFunction = 0; nFunction < aFunctions.size(); ++nFunction) {
    for (int nMode = 0; nMode <= cnModes; ++nMode) {
      Sequence_t aSequence(cnHead);
      if (nMode < cnModes) {
        aSequence.insert(aSequence.end(), {nSwitch, 0, 0, static_cast<uint8_t>(nMode)});
      } else {
        aSequence.insert(aSequence.end(), {nClose, 0, 0, 0});
      }
      aSequence.insert(aSequence.end(), {static_cast<uint8_t>(nFunction), 0, 0, 0});
      aPairs.push_back(aSequence);
    }
  }
  return aPairs;
}

}  // namespace Reliability
