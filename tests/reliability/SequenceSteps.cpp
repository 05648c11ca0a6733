// Calls with arguments of every kind, and what happens to the scanner in between.
#include "SequenceSteps.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <shared_mutex>
#include <utility>

#include "KelvarinFakeFingerDetectionVT40/FDSim.h"
#include "KelvarinVTScanAPI/VTSim.h"
#include "SequenceContent.h"

namespace Reliability {

using namespace Interface;

namespace {

// Events: the first ones concern one scanner, those after them let something fail.
constexpr unsigned cnScannerEvents = 15;
constexpr unsigned cnEvents = cnScannerEvents + 8;
/// One byte in so many chooses the second of two scanners.
constexpr unsigned cnSecond = 5;
/// The first of the events after which a scanner has to be opened anew.
constexpr unsigned cnFirstPlugging = 12;

/// Frames take most of a sequence's time: where they are held back, an event lets one of them through if its
/// byte modulo this is 0.
constexpr unsigned cnRareFrame = 8;

}  // namespace

void StPlay::Flow(const char* szSerial, unsigned nFrames) const {
  VTSimHoldSequences(szSerial, bHeld);
  if (bHeld) VTSimPassSequences(szSerial, nFrames);
}

void StPlay::Took(const std::string& sFunction, double dSeconds) {
  const std::lock_guard<std::mutex> oLock(oLongestMutex);
  if (dSeconds <= dLongest) return;
  dLongest = dSeconds;
  sLongest = sFunction;
}

bool ClSteps::NeedsOpening(const std::string& sFunction) {
  return sFunction == "LS_VT40OpenScanner" || sFunction == "LS_VT40CloseScanner" ||
         sFunction == "LS_VT40Initialize" || sFunction == "LS_VT40Uninitialize";
}

/// Opening takes twenty times as long as the rest of a sequence: of the steps that make it necessary, those
/// count that are followed by a byte of 1 and another of less than 64. Zeros follow the end of a sequence.
bool ClSteps::IsRare() {
  return Byte() == 1 && Byte() < 64;
}

void ClSteps::Step() {
  const unsigned nFunctions = static_cast<unsigned>(m_rPlay.aFunctions.size());
  const unsigned n = Byte() % (nFunctions + cnEvents);
  const bool bPlugging = n >= nFunctions + cnFirstPlugging && n < nFunctions + cnScannerEvents;
  if (bPlugging || (n < nFunctions && NeedsOpening(m_rPlay.aFunctions[n].sName))) {
    if (!IsRare()) return;
  }
  if (n < nFunctions) return Call(n);
  Happen(n - nFunctions);
}

/// A buffer of exactly so many bytes, for the length of a call.
uint8_t* ClSteps::Room(size_t nBytes) {
  constexpr size_t cnFilled = 4096;
  m_aRooms.emplace_back(new uint8_t[nBytes]);
  std::memset(m_aRooms.back().get(), 0xA5, std::min(nBytes, cnFilled));
  return m_aRooms.back().get();
}

void ClSteps::Call(size_t nFunction) {
  const std::string& sName = m_rPlay.aFunctions[nFunction].sName;
  StSlot& rSlot = m_rPlay.aSlots[Byte() % cnSecond == cnSecond - 1];
  if (sName == "LS_VT40OpenScanner" || sName == "LS_VT40CloseScanner") {
    const std::unique_lock<std::shared_mutex> oLock(rSlot.oMutex);
    MakeCall(nFunction, rSlot);
  } else {
    const std::shared_lock<std::shared_mutex> oLock(rSlot.oMutex);
    MakeCall(nFunction, rSlot);
  }
  m_aRooms.clear();
}

void ClSteps::MakeCall(size_t nFunction, StSlot& rSlot) {
  const StFunction& oFunction = m_rPlay.aFunctions[nFunction];
  Values aValues(oFunction.aArguments.size());
  m_ppHandle = nullptr;
  for (size_t n = 0; n < aValues.size(); ++n) Fill(oFunction, n, aValues, rSlot);
  const int nMode = rSlot.nMode;
  m_rPlay.oCensus.Count(nFunction, nMode);
  const auto tBegin = std::chrono::steady_clock::now();
  const long nNumber = oFunction.fnCall(aValues);
  const double dSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - tBegin).count();
  m_rPlay.Took(oFunction.sName, dSeconds);
  Require(IsDocumented(oFunction, nNumber), oFunction.sName + " answers " + std::to_string(nNumber));
  Follow(oFunction, aValues, nNumber, rSlot);
}

