// Kirvo: image processing on packed DIBs, for .NET and Mono.
//
// The program needs Kirvo.dll on Windows, of its own width (32 or 64 bits), and libkirvo.so
// elsewhere: with Mono give the program Blur.exe the file Blur.exe.config, a copy of
// Kirvo.dll.config.
//
// Written by script/bindings from interface/kirvo.txt and kirvo.h: changes belong there.

using System;
using System.Runtime.InteropServices;

namespace KirvoImaging
{
    /// <summary>What a call answers: 0 for success, below 0 for an error.</summary>
    public enum KirvoStatus
    {
        /// <summary>Success.</summary>
        KIRVO_OK = 0,
        /// <summary>A rectangle that is empty, negative or outside the image, a value out of its
        /// range, or a block of memory smaller than its header says.</summary>
        KIRVO_BAD_PARAMETER = -1,
        /// <summary>Memory could not be allocated, or the result would have no pixels or more than
        /// 2^31 - 1 bytes, or a JPEG stream has outgrown its block.</summary>
        KIRVO_NO_MEMORY = -2,
        /// <summary>Null handle, null data, or a handle that is freed or invented.</summary>
        KIRVO_NULL_HANDLE = -3,
        /// <summary>A file could not be opened or created.</summary>
        KIRVO_CANNOT_OPEN = -4,
        /// <summary>A read error, or a file that is too short.</summary>
        KIRVO_READ_ERROR = -5,
        /// <summary>A write error: the disk is full or was taken away.</summary>
        KIRVO_WRITE_ERROR = -6,
        /// <summary>JPEG: no start of image.</summary>
        KIRVO_JPEG_NO_SOI = -10,
        /// <summary>JPEG: a marker that does not belong into the entropy-coded data.</summary>
        KIRVO_JPEG_MARKER = -11,
        /// <summary>JPEG: end of image before the first scan.</summary>
        KIRVO_JPEG_EARLY_EOI = -12,
        /// <summary>JPEG: a header that is damaged, incomplete, or asks for what the decoder does
        /// not offer.</summary>
        KIRVO_JPEG_HEADER = -13,
        /// <summary>JPEG: a Huffman code that does not exist, or a table that was not
        /// defined.</summary>
        KIRVO_JPEG_HUFFMAN = -14,
        /// <summary>JPEG encoder: a coefficient that has no code.</summary>
        KIRVO_JPEG_CATEGORY = -15,
        /// <summary>The caller has abandoned a piecewise encode or decode.</summary>
        KIRVO_ABANDONED = -16,
        /// <summary>Another encode or decode is in progress.</summary>
        KIRVO_BUSY = -17,
        /// <summary>JPEG: a frame type other than baseline and progressive Huffman
        /// coding.</summary>
        KIRVO_JPEG_FRAME = -19,
        /// <summary>Not a BMP file, or a depth that BMP files do not have.</summary>
        KIRVO_NOT_BMP = -20,
        /// <summary>The grey JPEG encoder takes 8 bits: DecreaseColorMono256 makes them.</summary>
        KIRVO_NEEDS_8 = -21,
        /// <summary>The image must have 24 bits: IncreaseColor16M and DibConvert24bit make
        /// them.</summary>
        KIRVO_NEEDS_24 = -22,
        /// <summary>Not an uncompressed 24-bit Targa file.</summary>
        KIRVO_NOT_TARGA = -25,
        /// <summary>The companion file of a Q0 file is missing or holds no size, or the Q0 file is
        /// too short for it.</summary>
        KIRVO_Q0_SIZE = -26,
        /// <summary>Not a RAW file, or one too short for its size.</summary>
        KIRVO_NOT_RAW = -27,
        /// <summary>A RAW file with a palette, which the reader does not offer.</summary>
        KIRVO_RAW_PALETTE = -28,
        /// <summary>More than 256 different colours (239 and the system colours in mode
        /// 0).</summary>
        KIRVO_MORE_THAN_256 = -30,
        /// <summary>More than 16 different colours, or in mode 0 others than the system
        /// colours.</summary>
        KIRVO_MORE_THAN_16 = -31,
        /// <summary>Not an icon or cursor file.</summary>
        KIRVO_NOT_ICON = -35,
        /// <summary>The image must have 8, 16, 24 or 32 bits: IncreaseColor16M makes 24 of
        /// fewer.</summary>
        KIRVO_NEEDS_8_16_24_32 = -40,
        /// <summary>The image must have 16, 24 or 32 bits: IncreaseColor16M makes 24 of
        /// fewer.</summary>
        KIRVO_NEEDS_16_24_32 = -41,
        /// <summary>The image must have 24 or 32 bits: DibConvert24bit and IncreaseColor16M make
        /// 24.</summary>
        KIRVO_NEEDS_24_32 = -42,
        /// <summary>The image must have 8, 24 or 32 bits.</summary>
        KIRVO_NEEDS_8_24_32 = -43,
        /// <summary>The image must have 16 or 32 bits.</summary>
        KIRVO_NEEDS_16_32 = -44,
        /// <summary>The image must have 1, 4 or 8 bits.</summary>
        KIRVO_NEEDS_1_4_8 = -45,
        /// <summary>The image must have 8 or 24 bits: IncreaseColor16M and DibConvert24bit make
        /// 24.</summary>
        KIRVO_NEEDS_8_24 = -46,
        /// <summary>The image must have 16 or 24 bits.</summary>
        KIRVO_NEEDS_16_24 = -47,
    }

    /// <summary>Header of a device-independent bitmap, as in Win32.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct BITMAPINFOHEADER
    {
        /// <summary>size of this header in bytes: 40</summary>
        public uint biSize;
        /// <summary>width in pixels</summary>
        public int biWidth;
        /// <summary>height in pixels; positive: rows are stored bottom-up</summary>
        public int biHeight;
        /// <summary>1</summary>
        public ushort biPlanes;
        /// <summary>1, 4, 8, 16, 24 or 32</summary>
        public ushort biBitCount;
        /// <summary>BI_RGB or BI_BITFIELDS</summary>
        public uint biCompression;
        /// <summary>bytes of all rows</summary>
        public uint biSizeImage;
        /// <summary>not interpreted</summary>
        public int biXPelsPerMeter;
        /// <summary>not interpreted</summary>
        public int biYPelsPerMeter;
        /// <summary>number of colour-table entries, or 0 for the depth's full number</summary>
        public uint biClrUsed;
        /// <summary>not interpreted</summary>
        public uint biClrImportant;
    }

    /// <summary>One entry of a colour table.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct RGBQUAD
    {
        /// <summary>blue</summary>
        public byte rgbBlue;
        /// <summary>green</summary>
        public byte rgbGreen;
        /// <summary>red</summary>
        public byte rgbRed;
        /// <summary>not interpreted</summary>
        public byte rgbReserved;
    }

    /// <summary>One entry of a logical palette.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct PALETTEENTRY
    {
        /// <summary>red</summary>
        public byte peRed;
        /// <summary>green</summary>
        public byte peGreen;
        /// <summary>blue</summary>
        public byte peBlue;
        /// <summary>0 or a PC_ flag</summary>
        public byte peFlags;
    }

    /// <summary>A rectangle by its edges.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct RECT
    {
        /// <summary>left edge</summary>
        public int left;
        /// <summary>top edge</summary>
        public int top;
        /// <summary>one past the right edge</summary>
        public int right;
        /// <summary>one past the bottom edge</summary>
        public int bottom;
    }

    /// <summary>How a program without Win32 windows takes part: the window calls that the library
    /// makes.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public sealed class KirvoWindowHost
    {
        /// <summary>progress messages: window, WM_COMMAND, command id, percent</summary>
        public SendMessageAFunction SendMessageA;
        /// <summary>outer rectangle of a window</summary>
        public GetWindowRectFunction GetWindowRect;
        /// <summary>client rectangle of a window</summary>
        public GetClientRectFunction GetClientRect;
        /// <summary>resizes a window</summary>
        public SetWindowPosFunction SetWindowPos;
        /// <summary>sizes of frames and menus</summary>
        public GetSystemMetricsFunction GetSystemMetrics;

        /// <summary>Type of SendMessageA.</summary>
        [UnmanagedFunctionPointer(CallingConvention.Winapi)]
        public delegate IntPtr SendMessageAFunction(IntPtr window, uint message, UIntPtr wparam,
            IntPtr lparam);

        /// <summary>Type of GetWindowRect.</summary>
        [UnmanagedFunctionPointer(CallingConvention.Winapi)]
        public delegate bool GetWindowRectFunction(IntPtr window, out RECT rectangle);

        /// <summary>Type of GetClientRect.</summary>
        [UnmanagedFunctionPointer(CallingConvention.Winapi)]
        public delegate bool GetClientRectFunction(IntPtr window, out RECT rectangle);

        /// <summary>Type of SetWindowPos.</summary>
        [UnmanagedFunctionPointer(CallingConvention.Winapi)]
        public delegate bool SetWindowPosFunction(IntPtr window, IntPtr after, int x, int y,
            int width, int height, uint flags);

        /// <summary>Type of GetSystemMetrics.</summary>
        [UnmanagedFunctionPointer(CallingConvention.Winapi)]
        public delegate int GetSystemMetricsFunction(int index);
    }

    /// <summary>What the header of a JPEG stream says.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct JpgDecSpec
    {
        /// <summary>pixels</summary>
        public uint width;
        /// <summary>pixels</summary>
        public uint height;
        /// <summary>1 (grey) or 3</summary>
        public uint components;
        /// <summary>luma blocks in an MCU: 1, 2 or 4</summary>
        public uint lumaBlocks;
        /// <summary>MCUs between restart markers, 0 without them</summary>
        public uint restartInterval;
        /// <summary>comments before the image data that are not empty, at most 5</summary>
        public uint commentCount;
        /// <summary>bytes</summary>
        public uint fileSize;
    }

    /// <summary>The functions of the library. Images and other blocks are handles, which the caller
    /// frees with GlobalFree, or owns with a KirvoBlock.</summary>
    public static class Kirvo
    {
        const string Library = "Kirvo.dll";

        /// <summary>GlobalAlloc: the block is known by a handle</summary>
        public const int GMEM_MOVEABLE = 2;
        /// <summary>GlobalAlloc: the block is zero</summary>
        public const int GMEM_ZEROINIT = 64;
        /// <summary>GlobalAlloc: both</summary>
        public const int GHND = 66;
        /// <summary>biCompression: plain pixels</summary>
        public const int BI_RGB = 0;
        /// <summary>biCompression: plain pixels under three masks</summary>
        public const int BI_BITFIELDS = 3;
        /// <summary>the message that carries progress</summary>
        public const int WM_COMMAND = 273;
        /// <summary>GetSystemMetrics: height of a menu bar</summary>
        public const int SM_CYMENU = 15;
        /// <summary>GetSystemMetrics: width of a window's frame</summary>
        public const int SM_CXFRAME = 32;
        /// <summary>SetWindowPos: the position stays</summary>
        public const int SWP_NOMOVE = 2;
        /// <summary>SetWindowPos: the order of windows stays</summary>
        public const int SWP_NOZORDER = 4;
        /// <summary>version of this header: 1.0.4.2, as GetVerKirvoDll tells it</summary>
        public const int KIRVO_VERSION = 16778242;

        // Names of Windows

        /// <summary>Allocates a movable block.</summary>
        /// <param name="flags">must hold GMEM_MOVEABLE; the memory is always zero.</param>
        /// <param name="bytes">the exact size that GlobalSize answers.</param>
        /// <returns>the handle; null when there is no memory or the block would not be
        /// movable.</returns>
        [DllImport("kernel32.dll", ExactSpelling = true)]
        public static extern IntPtr GlobalAlloc(uint flags, UIntPtr bytes);

        /// <summary>Locks a block.</summary>
        /// <param name="block">a handle of GlobalAlloc.</param>
        /// <returns>the address of its first byte; null for a handle that is unknown or
        /// freed.</returns>
        [DllImport("kernel32.dll", ExactSpelling = true)]
        public static extern IntPtr GlobalLock(IntPtr block);

        /// <summary>Undoes one GlobalLock.</summary>
        /// <param name="block">the handle.</param>
        /// <returns>non-zero while the block is still locked, else 0.</returns>
        [DllImport("kernel32.dll", ExactSpelling = true)]
        public static extern bool GlobalUnlock(IntPtr block);

        /// <summary>Frees a block, locked or not.</summary>
        /// <param name="block">the handle, may be null.</param>
        /// <returns>null, or the handle itself when it is unknown.</returns>
        [DllImport("kernel32.dll", ExactSpelling = true)]
        public static extern IntPtr GlobalFree(IntPtr block);

        /// <summary>Size of a block.</summary>
        /// <param name="block">the handle.</param>
        /// <returns>its size in bytes, 0 for an unknown handle.</returns>
        [DllImport("kernel32.dll", ExactSpelling = true)]
        public static extern UIntPtr GlobalSize(IntPtr block);

        /// <summary>Reads entries of a logical palette.</summary>
        /// <param name="palette">the palette</param>
        /// <param name="first">first index</param>
        /// <param name="count">number wanted</param>
        /// <param name="entries">receives them; null asks for the palette's size</param>
        /// <returns>the number of entries written (or held, with null entries); 0 for an unknown
        /// palette.</returns>
        [DllImport("gdi32.dll", ExactSpelling = true)]
        public static extern uint GetPaletteEntries(IntPtr palette, uint first, uint count,
            [Out] PALETTEENTRY[] entries);

        /// <summary>Deletes a logical palette.</summary>
        /// <param name="object_">the palette.</param>
        /// <returns>TRUE, or FALSE when unknown.</returns>
        [DllImport("gdi32.dll", ExactSpelling = true)]
        public static extern bool DeleteObject(IntPtr object_);

        /// <summary>Sets the window host.</summary>
        /// <param name="host">copied; null goes back to doing nothing.</param>
        [DllImport(Library, ExactSpelling = true)]
        public static extern void KirvoSetWindowHost(KirvoWindowHost host);

        // Images

        /// <summary>Version of the library.</summary>
        /// <returns>0x01000402 for 1.0.4.2: one byte each, the major number in the top
        /// byte.</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern uint GetVerKirvoDll();

