#include "kernels/harness.hpp"

#include "kernels/cases.hpp"
#include "simd/cpu.hpp"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

namespace kirvo_test {

namespace {

using kirvo::Kernels;

template<typename Kernel, typename Get>
void add_case(std::vector<AnyCase>& all, std::string name, const Case<Kernel>& one,
              const Get& get) {
    const auto through = [get, oracle = one.oracle](void (*call)(Kernel, Trial&)) {
        return [=](const Kernels* table, Trial& trial) {
            call(table == nullptr ? oracle : get(*table), trial);
        };
    };
    all.push_back({std::move(name), one.unit, one.most, through(one.call), through(one.thorough),
                   one.rounds});
}

template<typename Kernel>
void add_cases(std::vector<AnyCase>& all, const char* name, const Case<Kernel>& one,
               Kernel Kernels::*member) {
    add_case(all, name, one, [member](const Kernels& table) { return table.*member; });
}

template<typename Kernel, size_t n>
void add_cases(std::vector<AnyCase>& all, const char* name, const Case<Kernel> (&some)[n],
               Kernel (Kernels::*member)[n]) {
    for (size_t i = 0; i < n; ++i)
        add_case(all, name + ("_" + std::to_string(i + 1)), some[i],
                 [=](const Kernels& table) { return (table.*member)[i]; });
}

// What is running, for the message of a crash.
std::string running;

[[noreturn]] void report_crash(int) {
    std::fprintf(stderr, "\nA byte out of bounds was touched: %s\n", running.c_str());
    std::fflush(stderr);
    std::_Exit(1);
}

constexpr const char* names_of_places[] = {"between guards", "from the start of a page",
                                           "to the end of a page"};

std::string description(const AnyCase& kernel, const char* level, const Shape& shape,
                        bool thorough) {
    std::string text = kernel.name + " at " + level;
    if (thorough)
        return text + ", round " + std::to_string(shape.round);
    text += ", count " + std::to_string(shape.count) + ", " +
            names_of_places[static_cast<int>(shape.place)];
    if (shape.place == Place::between_guards)
        text += ", offset " + std::to_string(shape.offset);
    return text + (shape.in_place ? ", in place" : "");
}

// Runs one trial of the oracle, then the same of each level.
class Comparison {
  public:
    Comparison(const AnyCase& kernel, const std::vector<Level>& at)
        : kernel_(kernel), levels_(at) {}

    // Also in place, where that may be.
    bool agrees(Shape shape) {
        if (!agrees_as_it_is(shape))
            return false;
        shape.in_place = true;
        return !can_be_in_place_ || agrees_as_it_is(shape);
    }
    bool agrees_thoroughly(size_t round) {
        thorough_ = true;
        return agrees_as_it_is({.round = round});
    }

  private:
    bool agrees_as_it_is(const Shape& shape) {
        const AnyCase::Call& call = thorough_ ? kernel_.thorough : kernel_.call;
        ++seed_;
        running = description(kernel_, "the oracle", shape, thorough_);
        Trial truth(shape, seed_);
        call(nullptr, truth);
        truth.copy_contents(expected_);
        can_be_in_place_ = truth.can_be_in_place();
        for (const Level& level : levels_) {
            running = description(kernel_, level.name, shape, thorough_);
            Trial trial(shape, seed_);
            call(level.table, trial);
            const std::string difference = trial.difference(expected_);
            if (!difference.empty()) {
                ADD_FAILURE() << running << ": " << difference;
                return false;
            }
        }
        return true;
    }

    const AnyCase& kernel_;
    const std::vector<Level>& levels_;
    std::vector<uint8_t> expected_;
    uint64_t seed_ = 0;
    bool can_be_in_place_ = false, thorough_ = false;
};

std::vector<Shape> shapes_up_to(size_t most) {
    std::vector<Shape> shapes;
    const auto add = [&](size_t count, size_t offset_step) {
        if (count > most)
            return;
        shapes.push_back({.count = count, .place = Place::page_start});
        shapes.push_back({.count = count, .place = Place::page_end});
        for (size_t offset = 0; offset < 64; offset += offset_step)
            shapes.push_back({.count = count, .offset = offset});
    };
    for (size_t count = 0; count <= 130; ++count)
        add(count, count % 32 == 0 || count % 32 == 31 ? 1 : 21);
    for (const size_t count : {191, 255, 256, 257, 1000, 4093})
        add(count, 31);
    return shapes;
}

} // namespace

const std::vector<AnyCase>& all_cases() {
    static const std::vector<AnyCase> all = [] {
        std::vector<AnyCase> list;
#define X(name) add_cases(list, #name, cases::name, &Kernels::name);
        KIRVO_EACH_KERNEL(X)
#undef X
        return list;
    }();
    return all;
}

std::vector<Level> levels() {
#define LEVEL(level) {#level, &kirvo::level::kernels},
    const Level all[] = {KIRVO_LEVELS(LEVEL)};
#undef LEVEL
    return {all, all + static_cast<int>(kirvo::cpu_level()) + 1};
}

void check(const AnyCase& kernel, const std::vector<Level>& at) {
    std::signal(SIGSEGV, report_crash);
#ifdef SIGBUS
    std::signal(SIGBUS, report_crash);
#endif
    Comparison comparison(kernel, at);
    for (const Shape& shape : shapes_up_to(kernel.most)) {
        if (!comparison.agrees(shape))
            return;
    }
    for (size_t round = 0; round < kernel.rounds; ++round) {
        if (!comparison.agrees_thoroughly(round))
            return;
    }
}

} // namespace kirvo_test
