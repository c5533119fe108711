// usage: node measure.mjs PAGE PHOTOGRAPH [SECONDS]    playwright-core lies beside it.
// Says how many frames a second are lit while one of four lights is dragged on that photograph in a window of 1440 by 900,
// flat and with relief, and what one costs the processor in each of the browser's threads: on a busy machine that says more.

import { readdirSync, readFileSync } from "node:fs";

import { start, stop, urlOf } from "./browser.mjs";

const [folder, photograph, seconds = "5"] = process.argv.slice(2);
const browser = await start();
const page = await browser.newPage({ viewport: { width: 1440, height: 900 } });
page.setDefaultTimeout(600_000);
await page.goto(await urlOf(folder));
await page.waitForSelector("body.ready");
await page.setInputFiles("#file", photograph);
await page.waitForSelector("body.open");
const system = await browser.newBrowserCDPSession();

// Milliseconds that each thread has run, by its process and name; those of one name together.
async function spent() {
  const { processInfo } = await system.send("SystemInfo.getProcessInfo");
  const times = new Map();
  for (const { type, id } of processInfo)
    for (const thread of readdirSync(`/proc/${id}/task`)) {
      const of = (file) => readFileSync(`/proc/${id}/task/${thread}/${file}`, "utf8");
      try {
        const name = `${type} ${id}, ${of("comm").trim().replace(/\d+$/, "")}`;
        times.set(name, (times.get(name) ?? 0) + Number(of("schedstat").split(" ")[0]) / 1e6);
      } catch { /* it has ended */ }
    }
  return times;
}

const atRest = () => page.waitForFunction(() => limnPage.stage.isAtRest);
const lights = [
  { type: "spot", center: [-40, -10] }, { type: "omni", center: [30, 20], color: [65535, 42405, 0] },
  { type: "spot", center: [50, -30], color: [44461, 55512, 59110] }, { type: "omni", center: [-60, 40], intensity: 20 },
];
const style = { name: "style.json", mimeType: "application/json", buffer: Buffer.from(JSON.stringify({ lights })) };
await page.setInputFiles("#file", style);
await page.waitForFunction(() => limnPage.recipe().style.lights.length === 4);
for (const relief of ["none", "auto"]) {
  await page.selectOption("#source", relief);
  await page.waitForFunction(() => [...document.querySelectorAll(".style img")].every(({ naturalWidth }) => naturalWidth > 1));
  await atRest();
  const box = await page.locator(".lamp").first().boundingBox();
  const [x, y] = [box.x + box.width / 2, box.y + box.height / 2];
  await page.mouse.move(x, y);
  await page.mouse.down();
  const before = await page.evaluate(() => {
    globalThis.painted = 0;
    const count = () => requestAnimationFrame(() => ((globalThis.painted += 1), count()));
    if (!globalThis.counting) count();
    globalThis.counting = true;
    return limnPage.stage.frames;
  });
  const spentBefore = await spent();
  const from = performance.now();
  let moves = 0;
  while (performance.now() - from < seconds * 1000) {
    moves += 1;
    await page.mouse.move(x + 60 * Math.sin(moves / 9), y + 40 * Math.cos(moves / 7));
  }
  const took = (performance.now() - from) / 1000;
  const { frames, frameMs, painted, shown } = await page.evaluate(() =>
    ({ ...limnPage.stage, painted: globalThis.painted, shown: document.querySelector("#lit").width }));
  const spentAfter = await spent();
  await page.mouse.up();
  const lit = frames - before;
  console.log(`relief ${relief}: ${lit} frames lit, ${painted} painted, ${moves} moves in ${took.toFixed(1)} s; the last frame ` +
    `took ${frameMs.toFixed(1)} ms at ${shown} pixels' width`);
  const costs = [...spentAfter].map(([name, after]) => [name, (after - (spentBefore.get(name) ?? 0)) / lit]);
  for (const [name, cost] of costs.sort(([, a], [, b]) => b - a))
    if (cost > 0.5) console.log(`  ${cost.toFixed(1).padStart(8)} ms of the processor a frame: ${name}`);
  await atRest();
}
await stop();
