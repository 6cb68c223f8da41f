#include "line/json.hpp"

#include "system/errors.hpp"
#include "system/names.hpp"

#include <cstdio>

// Names that are no text lose what is not.
void print_json(const Json& value) {
    std::printf("%s\n", value.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
}

Json error_record(const std::string& input, const std::exception& error) {
    Json record = {{"file", input}, {"error", error.what()}};
    if (const auto* failure = dynamic_cast<const Failure*>(&error)) {
        record["error"] = failure->reason();
        if (failure->status() != 0)
            record["status"] = failure->status();
    }
    return record;
}
