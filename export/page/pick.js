// pick.js: what a line of sight meets in a section, from its heights alone, and the measured point there. Nothing
// of the graphics is needed for it.
//
// Inside, places are columns, rows and quanta; a hit is told in micrometres. A measured point is one of the grid,
// so that its heights are those of the run and nothing in between: the point nearest to the place that was hit
// among those at which the film is.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});
  const { THERE } = Quarn.settle;

  // The part of a ray within the section that is left by a cut: {enter, leave, side}, or null. `side` is the
  // axis by which it comes in: 0 a column, 1 a row, 2 from above or below.
  function clipRay(low, high, origin, direction) {
    let enter = 0;
    let leave = Infinity;
    let side = 2;
    for (let axis = 0; axis < 3; ++axis) {
      if (direction[axis] === 0) {
        if (origin[axis] < low[axis] || origin[axis] > high[axis]) {
          return null;
        }
        continue;
      }
      const one = (low[axis] - origin[axis]) / direction[axis];
      const other = (high[axis] - origin[axis]) / direction[axis];
      if (Math.min(one, other) > enter) {
        enter = Math.min(one, other);
        side = axis;
      }
      leave = Math.min(leave, Math.max(one, other));
    }
    return enter < leave ? { enter, leave, side } : null;
  }

  const pointAt = (ray, t) => ray.origin.map((value, axis) => value + t * ray.direction[axis]);

  // What the ray meets where it comes in by a side of the section, or null.
  function hitSide(section, ray, clip) {
    const at = pointAt(ray, clip.enter);
    const isRow = clip.side === 1;
    const count = isRow ? section.columns : section.rows;
    const along = isRow ? at[0] : at[1];
    const across = Math.round(isRow ? at[1] : at[0]);
    const step = isRow ? 1 : section.columns;
    const begin = isRow ? across * section.columns : across;
    const left = Math.min(Math.max(Math.floor(along), 0), count - 2);
    const from = Math.max(left - 1, 0);  // slits are told from hollows by their neighbours
    const line = { from: begin + from * step, step, count: Math.min(left + 3, count) - from };
    const cut = Quarn.face.cutPieces(section, line);
    const s = along - from;
    for (const piece of cut.pieces) {
      const s0 = cut.at[piece.n];
      const s1 = cut.at[piece.n + 1];
      const part = (s - s0) / (s1 - s0);
      const bottom = piece.leftLow + (piece.rightLow - piece.leftLow) * part;
      const top = piece.leftHigh + (piece.rightHigh - piece.leftHigh) * part;
      if (part >= 0 && part <= 1 && at[2] >= bottom && at[2] <= top && top > bottom) {
        const points = [begin + left * step, begin + (left + 1) * step];
        return { index: piece.film, t: clip.enter, surface: "cut", points };
      }
    }
    return null;
  }

  // How far the ray is above the plane of a triangle: heights at its corner, and slopes along x and y.
  function above(ray, t, n, m, height, gx, gy) {
    const x = ray.origin[0] + t * ray.direction[0] - n;
    const y = ray.origin[1] + t * ray.direction[1] - m;
    return ray.origin[2] + t * ray.direction[2] - (height + gx * x + gy * y);
  }

  // Takes the nearest surface that the ray passes within a triangle of the grid, from t0 to t1: tops from above,
  // undersides from below.
  function hitTriangle(section, ray, n, m, second, t0, t1, skip) {
    const p = m * section.columns + n;
    const q = p + section.columns;
    const points = second ? [p + 1, q + 1, q] : [p, p + 1, q];
    let best = null;
    for (let index = 0; index < section.films.length; ++index) {
      const { low, high, presence, film } = section.films[index];
      if (skip(film) || ((presence[points[0]] | presence[points[1]] | presence[points[2]]) & THERE) === 0) {
        continue;
      }
      for (const [heights, sign, surface] of [[high, 1, "top"], [low, -1, "underside"]]) {
        const gx = second ? heights[q + 1] - heights[q] : heights[p + 1] - heights[p];
        const gy = second ? heights[q + 1] - heights[p + 1] : heights[q] - heights[p];
        const corner = second ? heights[q + 1] - gx - gy : heights[p];
        const before = sign * above(ray, t0, n, m, corner, gx, gy);
        const behind = sign * above(ray, t1, n, m, corner, gx, gy);
        if (before >= 0 && behind < 0) {
          const t = t0 + ((t1 - t0) * before) / (before - behind);
          if (!best || t < best.t) {
            best = { index, t, surface, points };
          }
        }
      }
    }
    return best;
  }

  // A cell between t0 and t1: the triangle in which the ray comes in and the other one.
  function hitCell(section, ray, n, m, t0, t1, skip) {
    const beyond = (t) =>
      ray.origin[0] + t * ray.direction[0] - n + ray.origin[1] + t * ray.direction[1] - m - 1;
    const [before, behind] = [beyond(t0), beyond(t1)];
    const isSecond = before + behind > 0;
    if (before * behind >= 0) {
      return hitTriangle(section, ray, n, m, isSecond, t0, t1, skip);
    }
    const middle = t0 + ((t1 - t0) * before) / (before - behind);
    return (
      hitTriangle(section, ray, n, m, before > 0, t0, middle, skip) ||
      hitTriangle(section, ray, n, m, behind > 0, middle, t1, skip)
    );
  }

  // Walks over the cells beneath the ray, from one to the next (Amanatides, Woo, A Fast Voxel Traversal
  // Algorithm, 1987).
  function hitInside(section, ray, clip, skip) {
    const start = pointAt(ray, clip.enter);
    const last = [section.columns - 2, section.rows - 2];
    const cell = [0, 1].map((axis) => Math.min(Math.max(Math.floor(start[axis]), 0), last[axis]));
    const step = [0, 1].map((axis) => Math.sign(ray.direction[axis]));
    const leaveAt = (axis) =>
      step[axis] === 0
        ? Infinity
        : (cell[axis] + (step[axis] > 0 ? 1 : 0) - ray.origin[axis]) / ray.direction[axis];
    let t = clip.enter;
    while (t < clip.leave) {
      const [tx, ty] = [leaveAt(0), leaveAt(1)];
      const axis = tx < ty ? 0 : 1;
      const next = Math.min(Math.max(Math.min(tx, ty), t), clip.leave);
      const hit = hitCell(section, ray, cell[0], cell[1], t, next, skip);
      if (hit) {
        return hit;
      }
      cell[axis] += step[axis];
      if (cell[axis] < 0 || cell[axis] > last[axis] || next === Infinity) {
        return null;
      }
      t = next;
    }
    return null;
  }

  // The points of a cut, or of a triangle, at which the film is, nearest first.
  function nearestPoint(section, hit, place) {
    const { bottom, top } = section.films[hit.index];
    let nearest = null;
    for (const point of hit.points) {
      const column = point % section.columns;
      const row = Math.floor(point / section.columns);
      const distance = Math.hypot(column - place[0], row - place[1]);
      if (top[point] > bottom[point] && (!nearest || distance < nearest.distance)) {
        nearest = { point, column, row, distance };
      }
    }
    return nearest;
  }

  // The height that is measured, in quanta: that of the surface that was hit; on a cut that of the film's border
  // where one is near, and any height between them elsewhere.
  function measuredHeight(section, hit, point, height, reach) {
    const bottom = section.films[hit.index].bottom[point];
    const top = section.films[hit.index].top[point];
    if (hit.surface !== "cut") {
      return hit.surface === "top" ? top : bottom;
    }
    const border = Math.abs(top - height) <= Math.abs(bottom - height) ? top : bottom;
    return Math.abs(border - height) <= reach ? border : Math.min(Math.max(height, bottom), top);
  }

  // What a ray meets first: {x, y, z, column, row, film, thickness, surface}, or null. `surface` is "top",
  // "underside" or "cut".
  //   section   settled (settle.js)
  //   cut       {row, column}: what lies before them is cut away
  //   origin, direction   micrometres, heights as they are, not as drawn
  //   options   reach: micrometres within which a height on a cut is drawn to a film's border
  //             skip: function of a film's number, true for those that the ray passes
  function pick(section, cut, origin, direction, options = {}) {
    if (section.films.length === 0) {
      return null;
    }
    const unit = [section.spacing, section.spacing, section.quantum];
    const ray = {
      origin: origin.map((value, axis) => value / unit[axis]),
      direction: direction.map((value, axis) => value / unit[axis]),
    };
    const skip = options.skip || (() => false);
    const low = [cut.column, cut.row, section.lowest - 1];
    const high = [section.columns - 1, section.rows - 1, section.highest + 1];
    const clip = clipRay(low, high, ray.origin, ray.direction);
    if (!clip) {
      return null;
    }
    const side = clip.side < 2 ? hitSide(section, ray, clip) : null;
    const hit = side && !skip(section.films[side.index].film) ? side : hitInside(section, ray, clip, skip);
    const nearest = hit && nearestPoint(section, hit, pointAt(ray, hit.t));
    if (!nearest) {
      return null;
    }
    const film = section.films[hit.index];
    const height = pointAt(ray, hit.t)[2];
    const reach = (options.reach || 0) / section.quantum;
    const z = measuredHeight(section, hit, nearest.point, height, reach) * section.quantum;
    return {
      x: nearest.column * section.spacing,
      y: nearest.row * section.spacing,
      z,
      column: nearest.column,
      row: nearest.row,
      film: film.film,
      thickness: (film.top[nearest.point] - film.bottom[nearest.point]) * section.quantum,
      surface: hit.surface,
    };
  }

  Quarn.pick = { pick };
})();
