#include "jpeg/encode_settings.hpp"

#include "core/memory.hpp"
#include "core/status.hpp"
#include "jpeg/session.hpp"

#include <algorithm>
#include <cstring>

namespace kirvo {

namespace {

// The tables of levels 1 to 5. They follow no rule: those of levels 1 and 2 are coarser at low
// frequencies than at high ones.
using Bank = std::array<QuantiserTable, 5>;

// clang-format off
constexpr Bank luminance_bank = {{{
    2, 2, 2, 3, 3, 3, 2, 2,  2, 2, 3, 3, 3, 2, 2, 2,  2, 3, 3, 3, 3, 2, 2, 2,  3, 3, 3, 3, 2, 2, 2, 2,
    3, 3, 3, 2, 2, 2, 2, 2,  3, 2, 2, 2, 2, 2, 2, 2,  2, 2, 2, 2, 2, 2, 2, 2,  2, 2, 2, 2, 2, 2, 2, 2,
}, {
    8, 9, 8, 8, 7, 6, 5, 3,  9, 9, 8, 7, 6, 5, 4, 3,  8, 8, 7, 7, 6, 5, 3, 3,  8, 7, 7, 6, 5, 4, 3, 3,
    7, 6, 6, 5, 5, 3, 3, 3,  6, 5, 5, 4, 3, 3, 3, 3,  5, 4, 3, 3, 3, 3, 3, 2,  3, 3, 3, 3, 3, 3, 2, 2,
}, {
    9,  9,  10, 10, 11, 13, 15, 17,  9,  10, 10, 10, 12, 14, 15, 18,
    10, 10, 10, 11, 12, 14, 16, 19,  10, 10, 11, 12, 14, 15, 17, 20,
    11, 12, 12, 14, 15, 16, 19, 23,  13, 14, 14, 15, 16, 17, 21, 27,
    15, 15, 16, 17, 19, 21, 26, 34,  17, 18, 19, 20, 23, 27, 34, 45,
}, {
    9,  11, 13, 15, 20, 34, 51, 68,  11, 12, 14, 17, 22, 35,  54,  72,
    13, 14, 17, 19, 25, 38, 58, 77,  15, 17, 19, 21, 29, 43,  63,  83,
    20, 22, 25, 29, 33, 47, 68, 89,  34, 35, 38, 43, 47, 52,  73,  97,
    51, 54, 58, 63, 68, 73, 79, 105, 68, 72, 77, 83, 89, 97, 105, 113,
}, {
    18, 21,  25,  28,  37,  63,  95,  126,  21,  23,  26,  32,  40,  65,  102, 135,
    25, 26,  32,  35,  47,  72,  109, 144,  28,  32,  35,  39,  54,  81,  117, 154,
    37, 40,  47,  54,  61,  88,  126, 166,  63,  65,  72,  81,  88,  96,  137, 180,
    95, 102, 109, 117, 126, 137, 147, 196,  126, 135, 144, 154, 166, 180, 196, 210,
}}};
constexpr Bank chrominance_bank = {{{
    2, 2, 3, 3, 3, 3, 2, 2,  2, 3, 3, 3, 3, 2, 2, 2,  3, 3, 3, 3, 3, 2, 2, 2,  3, 3, 3, 3, 2, 2, 2, 2,
    3, 3, 3, 2, 2, 2, 2, 2,  3, 2, 2, 2, 2, 2, 2, 2,  2, 2, 2, 2, 2, 2, 2, 2,  2, 2, 2, 2, 2, 2, 2, 2,
}, {
    10, 9, 8, 8, 7, 6, 5, 3,  9, 9, 8, 7, 6, 5, 4, 3,  8, 8, 7, 7, 6, 5, 3, 3,  8, 7, 7, 6, 5, 4, 3, 3,
    7,  6, 6, 5, 5, 3, 3, 3,  6, 5, 5, 4, 3, 3, 3, 3,  5, 4, 3, 3, 3, 3, 3, 2,  3, 3, 3, 3, 3, 3, 2, 2,
}, {
    12, 10, 11, 11, 13, 14, 16, 19,  10, 11, 11, 11, 13, 15, 17, 20,
    11, 11, 11, 13, 14, 16, 18, 21,  11, 11, 13, 13, 15, 17, 19, 23,
    13, 13, 14, 15, 16, 18, 21, 25,  14, 15, 16, 17, 18, 19, 24, 30,
    16, 17, 18, 19, 21, 24, 29, 38,  19, 20, 21, 23, 25, 30, 38, 50,
}, {
    11, 13, 15, 17, 22, 38, 57, 77,   13, 14, 16, 19, 24,  39,  62,  82,
    15, 16, 19, 21, 29, 44, 66, 87,   17, 19, 21, 23, 33,  49,  71,  94,
    22, 24, 29, 33, 37, 53, 77, 101,  38, 39, 44, 49, 53,  58,  83,  109,
    57, 62, 66, 71, 77, 83, 89, 119,  77, 82, 87, 94, 101, 109, 119, 128,
}, {
    20,  24,  28,  32,  42,  72,  108, 144,  24,  26,  30,  36,  46,  74,  116, 154,
    28,  30,  36,  40,  54,  82,  124, 164,  32,  36,  40,  44,  62,  92,  134, 176,
    42,  46,  54,  62,  70,  100, 144, 190,  72,  74,  82,  92,  100, 110, 156, 206,
    108, 116, 124, 134, 144, 156, 168, 224,  144, 154, 164, 176, 190, 206, 224, 240,
}}};
// clang-format on

constexpr int32_t all_coefficients = 64;
constexpr int32_t level_5_coefficients = 21;

bool acceptable(const int16_t* table) {
    return table != nullptr &&
           std::all_of(table, table + 64, [](int16_t entry) { return entry >= 1 && entry <= 255; });
}

void fill_slot(QuantisationSlot& slot, const QuantiserTable& table) {
    std::transform(zigzag.begin(), zigzag.end(), slot.begin(),
                   [&table](uint8_t natural) { return table[natural]; });
}

void load_custom(QuantiserTable& table, const int16_t* entries) {
    std::transform(entries, entries + table.size(), table.begin(),
                   [](int16_t entry) { return static_cast<uint8_t>(entry); });
}

} // namespace

void EncodeSettings::fill(QuantisationSlots& slots) const {
    const auto number = static_cast<size_t>(level - 1);
    fill_slot(slots[0], level == 0 ? custom_luminance : luminance_bank[number]);
    fill_slot(slots[1], level == 0 ? custom_chrominance : chrominance_bank[number]);
}

int32_t EncodeSettings::coded_count() const {
    switch (level) {
    case 0:
        return custom_count;
    case 5:
        return level_5_coefficients;
    default:
        return all_coefficients;
    }
}

void EncodeSettings::discard_comment() {
    if (comment != nullptr)
        GlobalFree(comment);
    comment = nullptr;
    comment_bytes = 0;
}

} // namespace kirvo

