// KirvoFiles' own reader of icons and cursors.
#include "files.hpp"
#include "structure.hpp"

using namespace kirvo_fuzz;

static void run(Input& input) { read_with(input, kirvo_files::read_icon); }

static const Target target("files_icon", run, mutate_icon);
