// The page of a real run as its user finds it, in a browser.
"use strict";

const assert = require("node:assert");
const fs = require("node:fs");
const path = require("node:path");
const { after, before, test } = require("node:test");
const { open_page, start_browser } = require("./browser.js");
const { HOSTILE_NAME, make_report, remove_report } = require("./report.js");
const { micrometres, open_report, picture, ready, set_slider, settled, text } = require("./user.js");

let browser;
let report;
before(async () => {
  report = make_report();
  browser = await start_browser();
});
after(async () => {
  await browser.close();
  remove_report(report);
});

// The ids of films that are drawn in the profile.
const drawn_films = (page) =>
  page.$$eval("#profile [data-film]", (all) => all.map((each) => Number(each.dataset.film)));

test("a walk through the page leaves no message in the console", async () => {
  const { page, messages } = await open_report(browser, report);
  for (const key of ["Home", "ArrowRight", "End", "ArrowLeft", "k", "l", "f", "f", "+", "0", "w", "?"]) {
    await page.keyboard.press(key);
    await settled(page);
  }
  await page.keyboard.press("Escape");
  await page.click("#theme");
  await settled(page);
  assert.deepStrictEqual(messages, []);
  await page.close();
});

test("the page begins plainly, and points out what a step changed from the next one on, until told not to", async () => {
  const { page } = await open_report(browser, report);
  const pressed = () => page.$eval("#changes", (button) => button.getAttribute("aria-pressed"));
  const plain = await picture(page);
  assert.strictEqual(await pressed(), "false");
  await page.keyboard.press("ArrowLeft");
  await settled(page);
  assert.strictEqual(await pressed(), "true");
  await page.keyboard.press("ArrowRight");
  assert.notStrictEqual(await picture(page), plain);
  await page.click("#changes");
  assert.strictEqual(await picture(page), plain);
  await page.close();
});

test("the steps' slider changes the drawing, tells the step and marks its line", async () => {
  const { page } = await open_report(browser, report);
  await page.click("#changes");
  await page.click("#changes");  // the user wants no changes pointed out: pictures differ by the films alone
  const last = await picture(page);
  await set_slider(page, "step", 3);
  assert.notStrictEqual(await picture(page), last);
  assert.strictEqual(await text(page, "step-title"), "Cross section after TRENCH etching");
  assert.match(await page.$eval("#step", (slider) => slider.getAttribute("aria-valuetext")),
    /^Step 3 of \d+: Cross section after TRENCH etching$/);
  assert.match(await text(page, "step-line"), /^7 {2}etch -name TRENCH/);
  assert.match(await page.$eval("#file [aria-current]", (line) => line.textContent), /^etch -name TRENCH/);
  assert.match(await text(page, "live"), /^Step 3 of/);
  await page.focus("body");
  await page.keyboard.press("End");
  assert.strictEqual(await picture(page), last);
  await page.close();
});

test("the note of a film tells what the step did to it", async () => {
  const { page } = await open_report(browser, report, { hash: "#step=2" });
  const notes = () => page.$$eval("#films li:not([hidden])", (rows) =>
    rows.map((row) => [row.querySelector(".film-name").textContent, row.dataset.note]));
  assert.deepStrictEqual(await notes(), [["PR", "new"], ["SILICON", ""], ["SUBSTRATE", ""]]);
  await set_slider(page, "step", 4);
  assert.deepStrictEqual(await notes(), [["PR", "removed"], ["SILICON", ""], ["SUBSTRATE", ""]]);
  // A film is changed where its heights are others than before.
  for (const step of [3, 6, 9]) {
    await set_slider(page, "step", step);
    const changed = await page.evaluate(async (index) => {
      const { model } = Quarn.page;
      const [before, here] = [await model.heights(index - 1), await model.heights(index)];
      const differs = (a, b) => a.some((height, i) => height !== b[i]);
      return here.filter((each) => {
        const old = before.find((other) => other.film === each.film);
        return old && (differs(old.top, each.top) || differs(old.bottom, each.bottom));
      }).map((each) => model.films[each.film].name).reverse();
    }, step);
    assert.ok(changed.length > 0);
    assert.deepStrictEqual((await notes()).filter((each) => each[1] === "changed").map((each) => each[0]), changed);
  }
  await page.close();
});

test("a film is faded, hidden, shown alone and shown again", async () => {
  const { page } = await open_report(browser, report);
  const whole = await picture(page);
  const id = await page.evaluate(() => Quarn.page.model.films.findIndex((film) => film.name === "OXIDE"));
  const seen = new Set([whole]);
  for (const state of ["faded", "hidden"]) {
    await page.click(`#films [name="film-${id}"][value="${state}"]`);
    const next = await picture(page);
    assert.ok(!seen.has(next), state);
    seen.add(next);
  }
  await page.click(`#films li[data-film="${id}"] button`);
  assert.ok(!seen.has(await picture(page)), "alone");
  assert.deepStrictEqual(await page.$$eval("#films [value=shown]:checked", (all) => all.map((each) => each.name)),
    ["film-" + id]);
  await page.click("#all-films");
  assert.strictEqual(await picture(page), whole);
  await page.close();
});

