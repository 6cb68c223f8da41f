#include "running/process.hpp"

#include "system/interruption.hpp"

#include <cstdio>
#include <optional>
#include <random>
#include <system_error>
#include <utility>
#include <windows.h>

namespace {

void check(bool good) {
    if (!good)
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
}

class Handle {
  public:
    Handle() = default;
    explicit Handle(HANDLE handle) : handle_(handle) { check(static_cast<bool>(*this)); }
    Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Handle() {
        if (*this)
            CloseHandle(handle_);
    }
    explicit operator bool() const { return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return handle_; }

  private:
    HANDLE handle_ = nullptr;
};

SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};

std::wstring new_pipe_name() {
    std::random_device random;
    wchar_t name[64];
    std::swprintf(name, std::size(name), L"\\\\.\\pipe\\kirvo-%08x%08x", random(), random());
    return name;
}

std::wstring command_line(const std::vector<std::string>& words) {
    std::wstring line = L"kirvo";
    for (const std::string& word : words) // which need no quotes
        line += L' ' + std::wstring(word.begin(), word.end());
    return line;
}

std::wstring this_program() {
    std::wstring name(32768, L'\0');
    name.resize(GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size())));
    return name;
}

Handle start(const std::vector<std::string>& words, const Handle& input, const Handle& output) {
    STARTUPINFOW how = {};
    how.cb = sizeof how;
    how.dwFlags = STARTF_USESTDHANDLES;
    how.hStdInput = input.get();
    how.hStdOutput = output.get();
    how.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION started = {};
    check(CreateProcessW(this_program().c_str(), command_line(words).data(), nullptr, nullptr, TRUE,
                         0, nullptr, nullptr, &how, &started));
    CloseHandle(started.hThread);
    return Handle(started.hProcess);
}

} // namespace

struct Process::Inside {
    Handle to, from, process, arrived;
    std::optional<Mortal> mortal;
    OVERLAPPED reading = {};
    char buffer[1 << 16];
    bool ended = false;

    // Only pipes with a name can be waited for.
    Handle open_results() {
        const std::wstring name = new_pipe_name();
        from = Handle(CreateNamedPipeW(
            name.c_str(),
            PIPE_ACCESS_INBOUND | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
            PIPE_TYPE_BYTE | PIPE_REJECT_REMOTE_CLIENTS, 1, 0, sizeof buffer, 0, nullptr));
        arrived = Handle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        return Handle(
            CreateFileW(name.c_str(), GENERIC_WRITE, 0, &inherited, OPEN_EXISTING, 0, nullptr));
    }

    Handle open_jobs() {
        HANDLE read = nullptr, write = nullptr;
        check(CreatePipe(&read, &write, &inherited, 0));
        to = Handle(write);
        check(SetHandleInformation(write, HANDLE_FLAG_INHERIT, 0));
        return Handle(read);
    }

    // Whatever comes of it, the event tells.
    void begin_reading() {
        reading = {};
        reading.hEvent = arrived.get();
        if (!ReadFile(from.get(), buffer, sizeof buffer, nullptr, &reading) &&
            GetLastError() != ERROR_IO_PENDING)
            SetEvent(arrived.get());
    }
};

Process::Process(const std::vector<std::string>& words) : inside_(new Inside) {
    const Handle results = inside_->open_results(), jobs = inside_->open_jobs();
    inside_->process = start(words, jobs, results);
    inside_->mortal.emplace(reinterpret_cast<std::ptrdiff_t>(inside_->process.get()));
    inside_->begin_reading();
}

Process::~Process() {
    if (!inside_->ended)
        end();
    CancelIo(inside_->from.get());
}

void Process::send(const std::string& bytes) {
    DWORD written = 0;
    WriteFile(inside_->to.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

bool Process::receive(std::string& bytes) {
    DWORD got = 0;
    if (!GetOverlappedResult(inside_->from.get(), &inside_->reading, &got, TRUE) || got == 0)
        return false;
    bytes.append(inside_->buffer, got);
    ResetEvent(inside_->arrived.get());
    inside_->begin_reading();
    return true;
}

std::string Process::end() {
    inside_->to = Handle();
    WaitForSingleObject(inside_->process.get(), INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(inside_->process.get(), &code);
    inside_->ended = true;
    inside_->mortal.reset();
    char text[32];
    std::snprintf(text, sizeof text, code > 255 ? "exit code 0x%lX" : "exit code %lu", code);
    return text;
}

size_t Process::wait_for_any(const std::vector<Process*>& all) {
    std::vector<HANDLE> waiting;
    for (const Process* each : all)
        waiting.push_back(each->inside_->arrived.get());
    const DWORD which =
        WaitForMultipleObjects(static_cast<DWORD>(waiting.size()), waiting.data(), FALSE, INFINITE);
    check(which < waiting.size());
    return which;
}

void end_with_parent() {} // it reads its jobs from a pipe that ends with the other
