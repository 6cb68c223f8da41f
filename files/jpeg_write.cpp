// JPEG: which tables and sampling, which encoder.
#include "jpeg_write.hpp"

namespace kirvo_files {
namespace {

// The source's tables serve where its components are the picture's.
bool has_tables_for(const JpegTables& tables, bool grey) {
    if (tables.components != (grey ? 1u : 3u) && !(grey && tables.components == 3))
        return false;
    for (uint32_t i = 0; i < (grey ? 1u : 3u); ++i)
        if (!tables.present[tables.table_of[i]])
            return false;
    return true;
}

// As the stored picture has them; turned along with it.
void take_tables(const Known& source, JpegPlan& plan) {
    const JpegTables& tables = source.jpeg;
    const bool transposed = source.upright && source.numbers.orientation >= 5;
    for (uint32_t number = 0; number < 4; ++number)
        for (uint32_t i = 0; i < 64; ++i)
            plan.tables[number][i] = tables.tables[number][transposed ? i % 8 * 8 + i / 8 : i];
    for (uint32_t i = 0; i < 3; ++i)
        plan.table_of[i] = tables.table_of[plan.grey ? 0 : i];
}

void take_sampling(const Known& source, JpegPlan& plan) {
    const JpegTables& tables = source.jpeg;
    const bool transposed = source.upright && source.numbers.orientation >= 5;
    for (uint32_t i = 0; i < 3; ++i) {
        plan.across[i] = transposed ? tables.down[i] : tables.across[i];
        plan.down[i] = transposed ? tables.across[i] : tables.down[i];
    }
}

void set_sampling(JpegPlan& plan, uint32_t mode) {
    plan.across[0] = mode >= 2 ? 2 : 1;
    plan.down[0] = mode == 4 ? 2 : 1;
    for (uint32_t i = 1; i < 3; ++i)
        plan.across[i] = plan.down[i] = 1;
}

uint32_t usual_sampling(uint32_t quality, uint32_t level) {
    return level == 1 || (level == 0 && quality >= 90) ? 1 : 4;
}

void set_quality(JpegPlan& plan, uint32_t quality) {
    tables_of_quality(quality, plan.tables[0], plan.tables[1]);
    plan.table_of[0] = 0;
    plan.table_of[1] = plan.table_of[2] = 1;
}

class JpegWriter {
  public:
    explicit JpegWriter(Saving& saving) : saving_(saving) {
        plan_.grey = saving.options.has(KIRVO_FILES_GREY) || saving.view.is_grey_ramp();
    }

    Status write() {
        if (saving_.view.width() > 65535 || saving_.view.height() > 65535)
            return saving_.known.fail(
                KIRVO_FILES_TOO_LARGE,
                Text::format("JPEG has 65535 pixels across and down at most"));
        Status status = choose();
        if (status == KIRVO_FILES_OK)
            status = encode();
        if (status == KIRVO_FILES_OK)
            status = below_limit();
        return status;
    }

  private:
    const SaveOptions& options() const { return saving_.options; }

    Status choose() {
        const Known* source = saving_.source;
        const bool kept = options().quality == 0 && options().level == 0 && source != nullptr &&
                          !options().has(KIRVO_FILES_FRESH) &&
                          has_tables_for(source->jpeg, plan_.grey);
        quality_ = options().quality != 0 ? options().quality : 90;
        if (kept) {
            take_tables(*source, plan_);
            quality_ = source->numbers.quality;
        } else if (options().level != 0) {
            const Status status = kirvo_level(options().level, plan_);
            if (status != KIRVO_FILES_OK)
                return status;
        } else {
            set_quality(plan_, quality_);
        }
        if (options().subsample != 0)
            set_sampling(plan_, options().subsample);
        else if (kept && !plan_.grey)
            take_sampling(*source, plan_);
        else
            set_sampling(plan_, usual_sampling(quality_, options().level));
        return KIRVO_FILES_OK;
    }

