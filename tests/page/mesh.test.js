// What the page draws of a section, without a browser.
"use strict";

const assert = require("node:assert");
const { test } = require("node:test");
const { runScripts, randomNumbers } = require("./scripts.js");
const { GRID, film, randomStack } = require("./stacks.js");

const { settle, face, mesh } = runScripts("settle.js", "face.js", "mesh.js");

function settled(grid, films) {
  return settle.finish(settle.settle(grid, films));
}

function surfacesOf(grid, films) {
  return settle.finish(mesh.surfaces(settled(grid, films), mesh.placesOf(grid)));
}

// The triangles of meshes: [{film, corners: [[x, y, z], ...]}].
function triangles(meshes) {
  const all = [];
  for (const { film: id, mesh: { positions, indices } } of meshes) {
    for (let i = 0; i < indices.length; i += 3) {
      const corners = [0, 1, 2].map((k) => [...positions.slice(3 * indices[i + k], 3 * indices[i + k] + 3)]);
      all.push({ film: id, corners });
    }
  }
  return all;
}

// Every triangle of every top and underside of a settled section, without a look at whether it can be seen.
function plainTriangles(section) {
  const all = [];
  const at = (heights, n, m) => [
    n * section.spacing, m * section.spacing, heights[m * section.columns + n] * section.quantum,
  ];
  for (const each of section.films) {
    for (let m = 0; m + 1 < section.rows; ++m) {
      for (let n = 0; n + 1 < section.columns; ++n) {
        for (const points of [[[n, m], [n + 1, m], [n, m + 1]], [[n + 1, m], [n + 1, m + 1], [n, m + 1]]]) {
          const isThere = points.some(([x, y]) => each.presence[y * section.columns + x] & settle.THERE);
          if (isThere) {
            all.push({ film: each.film, corners: points.map(([x, y]) => at(each.high, x, y)) });
            all.push({ film: each.film, corners: points.map(([x, y]) => at(each.low, x, y)).reverse() });
          }
        }
      }
    }
  }
  return all;
}

const subtract = (a, b) => [a[0] - b[0], a[1] - b[1], a[2] - b[2]];
const dot = (a, b) => a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
const cross = (a, b) => [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]];

// The nearest triangle that a ray meets from its front: {film, t}, or null (Moeller, Trumbore, 1997).
function firstHit(all, origin, direction) {
  let best = null;
  for (const { film: id, corners: [a, b, c] } of all) {
    const ab = subtract(b, a);
    const ac = subtract(c, a);
    const p = cross(direction, ac);
    const determinant = dot(ab, p);
    if (determinant <= 1e-12) {
      continue;
    }
    const s = subtract(origin, a);
    const u = dot(s, p) / determinant;
    const q = cross(s, ab);
    const v = dot(direction, q) / determinant;
    const t = dot(ac, q) / determinant;
    if (u >= 0 && v >= 0 && u + v <= 1 && t > 0 && (!best || t < best.t)) {
      best = { film: id, t };
    }
  }
  return best;
}

function edgeCounts(meshes) {
  const counts = new Map();
  for (const { corners } of triangles(meshes)) {
    const keys = corners.map((corner) => corner.map((value) => value.toFixed(5)).join(","));
    for (let i = 0; i < 3; ++i) {
      const key = keys[i] + " " + keys[(i + 1) % 3];
      const back = keys[(i + 1) % 3] + " " + keys[i];
      counts.set(key, (counts.get(key) || 0) + 1);
      counts.set(back, (counts.get(back) || 0) - 1);
    }
  }
  return counts;
}

