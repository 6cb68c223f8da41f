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

// The sources are rows of their own, or begin at different places of one. Those beyond the first
// are not touched.
template<typename T, Choose<T> choose, size_t rows>
constexpr Case<Kernels::Pick<T>> pick = {
    [](T* to, const T* a, const T* b, const T* c, const T* d, size_t count) {
        for (size_t i = 0; i < count; ++i)
            to[i] = choose({a[i], b[i], (rows > 2 ? c : a)[i], (rows > 3 ? d : a)[i]});
    },
    [](Kernels::Pick<T> kernel, Trial& trial) {
        constexpr int64_t most = sizeof(T) == 4 ? INT32_MAX : std::numeric_limits<T>::max();
        T* to = trial.room<T>(trial.count);
        const bool overlap = trial.between(0, 2, 1) == 0;
        const size_t places = 5;
        const T* from[4] = {};
        for (size_t i = 0; i < rows; ++i) {
            if (overlap && i > 0)
                from[i] = from[0] + trial.random.between(0, places);
            else
                from[i] = trial.values<T>(trial.count + (overlap ? places : 0), 0, most);
        }
        trial.run([=, &trial] { kernel(to, from[0], from[1], from[2], from[3], trial.count); });
    },
    "element"};

template<typename T, Choose<T> choose, size_t windows>
constexpr Case<Kernels::PickRows<T>> pick_rows = {
    [](T* const* to, const T* const* rows, size_t n, size_t count, ptrdiff_t) {
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
        const ptrdiff_t ahead = trial.between(0, 4096, 0);
        trial.items *= windows;
        trial.run([&] { kernel(to.data(), rows.data(), n, trial.count, ahead); });
    },
    "element", 257};

} // namespace

namespace cases {

const Case<Kernels::Pick<uint8_t>> highest8[] = {
    pick<uint8_t, highest, 2>, pick<uint8_t, highest, 3>, pick<uint8_t, highest, 4>};
const Case<Kernels::Pick<uint8_t>> lowest8[] = {pick<uint8_t, lowest, 2>, pick<uint8_t, lowest, 3>,
                                                pick<uint8_t, lowest, 4>};
const Case<Kernels::Pick<uint32_t>> highest32[] = {
    pick<uint32_t, highest, 2>, pick<uint32_t, highest, 3>, pick<uint32_t, highest, 4>};
const Case<Kernels::PickRows<uint8_t>> highest_rows8[] = {
    pick_rows<uint8_t, highest, 2>, pick_rows<uint8_t, highest, 4>, pick_rows<uint8_t, highest, 8>};
const Case<Kernels::PickRows<uint8_t>> lowest_rows8[] = {
    pick_rows<uint8_t, lowest, 2>, pick_rows<uint8_t, lowest, 4>, pick_rows<uint8_t, lowest, 8>};
const Case<Kernels::PickRows<uint16_t>> highest_rows16[] = {pick_rows<uint16_t, highest, 2>,
                                                            pick_rows<uint16_t, highest, 4>,
                                                            pick_rows<uint16_t, highest, 8>};

} // namespace cases

} // namespace kirvo_test
