// How often each function was called in each capture mode.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "Interface.h"

namespace Reliability {

/// The modes, and after them the state without a scanner.
constexpr int cnModes = KLV_VT40_CAPTURE_MODE_SIGNATURE + 1;

/// Threads  thread-safe.
class ClCensus {
 public:
  explicit ClCensus(const std::vector<Interface::StFunction>& aFunctions)
      : m_aFunctions(aFunctions), m_aCalls(new std::atomic<uint64_t>[aFunctions.size() * cnColumns]()) {}

  /// nMode: of [0, cnModes], the last for none.
  void Count(size_t nFunction, int nMode) { ++m_aCalls[nFunction * cnColumns + static_cast<size_t>(nMode)]; }
  uint64_t Calls(size_t nFunction, int nMode) const {
    return m_aCalls[nFunction * cnColumns + static_cast<size_t>(nMode)];
  }

  /// A member of a JSON object: the counts of each function, in the order of the modes.
  std::string Json() const {
    std::string sText = "\"calls\": {";
    for (size_t nFunction = 0; nFunction < m_aFunctions.size(); ++nFunction) {
      sText += (nFunction != 0 ? ", \"" : "\"") + m_aFunctions[nFunction].sName + "\": [";
      for (int nMode = 0; nMode <= cnModes; ++nMode)
        sText += (nMode != 0 ? ", " : "") + std::to_string(Calls(nFunction, nMode));
      sText += "]";
    }
    return sText + "}";
  }

 private:
  static constexpr size_t cnColumns = cnModes + 1;

  const std::vector<Interface::StFunction>& m_aFunctions;
  const std::unique_ptr<std::atomic<uint64_t>[]> m_aCalls;
};

}  // namespace Reliability
