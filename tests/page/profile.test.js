// The table of a profile, and what is measured.
"use strict";

const assert = require("node:assert");
const { test } = require("node:test");
const { runScripts } = require("./scripts.js");

const { measure, profile } = runScripts("units.js", "dom.js", "section_line.js", "profile.js", "measure_panel.js");

const MODEL = {
  columns: 3, rows: 2, spacing: 0.25, quantum: 1e-6,
  films: [{ name: "SUBSTRATE" }, { name: "OXIDE" }, { name: "METAL" }],
};
const twoRows = (...row) => Int32Array.of(...row, ...row);

// 300 nm of substrate; 12.345 nm of oxide, not at the right; metal that bridges a gap of 100 nm there.
const HEIGHTS = [
  { film: 0, bottom: new Int32Array(6), top: new Int32Array(6).fill(300000) },
  { film: 1, bottom: twoRows(300000, 300000, 300000), top: twoRows(312345, 312345, 300000) },
  { film: 2, bottom: twoRows(312345, 312345, 400000), top: twoRows(1500000, 1500000, 1500000) },
];

function lineOf(...names) {
  return {
    model: { spacing: 0.25, quantum: 1e-6, films: names.map((name) => ({ name })) },
    line: { axis: "x", count: 1, films: names.map((_, id) => ({ id, bottom: [0], top: [1] })) },
  };
}

test("a table has a row a grid point, with heights in nanometres", () => {
  const { sectionLine } = globalThis.Quarn;
  const line = sectionLine.extract(MODEL, HEIGHTS, { row: 0, column: 0 }, false);
  assert.strictEqual(profile.table(MODEL, line), [
    "x_um,SUBSTRATE bottom_nm,SUBSTRATE top_nm,OXIDE bottom_nm,OXIDE top_nm,METAL bottom_nm,METAL top_nm",
    "0,0,300,300,312.345,312.345,1500",
    "0.25,0,300,300,312.345,312.345,1500",
    "0.5,0,300,300,300,400,1500",
    "",
  ].join("\n"));
});

test("names in a table are quoted where they must be, and never formulas", () => {
  const { model, line } = lineOf('a,"b"', "=1+1", " @x", "two\nlines");
  const head = profile.table(model, line).split("\n")[0];
  assert.strictEqual(head, 'x_um,"a,""b"" bottom_nm","a,""b"" top_nm",\'=1+1 bottom_nm,\'=1+1 top_nm,' +
    "' @x bottom_nm,' @x top_nm,two lines bottom_nm,two lines top_nm");
});

test("surfaces at a point are tops, and undersides where there is air below", () => {
  const names = (column) => measure.surfacesAt(MODEL, HEIGHTS, column, 1).map((each) => [each.text, each.z]);
  assert.deepStrictEqual(names(0), [["Top of METAL", 1500000], ["Top of OXIDE", 312345], ["Top of SUBSTRATE", 300000],
    ["Underside of SUBSTRATE", 0]]);
  assert.deepStrictEqual(names(2), [["Top of METAL", 1500000], ["Underside of METAL", 400000],
    ["Top of SUBSTRATE", 300000], ["Underside of SUBSTRATE", 0]]);
});

test("a measured point is told with place, height, film and thickness", () => {
  const hit = { x: 3.2, y: 0, z: 0.312346, film: 1, thickness: 0.012346 };
  assert.strictEqual(measure.describe(MODEL, hit), "x 3.2 \u00b5m, y 0 nm, height 312.35 nm: OXIDE, 12.35 nm thick");
});

test("a distance has its three parts", () => {
  const way = measure.distance({ x: 1, y: 2, z: 3 }, { x: 3, y: 5, z: 9 });
  assert.deepStrictEqual(way, { dx: 2, dy: 3, dz: 6, whole: 7 });
});
