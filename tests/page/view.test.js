// The drawing in three dimensions, in a browser: what it shows, measures and gives back.
"use strict";

const assert = require("node:assert");
const fs = require("node:fs");
const { after, afterEach, before, test } = require("node:test");
const { open_page, start_browser } = require("./browser.js");
const { sample_path } = require("./page_file.js");

// Steps of the sample: the substrate, 0.2 high; OXIDE on it in three stairs of 20 columns, 0.1, 0.2 and 0.3 thick;
// a trench down to 0.25 in columns 25 to 34; METAL over all; OXIDE taken away from beneath it.
const OXIDE = 1;
const METAL = 2;

let browser;
before(async () => {
  browser = await start_browser();
});
after(async () => {
  await browser.close();
});
// Pages that stay open keep their graphics. The first page is the one a browser starts with.
afterEach(async () => {
  const [, ...pages] = await browser.pages();
  await Promise.all(pages.map((page) => page.close()));
});

// A page with nothing but a drawing of the sample on it, 800 x 600, at a step. `window.seen` keeps what it says.
async function openView(stepIndex, name = "stairs.html", from = browser) {
  const { page, messages } = await open_page(from, sample_path(name), { width: 800, height: 600 });
  await page.evaluate(async (index) => {
    const element = document.createElement("div");
    element.style.cssText = "position:fixed;left:0;top:0;width:800px;height:600px;background:white;z-index:99";
    document.body.append(element);
    window.seen = { hovers: [], picks: [], cuts: [], errors: [] };
    window.model = await Quarn.Model.open();
    window.view = new Quarn.View(element, model, {
      onHover: (hit) => seen.hovers.push(hit),
      onPick: (hit) => seen.picks.push(hit),
      onCut: (cut) => seen.cuts.push(cut),
      onError: (text) => seen.errors.push(text),
    });
    // Colours that light from the front and above can be told apart by.
    const colors = [[0.5, 0.5, 0.5], [0, 0, 1], [1, 0, 0]];
    model.films.forEach((film, id) => {
      film.color = colors[id % 3];
      film.opacity = 1;
    });
    await view.show(index);
    await view.whole();
  }, stepIndex);
  return { page, messages };
}

// How many pixels of the picture are nearly of a film's hue: {grey, blue, red}.
function countColors(page) {
  return page.evaluate(async () => {
    const bitmap = await createImageBitmap(await view.snapshot());
    const canvas = document.createElement("canvas");
    canvas.width = bitmap.width;
    canvas.height = bitmap.height;
    const pen = canvas.getContext("2d", { willReadFrequently: true });
    pen.drawImage(bitmap, 0, 0);
    const { data } = pen.getImageData(0, 0, canvas.width, canvas.height);
    const count = { grey: 0, blue: 0, red: 0 };
    for (let i = 0; i < data.length; i += 4) {
      const [r, g, b] = [data[i], data[i + 1], data[i + 2]];
      if (b > r + 90 && b > g + 90) {
        ++count.blue;
      } else if (r > g + 90 && r > b + 90) {
        ++count.red;
      } else if (r < 200 && r > 60 && Math.abs(r - g) < 12 && Math.abs(r - b) < 12) {
        ++count.grey;
      }
    }
    return count;
  });
}

// Where a point of the section is seen, pixels of the page.
function placeOf(page, point) {
  return page.evaluate((at) => {
    const { x, y } = Quarn.camera.project(view.placed(), at);
    return { x: x * view.height + view.width / 2, y: y * view.height + view.height / 2 };
  }, point);
}

const pictureDone = (page) =>
  page.evaluate(() => new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve))));

test("it draws the films of a step in their colours, and those of another step instead", async () => {
  const { page, messages } = await openView(1);
  const oxide = await countColors(page);
  assert.ok(oxide.blue > 20000 && oxide.grey > 20000 && oxide.red === 0, JSON.stringify(oxide));
  await page.evaluate(() => view.show(3));
  const metal = await countColors(page);
  assert.ok(metal.red > 20000, JSON.stringify(metal));
  await page.evaluate(() => view.show(0));
  const bare = await countColors(page);
  assert.ok(bare.blue === 0 && bare.red === 0 && bare.grey > 20000, JSON.stringify(bare));
  assert.deepStrictEqual(messages, []);
});

