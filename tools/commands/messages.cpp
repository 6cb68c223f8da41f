#include "commands/messages.hpp"

#include "system/settings.hpp"

#include <cstring>

namespace {

// One list of fields serves to write a structure and to read it again.
template<typename Options, typename Field>
void each_field_of_reading(Options& o, Field field) {
    field("no_turn", o.no_turn);
    field("keep_going", o.keep_going);
    field("no_limits", o.no_limits);
    field("kirvo_only", o.kirvo_only);
    field("index", o.index);
    field("background", o.background);
}

template<typename Options, typename Field>
void each_field_of_writing(Options& o, Field field) {
    field("to", o.to);
    field("comment", o.comment);
    field("compression", o.compression);
    field("grey", o.grey);
    field("strip", o.strip);
    field("quality", o.quality);
    field("level", o.level);
    field("subsample", o.subsample);
    field("largest", o.largest);
    field("dpi", o.dpi);
}

// Into a message; of what may be missing, what is there.
class Put {
  public:
    explicit Put(Json& json) : json_(json) {}
    template<typename Value>
    void operator()(const char* name, const Value& value) const {
        json_[name] = value;
    }
    template<typename Value>
    void operator()(const char* name, const std::optional<Value>& value) const {
        if (value)
            json_[name] = *value;
    }

  private:
    Json& json_;
};

// Out of a message.
class Get {
  public:
    explicit Get(const Json& json) : json_(json) {}
    template<typename Value>
    void operator()(const char* name, Value& value) const {
        value = json_[name].get<Value>();
    }
    template<typename Value>
    void operator()(const char* name, std::optional<Value>& value) const {
        if (json_.contains(name))
            value = json_[name].get<Value>();
    }

  private:
    const Json& json_;
};

Json as_json(const ReadOptions& o) {
    Json json;
    each_field_of_reading(o, Put(json));
    return json;
}

Json as_json(const WriteOptions& o) {
    Json json;
    each_field_of_writing(o, Put(json));
    return json;
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
    each_field_of_reading(c.reading, Get(json["reading"]));
    each_field_of_writing(c.writing, Get(json["writing"]));
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
