// measure_panel.js: what lies under the pointer, up to two marked points and the way between them. Places on
// the cut can be measured without a pointer too.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});
  const { element, byId } = Quarn.dom;
  const { length } = Quarn.units;

  const HINT = "Point at the section to measure. Two clicks give a distance.";

  function filmName(model, id) {
    const film = model.films[id];
    return film === undefined ? "" : film.name;
  }

  // "x 3.2 um, y 0 nm, height 912.35 nm: POLY, 180 nm thick"
  function describe(model, hit) {
    const place = "x " + length(hit.x, true) + ", y " + length(hit.y, true) + ", height " + length(hit.z, true);
    const name = filmName(model, hit.film);
    return place + (name === "" ? "" : ": " + name + ", " + length(hit.thickness, true) + " thick");
  }

  // The surfaces of the films above one grid point, the uppermost first: {film, z (quanta), text}. An underside
  // is named only where it is not the top of what lies below.
  function surfacesAt(model, heights, column, row) {
    const index = row * model.columns + column;
    const surfaces = [];
    let below = null;
    for (const each of heights) {
      const bottom = each.bottom[index];
      const top = each.top[index];
      if (top > bottom) {
        const name = filmName(model, each.film);
        if (bottom !== below) {
          surfaces.push({ film: each.film, z: bottom, thickness: top - bottom, text: "Underside of " + name });
        }
        surfaces.push({ film: each.film, z: top, thickness: top - bottom, text: "Top of " + name });
        below = top;
      }
    }
    return surfaces.reverse();
  }

  function pointRows(model, letter, hit) {
    return [
      element("dt", {}, letter),
      element("dd", {}, "x " + length(hit.x, true) + "  y " + length(hit.y, true), element("br"),
        "height ", element("strong", {}, length(hit.z, true)), element("br"),
        filmName(model, hit.film) + ", " + length(hit.thickness, true) + " thick"),
    ];
  }

  function distance(a, b) {
    const [dx, dy, dz] = [b.x - a.x, b.y - a.y, b.z - a.z];
    return { dx, dy, dz, whole: Math.hypot(dx, dy, dz) };
  }

  function distanceText(way) {
    return ["x", "y", "z"].map((axis) => "\u0394" + axis + " " + length(way["d" + axis], true)).join("  ");
  }

  function createProbe(page, add) {
    const { model, store } = page;
    const slider = byId("probe");
    const select = byId("surface");
    let surfaces = [];
    const along = () => (store.side ? "row" : "column");
    slider.addEventListener("input", () => {
      const across = store.side ? { row: Number(slider.value), column: store.column }
        : { row: store.row, column: Number(slider.value) };
      store.set({ probe: across });
    });
    byId("mark").addEventListener("click", () => {
      const surface = surfaces[select.selectedIndex];
      if (surface !== undefined) {
        const { column, row } = store.probe;
        add({
          x: column * model.spacing, y: row * model.spacing, z: surface.z * model.quantum,
          column, row, film: surface.film, thickness: surface.thickness * model.quantum,
        });
      }
    });
    return () => {
      slider.max = (store.side ? model.rows : model.columns) - 1;
      slider.value = store.probe[along()];
      const place = (store.side ? "y " : "x ") + length(store.probe[along()] * model.spacing);
      slider.setAttribute("aria-valuetext", place);
      byId("probe-place").textContent = place;
      const kept = surfaces[select.selectedIndex];
      surfaces = surfacesAt(model, store.heights, store.probe.column, store.probe.row);
      select.replaceChildren(...surfaces.map((each) =>
        element("option", {}, each.text + " \u00b7 " + length(each.z * model.quantum, true))));
      const same = kept === undefined ? -1 : surfaces.findIndex((each) => each.text === kept.text);
      select.selectedIndex = Math.max(0, same);
    };
  }

  // Returns {hover(hit or null), add(hit), clear()}.
  function createMeasurePanel(page) {
    const { model, store } = page;
    const readout = byId("readout");
    const hover = (hit) => {
      readout.textContent = hit === null ? HINT : describe(model, hit);
      readout.classList.toggle("idle", hit === null);
    };
    const add = (hit) => {
      const points = store.points.length >= 2 ? [hit] : store.points.concat([hit]);
      store.set({ points, probe: { column: hit.column, row: hit.row } });
      page.say(points.length === 2 ? "Distance " + length(distance(points[0], points[1]).whole, true)
        : "Point marked: " + describe(model, hit));
    };
    const clear = () => {
      store.set({ points: [], probe: page.middle() });
      page.say("Points cleared");
    };
    const updateProbe = createProbe(page, add);
    const updatePoints = () => {
      const rows = store.points.flatMap((hit, i) => pointRows(model, "AB"[i], hit));
      if (store.points.length === 2) {
        const way = distance(store.points[0], store.points[1]);
        rows.push(element("dt", {}, "A\u2013B"), element("dd", { class: "way" }, distanceText(way), element("br"),
          "distance ", element("strong", {}, length(way.whole, true))));
      }
      byId("points").replaceChildren(...rows);
      byId("clear-points").setAttribute("aria-disabled", String(store.points.length === 0));
    };
    byId("clear-points").addEventListener("click", clear);
    store.listen((_, changed) => {
      if (["heights", "probe", "side"].some((field) => changed.has(field))) {
        updateProbe();
      }
      if (changed.has("points")) {
        updatePoints();
      }
    });
    hover(null);
    updatePoints();
    return { hover, add, clear };
  }

  Quarn.createMeasurePanel = createMeasurePanel;
  Quarn.measure = { describe, surfacesAt, distance };
})();