test("a hidden film shows what is beneath it, a faded one both", async () => {
  const { page } = await openView(3);
  const shown = await countColors(page);
  await page.evaluate(async (id) => {
    view.setFilm(id, "hidden");
    await view.whole();
  }, METAL);
  const hidden = await countColors(page);
  assert.ok(hidden.red === 0 && hidden.blue > shown.blue + 20000, JSON.stringify(hidden));
  await page.evaluate(async (id) => {
    view.setFilm(id, "faded");
    await view.whole();
  }, METAL);
  const faded = await countColors(page);
  assert.ok(faded.red < shown.red / 10 && faded.blue > shown.blue + 20000, JSON.stringify(faded));
});

test("a measured height is that of the run", async () => {
  const expected = JSON.parse(fs.readFileSync(sample_path("stairs.json"), "utf8"))[1][OXIDE];
  const { page } = await openView(1);
  for (const [column, row] of [[5, 4], [18, 10], [30, 15], [55, 2], [59, 19]]) {
    const height = expected[2][row * 60 + column] / 1e6;
    const place = await placeOf(page, [column * 0.05, row * 0.05, height]);
    const hit = await page.evaluate((at) => view.hitAt(at), place);
    assert.deepStrictEqual([hit.film, hit.column, hit.row, hit.surface], [OXIDE, column, row, "top"]);
    assert.ok(Math.abs(hit.z - height) < 1e-5, hit.z + " is not " + height);
    assert.ok(Math.abs(hit.thickness - (height - 0.2)) < 2e-5, String(hit.thickness));
  }
});

test("heights are measured as they are, whatever their scale in the drawing", async () => {
  const { page } = await openView(1);
  await page.evaluate(() => view.setVerticalScale(3));
  const place = await placeOf(page, [30 * 0.05, 15 * 0.05, 0.4 * 3]);
  const hit = await page.evaluate((at) => view.hitAt(at), place);
  assert.deepStrictEqual([hit.film, hit.column, hit.row], [OXIDE, 30, 15]);
  assert.ok(Math.abs(hit.z - 0.4) < 1e-5);
});

test("the pointer tells what is under it, a click picks it, and beside the section is nothing", async () => {
  const { page } = await openView(1);
  const place = await placeOf(page, [10 * 0.05, 10 * 0.05, 0.3]);
  await page.mouse.move(place.x, place.y);
  await pictureDone(page);
  const hover = await page.evaluate(() => seen.hovers.pop());
  assert.deepStrictEqual([hover.column, hover.row, hover.film], [10, 10, OXIDE]);
  await page.mouse.click(place.x, place.y);
  const picks = await page.evaluate(() => seen.picks);
  assert.deepStrictEqual(picks.map((hit) => [hit.column, hit.row]), [[10, 10]]);
  await page.mouse.move(5, 300);
  await pictureDone(page);
  assert.strictEqual(await page.evaluate(() => seen.hovers.pop()), null);
  await page.mouse.click(5, 300);
  assert.strictEqual(await page.evaluate(() => seen.picks.length), 1);
});

test("a moved cut shows the films at its place", async () => {
  const { page } = await openView(2);
  // Column 30 lies in the trench: oxide from 0.2 to 0.25 there, from 0.2 to 0.5 at column 50.
  await page.evaluate(() => {
    view.setCut({ row: 5, column: 30 });
    view.turn(250, 0);
  });
  await pictureDone(page);
  for (const [z, film] of [[0.1, 0], [0.23, OXIDE]]) {
    const hit = await page.evaluate((at) => view.hitAt(at), await placeOf(page, [1.5, 10 * 0.05, z]));
    assert.deepStrictEqual([hit.film, hit.column, hit.row, hit.surface], [film, 30, 10, "cut"]);
  }
  const front = await page.evaluate((at) => view.hitAt(at), await placeOf(page, [2.5, 5 * 0.05, 0.45]));
  assert.deepStrictEqual([front.film, front.column, front.row, front.surface], [OXIDE, 50, 5, "cut"]);
});

test("the handle at the foot drags the cut through the depth", async () => {
  const { page } = await openView(1);
  const handle = await page.evaluate(() => {
    const { x, y } = view.overlay.handles.find((each) => each.kind === "row");
    return { x, y };
  });
  const [a, b] = [await placeOf(page, [1.5, 0, 0]), await placeOf(page, [1.5, 0.5, 0])];
  await page.mouse.move(handle.x, handle.y);
  await page.mouse.down();
  await page.mouse.move(handle.x + b.x - a.x, handle.y + b.y - a.y, { steps: 5 });
  await page.mouse.up();
  const cut = await page.evaluate(() => seen.cuts.pop());
  assert.strictEqual(cut.column, 0);
  assert.ok(Math.abs(cut.row - 10) <= 1, "row " + cut.row);
  assert.deepStrictEqual(await page.evaluate(() => [seen.picks.length, view.camera.azimuth]), [0, 0]);
});

