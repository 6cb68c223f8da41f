#include "system/interruption_table.hpp"
#include "system/terminal.hpp"

#include <windows.h>

namespace {

// The handler runs in a thread of its own. It keeps this lock until the program's end, so that no
// file changes its name under its hands.
SRWLOCK no_interruption = SRWLOCK_INIT;
int depth = 0;

void end_process(HANDLE process) {
    TerminateProcess(process, 130);
    WaitForSingleObject(process, 3000);
}

void remove(const wchar_t* name) {
    // While the other thread is still writing; it closes the file soon.
    for (int attempt = 0; attempt < 300; ++attempt) {
        if (DeleteFileW(name) || GetLastError() != ERROR_SHARING_VIOLATION)
            break;
        Sleep(10);
    }
    RemoveDirectoryW(name);
}

BOOL WINAPI on_interrupt(DWORD) {
    AcquireSRWLockExclusive(&no_interruption);
    for (const auto& process : mortal) {
        if (process != 0)
            end_process(reinterpret_cast<HANDLE>(process.load()));
    }
    for (size_t i = most_perishable; i-- > 0;) { // a folder was there before what is in it
        const wchar_t* name = perishable[i];
        if (name != nullptr)
            remove(name);
    }
    restore_console();
    return TerminateProcess(GetCurrentProcess(), 130);
}

} // namespace

void clean_up_when_interrupted() { SetConsoleCtrlHandler(on_interrupt, TRUE); }

Uninterrupted::Uninterrupted() {
    if (depth++ == 0)
        AcquireSRWLockExclusive(&no_interruption);
}

Uninterrupted::~Uninterrupted() {
    if (--depth == 0)
        ReleaseSRWLockExclusive(&no_interruption);
}
