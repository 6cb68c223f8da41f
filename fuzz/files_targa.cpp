// KirvoFiles' own reader of Targa files.
#include "files.hpp"
#include "structure.hpp"

using namespace kirvo_fuzz;

static void run(Input& input) { read_with(input, kirvo_files::read_targa); }

static const Target target("files_targa", run, mutate_targa);
