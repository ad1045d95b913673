// What a page does: the menu of a narrow window, buttons that copy code, the search.
"use strict";

const menuButton = document.getElementById("menu-button");
menuButton.addEventListener("click", () => {
    const isOpen = document.body.classList.toggle("menu-open");
    menuButton.setAttribute("aria-expanded", isOpen);
    if (isOpen) scrollTo(0, 0);
});
document.querySelector("#menu [aria-current]")?.scrollIntoView({ block: "nearest" });

const contents = document.getElementById("contents");
if (contents && innerWidth < 1180) contents.open = false;

for (const heading of document.querySelectorAll("main h2[id], main h3[id]")) {
    const link = document.createElement("a");
    Object.assign(link, { className: "here", href: `#${heading.id}`, textContent: "#", ariaLabel: "Link to this section" });
    heading.append(link);
}

for (const code of document.querySelectorAll("pre.code")) {
    const block = document.createElement("div"), button = document.createElement("button");
    block.className = "block";
    button.textContent = "Copy";
    button.addEventListener("click", async () => {
        await copy(code.textContent.trimEnd() + "\n");
        button.textContent = "Copied";
        setTimeout(() => { button.textContent = "Copy"; }, 1500);
    });
    code.replaceWith(block);
    block.append(code, button);
}

// What scrolls can be reached by keys.
for (const box of document.querySelectorAll("pre, .wide")) {
    if (box.scrollWidth > box.clientWidth) box.tabIndex = 0;
}

/** Into the clipboard; a page that was opened as a file may have to go through a selection. */
async function copy(text) {
    if (navigator.clipboard) return navigator.clipboard.writeText(text);
    const area = document.createElement("textarea");
    area.value = text;
    document.body.append(area);
    area.select();
    document.execCommand("copy");
    area.remove();
}

// The search. Its words and index are loaded as scripts, which works for a page opened as a file too.
const field = document.querySelector("#search input"), found = document.getElementById("found");
let index = null, loading = null, selected = -1;

function load() {
    loading ??= Promise.all(["minisearch.js", "sections.js", "search.js"].map((file) => new Promise((done, failed) => {
        const script = document.createElement("script");
        Object.assign(script, { src: file, onload: done, onerror: failed });
        document.head.append(script);
    }))).then(() => { index = makeIndex(MiniSearch, SECTIONS); });
    return loading;
}

function element(name, text) {
    const made = document.createElement(name);
    made.textContent = text;
    return made;
}

/** A piece of the text around the first word that was found, that word marked. */
function excerpt(result) {
    const words = new RegExp(`(?<![\\p{L}\\p{N}])(?:${result.terms.join("|")})[\\p{L}\\p{N}_]*`, "iu").exec(result.text);
    const shown = element("span", "");
    if (!words) {
        shown.textContent = result.text.slice(0, 140);
        return shown;
    }
    const at = words.index, end = at + words[0].length, from = at < 60 ? 0 : result.text.indexOf(" ", at - 60) + 1;
    shown.append((from ? "… " : "") + result.text.slice(from, at), element("mark", words[0]), result.text.slice(end, end + 110));
    return shown;
}

async function show() {
    const words = field.value.trim();
    selected = -1;
    found.hidden = !words;
    if (!words) return;
    await load();
    const results = find(index, words).slice(0, 20);
    found.replaceChildren(...results.map((result) => {
        const link = document.createElement("a"), title = element("b", result.heading);
        link.href = result.url;
        link.role = "option";
        link.append(title, ...(result.heading === result.page ? [] : [element("small", ` ${result.page}`)]), excerpt(result));
        return link;
    }));
    if (!results.length) found.append(element("p", `Nothing holds “${words}”.`));
}

function select(step) {
    const links = found.querySelectorAll("a");
    if (!links.length) return;
    links[selected]?.setAttribute("aria-selected", "false");
    selected = (selected + step + links.length) % links.length;
    links[selected].setAttribute("aria-selected", "true");
    links[selected].scrollIntoView({ block: "nearest" });
}

field.addEventListener("focus", load);
field.addEventListener("input", show);
field.addEventListener("keydown", (event) => {
    if (event.key === "ArrowDown") select(1);
    else if (event.key === "ArrowUp") select(-1);
    else if (event.key === "Escape") found.hidden = true;
    else return;
    event.preventDefault();
});
document.getElementById("search").addEventListener("submit", async (event) => {
    event.preventDefault();
    if (found.hidden || !index) await show();
    found.querySelectorAll("a")[Math.max(selected, 0)]?.click();
});
document.addEventListener("keydown", (event) => {
    if (event.key !== "/" || /^(INPUT|TEXTAREA|SELECT)$/.test(document.activeElement.tagName)) return;
    event.preventDefault();
    field.focus();
});
document.addEventListener("click", (event) => {
    if (!found.contains(event.target) && event.target !== field || event.target.closest?.("#found a")) found.hidden = true;
});

// A link to what was found: PAGE.html?q=WORDS.
field.value = new URLSearchParams(location.search).get("q") ?? "";
if (field.value) show();
