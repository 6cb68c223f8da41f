// The system's files, in a folder of the process's own.
#include "support.hpp"

#include "support/temp_folder.hpp"

#include <cstdio>
#include <unistd.h>

namespace kirvo_fuzz {

File::File(const char* title) {
    static const kirvo_test::TempFolder folder;
    name_ = folder.path(title);
}

void File::write(const Bytes& bytes) const {
    std::FILE* file = std::fopen(name(), "wb");
    require(file != nullptr, "a file can be written");
    if (!bytes.empty())
        std::fwrite(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
}

// The lowest that is free.
int open_descriptors() {
    const int descriptor = dup(STDERR_FILENO);
    close(descriptor);
    return descriptor;
}

} // namespace kirvo_fuzz
