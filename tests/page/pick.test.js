// What a line of sight meets, without a browser.
"use strict";

const assert = require("node:assert");
const { test } = require("node:test");
const { runScripts, randomNumbers } = require("./scripts.js");
const { GRID, film, randomStack } = require("./stacks.js");

const { settle, mesh, pick } = runScripts("settle.js", "face.js", "mesh.js", "pick.js");

const NO_CUT = { row: 0, column: 0 };

function settled(films, grid = GRID) {
  return settle.finish(settle.settle(grid, films));
}

// A substrate of 1 micrometre and a film of 0.25 on it that is missing from column 5 on.
function step() {
  return settled([
    film(GRID, 0, () => 0, () => 1000),
    film(GRID, 1, () => 1000, (n) => (n < 5 ? 1250 : 1000)),
  ]);
}

test("straight down: the film that lies open, and its height at the nearest grid point", () => {
  // Columns are half a micrometre apart: x = 1.1 is nearest to column 2, y = 1.4 to row 3.
  assert.deepStrictEqual(pick.pick(step(), NO_CUT, [1.1, 1.4, 9], [0, 0, -1]),
    { x: 1, y: 1.5, z: 1.25, column: 2, row: 3, film: 1, thickness: 0.25, surface: "top" });
  assert.deepStrictEqual(pick.pick(step(), NO_CUT, [3.4, 0.2, 9], [0, 0, -1]),
    { x: 3.5, y: 0, z: 1, column: 7, row: 0, film: 0, thickness: 1, surface: "top" });
});

test("heights that are measured are those of the run, to the last quantum", () => {
  const random = randomNumbers(5);
  const grid = { columns: 40, rows: 30, spacing: 0.02, quantum: 1e-5 };
  const bumps = film(grid, 0, () => 0, () => 100000 + Math.floor(random() * 500));
  const section = settled([bumps], grid);
  for (let i = 0; i < 300; ++i) {
    const place = [random() * 0.78, random() * 0.58];
    const hit = pick.pick(section, NO_CUT, [...place, 9], [0, 0, -1]);
    assert.strictEqual(hit.z, bumps.top[hit.row * 40 + hit.column] * 1e-5);
    assert.ok(Math.hypot(hit.x - place[0], hit.y - place[1]) < 0.02);
  }
});

test("at a wall the point is one at which the film is, though another one may be nearer", () => {
  // Between columns 4 and 5 the film's wall goes down; x = 2.45 is nearer to column 5, where it is not.
  const hit = pick.pick(step(), NO_CUT, [2.45, 1, 9], [0, 0, -1]);
  assert.strictEqual(hit.film, 1);
  assert.strictEqual(hit.column, 4);
  assert.strictEqual(hit.z, 1.25);
});

test("from the front: the film in the cut face, its height where the ray meets it", () => {
  const section = step();
  const hit = pick.pick(section, NO_CUT, [1, -5, 1.1], [0, 1, 0]);
  assert.deepStrictEqual([hit.film, hit.surface, hit.row, hit.column], [1, "cut", 0, 2]);
  assert.ok(Math.abs(hit.z - 1.1) < 1e-9);
  assert.strictEqual(hit.thickness, 0.25);
  assert.strictEqual(pick.pick(section, NO_CUT, [1, -5, 0.9], [0, 1, 0]).film, 0);
  assert.strictEqual(pick.pick(section, NO_CUT, [1, -5, 1.3], [0, 1, 0]), null);
  assert.strictEqual(pick.pick(section, NO_CUT, [4.1, -5, 0.5], [0, 1, 0]), null);
});

test("on a cut face heights near a film's border are that border", () => {
  const section = step();
  const at = (z) => pick.pick(section, NO_CUT, [1, -5, z], [0, 1, 0], { reach: 0.02 }).z;
  assert.strictEqual(at(1.01), 1);
  assert.strictEqual(at(1.24), 1.25);
  assert.ok(Math.abs(at(1.1) - 1.1) < 1e-9);
});

test("air at a single point of a cut face is no cavity", () => {
  const section = settled([
    film(GRID, 0, () => 0, () => 1000),
    film(GRID, 1, (n) => (n === 4 ? 1100 : 1000), () => 1200),
  ]);
  for (const x of [1.9, 2, 2.1]) {
    const hit = pick.pick(section, NO_CUT, [x, -5, 1.02], [0, 1, 0]);
    assert.deepStrictEqual([hit.film, hit.surface, hit.column], [1, "cut", 4]);
  }
});

