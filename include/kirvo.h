/**
 * @file kirvo.h
 * @brief Kirvo: image processing on packed DIBs. The whole public interface.
 *
 * Every image is a *packed DIB*: one movable global memory block that holds a BITMAPINFOHEADER,
 * the colour part (a colour table for 1, 4 and 8 bits, three channel masks for 16 and 32 bits with
 * BI_BITFIELDS) and the pixel rows. Rows are stored bottom-up and padded to multiples of 4 bytes.
 * The block is passed around as its HGLOBAL.
 *
 * Conventions
 * - Rectangles are x, y, width, height in pixels; x and y count from the top left of the picture.
 * - A colour is a COLORREF-style value 0x00BBGGRR: red in bits 0-7, green 8-15, blue 16-23.
 * - Functions that make an image return its handle, or null with a status through their last
 *   argument; functions that work in place return the status. A status pointer may be null.
 * - The caller owns every handle that a function returns and frees it with GlobalFree, unless the
 *   function says otherwise. Handles passed in are never freed.
 * - The library keeps process-wide settings without locks: calls must not overlap.
 *
 * On Windows this header includes <windows.h>. Elsewhere it declares the few Win32 types and
 * functions that a caller needs, so that the same source builds on both.
 *
 * Example: open a bitmap file, save its top left quarter.
 * @code
 *     uint32_t width, height, bits;
 *     int32_t status;
 *     HGLOBAL dib = DibReadEx("in.bmp", &width, &height, &bits, &status);
 *     if (dib) {
 *         status = DibWriteEx("out.bmp", dib, 0, 0, (int32_t)width / 2, (int32_t)height / 2);
 *         GlobalFree(dib);
 *     }
 * @endcode
 */
#ifndef KIRVO_H
#define KIRVO_H

#include <stddef.h>
#include <stdint.h>

#ifdef _WIN32
#include <windows.h>
#if defined(KIRVO_BUILDING)
#define KIRVO_API
#else
#define KIRVO_API __declspec(dllimport)
#endif
#else
#define KIRVO_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

#ifndef _WIN32
/* ------------------------------------------------------------------------------------------- */
/** @defgroup platform Win32 names away from Windows
 *  @ingroup memory
 *  The types and functions of <windows.h> that a caller of this library needs, declared only when
 *  not building for Windows. Handles are pointers; every integer has its Windows width.
 *  @{ */

#define WINAPI /**< calling convention of the library's functions: stdcall on 32-bit Windows */

typedef int32_t BOOL;                /**< truth value: 0 or not 0 */
typedef uint8_t BYTE;                /**< 8 bits */
typedef uint16_t WORD;               /**< 16 bits */
typedef uint32_t DWORD;              /**< 32 bits */
typedef uint32_t UINT;               /**< 32 bits */
typedef int32_t LONG;                /**< 32 bits with a sign, also where long has 64 */
typedef uint32_t COLORREF;           /**< a colour, 0x00BBGGRR */
typedef size_t SIZE_T;               /**< number of bytes */
typedef uintptr_t WPARAM;            /**< first value of a message */
typedef intptr_t LPARAM;             /**< second value of a message */
typedef intptr_t LRESULT;            /**< what a window answers to a message */
typedef void* LPVOID;                /**< address of anything */
typedef const char* LPCSTR;          /**< text that ends with a zero byte */
typedef void* HANDLE;                /**< any handle */
typedef void* HGLOBAL;               /**< a movable block of memory: GlobalAlloc, GlobalLock */
typedef void* HGDIOBJ;               /**< an object of the graphics interface: DeleteObject */
typedef struct HWND__* HWND;         /**< a window; what it points at is the window host's */
typedef struct HPALETTE__* HPALETTE; /**< a logical palette */

#ifndef TRUE
#define TRUE 1  /**< yes */
#define FALSE 0 /**< no */
#endif

#define GMEM_MOVEABLE 0x0002u                /**< GlobalAlloc: the block is known by a handle */
#define GMEM_ZEROINIT 0x0040u                /**< GlobalAlloc: the block is zero */
#define GHND (GMEM_MOVEABLE | GMEM_ZEROINIT) /**< GlobalAlloc: both */

#define BI_RGB 0       /**< biCompression: plain pixels */
#define BI_BITFIELDS 3 /**< biCompression: plain pixels under three masks */

#define WM_COMMAND 0x0111 /**< the message that carries progress */

#define SM_CYMENU 15         /**< GetSystemMetrics: height of a menu bar */
#define SM_CXFRAME 32        /**< GetSystemMetrics: width of a window's frame */
#define SWP_NOMOVE 0x0002u   /**< SetWindowPos: the position stays */
#define SWP_NOZORDER 0x0004u /**< SetWindowPos: the order of windows stays */

/** Header of a device-independent bitmap, as in Win32. */
typedef struct BITMAPINFOHEADER {
    DWORD biSize;         /**< size of this header in bytes: 40 */
    LONG biWidth;         /**< width in pixels */
    LONG biHeight;        /**< height in pixels; positive: rows are stored bottom-up */
    WORD biPlanes;        /**< 1 */
    WORD biBitCount;      /**< 1, 4, 8, 16, 24 or 32 */
    DWORD biCompression;  /**< BI_RGB or BI_BITFIELDS */
    DWORD biSizeImage;    /**< bytes of all rows */
    LONG biXPelsPerMeter; /**< not interpreted */
    LONG biYPelsPerMeter; /**< not interpreted */
    DWORD biClrUsed;      /**< number of colour-table entries, or 0 for the depth's full number */
    DWORD biClrImportant; /**< not interpreted */
} BITMAPINFOHEADER;

/** One entry of a colour table. */
typedef struct RGBQUAD {
    BYTE rgbBlue;     /**< blue */
    BYTE rgbGreen;    /**< green */
    BYTE rgbRed;      /**< red */
    BYTE rgbReserved; /**< not interpreted */
} RGBQUAD;

/** One entry of a logical palette. */
typedef struct PALETTEENTRY {
    BYTE peRed;   /**< red */
    BYTE peGreen; /**< green */
    BYTE peBlue;  /**< blue */
    BYTE peFlags; /**< 0 or a PC_ flag */
} PALETTEENTRY;

/** A rectangle by its edges. */
typedef struct RECT {
    LONG left;   /**< left edge */
    LONG top;    /**< top edge */
    LONG right;  /**< one past the right edge */
    LONG bottom; /**< one past the bottom edge */
} RECT;

/** Allocates a movable block. @param flags must hold GMEM_MOVEABLE; the memory is always zero.
 *  @param bytes the exact size that GlobalSize answers.
 *  @return the handle; null when there is no memory or the block would not be movable. */
KIRVO_API HGLOBAL WINAPI GlobalAlloc(UINT flags, SIZE_T bytes);
/** Locks a block. @param block a handle of GlobalAlloc.
 *  @return the address of its first byte; null for a handle that is unknown or freed. */
KIRVO_API LPVOID WINAPI GlobalLock(HGLOBAL block);
/** Undoes one GlobalLock. @param block the handle.
 *  @return non-zero while the block is still locked, else 0. */
KIRVO_API BOOL WINAPI GlobalUnlock(HGLOBAL block);
/** Frees a block, locked or not. @param block the handle, may be null.
 *  @return null, or the handle itself when it is unknown. */
KIRVO_API HGLOBAL WINAPI GlobalFree(HGLOBAL block);
/** Size of a block. @param block the handle. @return its size in bytes, 0 for an unknown handle. */
KIRVO_API SIZE_T WINAPI GlobalSize(HGLOBAL block);
/** Reads entries of a logical palette. @param palette the palette @param first first index
 *  @param count number wanted @param entries receives them; null asks for the palette's size
 *  @return the number of entries written (or held, with null entries); 0 for an unknown palette. */
KIRVO_API UINT WINAPI GetPaletteEntries(HPALETTE palette, UINT first, UINT count,
                                        PALETTEENTRY* entries);
/** Deletes a logical palette. @param object the palette. @return TRUE, or FALSE when unknown. */
KIRVO_API BOOL WINAPI DeleteObject(HGDIOBJ object);

/** How a program without Win32 windows takes part: the window calls that the library makes.
 *  A null member does nothing and answers 0. */
typedef struct KirvoWindowHost {
    /** progress messages: window, WM_COMMAND, command id, percent */
    LRESULT (*SendMessageA)(HWND, UINT, WPARAM, LPARAM);
    /** outer rectangle of a window */
    BOOL (*GetWindowRect)(HWND, RECT*);
    /** client rectangle of a window */
    BOOL (*GetClientRect)(HWND, RECT*);
    /** resizes a window */
    BOOL (*SetWindowPos)(HWND, HWND, int, int, int, int, UINT);
    /** sizes of frames and menus */
    int (*GetSystemMetrics)(int);
} KirvoWindowHost;

/** Sets the window host. @param host copied; null goes back to doing nothing. */
KIRVO_API void WINAPI KirvoSetWindowHost(const KirvoWindowHost* host);

