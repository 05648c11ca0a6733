// The one place that asks for the processor time of the process.
#pragma once

namespace Klv {

/// What all threads of the process have computed so far. A program that replaces the C library's clock()
/// decides what this returns.
///
/// Units    microseconds, modulo the range of the type: differences are right, also across its end.
/// Threads  thread-safe.
unsigned long ProcessorTime() noexcept;

}  // namespace Klv
