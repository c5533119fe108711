// The bundled styles as thumbnails of the picture: hovering one shows it, a click keeps it.

import { make } from "./elements.ts";
import { draw, type Heights, type Lighter } from "./lighter.ts";
import type { Picture } from "./picture.ts";
import { normalised, type Recipe, type ReliefSource, type Style } from "./recipe.ts";

const LONGEST = 132; // pixels of the screen's, of 112 that are shown at twice that

export interface StylesUser {
  recipe(): Recipe;
  attempt(recipe: Recipe | null): void;
  keep(recipe: Recipe): void;
  heights(relief: string, width: number, height: number, pixels: ImageData): Promise<Heights | null>;
}

/** Equal for styles that light alike. */
const keyOf = (style: Style) => JSON.stringify({ ...style, curLight: 0 });

export class Styles {
  readonly #lighter: Lighter;
  readonly #user: StylesUser;
  readonly #entries: { button: HTMLButtonElement; image: HTMLImageElement; style: Style; key: string }[];
  #round = 0;

  constructor(list: HTMLElement, lighter: Lighter, user: StylesUser) {
    this.#lighter = lighter;
    this.#user = user;
    this.#entries = lighter.engine.styles().map((name: string) => {
      const style = normalised(JSON.parse(lighter.engine.json({ name })));
      const image = make("img", { alt: "" });
      const button = make("button", { type: "button", className: "style" }, image, make("span", {}, name));
      const wanted = () => this.#with(style);
      button.addEventListener("pointerenter", (event) => event.pointerType === "mouse" && user.attempt(wanted()));
      button.addEventListener("pointerleave", (event) => event.pointerType === "mouse" && user.attempt(null));
      button.addEventListener("click", () => user.keep(wanted()));
      list.append(make("li", {}, button));
      return { button, image, style, key: keyOf(style) };
    });
  }

  // Its lights and surface, with the relief from where it comes now.
  #with(style: Style): Recipe {
    return { style: structuredClone(style), relief: this.#user.recipe().relief };
  }

  render({ style }: Recipe) {
    const now = keyOf(style);
    for (const { button, key } of this.#entries) button.setAttribute("aria-pressed", String(key === now));
  }

  /** Lights the thumbnails, those that are seen first. A newer call ends an older one. */
  async draw(picture: Picture, relief: ReliefSource) {
    const round = ++this.#round;
    const scale = Math.min(LONGEST / Math.max(picture.width, picture.height), 1) * Math.min(devicePixelRatio, 2);
    const width = Math.max(Math.round(picture.width * scale), 1);
    const height = Math.max(Math.round(picture.height * scale), 1);
    const pixels = picture.pixels(picture.whole, width, height);
    const heights = await this.#user.heights(relief, width, height, pixels);
    const patch = { picture, width, height, part: { left: 0, top: 0, width, height }, pixels, heights };
    const canvas = new OffscreenCanvas(width, height);
    for (const { image, style } of this.#entries) {
      if (round !== this.#round) return;
      draw(canvas, patch.part, await this.#lighter.light(patch, { style, relief }));
      // As images: browsers without a graphics processor copy every canvas that they show for each frame.
      const blob = await canvas.convertToBlob();
      URL.revokeObjectURL(image.src);
      image.src = URL.createObjectURL(blob);
    }
  }
}
