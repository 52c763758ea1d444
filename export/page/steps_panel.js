// steps_panel.js: going through the steps, and the process file with the line of the step that is shown.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});
  const { element, byId } = Quarn.dom;

  const PLAY_MS = 1200;  // a step while playing

  // "Step 3 of 27"; pictures are counted as the program numbers them, from the bare substrate on.
  function stepName(model, index) {
    return "Step " + model.steps[index].number + " of " + model.steps[model.steps.length - 1].number;
  }

  function fileLines(model) {
    const text = (model.facts.processFile && model.facts.processFile.text) || "";
    return text.replace(/\r\n?/g, "\n").replace(/\n$/, "").split("\n");
  }

  // The process file as a list of lines; those that are steps lead to them.
  function createFile(page) {
    const { model, store } = page;
    const list = byId("file");
    const stepOfLine = new Map();
    model.steps.forEach((step, index) => stepOfLine.set(step.line, index));
    const rows = fileLines(model).map((text, i) => {
      const index = stepOfLine.get(i + 1);
      const content = index === undefined ? text : element("a", {
        href: "#step=" + model.steps[index].number, tabindex: -1, title: stepName(model, index),
      }, text);
      if (index !== undefined) {
        content.addEventListener("click", (event) => {
          event.preventDefault();
          store.set({ step: index });
        });
      }
      const comment = /^\s*(#|$)/.test(text) ? "comment" : null;
      return element("li", { class: comment }, element("code", {}, content));
    });
    list.style.setProperty("--digits", String(rows.length).length);
    list.append(...rows);
    byId("file-name").textContent = (model.facts.processFile && model.facts.processFile.name) || "";

    let marked = null;
    // Only the list is scrolled, never the page.
    const scroll = (behavior) => {
      const top = marked === null ? 0
        : marked.offsetTop - list.offsetTop - (list.clientHeight - marked.offsetHeight) / 2;
      list.scrollTo({ top, behavior });
    };
    new ResizeObserver(() => scroll("auto")).observe(list);
    return (line) => {
      if (marked !== null) {
        marked.removeAttribute("aria-current");
      }
      marked = rows[line - 1] || null;
      if (marked !== null) {
        marked.setAttribute("aria-current", "step");
      }
      scroll(page.calm() ? "auto" : "smooth");
    };
  }

  function createPlayer(page) {
    const { model, store } = page;
    const button = byId("play");
    let timer = 0;
    const stop = () => {
      clearTimeout(timer);
      timer = 0;
      button.replaceChildren(Quarn.dom.icon("play"));
      button.setAttribute("aria-label", "Play");
    };
    const tick = async () => {
      await page.settled();  // a step that takes long to draw is still seen
      if (timer === 0) {
        return;
      }
      if (store.step + 1 >= model.steps.length) {
        stop();
        return;
      }
      store.set({ step: store.step + 1 });
      timer = setTimeout(tick, PLAY_MS);
    };
    const toggle = () => {
      if (timer !== 0) {
        stop();
        return;
      }
      if (store.step + 1 >= model.steps.length) {
        store.set({ step: 0 });
      }
      timer = setTimeout(tick, PLAY_MS);
      button.replaceChildren(Quarn.dom.icon("pause"));
      button.setAttribute("aria-label", "Pause");
    };
    button.addEventListener("click", toggle);
    return { toggle, stop };
  }

  // Returns {go(index), toggle()}: go shows a step by the user's wish, and ends playing.
  function createStepsPanel(page) {
    const { model, store } = page;
    const slider = byId("step");
    const lines = fileLines(model);
    const showLine = createFile(page);
    const player = createPlayer(page);
    const go = (index) => {
      player.stop();
      store.set({ step: Math.min(Math.max(index, 0), model.steps.length - 1) });
    };
    slider.max = model.steps.length - 1;
    slider.addEventListener("input", () => go(Number(slider.value)));
    byId("previous").addEventListener("click", () => go(store.step - 1));
    byId("next").addEventListener("click", () => go(store.step + 1));

    const update = () => {
      const step = model.steps[store.step];
      const name = stepName(model, store.step);
      slider.value = store.step;
      slider.setAttribute("aria-valuetext", name + ": " + step.title);
      byId("step-number").textContent = step.number + " / " + model.steps[model.steps.length - 1].number;
      byId("step-title").textContent = step.title;
      const text = lines[step.line - 1];
      byId("step-line").textContent = step.line > 0 && text !== undefined ? step.line + "  " + text.trim() : "";
      // aria-disabled, not disabled: a button that has the focus keeps it at the end of the steps.
      byId("previous").setAttribute("aria-disabled", String(store.step === 0));
      byId("next").setAttribute("aria-disabled", String(store.step + 1 === model.steps.length));
      showLine(step.line);
    };
    store.listen((_, changed) => {
      if (changed.has("step")) {
        update();
      }
    });
    update();
    return { go, toggle: player.toggle };
  }

  Quarn.createStepsPanel = createStepsPanel;
  Quarn.stepName = stepName;
  Quarn.fileLines = fileLines;
})();
