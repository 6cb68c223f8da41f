/**
 * @file kirvo.hpp
 * @brief Kirvo for C++17 and later: images that free themselves, errors that are thrown.
 *
 * A layer of this header alone over kirvo.h and kirvo_files.h:
 * @code
 *     kirvo::Image photo = kirvo::Image::open("photo.jpg");
 *     photo.crop(0, 0, 1600, 1200).resize(800, 600).sharpen().save("small.png");
 * @endcode
 * Effects give a new image; an image of a depth that an effect does not take becomes one of 24 bits
 * first. Whatever fails throws kirvo::Error. Threads may use images of their own at the same time:
 * they take turns in the library. Programs link with Kirvo::kirvo_files, or with Kirvo::kirvo alone
 * if they neither open nor save.
 *
 * Written by script/bindings from interface/: changes belong there.
 */
#ifndef KIRVO_HPP
#define KIRVO_HPP

#include "kirvo_files.h"

#include <cstdint>
#include <cstring>
#include <exception>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>
#if __cplusplus >= 202002L
#include <span>
#endif
#ifndef _WIN32
#include <mutex>
#endif

/** The class for pictures, and what goes with it. */
namespace kirvo {

/** What went wrong, in words, and the status code behind it. */
class Error : public std::runtime_error {
  public:
    /** @param status the code @param text what what() gives */
    Error(int32_t status, const std::string& text) : std::runtime_error(text), status_(status) {}
    /** The code behind the words. @return a KirvoStatus or a KirvoFilesStatus */
    int32_t status() const noexcept { return status_; }

  private:
    int32_t status_;
};

/** Receives percentages: 0, then steps of at least 5, and 100 at the end. What it throws ends the
 *  operation and arrives where that was called. */
using Progress = std::function<void(int)>;

/** The part of a picture that an effect works on; by default all of it. A width or height below 0
 *  goes as far as the picture. */
struct Area {
    int32_t x = 0;       /**< pixels from the left */
    int32_t y = 0;       /**< pixels from the top */
    int32_t width = -1;  /**< pixels, or all that follow */
    int32_t height = -1; /**< pixels, or all that follow */
};

/** A colour as the library writes it. @param red,green,blue 0 to 255 @return 0x00BBGGRR */
constexpr uint32_t rgb(uint8_t red, uint8_t green, uint8_t blue) {
    return red | uint32_t{green} << 8 | uint32_t{blue} << 16;
}

/** How a value is held against a range. */
enum class Test { anything = 0, inside = 1, outside = 2 };

/** A range of values, for keep_channels and keep_colours. */
struct Range {
    int16_t lower = 0;          /**< the first value inside */
    int16_t upper = 0;          /**< the last value inside */
    Test test = Test::anything; /**< which values are kept */
    /** As keep_channels takes it, whose values are 0 to 255. */
    operator uint32_t() const {
        if (lower < 0 || lower > 255 || upper < 0 || upper > 255)
            throw Error(KIRVO_BAD_PARAMETER, "a range of channels is from 0 to 255");
        return static_cast<uint32_t>(lower) | static_cast<uint32_t>(upper) << 8 |
               static_cast<uint32_t>(test) << 16;
    }
};

/** How opening is done: the flags of kirvo_files.h, added. */
struct OpenOptions {
    uint32_t flags = 0;      /**< KIRVO_FILES_NO_TURN to KIRVO_FILES_BACKGROUND, added */
    uint32_t background = 0; /**< 0x00BBGGRR, with KIRVO_FILES_BACKGROUND; otherwise white */
    uint32_t frame = 0;      /**< which picture, from 1; 0: an icon's best, else the first */
};

/** How saving is done: the fields of KirvoFilesSaveOptions. */
struct SaveOptions {
    uint32_t quality = 0;                 /**< JPEG and WebP: 1 to 100; 0: the source's, or 90 */
    int32_t format = KIRVO_FILES_UNKNOWN; /**< a KirvoFilesFormat, by default the name's */
    uint32_t flags = 0;                   /**< KIRVO_FILES_STRIP to KIRVO_FILES_FRESH, added */
    uint32_t level = 0;                   /**< JPEG: quality level 1 to 5 in place of quality */
    uint32_t subsample = 0;               /**< JPEG: 1, 2 or 4; 0: the source's, or by quality */
    uint32_t size_limit = 0;              /**< JPEG and WebP: bytes at most; 0: any */
    uint32_t bits = 0;                    /**< of a pixel, 8, 16, 24 or 32; 0: the picture's */
    int32_t compression = KIRVO_FILES_COMPRESSION_USUAL; /**< TIFF: a KirvoFilesCompression */
    double dpi_across = 0;                               /**< dots an inch; 0: the source's */
    double dpi_down = 0;                                 /**< dots an inch; 0: the source's */
};

// clang-format off
/** What Image::resize may be told. */
struct ResizeOptions {
    /** 1 switches smoothing on, any other value off */
    bool smooth = true;
};

/** What Image::rotate_90 may be told. */
struct Rotate90Options {
    /** 0 clockwise: the top left corner goes to the top right; 1 counter-clockwise: it goes to the
     * bottom left */
    int32_t direction = 0;
};

/** What Image::gamma_channels may be told. */
struct GammaChannelsOptions {
    /** gammas, 0 or more */
    double red = 1.0;
    /** gammas, 0 or more */
    double green = 1.0;
    /** gammas, 0 or more */
    double blue = 1.0;
};

/** What Image::tone_channels may be told. */
struct ToneChannelsOptions {
    /** factors, 0 or more */
    double red = 1.0;
    /** factors, 0 or more */
    double green = 1.0;
    /** factors, 0 or more */
    double blue = 1.0;
};

/** What Image::sharpen may be told. */
struct SharpenOptions {
    /** 0 (divides by 8) to 3 (by 2); any other value acts as 0 */
    int32_t strength = 0;
};

/** What Image::relief may be told. */
struct ReliefOptions {
    /** 0 to 5 */
    int32_t mode = 1;
};

/** What Image::colour_edges may be told. */
struct ColourEdgesOptions {
    /** any value */
    int32_t threshold = 20;
    /** 0, 1 or 2 */
    int32_t mode = 0;
};

/** What Image::dilate may be told. */
struct DilateOptions {
    /** 1 to 64 */
    int32_t radius = 1;
    /** 0 for channels on their own, else by luminance */
    bool luminance = false;
};

/** What Image::erode may be told. */
struct ErodeOptions {
    /** 1 to 64 */
    int32_t radius = 1;
    /** 0 for channels on their own, else by luminance */
    bool luminance = false;
};

/** What Image::exact_256 may be told. */
struct Exact256Options {
    /** 0 or 1 */
    int32_t mode = 1;
};

/** What Image::exact_16 may be told. */
struct Exact16Options {
    /** 0 or 1 */
    int32_t mode = 1;
};

/** What Image::paste may be told. */
struct PasteOptions {
    /** corner of the rectangle in the destination */
    int32_t to_left = 0;
    /** corner of the rectangle in the destination */
    int32_t to_top = 0;
};

/** What Image::compose may be told. */
struct ComposeOptions {
    /** 0 to 4 */
    int32_t mode = 0;
    /** corner of the rectangle in the destination */
    int32_t to_left = 0;
    /** corner of the rectangle in the destination */
    int32_t to_top = 0;
};

// clang-format on

/** How often each value of each channel occurs. */
struct Histogram {
    uint32_t red[256];   /**< counts of red */
    uint32_t green[256]; /**< counts of green */
    uint32_t blue[256];  /**< counts of blue */
};

/** @cond */
#if __cplusplus >= 202002L
template<typename Byte>
using Bytes = std::span<Byte>;
#else
/** The same before there are spans. */
template<typename Byte>
class Bytes {
  public:
    Bytes(Byte* data, size_t size) : data_(data), size_(size) {}
    Byte* data() const { return data_; }
    size_t size() const { return size_; }
    Byte* begin() const { return data_; }
    Byte* end() const { return data_ + size_; }
    Byte& operator[](size_t index) const { return data_[index]; }

