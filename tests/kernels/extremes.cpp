// The highest or lowest of several rows, element by element.
#include "kernels/cases.hpp"

using namespace kirvo;

namespace kirvo_test {

namespace {

template<typename T>
using Values = std::initializer_list<T>;
template<typename T>
using Choose = T (*)(Values<T>);

template<typename T>
T highest(Values<T> values) {
    return std::max(values);
}
template<typename T>
T lowest(Values<T> values) {
    return std::min(values);
}

// Extremes of runs of cells of 1 to 4 elements, which the trial makes as this says.
template<typename T, Choose<T> choose>
void extremes_along(T* to, const T* row, size_t count, size_t step, size_t cells) {
    for (size_t i = 0; i < count; ++i) {
        to[i] = row[i];
        for (size_t k = 1; k < cells; ++k)
            to[i] = choose({to[i], row[i + step * k]});
    }
}

template<typename T, Choose<T> choose>
constexpr Case<Kernels::Join<T>> join = {
    [](T* to, const T* runs, size_t count, size_t step, size_t run, size_t side) {
        extremes_along<T, choose>(to, runs, count, step, side - run + 1);
    },
    [](Kernels::Join<T> kernel, Trial& trial) {
        constexpr int64_t most = sizeof(T) == 4 ? INT32_MAX : std::numeric_limits<T>::max();
        const auto step = static_cast<size_t>(trial.between(1, sizeof(T) == 1 ? 4 : 1, 3));
        const int32_t known_cells = trial.between(1, 70, 16);
        const int32_t most_cells = known_cells > 16 ? 2 * known_cells + 2 : 4 * known_cells;
        const auto run = static_cast<size_t>(known_cells);
        const auto side = static_cast<size_t>(trial.between(known_cells + 1, most_cells, 64));
        constexpr size_t beyond = 64 / sizeof(T);
        const size_t known = trial.count + step * (side - run) + beyond;
        const T* row = trial.values<T>(known + step * (run - 1), 0, most);
        T *runs = trial.room<T>(known), *to = trial.room<T>(trial.count);
        extremes_along<T, choose>(runs, row, known, step, run);
        trial.run([=, &trial] { kernel(to, runs, trial.count, step, run, side); });
    },
    "element"};

template<typename T, Choose<T> choose, size_t windows>
constexpr Case<Kernels::PickRows<T>> pick_rows = {
    [](T* const* to, const T* const* rows, size_t n, size_t count) {
        const auto pick_from = [=](T* extremes, size_t first, size_t end) {
            for (size_t i = 0; i < count; ++i) {
                extremes[i] = rows[first][i];
                for (size_t row = first; row < end; ++row)
                    extremes[i] = choose({extremes[i], rows[row][i]});
            }
        };
        for (size_t k = 0; k < windows; ++k)
            pick_from(to[k], k, k + n);
        if (to[windows] != nullptr)
            pick_from(to[windows], n - 1, n + windows - 1);
    },
    [](Kernels::PickRows<T> kernel, Trial& trial) {
        std::vector<T*> to(windows + 1);
        const bool ends = trial.between(0, 1, 0) == 1;
        for (size_t k = 0; k < windows + ends; ++k)
            to[k] = trial.room<T>(trial.count);
        const auto n = static_cast<size_t>(
            trial.between(windows, windows + 17, windows == 8 ? 24 : windows + 1));
        std::vector<const T*> rows(n + windows - 1);
        for (const T*& row : rows)
            row = trial.values<T>(trial.count);
        trial.items *= windows;
        trial.run([&] { kernel(to.data(), rows.data(), n, trial.count); });
    },
    "element", 257};

} // namespace

namespace cases {

const Case<Kernels::Join<uint8_t>> highest8 = join<uint8_t, highest>;
const Case<Kernels::Join<uint8_t>> lowest8 = join<uint8_t, lowest>;
const Case<Kernels::Join<uint32_t>> highest32 = join<uint32_t, highest>;
const Case<Kernels::PickRows<uint8_t>> highest_rows8[] = {
    pick_rows<uint8_t, highest, 2>, pick_rows<uint8_t, highest, 4>, pick_rows<uint8_t, highest, 8>};
const Case<Kernels::PickRows<uint8_t>> lowest_rows8[] = {
    pick_rows<uint8_t, lowest, 2>, pick_rows<uint8_t, lowest, 4>, pick_rows<uint8_t, lowest, 8>};
const Case<Kernels::PickRows<int16_t>> highest_rows16[] = {
    pick_rows<int16_t, highest, 2>, pick_rows<int16_t, highest, 4>, pick_rows<int16_t, highest, 8>};

} // namespace cases

} // namespace kirvo_test
