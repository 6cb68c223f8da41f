// Every function of the library but those of windows and files, and every named number. What they
// mean is in kirvo.d.ts. Written by script/bindings from interface/kirvo.txt: changes belong there.
import { declare, memory } from "./machine.js";

@{ constants }@

/** What each status code means. */
export const meanings = {
@{ meanings }@
};

@{ functions }@

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
