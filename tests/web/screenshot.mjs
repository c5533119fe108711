// usage: node screenshot.mjs PAGE OUTPUT.jpg    takes the picture of docs/in-a-browser.md; playwright-core lies beside it.

import { start, stop, urlOf } from "./browser.mjs";

const [folder, output] = process.argv.slice(2);
const browser = await start();
const page = await browser.newPage({ viewport: { width: 1360, height: 850 }, colorScheme: "dark", locale: "en" });
page.setDefaultTimeout(600_000);
await page.goto(await urlOf(folder));
await page.waitForSelector("body.ready");
await page.click(".sample");
await page.click('.list button:has-text("Spotlight")');
await page.waitForFunction(() => limnPage.stage.isAtRest
  && [...document.querySelectorAll(".style img")].every(({ naturalWidth }) => naturalWidth > 1));
await page.screenshot({ path: output, type: "jpeg", quality: 90 });
await stop();
