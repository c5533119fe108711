// The page as its users have it: Chromium, hands and keys. PAGE is the built page, PHOTOGRAPHS the
// bundled pictures, and the command `limn` is on the path.

import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { copyFileSync, mkdtempSync, readdirSync, readFileSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import path from "node:path";
import { after, before, test } from "node:test";
import { gzipSync } from "node:zlib";

import axe from "axe-core";

import { start, stop, urlOf } from "./browser.mjs";

const PHOTOGRAPHS = process.env.PHOTOGRAPHS;
const folder = mkdtempSync(path.join(tmpdir(), "limn-page-"));
let browser;
let address;

before(async () => {
  browser = await start();
  address = await urlOf(process.env.PAGE);
});
after(stop);

async function visit(options = {}) {
  const context = await browser.newContext({ viewport: { width: 1200, height: 800 }, ...options });
  await context.grantPermissions(["clipboard-read", "clipboard-write"]);
  context.setDefaultTimeout(600_000); // a machine may be busy
  const page = await context.newPage();
  page.failures = [];
  page.on("pageerror", (error) => page.failures.push(error.message));
  await page.goto(address);
  await page.waitForSelector("body.ready");
  return page;
}

const recipe = (page) => page.evaluate(() => limnPage.recipe());
const atRest = (page) => page.waitForFunction(() => limnPage.stage.isAtRest);

async function openSample(page, name = "still-life") {
  await page.click(`.sample:has(img[src*="${name}"])`);
  await page.waitForSelector("body.open");
  await atRest(page);
}

async function lampAt(page, index) {
  const box = await page.locator(".lamp").nth(index).boundingBox();
  return [box.x + box.width / 2, box.y + box.height / 2];
}

async function drag(page, [x, y], dx, dy) {
  await page.mouse.move(x, y);
  await page.mouse.down();
  await page.mouse.move(x + dx / 2, y + dy / 2);
  await page.mouse.move(x + dx, y + dy);
  await page.mouse.up();
}

// Pixels of picture files, as the browser decodes both.
async function samePixels(page, one, other) {
  const files = [one, other].map((file) => readFileSync(file).toString("base64"));
  return page.evaluate(async (both) => {
    const [first, second] = await Promise.all(both.map(async (text) => {
      const bytes = Uint8Array.from(atob(text), (letter) => letter.charCodeAt(0));
      const bitmap = await createImageBitmap(new Blob([bytes]));
      const context = new OffscreenCanvas(bitmap.width, bitmap.height).getContext("2d");
      context.drawImage(bitmap, 0, 0);
      return context.getImageData(0, 0, bitmap.width, bitmap.height);
    }));
    return first.width === second.width && first.data.every((value, i) => value === second.data[i]);
  }, files);
}

async function download(page, button) {
  await page.click("#save");
  const [file] = await Promise.all([page.waitForEvent("download"), page.click(button)]);
  const to = path.join(folder, file.suggestedFilename());
  await file.saveAs(to);
  return to;
}

test("what is dragged, typed and chosen is saved as the copied command gives it", async () => {
  const page = await visit();
  const source = path.join(folder, "photo of mine.png");
  execFileSync("limn", ["apply", "--quiet", "--style", "Default", path.join(PHOTOGRAPHS, "portrait.jpg"), "-o", source]);
  await page.setInputFiles("#file", source);
  await page.waitForSelector("body.open");
  await atRest(page);

  const start = await recipe(page);
  await drag(page, await lampAt(page, 0), 60, 35);
  const moved = (await recipe(page)).style.lights[0].center;
  assert.ok(moved[0] > start.style.lights[0].center[0] && moved[1] > start.style.lights[0].center[1], `${moved}`);

  await page.hover('.style:has-text("Stage Spotlight")');
  assert.notDeepEqual((await recipe(page)).style, start.style, "hovering shows");
  await page.mouse.move(600, 300);
  assert.deepEqual((await recipe(page)).style.lights[0].center, moved, "leaving takes back");
  await page.click('.style:has-text("Gold Leaf")');
  const gold = await recipe(page);
  await page.fill('#surface input[type=number][aria-label="Gloss"]', "25");
  await page.keyboard.press("Enter");
  assert.equal((await recipe(page)).style.gloss, 160);
  for (const expected of [gold.style.gloss, start.style.gloss]) {
    await page.click("#undo");
    assert.equal((await recipe(page)).style.gloss, expected);
  }
  await page.click("#redo");
  await page.selectOption("#source", "luminance");
  await atRest(page);

  const saved = await download(page, "#savePng");
  assert.equal(path.basename(saved), "photo of mine-lit.png");
  await page.click("#save");
  await page.click("#copyCommand");
  await page.waitForFunction(() => document.querySelector("#status").textContent.includes("command"));
  const command = await page.evaluate(() => navigator.clipboard.readText());
  const there = mkdtempSync(path.join(folder, "there-"));
  copyFileSync(source, path.join(there, "photo of mine.png"));
  execFileSync("sh", ["-c", command], { cwd: there });
  assert.ok(await samePixels(page, saved, path.join(there, "photo of mine-lit.png")), command);

  const style = await download(page, "#saveStyle");
  assert.doesNotThrow(() => execFileSync("limn", ["style", "show", style]));
  await page.click("#save");
  await page.click("#copyLink");
  await page.waitForFunction(() => document.querySelector("#status").textContent.includes("link"));
  const link = await page.evaluate(() => navigator.clipboard.readText());
  const other = await page.context().newPage();
  await other.goto(link);
  await other.waitForSelector("body.ready");
  assert.deepEqual((await recipe(other)).style.lights, (await recipe(page)).style.lights);
  assert.deepEqual(page.failures, []);
  await page.context().close();
});

test("at 100 % the screen shows the pixels that are saved, before the divider those that were", async () => {
  const page = await visit();
  await openSample(page, "texture");
  await page.selectOption("#source", "luminance");
  await page.click("#zoom");
  await atRest(page);
  await page.click('.style:has-text("Gold Leaf")'); // lit once more, from what the workers have kept
  await atRest(page);
  const saved = await download(page, "#savePng");
  const text = readFileSync(saved).toString("base64");
  const equal = await page.evaluate(async (png) => {
    const bytes = Uint8Array.from(atob(png), (letter) => letter.charCodeAt(0));
    const bitmap = await createImageBitmap(new Blob([bytes]));
    const { left, top, width, height } = limnPage.stage.view.visible(limnPage.stage.size);
    const context = new OffscreenCanvas(width, height).getContext("2d");
    context.drawImage(bitmap, left, top, width, height, 0, 0, width, height);
    const shown = limnPage.stage.litPixels();
    const whole = context.getImageData(0, 0, width, height).data;
    return width > 300 && shown.width === width && shown.data.every((value, i) => value === whole[i]);
  }, text);
  assert.ok(equal);
  assert.equal(await page.locator("canvas:visible").count(), 1, "each one shown is copied for every frame");
  await page.click("#compare");
  assert.equal(await page.locator("canvas:visible").count(), 2);
  await page.focus("#divider");
  await page.keyboard.press("End");
  assert.equal(await page.getAttribute("#divider", "aria-valuenow"), "100");
  await page.context().close();
});

test("keys alone open, move, number, delete and undo", async () => {
  const page = await visit();
  const focusOn = async (selector) => {
    for (let i = 0; i < 80; ++i) {
      if (await page.evaluate((wanted) => document.activeElement?.matches(wanted), selector)) return;
      await page.keyboard.press("Tab");
    }
    assert.fail(`Tab does not reach ${selector}`);
  };
  await focusOn(".sample");
  await page.keyboard.press("Enter");
  await page.waitForSelector("body.open");
  await atRest(page);
  await focusOn(".lamp");
  await page.keyboard.press("Tab");
  const { curLight, lights } = (await recipe(page)).style;
  assert.equal(curLight, 1, "what has the focus is selected");
  await page.keyboard.press("ArrowRight");
  await page.keyboard.press("Shift+ArrowUp");
  const [x, y] = lights[1].center;
  assert.deepEqual((await recipe(page)).style.lights[1].center, [x + 1, y - 10]);
  await page.keyboard.press("Delete");
  assert.equal((await recipe(page)).style.lights.length, lights.length - 1);
  await page.keyboard.press("Control+z");
  await page.keyboard.press("Control+z");
  await page.keyboard.press("Control+z");
  assert.deepEqual((await recipe(page)).style.lights[1].center, [x, y]);
  await focusOn('input[type=number][aria-label="Intensity"]');
  await page.keyboard.type("50");
  await page.keyboard.press("Tab");
  const { style } = await recipe(page);
  assert.equal(style.lights[style.curLight].intensity, 64);
  await page.context().close();
});

test("a lamp beyond the picture is dragged in from the edge", async () => {
  const page = await visit();
  await openSample(page);
  await page.click('.style:has-text("Campfire")');
  const far = (await recipe(page)).style.lights[0].center;
  const [x, y] = await lampAt(page, 0);
  await drag(page, [x, y], 30, -150);
  const { center } = (await recipe(page)).style.lights[0];
  const meant = await page.evaluate(([px, py]) => {
    const { left, top } = document.querySelector("#stage").getBoundingClientRect();
    return limnPage.stage.view.toUnits([px - left, py - top]);
  }, [x + 30, y - 150]);
  assert.ok(far[1] - center[1] > 30 && Math.hypot(center[0] - meant[0], center[1] - meant[1]) < 1, `${center} ${meant}`);
  await page.context().close();
});

test("a finger drags, and a second one does no harm", async () => {
  const page = await visit({ viewport: { width: 390, height: 780 }, hasTouch: true, isMobile: true });
  await openSample(page, "landscape");
  const [x, y] = await lampAt(page, 0);
  const before = (await recipe(page)).style.lights[0].center;
  const client = await page.context().newCDPSession(page);
  const touch = (type, ...points) => client.send("Input.dispatchTouchEvent", {
    type, touchPoints: points.map(([px, py], id) => ({ x: px, y: py, id })),
  });
  await touch("touchStart", [x + 9, y + 9]); // a finger is not that exact
  await touch("touchMove", [x + 29, y + 9]);
  await touch("touchMove", [x + 29, y + 9], [200, 300]);
  await touch("touchMove", [x + 49, y + 9], [240, 300]);
  await touch("touchEnd");
  const after = (await recipe(page)).style.lights[0].center;
  const unit = await page.evaluate(() => limnPage.stage.view.unit);
  assert.ok(Math.abs((after[0] - before[0]) * unit - 40) < 1.5, `${before} ${after}`);
  await page.context().close();
});

test("a file that is no picture changes nothing, nor does a map of another shape", async () => {
  const page = await visit();
  await openSample(page);
  const before = await recipe(page);
  const bad = path.join(folder, "letter.png");
  writeFileSync(bad, "Dear Sir or Madam");
  writeFileSync(path.join(folder, "bad.json"), '{"lights": [{"type": "laser"}]}');
  const cases = [
    ["#file", bad, /letter\.png is no picture/],
    ["#file", path.join(folder, "bad.json"), /bad\.json is no style: .*type/],
    ["#map-file", path.join(PHOTOGRAPHS, "portrait.jpg"), /portrait\.jpg does not have the photograph's shape/],
    ["#map-file", bad, /letter\.png is no picture/],
  ];
  for (const [input, file, message] of cases) {
    await page.setInputFiles(input, file);
    await page.waitForFunction((source) => new RegExp(source).test(document.querySelector("#status").textContent), message.source);
    assert.deepEqual(await recipe(page), before, file);
  }
  await page.setInputFiles("#map-file", path.join(PHOTOGRAPHS, "still-life-height.png"));
  await page.waitForFunction(() => limnPage.recipe().relief === "map");
  assert.deepEqual(page.failures, []);
  await page.context().close();
});

test("it works without a network, and nothing ever leaves", async () => {
  const page = await visit();
  const hosts = new Set();
  const uploads = [];
  page.context().on("request", (request) => {
    const { protocol, host } = new URL(request.url());
    if (!["blob:", "data:"].includes(protocol)) hosts.add(host); // what those name is in the page already
    if (request.method() !== "GET") uploads.push(request.url());
  });
  await page.evaluate(() => navigator.serviceWorker.ready);
  await page.waitForFunction(() => navigator.serviceWorker.controller !== null);
  await page.context().setOffline(true);
  await page.reload();
  await page.waitForSelector("body.ready");
  await openSample(page, "portrait");
  await drag(page, await lampAt(page, 0), 40, 10);
  await atRest(page);
  await page.context().setOffline(false);
  for (const url of ["https://example.org/", "wss://example.org/"]) {
    const refused = await page.evaluate(async (to) => {
      const told = new Promise((resolve) => document.addEventListener("securitypolicyviolation", () => resolve(true), { once: true }));
      try {
        if (to.startsWith("wss")) new WebSocket(to);
        else await fetch(to, { method: "POST", body: "pixels" });
      } catch { /* refused */ }
      return Promise.race([told, new Promise((resolve) => setTimeout(resolve, 60_000, false))]);
    }, url);
    assert.ok(refused, url);
  }
  assert.deepEqual([...hosts], [new URL(address).host]);
  assert.deepEqual(uploads, []);
  await page.context().close();
});

test("all but pictures is 350 KB at most, compressed", () => {
  const files = readdirSync(process.env.PAGE, { withFileTypes: true }).filter((entry) => entry.isFile());
  const sizes = files.map(({ name }) => gzipSync(readFileSync(path.join(process.env.PAGE, name))).length);
  const total = sizes.reduce((sum, size) => sum + size, 0);
  assert.ok(total > 50_000 && total <= 350_000, `${total} bytes`);
});

test("axe finds nothing, in both themes, in German and on a phone", async () => {
  const looks = [
    { colorScheme: "light" }, { colorScheme: "dark", locale: "de-DE" },
    { colorScheme: "dark", viewport: { width: 390, height: 780 } },
  ];
  for (const look of looks) {
    const page = await visit(look);
    for (const step of ["welcome", "open"]) {
      if (step === "open") await openSample(page);
      await page.evaluate(`${axe.source}; undefined`); // a script element is refused by the policy
      const { violations } = await page.evaluate(() => axe.run());
      assert.deepEqual(violations.map(({ id, nodes }) => [id, nodes.map(({ html }) => html)]), [], `${step}, ${JSON.stringify(look)}`);
    }
    await page.context().close();
  }
});