using namespace kirvo;

int32_t WINAPI JpgCodSetSubsample(int32_t mode) {
    if (mode != 1 && mode != 2 && mode != 4)
        return code(Status::bad_parameter);
    session.settings.sampling = mode;
    return code(Status::ok);
}

int32_t WINAPI JpgCodSetQ(int32_t q) {
    return q >= 0 && q <= 3 ? JpgCodSetQEx(q + 2) : code(Status::bad_parameter);
}

int32_t WINAPI JpgCodSetQEx(int32_t level) {
    if (level < 0 || level > 5)
        return code(Status::bad_parameter);
    session.settings.level = level;
    return code(Status::ok);
}

int32_t WINAPI JpgCodSetQtable(const int16_t* luminance, const int16_t* chrominance) {
    return JpgCodSetQtableEx(luminance, chrominance, all_coefficients);
}

int32_t WINAPI JpgCodSetQtableEx(const int16_t* luminance, const int16_t* chrominance,
                                 int32_t count) {
    if (!acceptable(luminance) || !acceptable(chrominance))
        return code(Status::bad_parameter);
    load_custom(session.settings.custom_luminance, luminance);
    load_custom(session.settings.custom_chrominance, chrominance);
    session.settings.custom_count = count >= 1 && count <= 64 ? count : all_coefficients;
    return code(Status::ok);
}

void WINAPI JpgCodSetComment(const uint8_t* text, uint32_t length) {
    constexpr uint32_t marker_and_length = 4;
    session.settings.discard_comment();
    if (length == 0 || text == nullptr)
        return;
    OwnedBlock block(allocate_block(uint64_t{length} + marker_and_length));
    const LockedBlock lock(block.get());
    if (!lock)
        return;
    uint8_t* segment = lock.data();
    segment[0] = 0xFF;
    segment[1] = 0xFE;
    segment[2] = static_cast<uint8_t>((length + 2) >> 8);
    segment[3] = static_cast<uint8_t>(length + 2);
    std::memcpy(segment + marker_and_length, text, length);
    session.settings.comment = block.release();
    session.settings.comment_bytes = length + marker_and_length;
}

uint32_t WINAPI JpgCodGetStatus(uint32_t* source_bytes, uint32_t* output_bytes) {
    report(source_bytes, session.settings.source_bytes);
    report(output_bytes, session.settings.output_bytes);
    return session.settings.output_bytes;
}
