// Results as JSON.
#pragma once

#include "image.hpp"
#include "temporary.hpp"

#include <cstdio>
#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;

// A file's name as JSON wants it: UTF-8.
inline std::string json_name(const std::string& name) {
    const std::u8string text = path_of(name).u8string();
    return {text.begin(), text.end()};
}

// Names that are no text lose what is not.
inline void print_json(const Json& value) {
    std::printf("%s\n", value.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
}

// What stands for an input that failed.
inline Json error_record(const std::string& input, const std::exception& error) {
    Json record = {{"file", json_name(input)}, {"error", error.what()}};
    if (const auto* failure = dynamic_cast<const Failure*>(&error)) {
        record["error"] = failure->reason();
        record["status"] = failure->status();
    }
    return record;
}
