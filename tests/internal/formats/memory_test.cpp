// Readers when memory runs out: at each allocation the right status, nothing leaked, nothing open.
#include "formats/made_elsewhere.hpp"
#include "formats/reader.hpp"
#include "image/memory.hpp"

#include <functional>

using namespace kirvo_test;

namespace {

// Reads with each allocation failing in turn, until one read goes well.
void fail_each_allocation(const std::string& file, uint32_t allocations,
                          const std::function<Read()>& read) {
    ProgressRecorder recorder;
    for (uint32_t n = 1; n <= allocations; ++n) {
        recorder.watch();
        kirvo::fail_allocation(n);
        expect_failure(read(), KIRVO_NO_MEMORY);
        EXPECT_TRUE(recorder.messages().empty());
        EXPECT_FALSE(is_open(file));
    }
    kirvo::fail_allocation(allocations + 1);
    EXPECT_EQ(read().status, KIRVO_OK);
    kirvo::fail_allocation(0);
}

Read read_icon(const char* name, HGLOBAL* mask) {
    Read r;
    r.dib = Dib(IcoGetData(name, 0, &r.width, &r.height, &r.bits, &r.status, mask));
    return r;
}

} // namespace

TEST(OutOfMemory, targa) {
    const TempFile file(".tga", made_elsewhere::targa_top_left);
    fail_each_allocation(file.name(), 1, [&] { return read_targa(file.name()); });
}

TEST(OutOfMemory, raw) {
    Bytes bytes = {'m', 'h', 'w', 'a', 'n', 'h', 0, 4, 0, 3, 0, 2};
    bytes.resize(32 + 18);
    const TempFile file(".raw", bytes);
    fail_each_allocation(file.name(), 1, [&] { return read_raw(file.name()); });
}

TEST(OutOfMemory, q0) {
    const TempFolder folder;
    folder.write("p.IPR", "3 2");
    const std::string name = folder.write("p.q0", rgb_rows(3, 2));
    fail_each_allocation(name, 1, [&] { return read_q0(name); });
}

TEST(OutOfMemory, icon) {
    const TempFile file(".ico", made_elsewhere::icon_24_bits);
    fail_each_allocation(file.name(), 2, [&] { return read_icon(file.name(), nullptr); });
}

TEST(OutOfMemory, icon_with_its_mask) {
    const TempFile file(".ico", made_elsewhere::icon_24_bits);
    fail_each_allocation(file.name(), 3, [&] {
        HGLOBAL mask = nullptr;
        Read r = read_icon(file.name(), &mask);
        EXPECT_EQ(r.status == KIRVO_OK, mask != nullptr);
        const Dib owner(mask);
        return r;
    });
}

TEST(OutOfMemory, is_told_before_a_targa_file_that_is_too_short) {
    Bytes bytes = made_elsewhere::targa_top_left;
    bytes.resize(30);
    const TempFile file(".tga", bytes);
    kirvo::fail_allocation(1);
    expect_failure(read_targa(file.name()), KIRVO_NO_MEMORY);
    expect_failure(read_targa(file.name()), KIRVO_READ_ERROR);
}
