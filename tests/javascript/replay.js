// Does the calls of a recording with the package and compares what is seen: replay(kirvo, recorded)
// gives a list of differences. A classic script, for pages on a disk and for Node alike.
globalThis.replay = ({ flat, Image, KirvoError }, recorded) => {
    const blocks = new Map([[0, 0]]);
    const table = Uint32Array.from({ length: 256 }, (_, byte) => {
        for (let bit = 0; bit < 8; ++bit)
            byte = byte & 1 ? byte >>> 1 ^ 0xEDB88320 : byte >>> 1;
        return byte;
    });

    function crc32(bytes) {
        let crc = ~0;
        for (const byte of bytes)
            crc = table[(crc ^ byte) & 255] ^ crc >>> 8;
        return ~crc >>> 0;
    }

    function seenBlock(handle) {
        return handle ? [flat.GlobalSize(handle), crc32(flat.bytesOf(handle))] : 0;
    }

    function seenArray(array) {
        return array.length <= 4 ? [...array] : crc32(new Uint8Array(array.buffer));
    }

    function address(handle) {
        const start = flat.GlobalLock(handle);
        flat.GlobalUnlock(handle);
        return start;
    }

    const steps = {
        bytes(text, [number]) {
            blocks.set(number, flat.blockOf(Uint8Array.from(atob(text), (letter) => letter.charCodeAt(0))));
            return [];
        },
        free(number) {
            flat.GlobalFree(blocks.get(number));
            blocks.delete(number);
            return [];
        },
        method([name, number, values]) {
            const pictures = [];
            const picture = (number) => {
                pictures.push(Image.fromDib(flat.bytesOf(blocks.get(number)).slice()));
                return pictures.at(-1);
            };
            const given = values.map((value) => value?.block ? picture(value.block) :
                value?.range ?? value?.table ?? value);
            const own = number === null ? Image : picture(number);
            try {
                const made = own[name](...given) ?? own;
                pictures.push(made);
                return [seenBlock(made.handle)];
            } catch (error) {
                if (!(error instanceof KirvoError))
                    throw error;
                return ["error", error.status];
            } finally {
                pictures.forEach((one) => one.free());
            }
        },
    };

    function call(name, values, numbers, expected) {
        const arrays = [], handles = [], made = [];
        const given = values.map((value) => {
            if (value === null || typeof value === "number")
                return value;
            if ("double" in value)
                return Number(value.double.replace("inf", "Infinity"));
            if ("address" in value)
                return address(blocks.get(value.address));
            if ("palette" in value)
                return blocks.get(value.palette);
            if ("block" in value) {
                handles.push(blocks.get(value.block));
                return handles.at(-1);
            }
            const array = "handle" in value ? new Uint32Array(1) : globalThis[value.array].from(value.values);
            arrays.push({ array, handle: "handle" in value });
            return array;
        });
        const result = flat[name](...given);
        const isPalette = name === "KirvoCreatePalette";
        const isHandle = isPalette || numbers.length > arrays.filter(({ handle }) => handle).length;
        if (isHandle)
            made.push(result);
        made.push(...arrays.filter(({ handle }) => handle).map(({ array: [handle] }) => handle));
        made.forEach((handle, i) => blocks.set(numbers[i], handle));
        const seen = isPalette ? [result !== 0] : isHandle ? [] : [result ?? null];
        if (!isPalette)
            seen.push(...made.map(seenBlock));
        seen.push(...arrays.filter(({ handle }) => !handle).map(({ array }) => seenArray(array)));
        return seen.concat(handles.map(seenBlock));
    }

    const differences = [];
    for (const [index, [name, values, numbers, expected]] of recorded.entries()) {
        const seen = steps[name]?.(values, numbers) ?? call(name, values, numbers);
        if (JSON.stringify(seen) !== JSON.stringify(expected))
            differences.push(`${index}: ${name}(${JSON.stringify(values)}): ` +
                `${JSON.stringify(seen)}, natively ${JSON.stringify(expected)}`);
    }
    return differences;
};
