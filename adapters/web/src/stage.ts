// The canvas: the picture as it was, and over it the lit one, up to the divider. While something
// moves, what is lit is made smaller until it keeps up; at rest it has the screen's own pixels.

import { Picture } from "./picture.ts";
import { draw, type Heights, type LitBand, type Lighter, type Patch } from "./lighter.ts";
import type { Recipe } from "./recipe.ts";
import { View, type Size } from "./view.ts";

const REST_MS = 140;
const SLOW_MS = 28; // a frame that takes longer is made smaller the next time: thirty fit into a second
const FAST_MS = 12;
const COARSEST = 3; // the times that sides are halved

export class Stage {
  readonly #room: HTMLElement;
  readonly #before: HTMLCanvasElement;
  readonly #lit: HTMLCanvasElement;
  readonly #lighter: Lighter;
  #picture: Picture | null = null;
  #map: Picture | null = null;
  #units = 1;
  #patches = new Map<string, Promise<Patch>>();
  #coarse = 1;
  #wish: Recipe | null = null;
  #shown: Recipe | null = null;
  #shownCoarse = 0;
  #busy = false;
  #rest = 0;
  #divided = 1;
  #beforeOf: Patch | null = null;
  /** Frames that were lit, and how long the last one took. */
  frames = 0;
  frameMs = 0;
  onFailure: (error: Error) => void = () => {};
  onView: () => void = () => {};
  view!: View;
  isWhole = true;