test("heights and thicknesses at the measured place are those of the program's own dump", async () => {
  const { page } = await open_report(browser, report);
  const places = [[0, 0], [40, 0], [60, 37], [120, 37], [60, 79], [180, 79]];
  for (const [column, row] of places) {
    const points = report.dump.filter((each) => each.column === column && each.row === row);
    assert.ok(points.length > 3);
    await set_slider(page, "cut-row", row);
    await set_slider(page, "probe", column);
    const there = points.filter((each) => each.top > each.bottom);
    const surfaces = await page.$$eval("#surface option", (all) => all.map((each) => each.textContent));
    const tops = surfaces.filter((each) => each.startsWith("Top of "))
      .map((each) => micrometres(each.split(" \u00b7 ")[1]));
    // The page shows hundredths of a nanometre.
    const shown = there.map((each) => each.top).reverse();
    assert.strictEqual(tops.length, shown.length);
    tops.forEach((top, i) => assert.ok(Math.abs(top - shown[i]) < 0.0000056, `${top} ${shown[i]}`));
    for (const each of points) {
      const cell = await page.$eval(`#films li[data-film="${each.slot}"] .film-thickness`, (span) => span.textContent);
      assert.ok(cell === "\u2013" ? each.top === each.bottom : Math.abs(micrometres(cell) - each.thickness) < 0.000051,
        `${cell} ${each.thickness}`);
    }
  }
  await page.close();
});

test("what is under the pointer is measured in the heights", async () => {
  const { page } = await open_report(browser, report);
  const box = await page.$eval("#view", (view) => view.getBoundingClientRect().toJSON());
  let measured = 0;
  for (const [u, v] of [[0.5, 0.35], [0.5, 0.45], [0.4, 0.6], [0.6, 0.7], [0.45, 0.8]]) {
    await page.mouse.move(box.x + u * box.width, box.y + v * box.height);
    await settled(page);
    const words = await text(page, "readout");
    const match = words.match(/^x (.*), y (.*), height (.*?): (.*), (.*) thick$/);
    if (match === null) {
      continue;
    }
    ++measured;
    const [x, y, z, thickness] = [1, 2, 3, 5].map((i) => micrometres(match[i]));
    const fits = await page.evaluate((film, at) => {
      const { model, store } = Quarn.page;
      const index = Math.round(at.y / model.spacing) * model.columns + Math.round(at.x / model.spacing);
      const heights = store.heights.find((each) => model.films[each.film].name === film);
      const um = (quanta) => quanta * model.quantum;
      const [bottom, top] = [um(heights.bottom[index]), um(heights.top[index])];
      return Math.abs(top - bottom - at.thickness) < 6e-6 && at.z > bottom - 6e-6 && at.z < top + 6e-6;
    }, match[4], { x, y, z, thickness });
    assert.ok(fits, words);
  }
  assert.ok(measured >= 3, "the section is not where it should be");
  await page.close();
});

test("two clicks give a distance, Escape clears it", async () => {
  const { page } = await open_report(browser, report);
  const box = await page.$eval("#view", (view) => view.getBoundingClientRect().toJSON());
  await page.mouse.click(box.x + 0.4 * box.width, box.y + 0.55 * box.height);
  await page.mouse.click(box.x + 0.6 * box.width, box.y + 0.55 * box.height);
  const points = await page.evaluate(() => Quarn.page.store.points);
  assert.strictEqual(points.length, 2);
  const way = Math.hypot(points[1].x - points[0].x, points[1].y - points[0].y, points[1].z - points[0].z);
  const shown = await text(page, "points");
  assert.ok(Math.abs(micrometres(shown.split("distance ")[1]) - way) < 0.00001, shown);
  await page.keyboard.press("Escape");
  assert.strictEqual(await text(page, "points"), "");
  await page.close();
});

test("a moved cut shows the films that are there", async () => {
  const { page } = await open_report(browser, report);
  const front = await picture(page);
  const columns = [...new Set(report.dump.map((each) => each.column))];
  for (const row of [0, 30, 79]) {
    await set_slider(page, "cut-row", row);
    const there = new Set(report.dump.filter((each) => each.row === row && each.top > each.bottom)
      .map((each) => each.slot));
    const drawn = new Set(await drawn_films(page));
    // A dump has every twentieth column: the line may have more films than that, never fewer.
    assert.ok([...there].every((slot) => drawn.has(slot)), `${[...there]} ${[...drawn]}`);
    const expected = await page.evaluate((at) => {
      const { model, store } = Quarn.page;
      const has = (each) => each.top.some((top, i) => Math.floor(i / model.columns) === at && top > each.bottom[i]);
      return store.heights.filter(has).map((each) => each.film);
    }, row);
    assert.deepStrictEqual([...drawn], expected);
  }
  assert.ok(columns.length > 5);
  assert.notStrictEqual(await picture(page), front);
  await page.close();
});

