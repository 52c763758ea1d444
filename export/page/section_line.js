// section_line.js: the heights along one line of the grid, and the outlines of the films there. Nothing of the
// page is needed for it. Heights are whole numbers of the model's quantum.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});

  // The heights along x at a row of the grid, or along y at a column (`side`):
  //   {axis: "x" or "y", count, films: [{id, bottom, top}]}, from the lowest film up
  function extract(model, heights, cut, side) {
    const count = side ? model.rows : model.columns;
    const first = side ? cut.column : cut.row * model.columns;
    const stride = side ? model.columns : 1;
    const along = (values) => {
      const line = new Int32Array(count);
      for (let i = 0; i < count; ++i) {
        line[i] = values[first + i * stride];
      }
      return line;
    };
    const films = heights.map((each) => ({ id: each.film, bottom: along(each.bottom), top: along(each.top) }));
    return { axis: side ? "y" : "x", count, films };
  }

  // Where other films begin or end between point i and the next one: 1, else 0.
  function changes(line) {
    const changed = new Uint8Array(line.count);
    for (const film of line.films) {
      for (let i = 0; i + 1 < line.count; ++i) {
        const here = film.top[i] > film.bottom[i];
        const next = film.top[i + 1] > film.bottom[i + 1];
        changed[i] |= here === next ? 0 : 1;
      }
    }
    return changed;
  }

  // Air between films at a point: [{low, high, film above}], and above them all.
  function airAt(line, i) {
    const air = [];
    let below = null;
    for (const film of line.films) {
      if (film.top[i] > film.bottom[i]) {
        if (below !== null && film.bottom[i] > below) {
          air.push({ low: below, high: film.bottom[i], film });
        }
        below = film.top[i];
      }
    }
    air.push({ low: below === null ? -Infinity : below, high: Infinity, film: null });
    return air;
  }

  // The line without slits: air at a single point, with none at its height on either side. Steps leave it beside
  // walls where nothing is hollow, and the program's pictures of the cut do not show it either.
  function closeSlits(line) {
    const films = line.films.map((film) => ({ ...film, bottom: film.bottom.slice() }));
    const closed = new Map(line.films.map((film, k) => [film, films[k]]));
    const isSolid = (air, gap) => air.every((each) => each.high <= gap.low || each.low >= gap.high);
    let before = airAt(line, 0);
    let here = line.count > 1 ? airAt(line, 1) : [];
    for (let i = 1; i + 1 < line.count; ++i) {
      const behind = airAt(line, i + 1);
      for (const gap of here) {
        if (gap.film !== null && isSolid(before, gap) && isSolid(behind, gap)) {
          closed.get(gap.film).bottom[i] = gap.low;
        }
      }
      before = here;
      here = behind;
    }
    return { ...line, films };
  }

  // Drops what lies on the straight line between its neighbours. Points are pairs of whole numbers.
  function straighten(points) {
    const kept = [];
    for (const point of points) {
      while (kept.length > 1) {
        const a = kept[kept.length - 2];
        const b = kept[kept.length - 1];
        if ((b[0] - a[0]) * (point[1] - a[1]) !== (point[0] - a[0]) * (b[1] - a[1])) {
          break;
        }
        kept.pop();
      }
      const last = kept[kept.length - 1];
      if (last === undefined || last[0] !== point[0] || last[1] !== point[1]) {
        kept.push(point);
      }
    }
    return kept;
  }

  // The outlines of the films: [{id, pieces: [[[u, z], ...], ...]}], where u counts half grid points and z
  // quanta. Between two points that have the same films a film goes straight from one to the other. Where a
  // film begins or ends it does so half way, with an upright wall, and so do all others there: films that
  // touch at the points touch everywhere, and none overlaps another.
  function outlines(measured) {
    const line = closeSlits(measured);
    const changed = changes(line);
    return line.films.map((film) => {
      const pieces = [];
      let upper = null;
      let lower = null;
      const push = (u, i) => {
        upper.push([u, film.top[i]]);
        lower.push([u, film.bottom[i]]);
      };
      for (let i = 0; i < line.count; ++i) {
        const present = film.top[i] > film.bottom[i];
        if (present) {
          upper = upper || [];
          lower = lower || [];
          if (i > 0 && changed[i - 1]) {
            push(2 * i - 1, i);
          }
          push(2 * i, i);
          if (changed[i]) {
            push(2 * i + 1, i);
          }
        }
        const ends = i + 1 === line.count || film.top[i + 1] <= film.bottom[i + 1];
        if (present && ends) {
          pieces.push(straighten(upper).concat(straighten(lower).reverse()));
          upper = lower = null;
        }
      }
      return { id: film.id, pieces };
    });
  }

  // The film at height z (quanta) of point i, the upper one where two touch; null in the air.
  function filmAt(line, i, z) {
    for (let k = line.films.length - 1; k >= 0; --k) {
      const film = line.films[k];
      if (film.top[i] > film.bottom[i] && z >= film.bottom[i] && z <= film.top[i]) {
        return film;
      }
    }
    return null;
  }

  // Lowest and highest height of all films along the line, quanta; 0 and 1 where there is none.
  function bounds(line) {
    let low = Infinity;
    let high = -Infinity;
    for (const film of line.films) {
      for (let i = 0; i < line.count; ++i) {
        if (film.top[i] > film.bottom[i]) {
          low = Math.min(low, film.bottom[i]);
          high = Math.max(high, film.top[i]);
        }
      }
    }
    return low < high ? { low, high } : { low: 0, high: 1 };
  }

  // For each window of `size` points: what lies between the highest bottom and the lowest top in it. Walks the
  // film once; a queue holds the points that can still be an extreme.
  function rooms(film, count, size) {
    const room = new Float64Array(Math.max(0, count - size + 1));
    const lowest = [];   // points with ever higher tops
    const highest = [];  // points with ever lower bottoms
    for (let i = 0; i < count; ++i) {
      while (lowest.length > 0 && film.top[lowest[lowest.length - 1]] >= film.top[i]) {
        lowest.pop();
      }
      while (highest.length > 0 && film.bottom[highest[highest.length - 1]] <= film.bottom[i]) {
        highest.pop();
      }
      lowest.push(i);
      highest.push(i);
      const start = i - size + 1;
      if (lowest[0] < start) {
        lowest.shift();
      }
      if (highest[0] < start) {
        highest.shift();
      }
      if (start >= 0) {
        room[start] = film.top[lowest[0]] - film.bottom[highest[0]];
      }
    }
    return room;
  }

  // The middle of a place for a text of `width` points and `height` quanta within a film, where there is most
  // room above and below, in the middle of the longest such stretch: {u, z}, u in points. Null without room.
  function labelPlace(film, count, width, height) {
    const size = Math.min(count + 1, Math.max(1, Math.ceil(width) + 1));
    const room = rooms(film, count, size);
    const most = room.reduce((high, each) => Math.max(high, each), -Infinity);
    if (!(most >= height)) {
      return null;
    }
    let best = { start: 0, length: 0 };
    for (let i = 0; i < room.length; ++i) {
      let end = i;
      while (end < room.length && room[end] === most) {
        ++end;
      }
      if (end - i > best.length) {
        best = { start: i, length: end - i };
      }
      i = Math.max(i, end);
    }
    const first = best.start + (best.length - 1) / 2;
    const at = Math.floor(first + (size - 1) / 2);
    const low = film.bottom.subarray(Math.floor(first), Math.floor(first) + size);
    const bottom = low.reduce((high, each) => Math.max(high, each), -Infinity);
    return { u: at, z: bottom + most / 2 };
  }

  Quarn.sectionLine = { extract, closeSlits, outlines, filmAt, bounds, labelPlace };
})();
