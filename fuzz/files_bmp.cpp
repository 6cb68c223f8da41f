// KirvoFiles' own reader of BMP files.
#include "files.hpp"
#include "structure.hpp"

using namespace kirvo_fuzz;

static void run(Input& input) { read_with(input, kirvo_files::read_bmp); }

static const Target target("files_bmp", run, mutate_bmp);
