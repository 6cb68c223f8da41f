// Every function of the library but those of windows and files, and every named number. What they
// mean is in kirvo.d.ts. Written by script/bindings from interface/kirvo.txt: changes belong there.
import { declare, memory } from "./machine.js";

export const TRUE = 1;
export const FALSE = 0;
export const GMEM_MOVEABLE = 2;
export const GMEM_ZEROINIT = 0x40;
export const GHND = 0x42;
export const BI_RGB = 0;
export const BI_BITFIELDS = 3;
export const WM_COMMAND = 0x111;
export const SM_CYMENU = 15;
export const SM_CXFRAME = 32;
export const SWP_NOMOVE = 2;
export const SWP_NOZORDER = 4;
export const KIRVO_OK = 0;
export const KIRVO_BAD_PARAMETER = -1;
export const KIRVO_NO_MEMORY = -2;
export const KIRVO_NULL_HANDLE = -3;
export const KIRVO_CANNOT_OPEN = -4;
export const KIRVO_READ_ERROR = -5;
export const KIRVO_WRITE_ERROR = -6;
export const KIRVO_JPEG_NO_SOI = -10;
export const KIRVO_JPEG_MARKER = -11;
export const KIRVO_JPEG_EARLY_EOI = -12;
export const KIRVO_JPEG_HEADER = -13;
export const KIRVO_JPEG_HUFFMAN = -14;
export const KIRVO_JPEG_CATEGORY = -15;
export const KIRVO_ABANDONED = -16;
export const KIRVO_BUSY = -17;
export const KIRVO_JPEG_FRAME = -19;
export const KIRVO_NOT_BMP = -20;
export const KIRVO_NEEDS_8 = -21;
export const KIRVO_NEEDS_24 = -22;
export const KIRVO_NOT_TARGA = -25;
export const KIRVO_Q0_SIZE = -26;
export const KIRVO_NOT_RAW = -27;
export const KIRVO_RAW_PALETTE = -28;
export const KIRVO_MORE_THAN_256 = -30;
export const KIRVO_MORE_THAN_16 = -31;
export const KIRVO_NOT_ICON = -35;
export const KIRVO_NEEDS_8_16_24_32 = -40;
export const KIRVO_NEEDS_16_24_32 = -41;
export const KIRVO_NEEDS_24_32 = -42;
export const KIRVO_NEEDS_8_24_32 = -43;
export const KIRVO_NEEDS_16_32 = -44;
export const KIRVO_NEEDS_1_4_8 = -45;
export const KIRVO_NEEDS_8_24 = -46;
export const KIRVO_NEEDS_16_24 = -47;
export const KIRVO_VERSION = 0x1000402;