/** @} */
#endif /* !_WIN32 */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup status Status codes
 *  One vocabulary for the whole library: 0 is success, errors are negative.
 *  @{ */

/** What a call answers. */
typedef enum KirvoStatus {
    /** Success. */
    KIRVO_OK = 0,
    /** A rectangle that is empty, negative or outside the image, a value out of its range, or a
     *  block of memory smaller than its header says. Hold the arguments against the image's width
     *  and height; of an image from a file also GlobalSize against the header. */
    KIRVO_BAD_PARAMETER = -1,
    /** Memory could not be allocated, or the result would have no pixels or more than 2^31 - 1
     *  bytes, or a JPEG stream has outgrown its block. Free images that are no longer needed, work
     *  in smaller rectangles, or encode at a coarser level. */
    KIRVO_NO_MEMORY = -2,
    /** Null handle, null data, or a handle that is freed or invented. Look at what the call that
     *  should have made the image answered. */
    KIRVO_NULL_HANDLE = -3,
    /** A file could not be opened or created. Look at its name, its folder and its permissions. */
    KIRVO_CANNOT_OPEN = -4,
    /** A read error, or a file that is too short. The file is damaged or still being written. */
    KIRVO_READ_ERROR = -5,
    /** A write error: the disk is full or was taken away. Delete the part that was written. */
    KIRVO_WRITE_ERROR = -6,
    /** JPEG: no start of image. The data is no JPEG stream. */
    KIRVO_JPEG_NO_SOI = -10,
    /** JPEG: a marker that does not belong into the entropy-coded data. The stream is damaged or
     *  cut; JpgDecGetLastUexMarker tells which marker and where. */
    KIRVO_JPEG_MARKER = -11,
    /** JPEG: end of image before the first scan. The stream holds tables only, or is damaged. */
    KIRVO_JPEG_EARLY_EOI = -12,
    /** JPEG: a header that is damaged, incomplete, or asks for what the decoder does not offer.
     *  Have it saved with 1 or 3 components of 8 bits and a common sampling. */
    KIRVO_JPEG_HEADER = -13,
    /** JPEG: a Huffman code that does not exist, or a table that was not defined. The stream is
     *  damaged. */
    KIRVO_JPEG_HUFFMAN = -14,
    /** JPEG encoder: a coefficient that has no code. Only own tables with very small quantisers
     *  lead here: enlarge them. */
    KIRVO_JPEG_CATEGORY = -15,
    /** The caller has abandoned a piecewise encode or decode. */
    KIRVO_ABANDONED = -16,
    /** Another encode or decode is in progress. Finish or abandon it first. */
    KIRVO_BUSY = -17,
    /** JPEG: a frame type other than baseline and progressive Huffman coding. Another program has
     *  to save the picture as one of these. */
    KIRVO_JPEG_FRAME = -19,
    /** Not a BMP file, or a depth that BMP files do not have. Try the reader of another format, or
     *  convert the image to a depth of 1, 4, 8, 16, 24 or 32 bits. */
    KIRVO_NOT_BMP = -20,
    /** The grey JPEG encoder takes 8 bits: DecreaseColorMono256 makes them. */
    KIRVO_NEEDS_8 = -21,
    /** The image must have 24 bits: IncreaseColor16M and DibConvert24bit make them. */
    KIRVO_NEEDS_24 = -22,
    /** Not an uncompressed 24-bit Targa file. Save it without compression, alpha and palette. */
    KIRVO_NOT_TARGA = -25,
    /** The companion file of a Q0 file is missing or holds no size, or the Q0 file is too short for
     *  it. Put a text file beside it, with width and height, of its name and the extension .IPR. */
    KIRVO_Q0_SIZE = -26,
    /** Not a RAW file, or one too short for its size. It is damaged or of another kind. */
    KIRVO_NOT_RAW = -27,
    /** A RAW file with a palette, which the reader does not offer. Save it in true colour. */
    KIRVO_RAW_PALETTE = -28,
    /** More than 256 different colours (239 and the system colours in mode 0). Reduce them with
     *  DecreaseColor256 or Decrease256Fast. */
    KIRVO_MORE_THAN_256 = -30,
    /** More than 16 different colours, or in mode 0 others than the system colours. Reduce them
     *  with DecreaseColor16. */
    KIRVO_MORE_THAN_16 = -31,
    /** Not an icon or cursor file. Icons inside programs have to be taken out first. */
    KIRVO_NOT_ICON = -35,
    /** The image must have 8, 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer. Also two
     *  images of different depths, where they must agree. */
    KIRVO_NEEDS_8_16_24_32 = -40,
    /** The image must have 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer. */
    KIRVO_NEEDS_16_24_32 = -41,
    /** The image must have 24 or 32 bits: DibConvert24bit and IncreaseColor16M make 24. Also two
     *  images of different depths, where they must agree. */
    KIRVO_NEEDS_24_32 = -42,
    /** The image must have 8, 24 or 32 bits. No function answers this. */
    KIRVO_NEEDS_8_24_32 = -43,
    /** The image must have 16 or 32 bits. One of 24 needs no conversion; IncreaseColor16M takes
     *  fewer. */
    KIRVO_NEEDS_16_32 = -44,
    /** The image must have 1, 4 or 8 bits. One of 24 needs no conversion; DibConvert24bit takes 16
     *  and 32. */
    KIRVO_NEEDS_1_4_8 = -45,
    /** The image must have 8 or 24 bits: IncreaseColor16M and DibConvert24bit make 24. */
    KIRVO_NEEDS_8_24 = -46,
    /** The image must have 16 or 24 bits. One of 32 needs no conversion; IncreaseColor16M makes 24
     *  of fewer. */
    KIRVO_NEEDS_16_24 = -47
} KirvoStatus;

/** The meaning of a status code in words, without a full stop.
 *  @param status a #KirvoStatus
 *  @return the text, which lasts; "unknown status" for other codes */
/* What follows is written by script/bindings. */
/* clang-format off */
static inline const char* kirvo_status_text(int32_t status) {
    switch (status) {
    case KIRVO_OK:
        return "Success";
    case KIRVO_BAD_PARAMETER:
        return "A rectangle that is empty, negative or outside the image, a value out of its range, or"
               " a block of memory smaller than its header says";
    case KIRVO_NO_MEMORY:
        return "Memory could not be allocated, or the result would have no pixels or more than "
               "2147483647 bytes, or a JPEG stream has outgrown its block";
    case KIRVO_NULL_HANDLE:
        return "Null handle, null data, or a handle that is freed or invented";
    case KIRVO_CANNOT_OPEN:
        return "A file could not be opened or created";
    case KIRVO_READ_ERROR:
        return "A read error, or a file that is too short";
    case KIRVO_WRITE_ERROR:
        return "A write error: the disk is full or was taken away";
    case KIRVO_JPEG_NO_SOI:
        return "JPEG: no start of image";
    case KIRVO_JPEG_MARKER:
        return "JPEG: a marker that does not belong into the entropy-coded data";
    case KIRVO_JPEG_EARLY_EOI:
        return "JPEG: end of image before the first scan";
    case KIRVO_JPEG_HEADER:
        return "JPEG: a header that is damaged, incomplete, or asks for what the decoder does not "
               "offer";
    case KIRVO_JPEG_HUFFMAN:
        return "JPEG: a Huffman code that does not exist, or a table that was not defined";
    case KIRVO_JPEG_CATEGORY:
        return "JPEG encoder: a coefficient that has no code";
    case KIRVO_ABANDONED:
        return "The caller has abandoned a piecewise encode or decode";
    case KIRVO_BUSY:
        return "Another encode or decode is in progress";
    case KIRVO_JPEG_FRAME:
        return "JPEG: a frame type other than baseline and progressive Huffman coding";
    case KIRVO_NOT_BMP:
        return "Not a BMP file, or a depth that BMP files do not have";
    case KIRVO_NEEDS_8:
        return "The grey JPEG encoder takes 8 bits: DecreaseColorMono256 makes them";
    case KIRVO_NEEDS_24:
        return "The image must have 24 bits: IncreaseColor16M and DibConvert24bit make them";
    case KIRVO_NOT_TARGA:
        return "Not an uncompressed 24-bit Targa file";
    case KIRVO_Q0_SIZE:
        return "The companion file of a Q0 file is missing or holds no size, or the Q0 file is too "
               "short for it";
    case KIRVO_NOT_RAW:
        return "Not a RAW file, or one too short for its size";
    case KIRVO_RAW_PALETTE:
        return "A RAW file with a palette, which the reader does not offer";
    case KIRVO_MORE_THAN_256:
        return "More than 256 different colours (239 and the system colours in mode 0)";
    case KIRVO_MORE_THAN_16:
        return "More than 16 different colours, or in mode 0 others than the system colours";
    case KIRVO_NOT_ICON:
        return "Not an icon or cursor file";
    case KIRVO_NEEDS_8_16_24_32:
        return "The image must have 8, 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer";
    case KIRVO_NEEDS_16_24_32:
        return "The image must have 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer";
    case KIRVO_NEEDS_24_32:
        return "The image must have 24 or 32 bits: DibConvert24bit and IncreaseColor16M make 24";
    case KIRVO_NEEDS_8_24_32:
        return "The image must have 8, 24 or 32 bits";
    case KIRVO_NEEDS_16_32:
        return "The image must have 16 or 32 bits";
    case KIRVO_NEEDS_1_4_8:
        return "The image must have 1, 4 or 8 bits";
    case KIRVO_NEEDS_8_24:
        return "The image must have 8 or 24 bits: IncreaseColor16M and DibConvert24bit make 24";
    case KIRVO_NEEDS_16_24:
        return "The image must have 16 or 24 bits";
    default:
        return "unknown status";
    }
}
/* clang-format on */
/* What precedes is written by script/bindings. */

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup frame Images
 *  @ingroup memory
 *  A new image, and what the header of an image says.
 *  @{ */

#define KIRVO_VERSION 0x01000402 /**< version of this header: 1.0.4.2, as GetVerKirvoDll tells it */

/** Version of the library.
 *  @return 0x01000402 for 1.0.4.2: one byte each, the major number in the top byte. */
KIRVO_API uint32_t WINAPI GetVerKirvoDll(void);

/** Registers for progress messages of the next long operation.
 *  @ingroup progress
 *
 *  A watched operation sends WM_COMMAND to the window with SendMessageA: wParam is the command id,
 *  lParam the percentage. It sends 0 when its work begins, then each percentage that is at least 5
 *  above the last one sent, and 100 on success; it then switches the notification off, so that each
 *  operation is watched by a call of its own. A handler may switch it off from inside a message.
 *  @param window receives the messages
 *  @param command sent as wParam
 *  @param enable 1 stores window and command and switches on; any other value switches off and
 *         keeps the stored ones
 *  @return enable */
KIRVO_API int32_t WINAPI KirvoSetProcess(HWND window, uint32_t command, int32_t enable);

/** Number of colour-table entries of an image.
 *  @param header locked header of a packed DIB
 *  @return the low 16 bits of biClrUsed when that is not 0; else 2, 16 or 256 for 1, 4 or 8 bits;
 *          3 for 16 and 32 bits with BI_BITFIELDS; otherwise 0 (also for a null pointer) */
KIRVO_API uint16_t WINAPI DibNumColors(const void* header);

/** Size of the colour part of an image.
 *  @param header locked header of a packed DIB
 *  @return DibNumColors × 4 bytes, or × 3 when biSize is 12; low 16 bits; 0 for a null pointer.
 *          Pixel rows start at biSize + PaletteSize. */
KIRVO_API uint16_t WINAPI PaletteSize(const void* header);

/** Depth of an image.
 *  @param dib packed DIB
 *  @return biBitCount, or #KIRVO_NULL_HANDLE */
KIRVO_API int32_t WINAPI DibQueryBitCount(HGLOBAL dib);

/** Sets one colour-table entry; its reserved byte stays as it is.
 *  @ingroup palette
 *  @param dib packed DIB with a 40-byte header
 *  @param index entry, 0 to 255 and below DibNumColors
 *  @param colour 0x00BBGGRR
 *  @return 1 if the entry was written, else 0 (null handle, index out of range or beyond the
 *          table) */
KIRVO_API int32_t WINAPI XPaletteQuad(HGLOBAL dib, int32_t index, uint32_t colour);

/** Makes a logical palette of the library's fixed 256 colours: the 20 system colours at 0-9 and
 *  246-255, between them colour-cube and grey entries flagged PC_NOCOLLAPSE.
 *  @ingroup palette
 *  @return the palette, which the caller frees with DeleteObject; null on failure */
KIRVO_API HPALETTE WINAPI KirvoCreatePalette(void);

/** Allocates a new packed DIB. Apart from its header the block is zero: colour tables are black,
 *  and the masks of a 16- or 32-bit image (made with BI_BITFIELDS) are for the caller to write.
 *  @param width at least 1
 *  @param height at least 1
 *  @param bits 1, 4, 8, 16, 24 or 32
 *  @return the image, owned by the caller; null for a bad size or depth, or when there is not
 *          enough memory (a block never exceeds 2^31 - 1 bytes) */
KIRVO_API HGLOBAL WINAPI DibMemAllocEx(uint32_t width, int32_t height, uint32_t bits);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup bmp BMP files
 *  @ingroup files
 *  Pictures of every depth, whole or a rectangle. No progress is reported.
 *  @{ */

/** Reads a BMP file of any depth. The block returned is the file without its first 14 bytes:
 *  bfOffBits, compression and the sign of the height are not examined.
 *  @param name file name
 *  @param[out] width biWidth, written on success
 *  @param[out] height biHeight, written on success
 *  @param[out] bits biBitCount, written as soon as it is known
 *  @param[out] status #KIRVO_OK; #KIRVO_CANNOT_OPEN; #KIRVO_READ_ERROR for a file below 14 bytes or
 *              a short read; #KIRVO_NOT_BMP for another signature or depth; #KIRVO_NO_MEMORY
 *  @return the image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI DibReadEx(LPCSTR name, uint32_t* width, uint32_t* height, uint32_t* bits,
                                   int32_t* status);

/** Reads a 24-bit BMP file.
 *  @param name file name
 *  @param[out] width biWidth
 *  @param[out] height biHeight
 *  @param[out] status #KIRVO_OK; #KIRVO_CANNOT_OPEN; #KIRVO_READ_ERROR for a file below 14 bytes or
 *              a short read; #KIRVO_NOT_BMP for another signature or depth; #KIRVO_NO_MEMORY;
 *              #KIRVO_NEEDS_24 for a BMP file of another depth
 *  @return the image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Dib24Read(LPCSTR name, uint32_t* width, uint32_t* height, int32_t* status);

/** Writes an image, or a rectangle of it, as a BMP file.
 *
 *  Width and height both -1 mean the whole image. A rectangle of a 1- or 4-bit image starts at the
 *  next whole byte; biSizeImage keeps the source's value. A partly written file stays on disk.
 *  @param name file name; an existing file is replaced
 *  @param dib packed DIB of 1, 4, 8, 16, 24 or 32 bits
 *  @param x,y,width,height rectangle in the picture
 *  @return #KIRVO_OK; #KIRVO_BAD_PARAMETER for a null handle or a negative x or y;
 *          #KIRVO_NULL_HANDLE for a handle that cannot be locked; #KIRVO_NOT_BMP for another depth;
 *          #KIRVO_BAD_PARAMETER for a rectangle that is empty or outside the image, or a block
 *          smaller than its header says; #KIRVO_CANNOT_OPEN; #KIRVO_WRITE_ERROR */
KIRVO_API int32_t WINAPI DibWriteEx(LPCSTR name, HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                    int32_t height);

/** Writes a 24-bit image, or a rectangle of it, as a BMP file.
 *  @param name file name
 *  @param dib packed DIB of 24 bits
 *  @param x,y,width,height as for DibWriteEx
 *  @return #KIRVO_OK; #KIRVO_NULL_HANDLE for a null handle (where DibWriteEx answers
 *          #KIRVO_BAD_PARAMETER); #KIRVO_NEEDS_24 for another depth; #KIRVO_BAD_PARAMETER for a
 *          rectangle that is empty or outside the image, or a block smaller than its header says;
 *          #KIRVO_CANNOT_OPEN; #KIRVO_WRITE_ERROR */
KIRVO_API int32_t WINAPI Dib24Write(LPCSTR name, HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                    int32_t height);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup jpegdec JPEG decoder
 *  @ingroup jpeg
 *  Decodes ITU-T T.81 streams of one or three 8-bit components, Huffman-coded, baseline or
 *  progressive, into packed DIBs of 24 bits. Grey streams give pixels with equal channels. Of a
 *  progressive stream the first pass of each spectral band is used; refinement is left away.
 *
 *  Accepted samplings: one component of 1x1; luma of 1x1, 2x1 or 1x2 with both chroma components of
 *  1x1; luma of 2x2 with both of 1x1, 2x1 or 1x2. Chroma is enlarged by replication.
 *
 *  Where the inverse transform yields Y, Cb and Cr, all centred on 0, a pixel is, rounded towards
 *  minus infinity and clamped to 0..255,
 *
 *      blue  = Y + 128 + 115999 / 65536 Cb
 *      green = Y + 128 - (22525 Cb + 46812 Cr) / 65536
 *      red   = Y + 128 + 91881 / 65536 Cr
 *
 *  One decode runs at a time, and none beside an encode. Progress is reported from the beginning of
 *  the image data on. Example, a stream that arrives in pieces:
 *  @code
 *      HGLOBAL image;
 *      int32_t result = JpgDecFirst(piece, size, &image);
 *      while (result == 0) {
 *          int last = next_piece(&piece, &size);
 *          result = JpgDecNext(piece, size, last, &image);
 *      }
 *      if (result == 1)
 *          use(image);
 *  @endcode
 *  @{ */

/** What the header of a JPEG stream says. */
typedef struct JpgDecSpec {
    uint32_t width;           /**< pixels */
    uint32_t height;          /**< pixels */
    uint32_t components;      /**< 1 (grey) or 3 */
    uint32_t lumaBlocks;      /**< luma blocks in an MCU: 1, 2 or 4 */
    uint32_t restartInterval; /**< MCUs between restart markers, 0 without them */
    uint32_t commentCount;    /**< comments before the image data that are not empty, at most 5 */
    uint32_t fileSize;        /**< bytes */
} JpgDecSpec;

/** Begins a decode with the first bytes of a stream. They are copied.
 *
 *  Image data is decoded only while at least 512 bytes of input remain, since more may follow: even
 *  a whole stream is finished by JpgDecNext with final 1, unless that much stands behind it.
 *  @param data block that holds the bytes
 *  @param size number of bytes, not more than the block has
 *  @param[out] image the image with the result 1, else null; left alone by #KIRVO_BUSY,
 *              #KIRVO_NULL_HANDLE, #KIRVO_BAD_PARAMETER and a failing copy
 *  @return 1: finished, the image is the caller's; 0: more input is wanted, call JpgDecNext;
 *          #KIRVO_BUSY while another encode or decode is under way; #KIRVO_NULL_HANDLE;
 *          #KIRVO_BAD_PARAMETER for a size below 0 or above the block's; #KIRVO_NO_MEMORY;
 *          #KIRVO_JPEG_EARLY_EOI; #KIRVO_JPEG_HEADER; #KIRVO_JPEG_FRAME; #KIRVO_JPEG_MARKER (see
 *          JpgDecGetLastUexMarker); #KIRVO_JPEG_HUFFMAN; #KIRVO_ABANDONED when a progress handler
 *          has ended the decode */
KIRVO_API int32_t WINAPI JpgDecFirst(HGLOBAL data, int32_t size, HGLOBAL* image);

/** Goes on with a decode that JpgDecFirst has begun. After any negative result the decode is over
 *  and its memory is free. To a progress handler of the decode the answer is #KIRVO_BUSY, and the
 *  decode goes on; but with final -1 it ends as soon as the handler returns.
 *  @param data block that holds the next bytes, which are copied; may be null with final 1
 *  @param size number of bytes
 *  @param final 0: more is to come; 1: this is the last piece; -1: the decode is abandoned. Another
 *         value also has everything decoded, but reports a header's errors as while more may come.
 *  @param[out] image the image with the result 1, else null
 *  @return 1: finished, the image is the caller's (also when the decode had finished before: the
 *          same image); 0: more input is wanted; #KIRVO_ABANDONED with final -1, or when a progress
 *          handler has ended the decode; #KIRVO_NULL_HANDLE without data when final is not 1, for a
 *          handle that cannot be locked, and when no decode is under way; #KIRVO_BAD_PARAMETER for a
 *          size below 0 or above the block's; #KIRVO_NO_MEMORY; #KIRVO_JPEG_NO_SOI when the stream
 *          has ended without a start of image; #KIRVO_JPEG_HEADER for every fault of the header once
 *          final is 1; #KIRVO_JPEG_EARLY_EOI and #KIRVO_JPEG_FRAME while more may come;
 *          #KIRVO_JPEG_MARKER (see JpgDecGetLastUexMarker); #KIRVO_JPEG_HUFFMAN; #KIRVO_BUSY to a
 *          progress handler of the decode */
KIRVO_API int32_t WINAPI JpgDecNext(HGLOBAL data, int32_t size, int32_t final, HGLOBAL* image);

/** Decodes a file.
 *  @param name file name
 *  @param[out] width pixels, written on success
 *  @param[out] height pixels, written on success
 *  @param[out] error #KIRVO_OK; #KIRVO_CANNOT_OPEN; #KIRVO_NO_MEMORY; #KIRVO_READ_ERROR;
 *              #KIRVO_BUSY while another encode or decode is under way; #KIRVO_JPEG_NO_SOI;
 *              #KIRVO_JPEG_EARLY_EOI; #KIRVO_JPEG_HEADER; #KIRVO_JPEG_FRAME; #KIRVO_JPEG_MARKER
 *              (see JpgDecGetLastUexMarker); #KIRVO_JPEG_HUFFMAN; #KIRVO_ABANDONED when a progress
 *              handler has ended the decode
 *  @return the image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI JpgDecMainEx(LPCSTR name, uint32_t* width, uint32_t* height,
                                      int32_t* error);

/** Decodes a stream that is in memory.
 *  @param data block that holds the stream; it is neither freed nor changed
 *  @param size number of bytes
 *  @param[out] width pixels, written on success
 *  @param[out] height pixels, written on success
 *  @param[out] error #KIRVO_OK; #KIRVO_BUSY while another encode or decode is under way;
 *              #KIRVO_NULL_HANDLE; #KIRVO_BAD_PARAMETER for a size below 0 or above the block's;
 *              #KIRVO_NO_MEMORY; #KIRVO_JPEG_NO_SOI; #KIRVO_JPEG_EARLY_EOI; #KIRVO_JPEG_HEADER;
 *              #KIRVO_JPEG_FRAME; #KIRVO_JPEG_MARKER (see JpgDecGetLastUexMarker);
 *              #KIRVO_JPEG_HUFFMAN; #KIRVO_ABANDONED when a progress handler has ended the decode
 *  @return the image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI JpgDecMainHGLOBAL(HGLOBAL data, int32_t size, uint32_t* width,
                                           uint32_t* height, int32_t* error);

/** Does nothing. Callers of the full interface link with it.
 *  @param a,b,c ignored */
KIRVO_API void WINAPI JpgDecSetNoblock(int32_t a, int32_t b, int32_t c);

/** Reads the header of a file up to its image data. Ends a piecewise decode that is under way (its
 *  next call fails or starts over) and frees the comments of the last decode.
 *  @param name file name
 *  @param[out] spec written on success
 *  @return #KIRVO_OK; #KIRVO_CANNOT_OPEN; #KIRVO_NO_MEMORY; #KIRVO_READ_ERROR; #KIRVO_JPEG_NO_SOI;
 *          #KIRVO_JPEG_HEADER for any other fault; #KIRVO_BUSY to a progress handler of a
 *          decode */
KIRVO_API int32_t WINAPI JpgDecGetSpecEx(LPCSTR name, JpgDecSpec* spec);

/** The first four values of JpgDecGetSpecEx.
 *  @param name file name
 *  @param[out] width pixels
 *  @param[out] height pixels
 *  @param[out] components 1 or 3
 *  @param[out] lumaBlocks luma blocks in an MCU: 1, 2 or 4
 *  @return #KIRVO_OK; #KIRVO_CANNOT_OPEN; #KIRVO_NO_MEMORY; #KIRVO_READ_ERROR; #KIRVO_JPEG_NO_SOI;
 *          #KIRVO_JPEG_HEADER for any other fault; #KIRVO_BUSY to a progress handler of a decode. The
 *          values are written only with #KIRVO_OK */
KIRVO_API int32_t WINAPI JpgDecGetSpec(LPCSTR name, uint32_t* width, uint32_t* height,
                                       uint32_t* components, uint32_t* lumaBlocks);

/** Switches the storing and the retrieval of comments on or off; off at first.
 *  @param enable 1 on, any other value off */
KIRVO_API void WINAPI JpgDecGetCommentEnable(int32_t enable);

/** Counts the comments of the last stream: those before its image data that are not empty, stored or
 *  not.
 *  @return 0 to 5 */
KIRVO_API int32_t WINAPI JpgDecCommentCounts(void);

/** A stored comment: its bytes and a zero byte. The block stays the library's and lasts until
 *  JpgDecCommentFree or until the next stream is begun.
 *  @param index 0 to JpgDecCommentCounts - 1
 *  @return the block; null for another index, when comments are switched off, and for a comment
 *          that was counted only */
KIRVO_API HGLOBAL WINAPI JpgDecGetComment(int32_t index);

/** Frees the stored comments; their count becomes 0. */
KIRVO_API void WINAPI JpgDecCommentFree(void);

/** Quantisation tables 0 and 1 as they stood when the last decode reached its image data, 64
 *  values each, row by row; whether or not that stream defined them.
 *  @param[out] luma table 0
 *  @param[out] chroma table 1
 *  @return 1; 0, and nothing written, when no decode has come that far yet */
KIRVO_API int32_t WINAPI JpgDecGetQtable(uint16_t* luma, uint16_t* chroma);

/** One quantisation table of the last decode.
 *  @param number 0 to 3
 *  @param[out] table 64 values, row by row
 *  @return numbers of its own: 0; -1 for another number; -2 when no decode has reached its image
 *          data yet; -3 for a table that the stream did not define */
KIRVO_API int32_t WINAPI JpgDecGetQtableEx(int32_t number, uint16_t* table);

/** The marker that ended the last decode with #KIRVO_JPEG_MARKER. The record is kept until the next
 *  such marker.
 *  @param[out] position bytes up to and including the marker, counted in the input that the decoder
 *              held at that moment: the whole stream, or of a stream in pieces what was left when
 *              the last piece came, and that piece
 *  @return the marker's second byte; 0 when there has been none */
KIRVO_API uint16_t WINAPI JpgDecGetLastUexMarker(uint32_t* position);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup jpegenc JPEG encoder
 *  @ingroup jpeg
 *  Baseline JPEG streams (ITU-T T.81) with a JFIF 1.00 header and Huffman coding in one scan, from
 *  a rectangle of an image.
 *
 *  The colour family (JpgCodFirst, JpgCodNext, JpgCodMainEx, JpgCodMainHGLOBAL) takes 24-bit and
 *  8-bit images and writes Y, Cb and Cr; the grey family (the same names with _M) takes 8-bit images
 *  and writes one component. One call encodes into a file or a memory block; First and Next encode
 *  in slices:
 *  @code
 *     int32_t status;
 *     uint32_t length;
 *     HGLOBAL block = JpgCodFirst(dib, 0, 0, width, height, 100, &status);
 *     if (block) {
 *         int32_t result;
 *         do result = JpgCodNext(0, &length); while (result == 0);
 *         // result 1: the stream is the first length bytes of block, which is the caller's now;
 *         // below 0: the encode has ended and block is freed
 *     }
 *  @endcode
 *  Only one encode or decode can be in progress; others are refused with #KIRVO_BUSY. Progress
 *  counts MCUs.
 *
 *  Between First and the last Next the image and the output block stay locked: neither may be freed
 *  or resized.
 *
 *  The output block has a fixed size: width × height × 3 bytes at levels 0 and 1, of that 4/7 at
 *  level 2, 4/15 at 3, 4/25 at 4 and 4/40 at 5, a third of it in the grey family, at least 32768;
 *  and 1024 bytes and the comment more. A noisy picture can outgrow it at a fine level; the encode
 *  then ends with #KIRVO_NO_MEMORY, and a coarser level helps.
 *  @{ */

/** Sizes of the most recent encode. Either pointer may be null.
 *  @param[out] source_bytes size of the pixels encoded, without padding
 *  @param[out] output_bytes length of the stream made by the last JpgCodMain... call
 *  @return output_bytes */
KIRVO_API uint32_t WINAPI JpgCodGetStatus(uint32_t* source_bytes, uint32_t* output_bytes);

/** Starts to encode a rectangle in colour and writes the headers. A pending comment is taken up.
 *  @param dib packed DIB of 24 or 8 bits
 *  @param left,top,width,height rectangle in the picture
 *  @param mcus_per_call number of MCUs (blocks of 8 x 8, 16 x 8 or 16 x 16 pixels by sampling mode)
 *         that each JpgCodNext encodes; -1: all. With 0 or less than -1 no call gets on
 *  @param[out] status #KIRVO_OK; #KIRVO_BUSY while an encode or decode is in progress;
 *              #KIRVO_NULL_HANDLE; #KIRVO_BAD_PARAMETER for an empty or negative rectangle;
 *              #KIRVO_NEEDS_8_24 for another depth; #KIRVO_BAD_PARAMETER for a rectangle outside
 *              the image, or a block smaller than its header says; #KIRVO_NO_MEMORY;
 *              #KIRVO_ABANDONED when a progress handler has ended the encode
 *  @return the block that receives the stream; it is the encoder's until JpgCodNext returns 1. Null
 *          on failure */
KIRVO_API HGLOBAL WINAPI JpgCodFirst(HGLOBAL dib, int32_t left, int32_t top, int32_t width,
                                     int32_t height, int32_t mcus_per_call, int32_t* status);

/** Goes on with the encode that JpgCodFirst has started.
 *  @param control -1 ends the encode and frees its block; any other value goes on
 *  @param[out] stream_bytes length of the stream, written when the encode is done
 *  @return 1: done, the block of JpgCodFirst is the caller's; 0: call again (a call that has
 *          encoded its number of MCUs answers 0 even if none is left); #KIRVO_ABANDONED after
 *          control -1; #KIRVO_JPEG_CATEGORY for a coefficient that has no code; #KIRVO_NO_MEMORY
 *          when the stream would outgrow its block; #KIRVO_BAD_PARAMETER without an encode of this
 *          family. After an error the block has been freed */
KIRVO_API int32_t WINAPI JpgCodNext(int32_t control, uint32_t* stream_bytes);

/** Encodes a rectangle in colour into a file.
 *  @param path file name; an existing file is replaced once the stream is complete in memory
 *  @param dib packed DIB of 24 or 8 bits
 *  @param left,top,width,height rectangle in the picture
 *  @param unused1,unused2 ignored
 *  @return #KIRVO_OK; #KIRVO_BAD_PARAMETER for an empty path; #KIRVO_BUSY while an encode or decode
 *          is in progress; #KIRVO_NULL_HANDLE; #KIRVO_BAD_PARAMETER for a rectangle that is empty
 *          or outside the image, or a block smaller than its header says; #KIRVO_NEEDS_8_24 for
 *          another depth; #KIRVO_NO_MEMORY, also for a stream that outgrows its block;
 *          #KIRVO_JPEG_CATEGORY; #KIRVO_ABANDONED when a progress handler has ended the encode;
 *          #KIRVO_CANNOT_OPEN; #KIRVO_WRITE_ERROR */
KIRVO_API int32_t WINAPI JpgCodMainEx(LPCSTR path, HGLOBAL dib, int32_t left, int32_t top,
                                      int32_t width, int32_t height, int32_t unused1,
                                      int32_t unused2);

/** Encodes a rectangle in colour into a memory block.
 *  @param dib packed DIB of 24 or 8 bits
 *  @param left,top,width,height rectangle in the picture
 *  @param[out] stream_bytes length of the stream; the block is larger, and zero after it
 *  @param[out] status #KIRVO_OK; #KIRVO_BUSY while an encode or decode is in progress;
 *              #KIRVO_NULL_HANDLE; #KIRVO_BAD_PARAMETER for a rectangle that is empty or outside
 *              the image, or a block smaller than its header says; #KIRVO_NEEDS_8_24 for another
 *              depth; #KIRVO_NO_MEMORY, also for a stream that outgrows its block;
 *              #KIRVO_JPEG_CATEGORY; #KIRVO_ABANDONED when a progress handler has ended the encode
 *  @return the block, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI JpgCodMainHGLOBAL(HGLOBAL dib, int32_t left, int32_t top, int32_t width,
                                           int32_t height, uint32_t* stream_bytes, int32_t* status);

/** Starts to encode a rectangle as a grey stream.
 *  @param dib packed DIB of 8 bits
 *  @param left,top,width,height rectangle in the picture
 *  @param grey_mode 1: a pixel's grey level is the blue byte of its colour-table entry; any other
 *         value: the pixel itself
 *  @param mcus_per_call as JpgCodFirst, of 8 x 8 pixels
 *  @param[out] status #KIRVO_OK; #KIRVO_BUSY while an encode or decode is in progress;
 *              #KIRVO_NULL_HANDLE; #KIRVO_BAD_PARAMETER for an empty or negative rectangle;
 *              #KIRVO_NEEDS_8 for another depth; #KIRVO_BAD_PARAMETER for a rectangle outside the
 *              image, or a block smaller than its header says; #KIRVO_NO_MEMORY; #KIRVO_ABANDONED
 *              when a progress handler has ended the encode
 *  @return as JpgCodFirst */
KIRVO_API HGLOBAL WINAPI JpgCodFirst_M(HGLOBAL dib, int32_t left, int32_t top, int32_t width,
                                       int32_t height, int32_t grey_mode, int32_t mcus_per_call,
                                       int32_t* status);

/** Goes on with the encode that JpgCodFirst_M has started.
 *  @param control as JpgCodNext
 *  @param[out] stream_bytes as JpgCodNext
 *  @return 1: done, the block of JpgCodFirst_M is the caller's; 0: call again (a call that has
 *          encoded its number of MCUs answers 0 even if none is left); #KIRVO_ABANDONED after
 *          control -1; #KIRVO_JPEG_CATEGORY for a coefficient that has no code; #KIRVO_NO_MEMORY
 *          when the stream would outgrow its block; #KIRVO_BAD_PARAMETER without an encode of this
 *          family. After an error the block has been freed */
KIRVO_API int32_t WINAPI JpgCodNext_M(int32_t control, uint32_t* stream_bytes);

/** Encodes a rectangle as a grey stream into a file.
 *  @param path as JpgCodMainEx
 *  @param dib packed DIB of 8 bits
 *  @param left,top,width,height rectangle in the picture
 *  @param grey_mode as JpgCodFirst_M
 *  @return #KIRVO_OK; #KIRVO_BAD_PARAMETER for an empty path; #KIRVO_BUSY while an encode or decode
 *          is in progress; #KIRVO_NULL_HANDLE; #KIRVO_BAD_PARAMETER for a rectangle that is empty
 *          or outside the image, or a block smaller than its header says; #KIRVO_NEEDS_8 for
 *          another depth; #KIRVO_NO_MEMORY, also for a stream that outgrows its block;
 *          #KIRVO_JPEG_CATEGORY; #KIRVO_ABANDONED when a progress handler has ended the encode;
 *          #KIRVO_CANNOT_OPEN; #KIRVO_WRITE_ERROR */
KIRVO_API int32_t WINAPI JpgCodMainEx_M(LPCSTR path, HGLOBAL dib, int32_t left, int32_t top,
                                        int32_t width, int32_t height, int32_t grey_mode);

/** Encodes a rectangle as a grey stream into a memory block.
 *  @param dib packed DIB of 8 bits
 *  @param left,top,width,height rectangle in the picture
 *  @param grey_mode as JpgCodFirst_M
 *  @param[out] stream_bytes as JpgCodMainHGLOBAL
 *  @param[out] status #KIRVO_OK; #KIRVO_BUSY while an encode or decode is in progress;
 *              #KIRVO_NULL_HANDLE; #KIRVO_BAD_PARAMETER for a rectangle that is empty or outside
 *              the image, or a block smaller than its header says; #KIRVO_NEEDS_8 for another
 *              depth; #KIRVO_NO_MEMORY, also for a stream that outgrows its block;
 *              #KIRVO_JPEG_CATEGORY; #KIRVO_ABANDONED when a progress handler has ended the encode
 *  @return the block, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI JpgCodMainHGLOBAL_M(HGLOBAL dib, int32_t left, int32_t top, int32_t width,
                                             int32_t height, int32_t grey_mode,
                                             uint32_t* stream_bytes, int32_t* status);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup jpegset JPEG encoder settings
 *  @ingroup jpeg
 *  They belong to the process and hold for all encodes that start later, until they are changed.
 *  @{ */

/** Sets how colour streams sample chroma. The default is 4.
 *  @param mode 1: a sample per pixel; 2: halved across; 4: halved both ways
 *  @return #KIRVO_OK, or #KIRVO_BAD_PARAMETER for another mode (the setting stays) */
KIRVO_API int32_t WINAPI JpgCodSetSubsample(int32_t mode);

/** Selects one of the quality levels 2 to 5.
 *  @param q 0 to 3 for level 2 (finest) to 5 (coarsest)
 *  @return #KIRVO_OK, or #KIRVO_BAD_PARAMETER for another value (the setting stays) */
KIRVO_API int32_t WINAPI JpgCodSetQ(int32_t q);

/** Selects a quality level. The default is 4.
 *  @param level 1 (finest) to 5 (coarsest): a pair of fixed quantisation tables; level 5 also keeps
 *         only the first 21 coefficients of each block. 0: the tables of JpgCodSetQtable
 *  @return #KIRVO_OK, or #KIRVO_BAD_PARAMETER for another level (the setting stays) */
KIRVO_API int32_t WINAPI JpgCodSetQEx(int32_t level);

/** Loads quantisation tables of the caller's, which are used at level 0 only (JpgCodSetQEx). Until
 *  then they are all ones.
 *  @param luminance 64 quantisers of 1 to 255 in row-major order: entry row * 8 + column is for the
 *         vertical frequency row and the horizontal frequency column
 *  @param chrominance likewise
 *  @return #KIRVO_OK, or #KIRVO_BAD_PARAMETER for a quantiser out of range or a null pointer (both
 *          tables stay) */
KIRVO_API int32_t WINAPI JpgCodSetQtable(const int16_t* luminance, const int16_t* chrominance);

/** As JpgCodSetQtable, and sets how many coefficients of each block are coded at level 0.
 *  @param luminance as JpgCodSetQtable
 *  @param chrominance as JpgCodSetQtable
 *  @param count 1 to 64 coefficients in zigzag order, the others become 0; any other value means 64
 *  @return #KIRVO_OK, or #KIRVO_BAD_PARAMETER for a quantiser out of range or a null pointer (both
 *          tables stay, and the number of coefficients) */
KIRVO_API int32_t WINAPI JpgCodSetQtableEx(const int16_t* luminance, const int16_t* chrominance,
                                           int32_t count);

/** Sets a comment for the next stream only; one that is still pending is discarded.
 *  @param text the bytes of the comment; null: none
 *  @param length their number; 0: none. Above 65533 the length field of the segment wraps, so that
 *         decoders take the rest of the comment for other segments */
KIRVO_API void WINAPI JpgCodSetComment(const uint8_t* text, uint32_t length);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup formats Targa, Q0, RAW, Photo CD and icon files
 *  @ingroup files
 *  All but icons become 24-bit images.
 *  @{ */

/** Reads an uncompressed 24-bit Targa file (image type 2), with either origin. The pixels are taken
 *  to start at byte 18: an image ID or a colour map is not skipped. No progress is reported.
 *  @param name file name
 *  @param[out] width width in pixels, written on success
 *  @param[out] height height in pixels, written on success
 *  @param[out] status #KIRVO_OK; #KIRVO_CANNOT_OPEN; #KIRVO_READ_ERROR for a file shorter than its
 *              header or its pixels; #KIRVO_NOT_TARGA for another image type or depth;
 *              #KIRVO_NO_MEMORY, also for a width or height of 0
 *  @return a new 24-bit image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Targa24Read(LPCSTR name, uint32_t* width, uint32_t* height,
                                     int32_t* status);

/** Writes a 24-bit image, or a rectangle of it, as an uncompressed Targa file with its origin at the
 *  bottom left. Of sizes above 65535 the file's header keeps the low 16 bits. A partly written file
 *  stays on disk.
 *  @param name file name; an existing file is replaced
 *  @param dib packed DIB of 24 bits with its rows at byte 40
 *  @param x,y,width,height rectangle in the picture; width and height both -1 mean the whole image
 *  @return #KIRVO_OK; #KIRVO_BAD_PARAMETER for a null handle, a negative x or y, a rectangle that is
 *          empty or outside the image, or a block smaller than its header says; #KIRVO_NULL_HANDLE
 *          for a handle that cannot be locked; #KIRVO_NEEDS_24 for another depth (tested after the
 *          rectangle); #KIRVO_CANNOT_OPEN; #KIRVO_WRITE_ERROR */
KIRVO_API int32_t WINAPI Targa24Write(LPCSTR name, HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                      int32_t height);

/** Reads a Q0 file: rows of red, green and blue bytes from the top of the picture down, without a
 *  header. Width and height stand, as two decimal integers, at the start of a text file of the same
 *  name with the extension ".IPR" (appended to a name without an extension). Surplus bytes are
 *  ignored. Progress counts rows.
 *  @param name file name. On Windows it follows the rules of OpenFile (at most 127 characters), and
 *         its title those of GetFileTitle.
 *  @param[out] width width in pixels, written on success
 *  @param[out] height height in pixels, written on success
 *  @param[out] bits 24, written on success
 *  @param[out] status #KIRVO_OK; #KIRVO_Q0_SIZE when the companion file cannot be opened (tested
 *              first) or does not hold two numbers, or when the Q0 file is too short for them;
 *              #KIRVO_CANNOT_OPEN; #KIRVO_NO_MEMORY, also for a size below 1; #KIRVO_READ_ERROR
 *  @return a new 24-bit image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Q0Read(LPCSTR name, uint32_t* width, uint32_t* height, uint32_t* bits,
                                int32_t* status);

/** Reads a RAW file: a 32-byte header (the magic "mhwanh"; big-endian 16-bit width at byte 8, height
 *  at byte 10, palette size at byte 12), then rows as in a Q0 file. Progress counts rows.
 *  @param name file name; on Windows by the rules of OpenFile (at most 127 characters)
 *  @param[out] width width in pixels, written on success
 *  @param[out] height height in pixels, written on success
 *  @param[out] bits 24, written on success
 *  @param[out] status #KIRVO_OK; #KIRVO_CANNOT_OPEN; #KIRVO_READ_ERROR for a file below 32 bytes or
 *              a short read; #KIRVO_NOT_RAW for another magic, or (tested last) a file too short for
 *              its size; #KIRVO_RAW_PALETTE for a palette size other than 0; #KIRVO_NO_MEMORY, also
 *              for a width or height of 0
 *  @return a new 24-bit image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI RawRead(LPCSTR name, uint32_t* width, uint32_t* height, uint32_t* bits,
                                 int32_t* status);

/** Reads a Photo CD image with the Photo CD access library, which is loaded for the length of the
 *  call by the name PCDLIB32.DLL and the system's search rules (away from Windows: those of dlopen,
 *  so LD_LIBRARY_PATH and the system's library folders). The library makes the image and reports
 *  progress, if any, by means of its own.
 *
 *  The status codes have meanings of their own here.
 *  @param name file name, passed on to the library
 *  @param resolution the library's resolution index, 0 to 5; any other value means 3
 *  @param progress passed on as the library's progress value; 0 for none
 *  @param[out] width biWidth, written on success
 *  @param[out] height biHeight, written on success
 *  @param[out] status #KIRVO_OK; #KIRVO_BAD_PARAMETER when the library is missing, or its progress,
 *              transform, resolution or close call failed; #KIRVO_NO_MEMORY when the file could not
 *              be opened; #KIRVO_CANNOT_OPEN when its image information could not be read;
 *              #KIRVO_NULL_HANDLE when the image could not be loaded
 *  @return the library's image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI PcdRead(LPCSTR name, int32_t resolution, uintptr_t progress,
                                 uint32_t* width, uint32_t* height, int32_t* status);

/** Lists the images of an icon or cursor file by its directory.
 *
 *  Each 6-byte record holds three 16-bit numbers: colours (the colour count of the entry with the
 *  byte behind it as its high byte; 0 is listed as 256), width and height.
 *  @param name file name
 *  @param[out] records set to 0 and filled with as many records as fit; null asks for the count
 *  @param size bytes of records; 0 asks for the count
 *  @return the number of images that the file declares, whether or not they fitted;
 *          #KIRVO_CANNOT_OPEN; #KIRVO_READ_ERROR for a file shorter than its header or the entries
 *          listed; #KIRVO_NOT_ICON */
KIRVO_API int32_t WINAPI IcoGetInfo(LPCSTR name, void* records, uint32_t size);

/** Lists the images of an icon or cursor file by their own headers.
 *
 *  Each 12-byte record holds the 32-bit offset of the image in the file, then 16-bit colours (2, 16
 *  or 256 for 1, 4 or 8 bits; 0 for any other depth and for an image outside the file), width and
 *  height; its last 2 bytes are not written.
 *
 *  @warning The number of records is reckoned with 6 bytes each: records must have room for
 *           12 × min(count, size / 6) bytes, of which the first size bytes are set to 0.
 *  @param name file name
 *  @param[out] records filled as above; null asks for the count
 *  @param size number of records wanted × 6; 0 asks for the count
 *  @return the number of images that the file declares, whether or not they fitted;
 *          #KIRVO_CANNOT_OPEN; #KIRVO_READ_ERROR for a file shorter than its header or the entries
 *          listed; #KIRVO_NOT_ICON */
KIRVO_API int32_t WINAPI IcoGetInfoEx(LPCSTR name, void* records, uint32_t size);

/** Reads one image of an icon or cursor file, and its transparency mask.
 *
 *  The image keeps the header, colour table and rows that it has in the file, with its height
 *  halved to the entry's. At most 65535 bytes are read, and nothing beyond the size that the entry
 *  gives the image; what is missing is 0. An entry of 256 pixels width or height (stored as 0)
 *  cannot be read.
 *  @param name file name
 *  @param index from 0
 *  @param[out] width the entry's width, written on success
 *  @param[out] height the entry's height, written on success
 *  @param[out] bits the image's depth, written on success
 *  @param[out] status #KIRVO_OK; #KIRVO_CANNOT_OPEN; #KIRVO_NOT_ICON; #KIRVO_BAD_PARAMETER for an
 *              index below 0 or not below the number of entries; #KIRVO_READ_ERROR for a file
 *              shorter than its header or directory, or an image said to be smaller than its mask;
 *              #KIRVO_NO_MEMORY, also for a size of 0 and for a depth that no image has, such as
 *              that of an image outside the file
 *  @param[out] mask receives the mask, owned by the caller, on success: a 1-bit image with colour 0
 *              black and 1 white; null when it is not wanted
 *  @return a new image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI IcoGetData(LPCSTR name, int32_t index, uint32_t* width, uint32_t* height,
                                    uint32_t* bits, int32_t* status, HGLOBAL* mask);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup copy Copy and compose
 *  Rectangles copied into other images or new ones, and images laid upon each other. Copies report
 *  no progress.
 *  @{ */

/** Copies a rectangle into an image that was made of exactly its size. The destination's own
 *  width and height are not examined, only that its block can hold the rows.
 *
 *  When width and height are those of the source, the whole source is copied and left and top are
 *  not looked at. The colour table (8 bits) or the masks (16, 32 bits with BI_BITFIELDS in the
 *  destination) are copied too. Otherwise the padding of each row receives the bytes that follow
 *  the rectangle in the source's row. An image may be copied onto itself.
 *  @param to packed DIB of the source's depth
 *  @param from packed DIB of 8, 16, 24 or 32 bits
 *  @param left,top,width,height rectangle in the source
 *  @return #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_BAD_PARAMETER for a negative left or top or a
 *          width or height below 1; #KIRVO_NEEDS_8_16_24_32 for another depth or two different
 *          ones; #KIRVO_BAD_PARAMETER for a rectangle outside the source or a block that is too
 *          small. Checked in this order, before anything is written. */
KIRVO_API int32_t WINAPI Dib24Copy(HGLOBAL to, HGLOBAL from, int32_t left, int32_t top,
                                   int32_t width, int32_t height);

/** Copies a rectangle between two images of any sizes and one depth.
 *
 *  When width and height are those of both images, the whole of the source is copied, row padding
 *  included, and the corners are not looked at. The colour table (8 bits) or the masks (16, 32
 *  bits) go along. An image may be copied onto itself: the rows are copied one after the other from
 *  the bottom of the picture upward.
 *  @param to packed DIB of the source's depth
 *  @param to_left,to_top corner of the rectangle in the destination
 *  @param from packed DIB of 8, 16, 24 or 32 bits
 *  @param from_left,from_top corner of the rectangle in the source
 *  @param width,height size of the rectangle
 *  @return #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_BAD_PARAMETER for a negative coordinate or a width
 *          or height below 1; #KIRVO_NEEDS_8_16_24_32 for another depth or two different ones;
 *          #KIRVO_BAD_PARAMETER for a rectangle outside either image or a block that is too small.
 *          Checked in this order, before anything is written. */
KIRVO_API int32_t WINAPI Dib24CopyEx(HGLOBAL to, int32_t to_left, int32_t to_top, HGLOBAL from,
                                     int32_t from_left, int32_t from_top, int32_t width,
                                     int32_t height);

/** Duplicates a rectangle into a new image of the same depth, with its colour table or masks.
 *  @param from packed DIB of 8, 16, 24 or 32 bits
 *  @param left,top,width,height rectangle in the source
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_BAD_PARAMETER for a rectangle outside
 *              the image or a block that is too small; #KIRVO_NEEDS_8_16_24_32 for a depth below 8;
 *              #KIRVO_NO_MEMORY. Checked in this order.
 *  @return the image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Dib24DupEx(HGLOBAL from, int32_t left, int32_t top, int32_t width,
                                    int32_t height, int32_t* status);

/** Composes a rectangle of one image onto one of the same size of another.
 *
 *  Per channel, with s of the source and d of the destination; pixels at 3 and 4 whole:
 *  - mode 0, add: min(s + d, 255)
 *  - mode 1, average: (s + d) / 2, truncated
 *  - mode 2, black transparent: s, but d where all channels of s are 0
 *  - mode 3, subtract: max(d - s, 0)
 *  - mode 4, key colour: s, but d where s is the key colour (see SetKeyColorDib24Add)
 *
 *  At 32 bits the source's masks serve for both images, and bits outside them are cleared in every
 *  pixel written. When both are one image, each row works as if its source were copied first.
 *  Reports progress per row.
 *  @param to packed DIB of the source's depth, changed in place
 *  @param to_left,to_top corner of the rectangle in the destination
 *  @param from packed DIB of 24 or 32 bits
 *  @param from_left,from_top corner of the rectangle in the source
 *  @param width,height size of the rectangle
 *  @param mode 0 to 4
 *  @return #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_BAD_PARAMETER for a negative coordinate, a size
 *          below 1 or another mode; #KIRVO_NEEDS_24_32 for another depth or two different ones;
 *          #KIRVO_BAD_PARAMETER for a rectangle outside either image or a block that is too small.
 *          Checked in this order. */
KIRVO_API int32_t WINAPI Dib24Add(HGLOBAL to, int32_t to_left, int32_t to_top, HGLOBAL from,
                                  int32_t from_left, int32_t from_top, int32_t width,
                                  int32_t height, int32_t mode);

/** Sets the key colour of Dib24Add for the whole process. It is black at first.
 *  @param colour 0x00BBGGRR; the top byte is not looked at */
KIRVO_API void WINAPI SetKeyColorDib24Add(uint32_t colour);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup turn Flip, mirror, turn
 *  @ingroup geometry
 *  In place, but for the quarter turn, which makes a new image.
 *  @{ */

/** Turns a rectangle upside down, in place. A row of working memory is taken whatever the height.
 *  Reports progress per pair of rows.
 *  @param dib packed DIB of 8, 16, 24 or 32 bits
 *  @param left,top,width,height rectangle in the picture
 *  @return #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_8_16_24_32 for another depth;
 *          #KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
 *          #KIRVO_NO_MEMORY */
KIRVO_API int32_t WINAPI Dib24Flip(HGLOBAL dib, int32_t left, int32_t top, int32_t width,
                                   int32_t height);

/** Exchanges left and right in a rectangle, in place. Reports progress per row.
 *  @param dib packed DIB of 8, 16, 24 or 32 bits
 *  @param left,top,width,height rectangle in the picture
 *  @return #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_8_16_24_32 for another depth;
 *          #KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small */
KIRVO_API int32_t WINAPI Dib24Mirror(HGLOBAL dib, int32_t left, int32_t top, int32_t width,
                                     int32_t height);

/** Turns a rectangle by 180 degrees, in place. A row of working memory is taken whatever the
 *  height. Reports progress per pair of rows.
 *  @param dib packed DIB of 8, 16, 24 or 32 bits
 *  @param left,top,width,height rectangle in the picture
 *  @return #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_8_16_24_32 for another depth;
 *          #KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
 *          #KIRVO_NO_MEMORY */
KIRVO_API int32_t WINAPI Dib24FlipMirror(HGLOBAL dib, int32_t left, int32_t top, int32_t width,
                                         int32_t height);

/** Turns a rectangle by 90 degrees into a new image of height x width pixels, with the source's
 *  colour table or masks. Reports progress per row of the source.
 *  @param dib packed DIB of 8, 16, 24 or 32 bits
 *  @param left,top,width,height rectangle in the picture
 *  @param direction 0 clockwise: the top left corner goes to the top right; 1 counter-clockwise: it
 *         goes to the bottom left
 *  @param[out] status #KIRVO_OK; #KIRVO_BAD_PARAMETER for another direction, before all else;
 *              #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_8_16_24_32 for another depth; #KIRVO_BAD_PARAMETER
 *              for a rectangle outside the image or a block that is too small; #KIRVO_NO_MEMORY
 *  @return the image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Dib24Rotate(HGLOBAL dib, int32_t left, int32_t top, int32_t width,
                                     int32_t height, int32_t direction, int32_t* status);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup zoom Zoom
 *  @ingroup geometry
 *  By the nearest pixel, or by averages where a picture becomes smaller.
 *  @{ */

/** Resizes a rectangle into a new image by taking the nearest pixel.
 *
 *  With sx = new_width / width and sy = new_height / height in double precision, destination pixel
 *  (i, j) is source pixel (trunc(i / sx + left), top + trunc(j / sy)). Both coordinates are cut to
 *  signed 16 bits, so that images above 32767 pixels give wrong columns or rows. A negative column
 *  leads into the row below, a negative row above the top row; where such bytes do not lie in the
 *  image's block, the pixel is the picture's nearest. Reports progress per row of the result; a
 *  copy, when the size stays, reports none.
 *  @param dib packed DIB of 8, 16, 24 or 32 bits
 *  @param left,top,width,height rectangle in the picture
 *  @param new_width,new_height size of the result, at least 1
 *  @param[out] status #KIRVO_OK; #KIRVO_BAD_PARAMETER for a new size below 1, before all else;
 *              #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_8_16_24_32 for another depth; #KIRVO_BAD_PARAMETER
 *              for a rectangle outside the image or a block that is too small; #KIRVO_NO_MEMORY,
 *              also for a result above 2^31 - 1 bytes. When the new size equals the rectangle's,
 *              the result is a copy made by Dib24Copy and the status is written only when its
 *              memory fails.
 *  @return the image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Dib24ZoomEx(HGLOBAL dib, int32_t left, int32_t top, int32_t width,
                                     int32_t height, int32_t new_width, int32_t new_height,
                                     int32_t* status);

/** Resizes a rectangle into a new image by taking the nearest pixel, as Dib24ZoomEx but with
 *  32-bit coordinates, or by averaging.
 *
 *  With smoothing, 16, 24 or 32 bits and no enlargement in either direction, a destination pixel
 *  is the truncated mean of each channel over the box of ceil(width / new_width) x
 *  ceil(height / new_height) source pixels that begins at its nearest pixel and extends right and
 *  down, beyond the rectangle too. The box ends at the bottom of the image; at its right edge
 *  padding that has room for a pixel counts as one. Reports progress as Dib24ZoomEx.
 *  @param dib packed DIB of 8, 16, 24 or 32 bits
 *  @param left,top,width,height rectangle in the picture
 *  @param new_width,new_height size of the result, at least 1
 *  @param[out] status #KIRVO_OK; #KIRVO_BAD_PARAMETER for a new size below 1, before all else;
 *              #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_8_16_24_32 for another depth; #KIRVO_BAD_PARAMETER
 *              for a rectangle outside the image or a block that is too small; #KIRVO_NO_MEMORY,
 *              also for a result above 2^31 - 1 bytes. When the new size equals the rectangle's,
 *              the result is a copy made by Dib24Copy and the status is written only when its
 *              memory fails.
 *  @param smooth 1 switches smoothing on, any other value off
 *  @return the image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Dib24ZoomEx2(HGLOBAL dib, int32_t left, int32_t top, int32_t width,
                                      int32_t height, int32_t new_width, int32_t new_height,
                                      int32_t* status, int32_t smooth);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup point Tone
 *  Each channel of a pixel becomes something that depends on that pixel alone. All work on a
 *  rectangle (x, y, width, height) of a packed DIB and report progress per row. Two change the
 *  image in place; the others return a new image of the rectangle's size, at the source's depth
 *  unless said otherwise, which the caller owns.
 *
 *  Channels are 8-bit values. Those of 32-bit pixels are the low 8 bits under each mask; those of
 *  16-bit pixels are widened to 8 bits and narrowed again by truncation. Bits outside the masks are
 *  0 in a new image, whose masks are the source's.
 *
 *  The depth and the rectangle are tested before the other parameters, unless said otherwise.
 *  @{ */

/** Inverts a rectangle in place: 255 - channel. At 16 and 32 bits the bits under the masks flip
 *  and all others stay.
 *  @param dib packed DIB of 16, 24 or 32 bits with a 40-byte header
 *  @param x,y,width,height rectangle
 *  @return #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_16_24_32 for another depth;
 *          #KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small */
KIRVO_API int32_t WINAPI Dib24Negative(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                       int32_t height);

/** Exchanges the channels of a rectangle in place. Bits outside the masks of a 32-bit image become
 *  0.
 *  @param dib packed DIB of 24 or 32 bits with a 40-byte header
 *  @param mode what red, green and blue are taken from: 0 nothing changes (#KIRVO_OK even for a
 *         null handle), 1 red, blue, green; 2 green, blue, red; 3 green, red, blue; 4 blue, red,
 *         green; 5 blue, green, red
 *  @param x,y,width,height rectangle
 *  @return #KIRVO_OK; #KIRVO_BAD_PARAMETER for another mode, before anything else is looked at;
 *          #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth; #KIRVO_BAD_PARAMETER for a
 *          rectangle outside the image or a block that is too small */
KIRVO_API int32_t WINAPI Dib24RGBChange(HGLOBAL dib, int32_t mode, int32_t x, int32_t y,
                                        int32_t width, int32_t height);

/** Brightens or darkens: channel + level * 255 / 100 (truncated), clamped to 0..255. The masks of
 *  a 32-bit result are the 12 bytes that follow the source's header, also when the source has no
 *  masks.
 *  @param dib packed DIB of 24 or 32 bits
 *  @param x,y,width,height rectangle
 *  @param level -100 to 100
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a rectangle outside the image, another level or a block
 *              that is too small; #KIRVO_NO_MEMORY
 *  @return the new image, or null */
KIRVO_API HGLOBAL WINAPI Dib24Brightness(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                         int32_t height, int32_t level, int32_t* status);

/** Raises or lowers the contrast around mid-grey: channel * (level + 100) / 100 + -128 * level /
 *  100 (both truncated), clamped to 0..255.
 *  @param dib packed DIB of 24 or 32 bits
 *  @param x,y,width,height rectangle
 *  @param level -100 (all grey) to 100 (2 * channel - 128)
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a rectangle outside the image, another level or a block
 *              that is too small; #KIRVO_NO_MEMORY
 *  @return the new image, or null */
KIRVO_API HGLOBAL WINAPI Dib24Contrast(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                       int32_t height, int32_t level, int32_t* status);

/** Turns a rectangle to grey: (77 red + 150 green + 29 blue + 128) / 256 in all three channels.
 *  @param dib packed DIB of 24 or 32 bits with a 40-byte header
 *  @param x,y,width,height rectangle
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
 *              #KIRVO_NO_MEMORY
 *  @return a new 24-bit image, or null */
KIRVO_API HGLOBAL WINAPI Dib24Monochrome(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                         int32_t height, int32_t* status);

/** Halves the intensity: channel / 2.
 *  @param dib packed DIB of 24 or 32 bits
 *  @param x,y,width,height rectangle
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
 *              #KIRVO_NO_MEMORY
 *  @return the new image, or null */
KIRVO_API HGLOBAL WINAPI Dib24HalfTone(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                       int32_t height, int32_t* status);

/** Multiplies all channels by a fraction: channel * numerator / denominator, truncated, 255 at
 *  most. With a denominator of 0 every channel but 0 becomes 255.
 *  @param dib packed DIB of 24 or 32 bits
 *  @param x,y,width,height rectangle
 *  @param numerator 1 to 255
 *  @param denominator 0 or more
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a rectangle outside the image, another fraction or a block
 *              that is too small; #KIRVO_NO_MEMORY
 *  @return the new image, or null */
KIRVO_API HGLOBAL WINAPI Dib24ToneCtrl(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                       int32_t height, int32_t numerator, int32_t denominator,
                                       int32_t* status);

/** Multiplies each channel by its factor: channel * factor, truncated, at most 255 (0 stays 0 with
 *  an infinite factor).
 *  @param dib packed DIB of 24 or 32 bits
 *  @param x,y,width,height rectangle
 *  @param red,green,blue factors, 0 or more
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a rectangle outside the image, a factor that is negative or
 *              not a number or a block that is too small; #KIRVO_NO_MEMORY
 *  @return the new image, or null */
KIRVO_API HGLOBAL WINAPI Dib24ToneCtrlEx(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                         int32_t height, double red, double green, double blue,
                                         int32_t* status);

/** Corrects the gamma: 255 * (channel / 255)^gamma in double precision, truncated. Gammas above 1
 *  darken, those below brighten, 0 makes everything 255, and exactly 1 changes nothing.
 *  @param dib packed DIB of 24 bits
 *  @param x,y,width,height rectangle
 *  @param gamma 0 or more
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24 for another depth;
 *              #KIRVO_BAD_PARAMETER for a rectangle outside the image, a gamma that is negative or
 *              not a number or a block that is too small; #KIRVO_NO_MEMORY
 *  @return the new image, or null */
KIRVO_API HGLOBAL WINAPI Dib24Gamma(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                    int32_t height, double gamma, int32_t* status);

/** Corrects the gamma of each channel, as Dib24Gamma does. At 8 bits the result is a duplicate of
 *  the rectangle whose 256 colour-table entries are the source's, corrected; 0 and 100 are then the
 *  only progress messages.
 *  @param dib packed DIB of 8, 16, 24 or 32 bits
 *  @param x,y,width,height rectangle
 *  @param red,green,blue gammas, 0 or more
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_8_16_24_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a rectangle outside the image, a gamma that is negative or
 *              not a number or a block that is too small; #KIRVO_NO_MEMORY
 *  @return the new image, or null */
KIRVO_API HGLOBAL WINAPI DibGammaEx(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                    int32_t height, double red, double green, double blue,
                                    int32_t* status);

/** Separates the channels: three new images of the source's depth, each with one channel and the
 *  others 0.
 *  @param dib packed DIB of 24 or 32 bits
 *  @param x,y,width,height rectangle
 *  @param[out] red,green,blue the images, owned by the caller; all null on failure. An image whose
 *              pointer is null is not kept.
 *  @return #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth;
 *          #KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
 *          #KIRVO_NO_MEMORY */
KIRVO_API int32_t WINAPI Dib24Separate(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                       int32_t height, HGLOBAL* red, HGLOBAL* green, HGLOBAL* blue);

/** Maps every channel through a table: table[channel]. At 8 bits the result is a duplicate of the
 *  width x height pixels at the top left of the image, wherever the rectangle lies, whose 256
 *  colour-table entries are the source's, mapped; 0 and 100 are then the only progress messages.
 *  @param dib packed DIB of 8, 16, 24 or 32 bits
 *  @param x,y,width,height rectangle
 *  @param table 256 bytes
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_8_16_24_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a rectangle outside the image, a null table or a block that
 *              is too small; #KIRVO_NO_MEMORY
 *  @return the new image, or null */
KIRVO_API HGLOBAL WINAPI DibColorMapEx(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                       int32_t height, const uint8_t* table, int32_t* status);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup hue Hue and HSV
 *  Colours as whole numbers: hue in degrees, 0 to 359; saturation the largest channel minus the
 *  smallest; value the largest channel. Hues are computed in double precision and truncated.
 *  @{ */

/** Converts a colour to hue, saturation and value. The first of red, green and blue that is the
 *  largest channel decides where the hue is counted from; greys have hue 0.
 *  @param red,green,blue channels, 0 to 255
 *  @param[out] hue 0 to 359
 *  @param[out] saturation 0 to 255
 *  @param[out] value 0 to 255 */
KIRVO_API void WINAPI RGB2HSV(int32_t red, int32_t green, int32_t blue, int32_t* hue,
                              int32_t* saturation, int32_t* value);

/** Saturation and value of a colour.
 *  @param red,green,blue channels, 0 to 255
 *  @param[out] saturation largest channel minus smallest
 *  @param[out] value largest channel */
KIRVO_API void WINAPI RGB2SV(int32_t red, int32_t green, int32_t blue, int32_t* saturation,
                             int32_t* value);

/** Value of a colour.
 *  @param red,green,blue channels, 0 to 255
 *  @return the largest channel */
KIRVO_API int32_t WINAPI RGB2V(int32_t red, int32_t green, int32_t blue);

/** Converts hue, saturation and value to a colour. Channels are clamped to 0..255.
 *  @param hue 0 to 359; any other hue gives black
 *  @param saturation 0 to 255
 *  @param value 0 to 255
 *  @param[out] red,green,blue channels */
KIRVO_API void WINAPI HSV2RGB(int32_t hue, int32_t saturation, int32_t value, int32_t* red,
                              int32_t* green, int32_t* blue);

/** Changes the hue of a whole image in place. Greys stay as they are. Reports progress per row.
 *  @param dib packed DIB of 24 bits
 *  @param mode 0 gives every pixel the hue; 1 does so and lowers the saturation to two thirds; 2
 *         turns every pixel's hue
 *  @param value degrees: 0 to 359 for modes 0 and 1, -259 to 359 for mode 2
 *  @return #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_BAD_PARAMETER for another mode or value;
 *          #KIRVO_NEEDS_24 for another depth; #KIRVO_BAD_PARAMETER for a block smaller than its
 *          header says */
KIRVO_API int32_t WINAPI DibModifyHue(HGLOBAL dib, int32_t mode, int32_t value);

/** Makes a copy of a rectangle with its hue changed. Greys stay as they are, apart from the bits
 *  outside the masks, which become 0. Reports progress per row.
 *  @param dib packed DIB of 16, 24 or 32 bits
 *  @param x,y,width,height rectangle
 *  @param mode as for DibModifyHue
 *  @param value degrees, 0 to 359 for every mode
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_16_24_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small,
 *              then for another mode or value; #KIRVO_NO_MEMORY
 *  @return the new image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI DibModifyHueEx(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                        int32_t height, int32_t mode, int32_t value,
                                        int32_t* status);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup filter Filters
 *  A pixel becomes something that depends on its neighbours or on ranges of values.
 *  @{ */

/** Blurs a rectangle with a fixed 3 × 3 kernel. Each channel becomes
 *  (11 × (sum of the four corners) + 30 × (sum of the four edge neighbours) + 81 × centre) >> 8.
 *
 *  White darkens by 4 % a pass (255 becomes 244, then 233): the weights, four times 11, four times
 *  30 and 81, add up to 245, and the sum is divided by 256. DibFilter3x3 keeps white white when its
 *  divisor is the sum of its weights.
 *
 *  Neighbours outside the rectangle are not read: the pixel's own row or column takes their place.
 *  The exception is a rectangle one row high, whose row above is read from the image (as black
 *  beyond its top). Reports progress per row.
 *  @param dib packed DIB of 24 bits
 *  @param x,y,width,height rectangle in the picture
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24; #KIRVO_BAD_PARAMETER for a
 *              rectangle outside the image or a block too small; #KIRVO_NO_MEMORY
 *  @return a new 24-bit image of the rectangle, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Dib24Gausian(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                      int32_t height, int32_t* status);

/** Sets the kernel of DibFilter3x3, for the life of the process.
 *  @param k0,k1,k2 weights of the *stored row before* the pixel's, which is the row below it on
 *         screen, since rows are stored bottom-up; left, middle, right
 *  @param k3,k4,k5 weights of the pixel's own row; k4 is the pixel's
 *  @param k6,k7,k8 weights of the row above on screen
 *  @param divisor divides each weighted sum; 0 is stored as 1 */
KIRVO_API void WINAPI SetFilter3x3(int32_t k0, int32_t k1, int32_t k2, int32_t k3, int32_t k4,
                                   int32_t k5, int32_t k6, int32_t k7, int32_t k8, int32_t divisor);

/** Filters a rectangle with the kernel of SetFilter3x3. Each channel becomes the sum of channel ×
 *  weight over the nine pixels, divided by the divisor (truncating toward zero) and clamped to
 *  0..255. Sums are exact for every weight.
 *
 *  Neighbours outside the rectangle are read; those outside the image are left out of the sum, so
 *  that a smoothing kernel darkens the border. Reports progress per row.
 *  @param dib packed DIB of 16, 24 or 32 bits
 *  @param x,y,width,height rectangle in the picture
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_16_24_32; #KIRVO_BAD_PARAMETER
 *              for a rectangle outside the image, a block too small, or when SetFilter3x3 has not
 *              been called yet; #KIRVO_NO_MEMORY
 *  @return a new image of the rectangle with the source's depth and masks, owned by the caller, or
 *          null */
KIRVO_API HGLOBAL WINAPI DibFilter3x3(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                      int32_t height, int32_t* status);

/** Sets the mask of Dib24Mix3X3, for the life of the process. It starts as 9 8 9 / 8 10 8 / 9 8 9.
 *  @param weights 9 weights in tenths, of any value, in picture order: row by row from the top left
 *         neighbour. Null changes nothing. */
KIRVO_API void WINAPI Dib24Mix3X3SetMask(const int32_t* weights);

/** Sets the mask of Dib24Mix5X5, for the life of the process. It starts as 5 6 7 6 5 / 6 8 9 8 6 /
 *  7 9 10 9 7 / 6 8 9 8 6 / 5 6 7 6 5.
 *  @param weights 25 weights in tenths, of any value, in picture order: row by row from the top left
 *         neighbour. Null changes nothing. */
KIRVO_API void WINAPI Dib24Mix5X5SetMask(const int32_t* weights);

/** Draws the 3 × 3 neighbours of one pixel towards its colour, in place. With m the mask's weight,
 *  each channel of a neighbour becomes (neighbour × m + centre × (10 − m)) / 10 and each of the
 *  centre centre × m / 10; truncating, exact for every weight, and clamped to 0..255. A weight of 10
 *  leaves a neighbour unchanged, 0 replaces it. Neighbours outside the image are left alone. No
 *  progress is reported.
 *  @param dib packed DIB of 16, 24 or 32 bits
 *  @param x,y the centre
 *  @return #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_16_24_32; #KIRVO_BAD_PARAMETER for a point
 *          outside the image or a block too small */
KIRVO_API int32_t WINAPI Dib24Mix3X3(HGLOBAL dib, int32_t x, int32_t y);

/** Draws the 5 × 5 neighbours of one pixel towards its colour, in place: as Dib24Mix3X3.
 *  @param dib packed DIB of 16, 24 or 32 bits
 *  @param x,y the centre
 *  @return #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_16_24_32; #KIRVO_BAD_PARAMETER for a point
 *          outside the image or a block too small */
KIRVO_API int32_t WINAPI Dib24Mix5X5(HGLOBAL dib, int32_t x, int32_t y);

/** Sharpens a rectangle, or shows its edges in grey.
 *
 *  Works on the luminance Y = (77 R + 150 G + 29 B + 128) >> 8 and its Laplacian
 *  L = 4 × Y − (Y left + Y right + Y above + Y below). At the rectangle's edges a pixel stands in
 *  for its missing neighbour; a rectangle one row high has black (0) above it.
 *
 *  | mode | result |
 *  |---|---|
 *  | 0 | sharpened: L / 8 (truncating) is added to each channel, clamped to 0..255 |
 *  | 1 | relief: grey clamp(L, −127, 127) + 128 |
 *  | 2 | relief lit from a corner: the same of v = right + above − left − below + 2 × (above right − below left) |
 *  | 3 | dark edges on white: grey 255 − min(abs(L), 255) |
 *  | 4 | the same where the pixel is brighter than its neighbours (L > 0), else white |
 *  | 5 | the same where it is darker (L < 0), else white |
 *
 *  Reports progress of two passes (30, 70), or of three (30, 40, 30) in mode 0.
 *  @param dib packed DIB of 24 bits
 *  @param x,y,width,height rectangle in the picture
 *  @param mode 0 to 5
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24; #KIRVO_BAD_PARAMETER for a
 *              rectangle outside the image, a block too small or another mode; #KIRVO_NO_MEMORY
 *  @return a new 24-bit image of the rectangle, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Dib24Sharpen(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                      int32_t height, int32_t mode, int32_t* status);

/** Sharpens a rectangle as mode 0 of Dib24Sharpen does, with a choice of strength: the Laplacian is
 *  divided by 8, 6, 4 or 2.
 *  @param dib packed DIB of 24 bits
 *  @param x,y,width,height rectangle in the picture
 *  @param strength 0 (divides by 8) to 3 (by 2); any other value acts as 0
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24; #KIRVO_BAD_PARAMETER for a
 *              rectangle outside the image or a block too small; #KIRVO_NO_MEMORY
 *  @return a new 24-bit image of the rectangle, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Dib24SharpenEx(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                        int32_t height, int32_t strength, int32_t* status);

/** Keeps the colours of a rectangle at its edges and paints the rest white, the padding of the rows
 *  included. With L the Laplacian of Dib24Sharpen, mode 0 keeps a pixel when L < −threshold or
 *  L > threshold, mode 1 when L > threshold, mode 2 when L < −threshold; any other mode keeps none.
 *
 *  The colours come from the stored rows y to y + height − 1, counted from the bottom: unless the
 *  rectangle has the image's full height, that is the band mirrored about the middle of the picture,
 *  not the one whose edges were found. Reports progress of two passes (30, 70).
 *  @param dib packed DIB of 24 bits
 *  @param x,y,width,height rectangle in the picture
 *  @param threshold any value
 *  @param mode 0, 1 or 2
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24; #KIRVO_BAD_PARAMETER for a
 *              rectangle outside the image or a block too small; #KIRVO_NO_MEMORY
 *  @return a new 24-bit image of the rectangle, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Dib24ColorEdge(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                        int32_t height, int32_t threshold, int32_t mode,
                                        int32_t* status);

/** Keeps channel values by range: a value that fails its channel's test becomes 0.
 *
 *  A range holds the lower bound in bits 0-7, the upper bound in bits 8-15 and the test in bits
 *  16-23: 0 anything passes, 1 lower ≤ v ≤ upper passes, 2 v < lower or v > upper passes.
 *  Bits 24-31 are ignored. Reports progress per row.
 *  @param dib packed DIB of 24 or 32 bits
 *  @param x,y,width,height rectangle in the picture
 *  @param red,green,blue ranges
 *  @param[out] status #KIRVO_OK; first of all #KIRVO_BAD_PARAMETER for an upper bound below the
 *              lower one or a test above 2; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32;
 *              #KIRVO_BAD_PARAMETER for a rectangle outside the image or a block too small;
 *              #KIRVO_NO_MEMORY
 *  @return a new image of the rectangle with the source's depth and masks, owned by the caller, or
 *          null */
KIRVO_API HGLOBAL WINAPI Dib24Filter(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                     int32_t height, uint32_t red, uint32_t green, uint32_t blue,
                                     int32_t* status);

/** Keeps pixels or channels by ranges in RGB or HSV.
 *
 *  The ranges are a record of ten 16-bit fields: flags, then lower bound, upper bound and test of
 *  red or hue, of green or saturation, and of blue or value. Bounds are signed. Each argument holds
 *  two fields, the first in its low half:
 *
 *  | argument | bits 0-15 | bits 16-31 |
 *  |---|---|---|
 *  | range0 | flags | first lower |
 *  | range1 | first upper | first test |
 *  | range2 | second lower | second upper |
 *  | range3 | second test | third lower |
 *  | range4 | third upper | third test |
 *
 *  In 32-bit programs this is how a structure of ten 16-bit fields is passed by value.
 *
 *  | flags | meaning |
 *  |---|---|
 *  | 0x101 | RGB: a channel that fails its test becomes 0 |
 *  | 0x102 | RGB: a pixel becomes black unless all three channels pass |
 *  | 0x202 | HSV: a pixel becomes black unless hue (0..359), saturation and value (0..255) pass; one that passes is rebuilt from them (RGB2HSV, HSV2RGB) |
 *
 *  Tests are those of Dib24Filter. Reports progress per row.
 *
 *  Example: keep the strong reds (hue 0 to 20, saturation 100 or more).
 *  @code
 *      #define PAIR(first, second) ((uint16_t)(first) | (uint32_t)(uint16_t)(second) << 16)
 *      HGLOBAL reds = Dib24FilterEx(dib, 0, 0, width, height,
 *                                   PAIR(0x202, 0), PAIR(20, 1),  // flags, hue 0..20 inside
 *                                   PAIR(100, 255), PAIR(1, 0),   // saturation 100..255 inside
 *                                   PAIR(255, 0), &status);       // value: no test
 *  @endcode
 *  @param dib packed DIB of 24 or 32 bits
 *  @param x,y,width,height rectangle in the picture
 *  @param range0,range1,range2,range3,range4 the record
 *  @param[out] status #KIRVO_OK; first of all #KIRVO_BAD_PARAMETER for other flags, a bound above
 *              255 (above 359 for a hue), a lower bound above its upper one, or a test above 2
 *              (negative bounds are accepted); #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32;
 *              #KIRVO_BAD_PARAMETER for a rectangle outside the image or a block too small;
 *              #KIRVO_NO_MEMORY
 *  @return a new image of the rectangle with the source's depth and masks, owned by the caller, or
 *          null */
KIRVO_API HGLOBAL WINAPI Dib24FilterEx(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                       int32_t height, uint32_t range0, uint32_t range1,
                                       uint32_t range2, uint32_t range3, uint32_t range4,
                                       int32_t* status);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup pattern Patterns, mosaics and histograms
 *  Blocks, plain and graded pictures, and the counting of colours.
 *  @{ */

/** Mosaic of a 24-bit image: DibMosaicEx for that depth alone.
 *  @param dib packed DIB of 24 bits
 *  @param x,y,width,height rectangle in the picture
 *  @param block size of the blocks in pixels, at least 1
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24; #KIRVO_BAD_PARAMETER for a
 *              rectangle outside the image, a block of memory too small or a block size below 1;
 *              #KIRVO_NO_MEMORY
 *  @return a new 24-bit image of the rectangle, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Dib24Mosaic(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                     int32_t height, int32_t block, int32_t* status);

/** Mosaic by samples: every block of block × block pixels, counted from the rectangle's top left,
 *  takes the pixel at its own top left. A block of 1 gives a duplicate of the rectangle (without
 *  progress). Reports progress per row.
 *  @param dib packed DIB of 8, 16, 24 or 32 bits
 *  @param x,y,width,height rectangle in the picture
 *  @param block size of the blocks in pixels, at least 1; may exceed the rectangle
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_8_16_24_32; #KIRVO_BAD_PARAMETER
 *              for a rectangle outside the image, a block of memory too small or a block size below
 *              1; #KIRVO_NO_MEMORY
 *  @return a new image of the rectangle with the source's depth, masks and colour table, owned by
 *          the caller, or null */
KIRVO_API HGLOBAL WINAPI DibMosaicEx(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                     int32_t height, int32_t block, int32_t* status);

/** Mosaic by averages: every block of block × block pixels, counted from the rectangle's top left,
 *  takes the average of its channels (of its indexes at 8 bits), truncated.
 *
 *  Blocks are clipped to the whole image, not to the rectangle: those at its right and bottom edges
 *  average the pixels beyond it too. At the right edge of the image a row counts for as many pixels
 *  as fit its padded length, so that padding can add one pixel of 16 or 24 bits or up to three of 8;
 *  the padding of the result is filled by the same rule. A block of 1 gives a duplicate of the
 *  rectangle (without progress). Reports progress per row of blocks.
 *  @param dib packed DIB of 8, 16, 24 or 32 bits
 *  @param x,y,width,height rectangle in the picture
 *  @param block size of the blocks in pixels, 1 to 1024
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_8_16_24_32; #KIRVO_BAD_PARAMETER
 *              for a rectangle outside the image, a block of memory too small or a block size
 *              outside 1 to 1024; #KIRVO_NO_MEMORY
 *  @return a new image of the rectangle with the source's depth, masks and colour table, owned by
 *          the caller, or null */
KIRVO_API HGLOBAL WINAPI DibMosaicEx2(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                      int32_t height, int32_t block, int32_t* status);

/** XORs a colour over a rectangle, in place. At 16 and 32 bits the pixel word is XORed with the
 *  colour put under the image's masks. Twice restores the image. Reports progress per row.
 *  @param dib packed DIB of 16, 24 or 32 bits
 *  @param x,y,width,height rectangle in the picture
 *  @param colour 0x00BBGGRR
 *  @return #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_16_24_32; #KIRVO_BAD_PARAMETER for a
 *          rectangle outside the image or a block too small */
KIRVO_API int32_t WINAPI Dib24XOR(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                                  uint32_t colour);

/** Counts how often each channel value occurs in a rectangle. Pixels of 8 bits count by their
 *  colour-table entry, channels of 16 bits scaled to 8. Reports progress per row.
 *  @param dib packed DIB of 8, 16, 24 or 32 bits
 *  @param x,y,width,height rectangle in the picture
 *  @param[out] red,green,blue 256 counters each; may be null; untouched on failure
 *  @return #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_8_16_24_32; #KIRVO_BAD_PARAMETER for a
 *          rectangle outside the image or a block too small */
KIRVO_API int32_t WINAPI DibHistgram(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                     int32_t height, uint32_t* red, uint32_t* green,
                                     uint32_t* blue);

/** Counts the different colours of an image: indexes at 1, 4 and 8 bits (fill bits at the end of a
 *  row do not count); whole words at 16 bits, bits outside the masks included; red, green and blue
 *  at 24 and 32 bits.
 *
 *  The rows of a 16-bit image are taken to start 12 bytes after its header, whether it has masks or
 *  not. No progress is reported.
 *  @param dib packed DIB of 1, 4, 8, 16, 24 or 32 bits
 *  @param[out] count the number; 0 on failure
 *  @return #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_BAD_PARAMETER for another depth or a block too
 *          small; #KIRVO_NO_MEMORY */
KIRVO_API int32_t WINAPI DibCountColors(HGLOBAL dib, uint32_t* count);

/** Makes an image of one colour.
 *
 *  Colours go under the masks of the new image, and those of a new 16- or 32-bit image are zero: it
 *  is black, with zero masks, whatever the colour. No progress is reported.
 *  @param width,height size in pixels, at least 1
 *  @param bits 16, 24 or 32
 *  @param colour 0x00BBGGRR
 *  @param[out] status #KIRVO_OK; #KIRVO_BAD_PARAMETER for a bad size or depth; #KIRVO_NO_MEMORY
 *  @return the image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Dib24Solid(int32_t width, int32_t height, int32_t bits, uint32_t colour,
                                    int32_t* status);

/** Makes a horizontal gradient: each channel of column i is
 *  start + ((end − start) × i) / (width − 1), truncating; start alone when the width is 1.
 *  16- and 32-bit images are black, as those of Dib24Solid. No progress is reported.
 *  @param width,height size in pixels, at least 1
 *  @param bits 16, 24 or 32
 *  @param start colour of the left column, 0x00BBGGRR
 *  @param end colour of the right column
 *  @param[out] status #KIRVO_OK; #KIRVO_BAD_PARAMETER for a bad size or depth; #KIRVO_NO_MEMORY
 *  @return the image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Dib24Gradation1(int32_t width, int32_t height, int32_t bits,
                                         uint32_t start, uint32_t end, int32_t* status);

/** Makes a vertical gradient, from start at the top to end at the bottom: a Dib24Gradation1 of the
 *  sizes exchanged, turned by Dib24Rotate, which reports progress (per column).
 *  16- and 32-bit images are black, as those of Dib24Solid.
 *  @param width,height size in pixels, at least 1
 *  @param bits 16, 24 or 32
 *  @param start colour of the top row, 0x00BBGGRR
 *  @param end colour of the bottom row
 *  @param[out] status #KIRVO_OK; #KIRVO_BAD_PARAMETER for a bad size or depth; #KIRVO_NO_MEMORY
 *  @return the image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Dib24Gradation2(int32_t width, int32_t height, int32_t bits,
                                         uint32_t start, uint32_t end, int32_t* status);

/** Makes a bilinear gradient between four corners. With j the row counted from the bottom, the ends
 *  of a row are left = bottom left + ((top left − bottom left) × j) / (height − 1), right likewise,
 *  and column i is left + ((right − left) × i) / (width − 1); all truncating. A size of 1 takes the
 *  bottom row or the left column. 16- and 32-bit images are black, as those of Dib24Solid. No
 *  progress is reported.
 *  @param width,height size in pixels, at least 1
 *  @param bits 16, 24 or 32
 *  @param top_left,top_right,bottom_left,bottom_right colours 0x00BBGGRR
 *  @param[out] status #KIRVO_OK; #KIRVO_BAD_PARAMETER for a bad size or depth; #KIRVO_NO_MEMORY
 *  @return the image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Dib24Gradation3(int32_t width, int32_t height, int32_t bits,
                                         uint32_t top_left, uint32_t top_right,
                                         uint32_t bottom_left, uint32_t bottom_right,
                                         int32_t* status);

/** Interleaves the rows of two images: stored row 2i of the result is row y1 + i of the first, stored
 *  row 2i + 1 row y2 + i of the second.
 *
 *  Unlike elsewhere, y1 and y2 count stored rows, from the *bottom* of the picture. The padding of a
 *  24-bit result carries the bytes that follow the region in the source (0 past the end of its
 *  block). Reports progress per pair of rows.
 *  @ingroup copy
 *  @param first packed DIB of 24 or 32 bits
 *  @param x1,y1 left column and lowest row of its region
 *  @param second packed DIB of the same depth
 *  @param x2,y2 left column and lowest row of its region
 *  @param width,height size of both regions
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_BAD_PARAMETER for negative positions or
 *              sizes below 1; #KIRVO_NEEDS_24_32 for unequal or other depths; #KIRVO_BAD_PARAMETER
 *              for regions outside the images or blocks too small; #KIRVO_NO_MEMORY
 *  @return a new image of width × 2 height with the first image's masks, owned by the caller, or
 *          null */
KIRVO_API HGLOBAL WINAPI Dib24InterLeave(HGLOBAL first, int32_t x1, int32_t y1, HGLOBAL second,
                                         int32_t x2, int32_t y2, int32_t width, int32_t height,
                                         int32_t* status);

/** Maximum or minimum filter over squares of (2 radius + 1) × (2 radius + 1) pixels: dilation or
 *  erosion of bright areas. Its cost does not depend on the radius.
 *
 *  Squares are clipped to the whole image, not to the rectangle. Without the luminance flag each
 *  channel takes its own extreme. With it a pixel takes the colour of its brightest or darkest
 *  neighbour by Y = (77 R + 150 G + 29 B + 128) >> 8, so that no new colours arise: of several the
 *  lowest on screen, then the leftmost. The search starts with black at 0 (white at 255) and only a
 *  larger (smaller) Y replaces it, so that a square whose Y is 0 throughout gives black and one
 *  whose Y is 255 throughout white. Reports progress per row.
 *  @ingroup filter
 *  @param dib packed DIB of 16, 24 or 32 bits
 *  @param x,y,width,height rectangle in the picture
 *  @param radius 1 to 64
 *  @param maximum 0 for the minimum, else the maximum
 *  @param luminance 0 for channels on their own, else by luminance
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_16_24_32; #KIRVO_BAD_PARAMETER
 *              for a rectangle outside the image, a block too small or another radius;
 *              #KIRVO_NO_MEMORY
 *  @return a new image of the rectangle with the source's depth and masks, owned by the caller, or
 *          null */
KIRVO_API HGLOBAL WINAPI DibBlockMxM(HGLOBAL dib, int32_t x, int32_t y, int32_t width,
                                     int32_t height, int32_t radius, int32_t maximum,
                                     int32_t luminance, int32_t* status);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup depth Depth conversion
 *  @ingroup colours
 *  Between 16, 24 and 32 bits, into a new image of the same size. Channels are narrowed by
 *  truncation and widened with zero low bits. The conversions report progress over the rows;
 *  DibCutDepth reports none.
 *
 *  The pixels of a 24-bit source follow 40 header bytes and the colour part; those of a 16-bit
 *  source follow biSize bytes, and 12 bytes of masks with BI_BITFIELDS. A 32-bit source is always
 *  taken to have 12 bytes of masks before its pixels, even with BI_RGB, whose masks are
 *  0x00FF0000, 0x0000FF00, 0x000000FF; pixels that are then missing at the end read as 0.
 *  @{ */

/** Makes a 24-bit image of a 16- or 32-bit one. 5-bit 31 gives 248.
 *  @param dib packed DIB of 16 or 32 bits; a 16-bit one without masks is read as 5-5-5
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_16_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a block smaller than its header says; #KIRVO_NO_MEMORY,
 *              also for an image without width or height
 *  @return the new image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI DibConvert24bit(HGLOBAL dib, int32_t* status);

/** Makes a 16-bit image of a 24- or 32-bit one. It is always 5-6-5 with the masks 0xF800, 0x07E0
 *  and 0x001F: (red & 0xF8) << 8 | (green & 0xFC) << 3 | blue >> 3.
 *  @param dib packed DIB of 24 or 32 bits
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a block smaller than its header says; #KIRVO_NO_MEMORY,
 *              also for an image without width or height
 *  @return the new image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI DibConvert16bit(HGLOBAL dib, int32_t* status);

/** Makes a 32-bit image of a 16- or 24-bit one, with the masks 0x00FF0000, 0x0000FF00 and
 *  0x000000FF: red << 16 | green << 8 | blue.
 *  @param dib packed DIB of 16 or 24 bits; a 16-bit one without masks is read as 5-5-5
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_16_24 for another depth;
 *              #KIRVO_BAD_PARAMETER for a block smaller than its header says; #KIRVO_NO_MEMORY,
 *              also for an image without width or height
 *  @return the new image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI DibConvert32bit(HGLOBAL dib, int32_t* status);

/** Makes a copy of a 24-bit image that keeps only the top bits of each channel.
 *  @param dib packed DIB of 24 bits with a 40-byte header
 *  @param red_bits bits of red kept, 0 to 8
 *  @param green_bits bits of green kept, 0 to 8
 *  @param blue_bits bits of blue kept, 0 to 8
 *  @param[out] status #KIRVO_OK; #KIRVO_BAD_PARAMETER for a count outside 0 to 8 (before the handle
 *              is looked at), an image without width or height or a block smaller than its header
 *              says; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24; #KIRVO_NO_MEMORY
 *  @return the new image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI DibCutDepth(HGLOBAL dib, int32_t red_bits, int32_t green_bits,
                                     int32_t blue_bits, int32_t* status);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup reduce Colour reduction
 *  @ingroup colours
 *  True colour to a colour table and back, always into a new image that the caller owns. The three
 *  DecreaseColor functions bring fixed palettes of their own; Decrease256Fast dithers to the
 *  library's palette; the exact conversions collect the colours of the image. All report progress
 *  over the stored rows, and start at the bottom row.
 *
 *  Sources have 24 bits, or 32 bits with any masks. Decrease256Fast and the exact conversions find
 *  their rows at biSize + 4 * biClrUsed bytes, at 32 bits another 12 bytes further on whether or
 *  not there are masks (missing pixels at the end read as 0). They keep 16 bits of the number of
 *  bits in a row, in the source and in the result: rows of more than 65504 bits (2729 pixels of 24
 *  bits, 2047 of 32 bits, 8188 of the 8-bit result, 16376 of the 4-bit one) overlap.
 *
 *  On failure the result is null. The status may be null.
 *  @{ */

/** Makes an 8-bit image with error diffusion to 256 fixed colours.
 *
 *  The palette is a cube of 7 levels of green (0, 64, 96, 128, 160, 192, 255) and 6 of blue and red
 *  (0, 64, 96, 128, 192, 255), with the 20 system colours in slots 0-9 and 246-255. A channel goes
 *  up to the level above it: to 64 from 32 on, to each further level from the one below it on. Rows
 *  are scanned right to left and left to right in turn, the bottom row right to left. What is left
 *  over of each channel goes on, in halves rounded down: 1/2 to the next pixel in scan direction,
 *  1/4 below it, 1/8 below and ahead, 1/16 below and behind.
 *  @param dib packed DIB of 24 or 32 bits
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a block smaller than its header says; #KIRVO_NO_MEMORY,
 *              also for an image without width or height
 *  @return the new image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI DecreaseColor256(HGLOBAL dib, int32_t* status);

/** Makes a 4-bit image with error diffusion, as DecreaseColor256 spreads it, to 16 fixed colours.
 *
 *  Where any channel is above 128, each channel above 128 becomes 255 and the others 0 (colours 8
 *  to 15, counting red 1, green 2, blue 4); elsewhere each channel above 64 becomes 128 and the
 *  others 0 (colours 0 to 6, and 8 for all three). Colour 7 (192, 192, 192) is in the palette but
 *  not used.
 *  @param dib packed DIB of 24 or 32 bits
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a block smaller than its header says; #KIRVO_NO_MEMORY,
 *              also for an image without width or height
 *  @return the new image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI DecreaseColor16(HGLOBAL dib, int32_t* status);

/** Makes an 8-bit grey image, without diffusion.
 *
 *  The palette has the 20 system colours in slots 0-9 and 246-255 and greys 20 to 255 in slots 10
 *  to 245. A pixel of luminance Y = (77 red + 150 green + 29 blue + 128) / 256 gets slot Y - 10,
 *  and no slot below 10.
 *  @param dib packed DIB of 24 or 32 bits
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a block smaller than its header says; #KIRVO_NO_MEMORY,
 *              also for an image without width or height
 *  @return the new image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI DecreaseColorMono256(HGLOBAL dib, int32_t* status);

/** Makes an 8-bit image with the palette of KirvoCreatePalette and an ordered dither of 8 x 8
 *  pixels over the 6 x 6 x 6 cube of levels 0, 51, 102, 153, 204, 255: a channel value v becomes
 *  level v / 51, one more where v mod 51 is above the dither's threshold. The four cube colours
 *  that the palette lacks become pure green or pure blue.
 *  @param dib packed DIB of 24 or 32 bits
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a block smaller than its header says; #KIRVO_NO_MEMORY,
 *              also for an image without width or height
 *  @return the new image (biClrUsed 256), owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Decrease256Fast(HGLOBAL dib, int32_t* status);

/** Makes an 8-bit image with exactly the colours of the source.
 *
 *  New colours receive slots in the order of their appearance, row by row from the bottom left. In
 *  mode 0 slots 0-7 and 247-255 are given to system colours beforehand and 239 slots are free, in
 *  mode 1 all 256 are. Slots not used are black.
 *  @param dib packed DIB of 24 or 32 bits
 *  @param mode 0 or 1
 *  @param[out] status #KIRVO_OK; #KIRVO_BAD_PARAMETER for another mode, before the handle is looked
 *              at; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth; #KIRVO_BAD_PARAMETER
 *              for a block smaller than its header says; #KIRVO_NO_MEMORY, also for an image
 *              without width or height; #KIRVO_MORE_THAN_256 when the free slots do not suffice
 *  @return the new image (biClrUsed 256), owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Decrease256PaletteEx(HGLOBAL dib, int32_t mode, int32_t* status);

/** Decrease256PaletteEx with mode 0.
 *  @param dib packed DIB of 24 or 32 bits
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a block smaller than its header says; #KIRVO_NO_MEMORY,
 *              also for an image without width or height; #KIRVO_MORE_THAN_256 when the free slots
 *              do not suffice
 *  @return the new image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Decrease256Palette(HGLOBAL dib, int32_t* status);

/** Makes a 4-bit image with exactly the colours of the source. In mode 0 only the 16 system colours
 *  are accepted: black, the six dark primaries, (128, 128, 128) in slot 7, (192, 192, 192) in slot
 *  8, the six bright ones and white. In mode 1 any 16 colours receive slots in the order of their
 *  appearance, row by row from the bottom left.
 *  @param dib packed DIB of 24 or 32 bits
 *  @param mode 0 or 1
 *  @param[out] status #KIRVO_OK; #KIRVO_BAD_PARAMETER for another mode, before the handle is looked
 *              at; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth; #KIRVO_BAD_PARAMETER
 *              for a block smaller than its header says; #KIRVO_NO_MEMORY, also for an image
 *              without width or height; #KIRVO_MORE_THAN_16 when the slots do not suffice
 *  @return the new image (biClrUsed 16), owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Decrease16PaletteEx(HGLOBAL dib, int32_t mode, int32_t* status);

/** Decrease16PaletteEx with mode 0.
 *  @param dib packed DIB of 24 or 32 bits
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_24_32 for another depth;
 *              #KIRVO_BAD_PARAMETER for a block smaller than its header says; #KIRVO_NO_MEMORY,
 *              also for an image without width or height; #KIRVO_MORE_THAN_16 for a colour that is
 *              not of the 16
 *  @return the new image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI Decrease16Palette(HGLOBAL dib, int32_t* status);

/** Makes a 24-bit image of an indexed one.
 *
 *  The colour table is looked for after 40 bytes of header, the rows after biSize + PaletteSize. An
 *  index is not compared with the number of colours.
 *  @param dib packed DIB of 1, 4 or 8 bits
 *  @param[out] status #KIRVO_OK; #KIRVO_NULL_HANDLE; #KIRVO_NEEDS_1_4_8 for another depth;
 *              #KIRVO_BAD_PARAMETER for a block smaller than its header says; #KIRVO_NO_MEMORY,
 *              also for an image without width or height
 *  @return the new image, owned by the caller, or null */
KIRVO_API HGLOBAL WINAPI IncreaseColor16M(HGLOBAL dib, int32_t* status);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup pixel Single pixels and lines
 *  @ingroup memory
 *  One pixel or one line of an image with a 40-byte header. No progress is reported.
 *  @{ */

/** Reads one pixel of an image of any depth.
 *
 *  Channels of 16-bit images are scaled to 8 bits with zero low bits (5-bit 31 reads as 248).
 *  @param dib packed DIB of 1, 4, 8, 16, 24 or 32 bits
 *  @param x column from the left
 *  @param y row from the top
 *  @param[out] colour 0x00BBGGRR; left alone on failure
 *  @return #KIRVO_OK, or #KIRVO_BAD_PARAMETER for a null handle, a pixel outside the image, another
 *          depth or a block too small */
KIRVO_API int32_t WINAPI DibGetPixelColor(HGLOBAL dib, int32_t x, int32_t y, uint32_t* colour);

/** Writes one pixel of a direct-colour image. Channels are narrowed by truncation.
 *  @param dib packed DIB of 16, 24 or 32 bits
 *  @param x column from the left
 *  @param y row from the top
 *  @param colour 0x00BBGGRR
 *  @return #KIRVO_OK; #KIRVO_BAD_PARAMETER for a null handle, a pixel outside the image or a block
 *          too small; #KIRVO_NEEDS_16_24_32 for another depth */
KIRVO_API int32_t WINAPI DibSetPixelColor(HGLOBAL dib, int32_t x, int32_t y, uint32_t colour);

/** Fills the pixels x0 to x1 (inclusive) of one row with a colour. Nothing is written, and the
 *  result is still #KIRVO_OK, when x0 > x1.
 *  @param dib packed DIB of 16, 24 or 32 bits
 *  @param x0 first column
 *  @param x1 last column
 *  @param y row from the top
 *  @param colour 0x00BBGGRR
 *  @return #KIRVO_OK; #KIRVO_BAD_PARAMETER for a null handle, a pixel outside the image or a block
 *          too small; #KIRVO_NEEDS_16_24_32 for another depth */
KIRVO_API int32_t WINAPI DibSetLineColor(HGLOBAL dib, int32_t x0, int32_t x1, int32_t y,
                                         uint32_t colour);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/** @defgroup window Window fitting
 *  @ingroup memory
 *  A window as large as its picture.
 *  @{ */

/** Resizes a window so that its client area shows an image at a whole scale; FitWindowToImage is
 *  the same at scale 1.
 *
 *  Makes two calls of SetWindowPos with the frame width of the system's metrics (the first allows
 *  for a menu bar as well), and a third, by the measured size of everything around the client
 *  area, when that does not have the wanted size yet. The window keeps its place and its z-order.
 *  No error is reported: a window that cannot become so large stays as large as the system lets it.
 *  @param window the window
 *  @param dib packed DIB of any depth; null changes nothing
 *  @param scale the client area becomes biWidth × scale by biHeight × scale pixels (32 bits each) */
KIRVO_API void WINAPI FitWindowToImageEx(HWND window, HGLOBAL dib, uint32_t scale);
/** FitWindowToImageEx at scale 1. @param window the window @param dib packed DIB */
KIRVO_API void WINAPI FitWindowToImage(HWND window, HGLOBAL dib);

/** @} */

/* ------------------------------------------------------------------------------------------- */
/* The type of each function's address, for GetProcAddress and dlsym: PFN_Dib24Flip. */
/** @cond */
/* What follows is written by script/bindings. */
/* clang-format off */
typedef uint32_t(WINAPI* PFN_GetVerKirvoDll)(void);
typedef int32_t(WINAPI* PFN_KirvoSetProcess)(HWND, uint32_t, int32_t);
typedef uint16_t(WINAPI* PFN_DibNumColors)(const void*);
typedef uint16_t(WINAPI* PFN_PaletteSize)(const void*);
typedef int32_t(WINAPI* PFN_DibQueryBitCount)(HGLOBAL);
typedef int32_t(WINAPI* PFN_XPaletteQuad)(HGLOBAL, int32_t, uint32_t);
typedef HPALETTE(WINAPI* PFN_KirvoCreatePalette)(void);
typedef HGLOBAL(WINAPI* PFN_DibMemAllocEx)(uint32_t, int32_t, uint32_t);
typedef HGLOBAL(WINAPI* PFN_DibReadEx)(LPCSTR, uint32_t*, uint32_t*, uint32_t*, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24Read)(LPCSTR, uint32_t*, uint32_t*, int32_t*);
typedef int32_t(WINAPI* PFN_DibWriteEx)(LPCSTR, HGLOBAL, int32_t, int32_t, int32_t, int32_t);
typedef int32_t(WINAPI* PFN_Dib24Write)(LPCSTR, HGLOBAL, int32_t, int32_t, int32_t, int32_t);
typedef int32_t(WINAPI* PFN_JpgDecFirst)(HGLOBAL, int32_t, HGLOBAL*);
typedef int32_t(WINAPI* PFN_JpgDecNext)(HGLOBAL, int32_t, int32_t, HGLOBAL*);
typedef HGLOBAL(WINAPI* PFN_JpgDecMainEx)(LPCSTR, uint32_t*, uint32_t*, int32_t*);
typedef HGLOBAL(WINAPI* PFN_JpgDecMainHGLOBAL)(HGLOBAL, int32_t, uint32_t*, uint32_t*, int32_t*);
typedef void(WINAPI* PFN_JpgDecSetNoblock)(int32_t, int32_t, int32_t);
typedef int32_t(WINAPI* PFN_JpgDecGetSpecEx)(LPCSTR, JpgDecSpec*);
typedef int32_t(WINAPI* PFN_JpgDecGetSpec)(LPCSTR, uint32_t*, uint32_t*, uint32_t*, uint32_t*);
typedef void(WINAPI* PFN_JpgDecGetCommentEnable)(int32_t);
typedef int32_t(WINAPI* PFN_JpgDecCommentCounts)(void);
typedef HGLOBAL(WINAPI* PFN_JpgDecGetComment)(int32_t);
typedef void(WINAPI* PFN_JpgDecCommentFree)(void);
typedef int32_t(WINAPI* PFN_JpgDecGetQtable)(uint16_t*, uint16_t*);
typedef int32_t(WINAPI* PFN_JpgDecGetQtableEx)(int32_t, uint16_t*);
typedef uint16_t(WINAPI* PFN_JpgDecGetLastUexMarker)(uint32_t*);
typedef uint32_t(WINAPI* PFN_JpgCodGetStatus)(uint32_t*, uint32_t*);
typedef HGLOBAL(WINAPI* PFN_JpgCodFirst)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t*);
typedef int32_t(WINAPI* PFN_JpgCodNext)(int32_t, uint32_t*);
typedef int32_t(WINAPI* PFN_JpgCodMainEx)(LPCSTR, HGLOBAL, int32_t, int32_t, int32_t, int32_t,
        int32_t, int32_t);
typedef HGLOBAL(WINAPI* PFN_JpgCodMainHGLOBAL)(HGLOBAL, int32_t, int32_t, int32_t, int32_t,
        uint32_t*, int32_t*);
typedef HGLOBAL(WINAPI* PFN_JpgCodFirst_M)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t, int32_t*);
typedef int32_t(WINAPI* PFN_JpgCodNext_M)(int32_t, uint32_t*);
typedef int32_t(WINAPI* PFN_JpgCodMainEx_M)(LPCSTR, HGLOBAL, int32_t, int32_t, int32_t, int32_t,
        int32_t);
typedef HGLOBAL(WINAPI* PFN_JpgCodMainHGLOBAL_M)(HGLOBAL, int32_t, int32_t, int32_t, int32_t,
        int32_t, uint32_t*, int32_t*);
typedef int32_t(WINAPI* PFN_JpgCodSetSubsample)(int32_t);
typedef int32_t(WINAPI* PFN_JpgCodSetQ)(int32_t);
typedef int32_t(WINAPI* PFN_JpgCodSetQEx)(int32_t);
typedef int32_t(WINAPI* PFN_JpgCodSetQtable)(const int16_t*, const int16_t*);
typedef int32_t(WINAPI* PFN_JpgCodSetQtableEx)(const int16_t*, const int16_t*, int32_t);
typedef void(WINAPI* PFN_JpgCodSetComment)(const uint8_t*, uint32_t);
typedef HGLOBAL(WINAPI* PFN_Targa24Read)(LPCSTR, uint32_t*, uint32_t*, int32_t*);
typedef int32_t(WINAPI* PFN_Targa24Write)(LPCSTR, HGLOBAL, int32_t, int32_t, int32_t, int32_t);
typedef HGLOBAL(WINAPI* PFN_Q0Read)(LPCSTR, uint32_t*, uint32_t*, uint32_t*, int32_t*);
typedef HGLOBAL(WINAPI* PFN_RawRead)(LPCSTR, uint32_t*, uint32_t*, uint32_t*, int32_t*);
typedef HGLOBAL(WINAPI* PFN_PcdRead)(LPCSTR, int32_t, uintptr_t, uint32_t*, uint32_t*, int32_t*);
typedef int32_t(WINAPI* PFN_IcoGetInfo)(LPCSTR, void*, uint32_t);
typedef int32_t(WINAPI* PFN_IcoGetInfoEx)(LPCSTR, void*, uint32_t);
typedef HGLOBAL(WINAPI* PFN_IcoGetData)(LPCSTR, int32_t, uint32_t*, uint32_t*, uint32_t*, int32_t*,
        HGLOBAL*);
typedef int32_t(WINAPI* PFN_Dib24Copy)(HGLOBAL, HGLOBAL, int32_t, int32_t, int32_t, int32_t);
typedef int32_t(WINAPI* PFN_Dib24CopyEx)(HGLOBAL, int32_t, int32_t, HGLOBAL, int32_t, int32_t,
        int32_t, int32_t);
typedef HGLOBAL(WINAPI* PFN_Dib24DupEx)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t*);
typedef int32_t(WINAPI* PFN_Dib24Add)(HGLOBAL, int32_t, int32_t, HGLOBAL, int32_t, int32_t, int32_t,
        int32_t, int32_t);
typedef void(WINAPI* PFN_SetKeyColorDib24Add)(uint32_t);
typedef int32_t(WINAPI* PFN_Dib24Flip)(HGLOBAL, int32_t, int32_t, int32_t, int32_t);
typedef int32_t(WINAPI* PFN_Dib24Mirror)(HGLOBAL, int32_t, int32_t, int32_t, int32_t);
typedef int32_t(WINAPI* PFN_Dib24FlipMirror)(HGLOBAL, int32_t, int32_t, int32_t, int32_t);
typedef HGLOBAL(WINAPI* PFN_Dib24Rotate)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24ZoomEx)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24ZoomEx2)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t, int32_t*, int32_t);
typedef int32_t(WINAPI* PFN_Dib24Negative)(HGLOBAL, int32_t, int32_t, int32_t, int32_t);
typedef int32_t(WINAPI* PFN_Dib24RGBChange)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t);
typedef HGLOBAL(WINAPI* PFN_Dib24Brightness)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24Contrast)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24Monochrome)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24HalfTone)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24ToneCtrl)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24ToneCtrlEx)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, double,
        double, double, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24Gamma)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, double,
        int32_t*);
