// A JPEG stream gives the same at a level of the processor, which its length chooses, as without.
#include "jpeg.hpp"
#include "simd/cpu.hpp"
#include "structure.hpp"

using namespace kirvo_fuzz;

static void run(Input& input) {
    using kirvo::CpuLevel;
    const Bytes stream = input.rest();
    static constexpr CpuLevel levels[] = {CpuLevel::sse2, CpuLevel::avx2, CpuLevel::avx512};
    kirvo::lower_cpu_level(CpuLevel::scalar);
    const Outcome expected = decode_whole(stream);
    kirvo::lower_cpu_level(levels[stream.size() % 3]);
    require(decode_whole(stream) == expected, "a level gives what scalar code gives");
}

static const Target target("jpeg_levels", run, mutate_jpeg);