test("what lies open is the same as what a look through all triangles meets first", () => {
  for (let seed = 1; seed <= 40; ++seed) {
    const random = randomNumbers(seed);
    const films = randomStack(random, GRID, 5, seed % 2 === 0).map((each) => ({ ...each, solid: true }));
    const section = settled(GRID, films);
    const plain = plainTriangles(section);
    const drawn = triangles(surfacesOf(GRID, films));
    assert.ok(drawn.length < plain.length, "seed " + seed);
    for (let ray = 0; ray < 60; ++ray) {
      // From a place above the section, at a slant: it enters through the surface, not through a side.
      const origin = [random() * 4, random() * 3, 10];
      const direction = [(random() - 0.5) / 5, (random() - 0.5) / 5, -1];
      const expected = firstHit(plain, origin, direction);
      const actual = firstHit(drawn, origin, direction);
      assert.strictEqual(actual === null, expected === null, "seed " + seed);
      if (actual !== null) {
        assert.ok(Math.abs(actual.t - expected.t) < 1e-4, "seed " + seed + " ray " + ray);
      }
    }
  }
});

test("surfaces of films that lie on each other are whole: only the border of the section has open edges", () => {
  for (let seed = 1; seed <= 40; ++seed) {
    const films = randomStack(randomNumbers(seed), GRID, 5, false).map((each) => ({ ...each, solid: true }));
    for (const [edge, count] of edgeCounts(surfacesOf(GRID, films))) {
      const [a, b] = edge.split(" ").map((corner) => corner.split(",").map(Number));
      const isBorder = [0, 4].some((x) => a[0] === x && b[0] === x) || [0, 3].some((y) => a[1] === y && b[1] === y);
      assert.ok(count === 0 || isBorder, "seed " + seed + " edge " + edge);
    }
  }
});

test("a level area is one piece", () => {
  const films = [film(GRID, 0, () => 0, () => 1000)];
  // Top and underside: two triangles each.
  assert.strictEqual(triangles(surfacesOf(GRID, films)).length, 4);
});

test("a straight wall is one piece, and what it meets shares its corners", () => {
  const films = [film(GRID, 0, () => 0, (n) => (n < 4 ? 1000 : 500))];
  // Two levels and the wall between columns 3 and 4: two triangles each. The underside has their corners too,
  // four on its long sides and its own four: a fan of eight.
  assert.strictEqual(triangles(surfacesOf(GRID, films)).length, 14);
});

test("a buried border is not drawn, one under a film that light goes through is", () => {
  const below = film(GRID, 0, () => 0, () => 1000);
  const solid = film(GRID, 1, () => 1000, () => 1200);
  const drawn = triangles(surfacesOf(GRID, [below, solid]));
  assert.deepStrictEqual(drawn.map((each) => each.film), [0, 0, 1, 1]);
  const clear = triangles(surfacesOf(GRID, [below, { ...solid, solid: false }]));
  assert.deepStrictEqual(clear.map((each) => each.film), [0, 0, 0, 0, 1, 1]);
});

test("a film that was hidden shows what was beneath it", () => {
  const films = [film(GRID, 0, () => 0, () => 1000), film(GRID, 1, () => 1000, () => 1200)];
  const highest = (some) =>
    Math.max(...triangles(surfacesOf(GRID, some)).flatMap((each) => each.corners.map((corner) => corner[2])));
  assert.strictEqual(highest(films), Math.fround(1.2));
  assert.strictEqual(highest(films.slice(0, 1)), 1);
});

test("a film over air shows its underside", () => {
  const films = [film(GRID, 0, () => 0, () => 1000), film(GRID, 1, () => 1500, () => 1700)];
  const drawn = triangles(surfacesOf(GRID, films));
  const heights = new Set(drawn.map((each) => each.film + " " + each.corners[0][2].toFixed(3)));
  assert.deepStrictEqual([...heights].sort(), ["0 0.000", "0 1.000", "1 1.500", "1 1.700"]);
});

test("normals of level areas and straight walls", () => {
  // Down by one micrometre within half a micrometre: the wall's normal is (2, 0, 1) / sqrt(5), in parts of 127
  // (114, 0, 57).
  const films = [film(GRID, 0, () => 0, (n) => (n < 4 ? 2000 : 1000))];
  const [{ mesh: { normals } }] = surfacesOf(GRID, films);
  const seen = new Set();
  for (let i = 0; i < normals.length; i += 4) {
    seen.add([...normals.slice(i, i + 3)].map((value) => value + 0).join(" "));
  }
  assert.deepStrictEqual([...seen].sort(), ["0 0 -127", "0 0 127", "114 0 57"]);
});

