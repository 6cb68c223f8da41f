#include "temporary.hpp"

#include "kirvo.h"
#include "watch.hpp"

#include <atomic>
#include <csignal>

#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace {

// The names that an interruption deletes; whoever handles it can neither lock nor allocate.
constexpr size_t most_files = 8;
std::atomic<const char*> names[most_files];

#ifdef _WIN32

// The handler runs in a thread of its own. It keeps this lock until the program's end, so that no
// file changes its name under its hands.
SRWLOCK renaming = SRWLOCK_INIT;

class Renaming {
  public:
    Renaming() { AcquireSRWLockExclusive(&renaming); }
    ~Renaming() { ReleaseSRWLockExclusive(&renaming); }
};

BOOL WINAPI on_interrupt(DWORD) {
    AcquireSRWLockExclusive(&renaming);
    for (const char* name : names) {
        // While the other thread is still writing; it closes the file soon.
        for (int attempt = 0; name != nullptr && attempt < 300; ++attempt) {
            if (DeleteFileA(name) || GetLastError() != ERROR_SHARING_VIOLATION)
                break;
            Sleep(10);
        }
    }
    return TerminateProcess(GetCurrentProcess(), 130);
}

int process_number() {
    return _getpid();
}

#else

struct Renaming {
    Renaming() {}
};

void on_interrupt(int signal) {
    for (const char* name : names) {
        if (name != nullptr)
            unlink(name);
    }
    if (bar_is_drawn()) [[maybe_unused]]
        const auto written = write(STDERR_FILENO, "\n", 1);
    raise(signal); // which by now has its usual meaning
}

int process_number() {
    return getpid();
}

#endif

} // namespace

#ifdef _WIN32

fs::path path_of(const std::string& text) {
    std::wstring wide(text.size(), L'\0');
    wide.resize(static_cast<size_t>(MultiByteToWideChar(CP_ACP, 0, text.data(),
                                                        static_cast<int>(text.size()), wide.data(),
                                                        static_cast<int>(wide.size()))));
    return wide;
}

std::string text_of(const fs::path& path) {
    const std::wstring& wide = path.native();
    std::string text(2 * wide.size(), '\0');
    text.resize(static_cast<size_t>(
        WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(wide.size()), text.data(),
                            static_cast<int>(text.size()), nullptr, nullptr)));
    return text;
}

void clean_up_when_interrupted() {
    SetConsoleCtrlHandler(on_interrupt, TRUE);
}

#else

fs::path path_of(const std::string& text) {
    return text;
}

std::string text_of(const fs::path& path) {
    return path.native();
}

void clean_up_when_interrupted() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        struct sigaction action = {}, before;
        action.sa_handler = on_interrupt;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) // as nohup wants it
            sigaction(signal, &action, nullptr);
    }
}

#endif

TemporaryFile::TemporaryFile(const fs::path& folder) : slot_(0) {
    static int count = 0;
    name_ = text_of(folder / ("kirvo-" + std::to_string(process_number()) + "-" +
                              std::to_string(++count) + ".part"));
    while (slot_ + 1 < most_files && names[slot_] != nullptr)
        ++slot_;
    names[slot_] = name_.c_str();
}

TemporaryFile::~TemporaryFile() {
    const Renaming lock;
    std::error_code error;
    fs::remove(path_of(name_), error);
    names[slot_] = nullptr;
}

std::error_code TemporaryFile::rename(const fs::path& target) {
    const Renaming lock;
    std::error_code error;
    fs::rename(path_of(name_), target, error);
    return error;
}
