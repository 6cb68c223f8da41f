// node replay_node.mjs MODULE RECORDING: fails when anything differs.
import { pathToFileURL } from "node:url";
import "./replay.js";

const [module, recording] = process.argv.slice(2).map((path) => pathToFileURL(path));
const kirvo = await import(module);
await import(recording);
const differences = replay(await globalThis.kirvo?.ready ?? kirvo, recorded);
console.log(`${recorded.length} steps, ${differences.length} differences`);
console.log(differences.slice(0, 20).join("\n"));
process.exit(differences.length > 0 || recorded.length === 0 ? 1 : 0);
