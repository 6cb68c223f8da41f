#include "system/interruption.hpp"

#include "system/interruption_table.hpp"

#include <stdexcept>

std::atomic<const std::filesystem::path::value_type*> perishable[most_perishable];
std::atomic<std::ptrdiff_t> mortal[most_workers];

namespace {

template<typename Table, typename Entry>
size_t enter(Table& table, Entry entry) {
    for (size_t i = 0; i < std::size(table); ++i) {
        if (!table[i]) {
            table[i] = entry;
            return i;
        }
    }
    throw std::logic_error("too much to clean up");
}

} // namespace

Perishable::Perishable(const std::filesystem::path& name)
    : name_(name), slot_(enter(perishable, name_.c_str())) {}

Perishable::~Perishable() {
    const Uninterrupted now; // a handler that waits for the file to be closed would delete its heir
    perishable[slot_] = nullptr;
}

Mortal::Mortal(std::ptrdiff_t process) : slot_(enter(mortal, process)) {}

Mortal::~Mortal() { mortal[slot_] = 0; }
