// Baseline files are turned by the room's own code, on systems without another library too.
#include "files/opened.hpp"

#include "jpeg_coefficients.hpp"

using namespace kirvo_test;

TEST(Turning, a_baseline_file_needs_no_other_library) {
    for (uint32_t bits : {24u, 8u}) {
        const Picture picture(48, 32, bits);
        const Bytes bytes = save(picture.dib, as(KIRVO_FILES_JPEG)).bytes;
        const kirvo_files::Bytes in(bytes.data(), bytes.size());
        kirvo_files::Known known;
        kirvo_files::JpegHeaders headers;
        ASSERT_EQ(kirvo_files::read_jpeg_headers(in, known, headers), KIRVO_FILES_OK);
        kirvo_files::Buffer out;
        const kirvo_files::TurnPlan plan = {true, false, false, 32, 48};
        ASSERT_EQ(kirvo_files::turn_coefficients(in, headers, plan, out), KIRVO_FILES_OK);
        const Opened turned(Bytes(out.data(), out.data() + out.size()));
        ASSERT_EQ(turned.status, KIRVO_FILES_OK);
        EXPECT_EQ(turned.about.width, 32u);
        EXPECT_EQ(turned.about.height, 48u);
    }
}