test("a film ends in the open where it was before it was taken away", () => {
  // Two films of a trench that was etched through both: at its wall each shows its own edge.
  const films = [
    film(GRID, 0, () => 0, () => 1000),
    film(GRID, 1, () => 1000, (n) => (n < 4 ? 1300 : 1000)),
    film(GRID, 2, (n) => (n < 4 ? 1300 : 1200), (n) => (n < 4 ? 1600 : 1200)),
  ];
  const section = settled(GRID, films);
  assert.strictEqual(section.films[1].high[4], 1000);
  assert.strictEqual(section.films[2].low[4], 1200);
  assert.strictEqual(section.films[2].high[4], 1200);
  assert.strictEqual(section.films[2].high[5], 1000);
});

test("a film that reaches into the one below it begins at its top", () => {
  const section = settled(GRID, [film(GRID, 0, () => 0, () => 1000), film(GRID, 1, () => 900, () => 1200)]);
  assert.strictEqual(section.films[1].low[20], 1000);
  assert.strictEqual(section.films[1].high[20], 1200);
});

test("beside a hole that another film fills a film ends on what is below it", () => {
  const section = settled(GRID, [
    film(GRID, 0, () => 0, () => 1000),
    film(GRID, 1, (n) => (n < 4 ? 1000 : 1200), (n) => (n < 4 ? 1300 : 1200)),
    film(GRID, 2, (n) => (n < 4 ? 1300 : 1000), () => 1500),
  ]);
  assert.strictEqual(section.films[1].high[4], 1000);
  assert.strictEqual(section.films[2].low[4], 1000);
});

test("a film that rests ends on what is below it where another one is above its end", () => {
  // Beyond column 4 the ground is lower, and film 2 floats over it; film 1 was at 0.9 there.
  const section = settled(GRID, [
    film(GRID, 0, () => 0, (n) => (n < 4 ? 1000 : 800)),
    film(GRID, 1, (n) => (n < 4 ? 1000 : 900), (n) => (n < 4 ? 1300 : 900)),
    film(GRID, 2, (n) => (n < 4 ? 1300 : 950), () => 1500),
  ]);
  assert.strictEqual(section.films[1].high[4], 800);
});

test("what is beneath a solid film shows through a clear one from below", () => {
  const films = [
    film(GRID, 0, () => 0, () => 1000, false),
    film(GRID, 1, () => 1000, () => 1200),
  ];
  const under = triangles(surfacesOf(GRID, films)).filter((each) => each.film === 1 && each.corners[0][2] === 1);
  assert.strictEqual(under.length, 2);
});

test("under a film that reaches over the end of another one is air", () => {
  // Film 1 hangs on film 2 up to column 3, over air; its end at column 4 is the underside of film 2, which ends
  // at column 5.
  const films = [
    film(GRID, 0, () => 0, () => 1000),
    film(GRID, 1, (n) => (n < 4 ? 1100 : 1200), () => 1200),
    film(GRID, 2, (n) => (n < 5 ? 1200 : 1000), (n) => (n < 5 ? 1400 : 1000)),
  ];
  const { films: [substrate, , above] } = settled(GRID, films);
  const cell = 2 * GRID.columns + 4;
  assert.strictEqual(substrate.parts[cell] & settle.TOP_A, settle.TOP_A);
  assert.strictEqual(above.parts[cell] & settle.UNDER_A, settle.UNDER_A);
});

// The normals of the drawn corners at a place, as texts.
function normalsAt(meshes, x, y) {
  const found = new Set();
  for (const { mesh: { positions, normals } } of meshes) {
    for (let i = 0; 3 * i < positions.length; ++i) {
      if (Math.abs(positions[3 * i] - x) < 1e-6 && Math.abs(positions[3 * i + 1] - y) < 1e-6 &&
          normals[4 * i + 2] > 0) {
        found.add([...normals.slice(4 * i, 4 * i + 3)].join(" "));
      }
    }
  }
  return [...found];
}