/** What each status code means. */
export const meanings = {
    KIRVO_OK: "Success",
    KIRVO_BAD_PARAMETER: "A rectangle that is empty, negative or outside the image, a value out of its range, or a block of memory smaller than its header says",
    KIRVO_NO_MEMORY: "Memory could not be allocated, or the result would have no pixels or more than 2^31 - 1 bytes, or a JPEG stream has outgrown its block",
    KIRVO_NULL_HANDLE: "Null handle, null data, or a handle that is freed or invented",
    KIRVO_CANNOT_OPEN: "A file could not be opened or created",
    KIRVO_READ_ERROR: "A read error, or a file that is too short",
    KIRVO_WRITE_ERROR: "A write error: the disk is full or was taken away",
    KIRVO_JPEG_NO_SOI: "JPEG: no start of image",
    KIRVO_JPEG_MARKER: "JPEG: a marker that does not belong into the entropy-coded data",
    KIRVO_JPEG_EARLY_EOI: "JPEG: end of image before the first scan",
    KIRVO_JPEG_HEADER: "JPEG: a header that is damaged, incomplete, or asks for what the decoder does not offer",
    KIRVO_JPEG_HUFFMAN: "JPEG: a Huffman code that does not exist, or a table that was not defined",
    KIRVO_JPEG_CATEGORY: "JPEG encoder: a coefficient that has no code",
    KIRVO_ABANDONED: "The caller has abandoned a piecewise encode or decode",
    KIRVO_BUSY: "Another encode or decode is in progress",
    KIRVO_JPEG_FRAME: "JPEG: a frame type other than baseline and progressive Huffman coding",
    KIRVO_NOT_BMP: "Not a BMP file, or a depth that BMP files do not have",
    KIRVO_NEEDS_8: "The grey JPEG encoder takes 8 bits: DecreaseColorMono256 makes them",
    KIRVO_NEEDS_24: "The image must have 24 bits: IncreaseColor16M and DibConvert24bit make them",
    KIRVO_NOT_TARGA: "Not an uncompressed 24-bit Targa file",
    KIRVO_Q0_SIZE: "The companion file of a Q0 file is missing or holds no size, or the Q0 file is too short for it",
    KIRVO_NOT_RAW: "Not a RAW file, or one too short for its size",
    KIRVO_RAW_PALETTE: "A RAW file with a palette, which the reader does not offer",
    KIRVO_MORE_THAN_256: "More than 256 different colours (239 and the system colours in mode 0)",
    KIRVO_MORE_THAN_16: "More than 16 different colours, or in mode 0 others than the system colours",
    KIRVO_NOT_ICON: "Not an icon or cursor file",
    KIRVO_NEEDS_8_16_24_32: "The image must have 8, 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer",
    KIRVO_NEEDS_16_24_32: "The image must have 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer",
    KIRVO_NEEDS_24_32: "The image must have 24 or 32 bits: DibConvert24bit and IncreaseColor16M make 24",
    KIRVO_NEEDS_8_24_32: "The image must have 8, 24 or 32 bits",
    KIRVO_NEEDS_16_32: "The image must have 16 or 32 bits",
    KIRVO_NEEDS_1_4_8: "The image must have 1, 4 or 8 bits",
    KIRVO_NEEDS_8_24: "The image must have 8 or 24 bits: IncreaseColor16M and DibConvert24bit make 24",
    KIRVO_NEEDS_16_24: "The image must have 16 or 24 bits",
};

// Names of Windows
export const GlobalAlloc = declare(
    "GlobalAlloc(uint flags, size bytes) -> block");
export const GlobalLock = declare(
    "GlobalLock(block block) -> address");
export const GlobalUnlock = declare(
    "GlobalUnlock(block block) -> bool");
export const GlobalFree = declare(
    "GlobalFree(block block) -> block");
export const GlobalSize = declare(
    "GlobalSize(block block) -> size");
export const GetPaletteEntries = declare(
    "GetPaletteEntries(palette palette, uint first, uint count, out PALETTEENTRY entries[count]) -> uint");
export const DeleteObject = declare(
    "DeleteObject(object object) -> bool");

// Images
export const GetVerKirvoDll = declare(
    "GetVerKirvoDll() -> uint");
export const DibNumColors = declare(
    "DibNumColors(header header) -> uint16");
export const PaletteSize = declare(
    "PaletteSize(header header) -> uint16");
export const DibQueryBitCount = declare(
    "DibQueryBitCount(image dib) -> int");
export const XPaletteQuad = declare(
    "XPaletteQuad(image dib, int index, colour colour) -> int");
export const KirvoCreatePalette = declare(
    "KirvoCreatePalette() -> palette");
export const DibMemAllocEx = declare(
    "DibMemAllocEx(uint width, int height, uint bits) -> image");

// JPEG decoder
export const JpgDecFirst = declare(
    "JpgDecFirst(block data, int size, out image image) -> int");
export const JpgDecNext = declare(
    "JpgDecNext(block data, int size, int final, out image image) -> int");
export const JpgDecMainHGLOBAL = declare(
    "JpgDecMainHGLOBAL(block data, int size, out uint width, out uint height, out status error) -> image");
export const JpgDecSetNoblock = declare(
    "JpgDecSetNoblock(int a, int b, int c)");
export const JpgDecGetCommentEnable = declare(
    "JpgDecGetCommentEnable(int enable)");
export const JpgDecCommentCounts = declare(
    "JpgDecCommentCounts() -> int");
