// The instance of the library, and how its functions are called from JavaScript.

let library = null;

/** Starts the library: the bytes of its compiled code. */
export async function start(code) {
    try {
        library = (await WebAssembly.instantiate(code, imports)).instance.exports;
    } catch (cause) {
        throw new Error("kirvo-wasm needs an engine with WebAssembly's 128-bit vectors, and its code unchanged",
            { cause });
    }
    library._initialize();
}

/** The library's whole memory. Blocks that grow it leave earlier views without bytes. */
export function memory() {
    return new Uint8Array(library.memory.buffer);
}

// What the library asks of its system: the variable that lowers its level, where there are variables.
const level = globalThis.process?.env?.KIRVO_CPU;
const environment = level === undefined ? [] : [new TextEncoder().encode(`KIRVO_CPU=${level}\0`)];
const imports = {
    env: { emscripten_notify_memory_growth() {} },
    wasi_snapshot_preview1: {
        environ_sizes_get(count, bytes) {
            const view = new DataView(library.memory.buffer);
            view.setUint32(count, environment.length, true);
            view.setUint32(bytes, environment.reduce((sum, text) => sum + text.length, 0), true);
            return 0;
        },
        environ_get(pointers, text) {
            for (const one of environment) {
                new DataView(library.memory.buffer).setUint32(pointers, text, true);
                memory().set(one, text);
            }
            return 0;
        },
    },
};

const arrays = {
    status: Int32Array, int: Int32Array, bool: Int32Array, uint: Uint32Array, colour: Uint32Array,
    image: Uint32Array, block: Uint32Array, int16: Int16Array, uint16: Uint16Array, byte: Uint8Array,
    PALETTEENTRY: Uint8Array,
};
const elements = { PALETTEENTRY: 4 };
const unsigned = new Set(["uint", "uint16", "colour", "image", "block", "palette", "address", "size"]);
const handles = new Set(["image", "block", "palette", "object", "header"]);

/** The function of a line of interface/kirvo.txt. Numbers are numbers, a handle of 0 may be null;
 *  `in`, `out` and arrays are typed arrays of the kind's type, copied to the library and back. */
export function declare(line) {
    const [, name, list, result] = /^(\w+)\((.*)\)(?: -> (\w+))?$/.exec(line);
    const parameters = list.split(", ").filter(Boolean).map(parameter);
    const call = (...given) => {
        if (given.length !== parameters.length)
            throw new TypeError(`${name} takes ${parameters.length} values, not ${given.length}: ${line}`);
        const copies = [];
        try {
            const values = parameters.map((one, i) => one.array ?
                lend(name, one, given[i], wanted(one, parameters, given), copies) :
                number(name, one, given[i]));
            const answer = library[name](...values);
            for (const { array, address, way } of copies)
                if (way === "out")
                    array.set(new array.constructor(library.memory.buffer, address, array.length));
            return unsigned.has(result) ? answer >>> 0 : answer;
        } finally {
            for (const { address } of copies)
                library.free(address);
        }
    };
    return Object.defineProperty(call, "name", { value: name });
}

function parameter(text) {
    const [, way, kind, name, count] = /^(?:(in|out) )?(\w+) (\w+)(?:\[(\w+)\])?\??$/.exec(text);
    return { way, kind, name, count: count ?? 1, array: way ? arrays[kind] : undefined };
}

// How many elements an array needs.
function wanted(one, parameters, given) {
    const named = parameters.findIndex(({ name }) => name === one.count);
    return Number(named < 0 ? one.count : given[named]) * (elements[one.kind] ?? 1);
}

function lend(name, one, array, count, copies) {
    if (array === null)
        return 0;
    if (!(array instanceof one.array) || array.length < count)
        throw new TypeError(`${name}: ${one.name} is a ${one.array.name} of ${count} or null`);
    const address = library.malloc(array.byteLength) >>> 0;
    if (address === 0)
        throw new RangeError(`${name}: no memory for ${one.name}`);
    memory().set(new Uint8Array(array.buffer, array.byteOffset, array.byteLength), address);
    copies.push({ array, address, way: one.way });
    return address;
}

function number(name, one, value) {
    if (value === null && handles.has(one.kind))
        return 0;
    if (typeof value === "boolean")
        return Number(value);
    const fits = one.kind === "double" ? typeof value === "number" :
        Number.isInteger(value) && value >= -0x80000000 && value <= 0xFFFFFFFF;
    if (!fits)
        throw new TypeError(`${name}: ${one.name} is a ${one.kind === "double" ? "" : "whole "}number, not ${value}`);
    return value;
}