test("a moved cut shows its own films, from the front and from the left", () => {
  const section = settled([
    film(GRID, 0, () => 0, () => 1000),
    film(GRID, 1, () => 1000, (n, m) => (m < 3 ? 1500 : 1000)),
    film(GRID, 2, (n, m) => (m < 3 ? 1500 : 1000), (n, m) => (m < 3 ? 1500 : 1500)),
  ]);
  const front = (row) => pick.pick(section, { row, column: 0 }, [1, -5, 1.2], [0, 1, 0]);
  assert.strictEqual(front(0).film, 1);
  assert.strictEqual(front(2).film, 1);
  assert.strictEqual(front(3).film, 2);
  assert.strictEqual(front(3).y, 1.5);
  const left = pick.pick(section, { row: 0, column: 4 }, [-5, 0.5, 1.2], [1, 0, 0]);
  assert.deepStrictEqual([left.film, left.column, left.row, left.surface], [1, 4, 1, "cut"]);
  assert.strictEqual(pick.pick(section, { row: 4, column: 0 }, [1, 1, 9], [0, 0, -1]), null);
});

test("rays pass films that are to be skipped", () => {
  const section = step();
  const skip = (id) => id === 1;
  assert.strictEqual(pick.pick(section, NO_CUT, [1, 1, 9], [0, 0, -1], { skip }).film, 0);
  // Through the front of the film, down onto what is beneath it.
  const hit = pick.pick(section, NO_CUT, [1, -1, 1.3], [0, 1, -0.2], { skip });
  assert.deepStrictEqual([hit.film, hit.surface, hit.z], [0, "top", 1]);
});

test("undersides are met from below, cavities through their opening", () => {
  // A beam over air, which ends before the last columns.
  const section = settled([
    film(GRID, 0, () => 0, () => 1000),
    film(GRID, 1, () => 1500, (n) => (n < 6 ? 1800 : 1500)),
  ]);
  const below = pick.pick(section, NO_CUT, [1, -1, 1.2], [0, 1, 0.2]);
  assert.deepStrictEqual([below.film, below.surface, below.z], [1, "underside", 1.5]);
  const through = pick.pick(section, NO_CUT, [1, -1, 1.4], [0, 1, -0.3]);
  assert.deepStrictEqual([through.film, through.surface, through.z], [0, "top", 1]);
  const foot = pick.pick(section, NO_CUT, [1, 1, -5], [0, 0, 1]);
  assert.deepStrictEqual([foot.film, foot.surface, foot.z], [0, "underside", 0]);
});

// The nearest triangle of the drawn meshes that a ray meets from its front (Moeller, Trumbore, 1997).
function firstTriangle(meshes, origin, direction) {
  const subtract = (a, b) => [a[0] - b[0], a[1] - b[1], a[2] - b[2]];
  const dot = (a, b) => a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
  const cross = (a, b) => [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]];
  let best = null;
  for (const { film: id, mesh: { positions, indices } } of meshes) {
    for (let i = 0; i < indices.length; i += 3) {
      const [a, b, c] = [0, 1, 2].map((k) => [...positions.slice(3 * indices[i + k], 3 * indices[i + k] + 3)]);
      const [ab, ac] = [subtract(b, a), subtract(c, a)];
      const p = cross(direction, ac);
      const determinant = dot(ab, p);
      const s = subtract(origin, a);
      const u = dot(s, p) / determinant;
      const q = cross(s, ab);
      const v = dot(direction, q) / determinant;
      const t = dot(ac, q) / determinant;
      if (determinant > 1e-12 && u >= 0 && v >= 0 && u + v <= 1 && t > 0 && (!best || t < best.t)) {
        best = { film: id, t };
      }
    }
  }
  return best;
}

test("what is picked is what is drawn, from all around", () => {
  let met = 0;
  let astray = 0;  // rays that come in by a gap beside the end of a film, which a face leaves to the air
  for (let seed = 1; seed <= 30; ++seed) {
    const random = randomNumbers(seed);
    const films = randomStack(random, GRID, 5, false).map((each) => ({ ...each, solid: true }));
    const section = settled(films);
    const places = mesh.placesOf(GRID);
    const drawn = [
      ...settle.finish(mesh.surfaces(section, places)),
      ...mesh.face(section, places, "front", 0, 0),
      ...mesh.face(section, places, "back", GRID.rows - 1, 0),
      ...mesh.face(section, places, "left", 0, 0),
      ...mesh.face(section, places, "right", GRID.columns - 1, 0),
    ];
    for (let i = 0; i < 60; ++i) {
      const target = [4 * random(), 3 * random(), 2 * random()];
      const direction = [random() - 0.5, random() - 0.5, random() - 0.7];
      const origin = target.map((value, axis) => value - 30 * direction[axis]);
      const expected = firstTriangle(drawn, origin, direction);
      const actual = pick.pick(section, NO_CUT, origin, direction);
      if (expected) {
        assert.strictEqual(actual && actual.film, expected.film, "seed " + seed + " ray " + i);
        met += 1;
      } else {
        astray += actual ? 1 : 0;
      }
    }
  }
  assert.ok(met > 500, met + " rays met anything");
  assert.ok(astray < met / 200, astray + " rays met what is not drawn");
});

test("nothing is met where no film is seen", () => {
  assert.strictEqual(pick.pick(settled([]), NO_CUT, [1, 1, 9], [0, 0, -1]), null);
});
