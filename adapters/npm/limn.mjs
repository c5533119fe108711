// The package's one way to light, whatever it runs on.

import { failure, pixelsOf } from "./engine.mjs";

const BAND_PIXELS = 1 << 16;
const RELIEF_REACH = 2; // rows of relief that a row needs above and below itself

let jobs = 0;

function integer(name, value) {
  if (!Number.isInteger(value) || Math.abs(value) > 0x7fffffff)
    throw failure("BAD_ARGUMENT", `${name}: it is not a whole number`);
  return value;
}

// image: {data, width, height, channels}; channels may be left out, as an ImageData does.
function formatOf(image) {
  const data = pixelsOf("data", image?.data);
  const width = integer("width", image.width);
  const height = integer("height", image.height);
  const channels = integer("channels", image.channels ?? data.length / (width * height));
  if (data.length !== width * height * channels)
    throw failure("BAD_ARGUMENT",
      `data: its length is ${data.length}, not ${width} × ${height} × ${channels}`);
  return { data, width, height, channels };
}

function areaOf(area) {
  if (area === undefined) return { x: 0, y: 0, width: 0, height: 0 };
  const checked = {};
  for (const side of ["x", "y", "width", "height"])
    checked[side] = integer(`area.${side}`, area?.[side]);
  // Four zeros would be all of the picture.
  if (checked.width < 1 || checked.height < 1)
    throw failure("BAD_ARGUMENT", "area: it is empty");
  return checked;
}

// A name, JSON as text or as an object, or the bytes of a style file.
function styleOf(style) {
  if (typeof style === "string" && !style.trimStart().startsWith("{")) return { name: style };
  if (style instanceof ArrayBuffer) return { bytes: new Uint8Array(style) };
  if (ArrayBuffer.isView(style))
    return { bytes: new Uint8Array(style.buffer, style.byteOffset, style.byteLength) };
  if (typeof style !== "string" && (typeof style !== "object" || style === null))
    throw failure("BAD_ARGUMENT", "style: it is neither a name nor JSON nor bytes");
  const text = typeof style === "string" ? style : JSON.stringify(style);
  return { bytes: new TextEncoder().encode(text) };
}

// The relief plane, or the picture's own channel that the style takes, as {data, step, offset}.
function reliefOf(relief, format, ownRelief) {
  if (relief !== undefined) {
    const data = pixelsOf("relief", relief);
    if (data.length !== format.width * format.height)
      throw failure("BAD_ARGUMENT",
        `relief: its length is ${data.length}, not ${format.width} × ${format.height}`);
    return { data, step: 1, offset: 0 };
  }
  return ownRelief > 0
    ? { data: format.data, step: format.channels, offset: ownRelief - 1 }
    : null;
}

// The rows of the relief that a band needs, copied.
function reliefRows(relief, { width, height }, first, last) {
  const from = Math.max(first - RELIEF_REACH, 0);
  const to = Math.min(last + RELIEF_REACH, height);
  const row = width * relief.step;
  const end = to * row; // the last pixel's channel and those after it
  return {
    data: relief.data.slice(from * row + relief.offset, end),
    step: relief.step, first: from, last: to,
  };
}

// The rows that are lit, in bands.
function* bandsOf({ width, height }, area) {
  const rows = Math.max(Math.floor(BAND_PIXELS / width), 1);
  const end = area.height === 0 ? height : area.y + area.height;
  for (let first = area.y; first < end; first += rows)
    yield { first, last: Math.min(first + rows, end) };
}

export class Limn {
  #engine;
  #workers;
  #closed = false;

  constructor(engine, workers) {
    this.#engine = engine;
    this.#workers = workers;
    this.light = this.light.bind(this);
  }

  styles() {
    return this.#engine.styles();
  }

  style(style) {
    return JSON.parse(this.#engine.json(styleOf(style)));
  }

  close() {
    this.#closed = true;
    for (const worker of this.#workers) worker.close();
  }

  async light(image, style, options = {}) {
    if (this.#closed) throw failure("CANCELLED", "the package was closed");
    const format = formatOf(image);
    const { signal, onProgress } = options;
    const { width, height, channels } = format;
    const job = { id: ++jobs, style: styleOf(style), width, height, channels, area: areaOf(options.area) };
    const relief = reliefOf(options.relief, format, this.#engine.prepare(job));
    signal?.throwIfAborted();
    const output = format.data.slice();
    await this.#lightBands(job, format.data, relief, output, signal, onProgress);
    return typeof ImageData === "function" && image instanceof ImageData
      ? new ImageData(output, width, height, { colorSpace: image.colorSpace })
      : { data: output, width, height, channels };
  }

  async #lightBands(job, data, relief, output, signal, onProgress) {
    const bands = bandsOf(job, job.area);
    const total = job.area.height || job.height;
    const row = job.width * job.channels;
    let done = 0;
    let failed = false;
    const lane = async (worker) => {
      for (const { first, last } of bands) {
        const lit = await worker.light(job, {
          pixels: data.slice(first * row, last * row), first, last,
          relief: relief === null ? null : reliefRows(relief, job, first, last),
        });
        if (failed) return;
        signal?.throwIfAborted();
        output.set(lit, first * row);
        done += last - first;
        onProgress?.(done / total);
      }
    };
    try {
      await Promise.all(this.#workers.map(lane));
    } catch (error) {
      failed = true;
      throw error;
    } finally {
      bands.return();
    }
  }
}
