// One thread's share of a sequence: each step a call or something that happens to the scanner.
#pragma once

#include <array>
#include <memory>
#include <mutex>
#include <vector>

#include "Slot.h"

namespace Reliability {

/// What the threads of a sequence share.
///
/// Threads  thread-safe, with the locks of slots and of the replaced handles.
struct StPlay {
  const std::vector<Interface::StFunction> aFunctions = Interface::Functions();
  ClCensus oCensus{aFunctions};
  std::array<StSlot, 2> aSlots;
  std::mutex oReplacedMutex;
  std::vector<void*> aReplaced;  ///< handles in whose slots others were opened; guarded by oReplacedMutex
  std::atomic<void*> hStale{nullptr};
  /// Something has happened that a switch of the mode does not undo.
  std::atomic<bool> bDisturbed{false};
  std::mutex oLongestMutex;
  double dLongest = 0.0;  ///< the longest call, in seconds; guarded by oLongestMutex, as its name
  std::string sLongest;
  /// Frames are held back but for those that are let through; set before the steps.
  bool bHeld = false;

  /// Lets frames of a scanner flow, or holds them back but for some.
  void Flow(const char* szSerial, unsigned nFrames) const;
  void Took(const std::string& sFunction, double dSeconds);
};

/// Threads  thread-bound.
class ClSteps {
 public:
  /// The bytes [pBegin, pEnd) outlive it.
  ClSteps(StPlay& rPlay, const uint8_t* pBegin, const uint8_t* pEnd)
      : m_rPlay(rPlay), m_p(pBegin), m_pEnd(pEnd) {}

  void Run() {
    while (m_p != m_pEnd) Step();
  }

  /// Whether a scanner has to be opened after a call; two bytes, 1 and one below 64, let such a call happen.
  static bool NeedsOpening(const std::string& sFunction);

 private:
  using Function = Interface::StFunction;
  using Values = Interface::Values;

  unsigned Byte() { return m_p != m_pEnd ? *m_p++ : 0; }
  bool IsRare();
  uint8_t* Room(size_t nBytes);
  void Step();

  void Call(size_t nFunction);
  void MakeCall(size_t nFunction, StSlot& rSlot);
  void Fill(const Function& oFunction, size_t n, Values& rValues, StSlot& rSlot);
  void* HandleOf(unsigned n, StSlot& rSlot);
  void FillClosing(unsigned n, Interface::StValue& rValue, StSlot& rSlot);
  void FillText(const Function& oFunction, Interface::StValue& rValue, const StSlot& rSlot);
  void FillRoom(const Function& oFunction, size_t n, Values& rValues);
  void FillRange(const Interface::StArgument& oArgument, const Interface::StType& oType,
                 Interface::StValue& rValue);
  void Follow(const Function& oFunction, const Values& aValues, long nNumber, StSlot& rSlot);
  void FollowHandle(bool bOpened, long nNumber, StSlot& rSlot);

  void Happen(unsigned nEvent);
  void HappenToScanner(unsigned nEvent, const char* szSerial, unsigned n);
  void Fail(unsigned nEvent, unsigned n);
  void DamageEprom(const char* szSerial, unsigned n);

  StPlay& m_rPlay;
  const uint8_t* m_p;
  const uint8_t* const m_pEnd;
  std::vector<std::unique_ptr<uint8_t[]>> m_aRooms;
  void** m_ppHandle = nullptr;  ///< where the call stores or wipes a handle
  bool m_bOwnHandle = false;
};

}  // namespace Reliability
