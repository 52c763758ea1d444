// profile.js: the cut face as a drawing with rulers, and as a table.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});
  const { drawn } = Quarn.dom;

  const MARGIN = { left: 72, right: 62, top: 10, bottom: 28 };
  const TITLE_ROOM = 50;     // above a drawing that is saved
  const LEGEND_ROW = 22;     // below it
  const LEGEND_COLUMN = 180;
  const NAME_SIZE = 12;      // of names within films, pixels
  const NAME_WIDTH = 7.4;    // of a letter of a name, at most in the mean
  const MARK_EVERY = 75;     // pixels between two marks of the ruler below
  const MARK_EVERY_UP = 34;
  const NARROWEST = 240;     // of a drawing, pixels
  const STRETCH = 1.8;
  const DRAWING_WIDTH = 960;   // of a drawing that is saved or printed, pixels
  const DRAWING_HEIGHT = 640;  // of its section, at most

  // On paper: what is saved and printed looks the same in light and dark pages.
  const PAPER = { ink: "#1a2129", muted: "#55606c", rule: "#8b95a0", paper: "#ffffff", accent: "#1d5fa8" };

  function darker(color) {
    return Quarn.units.cssColor(color.map((c) => c * 0.5));
  }

  // Where a height and a place along the line are drawn.
  function frame(model, line, options) {
    const widthUm = Math.max(1, line.count - 1) * model.spacing;
    const { low, high } = Quarn.sectionLine.bounds(line);
    const lowUm = low * model.quantum;
    const heightUm = (high - low) * model.quantum;
    const room = options.width - MARGIN.left - MARGIN.right;
    const wished = heightUm * options.scale * (room / widthUm);
    // A little too high for its place: smaller as a whole. Much too high: as wide as can be, and longer.
    const highest = wished <= STRETCH * options.fitHeight ? options.fitHeight : options.maxHeight;
    const pxPerUm = (room / widthUm) * Math.min(1, highest / wished);
    const zPerUm = pxPerUm * options.scale;
    const top = MARGIN.top + (options.title ? TITLE_ROOM : 0);
    const plot = { left: MARGIN.left, top, width: widthUm * pxPerUm, height: heightUm * zPerUm };
    return {
      plot, widthUm, lowUm, heightUm, pxPerUm, zPerUm,
      x: (um) => plot.left + um * pxPerUm,
      y: (um) => plot.top + plot.height - (um - lowUm) * zPerUm,
    };
  }

  function pathOf(pieces, model, at, decimals) {
    const half = model.spacing / 2;
    const point = ([u, z]) => at.x(u * half).toFixed(decimals) + " " + at.y(z * model.quantum).toFixed(decimals);
    return pieces.map((piece) => "M" + piece.map(point).join("L") + "Z").join("");
  }

  function drawFilms(model, line, at, options) {
    const group = drawn("g", { "stroke-linejoin": "round" });
    for (const { id, pieces } of Quarn.sectionLine.outlines(line)) {
      if (pieces.length === 0) {
        continue;
      }
      const film = model.films[id];
      const state = options.films[id];
      const fill = state === "hidden" ? "none" : Quarn.units.cssColor(film.color);
      group.append(drawn("path", {
        d: pathOf(pieces, model, at, options.title ? 3 : 2),
        fill,
        "fill-opacity": state === "faded" ? 0.25 : null,
        stroke: state === "hidden" ? options.colors.rule : darker(film.color),
        "stroke-width": 0.75,
        "stroke-dasharray": state === "hidden" ? "3 3" : null,
        "data-film": id,
      }));
    }
    return group;
  }

  function drawNames(model, line, at, options) {
    const group = drawn("g", { "font-size": NAME_SIZE, "text-anchor": "middle" });
    for (const film of line.films) {
      const { name, color } = model.films[film.id];
      const points = (Array.from(name).length * NAME_WIDTH + 8) / (model.spacing * at.pxPerUm);
      const quanta = (NAME_SIZE + 4) / (at.zPerUm * model.quantum);
      const place = options.films[film.id] === "hidden" || name === "" || points > line.count
        ? null : Quarn.sectionLine.labelPlace(film, line.count, points, quanta);
      if (place !== null) {
        const faded = options.films[film.id] === "faded";
        group.append(drawn("text", {
          x: at.x(place.u * model.spacing).toFixed(1),
          y: (at.y(place.z * model.quantum) + NAME_SIZE * 0.36).toFixed(1),
          fill: faded ? options.colors.ink : Quarn.units.inkOn(color),
        }, name));
      }
    }
    return group;
  }

  // Rulers below and to the left, each with its unit at the end.
  function drawRulers(line, at, options) {
    const { plot } = at;
    const colors = options.colors;
    const group = drawn("g", { "font-size": 12, fill: colors.muted, stroke: "none" });
    const rule = (x1, y1, x2, y2) => group.append(drawn("line", { x1, y1, x2, y2, stroke: colors.rule }));
    const text = (x, y, anchor, words) =>
      group.append(drawn("text", { x: x.toFixed(1), y: y.toFixed(1), "text-anchor": anchor }, words));
    const bottom = plot.top + plot.height;
    rule(plot.left, bottom + 4, plot.left + plot.width, bottom + 4);
    const across = Quarn.units.ruler(0, at.widthUm, plot.width / MARK_EVERY);
    for (const mark of across.marks) {
      const x = at.x(mark.at);
      rule(x, bottom + 4, x, bottom + 9);
      text(x, bottom + 23, "middle", mark.text);
    }
    text(plot.left + plot.width + 12, bottom + 23, "start", line.axis + " in " + across.unit);
    rule(plot.left - 4, plot.top, plot.left - 4, bottom);
    const up = Quarn.units.ruler(at.lowUm, at.lowUm + at.heightUm, Math.max(2, plot.height / MARK_EVERY_UP));
    for (const mark of up.marks) {
      const y = at.y(mark.at);
      rule(plot.left - 9, y, plot.left - 4, y);
      text(plot.left - 12, y + 4, "end", mark.text);
    }
    const scaled = options.scale === 1 ? "" : ", \u00d7" + Quarn.units.number(options.scale, 3);
    const middle = plot.top + plot.height / 2;
    group.append(drawn("text", {
      x: 14, y: middle, transform: `rotate(-90 14 ${middle})`, "text-anchor": "middle",
    }, "z in " + up.unit + scaled));
    return group;
  }

  function drawLegend(model, line, top, options) {
    const shown = line.films.filter((film) => film.top.some((each, i) => each > film.bottom[i])).reverse();
    const columns = Math.max(1, Math.floor((options.width - MARGIN.left) / LEGEND_COLUMN));
    const group = drawn("g", { "font-size": 12, fill: options.colors.ink });
    shown.forEach((film, i) => {
      const x = MARGIN.left + (i % columns) * LEGEND_COLUMN;
      const y = top + Math.floor(i / columns) * LEGEND_ROW;
      const { name, color } = model.films[film.id];
      const short = Array.from(name).length > 22 ? Array.from(name).slice(0, 21).join("") + "\u2026" : name;
      group.append(
        drawn("rect", { x, y, width: 14, height: 14, fill: Quarn.units.cssColor(color), stroke: darker(color) }),
        drawn("text", { x: x + 21, y: y + 11.5 }, short));
    });
    return { group, height: Math.ceil(shown.length / columns) * LEGEND_ROW };
  }

  // Draws a line of the section (section_line.js).
  //   options   width: pixels; maxHeight: pixels of the section, both axes shrink to keep it; fitHeight: the
  //             same where little more would be needed; scale: of heights; films: state of each film; colors: as
  //             PAPER; title: {head, below} or null, with it comes a legend
  // Returns {svg, at}; `at` tells where a place is drawn (x, y take micrometres).
  function draw(model, line, options) {
    const at = frame(model, line, options);
    const bottom = at.plot.top + at.plot.height + MARGIN.bottom;
    const legend = options.title ? drawLegend(model, line, bottom + 6, options) : null;
    const height = Math.ceil(bottom + (legend ? legend.height + 14 : 0));
    const width = legend ? options.width : Math.ceil(Math.max(NARROWEST, at.plot.width + MARGIN.left + MARGIN.right));
    const svg = drawn("svg", {
      xmlns: "http://www.w3.org/2000/svg", width, height, viewBox: "0 0 " + width + " " + height,
      "font-family": "'Liberation Sans', Arial, Helvetica, sans-serif",
    });
    if (options.title) {
      svg.append(
        drawn("rect", { width, height, fill: options.colors.paper }),
        drawn("text", { x: 16, y: 27, "font-size": 17, fill: options.colors.ink }, options.title.head),
        drawn("text", { x: 16, y: 47, "font-size": 12, fill: options.colors.muted }, options.title.below));
    }
    svg.append(drawFilms(model, line, at, options), drawNames(model, line, at, options),
      drawRulers(line, at, options));
    if (legend) {
      svg.append(legend.group);
    }
    return { svg, at };
  }

  // The drawing as it is saved: on white, with title and legend.
  function drawForPaper(model, line, state, title) {
    return draw(model, line, {
      width: DRAWING_WIDTH, maxHeight: DRAWING_HEIGHT, fitHeight: DRAWING_HEIGHT, scale: state.scale,
      films: state.films, colors: PAPER, title,
    }).svg;
  }

  // Without the noise of binary fractions.
  function plain(value) {
    return String(Number(value.toPrecision(10)));
  }

  // A field of a table: on one line, never a formula, quoted where it must be.
  function csvField(text) {
    let field = text.replace(/[\u0000-\u001f\u007f]/g, " ");
    if (/^ *[=+\-@]/.test(field)) {
      field = "'" + field;
    }
    return /[,;"]|^ | $/.test(field) ? '"' + field.replace(/"/g, '""') + '"' : field;
  }

  // A row a grid point, for each film its bottom and its top; both are the same where the film is absent.
  function table(model, line) {
    const head = [line.axis + "_um"];
    for (const film of line.films) {
      const name = model.films[film.id].name;
      head.push(csvField(name + " bottom_nm"), csvField(name + " top_nm"));
    }
    const rows = [head.join(",")];
    const nm = model.quantum * 1000;
    for (let i = 0; i < line.count; ++i) {
      const row = [plain(i * model.spacing)];
      for (const film of line.films) {
        row.push(plain(film.bottom[i] * nm), plain(film.top[i] * nm));
      }
      rows.push(row.join(","));
    }
    return rows.join("\n") + "\n";
  }

  const HEIGHT_BESIDE = MARGIN.top + MARGIN.bottom;  // pixels of a drawing that are not the section's
  Quarn.profile = { draw, drawForPaper, table, PAPER, HEIGHT_BESIDE };
})();
