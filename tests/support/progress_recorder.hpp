// Receives progress messages: away from Windows as the window host, on Windows with a window.
#pragma once

#include <functional>
#include <kirvo.h>
#include <vector>

namespace kirvo_test {

struct ProgressMessage {
    uint32_t command; // wParam
    int32_t percent;  // lParam
    bool operator==(const ProgressMessage&) const = default;
};

// One recorder at a time. It does not register itself, so that a test decides when to:
//     ProgressRecorder recorder;
//     recorder.watch(7);            // KirvoSetProcess(recorder.window(), 7, 1)
//     Dib24Flip(...);
//     EXPECT_EQ(recorder.percents(), (std::vector{0, 50, 100}));
class ProgressRecorder {
  public:
    ProgressRecorder();
    ~ProgressRecorder(); // switches the notification off
    ProgressRecorder(const ProgressRecorder&) = delete;
    ProgressRecorder& operator=(const ProgressRecorder&) = delete;

    HWND window() const { return window_; }
    // Registers for the next operation and forgets what came before.
    void watch(uint32_t command = 1);
    // What a message handler does besides recording.
    std::function<void(const ProgressMessage&)> on_message;

    const std::vector<ProgressMessage>& messages() const { return messages_; }
    std::vector<int> percents() const;

    void record(const ProgressMessage& message); // for the window procedure

  private:
    HWND window_;
    std::vector<ProgressMessage> messages_;
};

// The percentages that a watched loop of n steps sends, by plain arithmetic: 0, then each
// base + i * share / n that is at least 5 above the last one sent; without the final 100.
void expect_steps(std::vector<int>& percents, int n, int base = 0, int share = 100);
// 0, the steps of one pass over n, 100.
std::vector<int> single_pass_percents(int n);

} // namespace kirvo_test