        /// <summary>Registers for progress messages of the next long operation.</summary>
        /// <remarks>A watched operation sends WM_COMMAND to the window with SendMessageA: wParam is
        /// the command id, lParam the percentage. It sends 0 when its work begins, then each
        /// percentage that is at least 5 above the last one sent, and 100 on success; it then
        /// switches the notification off, so that each operation is watched by a call of its own. A
        /// handler may switch it off from inside a message.</remarks>
        /// <param name="window">receives the messages</param>
        /// <param name="command">sent as wParam</param>
        /// <param name="enable">1 stores window and command and switches on; any other value
        /// switches off and keeps the stored ones</param>
        /// <returns>enable</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern int KirvoSetProcess(IntPtr window, uint command, int enable);

        /// <summary>Number of colour-table entries of an image.</summary>
        /// <param name="header">locked header of a packed DIB</param>
        /// <returns>the low 16 bits of biClrUsed when that is not 0; else 2, 16 or 256 for 1, 4 or
        /// 8 bits; 3 for 16 and 32 bits with BI_BITFIELDS; otherwise 0 (also for a null
        /// pointer)</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern ushort DibNumColors(IntPtr header);

        /// <summary>Size of the colour part of an image.</summary>
        /// <param name="header">locked header of a packed DIB</param>
        /// <returns>DibNumColors x 4 bytes, or x 3 when biSize is 12; low 16 bits; 0 for a null
        /// pointer. Pixel rows start at biSize + PaletteSize.</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern ushort PaletteSize(IntPtr header);

        /// <summary>Depth of an image.</summary>
        /// <param name="dib">packed DIB</param>
        /// <returns>biBitCount, or KIRVO_NULL_HANDLE</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern int DibQueryBitCount(IntPtr dib);

        /// <summary>Sets one colour-table entry; its reserved byte stays as it is.</summary>
        /// <param name="dib">packed DIB with a 40-byte header</param>
        /// <param name="index">entry, 0 to 255 and below DibNumColors</param>
        /// <param name="colour">0x00BBGGRR</param>
        /// <returns>1 if the entry was written, else 0 (null handle, index out of range or beyond
        /// the table)</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern int XPaletteQuad(IntPtr dib, int index, uint colour);

        /// <summary>Makes a logical palette of the library's fixed 256 colours: the 20 system
        /// colours at 0-9 and 246-255, between them colour-cube and grey entries flagged
        /// PC_NOCOLLAPSE.</summary>
        /// <returns>the palette, which the caller frees with DeleteObject; null on
        /// failure</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr KirvoCreatePalette();

        /// <summary>Allocates a new packed DIB.</summary>
        /// <remarks>Apart from its header the block is zero: colour tables are black, and the masks
        /// of a 16- or 32-bit image (made with BI_BITFIELDS) are for the caller to write.</remarks>
        /// <param name="width">at least 1</param>
        /// <param name="height">at least 1</param>
        /// <param name="bits">1, 4, 8, 16, 24 or 32</param>
        /// <returns>the image, owned by the caller; null for a bad size or depth, or when there is
        /// not enough memory (a block never exceeds 2^31 - 1 bytes)</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr DibMemAllocEx(uint width, int height, uint bits);

        // BMP files

        /// <summary>Reads a BMP file of any depth.</summary>
        /// <remarks>The block returned is the file without its first 14 bytes: bfOffBits,
        /// compression and the sign of the height are not examined.</remarks>
        /// <param name="name">file name</param>
        /// <param name="width">biWidth, written on success</param>
        /// <param name="height">biHeight, written on success</param>
        /// <param name="bits">biBitCount, written as soon as it is known</param>
        /// <param name="status">KIRVO_OK; KIRVO_CANNOT_OPEN; KIRVO_READ_ERROR for a file below 14
        /// bytes or a short read; KIRVO_NOT_BMP for another signature or depth;
        /// KIRVO_NO_MEMORY</param>
        /// <returns>the image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern IntPtr DibReadEx([MarshalAs(UnmanagedType.LPStr)] string name,
            out uint width, out uint height, out uint bits, out KirvoStatus status);

