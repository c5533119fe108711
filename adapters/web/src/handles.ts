// Where the handles of lights are and what dragging one does, as the module computes it.

import type { Engine } from "../../npm/engine.mjs";
import type { Kind, Light, Point } from "./recipe.ts";

export const CENTER = 1;
const FIGURE_FLOATS = 8;
const MOST_HANDLES = 5;
const KINDS: Kind[] = ["omni", "directional", "spot"]; // by the module's codes

export interface Handle {
  code: number;
  place: Point;
}

export interface Hit {
  light: number;
  code: number;
}

const figureOf = (light: Light) => [
  KINDS.indexOf(light.type), ...light.center, ...light.handle1, ...light.handle2, light.radius,
];

export class Handles {
  #engine: Engine;

  constructor(engine: Engine) {
    this.#engine = engine;
  }

  #put(figures: number[]): number {
    return this.#engine.put(0, Float32Array.from(figures));
  }

  #floats(address: number, count: number): number[] {
    return [...new Float32Array(this.#engine.memory().buffer, address, count)];
  }

  /** Those of a selected light, its centre last. */
  of(light: Light): Handle[] {
    const out = this.#engine.put(1, new Float32Array(3 * MOST_HANDLES));
    const count = this.#engine.call("LM_figure_handles", this.#put(figureOf(light)), out);
    const floats = this.#floats(out, 3 * count);
    return Array.from({ length: count }, (_, i) => ({
      code: floats[3 * i], place: [floats[3 * i + 1], floats[3 * i + 2]] as Point,
    }));
  }

  /** The handle nearest to a point, of those within reach; the selected light's first. */
  hit(lights: Light[], selected: number, [x, y]: Point, reach: number): Hit | null {
    const figures = this.#put(lights.flatMap(figureOf));
    const found = this.#engine.call("LM_figures_hit", figures, lights.length, selected, x, y, reach);
    return found === 0 ? null : { light: found >> 3, code: found & 7 };
  }

  /** The light that it was when the drag began, with that handle at the point. */
  drag(start: Light, code: number, [x, y]: Point, keep: "direction" | "length" | null): Light {
    const address = this.#put(figureOf(start));
    const constraint = keep === null ? 0 : keep === "direction" ? 1 : 2;
    this.#engine.call("LM_figure_drag", address, code, x, y, constraint);
    return this.#read(start, address);
  }

  /** With the axes of a spot as they have to be. */
  validated(light: Light): Light {
    const address = this.#put(figureOf(light));
    this.#engine.call("LM_figure_validate", address);
    return this.#read(light, address);
  }

  #read(light: Light, address: number): Light {
    const [, cx, cy, ax, ay, bx, by, radius] = this.#floats(address, FIGURE_FLOATS);
    return { ...light, center: [cx, cy], handle1: [ax, ay], handle2: [bx, by], radius };
  }
}
