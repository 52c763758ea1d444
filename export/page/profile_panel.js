// profile_panel.js: the profile of the cut on the page: it follows cut, step, films and scale, can be measured,
// and saved.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});
  const { drawn, byId } = Quarn.dom;
  const { length } = Quarn.units;

  const TALLEST = 1600;  // pixels of the section; what is higher is drawn smaller
  const NARROWEST = 280;

  function currentLine(page) {
    const { model, store } = page;
    return Quarn.sectionLine.extract(model, store.heights, { row: store.row, column: store.column }, store.side);
  }

  function faceText(page) {
    const { model, store } = page;
    return store.side ? "at x = " + length(store.column * model.spacing)
      : "at y = " + length(store.row * model.spacing);
  }

  function colorsOfPage() {
    const style = getComputedStyle(document.documentElement);
    const color = (name) => style.getPropertyValue(name).trim();
    return { ink: color("--ink"), muted: color("--muted"), rule: color("--rule"), accent: color("--accent") };
  }

  // What the pointer is over: the nearest grid point of the line, at the pointer's height; in the air, null.
  function hitAt(page, line, at, event, svg) {
    const { model, store } = page;
    const box = svg.getBoundingClientRect();
    const along = (event.clientX - box.left - at.plot.left) / at.pxPerUm;
    const z = at.lowUm + (at.plot.top + at.plot.height - (event.clientY - box.top)) / at.zPerUm;
    const i = Math.round(along / model.spacing);
    const film = i < 0 || i >= line.count ? null : Quarn.sectionLine.filmAt(line, i, z / model.quantum);
    if (film === null) {
      return null;
    }
    const column = store.side ? store.column : i;
    const row = store.side ? i : store.row;
    return {
      x: column * model.spacing, y: row * model.spacing, z, column, row, film: film.id,
      thickness: (film.top[i] - film.bottom[i]) * model.quantum,
    };
  }

  // A pointer near a surface means the surface: its height is taken as it is.
  function snapped(page, line, at, hit) {
    const { model, store } = page;
    const film = line.films.find((each) => each.id === hit.film);
    const i = store.side ? hit.row : hit.column;
    const near = [film.top[i], film.bottom[i]].map((each) => each * model.quantum)
      .sort((a, b) => Math.abs(a - hit.z) - Math.abs(b - hit.z))[0];
    return Math.abs(near - hit.z) * at.zPerUm <= 6 ? { ...hit, z: near } : hit;
  }

  // Marked points that lie on this line, the place that is measured, and where the other cut is.
  function drawMarks(page, at, colors) {
    const { model, store } = page;
    const group = drawn("g", { class: "marks" });
    const upright = (um, attributes) => group.append(drawn("line", {
      x1: at.x(um), x2: at.x(um), y1: at.plot.top - 6, y2: at.plot.top + at.plot.height + 4,
      stroke: colors.accent, ...attributes,
    }));
    const other = store.side ? store.row : store.column;
    if (other > 0) {
      upright(other * model.spacing, { "stroke-dasharray": "6 4" });
    }
    const onLine = (point) => (store.side ? point.column === store.column : point.row === store.row);
    if (onLine(store.probe)) {
      const x = at.x((store.side ? store.probe.row : store.probe.column) * model.spacing);
      const y = at.plot.top + at.plot.height + 4;
      group.append(drawn("path", { d: `M${x} ${y}l-5 8h10Z`, fill: colors.accent }));
    }
    const points = store.points.map((point, i) => ({ point, letter: "AB"[i] })).filter((each) => onLine(each.point));
    const place = ({ point }) => [at.x(store.side ? point.y : point.x), at.y(point.z)];
    if (points.length === 2) {
      const [[x1, y1], [x2, y2]] = points.map(place);
      group.append(drawn("line", { x1, y1, x2, y2, stroke: colors.accent, "stroke-width": 1.5 }));
    }
    for (const each of points) {
      const [cx, cy] = place(each);
      group.append(
        drawn("circle", { cx, cy, r: 4.5, fill: colors.accent, stroke: "#ffffff", "stroke-width": 1.5 }),
        drawn("text", { x: cx + 8, y: cy - 6, class: "letter" }, each.letter));
    }
    return group;
  }

  function saveProfile(page, kind) {
    const { model, store } = page;
    const line = currentLine(page);
    const step = model.steps[store.step];
    const base = [model.facts.cell || model.facts.layout || "section", "step", step.number,
      store.side ? "x" : "y", length((store.side ? store.column : store.row) * model.spacing)].join("_");
    const name = (ending) => Quarn.units.fileName(base.replace("\u00b5", "u"), ending);
    if (kind === "csv") {
      Quarn.save.saveText(Quarn.profile.table(model, line), "text/csv", name(".csv"));
      return;
    }
    const svg = Quarn.profile.drawForPaper(model, line, store, page.paperTitle());
    if (kind === "svg") {
      Quarn.save.saveText(Quarn.save.svgText(svg), "image/svg+xml", name(".svg"));
      return;
    }
    Quarn.save.svgPicture(svg).then((blob) => Quarn.save.save(blob, name(".png")),
      (error) => page.say(error.message));
  }

  // Measures what the pointer is over. `shown` gives {svg, line, at} of the drawing, or null before the first.
  function connectPointer(page, box, measure, shown) {
    const hit = (event) => {
      const drawing = shown();
      if (drawing === null) {
        return null;
      }
      const found = hitAt(page, drawing.line, drawing.at, event, drawing.svg);
      return found === null ? null : snapped(page, drawing.line, drawing.at, found);
    };
    box.addEventListener("pointermove", (event) => measure.hover(hit(event)));
    box.addEventListener("pointerleave", () => measure.hover(null));
    box.addEventListener("click", (event) => {
      const found = hit(event);
      if (found !== null) {
        measure.add(found);
      }
    });
  }

  // Draws once for each picture of the screen, however many changes there are.
  function createProfilePanel(page, measure) {
    const { model, store } = page;
    const box = byId("profile");
    const wide = matchMedia("(min-width: 1240px)");  // where the page gives the drawing its height
    let shown = null;
    let waiting = false;
    const redraw = () => {
      waiting = false;
      if (store.heights.length === 0) {
        return;
      }
      const colors = colorsOfPage();
      const line = currentLine(page);
      const { svg, at } = Quarn.profile.draw(model, line, {
        width: Math.max(NARROWEST, box.clientWidth), maxHeight: TALLEST,
        fitHeight: wide.matches ? box.clientHeight - Quarn.profile.HEIGHT_BESIDE : TALLEST,
        scale: store.scale, films: store.films, colors, title: null,
      });
      svg.setAttribute("role", "img");
      svg.setAttribute("aria-label", "Profile " + faceText(page) + ", " + Quarn.stepName(model, store.step));
      svg.append(drawMarks(page, at, colors));
      box.replaceChildren(svg);
      byId("profile-title").textContent = "Profile " + faceText(page);
      shown = { svg, line, at };
    };
    const later = () => {
      if (!waiting) {
        waiting = true;
        requestAnimationFrame(redraw);
      }
    };
    connectPointer(page, box, measure, () => shown);
    for (const button of document.querySelectorAll("[data-save]")) {
      button.addEventListener("click", () => saveProfile(page, button.dataset.save));
    }
    const updateFace = () => {
      byId("face-front").checked = !store.side;
      byId("face-side").checked = store.side;
    };
    byId("face-side").disabled = model.rows < 2;
    byId("face-front").addEventListener("change", () => store.set({ side: false }));
    byId("face-side").addEventListener("change", () => store.set({ side: true }));
    store.listen((_, changed) => {
      if (changed.has("side")) {
        updateFace();
      }
      later();
    });
    new ResizeObserver(later).observe(box);
    updateFace();
  }

  Quarn.createProfilePanel = createProfilePanel;
  Quarn.currentLine = currentLine;
  Quarn.faceText = faceText;
})();