/// What a call has changed for those that follow.
void ClSteps::Follow(const StFunction& oFunction, const Values& aValues, long nNumber, StSlot& rSlot) {
  if (oFunction.sName == "LS_VT40SetCaptureMode" && aValues[0].p == rSlot.h) {
    if (nNumber == 0) rSlot.nMode = static_cast<int>(aValues[1].n);
    // After most failures the mode is "off".
    if (nNumber != 0 && nNumber != -103 && rSlot.h != nullptr) rSlot.nMode = KLV_VT40_CAPTURE_MODE_OFF;
  } else if (oFunction.sName == "LS_VT40Initialize" || oFunction.sName == "LS_VT40Uninitialize") {
    m_rPlay.bDisturbed = true;
  } else if (m_ppHandle != nullptr) {
    FollowHandle(oFunction.sName == "LS_VT40OpenScanner", nNumber, rSlot);
  }
}

void ClSteps::FollowHandle(bool bOpened, long nNumber, StSlot& rSlot) {
  m_rPlay.bDisturbed = true;
  if (bOpened) {
    Require((nNumber == 0) == (*m_ppHandle != nullptr), "an opening gives a handle, and a failing one none");
    if (nNumber != 0) return;
    if (rSlot.h != nullptr) {
      const std::lock_guard<std::mutex> oLock(m_rPlay.oReplacedMutex);
      m_rPlay.aReplaced.push_back(rSlot.h);
    }
    rSlot.h = *m_ppHandle;
    rSlot.nMode = KLV_VT40_CAPTURE_MODE_OFF;
  } else if (m_bOwnHandle) {
    Require(nNumber != 0 || *m_ppHandle == nullptr, "closing wipes the handle");
    if (*m_ppHandle != nullptr || rSlot.h == nullptr) return;
    m_rPlay.hStale = std::exchange(rSlot.h, nullptr);
    rSlot.nMode = cnModes;
  }
}

void ClSteps::Fill(const StFunction& oFunction, size_t n, Values& rValues, StSlot& rSlot) {
  const StArgument& oArgument = oFunction.aArguments[n];
  const StType& oType = oFunction.aTypes[n];
  StValue& rValue = rValues[n];
  switch (oArgument.eRole) {
    case eHandle:
      rValue.p = HandleOf(Byte(), rSlot);
      return;
    case eClose:
      return FillClosing(Byte(), rValue, rSlot);
    case eIn:
      return FillText(oFunction, rValue, rSlot);
    case eName:
      rValue.p = const_cast<char*>(NameOf(Byte()));
      return;
    case eOut:
      rValue.p = Byte() < 250 ? Room(oType.nPointee) : nullptr;
      if (oFunction.sName == "LS_VT40OpenScanner") m_ppHandle = static_cast<void**>(rValue.p);
      if (m_ppHandle != nullptr) *m_ppHandle = nullptr;
      return;
    case eSerial:
      rValue.p = Byte() < 250 ? Room(KLV_VT40_SERIAL_SIZE) : nullptr;
      return;
    case eImage:
      rValue.p = Byte() < 250 ? Room(ImageBytesOf(oFunction.sName)) : nullptr;
      return;
    case eRoom:
    case eCells:
    case eData:
      return FillRoom(oFunction, n, rValues);
    case eSize:
    case eCount:
      return;  // set with the room before it
    case eRange:
      FillRange(oArgument, oType, rValue);
      return;
    case eValue:
      rValue.n = WholeOf(Byte(), oType);
      rValue.d = NumberOf(static_cast<unsigned>(rValue.n & 0xFF));
      return;
    case eUnread:
      rValue.p = Byte() < 128 ? nullptr : &m_rPlay;
      return;
  }
}

void ClSteps::FillText(const StFunction& oFunction, StValue& rValue, const StSlot& rSlot) {
  const unsigned n = Byte();
  const bool bSerial = oFunction.sName == "LS_VT40OpenScanner" && n < 200;
  rValue.p = const_cast<char*>(bSerial ? rSlot.szSerial : TextOf(n));
}

void* ClSteps::HandleOf(unsigned n, StSlot& rSlot) {
  if (n >= 240) return nullptr;
  if (n >= 224) return m_rPlay.hStale;
  if (n >= 208) {
    std::snprintf(reinterpret_cast<char*>(Room(64)), 64, "LS_VT40");
    return m_aRooms.back().get();
  }
  return rSlot.h;
}

void ClSteps::FillClosing(unsigned n, StValue& rValue, StSlot& rSlot) {
  m_bOwnHandle = n < 208;
  if (n >= 240) return;
  m_ppHandle = reinterpret_cast<void**>(Room(sizeof(void*)));
  *m_ppHandle = m_bOwnHandle ? rSlot.h : n >= 224 ? m_rPlay.hStale.load() : nullptr;
  rValue.p = m_ppHandle;
}

