// Names with markup and scripts in them, in the page as a browser shows it.
"use strict";

const assert = require("node:assert");
const { after, before, test } = require("node:test");
const { open_page, start_browser } = require("./browser.js");
const { sample_path } = require("./page_file.js");
const { ready } = require("./user.js");

let browser;
before(async () => {
  browser = await start_browser();
});
after(async () => {
  await browser.close();
});

test("names with markup make no elements and run no script", async () => {
  const { page, messages } = await open_page(browser, sample_path("hostile.html"));
  await ready(page);
  assert.strictEqual(await page.evaluate(() => window.was_run), undefined);
  assert.strictEqual(await page.evaluate(() => document.querySelectorAll("[onerror]").length), 0);
  const model_name = await page.evaluate(async () => (await Quarn.Model.open()).films[1].name);
  assert.ok(model_name.startsWith("</script><script>"), model_name);
  assert.ok((await page.title()).length > 0);
  assert.deepStrictEqual(messages, []);
});

test("the page as a browser reads it has the scripts and data that were written, and no more", async () => {
  const { page } = await open_page(browser, sample_path("hostile.html"));
  const kinds = await page.evaluate(() => [...document.scripts].map((script) => script.id || script.type));
  const data = ["quarn-license", "quarn-facts", "quarn-step-0", "quarn-step-1"];
  assert.deepStrictEqual(kinds.slice(0, 4), data);
  assert.deepStrictEqual(kinds.slice(4).filter((kind) => kind !== ""), []);
});
