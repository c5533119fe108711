// Lights parts of the picture on workers. Of two wishes for the screen the newer one counts.

import { Limn } from "../../npm/limn.mjs";
import { pooledWorker } from "../../npm/pool.mjs";
import { Engine } from "../../npm/engine.mjs";
import { jsonOf, type Recipe } from "./recipe.ts";
import type { Part, Picture } from "./picture.ts";
import type { Size } from "./view.ts";

const RELIEF_REACH = 2; // pixels of relief that a pixel needs on every side
const BANDS_PER_WORKER = 2;
const KEPT_PATCHES = 4;

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

/** What Engine.light takes. */
export interface Band {
  source: Uint8ClampedArray<ArrayBuffer>;
  first: number;
  last: number;
  left: number;
  right: number;
  relief: ReturnType<typeof reliefOf> | null;
}

/** Rows of a patch, `top` below its first. */
export interface LitBand {
  top: number;
  image: ImageData;
}

type Worker_ = ReturnType<typeof pooledWorker>;

interface KeptBand {
  worker: Worker_;
  number: number; // the worker's, of the band
  first: number;
  last: number;
  spare?: Uint8ClampedArray<ArrayBuffer>; // goes to the worker and comes back lit
}

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
  #kept: ({ patch: Patch; bands: KeptBand[] } | undefined)[] = [];
  #patches = 0;
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

  /** The patch's pixels, lit, good until it is lit again. Its heights count only where the recipe has relief. */
  async light(patch: Patch, recipe: Recipe): Promise<LitBand[]> {
    const { part } = patch;
    const job = this.#job(patch, recipe);
    const hasRelief = recipe.style.bumpChannel > 0;
    return await Promise.all(this.#bands(patch).map(async (band) => {
      const pixels = band.spare ?? new Uint8ClampedArray(part.width * (band.last - band.first) * 4);
      band.spare = undefined;
      const lit = await band.worker.run("lightKept", [job, band.number, hasRelief, pixels], [pixels.buffer]);
      band.spare = lit as Uint8ClampedArray<ArrayBuffer>;
      return { top: band.first - part.top, image: new ImageData(band.spare, part.width) };
    }));
  }

  // The bands of a patch, which lie with the workers. A newer patch takes the place of the oldest.
  #bands(patch: Patch): KeptBand[] {
    const kept = this.#kept.find((each) => each?.patch === patch);
    if (kept !== undefined) return kept.bands;
    const place = this.#patches++ % KEPT_PATCHES;
    const { top, height } = patch.part;
    const count = Math.min(this.#workers.length * BANDS_PER_WORKER, height);
    const edge = (i: number) => top + Math.floor((i * height) / count);
    const bands = Array.from({ length: count }, (_, i) => {
      const worker = this.#workers[i % this.#workers.length];
      const number = place * this.#workers.length * BANDS_PER_WORKER + i;
      const band = bandOf(patch, edge(i), edge(i + 1));
      const moved = [band.source.buffer, ...(band.relief === null ? [] : [band.relief.data.buffer])];
      worker.run("keep", [number, band], moved).catch(() => {}); // told when it is lit
      return { worker, number, first: band.first, last: band.last };
    });
    this.#kept[place] = { patch, bands };
    return bands;
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
}

/** Bands onto a canvas, which takes that size. */
export function draw(canvas: HTMLCanvasElement | OffscreenCanvas, { width, height }: Size, bands: LitBand[]) {
  if (canvas.width !== width) canvas.width = width;
  if (canvas.height !== height) canvas.height = height;
  const context = canvas.getContext("2d") as CanvasRenderingContext2D | OffscreenCanvasRenderingContext2D;
  for (const { top, image } of bands) context.putImageData(image, 0, top);
}

// Rows [first, last) of the picture that a patch is of, copied.
function bandOf({ part, pixels, heights }: Patch, first: number, last: number): Band {
  const row = part.width * 4;
  return {
    source: pixels.data.slice((first - part.top) * row, (last - part.top) * row),
    first, last, left: part.left, right: part.left + part.width,
    relief: heights === null ? null : reliefOf(heights, part, first, last),
  };
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
