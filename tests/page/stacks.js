// Stacks of films for tests, with heights in whole quanta.
"use strict";

const GRID = { columns: 9, rows: 7, spacing: 0.5, quantum: 0.001 };

function filled(grid, height) {
  return new Int32Array(grid.columns * grid.rows).fill(height);
}

// A film whose bottom and top at (n, m) are what two functions say.
function film(grid, id, bottom, top, solid = true) {
  const made = { film: id, solid, bottom: filled(grid, 0), top: filled(grid, 0) };
  for (let m = 0; m < grid.rows; ++m) {
    for (let n = 0; n < grid.columns; ++n) {
      made.bottom[m * grid.columns + n] = bottom(n, m);
      made.top[m * grid.columns + n] = top(n, m);
    }
  }
  return made;
}

// A substrate and films on it that are level, stepped or missing in blocks of two by two points, each on what is
// below it; with `air`, some float above it.
function randomStack(random, grid, count, air) {
  const films = [film(grid, 0, () => 0, () => 1000)];
  const floor = filled(grid, 1000);
  for (let id = 1; id < count; ++id) {
    const blocks = Array.from({ length: grid.columns * grid.rows }, () => random());
    const made = film(grid, id, () => 0, () => 0, random() < 0.7);
    const thickness = 100 * Math.ceil(random() * 5);
    for (let m = 0; m < grid.rows; ++m) {
      for (let n = 0; n < grid.columns; ++n) {
        const point = m * grid.columns + n;
        const block = blocks[(m >> 1) * grid.columns + (n >> 1)];
        const gap = air && block > 0.85 ? 150 : 0;
        const isThere = block > 0.3;
        made.bottom[point] = floor[point] + gap;
        made.top[point] = made.bottom[point] + (isThere ? thickness + (block > 0.6 ? 50 * (n % 3) : 0) : 0);
        floor[point] = isThere ? made.top[point] : floor[point];
      }
    }
    films.push(made);
  }
  return films;
}

module.exports = { GRID, film, randomStack };
