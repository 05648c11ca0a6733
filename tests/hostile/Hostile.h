// What a test plans with the hostile scan library, and what it learns of it.
#pragma once

#include <cstdint>
#include <map>
#include <utility>

namespace Hostile {

/// How a call of the scan library is answered.
enum EAnswer {
  eRight,
  eNumber,         ///< by a number, without doing anything but giving back what is given back
  eNumberAfter,    ///< by a number, after doing it
  eNothing,        ///< by 0, without doing anything
  eLate,           ///< rightly, a while later
  eNever,          ///< not before another thread cancels: ends the capture or the device
  eHuge,           ///< rightly, but the size or number that is returned is the largest of its type
  eNone,           ///< rightly, but it is 0
  eOneMore,        ///< rightly, but it is one more
  eEmpty,          ///< rightly, but what is written is all zeros
  eGarbage,        ///< rightly, but the room is full of bytes without order and without an end
  eFormat,         ///< rightly, but the room is full of conversions of printf
  eFlipped,        ///< rightly, but for one bit
  eNull,           ///< by 0, with NULL for the handle or the sequence
  eShortFrame,     ///< with a sequence of which only the first half came, zeros after it
  eSameFrame,      ///< with the sequence before once more
  eOrder,          ///< with the next sequence, and this one the next time
  eSwappedPlanes,  ///< with the last plane first
  eAbsent          ///< there is no such function
};
constexpr int cnAnswers = eAbsent + 1;
constexpr const char* caszAnswers[cnAnswers] = {
    "right",       "number",     "number after", "nothing",        "late",   "never",   "huge",
    "none",        "one more",   "empty",        "garbage",        "format", "one bit", "null",
    "short frame", "same frame", "order",        "swapped planes", "absent"};

/// The answer to call nCall, from 1, of a function after a step has begun. It may come in a later step.
struct StPlan {
  uint16_t nFunction = 0;
  unsigned nStep = 0;
  unsigned nCall = 0;
  EAnswer eAnswer = eRight;
  long nNumber = 0;
};

/// How often a function was called in a step.
using Calls = std::map<std::pair<unsigned, uint16_t>, unsigned>;

/// Threads  thread-safe.
class ClControl {
 public:
  /// Forgets the plan before, its outcome, and the calls.
  virtual void Plan(const StPlan& oPlan) = 0;
  virtual void Enter(unsigned nStep) = 0;
  /// Calls pfn when the planned call comes; NULL for nothing.
  virtual void OnStrike(void (*pfn)()) = 0;
  /// Whether the planned call has come, or the function was looked for that is absent.
  virtual bool HasStruck() const = 0;
  virtual Calls Seen() const = 0;
  /// Whether an answer makes sense for a function with these roles of its arguments.
  virtual bool Fits(uint16_t nFunction, EAnswer eAnswer) const = 0;

 protected:
  ~ClControl() = default;
};

}  // namespace Hostile

/// The control of the loaded library. The simulated scan library must be loaded for all to see.
extern "C" Hostile::ClControl* HostileControl();
