import { Area, flat, Image, KirvoError, rgb } from "kirvo-wasm";
import { Image as Embedded } from "kirvo-wasm/embedded";

const part: Area = { x: 1, width: 5 };
const picture = Image.solid(40, 30, rgb(1, 2, 3)).brightness(30, part).resize(20, 10);
const copied: Uint8Array = picture.toDib();
const other: Embedded = picture.copy();
const [red]: Image[] = picture.separate();
const counts: Uint32Array = red.histogram({ y: 2 }).green;
picture.paste(other, 1, 1);
const status = new Int32Array(1);
const handle: number = flat.Dib24Gausian(picture.handle, 0, 0, 20, 10, status);
flat.GlobalFree(handle);
flat.JpgCodGetStatus(null, null);
try {
    picture.crop(0, 0, 100, 100);
} catch (error) {
    if (error instanceof KirvoError && error.status === flat.KIRVO_BAD_PARAMETER)
        console.log(error.code.toLowerCase(), error.message, counts, copied);
}
picture.toImageData().data.fill(0);
picture.free();

// @ts-expect-error
picture.brightness("30");
// @ts-expect-error
picture.brightnes(30);
// @ts-expect-error
const text: string = picture.toJpeg();
// @ts-expect-error
flat.Dib24Gausian(picture.handle, 0, 0, 20, 10);
// @ts-expect-error
flat.Dib24Gausian(picture.handle, 0, 0, 20, 10, new Uint32Array(1));
// @ts-expect-error
picture.width = 3;
// @ts-expect-error
flat.DibReadEx;
