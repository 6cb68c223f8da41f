// The one thread that calls the library: Kirvo.dll takes one call at a time, and the window stays
// alive meanwhile.
#pragma once

#include <windows.h>

#include <deque>
#include <functional>
#include <string>

class Worker {
  public:
    using Work = std::function<void()>;
    using Done = std::function<void(const std::string& error)>; // empty after success

    enum class Kind { picture, preview, smooth, counts };

    // The window gets `message` for each piece of work that is over, and answers with finish().
    void start(HWND window, UINT message);
    // Abandons what waits for a file.
    void stop();

    // Calls `work` in the thread, then `done` in the window's. What waits and is of the same kind
    // is dropped: only the last preview is of interest. Work of Kind::picture is never dropped.
    void post(Kind kind, Work work, Done done);
    // From within work: has the window's thread call this.
    void tell(std::function<void()> what);
    static void finish(LPARAM parameter);

    // For calls of the window's own thread, while no work is running. Who waits for it does so for a
    // preview or the like: work on the picture tells the window how far it is, and would wait too.
    class Turn {
      public:
        enum class Wait { no, yes };
        explicit Turn(Worker& worker, Wait wait = Wait::no);
        ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;
        explicit operator bool() const { return mine_; }

      private:
        Worker& worker_;
        bool mine_;
    };

    HANDLE thread() const { return thread_; }

  private:
    struct Job {
        Kind kind;
        Work work;
        Done done;
    };
    static DWORD WINAPI run(void* self);
    void loop();
    void send_back(Done done, const std::string& error);

    HWND window_ = nullptr;
    UINT message_ = 0;
    HANDLE thread_ = nullptr;
    bool stopping_ = false;
    std::deque<Job> waiting_;
    SRWLOCK lock_ = SRWLOCK_INIT;    // of what waits
    SRWLOCK library_ = SRWLOCK_INIT; // held while the library is called
    CONDITION_VARIABLE changed_ = CONDITION_VARIABLE_INIT;
};