test("a ridge stays sharp where its sides are bent", () => {
  const films = [film(GRID, 0, () => 0, (n, m) => 3000 - 500 * Math.abs(n - 4) + 7 * m * m)];
  assert.ok(normalsAt(surfacesOf(GRID, films), 2, 1.5).length >= 2);
  assert.strictEqual(normalsAt(surfacesOf(GRID, films), 1, 1.5).length, 1);
});

test("the stairs that the grid makes of a slanting wall take the light as one wall", () => {
  const films = [film(GRID, 0, () => 0, (n, m) => (n - m < 2 ? 9000 : 1000))];
  const walls = normalsAt(surfacesOf(GRID, films), 2.5, 1.5).map((text) => text.split(" ").map(Number))
    .filter(([, , z]) => z < 60);
  assert.ok(walls.length > 0);
  for (const [x, y] of walls) {
    assert.ok(Math.abs(x + y) < 60 && x > 40 && y < -40, x + " " + y);
  }
});

// The area of each film in a face, square micrometres.
function faceAreas(grid, films, side, at, first = 0) {
  const section = settled(grid, films);
  const areas = new Map();
  for (const { film: id, corners: [a, b, c] } of triangles(mesh.face(section, mesh.placesOf(grid), side, at, first))) {
    const normal = cross(subtract(b, a), subtract(c, a));
    const outward = { front: -normal[1], back: normal[1], left: -normal[0], right: normal[0] }[side];
    assert.ok(outward > 0, "a triangle is turned inward");
    areas.set(id, (areas.get(id) || 0) + outward / 2);
  }
  return areas;
}

const near = (actual, expected) => assert.ok(Math.abs(actual - expected) < 1e-6, actual + " is not " + expected);

test("faces of level films are rectangles, from each of the four sides", () => {
  const films = [film(GRID, 0, () => 0, () => 1000), film(GRID, 1, () => 1000, () => 1200)];
  // 4 micrometres across, 3 along.
  for (const side of ["front", "back"]) {
    const areas = faceAreas(GRID, films, side, 3);
    near(areas.get(0), 4);
    near(areas.get(1), 0.8);
  }
  for (const side of ["left", "right"]) {
    const areas = faceAreas(GRID, films, side, 5);
    near(areas.get(0), 3);
    near(areas.get(1), 0.6);
  }
  near(faceAreas(GRID, films, "front", 3, 6).get(1), 0.2);
});

test("a face shows the films of its own row", () => {
  const films = [
    film(GRID, 0, () => 0, () => 1000),
    film(GRID, 1, () => 1000, (n, m) => (m < 3 ? 1200 : 1000)),
    film(GRID, 2, (n, m) => (m < 3 ? 1200 : 1000), (n, m) => (m < 3 ? 1200 : 1500)),
  ];
  assert.deepStrictEqual([...faceAreas(GRID, films, "front", 2).keys()].sort(), [0, 1]);
  assert.deepStrictEqual([...faceAreas(GRID, films, "front", 3).keys()].sort(), [0, 2]);
});

test("air at a single point of a face is no cavity", () => {
  const films = [film(GRID, 0, () => 0, () => 1000), film(GRID, 1, (n) => (n === 4 ? 1100 : 1000), () => 1200)];
  near(faceAreas(GRID, films, "front", 2).get(1), 0.8);
});

test("films at the wall of a hole that was filled end straight, and the filling takes their place", () => {
  // Two films of 0.2 up to column 3, that is over 1.5 micrometres.
  const films = [
    film(GRID, 0, () => 0, () => 1000),
    film(GRID, 1, () => 1000, (n) => (n < 4 ? 1200 : 1000)),
    film(GRID, 2, (n) => (n < 4 ? 1200 : 1000), (n) => (n < 4 ? 1400 : 1000)),
    film(GRID, 3, (n) => (n < 4 ? 1400 : 1000), () => 1600),
  ];
  const areas = faceAreas(GRID, films, "front", 2);
  near(areas.get(1), 0.3);
  near(areas.get(2), 0.3);
  near(areas.get(3), 4 * 0.6 - 0.6);
});

