// What TypeScript lets pass and what not; compiled, never run.
import { load, type LimnError } from "limn";

const limn = await load({ workers: 2, wasm: new Uint8Array(3) });
const words = await limn.light({ data: new Uint16Array(30), width: 5, height: 2 }, { lights: [] }, {
  relief: new Float32Array(10),
  area: { x: 0, y: 0, width: 1, height: 1 },
  signal: AbortSignal.abort(),
  onProgress: (done) => void done.toFixed(),
});
const data: Uint16Array = words.data;
// @ts-expect-error floats are of 32 bits
await limn.light({ data: new Float64Array(3), width: 1, height: 1 }, "x");
// @ts-expect-error no such option
await limn.light(words, "x", { threads: 3 });
const image: ImageData = await limn.light(new ImageData(1, 1), "x");
const code: LimnError["code"] = "LIMN_NO_MEMORY";
void [data, image, code, limn.styles().map((name) => name.length)];
