// The model of a page's file without a browser.
"use strict";

const fs = require("node:fs");
const path = require("node:path");
const vm = require("node:vm");

// The script as a page has it, with a window of its own.
function load_model() {
  const window = {};
  const file = path.join(process.env.QUARN_PROJECT, "export/page/model.js");
  vm.compileFunction(fs.readFileSync(file, "utf8"), ["window"], { filename: file })(window);
  return window.Quarn.Model;
}

// The texts of a page's data elements, by their ids.
function read_elements(file) {
  const elements = new Map();
  const html = fs.readFileSync(file, "utf8");
  for (const [, id, text] of html.matchAll(/<script type="[^"]*" id="([^"]*)">([^<]*)<\/script>/g)) {
    elements.set(id, text);
  }
  return elements;
}

// The model of a page; `change` may alter the texts of its elements before, `options` are further arguments.
async function open_model(file, change = () => {}, ...options) {
  const elements = read_elements(file);
  change(elements);
  return load_model().open((id) => (elements.has(id) ? elements.get(id) : null), ...options);
}

function sample_path(name) {
  return path.join(process.env.QUARN_PAGE_SAMPLES, name);
}

module.exports = { load_model, open_model, sample_path };