        /// <summary>Reads a 24-bit BMP file.</summary>
        /// <param name="name">file name</param>
        /// <param name="width">biWidth</param>
        /// <param name="height">biHeight</param>
        /// <param name="status">KIRVO_OK; KIRVO_CANNOT_OPEN; KIRVO_READ_ERROR for a file below 14
        /// bytes or a short read; KIRVO_NOT_BMP for another signature or depth; KIRVO_NO_MEMORY;
        /// KIRVO_NEEDS_24 for a BMP file of another depth</param>
        /// <returns>the image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern IntPtr Dib24Read([MarshalAs(UnmanagedType.LPStr)] string name,
            out uint width, out uint height, out KirvoStatus status);

        /// <summary>Writes an image, or a rectangle of it, as a BMP file.</summary>
        /// <remarks>Width and height both -1 mean the whole image. A rectangle of a 1- or 4-bit
        /// image starts at the next whole byte; biSizeImage keeps the source's value. A partly
        /// written file stays on disk.</remarks>
        /// <param name="name">file name; an existing file is replaced</param>
        /// <param name="dib">packed DIB of 1, 4, 8, 16, 24 or 32 bits</param>
        /// <param name="x">rectangle in the picture</param>
        /// <param name="y">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <returns>KIRVO_OK; KIRVO_BAD_PARAMETER for a null handle or a negative x or y;
        /// KIRVO_NULL_HANDLE for a handle that cannot be locked; KIRVO_NOT_BMP for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle that is empty or outside the image, or a block
        /// smaller than its header says; KIRVO_CANNOT_OPEN; KIRVO_WRITE_ERROR</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern KirvoStatus DibWriteEx([MarshalAs(UnmanagedType.LPStr)] string name,
            IntPtr dib, int x, int y, int width, int height);

        /// <summary>Writes a 24-bit image, or a rectangle of it, as a BMP file.</summary>
        /// <param name="name">file name</param>
        /// <param name="dib">packed DIB of 24 bits</param>
        /// <param name="x">as for DibWriteEx</param>
        /// <param name="y">as for DibWriteEx</param>
        /// <param name="width">as for DibWriteEx</param>
        /// <param name="height">as for DibWriteEx</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE for a null handle (where DibWriteEx answers
        /// KIRVO_BAD_PARAMETER); KIRVO_NEEDS_24 for another depth; KIRVO_BAD_PARAMETER for a
        /// rectangle that is empty or outside the image, or a block smaller than its header says;
        /// KIRVO_CANNOT_OPEN; KIRVO_WRITE_ERROR</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern KirvoStatus Dib24Write([MarshalAs(UnmanagedType.LPStr)] string name,
            IntPtr dib, int x, int y, int width, int height);

        // JPEG decoder

        /// <summary>Begins a decode with the first bytes of a stream.</summary>
        /// <remarks>They are copied. Image data is decoded only while at least 512 bytes of input
        /// remain, since more may follow: even a whole stream is finished by JpgDecNext with final
        /// 1, unless that much stands behind it.</remarks>
        /// <param name="data">block that holds the bytes</param>
        /// <param name="size">number of bytes, not more than the block has</param>
        /// <param name="image">the image with the result 1, else null; left alone by KIRVO_BUSY,
        /// KIRVO_NULL_HANDLE, KIRVO_BAD_PARAMETER and a failing copy</param>
        /// <returns>1: finished, the image is the caller's; 0: more input is wanted, call
        /// JpgDecNext; KIRVO_BUSY while another encode or decode is under way; KIRVO_NULL_HANDLE;
        /// KIRVO_BAD_PARAMETER for a size below 0 or above the block's; KIRVO_NO_MEMORY;
        /// KIRVO_JPEG_EARLY_EOI; KIRVO_JPEG_HEADER; KIRVO_JPEG_FRAME; KIRVO_JPEG_MARKER (see
        /// JpgDecGetLastUexMarker); KIRVO_JPEG_HUFFMAN; KIRVO_ABANDONED when a progress handler has
        /// ended the decode</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern int JpgDecFirst(IntPtr data, int size, out IntPtr image);

        /// <summary>Goes on with a decode that JpgDecFirst has begun.</summary>
        /// <remarks>After any negative result the decode is over and its memory is free. To a
        /// progress handler of the decode the answer is KIRVO_BUSY, and the decode goes on; but
        /// with final -1 it ends as soon as the handler returns.</remarks>
        /// <param name="data">block that holds the next bytes, which are copied; may be null with
        /// final 1</param>
        /// <param name="size">number of bytes</param>
        /// <param name="final">0: more is to come; 1: this is the last piece; -1: the decode is
        /// abandoned. Another value also has everything decoded, but reports a header's errors as
        /// while more may come.</param>
        /// <param name="image">the image with the result 1, else null</param>
        /// <returns>1: finished, the image is the caller's (also when the decode had finished
        /// before: the same image); 0: more input is wanted; KIRVO_ABANDONED with final -1, or when
        /// a progress handler has ended the decode; KIRVO_NULL_HANDLE without data when final is
        /// not 1, for a handle that cannot be locked, and when no decode is under way;
        /// KIRVO_BAD_PARAMETER for a size below 0 or above the block's; KIRVO_NO_MEMORY;
        /// KIRVO_JPEG_NO_SOI when the stream has ended without a start of image; KIRVO_JPEG_HEADER
        /// for every fault of the header once final is 1; KIRVO_JPEG_EARLY_EOI and KIRVO_JPEG_FRAME
        /// while more may come; KIRVO_JPEG_MARKER (see JpgDecGetLastUexMarker); KIRVO_JPEG_HUFFMAN;
        /// KIRVO_BUSY to a progress handler of the decode</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern int JpgDecNext(IntPtr data, int size, int final, out IntPtr image);

        /// <summary>Decodes a file.</summary>
        /// <param name="name">file name</param>
        /// <param name="width">pixels, written on success</param>
        /// <param name="height">pixels, written on success</param>
        /// <param name="error">KIRVO_OK; KIRVO_CANNOT_OPEN; KIRVO_NO_MEMORY; KIRVO_READ_ERROR;
        /// KIRVO_BUSY while another encode or decode is under way; KIRVO_JPEG_NO_SOI;
        /// KIRVO_JPEG_EARLY_EOI; KIRVO_JPEG_HEADER; KIRVO_JPEG_FRAME; KIRVO_JPEG_MARKER (see
        /// JpgDecGetLastUexMarker); KIRVO_JPEG_HUFFMAN; KIRVO_ABANDONED when a progress handler has
        /// ended the decode</param>
        /// <returns>the image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern IntPtr JpgDecMainEx([MarshalAs(UnmanagedType.LPStr)] string name,
            out uint width, out uint height, out KirvoStatus error);

        /// <summary>Decodes a stream that is in memory.</summary>
        /// <param name="data">block that holds the stream; it is neither freed nor changed</param>
        /// <param name="size">number of bytes</param>
        /// <param name="width">pixels, written on success</param>
        /// <param name="height">pixels, written on success</param>
        /// <param name="error">KIRVO_OK; KIRVO_BUSY while another encode or decode is under way;
        /// KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for a size below 0 or above the block's;
        /// KIRVO_NO_MEMORY; KIRVO_JPEG_NO_SOI; KIRVO_JPEG_EARLY_EOI; KIRVO_JPEG_HEADER;
        /// KIRVO_JPEG_FRAME; KIRVO_JPEG_MARKER (see JpgDecGetLastUexMarker); KIRVO_JPEG_HUFFMAN;
        /// KIRVO_ABANDONED when a progress handler has ended the decode</param>
        /// <returns>the image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr JpgDecMainHGLOBAL(IntPtr data, int size, out uint width,
            out uint height, out KirvoStatus error);

        /// <summary>Does nothing.</summary>
        /// <remarks>Callers of the full interface link with it.</remarks>
        /// <param name="a">ignored</param>
        /// <param name="b">ignored</param>
        /// <param name="c">ignored</param>
        [DllImport(Library, ExactSpelling = true)]
        public static extern void JpgDecSetNoblock(int a, int b, int c);

        /// <summary>Reads the header of a file up to its image data.</summary>
        /// <remarks>Ends a piecewise decode that is under way (its next call fails or starts over)
        /// and frees the comments of the last decode.</remarks>
        /// <param name="name">file name</param>
        /// <param name="spec">written on success</param>
        /// <returns>KIRVO_OK; KIRVO_CANNOT_OPEN; KIRVO_NO_MEMORY; KIRVO_READ_ERROR;
        /// KIRVO_JPEG_NO_SOI; KIRVO_JPEG_HEADER for any other fault; KIRVO_BUSY to a progress
        /// handler of a decode</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern KirvoStatus JpgDecGetSpecEx(
            [MarshalAs(UnmanagedType.LPStr)] string name, out JpgDecSpec spec);

        /// <summary>The first four values of JpgDecGetSpecEx.</summary>
        /// <param name="name">file name</param>
        /// <param name="width">pixels</param>
        /// <param name="height">pixels</param>
        /// <param name="components">1 or 3</param>
        /// <param name="lumaBlocks">luma blocks in an MCU: 1, 2 or 4</param>
        /// <returns>KIRVO_OK; KIRVO_CANNOT_OPEN; KIRVO_NO_MEMORY; KIRVO_READ_ERROR;
        /// KIRVO_JPEG_NO_SOI; KIRVO_JPEG_HEADER for any other fault; KIRVO_BUSY to a progress
        /// handler of a decode. The values are written only with KIRVO_OK</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern KirvoStatus JpgDecGetSpec([MarshalAs(UnmanagedType.LPStr)] string name,
            out uint width, out uint height, out uint components, out uint lumaBlocks);

        /// <summary>Switches the storing and the retrieval of comments on or off; off at
        /// first.</summary>
        /// <param name="enable">1 on, any other value off</param>
        [DllImport(Library, ExactSpelling = true)]
        public static extern void JpgDecGetCommentEnable(int enable);

        /// <summary>Counts the comments of the last stream: those before its image data that are
        /// not empty, stored or not.</summary>
        /// <returns>0 to 5</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern int JpgDecCommentCounts();

        /// <summary>A stored comment: its bytes and a zero byte.</summary>
        /// <remarks>The block stays the library's and lasts until JpgDecCommentFree or until the
        /// next stream is begun.</remarks>
        /// <param name="index">0 to JpgDecCommentCounts - 1</param>
        /// <returns>the block; null for another index, when comments are switched off, and for a
        /// comment that was counted only</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr JpgDecGetComment(int index);

        /// <summary>Frees the stored comments; their count becomes 0.</summary>
        [DllImport(Library, ExactSpelling = true)]
        public static extern void JpgDecCommentFree();

        /// <summary>Quantisation tables 0 and 1 as they stood when the last decode reached its
        /// image data, 64 values each, row by row; whether or not that stream defined
        /// them.</summary>
        /// <param name="luma">table 0</param>
        /// <param name="chroma">table 1</param>
        /// <returns>1; 0, and nothing written, when no decode has come that far yet</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern int JpgDecGetQtable([Out] ushort[] luma, [Out] ushort[] chroma);

        /// <summary>One quantisation table of the last decode.</summary>
        /// <param name="number">0 to 3</param>
        /// <param name="table">64 values, row by row</param>
        /// <returns>numbers of its own: 0; -1 for another number; -2 when no decode has reached its
        /// image data yet; -3 for a table that the stream did not define</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern int JpgDecGetQtableEx(int number, [Out] ushort[] table);

        /// <summary>The marker that ended the last decode with KIRVO_JPEG_MARKER.</summary>
        /// <remarks>The record is kept until the next such marker.</remarks>
        /// <param name="position">bytes up to and including the marker, counted in the input that
        /// the decoder held at that moment: the whole stream, or of a stream in pieces what was
        /// left when the last piece came, and that piece</param>
        /// <returns>the marker's second byte; 0 when there has been none</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern ushort JpgDecGetLastUexMarker(out uint position);

        // JPEG encoder

        /// <summary>Sizes of the most recent encode.</summary>
        /// <remarks>Either pointer may be null.</remarks>
        /// <param name="source_bytes">size of the pixels encoded, without padding</param>
        /// <param name="output_bytes">length of the stream made by the last JpgCodMain...
        /// call</param>
        /// <returns>output_bytes</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern uint JpgCodGetStatus(out uint source_bytes, out uint output_bytes);

        /// <summary>Starts to encode a rectangle in colour and writes the headers.</summary>
        /// <remarks>A pending comment is taken up.</remarks>
        /// <param name="dib">packed DIB of 24 or 8 bits</param>
        /// <param name="left">rectangle in the picture</param>
        /// <param name="top">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="mcus_per_call">number of MCUs (blocks of 8 x 8, 16 x 8 or 16 x 16 pixels by
        /// sampling mode) that each JpgCodNext encodes; -1: all. With 0 or less than -1 no call
        /// gets on</param>
        /// <param name="status">KIRVO_OK; KIRVO_BUSY while an encode or decode is in progress;
        /// KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for an empty or negative rectangle;
        /// KIRVO_NEEDS_8_24 for another depth; KIRVO_BAD_PARAMETER for a rectangle outside the
        /// image, or a block smaller than its header says; KIRVO_NO_MEMORY; KIRVO_ABANDONED when a
        /// progress handler has ended the encode</param>
        /// <returns>the block that receives the stream; it is the encoder's until JpgCodNext
        /// returns 1. Null on failure</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr JpgCodFirst(IntPtr dib, int left, int top, int width,
            int height, int mcus_per_call, out KirvoStatus status);

        /// <summary>Goes on with the encode that JpgCodFirst has started.</summary>
        /// <param name="control">-1 ends the encode and frees its block; any other value goes
        /// on</param>
        /// <param name="stream_bytes">length of the stream, written when the encode is done</param>
        /// <returns>1: done, the block of JpgCodFirst is the caller's; 0: call again (a call that
        /// has encoded its number of MCUs answers 0 even if none is left); KIRVO_ABANDONED after
        /// control -1; KIRVO_JPEG_CATEGORY for a coefficient that has no code; KIRVO_NO_MEMORY when
        /// the stream would outgrow its block; KIRVO_BAD_PARAMETER without an encode of this
        /// family. After an error the block has been freed</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern int JpgCodNext(int control, out uint stream_bytes);

        /// <summary>Encodes a rectangle in colour into a file.</summary>
        /// <param name="path">file name; an existing file is replaced once the stream is complete
        /// in memory</param>
        /// <param name="dib">packed DIB of 24 or 8 bits</param>
        /// <param name="left">rectangle in the picture</param>
        /// <param name="top">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="unused1">ignored</param>
        /// <param name="unused2">ignored</param>
        /// <returns>KIRVO_OK; KIRVO_BAD_PARAMETER for an empty path; KIRVO_BUSY while an encode or
        /// decode is in progress; KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for a rectangle that is
        /// empty or outside the image, or a block smaller than its header says; KIRVO_NEEDS_8_24
        /// for another depth; KIRVO_NO_MEMORY, also for a stream that outgrows its block;
        /// KIRVO_JPEG_CATEGORY; KIRVO_ABANDONED when a progress handler has ended the encode;
        /// KIRVO_CANNOT_OPEN; KIRVO_WRITE_ERROR</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern KirvoStatus JpgCodMainEx([MarshalAs(UnmanagedType.LPStr)] string path,
            IntPtr dib, int left, int top, int width, int height, int unused1, int unused2);

        /// <summary>Encodes a rectangle in colour into a memory block.</summary>
        /// <param name="dib">packed DIB of 24 or 8 bits</param>
        /// <param name="left">rectangle in the picture</param>
        /// <param name="top">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="stream_bytes">length of the stream; the block is larger, and zero after
        /// it</param>
        /// <param name="status">KIRVO_OK; KIRVO_BUSY while an encode or decode is in progress;
        /// KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for a rectangle that is empty or outside the
        /// image, or a block smaller than its header says; KIRVO_NEEDS_8_24 for another depth;
        /// KIRVO_NO_MEMORY, also for a stream that outgrows its block; KIRVO_JPEG_CATEGORY;
        /// KIRVO_ABANDONED when a progress handler has ended the encode</param>
        /// <returns>the block, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr JpgCodMainHGLOBAL(IntPtr dib, int left, int top, int width,
            int height, out uint stream_bytes, out KirvoStatus status);

        /// <summary>Starts to encode a rectangle as a grey stream.</summary>
        /// <param name="dib">packed DIB of 8 bits</param>
        /// <param name="left">rectangle in the picture</param>
        /// <param name="top">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="grey_mode">1: a pixel's grey level is the blue byte of its colour-table
        /// entry; any other value: the pixel itself</param>
        /// <param name="mcus_per_call">as JpgCodFirst, of 8 x 8 pixels</param>
        /// <param name="status">KIRVO_OK; KIRVO_BUSY while an encode or decode is in progress;
        /// KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for an empty or negative rectangle; KIRVO_NEEDS_8
        /// for another depth; KIRVO_BAD_PARAMETER for a rectangle outside the image, or a block
        /// smaller than its header says; KIRVO_NO_MEMORY; KIRVO_ABANDONED when a progress handler
        /// has ended the encode</param>
        /// <returns>as JpgCodFirst</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr JpgCodFirst_M(IntPtr dib, int left, int top, int width,
            int height, int grey_mode, int mcus_per_call, out KirvoStatus status);

        /// <summary>Goes on with the encode that JpgCodFirst_M has started.</summary>
        /// <param name="control">as JpgCodNext</param>
        /// <param name="stream_bytes">as JpgCodNext</param>
        /// <returns>1: done, the block of JpgCodFirst_M is the caller's; 0: call again (a call that
        /// has encoded its number of MCUs answers 0 even if none is left); KIRVO_ABANDONED after
        /// control -1; KIRVO_JPEG_CATEGORY for a coefficient that has no code; KIRVO_NO_MEMORY when
        /// the stream would outgrow its block; KIRVO_BAD_PARAMETER without an encode of this
        /// family. After an error the block has been freed</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern int JpgCodNext_M(int control, out uint stream_bytes);

        /// <summary>Encodes a rectangle as a grey stream into a file.</summary>
        /// <param name="path">as JpgCodMainEx</param>
        /// <param name="dib">packed DIB of 8 bits</param>
        /// <param name="left">rectangle in the picture</param>
        /// <param name="top">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="grey_mode">as JpgCodFirst_M</param>
        /// <returns>KIRVO_OK; KIRVO_BAD_PARAMETER for an empty path; KIRVO_BUSY while an encode or
        /// decode is in progress; KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for a rectangle that is
        /// empty or outside the image, or a block smaller than its header says; KIRVO_NEEDS_8 for
        /// another depth; KIRVO_NO_MEMORY, also for a stream that outgrows its block;
        /// KIRVO_JPEG_CATEGORY; KIRVO_ABANDONED when a progress handler has ended the encode;
        /// KIRVO_CANNOT_OPEN; KIRVO_WRITE_ERROR</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern KirvoStatus JpgCodMainEx_M(
            [MarshalAs(UnmanagedType.LPStr)] string path, IntPtr dib, int left, int top, int width,
            int height, int grey_mode);

        /// <summary>Encodes a rectangle as a grey stream into a memory block.</summary>
        /// <param name="dib">packed DIB of 8 bits</param>
        /// <param name="left">rectangle in the picture</param>
        /// <param name="top">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="grey_mode">as JpgCodFirst_M</param>
        /// <param name="stream_bytes">as JpgCodMainHGLOBAL</param>
        /// <param name="status">KIRVO_OK; KIRVO_BUSY while an encode or decode is in progress;
        /// KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for a rectangle that is empty or outside the
        /// image, or a block smaller than its header says; KIRVO_NEEDS_8 for another depth;
        /// KIRVO_NO_MEMORY, also for a stream that outgrows its block; KIRVO_JPEG_CATEGORY;
        /// KIRVO_ABANDONED when a progress handler has ended the encode</param>
        /// <returns>the block, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr JpgCodMainHGLOBAL_M(IntPtr dib, int left, int top, int width,
            int height, int grey_mode, out uint stream_bytes, out KirvoStatus status);

        // JPEG encoder settings

        /// <summary>Sets how colour streams sample chroma.</summary>
        /// <remarks>The default is 4.</remarks>
        /// <param name="mode">1: a sample per pixel; 2: halved across; 4: halved both ways</param>
        /// <returns>KIRVO_OK, or KIRVO_BAD_PARAMETER for another mode (the setting stays)</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus JpgCodSetSubsample(int mode);

        /// <summary>Selects one of the quality levels 2 to 5.</summary>
        /// <param name="q">0 to 3 for level 2 (finest) to 5 (coarsest)</param>
        /// <returns>KIRVO_OK, or KIRVO_BAD_PARAMETER for another value (the setting
        /// stays)</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus JpgCodSetQ(int q);

        /// <summary>Selects a quality level.</summary>
        /// <remarks>The default is 4.</remarks>
        /// <param name="level">1 (finest) to 5 (coarsest): a pair of fixed quantisation tables;
        /// level 5 also keeps only the first 21 coefficients of each block. 0: the tables of
        /// JpgCodSetQtable</param>
        /// <returns>KIRVO_OK, or KIRVO_BAD_PARAMETER for another level (the setting
        /// stays)</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus JpgCodSetQEx(int level);

        /// <summary>Loads quantisation tables of the caller's, which are used at level 0 only
        /// (JpgCodSetQEx).</summary>
        /// <remarks>Until then they are all ones.</remarks>
        /// <param name="luminance">64 quantisers of 1 to 255 in row-major order: entry row * 8 +
        /// column is for the vertical frequency row and the horizontal frequency column</param>
        /// <param name="chrominance">likewise</param>
        /// <returns>KIRVO_OK, or KIRVO_BAD_PARAMETER for a quantiser out of range or a null pointer
        /// (both tables stay)</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus JpgCodSetQtable([In] short[] luminance,
            [In] short[] chrominance);

        /// <summary>As JpgCodSetQtable, and sets how many coefficients of each block are coded at
        /// level 0.</summary>
        /// <param name="luminance">as JpgCodSetQtable</param>
        /// <param name="chrominance">as JpgCodSetQtable</param>
        /// <param name="count">1 to 64 coefficients in zigzag order, the others become 0; any other
        /// value means 64</param>
        /// <returns>KIRVO_OK, or KIRVO_BAD_PARAMETER for a quantiser out of range or a null pointer
        /// (both tables stay, and the number of coefficients)</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus JpgCodSetQtableEx([In] short[] luminance,
            [In] short[] chrominance, int count);

        /// <summary>Sets a comment for the next stream only; one that is still pending is
        /// discarded.</summary>
        /// <param name="text">the bytes of the comment; null: none</param>
        /// <param name="length">their number; 0: none. Above 65533 the length field of the segment
        /// wraps, so that decoders take the rest of the comment for other segments</param>
        [DllImport(Library, ExactSpelling = true)]
        public static extern void JpgCodSetComment([In] byte[] text, uint length);

        // Targa, Q0, RAW, Photo CD and icon files

        /// <summary>Reads an uncompressed 24-bit Targa file (image type 2), with either
        /// origin.</summary>
        /// <remarks>The pixels are taken to start at byte 18: an image ID or a colour map is not
        /// skipped. No progress is reported.</remarks>
        /// <param name="name">file name</param>
        /// <param name="width">width in pixels, written on success</param>
        /// <param name="height">height in pixels, written on success</param>
        /// <param name="status">KIRVO_OK; KIRVO_CANNOT_OPEN; KIRVO_READ_ERROR for a file shorter
        /// than its header or its pixels; KIRVO_NOT_TARGA for another image type or depth;
        /// KIRVO_NO_MEMORY, also for a width or height of 0</param>
        /// <returns>a new 24-bit image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern IntPtr Targa24Read([MarshalAs(UnmanagedType.LPStr)] string name,
            out uint width, out uint height, out KirvoStatus status);

        /// <summary>Writes a 24-bit image, or a rectangle of it, as an uncompressed Targa file with
        /// its origin at the bottom left.</summary>
        /// <remarks>Of sizes above 65535 the file's header keeps the low 16 bits. A partly written
        /// file stays on disk.</remarks>
        /// <param name="name">file name; an existing file is replaced</param>
        /// <param name="dib">packed DIB of 24 bits with its rows at byte 40</param>
        /// <param name="x">rectangle in the picture; width and height both -1 mean the whole
        /// image</param>
        /// <param name="y">rectangle in the picture; width and height both -1 mean the whole
        /// image</param>
        /// <param name="width">rectangle in the picture; width and height both -1 mean the whole
        /// image</param>
        /// <param name="height">rectangle in the picture; width and height both -1 mean the whole
        /// image</param>
        /// <returns>KIRVO_OK; KIRVO_BAD_PARAMETER for a null handle, a negative x or y, a rectangle
        /// that is empty or outside the image, or a block smaller than its header says;
        /// KIRVO_NULL_HANDLE for a handle that cannot be locked; KIRVO_NEEDS_24 for another depth
        /// (tested after the rectangle); KIRVO_CANNOT_OPEN; KIRVO_WRITE_ERROR</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern KirvoStatus Targa24Write([MarshalAs(UnmanagedType.LPStr)] string name,
            IntPtr dib, int x, int y, int width, int height);

        /// <summary>Reads a Q0 file: rows of red, green and blue bytes from the top of the picture
        /// down, without a header.</summary>
        /// <remarks>Width and height stand, as two decimal integers, at the start of a text file of
        /// the same name with the extension ".IPR" (appended to a name without an extension).
        /// Surplus bytes are ignored. Progress counts rows.</remarks>
        /// <param name="name">file name. On Windows it follows the rules of OpenFile (at most 127
        /// characters), and its title those of GetFileTitle.</param>
        /// <param name="width">width in pixels, written on success</param>
        /// <param name="height">height in pixels, written on success</param>
        /// <param name="bits">24, written on success</param>
        /// <param name="status">KIRVO_OK; KIRVO_Q0_SIZE when the companion file cannot be opened
        /// (tested first) or does not hold two numbers, or when the Q0 file is too short for them;
        /// KIRVO_CANNOT_OPEN; KIRVO_NO_MEMORY, also for a size below 1; KIRVO_READ_ERROR</param>
        /// <returns>a new 24-bit image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern IntPtr Q0Read([MarshalAs(UnmanagedType.LPStr)] string name,
            out uint width, out uint height, out uint bits, out KirvoStatus status);

        /// <summary>Reads a RAW file: a 32-byte header (the magic "mhwanh"; big-endian 16-bit width
        /// at byte 8, height at byte 10, palette size at byte 12), then rows as in a Q0
        /// file.</summary>
        /// <remarks>Progress counts rows.</remarks>
        /// <param name="name">file name; on Windows by the rules of OpenFile (at most 127
        /// characters)</param>
        /// <param name="width">width in pixels, written on success</param>
        /// <param name="height">height in pixels, written on success</param>
        /// <param name="bits">24, written on success</param>
        /// <param name="status">KIRVO_OK; KIRVO_CANNOT_OPEN; KIRVO_READ_ERROR for a file below 32
        /// bytes or a short read; KIRVO_NOT_RAW for another magic, or (tested last) a file too
        /// short for its size; KIRVO_RAW_PALETTE for a palette size other than 0; KIRVO_NO_MEMORY,
        /// also for a width or height of 0</param>
        /// <returns>a new 24-bit image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern IntPtr RawRead([MarshalAs(UnmanagedType.LPStr)] string name,
            out uint width, out uint height, out uint bits, out KirvoStatus status);

        /// <summary>Reads a Photo CD image with the Photo CD access library, which is loaded for
        /// the length of the call by the name PCDLIB32.DLL and the system's search rules (away from
        /// Windows: those of dlopen, so LD_LIBRARY_PATH and the system's library
        /// folders).</summary>
        /// <remarks>The library makes the image and reports progress, if any, by means of its own.
        /// The status codes have meanings of their own here.</remarks>
        /// <param name="name">file name, passed on to the library</param>
        /// <param name="resolution">the library's resolution index, 0 to 5; any other value means
        /// 3</param>
        /// <param name="progress">passed on as the library's progress value; 0 for none</param>
        /// <param name="width">biWidth, written on success</param>
        /// <param name="height">biHeight, written on success</param>
        /// <param name="status">KIRVO_OK; KIRVO_BAD_PARAMETER when the library is missing, or its
        /// progress, transform, resolution or close call failed; KIRVO_NO_MEMORY when the file
        /// could not be opened; KIRVO_CANNOT_OPEN when its image information could not be read;
        /// KIRVO_NULL_HANDLE when the image could not be loaded</param>
        /// <returns>the library's image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern IntPtr PcdRead([MarshalAs(UnmanagedType.LPStr)] string name,
            int resolution, UIntPtr progress, out uint width, out uint height,
            out KirvoStatus status);

        /// <summary>Lists the images of an icon or cursor file by its directory.</summary>
        /// <remarks>Each 6-byte record holds three 16-bit numbers: colours (the colour count of the
        /// entry with the byte behind it as its high byte; 0 is listed as 256), width and
        /// height.</remarks>
        /// <param name="name">file name</param>
        /// <param name="records">set to 0 and filled with as many records as fit; null asks for the
        /// count</param>
        /// <param name="size">bytes of records; 0 asks for the count</param>
        /// <returns>the number of images that the file declares, whether or not they fitted;
        /// KIRVO_CANNOT_OPEN; KIRVO_READ_ERROR for a file shorter than its header or the entries
        /// listed; KIRVO_NOT_ICON</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int IcoGetInfo([MarshalAs(UnmanagedType.LPStr)] string name,
            [Out] byte[] records, uint size);

        /// <summary>Lists the images of an icon or cursor file by their own headers.</summary>
        /// <remarks>Each 12-byte record holds the 32-bit offset of the image in the file, then
        /// 16-bit colours (2, 16 or 256 for 1, 4 or 8 bits; 0 for any other depth and for an image
        /// outside the file), width and height; its last 2 bytes are not written.</remarks>
        /// <param name="name">file name</param>
        /// <param name="records">filled as above; null asks for the count</param>
        /// <param name="size">number of records wanted x 6; 0 asks for the count</param>
        /// <returns>the number of images that the file declares, whether or not they fitted;
        /// KIRVO_CANNOT_OPEN; KIRVO_READ_ERROR for a file shorter than its header or the entries
        /// listed; KIRVO_NOT_ICON</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int IcoGetInfoEx([MarshalAs(UnmanagedType.LPStr)] string name,
            [Out] byte[] records, uint size);

        /// <summary>Reads one image of an icon or cursor file, and its transparency mask.</summary>
        /// <remarks>The image keeps the header, colour table and rows that it has in the file, with
        /// its height halved to the entry's. At most 65535 bytes are read, and nothing beyond the
        /// size that the entry gives the image; what is missing is 0. An entry of 256 pixels width
        /// or height (stored as 0) cannot be read.</remarks>
        /// <param name="name">file name</param>
        /// <param name="index">from 0</param>
        /// <param name="width">the entry's width, written on success</param>
        /// <param name="height">the entry's height, written on success</param>
        /// <param name="bits">the image's depth, written on success</param>
        /// <param name="status">KIRVO_OK; KIRVO_CANNOT_OPEN; KIRVO_NOT_ICON; KIRVO_BAD_PARAMETER
        /// for an index below 0 or not below the number of entries; KIRVO_READ_ERROR for a file
        /// shorter than its header or directory, or an image said to be smaller than its mask;
        /// KIRVO_NO_MEMORY, also for a size of 0 and for a depth that no image has, such as that of
        /// an image outside the file</param>
        /// <param name="mask">receives the mask, owned by the caller, on success: a 1-bit image
        /// with colour 0 black and 1 white; null when it is not wanted</param>
        /// <returns>a new image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern IntPtr IcoGetData([MarshalAs(UnmanagedType.LPStr)] string name,
            int index, out uint width, out uint height, out uint bits, out KirvoStatus status,
            out IntPtr mask);

        /// <summary>Reads one image of an icon or cursor file, and its transparency mask.</summary>
        /// <remarks>The image keeps the header, colour table and rows that it has in the file, with
        /// its height halved to the entry's. At most 65535 bytes are read, and nothing beyond the
        /// size that the entry gives the image; what is missing is 0. An entry of 256 pixels width
        /// or height (stored as 0) cannot be read.</remarks>
        /// <param name="name">file name</param>
        /// <param name="index">from 0</param>
        /// <param name="width">the entry's width, written on success</param>
        /// <param name="height">the entry's height, written on success</param>
        /// <param name="bits">the image's depth, written on success</param>
        /// <param name="status">KIRVO_OK; KIRVO_CANNOT_OPEN; KIRVO_NOT_ICON; KIRVO_BAD_PARAMETER
        /// for an index below 0 or not below the number of entries; KIRVO_READ_ERROR for a file
        /// shorter than its header or directory, or an image said to be smaller than its mask;
        /// KIRVO_NO_MEMORY, also for a size of 0 and for a depth that no image has, such as that of
        /// an image outside the file</param>
        /// <param name="mask">receives the mask, owned by the caller, on success: a 1-bit image
        /// with colour 0 black and 1 white; null when it is not wanted</param>
        /// <returns>a new image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true, BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern IntPtr IcoGetData([MarshalAs(UnmanagedType.LPStr)] string name,
            int index, out uint width, out uint height, out uint bits, out KirvoStatus status,
            IntPtr mask);

        // Copy and compose

        /// <summary>Copies a rectangle into an image that was made of exactly its size.</summary>
        /// <remarks>The destination's own width and height are not examined, only that its block
        /// can hold the rows. When width and height are those of the source, the whole source is
        /// copied and left and top are not looked at. The colour table (8 bits) or the masks (16,
        /// 32 bits with BI_BITFIELDS in the destination) are copied too. Otherwise the padding of
        /// each row receives the bytes that follow the rectangle in the source's row. An image may
        /// be copied onto itself.</remarks>
        /// <param name="to">packed DIB of the source's depth</param>
        /// <param name="from">packed DIB of 8, 16, 24 or 32 bits</param>
        /// <param name="left">rectangle in the source</param>
        /// <param name="top">rectangle in the source</param>
        /// <param name="width">rectangle in the source</param>
        /// <param name="height">rectangle in the source</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for a negative left or top or
        /// a width or height below 1; KIRVO_NEEDS_8_16_24_32 for another depth or two different
        /// ones; KIRVO_BAD_PARAMETER for a rectangle outside the source or a block that is too
        /// small. Checked in this order, before anything is written.</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24Copy(IntPtr to, IntPtr from, int left, int top,
            int width, int height);

        /// <summary>Copies a rectangle between two images of any sizes and one depth.</summary>
        /// <remarks>When width and height are those of both images, the whole of the source is
        /// copied, row padding included, and the corners are not looked at. The colour table (8
        /// bits) or the masks (16, 32 bits) go along. An image may be copied onto itself: the rows
        /// are copied one after the other from the bottom of the picture upward.</remarks>
        /// <param name="to">packed DIB of the source's depth</param>
        /// <param name="to_left">corner of the rectangle in the destination</param>
        /// <param name="to_top">corner of the rectangle in the destination</param>
        /// <param name="from">packed DIB of 8, 16, 24 or 32 bits</param>
        /// <param name="from_left">corner of the rectangle in the source</param>
        /// <param name="from_top">corner of the rectangle in the source</param>
        /// <param name="width">size of the rectangle</param>
        /// <param name="height">size of the rectangle</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for a negative coordinate or a
        /// width or height below 1; KIRVO_NEEDS_8_16_24_32 for another depth or two different ones;
        /// KIRVO_BAD_PARAMETER for a rectangle outside either image or a block that is too small.
        /// Checked in this order, before anything is written.</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24CopyEx(IntPtr to, int to_left, int to_top,
            IntPtr from, int from_left, int from_top, int width, int height);

        /// <summary>Duplicates a rectangle into a new image of the same depth, with its colour
        /// table or masks.</summary>
        /// <param name="from">packed DIB of 8, 16, 24 or 32 bits</param>
        /// <param name="left">rectangle in the source</param>
        /// <param name="top">rectangle in the source</param>
        /// <param name="width">rectangle in the source</param>
        /// <param name="height">rectangle in the source</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for a rectangle
        /// outside the image or a block that is too small; KIRVO_NEEDS_8_16_24_32 for a depth below
        /// 8; KIRVO_NO_MEMORY. Checked in this order.</param>
        /// <returns>the image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24DupEx(IntPtr from, int left, int top, int width,
            int height, out KirvoStatus status);

        /// <summary>Composes a rectangle of one image onto one of the same size of
        /// another.</summary>
        /// <remarks>Per channel, with s of the source and d of the destination; pixels at 3 and 4
        /// whole: - mode 0, add: min(s + d, 255) - mode 1, average: (s + d) / 2, truncated - mode
        /// 2, black transparent: s, but d where all channels of s are 0 - mode 3, subtract: max(d -
        /// s, 0) - mode 4, key colour: s, but d where s is the key colour (see SetKeyColorDib24Add)
        /// At 32 bits the source's masks serve for both images, and bits outside them are cleared
        /// in every pixel written. When both are one image, each row works as if its source were
        /// copied first. Reports progress per row.</remarks>
        /// <param name="to">packed DIB of the source's depth, changed in place</param>
        /// <param name="to_left">corner of the rectangle in the destination</param>
        /// <param name="to_top">corner of the rectangle in the destination</param>
        /// <param name="from">packed DIB of 24 or 32 bits</param>
        /// <param name="from_left">corner of the rectangle in the source</param>
        /// <param name="from_top">corner of the rectangle in the source</param>
        /// <param name="width">size of the rectangle</param>
        /// <param name="height">size of the rectangle</param>
        /// <param name="mode">0 to 4</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for a negative coordinate, a
        /// size below 1 or another mode; KIRVO_NEEDS_24_32 for another depth or two different ones;
        /// KIRVO_BAD_PARAMETER for a rectangle outside either image or a block that is too small.
        /// Checked in this order.</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24Add(IntPtr to, int to_left, int to_top, IntPtr from,
            int from_left, int from_top, int width, int height, int mode);

        /// <summary>Sets the key colour of Dib24Add for the whole process.</summary>
        /// <remarks>It is black at first.</remarks>
        /// <param name="colour">0x00BBGGRR; the top byte is not looked at</param>
        [DllImport(Library, ExactSpelling = true)]
        public static extern void SetKeyColorDib24Add(uint colour);

        // Flip, mirror, turn

        /// <summary>Turns a rectangle upside down, in place.</summary>
        /// <remarks>A row of working memory is taken whatever the height. Reports progress per pair
        /// of rows.</remarks>
        /// <param name="dib">packed DIB of 8, 16, 24 or 32 bits</param>
        /// <param name="left">rectangle in the picture</param>
        /// <param name="top">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
        /// KIRVO_NO_MEMORY</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24Flip(IntPtr dib, int left, int top, int width,
            int height);

        /// <summary>Exchanges left and right in a rectangle, in place.</summary>
        /// <remarks>Reports progress per row.</remarks>
        /// <param name="dib">packed DIB of 8, 16, 24 or 32 bits</param>
        /// <param name="left">rectangle in the picture</param>
        /// <param name="top">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too
        /// small</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24Mirror(IntPtr dib, int left, int top, int width,
            int height);

        /// <summary>Turns a rectangle by 180 degrees, in place.</summary>
        /// <remarks>A row of working memory is taken whatever the height. Reports progress per pair
        /// of rows.</remarks>
        /// <param name="dib">packed DIB of 8, 16, 24 or 32 bits</param>
        /// <param name="left">rectangle in the picture</param>
        /// <param name="top">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
        /// KIRVO_NO_MEMORY</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24FlipMirror(IntPtr dib, int left, int top, int width,
            int height);

        /// <summary>Turns a rectangle by 90 degrees into a new image of height x width pixels, with
        /// the source's colour table or masks.</summary>
        /// <remarks>Reports progress per row of the source.</remarks>
        /// <param name="dib">packed DIB of 8, 16, 24 or 32 bits</param>
        /// <param name="left">rectangle in the picture</param>
        /// <param name="top">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="direction">0 clockwise: the top left corner goes to the top right; 1
        /// counter-clockwise: it goes to the bottom left</param>
        /// <param name="status">KIRVO_OK; KIRVO_BAD_PARAMETER for another direction, before all
        /// else; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32 for another depth; KIRVO_BAD_PARAMETER
        /// for a rectangle outside the image or a block that is too small; KIRVO_NO_MEMORY</param>
        /// <returns>the image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24Rotate(IntPtr dib, int left, int top, int width,
            int height, int direction, out KirvoStatus status);

        // Zoom

        /// <summary>Resizes a rectangle into a new image by taking the nearest pixel.</summary>
        /// <remarks>With sx = new_width / width and sy = new_height / height in double precision,
        /// destination pixel (i, j) is source pixel (trunc(i / sx + left), top + trunc(j / sy)).
        /// Both coordinates are cut to signed 16 bits, so that images above 32767 pixels give wrong
        /// columns or rows. A negative column leads into the row below, a negative row above the
        /// top row; where such bytes do not lie in the image's block, the pixel is the picture's
        /// nearest. Reports progress per row of the result; a copy, when the size stays, reports
        /// none.</remarks>
        /// <param name="dib">packed DIB of 8, 16, 24 or 32 bits</param>
        /// <param name="left">rectangle in the picture</param>
        /// <param name="top">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="new_width">size of the result, at least 1</param>
        /// <param name="new_height">size of the result, at least 1</param>
        /// <param name="status">KIRVO_OK; KIRVO_BAD_PARAMETER for a new size below 1, before all
        /// else; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32 for another depth; KIRVO_BAD_PARAMETER
        /// for a rectangle outside the image or a block that is too small; KIRVO_NO_MEMORY, also
        /// for a result above 2^31 - 1 bytes. When the new size equals the rectangle's, the result
        /// is a copy made by Dib24Copy and the status is written only when its memory
        /// fails.</param>
        /// <returns>the image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24ZoomEx(IntPtr dib, int left, int top, int width,
            int height, int new_width, int new_height, out KirvoStatus status);

        /// <summary>Resizes a rectangle into a new image by taking the nearest pixel, as
        /// Dib24ZoomEx but with 32-bit coordinates, or by averaging.</summary>
        /// <remarks>With smoothing, 16, 24 or 32 bits and no enlargement in either direction, a
        /// destination pixel is the truncated mean of each channel over the box of ceil(width /
        /// new_width) x ceil(height / new_height) source pixels that begins at its nearest pixel
        /// and extends right and down, beyond the rectangle too. The box ends at the bottom of the
        /// image; at its right edge padding that has room for a pixel counts as one. Reports
        /// progress as Dib24ZoomEx.</remarks>
        /// <param name="dib">packed DIB of 8, 16, 24 or 32 bits</param>
        /// <param name="left">rectangle in the picture</param>
        /// <param name="top">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="new_width">size of the result, at least 1</param>
        /// <param name="new_height">size of the result, at least 1</param>
        /// <param name="status">KIRVO_OK; KIRVO_BAD_PARAMETER for a new size below 1, before all
        /// else; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32 for another depth; KIRVO_BAD_PARAMETER
        /// for a rectangle outside the image or a block that is too small; KIRVO_NO_MEMORY, also
        /// for a result above 2^31 - 1 bytes. When the new size equals the rectangle's, the result
        /// is a copy made by Dib24Copy and the status is written only when its memory
        /// fails.</param>
        /// <param name="smooth">1 switches smoothing on, any other value off</param>
        /// <returns>the image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24ZoomEx2(IntPtr dib, int left, int top, int width,
            int height, int new_width, int new_height, out KirvoStatus status, int smooth);

        // Tone

        /// <summary>Inverts a rectangle in place: 255 - channel.</summary>
        /// <remarks>At 16 and 32 bits the bits under the masks flip and all others stay.</remarks>
        /// <param name="dib">packed DIB of 16, 24 or 32 bits with a 40-byte header</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too
        /// small</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24Negative(IntPtr dib, int x, int y, int width,
            int height);

        /// <summary>Exchanges the channels of a rectangle in place.</summary>
        /// <remarks>Bits outside the masks of a 32-bit image become 0.</remarks>
        /// <param name="dib">packed DIB of 24 or 32 bits with a 40-byte header</param>
        /// <param name="mode">what red, green and blue are taken from: 0 nothing changes (KIRVO_OK
        /// even for a null handle), 1 red, blue, green; 2 green, blue, red; 3 green, red, blue; 4
        /// blue, red, green; 5 blue, green, red</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <returns>KIRVO_OK; KIRVO_BAD_PARAMETER for another mode, before anything else is looked
        /// at; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth; KIRVO_BAD_PARAMETER for a
        /// rectangle outside the image or a block that is too small</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24RGBChange(IntPtr dib, int mode, int x, int y,
            int width, int height);

        /// <summary>Brightens or darkens: channel + level * 255 / 100 (truncated), clamped to
        /// 0..255.</summary>
        /// <remarks>The masks of a 32-bit result are the 12 bytes that follow the source's header,
        /// also when the source has no masks.</remarks>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="level">-100 to 100</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image, another level or a block that is
        /// too small; KIRVO_NO_MEMORY</param>
        /// <returns>the new image, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24Brightness(IntPtr dib, int x, int y, int width, int height,
            int level, out KirvoStatus status);

        /// <summary>Raises or lowers the contrast around mid-grey: channel * (level + 100) / 100 +
        /// -128 * level / 100 (both truncated), clamped to 0..255.</summary>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="level">-100 (all grey) to 100 (2 * channel - 128)</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image, another level or a block that is
        /// too small; KIRVO_NO_MEMORY</param>
        /// <returns>the new image, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24Contrast(IntPtr dib, int x, int y, int width, int height,
            int level, out KirvoStatus status);

        /// <summary>Turns a rectangle to grey: (77 red + 150 green + 29 blue + 128) / 256 in all
        /// three channels.</summary>
        /// <param name="dib">packed DIB of 24 or 32 bits with a 40-byte header</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
        /// KIRVO_NO_MEMORY</param>
        /// <returns>a new 24-bit image, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24Monochrome(IntPtr dib, int x, int y, int width, int height,
            out KirvoStatus status);

        /// <summary>Halves the intensity: channel / 2.</summary>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
        /// KIRVO_NO_MEMORY</param>
        /// <returns>the new image, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24HalfTone(IntPtr dib, int x, int y, int width, int height,
            out KirvoStatus status);

        /// <summary>Multiplies all channels by a fraction: channel * numerator / denominator,
        /// truncated, 255 at most.</summary>
        /// <remarks>With a denominator of 0 every channel but 0 becomes 255.</remarks>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="numerator">1 to 255</param>
        /// <param name="denominator">0 or more</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image, another fraction or a block that
        /// is too small; KIRVO_NO_MEMORY</param>
        /// <returns>the new image, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24ToneCtrl(IntPtr dib, int x, int y, int width, int height,
            int numerator, int denominator, out KirvoStatus status);

        /// <summary>Multiplies each channel by its factor: channel * factor, truncated, at most 255
        /// (0 stays 0 with an infinite factor).</summary>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="red">factors, 0 or more</param>
        /// <param name="green">factors, 0 or more</param>
        /// <param name="blue">factors, 0 or more</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image, a factor that is negative or not
        /// a number or a block that is too small; KIRVO_NO_MEMORY</param>
        /// <returns>the new image, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24ToneCtrlEx(IntPtr dib, int x, int y, int width, int height,
            double red, double green, double blue, out KirvoStatus status);

        /// <summary>Corrects the gamma: 255 * (channel / 255)^gamma in double precision,
        /// truncated.</summary>
        /// <remarks>Gammas above 1 darken, those below brighten, 0 makes everything 255, and
        /// exactly 1 changes nothing.</remarks>
        /// <param name="dib">packed DIB of 24 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="gamma">0 or more</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image, a gamma that is negative or not a
        /// number or a block that is too small; KIRVO_NO_MEMORY</param>
        /// <returns>the new image, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24Gamma(IntPtr dib, int x, int y, int width, int height,
            double gamma, out KirvoStatus status);

        /// <summary>Corrects the gamma of each channel, as Dib24Gamma does.</summary>
        /// <remarks>At 8 bits the result is a duplicate of the rectangle whose 256 colour-table
        /// entries are the source's, corrected; 0 and 100 are then the only progress
        /// messages.</remarks>
        /// <param name="dib">packed DIB of 8, 16, 24 or 32 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="red">gammas, 0 or more</param>
        /// <param name="green">gammas, 0 or more</param>
        /// <param name="blue">gammas, 0 or more</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32 for another
        /// depth; KIRVO_BAD_PARAMETER for a rectangle outside the image, a gamma that is negative
        /// or not a number or a block that is too small; KIRVO_NO_MEMORY</param>
        /// <returns>the new image, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr DibGammaEx(IntPtr dib, int x, int y, int width, int height,
            double red, double green, double blue, out KirvoStatus status);

        /// <summary>Separates the channels: three new images of the source's depth, each with one
        /// channel and the others 0.</summary>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="red">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <param name="green">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <param name="blue">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
        /// KIRVO_NO_MEMORY</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24Separate(IntPtr dib, int x, int y, int width,
            int height, out IntPtr red, out IntPtr green, out IntPtr blue);

        /// <summary>Separates the channels: three new images of the source's depth, each with one
        /// channel and the others 0.</summary>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="red">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <param name="green">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <param name="blue">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
        /// KIRVO_NO_MEMORY</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24Separate(IntPtr dib, int x, int y, int width,
            int height, out IntPtr red, out IntPtr green, IntPtr blue);

        /// <summary>Separates the channels: three new images of the source's depth, each with one
        /// channel and the others 0.</summary>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="red">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <param name="green">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <param name="blue">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
        /// KIRVO_NO_MEMORY</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24Separate(IntPtr dib, int x, int y, int width,
            int height, out IntPtr red, IntPtr green, out IntPtr blue);

        /// <summary>Separates the channels: three new images of the source's depth, each with one
        /// channel and the others 0.</summary>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="red">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <param name="green">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <param name="blue">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
        /// KIRVO_NO_MEMORY</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24Separate(IntPtr dib, int x, int y, int width,
            int height, out IntPtr red, IntPtr green, IntPtr blue);

        /// <summary>Separates the channels: three new images of the source's depth, each with one
        /// channel and the others 0.</summary>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="red">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <param name="green">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <param name="blue">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
        /// KIRVO_NO_MEMORY</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24Separate(IntPtr dib, int x, int y, int width,
            int height, IntPtr red, out IntPtr green, out IntPtr blue);

        /// <summary>Separates the channels: three new images of the source's depth, each with one
        /// channel and the others 0.</summary>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="red">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <param name="green">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <param name="blue">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
        /// KIRVO_NO_MEMORY</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24Separate(IntPtr dib, int x, int y, int width,
            int height, IntPtr red, out IntPtr green, IntPtr blue);

        /// <summary>Separates the channels: three new images of the source's depth, each with one
        /// channel and the others 0.</summary>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="red">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <param name="green">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <param name="blue">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
        /// KIRVO_NO_MEMORY</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24Separate(IntPtr dib, int x, int y, int width,
            int height, IntPtr red, IntPtr green, out IntPtr blue);

        /// <summary>Separates the channels: three new images of the source's depth, each with one
        /// channel and the others 0.</summary>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="red">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <param name="green">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <param name="blue">the images, owned by the caller; all null on failure. An image whose
        /// pointer is null is not kept.</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
        /// KIRVO_NO_MEMORY</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24Separate(IntPtr dib, int x, int y, int width,
            int height, IntPtr red, IntPtr green, IntPtr blue);

        /// <summary>Maps every channel through a table: table[channel].</summary>
        /// <remarks>At 8 bits the result is a duplicate of the width x height pixels at the top
        /// left of the image, wherever the rectangle lies, whose 256 colour-table entries are the
        /// source's, mapped; 0 and 100 are then the only progress messages.</remarks>
        /// <param name="dib">packed DIB of 8, 16, 24 or 32 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="table">256 bytes</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32 for another
        /// depth; KIRVO_BAD_PARAMETER for a rectangle outside the image, a null table or a block
        /// that is too small; KIRVO_NO_MEMORY</param>
        /// <returns>the new image, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr DibColorMapEx(IntPtr dib, int x, int y, int width, int height,
            [In] byte[] table, out KirvoStatus status);

        // Hue and HSV

        /// <summary>Converts a colour to hue, saturation and value.</summary>
        /// <remarks>The first of red, green and blue that is the largest channel decides where the
        /// hue is counted from; greys have hue 0.</remarks>
        /// <param name="red">channels, 0 to 255</param>
        /// <param name="green">channels, 0 to 255</param>
        /// <param name="blue">channels, 0 to 255</param>
        /// <param name="hue">0 to 359</param>
        /// <param name="saturation">0 to 255</param>
        /// <param name="value">0 to 255</param>
        [DllImport(Library, ExactSpelling = true)]
        public static extern void RGB2HSV(int red, int green, int blue, out int hue,
            out int saturation, out int value);

        /// <summary>Saturation and value of a colour.</summary>
        /// <param name="red">channels, 0 to 255</param>
        /// <param name="green">channels, 0 to 255</param>
        /// <param name="blue">channels, 0 to 255</param>
        /// <param name="saturation">largest channel minus smallest</param>
        /// <param name="value">largest channel</param>
        [DllImport(Library, ExactSpelling = true)]
        public static extern void RGB2SV(int red, int green, int blue, out int saturation,
            out int value);

        /// <summary>Value of a colour.</summary>
        /// <param name="red">channels, 0 to 255</param>
        /// <param name="green">channels, 0 to 255</param>
        /// <param name="blue">channels, 0 to 255</param>
        /// <returns>the largest channel</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern int RGB2V(int red, int green, int blue);

        /// <summary>Converts hue, saturation and value to a colour.</summary>
        /// <remarks>Channels are clamped to 0..255.</remarks>
        /// <param name="hue">0 to 359; any other hue gives black</param>
        /// <param name="saturation">0 to 255</param>
        /// <param name="value">0 to 255</param>
        /// <param name="red">channels</param>
        /// <param name="green">channels</param>
        /// <param name="blue">channels</param>
        [DllImport(Library, ExactSpelling = true)]
        public static extern void HSV2RGB(int hue, int saturation, int value, out int red,
            out int green, out int blue);

        /// <summary>Changes the hue of a whole image in place.</summary>
        /// <remarks>Greys stay as they are. Reports progress per row.</remarks>
        /// <param name="dib">packed DIB of 24 bits</param>
        /// <param name="mode">0 gives every pixel the hue; 1 does so and lowers the saturation to
        /// two thirds; 2 turns every pixel's hue</param>
        /// <param name="value">degrees: 0 to 359 for modes 0 and 1, -259 to 359 for mode 2</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for another mode or value;
        /// KIRVO_NEEDS_24 for another depth; KIRVO_BAD_PARAMETER for a block smaller than its
        /// header says</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus DibModifyHue(IntPtr dib, int mode, int value);

        /// <summary>Makes a copy of a rectangle with its hue changed.</summary>
        /// <remarks>Greys stay as they are, apart from the bits outside the masks, which become 0.
        /// Reports progress per row.</remarks>
        /// <param name="dib">packed DIB of 16, 24 or 32 bits</param>
        /// <param name="x">rectangle</param>
        /// <param name="y">rectangle</param>
        /// <param name="width">rectangle</param>
        /// <param name="height">rectangle</param>
        /// <param name="mode">as for DibModifyHue</param>
        /// <param name="value">degrees, 0 to 359 for every mode</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_24_32 for another
        /// depth; KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too
        /// small, then for another mode or value; KIRVO_NO_MEMORY</param>
        /// <returns>the new image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr DibModifyHueEx(IntPtr dib, int x, int y, int width, int height,
            int mode, int value, out KirvoStatus status);

        // Filters

        /// <summary>Blurs a rectangle with a fixed 3 x 3 kernel.</summary>
        /// <remarks>Each channel becomes (11 x (sum of the four corners) + 30 x (sum of the four
        /// edge neighbours) + 81 x centre) &gt;&gt; 8. White darkens by 4 % a pass (255 becomes
        /// 244, then 233): the weights, four times 11, four times 30 and 81, add up to 245, and the
        /// sum is divided by 256. DibFilter3x3 keeps white white when its divisor is the sum of its
        /// weights. Neighbours outside the rectangle are not read: the pixel's own row or column
        /// takes their place. The exception is a rectangle one row high, whose row above is read
        /// from the image (as black beyond its top). Reports progress per row.</remarks>
        /// <param name="dib">packed DIB of 24 bits</param>
        /// <param name="x">rectangle in the picture</param>
        /// <param name="y">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24; KIRVO_BAD_PARAMETER
        /// for a rectangle outside the image or a block too small; KIRVO_NO_MEMORY</param>
        /// <returns>a new 24-bit image of the rectangle, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24Gausian(IntPtr dib, int x, int y, int width, int height,
            out KirvoStatus status);

        /// <summary>Sets the kernel of DibFilter3x3, for the life of the process.</summary>
        /// <param name="k0">weights of the *stored row before* the pixel's, which is the row below
        /// it on screen, since rows are stored bottom-up; left, middle, right</param>
        /// <param name="k1">weights of the *stored row before* the pixel's, which is the row below
        /// it on screen, since rows are stored bottom-up; left, middle, right</param>
        /// <param name="k2">weights of the *stored row before* the pixel's, which is the row below
        /// it on screen, since rows are stored bottom-up; left, middle, right</param>
        /// <param name="k3">weights of the pixel's own row; k4 is the pixel's</param>
        /// <param name="k4">weights of the pixel's own row; k4 is the pixel's</param>
        /// <param name="k5">weights of the pixel's own row; k4 is the pixel's</param>
        /// <param name="k6">weights of the row above on screen</param>
        /// <param name="k7">weights of the row above on screen</param>
        /// <param name="k8">weights of the row above on screen</param>
        /// <param name="divisor">divides each weighted sum; 0 is stored as 1</param>
        [DllImport(Library, ExactSpelling = true)]
        public static extern void SetFilter3x3(int k0, int k1, int k2, int k3, int k4, int k5,
            int k6, int k7, int k8, int divisor);

        /// <summary>Filters a rectangle with the kernel of SetFilter3x3.</summary>
        /// <remarks>Each channel becomes the sum of channel x weight over the nine pixels, divided
        /// by the divisor (truncating toward zero) and clamped to 0..255. Sums are exact for every
        /// weight. Neighbours outside the rectangle are read; those outside the image are left out
        /// of the sum, so that a smoothing kernel darkens the border. Reports progress per
        /// row.</remarks>
        /// <param name="dib">packed DIB of 16, 24 or 32 bits</param>
        /// <param name="x">rectangle in the picture</param>
        /// <param name="y">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_24_32;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image, a block too small, or when
        /// SetFilter3x3 has not been called yet; KIRVO_NO_MEMORY</param>
        /// <returns>a new image of the rectangle with the source's depth and masks, owned by the
        /// caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr DibFilter3x3(IntPtr dib, int x, int y, int width, int height,
            out KirvoStatus status);

        /// <summary>Sets the mask of Dib24Mix3X3, for the life of the process.</summary>
        /// <remarks>It starts as 9 8 9 / 8 10 8 / 9 8 9.</remarks>
        /// <param name="weights">9 weights in tenths, of any value, in picture order: row by row
        /// from the top left neighbour. Null changes nothing.</param>
        [DllImport(Library, ExactSpelling = true)]
        public static extern void Dib24Mix3X3SetMask([In] int[] weights);

        /// <summary>Sets the mask of Dib24Mix5X5, for the life of the process.</summary>
        /// <remarks>It starts as 5 6 7 6 5 / 6 8 9 8 6 / 7 9 10 9 7 / 6 8 9 8 6 / 5 6 7 6
        /// 5.</remarks>
        /// <param name="weights">25 weights in tenths, of any value, in picture order: row by row
        /// from the top left neighbour. Null changes nothing.</param>
        [DllImport(Library, ExactSpelling = true)]
        public static extern void Dib24Mix5X5SetMask([In] int[] weights);

        /// <summary>Draws the 3 x 3 neighbours of one pixel towards its colour, in place.</summary>
        /// <remarks>With m the mask's weight, each channel of a neighbour becomes (neighbour x m +
        /// centre x (10 - m)) / 10 and each of the centre centre x m / 10; truncating, exact for
        /// every weight, and clamped to 0..255. A weight of 10 leaves a neighbour unchanged, 0
        /// replaces it. Neighbours outside the image are left alone. No progress is
        /// reported.</remarks>
        /// <param name="dib">packed DIB of 16, 24 or 32 bits</param>
        /// <param name="x">the centre</param>
        /// <param name="y">the centre</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_24_32; KIRVO_BAD_PARAMETER for a
        /// point outside the image or a block too small</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24Mix3X3(IntPtr dib, int x, int y);

        /// <summary>Draws the 5 x 5 neighbours of one pixel towards its colour, in place: as
        /// Dib24Mix3X3.</summary>
        /// <param name="dib">packed DIB of 16, 24 or 32 bits</param>
        /// <param name="x">the centre</param>
        /// <param name="y">the centre</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_24_32; KIRVO_BAD_PARAMETER for a
        /// point outside the image or a block too small</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24Mix5X5(IntPtr dib, int x, int y);

        /// <summary>Sharpens a rectangle, or shows its edges in grey.</summary>
        /// <remarks>Works on the luminance Y = (77 R + 150 G + 29 B + 128) &gt;&gt; 8 and its
        /// Laplacian L = 4 x Y - (Y left + Y right + Y above + Y below). At the rectangle's edges a
        /// pixel stands in for its missing neighbour; a rectangle one row high has black (0) above
        /// it. Reports progress of two passes (30, 70), or of three (30, 40, 30) in mode
        /// 0.</remarks>
        /// <param name="dib">packed DIB of 24 bits</param>
        /// <param name="x">rectangle in the picture</param>
        /// <param name="y">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="mode">0 to 5</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24; KIRVO_BAD_PARAMETER
        /// for a rectangle outside the image, a block too small or another mode;
        /// KIRVO_NO_MEMORY</param>
        /// <returns>a new 24-bit image of the rectangle, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24Sharpen(IntPtr dib, int x, int y, int width, int height,
            int mode, out KirvoStatus status);

        /// <summary>Sharpens a rectangle as mode 0 of Dib24Sharpen does, with a choice of strength:
        /// the Laplacian is divided by 8, 6, 4 or 2.</summary>
        /// <param name="dib">packed DIB of 24 bits</param>
        /// <param name="x">rectangle in the picture</param>
        /// <param name="y">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="strength">0 (divides by 8) to 3 (by 2); any other value acts as 0</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24; KIRVO_BAD_PARAMETER
        /// for a rectangle outside the image or a block too small; KIRVO_NO_MEMORY</param>
        /// <returns>a new 24-bit image of the rectangle, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24SharpenEx(IntPtr dib, int x, int y, int width, int height,
            int strength, out KirvoStatus status);

        /// <summary>Keeps the colours of a rectangle at its edges and paints the rest white, the
        /// padding of the rows included.</summary>
        /// <remarks>With L the Laplacian of Dib24Sharpen, mode 0 keeps a pixel when L &lt;
        /// -threshold or L &gt; threshold, mode 1 when L &gt; threshold, mode 2 when L &lt;
        /// -threshold; any other mode keeps none. The colours come from the stored rows y to y +
        /// height - 1, counted from the bottom: unless the rectangle has the image's full height,
        /// that is the band mirrored about the middle of the picture, not the one whose edges were
        /// found. Reports progress of two passes (30, 70).</remarks>
        /// <param name="dib">packed DIB of 24 bits</param>
        /// <param name="x">rectangle in the picture</param>
        /// <param name="y">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="threshold">any value</param>
        /// <param name="mode">0, 1 or 2</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24; KIRVO_BAD_PARAMETER
        /// for a rectangle outside the image or a block too small; KIRVO_NO_MEMORY</param>
        /// <returns>a new 24-bit image of the rectangle, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24ColorEdge(IntPtr dib, int x, int y, int width, int height,
            int threshold, int mode, out KirvoStatus status);

        /// <summary>Keeps channel values by range: a value that fails its channel's test becomes
        /// 0.</summary>
        /// <remarks>A range holds the lower bound in bits 0-7, the upper bound in bits 8-15 and the
        /// test in bits 16-23: 0 anything passes, 1 lower &lt;= v &lt;= upper passes, 2 v &lt;
        /// lower or v &gt; upper passes. Bits 24-31 are ignored. Reports progress per
        /// row.</remarks>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="x">rectangle in the picture</param>
        /// <param name="y">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="red">ranges</param>
        /// <param name="green">ranges</param>
        /// <param name="blue">ranges</param>
        /// <param name="status">KIRVO_OK; first of all KIRVO_BAD_PARAMETER for an upper bound below
        /// the lower one or a test above 2; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image or a block too small;
        /// KIRVO_NO_MEMORY</param>
        /// <returns>a new image of the rectangle with the source's depth and masks, owned by the
        /// caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24Filter(IntPtr dib, int x, int y, int width, int height,
            uint red, uint green, uint blue, out KirvoStatus status);

        /// <summary>Keeps pixels or channels by ranges in RGB or HSV.</summary>
        /// <remarks>The ranges are a record of ten 16-bit fields: flags, then lower bound, upper
        /// bound and test of red or hue, of green or saturation, and of blue or value. Bounds are
        /// signed. Each argument holds two fields, the first in its low half: In 32-bit programs
        /// this is how a structure of ten 16-bit fields is passed by value. Tests are those of
        /// Dib24Filter. Reports progress per row. Example: keep the strong reds (hue 0 to 20,
        /// saturation 100 or more).</remarks>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="x">rectangle in the picture</param>
        /// <param name="y">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="range0">the record</param>
        /// <param name="range1">the record</param>
        /// <param name="range2">the record</param>
        /// <param name="range3">the record</param>
        /// <param name="range4">the record</param>
        /// <param name="status">KIRVO_OK; first of all KIRVO_BAD_PARAMETER for other flags, a bound
        /// above 255 (above 359 for a hue), a lower bound above its upper one, or a test above 2
        /// (negative bounds are accepted); KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image or a block too small;
        /// KIRVO_NO_MEMORY</param>
        /// <returns>a new image of the rectangle with the source's depth and masks, owned by the
        /// caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24FilterEx(IntPtr dib, int x, int y, int width, int height,
            uint range0, uint range1, uint range2, uint range3, uint range4,
            out KirvoStatus status);

        // Patterns, mosaics and histograms

        /// <summary>Mosaic of a 24-bit image: DibMosaicEx for that depth alone.</summary>
        /// <param name="dib">packed DIB of 24 bits</param>
        /// <param name="x">rectangle in the picture</param>
        /// <param name="y">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="block">size of the blocks in pixels, at least 1</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24; KIRVO_BAD_PARAMETER
        /// for a rectangle outside the image, a block of memory too small or a block size below 1;
        /// KIRVO_NO_MEMORY</param>
        /// <returns>a new 24-bit image of the rectangle, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24Mosaic(IntPtr dib, int x, int y, int width, int height,
            int block, out KirvoStatus status);

        /// <summary>Mosaic by samples: every block of block x block pixels, counted from the
        /// rectangle's top left, takes the pixel at its own top left.</summary>
        /// <remarks>A block of 1 gives a duplicate of the rectangle (without progress). Reports
        /// progress per row.</remarks>
        /// <param name="dib">packed DIB of 8, 16, 24 or 32 bits</param>
        /// <param name="x">rectangle in the picture</param>
        /// <param name="y">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="block">size of the blocks in pixels, at least 1; may exceed the
        /// rectangle</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image, a block of memory too small or a
        /// block size below 1; KIRVO_NO_MEMORY</param>
        /// <returns>a new image of the rectangle with the source's depth, masks and colour table,
        /// owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr DibMosaicEx(IntPtr dib, int x, int y, int width, int height,
            int block, out KirvoStatus status);

        /// <summary>Mosaic by averages: every block of block x block pixels, counted from the
        /// rectangle's top left, takes the average of its channels (of its indexes at 8 bits),
        /// truncated.</summary>
        /// <remarks>Blocks are clipped to the whole image, not to the rectangle: those at its right
        /// and bottom edges average the pixels beyond it too. At the right edge of the image a row
        /// counts for as many pixels as fit its padded length, so that padding can add one pixel of
        /// 16 or 24 bits or up to three of 8; the padding of the result is filled by the same rule.
        /// A block of 1 gives a duplicate of the rectangle (without progress). Reports progress per
        /// row of blocks.</remarks>
        /// <param name="dib">packed DIB of 8, 16, 24 or 32 bits</param>
        /// <param name="x">rectangle in the picture</param>
        /// <param name="y">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="block">size of the blocks in pixels, 1 to 1024</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image, a block of memory too small or a
        /// block size outside 1 to 1024; KIRVO_NO_MEMORY</param>
        /// <returns>a new image of the rectangle with the source's depth, masks and colour table,
        /// owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr DibMosaicEx2(IntPtr dib, int x, int y, int width, int height,
            int block, out KirvoStatus status);

        /// <summary>XORs a colour over a rectangle, in place.</summary>
        /// <remarks>At 16 and 32 bits the pixel word is XORed with the colour put under the image's
        /// masks. Twice restores the image. Reports progress per row.</remarks>
        /// <param name="dib">packed DIB of 16, 24 or 32 bits</param>
        /// <param name="x">rectangle in the picture</param>
        /// <param name="y">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="colour">0x00BBGGRR</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_24_32; KIRVO_BAD_PARAMETER for a
        /// rectangle outside the image or a block too small</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus Dib24XOR(IntPtr dib, int x, int y, int width, int height,
            uint colour);

        /// <summary>Counts how often each channel value occurs in a rectangle.</summary>
        /// <remarks>Pixels of 8 bits count by their colour-table entry, channels of 16 bits scaled
        /// to 8. Reports progress per row.</remarks>
        /// <param name="dib">packed DIB of 8, 16, 24 or 32 bits</param>
        /// <param name="x">rectangle in the picture</param>
        /// <param name="y">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="red">256 counters each; may be null; untouched on failure</param>
        /// <param name="green">256 counters each; may be null; untouched on failure</param>
        /// <param name="blue">256 counters each; may be null; untouched on failure</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32; KIRVO_BAD_PARAMETER for a
        /// rectangle outside the image or a block too small</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus DibHistgram(IntPtr dib, int x, int y, int width,
            int height, [Out] uint[] red, [Out] uint[] green, [Out] uint[] blue);

        /// <summary>Counts the different colours of an image: indexes at 1, 4 and 8 bits (fill bits
        /// at the end of a row do not count); whole words at 16 bits, bits outside the masks
        /// included; red, green and blue at 24 and 32 bits.</summary>
        /// <remarks>The rows of a 16-bit image are taken to start 12 bytes after its header,
        /// whether it has masks or not. No progress is reported.</remarks>
        /// <param name="dib">packed DIB of 1, 4, 8, 16, 24 or 32 bits</param>
        /// <param name="count">the number; 0 on failure</param>
        /// <returns>KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for another depth or a block
        /// too small; KIRVO_NO_MEMORY</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus DibCountColors(IntPtr dib, out uint count);

        /// <summary>Makes an image of one colour.</summary>
        /// <remarks>Colours go under the masks of the new image, and those of a new 16- or 32-bit
        /// image are zero: it is black, with zero masks, whatever the colour. No progress is
        /// reported.</remarks>
        /// <param name="width">size in pixels, at least 1</param>
        /// <param name="height">size in pixels, at least 1</param>
        /// <param name="bits">16, 24 or 32</param>
        /// <param name="colour">0x00BBGGRR</param>
        /// <param name="status">KIRVO_OK; KIRVO_BAD_PARAMETER for a bad size or depth;
        /// KIRVO_NO_MEMORY</param>
        /// <returns>the image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24Solid(int width, int height, int bits, uint colour,
            out KirvoStatus status);

        /// <summary>Makes a horizontal gradient: each channel of column i is start + ((end - start)
        /// x i) / (width - 1), truncating; start alone when the width is 1. 16- and 32-bit images
        /// are black, as those of Dib24Solid.</summary>
        /// <remarks>No progress is reported.</remarks>
        /// <param name="width">size in pixels, at least 1</param>
        /// <param name="height">size in pixels, at least 1</param>
        /// <param name="bits">16, 24 or 32</param>
        /// <param name="start">colour of the left column, 0x00BBGGRR</param>
        /// <param name="end">colour of the right column</param>
        /// <param name="status">KIRVO_OK; KIRVO_BAD_PARAMETER for a bad size or depth;
        /// KIRVO_NO_MEMORY</param>
        /// <returns>the image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24Gradation1(int width, int height, int bits, uint start,
            uint end, out KirvoStatus status);

        /// <summary>Makes a vertical gradient, from start at the top to end at the bottom: a
        /// Dib24Gradation1 of the sizes exchanged, turned by Dib24Rotate, which reports progress
        /// (per column). 16- and 32-bit images are black, as those of Dib24Solid.</summary>
        /// <param name="width">size in pixels, at least 1</param>
        /// <param name="height">size in pixels, at least 1</param>
        /// <param name="bits">16, 24 or 32</param>
        /// <param name="start">colour of the top row, 0x00BBGGRR</param>
        /// <param name="end">colour of the bottom row</param>
        /// <param name="status">KIRVO_OK; KIRVO_BAD_PARAMETER for a bad size or depth;
        /// KIRVO_NO_MEMORY</param>
        /// <returns>the image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24Gradation2(int width, int height, int bits, uint start,
            uint end, out KirvoStatus status);

        /// <summary>Makes a bilinear gradient between four corners.</summary>
        /// <remarks>With j the row counted from the bottom, the ends of a row are left = bottom
        /// left + ((top left - bottom left) x j) / (height - 1), right likewise, and column i is
        /// left + ((right - left) x i) / (width - 1); all truncating. A size of 1 takes the bottom
        /// row or the left column. 16- and 32-bit images are black, as those of Dib24Solid. No
        /// progress is reported.</remarks>
        /// <param name="width">size in pixels, at least 1</param>
        /// <param name="height">size in pixels, at least 1</param>
        /// <param name="bits">16, 24 or 32</param>
        /// <param name="top_left">colours 0x00BBGGRR</param>
        /// <param name="top_right">colours 0x00BBGGRR</param>
        /// <param name="bottom_left">colours 0x00BBGGRR</param>
        /// <param name="bottom_right">colours 0x00BBGGRR</param>
        /// <param name="status">KIRVO_OK; KIRVO_BAD_PARAMETER for a bad size or depth;
        /// KIRVO_NO_MEMORY</param>
        /// <returns>the image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24Gradation3(int width, int height, int bits, uint top_left,
            uint top_right, uint bottom_left, uint bottom_right, out KirvoStatus status);

        /// <summary>Interleaves the rows of two images: stored row 2i of the result is row y1 + i
        /// of the first, stored row 2i + 1 row y2 + i of the second.</summary>
        /// <remarks>Unlike elsewhere, y1 and y2 count stored rows, from the *bottom* of the
        /// picture. The padding of a 24-bit result carries the bytes that follow the region in the
        /// source (0 past the end of its block). Reports progress per pair of rows.</remarks>
        /// <param name="first">packed DIB of 24 or 32 bits</param>
        /// <param name="x1">left column and lowest row of its region</param>
        /// <param name="y1">left column and lowest row of its region</param>
        /// <param name="second">packed DIB of the same depth</param>
        /// <param name="x2">left column and lowest row of its region</param>
        /// <param name="y2">left column and lowest row of its region</param>
        /// <param name="width">size of both regions</param>
        /// <param name="height">size of both regions</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for negative
        /// positions or sizes below 1; KIRVO_NEEDS_24_32 for unequal or other depths;
        /// KIRVO_BAD_PARAMETER for regions outside the images or blocks too small;
        /// KIRVO_NO_MEMORY</param>
        /// <returns>a new image of width x 2 height with the first image's masks, owned by the
        /// caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Dib24InterLeave(IntPtr first, int x1, int y1, IntPtr second,
            int x2, int y2, int width, int height, out KirvoStatus status);

        /// <summary>Maximum or minimum filter over squares of (2 radius + 1) x (2 radius + 1)
        /// pixels: dilation or erosion of bright areas.</summary>
        /// <remarks>Its cost does not depend on the radius. Squares are clipped to the whole image,
        /// not to the rectangle. Without the luminance flag each channel takes its own extreme.
        /// With it a pixel takes the colour of its brightest or darkest neighbour by Y = (77 R +
        /// 150 G + 29 B + 128) &gt;&gt; 8, so that no new colours arise: of several the lowest on
        /// screen, then the leftmost. The search starts with black at 0 (white at 255) and only a
        /// larger (smaller) Y replaces it, so that a square whose Y is 0 throughout gives black and
        /// one whose Y is 255 throughout white. Reports progress per row.</remarks>
        /// <param name="dib">packed DIB of 16, 24 or 32 bits</param>
        /// <param name="x">rectangle in the picture</param>
        /// <param name="y">rectangle in the picture</param>
        /// <param name="width">rectangle in the picture</param>
        /// <param name="height">rectangle in the picture</param>
        /// <param name="radius">1 to 64</param>
        /// <param name="maximum">0 for the minimum, else the maximum</param>
        /// <param name="luminance">0 for channels on their own, else by luminance</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_24_32;
        /// KIRVO_BAD_PARAMETER for a rectangle outside the image, a block too small or another
        /// radius; KIRVO_NO_MEMORY</param>
        /// <returns>a new image of the rectangle with the source's depth and masks, owned by the
        /// caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr DibBlockMxM(IntPtr dib, int x, int y, int width, int height,
            int radius, int maximum, int luminance, out KirvoStatus status);

        // Depth conversion

        /// <summary>Makes a 24-bit image of a 16- or 32-bit one. 5-bit 31 gives 248.</summary>
        /// <param name="dib">packed DIB of 16 or 32 bits; a 16-bit one without masks is read as
        /// 5-5-5</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for
        /// an image without width or height</param>
        /// <returns>the new image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr DibConvert24bit(IntPtr dib, out KirvoStatus status);

        /// <summary>Makes a 16-bit image of a 24- or 32-bit one.</summary>
        /// <remarks>It is always 5-6-5 with the masks 0xF800, 0x07E0 and 0x001F: (red &amp; 0xF8)
        /// &lt;&lt; 8 | (green &amp; 0xFC) &lt;&lt; 3 | blue &gt;&gt; 3.</remarks>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for
        /// an image without width or height</param>
        /// <returns>the new image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr DibConvert16bit(IntPtr dib, out KirvoStatus status);

        /// <summary>Makes a 32-bit image of a 16- or 24-bit one, with the masks 0x00FF0000,
        /// 0x0000FF00 and 0x000000FF: red &lt;&lt; 16 | green &lt;&lt; 8 | blue.</summary>
        /// <param name="dib">packed DIB of 16 or 24 bits; a 16-bit one without masks is read as
        /// 5-5-5</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_24 for another depth;
        /// KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for
        /// an image without width or height</param>
        /// <returns>the new image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr DibConvert32bit(IntPtr dib, out KirvoStatus status);

        /// <summary>Makes a copy of a 24-bit image that keeps only the top bits of each
        /// channel.</summary>
        /// <param name="dib">packed DIB of 24 bits with a 40-byte header</param>
        /// <param name="red_bits">bits of red kept, 0 to 8</param>
        /// <param name="green_bits">bits of green kept, 0 to 8</param>
        /// <param name="blue_bits">bits of blue kept, 0 to 8</param>
        /// <param name="status">KIRVO_OK; KIRVO_BAD_PARAMETER for a count outside 0 to 8 (before
        /// the handle is looked at), an image without width or height or a block smaller than its
        /// header says; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24; KIRVO_NO_MEMORY</param>
        /// <returns>the new image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr DibCutDepth(IntPtr dib, int red_bits, int green_bits,
            int blue_bits, out KirvoStatus status);

        // Colour reduction

        /// <summary>Makes an 8-bit image with error diffusion to 256 fixed colours.</summary>
        /// <remarks>The palette is a cube of 7 levels of green (0, 64, 96, 128, 160, 192, 255) and
        /// 6 of blue and red (0, 64, 96, 128, 192, 255), with the 20 system colours in slots 0-9
        /// and 246-255. A channel goes up to the level above it: to 64 from 32 on, to each further
        /// level from the one below it on. Rows are scanned right to left and left to right in
        /// turn, the bottom row right to left. What is left over of each channel goes on, in halves
        /// rounded down: 1/2 to the next pixel in scan direction, 1/4 below it, 1/8 below and
        /// ahead, 1/16 below and behind.</remarks>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for
        /// an image without width or height</param>
        /// <returns>the new image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr DecreaseColor256(IntPtr dib, out KirvoStatus status);

        /// <summary>Makes a 4-bit image with error diffusion, as DecreaseColor256 spreads it, to 16
        /// fixed colours.</summary>
        /// <remarks>Where any channel is above 128, each channel above 128 becomes 255 and the
        /// others 0 (colours 8 to 15, counting red 1, green 2, blue 4); elsewhere each channel
        /// above 64 becomes 128 and the others 0 (colours 0 to 6, and 8 for all three). Colour 7
        /// (192, 192, 192) is in the palette but not used.</remarks>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for
        /// an image without width or height</param>
        /// <returns>the new image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr DecreaseColor16(IntPtr dib, out KirvoStatus status);

        /// <summary>Makes an 8-bit grey image, without diffusion.</summary>
        /// <remarks>The palette has the 20 system colours in slots 0-9 and 246-255 and greys 20 to
        /// 255 in slots 10 to 245. A pixel of luminance Y = (77 red + 150 green + 29 blue + 128) /
        /// 256 gets slot Y - 10, and no slot below 10.</remarks>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for
        /// an image without width or height</param>
        /// <returns>the new image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr DecreaseColorMono256(IntPtr dib, out KirvoStatus status);

        /// <summary>Makes an 8-bit image with the palette of KirvoCreatePalette and an ordered
        /// dither of 8 x 8 pixels over the 6 x 6 x 6 cube of levels 0, 51, 102, 153, 204, 255: a
        /// channel value v becomes level v / 51, one more where v mod 51 is above the dither's
        /// threshold.</summary>
        /// <remarks>The four cube colours that the palette lacks become pure green or pure
        /// blue.</remarks>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for
        /// an image without width or height</param>
        /// <returns>the new image (biClrUsed 256), owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Decrease256Fast(IntPtr dib, out KirvoStatus status);

        /// <summary>Makes an 8-bit image with exactly the colours of the source.</summary>
        /// <remarks>New colours receive slots in the order of their appearance, row by row from the
        /// bottom left. In mode 0 slots 0-7 and 247-255 are given to system colours beforehand and
        /// 239 slots are free, in mode 1 all 256 are. Slots not used are black.</remarks>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="mode">0 or 1</param>
        /// <param name="status">KIRVO_OK; KIRVO_BAD_PARAMETER for another mode, before the handle
        /// is looked at; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for
        /// an image without width or height; KIRVO_MORE_THAN_256 when the free slots do not
        /// suffice</param>
        /// <returns>the new image (biClrUsed 256), owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Decrease256PaletteEx(IntPtr dib, int mode,
            out KirvoStatus status);

        /// <summary>Decrease256PaletteEx with mode 0.</summary>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for
        /// an image without width or height; KIRVO_MORE_THAN_256 when the free slots do not
        /// suffice</param>
        /// <returns>the new image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Decrease256Palette(IntPtr dib, out KirvoStatus status);

        /// <summary>Makes a 4-bit image with exactly the colours of the source.</summary>
        /// <remarks>In mode 0 only the 16 system colours are accepted: black, the six dark
        /// primaries, (128, 128, 128) in slot 7, (192, 192, 192) in slot 8, the six bright ones and
        /// white. In mode 1 any 16 colours receive slots in the order of their appearance, row by
        /// row from the bottom left.</remarks>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="mode">0 or 1</param>
        /// <param name="status">KIRVO_OK; KIRVO_BAD_PARAMETER for another mode, before the handle
        /// is looked at; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for
        /// an image without width or height; KIRVO_MORE_THAN_16 when the slots do not
        /// suffice</param>
        /// <returns>the new image (biClrUsed 16), owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Decrease16PaletteEx(IntPtr dib, int mode,
            out KirvoStatus status);

        /// <summary>Decrease16PaletteEx with mode 0.</summary>
        /// <param name="dib">packed DIB of 24 or 32 bits</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
        /// KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for
        /// an image without width or height; KIRVO_MORE_THAN_16 for a colour that is not of the
        /// 16</param>
        /// <returns>the new image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr Decrease16Palette(IntPtr dib, out KirvoStatus status);

        /// <summary>Makes a 24-bit image of an indexed one.</summary>
        /// <remarks>The colour table is looked for after 40 bytes of header, the rows after biSize
        /// + PaletteSize. An index is not compared with the number of colours.</remarks>
        /// <param name="dib">packed DIB of 1, 4 or 8 bits</param>
        /// <param name="status">KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_1_4_8 for another depth;
        /// KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for
        /// an image without width or height</param>
        /// <returns>the new image, owned by the caller, or null</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern IntPtr IncreaseColor16M(IntPtr dib, out KirvoStatus status);

        // Single pixels and lines

        /// <summary>Reads one pixel of an image of any depth.</summary>
        /// <remarks>Channels of 16-bit images are scaled to 8 bits with zero low bits (5-bit 31
        /// reads as 248).</remarks>
        /// <param name="dib">packed DIB of 1, 4, 8, 16, 24 or 32 bits</param>
        /// <param name="x">column from the left</param>
        /// <param name="y">row from the top</param>
        /// <param name="colour">0x00BBGGRR; left alone on failure</param>
        /// <returns>KIRVO_OK, or KIRVO_BAD_PARAMETER for a null handle, a pixel outside the image,
        /// another depth or a block too small</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus DibGetPixelColor(IntPtr dib, int x, int y,
            out uint colour);

        /// <summary>Writes one pixel of a direct-colour image.</summary>
        /// <remarks>Channels are narrowed by truncation.</remarks>
        /// <param name="dib">packed DIB of 16, 24 or 32 bits</param>
        /// <param name="x">column from the left</param>
        /// <param name="y">row from the top</param>
        /// <param name="colour">0x00BBGGRR</param>
        /// <returns>KIRVO_OK; KIRVO_BAD_PARAMETER for a null handle, a pixel outside the image or a
        /// block too small; KIRVO_NEEDS_16_24_32 for another depth</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus DibSetPixelColor(IntPtr dib, int x, int y, uint colour);

        /// <summary>Fills the pixels x0 to x1 (inclusive) of one row with a colour.</summary>
        /// <remarks>Nothing is written, and the result is still KIRVO_OK, when x0 &gt;
        /// x1.</remarks>
        /// <param name="dib">packed DIB of 16, 24 or 32 bits</param>
        /// <param name="x0">first column</param>
        /// <param name="x1">last column</param>
        /// <param name="y">row from the top</param>
        /// <param name="colour">0x00BBGGRR</param>
        /// <returns>KIRVO_OK; KIRVO_BAD_PARAMETER for a null handle, a pixel outside the image or a
        /// block too small; KIRVO_NEEDS_16_24_32 for another depth</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoStatus DibSetLineColor(IntPtr dib, int x0, int x1, int y,
            uint colour);

        // Window fitting

        /// <summary>Resizes a window so that its client area shows an image at a whole scale;
        /// FitWindowToImage is the same at scale 1.</summary>
        /// <remarks>Makes two calls of SetWindowPos with the frame width of the system's metrics
        /// (the first allows for a menu bar as well), and a third, by the measured size of
        /// everything around the client area, when that does not have the wanted size yet. The
        /// window keeps its place and its z-order. No error is reported: a window that cannot
        /// become so large stays as large as the system lets it.</remarks>
        /// <param name="window">the window</param>
        /// <param name="dib">packed DIB of any depth; null changes nothing</param>
        /// <param name="scale">the client area becomes biWidth x scale by biHeight x scale pixels
        /// (32 bits each)</param>
        [DllImport(Library, ExactSpelling = true)]
        public static extern void FitWindowToImageEx(IntPtr window, IntPtr dib, uint scale);

        /// <summary>FitWindowToImageEx at scale 1.</summary>
        /// <param name="window">the window</param>
        /// <param name="dib">packed DIB</param>
        [DllImport(Library, ExactSpelling = true)]
        public static extern void FitWindowToImage(IntPtr window, IntPtr dib);

        // Conveniences of this file

        /// <summary>Throws KirvoException unless the status is KIRVO_OK.</summary>
        public static void Check(KirvoStatus status)
        {
            if (status != KirvoStatus.KIRVO_OK)
                throw new KirvoException(status);
        }

        /// <summary>The next long operation reports its progress to a function: 0 percent, then
        /// steps of at least 5, and 100 at the end; null ends that. The function must not throw. A
        /// program with a window of its own may instead have WM_COMMAND sent there: KirvoSetProcess.
        /// Away from Windows this sets the window host.</summary>
        public static void Watch(Action<int> progress)
        {
            KirvoWatcher.Watch(progress);
        }

