// films_panel.js: the films as a legend, the uppermost first: what a step did to them, how thick they are at
// the measured place, and whether they are shown, faded or hidden.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});
  const { element, icon, byId } = Quarn.dom;

  const STATES = [["shown", "Show"], ["faded", "Fade"], ["hidden", "Hide"]];

  function swatch(film) {
    const color = Quarn.units.cssColor(film.color);
    const box = element("span", { class: "swatch", "aria-hidden": "true" });
    box.style.backgroundColor = color;
    return box;
  }

  function createRow(page, film) {
    const { store } = page;
    const name = element("span", { class: "film-name" }, film.name);
    const note = element("span", { class: "film-note" });
    const thickness = element("span", { class: "film-thickness" });
    const set = (state) => store.set({ films: store.films.map((old, id) => (id === film.id ? state : old)) });
    const radios = STATES.map(([state, word]) => {
      const radio = element("input", {
        type: "radio", name: "film-" + film.id, value: state, "aria-label": word + " " + film.name,
      });
      radio.addEventListener("change", () => set(state));
      return { state, radio, label: element("label", { title: word }, radio, icon(state)) };
    });
    const alone = element("button", { type: "button", class: "small", "aria-label": "Show only " + film.name }, "Only");
    alone.addEventListener("click", () =>
      store.set({ films: store.films.map((_, id) => (id === film.id ? "shown" : "hidden")) }));
    name.addEventListener("click", () => set(store.films[film.id] === "hidden" ? "shown" : "hidden"));
    const choices = element("span", { class: "states", role: "radiogroup", "aria-label": film.name },
      ...radios.map((each) => each.label));
    const row = element("li", { "data-film": film.id }, swatch(film), name, note, thickness, choices, alone);
    return { film, row, name, note, thickness, radios, choices, alone };
  }

  // What a step did to its films: a map of ids to "new", "changed" and "removed".
  function changesOf(model, index) {
    const here = new Set(model.filmsAt(index));
    const before = new Set(index > 0 ? model.filmsAt(index - 1) : []);
    return new Map(model.steps[index].changed.map((id) =>
      [id, !here.has(id) ? "removed" : before.has(id) ? "changed" : "new"]));
  }

  function createFilmsPanel(page) {
    const { model, store } = page;
    const rows = model.films.map((film) => createRow(page, film)).reverse();
    byId("films").append(...rows.map((each) => each.row));
    byId("all-films").addEventListener("click", () => store.set({ films: store.films.map(() => "shown") }));

    const updateRows = () => {
      const present = new Set(model.filmsAt(store.shownStep));
      const notes = changesOf(model, store.shownStep);
      for (const each of rows) {
        const note = notes.get(each.film.id) || "";
        const here = present.has(each.film.id);
        each.row.hidden = !here && note !== "removed";
        each.row.classList.toggle("gone", !here);
        each.choices.hidden = each.alone.hidden = !here;
        each.note.textContent = note;
        each.row.dataset.note = note;
      }
    };
    const updateStates = () => {
      for (const each of rows) {
        const state = store.films[each.film.id];
        each.row.dataset.state = state;
        for (const { radio, state: own } of each.radios) {
          radio.checked = own === state;
        }
      }
      byId("all-films").setAttribute("aria-disabled", String(store.films.every((state) => state === "shown")));
    };
    const updateThickness = () => {
      const { column, row } = store.probe;
      const index = row * model.columns + column;
      const films = new Map(store.heights.map((each) => [each.film, each]));
      for (const each of rows) {
        const heights = films.get(each.film.id);
        const quanta = heights === undefined ? 0 : heights.top[index] - heights.bottom[index];
        each.thickness.textContent = quanta > 0 ? Quarn.units.length(quanta * model.quantum) : "\u2013";
      }
      byId("films-where").textContent = "Thickness at x " + Quarn.units.length(column * model.spacing) +
        ", y " + Quarn.units.length(row * model.spacing);
    };
    store.listen((_, changed) => {
      if (changed.has("heights")) {
        updateRows();
      }
      if (changed.has("films")) {
        updateStates();
      }
      if (changed.has("heights") || changed.has("probe")) {
        updateThickness();
      }
    });
    updateStates();
  }

  Quarn.createFilmsPanel = createFilmsPanel;
  Quarn.filmSwatch = swatch;
})();
