// The compiled code lies beside this module.
import { start } from "./machine.js";

const place = new URL("kirvo.wasm", import.meta.url);
if (place.protocol === "file:") {
    const { readFile } = await import("node:fs/promises");
    await start(await readFile(place));
} else {
    const answer = await fetch(place);
    if (!answer.ok)
        throw new Error(`${place}: ${answer.status} ${answer.statusText}`);
    await start(await answer.arrayBuffer());
}
export * from "./image.js";