  private:
    Byte* data_;
    size_t size_;
};
#endif
/** @endcond */
using Row = Bytes<uint8_t>;            /**< the bytes of a row, without padding */
using ConstRow = Bytes<const uint8_t>; /**< the bytes of a constant image's row */

/** @cond */
struct Freer {
    void operator()(void* block) const { GlobalFree(block); }
};
/** @endcond */

/** A block of memory that frees itself: an image, or the bytes of a file. */
using Block = std::unique_ptr<void, Freer>;

/** A block's bytes, in memory for as long as this lives. */
class Locked {
  public:
    /** @param block not null */
    explicit Locked(HGLOBAL block)
        : block_(block), address_(static_cast<uint8_t*>(GlobalLock(block))) {
        if (!address_)
            throw Error(KIRVO_NULL_HANDLE, kirvo_status_text(KIRVO_NULL_HANDLE));
    }
    /** @cond */
    Locked(Locked&& other) noexcept
        : block_(std::exchange(other.block_, nullptr)), address_(other.address_) {}
    Locked& operator=(Locked&&) = delete;
    ~Locked() {
        if (block_)
            GlobalUnlock(block_);
    }
    /** @endcond */
    /** @return the first byte */
    uint8_t* address() const { return address_; }
    /** @return how many bytes the block has */
    size_t size() const { return GlobalSize(block_); }
    /** @return what an image begins with */
    const BITMAPINFOHEADER& header() const {
        if (size() < sizeof(BITMAPINFOHEADER))
            throw Error(KIRVO_BAD_PARAMETER, "the block is smaller than an image's header");
        return *reinterpret_cast<const BITMAPINFOHEADER*>(address_);
    }

  private:
    HGLOBAL block_;
    uint8_t* address_;
};

/** What holds inside this header. */
namespace detail {

#ifdef _WIN32
/** A lock that one thread may take several times. */
class Mutex {
  public:
    Mutex() { InitializeCriticalSection(&section_); }
    void lock() { EnterCriticalSection(&section_); }
    void unlock() { LeaveCriticalSection(&section_); }

  private:
    CRITICAL_SECTION section_;
};
#else
using Mutex = std::recursive_mutex;
#endif

/** One operation runs at a time. */
inline Mutex& library() {
    static Mutex& mutex = *new Mutex; // outlives every image, whatever the order of ends
    return mutex;
}

/** What this thread's operations report to. */
inline const Progress*& listener() {
    static thread_local const Progress* progress = nullptr;
    return progress;
}

/** The operation that runs now. It holds the library for itself, reports its progress and gives on
 *  what the report has thrown. */
class Operation {
  public:
    Operation() {
        library().lock();
        if (++depth() == 2)
            mute();
    }
    ~Operation() {
        if (progress_) {
            mute();
            reporting() = nullptr;
        }
        if (--depth() == 1)
            speak();
        library().unlock();
    }
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    /** The next call of the library is what reports; operations inside another do not. */
    void begin() {
        if (depth() > 1 || !listener() || !*listener())
            return;
        progress_ = listener();
        reporting() = this;
        speak();
    }
    /** Throws what a report has thrown; otherwise says that all is done. */
    void finish() {
        rethrow();
        if (progress_ && last_ != 100)
            receive(100);
        rethrow();
    }
    void rethrow() {
        if (thrown_)
            std::rethrow_exception(std::exchange(thrown_, nullptr));
    }

  private:
    static constexpr uint32_t command = 1;

    // Both are kept by the library's lock.
    static int& depth() {
        static int operations = 0;
        return operations;
    }
    static Operation*& reporting() {
        static Operation* operation = nullptr;
        return operation;
    }

    static void mute() {
        if (reporting())
            KirvoSetProcess(nullptr, command, 0);
    }
    static void speak() {
        if (reporting() && !reporting()->is_telling_ && !reporting()->thrown_)
            KirvoSetProcess(window(), command, 1);
    }

    /** What the report itself has done is not reported. */
    void receive(int percent) {
        if (thrown_)
            return;
        mute();
        is_telling_ = true;
        try {
            last_ = percent;
            (*progress_)(percent);
        } catch (...) {
            thrown_ = std::current_exception();
            abandon();
        }
        is_telling_ = false;
        speak();
    }

    /** A codec stops; an effect runs to its end without further reports. */
    static void abandon() {
        HGLOBAL image = nullptr;
        uint32_t bytes = 0;
        JpgDecNext(nullptr, 0, -1, &image);
        JpgCodNext(-1, &bytes);
        JpgCodNext_M(-1, &bytes);
    }

    static LRESULT report(WPARAM wparam, LPARAM percent) {
        if (wparam == command && reporting())
            reporting()->receive(static_cast<int>(percent));
        return 0;
    }

#ifdef _WIN32
    static LRESULT CALLBACK answer(HWND window, UINT message, WPARAM first, LPARAM second) {
        return message == WM_COMMAND ? report(first, second)
                                     : DefWindowProcA(window, message, first, second);
    }
    /** A hidden window of this thread, so that no other has to fetch its messages. */
    static HWND window() {
        struct Window {
            HWND handle = CreateWindowExA(0, "STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE,
                                          nullptr, nullptr, nullptr);
            Window() {
                SetWindowLongPtrA(handle, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(answer));
            }
            ~Window() { DestroyWindow(handle); }
        };
        static thread_local Window window;
        return window.handle;
    }
#else
    static LRESULT answer(HWND, UINT, WPARAM first, LPARAM second) { return report(first, second); }
    static HWND window() {
        KirvoWindowHost host{};
        host.SendMessageA = answer;
        KirvoSetWindowHost(&host);
        return reinterpret_cast<HWND>(&listener());
    }
#endif

    const Progress* progress_ = nullptr;
    bool is_telling_ = false;
    std::exception_ptr thrown_;
    int last_ = -1;
};

inline void check(int32_t status, const char* what) {
    if (status < 0)
        throw Error(status, std::string(what) + ": " + kirvo_status_text(status));
}

/** A text of a function that answers how much room it wants, the zero byte with it. */
template<typename Call>
std::string words(const Call& call) {
    std::string text(call(nullptr, 0), '\0');
    if (!text.empty())
        text.resize(call(text.data(), static_cast<uint32_t>(text.size())) - 1);
    return text;
}

inline KirvoFilesOpenOptions filled(const OpenOptions& options) {
    return {sizeof(KirvoFilesOpenOptions), options.flags, options.background, options.frame};
}

inline KirvoFilesSaveOptions filled(const SaveOptions& options) {
    KirvoFilesSaveOptions how{};
    how.size = sizeof how;
    how.format = options.format;
    how.flags = options.flags;
    how.quality = options.quality;
    how.level = options.level;
    how.subsample = options.subsample;
    how.sizeLimit = options.size_limit;
    how.bits = options.bits;
    how.compression = options.compression;
    how.dpiAcross = options.dpi_across;
    how.dpiDown = options.dpi_down;
    return how;
}

inline Block block_of(const void* bytes, size_t count) {
    Block block(GlobalAlloc(GMEM_MOVEABLE, count));
    if (!block)
        throw Error(KIRVO_NO_MEMORY, kirvo_status_text(KIRVO_NO_MEMORY));
    if (count)
        std::memcpy(Locked(block.get()).address(), bytes, count);
    return block;
}

} // namespace detail

/** Operations of this thread report to a callable for as long as this lives. Away from Windows this
 *  sets the window host of kirvo.h. */
class Watch {
  public:
    /** @param progress receives percentages; an empty one keeps operations silent */
    explicit Watch(Progress progress)
        : progress_(std::move(progress)), outer_(std::exchange(detail::listener(), &progress_)) {}
    ~Watch() { detail::listener() = outer_; }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

