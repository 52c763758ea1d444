// scene.js: what stands on the stage: the films of a step, cut, faded or hidden, and those that the step removed.
// Settled (settle.js), made into meshes (mesh.js) and handed to the graphics (stage.js) in slices, so that the page
// answers meanwhile; of a large grid a coarser look comes first.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});

  const FADED = 0.22;  // part of its light that a faded film keeps
  const SLICE_MS = 24;  // of work between two looks at what the user does
  const PREVIEW_POINTS = 60000;  // of the grid that is shown first where the whole one takes long
  const LARGE = 3000000;  // points of all films, above which it does
  const SIDES = ["front", "left", "back", "right"];

  // Lets the browser do something else, without the delay that timers have.
  const nextTurn = (() => {
    const channel = new MessageChannel();
    const waiting = [];
    channel.port1.onmessage = () => waiting.shift()();
    return () =>
      new Promise((resolve) => {
        waiting.push(resolve);
        channel.port2.postMessage(0);
      });
  })();

  // Runs a generator to its end in slices. Returns undefined as soon as isCurrent() says no.
  async function runSliced(generator, isCurrent) {
    let start = performance.now();
    for (;;) {
      const { done, value } = generator.next();
      if (done) {
        return value;
      }
      if (performance.now() - start > SLICE_MS) {
        await nextTurn();
        start = performance.now();
        if (!isCurrent()) {
          return undefined;
        }
      }
    }
  }

  // The faces of what is left behind a row and a column: side, row or column, and where it begins (mesh.js).
  function facesOf(section, row, column) {
    const ends = [[row, column], [column, row], [section.rows - 1, column], [section.columns - 1, row]];
    return SIDES.map((side, i) => [side, ...ends[i]]);
  }

  class Scene {
    //   onChange   called when something else is to be drawn
    constructor(stage, model, onChange) {
      this.stage = stage;
      this.model = model;
      this.onChange = onChange;
      this.token = 0;  // of what is being made; older work stops
      this.step = -1;
      this.heights = [];
      this.films = model.films.map(() => "shown");
      this.cut = { row: 0, column: 0 };
      this.changed = null;  // set of films, or null
      this.drawn = null;  // {section, places, coarse}: what is drawn
      this.section = null;  // settled, of all points; null until it is made
      this.gone = null;  // as `drawn`, with the films that the step removed
      this.tallest = model.facts.section.height || 0;
      this.places = Quarn.mesh.placesOf(model);
    }

    // Shows the heights of a step; done when they are drawn, or when something else is shown instead. Where a
    // coarser grid is drawn first, the whole one follows: `whole` is the promise of it.
    async show(stepIndex, heights) {
      this.step = stepIndex;
      this.heights = heights;
      this.clearGone();
      await this.rebuild();
    }

    // Nothing that is under way is drawn any more.
    stop() {
      ++this.token;
    }

    dispose() {
      this.stop();
      this.step = -1;
      this.changed = null;
    }

    // The films that are seen, as settle.js takes them.
    visibleFilms(heights = this.heights) {
      return heights
        .filter(({ film }) => this.films[film] !== "hidden" && this.model.films[film].opacity > 0)
        .map(({ film, bottom, top }) => ({ film, bottom, top, solid: this.alphaOf(film) >= 1 }));
    }

    alphaOf(id) {
      const { opacity } = this.model.films[id];
      return this.films[id] === "faded" ? opacity * FADED : opacity;
    }

    // A look at the films through a coarser grid (settle.js), or null where the whole one is quickly made.
    coarseLook(films) {
      const { model } = this;
      const points = model.columns * model.rows;
      if (points * films.length <= LARGE) {
        return null;
      }
      return Quarn.settle.coarsen(model, films, Math.ceil(Math.sqrt(points / PREVIEW_POINTS)));
    }

    async rebuild() {
      const token = ++this.token;
      const isCurrent = () => token === this.token;
      const films = this.visibleFilms();
      const coarse = this.coarseLook(films);
      if (coarse) {
        await this.build(films, coarse, isCurrent);
      }
      this.whole = this.build(films, null, isCurrent);
      if (!coarse) {
        await this.whole;
      }
    }

    // Settles films and makes the triangles of their surfaces: {section, places, coarse, surfaces}, or null when
    // something else is shown by then.
    //   coarse   of the films (coarseLook); null for the whole grid
    async prepare(films, coarse, isCurrent) {
      const places = coarse ? Quarn.mesh.placesOf(this.model, coarse.xs, coarse.ys) : this.places;
      const settling = coarse
        ? Quarn.settle.settle(coarse.grid, coarse.films)
        : Quarn.settle.settle(this.model, films);
      const section = await runSliced(settling, isCurrent);
      const surfaces = section && (await runSliced(Quarn.mesh.surfaces(section, places), isCurrent));
      return surfaces && isCurrent() ? { section, places, coarse, surfaces } : null;
    }

    async build(films, coarse, isCurrent) {
      const prepared = isCurrent() ? await this.prepare(films, coarse, isCurrent) : null;
      if (!prepared) {
        return;
      }
      const { surfaces, ...drawn } = prepared;
      this.drawn = drawn;
      this.section = coarse ? null : drawn.section;
      this.tallest = Math.max(this.tallest, drawn.section.highest * drawn.section.quantum);
      for (const { id, color } of this.model.films) {
        this.stage.setFilm(id, color, this.alphaOf(id));
      }
      this.stage.setPart("surfaces", "surface", surfaces);
      this.buildFaces();
      this.onChange();
    }

    // The films that the step removed, as they were before it.
    async buildGone() {
      const { step, changed, model } = this;
      const isThere = new Set(this.heights.map(({ film }) => film));
      const removed = new Set([...(changed || [])].filter((id) => !isThere.has(id) && this.films[id] !== "hidden"));
      if (removed.size === 0 || !(step > 0)) {
        return;
      }
      const isCurrent = () => step === this.step && changed === this.changed;
      const before = await model.heights(step - 1);
      const films = this.visibleFilms(before);
      const prepared = isCurrent() ? await this.prepare(films, this.coarseLook(films), isCurrent) : null;
      if (prepared) {
        const { surfaces, ...gone } = prepared;
        this.gone = { ...gone, removed };
        this.stage.setPart("gone surfaces", "surface", surfaces.filter(({ film }) => removed.has(film)), true);
        this.buildGoneFaces();
        this.onChange();
      }
    }

    clearGone() {
      this.gone = null;
      for (const part of ["surfaces", ...SIDES]) {
        this.stage.setPart("gone " + part, "face", [], true);
      }
    }

    // The section's box, micrometres. Its height is that of the tallest step, so that a picture does not jump from
    // step to step.
    box() {
      const { model, drawn } = this;
      return {
        width: (model.columns - 1) * model.spacing,
        depth: (model.rows - 1) * model.spacing,
        low: drawn.section.lowest * model.quantum,
        high: this.tallest,
      };
    }

    // What is left of it by the cut, with the height of the middle of its left face.
    rest() {
      const { section, places } = this.drawn;
      const { row, column } = this.linesOfCut(this.drawn);
      const middle = ((row + section.rows - 1) >> 1) * section.columns + column;
      const leftTop = section.floor[middle] * section.quantum;
      return { ...this.box(), x: places.x[column], y: places.y[row], leftTop };
    }

    // Makes the four upright faces of what is left by the cut.
    buildFaces() {
      const { section, places } = this.drawn;
      const { row, column } = this.linesOfCut(this.drawn);
      for (const [side, at, first] of facesOf(section, row, column)) {
        this.stage.setPart(side, "face", Quarn.mesh.face(section, places, side, at, first));
      }
    }

    buildGoneFaces() {
      const { section, places, removed } = this.gone;
      const { row, column } = this.linesOfCut(this.gone);
      for (const [side, at, first] of facesOf(section, row, column)) {
        const faces = Quarn.mesh.face(section, places, side, at, first);
        this.stage.setPart("gone " + side, "face", faces.filter(({ film }) => removed.has(film)), true);
      }
    }

    // The first row and column that are drawn, at or behind the cut.
    linesOfCut({ coarse }) {
      const lineAt = (line, at) => Math.max(line.findIndex((each) => each >= at), 0);
      const { row, column } = this.cut;
      return coarse ? { row: lineAt(coarse.ys, row), column: lineAt(coarse.xs, column) } : this.cut;
    }

    // Moves the cut; false when it stays where it is.
    setCut({ row, column }) {
      const { model } = this;
      const fit = (value, count) => Math.max(Math.min(Math.round(value) || 0, count - 2), 0);
      const cut = { row: fit(row, model.rows), column: fit(column, model.columns) };
      if (cut.row === this.cut.row && cut.column === this.cut.column) {
        return false;
      }
      this.cut = cut;
      if (this.drawn) {
        this.buildFaces();
      }
      if (this.gone) {
        this.buildGoneFaces();
      }
      return true;
    }

    // "shown", "faded" or "hidden". Several films often change together, and are made anew once for all of them:
    // `pending` is the promise of it, null when there is nothing to do.
    setFilm(id, state) {
      if (this.films[id] === state) {
        return;
      }
      this.films[id] = state;
      if (this.drawn && !this.pending) {
        this.pending = Promise.resolve().then(async () => {
          this.pending = null;
          this.setChanged(this.changed);
          await this.rebuild();
        });
      }
    }

    // Points out films, a set of their numbers or null: `goneBuild` is the promise of those among them that are
    // there no more.
    setChanged(changed) {
      this.changed = changed;
      this.clearGone();
      this.goneBuild = this.drawn ? this.buildGone() : Promise.resolve();
    }
  }

  Quarn.Scene = Scene;
})();
