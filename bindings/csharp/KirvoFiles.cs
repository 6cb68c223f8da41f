// KirvoFiles: pictures as people have them, opened into packed DIBs and saved again, for .NET and Mono.
//
// The program needs KirvoFiles.dll and Kirvo.dll on Windows, libkirvofiles.so and libkirvo.so
// elsewhere, and Kirvo.cs. Names go by the functions that end in W; texts arrive as UTF-8.
//
// Written by script/bindings from interface/kirvo_files.txt and kirvo_files.h: changes belong there.

using System;
using System.Runtime.InteropServices;
using System.Text;

namespace KirvoImaging
{
    /// <summary>What a call answers: 0 for success, below 0 for an error.</summary>
    public enum KirvoFilesStatus
    {
        /// <summary>Success.</summary>
        KIRVO_FILES_OK = 0,
        /// <summary>A null pointer, a value out of its range, a structure whose size is none of
        /// this library's, or an image whose block is smaller than its header says.</summary>
        KIRVO_FILES_BAD_PARAMETER = -101,
        /// <summary>Memory could not be allocated, or the picture would have more than 2^31 - 1
        /// bytes.</summary>
        KIRVO_FILES_NO_MEMORY = -102,
        /// <summary>There is no file or folder of that name.</summary>
        KIRVO_FILES_MISSING = -103,
        /// <summary>The name is that of a folder.</summary>
        KIRVO_FILES_IS_FOLDER = -104,
        /// <summary>The system does not permit it.</summary>
        KIRVO_FILES_NO_PERMISSION = -105,
        /// <summary>The file cannot be opened for another reason; the reason's text has the
        /// system's words.</summary>
        KIRVO_FILES_CANNOT_OPEN = -106,
        /// <summary>The system failed to read what is in the file.</summary>
        KIRVO_FILES_READ_ERROR = -107,
        /// <summary>The file cannot be made, written or put into its place.</summary>
        KIRVO_FILES_CANNOT_WRITE = -108,
        /// <summary>The disk is full, or the user's share of it.</summary>
        KIRVO_FILES_DISK_FULL = -109,
        /// <summary>There is a file of that name, and KIRVO_FILES_NEW_ONLY was asked for.</summary>
        KIRVO_FILES_EXISTS = -110,
        /// <summary>The file is empty: it has no bytes at all.</summary>
        KIRVO_FILES_EMPTY = -111,
        /// <summary>The content is no picture of a known format.</summary>
        KIRVO_FILES_NOT_A_PICTURE = -112,
        /// <summary>The picture ends before all of its rows are there.</summary>
        KIRVO_FILES_ENDS_EARLY = -113,
        /// <summary>The picture is damaged.</summary>
        KIRVO_FILES_DAMAGED = -114,
        /// <summary>The format is known, but not this variant of it.</summary>
        KIRVO_FILES_UNSUPPORTED = -115,
        /// <summary>The format is known, but this build or this system has no decoder or encoder
        /// for it.</summary>
        KIRVO_FILES_NO_CODEC = -116,
        /// <summary>The file claims a size out of all proportion to its bytes; see
        /// KIRVO_FILES_NO_LIMITS.</summary>
        KIRVO_FILES_CLAIM_TOO_LARGE = -117,
        /// <summary>The format is not one that is written, or the name does not tell a
        /// format.</summary>
        KIRVO_FILES_NOT_WRITTEN = -118,
        /// <summary>The format has no room for a picture this large; or a file of 2 GB or
        /// more.</summary>
        KIRVO_FILES_TOO_LARGE = -119,
        /// <summary>The picture does not become so small as was asked for.</summary>
        KIRVO_FILES_SIZE_LIMIT = -120,
        /// <summary>A turn without loss would cut or keep an edge, and neither was
        /// allowed.</summary>
        KIRVO_FILES_EDGE = -121,
        /// <summary>A frame was asked for that the file does not have.</summary>
        KIRVO_FILES_NO_FRAME = -122,
        /// <summary>The caller has abandoned the operation through a progress handler of
        /// kirvo.h.</summary>
        KIRVO_FILES_ABANDONED = -123,
    }

    /// <summary>How to open.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct KirvoFilesOpenOptions
    {
        /// <summary>bytes of this structure</summary>
        public uint size;
        /// <summary>KIRVO_FILES_NO_TURN to KIRVO_FILES_BACKGROUND, added</summary>
        public uint flags;
        /// <summary>0x00BBGGRR, with KIRVO_FILES_BACKGROUND; otherwise white</summary>
        public uint background;
        /// <summary>which picture of the file, from 1; 0: of an icon the one with the most pixels,
        /// then the most colours, of other files the first</summary>
        public uint frame;
    }

    /// <summary>A file in numbers.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct KirvoFilesDescription
    {
        /// <summary>bytes of this structure, set by the caller</summary>
        public uint size;
        /// <summary>a #KirvoFilesFormat</summary>
        public int format;
        /// <summary>pixels, of the picture as it opens: turned upright</summary>
        public uint width;
        /// <summary>pixels, likewise</summary>
        public uint height;
        /// <summary>bits of a pixel in the file</summary>
        public uint fileBits;
        /// <summary>1 grey or palette, 2 grey and alpha, 3 colour, 4 and alpha or CMYK</summary>
        public uint channels;
        /// <summary>entries of the file's palette; 0 without one</summary>
        public uint colours;
        /// <summary>bits of a pixel of the picture that was opened; 0 of information</summary>
        public uint dibBits;
        /// <summary>KIRVO_FILES_HAS_ALPHA to KIRVO_FILES_ARITHMETIC, added</summary>
        public uint flags;
        /// <summary>EXIF's 1 to 8; 1 where the file says nothing</summary>
        public uint orientation;
        /// <summary>pictures in the file: frames, pages or images of an icon</summary>
        public uint frames;
        /// <summary>which one this is, from 1</summary>
        public uint frame;
        /// <summary>JPEG: quality 1 to 100 that the tables are nearest to</summary>
        public uint quality;
        /// <summary>JPEG: luma samples for a chroma sample across: 1, 2 or 4</summary>
        public uint sampleAcross;
        /// <summary>JPEG: likewise down</summary>
        public uint sampleDown;
        /// <summary>bytes of the file</summary>
        public uint fileBytes;
        /// <summary>rows that are good, in the order that the file stores them; of a damaged file
        /// there may be fewer</summary>
        public uint wholeRows;
        /// <summary>number of notes</summary>
        public uint notes;
        /// <summary>dots an inch across</summary>
        public double dpiAcross;
        /// <summary>dots an inch down</summary>
        public double dpiDown;
        /// <summary>degrees, north above 0, with KIRVO_FILES_HAS_PLACE</summary>
        public double latitude;
        /// <summary>degrees, east above 0, with KIRVO_FILES_HAS_PLACE</summary>
        public double longitude;
    }

    /// <summary>How to save.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct KirvoFilesSaveOptions
    {
        /// <summary>bytes of this structure</summary>
        public uint size;
        /// <summary>a #KirvoFilesFormat; 0: by the name's extension</summary>
        public int format;
        /// <summary>KIRVO_FILES_STRIP to KIRVO_FILES_FRESH, added</summary>
        public uint flags;
        /// <summary>JPEG and WebP: 1 to 100; 0: of a JPEG from a JPEG the source's tables,
        /// otherwise 90</summary>
        public uint quality;
        /// <summary>JPEG: quality level 1 to 5 of Kirvo's encoder in place of quality; or
        /// 0</summary>
        public uint level;
        /// <summary>JPEG: 1, 2 or 4 as JpgCodSetSubsample; 0: the source's, otherwise 1 from
        /// quality 90 or with level 1, 4 below</summary>
        public uint subsample;
        /// <summary>JPEG and WebP: the best quality (at most the one asked for) whose file has no
        /// more than so many bytes; 0: any</summary>
        public uint sizeLimit;
        /// <summary>BMP, PNG, Targa and TIFF: bits of a pixel, 8, 16, 24 or 32 (16 not for PNG and
        /// TIFF); from palettes to more and between 16, 24 and 32, nothing else; 0: the
        /// image's</summary>
        public uint bits;
        /// <summary>TIFF: a #KirvoFilesCompression</summary>
        public int compression;
        /// <summary>0</summary>
        public uint reserved;
        /// <summary>dots an inch across; 0: the source's</summary>
        public double dpiAcross;
        /// <summary>dots an inch down; 0: the source's</summary>
        public double dpiDown;
    }

