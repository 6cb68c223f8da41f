// For pages, also from a disk: a classic script that makes the global `kirvo`, whose `ready` is a
// promise of itself.
import * as kirvo from "./image.js";
import { start } from "./machine.js";
import code from "kirvo.wasm";

globalThis.kirvo = { ...kirvo, ready: start(code).then(() => globalThis.kirvo) };
