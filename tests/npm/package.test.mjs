// The package as its users have it: installed from the packed file into an empty folder. The file of
// scenes that LIT_SCENES names says what the machine's own build makes of each.

import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { readdirSync, readFileSync } from "node:fs";
import { createRequire } from "node:module";
import path from "node:path";
import { test } from "node:test";
import { pathToFileURL } from "node:url";
import { gzipSync } from "node:zlib";

import { load } from "limn";

const TYPES = [Uint8Array, Uint16Array, Float32Array];
const STYLE = { lights: [{ type: "omni", center: [20, -30] }, { type: "spot", center: [-40, 30] }] };

function* scenes() {
  const file = readFileSync(process.env.LIT_SCENES);
  const all = file.buffer.slice(file.byteOffset, file.byteOffset + file.length);
  for (let at = 0, number = 0; at < all.byteLength; ++number) {
    const take = (type, length) => {
      const start = at;
      at += length * type.BYTES_PER_ELEMENT;
      return new type(all.slice(start, at));
    };
    const [width, height, channels, kind, x, y, areaWidth, areaHeight, reliefKind, styleLength] =
      take(Int32Array, 10);
    const style = take(Uint8Array, styleLength);
    const data = take(TYPES[kind], width * height * channels);
    const relief = reliefKind < 0 ? undefined : take(TYPES[reliefKind], width * height);
    const lit = take(TYPES[kind], data.length);
    const area = { x, y, width: areaWidth, height: areaHeight };
    yield { number, style, image: { data, width, height, channels }, options: { relief, area }, lit };
  }
}

// Equal bit for bit, NaN and the sign of zero too.
function same(actual, expected, what) {
  assert.equal(actual.constructor, expected.constructor, what);
  const bytes = (array) => Buffer.from(array.buffer, array.byteOffset, array.byteLength);
  assert.ok(bytes(actual).equals(bytes(expected)), `${what}: other bytes`);
}

function noise(type, width, height, channels) {
  const data = new type(width * height * channels);
  for (let i = 0, state = 7; i < data.length; ++i)
    data[i] = (state = (Math.imul(state, 1664525) + 1013904223) >>> 0) >>> 24;
  return { data, width, height, channels };
}

const code = (name) => ({ name: "LimnError", code: `LIMN_${name}` });

test("scenes have the bytes of the machine's own build, here and in workers", async () => {
  const here = await load();
  const pool = await load({ workers: 2 });
  let count = 0;
  let changed = 0;
  for (const { number, style, image, options, lit } of scenes()) {
    const source = image.data.slice();
    same((await here.light(image, style, options)).data, lit, `scene ${number}`);
    const json = number % 2 === 0 ? here.style(style) : JSON.stringify(here.style(style));
    same((await pool.light(image, json, options)).data, lit, `scene ${number}, in workers`);
    same(image.data, source, `scene ${number}, its source`);
    count += 1;
    changed += Buffer.from(source.buffer).equals(Buffer.from(lit.buffer)) ? 0 : 1;
  }
  console.log(`counted: ${count} scenes on wasm`);
  assert.ok(count === 1000 && changed > count * 0.9, `${count} scenes, ${changed} of them changed`);
});

test("bands, workers and kinds of array make no difference", async () => {
  const here = await load();
  const pool = await load({ workers: 3 });
  const image = noise(Uint8Array, 300, 700, 4); // several bands
  const style = { ...STYLE, bumpChannel: 4 };
  const whole = await here.light(image, style);
  same((await pool.light(image, style)).data, whole.data, "workers");
  const clamped = { ...image, data: new Uint8ClampedArray(image.data), channels: undefined };
  same((await here.light(clamped, style)).data, new Uint8ClampedArray(whole.data), "clamped");
  // A Buffer's slices are views of it, and it may lie anywhere in its memory.
  const memory = Buffer.alloc(image.data.length + 3);
  memory.set(image.data, 3);
  same((await pool.light({ ...image, data: memory.subarray(3) }, style)).data, whole.data, "Buffer");
  same(new Uint8Array(memory.subarray(3)), image.data, "the Buffer itself");
  const relief = image.data.filter((_, i) => i % 4 === 3);
  same((await here.light(image, STYLE, { relief })).data, whole.data, "relief as a plane");
  const [one, two] = await Promise.all([pool.light(image, style), pool.light(image, "Evening Lamp")]);
  same(one.data, whole.data, "two at once");
  same(two.data, (await here.light(image, "evening lamp")).data, "the other of the two");
});

