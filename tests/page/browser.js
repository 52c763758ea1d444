// A browser for the tests of the page: opens pages from disk and keeps whatever the console shows.
"use strict";

const { pathToFileURL } = require("node:url");
const puppeteer = require("puppeteer-core");

// Graphics are drawn by the processor; the sandbox asks for rights that a container does not give.
const FLAGS = ["--no-sandbox", "--disable-dev-shm-usage", "--use-gl=angle", "--use-angle=swiftshader",
  "--enable-unsafe-swiftshader", "--ignore-gpu-blocklist"];

// What graphics drivers say about themselves is none of the page's messages.
const DRIVER_MESSAGES = /GL Driver Message|GPU stall due to ReadPixels/;

async function start_browser(flags = []) {
  return puppeteer.launch({
    executablePath: process.env.QUARN_CHROMIUM || "/usr/bin/chromium",
    headless: true,
    args: [...FLAGS, ...flags],
    defaultViewport: { width: 1280, height: 800 },
  });
}

// Opens a file. `messages` fills with what the console, errors and requests to anywhere else say, as texts.
async function open_page(browser, path) {
  const page = await browser.newPage();
  const messages = [];
  page.on("console", (message) => {
    const text = message.type() + ": " + message.text();
    if (!DRIVER_MESSAGES.test(text)) {
      messages.push(text);
    }
  });
  page.on("pageerror", (error) => messages.push("error: " + error.message));
  page.on("dialog", (dialog) => {
    messages.push("dialog: " + dialog.message());
    dialog.dismiss();
  });
  const url = pathToFileURL(path).href;
  page.on("request", (request) => {
    const target = request.url();
    if (target.split("#")[0] !== url && !/^(data|blob):/.test(target)) {
      messages.push("request: " + target);
    }
  });
  await page.goto(url, { waitUntil: "load" });
  return { page, messages };
}

module.exports = { start_browser, open_page };
