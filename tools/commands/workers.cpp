#include "commands/workers.hpp"

#include "commands/messages.hpp"
#include "running/bar.hpp"
#include "running/process.hpp"
#include "system/interruption.hpp"
#include "system/names.hpp"

#include <filesystem>
#include <map>

namespace fs = std::filesystem;

namespace {

struct Worker {
    Process process;
    std::optional<size_t> job;      // which it works on
    double share = 0;               // of the job
    std::string arrived;            // the beginning of a message
    std::optional<Perishable> part; // the file that it writes

    explicit Worker(const Json& conversion) : process({"worker"}) {
        process.send(framed(conversion));
    }
};

class Sharing {
  public:
    Sharing(const Conversion& conversion, const std::vector<Job>& jobs, const Listener& listener)
        : conversion_(as_json(conversion)), jobs_(jobs), listener_(listener) {}

    void run(size_t count) {
        start_bar();
        while (workers_.size() < std::min(count, jobs_.size()))
            add_worker();
        while (told_ < jobs_.size())
            listen();
        clear_bar();
    }

  private:
    void add_worker() {
        workers_.push_back(std::make_unique<Worker>(conversion_));
        give_job(*workers_.back());
    }

    void give_job(Worker& worker) {
        worker.job.reset();
        worker.share = 0;
        if (next_ == jobs_.size())
            return;
        worker.job = next_;
        worker.process.send(framed(as_json(jobs_[next_++])));
    }

    void listen() {
        std::vector<Process*> all;
        for (const auto& worker : workers_)
            all.push_back(&worker->process);
        const size_t which = Process::wait_for_any(all);
        Worker& worker = *workers_[which];
        const bool lives = worker.process.receive(worker.arrived);
        for (Json message; take_message(worker.arrived, message);)
            hear(worker, message);
        if (!lives)
            bury(which);
        show_progress();
    }

    void hear(Worker& worker, const Json& message) {
        if (message.contains("share")) {
            worker.share = message["share"];
        } else if (message.contains("part")) {
            worker.part.reset();
            worker.part.emplace(path_of(message["part"].get<std::string>()));
        } else {
            worker.part.reset();
            finish(*worker.job, outcome_of(message));
            give_job(worker);
        }
    }

    // What it has begun to write goes with it.
    void bury(size_t which) {
        const auto worker = std::move(workers_[which]);
        workers_.erase(workers_.begin() + static_cast<std::ptrdiff_t>(which));
        const std::string how = worker->process.end();
        std::error_code error;
        if (worker->part)
            fs::remove(worker->part->name(), error);
        if (worker->job) {
            const Job& job = jobs_[*worker->job];
            finish(*worker->job,
                   failed(job, Failure(job.input, "the process that worked on it ended: " + how)));
        }
        if (next_ < jobs_.size())
            add_worker();
    }

    void finish(size_t job, Outcome outcome) {
        latest_ = jobs_[job].input;
        ++finished_;
        outcomes_.emplace(job, std::move(outcome));
        for (auto next = outcomes_.find(told_); next != outcomes_.end();
             next = outcomes_.find(told_)) {
            listener_(jobs_[told_++], next->second);
            outcomes_.erase(next);
        }
    }

    void show_progress() {
        double done = static_cast<double>(finished_);
        for (const auto& worker : workers_)
            done += worker->job ? worker->share : 0;
        const std::string& name = latest_.empty() ? jobs_.front().input : latest_;
        draw_bar(text_of(path_of(name).filename()), done / static_cast<double>(jobs_.size()));
    }

    const Json conversion_;
    const std::vector<Job>& jobs_;
    const Listener& listener_;
    std::vector<std::unique_ptr<Worker>> workers_;
    size_t next_ = 0, told_ = 0, finished_ = 0;
    std::map<size_t, Outcome> outcomes_; // finished before one that stands in front of them
    std::string latest_;
};

} // namespace

void share_out(const Conversion& conversion, const std::vector<Job>& jobs, size_t workers,
               const Listener& listener) {
    try {
        Sharing(conversion, jobs, listener).run(workers);
    } catch (const std::system_error& error) {
        throw Failure("a worker cannot be started", error.code().message());
    }
}
