// Lights pixels in memory, with the bytes of the command `limn apply`.

/** Bytes, words of 16 bits, or floats with 1.0 for white. A Buffer is a Uint8Array. */
export type Pixels = Uint8Array | Uint8ClampedArray | Uint16Array | Float32Array;

/**
 * Rows from the top, without gaps: red, green, blue, then any others, which are never changed.
 * Colour must not be multiplied by alpha. At most 32767 pixels along a side.
 */
export interface Picture<Data extends Pixels = Pixels> {
  readonly data: Data;
  readonly width: number;
  readonly height: number;
  /** Values a pixel, at least 3. What the length of the data comes to, if left out. */
  readonly channels?: number;
}

export interface LitPicture<Data extends Pixels = Pixels> {
  data: Data;
  width: number;
  height: number;
  channels: number;
}

/** The platform's own ImageData, where there is one. */
type PlatformImageData = typeof globalThis extends {
  ImageData: { prototype: infer Image };
}
  ? Image
  : never;

/** The name of a bundled style, JSON as text or as an object, or the bytes of a style file. */
export type Style = string | object | ArrayBuffer | Uint8Array;

export interface LightOptions {
  /** Heights, one value a pixel, of any kind; without it the style's relief channel, if the picture has it. */
  relief?: Pixels;
  /** The part that is lit, and that the style is fitted to. */
  area?: { x: number; y: number; width: number; height: number };
  /** Stops the work; the promise is then rejected with the signal's reason. */
  signal?: { readonly aborted: boolean; throwIfAborted(): void };
  /** Told how much is done, up to 1. What it throws, light() is rejected with. */
  onProgress?: (done: number) => void;
}

/** What is thrown for every failure; the message says what is wrong. */
export interface LimnError extends Error {
  name: "LimnError";
  code:
    | "LIMN_CANCELLED" /** closed while it worked */
    | "LIMN_BAD_ARGUMENT"
    | "LIMN_BAD_STYLE"
    | "LIMN_NO_MEMORY"
    | "LIMN_FAILED";
}

export interface Limn {
  /** Lights a picture and gives a new one of the same kind. The picture must not change meanwhile. */
  light(image: PlatformImageData, style: Style, options?: LightOptions): Promise<PlatformImageData>;
  light<Data extends Pixels>(
    image: Picture<Data>,
    style: Style,
    options?: LightOptions,
  ): Promise<LitPicture<Data>>;
  /** The names of the bundled styles. */
  styles(): string[];
  /** A style's JSON, to be changed and handed to light(). */
  style(style: Style): Record<string, unknown>;
  /** Ends the workers. A program ends without it too. */
  close(): void;
}

export interface LoadOptions {
  /** Threads besides this one, 0 to 256. 0, the default: the work is done here, in short turns. */
  workers?: number;
  /** The file limn.wasm, where it cannot be read from beside the package's own files. */
  wasm?: BufferSource | WebAssembly.Module;
}

export function load(options?: LoadOptions): Promise<Limn>;
