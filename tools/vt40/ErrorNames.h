// Names of numbers and of exit codes, and what a person can do.
#pragma once

#include "ToolError.h"

/// The name of a number of the library, as the public header has it; null for a number that it does not name.
const char* NameOfNumber(long nNumber);

/// The name of an exit code, as the tool's JSON has it.
const char* NameOfExit(EExitCode eCode);

/// What to do after an end with that code: a sentence.
const char* AdviceFor(EExitCode eCode);
