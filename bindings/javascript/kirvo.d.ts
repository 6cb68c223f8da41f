// The types of kirvo-wasm. Written by script/bindings from interface/ and kirvo.h: changes belong
// there.

/** The part of a picture that an effect works on; what is left away reaches as far as the picture. */
export interface Area {
    x?: number;
    y?: number;
    width?: number;
    height?: number;
}

/** A range of values; test: 0 anything passes, 1 what is inside, 2 what is outside. */
export interface Range {
    lower?: number;
    upper?: number;
    test?: number;
}

/** What a canvas takes and gives: four bytes a pixel, red, green, blue, alpha, from the top left. */
export interface Pixels {
    readonly width: number;
    readonly height: number;
    readonly data: Uint8ClampedArray;
}

/** A call that was refused. */
export class KirvoError extends Error {
    constructor(status: number, what: string);
    /** The status code, below 0. */
    readonly status: number;
    /** Its name: "KIRVO_BAD_PARAMETER". */
    readonly code: string;
}

/** A colour as the library writes it: 0x00BBGGRR. */
export function rgb(red: number, green: number, blue: number): number;

/** A picture: a packed DIB of 1, 4, 8, 16, 24 or 32 bits. Its memory is freed by free(), or when
 *  nobody knows the picture any more. Effects give a new picture, but for `paste`, `compose`,
 *  `setPixel`, `setLine` and `mix...`, which change the picture itself. */
export class Image {
    /** A new picture, black. */
    constructor(width: number, height: number, bits?: number);

    /** The picture of a handle of the flat functions, which becomes the picture's own. */
    static fromHandle(handle: number): Image;

    /** A picture of 24 bits of an ImageData.
     *  @param background the colour below what is transparent, 0x00BBGGRR; white by default */
    static fromImageData(pixels: Pixels, background?: number): Image;

    /** The pixels for a canvas: an ImageData in browsers, elsewhere an object like one. */
    toImageData(): ImageData;

    /** A picture of the bytes of a packed DIB with a header of 40: a BMP file without its first 14. */
    static fromDib(bytes: Uint8Array): Image;

    /** A copy of the packed DIB's bytes. */
    toDib(): Uint8Array;

    /** A picture of 24 bits of the bytes of a JPEG file. */
    static fromJpeg(bytes: Uint8Array): Image;

    /** The bytes of a JPEG file.
     *  @param options level: 1 (finest) to 5, 2 by default; sampling of chroma: 1 each pixel, 2 halved
     *  across, 4 halved both ways, which is the default. The flat encoder keeps what was set last. */
    toJpeg(options?: { level?: number; sampling?: number }): Uint8Array;

    readonly width: number;
    readonly height: number;
    /** Bits of a pixel. */
    readonly bits: number;
    /** The packed DIB for the flat functions; it stays the picture's, which is to be kept for as long as
     *  the handle is in use. 0 once it is freed. */
    readonly handle: number;

    /** Frees the picture now. */
    free(): void;

    /** Another picture of the same pixels. */
    copy(): Image;

    /** The picture at another depth: 16, 24 or 32 bits. */
    convert(bits: number): Image;

    /** Duplicates a rectangle into a new image of the same depth, with its colour table or masks.
     *  @param left rectangle in the source
     *  @param top rectangle in the source
     *  @param width rectangle in the source
     *  @param height rectangle in the source */
    crop(left: number, top: number, width: number, height: number): Image;

    /** Resizes a rectangle into a new image by taking the nearest pixel, as Dib24ZoomEx but with
     *  32-bit coordinates, or by averaging.
     *  @param newWidth size of the result, at least 1
     *  @param newHeight size of the result, at least 1
     *  @param smooth 1 switches smoothing on, any other value off; true by default
     *  @param area the part that is worked on; all of it by default */
    resize(newWidth: number, newHeight: number, smooth?: boolean, area?: Area | null): Image;

    /** Turns a rectangle upside down.
     *  @param area the part that is worked on; all of it by default */
    flip(area?: Area | null): Image;

    /** Exchanges left and right in a rectangle.
     *  @param area the part that is worked on; all of it by default */
    mirror(area?: Area | null): Image;

    /** Turns a rectangle by 180 degrees.
     *  @param area the part that is worked on; all of it by default */
    rotate180(area?: Area | null): Image;

    /** Turns a rectangle by 90 degrees into a new image of height x width pixels, with the
     *  source's colour table or masks.
     *  @param direction 0 clockwise: the top left corner goes to the top right; 1
     *  counter-clockwise: it goes to the bottom left; 0 by default
     *  @param area the part that is worked on; all of it by default */
    rotate90(direction?: number, area?: Area | null): Image;

    /** Brightens or darkens: channel + level * 255 / 100 (truncated), clamped to 0..255.
     *  @param level -100 to 100
     *  @param area the part that is worked on; all of it by default */
    brightness(level: number, area?: Area | null): Image;

    /** Raises or lowers the contrast around mid-grey: channel * (level + 100) / 100 + -128 * level
     *  / 100 (both truncated), clamped to 0..255.
     *  @param level -100 (all grey) to 100 (2 * channel - 128)
     *  @param area the part that is worked on; all of it by default */
    contrast(level: number, area?: Area | null): Image;

    /** Corrects the gamma: 255 * (channel / 255)^gamma in double precision, truncated.
     *  @param gamma 0 or more
     *  @param area the part that is worked on; all of it by default */
    gamma(gamma: number, area?: Area | null): Image;

    /** Corrects the gamma of each channel, as Dib24Gamma does.
     *  @param red gammas, 0 or more; 1 by default
     *  @param green gammas, 0 or more; 1 by default
     *  @param blue gammas, 0 or more; 1 by default
     *  @param area the part that is worked on; all of it by default */
    gammaChannels(red?: number, green?: number, blue?: number, area?: Area | null): Image;

    /** Multiplies all channels by a fraction: channel * numerator / denominator, truncated, 255 at
     *  most.
     *  @param numerator 1 to 255
     *  @param denominator 0 or more
     *  @param area the part that is worked on; all of it by default */
    tone(numerator: number, denominator: number, area?: Area | null): Image;

    /** Multiplies each channel by its factor: channel * factor, truncated, at most 255 (0 stays 0
     *  with an infinite factor).
     *  @param red factors, 0 or more; 1 by default
     *  @param green factors, 0 or more; 1 by default
     *  @param blue factors, 0 or more; 1 by default
     *  @param area the part that is worked on; all of it by default */
    toneChannels(red?: number, green?: number, blue?: number, area?: Area | null): Image;

    /** Inverts a rectangle: 255 - channel.
     *  @param area the part that is worked on; all of it by default */
    negative(area?: Area | null): Image;

    /** Turns a rectangle to grey: (77 red + 150 green + 29 blue + 128) / 256 in all three
     *  channels.
     *  @param area the part that is worked on; all of it by default */
    monochrome(area?: Area | null): Image;

    /** Halves the intensity: channel / 2.
     *  @param area the part that is worked on; all of it by default */
    halfTone(area?: Area | null): Image;

    /** Exchanges the channels of a rectangle.
     *  @param mode what red, green and blue are taken from: 0 nothing changes (KIRVO_OK even for a
     *  null handle), 1 red, blue, green; 2 green, blue, red; 3 green, red, blue; 4 blue, red,
     *  green; 5 blue, green, red
     *  @param area the part that is worked on; all of it by default */
    swapChannels(mode: number, area?: Area | null): Image;

    /** Maps every channel through a table: table[channel].
     *  @param table 256 bytes
     *  @param area the part that is worked on; all of it by default */
    mapChannels(table: ArrayLike<number>, area?: Area | null): Image;

    /** Makes a copy of a rectangle with its hue changed.
     *  @param mode as for DibModifyHue
     *  @param value degrees, 0 to 359 for every mode
     *  @param area the part that is worked on; all of it by default */
    changeHue(mode: number, value: number, area?: Area | null): Image;

    /** XORs a colour over a rectangle.
     *  @param colour 0x00BBGGRR
     *  @param area the part that is worked on; all of it by default */
    exclusiveOr(colour: number, area?: Area | null): Image;

    /** Blurs a rectangle with a fixed 3 × 3 kernel.
     *  @param area the part that is worked on; all of it by default */
    blur(area?: Area | null): Image;

    /** Sharpens a rectangle as mode 0 of Dib24Sharpen does, with a choice of strength: the
     *  Laplacian is divided by 8, 6, 4 or 2.
     *  @param strength 0 (divides by 8) to 3 (by 2); any other value acts as 0; 0 by default
     *  @param area the part that is worked on; all of it by default */
    sharpen(strength?: number, area?: Area | null): Image;

    /** Sharpens a rectangle, or shows its edges in grey.
     *  @param mode 0 to 5; 1 by default
     *  @param area the part that is worked on; all of it by default */
    relief(mode?: number, area?: Area | null): Image;

    /** Keeps the colours of a rectangle at its edges and paints the rest white, the padding of the
     *  rows included.
     *  @param threshold any value; 20 by default
     *  @param mode 0, 1 or 2; 0 by default
     *  @param area the part that is worked on; all of it by default */
    colourEdges(threshold?: number, mode?: number, area?: Area | null): Image;

    /** Maximum or minimum filter over squares of (2 radius + 1) × (2 radius + 1) pixels: dilation
     *  or erosion of bright areas.
     *  @param radius 1 to 64; 1 by default
     *  @param luminance 0 for channels on their own, else by luminance; false by default
     *  @param area the part that is worked on; all of it by default */
    dilate(radius?: number, luminance?: boolean, area?: Area | null): Image;

    /** Maximum or minimum filter over squares of (2 radius + 1) × (2 radius + 1) pixels: dilation
     *  or erosion of bright areas.
     *  @param radius 1 to 64; 1 by default
     *  @param luminance 0 for channels on their own, else by luminance; false by default
     *  @param area the part that is worked on; all of it by default */
    erode(radius?: number, luminance?: boolean, area?: Area | null): Image;

    /** Keeps channel values by range: a value that fails its channel's test becomes 0.
     *  @param red ranges
     *  @param green ranges
     *  @param blue ranges
     *  @param area the part that is worked on; all of it by default */
    keepChannels(red: Range, green: Range, blue: Range, area?: Area | null): Image;

    /** Mosaic by samples: every block of block × block pixels, counted from the rectangle's top
     *  left, takes the pixel at its own top left.
     *  @param block size of the blocks in pixels, at least 1; may exceed the rectangle
     *  @param area the part that is worked on; all of it by default */
    mosaic(block: number, area?: Area | null): Image;

    /** Mosaic by averages: every block of block × block pixels, counted from the rectangle's top
     *  left, takes the average of its channels (of its indexes at 8 bits), truncated.
     *  @param block size of the blocks in pixels, 1 to 1024
     *  @param area the part that is worked on; all of it by default */
    mosaicAverage(block: number, area?: Area | null): Image;

    /** Makes a copy of a 24-bit image that keeps only the top bits of each channel.
     *  @param redBits bits of red kept, 0 to 8
     *  @param greenBits bits of green kept, 0 to 8
     *  @param blueBits bits of blue kept, 0 to 8 */
    keepBits(redBits: number, greenBits: number, blueBits: number): Image;

    /** Makes an 8-bit image with error diffusion to 256 fixed colours. */
    reduce256(): Image;

    /** Makes a 4-bit image with error diffusion, as DecreaseColor256 spreads it, to 16 fixed
     *  colours. */
    reduce16(): Image;

