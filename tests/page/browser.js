// A browser for the tests of the page: opens pages from disk and keeps whatever the console shows.
"use strict";

const { pathToFileURL } = require("node:url");
const puppeteer = require("puppeteer-core");

// Graphics are drawn by the processor, which puts the rest of a page together faster without them; the sandbox asks
// for rights that a container does not give.
const FLAGS = ["--no-sandbox", "--disable-dev-shm-usage", "--use-gl=angle", "--use-angle=swiftshader",
  "--enable-unsafe-swiftshader", "--ignore-gpu-blocklist", "--disable-gpu-compositing"];

// What graphics drivers say about themselves is none of the page's messages.
const DRIVER_MESSAGES = /GL Driver Message|GPU stall due to ReadPixels/;

async function start_browser(flags = []) {
  return puppeteer.launch({
    executablePath: process.env.QUARN_CHROMIUM || "/usr/bin/chromium",
    headless: true,
    args: [...FLAGS, ...flags],
  });
}

// Opens a file. `messages` fills with what the console, errors and requests to anywhere else say, as texts.
//   options   width, height: of the window; features: of the medium, as [{name, value}]; hash: behind the address;
//             any_script: scripts that the page's policy forbids may run in it
async function open_page(browser, path, options = {}) {
  const page = await browser.newPage();
  // Before the page is loaded: it need not be laid out and drawn twice.
  await page.setViewport({ width: options.width || 1280, height: options.height || 800 });
  await page.emulateMediaFeatures(options.features || []);
  await page.setBypassCSP(options.any_script === true);
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
  await page.goto(url + (options.hash || ""), { waitUntil: "load" });
  return { page, messages };
}

module.exports = { start_browser, open_page };
