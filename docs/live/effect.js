// An effect's page: its fields, the picture before and after, the calls as code.
const block = document.querySelector(".live");
const effect = catalogue.find(one => one.option === `--${block.dataset.effect}`);

startLive(block, engine => {
    const comparison = new Comparison();
    const told = element("p", {class: "told", role: "status"});
    const fields = new Fields(effect, once(refresh), ["other.jpg", "small.jpg"]);
    const choice = new PictureChoice(engine, () => {
        fields.fit(choice.image);
        refresh();
    });
    const code = codeOf(engine, choice);
    const reset = element("button", {type: "button", click: () => {
        fields.values = effect.first;
        refresh();
    }}, "Reset");
    block.append(
        element("div", {class: "stage"}, comparison.element,
            element("div", {class: "panel"}, fields.element,
                element("p", {class: "buttons"}, ...(effect.values.length ? [reset] : []),
                    linkButton()), told, choice.element)),
        code.element);

    function steps() {
        return [[effect.option, fields.values], ...(effect.behind ?? [])];
    }

    function refresh() {
        const {error, milliseconds} = engine.run(steps());
        const result = engine.result();
        told.textContent = error ||
            `${milliseconds.toFixed(1)} ms for ${sizeText(choice.image)} pixels` +
            (engine.bits() === 24 ? "" : `, ${engine.bits()} bits a pixel`);
        told.classList.toggle("wrong", error !== "");
        if (!error) comparison.show(choice.image, result);
        code.refresh();
        writeAddress({...(effect.values.length ? {values: fields.values} : {}),
                      ...(choice.isOwn ? {} : {picture: choice.name})});
    }

    function follow() {
        const kept = readAddress();
        if (kept.has("values")) fields.values = kept.get("values");
        choice.choose(kept.get("picture") ?? effect.picture);
    }
    addEventListener("hashchange", follow);
    follow();
});