export const JpgDecGetComment = declare(
    "JpgDecGetComment(int index) -> block");
export const JpgDecCommentFree = declare(
    "JpgDecCommentFree()");
export const JpgDecGetQtable = declare(
    "JpgDecGetQtable(out uint16 luma[64], out uint16 chroma[64]) -> int");
export const JpgDecGetQtableEx = declare(
    "JpgDecGetQtableEx(int number, out uint16 table[64]) -> int");
export const JpgDecGetLastUexMarker = declare(
    "JpgDecGetLastUexMarker(out uint position) -> uint16");

// JPEG encoder
export const JpgCodGetStatus = declare(
    "JpgCodGetStatus(out uint source_bytes, out uint output_bytes) -> uint");
export const JpgCodFirst = declare(
    "JpgCodFirst(image dib, int left, int top, int width, int height, int mcus_per_call, out status status) -> block");
export const JpgCodNext = declare(
    "JpgCodNext(int control, out uint stream_bytes) -> int");
export const JpgCodMainHGLOBAL = declare(
    "JpgCodMainHGLOBAL(image dib, int left, int top, int width, int height, out uint stream_bytes, out status status) -> block");
export const JpgCodFirst_M = declare(
    "JpgCodFirst_M(image dib, int left, int top, int width, int height, int grey_mode, int mcus_per_call, out status status) -> block");
export const JpgCodNext_M = declare(
    "JpgCodNext_M(int control, out uint stream_bytes) -> int");
export const JpgCodMainHGLOBAL_M = declare(
    "JpgCodMainHGLOBAL_M(image dib, int left, int top, int width, int height, int grey_mode, out uint stream_bytes, out status status) -> block");

// JPEG encoder settings
export const JpgCodSetSubsample = declare(
    "JpgCodSetSubsample(int mode) -> status");
export const JpgCodSetQ = declare(
    "JpgCodSetQ(int q) -> status");
export const JpgCodSetQEx = declare(
    "JpgCodSetQEx(int level) -> status");
export const JpgCodSetQtable = declare(
    "JpgCodSetQtable(in int16 luminance[64], in int16 chrominance[64]) -> status");
export const JpgCodSetQtableEx = declare(
    "JpgCodSetQtableEx(in int16 luminance[64], in int16 chrominance[64], int count) -> status");
export const JpgCodSetComment = declare(
    "JpgCodSetComment(in byte text[length], uint length)");

// Copy and compose
export const Dib24Copy = declare(
    "Dib24Copy(image to, image from, int left, int top, int width, int height) -> status");
export const Dib24CopyEx = declare(
    "Dib24CopyEx(image to, int to_left, int to_top, image from, int from_left, int from_top, int width, int height) -> status");
export const Dib24DupEx = declare(
    "Dib24DupEx(image from, int left, int top, int width, int height, out status status) -> image");
export const Dib24Add = declare(
    "Dib24Add(image to, int to_left, int to_top, image from, int from_left, int from_top, int width, int height, int mode) -> status");
export const SetKeyColorDib24Add = declare(
    "SetKeyColorDib24Add(colour colour)");

// Flip, mirror, turn
export const Dib24Flip = declare(
    "Dib24Flip(image dib, int left, int top, int width, int height) -> status");
export const Dib24Mirror = declare(
    "Dib24Mirror(image dib, int left, int top, int width, int height) -> status");
export const Dib24FlipMirror = declare(
    "Dib24FlipMirror(image dib, int left, int top, int width, int height) -> status");
export const Dib24Rotate = declare(
    "Dib24Rotate(image dib, int left, int top, int width, int height, int direction, out status status) -> image");

// Zoom
export const Dib24ZoomEx = declare(
    "Dib24ZoomEx(image dib, int left, int top, int width, int height, int new_width, int new_height, out status status) -> image");
export const Dib24ZoomEx2 = declare(
    "Dib24ZoomEx2(image dib, int left, int top, int width, int height, int new_width, int new_height, out status status, int smooth) -> image");

// Tone
export const Dib24Negative = declare(
    "Dib24Negative(image dib, int x, int y, int width, int height) -> status");
