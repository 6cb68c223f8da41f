#include "history.hpp"

void History::begin(SharedImage image) {
    states_.clear();
    forgotten_.clear();
    place_ = 0;
    states_.push_back({image, {}});
    saved_ = std::move(image);
}

void History::add(SharedImage image, Step step) {
    states_.resize(place_ + 1);
    states_.push_back({std::move(image), std::move(step)});
    ++place_;
    keep_to_budget();
}

std::vector<Step> History::steps() const {
    std::vector<Step> steps = forgotten_;
    for (size_t i = 0; i <= place_ && i < states_.size(); ++i) {
        if (!states_[i].step.option.empty())
            steps.push_back(states_[i].step);
    }
    return steps;
}

size_t History::bytes() const {
    size_t sum = 0;
    for (const State& state : states_) {
        if (state.image != now())
            sum += GlobalSize(state.image->handle());
    }
    return sum;
}

void History::set_budget(size_t bytes) {
    budget_ = bytes;
    keep_to_budget();
}

// The oldest pictures go first. The step that has led to a picture which is now the first one is
// kept for the list of what was done.
void History::keep_to_budget() {
    while (place_ > 0 && bytes() > budget_) {
        if (!states_.front().step.option.empty())
            forgotten_.push_back(states_.front().step);
        states_.erase(states_.begin());
        --place_;
    }
}
