// keys.js: the keys of the page and the list that tells them. Within a control of the page its own keys count.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});
  const { element, byId } = Quarn.dom;

  const TURN = 24;  // of the view by one key or button, pixels of a pointer's way
  const MOVE = 40;
  const ZOOM = 1.2;

  function viewActions(page) {
    const view = (action) => () => page.view && action(page.view);
    return {
      left: view((v) => v.turn(-TURN, 0)), right: view((v) => v.turn(TURN, 0)),
      up: view((v) => v.turn(0, TURN)), down: view((v) => v.turn(0, -TURN)),
      in: view((v) => v.zoom(ZOOM)), out: view((v) => v.zoom(1 / ZOOM)),
      moveLeft: view((v) => v.move(-MOVE, 0)), moveRight: view((v) => v.move(MOVE, 0)),
      moveUp: view((v) => v.move(0, -MOVE)), moveDown: view((v) => v.move(0, MOVE)),
      reset: view((v) => v.resetCamera()), picture: () => page.savePicture(),
    };
  }

  // [keys, what they do, action, whether they are a letter or sign without a modifier]
  function keyTable(page, steps, measure) {
    const { model, store } = page;
    const view = viewActions(page);
    // A hundredth of the section, so that fine grids are not endless; the sliders go point by point.
    const cut = (field, count, sign) => () => {
      const by = sign * Math.max(1, Math.round(count / 100));
      store.set({ [field]: Math.min(Math.max(store[field] + by, 0), Math.max(0, count - 2)) });
    };
    return [
      [["ArrowLeft", "ArrowRight"], "step before, next step",
        [() => steps.go(store.step - 1), () => steps.go(store.step + 1)]],
      [["Home", "End"], "first step, last step", [() => steps.go(0), () => steps.go(model.steps.length - 1)]],
      [[" "], "play or pause", [steps.toggle]],
      [["Shift+ArrowLeft", "Shift+ArrowRight", "Shift+ArrowUp", "Shift+ArrowDown"], "turn the section",
        [view.left, view.right, view.up, view.down]],
      [["+", "-"], "nearer, farther away", [view.in, view.out], true],
      [["a", "d", "w", "s"], "shift the picture left, right, up, down",
        [view.moveLeft, view.moveRight, view.moveUp, view.moveDown], true],
      [["0"], "view as at the beginning", [view.reset], true],
      [["j", "k"], "cut in depth: to the front, to the back",
        [cut("row", model.rows, -1), cut("row", model.rows, 1)], true],
      [["h", "l"], "cut across: to the left, to the right",
        [cut("column", model.columns, -1), cut("column", model.columns, 1)], true],
      [["f"], "front or side face in the profile", [() => model.rows > 1 && store.set({ side: !store.side })], true],
      [["c"], "point out what the step changed", [() => byId("changes").click()], true],
      [["Escape"], "clear the marked points", [() => store.points.length > 0 && measure.clear()]],
      [["?"], "this list", [() => byId("help").click()], true],
    ];
  }

  // "Shift" stands once before its keys.
  function shown(keys) {
    const names = {
      ArrowLeft: "Left", ArrowRight: "Right", ArrowUp: "Up", ArrowDown: "Down", " ": "Space", Escape: "Esc",
    };
    const plain = keys.map((key) => key.replace("Shift+", "")).map((key) => names[key] || (key.length === 1 ? key.toUpperCase() : key));
    const parts = plain.flatMap((key) => [element("kbd", {}, key), " "]);
    return keys[0].startsWith("Shift+") ? [element("kbd", {}, "Shift"), " + ", ...parts] : parts;
  }

  // Whether a control has the focus that uses keys itself.
  function isTaken(target, key) {
    const tag = target.tagName;
    if (tag === "SELECT" || tag === "TEXTAREA" || (tag === "INPUT" && target.type === "number")) {
      return true;
    }
    const moves = /Arrow|Home|End/.test(key);
    if (tag === "INPUT") {
      return moves || key === " ";
    }
    if (target.id === "file" || target.id === "profile") {
      return moves && !/Left|Right/.test(key);
    }
    return key === " " && (tag === "BUTTON" || tag === "A");
  }

  function createKeys(page, steps, measure) {
    const table = keyTable(page, steps, measure);
    const actions = new Map();
    for (const [keys, , doing, isLetter] of table) {
      keys.forEach((key, i) => actions.set(key, { run: doing[i], isLetter: isLetter === true }));
    }
    byId("key-list").append(...table.flatMap(([keys, text]) => [
      element("dt", {}, ...shown(keys)), element("dd", {}, text)]));
    byId("help").addEventListener("click", () => byId("keys").showModal());
    document.addEventListener("keydown", (event) => {
      if (event.ctrlKey || event.metaKey || event.altKey || event.defaultPrevented || byId("keys").open) {
        return;
      }
      const shift = event.shiftKey && /^Arrow/.test(event.key) ? "Shift+" : "";
      const plain = event.key.length === 1 ? event.key.toLowerCase() : event.key;
      const action = actions.get(shift + plain);
      if (action === undefined || isTaken(event.target, event.key) || (action.isLetter && !byId("letters").checked)) {
        return;
      }
      event.preventDefault();
      action.run();
    });
    const buttons = viewActions(page);
    for (const button of document.querySelectorAll("[data-view]")) {
      button.addEventListener("click", () => buttons[button.dataset.view]());
    }
  }

  Quarn.createKeys = createKeys;
})();
