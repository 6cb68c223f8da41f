// Progress notification: percentages sent to the window that the caller has registered.
#pragma once

#include "platform/platform.hpp"

namespace kirvo {

// One watched operation. The registration is read afresh at every call, since a handler may change
// it from inside a message.
class Progress {
  public:
    // Sends 0.
    void start();
    // At the top of step i of n; a pass of several covers share percent from base on.
    void step(int32_t i, int32_t n, int32_t base = 0, int32_t share = 100);
    // Sends percent when it is at least 5 above the last one sent.
    void update(int32_t percent);
    // The lowest percentage that update would send.
    int32_t next_due() const { return last_sent_ + smallest_rise; }
    // Sends 100 and ends the registration.
    void finish();

  private:
    static constexpr int32_t smallest_rise = 5;
    int32_t last_sent_ = 0;
};

// Ends the registration without a message.
void stop_progress();

// True while a window is to be told.
bool progress_enabled();

} // namespace kirvo