  private:
    Progress progress_;
    const Progress* outer_;
};

/** What is known of a file besides its pixels. */
class File {
  public:
    /** Nothing is known. */
    File() = default;
    /** @cond */
    File(File&& other) noexcept : file_(std::exchange(other.file_, nullptr)) {}
    File& operator=(File&& other) noexcept {
        std::swap(file_, other.file_);
        return *this;
    }
    ~File() { KirvoFilesClose(file_); }
    /** @endcond */

    /** Reads what a file says of itself, its pixels not.
     *  @param name the file @param options how @return what is known of it */
    static File read(const std::filesystem::path& name, const OpenOptions& options = {}) {
        const detail::Operation operation;
        const KirvoFilesOpenOptions how = detail::filled(options);
        File file;
#ifdef _WIN32
        const int32_t status = KirvoFilesInfoW(name.c_str(), &how, file.receiver());
#else
        const int32_t status = KirvoFilesInfo(name.c_str(), &how, file.receiver());
#endif
        file.check(status);
        return file;
    }

    /** For the functions of kirvo_files.h. @return what they know a file by; it stays owned */
    KirvoFile handle() const { return file_; }
    /** For functions of kirvo_files.h that give a file: nothing is known until they have.
     *  @return where they put it */
    KirvoFile* receiver() {
        KirvoFilesClose(std::exchange(file_, nullptr));
        return &file_;
    }
    /** @return numbers and properties; all zero of nothing */
    KirvoFilesDescription description() const {
        KirvoFilesDescription said{};
        said.size = sizeof said;
        KirvoFilesDescribe(file_, &said);
        return said;
    }
    /** @param kind a KirvoFilesTextKind @param index of several @return the text, empty for none */
    std::string text(int32_t kind, uint32_t index = 0) const {
        return detail::words([&](char* text, uint32_t room) {
            return KirvoFilesText(file_, kind, index, text, room);
        });
    }
    /** @param kind a KirvoFilesDataKind @return the bytes, empty for none */
    std::vector<uint8_t> data(int32_t kind) const {
        std::vector<uint8_t> bytes(KirvoFilesData(file_, kind, nullptr, 0));
        KirvoFilesData(file_, kind, bytes.data(), static_cast<uint32_t>(bytes.size()));
        return bytes;
    }
    /** Gives what is saved along with a picture. @param kind a KirvoFilesDataKind that can be set
     *  @param bytes,count they; none of them: without */
    void set_data(int32_t kind, const void* bytes, size_t count) {
        if (count > UINT32_MAX)
            throw Error(KIRVO_FILES_TOO_LARGE, "set_data: 4 GB or more");
        check(KirvoFilesSetData(&file_, kind, bytes, static_cast<uint32_t>(count)));
    }
    /** @return what had to be left out or repaired */
    std::vector<std::string> notes() const {
        std::vector<std::string> notes;
        for (uint32_t index = 0; index < description().notes; ++index)
            notes.push_back(text(KIRVO_FILES_TEXT_NOTE, index));
        return notes;
    }
    /** Throws what a function has answered, unless it is success, in the words that name the file.
     *  @param status the answer */
    void check(int32_t status) const {
        if (status == KIRVO_FILES_OK)
            return;
        const auto meaning = [=](char* text, uint32_t room) {
            return KirvoFilesStatusText(status, text, room);
        };
        const std::string reason = text(KIRVO_FILES_TEXT_REASON);
        throw Error(status, reason.empty() ? detail::words(meaning) : reason);
    }

  private:
    KirvoFile file_ = nullptr;
};

/** The pixels of an image, in memory for as long as this lives, row by row from the top. A pixel of
 *  24 bits is three bytes: blue, green, red. */
template<typename Byte>
class BasicRows {
  public:
    int32_t width() const { return width_; }   /**< @return pixels across */
    int32_t height() const { return height_; } /**< @return how many rows there are */
    int32_t bits() const { return bits_; }     /**< @return bits of a pixel */
    /** A row. @param y how many lie above it @return its bytes */
    Bytes<Byte> operator[](int32_t y) const {
        const size_t bytes = (static_cast<size_t>(width_) * static_cast<size_t>(bits_) + 7) / 8;
        return Bytes<Byte>(bottom_ + stride_ * static_cast<size_t>(height_ - 1 - y), bytes);
    }
    /** All pixels in one piece. @return the bytes of the rows, the bottom one first, each padded to a
     *  multiple of four */
    Bytes<Byte> pixels() const {
        return Bytes<Byte>(bottom_, stride_ * static_cast<size_t>(height_));
    }
    /** @cond */
    class Iterator {
      public:
        Iterator(const BasicRows* rows, int32_t y) : rows_(rows), y_(y) {}
        Bytes<Byte> operator*() const { return (*rows_)[y_]; }
        Iterator& operator++() {
            ++y_;
            return *this;
        }
        bool operator!=(const Iterator& other) const { return y_ != other.y_; }

      private:
        const BasicRows* rows_;
        int32_t y_;
    };
    Iterator begin() const { return Iterator(this, 0); }
    Iterator end() const { return Iterator(this, height_); }
    /** @endcond */

  private:
    friend class Image;
    explicit BasicRows(HGLOBAL dib) : block_(dib) {
        const BITMAPINFOHEADER& header = block_.header();
        const uint64_t size = block_.size(), start = uint64_t{header.biSize} + PaletteSize(&header);
        width_ = header.biWidth;
        height_ = header.biHeight;
        bits_ = header.biBitCount;
        const uint64_t stride = (static_cast<uint64_t>(width_) * header.biBitCount + 31) / 32 * 4;
        if (width_ < 1 || height_ < 1 || size < start ||
            stride > (size - start) / static_cast<uint64_t>(height_))
            throw Error(KIRVO_BAD_PARAMETER, "rows: the image is smaller than its header says");
        bottom_ = block_.address() + start;
        stride_ = static_cast<size_t>(stride);
    }

    Locked block_;
    Byte* bottom_;
    size_t stride_;
    int32_t width_, height_, bits_;
};
using Rows = BasicRows<uint8_t>;            /**< the pixels of an image */
using ConstRows = BasicRows<const uint8_t>; /**< the pixels of a constant image */

/** A picture: a packed DIB that this object owns. It moves; copies are made by copy(). */
class Image {
  public:
    /** No picture. */
    Image() = default;

    /** A new image, black. @param width,height pixels @param bits 1, 4, 8, 16, 24 or 32 */
    Image(int32_t width, int32_t height, int32_t bits = 24)
        : dib_(DibMemAllocEx(static_cast<uint32_t>(width), height, static_cast<uint32_t>(bits))) {
        if (!dib_)
            throw Error(KIRVO_BAD_PARAMETER, "Image: no such size or depth, or not enough memory");
        static const uint32_t masks[2][3] = {{0xF800, 0x07E0, 0x001F},
                                             {0x00FF0000, 0x0000FF00, 0x000000FF}};
        if (bits == 16 || bits == 32)
            std::memcpy(Locked(dib_.get()).address() + sizeof(BITMAPINFOHEADER), masks[bits == 32],
                        sizeof masks[0]);
    }

