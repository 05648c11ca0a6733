// Completion of the tool's command lines in shells.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

/// The script that a shell sources, made from the commands and options as they are: for "bash", "zsh" or
/// "fish".
std::string CompletionScript(const CLI::App& oApp, const std::string& sShell);
