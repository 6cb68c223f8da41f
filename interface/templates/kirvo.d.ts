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

%% for method in methods
@{ method_documentation(method) }@
@{ method_type(method) }@

%% endfor
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

@{ functions }@
}
