// Finds the entries that hold every word typed. What search.txt leads to comes first, then titles,
// then what is written about them.
const field = document.getElementById("search");
const list = document.getElementById("found");

// One spelling of words that have two.
function usual(text) {
    return text.toLowerCase().replaceAll("−", "-").replaceAll("gray", "grey")
        .replaceAll("color", "colour").replaceAll("center", "centre");
}

// "JpgDecMainEx" is also "jpg dec main ex".
function parts(title) {
    return usual(title.replace(/([a-z0-9])([A-Z])/g, "$1 $2").replaceAll("_", " "));
}

const prepared = entries.map(([title, line, place, text]) => ({
    title, line, place, name: usual(title), parts: parts(title), about: usual(`${line} ${text}`),
    number: line.match(/^-?\d+(?=:)/)?.[0],
}));

// How well an entry fits a word: 0 for not at all.
function fit(entry, word) {
    if (entry.name === word) return 100;
    if (entry.number && (entry.number === word || entry.number === `-${word}`)) return 90;
    if (/^-\d/.test(word)) return 0; // a number is a status and nothing else
    if (entry.name.startsWith(word)) return 60;
    if (entry.parts.split(/\W+/).includes(word)) return 50;
    if (entry.name.includes(word)) return 40;
    const at = entry.about.indexOf(word);
    if (at < 0) return 0;
    return /\w/.test(entry.about[at - 1] ?? " ") ? 5 : 10;
}

function find(typed) {
    typed = usual(typed).trim().replace(/\s+/g, " ");
    if (!typed) return [];
    const words = typed.split(" ");
    const first = firstPlaces[typed] ?? [];
    const score = entry => {
        const leads = first.indexOf(entry.title);
        if (entry.name === typed || leads < 0) return Math.min(...words.map(word => fit(entry, word)));
        return 80 - leads;
    };
    return prepared.map(entry => ({entry, score: score(entry)}))
        .filter(found => found.score > 0)
        .sort((a, b) => b.score - a.score)
        .slice(0, 12)
        .map(found => found.entry);
}

function link(place, text, line) {
    const made = document.createElement("a");
    made.href = place;
    made.textContent = text;
    const about = document.createElement("small");
    about.textContent = line;
    made.append(about);
    const item = document.createElement("li");
    item.append(made);
    return item;
}

function nothing(typed) {
    typed = typed.trim();
    return /^[-−]\d+$/.test(typed)
        ? link("group__status.html", `No status has the number ${typed}`, "All status codes")
        : link("modules.html", `Nothing found for “${typed}”`, "Every function, by task");
}

function show() {
    const found = find(field.value).map(entry => link(entry.place, entry.title, entry.line));
    if (!found.length && field.value.trim()) found.push(nothing(field.value));
    list.replaceChildren(...found);
    list.hidden = !found.length;
    choose(0);
}

function choose(index) {
    const links = [...list.querySelectorAll("a")];
    links.forEach((link, i) => link.classList.toggle("chosen", i === index));
    if (links[index]) links[index].scrollIntoView({block: "nearest"});
}

field.addEventListener("input", show);
field.addEventListener("focus", show);
field.addEventListener("keydown", event => {
    const links = [...list.querySelectorAll("a")];
    const chosen = links.findIndex(link => link.classList.contains("chosen"));
    if (event.key === "ArrowDown") choose(Math.min(chosen + 1, links.length - 1));
    else if (event.key === "ArrowUp") choose(Math.max(chosen - 1, 0));
    else if (event.key === "Enter" && links[chosen]) links[chosen].click();
    else if (event.key === "Escape") field.blur();
    else return;
    event.preventDefault();
});
document.addEventListener("click", event => {
    list.hidden = list.hidden || !event.target.closest(".search") || !!event.target.closest("a");
});
field.addEventListener("blur", event => {
    if (!list.matches(":hover")) list.hidden = true;
});
document.addEventListener("keydown", event => {
    if (event.key === "/" && !event.target.matches("input, select, textarea")) {
        event.preventDefault();
        field.focus();
    }
});