    /** Makes an 8-bit grey image, without diffusion. */
    reduceGrey(): Image;

    /** Makes an 8-bit image with the palette of KirvoCreatePalette and an ordered dither of 8 x 8
     *  pixels over the 6 x 6 x 6 cube of levels 0, 51, 102, 153, 204, 255: a channel value v
     *  becomes level v / 51, one more where v mod 51 is above the dither's threshold. */
    dither256(): Image;

    /** Makes an 8-bit image with exactly the colours of the source.
     *  @param mode 0 or 1; 1 by default */
    exact256(mode?: number): Image;

    /** Makes a 4-bit image with exactly the colours of the source.
     *  @param mode 0 or 1; 1 by default */
    exact16(mode?: number): Image;

    /** Interleaves the rows of two images: stored row 2i of the result is row y1 + i of the first,
     *  stored row 2i + 1 row y2 + i of the second.
     *  @param other packed DIB of the same depth */
    interleave(other: Image): Image;

    /** Copies a rectangle between two images of any sizes and one depth.
     *  @param other packed DIB of 8, 16, 24 or 32 bits
     *  @param toLeft corner of the rectangle in the destination; 0 by default
     *  @param toTop corner of the rectangle in the destination; 0 by default */
    paste(other: Image, toLeft?: number, toTop?: number): void;

    /** Composes a rectangle of one image onto one of the same size of another.
     *  @param other packed DIB of 24 or 32 bits
     *  @param mode 0 to 4; 0 by default
     *  @param toLeft corner of the rectangle in the destination; 0 by default
     *  @param toTop corner of the rectangle in the destination; 0 by default */
    compose(other: Image, mode?: number, toLeft?: number, toTop?: number): void;

    /** Writes one pixel of a direct-colour image.
     *  @param x column from the left
     *  @param y row from the top
     *  @param colour 0x00BBGGRR */
    setPixel(x: number, y: number, colour: number): void;

    /** Fills the pixels x0 to x1 (inclusive) of one row with a colour.
     *  @param x0 first column
     *  @param x1 last column
     *  @param y row from the top
     *  @param colour 0x00BBGGRR */
    setLine(x0: number, x1: number, y: number, colour: number): void;

    /** Draws the 3 × 3 neighbours of one pixel towards its colour, in place.
     *  @param x the centre
     *  @param y the centre */
    mix3x3(x: number, y: number): void;

    /** Draws the 5 × 5 neighbours of one pixel towards its colour, in place: as Dib24Mix3X3.
     *  @param x the centre
     *  @param y the centre */
    mix5x5(x: number, y: number): void;

    /** Makes an image of one colour.
     *  @param width size in pixels, at least 1
     *  @param height size in pixels, at least 1
     *  @param colour 0x00BBGGRR */
    static solid(width: number, height: number, colour: number): Image;

    /** Makes a horizontal gradient: each channel of column i is start + ((end − start) × i) /
     *  (width − 1), truncating; start alone when the width is 1. 16- and 32-bit images are black,
     *  as those of Dib24Solid.
     *  @param width size in pixels, at least 1
     *  @param height size in pixels, at least 1
     *  @param start colour of the left column, 0x00BBGGRR
     *  @param end colour of the right column */
    static gradientAcross(width: number, height: number, start: number, end: number): Image;

    /** Makes a vertical gradient, from start at the top to end at the bottom: a Dib24Gradation1 of
     *  the sizes exchanged, turned by Dib24Rotate, which reports progress (per column). 16- and
     *  32-bit images are black, as those of Dib24Solid.
     *  @param width size in pixels, at least 1
     *  @param height size in pixels, at least 1
     *  @param start colour of the top row, 0x00BBGGRR
     *  @param end colour of the bottom row */
    static gradientDown(width: number, height: number, start: number, end: number): Image;

    /** Makes a bilinear gradient between four corners.
     *  @param width size in pixels, at least 1
     *  @param height size in pixels, at least 1
     *  @param topLeft colours 0x00BBGGRR
     *  @param topRight colours 0x00BBGGRR
     *  @param bottomLeft colours 0x00BBGGRR
     *  @param bottomRight colours 0x00BBGGRR */
    static gradientCorners(width: number, height: number, topLeft: number, topRight: number,
        bottomLeft: number, bottomRight: number): Image;

    /** Filters with a kernel of 3 x 3 weights, row by row from the top left neighbour.
     *  @param divisor divides the sums; 0, the default: the sum of the weights, or 1 */
    filter3x3(weights: readonly number[], divisor?: number, area?: Area | null): Image;

    /** Keeps colours by ranges.
     *  @param flags 0x101 channels of RGB, 0x102 pixels of RGB, 0x202 pixels by hue, saturation and
     *  value */
    keepColours(flags: number, first?: Range, second?: Range, third?: Range, area?: Area | null): Image;

    /** Three pictures with one channel each: red, green, blue. */
    separate(area?: Area | null): [Image, Image, Image];

    /** How often each of 256 values of each channel occurs. */
    histogram(area?: Area | null): { red: Uint32Array; green: Uint32Array; blue: Uint32Array };

    /** The number of different colours. */
    countColours(): number;

    /** A pixel's colour, 0x00BBGGRR. */
    getPixel(x: number, y: number): number;

    /** The colour that compose leaves out in mode 4, for all pictures. */
    static keyColour(colour: number): void;

    /** The weights of mix3x3 and mix5x5 in tenths, row by row from the top left neighbour, for all
     *  pictures. */
    static mixMasks(three: ArrayLike<number>, five: ArrayLike<number>): void;
}

/** Every function of the library but those of windows and files, under the names of kirvo.h. Numbers
 *  are numbers and handles are numbers, with null for 0; the address of a variable or of an array is a
 *  typed array of the given length or null. */
export namespace flat {
    /** What each status code means, by its name. */
    const meanings: Readonly<Record<string, string>>;
    /** The bytes of a block. The view is good until a call takes memory. */
    function bytesOf(block: number): Uint8Array;
    /** A new block that holds these bytes; 0 without memory for it. */
    function blockOf(bytes: Uint8Array): number;

