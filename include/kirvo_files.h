/**
 * @file kirvo_files.h
 * @brief KirvoFiles: pictures as people have them, opened into packed DIBs and saved again.
 *
 * A second, small library beside Kirvo. It recognises a picture by its content, reads what the
 * world sends, tells what was wrong or had to be left out, and never spoils a file: what it saves
 * appears complete or not at all.
 *
 * Conventions
 * - Names and texts are UTF-8 and end with a zero byte. The functions whose names end in W take
 *   UTF-16 instead, on every system. On Windows a name may be longer than 260 characters.
 * - A picture is a *packed DIB* as kirvo.h describes it, always a clean one: a header of 40 bytes,
 *   a colour table for 1, 4 and 8 bits, the three masks (BI_BITFIELDS) for 16 and 32 bits, rows
 *   bottom-up, biSizeImage set. Every function of kirvo.h takes it as it is.
 * - What is known of a file beside its pixels is a #KirvoFile: size, format, notes, metadata. It
 *   comes from the functions that open and inform, is given to those that save so that metadata
 *   goes along, and is freed with KirvoFilesClose.
 * - Functions answer a status: #KIRVO_FILES_OK, or one of #KirvoFilesStatus. In words it is
 *   KirvoFilesStatusText, and of one failure in particular #KIRVO_FILES_TEXT_REASON.
 * - Structures begin with their size in bytes, which the caller sets, so that they may grow. A
 *   structure that is null or all zero after its size asks for what is usual.
 * - Any thread may call any function at any time; one #KirvoFile is used by one thread at a time.
 *   Kirvo has one JPEG codec for the whole process: where it is busy with a call of this library,
 *   the next waits its turn. A program that calls kirvo.h itself keeps those calls apart from
 *   each other and from these as kirvo.h asks for. Saving a JPEG leaves the encoder settings of
 *   kirvo.h (JpgCodSetSubsample, JpgCodSetQEx, JpgCodSetQtable) changed.
 *
 * Example: open any picture, sharpen it, save it with its metadata.
 * @code
 *     HGLOBAL dib;
 *     KirvoFile file;
 *     int32_t status = KirvoFilesOpen("in.png", NULL, &dib, &file);
 *     if (status == KIRVO_FILES_OK) {
 *         change(dib);
 *         status = KirvoFilesSave("out.jpg", dib, file, NULL, NULL);
 *         GlobalFree(dib);
 *     }
 *     KirvoFilesClose(file);
 * @endcode
 */
#ifndef KIRVO_FILES_H
#define KIRVO_FILES_H

#include "kirvo.h"

#if defined(_WIN32) && !defined(KIRVO_FILES_BUILDING)
#define KIRVO_FILES_API __declspec(dllimport)
#elif defined(_WIN32)
#define KIRVO_FILES_API
#else
#define KIRVO_FILES_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------------------------- */
/** @defgroup filesstatus Status codes of KirvoFiles
 *  @ingroup anyfile
 *  0 is success, errors are negative, and none is a code of kirvo.h.
 *  @{ */

/** What a call of this library answers. */
typedef enum KirvoFilesStatus {
    /** Success. */
    KIRVO_FILES_OK = 0,
    /** A null pointer, a value out of its range, a structure whose size is none of this library's,
     * or an image whose block is smaller than its header says. */
    KIRVO_FILES_BAD_PARAMETER = -101,
    /** Memory could not be allocated, or the picture would have more than 2^31 - 1 bytes. */
    KIRVO_FILES_NO_MEMORY = -102,
    /** There is no file or folder of that name. */
    KIRVO_FILES_MISSING = -103,
    /** The name is that of a folder. */
    KIRVO_FILES_IS_FOLDER = -104,
    /** The system does not permit it. */
    KIRVO_FILES_NO_PERMISSION = -105,
    /** The file cannot be opened for another reason; the reason's text has the system's words. */
    KIRVO_FILES_CANNOT_OPEN = -106,
    /** The system failed to read what is in the file. */
    KIRVO_FILES_READ_ERROR = -107,
    /** The file cannot be made, written or put into its place. */
    KIRVO_FILES_CANNOT_WRITE = -108,
    /** The disk is full, or the user's share of it. */
    KIRVO_FILES_DISK_FULL = -109,
    /** There is a file of that name, and #KIRVO_FILES_NEW_ONLY was asked for. */
    KIRVO_FILES_EXISTS = -110,
    /** The file is empty: it has no bytes at all. */
    KIRVO_FILES_EMPTY = -111,
    /** The content is no picture of a known format. */
    KIRVO_FILES_NOT_A_PICTURE = -112,
    /** The picture ends before all of its rows are there. With #KIRVO_FILES_KEEP_GOING it opens. */
    KIRVO_FILES_ENDS_EARLY = -113,
    /** The picture is damaged. With #KIRVO_FILES_KEEP_GOING it opens if any of it can be read. */
    KIRVO_FILES_DAMAGED = -114,
    /** The format is known, but not this variant of it. */
    KIRVO_FILES_UNSUPPORTED = -115,
    /** The format is known, but this build or this system has no decoder or encoder for it. */
    KIRVO_FILES_NO_CODEC = -116,
    /** The file claims a size out of all proportion to its bytes; see #KIRVO_FILES_NO_LIMITS. */
    KIRVO_FILES_CLAIM_TOO_LARGE = -117,
    /** The format is not one that is written, or the name does not tell a format. */
    KIRVO_FILES_NOT_WRITTEN = -118,
    /** The format has no room for a picture this large; or a file of 2 GB or more. */
    KIRVO_FILES_TOO_LARGE = -119,
    /** The picture does not become so small as was asked for. */
    KIRVO_FILES_SIZE_LIMIT = -120,
    /** A turn without loss would cut or keep an edge, and neither was allowed. */
    KIRVO_FILES_EDGE = -121,
    /** A frame was asked for that the file does not have. */
    KIRVO_FILES_NO_FRAME = -122,
    /** The caller has abandoned the operation through a progress handler of kirvo.h. */
    KIRVO_FILES_ABANDONED = -123
} KirvoFilesStatus;

