// The frame of every exported function: its log lines, and the point where exceptions become numbers.
#pragma once

#include <exception>
#include <new>

#include "KelvarinLiveScannerVT40/LiveScannerVT40.h"
#include "KelvarinLiveScannerVT40/VT40Handle.h"
#include "MXTools/ErrorTable.h"
#include "MXTools/Failure.h"

/// The three log formats of a function, all beginning with the same form of its name and arguments.
struct StCallFormats {
  const char* szEnter;
  const char* szLeave;
  const char* szError;
};
#define KLV_CALL_FORMATS(form) (StCallFormats{form " Enter", form " Leave", form " Error(%d): %s"})
/// The formats of the functions that log no argument: the second text stands where the arguments would.
#define KLV_PLAIN_FORMATS KLV_CALL_FORMATS("%s%s")

// The formats reach the log through a structure. Each is a literal that stands beside its arguments.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

/// Writes the Error line of a call and returns its number. When the line cannot be written, it is dropped.
template <typename... TArguments>
long LeaveWithError(const StCallFormats& oFormats, long nNumber, TArguments... aArguments) noexcept {
  try {
    ClLiveScannerVT40::LogF(eLogError, oFormats.szError, aArguments..., static_cast<int>(nNumber),
                            GetErrorDescriptionIntern(nNumber));
  } catch (...) {
    // The caller's failure counts, not the log's.
  }
  return nNumber;
}

/// Runs the body of an exported function. The body's result, when it has one that is not 0, is returned
/// without a further log line; nothing that is raised leaves this function.
template <typename TBody, typename... TArguments>
long ExportedCall(const StCallFormats& oFormats, TBody&& oBody, TArguments... aArguments) noexcept {
  try {
    ClLiveScannerVT40::LogF(eLogDebug, oFormats.szEnter, aArguments...);
    if constexpr (std::is_void_v<decltype(oBody())>) {
      oBody();
    } else if (const long nResult = oBody()) {
      return nResult;
    }
    ClLiveScannerVT40::LogF(eLogDebug, oFormats.szLeave, aArguments...);
    return 0;
  } catch (...) {
    return LeaveWithError(oFormats, Klv::FailureNumber(), aArguments...);
  }
}

#pragma GCC diagnostic pop

/// Runs the body with the object of a scanner handle. Errors: -42, -43.
template <typename TBody, typename... TArguments>
long HandleCall(void* h, const StCallFormats& oFormats, TBody&& oBody, TArguments... aArguments) noexcept {
  return ExportedCall(
      oFormats, [&] { oBody(*ClVT40Handle::GetClassBase(h)); }, aArguments...);
}