export const Dib24RGBChange = declare(
    "Dib24RGBChange(image dib, int mode, int x, int y, int width, int height) -> status");
export const Dib24Brightness = declare(
    "Dib24Brightness(image dib, int x, int y, int width, int height, int level, out status status) -> image");
export const Dib24Contrast = declare(
    "Dib24Contrast(image dib, int x, int y, int width, int height, int level, out status status) -> image");
export const Dib24Monochrome = declare(
    "Dib24Monochrome(image dib, int x, int y, int width, int height, out status status) -> image");
export const Dib24HalfTone = declare(
    "Dib24HalfTone(image dib, int x, int y, int width, int height, out status status) -> image");
export const Dib24ToneCtrl = declare(
    "Dib24ToneCtrl(image dib, int x, int y, int width, int height, int numerator, int denominator, out status status) -> image");
export const Dib24ToneCtrlEx = declare(
    "Dib24ToneCtrlEx(image dib, int x, int y, int width, int height, double red, double green, double blue, out status status) -> image");
export const Dib24Gamma = declare(
    "Dib24Gamma(image dib, int x, int y, int width, int height, double gamma, out status status) -> image");
export const DibGammaEx = declare(
    "DibGammaEx(image dib, int x, int y, int width, int height, double red, double green, double blue, out status status) -> image");
export const Dib24Separate = declare(
    "Dib24Separate(image dib, int x, int y, int width, int height, out image red, out image green, out image blue) -> status");
export const DibColorMapEx = declare(
    "DibColorMapEx(image dib, int x, int y, int width, int height, in byte table[256], out status status) -> image");

// Hue and HSV
export const RGB2HSV = declare(
    "RGB2HSV(int red, int green, int blue, out int hue, out int saturation, out int value)");
export const RGB2SV = declare(
    "RGB2SV(int red, int green, int blue, out int saturation, out int value)");
export const RGB2V = declare(
    "RGB2V(int red, int green, int blue) -> int");
export const HSV2RGB = declare(
    "HSV2RGB(int hue, int saturation, int value, out int red, out int green, out int blue)");
export const DibModifyHue = declare(
    "DibModifyHue(image dib, int mode, int value) -> status");
export const DibModifyHueEx = declare(
    "DibModifyHueEx(image dib, int x, int y, int width, int height, int mode, int value, out status status) -> image");

// Filters
export const Dib24Gausian = declare(
    "Dib24Gausian(image dib, int x, int y, int width, int height, out status status) -> image");
export const SetFilter3x3 = declare(
    "SetFilter3x3(int k0, int k1, int k2, int k3, int k4, int k5, int k6, int k7, int k8, int divisor)");
export const DibFilter3x3 = declare(
    "DibFilter3x3(image dib, int x, int y, int width, int height, out status status) -> image");
export const Dib24Mix3X3SetMask = declare(
    "Dib24Mix3X3SetMask(in int weights[9])");
export const Dib24Mix5X5SetMask = declare(
    "Dib24Mix5X5SetMask(in int weights[25])");
export const Dib24Mix3X3 = declare(
    "Dib24Mix3X3(image dib, int x, int y) -> status");
export const Dib24Mix5X5 = declare(
    "Dib24Mix5X5(image dib, int x, int y) -> status");
export const Dib24Sharpen = declare(
    "Dib24Sharpen(image dib, int x, int y, int width, int height, int mode, out status status) -> image");
export const Dib24SharpenEx = declare(
    "Dib24SharpenEx(image dib, int x, int y, int width, int height, int strength, out status status) -> image");
export const Dib24ColorEdge = declare(
    "Dib24ColorEdge(image dib, int x, int y, int width, int height, int threshold, int mode, out status status) -> image");
export const Dib24Filter = declare(
    "Dib24Filter(image dib, int x, int y, int width, int height, uint red, uint green, uint blue, out status status) -> image");
export const Dib24FilterEx = declare(
    "Dib24FilterEx(image dib, int x, int y, int width, int height, uint range0, uint range1, uint range2, uint range3, uint range4, out status status) -> image");

