// Lights, the selected light, surface and relief beside the picture.

import { find, icon, make } from "./elements.ts";
import { ICONS } from "./icons.ts";
import { addedLight, colourOf, hexOf, withLight, withoutLight, withStyle, type Colour, type Kind, type Light, type Recipe, type ReliefSource, type Style } from "./recipe.ts";
import { say, type Word } from "./texts.ts";

export interface PanelUser {
  recipe(): Recipe;
  attempt(recipe: Recipe): void;
  select(light: number): void;
  keep(recipe: Recipe, step: Word): void;
  tell(word: Word): void;
  validated(light: Light): Light;
  newLight(kind: Kind): Light;
  chooseMap(): void;
  hasMap(): boolean;
}

/** A slider as the dialog has it: it shows how far it is from `zero`, as -100 to 100. */
interface Scale {
  low: number;
  high: number;
  zero: number;
  usual: number;
}
const BYTE: Scale = { low: 0, high: 255, zero: 128, usual: 128 };
const CENTRED: Scale = { low: -127, high: 127, zero: 0, usual: 0 };

type Numbers<Of> = { [Name in keyof Of]: Of[Name] extends number ? Name : never }[keyof Of] & string;
const LIGHT_SLIDERS: [Numbers<Light>, Word, Scale][] = [
  ["intensity", "intensity", { ...CENTRED, usual: 32 }],
  ["spread", "spread", BYTE],
];
const SURFACE_SLIDERS: [Numbers<Style>, Word, Scale][] = [
  ["exposure", "exposure", BYTE],
  ["gloss", "gloss", BYTE],
  ["material", "material", { ...BYTE, high: 256 }],
  ["ambientBrightness", "ambience", { ...CENTRED, usual: 16 }],
];
const LAMPS: [Word, Colour][] = [
  ["candle", [65535, 37522, 10537]], ["bulb", [65535, 45489, 22616]],
  ["noon", [65535, 65535, 65535]], ["shade", [51657, 56540, 65535]],
];
const KINDS: Kind[] = ["spot", "omni", "directional"];

type Render = (recipe: Recipe) => void;

export class Panel {
  readonly #user: PanelUser;
  #renders: Render[] = [];

  constructor(user: PanelUser) {
    this.#user = user;
  }

