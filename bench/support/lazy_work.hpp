// Prepares at first use and keeps what was prepared.
#pragma once

#include "support/row.hpp"

namespace kirvo_bench {

class LazyWork {
  public:
    explicit LazyWork(std::function<Work()> prepare) : prepare_(std::move(prepare)) {}
    const Work& get() {
        if (!work_)
            work_ = prepare_();
        return work_;
    }

  private:
    std::function<Work()> prepare_;
    Work work_;
};

} // namespace kirvo_bench
