// The page on which effects are done one after the other: a chain that is changed, undone and taken
// along as a picture, a command line or code.
const block = document.querySelector(".live");

startLive(block, engine => {
    const comparison = new Comparison();
    const told = element("p", {class: "told", role: "status"});
    const histogram = element("canvas", {width: 256, height: 80, class: "histogram", role: "img",
                                         "aria-label": "Histogram of the result"});
    const list = element("ol", {class: "steps", "aria-label": "Effects"});
    const past = [], future = []; // chains as texts
    let chain = []; // {effect, fields, row}
    let written = "[]";

    const added = element("select", {"aria-label": "Effect to add"},
        ...[...new Set(catalogue.map(effect => effect.group))].map(group =>
            element("optgroup", {label: group}, ...catalogue.filter(one => one.group === group)
                .map(one => element("option", {value: one.option}, one.title)))));
    added.value = "--contrast";
    const button = (text, click) => element("button", {type: "button", click}, text);
    const undo = button("Undo", () => travel(past, future));
    const redo = button("Redo", () => travel(future, past));
    const choice = new PictureChoice(engine, () => {
        for (const step of chain) step.fields.fit(choice.image);
        refresh();
    });
    const code = codeOf(engine, choice);
    block.append(
        element("div", {class: "stage"},
            element("div", {}, comparison.element, histogram),
            element("div", {class: "panel"},
                element("p", {class: "buttons"}, added, button("Add", () => {
                    insert(catalogue.find(one => one.option === added.value));
                    changed();
                })), list,
                element("p", {class: "buttons"}, undo, redo, button("Save as PNG", save),
                    linkButton()), told, choice.element)),
        code.element);

    function insert(effect, values = effect.first) {
        const step = {effect, fields: new Fields(effect, once(() => changed()),
                                                 ["other.jpg", "small.jpg"])};
        step.fields.values = values;
        if (choice.image) step.fields.fit(choice.image);
        const move = way => {
            const from = chain.indexOf(step), to = from + way;
            if (to < 0 || to >= chain.length) return;
            chain.splice(from, 1);
            chain.splice(to, 0, step);
            changed();
        };
        const small = (sign, words, click) => element("button", {
            type: "button", title: words, "aria-label": `${words}: ${effect.title}`, click}, sign);
        step.row = element("li", {},
            element("div", {class: "head"}, element("strong", {}, effect.title),
                small("↑", "Earlier", () => move(-1)), small("↓", "Later", () => move(1)),
                small("✕", "Remove", () => {
                    chain = chain.filter(one => one !== step);
                    changed();
                })),
            step.fields.element);
        chain.push(step);
    }

    function textOf() {
        return JSON.stringify(chain.map(step => [step.effect.option.slice(2), step.fields.values]));
    }
    function restore(text) {
        chain = [];
        for (const [name, values] of JSON.parse(text)) {
            const effect = catalogue.find(one => one.option === `--${name}`);
            if (effect) insert(effect, String(values));
        }
        written = textOf();
    }

    // Changes of one value in quick succession are one step to undo.
    let last = {time: 0, shape: ""};
    function changed() {
        const text = textOf(), shape = chain.map(step => step.effect.option).join();
        if (text !== written) {
            const now = performance.now();
            if (shape !== last.shape || now - last.time > 800) past.push(written);
            last = {time: now, shape};
            future.length = 0;
            written = text;
        }
        refresh();
    }
    function travel(from, to) {
        if (!from.length) return;
        to.push(written);
        restore(from.pop());
        last = {time: 0, shape: ""};
        refresh();
    }

    function refresh() {
        if (chain.some((step, i) => list.children[i] !== step.row) || list.children.length > chain.length)
            list.replaceChildren(...chain.map(step => step.row)); // else what is dragged stays
        undo.disabled = !past.length;
        redo.disabled = !future.length;
        const {error, step, milliseconds} = engine.run(
            chain.map(({effect, fields}) => [effect.option, fields.values]));
        const result = engine.result();
        chain.forEach((one, i) => one.row.classList.toggle("wrong", error !== "" && i === step));
        told.classList.toggle("wrong", error !== "");
        told.textContent = error ? `${chain[step].effect.title}: ${error}`
                                 : `${milliseconds.toFixed(1)} ms, ${sizeText(result)} pixels`;
        comparison.show(choice.image, result);
        drawHistogram(histogram, engine.histogram());
        code.refresh();
        writeAddress({steps: written, ...(choice.isOwn ? {} : {picture: choice.name})});
    }

    // Of exactly the result's pixels.
    function save() {
        comparison.after.toBlob(content => {
            const link = element("a", {href: URL.createObjectURL(content),
                                       download: `${choice.file.replace(/\.\w+$/, "")}-changed.png`});
            link.click();
            setTimeout(() => URL.revokeObjectURL(link.href), 10000);
        }, "image/png");
    }

    function follow() {
        const kept = readAddress();
        if (kept.get("steps") === written && choice.image) return;
        try {
            restore(kept.get("steps") ?? '[["contrast","20"],["sharpen","soft"]]');
        } catch {
            restore("[]");
        }
        choice.choose(kept.get("picture") ?? "landscape");
    }
    addEventListener("hashchange", follow);
    document.addEventListener("keydown", event => {
        if (!event.ctrlKey || event.key.toLowerCase() !== "z" || event.target.matches("input")) return;
        event.preventDefault();
        if (event.shiftKey) travel(future, past);
        else travel(past, future);
    });
    follow();
});