  constructor(room: HTMLElement, before: HTMLCanvasElement, lit: HTMLCanvasElement, lighter: Lighter) {
    this.#room = room;
    this.#before = before;
    this.#lit = lit;
    this.#lighter = lighter;
    new ResizeObserver(() => this.#picture && this.#place(this.isWhole ? this.#fitted() : this.view.moved(0, 0, this.size)))
      .observe(room);
  }

  get size(): Size {
    return { width: this.#room.clientWidth, height: this.#room.clientHeight };
  }

  show(picture: Picture) {
    this.#picture = picture;
    this.#map = null;
    this.#units = this.#lighter.engine.call("limn_preview_width", picture.width, picture.height);
    this.isWhole = true;
    this.#patches.clear();
    this.#place(this.#fitted());
  }

  /** A map of the picture's shape, for recipes whose relief comes from one. */
  useMap(map: Picture | null) {
    this.#map = map;
    this.#patches.clear();
  }

  #fitted(): View {
    const margin = Math.min(this.size.width, this.size.height) < 500 ? 10 : 28;
    return View.fitted(this.#picture!, this.#units, this.size, margin);
  }

  /** All of the picture, or one of its pixels on each of the screen's, around a point of the stage. */
  zoom(whole: boolean, at: [number, number] = [this.size.width / 2, this.size.height / 2]) {
    if (this.#picture === null) return;
    this.isWhole = whole;
    this.#place(whole ? this.#fitted() : this.view.zoomed(1 / devicePixelRatio, at, this.size));
  }

  pan(dx: number, dy: number) {
    if (!this.isWhole) this.#place(this.view.moved(dx, dy, this.size));
  }

  #place(view: View) {
    this.view = view;
    if (!this.isWhole) this.#forget("part");
    else for (const key of this.#patches.keys()) this.#forget(key);
    this.onView();
    this.divide(this.#divided);
    const recipe = this.#wish ?? this.#shown;
    if (recipe !== null) this.light(recipe);
  }

  #forget(start: string) {
    for (const key of this.#patches.keys()) if (key.startsWith(start)) this.#patches.delete(key);
  }

  /** How much of the picture is shown lit, from the right: 1 for all. */
  divide(lit: number) {
    this.#divided = lit;
    const cut = this.view === undefined ? 0 : (1 - lit) * 100;
    this.#before.hidden = lit === 1; // what is not seen costs nothing
    this.#lit.style.clipPath = cut > 0 ? `inset(0 0 0 ${cut}%)` : "none";
  }
  get divided(): number {
    return this.#divided;
  }

  light(recipe: Recipe) {
    this.#wish = recipe;
    clearTimeout(this.#rest);
    if (!this.#busy) void this.#run();
  }

  async #run() {
    this.#busy = true;
    try {
      while (this.#wish !== null && this.#picture !== null) {
        const recipe = this.#wish;
        this.#wish = null;
        await this.#frame(recipe, this.isWhole ? this.#coarse : 0);
      }
      if (this.#shownCoarse > 0)
        this.#rest = window.setTimeout(() => this.#sharpen(), REST_MS);
    } catch (error) {
      this.onFailure(error as Error);
    } finally {
      this.#busy = false;
    }
  }

  async #sharpen() {
    if (this.#busy || this.#shown === null) return;
    this.#busy = true;
    try {
      await this.#frame(this.#shown, 0);
    } catch (error) {
      this.onFailure(error as Error);
    }
    this.#busy = false;
    if (this.#wish !== null) void this.#run();
  }

  async #frame(recipe: Recipe, coarse: number) {
    const view = this.view;
    const patch = await this.#patch(recipe, coarse);
    const start = performance.now();
    const lit = await this.#lighter.light(patch, recipe);
    this.#shown = recipe;
    if (view !== this.view) {
      this.#wish ??= recipe; // the stage has changed meanwhile
      return;
    }
    this.#draw(patch, lit);
    this.#shownCoarse = coarse;
    this.frames += 1;
    this.frameMs = performance.now() - start;
    if (this.#wish !== null && this.frameMs > SLOW_MS) this.#coarse = Math.min(coarse + 1, COARSEST);
    else if (this.frameMs < FAST_MS) this.#coarse = Math.max(coarse - 1, 0);
  }

  #draw(patch: Patch, lit: LitBand[]) {
    const { view } = this;
    const { part } = patch;
    const [x, y] = [view.width / patch.width, view.height / patch.height];
    const place = {
      left: `${view.left + x * part.left}px`, top: `${view.top + y * part.top}px`,
      width: `${x * part.width}px`, height: `${y * part.height}px`,
    };
    draw(this.#lit, part, lit);
    Object.assign(this.#lit.style, place);
    if (this.#beforeOf === patch) return;
    this.#beforeOf = patch;
    draw(this.#before, part, [{ top: 0, image: patch.pixels }]);
    Object.assign(this.#before.style, place);
  }

  // What is lit next, with its heights.
  #patch(recipe: Recipe, coarse: number): Promise<Patch> {
    const relief = recipe.style.bumpChannel > 0 ? recipe.relief : "none";
    const key = `${this.isWhole ? "whole" : "part"} ${coarse} ${relief}`;
    const kept = this.#patches.get(key);
    if (kept !== undefined) return kept;
    const made = this.#makePatch(relief, coarse);
    this.#patches.set(key, made);
    made.catch(() => this.#patches.delete(key));
    return made;
  }

  async #makePatch(relief: string, coarse: number): Promise<Patch> {
    const picture = this.#picture!;
    if (this.isWhole) {
      const sharp = Math.min(this.view.scale * devicePixelRatio, 1) / 2 ** coarse;
      const width = Math.max(Math.round(picture.width * sharp), 1);
      const height = Math.max(Math.round(picture.height * sharp), 1);
      const part = { left: 0, top: 0, width, height };
      const pixels = picture.pixels(picture.whole, width, height);
      return { picture, width, height, part, pixels, heights: await this.heights(relief, width, height, pixels) };
    }
    const part = this.view.visible(this.size);
    const { width, height } = picture;
    return {
      picture, width, height, part,
      pixels: picture.pixels(part), heights: await this.fullHeights(relief),
    };
  }

  /** Heights at a size; null without relief. pixels: the picture's at that size. */
  async heights(relief: string, width: number, height: number, pixels: ImageData): Promise<Heights | null> {
    if (relief === "none" || (relief === "map" && this.#map === null)) return null;
    const image = relief === "map" ? this.#map!.pixels() : new ImageData(pixels.data.slice(), width, height);
    return this.#lighter.heights(relief === "auto" ? "auto" : "luminance", image, this.#picture!, width, height);
  }

  #full: { of: Picture; map: Picture | null; relief: string; heights: Promise<Heights | null> } | null = null;

  /** Those of the picture at its full size, kept. */
  fullHeights(relief: string): Promise<Heights | null> {
    const picture = this.#picture!;
    const kept = this.#full;
    if (kept === null || kept.of !== picture || kept.map !== this.#map || kept.relief !== relief) {
      const { width, height } = picture;
      const heights = relief === "none"
        ? Promise.resolve(null)
        : this.heights(relief, width, height, relief === "map" ? new ImageData(1, 1) : picture.pixels());
      this.#full = { of: picture, map: this.#map, relief, heights };
    }
    return this.#full!.heights;
  }

  /** Whether what is shown is all that was wished for, in the screen's own pixels. */
  get isAtRest(): boolean {
    return !this.#busy && this.#wish === null && this.#shown !== null && this.#shownCoarse === 0;
  }

  /** The part that is shown, as it is on the screen now. */
  litPixels(): ImageData {
    return this.#lit.getContext("2d")!.getImageData(0, 0, this.#lit.width, this.#lit.height);
  }
}