    /// <summary>The functions of the second library.</summary>
    public static class KirvoFiles
    {
        const string Library = "KirvoFiles.dll";

        /// <summary>such files can be opened</summary>
        public const int KIRVO_FILES_READS = 1;
        /// <summary>such files can be saved</summary>
        public const int KIRVO_FILES_WRITES = 2;
        /// <summary>none, or to be told by the name</summary>
        public const int KIRVO_FILES_UNKNOWN = 0;
        /// <summary>Windows and OS/2 bitmaps</summary>
        public const int KIRVO_FILES_BMP = 1;
        /// <summary>JPEG</summary>
        public const int KIRVO_FILES_JPEG = 2;
        /// <summary>PNG</summary>
        public const int KIRVO_FILES_PNG = 3;
        /// <summary>Targa</summary>
        public const int KIRVO_FILES_TARGA = 4;
        /// <summary>TIFF</summary>
        public const int KIRVO_FILES_TIFF = 5;
        /// <summary>WebP</summary>
        public const int KIRVO_FILES_WEBP = 6;
        /// <summary>GIF</summary>
        public const int KIRVO_FILES_GIF = 7;
        /// <summary>icons</summary>
        public const int KIRVO_FILES_ICON = 8;
        /// <summary>cursors</summary>
        public const int KIRVO_FILES_CURSOR = 9;
        /// <summary>Q0, with its companion file</summary>
        public const int KIRVO_FILES_Q0 = 10;
        /// <summary>RAW, as RawRead of kirvo.h describes it</summary>
        public const int KIRVO_FILES_RAW = 11;
        /// <summary>Photo CD, with its maker's library</summary>
        public const int KIRVO_FILES_PHOTO_CD = 12;
        /// <summary>HEIC and AVIF, on Windows where the system has a decoder</summary>
        public const int KIRVO_FILES_HEIF = 13;
        /// <summary>cameras' own formats, on Windows where the system has a decoder</summary>
        public const int KIRVO_FILES_CAMERA = 14;
        /// <summary>one above the last</summary>
        public const int KIRVO_FILES_FORMATS = 15;
        /// <summary>"PNG"</summary>
        public const int KIRVO_FILES_FORMAT_NAME = 0;
        /// <summary>"jpg jpeg jpe jfif", the usual one first</summary>
        public const int KIRVO_FILES_FORMAT_EXTENSIONS = 1;
        /// <summary>by what it is read and written: "Kirvo, libjpeg-turbo 2.1.5"</summary>
        public const int KIRVO_FILES_FORMAT_CODEC = 2;
        /// <summary>opening: rows as stored, whatever the EXIF orientation says</summary>
        public const int KIRVO_FILES_NO_TURN = 1;
        /// <summary>opening: a picture with alpha gets 32 bits, alpha on top</summary>
        public const int KIRVO_FILES_KEEP_ALPHA = 2;
        /// <summary>opening: what there is of a damaged or short file</summary>
        public const int KIRVO_FILES_KEEP_GOING = 4;
        /// <summary>opening: claims of any size are believed</summary>
        public const int KIRVO_FILES_NO_LIMITS = 8;
        /// <summary>opening: JPEG by Kirvo's decoder, come what may</summary>
        public const int KIRVO_FILES_KIRVO_ONLY = 16;
        /// <summary>opening: alpha is laid over the options' background</summary>
        public const int KIRVO_FILES_BACKGROUND = 32;
        /// <summary>description: the file's picture has transparency</summary>
        public const int KIRVO_FILES_HAS_ALPHA = 1;
        /// <summary>description: progressive or interlaced</summary>
        public const int KIRVO_FILES_PROGRESSIVE = 2;
        /// <summary>description: the file's coding loses nothing</summary>
        public const int KIRVO_FILES_LOSSLESS = 4;
        /// <summary>description: the file's colours are cyan to black</summary>
        public const int KIRVO_FILES_CMYK = 8;
        /// <summary>description: the file stores its top row first</summary>
        public const int KIRVO_FILES_TOP_DOWN = 16;
        /// <summary>description: latitude and longitude are known</summary>
        public const int KIRVO_FILES_HAS_PLACE = 32;
        /// <summary>description: a JPEG with arithmetic coding</summary>
        public const int KIRVO_FILES_ARITHMETIC = 64;
        /// <summary>there is no such note</summary>
        public const int KIRVO_FILES_NOTE_NONE = 0;
        /// <summary>"ends early: whole to row 320 of 480"</summary>
        public const int KIRVO_FILES_NOTE_ENDS_EARLY = 1;
        /// <summary>a part is damaged, and what is there was taken</summary>
        public const int KIRVO_FILES_NOTE_DAMAGED = 2;
        /// <summary>the headers contradict each other; the pixels are whole</summary>
        public const int KIRVO_FILES_NOTE_REPAIRED = 3;
        /// <summary>"alpha laid over the background"</summary>
        public const int KIRVO_FILES_NOTE_ALPHA = 4;
        /// <summary>"animation: number 1 of 12"</summary>
        public const int KIRVO_FILES_NOTE_FRAMES = 5;
        /// <summary>"16 bits a channel reduced to 8", "CMYK converted"</summary>
        public const int KIRVO_FILES_NOTE_REDUCED = 6;
        /// <summary>"turned upright (orientation 6)"</summary>
        public const int KIRVO_FILES_NOTE_TURNED = 7;
        /// <summary>"decoded by libjpeg-turbo: progressive"</summary>
        public const int KIRVO_FILES_NOTE_DECODER = 8;
        /// <summary>what was taken to save: a level, a quality, an encoder</summary>
        public const int KIRVO_FILES_NOTE_ENCODER = 9;
        /// <summary>"XMP left out: BMP files have no place for it"</summary>
        public const int KIRVO_FILES_NOTE_METADATA = 10;
        /// <summary>anything else</summary>
        public const int KIRVO_FILES_NOTE_TEXT = 11;
        /// <summary>why the call failed, in particular: "photo.jpg: Permission denied", without a
        /// full stop</summary>
        public const int KIRVO_FILES_TEXT_REASON = 0;
        /// <summary>the words of a note</summary>
        public const int KIRVO_FILES_TEXT_NOTE = 1;
        /// <summary>"progressive, YCbCr 4:2:0", "V5 header, RLE8"</summary>
        public const int KIRVO_FILES_TEXT_VARIANT = 2;
        /// <summary>by what it was decoded or encoded: "Kirvo"</summary>
        public const int KIRVO_FILES_TEXT_DECODER = 3;
        /// <summary>maker and model</summary>
        public const int KIRVO_FILES_TEXT_CAMERA = 4;
        /// <summary>the lens</summary>
        public const int KIRVO_FILES_TEXT_LENS = 5;
        /// <summary>when it was taken: "2023-05-01 12:30:00"</summary>
        public const int KIRVO_FILES_TEXT_DATE = 6;
        /// <summary>"1/250 s, f/2.8, ISO 100, 35 mm"</summary>
        public const int KIRVO_FILES_TEXT_EXPOSURE = 7;
        /// <summary>"35.68950, 139.69170"</summary>
        public const int KIRVO_FILES_TEXT_PLACE = 8;
        /// <summary>the ICC profile's name</summary>
        public const int KIRVO_FILES_TEXT_PROFILE = 9;
        /// <summary>what made the file</summary>
        public const int KIRVO_FILES_TEXT_SOFTWARE = 10;
        /// <summary>who made the picture</summary>
        public const int KIRVO_FILES_TEXT_ARTIST = 11;
        /// <summary>whose it is</summary>
        public const int KIRVO_FILES_TEXT_COPYRIGHT = 12;
        /// <summary>what it shows</summary>
        public const int KIRVO_FILES_TEXT_TITLE = 13;
        /// <summary>JPEG: the first comment, in one line</summary>
        public const int KIRVO_FILES_TEXT_COMMENT = 14;
        /// <summary>EXIF, a TIFF structure that begins with II or MM</summary>
        public const int KIRVO_FILES_DATA_EXIF = 0;
        /// <summary>the ICC profile</summary>
        public const int KIRVO_FILES_DATA_ICC = 1;
        /// <summary>XMP, UTF-8 text</summary>
        public const int KIRVO_FILES_DATA_XMP = 2;
        /// <summary>JPEG: up to four quantisation tables one after the other, each 64 numbers of 16
        /// bits, row by row</summary>
        public const int KIRVO_FILES_DATA_QUANTISERS = 3;
        /// <summary>the file's palette, 4 bytes an entry: blue, green, red, 0</summary>
        public const int KIRVO_FILES_DATA_PALETTE = 4;
        /// <summary>JPEG: the first comment</summary>
        public const int KIRVO_FILES_DATA_COMMENT = 5;
        /// <summary>saving: without the metadata that the source came with</summary>
        public const int KIRVO_FILES_STRIP = 1;
        /// <summary>saving: not where there is a file already</summary>
        public const int KIRVO_FILES_NEW_ONLY = 2;
        /// <summary>saving: without colour</summary>
        public const int KIRVO_FILES_GREY = 4;
        /// <summary>saving: the top byte of 32 bits is alpha</summary>
        public const int KIRVO_FILES_WITH_ALPHA = 8;
        /// <summary>saving: Targa with run lengths</summary>
        public const int KIRVO_FILES_RLE = 16;
        /// <summary>saving: WebP without loss</summary>
        public const int KIRVO_FILES_WEBP_LOSSLESS = 32;
        /// <summary>saving: JPEG without the source's tables and sampling</summary>
        public const int KIRVO_FILES_FRESH = 64;
        /// <summary>LZW</summary>
        public const int KIRVO_FILES_COMPRESSION_USUAL = 0;
        /// <summary>none</summary>
        public const int KIRVO_FILES_COMPRESSION_NONE = 1;
        /// <summary>LZW</summary>
        public const int KIRVO_FILES_COMPRESSION_LZW = 2;
        /// <summary>Deflate</summary>
        public const int KIRVO_FILES_COMPRESSION_DEFLATE = 3;
        /// <summary>PackBits</summary>
        public const int KIRVO_FILES_COMPRESSION_PACKBITS = 4;
        /// <summary>as its EXIF orientation says</summary>
        public const int KIRVO_FILES_TURN_UPRIGHT = 0;
        /// <summary>a quarter clockwise</summary>
        public const int KIRVO_FILES_TURN_90 = 1;
        /// <summary>a half</summary>
        public const int KIRVO_FILES_TURN_180 = 2;
        /// <summary>a quarter counter-clockwise</summary>
        public const int KIRVO_FILES_TURN_270 = 3;
        /// <summary>top to bottom</summary>
        public const int KIRVO_FILES_TURN_FLIP = 4;
        /// <summary>left to right</summary>
        public const int KIRVO_FILES_TURN_MIRROR = 5;
        /// <summary>nothing is written; the answer is KIRVO_FILES_EDGE</summary>
        public const int KIRVO_FILES_EDGES_FAIL = 0;
        /// <summary>they are cut off; a note says how much</summary>
        public const int KIRVO_FILES_EDGES_TRIM = 1;
        /// <summary>they stay where they are, unturned; a note says so</summary>
        public const int KIRVO_FILES_EDGES_KEEP = 2;

