// Any exports in any order, with hostile images and arguments (support/calls.hpp). What they answer
// is documented, and the same at a level of the processor as without.
#include "jpeg.hpp"
#include "simd/cpu.hpp"
#include "structure.hpp"

#include <algorithm>
#include <cstdio>

using namespace kirvo_fuzz;
using kirvo_test::Call;
using kirvo_test::Export;

namespace {

// Of a picture of 20 x 20 pixels, in colour and in grey.
std::vector<Bytes> make_streams() {
    std::vector<Bytes> streams;
    for (const bool grey : {false, true}) {
        const kirvo::OwnedBlock image(DibMemAllocEx(20, 20, 8));
        {
            const kirvo::LockedBlock block(image.get());
            for (size_t i = 40; i < block.size(); ++i)
                block.data()[i] = static_cast<uint8_t>(i * i >> 3);
        }
        uint32_t length = 0;
        int32_t status;
        const kirvo::OwnedBlock stream(
            grey ? JpgCodMainHGLOBAL_M(image.get(), 0, 0, 20, 20, 0, &length, &status)
                 : JpgCodMainHGLOBAL(image.get(), 0, 0, 20, 20, &length, &status));
        streams.push_back(bytes_of(stream.get()));
        streams.back().resize(length);
    }
    return streams;
}

// What calls have answered and what they have left in blocks.
struct Answers {
    std::vector<int32_t> codes;
    std::vector<Bytes> blocks;

    bool operator==(const Answers&) const = default;
};

void check(const Call& call) {
    const std::string problem = call.problem();
    if (!problem.empty())
        std::fprintf(stderr, "%s gives %d\n", call.text().c_str(), call.status());
    require(problem.empty(), problem.c_str());
}

// May an allocation fail, in any of the calls, the answers are none.
Answers make_calls(Input input, bool scalar) {
    static const File in("in.jpg"), out("out");
    stand_as_at_first();
    reset_decoder();
    JpgDecGetCommentEnable(0);
    static const std::vector<Bytes> streams = make_streams();
    in.write(streams[0]);
    out.write({});
    kirvo_test::Pool pool;
    pool.streams = streams;
    pool.files_read = {in.name(), out.name(), "/", "/missing"};
    pool.files_written = {out.name(), "/dev/full", "/"};
    pool.windows = {reinterpret_cast<HWND>(&pool)};

    const bool may_fail = draw_surroundings(input) != 0;
    if (scalar)
        kirvo::lower_cpu_level(kirvo::CpuLevel::scalar);
    Answers answers;
    for (uint32_t left = input.below(6) + 1; left != 0; --left) {
        const auto all = kirvo_test::exports();
        Call call(all[input.below(static_cast<uint32_t>(all.size()))], pool);
        call.draw(input);
        call.make();
        check(call);
        answers.codes.push_back(call.status());
    }
    kirvo::fail_allocation(0);
    for (HGLOBAL block : pool.handles()) {
        look_at(block);
        answers.blocks.push_back(bytes_of(block));
    }
    return may_fail ? Answers{} : answers;
}

// Calls are removed, doubled, exchanged, and other functions called with the same bytes. Where they
// begin is found by drawing them; what earlier ones make is not there then, which matters rarely.
void mutate_calls(Bytes& bytes, Random& random) {
    Input input(bytes.data(), bytes.size());
    draw_surroundings(input);
    stand_as_at_first();
    const auto all = kirvo_test::exports();
    const auto all_count = static_cast<uint32_t>(all.size());
    const size_t count_at = input.left() - std::min<size_t>(input.left(), 1);
    const uint32_t count = input.below(6) + 1;
    std::vector<size_t> places = {input.left()};
    kirvo_test::Pool pool;
    for (uint32_t left = count; left != 0 && input.left() != 0; --left) {
        Call call(all[input.below(all_count)], pool);
        call.draw(input);
        places.push_back(input.left());
    }
    if (random.once_in(3)) {
        const size_t function_at =
            places[static_cast<size_t>(random.between(0, static_cast<int32_t>(places.size()) - 1))];
        if (function_at != 0)
            bytes[function_at - 1] =
                static_cast<uint8_t>(random.between(0, static_cast<int32_t>(all_count) - 1));
    } else if (random.once_in(4)) {
        if (count_at < bytes.size())
            bytes[count_at] = 5; // the most
    } else {
        std::reverse(places.begin(), places.end());
        mutate_parts(bytes, places, random);
    }
}

} // namespace

static void run(Input& input) {
    require(make_calls(input, true) == make_calls(input, false),
            "a level gives what scalar code gives");
}

static const Target target("operations", run, mutate_calls);
