// facts_panel.js: what made the page, and the sheet that is printed.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});
  const { element, byId } = Quarn.dom;
  const { length } = Quarn.units;

  // Pairs of a word and a text; empty ones are left out.
  function factsOf(model) {
    const facts = model.facts;
    const section = facts.section || {};
    // Micrometres; shown in the unit of the process file, so that its figures are found again.
    const inNm = section.unit === "nm";
    const unit = inNm ? " nm" : " \u00b5m";
    const amount = (um) => Quarn.units.number(inNm ? um * 1000 : um, 6);
    const place = section.width === undefined ? "" :
      amount(section.width) + " \u00d7 " + amount(section.depth) + unit + ", from x " + amount(section.x) +
      ", y " + amount(section.y) + unit;
    return [
      ["Layout", facts.layout], ["Cell", facts.cell], ["Cut", facts.cut], ["Section", place],
      ["Grid", model.columns + " \u00d7 " + model.rows + " points, " + length(model.spacing) + " apart"],
      ["Process file", facts.processFile && facts.processFile.name],
      ["Made by", [facts.program, facts.version].filter(Boolean).join(" ")], ["Date", facts.date],
    ].filter(([, text]) => text);
  }

  function heading(model) {
    return model.facts.heading || model.facts.cell || model.facts.layout || "Cross section";
  }

  function listOf(pairs) {
    return pairs.flatMap(([word, text]) => [element("dt", {}, word), element("dd", {}, text)]);
  }

  function createFactsPanel(page) {
    const { model } = page;
    byId("title").textContent = heading(model);
    const parts = [model.facts.layout, model.facts.cut, model.facts.processFile && model.facts.processFile.name];
    byId("subtitle").textContent = parts.filter(Boolean).join(" \u00b7 ");
    document.title = heading(model) + " \u00b7 Quarn";
    byId("facts").append(...listOf(factsOf(model)));
  }

  function stepsTable(model, shown) {
    const lines = Quarn.fileLines(model);
    const rows = model.steps.map((step, index) => element("tr", { class: index === shown ? "shown" : null },
      element("td", {}, String(step.number)), element("td", {}, step.title),
      element("td", {}, step.line > 0 ? element("code", {}, (lines[step.line - 1] || "").trim()) : "")));
    const head = ["Step", "What is shown", "Line of the process file"].map((text) => element("th", {}, text));
    return element("table", {}, element("thead", {}, element("tr", {}, ...head)), element("tbody", {}, ...rows));
  }

  function filmsTable(page) {
    const { model, store } = page;
    const index = store.probe.row * model.columns + store.probe.column;
    const rows = store.heights.slice().reverse().map((each) => {
      const quanta = each.top[index] - each.bottom[index];
      return element("tr", {},
        element("td", {}, Quarn.filmSwatch(model.films[each.film]), " ", model.films[each.film].name),
        element("td", { class: "figure" }, quanta > 0 ? length(quanta * model.quantum) : "\u2013"));
    });
    const where = "Thickness at x " + length(store.probe.column * model.spacing) + ", y " +
      length(store.probe.row * model.spacing);
    const head = element("tr", {}, element("th", {}, "Film"), element("th", { class: "figure" }, where));
    return element("table", { class: "narrow" }, element("thead", {}, head), element("tbody", {}, ...rows));
  }

  // Fills the sheet that stands for the page on paper. `picture`: address of a picture of the view, or null.
  function fillSheet(page, picture) {
    const { model, store } = page;
    const step = model.steps[store.step];
    const profile = Quarn.profile.draw(model, Quarn.currentLine(page), {
      width: 960, maxHeight: 420, fitHeight: 420, scale: store.scale, films: store.films,
      colors: Quarn.profile.PAPER, title: null,
    }).svg;
    byId("sheet").replaceChildren(
      element("h1", {}, heading(model)),
      element("p", {}, Quarn.stepName(model, store.step) + ": " + step.title),
      ...(picture === null ? [] : [element("img", { src: picture, alt: "" })]),
      element("section", {}, element("h2", {}, "Profile " + Quarn.faceText(page)), profile),
      element("section", {}, element("h2", {}, "Films after this step"), filmsTable(page)),
      element("section", {}, element("h2", {}, "What made it"), element("dl", {}, ...listOf(factsOf(model)))),
      element("section", { class: "long" }, element("h2", {}, "Steps"), stepsTable(model, store.step)));
  }

  Quarn.createFactsPanel = createFactsPanel;
  Quarn.fillSheet = fillSheet;
  Quarn.heading = heading;
})();