/** A status in words, in English: one phrase without a full stop.
 *  @param status a status of this library or of kirvo.h
 *  @param[out] text receives as much as fits with a zero byte; may be null
 *  @param capacity bytes of text
 *  @return bytes that the whole text takes with its zero byte */
KIRVO_FILES_API uint32_t WINAPI KirvoFilesStatusText(int32_t status, char* text, uint32_t capacity);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup filesformats Formats
 *  @ingroup anyfile
 *  Which files can be opened and saved here.
 *  @{ */

/** A file format. */
typedef enum KirvoFilesFormat {
    KIRVO_FILES_UNKNOWN = 0,   /**< none, or to be told by the name */
    KIRVO_FILES_BMP = 1,       /**< Windows and OS/2 bitmaps */
    KIRVO_FILES_JPEG = 2,      /**< JPEG */
    KIRVO_FILES_PNG = 3,       /**< PNG */
    KIRVO_FILES_TARGA = 4,     /**< Targa */
    KIRVO_FILES_TIFF = 5,      /**< TIFF */
    KIRVO_FILES_WEBP = 6,      /**< WebP */
    KIRVO_FILES_GIF = 7,       /**< GIF */
    KIRVO_FILES_ICON = 8,      /**< icons */
    KIRVO_FILES_CURSOR = 9,    /**< cursors */
    KIRVO_FILES_Q0 = 10,       /**< Q0, with its companion file */
    KIRVO_FILES_RAW = 11,      /**< RAW, as RawRead of kirvo.h describes it */
    KIRVO_FILES_PHOTO_CD = 12, /**< Photo CD, with its maker's library */
    KIRVO_FILES_HEIF = 13,     /**< HEIC and AVIF, on Windows where the system has a decoder */
    KIRVO_FILES_CAMERA = 14, /**< cameras' own formats, on Windows where the system has a decoder */
    KIRVO_FILES_FORMATS = 15 /**< one above the last */
} KirvoFilesFormat;

#define KIRVO_FILES_READS 1  /**< such files can be opened */
#define KIRVO_FILES_WRITES 2 /**< such files can be saved */

/** What can be done with a format in this build, on this system.
 *  @param format a #KirvoFilesFormat
 *  @return #KIRVO_FILES_READS and #KIRVO_FILES_WRITES, or 0 */
KIRVO_FILES_API uint32_t WINAPI KirvoFilesAbilities(int32_t format);

/** What KirvoFilesFormatText tells. */
typedef enum KirvoFilesFormatWord {
    KIRVO_FILES_FORMAT_NAME = 0,       /**< "PNG" */
    KIRVO_FILES_FORMAT_EXTENSIONS = 1, /**< "jpg jpeg jpe jfif", the usual one first */
    /** by what it is read and written: "Kirvo, libjpeg-turbo 2.1.5" */
    KIRVO_FILES_FORMAT_CODEC = 2
} KirvoFilesFormatWord;

/** A word about a format.
 *  @param format a #KirvoFilesFormat
 *  @param word a #KirvoFilesFormatWord
 *  @param[out] text receives as much as fits with a zero byte; may be null
 *  @param capacity bytes of text
 *  @return bytes that the whole text takes with its zero byte; 1 where there is nothing to say */
KIRVO_FILES_API uint32_t WINAPI KirvoFilesFormatText(int32_t format, int32_t word, char* text,
                                                     uint32_t capacity);

/** The format that a name tells.
 *  @param name a file's name or an extension alone, "photo.JPG", ".jpg" or "jpg", in any case
 *  @return a #KirvoFilesFormat, or #KIRVO_FILES_UNKNOWN */
KIRVO_FILES_API int32_t WINAPI KirvoFilesFormatOf(const char* name);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup filesopen Open and inform
 *  @ingroup anyfile
 *  A picture with what is known of it, or what its headers say without it.
 *  @{ */

#ifdef _WIN32
typedef wchar_t KirvoWide; /**< a 16-bit unit of UTF-16 */
#else
typedef uint16_t KirvoWide; /**< a 16-bit unit of UTF-16 */
#endif

/** What is known of a file: a handle, freed by KirvoFilesClose. */
typedef void* KirvoFile;

#define KIRVO_FILES_NO_TURN 1    /**< opening: rows as stored, whatever the EXIF orientation says */
#define KIRVO_FILES_KEEP_ALPHA 2 /**< opening: a picture with alpha gets 32 bits, alpha on top */
#define KIRVO_FILES_KEEP_GOING 4 /**< opening: what there is of a damaged or short file */
#define KIRVO_FILES_NO_LIMITS 8  /**< opening: claims of any size are believed */
#define KIRVO_FILES_KIRVO_ONLY 16 /**< opening: JPEG by Kirvo's decoder, come what may */
#define KIRVO_FILES_BACKGROUND 32 /**< opening: alpha is laid over the options' background */

/** How to open. Null, or all zero after size: turned upright, alpha laid over white, damaged files
 *  refused, claims held against the file, the best image of an icon. */
typedef struct KirvoFilesOpenOptions {
    uint32_t size;       /**< bytes of this structure */
    uint32_t flags;      /**< KIRVO_FILES_NO_TURN to KIRVO_FILES_BACKGROUND, added */
    uint32_t background; /**< 0x00BBGGRR, with #KIRVO_FILES_BACKGROUND; otherwise white */
    /** which picture of the file, from 1; 0: of an icon the one with the most pixels, then the most
     *  colours, of other files the first */
    uint32_t frame;
} KirvoFilesOpenOptions;

/** Opens a picture, whatever its format.
 *
 *  The depth follows the file: 1, 4 and 8 bits for palettes of as many colours and for grey, 16 for
 *  BMP and Targa files of 5-5-5 or 5-6-5 bits, 24 for colour, 32 for BMP and Targa files of 32 bits
 *  without alpha, and for pictures with alpha under #KIRVO_FILES_KEEP_ALPHA. The three masks of 32
 *  bits are 0x00FF0000, 0x0000FF00 and 0x000000FF; the top byte is alpha (255 opaque, not
 *  multiplied into the colours) or 0. Without that flag alpha is laid over the background: of true
 *  colour the result has 24 bits; a transparent entry of a palette becomes the mixed colour.
 *  Icons and cursors have 24 bits, or 32 with their alpha or mask under that flag. More than 8 bits
 * of a channel are reduced to 8; CMYK becomes RGB without a profile. A note tells each of these.
 *
 *  A baseline JPEG that Kirvo's decoder is made for is decoded by it, one of 12 bits a channel by
 *  this library, every other by libjpeg-turbo or the system. A picture that ends early or is
 *  damaged is refused with #KIRVO_FILES_ENDS_EARLY or #KIRVO_FILES_DAMAGED; with
 *  #KIRVO_FILES_KEEP_GOING it opens with a note, and KirvoFilesDescription.wholeRows says how much
 *  of it is good.
 *
 *  A claim is too large when the picture would take more than 64 MB and more than 1500 bytes of it
 *  for each byte of the file, more than any of the formats packs real pictures into; or more than
 *  2^31 - 1 bytes at all, which no flag allows. Files of 2 GB and more are not read.
 *  @param name the file
 *  @param options how; may be null
 *  @param[out] dib receives the picture, owned by the caller (GlobalFree); null on failure
 *  @param[out] file receives what is known of the file, also on failure (then at least
 *              #KIRVO_FILES_TEXT_REASON), or null when there is no memory; may be null
 *  @return #KIRVO_FILES_OK; #KIRVO_FILES_BAD_PARAMETER; #KIRVO_FILES_NO_MEMORY;
 *          #KIRVO_FILES_MISSING; #KIRVO_FILES_IS_FOLDER; #KIRVO_FILES_NO_PERMISSION;
 *          #KIRVO_FILES_CANNOT_OPEN; #KIRVO_FILES_READ_ERROR; #KIRVO_FILES_EMPTY;
 *          #KIRVO_FILES_NOT_A_PICTURE; #KIRVO_FILES_ENDS_EARLY; #KIRVO_FILES_DAMAGED;
 *          #KIRVO_FILES_UNSUPPORTED; #KIRVO_FILES_NO_CODEC; #KIRVO_FILES_CLAIM_TOO_LARGE;
 *          #KIRVO_FILES_NO_FRAME; #KIRVO_FILES_TOO_LARGE for a file of 2 GB and more, or one
 *          with a profile or text of much more than a picture needs;
 *          #KIRVO_FILES_ABANDONED */
KIRVO_FILES_API int32_t WINAPI KirvoFilesOpen(const char* name,
                                              const KirvoFilesOpenOptions* options, HGLOBAL* dib,
                                              KirvoFile* file);
/** KirvoFilesOpen with a UTF-16 name.
 *  @param name the file @param options how; may be null
 *  @param[out] dib receives the picture @param[out] file receives what is known; may be null
 *  @return as KirvoFilesOpen */
KIRVO_FILES_API int32_t WINAPI KirvoFilesOpenW(const KirvoWide* name,
                                               const KirvoFilesOpenOptions* options, HGLOBAL* dib,
                                               KirvoFile* file);
/** KirvoFilesOpen of a file that is in memory. Q0, RAW and Photo CD files need a name and are no
 *  pictures here.
 *  @param bytes the file's content, which is not kept
 *  @param count number of bytes
 *  @param options how; may be null
 *  @param[out] dib receives the picture @param[out] file receives what is known; may be null
 *  @return as KirvoFilesOpen */
KIRVO_FILES_API int32_t WINAPI KirvoFilesOpenMemory(const void* bytes, uint32_t count,
                                                    const KirvoFilesOpenOptions* options,
                                                    HGLOBAL* dib, KirvoFile* file);

/** What the headers of a file say. Nothing is decoded, whatever size is claimed, and no memory is
 *  taken for pixels.
 *  @param name the file
 *  @param options how; only frame counts, and #KIRVO_FILES_NO_TURN for the order of width and
 * height; may be null
 *  @param[out] file receives what is known, also on failure, or null when there is no memory
 *  @return as KirvoFilesOpen without what only decoding finds out */
KIRVO_FILES_API int32_t WINAPI KirvoFilesInfo(const char* name,
                                              const KirvoFilesOpenOptions* options,
                                              KirvoFile* file);
/** KirvoFilesInfo with a UTF-16 name.
 *  @param name the file @param options how; may be null
 *  @param[out] file receives what is known
 *  @return as KirvoFilesInfo */
KIRVO_FILES_API int32_t WINAPI KirvoFilesInfoW(const KirvoWide* name,
                                               const KirvoFilesOpenOptions* options,
                                               KirvoFile* file);
/** KirvoFilesInfo of a file that is in memory.
 *  @param bytes the file's content, which is not kept @param count number of bytes
 *  @param options how; may be null @param[out] file receives what is known
 *  @return as KirvoFilesInfo */
KIRVO_FILES_API int32_t WINAPI KirvoFilesInfoMemory(const void* bytes, uint32_t count,
                                                    const KirvoFilesOpenOptions* options,
                                                    KirvoFile* file);

/** Frees what is known of a file. @param file the handle; may be null */
KIRVO_FILES_API void WINAPI KirvoFilesClose(KirvoFile file);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup filesknown What is known of a file
 *  @ingroup anyfile
 *  Numbers, texts, notes and metadata of a #KirvoFile.
 *  @{ */

#define KIRVO_FILES_HAS_ALPHA 1   /**< description: the file's picture has transparency */
#define KIRVO_FILES_PROGRESSIVE 2 /**< description: progressive or interlaced */
#define KIRVO_FILES_LOSSLESS 4    /**< description: the file's coding loses nothing */
#define KIRVO_FILES_CMYK 8        /**< description: the file's colours are cyan to black */
#define KIRVO_FILES_TOP_DOWN 16   /**< description: the file stores its top row first */
#define KIRVO_FILES_HAS_PLACE 32  /**< description: latitude and longitude are known */
#define KIRVO_FILES_ARITHMETIC 64 /**< description: a JPEG with arithmetic coding */

/** A file in numbers. What a format does not tell is 0. */
typedef struct KirvoFilesDescription {
    uint32_t size;        /**< bytes of this structure, set by the caller */
    int32_t format;       /**< a #KirvoFilesFormat */
    uint32_t width;       /**< pixels, of the picture as it opens: turned upright */
    uint32_t height;      /**< pixels, likewise */
    uint32_t fileBits;    /**< bits of a pixel in the file */
    uint32_t channels;    /**< 1 grey or palette, 2 grey and alpha, 3 colour, 4 and alpha or CMYK */
    uint32_t colours;     /**< entries of the file's palette; 0 without one */
    uint32_t dibBits;     /**< bits of a pixel of the picture that was opened; 0 of information */
    uint32_t flags;       /**< KIRVO_FILES_HAS_ALPHA to KIRVO_FILES_ARITHMETIC, added */
    uint32_t orientation; /**< EXIF's 1 to 8; 1 where the file says nothing */
    uint32_t frames;      /**< pictures in the file: frames, pages or images of an icon */
    uint32_t frame;       /**< which one this is, from 1 */
    uint32_t quality;     /**< JPEG: quality 1 to 100 that the tables are nearest to */
    uint32_t sampleAcross; /**< JPEG: luma samples for a chroma sample across: 1, 2 or 4 */
    uint32_t sampleDown;   /**< JPEG: likewise down */
    uint32_t fileBytes;    /**< bytes of the file */
    uint32_t wholeRows;    /**< rows that are good, in the order that the file stores them; of a
                                damaged file there may be fewer */
    uint32_t notes;        /**< number of notes */
    double dpiAcross;      /**< dots an inch across */
    double dpiDown;        /**< dots an inch down */
    double latitude;       /**< degrees, north above 0, with #KIRVO_FILES_HAS_PLACE */
    double longitude;      /**< degrees, east above 0, with #KIRVO_FILES_HAS_PLACE */
} KirvoFilesDescription;

/** A file in numbers.
 *  @param file what is known of it
 *  @param[in,out] description its size is set by the caller, the rest is written
 *  @return #KIRVO_FILES_OK, or #KIRVO_FILES_BAD_PARAMETER */
KIRVO_FILES_API int32_t WINAPI KirvoFilesDescribe(KirvoFile file,
                                                  KirvoFilesDescription* description);

/** What a note is about. */
typedef enum KirvoFilesNoteKind {
    KIRVO_FILES_NOTE_NONE = 0,       /**< there is no such note */
    KIRVO_FILES_NOTE_ENDS_EARLY = 1, /**< "ends early: whole to row 320 of 480" */
    KIRVO_FILES_NOTE_DAMAGED = 2,    /**< a part is damaged, and what is there was taken */
    KIRVO_FILES_NOTE_REPAIRED = 3,   /**< the headers contradict each other; the pixels are whole */
    KIRVO_FILES_NOTE_ALPHA = 4,      /**< "alpha laid over the background" */
    KIRVO_FILES_NOTE_FRAMES = 5,     /**< "animation: number 1 of 12" */
    KIRVO_FILES_NOTE_REDUCED = 6,    /**< "16 bits a channel reduced to 8", "CMYK converted" */
    KIRVO_FILES_NOTE_TURNED = 7,     /**< "turned upright (orientation 6)" */
    KIRVO_FILES_NOTE_DECODER = 8,    /**< "decoded by libjpeg-turbo: progressive" */
    KIRVO_FILES_NOTE_ENCODER = 9,    /**< what was taken to save: a level, a quality, an encoder */
    KIRVO_FILES_NOTE_METADATA = 10,  /**< "XMP left out: BMP files have no place for it" */
    KIRVO_FILES_NOTE_TEXT = 11       /**< anything else */
} KirvoFilesNoteKind;

/** What a note is about; its words are KirvoFilesText with #KIRVO_FILES_TEXT_NOTE.
 *  @param file what is known of a file
 *  @param index from 0 to KirvoFilesDescription.notes - 1
 *  @return a #KirvoFilesNoteKind; #KIRVO_FILES_NOTE_NONE for another index */
KIRVO_FILES_API int32_t WINAPI KirvoFilesNote(KirvoFile file, uint32_t index);

/** A text about a file. */
typedef enum KirvoFilesTextKind {
    /** why the call failed, in particular: "photo.jpg: Permission denied", without a full stop */
    KIRVO_FILES_TEXT_REASON = 0,
    KIRVO_FILES_TEXT_NOTE = 1,       /**< the words of a note */
    KIRVO_FILES_TEXT_VARIANT = 2,    /**< "progressive, YCbCr 4:2:0", "V5 header, RLE8" */
    KIRVO_FILES_TEXT_DECODER = 3,    /**< by what it was decoded or encoded: "Kirvo" */
    KIRVO_FILES_TEXT_CAMERA = 4,     /**< maker and model */
    KIRVO_FILES_TEXT_LENS = 5,       /**< the lens */
    KIRVO_FILES_TEXT_DATE = 6,       /**< when it was taken: "2023-05-01 12:30:00" */
    KIRVO_FILES_TEXT_EXPOSURE = 7,   /**< "1/250 s, f/2.8, ISO 100, 35 mm" */
    KIRVO_FILES_TEXT_PLACE = 8,      /**< "35.68950, 139.69170" */
    KIRVO_FILES_TEXT_PROFILE = 9,    /**< the ICC profile's name */
    KIRVO_FILES_TEXT_SOFTWARE = 10,  /**< what made the file */
    KIRVO_FILES_TEXT_ARTIST = 11,    /**< who made the picture */
    KIRVO_FILES_TEXT_COPYRIGHT = 12, /**< whose it is */
    KIRVO_FILES_TEXT_TITLE = 13,     /**< what it shows */
    KIRVO_FILES_TEXT_COMMENT = 14    /**< JPEG: the first comment, in one line */
} KirvoFilesTextKind;

/** A text about a file.
 *  @param file what is known of it
 *  @param kind a #KirvoFilesTextKind
 *  @param index which note, from 0, with #KIRVO_FILES_TEXT_NOTE; otherwise 0
 *  @param[out] text receives as much as fits with a zero byte, never half a character; may be null
 *  @param capacity bytes of text
 *  @return bytes that the whole text takes with its zero byte; 1 where there is nothing to say */
KIRVO_FILES_API uint32_t WINAPI KirvoFilesText(KirvoFile file, int32_t kind, uint32_t index,
                                               char* text, uint32_t capacity);

/** Bytes that come with a file. */
typedef enum KirvoFilesDataKind {
    KIRVO_FILES_DATA_EXIF = 0, /**< EXIF, a TIFF structure that begins with II or MM */
    KIRVO_FILES_DATA_ICC = 1,  /**< the ICC profile */
    KIRVO_FILES_DATA_XMP = 2,  /**< XMP, UTF-8 text */
    /** JPEG: up to four quantisation tables one after the other, each 64 numbers of 16 bits, row
     *  by row */
    KIRVO_FILES_DATA_QUANTISERS = 3,
    KIRVO_FILES_DATA_PALETTE = 4, /**< the file's palette, 4 bytes an entry: blue, green, red, 0 */
    KIRVO_FILES_DATA_COMMENT = 5  /**< JPEG: the first comment */
} KirvoFilesDataKind;

/** Bytes that come with a file.
 *  @param file what is known of it
 *  @param kind a #KirvoFilesDataKind
 *  @param[out] bytes receives as many as fit; may be null
 *  @param capacity room in bytes
 *  @return how many there are; 0 for none */
KIRVO_FILES_API uint32_t WINAPI KirvoFilesData(KirvoFile file, int32_t kind, void* bytes,
                                               uint32_t capacity);

/** Gives a file's metadata other bytes, to be saved with a picture, also where the rest of its
 *  metadata is not (#KIRVO_FILES_STRIP): EXIF, an ICC profile, XMP or a JPEG comment.
 *  @param[in,out] file what is known of a file; where it is null, a new one is made, which knows
 *         nothing else
 *  @param kind #KIRVO_FILES_DATA_EXIF, #KIRVO_FILES_DATA_ICC, #KIRVO_FILES_DATA_XMP or
 *         #KIRVO_FILES_DATA_COMMENT
 *  @param bytes copied; may be null with count 0
 *  @param count number of bytes; 0 takes away what there was
 *  @return #KIRVO_FILES_OK; #KIRVO_FILES_BAD_PARAMETER; #KIRVO_FILES_NO_MEMORY */
KIRVO_FILES_API int32_t WINAPI KirvoFilesSetData(KirvoFile* file, int32_t kind, const void* bytes,
                                                 uint32_t count);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup filessave Save
 *  @ingroup anyfile
 *  A packed DIB as a file of any format that is written here.
 *  @{ */

#define KIRVO_FILES_STRIP 1          /**< saving: without the metadata that the source came with */
#define KIRVO_FILES_NEW_ONLY 2       /**< saving: not where there is a file already */
#define KIRVO_FILES_GREY 4           /**< saving: without colour */
#define KIRVO_FILES_WITH_ALPHA 8     /**< saving: the top byte of 32 bits is alpha */
#define KIRVO_FILES_RLE 16           /**< saving: Targa with run lengths */
#define KIRVO_FILES_WEBP_LOSSLESS 32 /**< saving: WebP without loss */
#define KIRVO_FILES_FRESH 64         /**< saving: JPEG without the source's tables and sampling */

/** How a TIFF file is compressed. */
typedef enum KirvoFilesCompression {
    KIRVO_FILES_COMPRESSION_USUAL = 0,   /**< LZW */
    KIRVO_FILES_COMPRESSION_NONE = 1,    /**< none */
    KIRVO_FILES_COMPRESSION_LZW = 2,     /**< LZW */
    KIRVO_FILES_COMPRESSION_DEFLATE = 3, /**< Deflate */
    KIRVO_FILES_COMPRESSION_PACKBITS = 4 /**< PackBits */
} KirvoFilesCompression;

/** How to save. Null, or all zero after size: in the format that the name tells, with the source's
 *  metadata, and a JPEG of a JPEG with the source's tables and sampling. */
typedef struct KirvoFilesSaveOptions {
    uint32_t size;  /**< bytes of this structure */
    int32_t format; /**< a #KirvoFilesFormat; 0: by the name's extension */
    uint32_t flags; /**< KIRVO_FILES_STRIP to KIRVO_FILES_FRESH, added */
    /** JPEG and WebP: 1 to 100; 0: of a JPEG from a JPEG the source's tables, otherwise 90 */
    uint32_t quality;
    uint32_t level; /**< JPEG: quality level 1 to 5 of Kirvo's encoder in place of quality; or 0 */
    /** JPEG: 1, 2 or 4 as JpgCodSetSubsample; 0: the source's, otherwise 1 from quality 90 or with
     *  level 1, 4 below */
    uint32_t subsample;
    /** JPEG and WebP: the best quality (at most the one asked for) whose file has no more than so
     *  many bytes; 0: any */
    uint32_t sizeLimit;
    /** BMP, PNG, Targa and TIFF: bits of a pixel, 8, 16, 24 or 32 (16 not for PNG and TIFF); from
     *  palettes to more and between 16, 24 and 32, nothing else; 0: the image's */
    uint32_t bits;
    int32_t compression; /**< TIFF: a #KirvoFilesCompression */
    uint32_t reserved;   /**< 0 */
    double dpiAcross;    /**< dots an inch across; 0: the source's */
    double dpiDown;      /**< dots an inch down; 0: the source's */
} KirvoFilesSaveOptions;

/** Saves a picture as a file, complete or not at all.
 *
 *  It is written beside its place under a name of its own that nobody else can open, and put into
 *  its place when it is complete and safe on the disk. A file that is replaced hands on its
 *  permissions; where the name is a link, what it points at is replaced and the link stays.
 *
 *  With a source, its EXIF (orientation set to 1 where it was turned, thumbnail dropped, sizes
 *  updated), ICC profile, XMP and resolution go along where the format has a place; a note tells
 *  what was left out. A JPEG of a JPEG keeps the source's quantisation tables and sampling unless
 *  quality, level or subsample say otherwise. JPEG is encoded by Kirvo where it can; where not (a
 * grey stream that outgrows Kirvo's block, tables of 16 bits), another way is taken and noted.
 *
 *  Formats: BMP 1 to 32 bits; JPEG; PNG 1, 4, 8, 24 bits and 32 with alpha; Targa 8 bits, 16, 24
 * and 32, with #KIRVO_FILES_RLE packed; TIFF 1 to 32 bits; WebP 24 bits and 32 with alpha. A
 * picture of a depth that the format does not have goes into the next larger one. JPEG and formats
 * without alpha save the colours alone; a note says so where there was alpha.
 *  @param name the file
 *  @param dib packed DIB of 1, 4, 8, 16, 24 or 32 bits
 *  @param source what is known of the file that the picture came from; may be null
 *  @param options how; may be null
 *  @param[out] file receives what is known of the file written (notes, format, decoder, fileBytes),
 *              also on failure, or null when there is no memory; may be null
 *  @return #KIRVO_FILES_OK; #KIRVO_FILES_BAD_PARAMETER; #KIRVO_FILES_NO_MEMORY;
 *          #KIRVO_FILES_MISSING for a folder that is not there; #KIRVO_FILES_IS_FOLDER;
 *          #KIRVO_FILES_NO_PERMISSION; #KIRVO_FILES_CANNOT_WRITE; #KIRVO_FILES_DISK_FULL;
 *          #KIRVO_FILES_EXISTS; #KIRVO_FILES_NO_CODEC; #KIRVO_FILES_NOT_WRITTEN;
 *          #KIRVO_FILES_TOO_LARGE; #KIRVO_FILES_SIZE_LIMIT; #KIRVO_FILES_UNSUPPORTED for a depth;
 *          #KIRVO_FILES_ABANDONED. Nothing but #KIRVO_FILES_OK changes any file */
KIRVO_FILES_API int32_t WINAPI KirvoFilesSave(const char* name, HGLOBAL dib, KirvoFile source,
                                              const KirvoFilesSaveOptions* options,
                                              KirvoFile* file);
/** KirvoFilesSave with a UTF-16 name.
 *  @param name the file @param dib the picture @param source where it came from; may be null
 *  @param options how; may be null @param[out] file receives what is known; may be null
 *  @return as KirvoFilesSave */
KIRVO_FILES_API int32_t WINAPI KirvoFilesSaveW(const KirvoWide* name, HGLOBAL dib, KirvoFile source,
                                               const KirvoFilesSaveOptions* options,
                                               KirvoFile* file);
/** Saves a picture into a block of memory.
 *  @param dib the picture @param source where it came from; may be null
 *  @param options how; the format has to be told
 *  @param[out] block receives the file's bytes, owned by the caller (GlobalFree), and no others:
 *              GlobalSize may be a little more; null on failure
 *  @param[out] count receives the number of bytes
 *  @param[out] file receives what is known; may be null
 *  @return as KirvoFilesSave, without what concerns files */
KIRVO_FILES_API int32_t WINAPI KirvoFilesSaveMemory(HGLOBAL dib, KirvoFile source,
                                                    const KirvoFilesSaveOptions* options,
                                                    HGLOBAL* block, uint32_t* count,
                                                    KirvoFile* file);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup filesturn Turn a JPEG without loss
 *  @ingroup anyfile
 *  The coefficients are moved, nothing is decoded: what comes out is as good as what went in.
 *  @{ */

/** Which way a picture is turned. */
typedef enum KirvoFilesTurning {
    KIRVO_FILES_TURN_UPRIGHT = 0, /**< as its EXIF orientation says */
    KIRVO_FILES_TURN_90 = 1,      /**< a quarter clockwise */
    KIRVO_FILES_TURN_180 = 2,     /**< a half */
    KIRVO_FILES_TURN_270 = 3,     /**< a quarter counter-clockwise */
    KIRVO_FILES_TURN_FLIP = 4,    /**< top to bottom */
    KIRVO_FILES_TURN_MIRROR = 5   /**< left to right */
} KirvoFilesTurning;

/** What becomes of blocks at an edge that is no multiple of their size (8 or 16 pixels) and would
 *  have to become the first row or column. */
typedef enum KirvoFilesEdges {
    KIRVO_FILES_EDGES_FAIL = 0, /**< nothing is written; the answer is #KIRVO_FILES_EDGE */
    KIRVO_FILES_EDGES_TRIM = 1, /**< they are cut off; a note says how much */
    KIRVO_FILES_EDGES_KEEP = 2  /**< they stay where they are, unturned; a note says so */
} KirvoFilesEdges;

/** Turns a JPEG without loss: baseline, extended and progressive ones on every system, those with
 *  arithmetic coding where the library is built with libjpeg-turbo. A progressive file stays one,
 *  several scans of another become one. An orientation that the file has counts
 *  first: what people see is what is turned. Metadata stays, orientation becomes 1, sizes are
 *  updated and the thumbnail is dropped. Both names may be the same.
 *  @param source the file to turn
 *  @param target the file to write, as KirvoFilesSave does
 *  @param turning a #KirvoFilesTurning
 *  @param edges a #KirvoFilesEdges
 *  @param flags #KIRVO_FILES_STRIP, #KIRVO_FILES_NEW_ONLY, or 0
 *  @param[out] file receives what is known of the file written, also on failure; may be null
 *  @return as KirvoFilesOpen and KirvoFilesSave; #KIRVO_FILES_UNSUPPORTED for a file that is no
 *          JPEG; #KIRVO_FILES_NO_CODEC; #KIRVO_FILES_EDGE */
KIRVO_FILES_API int32_t WINAPI KirvoFilesTurn(const char* source, const char* target,
                                              int32_t turning, int32_t edges, uint32_t flags,
                                              KirvoFile* file);
/** KirvoFilesTurn with UTF-16 names.
 *  @param source the file to turn @param target the file to write @param turning a
 * #KirvoFilesTurning
 *  @param edges a #KirvoFilesEdges @param flags as KirvoFilesTurn
 *  @param[out] file receives what is known; may be null
 *  @return as KirvoFilesTurn */
KIRVO_FILES_API int32_t WINAPI KirvoFilesTurnW(const KirvoWide* source, const KirvoWide* target,
                                               int32_t turning, int32_t edges, uint32_t flags,
                                               KirvoFile* file);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* KIRVO_FILES_H */
