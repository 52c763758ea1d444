// app.js: brings the parts of the page together. The store holds what the user chose (state.js) and, beside it:
//   heights   of the step that is shown, as the model gives them
//   shownStep its index; while heights are on their way it is not the one that was chosen
//   changes   whether what that step changed is pointed out
//   probe     the grid point whose films are listed: {column, row}
//   points    up to two marked points (hits of the view)
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});
  const { byId } = Quarn.dom;

  const ADDRESS_MS = 250;  // browsers limit how often an address may change
  const BUSY_MS = 300;     // after which the page shows that it is at work
  const THEME_KEY = "quarn-theme";

  function problem(text) {
    byId("problem").textContent = text;
    byId("problem").hidden = false;
  }

  // The theme is the system's until the user chooses one; the choice is kept where the browser lets a page
  // that comes from a file keep something.
  function createTheme(page) {
    const button = byId("theme");
    const system = matchMedia("(prefers-color-scheme: dark)");
    let chosen = null;
    try {
      chosen = localStorage.getItem(THEME_KEY);
    } catch (error) {
      chosen = null;
    }
    const current = () => (chosen === "dark" || chosen === "light" ? chosen : system.matches ? "dark" : "light");
    const apply = () => {
      document.documentElement.dataset.theme = current();
      button.setAttribute("aria-pressed", String(current() === "dark"));
      if (page.view) {
        page.view.setTheme(current());
      }
      page.store.set({ theme: current() });
    };
    button.addEventListener("click", () => {
      chosen = current() === "dark" ? "light" : "dark";
      try {
        localStorage.setItem(THEME_KEY, chosen);
      } catch (error) {
        // Kept while the page is open.
      }
      apply();
    });
    system.addEventListener("change", apply);
    apply();
  }

  // The address follows the state, and the state an address that the user gave.
  function createAddress(page) {
    const { model, store } = page;
    let timer = 0;
    let last = location.hash;
    const write = () => {
      timer = 0;
      last = Quarn.state.format(store, model);
      try {
        history.replaceState(null, "", last);
      } catch (error) {
        // Too often for this browser; the next change tries again.
      }
    };
    store.listen((_, changed) => {
      const kept = ["step", "row", "column", "scale", "side", "films"];
      if (timer === 0 && kept.some((field) => changed.has(field))) {
        timer = setTimeout(write, ADDRESS_MS);
      }
    });
    addEventListener("hashchange", () => {
      if (location.hash !== last) {
        last = location.hash;
        store.set(Quarn.state.parse(location.hash, model));
      }
    });
  }

  // Fetches and shows the step that is wished for; while one is on its way, only the latest wish is kept.
  // Returns {start(), settled()}: both give a promise that is kept when the step is shown.
  function createLoader(page) {
    const { model, store } = page;
    let running = null;
    const load = async () => {
      let index = -1;
      while (index !== store.step) {
        index = store.step;
        const heights = await model.heights(index);
        if (index !== store.step) {
          continue;
        }
        byId("problem").hidden = true;
        store.set({ heights, shownStep: index });
        if (page.view) {
          await page.view.show(index);
          page.view.setChanged(store.changes ? model.steps[index].changed : null);
        }
      }
    };
    const tellBusy = (isBusy) => document.querySelector(".scene").setAttribute("aria-busy", String(isBusy));
    const start = () => {
      if (running === null) {
        const timer = setTimeout(() => tellBusy(true), BUSY_MS);
        running = load()
          .catch((error) => problem("This step cannot be shown: " + error.message))
          .finally(() => {
            running = null;
            clearTimeout(timer);
            tellBusy(false);
          });
      }
      return running;
    };
    return { start, settled: () => running || Promise.resolve() };
  }

  // The drawing in three dimensions, or null with a word about it where there is none.
  function createView(page, measure) {
    const notice = (text) => {
      byId("notice").textContent = text;
      byId("notice").hidden = text === "";
      document.body.classList.toggle("flat", text !== "");
    };
    try {
      return new Quarn.View(byId("view"), page.model, {
        onHover: measure.hover,
        onPick: measure.add,
        onCut: (cut) => page.store.set({ row: cut.row, column: cut.column }),
        onError: notice,
      });
    } catch (error) {
      notice("The section cannot be drawn in three dimensions here: " + error.message +
        " Steps, films, profile and measures work all the same.");
      return null;
    }
  }

  // What a step changed is pointed out from the first step on that the user goes to: the page begins with a plain
  // picture. The user's own choice comes before that.
  function createChanges(page) {
    const { model, store } = page;
    const button = byId("changes");
    let isChosen = false;
    button.addEventListener("click", () => {
      isChosen = true;
      store.set({ changes: !store.changes });
    });
    store.listen((_, changed) => {
      if (changed.has("step") && !isChosen) {
        store.set({ changes: true });
      }
      if (changed.has("changes")) {
        button.setAttribute("aria-pressed", String(store.changes));
        if (page.view && store.shownStep === store.step) {
          page.view.setChanged(store.changes ? model.steps[store.step].changed : null);
        }
      }
    });
  }

  function connectView(page) {
    const { store, view } = page;
    if (view === null) {
      return;
    }
    const films = (before) => store.films.forEach((state, id) => {
      if (before === null || before[id] !== state) {
        view.setFilm(id, state);
      }
    });
    const cut = () => view.setCut({ row: store.row, column: store.column });
    let shownFilms = store.films;
    films(null);
    view.setVerticalScale(store.scale);
    cut();
    store.listen((_, changed) => {
      if (changed.has("films")) {
        films(shownFilms);
        shownFilms = store.films;
      }
      if (changed.has("scale")) {
        view.setVerticalScale(store.scale);
      }
      if (changed.has("row") || changed.has("column")) {
        cut();
      }
      if (changed.has("points")) {
        view.setMarks(store.points.map(({ x, y, z }) => ({ x, y, z })));
      }
    });
  }

  // The place whose films are listed stays on the cut while no point is marked.
  function followCut(page) {
    const { store } = page;
    store.listen((_, changed) => {
      const moved = changed.has("row") || changed.has("column") || changed.has("side");
      if (moved && store.points.length === 0) {
        const { probe } = store;
        const kept = store.side ? { column: store.column, row: changed.has("side") ? page.middle().row : probe.row }
          : { column: changed.has("side") ? page.middle().column : probe.column, row: store.row };
        store.set({ probe: kept });
      }
    });
  }

  function tellSteps(page) {
    const { model, store } = page;
    store.listen((_, changed) => {
      if (changed.has("shownStep")) {
        const step = model.steps[store.shownStep];
        page.say(Quarn.stepName(model, store.shownStep) + ": " + step.title);
      }
    });
  }

  // The browser asks for the sheet at the moment of printing, whoever began it.
  function createPrint(page) {
    const pictureOf = (view) => {
      view.setTheme("light");
      const canvas = view.picture();
      view.setTheme(page.store.theme);
      return canvas === null ? null : canvas.toDataURL("image/png");
    };
    addEventListener("beforeprint", () => Quarn.fillSheet(page, page.view && pictureOf(page.view)));
    byId("print").addEventListener("click", () => window.print());
  }

  function createPage(model) {
    const store = Quarn.state.createStore({
      ...Quarn.state.parse(location.hash, model),
      shownStep: 0, changes: false, heights: [], points: [], probe: { column: 0, row: 0 },
    });
    const page = { model, store, view: null, settled: () => Promise.resolve() };
    page.say = (text) => {
      byId("live").textContent = text;
    };
    page.calm = () => matchMedia("(prefers-reduced-motion: reduce)").matches;
    page.middle = () => (store.side ? { column: store.column, row: Math.floor((store.row + model.rows) / 2) }
      : { column: Math.floor((store.column + model.columns) / 2), row: store.row });
    page.savePicture = () => page.view && page.view.snapshot().then((blob) => Quarn.save.save(blob,
      Quarn.units.fileName([Quarn.heading(model), "step", model.steps[store.step].number].join("_"), ".png")),
    (error) => page.say(error.message));
    page.paperTitle = () => ({
      head: Quarn.heading(model) + ": " + model.steps[store.step].title,
      below: ["Profile " + Quarn.faceText(page), Quarn.stepName(model, store.step), model.facts.layout,
        [model.facts.program, model.facts.version].filter(Boolean).join(" "), model.facts.date]
        .filter(Boolean).join(" \u00b7 "),
    });
    return page;
  }

  async function start() {
    const model = await Quarn.Model.open();
    Quarn.units.filmNames(model.films, model.steps.map((_, index) => model.filmsAt(index))).forEach((name, id) => {
      model.films[id].name = name;
    });
    const page = createPage(model);
    const { store } = page;
    store.probe = page.middle();
    byId("main").hidden = false;
    Quarn.createFactsPanel(page);
    Quarn.createCutPanel(page);
    Quarn.createFilmsPanel(page);
    const measure = Quarn.createMeasurePanel(page);
    Quarn.createProfilePanel(page, measure);
    page.view = createView(page, measure);
    connectView(page);
    createChanges(page);
    createTheme(page);
    const loader = createLoader(page);
    page.settled = loader.settled;
    store.listen((_, changed) => {
      if (changed.has("step")) {
        loader.start();
      }
    });
    const steps = Quarn.createStepsPanel(page);
    Quarn.createKeys(page, steps, measure);
    followCut(page);
    tellSteps(page);
    createAddress(page);
    createPrint(page);
    byId("skip").addEventListener("click", (event) => {
      event.preventDefault();
      byId("view").focus();
    });
    await loader.start();
    Quarn.page = page;  // for tests and for the curious
    document.documentElement.dataset.ready = "true";
  }

  if (typeof document !== "undefined") {
    start().catch((error) => problem("This page could not be opened: " + error.message));
  }
})();
