// KirvoFiles' EXIF: read, brought up to date, taken out of a TIFF file and put into one.
#include "files.hpp"
#include "structure.hpp"

#include "exif.hpp"

using namespace kirvo_fuzz;

static void read(kirvo_files::Bytes bytes) {
    kirvo_files::Known known;
    kirvo_files::read_exif(known, bytes);
    require(known.numbers.orientation >= 1 && known.numbers.orientation <= 8,
            "an orientation is from 1 to 8");
    kirvo_files::profile_name(bytes);
}

static void bring_up_to_date(kirvo_files::Bytes bytes, bool upright) {
    kirvo_files::Buffer changed;
    if (!changed.append(bytes))
        return;
    kirvo_files::update_exif(changed, 640, 480, upright);
    require(changed.size() <= bytes.size(), "bringing up to date makes nothing longer");
}

static void take_out_and_put_in(kirvo_files::Bytes bytes) {
    const kirvo_files::Tiff tiff(bytes);
    kirvo_files::Buffer taken, file;
    if (tiff.good() && kirvo_files::exif_of_tiff(bytes, tiff.first_directory(), taken) &&
        file.append("II*\0\x08\0\0\0\0\0\0\0\0\0", 14))
        kirvo_files::add_to_tiff(file, taken.bytes(), {}, {});
}

// Read, and one of the other two as the input chooses: both would take half as long again.
static void run(Input& input) {
    const uint32_t failing = failing_allocation(input.below(256), input);
    const uint32_t choice = input.below(4);
    const kirvo_fuzz::Bytes rest = input.rest();
    const kirvo_files::Bytes bytes(rest.data(), rest.size());
    kirvo_files::limit_allocation(256 * 1024);
    kirvo_files::fail_allocation(failing);
    read(bytes);
    if (choice / 2 == 1)
        bring_up_to_date(bytes, choice % 2 == 0);
    else
        take_out_and_put_in(bytes);
    kirvo_files::fail_allocation(0);
}

static const Target target("files_exif", run, mutate_tiff);
