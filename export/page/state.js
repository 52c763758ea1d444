// state.js: what the user has chosen, in one place, with those who want to know when it changes; and as the
// part of the page's address behind "#", so that a link or a reload shows the same.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});

  const MIN_SCALE = 0.01;
  const MAX_SCALE = 1000;

  function clamp(value, low, high) {
    return Math.min(Math.max(value, low), Math.max(low, high));
  }

  function wholeNumber(text) {
    return /^\d{1,9}$/.test(text) ? Number(text) : null;
  }

  function numberList(text) {
    return (text || "").split(",").map(wholeNumber).filter((id) => id !== null);
  }

  // The state that a page begins with: its last step, not cut, all films shown.
  function initial(model) {
    return {
      step: model.steps.length - 1,
      row: 0,
      column: 0,
      scale: 1,
      side: false,  // the profile along y at the column, not along x at the row
      films: model.films.map(() => "shown"),
    };
  }

  // Reads "#step=3&cut=10,0&hidden=1,2&faded=4&scale=2&profile=side". Whatever makes no sense is as in the
  // initial state: an address may come from anywhere.
  function parse(hash, model) {
    const state = initial(model);
    const words = new URLSearchParams(hash.replace(/^#/, ""));
    const step = wholeNumber(words.get("step") || "");
    const index = model.steps.findIndex((each) => each.number === step);
    if (step !== null && index >= 0) {
      state.step = index;
    }
    const cut = numberList(words.get("cut"));
    if (cut.length === 2) {
      state.row = clamp(cut[0], 0, model.rows - 2);
      state.column = clamp(cut[1], 0, model.columns - 2);
    }
    for (const word of ["hidden", "faded"]) {
      for (const id of numberList(words.get(word))) {
        if (id < state.films.length) {
          state.films[id] = word;
        }
      }
    }
    const scale = Number(words.get("scale") || "1");
    if (scale >= MIN_SCALE && scale <= MAX_SCALE) {
      state.scale = scale;
    }
    state.side = words.get("profile") === "side";
    return state;
  }

  // The inverse of parse; what is as at the beginning is left out, but for the step.
  function format(state, model) {
    const words = ["step=" + model.steps[state.step].number];
    if (state.row !== 0 || state.column !== 0) {
      words.push("cut=" + state.row + "," + state.column);
    }
    for (const word of ["hidden", "faded"]) {
      const ids = state.films.map((_, id) => id).filter((id) => state.films[id] === word);
      if (ids.length > 0) {
        words.push(word + "=" + ids.join(","));
      }
    }
    if (state.scale !== 1) {
      words.push("scale=" + state.scale);
    }
    if (state.side) {
      words.push("profile=side");
    }
    return "#" + words.join("&");
  }

  // A record that tells its listeners (functions of the record and a set of the changed fields' names).
  function createStore(fields) {
    const listeners = [];
    const store = Object.assign({}, fields);
    store.listen = (listener) => listeners.push(listener);
    store.set = (changes) => {
      const changed = new Set(Object.keys(changes).filter((key) => store[key] !== changes[key]));
      if (changed.size > 0) {
        Object.assign(store, changes);
        listeners.forEach((listener) => listener(store, changed));
      }
    };
    return store;
  }

  Quarn.state = { initial, parse, format, createStore, MIN_SCALE, MAX_SCALE };
})();
