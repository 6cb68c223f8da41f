// Calls of any export (exports.hpp) with arguments that something chooses: a random generator, or
// the input of a fuzzer. Nothing here needs a test framework.
//
//     Pool pool;                                    // blocks, memory and files of some calls
//     Call call(export_named("Dib24Flip"), pool);
//     call.draw(choices);                           // hostile arguments
//     call.argument("left") = {0};                  // ... or some of one's own
//     call.make();
//     if (const std::string problem = call.problem(); !problem.empty()) ...
#pragma once

#include "support/exports.hpp"
#include "support/random.hpp"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace kirvo_test {

// Where choices come from.
class Choices {
  public:
    virtual ~Choices() = default;
    // A number from 0 to n - 1.
    virtual uint32_t below(uint32_t n) = 0;

    uint8_t byte() { return static_cast<uint8_t>(below(256)); }
    bool once_in(uint32_t n) { return below(n) == n - 1; }
    // Both included.
    int32_t between(int32_t low, int32_t high) {
        return low + static_cast<int32_t>(below(static_cast<uint32_t>(high - low) + 1));
    }
    void fill(void* to, size_t bytes);
    template<typename T, size_t n>
    const T& pick(const T (&values)[n]) {
        return values[below(n)];
    }
    template<typename T>
    const T& pick(const std::vector<T>& values) {
        return values[below(static_cast<uint32_t>(values.size()))];
    }
};

class RandomChoices final : public Choices {
  public:
    explicit RandomChoices(uint64_t seed) : random_(seed) {}
    uint32_t below(uint32_t n) override {
        return static_cast<uint32_t>(uint64_t{random_.next()} * n >> 32);
    }

  private:
    Random random_;
};

// Choices by the bytes of an input, from its end on, so that a plain file is an input as well: one
// byte for up to 256 possibilities, two or four for more, 0 when there are none left.
class InputChoices final : public Choices {
  public:
    InputChoices(const uint8_t* bytes, size_t size) : first_(bytes), last_(bytes + size) {}
    uint32_t below(uint32_t n) override;
    // What has not been used, and how many bytes that is.
    size_t left() const { return static_cast<size_t>(last_ - first_); }
    std::vector<uint8_t> rest() const { return {first_, last_}; }

  private:
    const uint8_t* first_;
    const uint8_t* last_;
};

// The bytes of a block with a packed DIB whose header may say anything: of small sizes mostly, but
// also of sizes whose products wrap; whole, cut short at every interesting place, or longer.
std::vector<uint8_t> hostile_image(Choices& choices);

// What calls work on. Everything in it lasts until the pool goes, which ends an encode or a decode
// that is under way, and then frees every block but those that were freed or handed out before.
class Pool {
  public:
    Pool() = default;
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;
    virtual ~Pool();

    // A new block with these bytes and no others.
    HGLOBAL add(const std::vector<uint8_t>& bytes);
    // Owns a block, once; null is nothing.
    void take(HGLOBAL block);
    // The header that the block had when it came; zero where it was shorter.
    BITMAPINFOHEADER header_of(HGLOBAL block) const;
    // Frees a block now; its handle stays among those that calls may name.
    void free(HGLOBAL block);
    // Those that it will free.
    const std::vector<HGLOBAL>& owned() const { return owned_; }
    // Those added and taken, the freed ones among them.
    const std::vector<HGLOBAL>& handles() const { return handles_; }
    // Memory of exactly this size, zero.
    uint8_t* memory(size_t bytes);

    // Names for reading and for writing; without any, such arguments are null.
    std::vector<std::string> files_read, files_written;
    // What windows are chosen from, beside null.
    std::vector<HWND> windows;
    // The bytes of streams, cut at will.
    std::vector<std::vector<uint8_t>> streams;
    // The block of an encode in slices: the encoder's until the encode is done.
    HGLOBAL stream_under_way = nullptr;

  protected:
    // Where blocks come from and go to.
    virtual HGLOBAL allocate(size_t bytes);
    virtual void release(HGLOBAL block);

  private:
    void keep(HGLOBAL block, const void* bytes, size_t size);

    std::vector<HGLOBAL> handles_, owned_;
    std::vector<BITMAPINFOHEADER> headers_; // of handles_
    std::vector<std::unique_ptr<uint8_t[]>> memory_;
};

// Ends an encode or a decode that is under way.
void end_codec_operations();

// One call of an export. Results that the caller owns go to the pool.
class Call {
  public:
    Call(const Export& what, Pool& pool) : what_(what), pool_(pool) {}

    const Export& what() const { return what_; }
    Value& argument(size_t i) { return arguments_[i]; }
    Value& argument(std::string_view name) { return arguments_[what_.find(name)]; }

    // Draws every argument: images mostly hostile, else others of the pool, freed, invented and
    // null ones; rectangles that mostly fit them; numbers and memory that may make one stumble.
    void draw(Choices& choices);
    // Draws one argument. Images come before rectangles, sizes before what they measure.
    void draw(Choices& choices, size_t i);
    // Memory for an argument that is an address, as large as the function may touch; filled with
    // `with`. Sizes must have been set.
    uint8_t* give_memory(size_t i, uint8_t with = 0);

    Value make();
    // Adopts a result made otherwise with these arguments.
    void made(Value result);

    Value result() const { return result_; }
    // True when the call did its work, as far as its result tells.
    bool succeeded() const;
    // The code that it answered, as result or through its status parameter; KIRVO_OK for those that
    // have none.
    int32_t status() const;
    // What is wrong with the answer: a code that the documentation of the function does not name, a
    // status that is missing or contradicts the result. Empty when nothing is.
    std::string problem() const;
    // The call in words.
    std::string text() const;

  private:
    static constexpr int32_t unwritten = 0x5EED5EED;

    const int32_t* status_memory() const;
    const void* first_image() const;

    const Export& what_;
    Pool& pool_;
    Value arguments_[Export::most_parameters] = {};
    Value result_ = {};
};

} // namespace kirvo_test
