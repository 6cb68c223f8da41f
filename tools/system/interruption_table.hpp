// The names and processes that the handler of interruptions goes through.
#pragma once

#include "system/interruption.hpp"

#include <atomic>

constexpr size_t most_perishable = 200; // a gallery has some seventy files
extern std::atomic<const std::filesystem::path::value_type*> perishable[most_perishable];
extern std::atomic<std::ptrdiff_t> mortal[most_workers];
