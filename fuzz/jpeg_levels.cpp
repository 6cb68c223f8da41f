// A JPEG stream gives the same at every level of the processor.
#include "jpeg.hpp"
#include "simd/cpu.hpp"

using namespace kirvo_fuzz;

static void run(Input& input) {
    using kirvo::CpuLevel;
    const Bytes stream = input.rest();
    kirvo::lower_cpu_level(CpuLevel::scalar);
    const Outcome expected = decode_whole(stream);
    for (const CpuLevel level : {CpuLevel::sse2, CpuLevel::avx2, CpuLevel::avx512}) {
        kirvo::lower_cpu_level(level);
        if (kirvo::cpu_level() == level)
            require(decode_whole(stream) == expected, "a level gives what scalar code gives");
    }
}

static const Target target("jpeg_levels", run);
