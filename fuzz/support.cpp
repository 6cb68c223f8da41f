#include "support.hpp"

#include "image/dib.hpp"
#include "jpeg/session.hpp"
#include "simd/cpu.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// A block that cannot be had is an answer to be tested, not a finding.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
    return "allocator_may_return_null=1:detect_stack_use_after_return=1";
}

namespace kirvo_fuzz {

namespace {

// A header may claim any size; no case works on more than this.
constexpr uint64_t largest_block = 256 * 1024;

int32_t last_percent = -1;

LRESULT receive_progress(HWND, UINT, WPARAM, LPARAM percent) {
    const auto now = static_cast<int32_t>(percent);
    require(now >= 0 && now <= 100, "a percentage is from 0 to 100");
    require(now == 0 || now == 100 || now >= last_percent + 5, "percentages rise by 5 and more");
    last_percent = now;
    return 0;
}

} // namespace

void stand_as_at_first() {
    kirvo::fail_allocation(0);
    kirvo::lower_cpu_level(kirvo::CpuLevel::avx512);
    KirvoSetProcess(nullptr, 0, 0);
    static constexpr int32_t mask3[] = {9, 8, 9, 8, 10, 8, 9, 8, 9};
    static constexpr int32_t mask5[] = {5, 6, 7, 6, 5, 6, 8, 9, 8, 6, 7, 9, 10,
                                        9, 7, 6, 8, 9, 8, 6, 5, 6, 7, 6, 5};
    static const std::vector<int16_t> ones(64, 1);
    SetFilter3x3(1, 2, 1, 2, 4, 2, 1, 2, 1, 16);
    Dib24Mix3X3SetMask(mask3);
    Dib24Mix5X5SetMask(mask5);
    SetKeyColorDib24Add(0);
    JpgCodSetSubsample(4);
    JpgCodSetQEx(4);
    JpgCodSetQtableEx(ones.data(), ones.data(), 64);
    JpgCodSetComment(nullptr, 0);
    JpgDecGetCommentEnable(0);
    JpgDecCommentFree();
}

Target::Target(const char* name, Run run, Mutate mutate) : name_(name), run_(run), mutate_(mutate) {
    all().push_back(this);
}

std::vector<const Target*>& Target::all() {
    static std::vector<const Target*> targets;
    return targets;
}

void Target::run_case(const uint8_t* bytes, size_t size) const {
    static const bool prepared = [] {
        static constexpr KirvoWindowHost host = {receive_progress, nullptr, nullptr, nullptr,
                                                 nullptr};
        KirvoSetWindowHost(&host);
        kirvo::limit_allocation(largest_block);
        return true;
    }();
    require(prepared, "the process is prepared");
    const int descriptors = open_descriptors();

    Input input(bytes, size);
    run_(input);

    stand_as_at_first();
    require(!kirvo::session.busy(), "no encode or decode is left under way");
    const kirvo::BlockCount left = kirvo::count_blocks();
    require(left.locks == 0, "no lock is left");
    require(left.blocks == 0, "no block is left");
    require(open_descriptors() == descriptors, "no file is left open");
}

const char* current_case = "the input";

void require(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "%s: not so: %s\n", current_case, what);
    std::abort();
}

uint32_t wanted_failure = 0;

uint32_t failing_allocation(uint32_t choice, Input& input) {
    uint32_t failing = 0;
    if (choice >= 248) {
        const uint32_t late = input.below(64);
        failing = 1 + late * late / 64; // early ones rather, most cases have few
    }
    return wanted_failure != 0 ? wanted_failure : failing;
}

uint32_t draw_surroundings(Input& input) {
    const uint32_t failing = failing_allocation(input.below(256), input);
    kirvo::fail_allocation(failing);
    const uint32_t rest = input.below(8);
    kirvo::lower_cpu_level(static_cast<kirvo::CpuLevel>(3 - rest % 4));
    last_percent = -1;
    if (rest >= 4)
        KirvoSetProcess(reinterpret_cast<HWND>(&last_percent), 1, 1);
    return failing;
}

kirvo::OwnedBlock block_of(const Bytes& bytes) {
    kirvo::OwnedBlock block(GlobalAlloc(GHND, bytes.size()));
    if (!bytes.empty())
        std::memcpy(kirvo::LockedBlock(block.get()).data(), bytes.data(), bytes.size());
    return block;
}

Bytes bytes_of(HGLOBAL block) {
    const kirvo::LockedBlock locked(block);
    return {locked.data(), locked.data() + locked.size()};
}

void look_at(HGLOBAL image) {
    if (image == nullptr)
        return;
    BITMAPINFOHEADER header = kirvo::LockedDib(image).header;
    header.biWidth = std::max(header.biWidth, 1);
    header.biHeight = std::max(header.biHeight, 1);
    const int32_t right = header.biWidth - 1, bottom = header.biHeight - 1;
    for (const int32_t y : {0, 1, bottom / 3, bottom / 2, bottom - 1, bottom}) {
        for (const int32_t x : {0, 1, right / 3, right / 2, right - 1, right}) {
            uint32_t colour;
            DibGetPixelColor(image, x, y, &colour);
        }
    }
}

void check_answer(HGLOBAL image, const int32_t& status) {
    const kirvo::OwnedBlock owner(image);
    require(owner ? status == KIRVO_OK : status < 0, "an image or a code");
    look_at(image);
}

} // namespace kirvo_fuzz
