// A picture as the page has it: decoded once, its pixels asked for by parts and at sizes.

const LONGEST_SIDE = 32767;
const MOST_PIXELS = 150_000_000;

export interface Part {
  left: number;
  top: number;
  width: number;
  height: number;
}

export class UnreadablePicture extends Error {}

export class Picture {
  readonly name: string;
  readonly width: number;
  readonly height: number;
  readonly #bitmap: ImageBitmap;

  private constructor(name: string, bitmap: ImageBitmap) {
    this.name = name;
    this.#bitmap = bitmap;
    this.width = bitmap.width;
    this.height = bitmap.height;
  }

  /** Upright, in sRGB. Throws UnreadablePicture. */
  static async open(file: Blob, name: string): Promise<Picture> {
    let bitmap: ImageBitmap;
    try {
      bitmap = await createImageBitmap(file, { premultiplyAlpha: "none", imageOrientation: "from-image" });
    } catch {
      throw new UnreadablePicture(name);
    }
    if (Math.max(bitmap.width, bitmap.height) > LONGEST_SIDE || bitmap.width * bitmap.height > MOST_PIXELS)
      throw new RangeError(name);
    return new Picture(name, bitmap);
  }

  /** The name without folder and extension. */
  get stem(): string {
    return this.name.replace(/^.*[/\\]/, "").replace(/\.[^.]*$/, "") || "picture";
  }

  /** The pixels of a part; of all of it at its size, unless another is asked for. */
  pixels(part: Part = this.whole, width = part.width, height = part.height): ImageData {
    const canvas = new OffscreenCanvas(width, height);
    const context = canvas.getContext("2d", { willReadFrequently: true })!;
    context.imageSmoothingEnabled = width !== part.width || height !== part.height;
    context.imageSmoothingQuality = "high";
    context.drawImage(this.#bitmap, part.left, part.top, part.width, part.height, 0, 0, width, height);
    return context.getImageData(0, 0, width, height);
  }

  get whole(): Part {
    return { left: 0, top: 0, width: this.width, height: this.height };
  }

  close() {
    this.#bitmap.close();
  }
}