test("the mouse turns, shifts and brings nearer, and the first view comes back", async () => {
  const { page } = await openView(1);
  const first = await page.evaluate(() => ({ ...view.camera }));
  const drag = async (button, shift) => {
    if (shift) {
      await page.keyboard.down("Shift");
    }
    await page.mouse.move(400, 300);
    await page.mouse.down({ button });
    await page.mouse.move(460, 330, { steps: 4 });
    await page.mouse.up({ button });
    if (shift) {
      await page.keyboard.up("Shift");
    }
    return page.evaluate(() => ({ ...view.camera }));
  };
  const turned = await drag("left", false);
  assert.ok(turned.azimuth < 0 && turned.elevation > first.elevation);
  assert.deepStrictEqual(turned.target, first.target);
  const shifted = await drag("right", false);
  assert.notDeepStrictEqual(shifted.target, first.target);
  assert.strictEqual(shifted.azimuth, turned.azimuth);
  const again = await drag("left", true);
  assert.notDeepStrictEqual(again.target, shifted.target);
  await page.mouse.wheel({ deltaY: -240 });
  await pictureDone(page);
  assert.ok((await page.evaluate(() => view.camera.zoom)) > 1.3);
  await page.evaluate(() => view.resetCamera());
  assert.deepStrictEqual(await page.evaluate(() => ({ ...view.camera })), first);
  assert.strictEqual(await page.evaluate(() => seen.picks.length), 0);
});

test("one finger turns, two fingers bring nearer", async () => {
  const { page } = await openView(1);
  const client = await page.createCDPSession();
  const touch = (type, ...points) =>
    client.send("Input.dispatchTouchEvent", { type, touchPoints: points.map(([x, y], id) => ({ x, y, id })) });
  await touch("touchStart", [400, 300]);
  await touch("touchMove", [450, 300]);
  await touch("touchMove", [480, 300]);
  await touch("touchEnd");
  assert.ok((await page.evaluate(() => view.camera.azimuth)) < -0.1);
  await touch("touchStart", [380, 300], [420, 300]);
  await touch("touchMove", [360, 300], [440, 300]);
  await touch("touchMove", [340, 300], [460, 300]);
  await touch("touchEnd");
  const zoom = await page.evaluate(() => view.camera.zoom);
  assert.ok(zoom > 2 && zoom < 4, "zoom " + zoom);
});

test("nothing is drawn while nothing changes", async () => {
  const { page } = await openView(1);
  await pictureDone(page);
  const drawn = await page.evaluate(async () => {
    let count = 0;
    const draw = view.stage.draw.bind(view.stage);
    view.stage.draw = (frame) => {
      ++count;
      draw(frame);
    };
    await new Promise((resolve) => setTimeout(resolve, 400));
    const idle = count;
    view.turn(10, 0);
    view.turn(10, 0);
    await new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve)));
    return { idle, turned: count - idle };
  });
  assert.deepStrictEqual(drawn, { idle: 0, turned: 1 });
});

test("what a step changed is outlined, what it removed is hatched, and both go away", async () => {
  const { page } = await openView(1);
  // Pictures stay in the page, by their names: a million numbers are long on their way out.
  const take = (name) => page.evaluate(async (key) => {
    view.glowFrom = -Infinity;
    const bitmap = await createImageBitmap(await view.snapshot());
    const canvas = document.createElement("canvas");
    [canvas.width, canvas.height] = [bitmap.width, bitmap.height];
    const pen = canvas.getContext("2d");
    pen.drawImage(bitmap, 0, 0);
    (window.taken = window.taken || {})[key] = pen.getImageData(0, 0, canvas.width, canvas.height).data;
  }, name);
  const differing = (one, other) => page.evaluate((first, second) => {
    const [a, b] = [taken[first], taken[second]];
    let count = a.length === b.length ? 0 : Infinity;
    for (let i = 0; i < a.length; i += 4) {
      count += Math.abs(a[i] - b[i]) + Math.abs(a[i + 1] - b[i + 1]) + Math.abs(a[i + 2] - b[i + 2]) > 60 ? 1 : 0;
    }
    return count;
  }, one, other);
  await take("plain");
  await page.evaluate((id) => view.setChanged([id]), OXIDE);
  await take("outlined");
  const outline = await differing("plain", "outlined");
  assert.ok(outline > 1000, "outline " + outline);
  await page.evaluate(() => view.setChanged(null));
  await take("plain again");
  assert.strictEqual(await differing("plain", "plain again"), 0);
  await page.evaluate(() => view.show(4));
  await take("released");
  await page.evaluate(async (id) => {
    view.setChanged([id]);
    await view.whole();
  }, OXIDE);
  await take("hatched");
  assert.ok(await differing("released", "hatched") > 2000);
});

