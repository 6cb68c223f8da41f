// Pictures. Written by script/bindings from interface/: changes belong there.
import * as flat from "./flat.js";

export { flat };

const HEADER = 40;
const MASKS = { 16: [0xF800, 0x07E0, 0x001F], 32: [0x00FF0000, 0x0000FF00, 0x000000FF] };
const owned = Symbol("a handle that becomes the picture's");
const gone = new FinalizationRegistry(flat.GlobalFree);

/** A call that was refused: `status` is the code, `code` its name. */
export class KirvoError extends Error {
    constructor(status, what) {
        const code = Object.keys(flat.meanings).find((name) => flat[name] === status) ?? `status ${status}`;
        super(`${what}: ${flat.meanings[code] ?? code}`);
        this.name = "KirvoError";
        this.status = status;
        this.code = code;
    }
}

function check(status, what) {
    if (status < 0)
        throw new KirvoError(status, what);
}

/** A colour as the library writes it: 0x00BBGGRR. */
export function rgb(red, green, blue) {
    return red | green << 8 | blue << 16;
}

function packed({ lower = 0, upper = 0, test = 0 } = {}) {
    return lower & 0xFF | (upper & 0xFF) << 8 | test << 16;
}

/** A picture: a packed DIB of 1, 4, 8, 16, 24 or 32 bits. Its memory is freed by free(), at the end
 *  of a `using`, or when nobody knows the picture any more. */
export class Image {
    #dib;
    #address;

