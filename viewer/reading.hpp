// A file read piece by piece, in the worker.
#pragma once

#include "dib.hpp"
#include "pictures/known.hpp"

#include <atomic>
#include <functional>
#include <string>

struct Reading {
    std::wstring name;
    std::atomic<bool>* abandoned;
    HWND progress; // gets the library's messages
    UINT command;
    SIZE room; // in which it will be shown
    // What there is of a JPEG so far, now and then.
    std::function<void(SharedImage)> look;
    std::function<void(uint64_t bytes, uint64_t of)> read; // of 0: nobody knows
};

struct Opened {
    SharedImage image;
    SharedImage fitted; // into the room; null where the picture itself fits
    std::shared_ptr<Known> known;
};

// Throws Failure.
Opened read_picture_file(const Reading& reading);
