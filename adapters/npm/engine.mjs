// The WebAssembly module, called by hand: one instance lights one band at a time.

// Typed arrays by their names, which subclasses and arrays of other windows share.
const KINDS = {
  Uint8Array: { type: Uint8Array, kind: 0 },
  Uint8ClampedArray: { type: Uint8ClampedArray, kind: 0 },
  Uint16Array: { type: Uint16Array, kind: 1 },
  Float32Array: { type: Float32Array, kind: 2 },
};
const kindOf = (data) => KINDS[Object.prototype.toString.call(data).slice(8, -1)];
const CODES = ["OK", "CANCELLED", "BAD_ARGUMENT", "BAD_STYLE", "CANNOT_READ", "NO_MEMORY", "FAILED"];
const LONGEST_BLOCK = 0x7fff0000; // what malloc's size can be without wrapping

export function failure(code, message) {
  return Object.assign(new Error(message), { name: "LimnError", code: `LIMN_${code}` });
}

// The same memory as an array of the plain type: slices of a Buffer would be views.
export function pixelsOf(name, data) {
  const known = kindOf(data);
  if (known === undefined)
    throw failure("BAD_ARGUMENT",
      `${name}: it is no Uint8Array, Uint8ClampedArray, Uint16Array or Float32Array`);
  return new known.type(data.buffer, data.byteOffset, data.length);
}

// What the C++ library names but lighting never calls: files, the clock, the end of the program.
function unused(module) {
  const imports = {};
  for (const { module: from, name, kind } of WebAssembly.Module.imports(module))
    if (kind === "function")
      (imports[from] ??= {})[name] = () => {
        throw new WebAssembly.RuntimeError(name);
      };
  return Object.assign(imports, { env: { ...imports.env, emscripten_notify_memory_growth() {} } });
}

export class Engine {
  static async start(module) {
    const instance = await WebAssembly.instantiate(module, unused(module));
    const engine = new this(instance.exports);
    engine.call("_initialize");
    engine.#error = engine.#allocate(512);
    return engine;
  }

  #exports;
  #error;
  #blocks = [];
  #job = null;
  #bands = 0;

  constructor(exports) {
    this.#exports = exports;
  }

