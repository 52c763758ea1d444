// export/page/model.js on pages whose heights are known.
"use strict";

const assert = require("node:assert");
const fs = require("node:fs");
const { test } = require("node:test");
const { open_model, sample_path } = require("./page_file.js");

function read_expected(name) {
  return JSON.parse(fs.readFileSync(sample_path(name + ".json"), "utf8"));
}

// As they are expected.
function plain(films) {
  return films.map(({ film, bottom, top }) => [film, Array.from(bottom), Array.from(top)]);
}

function differing_points(a, b) {
  return a.filter((value, i) => value !== b[i]).length;
}

for (const name of ["stairs", "random", "hostile"]) {
  test("the heights of " + name + " are those that were packed, whatever the order of asking", async () => {
    const expected = read_expected(name);
    const orders = [
      expected.map((_, i) => i),
      expected.map((_, i) => expected.length - 1 - i),
      expected.map((_, i) => (7 * i + 3) % expected.length),
    ];
    for (const order of orders) {
      const model = await open_model(sample_path(name + ".html"));
      assert.strictEqual(model.steps.length, expected.length);
      for (const step of order) {
        const films = plain(await model.heights(step));
        assert.strictEqual(films.length, expected[step].length);
        films.forEach(([film, bottom, top], i) => {
          assert.strictEqual(film, expected[step][i][0]);
          assert.strictEqual(differing_points(bottom, expected[step][i][1]), 0, `bottom of ${film} in ${step}`);
          assert.strictEqual(differing_points(top, expected[step][i][2]), 0, `top of ${film} in ${step}`);
        });
      }
    }
  });
}

test("grid, quantum, films and steps are told", async () => {
  const model = await open_model(sample_path("stairs.html"));
  assert.strictEqual(model.columns, 60);
  assert.strictEqual(model.rows, 20);
  assert.strictEqual(model.spacing, 0.05);
  assert.strictEqual(model.quantum, 1e-6);
  assert.deepStrictEqual(model.films.map((film) => film.name), ["_SUB_", "OXIDE", "METAL"]);
  assert.deepStrictEqual(model.films.map((film) => film.id), [0, 1, 2]);
  const { number, title, kind, line, changed } = model.steps[2];
  assert.deepStrictEqual([number, title, kind, line], [2, "Cross section after etching of OXIDE", "etch", 6]);
  assert.deepStrictEqual(changed, [1]);
  assert.deepStrictEqual(model.steps.map((step) => step.changed), [[0], [1], [1], [2], [1]]);
  assert.deepStrictEqual(model.steps.map((step) => step.kind),
    ["substrate", "deposition", "etch", "deposition", "release"]);
});

test("facts are told, of paths the file's name alone", async () => {
  const { facts } = await open_model(sample_path("stairs.html"));
  assert.deepStrictEqual(facts, {
    program: "Quarn",
    version: "1.2.3",
    layout: "layout.gds",
    cell: "STAIRS",
    section: { x: 1.5, y: -2, width: 3, depth: 1, unit: "um" },
    cut: "STAIRS",
    heading: "Heading",
    processFile: { name: "process.txt", text: "# line 1\nSTAIRS\r\nlast \u00e9\n" },
    date: "2024-05-31 17:05",
  });
});

test("a film that a step left as it was keeps its arrays", async () => {
  const model = await open_model(sample_path("stairs.html"));
  const before = await model.heights(2);
  const after = await model.heights(3);
  assert.strictEqual(after[1].top, before[1].top);
  assert.strictEqual(after[1].bottom, before[1].bottom);
  // What touches all over is one plane.
  assert.strictEqual(after[2].bottom, after[1].top);
  assert.strictEqual((await model.heights(2))[1].top, before[1].top);
});

test("steps that are asked for at once come out right", async () => {
  const expected = read_expected("random");
  const model = await open_model(sample_path("random.html"));
  const steps = await Promise.all([50, 3, 50, 20].map((step) => model.heights(step)));
  assert.deepStrictEqual(plain(steps[0]), expected[50]);
  assert.deepStrictEqual(plain(steps[1]), expected[3]);
  assert.deepStrictEqual(plain(steps[3]), expected[20]);
});

test("planes that were dropped for room are unpacked again", async () => {
  const expected = read_expected("random");
  const model = await open_model(sample_path("random.html"), () => {}, 0);
  const first = await model.heights(10);
  for (const step of [10, 59, 30, 0, 59]) {
    assert.deepStrictEqual(plain(await model.heights(step)), expected[step]);
  }
  assert.notStrictEqual((await model.heights(10))[1].top, first[1].top);
});

test("markup in names arrives as it was, as text", async () => {
  const model = await open_model(sample_path("hostile.html"));
  const name = "</script><script>window.was_run = 1</script><img src=x onerror='window.was_run = 1'>" +
    "\"'\\\u2028<!--\u00ff";
  assert.strictEqual(model.facts.cell, name);
  assert.strictEqual(model.facts.cut, name);
  assert.strictEqual(model.films[1].name, name);
  assert.ok(model.facts.processFile.text.includes(name));
  assert.ok(model.steps[1].title.startsWith("Cross section after </script>"));
});

test("a page that is not whole says so, and what can be shown still is", async () => {
  const file = sample_path("stairs.html");
  await assert.rejects(open_model(file, (page) => page.delete("quarn-facts")), /damaged.*holds no run/);
  await assert.rejects(open_model(file, (page) => page.set("quarn-facts", "{\"films\":")), /damaged/);
  const damages = [
    (page) => page.delete("quarn-step-2"),
    (page) => page.set("quarn-step-2", ""),
    (page) => page.set("quarn-step-2", "%%%"),
    (page) => page.set("quarn-step-2", page.get("quarn-step-2").slice(0, 40)),
    (page) => page.set("quarn-step-2", page.get("quarn-step-3")),
  ];
  for (const damage of damages) {
    const model = await open_model(file, damage);
    await assert.rejects(model.heights(2), /damaged.*step 2/);
    assert.strictEqual((await model.heights(1)).length, 2);
  }
});

test("a step that there is not is refused", async () => {
  const model = await open_model(sample_path("stairs.html"));
  await assert.rejects(model.heights(5), /no step/);
  assert.strictEqual((await model.heights(4)).length, 2);
});
