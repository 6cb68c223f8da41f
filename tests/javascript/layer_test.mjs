// What the pictures of the package promise.
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { test } from "node:test";
import { pathToFileURL } from "node:url";

const { Image, flat, KirvoError, rgb } = await import(pathToFileURL(`${process.env.KIRVO_PACKAGE}/kirvo.mjs`));

// Every pixel has a colour of its own.
function varied(width, height) {
    const data = new Uint8ClampedArray(4 * width * height);
    for (let i = 0; i < width * height; ++i)
        data.set([i & 255, i >> 8, 255 - (i & 255), 255], 4 * i);
    return Image.fromImageData({ width, height, data });
}

function refused(status, call) {
    assert.throws(call, (error) => error instanceof KirvoError && error instanceof Error &&
        error.status === flat[status] && error.code === status && error.message.length > 20);
}

test("pixels come back from a picture as they went in", () => {
    for (const width of [1, 2, 3, 4, 5, 61]) {
        const image = varied(width, 7);
        assert.deepEqual([image.width, image.height, image.bits], [width, 7, 24]);
        const { data } = image.toImageData();
        assert.deepEqual(data, varied(width, 7).toImageData().data);
        assert.deepEqual([...data.slice(0, 4)], [0, 0, 255, 255]);
        const last = 7 * width - 1;
        assert.deepEqual([...data.slice(-4)], [last & 255, last >> 8, 255 - (last & 255), 255]);
        assert.equal(image.getPixel(width - 1, 6), rgb(last & 255, last >> 8, 255 - (last & 255)));
    }
});

test("what is transparent is laid over a colour", () => {
    const pixels = { width: 3, height: 1, data: Uint8ClampedArray.of(9, 9, 9, 0, 100, 0, 0, 51, 1, 2, 3, 255) };
    const white = Image.fromImageData(pixels), green = Image.fromImageData(pixels, rgb(0, 255, 0));
    assert.equal(white.getPixel(0, 0), 0xFFFFFF);
    assert.equal(white.getPixel(1, 0), rgb(224, 204, 204)); // a fifth of 100 and four of 255
    assert.equal(white.getPixel(2, 0), rgb(1, 2, 3));
    assert.equal(green.getPixel(1, 0), rgb(20, 204, 0));
});

test("an effect gives a new picture and leaves its own alone", () => {
    const image = varied(20, 10), before = image.toDib();
    const results = [image.negative(), image.flip(), image.brightness(10), image.blur(), image.exclusiveOr(5)];
    assert.deepEqual(image.toDib(), before);
    assert.equal(results[0].getPixel(3, 0), rgb(252, 255, 3));
    assert.equal(results[1].getPixel(0, 9), image.getPixel(0, 0));
    assert.equal(results[2].getPixel(3, 0), rgb(28, 25, 255)); // a tenth of 255 more
});

test("a method that changes the picture changes it, whatever its depth", () => {
    const image = Image.solid(8, 8, 0), other = Image.solid(2, 2, rgb(1, 2, 3)).convert(32);
    image.paste(other, 3, 4);
    image.setPixel(0, 0, rgb(9, 8, 7));
    image.setLine(2, 5, 1, rgb(4, 4, 4));
    assert.deepEqual([[3, 4], [5, 4], [0, 0], [2, 1], [6, 1]].map(([x, y]) => image.getPixel(x, y)),
        [rgb(1, 2, 3), 0, rgb(9, 8, 7), rgb(4, 4, 4), 0]);
    const grey = image.reduceGrey();
    assert.equal(grey.bits, 8);
    grey.paste(other);
    assert.equal(grey.bits, 24);
    assert.equal(grey.getPixel(1, 1), rgb(1, 2, 3));
});

test("a method that changes the picture keeps a depth that it takes", () => {
    const small = Image.solid(2, 2, rgb(1, 2, 3));
    const methods = [["paste", small], ["setPixel", 1, 1, 0], ["setLine", 1, 3, 1, 0], ["mix3x3", 3, 3], ["mix5x5", 3, 3],
                     ["compose", small]];
    for (const [name, ...given] of methods)
        for (const bits of name === "compose" ? [24, 32] : [16, 24, 32]) {
            const image = varied(8, 8).convert(bits);
            image[name](...given);
            assert.equal(image.bits, bits, name);
        }
});