test("where one film takes the place of another at the same height, the later one begins with a straight edge", () => {
  const films = [
    film(GRID, 0, () => 0, () => 1000),
    film(GRID, 1, () => 1000, (n) => (n < 4 ? 1200 : 1000)),
    film(GRID, 2, () => 1000, (n) => (n < 4 ? 1000 : 1200)),
  ];
  films[2].bottom = films[1].top;
  films[2].top = film(GRID, 2, () => 0, () => 1200).top;
  const areas = faceAreas(GRID, films, "front", 2);
  near(areas.get(1), 0.3);
  near(areas.get(2), 0.5);
});

test("films without air between them fill a face once, up to the surface", () => {
  for (let seed = 1; seed <= 60; ++seed) {
    const films = randomStack(randomNumbers(seed), GRID, 6, false);
    const section = settled(GRID, films);
    for (let at = 0; at < GRID.rows; ++at) {
      let expected = 0;
      const top = (n) => section.films[5].high[at * GRID.columns + n] * GRID.quantum;
      const total = [...faceAreas(GRID, films, "front", at).values()].reduce((a, b) => a + b);
      for (let n = 0; n + 1 < GRID.columns; ++n) {
        expected += ((top(n) + top(n + 1)) / 2) * GRID.spacing;
      }
      // A film that ends in the open runs out beside its wall, over air.
      assert.ok(total <= expected + 1e-6, "seed " + seed + " row " + at + ": " + total + " > " + expected);
      assert.ok(total >= expected * 0.8, "seed " + seed + " row " + at + ": " + total + " < " + expected);
    }
  }
});

test("no place of a face is covered twice, and none inside films that fill it is free", () => {
  for (let seed = 1; seed <= 30; ++seed) {
    const random = randomNumbers(seed);
    const films = randomStack(random, GRID, 6, seed % 2 === 0);
    const section = settled(GRID, films);
    const pieces = triangles(mesh.face(section, mesh.placesOf(GRID), "front", 2, 0));
    for (let i = 0; i < 200; ++i) {
      const place = [random() * 4, random() * 3];
      let covers = 0;
      for (const { corners: [a, b, c] } of pieces) {
        const side = (p, q) => (q[0] - p[0]) * (place[1] - p[2]) - (q[2] - p[2]) * (place[0] - p[0]);
        covers += side(a, b) > 0 && side(b, c) > 0 && side(c, a) > 0 ? 1 : 0;
      }
      assert.ok(covers <= 1, "seed " + seed);
      assert.ok(covers === 1 || place[1] > 0.999, "seed " + seed);
    }
  }
});

test("a coarser grid keeps places and both borders", () => {
  const films = [film(GRID, 0, () => 0, (n, m) => 1000 + 10 * n + m)];
  const coarse = settle.coarsen(GRID, films, 3);
  assert.deepStrictEqual(coarse.xs, [0, 3, 6, 8]);
  assert.deepStrictEqual(coarse.ys, [0, 3, 6]);
  assert.deepStrictEqual([...coarse.films[0].top],
    [1000, 1030, 1060, 1080, 1003, 1033, 1063, 1083, 1006, 1036, 1066, 1086]);
  const places = mesh.placesOf(GRID, coarse.xs, coarse.ys);
  assert.deepStrictEqual([...places.x], [0, 1.5, 3, 4]);
  assert.deepStrictEqual([...places.y], [0, 1.5, 3]);
});

test("nothing at all is drawn of a section whose films are all hidden", () => {
  assert.deepStrictEqual(surfacesOf(GRID, []), []);
  assert.strictEqual(faceAreas(GRID, [], "front", 0).size, 0);
});