test("the handle of the drawing and the slider are the same cut", async () => {
  const { page } = await open_report(browser, report);
  const at = await page.evaluate(() => {
    const { element, overlay } = Quarn.page.view;
    const box = element.getBoundingClientRect();
    const [row] = overlay.handles.filter((handle) => handle.kind === "row");
    return { x: box.x + row.x, y: box.y + row.y };
  });
  await page.mouse.move(at.x, at.y);
  await page.mouse.down();
  await page.mouse.move(at.x, at.y - 40, { steps: 4 });
  await page.mouse.up();
  await settled(page);
  const row = await page.evaluate(() => Quarn.page.store.row);
  assert.ok(row > 3, String(row));
  assert.strictEqual(await page.$eval("#cut-row", (slider) => slider.value), String(row));
  assert.ok(Math.abs(micrometres(await text(page, "profile-title")) - row * 0.04) < 1e-4);
  await page.close();
});

// Clicks and returns the bytes of the file that is saved, with its name.
async function download(page, folder, selector) {
  fs.mkdirSync(folder, { recursive: true });
  const session = await browser.target().createCDPSession();
  await session.send("Browser.setDownloadBehavior", {
    behavior: "allow", downloadPath: folder, eventsEnabled: true, browserContextId: page.browserContext().id,
  });
  const done = new Promise((resolve) => {
    session.on("Browser.downloadProgress", (event) => event.state === "completed" && resolve());
  });
  await page.click(selector);
  await done;
  await session.detach();
  const [name] = fs.readdirSync(folder);
  return { name, bytes: fs.readFileSync(path.join(folder, name)) };
}

test("the profile is saved as a table that equals the dump, as a drawing and as a picture", async () => {
  const { page, messages } = await open_report(browser, report, { hash: "#cut=79,0" });
  const table = await download(page, path.join(report.folder, "csv"), '[data-save="csv"]');
  assert.match(table.name, /^INVERTER_step_\d+_y_3\.16_um\.csv$/);
  const [head, ...rows] = table.bytes.toString("utf8").trimEnd().split("\n").map((row) => row.split(","));
  assert.strictEqual(head[0], "x_um");
  assert.ok(head.includes(HOSTILE_NAME + " bottom_nm"), head.join());
  assert.strictEqual(rows.length, 200);
  const films = await page.evaluate(() => Quarn.page.store.heights.map((each) => each.film));
  assert.strictEqual(head.length, 1 + 2 * films.length);
  for (const each of report.dump.filter((point) => point.row === 79)) {
    const at = 1 + 2 * films.indexOf(each.slot);
    const row = rows[each.column].map(Number);
    assert.ok(Math.abs(row[0] - each.column * 0.04) < 1e-6);
    const errors = [row[at] / 1000 - each.bottom, row[at + 1] / 1000 - each.top].map(Math.abs);
    assert.ok(Math.max(...errors) < 1.1e-6, row.join());
  }

  const drawing = (await download(page, path.join(report.folder, "svg"), '[data-save="svg"]')).bytes.toString("utf8");
  const { tag, films: paths, texts } = await page.evaluate((source) => {
    const root = new DOMParser().parseFromString(source, "image/svg+xml").documentElement;
    return {
      tag: root.tagName, films: root.querySelectorAll("[data-film]").length,
      texts: [...root.querySelectorAll("text")].map((each) => each.textContent),
    };
  }, drawing);
  assert.strictEqual(tag, "svg");
  assert.ok(paths >= 4);
  assert.ok(texts.some((each) => each.includes("INVERTER")) && texts.includes("x in \u00b5m"), texts.join("|"));

  const { bytes } = await download(page, path.join(report.folder, "png"), '[data-save="png"]');
  assert.strictEqual(bytes.subarray(1, 4).toString("latin1"), "PNG");
  assert.strictEqual(bytes.readUInt32BE(16), 1920);
  assert.deepStrictEqual(messages, []);
  await page.close();
});