    /** Takes a packed DIB over. @param dib which is freed with the image @return its image */
    static Image adopt(HGLOBAL dib) {
        Image image;
        image.dib_.reset(dib);
        return image;
    }

    /** Opens a picture of any format, turned upright.
     *  @param name the file @param progress receives percentages @param options how
     *  @return the picture */
    static Image open(const std::filesystem::path& name, Progress progress = nullptr,
                      const OpenOptions& options = {}) {
        return opened(std::move(progress), options, [&](const auto& how, auto* dib, auto* file) {
#ifdef _WIN32
            return KirvoFilesOpenW(name.c_str(), how, dib, file);
#else
            return KirvoFilesOpen(name.c_str(), how, dib, file);
#endif
        });
    }

    /** Opens a picture that is in memory. @param bytes,count the file's content
     *  @param options how @return the picture */
    static Image open(const void* bytes, size_t count, const OpenOptions& options = {}) {
        if (count > UINT32_MAX)
            throw Error(KIRVO_FILES_TOO_LARGE, "open: 4 GB or more");
        return opened(nullptr, options, [&](const auto& how, auto* dib, auto* file) {
            return KirvoFilesOpenMemory(bytes, static_cast<uint32_t>(count), how, dib, file);
        });
    }

    /** Saves the picture in the format that the name tells, complete or not at all. What the file
     *  that it came from knew besides its pixels goes along. @param name the file @param options how */
    void save(const std::filesystem::path& name, const SaveOptions& options = {}) const {
        detail::Operation operation;
        operation.begin();
        const KirvoFilesSaveOptions how = detail::filled(options);
        const KirvoFile from = file().handle();
        File known;
#ifdef _WIN32
        const int32_t status =
            KirvoFilesSaveW(name.c_str(), handle(), from, &how, known.receiver());
#else
        const int32_t status = KirvoFilesSave(name.c_str(), handle(), from, &how, known.receiver());
#endif
        operation.rethrow();
        known.check(status);
        operation.finish();
    }

    /** Saves into memory. @param options how; the format is needed @return the bytes of a file */
    std::vector<uint8_t> encode(const SaveOptions& options) const {
        detail::Operation operation;
        operation.begin();
        const KirvoFilesSaveOptions how = detail::filled(options);
        File known;
        HGLOBAL made = nullptr;
        uint32_t count = 0;
        const int32_t status =
            KirvoFilesSaveMemory(handle(), file().handle(), &how, &made, &count, known.receiver());
        const Block block(made);
        operation.rethrow();
        known.check(status);
        operation.finish();
        const Locked bytes(made);
        return std::vector<uint8_t>(bytes.address(), bytes.address() + count);
    }

    /** What is known besides the pixels.
     *  @return the file that the picture came from; of other pictures nothing is known */
    const File& file() const {
        static const File& none = *new File; // outlives every image
        return file_ ? *file_ : none;
    }
    /** The numbers of file(). @return what it says; all zero for other pictures */
    KirvoFilesDescription description() const { return file().description(); }
    /** How opening went. @return what had to be left out or repaired */
    std::vector<std::string> notes() const { return file().notes(); }

    /** @return whether there is a picture */
    explicit operator bool() const { return dib_ != nullptr; }
    /** For the functions of kirvo.h. @return the packed DIB, which stays owned */
    HGLOBAL handle() const {
        if (!dib_)
            throw Error(KIRVO_NULL_HANDLE, "there is no picture");
        return dib_.get();
    }
    /** Gives the picture away. @return the packed DIB, which is the caller's to free from now on */
    HGLOBAL release() { return dib_.release(); }

    /** @return pixels across */
    int32_t width() const { return Locked(handle()).header().biWidth; }
    /** @return pixels from top to bottom */
    int32_t height() const { return Locked(handle()).header().biHeight; }
    /** @return bits of a pixel: 1, 4, 8, 16, 24 or 32 */
    int32_t bits() const { return Locked(handle()).header().biBitCount; }
    /** The pixels in memory. @return their rows from the top */
    Rows rows() & { return Rows(handle()); }
    /** The pixels in memory. @return their rows from the top, to be read */
    ConstRows rows() const& { return ConstRows(handle()); }
    /** An image that ends at once has no rows that could be used. */
    void rows() const&& = delete;

    /** @return another image of the same pixels */
    Image copy() const {
        const Locked from(handle());
        return made(detail::block_of(from.address(), GlobalSize(dib_.get())).release());
    }

    /** The picture at another depth. @param bits 16, 24 or 32 @return the new image */
    Image convert(int32_t bits) const {
        const int32_t now = this->bits();
        if (bits != 16 && bits != 24 && bits != 32)
            throw Error(KIRVO_BAD_PARAMETER, "convert: 16, 24 or 32 bits");
        if (bits == now)
            return copy();
        if (now <= 8 && bits != 24)
            return convert(24).convert(bits);
        const auto function = now <= 8     ? IncreaseColor16M
                              : bits == 24 ? DibConvert24bit
                              : bits == 16 ? DibConvert16bit
                                           : DibConvert32bit;
        return make(
            "convert", {1, 4, 8, 16, 24, 32}, {},
            [&](HGLOBAL dib, const Area&, int32_t* status) { return function(dib, status); });
    }

    // clang-format off
    /** Duplicates a rectangle into a new image of the same depth, with its colour table or masks.
     *  @param left rectangle in the source
     *  @param top rectangle in the source
     *  @param width rectangle in the source
     *  @param height rectangle in the source
     *  @return the new image */
    Image crop(int32_t left, int32_t top, int32_t width, int32_t height) const {
        return make("crop", {8, 16, 24, 32}, {}, [&](HGLOBAL dib, const Area&, int32_t* status) {
            return Dib24DupEx(dib, left, top, width, height, status);
        });
    }

    /** Resizes a rectangle into a new image by taking the nearest pixel, as Dib24ZoomEx but with
     * 32-bit coordinates, or by averaging.
     *  @param new_width size of the result, at least 1
     *  @param new_height size of the result, at least 1
     *  @param options what else it may be told
     *  @param area the part that is worked on
     *  @return the new image */
    Image resize(int32_t new_width, int32_t new_height, const ResizeOptions& options = {},
        const Area& area = {}) const {
        return make("resize", {16, 24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return Dib24ZoomEx2(dib, a.x, a.y, a.width, a.height, new_width, new_height, status, options.smooth ? 1 : 0);
        });
    }

    /** Turns a rectangle upside down.
     *  @param area the part that is worked on
     *  @return the new image */
    Image flip(const Area& area = {}) const {
        return changed("flip", {8, 16, 24, 32}, area, [&](HGLOBAL dib, const Area& a) {
            return Dib24Flip(dib, a.x, a.y, a.width, a.height);
        });
    }

    /** Exchanges left and right in a rectangle.
     *  @param area the part that is worked on
     *  @return the new image */
    Image mirror(const Area& area = {}) const {
        return changed("mirror", {8, 16, 24, 32}, area, [&](HGLOBAL dib, const Area& a) {
            return Dib24Mirror(dib, a.x, a.y, a.width, a.height);
        });
    }

    /** Turns a rectangle by 180 degrees.
     *  @param area the part that is worked on
     *  @return the new image */
    Image rotate_180(const Area& area = {}) const {
        return changed("rotate_180", {8, 16, 24, 32}, area, [&](HGLOBAL dib, const Area& a) {
            return Dib24FlipMirror(dib, a.x, a.y, a.width, a.height);
        });
    }

