// Prepares at first use and keeps what was prepared, for each library.
#pragma once

#include "support/library.hpp"
#include "support/row.hpp"

namespace kirvo_bench {

class LazyWork {
  public:
    explicit LazyWork(std::function<Work()> prepare) : prepare_(std::move(prepare)) {}
    const Work& get() {
        Work& work = work_[library_in_use()];
        if (!work)
            work = prepare_();
        return work;
    }

  private:
    std::function<Work()> prepare_;
    Work work_[most_libraries];
};

} // namespace kirvo_bench
