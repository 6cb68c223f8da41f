// kirvo_agreement [COUNT] [SEED]: COUNT (1000) sequences of calls of any exports, sound and hostile
// ones, with settings, codecs in pieces, files and progress messages. Prints a digest of all that
// can be seen of them after every hundred. The sequences are the same wherever the program is built,
// so that the digests tell whether word size, compiler, system or level of the processor changes
// anything. kirvo_agreement COUNT SEED FROM TO also prints those sequences call by call.
#include "support/progress_recorder.hpp"
#include "support/valid_calls.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

using namespace kirvo_test;

namespace {

constexpr long default_count = 1000, sequences_of_digest = 100;

class Digest {
  public:
    void add(const void* bytes, size_t size) {
        for (size_t i = 0; i < size; ++i)
            state_ = (state_ ^ static_cast<const uint8_t*>(bytes)[i]) * 0x100000001B3u; // FNV-1a
    }
    void add(int64_t number) { add(&number, sizeof number); }
    uint64_t value() const { return state_; }

  private:
    uint64_t state_ = 0xCBF29CE484222325u;
};

// How much memory there is differs from system to system: where a call has found too little of it,
// or may find too little elsewhere, a sequence ends.
constexpr size_t much_memory = size_t{16} << 20;

class Sequences {
  public:
    explicit Sequences(uint64_t seed) : seed_(seed) {
        for (const Export& what : exports())
            for (const Plan& plan : plans_for(what, samples_, true))
                plans_.push_back(plan);
    }

    uint64_t digest() const { return digest_.value(); }
    long calls() const { return calls_; }

    void run(long number, bool print) {
        print_ = print;
        RandomChoices choices(seed_ * 0x10000000 + static_cast<uint64_t>(number));
        Pool pool;
        pool.files_read = samples_.all_files();
        pool.files_written = {samples_.written(), samples_.all_targets()[1]};
        pool.streams = {samples_.stream()};
        pool.windows = {recorder_.window()};
        recorder_.watch();
        if (choices.once_in(2))
            KirvoSetProcess(nullptr, 0, 0);
        for (uint32_t left = choices.below(6) + 1; left != 0; --left)
            if (!make(choices.once_in(3) ? hostile(pool, choices) : sound(pool, choices), pool))
                break;
        end_codec_operations();
        forget_decoded_image(pool);
        look_at_files();
        for (const ProgressMessage& message : recorder_.messages()) {
            digest_.add(message.command);
            digest_.add(message.percent);
        }
        if (print)
            std::printf("  %zu messages: %016llx\n", recorder_.messages().size(),
                        static_cast<unsigned long long>(digest()));
    }

  private:
    static Call hostile(Pool& pool, RandomChoices& choices) {
        const auto all = exports();
        Call call(all[choices.below(static_cast<uint32_t>(all.size()))], pool);
        call.draw(choices);
        return call;
    }

    // On the images of the plan, random ones, or results of earlier calls.
    Call sound(Pool& pool, RandomChoices& choices) {
        const Plan& plan = choices.pick(plans_);
        const std::vector<HGLOBAL> earlier = pool.owned();
        Call call = plan.prepare(pool, samples_);
        const auto parameters = plan.what->parameters;
        const uint32_t kind = choices.below(3);
        for (size_t i = 0; i < parameters.size() && kind != 0; ++i)
            if (parameters[i].kind == Kind::image)
                call.argument(i).pointer = kind == 1 && !earlier.empty()
                                               ? choices.pick(earlier)
                                               : pool.add(random_image(plan.bits, choices));
        for (size_t i = 0; i < parameters.size() && kind != 0; ++i)
            if (parameters[i].kind == Kind::extent || parameters[i].kind == Kind::real)
                call.draw(choices, i);
        return call;
    }

    // What an invented handle, or one given out anew, stands for is up to the system; and Windows
    // does not lock a block of no bytes.
    static bool is_good_block(HGLOBAL block, const Pool& pool) {
        const auto& owned = pool.owned();
        return std::find(owned.begin(), owned.end(), block) != owned.end() &&
               GlobalSize(block) != 0;
    }