typedef HGLOBAL(WINAPI* PFN_DibGammaEx)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, double, double,
        double, int32_t*);
typedef int32_t(WINAPI* PFN_Dib24Separate)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, HGLOBAL*,
        HGLOBAL*, HGLOBAL*);
typedef HGLOBAL(WINAPI* PFN_DibColorMapEx)(HGLOBAL, int32_t, int32_t, int32_t, int32_t,
        const uint8_t*, int32_t*);
typedef void(WINAPI* PFN_RGB2HSV)(int32_t, int32_t, int32_t, int32_t*, int32_t*, int32_t*);
typedef void(WINAPI* PFN_RGB2SV)(int32_t, int32_t, int32_t, int32_t*, int32_t*);
typedef int32_t(WINAPI* PFN_RGB2V)(int32_t, int32_t, int32_t);
typedef void(WINAPI* PFN_HSV2RGB)(int32_t, int32_t, int32_t, int32_t*, int32_t*, int32_t*);
typedef int32_t(WINAPI* PFN_DibModifyHue)(HGLOBAL, int32_t, int32_t);
typedef HGLOBAL(WINAPI* PFN_DibModifyHueEx)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24Gausian)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t*);
typedef void(WINAPI* PFN_SetFilter3x3)(int32_t, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t, int32_t, int32_t, int32_t);
typedef HGLOBAL(WINAPI* PFN_DibFilter3x3)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t*);
typedef void(WINAPI* PFN_Dib24Mix3X3SetMask)(const int32_t*);
typedef void(WINAPI* PFN_Dib24Mix5X5SetMask)(const int32_t*);
typedef int32_t(WINAPI* PFN_Dib24Mix3X3)(HGLOBAL, int32_t, int32_t);
typedef int32_t(WINAPI* PFN_Dib24Mix5X5)(HGLOBAL, int32_t, int32_t);
typedef HGLOBAL(WINAPI* PFN_Dib24Sharpen)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24SharpenEx)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24ColorEdge)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24Filter)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, uint32_t,
        uint32_t, uint32_t, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24FilterEx)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, uint32_t,
        uint32_t, uint32_t, uint32_t, uint32_t, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24Mosaic)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t*);