// Patterns, mosaics and histograms
export const Dib24Mosaic = declare(
    "Dib24Mosaic(image dib, int x, int y, int width, int height, int block, out status status) -> image");
export const DibMosaicEx = declare(
    "DibMosaicEx(image dib, int x, int y, int width, int height, int block, out status status) -> image");
export const DibMosaicEx2 = declare(
    "DibMosaicEx2(image dib, int x, int y, int width, int height, int block, out status status) -> image");
export const Dib24XOR = declare(
    "Dib24XOR(image dib, int x, int y, int width, int height, colour colour) -> status");
export const DibHistgram = declare(
    "DibHistgram(image dib, int x, int y, int width, int height, out uint red[256], out uint green[256], out uint blue[256]) -> status");
export const DibCountColors = declare(
    "DibCountColors(image dib, out uint count) -> status");
export const Dib24Solid = declare(
    "Dib24Solid(int width, int height, int bits, colour colour, out status status) -> image");
export const Dib24Gradation1 = declare(
    "Dib24Gradation1(int width, int height, int bits, colour start, colour end, out status status) -> image");
export const Dib24Gradation2 = declare(
    "Dib24Gradation2(int width, int height, int bits, colour start, colour end, out status status) -> image");
export const Dib24Gradation3 = declare(
    "Dib24Gradation3(int width, int height, int bits, colour top_left, colour top_right, colour bottom_left, colour bottom_right, out status status) -> image");
export const Dib24InterLeave = declare(
    "Dib24InterLeave(image first, int x1, int y1, image second, int x2, int y2, int width, int height, out status status) -> image");
export const DibBlockMxM = declare(
    "DibBlockMxM(image dib, int x, int y, int width, int height, int radius, int maximum, int luminance, out status status) -> image");

// Depth conversion
export const DibConvert24bit = declare(
    "DibConvert24bit(image dib, out status status) -> image");
export const DibConvert16bit = declare(
    "DibConvert16bit(image dib, out status status) -> image");
export const DibConvert32bit = declare(
    "DibConvert32bit(image dib, out status status) -> image");
export const DibCutDepth = declare(
    "DibCutDepth(image dib, int red_bits, int green_bits, int blue_bits, out status status) -> image");

// Colour reduction
export const DecreaseColor256 = declare(
    "DecreaseColor256(image dib, out status status) -> image");
export const DecreaseColor16 = declare(
    "DecreaseColor16(image dib, out status status) -> image");
export const DecreaseColorMono256 = declare(
    "DecreaseColorMono256(image dib, out status status) -> image");
export const Decrease256Fast = declare(
    "Decrease256Fast(image dib, out status status) -> image");
export const Decrease256PaletteEx = declare(
    "Decrease256PaletteEx(image dib, int mode, out status status) -> image");
export const Decrease256Palette = declare(
    "Decrease256Palette(image dib, out status status) -> image");
export const Decrease16PaletteEx = declare(
    "Decrease16PaletteEx(image dib, int mode, out status status) -> image");
export const Decrease16Palette = declare(
    "Decrease16Palette(image dib, out status status) -> image");
export const IncreaseColor16M = declare(
    "IncreaseColor16M(image dib, out status status) -> image");

// Single pixels and lines
export const DibGetPixelColor = declare(
    "DibGetPixelColor(image dib, int x, int y, out colour colour) -> status");
export const DibSetPixelColor = declare(
    "DibSetPixelColor(image dib, int x, int y, colour colour) -> status");
export const DibSetLineColor = declare(
    "DibSetLineColor(image dib, int x0, int x1, int y, colour colour) -> status");

/** The bytes of a block. The view is good until memory is next taken. */
export function bytesOf(block) {
    const address = GlobalLock(block);
    GlobalUnlock(block);
    return memory().subarray(address, address + GlobalSize(block));
}

/** A new block that holds these bytes; 0 without memory for it. */
export function blockOf(bytes) {
    const block = GlobalAlloc(GHND, bytes.length);
    if (block !== 0)
        bytesOf(block).set(bytes);
    return block;
}
