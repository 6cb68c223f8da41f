// Results as JSON.
#pragma once

#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;

void print_json(const Json& value);
// What stands for an input that failed.
Json error_record(const std::string& input, const std::exception& error);
