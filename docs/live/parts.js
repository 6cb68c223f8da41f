// The parts of a live page: what compares two pictures, the fields of an effect, the choice of a
// picture, code in several languages.

// element("p", {class: "told"}, "text", child) and so on; an attribute that is a function is a
// listener.
function element(name, attributes = {}, ...children) {
    const made = document.createElement(name);
    for (const [key, value] of Object.entries(attributes)) {
        if (typeof value === "function") made.addEventListener(key, value);
        else if (value === true) made.setAttribute(key, "");
        else if (value !== false && value !== undefined) made.setAttribute(key, value);
    }
    made.append(...children);
    return made;
}

let lastId = 0;
function labelled(text, control) {
    control.id = `field-${++lastId}`;
    return element("label", {for: control.id}, text);
}

function sizeText(image) {
    return `${image.width} × ${image.height}`;
}

// Two pictures: upon each other with a divider between them, or beside each other when their sizes
// differ.
class Comparison {
    constructor() {
        this.before = element("canvas", {class: "before", role: "img", "aria-label": "before"});
        this.after = element("canvas", {class: "after", role: "img", "aria-label": "after"});
        this.divider = element("input", {
            type: "range", min: 0, max: 100, value: 50, class: "divider",
            "aria-label": "Divider between before and after", input: () => this.divide(),
        });
        this.element = element("div", {class: "comparison"}, this.before, this.after,
            element("span", {class: "line", "aria-hidden": "true"}),
            element("span", {class: "mark left", "aria-hidden": "true"}, "before"),
            element("span", {class: "mark right", "aria-hidden": "true"}, "after"), this.divider);
        this.divide();
    }

    divide() {
        this.element.style.setProperty("--at", `${this.divider.value}%`);
    }

    show(before, after) {
        Comparison.paint(this.before, before);
        Comparison.paint(this.after, after);
        const apart = before.width !== after.width || before.height !== after.height;
        this.element.classList.toggle("apart", apart);
        this.divider.disabled = apart;
    }

    static paint(canvas, image) {
        canvas.width = image.width;
        canvas.height = image.height;
        canvas.getContext("2d").putImageData(image, 0, 0);
    }
}

// The fields of an effect's parameters; `changed` is told of every change.
class Fields {
    constructor(effect, changed, secondPictures = []) {
        this.changed = changed;
        this.element = element("div", {class: "fields"});
        this.fields = effect.values.map(value => this.fieldOf(value, secondPictures));
        this.values = effect.first;
    }

    // As the command line takes them: what is left out at the end needs no commas.
    get values() {
        return this.fields.map(field => field.text).join(",").replace(/,+$/, "");
    }
    set values(text) {
        const pieces = text.split(",");
        this.fields.forEach((field, i) => {
            field.text = pieces[i] ?? "";
        });
    }

    // Sliders of places end where the picture does.
    fit(image) {
        for (const field of this.fields) field.fit?.(image);
    }

    fieldOf(value, secondPictures) {
        if (value.words) return this.listOf(value, value.words);
        if (value.kind === "file") return this.listOf(value, secondPictures);
        if (value.kind === "colour") return this.colourOf(value);
        return this.numberOf(value);
    }

    row(value, control, ...further) {
        this.element.append(labelled(value.label, control),
            element("span", {class: "controls"}, control, ...further));
    }

    listOf(value, words) {
        const list = element("select", {change: () => this.changed()},
            ...(value.optional ? [element("option", {value: ""}, "–")] : []),
            ...words.map(word => element("option", {value: word}, word)));
        this.row(value, list);
        return {
            get text() { return list.value; },
            set text(text) {
                list.value = text;
                if (list.selectedIndex < 0) list.selectedIndex = 0;
            },
        };
    }

    colourOf(value) {
        const chosen = element("input", {type: "color", input: () => this.changed()});
        this.row(value, chosen);
        return {
            get text() { return chosen.value.slice(1).toUpperCase(); },
            set text(text) { chosen.value = `#${text.toLowerCase()}`; },
        };
    }