    /** yes */
    const TRUE: 1;
    /** no */
    const FALSE: 0;
    /** GlobalAlloc: the block is known by a handle */
    const GMEM_MOVEABLE: 2;
    /** GlobalAlloc: the block is zero */
    const GMEM_ZEROINIT: 64;
    /** GlobalAlloc: both */
    const GHND: 66;
    /** biCompression: plain pixels */
    const BI_RGB: 0;
    /** biCompression: plain pixels under three masks */
    const BI_BITFIELDS: 3;
    /** the message that carries progress */
    const WM_COMMAND: 273;
    /** GetSystemMetrics: height of a menu bar */
    const SM_CYMENU: 15;
    /** GetSystemMetrics: width of a window's frame */
    const SM_CXFRAME: 32;
    /** SetWindowPos: the position stays */
    const SWP_NOMOVE: 2;
    /** SetWindowPos: the order of windows stays */
    const SWP_NOZORDER: 4;
    /** Allocates a movable block.
     *  @param flags must hold GMEM_MOVEABLE; the memory is always zero.
     *  @param bytes the exact size that GlobalSize answers.
     *  @returns the handle; null when there is no memory or the block would not be movable. */
    function GlobalAlloc(flags: number, bytes: number): number;
    /** Locks a block.
     *  @param block a handle of GlobalAlloc.
     *  @returns the address of its first byte; null for a handle that is unknown or freed. */
    function GlobalLock(block: number | null): number;
    /** Undoes one GlobalLock.
     *  @param block the handle.
     *  @returns non-zero while the block is still locked, else 0. */
    function GlobalUnlock(block: number | null): number;
    /** Frees a block, locked or not.
     *  @param block the handle, may be null.
     *  @returns null, or the handle itself when it is unknown. */
    function GlobalFree(block: number | null): number;
    /** Size of a block.
     *  @param block the handle.
     *  @returns its size in bytes, 0 for an unknown handle. */
    function GlobalSize(block: number | null): number;
    /** Reads entries of a logical palette.
     *  @param palette the palette
     *  @param first first index
     *  @param count number wanted
     *  @param entries receives them; null asks for the palette's size
     *  @returns the number of entries written (or held, with null entries); 0 for an unknown
     *  palette. */
    function GetPaletteEntries(palette: number | null, first: number, count: number,
        entries: Uint8Array | null): number;
    /** Deletes a logical palette.
     *  @param object the palette.
     *  @returns TRUE, or FALSE when unknown. */
    function DeleteObject(object: number | null): number;
    /** Success. */
    const KIRVO_OK: 0;
    /** A rectangle that is empty, negative or outside the image, a value out of its range, or a
     *  block of memory smaller than its header says. */
    const KIRVO_BAD_PARAMETER: -1;
    /** Memory could not be allocated, or the result would have no pixels or more than 2^31 - 1
     *  bytes, or a JPEG stream has outgrown its block. */
    const KIRVO_NO_MEMORY: -2;
    /** Null handle, null data, or a handle that is freed or invented. */
    const KIRVO_NULL_HANDLE: -3;
    /** A file could not be opened or created. */
    const KIRVO_CANNOT_OPEN: -4;
    /** A read error, or a file that is too short. */
    const KIRVO_READ_ERROR: -5;
    /** A write error: the disk is full or was taken away. */
    const KIRVO_WRITE_ERROR: -6;
    /** JPEG: no start of image. */
    const KIRVO_JPEG_NO_SOI: -10;
    /** JPEG: a marker that does not belong into the entropy-coded data. */
    const KIRVO_JPEG_MARKER: -11;
    /** JPEG: end of image before the first scan. */
    const KIRVO_JPEG_EARLY_EOI: -12;
    /** JPEG: a header that is damaged, incomplete, or asks for what the decoder does not offer. */
    const KIRVO_JPEG_HEADER: -13;
    /** JPEG: a Huffman code that does not exist, or a table that was not defined. */
    const KIRVO_JPEG_HUFFMAN: -14;
    /** JPEG encoder: a coefficient that has no code. */
    const KIRVO_JPEG_CATEGORY: -15;
    /** The caller has abandoned a piecewise encode or decode. */
    const KIRVO_ABANDONED: -16;
    /** Another encode or decode is in progress. */
    const KIRVO_BUSY: -17;
    /** JPEG: a frame type other than baseline and progressive Huffman coding. */
    const KIRVO_JPEG_FRAME: -19;
    /** Not a BMP file, or a depth that BMP files do not have. */
    const KIRVO_NOT_BMP: -20;
    /** The grey JPEG encoder takes 8 bits: DecreaseColorMono256 makes them. */
    const KIRVO_NEEDS_8: -21;
    /** The image must have 24 bits: IncreaseColor16M and DibConvert24bit make them. */
    const KIRVO_NEEDS_24: -22;
    /** Not an uncompressed 24-bit Targa file. */
    const KIRVO_NOT_TARGA: -25;
    /** The companion file of a Q0 file is missing or holds no size, or the Q0 file is too short
     *  for it. */
    const KIRVO_Q0_SIZE: -26;
    /** Not a RAW file, or one too short for its size. */
    const KIRVO_NOT_RAW: -27;
    /** A RAW file with a palette, which the reader does not offer. */
    const KIRVO_RAW_PALETTE: -28;
    /** More than 256 different colours (239 and the system colours in mode 0). */
    const KIRVO_MORE_THAN_256: -30;
    /** More than 16 different colours, or in mode 0 others than the system colours. */
    const KIRVO_MORE_THAN_16: -31;
    /** Not an icon or cursor file. */
    const KIRVO_NOT_ICON: -35;
    /** The image must have 8, 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer. */
    const KIRVO_NEEDS_8_16_24_32: -40;
    /** The image must have 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer. */
    const KIRVO_NEEDS_16_24_32: -41;
    /** The image must have 24 or 32 bits: DibConvert24bit and IncreaseColor16M make 24. */
    const KIRVO_NEEDS_24_32: -42;
    /** The image must have 8, 24 or 32 bits. */
    const KIRVO_NEEDS_8_24_32: -43;
    /** The image must have 16 or 32 bits. */
    const KIRVO_NEEDS_16_32: -44;
    /** The image must have 1, 4 or 8 bits. */
    const KIRVO_NEEDS_1_4_8: -45;
    /** The image must have 8 or 24 bits: IncreaseColor16M and DibConvert24bit make 24. */
    const KIRVO_NEEDS_8_24: -46;
    /** The image must have 16 or 24 bits. */
    const KIRVO_NEEDS_16_24: -47;
    /** version of this header: 1.0.4.2, as GetVerKirvoDll tells it */
    const KIRVO_VERSION: 16778242;
    /** Version of the library.
     *  @returns 0x01000402 for 1.0.4.2: one byte each, the major number in the top byte. */
    function GetVerKirvoDll(): number;
    /** Number of colour-table entries of an image.
     *  @param header locked header of a packed DIB
     *  @returns the low 16 bits of biClrUsed when that is not 0; else 2, 16 or 256 for 1, 4 or 8
     *  bits; 3 for 16 and 32 bits with BI_BITFIELDS; otherwise 0 (also for a null pointer) */
    function DibNumColors(header: number | null): number;
    /** Size of the colour part of an image.
     *  @param header locked header of a packed DIB
     *  @returns DibNumColors × 4 bytes, or × 3 when biSize is 12; low 16 bits; 0 for a null
     *  pointer. Pixel rows start at biSize + PaletteSize. */
    function PaletteSize(header: number | null): number;
    /** Depth of an image.
     *  @param dib packed DIB
     *  @returns biBitCount, or KIRVO_NULL_HANDLE */
    function DibQueryBitCount(dib: number | null): number;
    /** Sets one colour-table entry; its reserved byte stays as it is.
     *  @param dib packed DIB with a 40-byte header
     *  @param index entry, 0 to 255 and below DibNumColors
     *  @param colour 0x00BBGGRR
     *  @returns 1 if the entry was written, else 0 (null handle, index out of range or beyond the
     *  table) */
    function XPaletteQuad(dib: number | null, index: number, colour: number): number;
    /** Makes a logical palette of the library's fixed 256 colours: the 20 system colours at 0-9
     *  and 246-255, between them colour-cube and grey entries flagged PC_NOCOLLAPSE.
     *  @returns the palette, which the caller frees with DeleteObject; null on failure */
    function KirvoCreatePalette(): number;
    /** Allocates a new packed DIB. Apart from its header the block is zero: colour tables are
     *  black, and the masks of a 16- or 32-bit image (made with BI_BITFIELDS) are for the caller
     *  to write.
     *  @param width at least 1
     *  @param height at least 1
     *  @param bits 1, 4, 8, 16, 24 or 32
     *  @returns the image, owned by the caller; null for a bad size or depth, or when there is not
     *  enough memory (a block never exceeds 2^31 - 1 bytes) */
    function DibMemAllocEx(width: number, height: number, bits: number): number;
    /** Begins a decode with the first bytes of a stream. They are copied.
     *  Image data is decoded only while at least 512 bytes of input remain, since more may follow:
     *  even a whole stream is finished by JpgDecNext with final 1, unless that much stands behind
     *  it.
     *  @param data block that holds the bytes
     *  @param size number of bytes, not more than the block has
     *  @param image the image with the result 1, else null; left alone by KIRVO_BUSY,
     *  KIRVO_NULL_HANDLE, KIRVO_BAD_PARAMETER and a failing copy
     *  @returns 1: finished, the image is the caller's; 0: more input is wanted, call JpgDecNext;
     *  KIRVO_BUSY while another encode or decode is under way; KIRVO_NULL_HANDLE;
     *  KIRVO_BAD_PARAMETER for a size below 0 or above the block's; KIRVO_NO_MEMORY;
     *  KIRVO_JPEG_EARLY_EOI; KIRVO_JPEG_HEADER; KIRVO_JPEG_FRAME; KIRVO_JPEG_MARKER (see
     *  JpgDecGetLastUexMarker); KIRVO_JPEG_HUFFMAN; KIRVO_ABANDONED when a progress handler has
     *  ended the decode */
    function JpgDecFirst(data: number | null, size: number, image: Uint32Array | null): number;
    /** Goes on with a decode that JpgDecFirst has begun. After any negative result the decode is
     *  over and its memory is free. To a progress handler of the decode the answer is KIRVO_BUSY,
     *  and the decode goes on; but with final -1 it ends as soon as the handler returns.
     *  @param data block that holds the next bytes, which are copied; may be null with final 1
     *  @param size number of bytes
     *  @param final 0: more is to come; 1: this is the last piece; -1: the decode is abandoned.
     *  Another value also has everything decoded, but reports a header's errors as while more may
     *  come.
     *  @param image the image with the result 1, else null
     *  @returns 1: finished, the image is the caller's (also when the decode had finished before:
     *  the same image); 0: more input is wanted; KIRVO_ABANDONED with final -1, or when a progress
     *  handler has ended the decode; KIRVO_NULL_HANDLE without data when final is not 1, for a
     *  handle that cannot be locked, and when no decode is under way; KIRVO_BAD_PARAMETER for a
     *  size below 0 or above the block's; KIRVO_NO_MEMORY; KIRVO_JPEG_NO_SOI when the stream has
     *  ended without a start of image; KIRVO_JPEG_HEADER for every fault of the header once final
     *  is 1; KIRVO_JPEG_EARLY_EOI and KIRVO_JPEG_FRAME while more may come; KIRVO_JPEG_MARKER (see
     *  JpgDecGetLastUexMarker); KIRVO_JPEG_HUFFMAN; KIRVO_BUSY to a progress handler of the decode */
    function JpgDecNext(data: number | null, size: number, final: number,
        image: Uint32Array | null): number;
    /** Decodes a stream that is in memory.
     *  @param data block that holds the stream; it is neither freed nor changed
     *  @param size number of bytes
     *  @param width pixels, written on success
     *  @param height pixels, written on success
     *  @param error KIRVO_OK; KIRVO_BUSY while another encode or decode is under way;
     *  KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for a size below 0 or above the block's;
     *  KIRVO_NO_MEMORY; KIRVO_JPEG_NO_SOI; KIRVO_JPEG_EARLY_EOI; KIRVO_JPEG_HEADER;
     *  KIRVO_JPEG_FRAME; KIRVO_JPEG_MARKER (see JpgDecGetLastUexMarker); KIRVO_JPEG_HUFFMAN;
     *  KIRVO_ABANDONED when a progress handler has ended the decode
     *  @returns the image, owned by the caller, or null */
    function JpgDecMainHGLOBAL(data: number | null, size: number, width: Uint32Array | null,
        height: Uint32Array | null, error: Int32Array | null): number;
    /** Does nothing. Callers of the full interface link with it.
     *  @param a ignored
     *  @param b ignored
     *  @param c ignored */
    function JpgDecSetNoblock(a: number, b: number, c: number): void;
    /** Switches the storing and the retrieval of comments on or off; off at first.
     *  @param enable 1 on, any other value off */
    function JpgDecGetCommentEnable(enable: number): void;
    /** Counts the comments of the last stream: those before its image data that are not empty,
     *  stored or not.
     *  @returns 0 to 5 */
    function JpgDecCommentCounts(): number;
    /** A stored comment: its bytes and a zero byte. The block stays the library's and lasts until
     *  JpgDecCommentFree or until the next stream is begun.
     *  @param index 0 to JpgDecCommentCounts - 1
     *  @returns the block; null for another index, when comments are switched off, and for a
     *  comment that was counted only */
    function JpgDecGetComment(index: number): number;
    /** Frees the stored comments; their count becomes 0. */
    function JpgDecCommentFree(): void;
    /** Quantisation tables 0 and 1 as they stood when the last decode reached its image data, 64
     *  values each, row by row; whether or not that stream defined them.
     *  @param luma table 0
     *  @param chroma table 1
     *  @returns 1; 0, and nothing written, when no decode has come that far yet */
    function JpgDecGetQtable(luma: Uint16Array | null, chroma: Uint16Array | null): number;
    /** One quantisation table of the last decode.
     *  @param number 0 to 3
     *  @param table 64 values, row by row
     *  @returns numbers of its own: 0; -1 for another number; -2 when no decode has reached its
     *  image data yet; -3 for a table that the stream did not define */
    function JpgDecGetQtableEx(number: number, table: Uint16Array | null): number;
    /** The marker that ended the last decode with KIRVO_JPEG_MARKER. The record is kept until the
     *  next such marker.
     *  @param position bytes up to and including the marker, counted in the input that the decoder
     *  held at that moment: the whole stream, or of a stream in pieces what was left when the last
     *  piece came, and that piece
     *  @returns the marker's second byte; 0 when there has been none */
    function JpgDecGetLastUexMarker(position: Uint32Array | null): number;
    /** Sizes of the most recent encode. Either pointer may be null.
     *  @param source_bytes size of the pixels encoded, without padding
     *  @param output_bytes length of the stream made by the last JpgCodMain... call
     *  @returns output_bytes */
    function JpgCodGetStatus(source_bytes: Uint32Array | null,
        output_bytes: Uint32Array | null): number;
    /** Starts to encode a rectangle in colour and writes the headers. A pending comment is taken
     *  up.
     *  @param dib packed DIB of 24 or 8 bits
     *  @param left rectangle in the picture
     *  @param top rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param mcus_per_call number of MCUs (blocks of 8 x 8, 16 x 8 or 16 x 16 pixels by sampling
     *  mode) that each JpgCodNext encodes; -1: all. With 0 or less than -1 no call gets on
     *  @param status KIRVO_OK; KIRVO_BUSY while an encode or decode is in progress;
     *  KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for an empty or negative rectangle; KIRVO_NEEDS_8_24
     *  for another depth; KIRVO_BAD_PARAMETER for a rectangle outside the image, or a block
     *  smaller than its header says; KIRVO_NO_MEMORY; KIRVO_ABANDONED when a progress handler has
     *  ended the encode
     *  @returns the block that receives the stream; it is the encoder's until JpgCodNext returns
     *  1. Null on failure */
    function JpgCodFirst(dib: number | null, left: number, top: number, width: number,
        height: number, mcus_per_call: number, status: Int32Array | null): number;
    /** Goes on with the encode that JpgCodFirst has started.
     *  @param control -1 ends the encode and frees its block; any other value goes on
     *  @param stream_bytes length of the stream, written when the encode is done
     *  @returns 1: done, the block of JpgCodFirst is the caller's; 0: call again (a call that has
     *  encoded its number of MCUs answers 0 even if none is left); KIRVO_ABANDONED after control
     *  -1; KIRVO_JPEG_CATEGORY for a coefficient that has no code; KIRVO_NO_MEMORY when the stream
     *  would outgrow its block; KIRVO_BAD_PARAMETER without an encode of this family. After an
     *  error the block has been freed */
    function JpgCodNext(control: number, stream_bytes: Uint32Array | null): number;
    /** Encodes a rectangle in colour into a memory block.
     *  @param dib packed DIB of 24 or 8 bits
     *  @param left rectangle in the picture
     *  @param top rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param stream_bytes length of the stream; the block is larger, and zero after it
     *  @param status KIRVO_OK; KIRVO_BUSY while an encode or decode is in progress;
     *  KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for a rectangle that is empty or outside the image,
     *  or a block smaller than its header says; KIRVO_NEEDS_8_24 for another depth;
     *  KIRVO_NO_MEMORY, also for a stream that outgrows its block; KIRVO_JPEG_CATEGORY;
     *  KIRVO_ABANDONED when a progress handler has ended the encode
     *  @returns the block, owned by the caller, or null */
    function JpgCodMainHGLOBAL(dib: number | null, left: number, top: number, width: number,
        height: number, stream_bytes: Uint32Array | null, status: Int32Array | null): number;
    /** Starts to encode a rectangle as a grey stream.
     *  @param dib packed DIB of 8 bits
     *  @param left rectangle in the picture
     *  @param top rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param grey_mode 1: a pixel's grey level is the blue byte of its colour-table entry; any
     *  other value: the pixel itself
     *  @param mcus_per_call as JpgCodFirst, of 8 x 8 pixels
     *  @param status KIRVO_OK; KIRVO_BUSY while an encode or decode is in progress;
     *  KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for an empty or negative rectangle; KIRVO_NEEDS_8
     *  for another depth; KIRVO_BAD_PARAMETER for a rectangle outside the image, or a block
     *  smaller than its header says; KIRVO_NO_MEMORY; KIRVO_ABANDONED when a progress handler has
     *  ended the encode
     *  @returns as JpgCodFirst */
    function JpgCodFirst_M(dib: number | null, left: number, top: number, width: number,
        height: number, grey_mode: number, mcus_per_call: number,
        status: Int32Array | null): number;
    /** Goes on with the encode that JpgCodFirst_M has started.
     *  @param control as JpgCodNext
     *  @param stream_bytes as JpgCodNext
     *  @returns 1: done, the block of JpgCodFirst_M is the caller's; 0: call again (a call that
     *  has encoded its number of MCUs answers 0 even if none is left); KIRVO_ABANDONED after
     *  control -1; KIRVO_JPEG_CATEGORY for a coefficient that has no code; KIRVO_NO_MEMORY when
     *  the stream would outgrow its block; KIRVO_BAD_PARAMETER without an encode of this family.
     *  After an error the block has been freed */
    function JpgCodNext_M(control: number, stream_bytes: Uint32Array | null): number;
    /** Encodes a rectangle as a grey stream into a memory block.
     *  @param dib packed DIB of 8 bits
     *  @param left rectangle in the picture
     *  @param top rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param grey_mode as JpgCodFirst_M
     *  @param stream_bytes as JpgCodMainHGLOBAL
     *  @param status KIRVO_OK; KIRVO_BUSY while an encode or decode is in progress;
     *  KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for a rectangle that is empty or outside the image,
     *  or a block smaller than its header says; KIRVO_NEEDS_8 for another depth; KIRVO_NO_MEMORY,
     *  also for a stream that outgrows its block; KIRVO_JPEG_CATEGORY; KIRVO_ABANDONED when a
     *  progress handler has ended the encode
     *  @returns the block, owned by the caller, or null */
    function JpgCodMainHGLOBAL_M(dib: number | null, left: number, top: number, width: number,
        height: number, grey_mode: number, stream_bytes: Uint32Array | null,
        status: Int32Array | null): number;
    /** Sets how colour streams sample chroma. The default is 4.
     *  @param mode 1: a sample per pixel; 2: halved across; 4: halved both ways
     *  @returns KIRVO_OK, or KIRVO_BAD_PARAMETER for another mode (the setting stays) */
    function JpgCodSetSubsample(mode: number): number;
    /** Selects one of the quality levels 2 to 5.
     *  @param q 0 to 3 for level 2 (finest) to 5 (coarsest)
     *  @returns KIRVO_OK, or KIRVO_BAD_PARAMETER for another value (the setting stays) */
    function JpgCodSetQ(q: number): number;
    /** Selects a quality level. The default is 4.
     *  @param level 1 (finest) to 5 (coarsest): a pair of fixed quantisation tables; level 5 also
     *  keeps only the first 21 coefficients of each block. 0: the tables of JpgCodSetQtable
     *  @returns KIRVO_OK, or KIRVO_BAD_PARAMETER for another level (the setting stays) */
    function JpgCodSetQEx(level: number): number;
    /** Loads quantisation tables of the caller's, which are used at level 0 only (JpgCodSetQEx).
     *  Until then they are all ones.
     *  @param luminance 64 quantisers of 1 to 255 in row-major order: entry row * 8 + column is
     *  for the vertical frequency row and the horizontal frequency column
     *  @param chrominance likewise
     *  @returns KIRVO_OK, or KIRVO_BAD_PARAMETER for a quantiser out of range or a null pointer
     *  (both tables stay) */
    function JpgCodSetQtable(luminance: Int16Array | null, chrominance: Int16Array | null): number;
    /** As JpgCodSetQtable, and sets how many coefficients of each block are coded at level 0.
     *  @param luminance as JpgCodSetQtable
     *  @param chrominance as JpgCodSetQtable
     *  @param count 1 to 64 coefficients in zigzag order, the others become 0; any other value
     *  means 64
     *  @returns KIRVO_OK, or KIRVO_BAD_PARAMETER for a quantiser out of range or a null pointer
     *  (both tables stay, and the number of coefficients) */
    function JpgCodSetQtableEx(luminance: Int16Array | null, chrominance: Int16Array | null,
        count: number): number;
    /** Sets a comment for the next stream only; one that is still pending is discarded.
     *  @param text the bytes of the comment; null: none
     *  @param length their number; 0: none. Above 65533 the length field of the segment wraps, so
     *  that decoders take the rest of the comment for other segments */
    function JpgCodSetComment(text: Uint8Array | null, length: number): void;
    /** Copies a rectangle into an image that was made of exactly its size. The destination's own
     *  width and height are not examined, only that its block can hold the rows.
     *  When width and height are those of the source, the whole source is copied and left and top
     *  are not looked at. The colour table (8 bits) or the masks (16, 32 bits with BI_BITFIELDS in
     *  the destination) are copied too. Otherwise the padding of each row receives the bytes that
     *  follow the rectangle in the source's row. An image may be copied onto itself.
     *  @param to packed DIB of the source's depth
     *  @param from packed DIB of 8, 16, 24 or 32 bits
     *  @param left rectangle in the source
     *  @param top rectangle in the source
     *  @param width rectangle in the source
     *  @param height rectangle in the source
     *  @returns KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for a negative left or top or a
     *  width or height below 1; KIRVO_NEEDS_8_16_24_32 for another depth or two different ones;
     *  KIRVO_BAD_PARAMETER for a rectangle outside the source or a block that is too small.
     *  Checked in this order, before anything is written. */
    function Dib24Copy(to: number | null, from: number | null, left: number, top: number,
        width: number, height: number): number;
    /** Copies a rectangle between two images of any sizes and one depth.
     *  When width and height are those of both images, the whole of the source is copied, row
     *  padding included, and the corners are not looked at. The colour table (8 bits) or the masks
     *  (16, 32 bits) go along. An image may be copied onto itself: the rows are copied one after
     *  the other from the bottom of the picture upward.
     *  @param to packed DIB of the source's depth
     *  @param to_left corner of the rectangle in the destination
     *  @param to_top corner of the rectangle in the destination
     *  @param from packed DIB of 8, 16, 24 or 32 bits
     *  @param from_left corner of the rectangle in the source
     *  @param from_top corner of the rectangle in the source
     *  @param width size of the rectangle
     *  @param height size of the rectangle
     *  @returns KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for a negative coordinate or a
     *  width or height below 1; KIRVO_NEEDS_8_16_24_32 for another depth or two different ones;
     *  KIRVO_BAD_PARAMETER for a rectangle outside either image or a block that is too small.
     *  Checked in this order, before anything is written. */
    function Dib24CopyEx(to: number | null, to_left: number, to_top: number, from: number | null,
        from_left: number, from_top: number, width: number, height: number): number;
    /** Duplicates a rectangle into a new image of the same depth, with its colour table or masks.
     *  @param from packed DIB of 8, 16, 24 or 32 bits
     *  @param left rectangle in the source
     *  @param top rectangle in the source
     *  @param width rectangle in the source
     *  @param height rectangle in the source
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for a rectangle outside the
     *  image or a block that is too small; KIRVO_NEEDS_8_16_24_32 for a depth below 8;
     *  KIRVO_NO_MEMORY. Checked in this order.
     *  @returns the image, owned by the caller, or null */
    function Dib24DupEx(from: number | null, left: number, top: number, width: number,
        height: number, status: Int32Array | null): number;
    /** Composes a rectangle of one image onto one of the same size of another.
     *  Per channel, with s of the source and d of the destination; pixels at 3 and 4 whole: - mode
     *  0, add: min(s + d, 255) - mode 1, average: (s + d) / 2, truncated - mode 2, black
     *  transparent: s, but d where all channels of s are 0 - mode 3, subtract: max(d - s, 0) -
     *  mode 4, key colour: s, but d where s is the key colour (see SetKeyColorDib24Add)
     *  At 32 bits the source's masks serve for both images, and bits outside them are cleared in
     *  every pixel written. When both are one image, each row works as if its source were copied
     *  first. Reports progress per row.
     *  @param to packed DIB of the source's depth, changed in place
     *  @param to_left corner of the rectangle in the destination
     *  @param to_top corner of the rectangle in the destination
     *  @param from packed DIB of 24 or 32 bits
     *  @param from_left corner of the rectangle in the source
     *  @param from_top corner of the rectangle in the source
     *  @param width size of the rectangle
     *  @param height size of the rectangle
     *  @param mode 0 to 4
     *  @returns KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for a negative coordinate, a size
     *  below 1 or another mode; KIRVO_NEEDS_24_32 for another depth or two different ones;
     *  KIRVO_BAD_PARAMETER for a rectangle outside either image or a block that is too small.
     *  Checked in this order. */
    function Dib24Add(to: number | null, to_left: number, to_top: number, from: number | null,
        from_left: number, from_top: number, width: number, height: number, mode: number): number;
    /** Sets the key colour of Dib24Add for the whole process. It is black at first.
     *  @param colour 0x00BBGGRR; the top byte is not looked at */
    function SetKeyColorDib24Add(colour: number): void;
    /** Turns a rectangle upside down, in place. A row of working memory is taken whatever the
     *  height. Reports progress per pair of rows.
     *  @param dib packed DIB of 8, 16, 24 or 32 bits
     *  @param left rectangle in the picture
     *  @param top rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @returns KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
     *  KIRVO_NO_MEMORY */
    function Dib24Flip(dib: number | null, left: number, top: number, width: number,
        height: number): number;
    /** Exchanges left and right in a rectangle, in place. Reports progress per row.
     *  @param dib packed DIB of 8, 16, 24 or 32 bits
     *  @param left rectangle in the picture
     *  @param top rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @returns KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small */
    function Dib24Mirror(dib: number | null, left: number, top: number, width: number,
        height: number): number;
    /** Turns a rectangle by 180 degrees, in place. A row of working memory is taken whatever the
     *  height. Reports progress per pair of rows.
     *  @param dib packed DIB of 8, 16, 24 or 32 bits
     *  @param left rectangle in the picture
     *  @param top rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @returns KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
     *  KIRVO_NO_MEMORY */
    function Dib24FlipMirror(dib: number | null, left: number, top: number, width: number,
        height: number): number;
    /** Turns a rectangle by 90 degrees into a new image of height x width pixels, with the
     *  source's colour table or masks. Reports progress per row of the source.
     *  @param dib packed DIB of 8, 16, 24 or 32 bits
     *  @param left rectangle in the picture
     *  @param top rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param direction 0 clockwise: the top left corner goes to the top right; 1
     *  counter-clockwise: it goes to the bottom left
     *  @param status KIRVO_OK; KIRVO_BAD_PARAMETER for another direction, before all else;
     *  KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32 for another depth; KIRVO_BAD_PARAMETER for a
     *  rectangle outside the image or a block that is too small; KIRVO_NO_MEMORY
     *  @returns the image, owned by the caller, or null */
    function Dib24Rotate(dib: number | null, left: number, top: number, width: number,
        height: number, direction: number, status: Int32Array | null): number;
    /** Resizes a rectangle into a new image by taking the nearest pixel.
     *  With sx = new_width / width and sy = new_height / height in double precision, destination
     *  pixel (i, j) is source pixel (trunc(i / sx + left), top + trunc(j / sy)). Both coordinates
     *  are cut to signed 16 bits, so that images above 32767 pixels give wrong columns or rows. A
     *  negative column leads into the row below, a negative row above the top row; where such
     *  bytes do not lie in the image's block, the pixel is the picture's nearest. Reports progress
     *  per row of the result; a copy, when the size stays, reports none.
     *  @param dib packed DIB of 8, 16, 24 or 32 bits
     *  @param left rectangle in the picture
     *  @param top rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param new_width size of the result, at least 1
     *  @param new_height size of the result, at least 1
     *  @param status KIRVO_OK; KIRVO_BAD_PARAMETER for a new size below 1, before all else;
     *  KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32 for another depth; KIRVO_BAD_PARAMETER for a
     *  rectangle outside the image or a block that is too small; KIRVO_NO_MEMORY, also for a
     *  result above 2^31 - 1 bytes. When the new size equals the rectangle's, the result is a copy
     *  made by Dib24Copy and the status is written only when its memory fails.
     *  @returns the image, owned by the caller, or null */
    function Dib24ZoomEx(dib: number | null, left: number, top: number, width: number,
        height: number, new_width: number, new_height: number, status: Int32Array | null): number;
    /** Resizes a rectangle into a new image by taking the nearest pixel, as Dib24ZoomEx but with
     *  32-bit coordinates, or by averaging.
     *  With smoothing, 16, 24 or 32 bits and no enlargement in either direction, a destination
     *  pixel is the truncated mean of each channel over the box of ceil(width / new_width) x
     *  ceil(height / new_height) source pixels that begins at its nearest pixel and extends right
     *  and down, beyond the rectangle too. The box ends at the bottom of the image; at its right
     *  edge padding that has room for a pixel counts as one. Reports progress as Dib24ZoomEx.
     *  @param dib packed DIB of 8, 16, 24 or 32 bits
     *  @param left rectangle in the picture
     *  @param top rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param new_width size of the result, at least 1
     *  @param new_height size of the result, at least 1
     *  @param status KIRVO_OK; KIRVO_BAD_PARAMETER for a new size below 1, before all else;
     *  KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32 for another depth; KIRVO_BAD_PARAMETER for a
     *  rectangle outside the image or a block that is too small; KIRVO_NO_MEMORY, also for a
     *  result above 2^31 - 1 bytes. When the new size equals the rectangle's, the result is a copy
     *  made by Dib24Copy and the status is written only when its memory fails.
     *  @param smooth 1 switches smoothing on, any other value off
     *  @returns the image, owned by the caller, or null */
    function Dib24ZoomEx2(dib: number | null, left: number, top: number, width: number,
        height: number, new_width: number, new_height: number, status: Int32Array | null,
        smooth: number): number;
    /** Inverts a rectangle in place: 255 - channel. At 16 and 32 bits the bits under the masks
     *  flip and all others stay.
     *  @param dib packed DIB of 16, 24 or 32 bits with a 40-byte header
     *  @param x rectangle
     *  @param y rectangle
     *  @param width rectangle
     *  @param height rectangle
     *  @returns KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small */
    function Dib24Negative(dib: number | null, x: number, y: number, width: number,
        height: number): number;
    /** Exchanges the channels of a rectangle in place. Bits outside the masks of a 32-bit image
     *  become 0.
     *  @param dib packed DIB of 24 or 32 bits with a 40-byte header
     *  @param mode what red, green and blue are taken from: 0 nothing changes (KIRVO_OK even for a
     *  null handle), 1 red, blue, green; 2 green, blue, red; 3 green, red, blue; 4 blue, red,
     *  green; 5 blue, green, red
     *  @param x rectangle
     *  @param y rectangle
     *  @param width rectangle
     *  @param height rectangle
     *  @returns KIRVO_OK; KIRVO_BAD_PARAMETER for another mode, before anything else is looked at;
     *  KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth; KIRVO_BAD_PARAMETER for a rectangle
     *  outside the image or a block that is too small */
    function Dib24RGBChange(dib: number | null, mode: number, x: number, y: number, width: number,
        height: number): number;
    /** Brightens or darkens: channel + level * 255 / 100 (truncated), clamped to 0..255. The masks
     *  of a 32-bit result are the 12 bytes that follow the source's header, also when the source
     *  has no masks.
     *  @param dib packed DIB of 24 or 32 bits
     *  @param x rectangle
     *  @param y rectangle
     *  @param width rectangle
     *  @param height rectangle
     *  @param level -100 to 100
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a rectangle outside the image, another level or a block that is too
     *  small; KIRVO_NO_MEMORY
     *  @returns the new image, or null */
    function Dib24Brightness(dib: number | null, x: number, y: number, width: number,
        height: number, level: number, status: Int32Array | null): number;
    /** Raises or lowers the contrast around mid-grey: channel * (level + 100) / 100 + -128 * level
     *  / 100 (both truncated), clamped to 0..255.
     *  @param dib packed DIB of 24 or 32 bits
     *  @param x rectangle
     *  @param y rectangle
     *  @param width rectangle
     *  @param height rectangle
     *  @param level -100 (all grey) to 100 (2 * channel - 128)
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a rectangle outside the image, another level or a block that is too
     *  small; KIRVO_NO_MEMORY
     *  @returns the new image, or null */
    function Dib24Contrast(dib: number | null, x: number, y: number, width: number, height: number,
        level: number, status: Int32Array | null): number;
    /** Turns a rectangle to grey: (77 red + 150 green + 29 blue + 128) / 256 in all three
     *  channels.
     *  @param dib packed DIB of 24 or 32 bits with a 40-byte header
     *  @param x rectangle
     *  @param y rectangle
     *  @param width rectangle
     *  @param height rectangle
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
     *  KIRVO_NO_MEMORY
     *  @returns a new 24-bit image, or null */
    function Dib24Monochrome(dib: number | null, x: number, y: number, width: number,
        height: number, status: Int32Array | null): number;
    /** Halves the intensity: channel / 2.
     *  @param dib packed DIB of 24 or 32 bits
     *  @param x rectangle
     *  @param y rectangle
     *  @param width rectangle
     *  @param height rectangle
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
     *  KIRVO_NO_MEMORY
     *  @returns the new image, or null */
    function Dib24HalfTone(dib: number | null, x: number, y: number, width: number, height: number,
        status: Int32Array | null): number;
    /** Multiplies all channels by a fraction: channel * numerator / denominator, truncated, 255 at
     *  most. With a denominator of 0 every channel but 0 becomes 255.
     *  @param dib packed DIB of 24 or 32 bits
     *  @param x rectangle
     *  @param y rectangle
     *  @param width rectangle
     *  @param height rectangle
     *  @param numerator 1 to 255
     *  @param denominator 0 or more
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a rectangle outside the image, another fraction or a block that is
     *  too small; KIRVO_NO_MEMORY
     *  @returns the new image, or null */
    function Dib24ToneCtrl(dib: number | null, x: number, y: number, width: number, height: number,
        numerator: number, denominator: number, status: Int32Array | null): number;
    /** Multiplies each channel by its factor: channel * factor, truncated, at most 255 (0 stays 0
     *  with an infinite factor).
     *  @param dib packed DIB of 24 or 32 bits
     *  @param x rectangle
     *  @param y rectangle
     *  @param width rectangle
     *  @param height rectangle
     *  @param red factors, 0 or more
     *  @param green factors, 0 or more
     *  @param blue factors, 0 or more
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a rectangle outside the image, a factor that is negative or not a
     *  number or a block that is too small; KIRVO_NO_MEMORY
     *  @returns the new image, or null */
    function Dib24ToneCtrlEx(dib: number | null, x: number, y: number, width: number,
        height: number, red: number, green: number, blue: number,
        status: Int32Array | null): number;
    /** Corrects the gamma: 255 * (channel / 255)^gamma in double precision, truncated. Gammas
     *  above 1 darken, those below brighten, 0 makes everything 255, and exactly 1 changes
     *  nothing.
     *  @param dib packed DIB of 24 bits
     *  @param x rectangle
     *  @param y rectangle
     *  @param width rectangle
     *  @param height rectangle
     *  @param gamma 0 or more
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24 for another depth;
     *  KIRVO_BAD_PARAMETER for a rectangle outside the image, a gamma that is negative or not a
     *  number or a block that is too small; KIRVO_NO_MEMORY
     *  @returns the new image, or null */
    function Dib24Gamma(dib: number | null, x: number, y: number, width: number, height: number,
        gamma: number, status: Int32Array | null): number;
    /** Corrects the gamma of each channel, as Dib24Gamma does. At 8 bits the result is a duplicate
     *  of the rectangle whose 256 colour-table entries are the source's, corrected; 0 and 100 are
     *  then the only progress messages.
     *  @param dib packed DIB of 8, 16, 24 or 32 bits
     *  @param x rectangle
     *  @param y rectangle
     *  @param width rectangle
     *  @param height rectangle
     *  @param red gammas, 0 or more
     *  @param green gammas, 0 or more
     *  @param blue gammas, 0 or more
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a rectangle outside the image, a gamma that is negative or not a
     *  number or a block that is too small; KIRVO_NO_MEMORY
     *  @returns the new image, or null */
    function DibGammaEx(dib: number | null, x: number, y: number, width: number, height: number,
        red: number, green: number, blue: number, status: Int32Array | null): number;
    /** Separates the channels: three new images of the source's depth, each with one channel and
     *  the others 0.
     *  @param dib packed DIB of 24 or 32 bits
     *  @param x rectangle
     *  @param y rectangle
     *  @param width rectangle
     *  @param height rectangle
     *  @param red the images, owned by the caller; all null on failure. An image whose pointer is
     *  null is not kept.
     *  @param green the images, owned by the caller; all null on failure. An image whose pointer
     *  is null is not kept.
     *  @param blue the images, owned by the caller; all null on failure. An image whose pointer is
     *  null is not kept.
     *  @returns KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small;
     *  KIRVO_NO_MEMORY */
    function Dib24Separate(dib: number | null, x: number, y: number, width: number, height: number,
        red: Uint32Array | null, green: Uint32Array | null, blue: Uint32Array | null): number;
    /** Maps every channel through a table: table[channel]. At 8 bits the result is a duplicate of
     *  the width x height pixels at the top left of the image, wherever the rectangle lies, whose
     *  256 colour-table entries are the source's, mapped; 0 and 100 are then the only progress
     *  messages.
     *  @param dib packed DIB of 8, 16, 24 or 32 bits
     *  @param x rectangle
     *  @param y rectangle
     *  @param width rectangle
     *  @param height rectangle
     *  @param table 256 bytes
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a rectangle outside the image, a null table or a block that is too
     *  small; KIRVO_NO_MEMORY
     *  @returns the new image, or null */
    function DibColorMapEx(dib: number | null, x: number, y: number, width: number, height: number,
        table: Uint8Array | null, status: Int32Array | null): number;
    /** Converts a colour to hue, saturation and value. The first of red, green and blue that is
     *  the largest channel decides where the hue is counted from; greys have hue 0.
     *  @param red channels, 0 to 255
     *  @param green channels, 0 to 255
     *  @param blue channels, 0 to 255
     *  @param hue 0 to 359
     *  @param saturation 0 to 255
     *  @param value 0 to 255 */
    function RGB2HSV(red: number, green: number, blue: number, hue: Int32Array | null,
        saturation: Int32Array | null, value: Int32Array | null): void;
    /** Saturation and value of a colour.
     *  @param red channels, 0 to 255
     *  @param green channels, 0 to 255
     *  @param blue channels, 0 to 255
     *  @param saturation largest channel minus smallest
     *  @param value largest channel */
    function RGB2SV(red: number, green: number, blue: number, saturation: Int32Array | null,
        value: Int32Array | null): void;
    /** Value of a colour.
     *  @param red channels, 0 to 255
     *  @param green channels, 0 to 255
     *  @param blue channels, 0 to 255
     *  @returns the largest channel */
    function RGB2V(red: number, green: number, blue: number): number;
    /** Converts hue, saturation and value to a colour. Channels are clamped to 0..255.
     *  @param hue 0 to 359; any other hue gives black
     *  @param saturation 0 to 255
     *  @param value 0 to 255
     *  @param red channels
     *  @param green channels
     *  @param blue channels */
    function HSV2RGB(hue: number, saturation: number, value: number, red: Int32Array | null,
        green: Int32Array | null, blue: Int32Array | null): void;
    /** Changes the hue of a whole image in place. Greys stay as they are. Reports progress per
     *  row.
     *  @param dib packed DIB of 24 bits
     *  @param mode 0 gives every pixel the hue; 1 does so and lowers the saturation to two thirds;
     *  2 turns every pixel's hue
     *  @param value degrees: 0 to 359 for modes 0 and 1, -259 to 359 for mode 2
     *  @returns KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for another mode or value;
     *  KIRVO_NEEDS_24 for another depth; KIRVO_BAD_PARAMETER for a block smaller than its header
     *  says */
    function DibModifyHue(dib: number | null, mode: number, value: number): number;
    /** Makes a copy of a rectangle with its hue changed. Greys stay as they are, apart from the
     *  bits outside the masks, which become 0. Reports progress per row.
     *  @param dib packed DIB of 16, 24 or 32 bits
     *  @param x rectangle
     *  @param y rectangle
     *  @param width rectangle
     *  @param height rectangle
     *  @param mode as for DibModifyHue
     *  @param value degrees, 0 to 359 for every mode
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a rectangle outside the image or a block that is too small, then
     *  for another mode or value; KIRVO_NO_MEMORY
     *  @returns the new image, owned by the caller, or null */
    function DibModifyHueEx(dib: number | null, x: number, y: number, width: number, height: number,
        mode: number, value: number, status: Int32Array | null): number;
    /** Blurs a rectangle with a fixed 3 × 3 kernel. Each channel becomes (11 × (sum of the four
     *  corners) + 30 × (sum of the four edge neighbours) + 81 × centre) >> 8.
     *  White darkens by 4 % a pass (255 becomes 244, then 233): the weights, four times 11, four
     *  times 30 and 81, add up to 245, and the sum is divided by 256. DibFilter3x3 keeps white
     *  white when its divisor is the sum of its weights.
     *  Neighbours outside the rectangle are not read: the pixel's own row or column takes their
     *  place. The exception is a rectangle one row high, whose row above is read from the image
     *  (as black beyond its top). Reports progress per row.
     *  @param dib packed DIB of 24 bits
     *  @param x rectangle in the picture
     *  @param y rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24; KIRVO_BAD_PARAMETER for a
     *  rectangle outside the image or a block too small; KIRVO_NO_MEMORY
     *  @returns a new 24-bit image of the rectangle, owned by the caller, or null */
    function Dib24Gausian(dib: number | null, x: number, y: number, width: number, height: number,
        status: Int32Array | null): number;
    /** Sets the kernel of DibFilter3x3, for the life of the process.
     *  @param k0 weights of the *stored row before* the pixel's, which is the row below it on
     *  screen, since rows are stored bottom-up; left, middle, right
     *  @param k1 weights of the *stored row before* the pixel's, which is the row below it on
     *  screen, since rows are stored bottom-up; left, middle, right
     *  @param k2 weights of the *stored row before* the pixel's, which is the row below it on
     *  screen, since rows are stored bottom-up; left, middle, right
     *  @param k3 weights of the pixel's own row; k4 is the pixel's
     *  @param k4 weights of the pixel's own row; k4 is the pixel's
     *  @param k5 weights of the pixel's own row; k4 is the pixel's
     *  @param k6 weights of the row above on screen
     *  @param k7 weights of the row above on screen
     *  @param k8 weights of the row above on screen
     *  @param divisor divides each weighted sum; 0 is stored as 1 */
    function SetFilter3x3(k0: number, k1: number, k2: number, k3: number, k4: number, k5: number,
        k6: number, k7: number, k8: number, divisor: number): void;
    /** Filters a rectangle with the kernel of SetFilter3x3. Each channel becomes the sum of
     *  channel × weight over the nine pixels, divided by the divisor (truncating toward zero) and
     *  clamped to 0..255. Sums are exact for every weight.
     *  Neighbours outside the rectangle are read; those outside the image are left out of the sum,
     *  so that a smoothing kernel darkens the border. Reports progress per row.
     *  @param dib packed DIB of 16, 24 or 32 bits
     *  @param x rectangle in the picture
     *  @param y rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_24_32; KIRVO_BAD_PARAMETER for a
     *  rectangle outside the image, a block too small, or when SetFilter3x3 has not been called
     *  yet; KIRVO_NO_MEMORY
     *  @returns a new image of the rectangle with the source's depth and masks, owned by the
     *  caller, or null */
    function DibFilter3x3(dib: number | null, x: number, y: number, width: number, height: number,
        status: Int32Array | null): number;
    /** Sets the mask of Dib24Mix3X3, for the life of the process. It starts as 9 8 9 / 8 10 8 / 9
     *  8 9.
     *  @param weights 9 weights in tenths, of any value, in picture order: row by row from the top
     *  left neighbour. Null changes nothing. */
    function Dib24Mix3X3SetMask(weights: Int32Array | null): void;
    /** Sets the mask of Dib24Mix5X5, for the life of the process. It starts as 5 6 7 6 5 / 6 8 9 8
     *  6 / 7 9 10 9 7 / 6 8 9 8 6 / 5 6 7 6 5.
     *  @param weights 25 weights in tenths, of any value, in picture order: row by row from the
     *  top left neighbour. Null changes nothing. */
    function Dib24Mix5X5SetMask(weights: Int32Array | null): void;
    /** Draws the 3 × 3 neighbours of one pixel towards its colour, in place. With m the mask's
     *  weight, each channel of a neighbour becomes (neighbour × m + centre × (10 − m)) / 10 and
     *  each of the centre centre × m / 10; truncating, exact for every weight, and clamped to
     *  0..255. A weight of 10 leaves a neighbour unchanged, 0 replaces it. Neighbours outside the
     *  image are left alone. No progress is reported.
     *  @param dib packed DIB of 16, 24 or 32 bits
     *  @param x the centre
     *  @param y the centre
     *  @returns KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_24_32; KIRVO_BAD_PARAMETER for a point
     *  outside the image or a block too small */
    function Dib24Mix3X3(dib: number | null, x: number, y: number): number;
    /** Draws the 5 × 5 neighbours of one pixel towards its colour, in place: as Dib24Mix3X3.
     *  @param dib packed DIB of 16, 24 or 32 bits
     *  @param x the centre
     *  @param y the centre
     *  @returns KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_24_32; KIRVO_BAD_PARAMETER for a point
     *  outside the image or a block too small */
    function Dib24Mix5X5(dib: number | null, x: number, y: number): number;
    /** Sharpens a rectangle, or shows its edges in grey.
     *  Works on the luminance Y = (77 R + 150 G + 29 B + 128) >> 8 and its Laplacian L = 4 × Y −
     *  (Y left + Y right + Y above + Y below). At the rectangle's edges a pixel stands in for its
     *  missing neighbour; a rectangle one row high has black (0) above it.
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
     *  @param x rectangle in the picture
     *  @param y rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param mode 0 to 5
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24; KIRVO_BAD_PARAMETER for a
     *  rectangle outside the image, a block too small or another mode; KIRVO_NO_MEMORY
     *  @returns a new 24-bit image of the rectangle, owned by the caller, or null */
    function Dib24Sharpen(dib: number | null, x: number, y: number, width: number, height: number,
        mode: number, status: Int32Array | null): number;
    /** Sharpens a rectangle as mode 0 of Dib24Sharpen does, with a choice of strength: the
     *  Laplacian is divided by 8, 6, 4 or 2.
     *  @param dib packed DIB of 24 bits
     *  @param x rectangle in the picture
     *  @param y rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param strength 0 (divides by 8) to 3 (by 2); any other value acts as 0
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24; KIRVO_BAD_PARAMETER for a
     *  rectangle outside the image or a block too small; KIRVO_NO_MEMORY
     *  @returns a new 24-bit image of the rectangle, owned by the caller, or null */
    function Dib24SharpenEx(dib: number | null, x: number, y: number, width: number, height: number,
        strength: number, status: Int32Array | null): number;
    /** Keeps the colours of a rectangle at its edges and paints the rest white, the padding of the
     *  rows included. With L the Laplacian of Dib24Sharpen, mode 0 keeps a pixel when L <
     *  −threshold or L > threshold, mode 1 when L > threshold, mode 2 when L < −threshold; any
     *  other mode keeps none.
     *  The colours come from the stored rows y to y + height − 1, counted from the bottom: unless
     *  the rectangle has the image's full height, that is the band mirrored about the middle of
     *  the picture, not the one whose edges were found. Reports progress of two passes (30, 70).
     *  @param dib packed DIB of 24 bits
     *  @param x rectangle in the picture
     *  @param y rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param threshold any value
     *  @param mode 0, 1 or 2
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24; KIRVO_BAD_PARAMETER for a
     *  rectangle outside the image or a block too small; KIRVO_NO_MEMORY
     *  @returns a new 24-bit image of the rectangle, owned by the caller, or null */
    function Dib24ColorEdge(dib: number | null, x: number, y: number, width: number, height: number,
        threshold: number, mode: number, status: Int32Array | null): number;
    /** Keeps channel values by range: a value that fails its channel's test becomes 0.
     *  A range holds the lower bound in bits 0-7, the upper bound in bits 8-15 and the test in
     *  bits 16-23: 0 anything passes, 1 lower ≤ v ≤ upper passes, 2 v < lower or v > upper passes.
     *  Bits 24-31 are ignored. Reports progress per row.
     *  @param dib packed DIB of 24 or 32 bits
     *  @param x rectangle in the picture
     *  @param y rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param red ranges
     *  @param green ranges
     *  @param blue ranges
     *  @param status KIRVO_OK; first of all KIRVO_BAD_PARAMETER for an upper bound below the lower
     *  one or a test above 2; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32; KIRVO_BAD_PARAMETER for a
     *  rectangle outside the image or a block too small; KIRVO_NO_MEMORY
     *  @returns a new image of the rectangle with the source's depth and masks, owned by the
     *  caller, or null */
    function Dib24Filter(dib: number | null, x: number, y: number, width: number, height: number,
        red: number, green: number, blue: number, status: Int32Array | null): number;
    /** Keeps pixels or channels by ranges in RGB or HSV.
     *  The ranges are a record of ten 16-bit fields: flags, then lower bound, upper bound and test
     *  of red or hue, of green or saturation, and of blue or value. Bounds are signed. Each
     *  argument holds two fields, the first in its low half:
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
     *  Example: keep the strong reds (hue 0 to 20, saturation 100 or more).
     *  @param dib packed DIB of 24 or 32 bits
     *  @param x rectangle in the picture
     *  @param y rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param range0 the record
     *  @param range1 the record
     *  @param range2 the record
     *  @param range3 the record
     *  @param range4 the record
     *  @param status KIRVO_OK; first of all KIRVO_BAD_PARAMETER for other flags, a bound above 255
     *  (above 359 for a hue), a lower bound above its upper one, or a test above 2 (negative
     *  bounds are accepted); KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32; KIRVO_BAD_PARAMETER for a
     *  rectangle outside the image or a block too small; KIRVO_NO_MEMORY
     *  @returns a new image of the rectangle with the source's depth and masks, owned by the
     *  caller, or null */
    function Dib24FilterEx(dib: number | null, x: number, y: number, width: number, height: number,
        range0: number, range1: number, range2: number, range3: number, range4: number,
        status: Int32Array | null): number;
    /** Mosaic of a 24-bit image: DibMosaicEx for that depth alone.
     *  @param dib packed DIB of 24 bits
     *  @param x rectangle in the picture
     *  @param y rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param block size of the blocks in pixels, at least 1
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24; KIRVO_BAD_PARAMETER for a
     *  rectangle outside the image, a block of memory too small or a block size below 1;
     *  KIRVO_NO_MEMORY
     *  @returns a new 24-bit image of the rectangle, owned by the caller, or null */
    function Dib24Mosaic(dib: number | null, x: number, y: number, width: number, height: number,
        block: number, status: Int32Array | null): number;
    /** Mosaic by samples: every block of block × block pixels, counted from the rectangle's top
     *  left, takes the pixel at its own top left. A block of 1 gives a duplicate of the rectangle
     *  (without progress). Reports progress per row.
     *  @param dib packed DIB of 8, 16, 24 or 32 bits
     *  @param x rectangle in the picture
     *  @param y rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param block size of the blocks in pixels, at least 1; may exceed the rectangle
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32; KIRVO_BAD_PARAMETER for
     *  a rectangle outside the image, a block of memory too small or a block size below 1;
     *  KIRVO_NO_MEMORY
     *  @returns a new image of the rectangle with the source's depth, masks and colour table,
     *  owned by the caller, or null */
    function DibMosaicEx(dib: number | null, x: number, y: number, width: number, height: number,
        block: number, status: Int32Array | null): number;
    /** Mosaic by averages: every block of block × block pixels, counted from the rectangle's top
     *  left, takes the average of its channels (of its indexes at 8 bits), truncated.
     *  Blocks are clipped to the whole image, not to the rectangle: those at its right and bottom
     *  edges average the pixels beyond it too. At the right edge of the image a row counts for as
     *  many pixels as fit its padded length, so that padding can add one pixel of 16 or 24 bits or
     *  up to three of 8; the padding of the result is filled by the same rule. A block of 1 gives
     *  a duplicate of the rectangle (without progress). Reports progress per row of blocks.
     *  @param dib packed DIB of 8, 16, 24 or 32 bits
     *  @param x rectangle in the picture
     *  @param y rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param block size of the blocks in pixels, 1 to 1024
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32; KIRVO_BAD_PARAMETER for
     *  a rectangle outside the image, a block of memory too small or a block size outside 1 to
     *  1024; KIRVO_NO_MEMORY
     *  @returns a new image of the rectangle with the source's depth, masks and colour table,
     *  owned by the caller, or null */
    function DibMosaicEx2(dib: number | null, x: number, y: number, width: number, height: number,
        block: number, status: Int32Array | null): number;
    /** XORs a colour over a rectangle, in place. At 16 and 32 bits the pixel word is XORed with
     *  the colour put under the image's masks. Twice restores the image. Reports progress per row.
     *  @param dib packed DIB of 16, 24 or 32 bits
     *  @param x rectangle in the picture
     *  @param y rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param colour 0x00BBGGRR
     *  @returns KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_24_32; KIRVO_BAD_PARAMETER for a
     *  rectangle outside the image or a block too small */
    function Dib24XOR(dib: number | null, x: number, y: number, width: number, height: number,
        colour: number): number;
    /** Counts how often each channel value occurs in a rectangle. Pixels of 8 bits count by their
     *  colour-table entry, channels of 16 bits scaled to 8. Reports progress per row.
     *  @param dib packed DIB of 8, 16, 24 or 32 bits
     *  @param x rectangle in the picture
     *  @param y rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param red 256 counters each; may be null; untouched on failure
     *  @param green 256 counters each; may be null; untouched on failure
     *  @param blue 256 counters each; may be null; untouched on failure
     *  @returns KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_8_16_24_32; KIRVO_BAD_PARAMETER for a
     *  rectangle outside the image or a block too small */
    function DibHistgram(dib: number | null, x: number, y: number, width: number, height: number,
        red: Uint32Array | null, green: Uint32Array | null, blue: Uint32Array | null): number;
    /** Counts the different colours of an image: indexes at 1, 4 and 8 bits (fill bits at the end
     *  of a row do not count); whole words at 16 bits, bits outside the masks included; red, green
     *  and blue at 24 and 32 bits.
     *  The rows of a 16-bit image are taken to start 12 bytes after its header, whether it has
     *  masks or not. No progress is reported.
     *  @param dib packed DIB of 1, 4, 8, 16, 24 or 32 bits
     *  @param count the number; 0 on failure
     *  @returns KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for another depth or a block too
     *  small; KIRVO_NO_MEMORY */
    function DibCountColors(dib: number | null, count: Uint32Array | null): number;
    /** Makes an image of one colour.
     *  Colours go under the masks of the new image, and those of a new 16- or 32-bit image are
     *  zero: it is black, with zero masks, whatever the colour. No progress is reported.
     *  @param width size in pixels, at least 1
     *  @param height size in pixels, at least 1
     *  @param bits 16, 24 or 32
     *  @param colour 0x00BBGGRR
     *  @param status KIRVO_OK; KIRVO_BAD_PARAMETER for a bad size or depth; KIRVO_NO_MEMORY
     *  @returns the image, owned by the caller, or null */
    function Dib24Solid(width: number, height: number, bits: number, colour: number,
        status: Int32Array | null): number;
    /** Makes a horizontal gradient: each channel of column i is start + ((end − start) × i) /
     *  (width − 1), truncating; start alone when the width is 1. 16- and 32-bit images are black,
     *  as those of Dib24Solid. No progress is reported.
     *  @param width size in pixels, at least 1
     *  @param height size in pixels, at least 1
     *  @param bits 16, 24 or 32
     *  @param start colour of the left column, 0x00BBGGRR
     *  @param end colour of the right column
     *  @param status KIRVO_OK; KIRVO_BAD_PARAMETER for a bad size or depth; KIRVO_NO_MEMORY
     *  @returns the image, owned by the caller, or null */
    function Dib24Gradation1(width: number, height: number, bits: number, start: number,
        end: number, status: Int32Array | null): number;
    /** Makes a vertical gradient, from start at the top to end at the bottom: a Dib24Gradation1 of
     *  the sizes exchanged, turned by Dib24Rotate, which reports progress (per column). 16- and
     *  32-bit images are black, as those of Dib24Solid.
     *  @param width size in pixels, at least 1
     *  @param height size in pixels, at least 1
     *  @param bits 16, 24 or 32
     *  @param start colour of the top row, 0x00BBGGRR
     *  @param end colour of the bottom row
     *  @param status KIRVO_OK; KIRVO_BAD_PARAMETER for a bad size or depth; KIRVO_NO_MEMORY
     *  @returns the image, owned by the caller, or null */
    function Dib24Gradation2(width: number, height: number, bits: number, start: number,
        end: number, status: Int32Array | null): number;
    /** Makes a bilinear gradient between four corners. With j the row counted from the bottom, the
     *  ends of a row are left = bottom left + ((top left − bottom left) × j) / (height − 1), right
     *  likewise, and column i is left + ((right − left) × i) / (width − 1); all truncating. A size
     *  of 1 takes the bottom row or the left column. 16- and 32-bit images are black, as those of
     *  Dib24Solid. No progress is reported.
     *  @param width size in pixels, at least 1
     *  @param height size in pixels, at least 1
     *  @param bits 16, 24 or 32
     *  @param top_left colours 0x00BBGGRR
     *  @param top_right colours 0x00BBGGRR
     *  @param bottom_left colours 0x00BBGGRR
     *  @param bottom_right colours 0x00BBGGRR
     *  @param status KIRVO_OK; KIRVO_BAD_PARAMETER for a bad size or depth; KIRVO_NO_MEMORY
     *  @returns the image, owned by the caller, or null */
    function Dib24Gradation3(width: number, height: number, bits: number, top_left: number,
        top_right: number, bottom_left: number, bottom_right: number,
        status: Int32Array | null): number;
    /** Interleaves the rows of two images: stored row 2i of the result is row y1 + i of the first,
     *  stored row 2i + 1 row y2 + i of the second.
     *  Unlike elsewhere, y1 and y2 count stored rows, from the *bottom* of the picture. The
     *  padding of a 24-bit result carries the bytes that follow the region in the source (0 past
     *  the end of its block). Reports progress per pair of rows.
     *  @param first packed DIB of 24 or 32 bits
     *  @param x1 left column and lowest row of its region
     *  @param y1 left column and lowest row of its region
     *  @param second packed DIB of the same depth
     *  @param x2 left column and lowest row of its region
     *  @param y2 left column and lowest row of its region
     *  @param width size of both regions
     *  @param height size of both regions
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_BAD_PARAMETER for negative positions or
     *  sizes below 1; KIRVO_NEEDS_24_32 for unequal or other depths; KIRVO_BAD_PARAMETER for
     *  regions outside the images or blocks too small; KIRVO_NO_MEMORY
     *  @returns a new image of width × 2 height with the first image's masks, owned by the caller,
     *  or null */
    function Dib24InterLeave(first: number | null, x1: number, y1: number, second: number | null,
        x2: number, y2: number, width: number, height: number, status: Int32Array | null): number;
    /** Maximum or minimum filter over squares of (2 radius + 1) × (2 radius + 1) pixels: dilation
     *  or erosion of bright areas. Its cost does not depend on the radius.
     *  Squares are clipped to the whole image, not to the rectangle. Without the luminance flag
     *  each channel takes its own extreme. With it a pixel takes the colour of its brightest or
     *  darkest neighbour by Y = (77 R + 150 G + 29 B + 128) >> 8, so that no new colours arise: of
     *  several the lowest on screen, then the leftmost. The search starts with black at 0 (white
     *  at 255) and only a larger (smaller) Y replaces it, so that a square whose Y is 0 throughout
     *  gives black and one whose Y is 255 throughout white. Reports progress per row.
     *  @param dib packed DIB of 16, 24 or 32 bits
     *  @param x rectangle in the picture
     *  @param y rectangle in the picture
     *  @param width rectangle in the picture
     *  @param height rectangle in the picture
     *  @param radius 1 to 64
     *  @param maximum 0 for the minimum, else the maximum
     *  @param luminance 0 for channels on their own, else by luminance
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_24_32; KIRVO_BAD_PARAMETER for a
     *  rectangle outside the image, a block too small or another radius; KIRVO_NO_MEMORY
     *  @returns a new image of the rectangle with the source's depth and masks, owned by the
     *  caller, or null */
    function DibBlockMxM(dib: number | null, x: number, y: number, width: number, height: number,
        radius: number, maximum: number, luminance: number, status: Int32Array | null): number;
    /** Makes a 24-bit image of a 16- or 32-bit one. 5-bit 31 gives 248.
     *  @param dib packed DIB of 16 or 32 bits; a 16-bit one without masks is read as 5-5-5
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for an
     *  image without width or height
     *  @returns the new image, owned by the caller, or null */
    function DibConvert24bit(dib: number | null, status: Int32Array | null): number;
    /** Makes a 16-bit image of a 24- or 32-bit one. It is always 5-6-5 with the masks 0xF800,
     *  0x07E0 and 0x001F: (red & 0xF8) << 8 | (green & 0xFC) << 3 | blue >> 3.
     *  @param dib packed DIB of 24 or 32 bits
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for an
     *  image without width or height
     *  @returns the new image, owned by the caller, or null */
    function DibConvert16bit(dib: number | null, status: Int32Array | null): number;
    /** Makes a 32-bit image of a 16- or 24-bit one, with the masks 0x00FF0000, 0x0000FF00 and
     *  0x000000FF: red << 16 | green << 8 | blue.
     *  @param dib packed DIB of 16 or 24 bits; a 16-bit one without masks is read as 5-5-5
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_16_24 for another depth;
     *  KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for an
     *  image without width or height
     *  @returns the new image, owned by the caller, or null */
    function DibConvert32bit(dib: number | null, status: Int32Array | null): number;
    /** Makes a copy of a 24-bit image that keeps only the top bits of each channel.
     *  @param dib packed DIB of 24 bits with a 40-byte header
     *  @param red_bits bits of red kept, 0 to 8
     *  @param green_bits bits of green kept, 0 to 8
     *  @param blue_bits bits of blue kept, 0 to 8
     *  @param status KIRVO_OK; KIRVO_BAD_PARAMETER for a count outside 0 to 8 (before the handle
     *  is looked at), an image without width or height or a block smaller than its header says;
     *  KIRVO_NULL_HANDLE; KIRVO_NEEDS_24; KIRVO_NO_MEMORY
     *  @returns the new image, owned by the caller, or null */
    function DibCutDepth(dib: number | null, red_bits: number, green_bits: number,
        blue_bits: number, status: Int32Array | null): number;
    /** Makes an 8-bit image with error diffusion to 256 fixed colours.
     *  The palette is a cube of 7 levels of green (0, 64, 96, 128, 160, 192, 255) and 6 of blue
     *  and red (0, 64, 96, 128, 192, 255), with the 20 system colours in slots 0-9 and 246-255. A
     *  channel goes up to the level above it: to 64 from 32 on, to each further level from the one
     *  below it on. Rows are scanned right to left and left to right in turn, the bottom row right
     *  to left. What is left over of each channel goes on, in halves rounded down: 1/2 to the next
     *  pixel in scan direction, 1/4 below it, 1/8 below and ahead, 1/16 below and behind.
     *  @param dib packed DIB of 24 or 32 bits
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for an
     *  image without width or height
     *  @returns the new image, owned by the caller, or null */
    function DecreaseColor256(dib: number | null, status: Int32Array | null): number;
    /** Makes a 4-bit image with error diffusion, as DecreaseColor256 spreads it, to 16 fixed
     *  colours.
     *  Where any channel is above 128, each channel above 128 becomes 255 and the others 0
     *  (colours 8 to 15, counting red 1, green 2, blue 4); elsewhere each channel above 64 becomes
     *  128 and the others 0 (colours 0 to 6, and 8 for all three). Colour 7 (192, 192, 192) is in
     *  the palette but not used.
     *  @param dib packed DIB of 24 or 32 bits
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for an
     *  image without width or height
     *  @returns the new image, owned by the caller, or null */
    function DecreaseColor16(dib: number | null, status: Int32Array | null): number;
    /** Makes an 8-bit grey image, without diffusion.
     *  The palette has the 20 system colours in slots 0-9 and 246-255 and greys 20 to 255 in slots
     *  10 to 245. A pixel of luminance Y = (77 red + 150 green + 29 blue + 128) / 256 gets slot Y
     *  - 10, and no slot below 10.
     *  @param dib packed DIB of 24 or 32 bits
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for an
     *  image without width or height
     *  @returns the new image, owned by the caller, or null */
    function DecreaseColorMono256(dib: number | null, status: Int32Array | null): number;
    /** Makes an 8-bit image with the palette of KirvoCreatePalette and an ordered dither of 8 x 8
     *  pixels over the 6 x 6 x 6 cube of levels 0, 51, 102, 153, 204, 255: a channel value v
     *  becomes level v / 51, one more where v mod 51 is above the dither's threshold. The four
     *  cube colours that the palette lacks become pure green or pure blue.
     *  @param dib packed DIB of 24 or 32 bits
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for an
     *  image without width or height
     *  @returns the new image (biClrUsed 256), owned by the caller, or null */
    function Decrease256Fast(dib: number | null, status: Int32Array | null): number;
    /** Makes an 8-bit image with exactly the colours of the source.
     *  New colours receive slots in the order of their appearance, row by row from the bottom
     *  left. In mode 0 slots 0-7 and 247-255 are given to system colours beforehand and 239 slots
     *  are free, in mode 1 all 256 are. Slots not used are black.
     *  @param dib packed DIB of 24 or 32 bits
     *  @param mode 0 or 1
     *  @param status KIRVO_OK; KIRVO_BAD_PARAMETER for another mode, before the handle is looked
     *  at; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth; KIRVO_BAD_PARAMETER for a block
     *  smaller than its header says; KIRVO_NO_MEMORY, also for an image without width or height;
     *  KIRVO_MORE_THAN_256 when the free slots do not suffice
     *  @returns the new image (biClrUsed 256), owned by the caller, or null */
    function Decrease256PaletteEx(dib: number | null, mode: number,
        status: Int32Array | null): number;
    /** Decrease256PaletteEx with mode 0.
     *  @param dib packed DIB of 24 or 32 bits
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for an
     *  image without width or height; KIRVO_MORE_THAN_256 when the free slots do not suffice
     *  @returns the new image, owned by the caller, or null */
    function Decrease256Palette(dib: number | null, status: Int32Array | null): number;
    /** Makes a 4-bit image with exactly the colours of the source. In mode 0 only the 16 system
     *  colours are accepted: black, the six dark primaries, (128, 128, 128) in slot 7, (192, 192,
     *  192) in slot 8, the six bright ones and white. In mode 1 any 16 colours receive slots in
     *  the order of their appearance, row by row from the bottom left.
     *  @param dib packed DIB of 24 or 32 bits
     *  @param mode 0 or 1
     *  @param status KIRVO_OK; KIRVO_BAD_PARAMETER for another mode, before the handle is looked
     *  at; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth; KIRVO_BAD_PARAMETER for a block
     *  smaller than its header says; KIRVO_NO_MEMORY, also for an image without width or height;
     *  KIRVO_MORE_THAN_16 when the slots do not suffice
     *  @returns the new image (biClrUsed 16), owned by the caller, or null */
    function Decrease16PaletteEx(dib: number | null, mode: number,
        status: Int32Array | null): number;
    /** Decrease16PaletteEx with mode 0.
     *  @param dib packed DIB of 24 or 32 bits
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_24_32 for another depth;
     *  KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for an
     *  image without width or height; KIRVO_MORE_THAN_16 for a colour that is not of the 16
     *  @returns the new image, owned by the caller, or null */
    function Decrease16Palette(dib: number | null, status: Int32Array | null): number;
    /** Makes a 24-bit image of an indexed one.
     *  The colour table is looked for after 40 bytes of header, the rows after biSize +
     *  PaletteSize. An index is not compared with the number of colours.
     *  @param dib packed DIB of 1, 4 or 8 bits
     *  @param status KIRVO_OK; KIRVO_NULL_HANDLE; KIRVO_NEEDS_1_4_8 for another depth;
     *  KIRVO_BAD_PARAMETER for a block smaller than its header says; KIRVO_NO_MEMORY, also for an
     *  image without width or height
     *  @returns the new image, owned by the caller, or null */
    function IncreaseColor16M(dib: number | null, status: Int32Array | null): number;
    /** Reads one pixel of an image of any depth.
     *  Channels of 16-bit images are scaled to 8 bits with zero low bits (5-bit 31 reads as 248).
     *  @param dib packed DIB of 1, 4, 8, 16, 24 or 32 bits
     *  @param x column from the left
     *  @param y row from the top
     *  @param colour 0x00BBGGRR; left alone on failure
     *  @returns KIRVO_OK, or KIRVO_BAD_PARAMETER for a null handle, a pixel outside the image,
     *  another depth or a block too small */
    function DibGetPixelColor(dib: number | null, x: number, y: number,
        colour: Uint32Array | null): number;
    /** Writes one pixel of a direct-colour image. Channels are narrowed by truncation.
     *  @param dib packed DIB of 16, 24 or 32 bits
     *  @param x column from the left
     *  @param y row from the top
     *  @param colour 0x00BBGGRR
     *  @returns KIRVO_OK; KIRVO_BAD_PARAMETER for a null handle, a pixel outside the image or a
     *  block too small; KIRVO_NEEDS_16_24_32 for another depth */
    function DibSetPixelColor(dib: number | null, x: number, y: number, colour: number): number;
    /** Fills the pixels x0 to x1 (inclusive) of one row with a colour. Nothing is written, and the
     *  result is still KIRVO_OK, when x0 > x1.
     *  @param dib packed DIB of 16, 24 or 32 bits
     *  @param x0 first column
     *  @param x1 last column
     *  @param y row from the top
     *  @param colour 0x00BBGGRR
     *  @returns KIRVO_OK; KIRVO_BAD_PARAMETER for a null handle, a pixel outside the image or a
     *  block too small; KIRVO_NEEDS_16_24_32 for another depth */
    function DibSetLineColor(dib: number | null, x0: number, x1: number, y: number,
        colour: number): number;
}
