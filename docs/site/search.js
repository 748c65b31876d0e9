// search.js: the search box of a page of tables.
//
// ?search=bar in the address fills the box.
"use strict";

// A row stays if each word of the search is somewhere in it, or in the heading above its table.
function filterRows() {
    const words = document.getElementById("search").value.toLowerCase().split(/\s+/).filter(Boolean);
    let found = 0;
    for (const table of document.querySelectorAll("table.markdownTable")) {
        let heading = table;
        while (heading && !/^H[1-6]$/.test(heading.tagName)) heading = heading.previousElementSibling;
        let left = 0;
        for (const row of table.rows) {
            if (row.querySelector("th")) continue;
            const text = (row.textContent + " " + (heading ? heading.textContent : "")).toLowerCase();
            row.hidden = !words.every((word) => text.includes(word));
            left += row.hidden ? 0 : 1;
        }
        table.hidden = left === 0;
        if (heading && heading.tagName === "H3") heading.hidden = left === 0;
        found += left;
    }
    document.getElementById("found").textContent = words.length === 0 ? "" : found + " rows";
}

document.addEventListener("DOMContentLoaded", () => {
    const box = document.getElementById("search");
    box.value = new URLSearchParams(location.search).get("search") || "";
    box.addEventListener("input", filterRows);
    filterRows();
});