    // False when the sequence is to end.
    bool make(Call call, Pool& pool) {
        const auto parameters = call.what().parameters;
        for (size_t i = 0; i < parameters.size(); ++i) {
            Value& value = call.argument(i);
            if ((parameters[i].kind == Kind::image || parameters[i].kind == Kind::stream) &&
                !is_good_block(const_cast<void*>(value.pointer), pool))
                value.pointer = nullptr;
        }
        if (print_)
            std::printf("  %s", call.text().c_str());
        call.make();
        ++calls_;
        digest_.add(call.what().name.data(), call.what().name.size());
        if (takes_much_memory(call, pool)) {
            digest_.add(KIRVO_NO_MEMORY);
            if (print_)
                std::printf(" takes much memory\n");
            return false;
        }
        look_at_answer(call);
        for (HGLOBAL block : pool.owned())
            look_at_block(block);
        if (print_)
            std::printf(" gives %d: %016llx\n", call.status(),
                        static_cast<unsigned long long>(digest()));
        return true;
    }

    // JpgDecNext would go on naming the image of this sequence in the next.
    static void forget_decoded_image(Pool& pool) {
        JpgDecMainHGLOBAL(pool.add({0xFF, 0xD8, 0xFF, 0xD9}), 4, nullptr, nullptr, nullptr);
    }

    static bool takes_much_memory(const Call& call, const Pool& pool) {
        const bool says_nothing = call.what().result == Result::handle && !call.succeeded() &&
                                  call.what().status_parameter() == Export::none;
        return says_nothing || call.status() == KIRVO_NO_MEMORY ||
               std::any_of(pool.owned().begin(), pool.owned().end(),
                           [](HGLOBAL block) { return GlobalSize(block) > much_memory; });
    }

    void look_at_answer(Call& call) {
        digest_.add(call.status());
        switch (call.what().result) {
        case Result::number:
            digest_.add(static_cast<int64_t>(call.result().number));
            break;
        case Result::handle:
        case Result::palette:
            digest_.add(call.result().pointer != nullptr);
            break;
        default:
            break;
        }
        if (call.what().name == "JpgDecGetComment" && call.result().pointer != nullptr)
            look_at_block(const_cast<void*>(call.result().pointer)); // the library's own
        const auto parameters = call.what().parameters;
        for (size_t i = 0; i < parameters.size(); ++i) {
            const Parameter& parameter = parameters[i];
            const void* memory = call.argument(i).pointer;
            if (parameter.kind != Kind::output || memory == nullptr)
                continue;
            size_t bytes = parameter.bytes;
            if (parameter.bytes_per_size != 0)
                bytes +=
                    parameter.bytes_per_size * static_cast<uint32_t>(call.argument(i + 1).number);
            digest_.add(memory, bytes);
        }
    }

    void look_at_block(HGLOBAL block) {
        const size_t size = GlobalSize(block);
        digest_.add(static_cast<int64_t>(size));
        if (const void* bytes = size != 0 ? GlobalLock(block) : nullptr) {
            digest_.add(bytes, size);
            GlobalUnlock(block);
        }
    }

    void look_at_files() {
        std::ifstream file(samples_.written(), std::ios::binary);
        if (!file)
            return;
        const std::vector<char> content{std::istreambuf_iterator<char>(file), {}};
        file.close();
        std::remove(samples_.written());
        digest_.add(content.data(), content.size());
    }

    const uint64_t seed_;
    const Samples samples_;
    ProgressRecorder recorder_;
    std::vector<Plan> plans_;
    Digest digest_;
    long calls_ = 0;
    bool print_ = false;
};

} // namespace

int main(int argc, char** argv) {
    const auto argument = [&](int i, long otherwise) {
        return argc > i ? std::atol(argv[i]) : otherwise;
    };
    const long count = argument(1, default_count), from = argument(3, 1), to = argument(4, 0);
    Sequences sequences(static_cast<uint64_t>(argument(2, 1)));
    for (long number = 1; number <= count; ++number) {
        const bool print = number >= from && number <= to;
        if (print)
            std::printf("sequence %ld\n", number);
        sequences.run(number, print);
        if (number % sequences_of_digest == 0 || number == count)
            std::printf("%ld %ld %016llx\n", number, sequences.calls(),
                        static_cast<unsigned long long>(sequences.digest()));
    }
}
