// How the tool prints what a program reads.
#pragma once

#include <nlohmann/json_fwd.hpp>

/// Prints the object on the standard output. Bytes that are no UTF-8 are replaced.
void PrintJson(const nlohmann::ordered_json& oJson);
