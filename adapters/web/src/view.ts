// Where the picture lies on the stage, in CSS pixels, and how the units of lights fall on it.

import type { Point } from "./recipe.ts";
import type { Part } from "./picture.ts";

export interface Size {
  width: number;
  height: number;
}

export class View {
  /** CSS pixels per pixel of the picture, and where its top left corner is. */
  readonly scale: number;
  readonly left: number;
  readonly top: number;
  readonly #picture: Size;
  readonly #units: number;

  /** units: how many go across the picture. */
  constructor(picture: Size, units: number, scale: number, left: number, top: number) {
    this.#picture = picture;
    this.#units = units;
    this.scale = scale;
    this.left = left;
    this.top = top;
  }

  static fitted(picture: Size, units: number, stage: Size, margin: number): View {
    const scale = Math.min(
      Math.max(stage.width - 2 * margin, 16) / picture.width,
      Math.max(stage.height - 2 * margin, 16) / picture.height,
    );
    const left = (stage.width - picture.width * scale) / 2;
    const top = (stage.height - picture.height * scale) / 2;
    return new View(picture, units, scale, left, top);
  }

  /** The same at a scale, with `kept` of the stage staying where it is; never past the picture. */
  zoomed(scale: number, kept: Point, stage: Size): View {
    const [x, y] = kept;
    const left = x - ((x - this.left) / this.scale) * scale;
    const top = y - ((y - this.top) / this.scale) * scale;
    return this.#held(scale, left, top, stage);
  }

  moved(dx: number, dy: number, stage: Size): View {
    return this.#held(this.scale, this.left + dx, this.top + dy, stage);
  }

  #held(scale: number, left: number, top: number, stage: Size): View {
    const hold = (at: number, length: number, room: number) =>
      length <= room ? (room - length) / 2 : Math.min(Math.max(at, room - length), 0);
    return new View(this.#picture, this.#units, scale,
      hold(left, this.#picture.width * scale, stage.width),
      hold(top, this.#picture.height * scale, stage.height));
  }

  get width(): number {
    return this.#picture.width * this.scale;
  }
  get height(): number {
    return this.#picture.height * this.scale;
  }

  /** The part of the picture that the stage shows, in whole pixels. */
  visible(stage: Size): Part {
    const left = Math.max(Math.floor(-this.left / this.scale), 0);
    const top = Math.max(Math.floor(-this.top / this.scale), 0);
    const right = Math.min(Math.ceil((stage.width - this.left) / this.scale), this.#picture.width);
    const bottom = Math.min(Math.ceil((stage.height - this.top) / this.scale), this.#picture.height);
    return { left, top, width: Math.max(right - left, 1), height: Math.max(bottom - top, 1) };
  }

  /** CSS pixels per unit. */
  get unit(): number {
    return this.width / this.#units;
  }

  toStage([x, y]: Point): Point {
    return [this.left + this.width / 2 + x * this.unit, this.top + this.height / 2 + y * this.unit];
  }

  toUnits([x, y]: Point): Point {
    return [(x - this.left - this.width / 2) / this.unit, (y - this.top - this.height / 2) / this.unit];
  }
}
