// settle.js: the films of a step settled on each other, and which of their triangles can be seen.
//
// Heights are whole numbers of the model's quantum; a grid has columns x rows points, point (n, m) is
// m * columns + n, and row 0 lies in front. A cell (n, m) of four points has two triangles, A over (n, m),
// (n + 1, m), (n, m + 1) and B over (n + 1, m), (n + 1, m + 1), (n, m + 1).
//
// The films are settled from the bottom up, until every film has a bottom (`low`) and a top (`high`) at every
// point, where it is absent too, and none reaches into another. Two films that touch at all corners of a
// triangle then touch all over it, and there is no crack between them. Settling is what the program does for
// its fine pictures, so that the page shows the same walls.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});

  // What a settled film is at a point.
  const THERE = 1;  // thicker than rounding
  const FLOATS = 2;  // there is air between it, or its end, and what is below

  // Parts of a film that can be seen: the top and the underside of the triangles of a cell.
  const TOP_A = 1;
  const TOP_B = 2;
  const UNDER_A = 4;
  const UNDER_B = 8;

  // Parts of the section's width: what rounding leaves where nothing should be.
  const ROUNDING = 1e-6;

  // The difference of heights that counts as none, in quanta: at least the one that two heights rounded
  // apart have.
  function roundingOf(grid) {
    return Math.max(1, Math.round((grid.columns * grid.spacing * ROUNDING) / grid.quantum));
  }

  // films: [{film, bottom, top, solid}] from the bottom up; those that are hidden are not among them.
  function createSection(grid, films) {
    const count = grid.columns * grid.rows;
    return {
      columns: grid.columns,
      rows: grid.rows,
      spacing: grid.spacing,
      quantum: grid.quantum,
      rounding: roundingOf(grid),
      films: films.map((film) => ({
        film: film.film,
        solid: film.solid,
        bottom: film.bottom,
        top: film.top,
        low: new Int32Array(count),
        high: new Int32Array(count),
        presence: new Uint8Array(count),
        parts: new Uint8Array(count),
      })),
      floor: films.length > 0 ? films[0].bottom.slice() : new Int32Array(count),
      endedBy: new Int16Array(count).fill(-1),  // the film whose end in the air is the floor
      last: new Int16Array(2 * count).fill(-1),  // of each triangle: the film that was there last
    };
  }

  // Settles each point by itself.
  function settlePoints(section, film) {
    const { floor, rounding } = section;
    const { bottom, top, low, high, presence } = film;
    for (let point = 0; point < floor.length; ++point) {
      const ground = floor[point];
      const floats = bottom[point] > ground + rounding;
      const under = floats ? bottom[point] : ground;
      const there = top[point] > under + rounding;
      low[point] = there ? under : ground;
      high[point] = there ? top[point] : ground;
      presence[point] = there ? (floats ? THERE | FLOATS : THERE) : 0;
    }
  }

  // The underside of the first film above one that is there at a point, or infinity.
  function ceilingAbove(section, index, point) {
    for (let i = index + 1; i < section.films.length; ++i) {
      const { bottom, top } = section.films[i];
      if (top[point] - bottom[point] > section.rounding) {
        return bottom[point];
      }
    }
    return Infinity;
  }

  // What the points around one tell about how a film ends there: whether it rests on what is below it at one
  // of them, whether it floats at one and holds on to what is above it, and how low and high its underside is.
  function lookAround(section, index, n, m) {
    const { presence, low, high } = section.films[index];
    const end = { rests: false, hangs: false, lowest: Infinity, highest: -Infinity };
    for (let y = Math.max(m - 1, 0); y <= m + 1 && y < section.rows; ++y) {
      for (let x = Math.max(n - 1, 0); x <= n + 1 && x < section.columns; ++x) {
        const point = y * section.columns + x;
        if ((presence[point] & THERE) === 0) {
          continue;
        }
        const floats = (presence[point] & FLOATS) !== 0;
        end.rests = end.rests || !floats;
        end.lowest = Math.min(end.lowest, low[point]);
        end.highest = Math.max(end.highest, low[point]);
        end.hangs =
          end.hangs ||
          (floats && ceilingAbove(section, index, point) <= high[point] + section.rounding);
      }
    }
    return end;
  }

  // Where a film ends at a point beside it. In the open that is the height at which it was there before it was
  // taken away, so that the films of a wall show one above the other and not the uppermost alone. One that
  // floats ends in the air, or at the film that it hangs on, and does not come down like a curtain. In all
  // other places it ends on what is below it.
  function endHeight(section, index, end, point, ground) {
    const ceiling = ceilingAbove(section, index, point);
    if (ceiling < Infinity && end.rests) {
      return ground;
    }
    if (ceiling < Infinity && end.hangs) {
      return ceiling;
    }
    const before = section.films[index].bottom[point];
    const lowest = end.rests ? ground : Math.min(end.lowest, ceiling);
    const highest = Math.min(end.highest, ceiling);
    return before > highest ? highest : before > lowest ? before : lowest;
  }

  // Settles the points beside the film's edge. `there` says for each point of three rows whether the film is
  // there at it or beside it in its row.
  function settleEnds(section, index) {
    const { columns, rows, floor, rounding } = section;
    const { presence, low, high } = section.films[index];
    for (let m = 0; m < rows; ++m) {
      const here = m * columns;
      const before = m > 0 ? here - columns : here;
      const behind = m + 1 < rows ? here + columns : here;
      let left = 0;
      let own = presence[before] | presence[here] | presence[behind];
      for (let n = 0; n < columns; ++n) {
        const right =
          n + 1 < columns ? presence[before + n + 1] | presence[here + n + 1] | presence[behind + n + 1] : 0;
        const point = here + n;
        const beside = (left | own | right) & THERE;
        left = own;
        own = right;
        if (beside === 0 || (presence[point] & THERE) !== 0) {
          continue;
        }
        const ground = floor[point];
        const height = endHeight(section, index, lookAround(section, index, n, m), point, ground);
        if (height > ground + rounding) {
          low[point] = high[point] = height;
          presence[point] = FLOATS;
        }
      }
    }
  }

  // Whether a film lies on the one that was there before it, all over a triangle. A floor that is the end of
  // a film which is not there in this triangle is air here.
  function isContact(section, film, before, a, b, c) {
    const { endedBy } = section;
    const any = film.presence[a] | film.presence[b] | film.presence[c];
    return (any & FLOATS) === 0 && endedBy[a] <= before && endedBy[b] <= before && endedBy[c] <= before;
  }

  // Marks what shows of the border between a film and the one before it in a triangle. The underside of the
  // lowest film is the foot of the section.
  function markTriangle(section, index, cell, second, a, b, c) {
    const film = section.films[index];
    if (((film.presence[a] | film.presence[b] | film.presence[c]) & THERE) === 0) {
      return;
    }
    const triangle = 2 * cell + second;
    const before = section.last[triangle];
    section.last[triangle] = index;
    if (before < 0) {
      film.parts[cell] |= UNDER_A << second;
      return;
    }
    const below = section.films[before];
    const contact = isContact(section, film, before, a, b, c);
    if (!contact || !film.solid) {
      below.parts[cell] |= TOP_A << second;
    }
    if (!contact || !below.solid) {
      film.parts[cell] |= UNDER_A << second;
    }
  }

  // Marks what shows of the border beneath a film. For most cells that is nothing, since a solid film lies on
  // a solid one all over them, and quickly seen.
  function markBorder(section, index) {
    const { columns, rows, last, endedBy, films } = section;
    const { presence, solid } = films[index];
    for (let m = 0; m + 1 < rows; ++m) {
      for (let n = 0; n + 1 < columns; ++n) {
        const p = m * columns + n;
        const q = p + columns;
        const any = presence[p] | presence[p + 1] | presence[q] | presence[q + 1];
        if ((any & THERE) === 0) {
          continue;
        }
        const before = last[2 * p];
        const whole = presence[p] & presence[p + 1] & presence[q] & presence[q + 1] & THERE;
        if (
          whole !== 0 && (any & FLOATS) === 0 && before >= 0 && last[2 * p + 1] === before &&
          solid && films[before].solid &&
          (endedBy[p] & endedBy[p + 1] & endedBy[q] & endedBy[q + 1]) === -1
        ) {
          last[2 * p] = last[2 * p + 1] = index;
          continue;
        }
        markTriangle(section, index, p, 0, p, p + 1, q);
        markTriangle(section, index, p, 1, p + 1, q + 1, q);
      }
    }
  }

  // Makes a settled film what the next one is settled on.
  function raiseFloor(section, index) {
    const { floor, endedBy } = section;
    const { high, presence } = section.films[index];
    for (let point = 0; point < floor.length; ++point) {
      floor[point] = high[point];
      if (presence[point] !== 0) {
        endedBy[point] = (presence[point] & THERE) !== 0 ? -1 : index;
      }
    }
  }

  // The last film of each triangle lies open.
  function markSurface(section) {
    const { last, films } = section;
    for (let triangle = 0; triangle < last.length; ++triangle) {
      if (last[triangle] >= 0) {
        films[last[triangle]].parts[triangle >> 1] |= TOP_A << (triangle & 1);
      }
    }
  }

  // The lowest and the highest point of all films, in quanta.
  function measureHeights(section) {
    const { films, floor } = section;
    section.lowest = 0;
    section.highest = 0;
    for (let point = 0; films.length > 0 && point < floor.length; ++point) {
      section.lowest = Math.min(section.lowest, films[0].low[point]);
      section.highest = Math.max(section.highest, floor[point]);
    }
  }

  // Settles the films of a step. A generator: it stops between pieces of work, so that a page can do something
  // else, and returns the section.
  //   grid    {columns, rows, spacing, quantum}
  //   films   [{film, bottom, top, solid}] from the bottom up, without those that are hidden; the arrays stay
  //           the caller's and are not changed
  function* settle(grid, films) {
    const section = createSection(grid, films);
    for (let index = 0; index < films.length; ++index) {
      settlePoints(section, section.films[index]);
      settleEnds(section, index);
      yield;
      markBorder(section, index);
      raiseFloor(section, index);
      yield;
    }
    markSurface(section);
    measureHeights(section);
    return section;
  }

  // Every `stride`-th point of a grid and its last row and column: a quicker look at the same films. Points
  // keep their places in `xs` and `ys`, columns and rows of the whole grid.
  function sampleLine(count, stride) {
    const line = [];
    for (let i = 0; i < count - 1; i += stride) {
      line.push(i);
    }
    line.push(count - 1);
    return line;
  }

  function sampleHeights(heights, columns, xs, ys) {
    const sampled = new Int32Array(xs.length * ys.length);
    let to = 0;
    for (let m = 0; m < ys.length; ++m) {
      const row = ys[m] * columns;
      for (let n = 0; n < xs.length; ++n) {
        sampled[to++] = heights[row + xs[n]];
      }
    }
    return sampled;
  }

  // Returns {grid, films, xs, ys}: a coarser grid, whose `spacing` holds only in the middle of it.
  function coarsen(grid, films, stride) {
    const xs = sampleLine(grid.columns, stride);
    const ys = sampleLine(grid.rows, stride);
    return {
      grid: { ...grid, columns: xs.length, rows: ys.length, spacing: grid.spacing * stride },
      films: films.map((film) => ({
        ...film,
        bottom: sampleHeights(film.bottom, grid.columns, xs, ys),
        top: sampleHeights(film.top, grid.columns, xs, ys),
      })),
      xs,
      ys,
    };
  }

  // Runs a generator to its end and returns what it returns.
  function finish(generator) {
    let result = generator.next();
    while (!result.done) {
      result = generator.next();
    }
    return result.value;
  }

  Quarn.settle = { settle, coarsen, finish, THERE, FLOATS, TOP_A, TOP_B, UNDER_A, UNDER_B };
})();