  /** Makes the controls anew, in the page's language. */
  build() {
    this.#renders = [];
    find("#lights").replaceChildren(...this.#lights());
    find("#surface").replaceChildren(...this.#surface());
    find("#relief").replaceChildren(...this.#relief());
  }

  render(recipe: Recipe) {
    for (const render of this.#renders) render(recipe);
  }

  get #light(): number {
    return this.#user.recipe().style.curLight;
  }

  #change(change: Partial<Light>): Recipe {
    return withLight(this.#user.recipe(), this.#light, change);
  }

  #slider(word: Word, scale: Scale, read: (recipe: Recipe) => number, write: (value: number) => Recipe) {
    const half = scale.zero === 0 ? 127 : 128;
    const shown = (value: number) => Math.round(((value - scale.zero) * 100) / (scale.low === 0 && scale.zero === 0 ? 255 : half));
    const meant = (typed: number) => Math.round(scale.zero + (typed * (scale.low === 0 && scale.zero === 0 ? 255 : half)) / 100);
    const within = (value: number) => Math.min(Math.max(value, scale.low), scale.high);
    const label = say(word);
    const range = make("input", { type: "range", min: scale.low, max: scale.high, "aria-label": label });
    const number = make("input", { type: "number", min: shown(scale.low), max: shown(scale.high), "aria-label": label });
    range.addEventListener("input", () => this.#user.attempt(write(Number(range.value))));
    range.addEventListener("change", () => this.#user.keep(write(Number(range.value)), word));
    range.addEventListener("dblclick", () => this.#user.keep(write(scale.usual), word));
    number.addEventListener("change", () => {
      if (number.value !== "") this.#user.keep(write(within(meant(Number(number.value)))), word);
      this.render(this.#user.recipe());
    });
    this.#renders.push((recipe) => {
      const value = read(recipe);
      range.value = String(value);
      range.setAttribute("aria-valuetext", String(shown(value)));
      range.style.setProperty("--at", `${((within(value) - scale.low) / (scale.high - scale.low)) * 100}%`);
      if (document.activeElement !== number) number.value = String(shown(value));
      else if (meant(Number(number.value)) !== value) number.value = String(shown(value));
    });
    return make("div", { className: "row" }, make("span", { className: "name", "aria-hidden": "true" }, label), range, number);
  }

  #colour(word: Word, read: (recipe: Recipe) => Colour, write: (colour: Colour) => Recipe) {
    const input = make("input", { type: "color", "aria-label": say(word) });
    input.addEventListener("input", () => this.#user.attempt(write(colourOf(input.value))));
    input.addEventListener("change", () => this.#user.keep(write(colourOf(input.value)), word));
    const lamps = LAMPS.map(([lamp, colour]) => {
      const button = make("button", {
        type: "button", className: "swatch", title: say(lamp), "aria-label": `${say(word)}: ${say(lamp)}`,
        onclick: () => this.#user.keep(write(colour), word),
      });
      button.style.setProperty("--lamp", hexOf(colour));
      return button;
    });
    this.#renders.push((recipe) => (input.value = hexOf(read(recipe))));
    return make("div", { className: "row" }, make("span", { className: "name", "aria-hidden": "true" }, say("colour")),
      make("div", { className: "swatches" }, ...lamps, input));
  }

  #action(word: Word, drawing: keyof typeof ICONS, act: () => void) {
    return make("button", { type: "button", className: "quiet", title: say(word), "aria-label": say(word), onclick: act },
      icon(ICONS[drawing]));
  }

  #lights() {
    const list = make("ol", { className: "list" });
    this.#renders.push((recipe) => this.#renderList(list, recipe));
    const kinds = KINDS.map((kind) => {
      const input = make("input", { type: "radio", name: "kind", value: kind });
      input.addEventListener("change", () =>
        this.#user.keep(withLight(this.#user.recipe(), this.#light,
          this.#user.validated({ ...this.#user.recipe().style.lights[this.#light], type: kind })), "kind"));
      this.#renders.push(({ style }) => (input.checked = style.lights[style.curLight]?.type === kind));
      return make("label", { title: say(kind) }, input, icon(ICONS[kind]), make("span", { className: "sr" }, say(kind)));
    });
    const sliders = LIGHT_SLIDERS.map(([name, word, scale]) => {
      const row = this.#slider(word, scale, ({ style }) => style.lights[style.curLight][name], (value) => this.#change({ [name]: value }));
      if (name === "spread")
        this.#renders.push(({ style }) => (row.hidden = style.lights[style.curLight].type !== "spot"));
      return row;
    });
    return [
      make("div", { className: "head" }, make("h2", {}, say("lights")),
        this.#action("mirror", "mirror", () => this.#mirror()),
        this.#action("copy", "copy", () => this.#duplicate()),
        this.#action("add", "add", () => this.#add())),
      list,
      make("fieldset", { className: "kinds" }, make("legend", { className: "sr" }, say("kind")), ...kinds),
      ...sliders,
      this.#colour("colour", ({ style }) => style.lights[style.curLight].color, (color) => this.#change({ color })),
    ];
  }

  #renderList(list: HTMLElement, { style }: Recipe) {
    const { lights, curLight } = style;
    while (list.children.length > lights.length) list.lastChild!.remove();
    while (list.children.length < lights.length) list.append(this.#listed(list.children.length));
    lights.forEach((light, i) => {
      const [choice, remove] = list.children[i].querySelectorAll("button");
      const on = list.children[i].querySelector("input")!;
      const name = `${say(light.type)} ${i + 1}`;
      choice.setAttribute("aria-pressed", String(i === curLight));
      choice.style.setProperty("--lamp", hexOf(light.color));
      choice.lastChild!.textContent = name;
      on.checked = light.on;
      on.setAttribute("aria-label", `${say("on")}: ${name}`);
      remove.setAttribute("aria-label", `${say("remove")}: ${name}`);
    });
  }

  #listed(index: number) {
    const recipe = () => this.#user.recipe();
    const on = make("input", { type: "checkbox", className: "switch" });
    on.addEventListener("change", () => this.#user.keep(withLight(recipe(), index, { on: on.checked }), "on"));
    return make("li", {},
      make("button", { type: "button", className: "choice", onclick: () => this.#user.select(index) },
        make("i", { className: "dot", "aria-hidden": "true" }), make("span", {})),
      on,
      make("button", { type: "button", className: "quiet", title: say("remove"), onclick: () => this.#remove(index) }, icon(ICONS.bin)));
  }

  #remove(index: number) {
    const without = withoutLight(this.#user.recipe(), index);
    if (without === this.#user.recipe()) this.#user.tell("lastLight");
    else this.#user.keep(without, "deleteLight");
  }

  #addOne(light: Light, word: Word) {
    const added = addedLight(this.#user.recipe(), light);
    if (added === this.#user.recipe()) this.#user.tell("mostLights");
    else this.#user.keep(added, word);
  }

  #add() {
    const place = (this.#user.recipe().style.lights.length % 5) * 12 - 24;
    this.#addOne({ ...this.#user.newLight("spot"), center: [place, place] }, "addLight");
  }

  #duplicate() {
    const light = this.#user.recipe().style.lights[this.#light];
    this.#addOne({ ...light, center: [light.center[0] + 12, light.center[1] + 12] }, "copy");
  }

  #mirror() {
    const { center, handle1, handle2 } = this.#user.recipe().style.lights[this.#light];
    const mirrored = this.#change({
      center: [-center[0], center[1]], handle1: [-handle1[0], handle1[1]], handle2: [-handle2[0], handle2[1]],
    });
    this.#user.keep(mirrored, "mirror");
  }

  #surface() {
    const sliders = SURFACE_SLIDERS.map(([name, word, scale]) =>
      this.#slider(word, scale, ({ style }) => style[name], (value) => withStyle(this.#user.recipe(), { [name]: value })));
    return [
      make("div", { className: "head" }, make("h2", {}, say("surface"))),
      ...sliders,
      this.#colour("ambienceColour", ({ style }) => style.ambientColor, (ambientColor) => withStyle(this.#user.recipe(), { ambientColor })),
    ];
  }

  #relief() {
    const select = make("select", { id: "source" });
    for (const word of ["none", "auto", "luminance", "map"] as const)
      select.append(make("option", { value: word }, say(word)));
    select.addEventListener("change", () => {
      if (select.value === "map" && !this.#user.hasMap()) {
        this.#user.chooseMap();
        return this.render(this.#user.recipe());
      }
      this.#user.keep(withRelief(this.#user.recipe(), select.value as ReliefSource | "none"), "relief");
    });
    const height = this.#slider("height", { low: 0, high: 255, zero: 0, usual: 128 }, ({ style }) => style.bumpAmplitude,
      (bumpAmplitude) => withStyle(this.#user.recipe(), { bumpAmplitude }));
    const high = make("input", { type: "checkbox", className: "switch" });
    high.addEventListener("change", () =>
      this.#user.keep(withStyle(this.#user.recipe(), { whiteIsHigh: high.checked }), "whiteIsHigh"));
    const highRow = make("label", { className: "row check" }, make("span", {}, say("whiteIsHigh")), high);
    const drop = make("p", { className: "drop" }, say("dropMap"));
    this.#renders.push(({ style, relief }) => {
      const isOn = style.bumpChannel > 0;
      select.value = isOn ? relief : "none";
      high.checked = style.whiteIsHigh;
      height.hidden = highRow.hidden = !isOn;
    });
    return [
      make("div", { className: "head" }, make("h2", {}, say("relief"))),
      make("div", { className: "row" }, make("label", { className: "name", for: "source" }, say("source")), select),
      height, highRow,
      make("button", { type: "button", className: "plain", onclick: () => this.#user.chooseMap() }, say("chooseMap")),
      drop,
    ];
  }
}

/** With relief from that source, or none. */
export function withRelief(recipe: Recipe, source: ReliefSource | "none"): Recipe {
  if (source === "none") return withStyle(recipe, { bumpChannel: 0 });
  return { ...withStyle(recipe, { bumpChannel: recipe.style.bumpChannel || 1 }), relief: source };
}