test("nothing shines where motion is to be reduced", async () => {
  const { page } = await openView(1);
  const shines = () => page.evaluate((id) => {
    view.setChanged([id]);
    return view.glowFrom > 0;
  }, OXIDE);
  assert.strictEqual(await shines(), true);
  await page.emulateMediaFeatures([{ name: "prefers-reduced-motion", value: "reduce" }]);
  assert.strictEqual(await shines(), false);
});

test("steps leave nothing behind in the graphics", async () => {
  const { page } = await openView(4);
  const geometries = await page.evaluate(async () => {
    const count = () => view.stage.renderer.info.memory.geometries;
    await view.show(3);
    view.redraw();
    await new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve)));
    const before = count();
    for (let i = 0; i < 30; ++i) {
      await view.show(i % 5);
    }
    await view.show(3);
    await new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve)));
    return [before, count()];
  });
  assert.strictEqual(geometries[1], geometries[0]);
  const left = await page.evaluate(() => {
    const { renderer } = view.stage;
    view.dispose();
    view.redraw();
    view.setCut({ row: 3, column: 3 });
    return [renderer.info.memory.geometries, view.element.childElementCount];
  });
  assert.deepStrictEqual(left, [0, 0]);
});

test("of steps that are asked for quickly the last one stays", async () => {
  const { page } = await openView(0);
  await page.evaluate(() => Promise.all([view.show(3), view.show(1), view.show(2), view.show(1)]));
  const colors = await countColors(page);
  assert.ok(colors.red === 0 && colors.blue > 20000, JSON.stringify(colors));
});

test("lost graphics are told of and come back", async () => {
  const { page } = await openView(1);
  await page.evaluate(async () => {
    const extension = view.stage.renderer.getContext().getExtension("WEBGL_lose_context");
    extension.loseContext();
    await new Promise((resolve) => setTimeout(resolve, 200));
    view.turn(5, 5);
    seen.lost = seen.errors.slice();
    extension.restoreContext();
    await new Promise((resolve) => setTimeout(resolve, 400));
  });
  const { lost, errors } = await page.evaluate(() => seen);
  assert.match(lost.join(), /graphics were lost/);
  assert.strictEqual(errors.pop(), "");
  const colors = await countColors(page);
  assert.ok(colors.blue > 20000, JSON.stringify(colors));
});

test("without graphics it says so, and every function does nothing", async () => {
  const plain = await start_browser(["--disable-3d-apis"]);
  try {
    const { page } = await openView(1, "stairs.html", plain);
    assert.match((await page.evaluate(() => seen.errors)).join(), /WebGL/);
    const outcome = await page.evaluate(async () => {
      view.setCut({ row: 1, column: 1 });
      view.setFilm(1, "hidden");
      view.setVerticalScale(2);
      view.setMarks([{ x: 0, y: 0, z: 0 }]);
      view.setChanged([1]);
      view.setTheme("dark");
      view.resetCamera();
      view.turn(1, 1);
      view.move(1, 1);
      view.zoom(2);
      await view.show(2);
      const picture = await view.snapshot().catch((error) => error.message);
      view.dispose();
      return picture;
    });
    assert.strictEqual(outcome, "There is no picture.");
  } finally {
    await plain.close();
  }
});

test("a section of a single row, and heights without sense, are drawn all the same", async () => {
  const thin = await openView(1, "hostile.html");
  const colors = await countColors(thin.page);
  assert.ok(colors.blue > 1000 && colors.grey > 1000, JSON.stringify(colors));
  await thin.page.evaluate(() => view.setCut({ row: 7, column: 500 }));
  assert.deepStrictEqual(await thin.page.evaluate(() => view.scene.cut), { row: 0, column: 198 });
  const random = await openView(0, "random.html");
  await random.page.evaluate(async () => {
    for (let i = 0; i < model.steps.length; i += 5) {
      await view.show(i);
      view.setCut({ row: i % 6, column: i % 20 });
      view.setChanged(model.steps[i].changed);
    }
    view.turn(100, 100);
    await view.snapshot();
  });
  assert.deepStrictEqual([...thin.messages, ...random.messages], []);
});
