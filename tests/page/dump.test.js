// The heights in the page of a real run beside the dump of the same run.
"use strict";

const assert = require("node:assert");
const { execFileSync } = require("node:child_process");
const fs = require("node:fs");
const os = require("node:os");
const path = require("node:path");
const { after, before, test } = require("node:test");
const { open_model } = require("./page_file.js");

const PROJECT = process.env.QUARN_PROJECT;
const DUMPED_COLUMN = 20;  // every one of so many is in a dump

let folder;
before(() => {
  folder = fs.mkdtempSync(path.join(os.tmpdir(), "quarn-page-"));
});
after(() => {
  fs.rmSync(folder, { recursive: true });
});

// Runs an example with a dump behind its last step; gives its page and its dump.
function run_example(name, grid) {
  const base = path.join(PROJECT, "examples", name, name.replaceAll("-", "_"));
  const text = fs.readFileSync(base + ".txt", "utf8").replace(/-N \d+/, "-N " + grid);
  const process_file = path.join(folder, name + ".txt");
  fs.writeFileSync(process_file, text.replace(/\nstop\b[^]*/, "") + "\ndump\n");
  const page = path.join(folder, name + ".html");
  execFileSync(path.join(PROJECT, "build/linux/bin/quarn-batch"),
    ["--no-images", "-o", path.join(folder, name), "--dump", folder, "--report", page, base + ".gds", process_file],
    { stdio: "ignore" });
  return { page, text: fs.readFileSync(process_file, "utf8"), dump: read_dump(path.join(folder, "VertexData.txt")) };
}

// The lines of a dump: [row, column, bottom, top], heights in millionths, for each film of each point.
function read_dump(file) {
  const lines = fs.readFileSync(file, "utf8").matchAll(
    /M: (\d+)\tN: (\d+)\tL: (\d+)\tBOT: (-?)(\d+)\.(\d{6})\tTOP: (-?)(\d+)\.(\d{6})\t/g);
  const height = (sign, whole, decimals) => Number(sign + whole + decimals);
  return Array.from(lines, ([, m, n, slot, ...digits]) => ({
    m: Number(m),
    n: Number(n),
    slot: Number(slot),
    bottom: height(...digits.slice(0, 3)),
    top: height(...digits.slice(3)),
  }));
}

for (const name of ["cmos-inverter", "mems-cantilever"]) {
  test("the page of " + name + " has the heights of its dump, to the last digit", async () => {
    const { page, text, dump } = run_example(name, 200);
    const model = await open_model(page);
    const films = await model.heights(model.steps.length - 1);
    const slots = [...new Set(dump.map((line) => line.slot))].sort((a, b) => a - b);
    assert.strictEqual(films.length, slots.length);
    assert.strictEqual(dump.length, films.length * model.rows * Math.ceil(model.columns / DUMPED_COLUMN));
    let differing = 0;
    for (const line of dump) {
      const film = films[slots.indexOf(line.slot)];
      const point = line.m * model.columns + line.n;
      differing += film.bottom[point] === line.bottom && film.top[point] === line.top ? 0 : 1;
    }
    assert.strictEqual(differing, 0);
    assert.strictEqual(model.facts.processFile.text, text);
  });
}

test("the line of each step is where the process file has it", async () => {
  const { page, text } = run_example("cmos-inverter", 200);
  const model = await open_model(page);
  const lines = text.split("\n");
  assert.ok(model.steps.length > 20);
  assert.strictEqual(model.steps[0].line, 0);
  for (const step of model.steps.slice(1)) {
    assert.ok(lines[step.line - 1].startsWith(step.kind), step.title + ": " + lines[step.line - 1]);
  }
});
