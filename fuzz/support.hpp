// What every fuzz target stands on. A target is a function over an input, registered by name:
//
//     static void run(Input& input) { ... require(condition, "what must hold"); }
//     static const Target target("jpeg_whole", run, mutate_jpeg);
//
// Before each case the library stands as it does in a fresh process, or is told to; afterwards
// nothing of the case may be left: no block, no lock, no operation under way, no open file.
#pragma once

#include "image/memory.hpp"
#include "support/calls.hpp"

#include <string>
#include <vector>

namespace kirvo_fuzz {

using Bytes = std::vector<uint8_t>;

// The bytes of a case: choices from its end on, the most usual possibility where there are none.
using Input = kirvo_test::InputChoices;

class Target {
  public:
    using Run = void (*)(Input& input);
    // Changes an input by what is known of its structure (structure.hpp).
    using Mutate = void (*)(Bytes& input, kirvo_test::Random& random);

    Target(const char* name, Run run, Mutate mutate = nullptr);
    const char* name() const { return name_; }
    Mutate mutate() const { return mutate_; }
    // Ends the process when anything is wrong.
    void run_case(const uint8_t* bytes, size_t size) const;

    // All that are linked in.
    static std::vector<const Target*>& all();

  private:
    const char* name_;
    Run run_;
    Mutate mutate_;
};

// What the case is called in messages, where it has a name.
extern const char* current_case;

// Puts back what calls leave behind for calls to come: settings, a comment for the next stream, a
// watching window, comments read, the level of the processor. The tables that the decoder keeps
// from stream to stream are put back by reset_decoder (jpeg.hpp).
void stand_as_at_first();

// Ends the process unless a condition holds.
void require(bool condition, const char* what);

// Which allocation of a case fails: one of the first where a choice of 256 says so, which one in 32
// does, and the one that a replay wants wherever it wants one; 0: none.
uint32_t failing_allocation(uint32_t choice, Input& input);
extern uint32_t wanted_failure;

// Draws what surrounds calls: a failing allocation, which it gives, the level of the processor, a
// watching window.
uint32_t draw_surroundings(Input& input);

// A block with these bytes and no others, not subject to failing allocations.
kirvo::OwnedBlock block_of(const Bytes& bytes);
// A copy of a whole block; none of a null one.
Bytes bytes_of(HGLOBAL block);
// Reads pixels all over an image, wherever its header says that they are.
void look_at(HGLOBAL image);

// What a reader answers: an image with success, or a code without one. Frees the image.
void check_answer(HGLOBAL image, const int32_t& status);

// The world around the library: the system's (world.cpp), or one that is part of the program, for
// many executions (world_wide.cpp).

// A file whose content is replaced at will.
class File {
  public:
    // A title in a folder of the process's own.
    explicit File(const char* title);
    const char* name() const { return name_.c_str(); }
    void write(const Bytes& bytes) const;

  private:
    std::string name_;
};

// Differs when a file has been opened and not closed.
int open_descriptors();

} // namespace kirvo_fuzz