        // Status codes of KirvoFiles

        /// <summary>A status in words, in English: one phrase without a full stop.</summary>
        /// <param name="status">a status of this library or of kirvo.h</param>
        /// <param name="text">receives as much as fits with a zero byte; may be null</param>
        /// <param name="capacity">bytes of text</param>
        /// <returns>bytes that the whole text takes with its zero byte</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern uint KirvoFilesStatusText(int status, [Out] byte[] text,
            uint capacity);

        // Formats

        /// <summary>What can be done with a format in this build, on this system.</summary>
        /// <param name="format">a #KirvoFilesFormat</param>
        /// <returns>KIRVO_FILES_READS and KIRVO_FILES_WRITES, or 0</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern uint KirvoFilesAbilities(int format);

        /// <summary>A word about a format.</summary>
        /// <param name="format">a #KirvoFilesFormat</param>
        /// <param name="word">a #KirvoFilesFormatWord</param>
        /// <param name="text">receives as much as fits with a zero byte; may be null</param>
        /// <param name="capacity">bytes of text</param>
        /// <returns>bytes that the whole text takes with its zero byte; 1 where there is nothing to
        /// say</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern uint KirvoFilesFormatText(int format, int word, [Out] byte[] text,
            uint capacity);

        /// <summary>The format that a name tells.</summary>
        /// <param name="name">a file's name or an extension alone, "photo.JPG", ".jpg" or "jpg", in
        /// any case</param>
        /// <returns>a #KirvoFilesFormat, or KIRVO_FILES_UNKNOWN</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern int KirvoFilesFormatOf(byte[] name);

        // Open and inform

        /// <summary>Opens a picture, whatever its format.</summary>
        /// <remarks>The depth follows the file: 1, 4 and 8 bits for palettes of as many colours and
        /// for grey, 16 for BMP and Targa files of 5-5-5 or 5-6-5 bits, 24 for colour, 32 for BMP
        /// and Targa files of 32 bits without alpha, and for pictures with alpha under
        /// KIRVO_FILES_KEEP_ALPHA. The three masks of 32 bits are 0x00FF0000, 0x0000FF00 and
        /// 0x000000FF; the top byte is alpha (255 opaque, not multiplied into the colours) or 0.
        /// Without that flag alpha is laid over the background: of true colour the result has 24
        /// bits; a transparent entry of a palette becomes the mixed colour. Icons and cursors have
        /// 24 bits, or 32 with their alpha or mask under that flag. More than 8 bits of a channel
        /// are reduced to 8; CMYK becomes RGB without a profile. A note tells each of these. A
        /// baseline JPEG that Kirvo's decoder is made for is decoded by it, one of 12 bits a
        /// channel by this library, every other by libjpeg-turbo or the system. A picture that ends
        /// early or is damaged is refused with KIRVO_FILES_ENDS_EARLY or KIRVO_FILES_DAMAGED; with
        /// KIRVO_FILES_KEEP_GOING it opens with a note, and KirvoFilesDescription.wholeRows says
        /// how much of it is good. A claim is too large when the picture would take more than 64 MB
        /// and more than 1500 bytes of it for each byte of the file, more than any of the formats
        /// packs real pictures into; or more than 2^31 - 1 bytes at all, which no flag allows.
        /// Files of 2 GB and more are not read.</remarks>
        /// <param name="name">the file</param>
        /// <param name="options">how; may be null</param>
        /// <param name="dib">receives the picture, owned by the caller (GlobalFree); null on
        /// failure</param>
        /// <param name="file">receives what is known of the file, also on failure (then at least
        /// KIRVO_FILES_TEXT_REASON), or null when there is no memory; may be null</param>
        /// <returns>KIRVO_FILES_OK; KIRVO_FILES_BAD_PARAMETER; KIRVO_FILES_NO_MEMORY;
        /// KIRVO_FILES_MISSING; KIRVO_FILES_IS_FOLDER; KIRVO_FILES_NO_PERMISSION;
        /// KIRVO_FILES_CANNOT_OPEN; KIRVO_FILES_READ_ERROR; KIRVO_FILES_EMPTY;
        /// KIRVO_FILES_NOT_A_PICTURE; KIRVO_FILES_ENDS_EARLY; KIRVO_FILES_DAMAGED;
        /// KIRVO_FILES_UNSUPPORTED; KIRVO_FILES_NO_CODEC; KIRVO_FILES_CLAIM_TOO_LARGE;
        /// KIRVO_FILES_NO_FRAME; KIRVO_FILES_TOO_LARGE for a file of 2 GB and more, or one with a
        /// profile or text of much more than a picture needs; KIRVO_FILES_ABANDONED</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesOpen(byte[] name,
            [In] ref KirvoFilesOpenOptions options, out IntPtr dib, out IntPtr file);

        /// <summary>Opens a picture, whatever its format.</summary>
        /// <remarks>The depth follows the file: 1, 4 and 8 bits for palettes of as many colours and
        /// for grey, 16 for BMP and Targa files of 5-5-5 or 5-6-5 bits, 24 for colour, 32 for BMP
        /// and Targa files of 32 bits without alpha, and for pictures with alpha under
        /// KIRVO_FILES_KEEP_ALPHA. The three masks of 32 bits are 0x00FF0000, 0x0000FF00 and
        /// 0x000000FF; the top byte is alpha (255 opaque, not multiplied into the colours) or 0.
        /// Without that flag alpha is laid over the background: of true colour the result has 24
        /// bits; a transparent entry of a palette becomes the mixed colour. Icons and cursors have
        /// 24 bits, or 32 with their alpha or mask under that flag. More than 8 bits of a channel
        /// are reduced to 8; CMYK becomes RGB without a profile. A note tells each of these. A
        /// baseline JPEG that Kirvo's decoder is made for is decoded by it, one of 12 bits a
        /// channel by this library, every other by libjpeg-turbo or the system. A picture that ends
        /// early or is damaged is refused with KIRVO_FILES_ENDS_EARLY or KIRVO_FILES_DAMAGED; with
        /// KIRVO_FILES_KEEP_GOING it opens with a note, and KirvoFilesDescription.wholeRows says
        /// how much of it is good. A claim is too large when the picture would take more than 64 MB
        /// and more than 1500 bytes of it for each byte of the file, more than any of the formats
        /// packs real pictures into; or more than 2^31 - 1 bytes at all, which no flag allows.
        /// Files of 2 GB and more are not read.</remarks>
        /// <param name="name">the file</param>
        /// <param name="options">how; may be null</param>
        /// <param name="dib">receives the picture, owned by the caller (GlobalFree); null on
        /// failure</param>
        /// <param name="file">receives what is known of the file, also on failure (then at least
        /// KIRVO_FILES_TEXT_REASON), or null when there is no memory; may be null</param>
        /// <returns>KIRVO_FILES_OK; KIRVO_FILES_BAD_PARAMETER; KIRVO_FILES_NO_MEMORY;
        /// KIRVO_FILES_MISSING; KIRVO_FILES_IS_FOLDER; KIRVO_FILES_NO_PERMISSION;
        /// KIRVO_FILES_CANNOT_OPEN; KIRVO_FILES_READ_ERROR; KIRVO_FILES_EMPTY;
        /// KIRVO_FILES_NOT_A_PICTURE; KIRVO_FILES_ENDS_EARLY; KIRVO_FILES_DAMAGED;
        /// KIRVO_FILES_UNSUPPORTED; KIRVO_FILES_NO_CODEC; KIRVO_FILES_CLAIM_TOO_LARGE;
        /// KIRVO_FILES_NO_FRAME; KIRVO_FILES_TOO_LARGE for a file of 2 GB and more, or one with a
        /// profile or text of much more than a picture needs; KIRVO_FILES_ABANDONED</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesOpen(byte[] name,
            [In] ref KirvoFilesOpenOptions options, out IntPtr dib, IntPtr file);

        /// <summary>Opens a picture, whatever its format.</summary>
        /// <remarks>The depth follows the file: 1, 4 and 8 bits for palettes of as many colours and
        /// for grey, 16 for BMP and Targa files of 5-5-5 or 5-6-5 bits, 24 for colour, 32 for BMP
        /// and Targa files of 32 bits without alpha, and for pictures with alpha under
        /// KIRVO_FILES_KEEP_ALPHA. The three masks of 32 bits are 0x00FF0000, 0x0000FF00 and
        /// 0x000000FF; the top byte is alpha (255 opaque, not multiplied into the colours) or 0.
        /// Without that flag alpha is laid over the background: of true colour the result has 24
        /// bits; a transparent entry of a palette becomes the mixed colour. Icons and cursors have
        /// 24 bits, or 32 with their alpha or mask under that flag. More than 8 bits of a channel
        /// are reduced to 8; CMYK becomes RGB without a profile. A note tells each of these. A
        /// baseline JPEG that Kirvo's decoder is made for is decoded by it, one of 12 bits a
        /// channel by this library, every other by libjpeg-turbo or the system. A picture that ends
        /// early or is damaged is refused with KIRVO_FILES_ENDS_EARLY or KIRVO_FILES_DAMAGED; with
        /// KIRVO_FILES_KEEP_GOING it opens with a note, and KirvoFilesDescription.wholeRows says
        /// how much of it is good. A claim is too large when the picture would take more than 64 MB
        /// and more than 1500 bytes of it for each byte of the file, more than any of the formats
        /// packs real pictures into; or more than 2^31 - 1 bytes at all, which no flag allows.
        /// Files of 2 GB and more are not read.</remarks>
        /// <param name="name">the file</param>
        /// <param name="options">how; may be null</param>
        /// <param name="dib">receives the picture, owned by the caller (GlobalFree); null on
        /// failure</param>
        /// <param name="file">receives what is known of the file, also on failure (then at least
        /// KIRVO_FILES_TEXT_REASON), or null when there is no memory; may be null</param>
        /// <returns>KIRVO_FILES_OK; KIRVO_FILES_BAD_PARAMETER; KIRVO_FILES_NO_MEMORY;
        /// KIRVO_FILES_MISSING; KIRVO_FILES_IS_FOLDER; KIRVO_FILES_NO_PERMISSION;
        /// KIRVO_FILES_CANNOT_OPEN; KIRVO_FILES_READ_ERROR; KIRVO_FILES_EMPTY;
        /// KIRVO_FILES_NOT_A_PICTURE; KIRVO_FILES_ENDS_EARLY; KIRVO_FILES_DAMAGED;
        /// KIRVO_FILES_UNSUPPORTED; KIRVO_FILES_NO_CODEC; KIRVO_FILES_CLAIM_TOO_LARGE;
        /// KIRVO_FILES_NO_FRAME; KIRVO_FILES_TOO_LARGE for a file of 2 GB and more, or one with a
        /// profile or text of much more than a picture needs; KIRVO_FILES_ABANDONED</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesOpen(byte[] name, IntPtr options,
            out IntPtr dib, out IntPtr file);

        /// <summary>Opens a picture, whatever its format.</summary>
        /// <remarks>The depth follows the file: 1, 4 and 8 bits for palettes of as many colours and
        /// for grey, 16 for BMP and Targa files of 5-5-5 or 5-6-5 bits, 24 for colour, 32 for BMP
        /// and Targa files of 32 bits without alpha, and for pictures with alpha under
        /// KIRVO_FILES_KEEP_ALPHA. The three masks of 32 bits are 0x00FF0000, 0x0000FF00 and
        /// 0x000000FF; the top byte is alpha (255 opaque, not multiplied into the colours) or 0.
        /// Without that flag alpha is laid over the background: of true colour the result has 24
        /// bits; a transparent entry of a palette becomes the mixed colour. Icons and cursors have
        /// 24 bits, or 32 with their alpha or mask under that flag. More than 8 bits of a channel
        /// are reduced to 8; CMYK becomes RGB without a profile. A note tells each of these. A
        /// baseline JPEG that Kirvo's decoder is made for is decoded by it, one of 12 bits a
        /// channel by this library, every other by libjpeg-turbo or the system. A picture that ends
        /// early or is damaged is refused with KIRVO_FILES_ENDS_EARLY or KIRVO_FILES_DAMAGED; with
        /// KIRVO_FILES_KEEP_GOING it opens with a note, and KirvoFilesDescription.wholeRows says
        /// how much of it is good. A claim is too large when the picture would take more than 64 MB
        /// and more than 1500 bytes of it for each byte of the file, more than any of the formats
        /// packs real pictures into; or more than 2^31 - 1 bytes at all, which no flag allows.
        /// Files of 2 GB and more are not read.</remarks>
        /// <param name="name">the file</param>
        /// <param name="options">how; may be null</param>
        /// <param name="dib">receives the picture, owned by the caller (GlobalFree); null on
        /// failure</param>
        /// <param name="file">receives what is known of the file, also on failure (then at least
        /// KIRVO_FILES_TEXT_REASON), or null when there is no memory; may be null</param>
        /// <returns>KIRVO_FILES_OK; KIRVO_FILES_BAD_PARAMETER; KIRVO_FILES_NO_MEMORY;
        /// KIRVO_FILES_MISSING; KIRVO_FILES_IS_FOLDER; KIRVO_FILES_NO_PERMISSION;
        /// KIRVO_FILES_CANNOT_OPEN; KIRVO_FILES_READ_ERROR; KIRVO_FILES_EMPTY;
        /// KIRVO_FILES_NOT_A_PICTURE; KIRVO_FILES_ENDS_EARLY; KIRVO_FILES_DAMAGED;
        /// KIRVO_FILES_UNSUPPORTED; KIRVO_FILES_NO_CODEC; KIRVO_FILES_CLAIM_TOO_LARGE;
        /// KIRVO_FILES_NO_FRAME; KIRVO_FILES_TOO_LARGE for a file of 2 GB and more, or one with a
        /// profile or text of much more than a picture needs; KIRVO_FILES_ABANDONED</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesOpen(byte[] name, IntPtr options,
            out IntPtr dib, IntPtr file);

        /// <summary>KirvoFilesOpen with a UTF-16 name.</summary>
        /// <param name="name">the file</param>
        /// <param name="options">how; may be null</param>
        /// <param name="dib">receives the picture</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesOpen</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesOpenW(
            [MarshalAs(UnmanagedType.LPWStr)] string name, [In] ref KirvoFilesOpenOptions options,
            out IntPtr dib, out IntPtr file);

        /// <summary>KirvoFilesOpen with a UTF-16 name.</summary>
        /// <param name="name">the file</param>
        /// <param name="options">how; may be null</param>
        /// <param name="dib">receives the picture</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesOpen</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesOpenW(
            [MarshalAs(UnmanagedType.LPWStr)] string name, [In] ref KirvoFilesOpenOptions options,
            out IntPtr dib, IntPtr file);

        /// <summary>KirvoFilesOpen with a UTF-16 name.</summary>
        /// <param name="name">the file</param>
        /// <param name="options">how; may be null</param>
        /// <param name="dib">receives the picture</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesOpen</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesOpenW(
            [MarshalAs(UnmanagedType.LPWStr)] string name, IntPtr options, out IntPtr dib,
            out IntPtr file);

        /// <summary>KirvoFilesOpen with a UTF-16 name.</summary>
        /// <param name="name">the file</param>
        /// <param name="options">how; may be null</param>
        /// <param name="dib">receives the picture</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesOpen</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesOpenW(
            [MarshalAs(UnmanagedType.LPWStr)] string name, IntPtr options, out IntPtr dib,
            IntPtr file);

        /// <summary>KirvoFilesOpen of a file that is in memory.</summary>
        /// <remarks>Q0, RAW and Photo CD files need a name and are no pictures here.</remarks>
        /// <param name="bytes">the file's content, which is not kept</param>
        /// <param name="count">number of bytes</param>
        /// <param name="options">how; may be null</param>
        /// <param name="dib">receives the picture</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesOpen</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesOpenMemory([In] byte[] bytes, uint count,
            [In] ref KirvoFilesOpenOptions options, out IntPtr dib, out IntPtr file);

        /// <summary>KirvoFilesOpen of a file that is in memory.</summary>
        /// <remarks>Q0, RAW and Photo CD files need a name and are no pictures here.</remarks>
        /// <param name="bytes">the file's content, which is not kept</param>
        /// <param name="count">number of bytes</param>
        /// <param name="options">how; may be null</param>
        /// <param name="dib">receives the picture</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesOpen</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesOpenMemory([In] byte[] bytes, uint count,
            [In] ref KirvoFilesOpenOptions options, out IntPtr dib, IntPtr file);

        /// <summary>KirvoFilesOpen of a file that is in memory.</summary>
        /// <remarks>Q0, RAW and Photo CD files need a name and are no pictures here.</remarks>
        /// <param name="bytes">the file's content, which is not kept</param>
        /// <param name="count">number of bytes</param>
        /// <param name="options">how; may be null</param>
        /// <param name="dib">receives the picture</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesOpen</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesOpenMemory([In] byte[] bytes, uint count,
            IntPtr options, out IntPtr dib, out IntPtr file);

        /// <summary>KirvoFilesOpen of a file that is in memory.</summary>
        /// <remarks>Q0, RAW and Photo CD files need a name and are no pictures here.</remarks>
        /// <param name="bytes">the file's content, which is not kept</param>
        /// <param name="count">number of bytes</param>
        /// <param name="options">how; may be null</param>
        /// <param name="dib">receives the picture</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesOpen</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesOpenMemory([In] byte[] bytes, uint count,
            IntPtr options, out IntPtr dib, IntPtr file);

        /// <summary>What the headers of a file say.</summary>
        /// <remarks>Nothing is decoded, whatever size is claimed, and no memory is taken for
        /// pixels.</remarks>
        /// <param name="name">the file</param>
        /// <param name="options">how; only frame counts, and KIRVO_FILES_NO_TURN for the order of
        /// width and height; may be null</param>
        /// <param name="file">receives what is known, also on failure, or null when there is no
        /// memory</param>
        /// <returns>as KirvoFilesOpen without what only decoding finds out</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesInfo(byte[] name,
            [In] ref KirvoFilesOpenOptions options, out IntPtr file);

        /// <summary>What the headers of a file say.</summary>
        /// <remarks>Nothing is decoded, whatever size is claimed, and no memory is taken for
        /// pixels.</remarks>
        /// <param name="name">the file</param>
        /// <param name="options">how; only frame counts, and KIRVO_FILES_NO_TURN for the order of
        /// width and height; may be null</param>
        /// <param name="file">receives what is known, also on failure, or null when there is no
        /// memory</param>
        /// <returns>as KirvoFilesOpen without what only decoding finds out</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesInfo(byte[] name, IntPtr options,
            out IntPtr file);

        /// <summary>KirvoFilesInfo with a UTF-16 name.</summary>
        /// <param name="name">the file</param>
        /// <param name="options">how; may be null</param>
        /// <param name="file">receives what is known</param>
        /// <returns>as KirvoFilesInfo</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesInfoW(
            [MarshalAs(UnmanagedType.LPWStr)] string name, [In] ref KirvoFilesOpenOptions options,
            out IntPtr file);

        /// <summary>KirvoFilesInfo with a UTF-16 name.</summary>
        /// <param name="name">the file</param>
        /// <param name="options">how; may be null</param>
        /// <param name="file">receives what is known</param>
        /// <returns>as KirvoFilesInfo</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesInfoW(
            [MarshalAs(UnmanagedType.LPWStr)] string name, IntPtr options, out IntPtr file);

        /// <summary>KirvoFilesInfo of a file that is in memory.</summary>
        /// <param name="bytes">the file's content, which is not kept</param>
        /// <param name="count">number of bytes</param>
        /// <param name="options">how; may be null</param>
        /// <param name="file">receives what is known</param>
        /// <returns>as KirvoFilesInfo</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesInfoMemory([In] byte[] bytes, uint count,
            [In] ref KirvoFilesOpenOptions options, out IntPtr file);

        /// <summary>KirvoFilesInfo of a file that is in memory.</summary>
        /// <param name="bytes">the file's content, which is not kept</param>
        /// <param name="count">number of bytes</param>
        /// <param name="options">how; may be null</param>
        /// <param name="file">receives what is known</param>
        /// <returns>as KirvoFilesInfo</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesInfoMemory([In] byte[] bytes, uint count,
            IntPtr options, out IntPtr file);

        /// <summary>Frees what is known of a file.</summary>
        /// <param name="file">the handle; may be null</param>
        [DllImport(Library, ExactSpelling = true)]
        public static extern void KirvoFilesClose(IntPtr file);

        // What is known of a file

        /// <summary>A file in numbers.</summary>
        /// <param name="file">what is known of it</param>
        /// <param name="description">its size is set by the caller, the rest is written</param>
        /// <returns>KIRVO_FILES_OK, or KIRVO_FILES_BAD_PARAMETER</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesDescribe(IntPtr file,
            ref KirvoFilesDescription description);

        /// <summary>What a note is about; its words are KirvoFilesText with
        /// KIRVO_FILES_TEXT_NOTE.</summary>
        /// <param name="file">what is known of a file</param>
        /// <param name="index">from 0 to KirvoFilesDescription.notes - 1</param>
        /// <returns>a #KirvoFilesNoteKind; KIRVO_FILES_NOTE_NONE for another index</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern int KirvoFilesNote(IntPtr file, uint index);

        /// <summary>A text about a file.</summary>
        /// <param name="file">what is known of it</param>
        /// <param name="kind">a #KirvoFilesTextKind</param>
        /// <param name="index">which note, from 0, with KIRVO_FILES_TEXT_NOTE; otherwise 0</param>
        /// <param name="text">receives as much as fits with a zero byte, never half a character;
        /// may be null</param>
        /// <param name="capacity">bytes of text</param>
        /// <returns>bytes that the whole text takes with its zero byte; 1 where there is nothing to
        /// say</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern uint KirvoFilesText(IntPtr file, int kind, uint index,
            [Out] byte[] text, uint capacity);

        /// <summary>Bytes that come with a file.</summary>
        /// <param name="file">what is known of it</param>
        /// <param name="kind">a #KirvoFilesDataKind</param>
        /// <param name="bytes">receives as many as fit; may be null</param>
        /// <param name="capacity">room in bytes</param>
        /// <returns>how many there are; 0 for none</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern uint KirvoFilesData(IntPtr file, int kind, [Out] byte[] bytes,
            uint capacity);

        /// <summary>Gives a file's metadata other bytes, to be saved with a picture, also where the
        /// rest of its metadata is not (KIRVO_FILES_STRIP): EXIF, an ICC profile, XMP or a JPEG
        /// comment.</summary>
        /// <param name="file">what is known of a file; where it is null, a new one is made, which
        /// knows nothing else</param>
        /// <param name="kind">KIRVO_FILES_DATA_EXIF, KIRVO_FILES_DATA_ICC, KIRVO_FILES_DATA_XMP or
        /// KIRVO_FILES_DATA_COMMENT</param>
        /// <param name="bytes">copied; may be null with count 0</param>
        /// <param name="count">number of bytes; 0 takes away what there was</param>
        /// <returns>KIRVO_FILES_OK; KIRVO_FILES_BAD_PARAMETER; KIRVO_FILES_NO_MEMORY</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesSetData(ref IntPtr file, int kind,
            [In] byte[] bytes, uint count);

        // Save

        /// <summary>Saves a picture as a file, complete or not at all.</summary>
        /// <remarks>It is written beside its place under a name of its own that nobody else can
        /// open, and put into its place when it is complete and safe on the disk. A file that is
        /// replaced hands on its permissions; where the name is a link, what it points at is
        /// replaced and the link stays. With a source, its EXIF (orientation set to 1 where it was
        /// turned, thumbnail dropped, sizes updated), ICC profile, XMP and resolution go along
        /// where the format has a place; a note tells what was left out. A JPEG of a JPEG keeps the
        /// source's quantisation tables and sampling unless quality, level or subsample say
        /// otherwise. JPEG is encoded by Kirvo where it can; where not (a grey stream that outgrows
        /// Kirvo's block, tables of 16 bits), another way is taken and noted. Formats: BMP 1 to 32
        /// bits; JPEG; PNG 1, 4, 8, 24 bits and 32 with alpha; Targa 8 bits, 16, 24 and 32, with
        /// KIRVO_FILES_RLE packed; TIFF 1 to 32 bits; WebP 24 bits and 32 with alpha. A picture of
        /// a depth that the format does not have goes into the next larger one. JPEG and formats
        /// without alpha save the colours alone; a note says so where there was alpha.</remarks>
        /// <param name="name">the file</param>
        /// <param name="dib">packed DIB of 1, 4, 8, 16, 24 or 32 bits</param>
        /// <param name="source">what is known of the file that the picture came from; may be
        /// null</param>
        /// <param name="options">how; may be null</param>
        /// <param name="file">receives what is known of the file written (notes, format, decoder,
        /// fileBytes), also on failure, or null when there is no memory; may be null</param>
        /// <returns>KIRVO_FILES_OK; KIRVO_FILES_BAD_PARAMETER; KIRVO_FILES_NO_MEMORY;
        /// KIRVO_FILES_MISSING for a folder that is not there; KIRVO_FILES_IS_FOLDER;
        /// KIRVO_FILES_NO_PERMISSION; KIRVO_FILES_CANNOT_WRITE; KIRVO_FILES_DISK_FULL;
        /// KIRVO_FILES_EXISTS; KIRVO_FILES_NO_CODEC; KIRVO_FILES_NOT_WRITTEN;
        /// KIRVO_FILES_TOO_LARGE; KIRVO_FILES_SIZE_LIMIT; KIRVO_FILES_UNSUPPORTED for a depth;
        /// KIRVO_FILES_ABANDONED. Nothing but KIRVO_FILES_OK changes any file</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesSave(byte[] name, IntPtr dib, IntPtr source,
            [In] ref KirvoFilesSaveOptions options, out IntPtr file);

        /// <summary>Saves a picture as a file, complete or not at all.</summary>
        /// <remarks>It is written beside its place under a name of its own that nobody else can
        /// open, and put into its place when it is complete and safe on the disk. A file that is
        /// replaced hands on its permissions; where the name is a link, what it points at is
        /// replaced and the link stays. With a source, its EXIF (orientation set to 1 where it was
        /// turned, thumbnail dropped, sizes updated), ICC profile, XMP and resolution go along
        /// where the format has a place; a note tells what was left out. A JPEG of a JPEG keeps the
        /// source's quantisation tables and sampling unless quality, level or subsample say
        /// otherwise. JPEG is encoded by Kirvo where it can; where not (a grey stream that outgrows
        /// Kirvo's block, tables of 16 bits), another way is taken and noted. Formats: BMP 1 to 32
        /// bits; JPEG; PNG 1, 4, 8, 24 bits and 32 with alpha; Targa 8 bits, 16, 24 and 32, with
        /// KIRVO_FILES_RLE packed; TIFF 1 to 32 bits; WebP 24 bits and 32 with alpha. A picture of
        /// a depth that the format does not have goes into the next larger one. JPEG and formats
        /// without alpha save the colours alone; a note says so where there was alpha.</remarks>
        /// <param name="name">the file</param>
        /// <param name="dib">packed DIB of 1, 4, 8, 16, 24 or 32 bits</param>
        /// <param name="source">what is known of the file that the picture came from; may be
        /// null</param>
        /// <param name="options">how; may be null</param>
        /// <param name="file">receives what is known of the file written (notes, format, decoder,
        /// fileBytes), also on failure, or null when there is no memory; may be null</param>
        /// <returns>KIRVO_FILES_OK; KIRVO_FILES_BAD_PARAMETER; KIRVO_FILES_NO_MEMORY;
        /// KIRVO_FILES_MISSING for a folder that is not there; KIRVO_FILES_IS_FOLDER;
        /// KIRVO_FILES_NO_PERMISSION; KIRVO_FILES_CANNOT_WRITE; KIRVO_FILES_DISK_FULL;
        /// KIRVO_FILES_EXISTS; KIRVO_FILES_NO_CODEC; KIRVO_FILES_NOT_WRITTEN;
        /// KIRVO_FILES_TOO_LARGE; KIRVO_FILES_SIZE_LIMIT; KIRVO_FILES_UNSUPPORTED for a depth;
        /// KIRVO_FILES_ABANDONED. Nothing but KIRVO_FILES_OK changes any file</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesSave(byte[] name, IntPtr dib, IntPtr source,
            [In] ref KirvoFilesSaveOptions options, IntPtr file);

        /// <summary>Saves a picture as a file, complete or not at all.</summary>
        /// <remarks>It is written beside its place under a name of its own that nobody else can
        /// open, and put into its place when it is complete and safe on the disk. A file that is
        /// replaced hands on its permissions; where the name is a link, what it points at is
        /// replaced and the link stays. With a source, its EXIF (orientation set to 1 where it was
        /// turned, thumbnail dropped, sizes updated), ICC profile, XMP and resolution go along
        /// where the format has a place; a note tells what was left out. A JPEG of a JPEG keeps the
        /// source's quantisation tables and sampling unless quality, level or subsample say
        /// otherwise. JPEG is encoded by Kirvo where it can; where not (a grey stream that outgrows
        /// Kirvo's block, tables of 16 bits), another way is taken and noted. Formats: BMP 1 to 32
        /// bits; JPEG; PNG 1, 4, 8, 24 bits and 32 with alpha; Targa 8 bits, 16, 24 and 32, with
        /// KIRVO_FILES_RLE packed; TIFF 1 to 32 bits; WebP 24 bits and 32 with alpha. A picture of
        /// a depth that the format does not have goes into the next larger one. JPEG and formats
        /// without alpha save the colours alone; a note says so where there was alpha.</remarks>
        /// <param name="name">the file</param>
        /// <param name="dib">packed DIB of 1, 4, 8, 16, 24 or 32 bits</param>
        /// <param name="source">what is known of the file that the picture came from; may be
        /// null</param>
        /// <param name="options">how; may be null</param>
        /// <param name="file">receives what is known of the file written (notes, format, decoder,
        /// fileBytes), also on failure, or null when there is no memory; may be null</param>
        /// <returns>KIRVO_FILES_OK; KIRVO_FILES_BAD_PARAMETER; KIRVO_FILES_NO_MEMORY;
        /// KIRVO_FILES_MISSING for a folder that is not there; KIRVO_FILES_IS_FOLDER;
        /// KIRVO_FILES_NO_PERMISSION; KIRVO_FILES_CANNOT_WRITE; KIRVO_FILES_DISK_FULL;
        /// KIRVO_FILES_EXISTS; KIRVO_FILES_NO_CODEC; KIRVO_FILES_NOT_WRITTEN;
        /// KIRVO_FILES_TOO_LARGE; KIRVO_FILES_SIZE_LIMIT; KIRVO_FILES_UNSUPPORTED for a depth;
        /// KIRVO_FILES_ABANDONED. Nothing but KIRVO_FILES_OK changes any file</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesSave(byte[] name, IntPtr dib, IntPtr source,
            IntPtr options, out IntPtr file);

        /// <summary>Saves a picture as a file, complete or not at all.</summary>
        /// <remarks>It is written beside its place under a name of its own that nobody else can
        /// open, and put into its place when it is complete and safe on the disk. A file that is
        /// replaced hands on its permissions; where the name is a link, what it points at is
        /// replaced and the link stays. With a source, its EXIF (orientation set to 1 where it was
        /// turned, thumbnail dropped, sizes updated), ICC profile, XMP and resolution go along
        /// where the format has a place; a note tells what was left out. A JPEG of a JPEG keeps the
        /// source's quantisation tables and sampling unless quality, level or subsample say
        /// otherwise. JPEG is encoded by Kirvo where it can; where not (a grey stream that outgrows
        /// Kirvo's block, tables of 16 bits), another way is taken and noted. Formats: BMP 1 to 32
        /// bits; JPEG; PNG 1, 4, 8, 24 bits and 32 with alpha; Targa 8 bits, 16, 24 and 32, with
        /// KIRVO_FILES_RLE packed; TIFF 1 to 32 bits; WebP 24 bits and 32 with alpha. A picture of
        /// a depth that the format does not have goes into the next larger one. JPEG and formats
        /// without alpha save the colours alone; a note says so where there was alpha.</remarks>
        /// <param name="name">the file</param>
        /// <param name="dib">packed DIB of 1, 4, 8, 16, 24 or 32 bits</param>
        /// <param name="source">what is known of the file that the picture came from; may be
        /// null</param>
        /// <param name="options">how; may be null</param>
        /// <param name="file">receives what is known of the file written (notes, format, decoder,
        /// fileBytes), also on failure, or null when there is no memory; may be null</param>
        /// <returns>KIRVO_FILES_OK; KIRVO_FILES_BAD_PARAMETER; KIRVO_FILES_NO_MEMORY;
        /// KIRVO_FILES_MISSING for a folder that is not there; KIRVO_FILES_IS_FOLDER;
        /// KIRVO_FILES_NO_PERMISSION; KIRVO_FILES_CANNOT_WRITE; KIRVO_FILES_DISK_FULL;
        /// KIRVO_FILES_EXISTS; KIRVO_FILES_NO_CODEC; KIRVO_FILES_NOT_WRITTEN;
        /// KIRVO_FILES_TOO_LARGE; KIRVO_FILES_SIZE_LIMIT; KIRVO_FILES_UNSUPPORTED for a depth;
        /// KIRVO_FILES_ABANDONED. Nothing but KIRVO_FILES_OK changes any file</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesSave(byte[] name, IntPtr dib, IntPtr source,
            IntPtr options, IntPtr file);

        /// <summary>KirvoFilesSave with a UTF-16 name.</summary>
        /// <param name="name">the file</param>
        /// <param name="dib">the picture</param>
        /// <param name="source">where it came from; may be null</param>
        /// <param name="options">how; may be null</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesSave</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesSaveW(
            [MarshalAs(UnmanagedType.LPWStr)] string name, IntPtr dib, IntPtr source,
            [In] ref KirvoFilesSaveOptions options, out IntPtr file);

        /// <summary>KirvoFilesSave with a UTF-16 name.</summary>
        /// <param name="name">the file</param>
        /// <param name="dib">the picture</param>
        /// <param name="source">where it came from; may be null</param>
        /// <param name="options">how; may be null</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesSave</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesSaveW(
            [MarshalAs(UnmanagedType.LPWStr)] string name, IntPtr dib, IntPtr source,
            [In] ref KirvoFilesSaveOptions options, IntPtr file);

        /// <summary>KirvoFilesSave with a UTF-16 name.</summary>
        /// <param name="name">the file</param>
        /// <param name="dib">the picture</param>
        /// <param name="source">where it came from; may be null</param>
        /// <param name="options">how; may be null</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesSave</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesSaveW(
            [MarshalAs(UnmanagedType.LPWStr)] string name, IntPtr dib, IntPtr source,
            IntPtr options, out IntPtr file);

        /// <summary>KirvoFilesSave with a UTF-16 name.</summary>
        /// <param name="name">the file</param>
        /// <param name="dib">the picture</param>
        /// <param name="source">where it came from; may be null</param>
        /// <param name="options">how; may be null</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesSave</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesSaveW(
            [MarshalAs(UnmanagedType.LPWStr)] string name, IntPtr dib, IntPtr source,
            IntPtr options, IntPtr file);

        /// <summary>Saves a picture into a block of memory.</summary>
        /// <param name="dib">the picture</param>
        /// <param name="source">where it came from; may be null</param>
        /// <param name="options">how; the format has to be told</param>
        /// <param name="block">receives the file's bytes, owned by the caller (GlobalFree), and no
        /// others: GlobalSize may be a little more; null on failure</param>
        /// <param name="count">receives the number of bytes</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesSave, without what concerns files</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesSaveMemory(IntPtr dib, IntPtr source,
            [In] ref KirvoFilesSaveOptions options, out IntPtr block, out uint count,
            out IntPtr file);

        /// <summary>Saves a picture into a block of memory.</summary>
        /// <param name="dib">the picture</param>
        /// <param name="source">where it came from; may be null</param>
        /// <param name="options">how; the format has to be told</param>
        /// <param name="block">receives the file's bytes, owned by the caller (GlobalFree), and no
        /// others: GlobalSize may be a little more; null on failure</param>
        /// <param name="count">receives the number of bytes</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesSave, without what concerns files</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesSaveMemory(IntPtr dib, IntPtr source,
            [In] ref KirvoFilesSaveOptions options, out IntPtr block, out uint count, IntPtr file);

        /// <summary>Saves a picture into a block of memory.</summary>
        /// <param name="dib">the picture</param>
        /// <param name="source">where it came from; may be null</param>
        /// <param name="options">how; the format has to be told</param>
        /// <param name="block">receives the file's bytes, owned by the caller (GlobalFree), and no
        /// others: GlobalSize may be a little more; null on failure</param>
        /// <param name="count">receives the number of bytes</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesSave, without what concerns files</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesSaveMemory(IntPtr dib, IntPtr source,
            IntPtr options, out IntPtr block, out uint count, out IntPtr file);

        /// <summary>Saves a picture into a block of memory.</summary>
        /// <param name="dib">the picture</param>
        /// <param name="source">where it came from; may be null</param>
        /// <param name="options">how; the format has to be told</param>
        /// <param name="block">receives the file's bytes, owned by the caller (GlobalFree), and no
        /// others: GlobalSize may be a little more; null on failure</param>
        /// <param name="count">receives the number of bytes</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesSave, without what concerns files</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesSaveMemory(IntPtr dib, IntPtr source,
            IntPtr options, out IntPtr block, out uint count, IntPtr file);

        // Turn a JPEG without loss

        /// <summary>Turns a JPEG without loss: baseline, extended and progressive ones on every
        /// system, those with arithmetic coding where the library is built with
        /// libjpeg-turbo.</summary>
        /// <remarks>A progressive file stays one, several scans of another become one. An
        /// orientation that the file has counts first: what people see is what is turned. Metadata
        /// stays, orientation becomes 1, sizes are updated and the thumbnail is dropped. Both names
        /// may be the same.</remarks>
        /// <param name="source">the file to turn</param>
        /// <param name="target">the file to write, as KirvoFilesSave does</param>
        /// <param name="turning">a #KirvoFilesTurning</param>
        /// <param name="edges">a #KirvoFilesEdges</param>
        /// <param name="flags">KIRVO_FILES_STRIP, KIRVO_FILES_NEW_ONLY, or 0</param>
        /// <param name="file">receives what is known of the file written, also on failure; may be
        /// null</param>
        /// <returns>as KirvoFilesOpen and KirvoFilesSave; KIRVO_FILES_UNSUPPORTED for a file that
        /// is no JPEG; KIRVO_FILES_NO_CODEC; KIRVO_FILES_EDGE</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesTurn(byte[] source, byte[] target,
            int turning, int edges, uint flags, out IntPtr file);

        /// <summary>Turns a JPEG without loss: baseline, extended and progressive ones on every
        /// system, those with arithmetic coding where the library is built with
        /// libjpeg-turbo.</summary>
        /// <remarks>A progressive file stays one, several scans of another become one. An
        /// orientation that the file has counts first: what people see is what is turned. Metadata
        /// stays, orientation becomes 1, sizes are updated and the thumbnail is dropped. Both names
        /// may be the same.</remarks>
        /// <param name="source">the file to turn</param>
        /// <param name="target">the file to write, as KirvoFilesSave does</param>
        /// <param name="turning">a #KirvoFilesTurning</param>
        /// <param name="edges">a #KirvoFilesEdges</param>
        /// <param name="flags">KIRVO_FILES_STRIP, KIRVO_FILES_NEW_ONLY, or 0</param>
        /// <param name="file">receives what is known of the file written, also on failure; may be
        /// null</param>
        /// <returns>as KirvoFilesOpen and KirvoFilesSave; KIRVO_FILES_UNSUPPORTED for a file that
        /// is no JPEG; KIRVO_FILES_NO_CODEC; KIRVO_FILES_EDGE</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesTurn(byte[] source, byte[] target,
            int turning, int edges, uint flags, IntPtr file);

        /// <summary>KirvoFilesTurn with UTF-16 names.</summary>
        /// <param name="source">the file to turn</param>
        /// <param name="target">the file to write</param>
        /// <param name="turning">a #KirvoFilesTurning</param>
        /// <param name="edges">a #KirvoFilesEdges</param>
        /// <param name="flags">as KirvoFilesTurn</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesTurn</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesTurnW(
            [MarshalAs(UnmanagedType.LPWStr)] string source,
            [MarshalAs(UnmanagedType.LPWStr)] string target, int turning, int edges, uint flags,
            out IntPtr file);

        /// <summary>KirvoFilesTurn with UTF-16 names.</summary>
        /// <param name="source">the file to turn</param>
        /// <param name="target">the file to write</param>
        /// <param name="turning">a #KirvoFilesTurning</param>
        /// <param name="edges">a #KirvoFilesEdges</param>
        /// <param name="flags">as KirvoFilesTurn</param>
        /// <param name="file">receives what is known; may be null</param>
        /// <returns>as KirvoFilesTurn</returns>
        [DllImport(Library, ExactSpelling = true)]
        public static extern KirvoFilesStatus KirvoFilesTurnW(
            [MarshalAs(UnmanagedType.LPWStr)] string source,
            [MarshalAs(UnmanagedType.LPWStr)] string target, int turning, int edges, uint flags,
            IntPtr file);

        // Conveniences of this file

        /// <summary>A text about a file, KIRVO_FILES_TEXT_...</summary>
        /// <param name="file">what is known of it</param>
        /// <param name="kind">which text</param>
        /// <param name="index">which note</param>
        /// <returns>the text, empty where there is nothing to say</returns>
        public static string Text(IntPtr file, int kind, uint index)
        {
            byte[] room = new byte[KirvoFilesText(file, kind, index, null, 0)];
            KirvoFilesText(file, kind, index, room, (uint)room.Length);
            return Encoding.UTF8.GetString(room, 0, room.Length - 1);
        }

        /// <summary>Throws KirvoFilesException unless the status is KIRVO_FILES_OK.</summary>
        /// <param name="status">the status</param>
        /// <param name="file">what is known of the file</param>
        public static void Check(KirvoFilesStatus status, IntPtr file)
        {
            if (status != KirvoFilesStatus.KIRVO_FILES_OK)
                throw new KirvoFilesException(status, Text(file, KIRVO_FILES_TEXT_REASON, 0));
        }

#if NET5_0_OR_GREATER
        static KirvoFiles()
        {
            KirvoLibraries.Find();
        }
#endif
    }

    /// <summary>A status other than KIRVO_FILES_OK, and why.</summary>
    public sealed class KirvoFilesException : Exception
    {
        /// <summary>The status.</summary>
        public readonly KirvoFilesStatus Status;

        /// <summary>An exception for a status.</summary>
        /// <param name="status">the status</param>
        /// <param name="reason">why</param>
        public KirvoFilesException(KirvoFilesStatus status, string reason)
            : base(status + ": " + reason)
        {
            Status = status;
        }
    }
}
