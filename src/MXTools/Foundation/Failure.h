// What is done with failures besides raising them.
#pragma once

#include <utility>

#include "MXTools/Exception.h"

/// Raises the number that a call returns, unless it is 0.
#define KLV_CHECK(nCall)                                                                            \
  do {                                                                                              \
    if (const long nCheckedResult = (nCall); nCheckedResult != 0) KLV_RAISE_NUMBER(nCheckedResult); \
  } while (false)

namespace Klv {

/// The number by which the exception that is being handled crosses the C boundary: its own, -102 when memory
/// ran out, -721 for another of the standard library, -722 for anything else. To be called in a handler.
long FailureNumber() noexcept;

/// What the exception that is being handled says of itself. To be called in a handler, and valid until its
/// end.
const char* FailureText() noexcept;

}  // namespace Klv

/// Undoes something on every way out of a scope but the good one.
///
/// Errors  what the undoing raises is dropped: the failure that leads out of the scope is the one to report.
template <typename TUndo>
class TpUndo {
 public:
  explicit TpUndo(TUndo fnUndo) : m_fnUndo(std::move(fnUndo)) {}
  TpUndo(const TpUndo&) = delete;
  TpUndo& operator=(const TpUndo&) = delete;
  ~TpUndo() {
    if (!m_bArmed) return;
    try {
      m_fnUndo();
    } catch (...) {
      // What the undoing raises is dropped, as the contract says.
    }
  }
  /// All went well.
  void Dismiss() { m_bArmed = false; }

 private:
  TUndo m_fnUndo;
  bool m_bArmed = true;
};