    /** Turns a rectangle by 90 degrees into a new image of height x width pixels, with the source's
     * colour table or masks.
     *  @param options what else it may be told
     *  @param area the part that is worked on
     *  @return the new image */
    Image rotate_90(const Rotate90Options& options = {}, const Area& area = {}) const {
        return make("rotate_90", {8, 16, 24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return Dib24Rotate(dib, a.x, a.y, a.width, a.height, options.direction, status);
        });
    }

    /** Brightens or darkens: channel + level * 255 / 100 (truncated), clamped to 0..255.
     *  @param level -100 to 100
     *  @param area the part that is worked on
     *  @return the new image */
    Image brightness(int32_t level, const Area& area = {}) const {
        return make("brightness", {24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return Dib24Brightness(dib, a.x, a.y, a.width, a.height, level, status);
        });
    }

    /** Raises or lowers the contrast around mid-grey: channel * (level + 100) / 100 + -128 * level
     * / 100 (both truncated), clamped to 0..255.
     *  @param level -100 (all grey) to 100 (2 * channel - 128)
     *  @param area the part that is worked on
     *  @return the new image */
    Image contrast(int32_t level, const Area& area = {}) const {
        return make("contrast", {24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return Dib24Contrast(dib, a.x, a.y, a.width, a.height, level, status);
        });
    }

    /** Corrects the gamma: 255 * (channel / 255)^gamma in double precision, truncated.
     *  @param gamma 0 or more
     *  @param area the part that is worked on
     *  @return the new image */
    Image gamma(double gamma, const Area& area = {}) const {
        return make("gamma", {24}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return Dib24Gamma(dib, a.x, a.y, a.width, a.height, gamma, status);
        });
    }

    /** Corrects the gamma of each channel, as Dib24Gamma does.
     *  @param options what else it may be told
     *  @param area the part that is worked on
     *  @return the new image */
    Image gamma_channels(const GammaChannelsOptions& options = {}, const Area& area = {}) const {
        return make("gamma_channels", {8, 16, 24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return DibGammaEx(dib, a.x, a.y, a.width, a.height, options.red, options.green, options.blue, status);
        });
    }

    /** Multiplies all channels by a fraction: channel * numerator / denominator, truncated, 255 at
     * most.
     *  @param numerator 1 to 255
     *  @param denominator 0 or more
     *  @param area the part that is worked on
     *  @return the new image */
    Image tone(int32_t numerator, int32_t denominator, const Area& area = {}) const {
        return make("tone", {24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return Dib24ToneCtrl(dib, a.x, a.y, a.width, a.height, numerator, denominator, status);
        });
    }

    /** Multiplies each channel by its factor: channel * factor, truncated, at most 255 (0 stays 0
     * with an infinite factor).
     *  @param options what else it may be told
     *  @param area the part that is worked on
     *  @return the new image */
    Image tone_channels(const ToneChannelsOptions& options = {}, const Area& area = {}) const {
        return make("tone_channels", {24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return Dib24ToneCtrlEx(dib, a.x, a.y, a.width, a.height, options.red, options.green, options.blue, status);
        });
    }

    /** Inverts a rectangle: 255 - channel.
     *  @param area the part that is worked on
     *  @return the new image */
    Image negative(const Area& area = {}) const {
        return changed("negative", {16, 24, 32}, area, [&](HGLOBAL dib, const Area& a) {
            return Dib24Negative(dib, a.x, a.y, a.width, a.height);
        });
    }

    /** Turns a rectangle to grey: (77 red + 150 green + 29 blue + 128) / 256 in all three channels.
     *  @param area the part that is worked on
     *  @return the new image */
    Image monochrome(const Area& area = {}) const {
        return make("monochrome", {24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return Dib24Monochrome(dib, a.x, a.y, a.width, a.height, status);
        });
    }

    /** Halves the intensity: channel / 2.
     *  @param area the part that is worked on
     *  @return the new image */
    Image half_tone(const Area& area = {}) const {
        return make("half_tone", {24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return Dib24HalfTone(dib, a.x, a.y, a.width, a.height, status);
        });
    }

    /** Exchanges the channels of a rectangle.
     *  @param mode what red, green and blue are taken from: 0 nothing changes (KIRVO_OK even for a
     *   null handle), 1 red, blue, green; 2 green, blue, red; 3 green, red, blue; 4 blue, red,
     *   green; 5 blue, green, red
     *  @param area the part that is worked on
     *  @return the new image */
    Image swap_channels(int32_t mode, const Area& area = {}) const {
        return changed("swap_channels", {24, 32}, area, [&](HGLOBAL dib, const Area& a) {
            return Dib24RGBChange(dib, mode, a.x, a.y, a.width, a.height);
        });
    }

    /** Maps every channel through a table: table[channel].
     *  @param table 256 bytes
     *  @param area the part that is worked on
     *  @return the new image */
    Image map_channels(const uint8_t (&table)[256], const Area& area = {}) const {
        return make("map_channels", {8, 16, 24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return DibColorMapEx(dib, a.x, a.y, a.width, a.height, table, status);
        });
    }

    /** Makes a copy of a rectangle with its hue changed.
     *  @param mode as for DibModifyHue
     *  @param value degrees, 0 to 359 for every mode
     *  @param area the part that is worked on
     *  @return the new image */
    Image change_hue(int32_t mode, int32_t value, const Area& area = {}) const {
        return make("change_hue", {16, 24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return DibModifyHueEx(dib, a.x, a.y, a.width, a.height, mode, value, status);
        });
    }

    /** XORs a colour over a rectangle.
     *  @param colour 0x00BBGGRR
     *  @param area the part that is worked on
     *  @return the new image */
    Image exclusive_or(uint32_t colour, const Area& area = {}) const {
        return changed("exclusive_or", {16, 24, 32}, area, [&](HGLOBAL dib, const Area& a) {
            return Dib24XOR(dib, a.x, a.y, a.width, a.height, colour);
        });
    }

