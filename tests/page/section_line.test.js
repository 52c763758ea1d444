// The heights along a cut, and the outlines of films there.
"use strict";

const assert = require("node:assert");
const { test } = require("node:test");
const { randomNumbers, runScripts } = require("./scripts.js");
const { GRID, film, randomStack } = require("./stacks.js");

const { sectionLine } = runScripts("section_line.js");

const area = (piece) => {
  let twice = 0;
  piece.forEach(([u, z], i) => {
    const [v, w] = piece[(i + 1) % piece.length];
    twice += v * z - u * w;
  });
  return twice / 2;
};

function lineOf(...films) {
  const count = films[0].top.length;
  return { axis: "x", count, films: films.map((each, id) => ({
    id, bottom: Int32Array.from(each.bottom), top: Int32Array.from(each.top),
  })) };
}

test("a line is a row along x, or a column along y", () => {
  const stack = [film(GRID, 3, (n, m) => n, (n, m) => 100 * m + n)];
  const front = sectionLine.extract(GRID, stack, { row: 2, column: 5 }, false);
  assert.strictEqual(front.axis, "x");
  assert.deepStrictEqual([...front.films[0].top], [200, 201, 202, 203, 204, 205, 206, 207, 208]);
  const side = sectionLine.extract(GRID, stack, { row: 2, column: 5 }, true);
  assert.strictEqual(side.axis, "y");
  assert.strictEqual(side.films[0].id, 3);
  assert.deepStrictEqual([...side.films[0].top], [5, 105, 205, 305, 405, 505, 605]);
  assert.deepStrictEqual([...side.films[0].bottom], [5, 5, 5, 5, 5, 5, 5]);
});

test("a level film is one rectangle, however many points it has", () => {
  const [{ pieces }] = sectionLine.outlines(lineOf({ bottom: [0, 0, 0, 0, 0], top: [7, 7, 7, 7, 7] }));
  assert.deepStrictEqual(pieces, [[[0, 7], [8, 7], [8, 0], [0, 0]]]);
});

test("a slope is straight from point to point", () => {
  const [{ pieces }] = sectionLine.outlines(lineOf({ bottom: [0, 0, 0, 0], top: [2, 2, 6, 10] }));
  assert.deepStrictEqual(pieces, [[[0, 2], [2, 2], [6, 10], [6, 0], [0, 0]]]);
});

test("a film ends half way to the point where it is missing, with an upright wall", () => {
  const ground = { bottom: [0, 0, 0, 0, 0], top: [5, 5, 5, 5, 5] };
  const line = { bottom: [5, 5, 5, 5, 5], top: [5, 9, 9, 5, 5] };
  const [below, above] = sectionLine.outlines(lineOf(ground, line));
  assert.deepStrictEqual(above.pieces, [[[1, 9], [5, 9], [5, 5], [1, 5]]]);
  assert.strictEqual(below.pieces.length, 1);
});

test("a film in several places has a piece for each, also at single points and at the ends", () => {
  const [{ pieces }] = sectionLine.outlines(lineOf({ bottom: [0, 0, 0, 0, 0], top: [3, 0, 3, 0, 3] }));
  const ends = pieces.map((piece) => piece.map(([u]) => u)).map((u) => [Math.min(...u), Math.max(...u)]);
  assert.deepStrictEqual(ends, [[0, 1], [3, 5], [7, 8]]);
});

// Films of a stack without air fill exactly what lies below its surface: the sum of their areas is that of the
// surface's own outline, in each half step, whatever begins and ends where.
test("films of a closed stack leave no crack and do not overlap", () => {
  const random = randomNumbers(7);
  for (let round = 0; round < 200; ++round) {
    const stack = randomStack(random, GRID, 5, false);
    const cut = { row: round % GRID.rows, column: round % GRID.columns };
    const line = sectionLine.extract(GRID, stack, cut, round % 2 === 1);
    const all = sectionLine.outlines(line).flatMap((each) => each.pieces);
    const whole = all.reduce((sum, piece) => sum + area(piece), 0);
    const surface = Array.from({ length: line.count }, (_, i) => Math.max(...line.films.map((each) =>
      (each.top[i] > each.bottom[i] ? each.top[i] : 0))));
    let expected = 0;  // twice a trapezoid or two halves: the same sum in units of half a point
    for (let i = 0; i + 1 < line.count; ++i) {
      expected += surface[i] + surface[i + 1];
    }
    assert.strictEqual(whole, expected);
  }
});

