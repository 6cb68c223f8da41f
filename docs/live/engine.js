// The library in the page: the command line's effects on a picture, in WebAssembly. Nothing here
// leaves the machine.
class Engine {
    // Fails where the browser has no WebAssembly.
    static async start() {
        return new Engine(await KirvoLive());
    }

    constructor(module) {
        this.module = module;
        const count = this.call("live_languages", "number");
        const names = Array.from({length: count}, (_, i) =>
            this.call("live_language", "string", ["number"], [i]));
        this.languages = ["C", "C++", "C#", "Delphi", "Visual Basic", "Python"]
            .map(name => ({name, number: names.indexOf(name)}));
    }

    call(name, result, types = [], values = []) {
        return this.module.ccall(name, result, types, values);
    }

    // Calls with the address of so many bytes, which hold the content or receive it.
    withBytes(content, work) {
        const size = typeof content === "number" ? content : content.length;
        const address = this.module._malloc(size);
        if (typeof content !== "number") this.module.HEAPU8.set(content, address);
        try {
            return work(address);
        } finally {
            this.module._free(address);
        }
    }

    // The picture that steps begin with, or, by a name, one that they may name.
    setPicture(image, name = "") {
        const error = this.withBytes(image.data, address => this.call("live_picture", "string",
            ["string", "number", "number", "number"], [name, address, image.width, image.height]));
        if (error) throw new Error(error);
    }

    // A JPEG stream as an ImageData.
    decode(stream) {
        return this.withBytes(stream, address => this.withBytes(8, sides => {
            const pixels = this.call("live_decoded", "number",
                ["number", "number", "number", "number"],
                [address, stream.length, sides, sides + 4]);
            const [width, height] = new Int32Array(this.module.HEAPU8.buffer, sides, 2);
            const image = this.imageAt(pixels, width, height);
            this.module._free(pixels);
            return image;
        }));
    }

    imageAt(address, width, height) {
        const bytes = this.module.HEAPU8.slice(address, address + 4 * width * height);
        return new ImageData(new Uint8ClampedArray(bytes.buffer), width, height);
    }

    // Does steps, each an option and its values: {error, step, milliseconds}. After an error the
    // result is that of the steps before.
    run(steps) {
        this.call("live_begin");
        const start = performance.now();
        let error = "", step = 0;
        for (; step < steps.length && !error; ++step)
            error = this.call("live_step", "string", ["string", "string"], steps[step]);
        return {error, step: step - 1, milliseconds: performance.now() - start};
    }

    // What the last run has made.
    result() {
        const width = this.call("live_width", "number"), height = this.call("live_height", "number");
        return this.withBytes(4 * width * height, address => {
            this.call("live_pixels", null, ["number"], [address]);
            return this.imageAt(address, width, height);
        });
    }
    bits() {
        return this.call("live_bits", "number");
    }
    // 256 counts of red, of green, of blue.
    histogram() {
        return this.withBytes(3072, address => {
            this.call("live_histogram", null, ["number"], [address]);
            return new Uint32Array(this.module.HEAPU8.slice(address, address + 3072).buffer);
        });
    }
    // The calls of the last run.
    code(language) {
        return this.call("live_code", "string", ["number"], [language.number]);
    }
    commandLine(file) {
        return this.call("live_command_line", "string", ["string"], [file]);
    }
}
