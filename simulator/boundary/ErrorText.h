// The libraries' texts of their numbers.
#pragma once

namespace Simulator {

/// Range      a fixed text for any number.
/// Threads    thread-safe.
const char* ErrorText(long nNumber) noexcept;
const wchar_t* ErrorTextWide(long nNumber) noexcept;

}  // namespace Simulator
