// Many pictures on all cores: the program starts itself several times and hands out the jobs.
#pragma once

#include "commands/conversion.hpp"

#include <functional>

// What becomes of the jobs, told in their order.
using Listener = std::function<void(const Job& job, const Outcome& outcome)>;

// Does the jobs in so many processes. One that dies costs the picture that it worked on.
void share_out(const Conversion& conversion, const std::vector<Job>& jobs, size_t workers,
               const Listener& listener);

// Such a process: takes jobs from standard input until it ends.
void work_for_another();
