// What the page keeps in its address.
"use strict";

const assert = require("node:assert");
const { test } = require("node:test");
const { runScripts } = require("./scripts.js");

const { state } = runScripts("state.js");

// Steps are counted as the pictures are; one without a picture leaves a gap.
const MODEL = {
  columns: 400, rows: 160, films: [{}, {}, {}, {}],
  steps: [{ number: 0 }, { number: 1 }, { number: 2 }, { number: 4 }],
};

test("a page begins with its last step, whole", () => {
  assert.deepStrictEqual(state.parse("", MODEL), {
    step: 3, row: 0, column: 0, scale: 1, side: false, films: ["shown", "shown", "shown", "shown"],
  });
});

test("an address gives back the state that it was made of", () => {
  const chosen = { step: 1, row: 12, column: 7, scale: 2.5, side: true, films: ["shown", "hidden", "faded", "hidden"] };
  const address = state.format(chosen, MODEL);
  assert.strictEqual(address, "#step=1&cut=12,7&hidden=1,3&faded=2&scale=2.5&profile=side");
  assert.deepStrictEqual(state.parse(address, MODEL), chosen);
});

test("a step is named by its picture's number", () => {
  assert.strictEqual(state.parse("#step=4", MODEL).step, 3);
  assert.strictEqual(state.parse("#step=3", MODEL).step, 3);  // none: the last one
  assert.strictEqual(state.format({ ...state.initial(MODEL), step: 3 }, MODEL), "#step=4");
});

test("an address without sense is as none, and a cut stays within the section", () => {
  const start = state.initial(MODEL);
  for (const hash of ["#", "#main", "#step=-1", "#step=1e9", "#cut=1", "#cut=a,b", "#hidden=9,-1,x", "#scale=0",
    "#scale=nan", "#scale=1e99", "#step=%zz", "#__proto__=1&constructor=2"]) {
    assert.deepStrictEqual(state.parse(hash, MODEL), start, hash);
  }
  const far = state.parse("#cut=99999,99999", MODEL);
  assert.deepStrictEqual([far.row, far.column], [158, 398]);
  assert.deepStrictEqual(state.parse("#cut=5,5", { ...MODEL, rows: 1 }).row, 0);
});

test("listeners hear what has changed, and nothing when nothing has", () => {
  const heard = [];
  const store = state.createStore({ step: 1, row: 2 });
  store.listen((_, changed) => heard.push([...changed]));
  store.set({ step: 1 });
  store.set({ step: 3, row: 2 });
  assert.deepStrictEqual(heard, [["step"]]);
  assert.strictEqual(store.step, 3);
});
