// Names of numbers and of exit codes, and what a person can do.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "ToolError.h"

/// The name of a number of the library, as the public header has it; null for a number that it does not name.
const char* NameOfNumber(long nNumber);

/// The name of an exit code, as the tool's JSON has it.
const char* NameOfExit(EExitCode eCode);

/// What to do after an end with that code: a sentence.
const char* AdviceFor(EExitCode eCode);

/// The JSON of a failure: number, name, text and advice. nNumber is 0 where the library has not refused.
nlohmann::ordered_json ErrorOf(EExitCode eCode, const std::string& sText, long nNumber);
