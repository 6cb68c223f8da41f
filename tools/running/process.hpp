// The program itself, started once more, at the other end of two pipes.
#pragma once

#include <memory>
#include <string>
#include <vector>

class Process {
  public:
    // Starts the program with these words. Throws std::system_error.
    explicit Process(const std::vector<std::string>& words);
    // Closes its standard input, at which it ends, and waits for that.
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    // Writes to its standard input; a process that has ended takes nothing.
    void send(const std::string& bytes);
    // Appends what it has written; false once it has ended.
    bool receive(std::string& bytes);
    // "killed by signal 9"
    std::string end();

    // Waits until one of them has something to receive, or has ended; answers which.
    static size_t wait_for_any(const std::vector<Process*>& all);

  private:
    struct Inside;
    std::unique_ptr<Inside> inside_;
};

// Called at the start of such a process: it ends with the one that started it.
void end_with_parent();
