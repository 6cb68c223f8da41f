#include "commands/convert.hpp"

#include "commands/workers.hpp"
#include "running/bar.hpp"
#include "running/processors.hpp"
#include "running/watch.hpp"
#include "system/names.hpp"
#include "system/settings.hpp"
#include "system/streams.hpp"
#include "system/terminal.hpp"

#include <algorithm>
#include <cstdio>

namespace {

// Tells what becomes of each picture, and in the end of all.
class Report {
  public:
    void add(const Job& job, const Outcome& outcome) {
        clear_bar();
        ++told_;
        failed_ += outcome.good ? 0 : 1;
        if (!settings.quiet)
            std::for_each(outcome.notes.begin(), outcome.notes.end(), warn);
        if (!settings.json) // text beside a picture that goes to standard output goes elsewhere
            std::fputs(outcome.text.c_str(), job.output == "-" ? stderr : stdout);
        if (!outcome.good)
            complain(outcome.error);
        if (settings.json)
            records_.push_back(outcome.record);
    }

    bool finish(const char* done) const {
        if (settings.json)
            print_json(records_);
        if (told_ > 1 && !settings.quiet)
            std::fprintf(stderr, "%zu %s, %zu failed\n", told_ - failed_, done, failed_);
        return failed_ == 0;
    }

  private:
    Json records_ = Json::array();
    size_t told_ = 0, failed_ = 0;
};

void do_here(const Conversion& conversion, const std::vector<Job>& jobs, Report& report) {
    expect_work(jobs.size() * conversion.stages());
    for (const Job& job : jobs) {
        if (jobs.size() > 1)
            work_on(text_of(path_of(job.input).filename()));
        report.add(job, convert_one(conversion, job));
    }
    clear_bar();
}

// Only this process has the streams that the command names.
bool wants_streams(const Conversion& conversion, const std::vector<Job>& jobs) {
    return std::any_of(jobs.begin(), jobs.end(),
                       [](const Job& job) { return job.input == "-" || job.output == "-"; }) ||
           std::any_of(conversion.steps.begin(), conversion.steps.end(), [](const Step& step) {
               return step.values.count() > 0 && step.values.text(0) == "-";
           });
}

size_t workers_for(const Conversion& conversion, const std::vector<Job>& jobs, const Run& run) {
    if (wants_streams(conversion, jobs))
        return 1;
    const size_t wanted =
        run.workers > 0 ? static_cast<size_t>(run.workers) : number_of_processors();
    return std::min({wanted, jobs.size(), most_workers});
}

// What would be done.
bool rehearse(const std::vector<Job>& jobs) {
    Report report;
    for (const Job& job : jobs) {
        Outcome outcome;
        try {
            check_target(job);
            const std::string why = job.input == "-" ? "" : why_unreadable(job.input);
            if (!why.empty())
                throw Failure(job.input, why);
            const std::string output =
                job.is_pattern ? named_by(job.output, job, 0, 0) : job.output;
            outcome.good = true;
            outcome.text = job.input + " -> " + output + "\n";
            outcome.record = {{"file", job.input}, {"output", output}};
        } catch (const Failure& failure) {
            outcome = failed(job, failure);
        }
        report.add(job, outcome);
    }
    return report.finish("would be written");
}

void check(const Conversion& conversion, const std::vector<Job>& jobs) {
    if (settings.json && !jobs.empty() && jobs.front().output == "-")
        throw UsageError("a picture and --json both want standard output");
    if (jobs.size() > 1 && !conversion.mask.empty())
        throw UsageError("--mask saves one mask: convert the pictures one by one");
    for (const Job& job : jobs) {
        const Format format = format_for(job.output, conversion.writing.to);
        const bool is_jpeg = format == KIRVO_FILES_JPEG;
        if (conversion.writing.largest && !is_jpeg && format != KIRVO_FILES_WEBP)
            throw UsageError(job.output + ": --size: only JPEG and WebP files are made to a size");
        if (conversion.writing.grey && !is_jpeg)
            throw UsageError(job.output + ": --grey: only JPEG files are written so");
        if (conversion.turning && job.is_pattern)
            throw UsageError(job.output + ": {width} and {height} are not known before a turn");
    }
}

} // namespace

bool convert(const Conversion& conversion, const Operands& operands, const Run& run) {
    const std::vector<Job> jobs = jobs_of(operands, conversion.writing.to);
    check(conversion, jobs);
    if (jobs.empty())
        throw Failure(operands.names.front(), "there is no picture in it");
    if (run.dry)
        return rehearse(jobs);
    Report report;
    const size_t workers = workers_for(conversion, jobs, run);
    if (workers == 1)
        do_here(conversion, jobs, report);
    else
        share_out(conversion, jobs, workers,
                  [&](const Job& job, const Outcome& outcome) { report.add(job, outcome); });
    return report.finish(conversion.turning ? "turned" : "converted");
}
