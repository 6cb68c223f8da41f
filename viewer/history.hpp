// What has been done to the picture, and what it was before.
#pragma once

#include "calls/step.hpp"
#include "dib.hpp"

#include <string>
#include <vector>

struct State {
    SharedImage image;
    Step step; // that has led to it
};

class History {
  public:
    void begin(SharedImage image); // with another picture
    void add(SharedImage image, Step step);
    // Null where there is nothing.
    SharedImage now() const { return states_.empty() ? nullptr : states_[place_].image; }
    SharedImage before() const { return can_undo() ? states_[place_ - 1].image : nullptr; }

    bool can_undo() const { return place_ > 0; }
    bool can_redo() const { return place_ + 1 < states_.size(); }
    void undo() { --place_; }
    void redo() { ++place_; }

    // From the first step on, also those whose pictures had to go.
    std::vector<Step> steps() const;
    std::string next_undo() const { return states_[place_].step.option; }
    std::string next_redo() const { return states_[place_ + 1].step.option; }

    size_t undo_count() const { return place_; }
    size_t bytes() const; // of all pictures but the one that is shown
    size_t budget() const { return budget_; }
    void set_budget(size_t bytes);

    bool changed() const { return states_.empty() ? false : now() != saved_; }
    void saved() { saved_ = now(); }

  private:
    void keep_to_budget();

    std::vector<State> states_;
    std::vector<Step> forgotten_; // steps whose pictures are gone
    size_t place_ = 0;
    size_t budget_ = 0;
    SharedImage saved_;
};
