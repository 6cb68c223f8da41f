// Every export with images whose headers lie: each gives its result or a code that its
// documentation names, touches no byte outside a block, and leaves neither a lock nor a block.

#include "safety/safety.hpp"

using namespace kirvo_test;

namespace {

using Bytes = std::vector<uint8_t>;

class LyingHeaders : public SafetyTest {
  protected:
    static void TearDownTestSuite() {
        report("lying headers",
               {{"images", images}, {"calls", calls}, {"with_success", succeeded}});
    }

    // A call that works but for its first image, which is this one.
    bool check_image(const Plan& plan, size_t image, const Bytes& bytes) {
        bool good = false;
        {
            Pool pool;
            Call call = plan.prepare(pool, samples());
            call.argument(image).pointer = pool.add(bytes);
            ++images;
            good = check(call, plan.name() + ": ");
            expect_unlocked(pool);
        }
        expect_nothing_left();
        return good && !HasFailure();
    }

    static inline uint64_t images = 0;
};

std::vector<size_t> image_parameters(const Export& what) {
    std::vector<size_t> found;
    for (size_t i = 0; i < what.parameters.size(); ++i) {
        if (what.parameters[i].kind == Kind::image)
            found.push_back(i);
    }
    return found;
}

// Values for each field of the header.
struct Lie {
    size_t offset;
    size_t bytes;
    std::vector<uint32_t> values;
};

const Lie lies[] = {
    {0,
     4,
     {0, 1, 4, 12, 16, 39, 41, 44, 52, 64, 108, 124, 1000, 65536, INT32_MAX, 0x80000000, 0xFFFFFFD8,
      0xFFFFFFFF}},
    {4,
     4,
     {0, 1, 2, 20, 22, 65535, 65536, 0x1FFFFFFF, 0x20000000, 0x2AAAAAAB, 0x55555556, 0x40000000,
      INT32_MAX, 0x80000000, 0xFFFFFFFF}},
    {8,
     4,
     {0, 1, 2, 12, 14, 65535, 65536, 0x1FFFFFFF, 0x20000000, 0x40000000, INT32_MAX, 0x80000000,
      0xFFFFFFFF, 0xFFFFFFF3}},
    {12, 2, {0, 2, 65535}},
    {14, 2, {0, 1, 2, 4, 8, 15, 16, 24, 25, 32, 33, 48, 64, 255, 256, 264, 280, 32768, 65535}},
    {16, 4, {0, 1, 2, 3, 4, 6, 0xFFFFFFFF}},
    {20, 4, {0, 1, INT32_MAX, 0xFFFFFFFF}},
    {32,
     4,
     {1, 2, 3, 15, 16, 17, 255, 256, 257, 16383, 16384, 65535, 65536, 65537, 65792, 0x40000000,
      0x7FFFFFFF, 0xFFFFFFFF}},
    // Masks of 16 and 32 bits, or the first colours or pixels.
    {40, 4, {0, 1, 0x8000, 0xFF, 0xFF00, 0x55555555, 0x80000000, 0xFFFFFFFF, 0xF00F, 0x7F80}},
    {44, 4, {0, 1, 0x8000, 0xFF, 0xF800, 0x55555555, 0x80000000, 0xFFFFFFFF, 0xF00F, 0x7F80}},
    {48, 4, {0, 1, 0x8000, 0xFF, 0xFF00, 0x55555555, 0x80000000, 0xFFFFFFFF, 0xF00F, 0x7F80}},
};

} // namespace

TEST_P(LyingHeaders, one_field) {
    for (const Plan& plan : plans_for(*GetParam(), samples(), true)) {
        for (const size_t image : image_parameters(*plan.what)) {
            for (const Lie& lie : lies) {
                for (const uint32_t value : lie.values) {
                    Bytes bytes = plain_image(plan.bits);
                    std::memcpy(bytes.data() + lie.offset, &value, lie.bytes);
                    if (!check_image(plan, image, bytes))
                        return;
                }
            }
        }
    }
}

TEST_P(LyingHeaders, cut_short) {
    for (Plan plan : plans_for(*GetParam(), samples(), true)) {
        plan.whole = true; // the last byte matters
        const Bytes whole = plain_image(plan.bits);
        for (const size_t image : image_parameters(*plan.what)) {
            for (size_t size = 0; size < whole.size(); ++size) {
                const bool interesting = size <= 60 || size + 9 >= whole.size() || size % 97 == 0 ||
                                         (plan.bits <= 8 && size % 64 == 40);
                if (interesting &&
                    !check_image(plan, image, Bytes(whole.data(), whole.data() + size)))
                    return;
            }
        }
    }
}

TEST_P(LyingHeaders, handles_that_are_none) {
    for (const Plan& plan : plans_for(*GetParam(), samples(), true)) {
        for (const size_t image : image_parameters(*plan.what)) {
            Pool pool;
            HGLOBAL const freed = pool.add(plain_image(plan.bits));
            pool.free(freed);
            for (const uintptr_t invented : {uintptr_t{0}, uintptr_t{1}, uintptr_t{0xFFF8},
                                             reinterpret_cast<uintptr_t>(freed), ~uintptr_t{0}}) {
                Call call = plan.prepare(pool, samples());
                call.argument(image).pointer = reinterpret_cast<void*>(invented);
                if (!check(call, plan.name() + ": "))
                    return;
                end_codec_operations();
            }
            expect_unlocked(pool);
        }
        expect_nothing_left();
    }
}

TEST_P(LyingHeaders, anything_at_all) {
    const Export& what = *GetParam();
    RandomChoices choices(static_cast<uint64_t>(&what - exports().data()));
    for (int i = 0; i < 2000 && !HasFailure(); ++i) {
        {
            Pool pool;
            pool.files_read = samples().all_files();
            pool.files_written = samples().all_targets();
            pool.streams = {samples().stream()};
            Call call(what, pool);
            call.draw(choices);
            images += pool.handles().size();
            check(call);
            expect_unlocked(pool);
        }
        expect_nothing_left();
    }
}

INSTANTIATE_TEST_SUITE_P(Exports, LyingHeaders, testing::ValuesIn(all_exports()), test_name);
