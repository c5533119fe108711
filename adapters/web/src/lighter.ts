// Lights parts of the picture on workers. Of two wishes for the screen the newer one counts.

import { Limn } from "../../npm/limn.mjs";
import { pooledWorker } from "../../npm/pool.mjs";
import { Engine } from "../../npm/engine.mjs";
import { jsonOf, type Recipe } from "./recipe.ts";
import type { Part, Picture } from "./picture.ts";

const RELIEF_REACH = 2; // pixels of relief that a pixel needs on every side
const BANDS_PER_WORKER = 2;

/** Heights of a picture, or of the same made smaller. */
export interface Heights {
  data: Uint16Array;
  width: number;
  height: number;
}

/** Pixels of a picture that is `width` by `height` of them, here or in all. */
export interface Patch {
  picture: Picture;
  width: number;
  height: number;
  part: Part;
  pixels: ImageData;
  heights: Heights | null;
}

type Worker_ = ReturnType<typeof pooledWorker>;

function startWorker() {
  const worker = new Worker("worker.js", { type: "module" });
  return {
    post: (message: unknown, moved: Transferable[]) => worker.postMessage(message, moved),
    onMessage: (handler: (message: unknown) => void) =>
      worker.addEventListener("message", ({ data }) => handler(data)),
    onError: (handler: (event: ErrorEvent) => void) => worker.addEventListener("error", handler),
    busy() {},
    close: () => worker.terminate(),
  };
}

export class Lighter {
  readonly engine: Engine;
  readonly #workers: Worker_[];
  readonly #limn: Limn;
  #jobs = -1; // those of the package count upwards
  #next = 0;

  private constructor(engine: Engine, workers: Worker_[]) {
    this.engine = engine;
    this.#workers = workers;
    this.#limn = new Limn(engine, workers);
  }

  static async start(): Promise<Lighter> {
    const answer = await fetch("limn.wasm");
    if (!answer.ok) throw new Error(`limn.wasm: ${answer.status}`);
    const module = await WebAssembly.compile(await answer.arrayBuffer());
    const count = Math.min(Math.max(navigator.hardwareConcurrency || 2, 1), 8);
    const workers = Array.from({ length: count }, () => pooledWorker(startWorker(), module));
    return new Lighter(await Engine.start(module), workers);
  }

  /** The patch's pixels, lit. Its heights count only where the recipe has relief. */
  async light(patch: Patch, recipe: Recipe): Promise<ImageData> {
    const { width, height } = patch.pixels;
    const bands = Math.min(this.#workers.length * BANDS_PER_WORKER, height);
    const job = this.#job(patch, recipe);
    const lit = await Promise.all(Array.from({ length: bands }, (_, i) =>
      this.#band(job, patch, recipe, Math.floor((i * height) / bands), Math.floor(((i + 1) * height) / bands),
        this.#workers[i % this.#workers.length])));
    const out = new Uint8ClampedArray(width * height * 4);
    let at = 0;
    for (const pixels of lit) {
      out.set(pixels, at);
      at += pixels.length;
    }
    return new ImageData(out, width, height);
  }

  /** The same on one worker, for what is small. */
  async lightSmall(patch: Patch, recipe: Recipe): Promise<ImageData> {
    const worker = this.#workers[this.#next++ % this.#workers.length];
    const { width, height } = patch.pixels;
    return new ImageData(await this.#band(this.#job(patch, recipe), patch, recipe, 0, height, worker), width, height);
  }

  /** All of the picture at its full size. */
  async lightAll(picture: Picture, recipe: Recipe, heights: Heights | null,
    onProgress: (done: number) => void): Promise<ImageData> {
    const relief = recipe.style.bumpChannel > 0 ? heights?.data : undefined;
    const style = { ...recipe.style, bumpChannel: 0 };
    const json = jsonOf({ ...recipe, style });
    return await this.#limn.light(picture.pixels(), json, { relief, onProgress }) as ImageData;
  }

  /** Heights for the picture at that size, of its own pixels there or of a map. */
  async heights(source: string, image: ImageData, picture: Picture, width: number, height: number): Promise<Heights> {
    const worker = this.#workers[this.#next++ % this.#workers.length];
    const { data, width: imageWidth, height: imageHeight } = image;
    const side = Math.max(picture.width, picture.height);
    const given = { data, width: imageWidth, height: imageHeight };
    const values = [source, given, side, width, height];
    return { data: await worker.run("heights", values, [data.buffer]) as Uint16Array, width, height };
  }

  #job({ picture, width, height }: Patch, recipe: Recipe) {
    const bytes = new TextEncoder().encode(jsonOf(recipe));
    const area = { x: 0, y: 0, width: 0, height: 0 };
    const fit = { width: picture.width, height: picture.height };
    return { id: this.#jobs--, style: { bytes }, width, height, channels: 4, area, fit };
  }

  // Rows [first, last) of the patch.
  async #band(job: object, patch: Patch, recipe: Recipe, first: number, last: number, worker: Worker_) {
    const { part, pixels } = patch;
    const row = pixels.width * 4;
    return await worker.light(job, {
      pixels: pixels.data.slice(first * row, last * row),
      first: part.top + first, last: part.top + last,
      left: part.left, right: part.left + part.width,
      relief: recipe.style.bumpChannel > 0 && patch.heights !== null
        ? reliefOf(patch.heights, part, part.top + first, part.top + last)
        : null,
    }) as Uint8ClampedArray<ArrayBuffer>;
  }
}

// The heights that rows [top, bottom) of a part need, copied.
function reliefOf({ data, width, height }: Heights, part: Part, top: number, bottom: number) {
  const first = Math.max(top - RELIEF_REACH, 0);
  const last = Math.min(bottom + RELIEF_REACH, height);
  const left = Math.max(part.left - RELIEF_REACH, 0);
  const right = Math.min(part.left + part.width + RELIEF_REACH, width);
  if (left === 0 && right === width)
    return { data: data.slice(first * width, last * width), step: 1, first, last, left, right };
  const cut = new Uint16Array((last - first) * (right - left));
  for (let y = first; y < last; ++y)
    cut.set(data.subarray(y * width + left, y * width + right), (y - first) * (right - left));
  return { data: cut, step: 1, first, last, left, right };
}
