// Two builds of the library in one process. Rows call the one that is in use.
#pragma once

namespace kirvo_bench {

// Ends the program with a message where a file is no such library.
void load_libraries(const char* first, const char* second);
void use_library(int number);

} // namespace kirvo_bench
