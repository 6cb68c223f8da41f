#include "commands/messages.hpp"
#include "commands/workers.hpp"
#include "running/process.hpp"
#include "running/watch.hpp"
#include "system/names.hpp"
#include "system/part.hpp"
#include "system/terminal.hpp"

#include <chrono>
#include <cstdio>

namespace {

void say(const Json& message) {
    const std::string bytes = framed(message);
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    std::fflush(stdout);
}

bool next_message(Json& message) {
    uint32_t length = 0;
    std::string bytes(sizeof length, '\0');
    if (std::fread(bytes.data(), 1, sizeof length, stdin) != sizeof length)
        return false;
    std::memcpy(&length, bytes.data(), sizeof length);
    bytes.resize(sizeof length + length);
    return std::fread(bytes.data() + sizeof length, 1, length, stdin) == length &&
           take_message(bytes, message);
}

// As often as the bar is drawn.
void say_share(double share) {
    static std::chrono::steady_clock::time_point said;
    const auto now = std::chrono::steady_clock::now();
    if (now - said < std::chrono::milliseconds(50))
        return;
    said = now;
    say({{"share", share}});
}

} // namespace

void work_for_another() {
    end_with_parent();
    make_binary(stdin);
    make_binary(stdout);
    announce_parts_to([](const std::filesystem::path& part) { say({{"part", text_of(part)}}); });
    tell_shares_to(say_share);
    Json message;
    if (!next_message(message))
        return;
    const Conversion conversion = conversion_of(message);
    while (next_message(message)) {
        expect_work(conversion.stages());
        say(as_json(convert_one(conversion, job_of(message))));
    }
}
