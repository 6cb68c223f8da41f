// Whole streams at every level of the processor.
#include "internal/cpu_levels.hpp"
#include "jpeg/encoding.hpp"

using namespace kirvo_test;

TEST(EncodeLevels, EveryLevelWritesTheReferenceStream) {
    for (uint64_t seed = 0; seed < 12; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Dib dib = make_random_dib({random.between(1, 90), random.between(1, 40), 24}, random);
        ReferenceJob job = colour_job(dib, whole(dib));
        job.mode = random.pick({1, 2, 4});
        job.level = random.between(1, 5);
        const std::vector<uint8_t> expected = reference_stream(job);
        at_every_cpu_level([&](kirvo::CpuLevel) {
            reset_encoder();
            JpgCodSetSubsample(job.mode);
            JpgCodSetQEx(job.level);
            ASSERT_EQ(encode(dib, whole(dib)), expected);
        });
    }
    reset_encoder();
}
