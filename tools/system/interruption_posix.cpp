#include "running/bar.hpp"
#include "system/interruption_table.hpp"

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};
int depth = 0; // of Uninterrupted

void on_interrupt(int signal) {
    for (const auto& process : mortal) {
        if (process != 0)
            kill(static_cast<pid_t>(process), SIGKILL);
    }
    for (const auto& process : mortal) {
        if (process != 0)
            waitpid(static_cast<pid_t>(process), nullptr, 0);
    }
    for (size_t i = most_perishable; i-- > 0;) { // a folder was there before what is in it
        const char* name = perishable[i];
        if (name != nullptr && unlink(name) != 0)
            rmdir(name);
    }
    if (bar_is_drawn()) [[maybe_unused]]
        const auto written = write(STDERR_FILENO, "\n", 1);
    raise(signal); // which by now has its usual meaning
}

void change_mask(int how) {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : signals)
        sigaddset(&set, signal);
    sigprocmask(how, &set, nullptr);
}

} // namespace

void clean_up_when_interrupted() {
    for (const int signal : signals) {
        struct sigaction action = {}, before;
        action.sa_handler = on_interrupt;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) // as nohup wants it
            sigaction(signal, &action, nullptr);
    }
}

Uninterrupted::Uninterrupted() {
    if (depth++ == 0)
        change_mask(SIG_BLOCK);
}

Uninterrupted::~Uninterrupted() {
    if (--depth == 0)
        change_mask(SIG_UNBLOCK);
}
