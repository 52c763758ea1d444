// camera.js: where the section is seen from. It turns around a point inside it, from a distance of four widths as
// in the program's pictures, and comes nearer by a narrower field, so that it never gets inside a film. Pure
// numbers: nothing of the graphics is needed for it.
//
// Lengths are micrometres as drawn: heights are multiplied by the vertical scale already. Angles are radians;
// azimuth 0 looks at the front, a growing one comes around by the right. Places in the picture are fractions of its
// height from its middle, to the right and down. Its room, {x, y, width, height} in the same fractions, is where the
// section goes: the middle of it and its size; around it there is space for rulers.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});

  const MARGIN = 1.03;  // leaves a little of the room free around the section
  const START_ANGLE = 28;
  const FLAT_ANGLE = 5;
  const MAX_ELEVATION = Math.PI / 2;
  const MIN_ELEVATION = -Math.PI / 3;
  const MIN_ZOOM = 0.4;
  const MAX_ZOOM = 400;

  const add = (a, b, factor) => [a[0] + factor * b[0], a[1] + factor * b[1], a[2] + factor * b[2]];
  const dot = (a, b) => a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
  const clamp = (value, low, high) => Math.min(Math.max(value, low), high);

  // box: {width, depth, low, high}: from (0, 0, low) to (width, depth, high).
  function middleOf(box) {
    return [box.width / 2, box.depth / 2, (box.low + box.high) / 2];
  }

  // The view that a page begins with.
  //   angle   degrees by which it is raised, as the process file tells. Of one that is nearly flat only the cut face
  //           would be seen, which the page's profile shows already: it is raised all the same
  function start(box, angle) {
    const raised = angle >= FLAT_ANGLE ? angle : START_ANGLE;
    const elevation = Math.min((raised * Math.PI) / 180, MAX_ELEVATION);
    return { azimuth: 0, elevation, startElevation: elevation, zoom: 1, target: middleOf(box) };
  }

  // Directions of the view: to the right, upwards and towards the viewer.
  function axes(azimuth, elevation) {
    const [sa, ca] = [Math.sin(azimuth), Math.cos(azimuth)];
    const [se, ce] = [Math.sin(elevation), Math.cos(elevation)];
    return { right: [ca, sa, 0], up: [-sa * se, ca * se, ce], back: [sa * ce, -ca * ce, se] };
  }

  function distanceTo(box) {
    const height = box.high - box.low;
    return 4 * Math.max(box.width, box.depth, height / 2) + box.depth / 2;
  }

  function corners(box) {
    const all = [];
    for (let i = 0; i < 8; ++i) {
      all.push([i & 1 ? box.width : 0, i & 2 ? box.depth : 0, i & 4 ? box.high : box.low]);
    }
    return all;
  }

  // The tangent of half the vertical field that takes the whole section into the room from a direction.
  function fieldOf(box, room, azimuth, elevation) {
    const { right, up, back } = axes(azimuth, elevation);
    const middle = middleOf(box);
    const distance = distanceTo(box);
    let field = 0;
    for (const corner of corners(box)) {
      const offset = add(corner, middle, -1);
      const away = distance - dot(offset, back);
      const [high, wide] = [Math.abs(dot(offset, up)) / away, Math.abs(dot(offset, right)) / away];
      field = Math.max(field, high / room.height, wide / room.width);
    }
    return Math.max(field, 1e-6) * MARGIN;
  }

  // What the graphics need: {eye, right, up, back, field, near, far, x, y}. Without a zoom the whole section is seen
  // from everywhere, and as large as at the start where there is room.
  function place(view, box, room) {
    const { right, up, back } = axes(view.azimuth, view.elevation);
    const distance = distanceTo(box);
    const eye = add(view.target, back, distance);
    const field = Math.max(
      fieldOf(box, room, 0, view.startElevation),
      fieldOf(box, room, view.azimuth, view.elevation)
    );
    let near = Infinity;
    let far = 0;
    for (const corner of corners(box)) {
      const away = dot(add(eye, corner, -1), back);
      near = Math.min(near, away);
      far = Math.max(far, away);
    }
    return {
      eye, right, up, back, distance,
      x: room.x,
      y: room.y,
      field: field / view.zoom,
      near: Math.max(near * 0.95, distance * 1e-3),
      far: Math.max(far * 1.05, distance * 2e-3),
    };
  }

  // Turns by fractions of the picture's height: across it is half a turn.
  function turn(view, dx, dy) {
    return {
      ...view,
      azimuth: (view.azimuth - dx * Math.PI) % (2 * Math.PI),
      elevation: clamp(view.elevation + dy * Math.PI, MIN_ELEVATION, MAX_ELEVATION),
    };
  }

  // The point that the view turns around stays inside the section, so that it cannot be lost.
  function withTarget(view, box, target) {
    const inside = [
      clamp(target[0], 0, box.width), clamp(target[1], 0, box.depth), clamp(target[2], box.low, box.high),
    ];
    return { ...view, target: inside };
  }

  // Shifts what is seen by fractions of the picture's height, to the right and down.
  function move(view, box, room, dx, dy) {
    const { right, up, field, distance } = place(view, box, room);
    const size = 2 * field * distance;
    return withTarget(view, box, add(add(view.target, right, -dx * size), up, dy * size));
  }

  // Comes nearer by a factor; what is at a place of the picture stays there.
  function zoom(view, box, room, factor, x = room.x, y = room.y) {
    const nearer = { ...view, zoom: clamp(view.zoom * factor, MIN_ZOOM, MAX_ZOOM) };
    const ratio = nearer.zoom / view.zoom;
    return move(nearer, box, room, (x - room.x) * (1 - ratio), (y - room.y) * (1 - ratio));
  }

  // The ray through a place of the picture.
  function ray(placed, x, y) {
    const size = 2 * placed.field;
    const ahead = placed.back.map((value) => -value);
    const direction = add(add(ahead, placed.right, (x - placed.x) * size), placed.up, (placed.y - y) * size);
    return { origin: placed.eye, direction };
  }

  // Where a point is in the picture, and how far away it is along the view.
  function project(placed, point) {
    const offset = add(point, placed.eye, -1);
    const away = -dot(offset, placed.back);
    const size = 2 * placed.field * away;
    return {
      x: placed.x + dot(offset, placed.right) / size,
      y: placed.y - dot(offset, placed.up) / size,
      away,
    };
  }

  Quarn.camera = { start, place, turn, move, zoom, ray, project };
})();