test("an ImageData comes back as one", async () => {
  globalThis.ImageData ??= class ImageData {
    constructor(data, width, height) {
      Object.assign(this, { data, width, height, colorSpace: "srgb" });
    }
  };
  const { data } = noise(Uint8ClampedArray, 40, 30, 4);
  const lit = await (await load()).light(new ImageData(data, 40, 30), STYLE);
  assert.ok(lit instanceof ImageData);
  assert.equal(lit.data.constructor, Uint8ClampedArray);
  assert.deepEqual([lit.width, lit.height], [40, 30]);
});

test("bad arguments are errors with a code and a sentence", async () => {
  const limn = await load();
  const image = noise(Uint8Array, 20, 10, 3);
  const cases = [
    [{ ...image, data: [1, 2, 3] }, STYLE, {}, "BAD_ARGUMENT", /^data: it is no/],
    [{ ...image, data: new Int16Array(600) }, STYLE, {}, "BAD_ARGUMENT", /^data: it is no/],
    [undefined, STYLE, {}, "BAD_ARGUMENT", /^data/],
    [{ ...image, width: 19 }, STYLE, {}, "BAD_ARGUMENT", /length is 600, not 19 × 10 × 3/],
    [{ ...image, width: 20.5 }, STYLE, {}, "BAD_ARGUMENT", /^width: it is not a whole number/],
    [{ ...image, width: NaN }, STYLE, {}, "BAD_ARGUMENT", /^width/],
    [{ ...image, width: 2 ** 32 + 20 }, STYLE, {}, "BAD_ARGUMENT", /^width/],
    [{ ...image, width: -20, height: -10 }, STYLE, {}, "BAD_ARGUMENT", /^width: -20 is not between/],
    [noise(Uint8Array, 40000, 1, 3), STYLE, {}, "BAD_ARGUMENT", /^width: 40000 is not between/],
    [noise(Uint8Array, 20, 10, 2), STYLE, {}, "BAD_ARGUMENT", /^channels: 2 is not between/],
    [image, STYLE, { area: { x: 0, y: 0, width: 0, height: 0 } }, "BAD_ARGUMENT", /^area/],
    [image, STYLE, { area: { x: 15, y: 0, width: 6, height: 5 } }, "BAD_ARGUMENT", /^area.width: 6/],
    [image, STYLE, { area: { x: 0 } }, "BAD_ARGUMENT", /^area.y/],
    [image, STYLE, { relief: new Uint8Array(199) }, "BAD_ARGUMENT", /^relief: its length is 199/],
    [image, STYLE, { relief: new Float64Array(200) }, "BAD_ARGUMENT", /^relief/],
    [image, undefined, {}, "BAD_ARGUMENT", /^style/],
    [image, "No Such Style", {}, "BAD_STYLE", /there is no such style/],
    [image, "", {}, "BAD_STYLE", /there is no such style/],
    [image, '{"glos": 1}', {}, "BAD_STYLE", /glos/],
    [image, { lights: [] }, {}, "BAD_STYLE", /./],
    [image, new Uint8Array([1, 2, 3]), {}, "BAD_STYLE", /./],
    [image, new Uint8Array(0), {}, "BAD_STYLE", /./],
    [image, new Uint8Array(2 << 20), {}, "BAD_STYLE", /longer than/],
  ];
  for (const [picture, style, options, name, message] of cases)
    await assert.rejects(limn.light(picture, style, options), { ...code(name), message });
  await limn.light(image, STYLE); // it works on
  await assert.rejects(load({ workers: -1 }), code("BAD_ARGUMENT"));
  await assert.rejects(load({ wasm: new Uint8Array([0, 1]) }), WebAssembly.CompileError);
  await assert.rejects(createRequire(import.meta.url)("limn").load({ workers: 0.5 }), code("BAD_ARGUMENT"));
});

