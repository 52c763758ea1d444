// A report as its user has it before him: opened, waited for, and looked at.
"use strict";

const { createHash } = require("node:crypto");
const { open_page } = require("./browser.js");

const WAIT_MS = 60000;

async function ready(page) {
  await page.waitForFunction(() => document.documentElement.dataset.ready === "true", { timeout: WAIT_MS });
}

// Opens a report in a new tab and waits for its first picture. Nothing shines or slides, so that pictures can be
// compared.
//   options   hash: behind its address; width, height: of the window; scheme: "dark"; any_script: as open_page
async function open_report(browser, report, options = {}) {
  const { page, messages } = await open_page(browser, report.page, {
    width: options.width,
    height: options.height || 820,
    hash: options.hash,
    any_script: options.any_script,
    features: [
      { name: "prefers-reduced-motion", value: "reduce" },
      { name: "prefers-color-scheme", value: options.scheme || "light" },
    ],
  });
  await ready(page);
  return { page, messages };
}

// Waits until everything asked for is shown.
async function settled(page) {
  await page.evaluate(async () => {
    await Quarn.page.settled();
    await new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve)));
  });
}

// The drawing in three dimensions as a text that is the same for the same picture.
async function picture(page) {
  await settled(page);
  await page.evaluate(() => Quarn.page.view.whole());
  await settled(page);
  const bytes = await page.evaluate(() => Quarn.page.view.picture().toDataURL());
  return createHash("sha256").update(bytes).digest("hex");
}

const text = (page, id) => page.$eval("#" + id, (element) => element.textContent);

// Moves a slider as a hand does.
async function set_slider(page, id, value) {
  await page.$eval("#" + id, (slider, to) => {
    slider.value = to;
    slider.dispatchEvent(new Event("input", { bubbles: true }));
  }, value);
  await settled(page);
}

// A length of the page in micrometres.
function micrometres(shown) {
  const [, number, unit] = shown.match(/(\u2212?[\d.]+) (nm|\u00b5m)/);
  return Number(number.replace("\u2212", "-")) * (unit === "nm" ? 0.001 : 1);
}

module.exports = { micrometres, open_report, picture, ready, set_slider, settled, text };
