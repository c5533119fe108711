// Pictures from files: a PNG of 16 bits, decoded by sharp, has the pixels that the command gives it.

import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { test } from "node:test";

import { load } from "limn";
import sharp from "sharp";

async function wordsOf(file) {
  const { data, info } = await sharp(file).toColourspace("rgb16").raw({ depth: "ushort" })
    .toBuffer({ resolveWithObject: true });
  const { width, height, channels } = info;
  return { data: new Uint16Array(data.buffer, data.byteOffset, data.length / 2), width, height, channels };
}

test("a PNG of 16 bits is lit as the command lights it", async () => {
  const [width, height, channels] = [160, 120, 3];
  const words = Uint16Array.from({ length: width * height * channels }, (_, i) => (i * 40503) & 0xffff);
  await sharp(words, { raw: { width, height, channels } }).toColourspace("rgb16").png().toFile("in.png");
  execFileSync(process.env.LIMN, ["apply", "--quiet", "--style", "Evening Lamp", "in.png", "-o", "out.png"]);
  const source = await wordsOf("in.png");
  assert.deepEqual(source.data, words, "sharp keeps 16 bits");
  const lit = await (await load()).light(source, "Evening Lamp");
  assert.deepEqual(lit.data, (await wordsOf("out.png")).data);
});
