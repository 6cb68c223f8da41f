// What an effect would make of the picture: of a reduced one at once, of what can be seen when the
// values rest.
#pragma once

#include "history.hpp"

#include <functional>

struct Viewer;

class Look {
  public:
    explicit Look(Viewer& viewer);
    ~Look();
    Look(const Look&) = delete;
    Look& operator=(const Look&) = delete;

    using Failed = std::function<void(const std::string& error)>; // empty: there is nothing wrong
    void at_once(const Step& step, Failed failed);
    void at_rest(const Step& step, Failed failed);
    // What is under way is of no interest any more.
    void forget();

  private:
    struct Part; // of the picture, and what becomes of it
    void post(std::shared_ptr<Part> part, Failed failed);

    Viewer& viewer_;
    std::shared_ptr<SharedImage> reduced_; // what the view shows, or made by the first look
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};