test("the bytes of a packed DIB make a picture, if they are all there", () => {
    for (const image of [varied(5, 4), varied(5, 4).convert(16), varied(5, 4).convert(32), varied(9, 2).reduce256()]) {
        const bytes = image.toDib(), copy = Image.fromDib(bytes);
        assert.deepEqual(copy.toDib(), bytes);
        assert.deepEqual(copy.toImageData().data, image.toImageData().data);
        refused("KIRVO_BAD_PARAMETER", () => Image.fromDib(bytes.slice(0, -1)));
        for (const at of [0, 4, 8, 14]) { // header size, width, height, bits
            const changed = bytes.slice();
            changed[at] += 77;
            refused("KIRVO_BAD_PARAMETER", () => Image.fromDib(changed));
        }
        const upsideDown = bytes.slice();
        upsideDown.fill(0xFF, 8, 12);
        refused("KIRVO_BAD_PARAMETER", () => Image.fromDib(upsideDown));
    }
    refused("KIRVO_BAD_PARAMETER", () => Image.fromDib(new Uint8Array(3)));
    refused("KIRVO_BAD_PARAMETER", () => Image.fromDib(new Uint8Array(0)));
});

test("an area is what is worked on", () => {
    const image = Image.solid(6, 4, rgb(1, 1, 1)).negative({ x: 2, y: 1, height: 2 });
    assert.deepEqual([[1, 1], [2, 1], [5, 2], [2, 3], [2, 0]].map(([x, y]) => image.getPixel(x, y)),
        [0x010101, 0xFEFEFE, 0xFEFEFE, 0x010101, 0x010101]);
    refused("KIRVO_BAD_PARAMETER", () => image.negative({ x: 5, width: 2 }));
});

test("every depth goes through every effect", () => {
    const image = varied(12, 10);
    for (const bits of [16, 24, 32]) {
        assert.equal(image.convert(bits).bits, bits);
        assert.equal(image.convert(bits).convert(bits).bits, bits);
        assert.equal(image.convert(bits).sharpen().bits, 24); // which takes 24 only
    }
    for (const few of [image.reduce256(), image.reduce16(), image.exact256(), new Image(3, 3, 1)]) {
        assert.ok(few.bits <= 8);
        assert.equal(few.convert(32).bits, 32);
        assert.equal(few.blur().bits, 24);
        assert.equal(few.toImageData().data.length, 4 * few.width * few.height);
    }
});

test("a kernel lies as it is written", () => {
    const image = Image.solid(5, 5, 0);
    image.setPixel(2, 2, rgb(90, 90, 90));
    const moved = image.filter3x3([1, 0, 0, 0, 0, 0, 0, 0, 0]); // each takes its top left neighbour
    assert.equal(moved.getPixel(3, 3), rgb(90, 90, 90));
    assert.equal(moved.getPixel(2, 2), 0);
});

test("colours are kept by ranges", () => {
    const image = Image.gradientAcross(8, 1, rgb(0, 50, 0), rgb(255, 50, 0));
    const dark = image.keepColours(0x102, { lower: 0, upper: 100, test: 1 });
    assert.equal(dark.getPixel(0, 0), image.getPixel(0, 0));
    assert.notEqual(dark.getPixel(7, 0), image.getPixel(7, 0));
    assert.equal(image.keepChannels({ lower: 0, upper: 255, test: 1 }, {}, {}).countColours(), image.countColours());
});

test("counts and channels", () => {
    const image = Image.solid(4, 5, rgb(1, 2, 3));
    const { red, green, blue } = image.histogram();
    assert.deepEqual([red[1], green[2], blue[3], red[0]], [20, 20, 20, 0]);
    assert.equal(image.histogram({ height: 2 }).red[1], 8);
    assert.equal(image.countColours(), 1);
    assert.deepEqual(image.separate().map((one) => one.getPixel(0, 0)), [0x000001, 0x000200, 0x030000]);
});

test("JPEG streams", () => {
    const image = Image.gradientDown(64, 64, rgb(0, 0, 0), rgb(255, 128, 0));
    const fine = image.toJpeg({ level: 1, sampling: 1 }), coarse = image.toJpeg({ level: 5 });
    assert.deepEqual([...fine.slice(0, 2), ...fine.slice(-2)], [0xFF, 0xD8, 0xFF, 0xD9]);
    assert.ok(coarse.length < fine.length);
    const read = Image.fromJpeg(fine);
    for (const y of [0, 20, 63])
        assert.ok(Math.abs((read.getPixel(9, y) & 255) - (image.getPixel(9, y) & 255)) < 4);
    assert.deepEqual(image.convert(32).toJpeg({ level: 1, sampling: 1 }), fine);
    refused("KIRVO_BAD_PARAMETER", () => image.toJpeg({ level: 9 }));
    refused("KIRVO_JPEG_HEADER", () => Image.fromJpeg(fine.slice(0, 100)));
    refused("KIRVO_JPEG_NO_SOI", () => Image.fromJpeg(new Uint8Array(0)));
});