typedef HGLOBAL(WINAPI* PFN_DibMosaicEx)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t*);
typedef HGLOBAL(WINAPI* PFN_DibMosaicEx2)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t*);
typedef int32_t(WINAPI* PFN_Dib24XOR)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, uint32_t);
typedef int32_t(WINAPI* PFN_DibHistgram)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, uint32_t*,
        uint32_t*, uint32_t*);
typedef int32_t(WINAPI* PFN_DibCountColors)(HGLOBAL, uint32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24Solid)(int32_t, int32_t, int32_t, uint32_t, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24Gradation1)(int32_t, int32_t, int32_t, uint32_t, uint32_t,
        int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24Gradation2)(int32_t, int32_t, int32_t, uint32_t, uint32_t,
        int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24Gradation3)(int32_t, int32_t, int32_t, uint32_t, uint32_t,
        uint32_t, uint32_t, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Dib24InterLeave)(HGLOBAL, int32_t, int32_t, HGLOBAL, int32_t, int32_t,
        int32_t, int32_t, int32_t*);
typedef HGLOBAL(WINAPI* PFN_DibBlockMxM)(HGLOBAL, int32_t, int32_t, int32_t, int32_t, int32_t,
        int32_t, int32_t, int32_t*);
typedef HGLOBAL(WINAPI* PFN_DibConvert24bit)(HGLOBAL, int32_t*);
typedef HGLOBAL(WINAPI* PFN_DibConvert16bit)(HGLOBAL, int32_t*);
typedef HGLOBAL(WINAPI* PFN_DibConvert32bit)(HGLOBAL, int32_t*);
typedef HGLOBAL(WINAPI* PFN_DibCutDepth)(HGLOBAL, int32_t, int32_t, int32_t, int32_t*);
typedef HGLOBAL(WINAPI* PFN_DecreaseColor256)(HGLOBAL, int32_t*);
typedef HGLOBAL(WINAPI* PFN_DecreaseColor16)(HGLOBAL, int32_t*);
typedef HGLOBAL(WINAPI* PFN_DecreaseColorMono256)(HGLOBAL, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Decrease256Fast)(HGLOBAL, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Decrease256PaletteEx)(HGLOBAL, int32_t, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Decrease256Palette)(HGLOBAL, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Decrease16PaletteEx)(HGLOBAL, int32_t, int32_t*);
typedef HGLOBAL(WINAPI* PFN_Decrease16Palette)(HGLOBAL, int32_t*);
typedef HGLOBAL(WINAPI* PFN_IncreaseColor16M)(HGLOBAL, int32_t*);
typedef int32_t(WINAPI* PFN_DibGetPixelColor)(HGLOBAL, int32_t, int32_t, uint32_t*);
typedef int32_t(WINAPI* PFN_DibSetPixelColor)(HGLOBAL, int32_t, int32_t, uint32_t);
typedef int32_t(WINAPI* PFN_DibSetLineColor)(HGLOBAL, int32_t, int32_t, int32_t, uint32_t);
typedef void(WINAPI* PFN_FitWindowToImageEx)(HWND, HGLOBAL, uint32_t);
typedef void(WINAPI* PFN_FitWindowToImage)(HWND, HGLOBAL);
/* clang-format on */
/* What precedes is written by script/bindings. */
/** @endcond */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* KIRVO_H */