  // After a trap the instance's memory is as it may be: nothing more is asked of it.
  call(name, ...values) {
    if (this.#exports === null) throw failure("FAILED", "the module has failed before");
    try {
      return this.#exports[name](...values);
    } catch (error) {
      this.#exports = null;
      throw failure("FAILED", `the module failed: ${error.message}`);
    }
  }

  // Calls what ends with an error parameter; throws what that says.
  checked(name, ...values) {
    const result = this.call(name, ...values, this.#error);
    const bytes = this.memory();
    const code = bytes[this.#error];
    if (code !== 0) throw failure(CODES[code] ?? "FAILED", this.#text(this.#error + 4));
    return result;
  }

  // Until the next call, which may move it.
  memory() {
    return new Uint8Array(this.#exports.memory.buffer);
  }

  #text(address) {
    const bytes = this.memory();
    return new TextDecoder().decode(bytes.subarray(address, bytes.indexOf(0, address)));
  }

  #allocate(size) {
    const address = size <= LONGEST_BLOCK ? this.call("malloc", Math.max(size, 1)) >>> 0 : 0;
    if (address === 0) throw failure("NO_MEMORY", "there is not enough memory");
    return address;
  }

  // A block that is kept for the next band: number `which` of the three.
  #room(which, size) {
    const kept = this.#blocks[which];
    if (kept !== undefined && kept.size >= size) return kept.address;
    this.#release(which);
    const address = this.#allocate(size);
    this.#blocks[which] = { address, size };
    return address;
  }

  #release(which) {
    if (this.#blocks[which] !== undefined) this.call("free", this.#blocks[which].address);
    this.#blocks[which] = undefined;
  }

  // An array in a kept block: its address, good until that block holds something else.
  put(which, array) {
    const address = this.#room(which, array.byteLength);
    this.memory().set(new Uint8Array(array.buffer, array.byteOffset, array.byteLength), address);
    return address;
  }

  // The names of the styles that the module carries.
  styles() {
    const names = [];
    for (let i = 0; this.call("limn_bundled_name", i, this.#room(0, 256), 256) !== 0; ++i)
      names.push(this.#text(this.#blocks[0].address));
    return names;
  }

  // style: {name} or {bytes}, those of a style file or of JSON.
  #withSettings(style, use) {
    const bytes = style.bytes ?? new TextEncoder().encode(`${style.name}\0`);
    const address = this.put(0, bytes);
    const settings =
      style.bytes === undefined
        ? this.checked("limn_settings_bundled", address)
        : this.checked("limn_settings_from_memory", address, bytes.length);
    try {
      return use(settings);
    } finally {
      this.call("limn_settings_free", settings);
    }
  }

  // The style as JSON text.
  json(style) {
    return this.#withSettings(style, (settings) => {
      const length = this.call("limn_settings_json", settings, 0, 0);
      const address = this.#room(1, length + 1);
      if (length === 0 || this.call("limn_settings_json", settings, address, length + 1) === 0)
        throw failure("NO_MEMORY", "there is not enough memory");
      return this.#text(address);
    });
  }

  // job: {id, style, width, height, channels, area, fit}. Jobs of one id are one. fit: {width,
  // height} of the whole picture, where this is a reduced one; or left out. Returns the picture's
  // channel that the style takes as relief, from 1, or 0.
  prepare(job) {
    if (this.#job !== job.id) {
      this.#job = null;
      const { width, height, channels, area, fit } = job;
      const bands = this.#withSettings(job.style, (settings) =>
        this.checked(
          "limn_bands_prepare", settings, width, height, channels,
          area.x, area.y, area.width, area.height, fit?.width ?? 0, fit?.height ?? 0,
        ),
      );
      this.call("limn_bands_free", this.#bands);
      this.#bands = bands;
      this.#job = job.id;
    }
    return this.call("limn_bands_own_relief", this.#bands);
  }

  // Lights band.source, a typed array of the rows [first, last), or of the columns [left, right) of
  // them, into band.pixels, which may be the same, and returns those. band.relief: null, or
  // {data, step, first, last, left, right}.
  light(job, { pixels, source = pixels, first, last, left = 0, right = job.width, relief }) {
    this.prepare(job);
    const address = this.put(0, source);
    const words = new Uint32Array(13);
    words.set([address, kindOf(pixels).kind, first, left, last, right]);
    if (relief !== null) {
      const { data, step, left: from = 0, right: to = job.width } = relief;
      words.set([this.put(1, data), kindOf(data).kind, step, relief.first, from, relief.last, to], 6);
    }
    this.checked("limn_bands_light", this.#bands, this.put(2, words));
    new Uint8Array(pixels.buffer, pixels.byteOffset, pixels.byteLength).set(
      this.memory().subarray(address, address + pixels.byteLength),
    );
    return pixels;
  }

  // Heights as a Uint16Array of width * height. image: {data, width, height} of four bytes a pixel,
  // the picture or a map; pictureSide: the longer side of the picture at its full size. The room
  // that they take is given back, for they may be those of a whole photograph.
  heights(source, image, pictureSide, width, height) {
    const pixels = this.put(0, image.data);
    const out = this.#room(1, width * height * 2);
    const name = this.#allocate(16);
    this.memory().set(new TextEncoder().encode(`${source}\0`), name);
    const { width: imageWidth, height: imageHeight } = image;
    const words = [name, pixels, imageWidth, imageHeight, pictureSide, out, width, height];
    try {
      this.checked("limn_heights_make", this.put(2, Uint32Array.from(words)));
      return new Uint16Array(this.#exports.memory.buffer, out, width * height).slice();
    } finally {
      this.call("free", name);
      for (const which of [0, 1]) this.#release(which);
    }
  }
}