    constructor(width, height, bits = 24) {
        const dib = width === owned ? height : width > 0 && height > 0 ? flat.DibMemAllocEx(width, height, bits) : 0;
        if (dib === 0)
            throw new KirvoError(flat.KIRVO_BAD_PARAMETER, "Image: no such size or depth");
        this.#dib = dib;
        this.#address = flat.GlobalLock(dib);
        flat.GlobalUnlock(dib);
        gone.register(this, dib, this);
        if (width !== owned)
            MASKS[bits]?.forEach((mask, index) => this.#view.setUint32(HEADER + 4 * index, mask, true));
    }

    /** The picture of a handle of the flat functions, which becomes the picture's own. */
    static fromHandle(handle) {
        if (flat.GlobalSize(handle) === 0)
            throw new KirvoError(flat.KIRVO_NULL_HANDLE, "fromHandle");
        return new Image(owned, handle);
    }

    /** Frees the picture now. */
    free() {
        gone.unregister(this);
        flat.GlobalFree(this.#dib);
        this.#dib = 0;
    }

    [Symbol.dispose ?? "dispose"]() {
        this.free();
    }

    // Size and pixels

    get width() { return this.#view.getInt32(4, true); }
    get height() { return this.#view.getInt32(8, true); }
    get bits() { return this.#view.getUint16(14, true); }

    /** The packed DIB for the flat functions; it stays the picture's. 0 once it is freed. */
    get handle() { return this.#dib; }

    get #view() {
        const bytes = this.#bytes;
        return new DataView(bytes.buffer, bytes.byteOffset, bytes.length);
    }

    get #bytes() {
        if (this.#dib === 0)
            throw new KirvoError(flat.KIRVO_NULL_HANDLE, "Image: the picture has been freed");
        return flat.bytesOf(this.#dib);
    }

    // The stored rows, the lowest first, and how many bytes each has.
    get #rows() {
        const bytes = this.#bytes;
        return { bytes: bytes.subarray(HEADER + flat.PaletteSize(this.#address)),
                 stride: Math.floor((this.width * this.bits + 31) / 32) * 4 };
    }

    /** A picture of 24 bits of an ImageData; what is transparent is laid over a colour. */
    static fromImageData({ width, height, data }, background = 0xFFFFFF) {
        if (data.length !== 4 * width * height)
            throw new RangeError(`${width} x ${height} pixels are ${4 * width * height} bytes, not ${data.length}`);
        const image = new Image(width, height);
        const { bytes, stride } = image.#rows;
        const [red, green, blue] = [background & 255, background >> 8 & 255, background >> 16 & 255];
        for (let y = 0, from = 0; y < height; ++y) {
            for (let to = (height - 1 - y) * stride, end = to + 3 * width; to < end; to += 3, from += 4) {
                const alpha = data[from + 3], rest = 255 - alpha;
                bytes[to] = alpha === 255 ? data[from + 2] : Math.round((data[from + 2] * alpha + blue * rest) / 255);
                bytes[to + 1] = alpha === 255 ? data[from + 1] : Math.round((data[from + 1] * alpha + green * rest) / 255);
                bytes[to + 2] = alpha === 255 ? data[from] : Math.round((data[from] * alpha + red * rest) / 255);
            }
        }
        return image;
    }

    /** The pixels for a canvas. Where there is no ImageData, an object with its width, height and data. */
    toImageData() {
        if (this.bits !== 24)
            return this.#with(24, (image) => image.toImageData());
        const { width, height } = this, { bytes, stride } = this.#rows;
        const data = new Uint8ClampedArray(4 * width * height);
        for (let y = 0, to = 0; y < height; ++y) {
            for (let from = (height - 1 - y) * stride, end = from + 3 * width; from < end; from += 3, to += 4) {
                data[to] = bytes[from + 2];
                data[to + 1] = bytes[from + 1];
                data[to + 2] = bytes[from];
                data[to + 3] = 255;
            }
        }
        return globalThis.ImageData ? new ImageData(data, width, height) : { width, height, data };
    }

    /** A picture of the bytes of a packed DIB. */
    static fromDib(bytes) {
        const dib = flat.blockOf(bytes);
        if (dib === 0)
            throw new KirvoError(flat.KIRVO_NO_MEMORY, "fromDib");
        const image = new Image(owned, dib);
        if (image.#isWhole)
            return image;
        image.free();
        throw new KirvoError(flat.KIRVO_BAD_PARAMETER, "fromDib");
    }

    // Whether the block holds all pixels that its header tells of.
    get #isWhole() {
        if (flat.GlobalSize(this.#dib) < HEADER || this.#view.getUint32(0, true) !== HEADER || this.width <= 0 ||
            this.height <= 0 || ![1, 4, 8, 16, 24, 32].includes(this.bits))
            return false;
        const { bytes, stride } = this.#rows;
        return bytes.length >= stride * this.height;
    }

    /** A copy of the packed DIB's bytes: what follows the first 14 bytes of a BMP file. */
    toDib() {
        return this.#bytes.slice();
    }

    /** A picture of 24 bits of the bytes of a JPEG file. */
    static fromJpeg(bytes) {
        const block = flat.blockOf(bytes), status = new Int32Array(1);
        const dib = flat.JpgDecMainHGLOBAL(block, bytes.length, new Uint32Array(1), new Uint32Array(1), status);
        flat.GlobalFree(block);
        if (dib === 0)
            throw new KirvoError(status[0] || flat.KIRVO_NO_MEMORY, "fromJpeg");
        return Image.fromHandle(dib);
    }

    /** The bytes of a JPEG file. level: 1 (finest) to 5; sampling of chroma: 1 each pixel, 2 halved
     *  across, 4 halved both ways. */
    toJpeg({ level = 2, sampling = 4 } = {}) {
        if (this.bits !== 24 && this.bits !== 8)
            return this.#with(24, (image) => image.toJpeg({ level, sampling }));
        check(flat.JpgCodSetQEx(level), "toJpeg: level");
        check(flat.JpgCodSetSubsample(sampling), "toJpeg: sampling");
        const length = new Uint32Array(1), status = new Int32Array(1);
        const block = flat.JpgCodMainHGLOBAL(this.#dib, 0, 0, this.width, this.height, length, status);
        if (block === 0)
            throw new KirvoError(status[0] || flat.KIRVO_NO_MEMORY, "toJpeg");
        const bytes = flat.bytesOf(block).slice(0, length[0]);
        flat.GlobalFree(block);
        return bytes;
    }

    /** Another picture of the same pixels. */
    copy() {
        return Image.fromDib(this.toDib());
    }

    /** The picture at another depth: 16, 24 or 32 bits. */
    convert(bits) {
        if (![16, 24, 32].includes(bits))
            throw new KirvoError(flat.KIRVO_BAD_PARAMETER, "convert: 16, 24 or 32 bits");
        if (bits === this.bits)
            return this.copy();
        if (this.bits <= 8 && bits !== 24)
            return this.#with(24, (image) => image.convert(bits));
        const function_ = this.bits <= 8 ? flat.IncreaseColor16M :
            { 16: flat.DibConvert16bit, 24: flat.DibConvert24bit, 32: flat.DibConvert32bit }[bits];
        return this.#make("convert", [1, 4, 8, 16, 24, 32], null, (dib, area, status) => function_(dib, status));
    }

    // Effects

%% for method in methods
%% set name = camel(method.name)
    @{ head(method) }@
%% if method.way == "static"
        const status = new Int32Array(1);
        return Image.#made("@{ name }@", @{ call(method) }@, status);
%% else
%% if method.way == "change"
        this.#ready(@{ depths(method) }@);
%% endif
%% set indent, end, returned = "", ");", "" if method.way == "change" else "return "
%% if method.other
        @{ "return " if method.makes }@other.#with(@{ bits_for(method) }@, (other) =>
%% set indent, end, returned = "    ", "));", ""
%% endif
        @{ indent }@@{ returned }@this.@{ helper(method) }@("@{ name }@", @{ depths(method) }@, @{ "area" if method.has_area else "null" }@,
        @{ indent }@    (@{ given(method) }@) => @{ call(method) }@@{ end }@
%% endif
    }

%% endfor
    /** Filters with a kernel of 3 x 3 weights, row by row from the top left neighbour. */
    filter3x3(weights, divisor = 0, area = null) {
        if (weights.length !== 9)
            throw new TypeError(`filter3x3: 9 weights are needed, not ${weights.length}`);
        const [a, b, c, d, e, f, g, h, i] = weights;
        const sum = weights.reduce((left, right) => left + right, 0);
        return this.#make("filter3x3", [16, 24, 32], area, (dib, inside, status) => {
            flat.SetFilter3x3(g, h, i, d, e, f, a, b, c, divisor || sum);
            return flat.DibFilter3x3(dib, ...inside, status);
        });
    }

    /** Keeps colours by ranges. flags: 0x101 channels of RGB, 0x102 pixels of RGB, 0x202 pixels by
     *  hue, saturation and value. */
    keepColours(flags, first = {}, second = {}, third = {}, area = null) {
        const fields = [flags, ...[first, second, third].flatMap(
            ({ lower = 0, upper = 0, test = 0 }) => [lower, upper, test])];
        const words = [0, 2, 4, 6, 8].map((at) => (fields[at] & 0xFFFF | (fields[at + 1] & 0xFFFF) << 16) >>> 0);
        return this.#make("keepColours", [24, 32], area,
            (dib, inside, status) => flat.Dib24FilterEx(dib, ...inside, ...words, status));
    }

    /** Three pictures with one channel each: red, green, blue. */
    separate(area = null) {
        const made = [0, 1, 2].map(() => new Uint32Array(1));
        this.#apply("separate", [24, 32], area, (dib, inside) => flat.Dib24Separate(dib, ...inside, ...made));
        return made.map(([handle]) => Image.fromHandle(handle));
    }

    /** How often each value of each channel occurs: red, green, blue. */
    histogram(area = null) {
        const [red, green, blue] = [0, 1, 2].map(() => new Uint32Array(256));
        this.#apply("histogram", [8, 16, 24, 32], area,
            (dib, inside) => flat.DibHistgram(dib, ...inside, red, green, blue));
        return { red, green, blue };
    }

    /** The number of different colours. */
    countColours() {
        const count = new Uint32Array(1);
        this.#apply("countColours", [1, 4, 8, 16, 24, 32], null, (dib) => flat.DibCountColors(dib, count));
        return count[0];
    }

    /** A pixel's colour, 0x00BBGGRR. */
    getPixel(x, y) {
        const colour = new Uint32Array(1);
        this.#apply("getPixel", [this.bits], null, (dib) => flat.DibGetPixelColor(dib, x, y, colour));
        return colour[0];
    }

    /** The colour that compose leaves out in mode 4, for all pictures. */
    static keyColour(colour) {
        flat.SetKeyColorDib24Add(colour);
    }

    /** The weights of mix3x3 and mix5x5 in tenths, row by row from the top left neighbour, for all
     *  pictures. */
    static mixMasks(three, five) {
        flat.Dib24Mix3X3SetMask(Int32Array.from(three));
        flat.Dib24Mix5X5SetMask(Int32Array.from(five));
    }

    // How a function of the library is called

    #inside(area) {
        const { x = 0, y = 0, width = this.width - x, height = this.height - y } = area ?? {};
        return [x, y, width, height];
    }

    // Calls back with a picture of these bits, which is gone afterwards.
    #with(bits, use) {
        const image = this.convert(bits);
        try {
            return use(image);
        } finally {
            image.free();
        }
    }

    #at(depths, use) {
        return depths.includes(this.bits) ? use(this) : this.#with(24, use);
    }

    // Calls a function that makes a picture.
    #make(what, depths, area, call) {
        return this.#at(depths, (source) => {
            const status = new Int32Array(1);
            return Image.#made(what, call(source.#dib, source.#inside(area), status), status);
        });
    }

    static #made(what, dib, status) {
        if (dib === 0)
            throw new KirvoError(status[0] || flat.KIRVO_NO_MEMORY, what);
        return Image.fromHandle(dib);
    }

    // Calls a function that works on what is there.
    #apply(what, depths, area, call) {
        this.#at(depths, (source) => check(call(source.#dib, source.#inside(area)), what));
    }

    // A copy on which a function has worked.
    #changed(what, depths, area, call) {
        const image = depths.includes(this.bits) ? this.copy() : this.convert(24);
        try {
            check(call(image.#dib, image.#inside(area)), what);
            return image;
        } catch (error) {
            image.free();
            throw error;
        }
    }

    // Becomes a picture of 24 bits when its depth is none of these.
    #ready(depths) {
        if (depths.includes(this.bits))
            return;
        const image = this.convert(24);
        gone.unregister(image);
        this.free();
        this.#dib = image.#dib;
        this.#address = image.#address;
        gone.register(this, this.#dib, this);
    }
}
