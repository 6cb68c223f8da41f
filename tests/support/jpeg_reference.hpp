// A plain decoder that follows the stated behaviour step by step, to hold the library's against. It
// is driven as the library is: first, then next with each further piece.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace kirvo_test {

using Bytes = std::vector<uint8_t>;

class JpegReference {
  public:
    // What a call answers when it would have to make an image of more pixels than this.
    static constexpr int64_t most_pixels = 1 << 16;
    static constexpr int too_large = -1000;

    int first(const Bytes& bytes);
    int next(const Bytes& bytes, int final_flag);
    // First with everything, then the end.
    int whole(const Bytes& bytes);

    bool comments_on = false;

    // Results.
    int width = 0, height = 0, components = 3, restart_interval = 0, luma_blocks = 4;
    Bytes rows;                // of the finished image, as they are stored
    std::vector<int> progress; // messages of this decode, sent while it is watched
    int marker = 0;
    int64_t position = 0;
    int comment_count = 0;
    std::vector<std::string> comments;          // stored ones
    std::array<std::array<int, 64>, 4> slots{}; // in zigzag order
    std::array<bool, 4> slot_defined{};

  private:
    struct Table {
        std::array<int, 17> count{};
        std::array<int, 17> first{};
        std::array<int, 17> place{}; // of the first symbol of a length
        std::array<int, 256> symbols{};
    };
    using Block = std::array<int16_t, 64>; // coefficients
    using Mcu = std::array<Block, 8>;      // as many as there are, from the first on
    struct Restart {};
    struct Failure {
        int code;
    };

    int step();
    int read_segments(bool store);
    bool segment(int marker, bool store);
    void frame_header(const Bytes& c);
    void scan_header(const Bytes& c);
    void huffman(const Bytes& c);
    void start();
    void loop();
    void progressive();
    void baseline_mcu();
    void progressive_mcu();
    void block(Block& coefficients, const Table& dc, const Table& ac, int selector, int predictor);
    void block_once(Block& coefficients, const Table& dc, const Table& ac, int selector,
                    int predictor);
    void load();
    int bit();
    int receive(int n);
    int symbol(const Table& table, int row);
    void render(int mcu, const Mcu& blocks);
    void send(int percent);
    void complete();
    Block& stored(int mcu, int slot);

    Bytes buffer_;
    size_t at_ = 0;
    int state_ = 0, final_ = 0;
    bool soi_flag_ = false, prefix_ = false, done_ = false;
    int mode_ = -1;
    int luma_sampling_ = 0x22, chroma_sampling_ = 0x11;
    std::array<int, 4> selector_{};
    std::vector<std::array<int, 3>> scan_; // id, DC, AC
    int ss_ = 0, se_ = 63, ah_ = 0, al_ = 0;
    bool has_one_ = false, stop_ = false;
    std::array<Table, 4> dc_{}, ac_{};
    std::array<bool, 4> dc_defined_{}, ac_defined_{};
    std::array<std::array<int, 64>, 4> wide_{};

    // The decode under way. The frame's values may change below it.
    int picture_width_ = 0, picture_height_ = 0, picture_mode_ = 0, picture_components_ = 0;
    int mcu_w_ = 16, mcu_h_ = 16, lumas_ = 4, chromas_ = 1, chroma_across_ = 1;
    int across_ = 0, total_ = 0, counter_ = 0, plane_counter_ = 0;
    int64_t coverage_ = 0;
    int last_percent_ = 0;
    int current_ = 0, bit_position_ = 8, eob_run_ = 0, code_ = 0, length_ = 0;
    bool pending_ = false, first_block_ = false;
    std::array<int16_t, 3> predictor_{};
    std::vector<Mcu> store_;
    Block lost_{};
    Bytes pixels_;
};

} // namespace kirvo_test
