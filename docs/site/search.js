// The search: what is looked for in each section of each page, and how much it counts. Used by site.js, and by
// check_search.mjs in Node.
"use strict";

/** An index of the sections that build_site.py wrote. */
function makeIndex(MiniSearch, sections) {
    const index = new MiniSearch({
        fields: ["page", "heading", "text"],
        storeFields: ["page", "heading", "url", "text", "group"],
        // NumToAlpha5 and num_to_alpha5 are found by their parts too.
        tokenize: (text) => text.split(/[^\p{L}\p{N}_]+/u).flatMap((word) => [
            word, ...(/[a-z][A-Z]|_/.test(word) ? word.split(/(?<=[a-z0-9])(?=[A-Z])|_/) : [])]).filter(Boolean),
        processTerm: (term) => term.toLowerCase().replace(/(?<=..[^s])s$|(?<=...)ing$/, ""),
    });
    index.addAll(sections.map((section, id) => ({ id, ...section })));
    return index;
}

const GROUPS = { "Guide": 2, "Evidence": 0.6 };

/** The sections that hold all words, the best first. */
function find(index, words) {
    return index.search(words, {
        combineWith: "AND",
        prefix: true,
        fuzzy: (term) => (term.length > 5 ? 0.15 : 0),
        boost: { page: 3, heading: 5 },
        boostDocument: (id, term, stored) => GROUPS[stored.group] ?? 1,
    });
}
