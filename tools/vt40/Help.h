// The help of the tool, and what it says to mistakes in a command line.
#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

/// Lays help out for the width of the terminal: what an option takes, what it is for, and its default.
std::shared_ptr<CLI::FormatterBase> MakeHelp();

/// What is wrong with a line that the parser has refused; for a name that it does not know, the nearest one.
std::string DescribeMistake(const CLI::App& oApp, const CLI::ParseError& oError);