    // A number with its slider, or the text of a size.
    numberOf(value) {
        const number = value.kind === "size"
            ? element("input", {type: "text", size: 8, spellcheck: "false"})
            : element("input", {type: "number", min: value.least, max: value.most,
                                step: value.kind === "real" ? "any" : 1});
        const follow = () => {
            if (slider) slider.value = number.value;
        };
        number.addEventListener("input", () => {
            follow();
            this.changed();
        });
        const range = value.slider;
        const slider = range && element("input", {
            type: "range", min: range.least / range.steps, max: range.most / range.steps,
            step: 1 / range.steps, "aria-label": value.label,
            input: () => {
                number.value = slider.value;
                this.changed();
            },
        });
        this.row(value, number, ...(slider ? [slider] : []));
        return {
            get text() { return number.value; },
            set text(text) {
                number.value = text;
                follow();
            },
            fit(image) {
                if (!slider || typeof range.most !== "string") return;
                slider.max = image[range.most];
                follow();
            },
        };
    }
}

// The picture that is worked on: a sample or the reader's own.
class PictureChoice {
    static most = 6e6; // pixels: more would make the sliders wait

    constructor(engine, changed) {
        this.engine = engine;
        this.changed = changed;
        this.list = element("select", {change: () => this.choose(this.list.value)},
            ...["landscape", "portrait", "lettering"]
                .map(name => element("option", {value: name}, name)));
        const file = element("input", {type: "file", accept: "image/*", change: () => {
            if (file.files[0]) this.open(file.files[0]);
        }});
        this.told = element("p", {class: "told", role: "status"});
        this.element = element("div", {class: "choice"},
            labelled("Picture", this.list), this.list,
            labelled("or your own", file), file, this.told);
        this.tell("Drop a picture anywhere on this page. It never leaves your machine.");
        document.addEventListener("dragover", event => event.preventDefault());
        document.addEventListener("drop", event => {
            event.preventDefault();
            const dropped = [...event.dataTransfer.files][0];
            if (dropped) this.open(dropped);
        });
        engine.setPicture(PictureChoice.sample(engine, "other"), "other.jpg");
        engine.setPicture(PictureChoice.sample(engine, "small"), "small.jpg");
    }

    static sample(engine, name) {
        return engine.decode(Uint8Array.from(atob(samples[name]), c => c.charCodeAt(0)));
    }

    tell(text) {
        this.told.textContent = text;
    }

    get isOwn() {
        return this.name === "";
    }
    // The name that stands in command lines.
    get file() {
        return this.isOwn ? this.ownFile : `${this.name}.jpg`;
    }

    choose(name) {
        if (!samples[name]) name = "landscape";
        this.list.value = name;
        this.take(name, PictureChoice.sample(this.engine, name));
    }

    take(name, image) {
        this.name = name;
        this.image = image;
        this.engine.setPicture(image);
        this.changed();
    }

    async open(file) {
        let bitmap;
        try {
            bitmap = await createImageBitmap(file);
        } catch {
            this.tell(`${file.name} is no picture that this browser reads.`);
            return;
        }
        const factor = Math.min(1, Math.sqrt(PictureChoice.most / (bitmap.width * bitmap.height)));
        const canvas = element("canvas", {width: Math.max(1, Math.floor(bitmap.width * factor)),
                                          height: Math.max(1, Math.floor(bitmap.height * factor))});
        const context = canvas.getContext("2d");
        context.fillStyle = "white"; // under what is transparent
        context.fillRect(0, 0, canvas.width, canvas.height);
        context.drawImage(bitmap, 0, 0, canvas.width, canvas.height);
        const reduced = factor < 1 ? `, reduced from ${sizeText(bitmap)}` : "";
        this.ownFile = file.name;
        this.list.selectedIndex = -1;
        this.tell(`${file.name}, ${sizeText(canvas)}${reduced}. It stays on your machine.`);
        this.take("", context.getImageData(0, 0, canvas.width, canvas.height));
    }
}

