// view.js: the section in three dimensions. It draws when something has changed and not otherwise. Settled films
// (settle.js) become meshes (mesh.js), which the stage draws (stage.js) from where the camera stands (camera.js);
// points under the pointer are found in the heights (pick.js), and marks and rulers are drawn over it
// (overlay.js).
//
//   const view = new Quarn.View(element, model, {onHover(hit or null), onPick(hit), onCut({row, column}),
//                                                onError(text)});
//   await view.show(stepIndex);
//
// hit = {x, y, z (micrometres; heights as they are, whatever the vertical scale), column, row, film, thickness,
// surface: "top", "underside" or "cut"}. Where there are no graphics onError is called, and every function does
// nothing.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});

  const FADED = 0.22;  // part of its light that a faded film keeps
  const SLICE_MS = 24;  // of work between two looks at what the user does
  const PREVIEW_POINTS = 60000;  // of the grid that is shown first where the whole one takes long
  const LARGE = 3000000;  // points of all films, above which it does
  const GLOW_MS = 1400;  // that new films shine for
  const SLOW_FRAME_MS = 55;
  const HIT_PIXELS = 6;  // within which a height on a cut is drawn to a film's border
  const SPACE = { left: 70, right: 30, top: 16, bottom: 46 };  // around the section, for rulers and handles
  const OUTLINE = {
    light: { ink: [0.02, 0.1, 0.3], rim: [1, 1, 1] },
    dark: { ink: [1, 1, 1], rim: [0.02, 0.1, 0.3] },
  };

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

  const SIDES = ["front", "left", "back", "right"];

  // The faces of what is left behind a row and a column: side, row or column, and where it begins (mesh.js).
  function facesOf(section, row, column) {
    const ends = [[row, column], [column, row], [section.rows - 1, column], [section.columns - 1, row]];
    return SIDES.map((side, i) => [side, ...ends[i]]);
  }

  function createCanvas(element) {
    const canvas = document.createElement("canvas");
    canvas.style.cssText = "position:absolute;inset:0;width:100%;height:100%;display:block";
    canvas.setAttribute("aria-hidden", "true");
    element.append(canvas);
    return canvas;
  }

  class View {
    constructor(element, model, handlers = {}) {
      this.element = element;
      this.model = model;
      this.handlers = handlers;
      this.token = 0;  // of what is being shown; older work stops
      this.heights = [];
      this.section = null;  // settled, of all points
      this.cut = { row: 0, column: 0 };
      this.films = model.films.map(() => "shown");
      this.verticalScale = 1;
      this.marks = [];
      this.changed = null;
      this.gone = null;  // as `drawn`, of the films that the step removed
      this.theme = "light";
      this.tallest = 0;
      this.camera = null;
      this.hover = null;
      this.hot = null;
      this.glowFrom = -Infinity;
      this.moving = false;
      this.coarseFrames = false;
      this.frame = 0;
      this.places = Quarn.mesh.placesOf(model);
      if (getComputedStyle(element).position === "static") {
        element.style.position = "relative";
      }
      this.open();
    }

    open() {
      const canvas = createCanvas(this.element);
      try {
        this.stage = new Quarn.Stage(canvas);
      } catch (error) {
        canvas.remove();
        this.stage = null;
        this.tell("This browser shows no three-dimensional graphics (WebGL). All else works.");
        return;
      }
      this.canvas = canvas;
      this.overlay = new Quarn.Overlay(createCanvas(this.element));
      this.overlay.canvas.style.pointerEvents = "none";
      canvas.addEventListener("webglcontextlost", (event) => {
        event.preventDefault();
        this.isLost = true;
        this.tell("The graphics were lost; they come back when the system lets them.");
      });
      canvas.addEventListener("webglcontextrestored", () => {
        this.isLost = false;
        this.tell("");
        this.redraw();
      });
      this.watchSize();
      this.gestures = new Quarn.Gestures(canvas, this.gestureHandlers());
    }

    tell(text) {
      if (this.handlers.onError) {
        this.handlers.onError(text);
      }
    }

    watchSize() {
      this.observer = new ResizeObserver(() => this.resize());
      this.observer.observe(this.element);
      this.resize();
    }

    resize() {
      this.width = Math.max(1, this.element.clientWidth);
      this.height = Math.max(1, this.element.clientHeight);
      this.applySize();
    }

    // While something moves and pictures come slowly, they have fewer pixels.
    applySize() {
      const ratio = Math.min(window.devicePixelRatio || 1, 2);
      this.stage.setSize(this.width, this.height, this.coarseFrames ? ratio * 0.5 : ratio);
      this.overlay.setSize(this.width, this.height, ratio);
      this.drawNow();
    }

    // --- what is shown ---------------------------------------------------------------------------------------

    // Shows a step; done when it is drawn, or when something else is shown instead. Where a grid is so large that
    // a coarser one is drawn first, the whole one follows: `whole` is the promise of it.
    async show(stepIndex) {
      const token = ++this.token;
      const heights = await this.model.heights(stepIndex);
      if (token !== this.token || !this.stage) {
        return;
      }
      this.heights = heights;
      this.step = stepIndex;
      this.clearGone();
      await this.rebuild();
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
      if (!this.stage) {
        return;
      }
      const token = ++this.token;
      const isCurrent = () => token === this.token && this.stage !== null;
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
      this.measureBox(drawn.section);
      for (const { id, color } of this.model.films) {
        this.stage.setFilm(id, color, this.alphaOf(id));
      }
      this.stage.setPart("surfaces", "surface", surfaces);
      this.buildFaces();
      this.hover = null;
      this.drawNow();
    }

    // The films that the step removed, as they were before it.
    async buildGone() {
      const { step, changed, model } = this;
      const isThere = new Set(this.heights.map(({ film }) => film));
      const removed = new Set([...(changed || [])].filter((id) => !isThere.has(id) && this.films[id] !== "hidden"));
      if (removed.size === 0 || !(step > 0)) {
        return;
      }
      const isCurrent = () => step === this.step && changed === this.changed && this.stage !== null;
      const before = await model.heights(step - 1);
      const films = this.visibleFilms(before);
      const prepared = isCurrent() ? await this.prepare(films, this.coarseLook(films), isCurrent) : null;
      if (prepared) {
        const { surfaces, ...gone } = prepared;
        this.gone = { ...gone, removed };
        this.stage.setPart("gone surfaces", "surface", surfaces.filter(({ film }) => removed.has(film)), true);
        this.buildFaces();
        this.redraw();
      }
    }

    clearGone() {
      this.gone = null;
      for (const part of ["surfaces", ...SIDES]) {
        this.stage.setPart("gone " + part, "face", [], true);
      }
    }

    // The section's box, whose height stays that of the tallest step that was shown, so that a picture does not
    // jump from step to step.
    measureBox(section) {
      const { model } = this;
      this.tallest = Math.max(this.tallest, section.highest * section.quantum);
      this.foot = section.lowest * section.quantum;
      this.plainBox = {
        width: (model.columns - 1) * model.spacing,
        depth: (model.rows - 1) * model.spacing,
        low: this.foot,
        high: this.tallest,
      };
      if (!this.camera) {
        this.camera = Quarn.camera.start(this.box(), this.model.facts && this.model.facts.angle);
      }
    }

    // The same as drawn.
    box() {
      const { plainBox, verticalScale } = this;
      return { ...plainBox, low: plainBox.low * verticalScale, high: plainBox.high * verticalScale };
    }

    // Makes the four upright faces of what is left by the cut.
    buildFaces() {
      const { section, places } = this.drawn;
      const { row, column } = this.linesOfCut(this.drawn);
      for (const [side, at, first] of facesOf(section, row, column)) {
        this.stage.setPart(side, "face", Quarn.mesh.face(section, places, side, at, first));
      }
      this.drawnCut = { x: places.x[column], y: places.y[row] };
      this.leftTop = section.floor[((row + section.rows - 1) >> 1) * section.columns + column] * section.quantum;
      if (this.gone) {
        const { gone } = this;
        const lines = this.linesOfCut(gone);
        for (const [side, at, first] of facesOf(gone.section, lines.row, lines.column)) {
          const faces = Quarn.mesh.face(gone.section, gone.places, side, at, first);
          this.stage.setPart("gone " + side, "face", faces.filter(({ film }) => gone.removed.has(film)), true);
        }
      }
    }

    // The first row and column that are drawn, at or behind the cut.
    linesOfCut({ coarse }) {
      const lineAt = (line, at) => Math.max(line.findIndex((each) => each >= at), 0);
      const { row, column } = this.cut;
      return coarse ? { row: lineAt(coarse.ys, row), column: lineAt(coarse.xs, column) } : this.cut;
    }

    setCut({ row, column }) {
      const { model } = this;
      const fit = (value, count) => Math.max(Math.min(Math.round(value) || 0, count - 2), 0);
      const cut = { row: fit(row, model.rows), column: fit(column, model.columns) };
      if (cut.row === this.cut.row && cut.column === this.cut.column) {
        return;
      }
      this.cut = cut;
      this.hover = null;
      if (this.stage && this.drawn) {
        this.buildFaces();
        this.redraw();
      }
    }

    // "shown", "faded" or "hidden".
    setFilm(id, state) {
      if (this.films[id] === state) {
        return;
      }
      this.films[id] = state;
      if (this.stage && this.drawn) {
        // Several films often change together: once for all of them.
        this.pendingBuild = this.pendingBuild || Promise.resolve().then(() => {
          this.pendingBuild = null;
          return this.rebuild();
        });
      }
    }

    setVerticalScale(factor) {
      if (!(factor > 0) || !Number.isFinite(factor)) {
        return;
      }
      if (this.camera) {
        const [x, y, z] = this.camera.target;
        this.camera = { ...this.camera, target: [x, y, (z * factor) / this.verticalScale] };
      }
      this.verticalScale = factor;
      this.redraw();
    }

    setMarks(marks) {
      this.marks = marks.slice(0, 2);
      this.redraw();
    }

    setChanged(ids) {
      this.changed = ids && ids.length > 0 ? new Set(ids) : null;
      const isStill = window.matchMedia("(prefers-reduced-motion: reduce)").matches;
      this.glowFrom = this.changed && !isStill ? performance.now() : -Infinity;
      if (this.stage && this.drawn) {
        this.clearGone();
        this.goneBuild = this.buildGone();
        this.redraw();
      }
    }

    setTheme(theme) {
      this.theme = theme === "dark" ? "dark" : "light";
      if (this.overlay) {
        this.overlay.theme = this.theme;
      }
      this.redraw();
    }

    // --- the camera ------------------------------------------------------------------------------------------

    resetCamera() {
      if (this.camera) {
        this.camera = Quarn.camera.start(this.box(), this.model.facts && this.model.facts.angle);
        this.redraw();
      }
    }

    // Where the section goes, as camera.js takes it. Small drawings have less space around it.
    room() {
      const { width, height } = this;
      const fit = (space, size) => Math.min(space, size / 8) / height;
      const [left, right] = [fit(SPACE.left, width), fit(SPACE.right, width)];
      const [top, bottom] = [fit(SPACE.top, height), fit(SPACE.bottom, height)];
      return {
        x: (left - right) / 2,
        y: (top - bottom) / 2,
        width: width / height - left - right,
        height: 1 - top - bottom,
      };
    }

    // Pixels of the page: to the right and down, as a hand moves that takes hold of the section.
    turn(dx, dy) {
      if (this.camera) {
        this.camera = Quarn.camera.turn(this.camera, dx / this.height, dy / this.height);
        this.redraw();
      }
    }

    move(dx, dy) {
      if (this.camera) {
        this.camera = Quarn.camera.move(this.camera, this.box(), this.room(), dx / this.height, dy / this.height);
        this.redraw();
      }
    }

    // Comes nearer by a factor; what is at a place (pixels, else the middle) stays there.
    zoom(factor, place) {
      if (this.camera && factor > 0) {
        const room = this.room();
        const at = place ? this.fractions(place) : room;
        this.camera = Quarn.camera.zoom(this.camera, this.box(), room, factor, at.x, at.y);
        this.redraw();
      }
    }

    fractions(place) {
      return { x: (place.x - this.width / 2) / this.height, y: (place.y - this.height / 2) / this.height };
    }

    placed() {
      return Quarn.camera.place(this.camera, this.box(), this.room());
    }

    // --- the pointer -----------------------------------------------------------------------------------------

    gestureHandlers() {
      const changeHover = (place) => {
        this.hoverPlace = place;
        this.redraw();
      };
      return {
        turn: (dx, dy) => this.turn(dx, dy),
        move: (dx, dy) => this.move(dx, dy),
        zoom: (factor, place) => this.zoom(factor, place),
        hover: changeHover,
        pick: (place) => this.pickAt(place),
        grab: (place) => this.grab(place),
        drag: (seized, place) => this.dragCut(seized, place),
        release: () => this.redraw(),
        start: () => {
          this.moving = true;
          changeHover(null);
        },
        end: () => this.stopMoving(),
      };
    }

    stopMoving() {
      this.moving = false;
      this.hot = null;
      if (this.coarseFrames) {
        this.coarseFrames = false;
        this.applySize();
      }
      this.redraw();
    }

    hitAt(place) {
      if (!this.section || !this.camera) {
        return null;
      }
      const placed = this.placed();
      const at = this.fractions(place);
      const { origin, direction } = Quarn.camera.ray(placed, at.x, at.y);
      const asMeasured = ([x, y, z]) => [x, y, z / this.verticalScale];
      const pixel = (2 * placed.field * placed.distance) / this.height;
      return Quarn.pick.pick(this.section, this.cut, asMeasured(origin), asMeasured(direction), {
        reach: (pixel * HIT_PIXELS) / this.verticalScale,
        skip: (film) => this.films[film] === "faded",
      });
    }

    pickAt(place) {
      const hit = this.hitAt(place);
      if (hit && this.handlers.onPick) {
        this.handlers.onPick(hit);
      }
    }

    // Tells what is under the pointer, once for each picture.
    lookUnder() {
      if (this.hoverPlace === undefined) {
        return;
      }
      const place = this.hoverPlace;
      this.hoverPlace = undefined;
      const handle = place && this.overlay.handleAt(place);
      this.hot = handle ? handle.kind : null;
      this.canvas.style.cursor = handle ? "grab" : "crosshair";
      this.hover = place && !handle ? this.hitAt(place) : null;
      if (this.handlers.onHover) {
        this.handlers.onHover(this.hover);
      }
    }

    grab(place) {
      const handle = this.overlay.handleAt(place);
      return handle ? { handle, place, cut: this.cut } : null;
    }

    // The cut goes with the pointer along the way of its handle.
    dragCut({ handle, place: from, cut }, place) {
      const { way, kind } = handle;
      const size = way.x * way.x + way.y * way.y;
      if (size === 0) {
        return;
      }
      const length = ((place.x - from.x) * way.x + (place.y - from.y) * way.y) / size;
      this.hot = kind;
      this.setCut({ ...cut, [kind]: cut[kind] + length / this.model.spacing });
      if (this.handlers.onCut) {
        this.handlers.onCut({ ...this.cut });
      }
    }

    // --- drawing ---------------------------------------------------------------------------------------------

    // Draws with the next picture of the browser.
    redraw() {
      if (this.stage && !this.frame) {
        this.frame = requestAnimationFrame((now) => {
          this.frame = 0;
          this.watchSpeed(now);
          this.lookUnder();
          this.drawNow();
        });
      }
    }

    // Notices when pictures come slowly while something moves.
    watchSpeed(now) {
      const elapsed = now - (this.lastFrame || -Infinity);
      this.lastFrame = now;
      if (elapsed > 2 * SLOW_FRAME_MS && elapsed < 1000) {
        this.glowFrom = -Infinity;  // what shines in jerks only keeps the processor busy
      }
      if (!this.moving || this.coarseFrames || elapsed > 1000) {
        this.slowFrames = 0;
        return;
      }
      this.slowFrames = elapsed > SLOW_FRAME_MS ? (this.slowFrames || 0) + 1 : 0;
      if (this.slowFrames > 2) {
        this.coarseFrames = true;
        this.applySize();
      }
    }

    // Where surfaces end at the cuts. They reach over them by half a pixel, so that nothing shines through between
    // them and the faces.
    clippedAt(placed) {
      const pixel = (2 * placed.field * placed.distance) / this.height;
      return [this.drawnCut.x, this.drawnCut.y].map((at, axis) => {
        const pixels = Math.hypot(placed.right[axis], placed.up[axis]) / pixel;  // to a micrometre
        return at > 0 ? at - 0.5 / Math.max(pixels, 0.15 / pixel) : -1e9;
      });
    }

    glow() {
      const part = (performance.now() - this.glowFrom) / GLOW_MS;
      return part >= 1 ? 0 : 0.45 * Math.sin(Math.PI * part) ** 2;
    }

    drawNow() {
      if (!this.stage || !this.drawn || this.isLost) {
        return;
      }
      const placed = this.placed();
      const isGlowing = this.changed !== null && performance.now() - this.glowFrom < GLOW_MS;
      this.stage.draw({
        placed,
        aspect: this.width / this.height,
        azimuth: this.camera.azimuth,
        cut: this.clippedAt(placed),
        verticalScale: this.verticalScale,
        outlined: this.coarseFrames ? null : this.changed,
        glow: isGlowing ? this.glow() : 0,
        ...OUTLINE[this.theme],
      });
      this.drawOver(placed, true);
      if (isGlowing) {
        this.redraw();
      }
    }

    // Marks, rulers and handles.
    //   live   false: only what belongs into a picture that is kept
    drawOver(placed, live) {
      const { model, plainBox, drawnCut, verticalScale } = this;
      this.overlay.draw({
        project: ([x, y, z]) => {
          const seen = Quarn.camera.project(placed, [x, y, z * verticalScale]);
          return { x: seen.x * this.height + this.width / 2, y: seen.y * this.height + this.height / 2 };
        },
        back: placed.back,
        rest: {
          x: drawnCut.x,
          y: drawnCut.y,
          width: (model.columns - 1) * model.spacing,
          depth: (model.rows - 1) * model.spacing,
          low: plainBox.low,
          high: plainBox.high,
          leftTop: this.leftTop,
        },
        marks: this.marks,
        hover: live ? this.hover : null,
        hot: this.hot,
        handles: live,
        rulers: true,
      });
    }

    // The picture as it is seen, without handles: a promise of a PNG.
    // The drawing as it is, without handles, on a canvas of its own; null where there is none.
    picture() {
      if (!this.stage || !this.drawn) {
        return null;
      }
      this.drawNow();
      this.drawOver(this.placed(), false);
      const canvas = document.createElement("canvas");
      canvas.width = this.canvas.width;
      canvas.height = this.canvas.height;
      const pen = canvas.getContext("2d");
      pen.fillStyle = this.theme === "dark" ? "#11171e" : "#ffffff";
      pen.fillRect(0, 0, canvas.width, canvas.height);
      pen.drawImage(this.canvas, 0, 0);
      pen.drawImage(this.overlay.canvas, 0, 0, canvas.width, canvas.height);
      this.redraw();
      return canvas;
    }

    snapshot() {
      const canvas = this.picture();
      if (!canvas) {
        return Promise.reject(new Error("There is no picture."));
      }
      return new Promise((resolve, reject) => {
        canvas.toBlob((blob) => (blob ? resolve(blob) : reject(new Error("The picture is too large."))), "image/png");
      });
    }

    dispose() {
      ++this.token;
      if (!this.stage) {
        return;
      }
      cancelAnimationFrame(this.frame);
      this.observer.disconnect();
      this.gestures.dispose();
      this.stage.dispose();
      this.stage = null;
      this.canvas.remove();
      this.overlay.canvas.remove();
    }
  }

  Quarn.View = View;
})();
