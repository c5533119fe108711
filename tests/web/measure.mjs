// usage: node measure.mjs PAGE PHOTOGRAPH [SECONDS]    playwright-core lies beside it.
// Says how many frames a second are lit while one of four lights is dragged on that photograph in a window of 1440 by 900, flat and with relief, and what one costs the processor in each of the browser's processes: on a busy
// machine that says more.

import { start, stop, urlOf } from "./browser.mjs";

const [folder, photograph, seconds = "5"] = process.argv.slice(2);
const browser = await start();
const page = await browser.newPage({ viewport: { width: 1440, height: 900 } });
page.setDefaultTimeout(300_000);
await page.goto(await urlOf(folder));
await page.waitForSelector("body.ready");
await page.setInputFiles("#file", photograph);
await page.waitForSelector("body.open");
const system = await browser.newBrowserCDPSession();
const spent = async () => {
  const { processInfo } = await system.send("SystemInfo.getProcessInfo");
  return Object.fromEntries(processInfo.map(({ type, id, cpuTime }) => [`${type} ${id}`, cpuTime]));
};
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
  await page.waitForFunction(() => [...document.querySelectorAll(".style canvas")].every(({ width }) => width > 1));
  await atRest();
  const box = await page.locator(".lamp").first().boundingBox();
  const [x, y] = [box.x + box.width / 2, box.y + box.height / 2];
  await page.mouse.move(x, y);
  await page.mouse.down();
  const before = await page.evaluate(() => limnPage.stage.frames);
  const spentBefore = await spent();
  const from = performance.now();
  let moves = 0;
  while (performance.now() - from < seconds * 1000) {
    moves += 1;
    await page.mouse.move(x + 60 * Math.sin(moves / 9), y + 40 * Math.cos(moves / 7));
  }
  const took = (performance.now() - from) / 1000;
  const { frames, frameMs, shownWidth } = await page.evaluate(() =>
    ({ ...limnPage.stage, shownWidth: document.querySelector("#lit").width }));
  const spentAfter = await spent();
  await page.mouse.up();
  const lit = frames - before;
  console.log(`relief ${relief}: ${(lit / took).toFixed(1)} frames a second, ${(moves / took).toFixed(1)} moves; the last ` +
    `took ${frameMs.toFixed(1)} ms at ${shownWidth} pixels' width`);
  for (const [name, after] of Object.entries(spentAfter)) {
    const cost = ((after - (spentBefore[name] ?? 0)) * 1000) / lit;
    if (cost > 0.1) console.log(`  ${name}: ${cost.toFixed(2)} ms of the processor a frame`);
  }
  await atRest();
}
await stop();
