// catalogue.js: the search box and the converter of the catalogue's page. The numbers are the library's:
// UNITS (units.js) holds, for every name, factor and offset to the dimension, as the library gave them.
//
// ?search=bar and ?convert=2.5+km in the address fill the boxes.
"use strict";

function convertAll(value, unit) {
    const inDimension = value * unit.factor + unit.offset;
    return UNITS.filter((other) => other.dimension === unit.dimension)
        .map((other) => ({
            name: other.name,
            value: other === unit ? value : (inDimension - other.offset) / other.factor,
        }));
}

// Fourteen digits: what rounding may have spoiled stays out of sight.
function shown(value) {
    return String(Number(value.toPrecision(14)));
}

function showConversions() {
    const table = document.getElementById("results");
    const message = document.getElementById("message");
    const text = document.getElementById("value").value.trim().replace("−", "-");
    const name = document.getElementById("unit").value.trim();
    const unit = UNITS.find((candidate) => candidate.name === name);
    table.textContent = "";
    if (text === "" || name === "") {
        message.textContent = "Type a value and the name of a unit.";
    } else if (!/^[-+]?(\d+\.?\d*|\.\d+)(e[-+]?\d+)?$/i.test(text)) {
        message.textContent = "This is no number: " + text;
    } else if (unit === undefined) {
        message.textContent = "No unit of the catalogue has this name: " + name;
    } else {
        message.textContent = unit.quantity;
        for (const result of convertAll(Number(text), unit)) {
            const row = table.insertRow();
            row.insertCell().textContent = shown(result.value);
            row.insertCell().textContent = result.name;
        }
    }
}

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
    const names = document.getElementById("names");
    for (const unit of UNITS) names.appendChild(document.createElement("option")).value = unit.name;
    const address = new URLSearchParams(location.search);
    if (address.has("convert")) {
        const [value, ...unit] = address.get("convert").split(" ");
        document.getElementById("value").value = value;
        document.getElementById("unit").value = unit.join(" ");
    }
    if (address.has("search")) document.getElementById("search").value = address.get("search");
    document.getElementById("value").addEventListener("input", showConversions);
    document.getElementById("unit").addEventListener("input", showConversions);
    document.getElementById("search").addEventListener("input", filterRows);
    showConversions();
    filterRows();
});