    Status encode() {
        saving_.out.clear();
        const char* why = "its tables or sampling are not ones of Kirvo's encoder";
        if (plan_.for_kirvo()) {
            const Status status = kirvo_encode(saving_.view, plan_, saving_.out);
            if (status != KIRVO_FILES_NO_CODEC) {
                saving_.known.text(KIRVO_FILES_TEXT_DECODER) = Text::format("Kirvo");
                return status;
            }
            why = "the stream outgrows the block of Kirvo's encoder";
        }
        const Status status = encode_jpeg(saving_, plan_, quality_);
        if (status == KIRVO_FILES_NO_CODEC)
            return simpler();
        if (status == KIRVO_FILES_OK && !noted_) {
            saving_.known.note(
                KIRVO_FILES_NOTE_ENCODER,
                Text::format("encoded by %s: %s", encoder_name(KIRVO_FILES_JPEG), why));
            saving_.known.text(KIRVO_FILES_TEXT_DECODER) =
                Text::format("%s", encoder_name(KIRVO_FILES_JPEG));
            noted_ = true;
        }
        return status;
    }

    // Without another encoder: what Kirvo's can do, ever coarser.
    Status simpler() {
        JpegPlan plan = plan_;
        if (!plan.for_kirvo()) {
            set_quality(plan, quality_ != 0 ? quality_ : 90);
            set_sampling(plan, usual_sampling(quality_, 0));
        }
        for (uint32_t quality = quality_ < 100 && quality_ != 0 ? quality_ : 99;;
             quality -= quality > 10 ? 10 : quality) {
            const Status status = kirvo_encode(saving_.view, plan, saving_.out);
            if (status != KIRVO_FILES_NO_CODEC || quality == 0) {
                saving_.known.note(KIRVO_FILES_NOTE_ENCODER,
                                   Text::format("saved with tables and sampling that Kirvo's"
                                                " encoder has, like quality %u",
                                                quality));
                return status == KIRVO_FILES_NO_CODEC ? KIRVO_FILES_NO_MEMORY : status;
            }
            set_quality(plan, quality);
            set_sampling(plan, 4);
        }
    }

    // The best quality whose stream is small enough.
    Status below_limit() {
        const uint64_t limit = options().size_limit;
        if (limit == 0 || fits(limit))
            return KIRVO_FILES_OK;
        uint32_t good = 0, bad = quality_ < 100 ? quality_ + 1 : 101;
        if (bad < 3)
            bad = 3;
        plan_.coefficients = 64;
        while (bad - good > 1) {
            const uint32_t middle = (good + bad) / 2;
            const Status status = encode_at(middle);
            if (status != KIRVO_FILES_OK)
                return status;
            (fits(limit) ? good : bad) = middle;
        }
        if (good == 0)
            return saving_.known.fail(KIRVO_FILES_SIZE_LIMIT,
                                      Text::format("even the coarsest quality takes more than %u"
                                                   " bytes",
                                                   options().size_limit));
        saving_.known.note(
            KIRVO_FILES_NOTE_ENCODER,
            Text::format("quality %u keeps it below %u bytes", good, options().size_limit));
        return encode_at(good);
    }

    Status encode_at(uint32_t quality) {
        quality_ = quality;
        set_quality(plan_, quality);
        if (options().subsample == 0)
            set_sampling(plan_, usual_sampling(quality, 0));
        return encode();
    }

    bool fits(uint64_t limit) const { return saving_.out.size() + metadata_room() <= limit; }

    uint64_t metadata_room() const {
        if (saving_.source == nullptr)
            return 0;
        uint64_t room = 80;
        for (const auto kind : {KIRVO_FILES_DATA_EXIF, KIRVO_FILES_DATA_ICC, KIRVO_FILES_DATA_XMP,
                                KIRVO_FILES_DATA_COMMENT}) {
            const uint64_t size =
                saving_.source->metadata(kind, options().has(KIRVO_FILES_STRIP)).size();
            room += size + size / 65000 * 18; // in segments
        }
        return room;
    }

    Saving& saving_;
    JpegPlan plan_;
    uint32_t quality_ = 90;
    bool noted_ = false;
};

} // namespace

Status write_jpeg(Saving& saving) { return JpegWriter(saving).write(); }

} // namespace kirvo_files
