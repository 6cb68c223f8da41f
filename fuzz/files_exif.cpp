// KirvoFiles' EXIF: read, brought up to date, taken out of a TIFF file and put into one.
#include "files.hpp"
#include "structure.hpp"

#include "exif.hpp"

using namespace kirvo_fuzz;

static void run(Input& input) {
    const uint32_t failing = failing_allocation(input.below(256), input);
    const bool upright = input.below(2) == 0;
    const kirvo_fuzz::Bytes rest = input.rest();
    const kirvo_files::Bytes bytes(rest.data(), rest.size());
    kirvo_files::limit_allocation(256 * 1024);
    kirvo_files::fail_allocation(failing);
    {
        kirvo_files::Known known;
        kirvo_files::read_exif(known, bytes);
        require(known.numbers.orientation >= 1 && known.numbers.orientation <= 8,
                "an orientation is from 1 to 8");
        kirvo_files::profile_name(bytes);
        kirvo_files::Buffer changed, taken, file;
        if (changed.append(bytes)) {
            kirvo_files::update_exif(changed, 640, 480, upright);
            require(changed.size() <= rest.size(), "bringing up to date makes nothing longer");
        }
        const kirvo_files::Tiff tiff(bytes);
        if (tiff.good() && kirvo_files::exif_of_tiff(bytes, tiff.first_directory(), taken) &&
            file.append("II*\0\x08\0\0\0\0\0\0\0\0\0", 14))
            kirvo_files::add_to_tiff(file, taken.bytes(), {}, {});
    }
    kirvo_files::fail_allocation(0);
}

static const Target target("files_exif", run, mutate_tiff);
