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

template<typename T, Choose<T> choose>
constexpr Case<Kernels::Pick<T>> pick = {[](T* to, const T* a, const T* b, size_t count) {
                                             for (size_t i = 0; i < count; ++i)
                                                 to[i] = choose({a[i], b[i]});
                                         },
                                         [](Kernels::Pick<T> kernel, Trial& trial) {
                                             T* to = trial.room<T>(trial.count);
                                             const T* a = trial.values<T>(trial.count);
                                             const T* b = trial.values<T>(trial.count);
                                             trial.run(
                                                 [=, &trial] { kernel(to, a, b, trial.count); });
                                         },
                                         "element"};

template<typename T, Choose<T> choose>
constexpr Case<Kernels::PickTwo<T>> pick_two = {
    [](T* to, T* running, const T* row, const T* other, size_t count) {
        for (size_t i = 0; i < count; ++i) {
            to[i] = choose({running[i], row[i], other[i]});
            running[i] = choose({running[i], row[i]});
        }
    },
    [](Kernels::PickTwo<T> kernel, Trial& trial) {
        T* to = trial.room<T>(trial.count);
        T* running = trial.values<T>(trial.count);
        const T* row = trial.values<T>(trial.count);
        const T* other = trial.values<T>(trial.count);
        trial.run([=, &trial] { kernel(to, running, row, other, trial.count); });
    },
    "element"};

// The sources are rows of their own, or begin at different places of one.
template<typename T, Choose<T> choose>
constexpr Case<Kernels::PickFour<T>> pick_four = {
    [](T* to, const T* a, const T* b, const T* c, const T* d, size_t count) {
        for (size_t i = 0; i < count; ++i)
            to[i] = choose({a[i], b[i], c[i], d[i]});
    },
    [](Kernels::PickFour<T> kernel, Trial& trial) {
        constexpr int64_t most = sizeof(T) == 4 ? INT32_MAX : std::numeric_limits<T>::max();
        T* to = trial.room<T>(trial.count);
        const bool overlap = trial.between(0, 2, 1) == 0;
        const size_t places = 5;
        const T* from[4];
        for (const T*& row : from) {
            if (overlap && &row != from)
                row = from[0] + trial.random.between(0, places);
            else
                row = trial.values<T>(trial.count + (overlap ? places : 0), 0, most);
        }
        trial.run([=, &trial] { kernel(to, from[0], from[1], from[2], from[3], trial.count); });
    },
    "element"};

} // namespace

namespace cases {

const Case<Kernels::Pick<uint8_t>> highest8 = pick<uint8_t, highest>;
const Case<Kernels::Pick<uint8_t>> lowest8 = pick<uint8_t, lowest>;
const Case<Kernels::PickTwo<uint8_t>> highest_two8 = pick_two<uint8_t, highest>;
const Case<Kernels::PickTwo<uint8_t>> lowest_two8 = pick_two<uint8_t, lowest>;
const Case<Kernels::PickFour<uint8_t>> highest_four8 = pick_four<uint8_t, highest>;
const Case<Kernels::PickFour<uint8_t>> lowest_four8 = pick_four<uint8_t, lowest>;
const Case<Kernels::Pick<uint16_t>> highest16 = pick<uint16_t, highest>;
const Case<Kernels::PickTwo<uint16_t>> highest_two16 = pick_two<uint16_t, highest>;
const Case<Kernels::PickFour<uint32_t>> highest_four32 = pick_four<uint32_t, highest>;

} // namespace cases

} // namespace kirvo_test
