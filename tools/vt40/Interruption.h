// Signals that end the tool: SIGINT and SIGTERM.
#pragma once

#include "ToolError.h"

/// Looks at the signals of this process.
namespace Interruption {

/// From here on the signals no longer kill the process. Further ones change nothing: some senders signal a
/// process and then its group.
void Catch();

/// Whether a signal has come.
bool Pending();

/// The exit code of the signal that has come.
EExitCode ExitCode();

/// Errors  ClToolError eExitInterrupted or eExitTerminated when a signal has come.
void Check();

}  // namespace Interruption
