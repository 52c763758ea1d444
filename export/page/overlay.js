// overlay.js: what is drawn over the section in two dimensions: measured points with the line between them, the
// point under the pointer, rulers along the face that is seen, and the handles by which the cuts are moved.
//
// Places are pixels of the page; points of the section go through `project`, which tells where they are seen.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});

  const HANDLE_RADIUS = 11;
  const HANDLE_REACH = 18;
  const FONT = "600 12px -apple-system, 'Segoe UI', Roboto, 'Noto Sans', 'Helvetica Neue', Arial, sans-serif";

  const COLORS = {
    light: { ink: "#17202b", halo: "rgba(255, 255, 255, 0.9)", accent: "#0a58ca", face: "#ffffff" },
    dark: { ink: "#eef2f6", halo: "rgba(12, 17, 23, 0.85)", accent: "#7cc0ff", face: "#1c2733" },
  };

  // The largest of 1, 2 and 5 times a power of ten that is not above a length.
  function roundLength(length) {
    const power = 10 ** Math.floor(Math.log10(length));
    const digit = length / power >= 5 ? 5 : length / power >= 2 ? 2 : 1;
    return digit * power;
  }

  // Micrometres as people write them.
  function lengthText(length) {
    const [value, unit] = length >= 1 ? [length, "\u00b5m"] : [length * 1000, "nm"];
    return Number(value.toPrecision(4)) + " " + unit;
  }

  // The upright faces of what is left by a cut: the way out of each, and its foot from the left to the right as
  // seen from outside.
  function facesOf({ x, y, width, depth }) {
    return [
      { outward: [0, -1], from: [x, y], to: [width, y] },
      { outward: [1, 0], from: [width, y], to: [width, depth] },
      { outward: [0, 1], from: [width, depth], to: [x, depth] },
      { outward: [-1, 0], from: [x, depth], to: [x, y] },
    ];
  }

  class Overlay {
    constructor(canvas) {
      this.canvas = canvas;
      this.pen = canvas.getContext("2d");
      this.theme = "light";
      this.handles = [];  // {kind, x, y}: where they were drawn
    }

    setSize(width, height, ratio) {
      this.canvas.width = Math.max(1, Math.round(width * ratio));
      this.canvas.height = Math.max(1, Math.round(height * ratio));
      this.ratio = ratio;
    }

    // A line with a rim, so that it stands out from any film.
    stroke(width, color) {
      const { pen } = this;
      const colors = COLORS[this.theme];
      pen.lineJoin = pen.lineCap = "round";
      pen.strokeStyle = colors.halo;
      pen.lineWidth = width + 3;
      pen.stroke();
      pen.strokeStyle = color || colors.ink;
      pen.lineWidth = width;
      pen.stroke();
    }

    text(text, x, y, align, color) {
      const { pen } = this;
      const colors = COLORS[this.theme];
      pen.font = FONT;
      pen.textAlign = align;
      pen.textBaseline = "middle";
      pen.lineJoin = "round";
      pen.lineWidth = 4;
      pen.strokeStyle = colors.halo;
      pen.strokeText(text, x, y);
      pen.fillStyle = color || colors.ink;
      pen.fillText(text, x, y);
    }

    // A ruler from one place to another with a stroke across each end.
    bar(a, b) {
      const { pen } = this;
      const length = Math.hypot(b.x - a.x, b.y - a.y) || 1;
      const [dx, dy] = [(-(b.y - a.y) / length) * 4, ((b.x - a.x) / length) * 4];
      pen.beginPath();
      pen.moveTo(a.x, a.y);
      pen.lineTo(b.x, b.y);
      for (const end of [a, b]) {
        pen.moveTo(end.x - dx, end.y - dy);
        pen.lineTo(end.x + dx, end.y + dy);
      }
      this.stroke(1.5);
    }

    // Rulers along the foot and up the left edge of the face that is seen largest.
    drawRulers(frame) {
      const { back, project, rest } = frame;
      const facing = (face) => face.outward[0] * back[0] + face.outward[1] * back[1];
      const widthOf = ({ from, to }) => Math.hypot(to[0] - from[0], to[1] - from[1]);
      const size = (face) => facing(face) * widthOf(face);
      const face = facesOf(rest).reduce((best, each) => (size(each) > size(best) ? each : best));
      const whole = widthOf(face);
      if (facing(face) < 0.25 || !(whole > 0)) {
        return;
      }
      const length = roundLength(whole / 4);
      const part = length / whole;
      const along = [0, 1].map((axis) => face.from[axis] + (face.to[axis] - face.from[axis]) * part);
      const foot = project([...face.from, rest.low]);
      const end = project([...along, rest.low]);
      const drop = (place) => ({ x: place.x, y: place.y + 13 });
      if (Math.hypot(end.x - foot.x, end.y - foot.y) > 24) {
        this.bar(drop(foot), drop(end));
        this.text(lengthText(length), drop(end).x + 10, drop(end).y, "left");
      }
      const high = roundLength((rest.high - rest.low) / 2);
      const head = project([...face.from, rest.low + high]);
      const aside = (place) => ({ x: place.x - 13, y: place.y });
      if (high > 0 && Math.hypot(head.x - foot.x, head.y - foot.y) > 24) {
        this.bar(aside(foot), aside(head));
        this.text(lengthText(high), aside(head).x - 10, (foot.y + head.y) / 2, "right");
      }
    }

    drawMarks(frame) {
      const { pen } = this;
      const { accent, face } = COLORS[this.theme];
      const places = frame.marks.map((mark) => frame.project([mark.x, mark.y, mark.z]));
      if (places.length === 2) {
        const [a, b] = frame.marks;
        pen.beginPath();
        pen.moveTo(places[0].x, places[0].y);
        pen.lineTo(places[1].x, places[1].y);
        this.stroke(2, accent);
        const distance = Math.hypot(b.x - a.x, b.y - a.y, b.z - a.z);
        const middle = { x: (places[0].x + places[1].x) / 2, y: (places[0].y + places[1].y) / 2 };
        this.text(lengthText(distance), middle.x, middle.y - 14, "center");
      }
      for (const place of places) {
        pen.beginPath();
        pen.arc(place.x, place.y, 5, 0, 2 * Math.PI);
        this.stroke(2, accent);
        pen.fillStyle = face;
        pen.fill();
        pen.beginPath();
        pen.arc(place.x, place.y, 1.5, 0, 2 * Math.PI);
        pen.fillStyle = accent;
        pen.fill();
      }
    }

    drawHover(frame) {
      const { pen } = this;
      const place = frame.project([frame.hover.x, frame.hover.y, frame.hover.z]);
      pen.beginPath();
      pen.moveTo(place.x - 7, place.y);
      pen.lineTo(place.x + 7, place.y);
      pen.moveTo(place.x, place.y - 7);
      pen.lineTo(place.x, place.y + 7);
      this.stroke(1.25);
    }

    // A round handle with arrows both ways along a direction of the page.
    drawHandle(handle, isHot) {
      const { pen } = this;
      const colors = COLORS[this.theme];
      pen.save();
      pen.translate(handle.x, handle.y);
      pen.beginPath();
      pen.arc(0, 0, HANDLE_RADIUS, 0, 2 * Math.PI);
      pen.fillStyle = isHot ? colors.accent : colors.face;
      pen.fill();
      pen.strokeStyle = isHot ? colors.accent : colors.ink;
      pen.lineWidth = 1.25;
      pen.stroke();
      pen.rotate(handle.angle);
      pen.fillStyle = isHot ? colors.face : colors.ink;
      for (const way of [-1, 1]) {
        pen.beginPath();
        pen.moveTo(way * 8, 0);
        pen.lineTo(way * 2.5, -4);
        pen.lineTo(way * 2.5, 4);
        pen.fill();
      }
      pen.restore();
    }

    // The handle of the front cut stands below the middle of its foot, that of the cut across beside the middle of
    // its upper edge. Each knows how far it goes on the page for a micrometre.
    placeHandles(frame) {
      const { project, rest } = frame;
      const make = (kind, point, axis) => {
        const here = project(point);
        const step = (rest.width + rest.depth) * 0.01;
        const there = project(point.map((value, i) => value + (i === axis ? step : 0)));
        const way = { x: (there.x - here.x) / step, y: (there.y - here.y) / step };
        return { kind, axis, x: here.x, y: here.y, way, angle: Math.atan2(way.y, way.x) };
      };
      const front = make("row", [(rest.x + rest.width) / 2, rest.y, rest.low], 1);
      const left = make("column", [rest.x, (rest.y + rest.depth) / 2, rest.leftTop], 0);
      front.y += HANDLE_RADIUS + 10;
      left.x -= HANDLE_RADIUS + 10;
      return [front, left];
    }

    // Draws all of it.
    //   frame   {project, back, rest: {x, y, width, depth, low, high, leftTop} of what is left by the cut, marks, hover,
    //           hot: kind of the handle that is seized or null, handles, rulers: whether they are shown}
    draw(frame) {
      const { pen, canvas, ratio } = this;
      pen.setTransform(1, 0, 0, 1, 0, 0);
      pen.clearRect(0, 0, canvas.width, canvas.height);
      pen.setTransform(ratio, 0, 0, ratio, 0, 0);
      if (frame.rulers) {
        this.drawRulers(frame);
      }
      this.handles = frame.handles ? this.placeHandles(frame) : [];
      for (const handle of this.handles) {
        this.drawHandle(handle, frame.hot === handle.kind);
      }
      this.drawMarks(frame);
      if (frame.hover) {
        this.drawHover(frame);
      }
    }

    // The handle at a place, or null.
    handleAt(place) {
      const reached = this.handles.find((each) => Math.hypot(each.x - place.x, each.y - place.y) < HANDLE_REACH);
      return reached || null;
    }
  }

  Quarn.Overlay = Overlay;
})();
