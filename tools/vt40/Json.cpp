// Text of JSON objects.
#include "Json.h"

#include <cstdio>
#include <nlohmann/json.hpp>

void PrintJson(const nlohmann::ordered_json& oJson) {
  std::puts(oJson.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
}
