// One mutex around the library lets several threads use it. (Windows compilers have std::mutex too,
// apart from the one that tests this.)
#include <kirvo.h>

//! [locked]
#include <mutex>

std::mutex& kirvo_mutex()
{
    static std::mutex mutex;
    return mutex;
}

// Runs work, which may call several of the library's functions, while no other thread does.
template<typename Work>
auto with_kirvo(Work work)
{
    const std::lock_guard<std::mutex> lock(kirvo_mutex());
    return work();
}

HGLOBAL coarse_jpeg(HGLOBAL dib, int32_t width, int32_t height, uint32_t& length, int32_t& status)
{
    return with_kirvo([&] {
        JpgCodSetQEx(5); // settings belong to the process: set them where they are used
        return JpgCodMainHGLOBAL(dib, 0, 0, width, height, &length, &status);
    });
}
//! [locked]

int main()
{
    int32_t status = 1;
    uint32_t length = 0;
    HGLOBAL dib = Dib24Solid(20, 20, 24, 0x123456, &status);
    HGLOBAL stream = coarse_jpeg(dib, 20, 20, length, status);
    GlobalFree(dib);
    if (stream == nullptr || status != KIRVO_OK || length == 0)
        return 1;
    GlobalFree(stream);
    return 0;
}
