// cut_panel.js: where the section is cut, and how high its heights are drawn.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});
  const { element, byId } = Quarn.dom;

  const SCALES = [1, 2, 5, 10, 50];

  // A slider of grid points and a field of micrometres for the same cut.
  function createCut(page, field, slider, input, count) {
    const { model, store } = page;
    const last = Math.max(0, count - 2);
    slider.max = last;
    input.max = last * model.spacing;
    slider.disabled = input.disabled = last === 0;
    slider.addEventListener("input", () => store.set({ [field]: Number(slider.value) }));
    input.addEventListener("change", () => {
      const point = Math.round(Number(input.value) / model.spacing);
      if (input.value !== "" && Number.isFinite(point)) {
        store.set({ [field]: Math.min(Math.max(point, 0), last) });
      }
      update();
    });
    const update = () => {
      const um = store[field] * model.spacing;
      slider.value = store[field];
      slider.setAttribute("aria-valuetext", Quarn.units.length(um));
      input.value = Number(um.toFixed(4));
    };
    store.listen((_, changed) => {
      if (changed.has(field)) {
        update();
      }
    });
    update();
  }

  function createScale(page) {
    const { store } = page;
    const input = byId("scale");
    const radios = SCALES.map((scale) => {
      const radio = element("input", { type: "radio", name: "scale", value: scale, "aria-label": scale + " times" });
      radio.addEventListener("change", () => store.set({ scale }));
      byId("scales").append(element("label", {}, radio, element("span", { "aria-hidden": "true" }, "\u00d7" + scale)));
      return radio;
    });
    input.addEventListener("change", () => {
      const scale = Number(input.value);
      if (scale > 0) {
        const { MIN_SCALE, MAX_SCALE } = Quarn.state;
        store.set({ scale: Math.min(Math.max(scale, MIN_SCALE), MAX_SCALE) });
      }
      update();
    });
    const update = () => {
      radios.forEach((radio, i) => {
        radio.checked = SCALES[i] === store.scale;
      });
      input.value = store.scale;
    };
    store.listen((_, changed) => {
      if (changed.has("scale")) {
        update();
      }
    });
    update();
  }

  function createCutPanel(page) {
    createCut(page, "row", byId("cut-row"), byId("cut-y"), page.model.rows);
    createCut(page, "column", byId("cut-column"), byId("cut-x"), page.model.columns);
    createScale(page);
  }

  Quarn.createCutPanel = createCutPanel;
})();
