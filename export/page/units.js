// units.js: lengths and names as people read them. Lengths come in micrometres.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});

  const NAME_LENGTH = 80;  // of a file that is saved, without its ending
  const MINUS = "\u2212";

  // A number with at most that many decimals, without zeros at its end; never in the user's own notation, so
  // that a figure can be found in a table again.
  function number(value, decimals) {
    const text = Math.abs(value).toFixed(decimals);
    const short = text.includes(".") ? text.replace(/\.?0+$/, "") : text;
    return value < 0 && Number(short) !== 0 ? MINUS + short : short;
  }

  // A length with its unit: nanometres below 1 um. `exact` shows hundredths of a nanometre, else tenths.
  function length(um, exact) {
    const fine = exact ? 2 : 1;
    return Math.abs(um) < 1 ? number(um * 1000, fine) + " nm" : number(um, fine + 3) + " \u00b5m";
  }

  // The step of a ruler with about `count` marks over `range`: 1, 2 or 5 times a power of ten.
  function roundStep(range, count) {
    const raw = range / Math.max(count, 1);
    const power = Math.pow(10, Math.floor(Math.log10(raw)));
    const lead = raw / power;
    return power * (lead <= 1.0000001 ? 1 : lead <= 2.0000001 ? 2 : lead <= 5.0000001 ? 5 : 10);
  }

  // The marks of a ruler from `low` to `high`, with the unit that suits their step: {unit, marks: [{at, text}]},
  // `at` in micrometres.
  function ruler(low, high, count) {
    const step = roundStep(high - low, count);
    const inNm = step < 0.1;
    const factor = inNm ? 1000 : 1;
    const decimals = Math.max(0, -Math.floor(Math.log10(step * factor) + 1e-9));
    const marks = [];
    for (let i = Math.ceil(low / step - 1e-9) + 0; i * step <= high + step * 1e-9; ++i) {
      marks.push({ at: i * step, text: number(i * step * factor, decimals) });
    }
    return { unit: inNm ? "nm" : "\u00b5m", marks };
  }

  // A name for a file made of a text that may hold anything: no separators, no characters that a system or a
  // shell gives a meaning of its own, no direction marks, nothing that is hidden by a dot or names a device.
  function fileName(text, ending) {
    let name = String(text)
      .normalize("NFC")
      .replace(/[\p{C}\p{Z}<>:"'`/\\|?*%$&;!#{}[\]()=~^@+,]+/gu, "_")
      .replace(/_+/g, "_")
      .replace(/^[._-]+|[._-]+$/g, "");
    name = Array.from(name).slice(0, NAME_LENGTH).join("").replace(/[._-]+$/, "");
    if (/^(con|prn|aux|nul|com\d|lpt\d)(\.|$)/i.test(name)) {
      name = "_" + name;
    }
    return (name || "section") + ending;
  }

  // Black or white, whichever can be read better on a colour [r, g, b] of 0..1.
  function inkOn(color) {
    const linear = color.map((c) => (c <= 0.04045 ? c / 12.92 : Math.pow((c + 0.055) / 1.055, 2.4)));
    const light = 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2];
    return light > 0.179 ? "#000000" : "#ffffff";
  }

  function cssColor(color) {
    const byte = (c) => Math.round(Math.min(1, Math.max(0, c)) * 255).toString(16).padStart(2, "0");
    return "#" + color.map(byte).join("");
  }

  // The names that films are shown by: a film without one goes by its material, and where several of one name
  // are there at the same time the upper ones are numbered.
  //   steps   for each step the ids of its films, from the bottom up
  function filmNames(films, steps) {
    const names = films.map((film) => film.name || film.material || "film");
    const numbers = films.map(() => 1);
    for (const ids of steps) {
      const seen = new Map();
      for (const id of ids) {
        const number = Math.max(numbers[id], (seen.get(names[id]) || 0) + 1);
        seen.set(names[id], number);
        numbers[id] = number;
      }
    }
    return names.map((name, id) => (numbers[id] === 1 ? name : name + " (" + numbers[id] + ")"));
  }

  Quarn.units = { number, length, roundStep, ruler, fileName, filmNames, inkOn, cssColor };
})();