    /** Blurs a rectangle with a fixed 3 x 3 kernel.
     *  @param area the part that is worked on
     *  @return the new image */
    Image blur(const Area& area = {}) const {
        return make("blur", {24}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return Dib24Gausian(dib, a.x, a.y, a.width, a.height, status);
        });
    }

    /** Sharpens a rectangle as mode 0 of Dib24Sharpen does, with a choice of strength: the
     * Laplacian is divided by 8, 6, 4 or 2.
     *  @param options what else it may be told
     *  @param area the part that is worked on
     *  @return the new image */
    Image sharpen(const SharpenOptions& options = {}, const Area& area = {}) const {
        return make("sharpen", {24}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return Dib24SharpenEx(dib, a.x, a.y, a.width, a.height, options.strength, status);
        });
    }

    /** Sharpens a rectangle, or shows its edges in grey.
     *  @param options what else it may be told
     *  @param area the part that is worked on
     *  @return the new image */
    Image relief(const ReliefOptions& options = {}, const Area& area = {}) const {
        return make("relief", {24}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return Dib24Sharpen(dib, a.x, a.y, a.width, a.height, options.mode, status);
        });
    }

    /** Keeps the colours of a rectangle at its edges and paints the rest white, the padding of the
     * rows included.
     *  @param options what else it may be told
     *  @param area the part that is worked on
     *  @return the new image */
    Image colour_edges(const ColourEdgesOptions& options = {}, const Area& area = {}) const {
        return make("colour_edges", {24}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return Dib24ColorEdge(dib, a.x, a.y, a.width, a.height, options.threshold, options.mode, status);
        });
    }

    /** Maximum or minimum filter over squares of (2 radius + 1) x (2 radius + 1) pixels: dilation
     * or erosion of bright areas.
     *  @param options what else it may be told
     *  @param area the part that is worked on
     *  @return the new image */
    Image dilate(const DilateOptions& options = {}, const Area& area = {}) const {
        return make("dilate", {16, 24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return DibBlockMxM(dib, a.x, a.y, a.width, a.height, options.radius, 1, options.luminance ? 1 : 0, status);
        });
    }

    /** Maximum or minimum filter over squares of (2 radius + 1) x (2 radius + 1) pixels: dilation
     * or erosion of bright areas.
     *  @param options what else it may be told
     *  @param area the part that is worked on
     *  @return the new image */
    Image erode(const ErodeOptions& options = {}, const Area& area = {}) const {
        return make("erode", {16, 24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return DibBlockMxM(dib, a.x, a.y, a.width, a.height, options.radius, 0, options.luminance ? 1 : 0, status);
        });
    }

    /** Keeps channel values by range: a value that fails its channel's test becomes 0.
     *  @param red ranges
     *  @param green ranges
     *  @param blue ranges
     *  @param area the part that is worked on
     *  @return the new image */
    Image keep_channels(uint32_t red, uint32_t green, uint32_t blue, const Area& area = {}) const {
        return make("keep_channels", {24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return Dib24Filter(dib, a.x, a.y, a.width, a.height, red, green, blue, status);
        });
    }

    /** Mosaic by samples: every block of block x block pixels, counted from the rectangle's top
     * left, takes the pixel at its own top left.
     *  @param block size of the blocks in pixels, at least 1; may exceed the rectangle
     *  @param area the part that is worked on
     *  @return the new image */
    Image mosaic(int32_t block, const Area& area = {}) const {
        return make("mosaic", {8, 16, 24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return DibMosaicEx(dib, a.x, a.y, a.width, a.height, block, status);
        });
    }

    /** Mosaic by averages: every block of block x block pixels, counted from the rectangle's top
     * left, takes the average of its channels (of its indexes at 8 bits), truncated.
     *  @param block size of the blocks in pixels, 1 to 1024
     *  @param area the part that is worked on
     *  @return the new image */
    Image mosaic_average(int32_t block, const Area& area = {}) const {
        return make("mosaic_average", {8, 16, 24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
            return DibMosaicEx2(dib, a.x, a.y, a.width, a.height, block, status);
        });
    }

    /** Makes a copy of a 24-bit image that keeps only the top bits of each channel.
     *  @param red_bits bits of red kept, 0 to 8
     *  @param green_bits bits of green kept, 0 to 8
     *  @param blue_bits bits of blue kept, 0 to 8
     *  @return the new image */
    Image keep_bits(int32_t red_bits, int32_t green_bits, int32_t blue_bits) const {
        return make("keep_bits", {24}, {}, [&](HGLOBAL dib, const Area&, int32_t* status) {
            return DibCutDepth(dib, red_bits, green_bits, blue_bits, status);
        });
    }

    /** Makes an 8-bit image with error diffusion to 256 fixed colours.
     *  @return the new image */
    Image reduce_256() const {
        return make("reduce_256", {24, 32}, {}, [&](HGLOBAL dib, const Area&, int32_t* status) {
            return DecreaseColor256(dib, status);
        });
    }

    /** Makes a 4-bit image with error diffusion, as DecreaseColor256 spreads it, to 16 fixed
     * colours.
     *  @return the new image */
    Image reduce_16() const {
        return make("reduce_16", {24, 32}, {}, [&](HGLOBAL dib, const Area&, int32_t* status) {
            return DecreaseColor16(dib, status);
        });
    }

    /** Makes an 8-bit grey image, without diffusion.
     *  @return the new image */
    Image reduce_grey() const {
        return make("reduce_grey", {24, 32}, {}, [&](HGLOBAL dib, const Area&, int32_t* status) {
            return DecreaseColorMono256(dib, status);
        });
    }

    /** Makes an 8-bit image with the palette of KirvoCreatePalette and an ordered dither of 8 x 8
     * pixels over the 6 x 6 x 6 cube of levels 0, 51, 102, 153, 204, 255: a channel value v
     * becomes level v / 51, one more where v mod 51 is above the dither's threshold.
     *  @return the new image */
    Image dither_256() const {
        return make("dither_256", {24, 32}, {}, [&](HGLOBAL dib, const Area&, int32_t* status) {
            return Decrease256Fast(dib, status);
        });
    }

    /** Makes an 8-bit image with exactly the colours of the source.
     *  @param options what else it may be told
     *  @return the new image */
    Image exact_256(const Exact256Options& options = {}) const {
        return make("exact_256", {24, 32}, {}, [&](HGLOBAL dib, const Area&, int32_t* status) {
            return Decrease256PaletteEx(dib, options.mode, status);
        });
    }

    /** Makes a 4-bit image with exactly the colours of the source.
     *  @param options what else it may be told
     *  @return the new image */
    Image exact_16(const Exact16Options& options = {}) const {
        return make("exact_16", {24, 32}, {}, [&](HGLOBAL dib, const Area&, int32_t* status) {
            return Decrease16PaletteEx(dib, options.mode, status);
        });
    }

    /** Interleaves the rows of two images: stored row 2i of the result is row y1 + i of the first,
     * stored row 2i + 1 row y2 + i of the second.
     *  @param other packed DIB of the same depth
     *  @return the new image */
    Image interleave(const Image& other) const {
        if (!has_depth({24, 32}))
            return convert(24).interleave(other);
        const Image depth = other.as_deep_as(*this);
        return make("interleave", {24, 32}, {}, [&](HGLOBAL dib, const Area&, int32_t* status) {
            return Dib24InterLeave(dib, 0, 0, depth.handle(), 0, 0, this->width(), this->height(), status);
        });
    }

    /** Copies a rectangle between two images of any sizes and one depth.
     *  @param other packed DIB of 8, 16, 24 or 32 bits
     *  @param options what else it may be told
     *  @return this image */
    Image& paste(const Image& other, const PasteOptions& options = {}) {
        ready({16, 24, 32});
        const Image depth = other.as_deep_as(*this);
        apply("paste", {16, 24, 32}, {}, [&](HGLOBAL dib, const Area&) {
            return Dib24CopyEx(dib, options.to_left, options.to_top, depth.handle(), 0, 0, depth.width(), depth.height());
        });
        return *this;
    }

    /** Composes a rectangle of one image onto one of the same size of another.
     *  @param other packed DIB of 24 or 32 bits
     *  @param options what else it may be told
     *  @return this image */
    Image& compose(const Image& other, const ComposeOptions& options = {}) {
        ready({24, 32});
        const Image depth = other.as_deep_as(*this);
        apply("compose", {24, 32}, {}, [&](HGLOBAL dib, const Area&) {
            return Dib24Add(dib, options.to_left, options.to_top, depth.handle(), 0, 0, depth.width(), depth.height(), options.mode);
        });
        return *this;
    }

    /** Writes one pixel of a direct-colour image.
     *  @param x column from the left
     *  @param y row from the top
     *  @param colour 0x00BBGGRR
     *  @return this image */
    Image& set_pixel(int32_t x, int32_t y, uint32_t colour) {
        ready({16, 24, 32});
        apply("set_pixel", {16, 24, 32}, {}, [&](HGLOBAL dib, const Area&) {
            return DibSetPixelColor(dib, x, y, colour);
        });
        return *this;
    }

    /** Fills the pixels x0 to x1 (inclusive) of one row with a colour.
     *  @param x0 first column
     *  @param x1 last column
     *  @param y row from the top
     *  @param colour 0x00BBGGRR
     *  @return this image */
    Image& set_line(int32_t x0, int32_t x1, int32_t y, uint32_t colour) {
        ready({16, 24, 32});
        apply("set_line", {16, 24, 32}, {}, [&](HGLOBAL dib, const Area&) {
            return DibSetLineColor(dib, x0, x1, y, colour);
        });
        return *this;
    }

    /** Draws the 3 x 3 neighbours of one pixel towards its colour, in place.
     *  @param x the centre
     *  @param y the centre
     *  @return this image */
    Image& mix_3x3(int32_t x, int32_t y) {
        ready({16, 24, 32});
        apply("mix_3x3", {16, 24, 32}, {}, [&](HGLOBAL dib, const Area&) {
            return Dib24Mix3X3(dib, x, y);
        });
        return *this;
    }

    /** Draws the 5 x 5 neighbours of one pixel towards its colour, in place: as Dib24Mix3X3.
     *  @param x the centre
     *  @param y the centre
     *  @return this image */
    Image& mix_5x5(int32_t x, int32_t y) {
        ready({16, 24, 32});
        apply("mix_5x5", {16, 24, 32}, {}, [&](HGLOBAL dib, const Area&) {
            return Dib24Mix5X5(dib, x, y);
        });
        return *this;
    }

    /** Makes an image of one colour.
     *  @param width size in pixels, at least 1
     *  @param height size in pixels, at least 1
     *  @param colour 0x00BBGGRR
     *  @return the new image */
    static Image solid(int32_t width, int32_t height, uint32_t colour) {
        const detail::Operation operation;
        int32_t status = KIRVO_OK;
        Image image = adopt(Dib24Solid(width, height, 24, colour, &status));
        detail::check(image ? KIRVO_OK : status, "solid");
        return image;
    }

    /** Makes a horizontal gradient: each channel of column i is start + ((end - start) x i) /
     * (width - 1), truncating; start alone when the width is 1. 16- and 32-bit images are black,
     * as those of Dib24Solid.
     *  @param width size in pixels, at least 1
     *  @param height size in pixels, at least 1
     *  @param start colour of the left column, 0x00BBGGRR
     *  @param end colour of the right column
     *  @return the new image */
    static Image gradient_across(int32_t width, int32_t height, uint32_t start, uint32_t end) {
        const detail::Operation operation;
        int32_t status = KIRVO_OK;
        Image image = adopt(Dib24Gradation1(width, height, 24, start, end, &status));
        detail::check(image ? KIRVO_OK : status, "gradient_across");
        return image;
    }

    /** Makes a vertical gradient, from start at the top to end at the bottom: a Dib24Gradation1 of
     * the sizes exchanged, turned by Dib24Rotate, which reports progress (per column). 16- and
     * 32-bit images are black, as those of Dib24Solid.
     *  @param width size in pixels, at least 1
     *  @param height size in pixels, at least 1
     *  @param start colour of the top row, 0x00BBGGRR
     *  @param end colour of the bottom row
     *  @return the new image */
    static Image gradient_down(int32_t width, int32_t height, uint32_t start, uint32_t end) {
        const detail::Operation operation;
        int32_t status = KIRVO_OK;
        Image image = adopt(Dib24Gradation2(width, height, 24, start, end, &status));
        detail::check(image ? KIRVO_OK : status, "gradient_down");
        return image;
    }

    /** Makes a bilinear gradient between four corners.
     *  @param width size in pixels, at least 1
     *  @param height size in pixels, at least 1
     *  @param top_left colours 0x00BBGGRR
     *  @param top_right colours 0x00BBGGRR
     *  @param bottom_left colours 0x00BBGGRR
     *  @param bottom_right colours 0x00BBGGRR
     *  @return the new image */
    static Image gradient_corners(int32_t width, int32_t height, uint32_t top_left,
        uint32_t top_right, uint32_t bottom_left, uint32_t bottom_right) {
        const detail::Operation operation;
        int32_t status = KIRVO_OK;
        Image image = adopt(Dib24Gradation3(width, height, 24, top_left, top_right, bottom_left, bottom_right, &status));
        detail::check(image ? KIRVO_OK : status, "gradient_corners");
        return image;
    }

    // clang-format on

    /** Filters with a kernel of 3 x 3 weights, row by row from the top left neighbour.
     *  @param weights nine of them @param divisor divides the sums; 0: the sum of the weights, or 1
     *  @param area the part that is worked on @return the new image */
    Image filter_3x3(const int32_t (&weights)[9], int32_t divisor = 0,
                     const Area& area = {}) const {
        int32_t sum = 0;
        for (const int32_t weight : weights)
            sum += weight;
        const auto& w = weights;
        return make("filter_3x3", {16, 24, 32}, area,
                    [&](HGLOBAL dib, const Area& a, int32_t* status) {
                        SetFilter3x3(w[6], w[7], w[8], w[3], w[4], w[5], w[0], w[1], w[2],
                                     divisor ? divisor : sum);
                        return DibFilter3x3(dib, a.x, a.y, a.width, a.height, status);
                    });
    }

    /** Keeps colours by ranges. @param flags 0x101: channels of RGB, 0x102: pixels of RGB, 0x202:
     *  pixels by hue, saturation and value @param first,second,third ranges
     *  @param area the part that is worked on @return the new image */
    Image keep_colours(uint32_t flags, const Range& first, const Range& second, const Range& third,
                       const Area& area = {}) const {
        const auto pair = [](int low, int high) {
            return static_cast<uint16_t>(low) | uint32_t{static_cast<uint16_t>(high)} << 16;
        };
        const auto test = [](const Range& range) { return static_cast<int>(range.test); };
        return make(
            "keep_colours", {24, 32}, area, [&](HGLOBAL dib, const Area& a, int32_t* status) {
                return Dib24FilterEx(
                    dib, a.x, a.y, a.width, a.height, pair(static_cast<int>(flags), first.lower),
                    pair(first.upper, test(first)), pair(second.lower, second.upper),
                    pair(test(second), third.lower), pair(third.upper, test(third)), status);
            });
    }

    /** Takes the channels apart. @param area the part that is worked on
     *  @return three images with one channel each: red, green, blue */
    std::vector<Image> separate(const Area& area = {}) const {
        HGLOBAL made[3] = {};
        apply("separate", {24, 32}, area, [&](HGLOBAL dib, const Area& a) {
            return Dib24Separate(dib, a.x, a.y, a.width, a.height, &made[0], &made[1], &made[2]);
        });
        std::vector<Image> images;
        for (const HGLOBAL dib : made)
            images.push_back(this->made(dib));
        return images;
    }

    /** Counts the values of each channel. @param area the part that is counted @return the counts */
    Histogram histogram(const Area& area = {}) const {
        Histogram counted;
        apply("histogram", {8, 16, 24, 32}, area, [&](HGLOBAL dib, const Area& a) {
            return DibHistgram(dib, a.x, a.y, a.width, a.height, counted.red, counted.green,
                               counted.blue);
        });
        return counted;
    }

    /** @return the number of different colours */
    uint32_t count_colours() const {
        uint32_t count = 0;
        apply("count_colours", {1, 4, 8, 16, 24, 32}, {},
              [&](HGLOBAL dib, const Area&) { return DibCountColors(dib, &count); });
        return count;
    }

    /** A pixel. @param x from the left @param y from the top @return its colour, 0x00BBGGRR */
    uint32_t get_pixel(int32_t x, int32_t y) const {
        uint32_t colour = 0;
        detail::check(DibGetPixelColor(handle(), x, y, &colour), "get_pixel");
        return colour;
    }

    /** The colour that compose leaves out in mode 4, for the whole process. @param colour 0x00BBGGRR */
    static void key_colour(uint32_t colour) {
        const detail::Operation operation;
        SetKeyColorDib24Add(colour);
    }

    /** The weights of mix_3x3 and mix_5x5 in tenths, row by row from the top left neighbour, for the
     *  whole process. @param three nine weights @param five twenty-five weights */
    static void mix_masks(const int32_t (&three)[9], const int32_t (&five)[25]) {
        const detail::Operation operation;
        Dib24Mix3X3SetMask(three);
        Dib24Mix5X5SetMask(five);
    }

  private:
    using Depths = std::initializer_list<int32_t>;

    template<typename Call>
    static Image opened(Progress progress, const OpenOptions& options, const Call& call) {
        std::optional<Watch> watch;
        if (progress)
            watch.emplace(std::move(progress));
        detail::Operation operation;
        operation.begin();
        const KirvoFilesOpenOptions how = detail::filled(options);
        const auto file = std::make_shared<File>();
        HGLOBAL dib = nullptr;
        const int32_t status = call(&how, &dib, file->receiver());
        Image image = adopt(dib);
        image.file_ = file;
        operation.rethrow();
        file->check(status);
        operation.finish();
        return image;
    }

    /** An image that remembers where this one came from. */
    Image made(HGLOBAL dib) const {
        Image image = adopt(dib);
        image.file_ = file_;
        return image;
    }

    bool has_depth(Depths depths) const {
        for (const int32_t bits : depths)
            if (bits == this->bits())
                return true;
        return false;
    }

    Area inside(const Area& area) const {
        const bool is_wide = area.width < 0 && area.x >= 0,
                   is_high = area.height < 0 && area.y >= 0;
        return {area.x, area.y, is_wide ? width() - area.x : area.width,
                is_high ? height() - area.y : area.height};
    }

    /** Calls a function that makes an image. */
    template<typename Call>
    Image make(const char* what, Depths depths, const Area& area, const Call& call) const {
        detail::Operation operation;
        const Image other_depth = has_depth(depths) ? Image() : convert(24);
        const HGLOBAL dib = other_depth ? other_depth.handle() : handle();
        int32_t status = KIRVO_OK;
        operation.begin();
        Image result = made(call(dib, inside(area), &status));
        operation.rethrow();
        if (!result)
            detail::check(status < 0 ? status : KIRVO_NO_MEMORY, what);
        operation.finish();
        return result;
    }

    /** Calls a function that works on what is there. */
    template<typename Call>
    void apply(const char* what, Depths depths, const Area& area, const Call& call) const {
        detail::Operation operation;
        const Image other_depth = has_depth(depths) ? Image() : convert(24);
        const HGLOBAL dib = other_depth ? other_depth.handle() : handle();
        operation.begin();
        const int32_t status = call(dib, inside(area));
        operation.rethrow();
        detail::check(status, what);
        operation.finish();
    }

    /** A copy on which a function has worked. */
    template<typename Call>
    Image changed(const char* what, Depths depths, const Area& area, const Call& call) const {
        detail::Operation operation;
        Image result = has_depth(depths) ? copy() : convert(24);
        operation.begin();
        const int32_t status = call(result.handle(), inside(area));
        operation.rethrow();
        detail::check(status, what);
        operation.finish();
        return result;
    }

    /** Becomes one of 24 bits when its depth is none of these. */
    void ready(Depths depths) {
        if (!has_depth(depths))
            *this = convert(24);
    }

    Image as_deep_as(const Image& other) const { return convert(other.bits()); }

    Block dib_;
    std::shared_ptr<const File> file_; // that it came from
};