test("the address keeps step, cut, films and scale over a reload", async () => {
  const { page } = await open_report(browser, report);
  await set_slider(page, "step", 5);
  await set_slider(page, "cut-row", 12);
  await set_slider(page, "cut-column", 34);
  await page.click('#films [name="film-1"][value="hidden"]');
  await page.$eval("#scale", (field) => {
    field.value = "2.5";
    field.dispatchEvent(new Event("change"));
  });
  await page.click("#face-side");
  await page.waitForFunction(() => location.hash.includes("profile"));
  assert.strictEqual(await page.evaluate(() => location.hash),
    "#step=5&cut=12,34&hidden=1&scale=2.5&profile=side");
  const before_reload = await page.$eval("#profile svg", (svg) => svg.outerHTML);
  await page.reload();
  await ready(page);
  await settled(page);
  assert.strictEqual(await page.$eval("#step", (slider) => slider.value), "5");
  assert.strictEqual(await page.$eval("#cut-row", (slider) => slider.value), "12");
  assert.strictEqual(await page.$eval("#profile svg", (svg) => svg.outerHTML), before_reload);
  await page.close();
});

test("hostile names are texts and nothing else", async () => {
  const { page, messages } = await open_report(browser, report);
  assert.ok((await page.$$eval(".film-name", (all) => all.map((each) => each.textContent))).includes(HOSTILE_NAME));
  assert.strictEqual(await page.$$eval("img, [onerror], main script, main b", (all) => all.length), 0);
  await page.keyboard.press("End");
  await page.evaluate(() => dispatchEvent(new Event("beforeprint")));
  assert.strictEqual(await page.$$eval("[onerror], #sheet script, #sheet b", (all) => all.length), 0);
  assert.match(await text(page, "sheet"), /onerror=alert/);
  assert.deepStrictEqual(messages, []);
  await page.close();
});

test("without graphics everything else works", async () => {
  const plain = await start_browser(["--disable-3d-apis"]);
  try {
    const { page } = await open_report(plain, report);
    assert.ok(await page.$eval("#notice", (notice) => !notice.hidden && notice.textContent.length > 20));
    await page.keyboard.press("Home");
    await settled(page);
    assert.strictEqual(await text(page, "step-title"), await page.evaluate(() => Quarn.page.model.steps[0].title));
    await page.keyboard.press("End");
    await settled(page);
    assert.ok((await drawn_films(page)).length > 3);
    await page.focus("#profile");
    const box = await page.$eval("#profile svg", (svg) => svg.getBoundingClientRect().toJSON());
    await page.mouse.click(box.x + box.width / 2, box.y + box.height * 0.7);
    const marked = await text(page, "points");
    assert.match(marked, /^Ax 3\.\d+ \u00b5m {2}y 0 nm/);
    await page.evaluate(() => dispatchEvent(new Event("beforeprint")));
    assert.strictEqual(await page.$$eval("#sheet svg", (all) => all.length), 1);
  } finally {
    await plain.close();
  }
});

// The report with something of it changed, as a file beside it.
function damaged(name, change) {
  const page = path.join(report.folder, name);
  fs.writeFileSync(page, change(fs.readFileSync(report.page, "utf8")));
  return page;
}

test("a page that was damaged says so in words", async () => {
  const { page } = await open_page(browser, damaged("facts.html", (html) => html.replace('"columns":', '"columns" ')));
  await page.waitForFunction(() => !document.getElementById("problem").hidden);
  assert.match(await text(page, "problem"), /^This page could not be opened: .*damaged/);
  await page.close();
});

test("a step that was damaged says so, and the others are there", async () => {
  const broken = damaged("step.html", (html) => html.replace(/(id="quarn-step-2">.{40}).{4}/, "$1AAAA"));
  const { page } = await open_report(browser, { page: broken }, { hash: "#step=1" });
  assert.strictEqual(await page.$eval("#problem", (element) => element.hidden), true);
  await set_slider(page, "step", 2);
  assert.match(await text(page, "problem"), /^This step cannot be shown: .*damaged/);
  assert.strictEqual(await page.$eval("#problem", (element) => element.hidden), false);
  await set_slider(page, "step", 1);
  assert.strictEqual(await page.$eval("#problem", (element) => element.hidden), true);
  assert.strictEqual(await page.evaluate(() => Quarn.page.store.shownStep), 1);
  await page.close();
});

test("nothing moves while the pointer does", async () => {
  const { page } = await open_report(browser, report);
  const boxes = () => page.evaluate(() => ["view", "step", "profile", "films"].map((id) => {
    const { x, y, width, height } = document.getElementById(id).getBoundingClientRect();
    return [x, y, width, height];
  }));
  const still = await boxes();
  const view = await page.$eval("#view", (element) => element.getBoundingClientRect().toJSON());
  await page.mouse.move(view.x + view.width / 2, view.y + view.height * 0.6);
  await settled(page);
  assert.match(await text(page, "readout"), /thick$/);
  assert.deepStrictEqual(await boxes(), still);
  await page.close();
});
