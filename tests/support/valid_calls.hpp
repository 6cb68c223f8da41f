// Calls of every export that do their work: found by trying each depth and a few numbers, so that a
// new export joins by itself. Where that is not enough, valid_calls.cpp names the exception.
#pragma once

#include "support/calls.hpp"
#include "support/temp_folder.hpp"

#include <vector>

namespace kirvo_test {

// A file of every format that the library reads, and names that files can be written to.
class Samples {
  public:
    Samples();

    // A file that this function reads.
    const char* file_for(const Export& what) const;
    const char* written() const { return written_.c_str(); }
    // A stream with two comments.
    const std::vector<uint8_t>& stream() const { return stream_; }
    // Every file, one that is missing, one without a byte, and a folder.
    std::vector<std::string> all_files() const;
    // A file that can be written, and names that no file can have.
    std::vector<std::string> all_targets() const;

  private:
    TempFolder folder_;
    std::vector<uint8_t> stream_;
    std::string bmp_, jpeg_, icon_, targa_, q0_, raw_, written_;
};

// One way to make an export work.
struct Plan {
    const Export* what;
    int bits;           // of images, given or made
    int32_t number;     // what other numbers are
    bool whole = false; // rectangles are whole images, not parts

    // A call with these arguments, which are new in the pool. What the call needs to happen before
    // it (the First of a Next) happens.
    Call prepare(Pool& pool, const Samples& samples) const;
    std::string name() const;
};

// Every way that works; with once_a_depth only the first number that does.
std::vector<Plan> plans_for(const Export& what, const Samples& samples, bool once_a_depth);
// True for one that nothing makes work here.
bool works_elsewhere_only(const Export& what);

// An image of black, white and primary colours.
std::vector<uint8_t> plain_image(int bits);
// An image of any small size with random colours and pixels.
std::vector<uint8_t> random_image(int bits, Choices& choices);

// Discards what calls may have left behind on purpose: an encode or decode under way, comments, a
// progress registration.
void discard_leftovers();

} // namespace kirvo_test
