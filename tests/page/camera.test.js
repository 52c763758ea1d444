// Where the section is seen from, without a browser.
"use strict";

const assert = require("node:assert");
const { test } = require("node:test");
const { runScripts, randomNumbers } = require("./scripts.js");

const { camera } = runScripts("camera.js");

const ROOM = { x: 0, y: 0, width: 1.5, height: 1 };
const BOX = { width: 8, depth: 3, low: 0, high: 2 };

const near = (actual, expected, message) =>
  assert.ok(Math.abs(actual - expected) < 1e-9, (message || "") + " " + actual + " is not " + expected);

function cornersOf(box) {
  return [0, 1, 2, 3, 4, 5, 6, 7].map((i) =>
    [i & 1 ? box.width : 0, i & 2 ? box.depth : 0, i & 4 ? box.high : box.low]);
}

test("it begins in front of the middle, raised by the angle of the process file, four widths away", () => {
  const placed = camera.place(camera.start(BOX, 30), BOX, ROOM);
  // The middle is (4, 1.5, 1); 4 x 8 + 3 / 2 = 33.5 micrometres away from it.
  near(placed.eye[0], 4);
  near(placed.eye[1], 1.5 - 33.5 * Math.cos(Math.PI / 6));
  near(placed.eye[2], 1 + 33.5 * Math.sin(Math.PI / 6));
  const middle = camera.project(placed, [4, 1.5, 1]);
  near(middle.x, 0);
  near(middle.y, 0);
  near(middle.away, 33.5);
});

test("of an angle that is nearly flat the view is one that shows top and front", () => {
  for (const angle of [0, 4, undefined]) {
    const { elevation } = camera.start(BOX, angle);
    assert.ok(elevation > 0.3 && elevation < 0.7);
  }
  near(camera.start(BOX, 5).elevation, (5 * Math.PI) / 180);
});

test("what lies to the right, behind and higher is seen to the right and above", () => {
  const placed = camera.place(camera.start(BOX, 30), BOX, ROOM);
  assert.ok(camera.project(placed, [5, 1.5, 1]).x > 0);
  assert.ok(camera.project(placed, [4, 2.5, 1]).y < 0);
  assert.ok(camera.project(placed, [4, 1.5, 2]).y < 0);
});

test("the whole section is seen from everywhere, in wide and in high pictures", () => {
  const random = randomNumbers(7);
  for (let i = 0; i < 200; ++i) {
    const room = { x: random() - 0.5, y: random() - 0.5, width: 0.3 + 3 * random(), height: 0.5 + random() / 2 };
    const box = { width: 8 * random() + 0.1, depth: 5 * random() + 0.1, low: 0, high: 9 * random() + 0.1 };
    const view = camera.turn(camera.start(box, 90 * random()), 4 * random(), random() - 0.5);
    const placed = camera.place(view, box, room);
    for (const corner of cornersOf(box)) {
      const { x, y, away } = camera.project(placed, corner);
      const isInside = Math.abs(x - room.x) <= room.width / 2 && Math.abs(y - room.y) <= room.height / 2;
      assert.ok(isInside, "corner " + corner);
      assert.ok(away > placed.near && away < placed.far, "corner " + corner);
    }
  }
});

test("a ray goes through the point that is seen at its place", () => {
  const random = randomNumbers(3);
  for (let i = 0; i < 50; ++i) {
    const view = camera.zoom(camera.turn(camera.start(BOX, 30), random(), random() - 0.5), BOX, ROOM, 3, 0.1, 0.1);
    const placed = camera.place(view, BOX, ROOM);
    const point = [8 * random(), 3 * random(), 2 * random()];
    const seen = camera.project(placed, point);
    const { origin, direction } = camera.ray(placed, seen.x, seen.y);
    // The direction has the length 1 along the view.
    origin.forEach((value, axis) => near(value + seen.away * direction[axis], point[axis]));
  }
});

test("what is turned to the left shows its right side, what is turned down its top", () => {
  const view = camera.start(BOX, 30);
  const left = camera.place(camera.turn(view, -0.25, 0), BOX, ROOM);
  assert.ok(left.back[0] > 0.6);
  const down = camera.turn(view, 0, 0.1);
  assert.ok(down.elevation > view.elevation);
});

test("the room of the section may lie beside the middle of the picture", () => {
  const view = camera.start(BOX, 30);
  const room = { x: 0.1, y: -0.05, width: 1.3, height: 0.8 };
  const placed = camera.place(view, BOX, room);
  const seen = camera.project(placed, view.target);
  near(seen.x, 0.1);
  near(seen.y, -0.05);
  const { direction } = camera.ray(placed, 0.1, -0.05);
  direction.forEach((value, axis) => near(value, -placed.back[axis]));
});

test("the narrow side of the section is not drawn larger than its front", () => {
  const front = camera.place(camera.start(BOX, 10), BOX, ROOM);
  const side = camera.place(camera.turn(camera.start(BOX, 10), 0.5, 0), BOX, ROOM);
  near(side.field, front.field);
});

test("it is turned no farther than straight down, and not below the ground without end", () => {
  const view = camera.start(BOX, 30);
  near(camera.turn(view, 0, 10).elevation, Math.PI / 2);
  near(camera.turn(view, 0, -10).elevation, -Math.PI / 3);
  const placed = camera.place(camera.turn(view, 0, 10), BOX, ROOM);
  assert.ok([...placed.up, ...placed.right, ...placed.eye].every(Number.isFinite));
});

test("nearer is at a place of the picture, which stays where it is", () => {
  const view = camera.start(BOX, 30);
  const before = camera.place(view, BOX, ROOM);
  // The plane through the middle, across the view, is the one that stays.
  const { origin, direction } = camera.ray(before, 0.1, 0.05);
  const point = origin.map((value, axis) => value + before.distance * direction[axis]);
  const after = camera.place(camera.zoom(view, BOX, ROOM, 2, 0.1, 0.05), BOX, ROOM);
  near(after.field, before.field / 2);
  const seen = camera.project(after, point);
  near(seen.x, 0.1);
  near(seen.y, 0.05);
});

test("the section cannot be lost: what is shifted stops at its borders, and nearness has limits", () => {
  const view = camera.start(BOX, 30);
  const gone = camera.move(view, BOX, ROOM, 100, 100);
  const [x, y, z] = gone.target;
  assert.ok(x >= 0 && x <= 8 && y >= 0 && y <= 3 && z >= 0 && z <= 2);
  assert.strictEqual(camera.zoom(view, BOX, ROOM, 1e9).zoom, 400);
  assert.strictEqual(camera.zoom(view, BOX, ROOM, 1e-9).zoom, 0.4);
});

test("a hand that shifts to the right takes the section along", () => {
  const view = camera.start(BOX, 30);
  const point = [...view.target];
  const seen = camera.project(camera.place(camera.move(view, BOX, ROOM, 0.05, 0), BOX, ROOM), point);
  near(seen.x, 0.05);
  near(seen.y, 0);
});
