// Pages as they are opened from disk.
"use strict";

const assert = require("node:assert");
const path = require("node:path");
const { after, before, test } = require("node:test");
const { open_page, start_browser } = require("./browser.js");

const SAMPLES = process.env.QUARN_PAGE_SAMPLES;

let browser;
before(async () => {
  browser = await start_browser();
});
after(async () => {
  await browser.close();
});

test("a page opens from disk without a message in the console", async () => {
  const { page, messages } = await open_page(browser, path.join(SAMPLES, "stairs.html"));
  assert.strictEqual(await page.evaluate(() => typeof Quarn), "object");
  assert.strictEqual(await page.evaluate(() => typeof THREE), "object");
  assert.deepStrictEqual(messages, []);
});

test("the page's policy lets no other script run and nothing be fetched", async () => {
  const { page, messages } = await open_page(browser, path.join(SAMPLES, "stairs.html"));
  await page.evaluate(() => {
    const script = document.createElement("script");
    script.textContent = "window.was_run = true;";
    document.body.append(script);
    const holder = document.createElement("div");
    holder.innerHTML = "<img src='data:,' onerror='window.was_run = true'>";
    document.body.append(holder);
    return new Promise((resolve) => setTimeout(resolve, 100));
  });
  const fetched = await page.evaluate(() => fetch("http://127.0.0.1:9/").then(() => true, () => false));
  assert.strictEqual(await page.evaluate(() => window.was_run), undefined);
  assert.strictEqual(fetched, false);
  assert.ok(messages.some((text) => /Content Security Policy/.test(text)), messages.join("\n"));
});