/// Room, cells or data, with the size that follows it.
void ClSteps::FillRoom(const StFunction& oFunction, size_t n, Values& rValues) {
  const bool bCells = oFunction.aArguments[n].eRole == eCells;
  const unsigned nChoice = Byte();
  const unsigned nSize = bCells ? nChoice % 5 : SizeOf(nChoice);
  rValues[n].p = nChoice < 240 ? Room(bCells ? size_t{nSize} * KLV_VT40_SERIAL_SIZE : nSize) : nullptr;
  StValue& rSize = rValues[n + 1];
  rSize.n = nSize;
  if (oFunction.aArguments[n + 1].eRole == eCount) return;
  rSize.p = Byte() < 250 ? Room(sizeof(unsigned)) : nullptr;
  if (rSize.p != nullptr) std::memcpy(rSize.p, &nSize, sizeof(nSize));
}

void ClSteps::FillRange(const StArgument& oArgument, const StType& oType, StValue& rValue) {
  const unsigned n = Byte();
  rValue.n = n == 255   ? oType.nHigh
             : n == 254 ? oType.nLow
                        : oArgument.nLow + n % (oArgument.nHigh - oArgument.nLow + 2);
}

/// Something happens to a scanner.
void ClSteps::Happen(unsigned nEvent) {
  const char* szSerial = SerialOf(Byte() % cnSecond == cnSecond - 1);
  const unsigned n = Byte();
  if (nEvent >= cnScannerEvents) return Fail(nEvent - cnScannerEvents, n);
  // All but plugging is undone by the next scene.
  if (nEvent >= cnFirstPlugging) m_rPlay.bDisturbed = true;
  HappenToScanner(nEvent, szSerial, n);
}

void ClSteps::HappenToScanner(unsigned nEvent, const char* szSerial, unsigned n) {
  static constexpr const char* s_aszVersions[] = {"", "FPGA:2.06", "FPGA:9", "1.11", "2.0"};
  const char* szVersion = s_aszVersions[n % std::size(s_aszVersions)];
  switch (nEvent) {
    case 0:
    case 1:
      if (LosesFirst(n)) {
        if (!IsRare()) return;
        m_rPlay.bDisturbed = true;
      }
      VTSimLoadScene(SceneOf(n).c_str());
      for (const StSlot& rSlot : m_rPlay.aSlots) m_rPlay.Flow(rSlot.szSerial, n % cnRareFrame == 0);
      return;
    case 2:
      VTSimHoldSequences(szSerial, 1);
      VTSimPassSequences(szSerial, n % 4);
      return;
    case 3:
    case 4:
      m_rPlay.Flow(szSerial, n % cnRareFrame == 0);
      return;
    case 5:
    case 6:
      VTSimPassSequences(szSerial, m_rPlay.bHeld ? n % cnRareFrame == 0 : n % 8);
      return;
    case 7:
      VTSimDelaySequence(szSerial, n % 8);
      return;
    case 8:
      VTSimAdvance(szSerial, n * 0.01);
      return;
    case 9:
      return DamageEprom(szSerial, n);
    case 10:
      VTSimRestoreEpromFile(szSerial, EpromFileOf(n));
      return;
    case 11:
      VTSimSetDeviceVersion(szSerial, szVersion);
      VTSimSetLibraryVersion(szVersion);
      return;
    case 12:
      VTSimUnplug(szSerial);
      return;
    case 13:
      VTSimPlug(szSerial);
      return;
    default:
      VTSimUnplugAt(szSerial, n * 0.02);
      return;
  }
}

void ClSteps::Fail(unsigned nEvent, unsigned n) {
  constexpr double cdProbability = 0.1;
  if (nEvent < 2) {
    VTSimClearFaults();
    for (const StSlot& rSlot : m_rPlay.aSlots) m_rPlay.Flow(rSlot.szSerial, n % cnRareFrame == 0);
    return;
  }
  const long nResult = FailureOf(Byte());
  if (nEvent == 2) {
    VTSimFailRandomly(nullptr, n, cdProbability, nResult);
  } else if (nEvent == 3) {
    FDSimFailCall(LivenessFunctionOf(n), 1, 1, nResult);
  } else if (nEvent == 4) {
    FDSimOrderScore(n % 100);
  } else {
    const unsigned nFirst = 1 + Byte() % 4;
    VTSimFailCall(ScanFunctionOf(n), nFirst, Byte() % 3, nResult);
  }
}

void ClSteps::DamageEprom(const char* szSerial, unsigned n) {
  // The simulated scanner takes no address for no file at all.
  uint8_t aBlock[64];
  std::memset(aBlock, static_cast<int>(n), sizeof(aBlock));
  VTSimSetEpromFile(szSerial, EpromFileOf(n), aBlock, Byte() % sizeof(aBlock));
}

}  // namespace Reliability
