#include "running/process.hpp"

#include "system/interruption.hpp"

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#ifdef __linux__
#include <csignal>
#include <sys/prctl.h>
#endif

extern char** environ;

namespace {

constexpr const char* program = "/proc/self/exe";

void check(int error) {
    if (error != 0)
        throw std::system_error(error, std::generic_category());
}

struct Pipe {
    Pipe() { check(pipe2(ends, O_CLOEXEC) == 0 ? 0 : errno); }
    ~Pipe() {
        for (const int end : ends) {
            if (end >= 0)
                close(end);
        }
    }
    int take(int which) { return std::exchange(ends[which], -1); }

    int ends[2]; // to read, to write
};

pid_t start(const std::vector<std::string>& words, int input, int output) {
    std::vector<char*> arguments = {const_cast<char*>("kirvo")};
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    check(posix_spawn_file_actions_init(&actions));
    posix_spawn_file_actions_adddup2(&actions, input, 0);
    posix_spawn_file_actions_adddup2(&actions, output, 1);
    pid_t process = 0;
    const int error = posix_spawn(&process, program, &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    check(error);
    return process;
}

} // namespace

struct Process::Inside {
    Pipe to, from;
    pid_t process = 0;
    std::optional<Mortal> mortal;
    bool ended = false;
};

Process::Process(const std::vector<std::string>& words) : inside_(new Inside) {
    inside_->process = start(words, inside_->to.ends[0], inside_->from.ends[1]);
    inside_->mortal.emplace(inside_->process);
    close(inside_->to.take(0));
    close(inside_->from.take(1));
}

Process::~Process() {
    if (!inside_->ended)
        end();
}

void Process::send(const std::string& bytes) {
    for (size_t sent = 0; sent < bytes.size();) {
        // A signal of the pipe's own would end this program, not the other.
        const Uninterrupted now;
        const ssize_t written =
            write(inside_->to.ends[1], bytes.data() + sent, bytes.size() - sent);
        if (written < 0 && errno != EINTR) {
            const timespec at_once = {};
            sigset_t set;
            sigemptyset(&set);
            sigaddset(&set, SIGPIPE);
            sigtimedwait(&set, nullptr, &at_once);
            return; // receive() tells that it has ended
        }
        sent += static_cast<size_t>(std::max<ssize_t>(written, 0));
    }
}

bool Process::receive(std::string& bytes) {
    char buffer[1 << 16];
    const ssize_t got = read(inside_->from.ends[0], buffer, sizeof buffer);
    if (got > 0)
        bytes.append(buffer, static_cast<size_t>(got));
    return got > 0 || (got < 0 && errno == EINTR);
}

std::string Process::end() {
    close(inside_->to.take(1));
    int status = 0;
    while (waitpid(inside_->process, &status, 0) < 0 && errno == EINTR) {
    }
    inside_->ended = true;
    inside_->mortal.reset();
    return WIFSIGNALED(status) ? "killed by signal " + std::to_string(WTERMSIG(status))
                               : "exit code " + std::to_string(WEXITSTATUS(status));
}

size_t Process::wait_for_any(const std::vector<Process*>& all) {
    std::vector<pollfd> waiting;
    for (const Process* each : all)
        waiting.push_back({each->inside_->from.ends[0], POLLIN, 0});
    while (poll(waiting.data(), waiting.size(), -1) < 0)
        check(errno == EINTR ? 0 : errno);
    size_t which = 0;
    while (waiting[which].revents == 0)
        ++which;
    return which;
}

void end_with_parent() {
#ifdef __linux__
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() == 1) // it has ended already
        raise(SIGTERM);
#endif
}
