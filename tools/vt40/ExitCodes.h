// The exit codes that suit the numbers of the library and of the scan library.
#pragma once

#include "ToolError.h"

/// Of a call of an open scanner, or of no scanner.
EExitCode ExitCodeOf(long nError);

/// Of the opening of a scanner that is connected.
EExitCode ExitCodeOfOpening(long nError);
