// Lists the entries that hold every word typed: first those whose title begins with the first word,
// then those with all words in the title, then the others.
const field = document.getElementById("search");
const list = document.getElementById("found");

function rank(title, words) {
    title = title.toLowerCase();
    return title.startsWith(words[0]) ? 0 : words.every(word => title.includes(word)) ? 1 : 2;
}

function find(typed) {
    const words = typed.toLowerCase().split(/\s+/).filter(word => word);
    if (!words.length) return [];
    return entries
        .filter(([title, line, , text]) =>
            words.every(word => (title + " " + line + " " + text).toLowerCase().includes(word)))
        .map(entry => ({entry, rank: rank(entry[0], words)}))
        .sort((a, b) => a.rank - b.rank)
        .slice(0, 12)
        .map(found => found.entry);
}

function show() {
    list.replaceChildren(...find(field.value).map(([title, line, place]) => {
        const link = document.createElement("a");
        link.href = place;
        link.textContent = title;
        const about = document.createElement("small");
        about.textContent = line;
        link.append(about);
        const item = document.createElement("li");
        item.append(link);
        return item;
    }));
    list.hidden = !list.children.length;
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
    if (event.key === "/" && document.activeElement !== field) {
        event.preventDefault();
        field.focus();
    }
});
