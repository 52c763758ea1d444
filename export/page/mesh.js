// mesh.js: triangles of what can be seen of a settled section (settle.js, face.js): tops and undersides that lie
// open, with level areas and straight walls in one piece, and the faces of cuts.
//
// Lengths are micrometres: x across, y away from the viewer, z up. Triangles are counter-clockwise as seen from
// outside their film. Points are shared: wherever a piece ends within the side of another one, that one gets a
// corner there too, so that nothing shines through between them.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});
  const { TOP_A, TOP_B, UNDER_A, UNDER_B } = Quarn.settle;

  // Triangles whose normals are nearer to each other than this cosine share light; others meet at an edge. On a
  // wall that is not straight neighbours share it though they turn more: the grid makes stairs of round walls.
  const CREASE = 0.8;
  const WALL_CREASE = -0.2;
  const STEEP = 2.3;  // how long a normal of height 1 is on what counts as a wall

  // What a cell of a surface is: its heights are all the same, or those along y, or those along x.
  const LEVEL = 1;
  const ALONG_Y = 2;
  const ALONG_X = 3;

  // A mesh while it grows.
  function createBuilder() {
    return {
      positions: new Float32Array(3 * 256),
      normals: new Int8Array(4 * 256),
      indices: new Uint32Array(3 * 512),
      vertexCount: 0,
      indexCount: 0,
    };
  }

  function grown(array, length) {
    if (array.length >= length) {
      return array;
    }
    const larger = new array.constructor(Math.max(length, 2 * array.length));
    larger.set(array);
    return larger;
  }

  // The normal may have any length.
  function addVertex(builder, x, y, z, nx, ny, nz) {
    const number = builder.vertexCount++;
    builder.positions = grown(builder.positions, 3 * builder.vertexCount);
    builder.normals = grown(builder.normals, 4 * builder.vertexCount);
    const scale = 127 / Math.sqrt(nx * nx + ny * ny + nz * nz);
    builder.positions[3 * number] = x;
    builder.positions[3 * number + 1] = y;
    builder.positions[3 * number + 2] = z;
    builder.normals[4 * number] = Math.round(nx * scale);
    builder.normals[4 * number + 1] = Math.round(ny * scale);
    builder.normals[4 * number + 2] = Math.round(nz * scale);
    return number;
  }

  function addTriangle(builder, a, b, c) {
    const at = builder.indexCount;
    builder.indices = grown(builder.indices, at + 3);
    builder.indices[at] = a;
    builder.indices[at + 1] = b;
    builder.indices[at + 2] = c;
    builder.indexCount = at + 3;
  }

  // The mesh as it goes to the graphics: {positions, normals, indices} cut to their lengths.
  function finished(builder) {
    return {
      positions: builder.positions.slice(0, 3 * builder.vertexCount),
      normals: builder.normals.slice(0, 4 * builder.vertexCount),
      indices: builder.indices.slice(0, builder.indexCount),
    };
  }

  // One surface of one film while its triangles are made.
  //   heights   its `high` or its `low`
  //   side      1: seen from above, -1: from below
  //   vertices  of points whose light does not depend on the triangle, -1 elsewhere
  function createSurface(section, film, side, places, builder, vertices) {
    return {
      section,
      heights: side > 0 ? film.high : film.low,
      parts: film.parts,
      both: side > 0 ? TOP_A | TOP_B : UNDER_A | UNDER_B,
      first: side > 0 ? TOP_A : UNDER_A,
      side,
      places,
      builder,
      vertices,
      wallCrease: WALL_CREASE,
      pieces: [],  // x0, y0, x1, y1 and the kind of each level area or wall
    };
  }

  // Slopes of the six triangles around a point, of those that are nearly as steep as one with the slopes gx,
  // gy (heights in quanta for a point), make the normal there. Returns how many of them there are.
  function sumNormal(surface, n, m, gx, gy, sum) {
    const { heights, section } = surface;
    const { columns, rows } = section;
    const scale = section.quantum / section.spacing;
    const p = m * columns + n;
    const h = heights;
    const lx = -gx * scale;
    const ly = -gy * scale;
    const length = Math.sqrt(lx * lx + ly * ly + 1);
    let count = 0;
    sum[0] = sum[1] = sum[2] = 0;
    for (let i = 0; i < 6; ++i) {
      // Triangle A of the cells to the right above, left above, right below; B of left above, right below
      // and left below.
      const left = i === 1 || i === 3 || i === 5;
      const below = i === 2 || i === 4 || i === 5;
      if ((left ? n === 0 : n + 1 === columns) || (below ? m === 0 : m + 1 === rows)) {
        continue;
      }
      const a = p - (left ? 1 : 0) - (below ? columns : 0);
      const b = a + columns;
      const sx = -(i < 3 ? h[a + 1] - h[a] : h[b + 1] - h[b]) * scale;
      const sy = -(i < 3 ? h[b] - h[a] : h[b + 1] - h[a + 1]) * scale;
      const size = Math.sqrt(sx * sx + sy * sy + 1);
      const crease = size > STEEP && length > STEEP ? surface.wallCrease : CREASE;
      if (sx * lx + sy * ly + 1 > crease * size * length) {
        sum[0] += sx / size;
        sum[1] += sy / size;
        sum[2] += 1 / size;
        ++count;
      }
    }
    return count;
  }

  const normalSum = new Float64Array(3);

  // The vertex of a point for a triangle with given slopes.
  function pointVertex(surface, n, m, gx, gy) {
    const { section, places, builder, side, heights } = surface;
    const point = m * section.columns + n;
    if (surface.vertices[point] >= 0) {
      return surface.vertices[point];
    }
    const isSmooth = sumNormal(surface, n, m, gx, gy, normalSum) === 6;
    const number = addVertex(
      builder, places.x[n], places.y[m], heights[point] * section.quantum,
      side * normalSum[0], side * normalSum[1], side * normalSum[2]
    );
    if (isSmooth) {
      surface.vertices[point] = number;
    }
    return number;
  }

  function addSided(surface, a, b, c) {
    if (surface.side > 0) {
      addTriangle(surface.builder, a, b, c);
    } else {
      addTriangle(surface.builder, a, c, b);
    }
  }

  // A triangle of a cell that is neither level nor a wall.
  function addCellTriangle(surface, n, m, second, corners) {
    const { columns } = surface.section;
    const h = surface.heights;
    const p = m * columns + n;
    const q = p + columns;
    if (second) {
      const gx = h[q + 1] - h[q];
      const gy = h[q + 1] - h[p + 1];
      const a = pointVertex(surface, n + 1, m, gx, gy);
      const b = pointVertex(surface, n + 1, m + 1, gx, gy);
      addSided(surface, a, b, pointVertex(surface, n, m + 1, gx, gy));
      corners[q + 1] = 1;
    } else {
      const gx = h[p + 1] - h[p];
      const gy = h[q] - h[p];
      const a = pointVertex(surface, n, m, gx, gy);
      const b = pointVertex(surface, n + 1, m, gx, gy);
      addSided(surface, a, b, pointVertex(surface, n, m + 1, gx, gy));
      corners[p] = 1;
    }
    corners[p + 1] = corners[q] = 1;
  }

  // Makes the triangles of the cells that stand alone, notes the others in `kinds`, and returns how many of
  // those there are.
  function splitCells(surface, kinds, corners, tolerance) {
    const { columns, rows } = surface.section;
    const { heights: h, parts, both } = surface;
    const near = (a, b) => a - b <= tolerance && b - a <= tolerance;
    let count = 0;
    for (let m = 0; m + 1 < rows; ++m) {
      for (let n = 0; n + 1 < columns; ++n) {
        const p = m * columns + n;
        const bits = parts[p] & both;
        if (bits === 0) {
          continue;
        }
        const q = p + columns;
        const isAlongY = bits === both && near(h[p], h[q]) && near(h[p + 1], h[q + 1]);
        const isAlongX = bits === both && near(h[p], h[p + 1]) && near(h[q], h[q + 1]);
        if (isAlongX || isAlongY) {
          kinds[p] = isAlongX && isAlongY ? LEVEL : isAlongY ? ALONG_Y : ALONG_X;
          ++count;
          continue;
        }
        if ((bits & surface.first) !== 0) {
          addCellTriangle(surface, n, m, false, corners);
        }
        if ((bits & ~surface.first) !== 0) {
          addCellTriangle(surface, n, m, true, corners);
        }
      }
    }
    return count;
  }

  // Joins cells of a kind whose heights are those of the first one, and takes them out of `kinds`: a level
  // area grows along x and then along y, a wall in its one direction. Marks its corners and returns how many cells
  // it has.
  function takePiece(surface, kinds, corners, n, m, tolerance) {
    const { columns, rows } = surface.section;
    const h = surface.heights;
    const p = m * columns + n;
    const kind = kinds[p];
    const fits = (at) =>
      kinds[at] === kind &&
      Math.abs(h[at] - h[p]) <= tolerance &&
      (kind === LEVEL || Math.abs(h[at + columns + 1] - h[p + columns + 1]) <= tolerance);
    let x1 = n + 1;
    while (kind !== ALONG_Y && x1 + 1 < columns && fits(m * columns + x1)) {
      ++x1;
    }
    const rowFits = (y) => {
      for (let x = n; x < x1; ++x) {
        if (!fits(y * columns + x)) {
          return false;
        }
      }
      return true;
    };
    let y1 = m + 1;
    while (kind !== ALONG_X && y1 + 1 < rows && rowFits(y1)) {
      ++y1;
    }
    for (let y = m; y < y1; ++y) {
      kinds.fill(0, y * columns + n, y * columns + x1);
    }
    surface.pieces.push(n, m, x1, y1, kind);
    corners[m * columns + n] = corners[m * columns + x1] = 1;
    corners[y1 * columns + n] = corners[y1 * columns + x1] = 1;
    return (x1 - n) * (y1 - m);
  }

  // Finds level areas and walls among the cells that do not stand alone.
  function joinCells(surface, kinds, count, corners, tolerance) {
    const { columns } = surface.section;
    let left = count;
    for (let p = 0; left > 0; ++p) {
      if (kinds[p] !== 0) {
        const n = p % columns;
        left -= takePiece(surface, kinds, corners, n, (p - n) / columns, tolerance);
      }
    }
  }

  // The marked points of a row or a column, from one point towards another, which is left out.
  function collectSide(corners, columns, x0, y0, x1, y1, chain) {
    const dx = Math.sign(x1 - x0);
    const dy = Math.sign(y1 - y0);
    for (let x = x0, y = y0; x !== x1 || y !== y1; x += dx, y += dy) {
      if (corners[y * columns + x] !== 0) {
        chain.push(x, y);
      }
    }
  }

  // A level area is a fan around its middle, so that its sides can have any number of corners.
  function addLevel(surface, corners, x0, y0, x1, y1) {
    const { section, places, builder, heights, side } = surface;
    const { columns, quantum } = section;
    const chain = [];
    collectSide(corners, columns, x0, y0, x1, y0, chain);
    collectSide(corners, columns, x1, y0, x1, y1, chain);
    collectSide(corners, columns, x1, y1, x0, y1, chain);
    collectSide(corners, columns, x0, y1, x0, y0, chain);
    const vertexAt = (x, y) =>
      addVertex(builder, places.x[x], places.y[y], heights[y * columns + x] * quantum, 0, 0, side);
    const vertices = [];
    for (let i = 0; i < chain.length; i += 2) {
      vertices.push(vertexAt(chain[i], chain[i + 1]));
    }
    if (vertices.length === 4) {
      addSided(surface, vertices[0], vertices[1], vertices[2]);
      addSided(surface, vertices[0], vertices[2], vertices[3]);
      return;
    }
    const x = (places.x[x0] + places.x[x1]) / 2;
    const y = (places.y[y0] + places.y[y1]) / 2;
    const middle = addVertex(builder, x, y, heights[y0 * columns + x0] * quantum, 0, 0, side);
    for (let i = 0; i < vertices.length; ++i) {
      addSided(surface, middle, vertices[i], vertices[(i + 1) % vertices.length]);
    }
  }

  // A wall is one cell wide: triangles between the corners of its two long sides.
  function addWall(surface, corners, x0, y0, x1, y1, kind) {
    const { columns } = surface.section;
    const h = surface.heights;
    const p = y0 * columns + x0;
    const gx = kind === ALONG_Y ? h[p + 1] - h[p] : 0;
    const gy = kind === ALONG_X ? h[p + columns] - h[p] : 0;
    const one = [];
    const other = [];
    if (kind === ALONG_Y) {
      collectSide(corners, columns, x1, y0, x1, y1, one);
      collectSide(corners, columns, x0, y0, x0, y1, other);
      one.push(x1, y1);
      other.push(x0, y1);
    } else {
      collectSide(corners, columns, x0, y0, x1, y0, one);
      collectSide(corners, columns, x0, y1, x1, y1, other);
      one.push(x1, y0);
      other.push(x1, y1);
    }
    const vertexOf = (chain, i) => pointVertex(surface, chain[2 * i], chain[2 * i + 1], gx, gy);
    const place = (chain, i) => chain[2 * i] + chain[2 * i + 1];  // grows along the chain
    let i = 0;
    let j = 0;
    let a = vertexOf(one, 0);
    let b = vertexOf(other, 0);
    const offset = place(one, 0) - place(other, 0);
    while (2 * i + 2 < one.length || 2 * j + 2 < other.length) {
      const isOne =
        2 * j + 2 >= other.length ||
        (2 * i + 2 < one.length && place(one, i + 1) <= place(other, j + 1) + offset);
      const next = isOne ? vertexOf(one, ++i) : vertexOf(other, ++j);
      addSided(surface, a, next, b);
      a = isOne ? next : a;
      b = isOne ? b : next;
    }
  }

  function addPieces(surface, corners) {
    const { pieces } = surface;
    surface.wallCrease = CREASE;  // these walls are straight
    for (let i = 0; i < pieces.length; i += 5) {
      const [x0, y0, x1, y1, kind] = pieces.slice(i, i + 5);
      if (kind === LEVEL) {
        addLevel(surface, corners, x0, y0, x1, y1);
      } else {
        addWall(surface, corners, x0, y0, x1, y1, kind);
      }
    }
  }

  // Makes the meshes of the tops and undersides of a section. A generator: it stops between pieces of work.
  //   places   {x, y}: where its columns and rows lie
  // Returns for each film {film, mesh}.
  function* surfaces(section, places) {
    const count = section.columns * section.rows;
    const kinds = new Uint8Array(count);
    const corners = new Uint8Array(count);  // of pieces: points that all sides through them need
    const vertices = new Int32Array(count);
    const all = [];
    for (const film of section.films) {
      const builder = createBuilder();
      for (const side of [1, -1]) {
        const surface = createSurface(section, film, side, places, builder, vertices.fill(-1));
        const joined = splitCells(surface, kinds, corners, section.rounding);
        joinCells(surface, kinds, joined, corners, section.rounding);
        all.push(surface);
        yield;
      }
    }
    for (const surface of all) {
      if (surface.pieces.length > 0) {
        vertices.fill(-1);
        addPieces(surface, corners);
        yield;
      }
    }
    return section.films.map((film, index) => ({
      film: film.film,
      mesh: finished(all[2 * index].builder),
    }));
  }

  // The face of a cut along a row or a column of a section, for each film that has a part of it.
  //   side    "front" or "back" (a row, seen from before or from behind), "left" or "right" (a column)
  //   at      the row or the column
  //   first   the first point of the row or the column
  function face(section, places, side, at, first) {
    const isRow = side === "front" || side === "back";
    const { columns, rows, quantum } = section;
    const line = isRow
      ? { from: at * columns + first, step: 1, count: columns - first }
      : { from: first * columns + at, step: columns, count: rows - first };
    // Counter-clockwise along the line is seen from before a row and from the right of a column.
    const isTurned = side === "back" || side === "left";
    const normal = { front: [0, -1, 0], back: [0, 1, 0], left: [-1, 0, 0], right: [1, 0, 0] }[side];
    const builders = new Map();
    Quarn.face.cutTriangles(Quarn.face.cutPieces(section, line), (index, s0, z0, s1, z1, s2, z2) => {
      if (!builders.has(index)) {
        builders.set(index, createBuilder());
      }
      const builder = builders.get(index);
      const vertex = (s, z) => {
        const x = places.x[isRow ? first + s : at];
        const y = places.y[isRow ? at : first + s];
        return addVertex(builder, x, y, z * quantum, ...normal);
      };
      const a = vertex(s0, z0);
      const b = vertex(s1, z1);
      const c = vertex(s2, z2);
      addTriangle(builder, a, isTurned ? c : b, isTurned ? b : c);
    });
    return [...builders].map(([index, builder]) => ({
      film: section.films[index].film,
      mesh: finished(builder),
    }));
  }

  // Where the columns and rows of a grid lie, or those of a coarser one (Settle.coarsen).
  function placesOf(grid, xs, ys) {
    const line = (count, some) =>
      Float32Array.from(some || { length: count }, (value, i) => (some ? value : i) * grid.spacing);
    return { x: line(grid.columns, xs), y: line(grid.rows, ys) };
  }

  Quarn.mesh = { surfaces, face, placesOf };
})();