/** Decodes a JPEG stream that arrives in pieces. The library is this thread's until the decoder
 *  ends: other threads wait. */
class JpegDecoder {
  public:
    JpegDecoder() { operation_.begin(); }
    ~JpegDecoder() {
        HGLOBAL image = nullptr;
        if (state_ == State::begun)
            JpgDecNext(nullptr, 0, -1, &image);
    }
    JpegDecoder(const JpegDecoder&) = delete;
    JpegDecoder& operator=(const JpegDecoder&) = delete;

    /** Takes the next bytes. @param bytes,count they @return whether the picture is complete */
    bool write(const void* bytes, size_t count) {
        if (state_ == State::done)
            return true;
        if (count > INT32_MAX)
            throw Error(KIRVO_BAD_PARAMETER, "JpegDecoder: 2 GB or more in one piece");
        const Block block = detail::block_of(bytes, count);
        HGLOBAL image = nullptr;
        const auto size = static_cast<int32_t>(count);
        return take(state_ == State::begun ? JpgDecNext(block.get(), size, 0, &image)
                                           : JpgDecFirst(block.get(), size, &image),
                    image);
    }

    /** Ends. @return the picture, once all bytes are there */
    Image finish() {
        if (state_ == State::fresh)
            detail::check(KIRVO_JPEG_NO_SOI, "JpegDecoder");
        if (state_ == State::begun) {
            HGLOBAL image = nullptr;
            const int32_t result = JpgDecNext(nullptr, 0, 1, &image);
            take(result ? result : KIRVO_JPEG_EARLY_EOI, image);
        }
        operation_.finish();
        return std::move(image_);
    }

