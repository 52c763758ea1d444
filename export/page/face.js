// face.js: a cut through the section along a line of grid points, divided between the films. Between two points
// the films lie side by side without a crack and without overlap. A film that is there at both goes straight
// from one to the other. Films that are there at one only, and meet others there at the next, end in a straight
// vertical edge; in the open, where nothing takes their place, they run out to the next point, as their surfaces
// do. It is how the program divides the cut face of its fine pictures.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});

  // The settled films of a section along a line.
  //   line   {from, step, count}: the first grid point, what leads to the next one, and how many there are
  // Returns {at, low, high}: the points that are kept, by their number on the line, and for each film its
  // heights there. Points whose neighbours on both sides have the same heights are left out.
  function takeLine(section, line) {
    const { films } = section;
    const at = [];
    for (let i = 0; i < line.count; ++i) {
      const point = line.from + i * line.step;
      const isInside = i > 0 && i + 1 < line.count;
      if (!isInside || !isLevel(films, point, line.step)) {
        at.push(i);
      }
    }
    const take = (heights) => Int32Array.from(at, (i) => heights[line.from + i * line.step]);
    return { at, low: films.map((film) => take(film.low)), high: films.map((film) => take(film.high)) };
  }

  function isLevel(films, point, step) {
    for (const { low, high } of films) {
      if (
        low[point - step] !== low[point] || low[point + step] !== low[point] ||
        high[point - step] !== high[point] || high[point + step] !== high[point]
      ) {
        return false;
      }
    }
    return true;
  }

  // Whether a point of the line has air between two heights.
  function hasAir(profile, n, low, high) {
    let top = profile.low[0][n];
    for (let film = 0; film < profile.low.length; ++film) {
      const bottom = profile.low[film][n];
      if (bottom > top && bottom > low && top < high) {
        return true;
      }
      top = profile.high[film][n];
    }
    return high > top;
  }

  // Closes slits: air at a single point, with none at its height on either side. Beside a wall a step goes by
  // the height of the neighbouring point, and leaves such air where nothing is hollow.
  function closeSlits(profile) {
    const { low, high } = profile;
    for (let n = 1; n + 1 < profile.at.length; ++n) {
      let top = low.length > 0 ? low[0][n] : 0;  // of the films that are there
      for (let film = 0; film < low.length; ++film) {
        const bottom = low[film][n];
        const isThere = high[film][n] > bottom;
        const isSlit =
          isThere && bottom > top && !hasAir(profile, n - 1, top, bottom) &&
          !hasAir(profile, n + 1, top, bottom);
        for (let i = film; isSlit && i >= 0 && low[i][n] > top; --i) {
          low[i][n] = top;
          high[i][n] = i < film ? top : high[i][n];
        }
        top = isThere ? high[film][n] : top;
      }
    }
  }

  // What a film fills between the points n and n + 1 of the profile.
  function filmPiece(profile, film, n) {
    return {
      film,
      n,
      leftLow: profile.low[film][n],
      leftHigh: profile.high[film][n],
      rightLow: profile.low[film][n + 1],
      rightHigh: profile.high[film][n + 1],
    };
  }

  const isLeft = (piece) => piece.leftHigh > piece.leftLow;
  const isRight = (piece) => piece.rightHigh > piece.rightLow;

  function appendPiece(pieces, piece) {
    if (isLeft(piece) || isRight(piece)) {
      pieces.push(piece);
    }
  }

  // A zone is what lies between two films that are there at both points, or above the last of them. Goes up
  // through its films: how high they reach, and whether there is air between them or before the end of one.
  function measureZone(profile, zone) {
    zone.leftHigh = zone.leftLow;
    zone.rightHigh = zone.rightLow;
    zone.leftAir = zone.rightAir = false;
    for (let film = zone.first; film <= zone.last; ++film) {
      const piece = filmPiece(profile, film, zone.n);
      zone.leftAir = zone.leftAir || piece.leftLow > zone.leftHigh;
      zone.rightAir = zone.rightAir || piece.rightLow > zone.rightHigh;
      zone.leftHigh = isLeft(piece) ? piece.leftHigh : zone.leftHigh;
      zone.rightHigh = isRight(piece) ? piece.rightHigh : zone.rightHigh;
    }
  }

  const bounded = (height, low, high) => Math.min(Math.max(height, low), high);

  // The films of one side fill the whole zone: those with the film on top, whose surface reaches as far.
  function appendSide(profile, zone, left, pieces) {
    let before = null;  // the piece that the next one lies on
    for (let film = zone.first; film <= zone.last; ++film) {
      const piece = filmPiece(profile, film, zone.n);
      if (!(left ? isLeft(piece) : isRight(piece))) {
        continue;
      }
      if (left) {
        piece.rightLow = before ? bounded(piece.leftLow, zone.rightLow, zone.rightHigh) : zone.rightLow;
        piece.rightHigh = bounded(piece.leftHigh, zone.rightLow, zone.rightHigh);
      } else {
        piece.leftLow = before ? bounded(piece.rightLow, zone.leftLow, zone.leftHigh) : zone.leftLow;
        piece.leftHigh = bounded(piece.rightHigh, zone.leftLow, zone.leftHigh);
      }
      before = piece;
      pieces.push(piece);
    }
    if (before) {
      before.leftHigh = zone.leftHigh;
      before.rightHigh = zone.rightHigh;
    }
  }

  // Where both points have something in the zone, the films of one of them take all of it, those with the film
  // on top or those that meet nothing but air. Otherwise they run out to the next point.
  function appendZone(profile, zone, pieces) {
    let leftFilms = 0;
    let rightFilms = 0;
    let leftOnTop = false;
    for (let film = zone.first; film <= zone.last; ++film) {
      const piece = filmPiece(profile, film, zone.n);
      leftFilms += isLeft(piece) ? 1 : 0;
      rightFilms += isRight(piece) ? 1 : 0;
      leftOnTop = isLeft(piece) || (leftOnTop && !isRight(piece));
    }
    const bothReach = zone.leftHigh > zone.leftLow && zone.rightHigh > zone.rightLow;
    const leftFits = !zone.leftAir && (rightFilms === 0 || (!zone.rightAir && leftOnTop));
    const rightFits = !zone.rightAir && (leftFilms === 0 || (!zone.leftAir && !leftOnTop));
    if (bothReach && ((leftFilms > 0 && leftFits) || (rightFilms > 0 && rightFits))) {
      appendSide(profile, zone, leftFilms > 0 && leftFits, pieces);
      return;
    }
    for (let film = zone.first; film <= zone.last; ++film) {
      appendPiece(pieces, filmPiece(profile, film, zone.n));
    }
  }

  // Whether several films run out to a point between two that are there at both, as beside the wall of a hole
  // that was filled. They would all bend down to it.
  function isFan(profile, zone) {
    let films = 0;
    for (let film = zone.first; film <= zone.last; ++film) {
      const piece = filmPiece(profile, film, zone.n);
      films += isLeft(piece) || isRight(piece) ? 1 : 0;
    }
    const leftReaches = zone.leftHigh > zone.leftLow;
    const rightReaches = zone.rightHigh > zone.rightLow;
    return films > 1 && leftReaches !== rightReaches && !zone.leftAir && !zone.rightAir;
  }

  // The films of a fan end straight at their point instead, and the film that is the wall takes its place: the
  // one above or the one below, whichever goes up or down more steeply.
  function closeFan(zone, below, above) {
    const riseBelow = Math.abs(zone.rightLow - zone.leftLow);
    const riseAbove = Math.abs(zone.rightHigh - zone.leftHigh);
    if (!below || riseAbove >= riseBelow) {
      above.leftLow = zone.leftLow;
      above.rightLow = zone.rightLow;
    } else {
      below.leftHigh = zone.leftHigh;
      below.rightHigh = zone.rightHigh;
    }
  }

  // The zone above the films that are done, as far as the next film that is there at both points. Returns the
  // piece of that film, or null.
  function findZone(profile, zone) {
    let both = null;
    for (let film = zone.first; film < profile.low.length && !both; ++film) {
      const piece = filmPiece(profile, film, zone.n);
      both = isLeft(piece) && isRight(piece) ? piece : null;
      zone.last = both ? film - 1 : film;
    }
    measureZone(profile, zone);
    if (both) {
      zone.leftAir = zone.leftAir || both.leftLow > zone.leftHigh;
      zone.rightAir = zone.rightAir || both.rightLow > zone.rightHigh;
      zone.leftHigh = both.leftLow;
      zone.rightHigh = both.rightLow;
    }
    return both;
  }

  function appendPoints(profile, n, pieces) {
    let zone = { n, first: 0, last: -1, leftLow: profile.low[0][n], rightLow: profile.low[0][n + 1] };
    let below = null;  // piece of the film below the zone
    while (zone.first < profile.low.length) {
      const both = findZone(profile, zone);
      const leftTop = both ? both.leftHigh : 0;
      const rightTop = both ? both.rightHigh : 0;
      if (both && isFan(profile, zone)) {
        closeFan(zone, below, both);
      } else {
        appendZone(profile, zone, pieces);
      }
      if (!both) {
        return;
      }
      below = both;
      appendPiece(pieces, both);
      zone = { n, first: zone.last + 2, last: zone.last + 1, leftLow: leftTop, rightLow: rightTop };
    }
  }

  // The pieces of a cut: [{film, n, leftLow, leftHigh, rightLow, rightHigh}], by points, then from the bottom
  // up; `film` is an index of section.films, `n` one of `at`.
  function cutPieces(section, line) {
    const profile = takeLine(section, line);
    closeSlits(profile);
    const pieces = [];
    const first = [];  // the first piece at or behind each point
    for (let n = 0; n + 1 < profile.at.length; ++n) {
      first.push(pieces.length);
      if (profile.low.length > 0) {
        appendPoints(profile, n, pieces);
      }
    }
    first.push(pieces.length, pieces.length);
    return { at: profile.at, pieces, first };
  }

  // From the bottom to the top of a side of a piece: its ends, and the corners of all pieces that meet it.
  function sideHeights(cut, n, low, high) {
    if (!(high > low)) {
      return [low];
    }
    const inner = [];
    const take = (height) => {
      if (height > low && height < high && !inner.includes(height)) {
        inner.push(height);
      }
    };
    for (let i = cut.first[Math.max(n - 1, 0)]; i < cut.first[n + 1]; ++i) {
      const piece = cut.pieces[i];
      take(piece.n === n ? piece.leftLow : piece.rightLow);
      take(piece.n === n ? piece.leftHigh : piece.rightHigh);
    }
    inner.sort((a, b) => a - b);
    return [low, ...inner, high];
  }

  // Calls emit(film, s0, z0, s1, z1, s2, z2) for each triangle of a cut: places on the line, in steps, and
  // heights, counter-clockwise where the line goes right and heights go up. The sides of a piece are joined
  // from the bottom up, always from the one that is behind.
  function cutTriangles(cut, emit) {
    for (const piece of cut.pieces) {
      const left = sideHeights(cut, piece.n, piece.leftLow, piece.leftHigh);
      const right = sideHeights(cut, piece.n + 1, piece.rightLow, piece.rightHigh);
      const s0 = cut.at[piece.n];
      const s1 = cut.at[piece.n + 1];
      let l = 0;
      let r = 0;
      while (l + 1 < left.length || r + 1 < right.length) {
        const goesLeft =
          r + 1 === right.length || (l + 1 < left.length && left[l + 1] <= right[r + 1]);
        const next = goesLeft ? left[l + 1] : right[r + 1];
        emit(piece.film, s0, left[l], s1, right[r], goesLeft ? s0 : s1, next);
        l += goesLeft ? 1 : 0;
        r += goesLeft ? 0 : 1;
      }
    }
  }

  Quarn.face = { cutPieces, cutTriangles };
})();
