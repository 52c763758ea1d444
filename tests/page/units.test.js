// Lengths, rulers and file names as the page shows them.
"use strict";

const assert = require("node:assert");
const { test } = require("node:test");
const { runScripts } = require("./scripts.js");

const { units } = runScripts("units.js");

test("lengths below a micrometre are nanometres", () => {
  assert.strictEqual(units.length(0), "0 nm");
  assert.strictEqual(units.length(0.4), "400 nm");
  assert.strictEqual(units.length(0.91234567), "912.3 nm");
  assert.strictEqual(units.length(0.91234567, true), "912.35 nm");
  assert.strictEqual(units.length(1), "1 \u00b5m");
  assert.strictEqual(units.length(1.75), "1.75 \u00b5m");
  // A hundredth of a nanometre is the fifth decimal of a micrometre.
  assert.strictEqual(units.length(2.1234567, true), "2.12346 \u00b5m");
  assert.strictEqual(units.length(1200), "1200 \u00b5m");
});

test("what is below zero has a minus sign, and zero has none", () => {
  assert.strictEqual(units.length(-0.25), "\u2212250 nm");
  assert.strictEqual(units.length(-0.0000001), "0 nm");
});

test("the step of a ruler is 1, 2 or 5 times a power of ten", () => {
  const cases = [[8, 8, 1], [8, 7, 2], [8, 4, 2], [8, 3, 5], [0.75, 5, 0.2], [1, 10, 0.1], [300, 2, 200], [9, 1, 10]];
  for (const [range, count, step] of cases) {
    assert.ok(Math.abs(units.roundStep(range, count) / step - 1) < 1e-9, `${range} in ${count}`);
  }
});

test("a ruler begins at the first round mark and has the unit of its step", () => {
  assert.deepStrictEqual(units.ruler(0, 2.15, 5), {
    unit: "\u00b5m",
    marks: [0, 0.5, 1, 1.5, 2].map((at) => ({ at, text: String(at) })),
  });
  const fine = units.ruler(0.031, 0.095, 4);
  assert.strictEqual(fine.unit, "nm");
  assert.deepStrictEqual(fine.marks.map((mark) => mark.text), ["40", "60", "80"]);
});

test("names of files hold nothing that a system gives a meaning", () => {
  const cases = [
    ["INVERTER_step_3", "INVERTER_step_3.svg"],
    ["../../etc/passwd", "etc_passwd.svg"],
    ["<img src=x onerror=alert(1)>", "img_src_x_onerror_alert_1.svg"],
    ["a\u202egnp.exe", "a_gnp.exe.svg"],
    ["con", "_con.svg"],
    ["\u0000\n\t", "section.svg"],
    ["", "section.svg"],
    ["x".repeat(500), "x".repeat(80) + ".svg"],
  ];
  for (const [text, name] of cases) {
    assert.strictEqual(units.fileName(text, ".svg"), name);
  }
});

test("films that are there together are told apart by their names", () => {
  const films = [["SUBSTRATE", "substrate"], ["OXIDE", "ox"], ["PR", "pr"], ["OXIDE", "fill"], ["", "ox"], ["PR", "pr"],
    ["", ""]].map(([name, material]) => ({ name, material }));
  const steps = [[0], [0, 1], [0, 1, 2], [0, 1, 3, 4], [0, 1, 3, 4, 5], [0, 3, 6]];
  assert.deepStrictEqual(units.filmNames(films, steps),
    ["SUBSTRATE", "OXIDE", "PR", "OXIDE (2)", "ox", "PR", "film"]);
});

test("ink on a colour is the one that contrasts more", () => {
  assert.strictEqual(units.inkOn([1, 1, 1]), "#000000");
  assert.strictEqual(units.inkOn([0, 0, 0]), "#ffffff");
  assert.strictEqual(units.inkOn([0.7, 0.13, 0.13]), "#ffffff");
  assert.strictEqual(units.inkOn([0.85, 0.65, 0.13]), "#000000");
});