  private:
    enum class State { fresh, begun, done };

    bool take(int32_t result, HGLOBAL image) {
        state_ = result == 0 ? State::begun : result == 1 ? State::done : State::fresh;
        image_ = Image::adopt(result == 1 ? image : nullptr);
        operation_.rethrow();
        detail::check(result, "JpegDecoder");
        return state_ == State::done;
    }

    detail::Operation operation_;
    Image image_;
    State state_ = State::fresh;
};

/** Encodes a picture as a JPEG stream in slices. The library is this thread's until the encoder ends:
 *  other threads wait. The settings are those of JpgCodSetQEx and its kin. */
class JpegEncoder {
  public:
    /** @param image of 8 or 24 bits, which outlives the encoder @param mcus blocks for a step */
    explicit JpegEncoder(const Image& image, int32_t mcus = 100) {
        int32_t status = KIRVO_OK;
        operation_.begin();
        block_ = JpgCodFirst(image.handle(), 0, 0, image.width(), image.height(), mcus, &status);
        operation_.rethrow();
        detail::check(status, "JpegEncoder");
    }
    ~JpegEncoder() {
        if (done_)
            GlobalFree(block_);
        else if (block_)
            JpgCodNext(-1, &count_);
    }
    JpegEncoder(const JpegEncoder&) = delete;
    JpegEncoder& operator=(const JpegEncoder&) = delete;

    /** Goes on. @return whether the stream is complete */
    bool step() {
        if (done_)
            return true;
        const int32_t result = JpgCodNext(0, &count_);
        if (result < 0)
            block_ = nullptr; // the encode has ended
        operation_.rethrow();
        detail::check(result, "JpegEncoder");
        done_ = result == 1;
        return done_;
    }

    /** Ends, after as many steps as are left. @return the stream */
    std::vector<uint8_t> finish() {
        while (!step()) {
        }
        const Locked bytes(block_);
        return std::vector<uint8_t>(bytes.address(), bytes.address() + count_);
    }

  private:
    detail::Operation operation_;
    HGLOBAL block_ = nullptr;
    uint32_t count_ = 0;
    bool done_ = false;
};

} // namespace kirvo

#endif // KIRVO_HPP
