// catalogue.js: the converter on the page of the catalogue. For each name, UNITS (units.js) has the factor and
// the offset to the dimension, which the library has computed.
//
// ?convert=2.5+km in the address fills the boxes.
"use strict";

function convertAll(value, unit) {
    const inDimension = value * unit.factor + unit.offset;
    return UNITS.filter((other) => other.dimension === unit.dimension)
        .map((other) => ({
            name: other.name,
            value: other === unit ? value : (inDimension - other.offset) / other.factor,
        }));
}

// Shows fourteen digits. Rounding may have changed the later ones.
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

document.addEventListener("DOMContentLoaded", () => {
    const names = document.getElementById("names");
    for (const unit of UNITS) names.appendChild(document.createElement("option")).value = unit.name;
    const address = new URLSearchParams(location.search);
    if (address.has("convert")) {
        const [value, ...unit] = address.get("convert").split(" ");
        document.getElementById("value").value = value;
        document.getElementById("unit").value = unit.join(" ");
    }
    document.getElementById("value").addEventListener("input", showConversions);
    document.getElementById("unit").addEventListener("input", showConversions);
    showConversions();
});