#if NET5_0_OR_GREATER
        static Kirvo()
        {
            KirvoLibraries.Find();
        }
#endif
    }

#if NET5_0_OR_GREATER
    /// <summary>Where the libraries have other names, away from Windows.</summary>
    static class KirvoLibraries
    {
        static KirvoLibraries()
        {
            if (OperatingSystem.IsWindows())
                return;
            try
            {
                NativeLibrary.SetDllImportResolver(typeof(KirvoLibraries).Assembly, Load);
            }
            catch (InvalidOperationException)
            {
                // The program has a resolver of its own, which finds these libraries, too.
            }
        }

        /// <summary>Called before their first function.</summary>
        internal static void Find()
        {
        }

        /// <summary>Other libraries of the program are found as ever.</summary>
        static IntPtr Load(string name, System.Reflection.Assembly assembly, DllImportSearchPath? path)
        {
            switch (name)
            {
                case "Kirvo.dll":
                case "kernel32.dll":
                case "gdi32.dll":
                    return NativeLibrary.Load("libkirvo.so", assembly, path);
                case "KirvoFiles.dll":
                    return NativeLibrary.Load("libkirvofiles.so", assembly, path);
                default:
                    return IntPtr.Zero;
            }
        }
    }
#endif

    /// <summary>A status code other than KIRVO_OK.</summary>
    public sealed class KirvoException : Exception
    {
        /// <summary>The status code.</summary>
        public readonly KirvoStatus Status;

        /// <summary>An exception for a status code.</summary>
        /// <param name="status">the status code</param>
        public KirvoException(KirvoStatus status) : base(status.ToString())
        {
            Status = status;
        }

        /// <summary>An exception for a status code, in words.</summary>
        /// <param name="status">the status code</param>
        /// <param name="message">what went wrong</param>
        public KirvoException(KirvoStatus status, string message) : base(message)
        {
            Status = status;
        }
    }

    /// <summary>Owns an image or another block, and frees it in the end. It stands for its handle in
    /// every call.</summary>
    public sealed class KirvoBlock : SafeHandle
    {
        /// <summary>Takes a handle over.</summary>
        /// <param name="block">the handle, may be zero</param>
        public KirvoBlock(IntPtr block) : base(IntPtr.Zero, true)
        {
            SetHandle(block);
        }

        /// <summary>Whether there is no block.</summary>
        public override bool IsInvalid
        {
            get { return handle == IntPtr.Zero; }
        }

        /// <summary>The handle, which stays owned.</summary>
        /// <param name="block">its owner</param>
        public static implicit operator IntPtr(KirvoBlock block)
        {
            return block.DangerousGetHandle();
        }

        /// <summary>Frees the block.</summary>
        /// <returns>whether it was freed</returns>
        protected override bool ReleaseHandle()
        {
            return Kirvo.GlobalFree(handle) == IntPtr.Zero;
        }
    }

    /// <summary>Receives progress messages: in a hidden window, or as the window host.</summary>
    static class KirvoWatcher
    {
        [UnmanagedFunctionPointer(CallingConvention.Winapi)]
        delegate IntPtr WindowFunction(IntPtr window, uint message, UIntPtr command, IntPtr percent);

        [DllImport("user32.dll", ExactSpelling = true, CharSet = CharSet.Unicode)]
        static extern IntPtr CreateWindowExW(uint extendedStyle, string className, string title,
            uint style, int x, int y, int width, int height, IntPtr parent, IntPtr menu,
            IntPtr instance, IntPtr parameter);

        [DllImport("user32.dll", ExactSpelling = true)]
        static extern IntPtr SetWindowLongW(IntPtr window, int index, WindowFunction function);

        [DllImport("user32.dll", ExactSpelling = true)]
        static extern IntPtr SetWindowLongPtrW(IntPtr window, int index, WindowFunction function);

        [DllImport("user32.dll", ExactSpelling = true)]
        static extern IntPtr DefWindowProcW(IntPtr window, uint message, UIntPtr first,
            IntPtr second);

        const uint Command = 1;
        static readonly IntPtr MessagesOnly = new IntPtr(-3);
        const int WindowFunctionIndex = -4;

        static Action<int> watcher;

        // On Windows each thread has a window, so that no other has to fetch its messages.
        [ThreadStatic]
        static IntPtr window;

        // The library keeps addresses of these, which the collector does not see.
        static WindowFunction windowFunction;
        static KirvoWindowHost host;

        internal static void Watch(Action<int> progress)
        {
            watcher = progress;
            if (window == IntPtr.Zero)
                window = OnWindows ? OpenWindow() : OpenHost();
            Kirvo.KirvoSetProcess(window, Command, progress != null ? 1 : 0);
        }

        static bool OnWindows
        {
            get { return Environment.OSVersion.Platform == PlatformID.Win32NT; }
        }

        static IntPtr OpenWindow()
        {
            if (windowFunction == null)
                windowFunction = (receiver, message, first, second) =>
                    message == Kirvo.WM_COMMAND ? Receive(first, second)
                                                : DefWindowProcW(receiver, message, first, second);
            IntPtr hidden = CreateWindowExW(0, "STATIC", null, 0, 0, 0, 0, 0, MessagesOnly,
                IntPtr.Zero, IntPtr.Zero, IntPtr.Zero);
            if (IntPtr.Size == 4)
                SetWindowLongW(hidden, WindowFunctionIndex, windowFunction);
            else
                SetWindowLongPtrW(hidden, WindowFunctionIndex, windowFunction);
            return hidden;
        }

        static IntPtr OpenHost()
        {
            if (host == null)
                host = new KirvoWindowHost
                {
                    SendMessageA = (receiver, message, first, second) => Receive(first, second)
                };
            Kirvo.KirvoSetWindowHost(host);
            return new IntPtr(1);
        }

        static IntPtr Receive(UIntPtr command, IntPtr percent)
        {
            if (command == new UIntPtr(Command) && watcher != null)
                watcher(percent.ToInt32());
            return IntPtr.Zero;
        }
    }
}
