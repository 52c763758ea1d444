// Runs scripts of the page without a page, for what they can do without one.
"use strict";

const fs = require("node:fs");
const path = require("node:path");
const vm = require("node:vm");

const FOLDER = path.join(__dirname, "..", "..", "export", "page");

// Runs export/page/NAME for each name, in this order, and returns what they made.
function runScripts(...names) {
  for (const name of names) {
    const file = path.join(FOLDER, name);
    vm.runInThisContext(fs.readFileSync(file, "utf8"), { filename: file });
  }
  return globalThis.Quarn;
}

// Numbers from 0 to below 1 that are the same in each run (mulberry32, Tommy Ettinger, 2017).
function randomNumbers(seed) {
  let state = seed;
  return () => {
    state = (state + 0x6d2b79f5) | 0;
    let t = Math.imul(state ^ (state >>> 15), 1 | state);
    t = (t + Math.imul(t ^ (t >>> 7), 61 | t)) ^ t;
    return ((t ^ (t >>> 14)) >>> 0) / 4294967296;
  };
}

module.exports = { runScripts, randomNumbers };
