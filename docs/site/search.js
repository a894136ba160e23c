// SPDX-License-Identifier: MIT
// The search page: looks in searchIndex, which build.py writes, for entries with all words of the query.
"use strict";

const LIMIT = 100;

// A name gives its parts too: setOddLowPulseTime is also found by "odd low pulse".
function wordsOf(text) {
    const parts = text.replace(/([a-z0-9])([A-Z])/g, "$1 $2").replace(/([A-Z])([A-Z][a-z])/g, "$1 $2");
    return `${text} ${parts}`.toLowerCase();
}

const entries = searchIndex.map((entry) => ({
    ...entry,
    name: wordsOf(entry.title),
    all: wordsOf(`${entry.title} ${entry.text} ${entry.group}`),
}));

// The better, the higher; 0 is not found. What is called so comes before what only mentions it.
function rank(entry, query, words) {
    if (!words.every((word) => entry.all.includes(word)))
        return 0;
    if (entry.title.toLowerCase() === query)
        return 3;
    return words.every((word) => entry.name.includes(word)) ? 2 : 1;
}

function find(query) {
    const words = query.toLowerCase().split(/\s+/).filter(Boolean);
    if (words.length === 0)
        return [];
    return entries.map((entry) => ({ entry, rank: rank(entry, words.join(" "), words) }))
        .filter((found) => found.rank > 0)
        .sort((a, b) => b.rank - a.rank)
        .map((found) => found.entry);
}

function show(query) {
    const found = find(query);
    document.getElementById("count").textContent = query.trim() === "" ? ""
        : found.length > LIMIT ? `${found.length} found, the first ${LIMIT}:` : `${found.length} found`;
    document.getElementById("results").replaceChildren(...found.slice(0, LIMIT).map((entry) => {
        const link = document.createElement("a");
        link.href = entry.url;
        link.textContent = entry.title;
        const item = document.createElement("li");
        item.append(link, ` ${entry.text} (${entry.group})`);
        return item;
    }));
}

const input = document.getElementById("query");
input.value = decodeURIComponent(location.hash.slice(1));
input.addEventListener("input", () => {
    history.replaceState(null, "", `#${encodeURIComponent(input.value)}`);
    show(input.value);
});
show(input.value);
