// The pictures of the documentation: node pictures.js PAGE.html FOLDER
"use strict";

const path = require("node:path");
const { start_browser } = require("./browser.js");
const { open_report, settled } = require("./user.js");

const [, , report, folder] = process.argv;

function turn_nearer() {
  Quarn.page.view.turn(45, 30);
  Quarn.page.view.zoom(1.3);
  Quarn.page.view.move(0, -20);
}

// [name, behind the address, width, height, scheme, what to do before, the part of the page or null for all]
const PICTURES = [
  ["page_start", "", 1440, 900, "light", null, null],
  ["page_cut", "#step=26&cut=52,0", 1440, 900, "light", turn_nearer, ".scene"],
  ["page_film", "#step=26&hidden=9", 1440, 900, "light", turn_nearer, ".scene"],
  ["page_step", "#step=24", 1440, 900, "light", () => document.getElementById("changes").click(), ".scene"],
  ["page_profile", "#step=26&scale=2", 1440, 1200, "light", () => document.getElementById("mark").click(), ".profile"],
  ["page_dark", "#step=17&cut=52,60", 1440, 900, "dark", turn_nearer, null],
];

async function take(browser, [name, hash, width, height, scheme, prepare, part]) {
  const { page } = await open_report(browser, { page: path.resolve(report) }, { hash, width, height, scheme });
  if (prepare) {
    await page.evaluate(prepare);
  }
  await settled(page);
  await new Promise((resolve) => setTimeout(resolve, 500));
  const file = path.join(folder, name + ".png");
  await (part ? await page.$(part) : page).screenshot({ path: file });
  await page.close();
}

(async () => {
  const browser = await start_browser();
  for (const picture of PICTURES) {
    await take(browser, picture);
  }
  await browser.close();
})();
