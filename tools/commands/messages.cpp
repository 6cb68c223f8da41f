#include "commands/messages.hpp"

#include "system/settings.hpp"

#include <cstring>

namespace {

template<typename Value>
void put(Json& json, const char* name, const std::optional<Value>& value) {
    if (value)
        json[name] = *value;
}

template<typename Value>
void get(const Json& json, const char* name, std::optional<Value>& value) {
    if (json.contains(name))
        value = json[name].get<Value>();
}

Json as_json(const ReadOptions& o) {
    Json json = {{"no_turn", o.no_turn},
                 {"keep_going", o.keep_going},
                 {"no_limits", o.no_limits},
                 {"kirvo_only", o.kirvo_only}};
    put(json, "index", o.index);
    put(json, "background", o.background);
    return json;
}

ReadOptions read_options_of(const Json& json) {
    ReadOptions o;
    o.no_turn = json["no_turn"];
    o.keep_going = json["keep_going"];
    o.no_limits = json["no_limits"];
    o.kirvo_only = json["kirvo_only"];
    get(json, "index", o.index);
    get(json, "background", o.background);
    return o;
}

Json as_json(const WriteOptions& o) {
    Json json = {{"to", o.to},
                 {"comment", o.comment},
                 {"compression", o.compression},
                 {"grey", o.grey},
                 {"strip", o.strip}};
    put(json, "quality", o.quality);
    put(json, "level", o.level);
    put(json, "subsample", o.subsample);
    put(json, "largest", o.largest);
    put(json, "dpi", o.dpi);
    return json;
}

WriteOptions write_options_of(const Json& json) {
    WriteOptions o;
    o.to = json["to"];
    o.comment = json["comment"];
    o.compression = json["compression"];
    o.grey = json["grey"];
    o.strip = json["strip"];
    get(json, "quality", o.quality);
    get(json, "level", o.level);
    get(json, "subsample", o.subsample);
    get(json, "largest", o.largest);
    get(json, "dpi", o.dpi);
    return o;
}

} // namespace

// Strings go as they are, also names that are no text.
std::string framed(const Json& message) {
    std::string bytes(sizeof(uint32_t), '\0');
    Json::to_msgpack(message, bytes);
    const auto length = static_cast<uint32_t>(bytes.size() - sizeof(uint32_t));
    std::memcpy(bytes.data(), &length, sizeof length);
    return bytes;
}

bool take_message(std::string& arrived, Json& message) {
    uint32_t length = 0;
    if (arrived.size() < sizeof length)
        return false;
    std::memcpy(&length, arrived.data(), sizeof length);
    if (arrived.size() - sizeof length < length)
        return false;
    const auto begin = arrived.begin() + sizeof length;
    message = Json::from_msgpack(begin, begin + length);
    arrived.erase(0, sizeof length + length);
    return true;
}

Json as_json(const Conversion& c) {
    Json json = {{"steps", Json::array()},        {"reading", as_json(c.reading)},
                 {"writing", as_json(c.writing)}, {"mask", c.mask},
                 {"nearest", c.nearest},          {"show_time", c.show_time},
                 {"verbose", settings.verbose},   {"force", settings.force}};
    for (const Step& step : c.steps)
        json["steps"].push_back({step.effect->option, step.text});
    if (c.turning)
        json["turning"] = {c.turning->way, c.turning->edges};
    return json;
}

Conversion conversion_of(const Json& json) {
    Conversion c;
    for (const Json& step : json["steps"])
        c.steps.emplace_back(*effect_called(step[0].get<std::string>()),
                             step[1].get<std::string>());
    c.reading = read_options_of(json["reading"]);
    c.writing = write_options_of(json["writing"]);
    c.mask = json["mask"];
    c.nearest = json["nearest"];
    c.show_time = json["show_time"];
    if (json.contains("turning"))
        c.turning = {json["turning"][0].get<int32_t>(), json["turning"][1].get<int32_t>()};
    settings.verbose = json["verbose"];
    settings.force = json["force"];
    return c;
}

Json as_json(const Job& job) {
    return {{"input", job.input},      {"output", job.output}, {"is_pattern", job.is_pattern},
            {"folder", job.folder},    {"number", job.number}, {"makes_folders", job.makes_folders},
            {"in_place", job.in_place}};
}

Job job_of(const Json& json) {
    return {json["input"],  json["output"],        json["is_pattern"], json["folder"],
            json["number"], json["makes_folders"], json["in_place"]};
}

Json as_json(const Outcome& outcome) {
    return {{"good", outcome.good},
            {"record", outcome.record},
            {"error", outcome.error},
            {"notes", outcome.notes},
            {"text", outcome.text}};
}

Outcome outcome_of(const Json& json) {
    return {json["good"], json["record"], json["error"], json["notes"], json["text"]};
}
