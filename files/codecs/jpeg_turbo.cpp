// libjpeg-turbo: every JPEG that Kirvo's codec is not made for.
#include "codecs/codecs.hpp"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

#include <jerror.h>

namespace kirvo_files {
namespace {

constexpr int most_scans = 1000; // no real file has more; each costs a pass over the picture

struct ErrorManager : jpeg_error_mgr {
    jmp_buf back;
    char words[JMSG_LENGTH_MAX] = {};
    bool lost = false, early = false; // data is missing; because it was cut off
    bool left_over = false;           // data of a scan belongs to nothing
    uint32_t lost_row = 0;            // of MCUs, when that was found first
};

[[noreturn]] void leave(j_common_ptr info) {
    auto* errors = static_cast<ErrorManager*>(info->err);
    errors->format_message(info, errors->words);
    std::longjmp(errors->back, 1);
}

// Warnings that mean data is missing.
void warn(j_common_ptr info, int level) {
    if (level >= 0)
        return;
    auto* errors = static_cast<ErrorManager*>(info->err);
    const int code = errors->msg_code;
    const auto* decoder = reinterpret_cast<j_decompress_ptr>(info);
    errors->left_over |= code == JWRN_EXTRANEOUS_DATA && decoder->input_scan_number > 0;
    if (code != JWRN_HIT_MARKER && code != JWRN_HUFF_BAD_CODE && code != JWRN_MUST_RESYNC &&
        code != JWRN_JPEG_EOF && code != JWRN_ARITH_BAD_CODE)
        return;
    if (code == JWRN_JPEG_EOF && decoder->input_iMCU_row >= decoder->total_iMCU_rows)
        return; // only the end marker
    if (!errors->lost)
        errors->lost_row = decoder->input_iMCU_row;
    errors->lost = true;
    errors->early |= code == JWRN_JPEG_EOF;
}

void watch_scans(j_common_ptr info) {
    if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > most_scans)
        ERREXIT(info, JERR_CANT_SUSPEND);
}

void prepare_errors(ErrorManager& errors) {
    jpeg_std_error(&errors);
    errors.error_exit = leave;
    errors.emit_message = warn;
    errors.output_message = [](j_common_ptr) {};
}

// CMYK as printed: what Adobe's programs write is inverted.
void to_rgb(uint8_t* cmyk, uint32_t width, bool inverted) {
    uint8_t* out = cmyk;
    for (uint32_t x = 0; x < width; ++x, cmyk += 4) {
        const uint32_t flip = inverted ? 0 : 255, black = cmyk[3] ^ flip;
        for (uint32_t i = 0; i < 3; ++i)
            *out++ = static_cast<uint8_t>(((cmyk[i] ^ flip) * black + 127) / 255);
    }
}

class Decoder {
  public:
    explicit Decoder(Job& job) : job_(job) {}
    ~Decoder() { jpeg_destroy_decompress(&info_); }

    // Nothing with a destructor lives here: the library leaves by longjmp.
    Status run() {
        prepare_errors(errors_);
        info_.err = &errors_;
        if (setjmp(errors_.back) != 0)
            return failed();
        jpeg_create_decompress(&info_);
        progress_.progress_monitor = watch_scans;
        info_.progress = &progress_;
        jpeg_mem_src(&info_, job_.bytes.data(), static_cast<unsigned long>(job_.bytes.size()));
        jpeg_read_header(&info_, TRUE);
        choose();
        jpeg_start_decompress(&info_);
        const Status status = raster_.make(grey_ ? Pixels::grey : Pixels::rgb, info_.output_width,
                                           info_.output_height);
        if (status != KIRVO_FILES_OK)
            return status;
        if (!line_.resize(uint64_t{4} * info_.output_width))
            return KIRVO_FILES_NO_MEMORY;
        JSAMPROW row = line_.data();
        started_ = true;
        while (info_.output_scanline < info_.output_height) {
            const uint32_t y = info_.output_scanline;
            jpeg_read_scanlines(&info_, &row, 1);
            if (info_.out_color_space == JCS_CMYK)
                to_rgb(row, info_.output_width, info_.saw_Adobe_marker != 0);
            raster_.put(y, row);
        }
        return finished();
    }

  private:
    void choose() {
        grey_ = info_.jpeg_color_space == JCS_GRAYSCALE;
        info_.out_color_space = grey_                       ? JCS_GRAYSCALE
                                : info_.num_components == 4 ? JCS_CMYK
                                                            : JCS_RGB;
        info_.dct_method = JDCT_ISLOW;
        info_.do_fancy_upsampling = FALSE; // chroma by replication, as Kirvo does it
    }

    // Of several scans the last ones may be missing as a whole.
    bool coefficients_missing() const {
        if (info_.coef_bits == nullptr)
            return false;
        for (int part = 0; part < info_.num_components; ++part)
            for (int k = 0; k < DCTSIZE2; ++k)
                if (info_.coef_bits[part][k] != 0)
                    return true;
        return false;
    }