// At the third point the upper film hangs over a gap of 4, as a step leaves it beside a wall.
test("air at a single point between solid neighbours is closed", () => {
  const ground = { bottom: [0, 0, 0, 0, 0], top: [1, 1, 1, 5, 5] };
  const fill = { bottom: [1, 1, 5, 5, 5], top: [9, 9, 9, 9, 9] };
  const bottoms = (line) => [...sectionLine.closeSlits(line).films[1].bottom];
  assert.deepStrictEqual(bottoms(lineOf(ground, fill)), [1, 1, 1, 5, 5]);
  // Two points are a cavity.
  const wide = { bottom: [1, 5, 5, 5, 5], top: [9, 9, 9, 9, 9] };
  assert.deepStrictEqual(bottoms(lineOf(ground, wide)), [1, 5, 5, 5, 5]);
  // So is one that is open at a side, where the films end below its top.
  const short = { bottom: [1, 1, 5, 5, 5], top: [3, 3, 9, 9, 9] };
  assert.deepStrictEqual(bottoms(lineOf(ground, short)), [1, 1, 5, 5, 5]);
});

test("the film at a height is the upper one where two touch, and none in the air", () => {
  const line = lineOf({ bottom: [0], top: [10] }, { bottom: [10], top: [20] }, { bottom: [30], top: [40] });
  assert.strictEqual(sectionLine.filmAt(line, 0, 5).id, 0);
  assert.strictEqual(sectionLine.filmAt(line, 0, 10).id, 1);
  assert.strictEqual(sectionLine.filmAt(line, 0, 25), null);
  assert.strictEqual(sectionLine.filmAt(line, 0, 30).id, 2);
  assert.strictEqual(sectionLine.filmAt(line, 0, 41), null);
});

test("bounds are those of films that are there", () => {
  const line = lineOf({ bottom: [4, 4], top: [10, 12] }, { bottom: [90, 0], top: [90, 0] });
  assert.deepStrictEqual(sectionLine.bounds(line), { low: 4, high: 12 });
  assert.deepStrictEqual(sectionLine.bounds(lineOf({ bottom: [3], top: [3] })), { low: 0, high: 1 });
});

// The place of a label against a plain search of every window.
test("a name stands where its film leaves most room", () => {
  const flat = { bottom: new Int32Array(9), top: new Int32Array(9).fill(50) };
  assert.deepStrictEqual(sectionLine.labelPlace(flat, 9, 3, 20), { u: 4, z: 25 });
  assert.strictEqual(sectionLine.labelPlace(flat, 9, 3, 51), null);
  assert.strictEqual(sectionLine.labelPlace(flat, 9, 30, 1), null);
  const random = randomNumbers(11);
  for (let round = 0; round < 100; ++round) {
    const count = 12;
    const bottom = Int32Array.from({ length: count }, () => Math.floor(random() * 4));
    const top = bottom.map((each) => each + Math.floor(random() * 8));
    const width = 1 + Math.floor(random() * 4);
    const rooms = [];
    for (let i = 0; i + width < count; ++i) {
      const [low, high] = [bottom.slice(i, i + width + 1), top.slice(i, i + width + 1)];
      rooms.push(Math.min(...high) - Math.max(...low));
    }
    const most = Math.max(...rooms);
    const place = sectionLine.labelPlace({ bottom, top }, count, width, 2);
    if (most < 2) {
      assert.strictEqual(place, null);
      continue;
    }
    const fits = rooms.some((room, i) => room === most && place.u >= i && place.u <= i + width &&
      place.z === Math.max(...bottom.slice(i, i + width + 1)) + most / 2);
    assert.ok(fits, `${[...bottom]} ${[...top]} ${width}: ${JSON.stringify(place)}`);
  }
});
