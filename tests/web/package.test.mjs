// The package in a browser: scenes have the bytes of the machine's own build, here and in workers.

import assert from "node:assert/strict";
import { after, before, test } from "node:test";

import { start, stop, urlOf } from "./browser.mjs";

let browser;
before(async () => (browser = await start()));
after(stop);

// Runs in the page. The file of scenes is as tests/npm/LitScenes.cpp writes it.
async function countSame() {
  const TYPES = [Uint8Array, Uint16Array, Float32Array];
  const { load } = await import("/browser.mjs");
  const limns = [await load(), await load({ workers: 2 })];
  const all = await (await fetch("/scenes")).arrayBuffer();
  let at = 0;
  const take = (type, length) => {
    const start = at;
    at += length * type.BYTES_PER_ELEMENT;
    return new type(all.slice(start, at));
  };
  const counts = { scenes: 0, same: 0 };
  while (at < all.byteLength) {
    const [width, height, channels, kind, x, y, areaWidth, areaHeight, reliefKind, styleLength] = take(Int32Array, 10);
    const style = take(Uint8Array, styleLength);
    const data = take(TYPES[kind], width * height * channels);
    const relief = reliefKind < 0 ? undefined : take(TYPES[reliefKind], width * height);
    const lit = new Uint8Array(take(TYPES[kind], data.length).buffer);
    for (const limn of limns) {
      const area = { x, y, width: areaWidth, height: areaHeight };
      const got = new Uint8Array((await limn.light({ data, width, height, channels }, style, { relief, area })).data.buffer);
      counts.scenes += 1;
      counts.same += got.length === lit.length && got.every((value, i) => value === lit[i]) ? 1 : 0;
    }
  }
  return counts;
}

test("scenes have the bytes of the machine's own build", async () => {
  const page = await browser.newPage();
  await page.goto(`${await urlOf(process.env.PACKAGE)}package.json`);
  const { scenes, same } = await page.evaluate(countSame);
  console.log(`counted: ${scenes / 2} scenes in Chromium`);
  assert.ok(scenes === 2000 && same === scenes, `${same} of ${scenes}`);
});