    Status finished() {
        if (info_.num_components == 4)
            job_.known.note(KIRVO_FILES_NOTE_REDUCED,
                            Text::format("CMYK became RGB without a profile"));
        const uint32_t row = errors_.lost_row * static_cast<uint32_t>(info_.max_v_samp_factor) * 8;
        const uint32_t whole = row < info_.output_height ? row : info_.output_height;
        if (errors_.lost && errors_.early)
            return job_.ends_early(whole);
        if (errors_.lost)
            return job_.damaged_below(whole);
        if (errors_.left_over)
            return job_.damaged_somewhere();
        if (info_.progressive_mode && coefficients_missing())
            return job_.damaged(Text::format("ends early: the last of its passes are missing"), 0);
        return KIRVO_FILES_OK;
    }

    Status failed() {
        const bool memory = errors_.msg_code == JERR_OUT_OF_MEMORY;
        if (memory)
            return KIRVO_FILES_NO_MEMORY;
        if (started_ && job_.dib)
            return job_.damaged(Text::format("damaged: %s", errors_.words), info_.output_scanline);
        const bool unknown =
            errors_.msg_code == JERR_BAD_PRECISION || errors_.msg_code == JERR_SOF_UNSUPPORTED ||
            errors_.msg_code == JERR_CONVERSION_NOTIMPL || errors_.msg_code == JERR_ARITH_NOTIMPL ||
            errors_.msg_code == JERR_FRACT_SAMPLE_NOTIMPL;
        return job_.known.fail(unknown ? KIRVO_FILES_UNSUPPORTED : KIRVO_FILES_DAMAGED,
                               Text::format("%s", errors_.words));
    }

    Job& job_;
    Raster raster_{job_};
    Buffer line_;
    jpeg_decompress_struct info_ = {};
    jpeg_progress_mgr progress_ = {};
    ErrorManager errors_ = {};
    bool grey_ = false, started_ = false;
};

class Encoder {
  public:
    Encoder(Saving& saving, const JpegPlan& plan) : saving_(saving), plan_(plan) {}
    ~Encoder() {
        jpeg_destroy_compress(&info_);
        std::free(made_);
    }

    Status run() {
        prepare_errors(errors_);
        info_.err = &errors_;
        errors_.emit_message = [](j_common_ptr, int) {};
        if (setjmp(errors_.back) != 0)
            return errors_.msg_code == JERR_OUT_OF_MEMORY
                       ? KIRVO_FILES_NO_MEMORY
                       : saving_.known.fail(KIRVO_FILES_UNSUPPORTED,
                                            Text::format("%s", errors_.words));
        jpeg_create_compress(&info_);
        jpeg_mem_dest(&info_, &made_, &count_);
        if (!line_.resize(uint64_t{3} * saving_.view.width()))
            return KIRVO_FILES_NO_MEMORY;
        set_up();
        jpeg_start_compress(&info_, TRUE);
        JSAMPROW row = line_.data();
        for (uint32_t y = 0; y < saving_.view.height(); ++y) {
            saving_.view.rgb_row(y, row);
            if (plan_.grey)
                to_grey(row);
            jpeg_write_scanlines(&info_, &row, 1);
        }
        jpeg_finish_compress(&info_);
        return saving_.out.assign({made_, count_}) ? KIRVO_FILES_OK : KIRVO_FILES_NO_MEMORY;
    }

  private:
    void set_up() {
        info_.image_width = saving_.view.width();
        info_.image_height = saving_.view.height();
        info_.input_components = plan_.grey ? 1 : 3;
        info_.in_color_space = plan_.grey ? JCS_GRAYSCALE : JCS_RGB;
        jpeg_set_defaults(&info_);
        for (int i = 0; i < info_.num_components; ++i) {
            const int number = plan_.table_of[i];
            info_.comp_info[i].h_samp_factor = plan_.grey ? 1 : plan_.across[i];
            info_.comp_info[i].v_samp_factor = plan_.grey ? 1 : plan_.down[i];
            info_.comp_info[i].quant_tbl_no = number;
            unsigned int table[64];
            for (int k = 0; k < 64; ++k) // the library takes it row by row
                table[k] = plan_.tables[number][k];
            jpeg_add_quant_table(&info_, number, table, 100, FALSE);
        }
        info_.optimize_coding = TRUE;
        info_.dct_method = JDCT_ISLOW;
    }

    void to_grey(uint8_t* row) const {
        const uint8_t* in = row;
        for (uint32_t x = 0; x < saving_.view.width(); ++x, in += 3)
            row[x] =
                static_cast<uint8_t>((19595 * in[0] + 38470 * in[1] + 7471 * in[2] + 32768) >> 16);
    }

    Saving& saving_;
    const JpegPlan& plan_;
    Buffer line_;
    unsigned char* made_ = nullptr;
    unsigned long count_ = 0;
    jpeg_compress_struct info_ = {};
    ErrorManager errors_ = {};
};

} // namespace

Status jpeg_turbo_decode(Job& job) {
    const Status status = Decoder(job).run();
    job.known.text(KIRVO_FILES_TEXT_DECODER) = Text::format("%s", jpeg_turbo_name());
    return status;
}

Status jpeg_turbo_encode(Saving& saving, const JpegPlan& plan) {
    return Encoder(saving, plan).run();
}

#define KIRVO_WORD(number) #number
#define KIRVO_WORDS(number) KIRVO_WORD(number)
const char* jpeg_turbo_name() {
#ifdef LIBJPEG_TURBO_VERSION
    return "libjpeg-turbo " KIRVO_WORDS(LIBJPEG_TURBO_VERSION);
#else
    return "libjpeg";
#endif
}

} // namespace kirvo_files