test("module and JavaScript are 110 KB at most, compressed", () => {
  const folder = path.dirname(createRequire(import.meta.url).resolve("limn"));
  const parts = readdirSync(folder).filter((name) => /\.(wasm|[mc]js)$/.test(name));
  const total = gzipSync(Buffer.concat(parts.map((name) => readFileSync(path.join(folder, name)))), { level: 9 }).length;
  assert.ok(total > 50_000 && total <= 110 * 1024, `${total} bytes`);
});

test("memory that is not there is an error, and the next band is lit", async () => {
  const folder = path.dirname(createRequire(import.meta.url).resolve("limn"));
  const { Engine } = await import(pathToFileURL(path.join(folder, "engine.mjs")));
  const wasm = readFileSync(path.join(folder, "limn.wasm"));
  const engine = await Engine.start(await WebAssembly.compile(wasm));
  const area = { x: 0, y: 0, width: 0, height: 0 };
  const job = { id: 1, style: { name: "Default" }, width: 20, height: 10, channels: 3, area };
  const rows = { first: 0, last: 10, relief: null };
  // More than the module's memory may grow to, and more than its sizes can say.
  for (const byteLength of [2147000000, 5e9])
    assert.throws(() => engine.light(job, { ...rows, pixels: { byteLength } }), code("NO_MEMORY"));
  const { data } = noise(Uint8Array, 20, 10, 3);
  const before = data.slice();
  engine.light(job, { ...rows, pixels: data });
  assert.notDeepEqual(data, before);
});

test("idle workers keep no program alive", () => {
  const program = `
    import { load } from "limn";
    const limn = await load({ workers: 2 });
    await limn.light({ data: new Uint8Array(300), width: 10, height: 10 }, "Default"); // one band, for one of them`;
  execFileSync(process.execPath, ["--input-type=module", "--eval", program], { timeout: 60_000 });
});

test("a signal stops the work, progress tells of it", async () => {
  const image = noise(Uint8Array, 300, 1500, 3);
  for (const workers of [0, 2]) {
    const limn = await load({ workers });
    const told = [];
    const whole = await limn.light(image, STYLE, { onProgress: (done) => told.push(done) });
    assert.ok(told.length > 3 && told.at(-1) === 1, `${told}`);
    assert.deepEqual(told, [...told].sort((a, b) => a - b));

    const stopping = new AbortController();
    const reason = new Error("enough");
    const stopped = limn.light(image, STYLE, {
      signal: stopping.signal,
      onProgress(done) {
        assert.ok(done < 1);
        stopping.abort(reason);
      },
    });
    await assert.rejects(stopped, reason);
    await assert.rejects(limn.light(image, STYLE, { signal: AbortSignal.abort() }), { name: "AbortError" });
    const thrown = new RangeError("mine");
    const throws = { onProgress() { throw thrown; } };
    await assert.rejects(limn.light(image, STYLE, throws), thrown);
    same((await limn.light(image, STYLE)).data, whole.data, "after all that");

    const open = workers === 0 ? null : limn.light(image, STYLE);
    limn.close();
    if (open !== null) await assert.rejects(open, code("CANCELLED"));
    await assert.rejects(limn.light(image, STYLE), code("CANCELLED"));
  }
});

test("styles are told by name, and require() loads too", async () => {
  const limn = await createRequire(import.meta.url)("limn").load();
  const names = limn.styles();
  assert.equal(names[0], "Default");
  assert.ok(names.includes("Evening Lamp"));
  for (const name of names) assert.ok(limn.style(name).lights.length > 0, name);
});
