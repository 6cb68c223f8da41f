#include "commands/gallery_page.hpp"

namespace {

constexpr const char* head = R"(<!doctype html>
<html lang="en">
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<meta name="color-scheme" content="light dark">
<title>Kirvo: every effect</title>
<style>
:root { --paper: #f4f4f4; --ink: #202020; --quiet: #5a5a5a; --mat: #fff; --edge: #dcdcdc }
@media (prefers-color-scheme: dark) {
    :root { --paper: #16181b; --ink: #e6e6e6; --quiet: #a2a8ae; --mat: #202428; --edge: #343a40 }
}
body { font: 15px/1.4 system-ui, sans-serif; margin: 2em; background: var(--paper); color: var(--ink) }
a { color: inherit }
main { display: grid; grid-template-columns: repeat(auto-fill, minmax(260px, 1fr)); gap: 1.5em }
figure { margin: 0; display: flex; flex-direction: column; background: var(--mat);
    border: 1px solid var(--edge); border-radius: 6px; overflow: hidden }
figure a { position: relative; aspect-ratio: 3 / 2; background: var(--paper) }
img { position: absolute; width: 100%; height: 100%; object-fit: contain }
figcaption { padding: .7em .9em .9em }
b { display: block; font-weight: 600; overflow-wrap: anywhere }
code { font: 12px/1.5 ui-monospace, monospace; color: var(--quiet); overflow-wrap: anywhere }
code span { white-space: nowrap }
</style>
<h1>Every effect on one picture</h1>
<p>Each command is run in this folder, on <a href="00-original.jpg">the original</a>.</p>
<main>
)";

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text)
        result += c == '&'   ? "&amp;"
                  : c == '<' ? "&lt;"
                  : c == '>' ? "&gt;"
                  : c == '"' ? "&quot;"
                             : std::string(1, c);
    return result;
}

// Breaks at spaces only, but for values too long for a line.
std::string wrapping(const std::string& command) {
    constexpr size_t longest = 30;
    std::string result, word;
    for (size_t at = 0; at < command.size(); at += word.size() + 1) {
        word = command.substr(at, command.find(' ', at) - at);
        const std::string text = escaped(word);
        result += (at == 0 ? "" : " ") +
                  (word.size() > longest ? "<wbr>" + text : "<span>" + text + "</span>");
    }
    return result;
}

std::string figure(const Exhibit& exhibit) {
    const std::string command =
        "kirvo convert --force 00-original.jpg " + exhibit.file + " " + exhibit.command();
    return "<figure><a href=\"" + exhibit.file + "\"><img loading=\"lazy\" src=\"" + exhibit.file +
           "\" alt=\"" + escaped(exhibit.title) + "\"></a><figcaption><b>" +
           escaped(exhibit.title) + "</b><code>" + wrapping(command) +
           "</code></figcaption></figure>\n";
}

} // namespace

std::string gallery_page(const std::vector<Exhibit>& all) {
    std::string page = head;
    for (const Exhibit& exhibit : all)
        page += figure(exhibit);
    return page + "</main>\n</html>\n";
}