// Tabs of texts, one shown, with a button that copies it.
class Code {
    constructor(titles, textOf) {
        this.textOf = textOf;
        this.titles = titles;
        this.tabs = titles.map((title, i) => element("button", {
            type: "button", role: "tab", id: `code-${i}`, "aria-controls": "code-text",
            click: () => this.choose(i),
        }, title));
        this.text = element("pre", {id: "code-text", role: "tabpanel", tabindex: 0});
        const copied = element("button", {type: "button", class: "copy", click: async () => {
            await copyText(this.text.textContent);
            copied.textContent = "Copied";
            setTimeout(() => (copied.textContent = "Copy"), 1500);
        }}, "Copy");
        this.element = element("section", {class: "code-of-steps", "aria-label": "Code"},
            element("div", {role: "tablist", "aria-label": "Language",
                            keydown: event => this.step(event)}, ...this.tabs),
            element("div", {class: "text"}, copied, this.text));
        this.choose(Math.max(0, titles.indexOf(Code.kept())));
    }

    // Where nothing may be kept, the first language is shown.
    static kept() {
        try {
            return localStorage.getItem("language");
        } catch {
            return null;
        }
    }

    choose(chosen) {
        this.chosen = chosen;
        this.tabs.forEach((tab, i) => {
            tab.setAttribute("aria-selected", i === chosen);
            tab.tabIndex = i === chosen ? 0 : -1;
        });
        this.text.setAttribute("aria-labelledby", `code-${chosen}`);
        try {
            localStorage.setItem("language", this.titles[chosen]);
        } catch {
            // then it is forgotten with the page
        }
        this.refresh();
    }

    step(event) {
        const way = {ArrowRight: 1, ArrowLeft: -1}[event.key];
        if (!way) return;
        this.choose((this.chosen + way + this.tabs.length) % this.tabs.length);
        this.tabs[this.chosen].focus();
    }

    refresh() {
        this.text.textContent = this.textOf(this.chosen);
    }
}

// The code of the engine's last run, in all its languages and as a command line.
function codeOf(engine, choice) {
    const titles = [...engine.languages.map(language => language.name), "Command line"];
    return new Code(titles, i => {
        try {
            return i < engine.languages.length ? engine.code(engine.languages[i])
                                               : engine.commandLine(choice.file);
        } catch (error) {
            return error.message;
        }
    });
}

async function copyText(text) {
    try {
        await navigator.clipboard.writeText(text);
    } catch { // pages from a disk may not, in some browsers
        const area = element("textarea", {}, text);
        document.body.append(area);
        area.select();
        document.execCommand("copy");
        area.remove();
    }
}

// Counts of three channels as curves upon each other. The ends, where everything gathers that is cut
// off, do not set the height.
function drawHistogram(canvas, counts) {
    const context = canvas.getContext("2d");
    const {width, height} = canvas;
    context.clearRect(0, 0, width, height);
    const most = Math.max(1, ...counts.filter((_, i) => i % 256 > 0 && i % 256 < 255));
    ["#d33", "#2a2", "#36e"].forEach((colour, channel) => {
        context.beginPath();
        context.moveTo(0, height);
        for (let i = 0; i < 256; ++i)
            context.lineTo(i / 255 * width, height - counts[256 * channel + i] / most * height);
        context.lineTo(width, height);
        context.globalAlpha = 0.45;
        context.fillStyle = colour;
        context.fill();
    });
    context.globalAlpha = 1;
}

// What stands behind the # of the page's address.
function readAddress() {
    return new URLSearchParams(location.hash.slice(1));
}
function writeAddress(values) {
    history.replaceState(null, "", `#${new URLSearchParams(values)}`);
}
function linkButton() {
    const button = element("button", {type: "button", click: async () => {
        await copyText(location.href);
        button.textContent = "Link copied";
        setTimeout(() => (button.textContent = "Copy link"), 1500);
    }}, "Copy link");
    return button;
}

// Calls work at most once for each picture that the screen shows.
function once(work) {
    let waits = false;
    return () => {
        if (waits) return;
        waits = true;
        requestAnimationFrame(() => {
            waits = false;
            work();
        });
    };
}

// Fills the page's live block; where it cannot, the still pictures stay and a line says why.
async function startLive(block, fill) {
    try {
        fill(await Engine.start());
        block.classList.add("runs");
        block.dataset.milliseconds = Math.round(performance.now());
    } catch (error) {
        block.prepend(element("p", {class: "told"},
            `This browser does not run the live page (${error.message}).`));
    }
}
