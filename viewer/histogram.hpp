// How often each value of each channel occurs: a small window that follows the picture.
#pragma once

#include "dib.hpp"
#include "worker.hpp"

#include <functional>

struct Counts {
    uint32_t red[256], green[256], blue[256];
    uint32_t colours;
};

class HistogramWindow {
  public:
    void open(HWND owner, Worker& worker, std::function<void()> closed);
    void close();
    bool is_open() const { return window_ != nullptr; }
    void show(const SharedImage& image);
    HWND window() const { return window_; }

  private:
    static LRESULT CALLBACK on_message(HWND window, UINT message, WPARAM, LPARAM);
    void paint();

    HWND window_ = nullptr;
    Worker* worker_ = nullptr;
    std::function<void()> closed_;
    SharedImage image_;
    std::shared_ptr<const Counts> counts_;
};
