// Rows of a file that lie one behind the other without padding. Narrow ones are read several at a
// time, since a call of the system costs more than their bytes do.
#pragma once

#include "platform/platform.hpp"

#include <algorithm>
#include <cstring>

namespace kirvo {

class PackedRows {
  public:
    // So many rows of so many bytes come next in the file.
    PackedRows(InputFile& file, uint32_t row_bytes, uint32_t rows)
        : file_(file), row_bytes_(row_bytes), unread_(rows) {}

    // The next row; alone: nothing behind it is read, since the file may change before its turn.
    // False when the file ends before it does.
    bool next(uint8_t* to, bool alone) {
        if (row_bytes_ > room / 2)
            return file_.read(to, row_bytes_);
        if (ahead_ == 0)
            read_ahead(alone ? 1 : room / row_bytes_);
        if (ahead_ == 0)
            return false;
        std::memcpy(to, next_, row_bytes_);
        next_ += row_bytes_;
        --ahead_;
        return true;
    }

  private:
    static constexpr uint32_t room = 4096;

    void read_ahead(uint32_t most) {
        const uint32_t wanted = std::min(most, unread_);
        next_ = buffer_;
        ahead_ = file_.read_some(buffer_, wanted * row_bytes_) / row_bytes_;
        unread_ = ahead_ == wanted ? unread_ - wanted : 0;
    }

    InputFile& file_;
    uint32_t row_bytes_, unread_;
    uint32_t ahead_ = 0; // rows of the buffer that are still to come
    uint8_t* next_ = buffer_;
    uint8_t buffer_[room];
};

} // namespace kirvo
