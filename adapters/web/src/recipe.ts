// What a picture is lit by: a style as its JSON has it, and where the heights of its relief come from.

export type Kind = "spot" | "omni" | "directional";
export type Point = [number, number];
export type Colour = [number, number, number]; // 0 to 65535

/** Lengths in units: see View. Centre: from the picture's middle. Handles: from the light's own. */
export interface Light {
  type: Kind;
  on: boolean;
  color: Colour;
  intensity: number; // -127 to 127
  spread: number;
  center: Point;
  handle1: Point;
  handle2: Point;
  radius: number;
}

export interface Style {
  worldUnit: number;
  bumpChannel: number; // 0: no relief. Any other: relief from the recipe's source
  whiteIsHigh: boolean;
  bumpAmplitude: number;
  ambientColor: Colour;
  ambientBrightness: number;
  material: number;
  gloss: number;
  exposure: number;
  curLight: number;
  lights: Light[];
}

/** auto: what suits most photographs; luminance: as it is; map: the picture that was opened as one. */
export type ReliefSource = "auto" | "luminance" | "map";

export interface Recipe {
  style: Style;
  relief: ReliefSource;
}

export const MOST_LIGHTS = 16;
const UNITS = 140; // of half the frame that styles are made in

/** What the engine made of a style's JSON, in the units of the page. */
export function normalised(json: Record<string, unknown>): Style {
  const style = structuredClone(json) as unknown as Style;
  const scale = UNITS / (style.worldUnit || UNITS);
  const scaled = ([x, y]: Point): Point => [x * scale, y * scale];
  for (const light of style.lights) {
    light.center = scaled(light.center);
    light.handle1 = scaled(light.handle1);
    light.handle2 = scaled(light.handle2);
    light.radius *= scale;
    light.on = Boolean(light.on);
  }
  style.worldUnit = UNITS;
  style.whiteIsHigh = Boolean(style.whiteIsHigh);
  style.curLight = Math.min(style.curLight, style.lights.length - 1);
  return style;
}

const GRID = 100; // parts of a unit that styles keep

/** As styles keep it; files and links stay short. */
export function jsonOf({ style, relief }: Recipe, source = false): string {
  const written = source && style.bumpChannel > 0 && relief !== "map"
    ? { ...style, relief: { source: relief } }
    : style;
  return JSON.stringify(written, (_, value) =>
    typeof value === "number" ? Math.round(value * GRID) / GRID : value);
}

export function withLight(recipe: Recipe, index: number, change: Partial<Light>): Recipe {
  const lights = recipe.style.lights.map((light, i) => (i === index ? { ...light, ...change } : light));
  return withStyle(recipe, { lights });
}

export function withStyle(recipe: Recipe, change: Partial<Style>): Recipe {
  return { ...recipe, style: { ...recipe.style, ...change } };
}

/** With one more light, selected; the same when there are sixteen. */
export function addedLight(recipe: Recipe, light: Light): Recipe {
  const { lights } = recipe.style;
  if (lights.length >= MOST_LIGHTS) return recipe;
  return withStyle(recipe, { lights: [...lights, light], curLight: lights.length });
}

/** Without that light; the same when it is the last one. */
export function withoutLight(recipe: Recipe, index: number): Recipe {
  const lights = recipe.style.lights.filter((_, i) => i !== index);
  if (lights.length === 0) return recipe;
  const { curLight } = recipe.style;
  return withStyle(recipe, {
    lights,
    curLight: Math.min(curLight > index ? curLight - 1 : curLight, lights.length - 1),
  });
}

const byte = (value: number) => Math.round(value / 257).toString(16).padStart(2, "0");
export const hexOf = (colour: Colour) => `#${colour.map(byte).join("")}`;
export const colourOf = (hex: string): Colour =>
  [1, 3, 5].map((at) => parseInt(hex.slice(at, at + 2), 16) * 257) as Colour;

async function through(bytes: Uint8Array<ArrayBuffer>, stream: GenericTransformStream) {
  return new Uint8Array(await new Response(new Blob([bytes]).stream().pipeThrough(stream)).arrayBuffer());
}

/** A recipe as the fragment of an address. */
export async function fragmentOf(recipe: Recipe): Promise<string> {
  const text = new TextEncoder().encode(jsonOf(recipe, true));
  const packed = await through(text, new CompressionStream("deflate-raw"));
  const text64 = btoa(String.fromCharCode(...packed));
  return `lit=${text64.replaceAll("+", "-").replaceAll("/", "_").replaceAll("=", "")}`;
}

const LONGEST_FRAGMENT = 20_000;

/** The JSON in a fragment, or null where it holds none. The engine says whether it is a style. */
export async function jsonOfFragment(fragment: string): Promise<string | null> {
  const found = /^#?lit=([\w-]+)$/.exec(fragment);
  if (found === null || found[1].length > LONGEST_FRAGMENT) return null;
  try {
    const text = atob(found[1].replaceAll("-", "+").replaceAll("_", "/"));
    const bytes = Uint8Array.from(text, (letter) => letter.charCodeAt(0));
    return new TextDecoder().decode(await through(bytes, new DecompressionStream("deflate-raw")));
  } catch {
    return null;
  }
}

/** A word for a shell. */
export const shellWord = (word: string) =>
  /^[\w./-]+$/.test(word) && !word.startsWith("-") ? word : `'${word.replaceAll("'", "'\\''")}'`;
