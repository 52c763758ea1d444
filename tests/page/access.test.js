// The page by keyboard, for a screen reader, on narrow screens and on paper.
"use strict";

const assert = require("node:assert");
const fs = require("node:fs");
const { after, before, test } = require("node:test");
const { start_browser } = require("./browser.js");
const { make_report, remove_report } = require("./report.js");
const { open_report } = require("./user.js");

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

// What has the focus: its id or what names it, and whether it can be seen that it has.
const focused = (page) => page.evaluate(() => {
  const element = document.activeElement;
  const shown = [element, element.parentElement, element.nextElementSibling].filter(Boolean).some((each) => {
    const style = getComputedStyle(each);
    return (style.outlineStyle !== "none" && parseFloat(style.outlineWidth) >= 2) || style.boxShadow !== "none";
  });
  const { id, dataset, name } = element;
  return { tag: element.tagName, name: id || dataset.view || dataset.save || name, shown };
});

test("the keyboard alone reaches everything, and shows where it is", async () => {
  const { page } = await open_report(browser, report);
  const names = [];
  for (let i = 0; i < 120; ++i) {
    await page.keyboard.press("Tab");
    const { tag, name, shown } = await focused(page);
    if (tag === "BODY") {
      break;
    }
    assert.ok(shown, "no focus to be seen on " + tag + " " + name);
    names.push(name);
  }
  for (const name of ["skip", "theme", "print", "help", "left", "reset", "picture", "scale", "view", "previous",
    "play", "next", "step", "cut-row", "cut-y", "cut-column", "cut-x", "face-front", "svg", "csv", "png", "profile", "film-0", "film-1",
    "clear-points", "probe", "surface", "mark", "file"]) {
    assert.ok(names.includes(name), name + " is not reached: " + names.join());
  }
  await page.close();
});

test("steps, cut, films and measures go by keys", async () => {
  const { page } = await open_report(browser, report);
  const store = (field) => page.evaluate((key) => Quarn.page.store[key], field);
  const last = await store("step");
  await page.keyboard.press("Home");
  assert.strictEqual(await store("step"), 0);
  await page.keyboard.press("ArrowRight");
  assert.strictEqual(await store("step"), 1);
  await page.keyboard.press("End");
  assert.strictEqual(await store("step"), last);
  await page.evaluate(() => Quarn.page.settled());
  await page.keyboard.press("k");
  await page.keyboard.press("k");
  await page.keyboard.press("j");
  await page.keyboard.press("l");
  // A hundredth of 200 columns is two of them; of 81 rows it is one.
  assert.deepStrictEqual([await store("row"), await store("column")], [1, 2]);
  // Within a group of choices the arrows choose, and no step changes.
  await page.focus('[name="film-1"]:checked');
  await page.keyboard.press("ArrowRight");
  assert.strictEqual((await store("films"))[1], "faded");
  assert.strictEqual(await store("step"), last);
  await page.focus("#probe");
  await page.keyboard.press("Home");
  await page.focus("#mark");
  await page.keyboard.press("Enter");
  await page.focus("#probe");
  await page.keyboard.press("End");
  await page.focus("#mark");
  await page.keyboard.press(" ");
  const points = await store("points");
  assert.deepStrictEqual(points.map((each) => each.column), [0, 199]);
  assert.match(await page.$eval("#live", (live) => live.textContent), /^Distance /);
  // Letters can be switched off.
  await page.focus("#help");
  await page.keyboard.press("Enter");
  await page.focus("#letters");
  await page.keyboard.press(" ");
  await page.keyboard.press("Escape");
  await page.keyboard.press("k");
  assert.strictEqual(await store("row"), 1);
  await page.close();
});

test("playing goes through the steps and stops at the last one", async () => {
  const { page } = await open_report(browser, report);
  await page.evaluate(() => Quarn.page.store.set({ step: Quarn.page.model.steps.length - 3 }));
  await page.focus("#view");
  await page.keyboard.press(" ");
  assert.strictEqual(await page.$eval("#play", (button) => button.getAttribute("aria-label")), "Pause");
  await page.waitForFunction(() => document.getElementById("play").getAttribute("aria-label") === "Play",
    { timeout: 20000 });
  assert.ok(await page.evaluate(() => Quarn.page.store.step === Quarn.page.model.steps.length - 1));
  await page.close();
});

test("no rule for accessible pages is broken, in light and dark, wide and narrow", async () => {
  const axe = fs.readFileSync(require.resolve("axe-core/axe.min.js"), "utf8");
  for (const [width, scheme] of [[1440, "light"], [1440, "dark"], [390, "light"]]) {
    const { page } = await open_report(browser, report, { width, scheme, any_script: true });
    await page.evaluate(() => document.getElementById("mark").click());
    await page.evaluate(axe);
    const broken = await page.evaluate(async () => {
      const found = await axe.run(document, {
        runOnly: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "wcag22aa", "best-practice"],
      });
      return found.violations.map((rule) => rule.id + ": " + rule.nodes.map((node) => node.target).join(" "));
    });
    assert.deepStrictEqual(broken, []);
    await page.close();
  }
});

test("nothing runs out of a phone's screen", async () => {
  for (const width of [320, 390, 768, 1024]) {
    const { page } = await open_report(browser, report, { width });
    const over = await page.evaluate(() => document.scrollingElement.scrollWidth - innerWidth);
    assert.ok(over <= 0, `${over} pixels too wide at ${width}`);
    await page.close();
  }
});

test("a sheet is printed, also from a dark page", async () => {
  const { page, messages } = await open_report(browser, report, { scheme: "dark" });
  const sheet = await page.pdf({ format: "A4" });
  assert.strictEqual(Buffer.from(sheet).subarray(0, 4).toString("latin1"), "%PDF");
  const parts = await page.$$eval("#sheet h1, #sheet h2", (all) => all.map((each) => each.textContent));
  assert.deepStrictEqual(parts, ["INVERTER", "Profile at y = 0 nm", "Films after this step", "What made it", "Steps"]);
  assert.strictEqual(await page.$$eval("#sheet img", (all) => all.length), 1);
  assert.strictEqual(await page.$$eval("#sheet .long tbody tr", (all) => all.length),
    await page.evaluate(() => Quarn.page.model.steps.length));
  assert.deepStrictEqual(messages, []);
  await page.close();
});
