// view.js: the section in three dimensions. It draws when something has changed and not otherwise: the scene
// (scene.js) is seen from where the camera stands (camera.js), points under the pointer are found in the heights
// (pick.js), and marks and rulers are drawn over it (overlay.js).
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

  const GLOW_MS = 1400;  // that new films shine for
  const SLOW_FRAME_MS = 55;
  const HIT_PIXELS = 6;  // within which a height on a cut is drawn to a film's border
  const SPACE = { left: 70, right: 30, top: 16, bottom: 46 };  // around the section, for rulers and handles
  const NO_CUT = -1e9;  // before all sections, micrometres
  const OUTLINE = {
    light: { ink: [0.02, 0.1, 0.3], rim: [1, 1, 1] },
    dark: { ink: [1, 1, 1], rim: [0.02, 0.1, 0.3] },
  };

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
      this.asked = 0;  // steps that were asked for; only the last one is shown
      this.verticalScale = 1;
      this.marks = [];
      this.changed = null;
      this.theme = "light";
      this.camera = null;
      this.hover = null;
      this.hot = null;
      this.glowFrom = -Infinity;
      this.moving = false;
      this.coarseFrames = false;
      this.frame = 0;
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
      this.scene = new Quarn.Scene(this.stage, this.model, () => this.sceneChanged());
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
      const width = Math.max(1, this.element.clientWidth);
      const height = Math.max(1, this.element.clientHeight);
      if (width !== this.width || height !== this.height) {
        this.width = width;
        this.height = height;
        this.applySize();
      }
    }

    // While something moves and pictures come slowly, they have fewer pixels.
    applySize() {
      const ratio = Math.min(window.devicePixelRatio || 1, 2);
      this.stage.setSize(this.width, this.height, this.coarseFrames ? ratio * 0.5 : ratio);
      this.overlay.setSize(this.width, this.height, ratio);
      this.drawNow();
    }

    // --- what is shown ---------------------------------------------------------------------------------------

    // Shows a step; done when it is drawn, or when something else is shown instead. Of a large grid a coarser look
    // comes first, and whole() waits for the rest.
    async show(stepIndex) {
      const asked = ++this.asked;
      if (this.stage) {
        this.scene.stop();
        const heights = await this.model.heights(stepIndex);
        if (asked === this.asked && this.stage) {
          await this.scene.show(stepIndex, heights);
        }
      }
    }

    // Done when all that was asked for is drawn whole.
    async whole() {
      if (this.stage) {
        await this.scene.pending;
        await this.scene.whole;
        await this.scene.goneBuild;
      }
    }

    // Draws what the scene has become; what is under the pointer may be something else.
    sceneChanged() {
      if (!this.stage) {
        return;
      }
      if (!this.camera) {
        this.resetCamera();
      }
      this.hover = null;
      this.hoverPlace = this.pointerPlace;
      this.drawNow();
      if (this.pointerPlace) {
        this.redraw();
      }
    }

    setCut(cut) {
      if (this.stage && this.scene.setCut(cut)) {
        this.hover = null;
        this.hoverPlace = this.pointerPlace;
        this.redraw();
      }
    }

    // "shown", "faded" or "hidden".
    setFilm(id, state) {
      if (this.stage) {
        this.scene.setFilm(id, state);
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
      if (this.stage) {
        this.scene.setChanged(this.changed);
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

    // The section's box as it is drawn.
    box() {
      const box = this.scene.box();
      return { ...box, low: box.low * this.verticalScale, high: box.high * this.verticalScale };
    }

    resetCamera() {
      if (this.stage && this.scene.drawn) {
        this.camera = Quarn.camera.start(this.box(), this.model.facts.section.angle);
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
        this.pointerPlace = place;
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
      if (!this.camera || !this.scene.section) {
        return null;
      }
      const placed = this.placed();
      const at = this.fractions(place);
      const { origin, direction } = Quarn.camera.ray(placed, at.x, at.y);
      const asMeasured = ([x, y, z]) => [x, y, z / this.verticalScale];
      const pixel = (2 * placed.field * placed.distance) / this.height;
      return Quarn.pick.pick(this.scene.section, this.scene.cut, asMeasured(origin), asMeasured(direction), {
        reach: (pixel * HIT_PIXELS) / this.verticalScale,
        skip: (film) => this.scene.films[film] === "faded",
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
      return handle ? { handle, place, cut: this.scene.cut } : null;
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
        this.handlers.onCut({ ...this.scene.cut });
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
      const { x, y } = this.scene.rest();
      return [x, y].map((at, axis) => {
        const pixels = Math.hypot(placed.right[axis], placed.up[axis]) / pixel;  // to a micrometre
        return at > 0 ? at - 0.5 / Math.max(pixels, 0.15 / pixel) : NO_CUT;
      });
    }

    glow() {
      const part = (performance.now() - this.glowFrom) / GLOW_MS;
      return part >= 1 ? 0 : 0.45 * Math.sin(Math.PI * part) ** 2;
    }

    drawNow() {
      if (!this.stage || !this.camera || this.isLost) {
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
      const { verticalScale } = this;
      this.overlay.draw({
        project: ([x, y, z]) => {
          const seen = Quarn.camera.project(placed, [x, y, z * verticalScale]);
          return { x: seen.x * this.height + this.width / 2, y: seen.y * this.height + this.height / 2 };
        },
        back: placed.back,
        rest: this.scene.rest(),
        marks: this.marks,
        hover: live ? this.hover : null,
        hot: this.hot,
        handles: live,
        rulers: true,
      });
    }

    // The drawing as it is, without handles, on a canvas of its own; null where there is none.
    picture() {
      if (!this.stage || !this.camera) {
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

    // The same as a promise of a PNG.
    snapshot() {
      const canvas = this.picture();
      if (!canvas) {
        return Promise.reject(new Error("There is no picture."));
      }
      return new Promise((resolve, reject) => {
        const take = (blob) => (blob ? resolve(blob) : reject(new Error("The picture is too large.")));
        canvas.toBlob(take, "image/png");
      });
    }

    dispose() {
      ++this.asked;
      if (!this.stage) {
        return;
      }
      cancelAnimationFrame(this.frame);
      this.observer.disconnect();
      this.gestures.dispose();
      this.scene.dispose();
      this.stage.dispose();
      this.stage = null;
      this.canvas.remove();
      this.overlay.canvas.remove();
    }
  }

  Quarn.View = View;
})();