test("what is refused is an error with its reason", () => {
    const image = varied(5, 5);
    refused("KIRVO_BAD_PARAMETER", () => image.crop(3, 3, 9, 9));
    refused("KIRVO_BAD_PARAMETER", () => new Image(0, 5));
    refused("KIRVO_BAD_PARAMETER", () => new Image(5, 5, 7));
    refused("KIRVO_BAD_PARAMETER", () => image.convert(8));
    refused("KIRVO_MORE_THAN_16", () => image.exact16());
    assert.throws(() => image.brightness("much"), TypeError);
    assert.throws(() => image.brightness(), TypeError);
    assert.throws(() => image.mapChannels([1, 2, 3]), TypeError);
    assert.throws(() => flat.GlobalSize(), TypeError);
    assert.throws(() => flat.DibGetPixelColor(image.handle, 0, 0, new Uint8Array(1)), TypeError);
    assert.throws(() => flat.DibHistgram(image.handle, 0, 0, 5, 5, ...[0, 1, 2].map(() => new Uint32Array(9))),
        TypeError);
    assert.throws(() => image.resize(2.5, 3), TypeError);
    assert.throws(() => image.filter3x3([1, 2, 3]), TypeError);
    assert.throws(() => image.paste({}), TypeError);
    assert.throws(() => Image.fromImageData({ width: 2, height: 2, data: new Uint8ClampedArray(15) }), RangeError);
    refused("KIRVO_NULL_HANDLE", () => Image.fromHandle(0));
    refused("KIRVO_NULL_HANDLE", () => Image.fromHandle(12345));
});

test("statuses have the numbers of the header", async () => {
    const header = await readFile(new URL("../../include/kirvo.h", import.meta.url), "utf8");
    const statuses = [...header.matchAll(/^ {4}(KIRVO_\w+) = (-?\d+)/gm)].map(([, name, value]) => [name, Number(value)]);
    assert.deepEqual(Object.fromEntries(Object.keys(flat.meanings).map((name) => [name, flat[name]])),
        Object.fromEntries(statuses));
});

test("a picture that is freed is refused", () => {
    const image = varied(5, 5), handle = image.handle;
    assert.equal(flat.GlobalSize(handle), 40 + 16 * 5);
    image.free();
    image.free();
    assert.equal(flat.GlobalSize(handle), 0);
    assert.equal(image.handle, 0);
    for (const call of [() => image.blur(), () => image.width, () => image.toImageData(), () => image.getPixel(0, 0),
                        () => image.copy(), () => varied(5, 5).paste(image)])
        refused("KIRVO_NULL_HANDLE", call);
});

test("pictures that nobody knows are freed", async () => {
    const handles = Array.from({ length: 100 }, () => varied(50, 50).blur().handle);
    const kept = varied(50, 50);
    for (let i = 0; i < 50 && handles.some((handle) => flat.GlobalSize(handle)); ++i) {
        gc();
        await new Promise((resolve) => setTimeout(resolve, 10));
    }
    assert.ok(handles.filter((handle) => flat.GlobalSize(handle)).length < 3);
    assert.equal(kept.width, 50);
});

test("memory grows and comes back", () => {
    const size = 2000;
    for (let i = 0; i < 30; ++i) { // 12 MB each, 24 with the copy
        const image = Image.solid(size, size, i), turned = image.rotate90();
        assert.equal(turned.getPixel(size - 1, 0), i);
        turned.free();
        image.free();
    }
    const block = flat.GlobalAlloc(flat.GHND, 10);
    assert.ok(flat.bytesOf(block).buffer.byteLength < 100 << 20);
    flat.GlobalFree(block);
});

test("code that cannot be compiled is told in words", async () => {
    const source = await readFile(new URL("../../bindings/javascript/machine.js", import.meta.url), "base64");
    const { start } = await import(`data:text/javascript;base64,${source}`);
    await assert.rejects(start(Uint8Array.of(0, 97, 115, 109, 1, 0, 0, 0, 77)),
        (error) => error.message.includes("vectors") && error.cause instanceof WebAssembly.CompileError);
});

test("what is too large for memory is refused", () => {
    refused("KIRVO_BAD_PARAMETER", () => new Image(100000, 100000));
    refused("KIRVO_NO_MEMORY", () => varied(5, 5).resize(60000, 60000));
    assert.equal(flat.GlobalAlloc(flat.GHND, 0xFFFF0000), 0);
    assert.equal(varied(5, 5).blur().width, 5);
});
