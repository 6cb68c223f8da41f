#include "worker.hpp"

#include <algorithm>
#include <memory>
#include <new>
#include <stdexcept>

namespace {

struct Result {
    Worker::Done done;
    std::string error;
};

// What went wrong, in words; empty where nothing did.
std::string attempted(const Worker::Work& work) {
    try {
        work();
        return "";
    } catch (const std::bad_alloc&) {
        return "There is not enough memory";
    } catch (const std::exception& error) {
        return error.what();
    }
}

} // namespace

void Worker::start(HWND window, UINT message) {
    window_ = window;
    message_ = message;
    thread_ = CreateThread(nullptr, 0, run, this, 0, nullptr);
}

void Worker::stop() {
    AcquireSRWLockExclusive(&lock_);
    stopping_ = true;
    waiting_.clear();
    ReleaseSRWLockExclusive(&lock_);
    WakeConditionVariable(&changed_);
    // Work may be telling the window how far it is, and would wait for an answer; or it may begin to
    // wait for a file just after it has been told not to.
    constexpr DWORD pause = 50;
    while (MsgWaitForMultipleObjects(1, &thread_, FALSE, pause, QS_SENDMESSAGE) != WAIT_OBJECT_0) {
        CancelSynchronousIo(thread_);
        MSG message;
        PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
    }
    CloseHandle(thread_);
}

void Worker::post(Kind kind, Work work, Done done) {
    AcquireSRWLockExclusive(&lock_);
    if (kind != Kind::picture)
        std::erase_if(waiting_, [=](const Job& job) { return job.kind == kind; });
    waiting_.push_back({kind, std::move(work), std::move(done)});
    ReleaseSRWLockExclusive(&lock_);
    WakeConditionVariable(&changed_);
}

void Worker::finish(LPARAM parameter) {
    const std::unique_ptr<Result> result(reinterpret_cast<Result*>(parameter));
    result->done(result->error);
}

DWORD WINAPI Worker::run(void* self) {
    static_cast<Worker*>(self)->loop();
    return 0;
}

void Worker::loop() {
    for (;;) {
        AcquireSRWLockExclusive(&lock_);
        while (waiting_.empty() && !stopping_)
            SleepConditionVariableSRW(&changed_, &lock_, INFINITE, 0);
        if (stopping_) {
            ReleaseSRWLockExclusive(&lock_);
            return;
        }
        Job job = std::move(waiting_.front());
        waiting_.pop_front();
        ReleaseSRWLockExclusive(&lock_);

        AcquireSRWLockExclusive(&library_);
        const std::string error = attempted(job.work);
        ReleaseSRWLockExclusive(&library_);
        send_back(std::move(job.done), error);
    }
}

void Worker::tell(std::function<void()> what) {
    send_back([what = std::move(what)](const std::string&) { what(); }, "");
}

void Worker::send_back(Done done, const std::string& error) {
    auto result = std::make_unique<Result>(Result{std::move(done), error});
    if (PostMessageW(window_, message_, 0, reinterpret_cast<LPARAM>(result.get())))
        result.release(); // which finish() takes
}

Worker::Turn::Turn(Worker& worker, Wait wait)
    : worker_(worker), mine_(TryAcquireSRWLockExclusive(&worker.library_)) {
    if (mine_ || wait == Wait::no)
        return;
    AcquireSRWLockExclusive(&worker.library_);
    mine_ = true;
}

Worker::Turn::~Turn() {
    if (mine_)
        ReleaseSRWLockExclusive(&worker_.library_);
}
