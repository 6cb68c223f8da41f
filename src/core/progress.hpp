// Progress notification: percentages sent to the window that the caller has registered.
#pragma once

#include "platform/platform.hpp"

#include <span>
#include <type_traits>

namespace kirvo {

// True while a window is to be told.
bool progress_enabled();

// Ends the registration without a message.
void stop_progress();

// A part of the hundred percent.
struct Pass {
    int32_t base, share;
};

// One watched operation. The registration is read afresh at every call, since a handler may change
// it from inside a message.
class Progress {
  public:
    // Sends 0.
    void start();
    // At the top of step i of n.
    void step(int32_t i, int32_t n, const Pass& pass = {0, 100});
    // Sends percent when it is at least 5 above the last one sent.
    void update(int32_t percent);
    // The lowest percentage that update would send.
    int32_t next_due() const { return last_sent_ + smallest_rise; }
    // Sends 100 and ends the registration.
    void finish();

  private:
    static constexpr int32_t smallest_rise = 5;
    int32_t last_sent_ = 0;
};

// The steps of an operation, told in their order, of each pass in turn. Sends 0 when it is made.
class Steps {
  public:
    explicit Steps(int32_t n) : n_(n) { progress_.start(); }
    // Passes that are really made together: n steps of each.
    Steps(int32_t n, std::span<const Pass> passes) : Steps(n) { passes_ = passes; }

    // At the top of a step, counted through all passes.
    void tell(int64_t step) {
        told_ = step + 1;
        if (progress_enabled())
            progress_.step(static_cast<int32_t>(step % n_), n_,
                           passes_[static_cast<size_t>(step / n_)]);
    }
    // Tells of all steps up to this one that have not been told of.
    void reach(int64_t step) {
        while (told_ <= step)
            tell(told_);
    }
    // Sends 100 and ends the registration.
    void finish() { progress_.finish(); }

  private:
    static constexpr Pass whole[] = {{0, 100}};

    int32_t n_;
    std::span<const Pass> passes_ = whole;
    int64_t told_ = 0;
    Progress progress_;
};

// Does the steps 0, by, 2 * by... below n of an operation and tells of them. work may answer true
// to go on; false ends the loop without a further message, and is the answer then.
template<typename Work>
bool each_step(int32_t n, const Work& work, int32_t by = 1) {
    Steps steps(n);
    for (int64_t i = 0; i < n; i += by) {
        steps.tell(i);
        if constexpr (std::is_void_v<decltype(work(n))>)
            work(static_cast<int32_t>(i));
        else if (!work(static_cast<int32_t>(i)))
            return false;
    }
    steps.finish();
    return true;
}

} // namespace kirvo
