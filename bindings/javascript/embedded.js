// One file: the compiled code is in it.
import { start } from "./machine.js";
import code from "kirvo.wasm";

await start(code);
export * from "./image.js";
