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
    const engine = new Engine(instance.exports);
    engine.#call("_initialize");
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
  #call(name, ...values) {
    if (this.#exports === null) throw failure("FAILED", "the module has failed before");
    try {
      return this.#exports[name](...values);
    } catch (error) {
      this.#exports = null;
      throw failure("FAILED", `the module failed: ${error.message}`);
    }
  }

  // Calls what ends with an error parameter; throws what that says.
  #checked(name, ...values) {
    const result = this.#call(name, ...values, this.#error);
    const bytes = this.#bytes();
    const code = bytes[this.#error];
    if (code !== 0) throw failure(CODES[code] ?? "FAILED", this.#text(this.#error + 4));
    return result;
  }

  #bytes() {
    return new Uint8Array(this.#exports.memory.buffer);
  }

  #text(address) {
    const bytes = this.#bytes();
    return new TextDecoder().decode(bytes.subarray(address, bytes.indexOf(0, address)));
  }

  #allocate(size) {
    const address = size <= LONGEST_BLOCK ? this.#call("malloc", Math.max(size, 1)) >>> 0 : 0;
    if (address === 0) throw failure("NO_MEMORY", "there is not enough memory");
    return address;
  }

  // A block that is kept for the next band: number `which` of the three.
  #room(which, size) {
    const kept = this.#blocks[which];
    if (kept !== undefined && kept.size >= size) return kept.address;
    if (kept !== undefined) this.#call("free", kept.address);
    this.#blocks[which] = undefined;
    const address = this.#allocate(size);
    this.#blocks[which] = { address, size };
    return address;
  }

  #put(which, array) {
    const address = this.#room(which, array.byteLength);
    this.#bytes().set(new Uint8Array(array.buffer, array.byteOffset, array.byteLength), address);
    return address;
  }

  // The names of the styles that the module carries.
  styles() {
    const names = [];
    for (let i = 0; this.#call("limn_bundled_name", i, this.#room(0, 256), 256) !== 0; ++i)
      names.push(this.#text(this.#blocks[0].address));
    return names;
  }

  // style: {name} or {bytes}, those of a style file or of JSON.
  #withSettings(style, use) {
    const bytes = style.bytes ?? new TextEncoder().encode(`${style.name}\0`);
    const address = this.#put(0, bytes);
    const settings =
      style.bytes === undefined
        ? this.#checked("limn_settings_bundled", address)
        : this.#checked("limn_settings_from_memory", address, bytes.length);
    try {
      return use(settings);
    } finally {
      this.#call("limn_settings_free", settings);
    }
  }

  // The style as JSON text.
  json(style) {
    return this.#withSettings(style, (settings) => {
      const length = this.#call("limn_settings_json", settings, 0, 0);
      const address = this.#room(1, length + 1);
      if (length === 0 || this.#call("limn_settings_json", settings, address, length + 1) === 0)
        throw failure("NO_MEMORY", "there is not enough memory");
      return this.#text(address);
    });
  }

  // job: {id, style, width, height, channels, area}. Jobs of one id are one. Returns the picture's
  // channel that the style takes as relief, from 1, or 0.
  prepare(job) {
    if (this.#job !== job.id) {
      this.#job = null;
      const { width, height, channels, area } = job;
      const bands = this.#withSettings(job.style, (settings) =>
        this.#checked(
          "limn_bands_prepare", settings, width, height, channels,
          area.x, area.y, area.width, area.height,
        ),
      );
      this.#call("limn_bands_free", this.#bands);
      this.#bands = bands;
      this.#job = job.id;
    }
    return this.#call("limn_bands_own_relief", this.#bands);
  }

  // Lights band.pixels, a typed array of the rows [first, last), in place. band.relief: null, or
  // {data, step, first, last}.
  light(job, { pixels, first, last, relief }) {
    this.prepare(job);
    const address = this.#put(0, pixels);
    const words = [address, kindOf(pixels).kind, first, last, 0, 0, 0, 0, 0];
    if (relief !== null) {
      words[4] = this.#put(1, relief.data);
      words[5] = kindOf(relief.data).kind;
      words.splice(6, 3, relief.step, relief.first, relief.last);
    }
    const band = this.#put(2, Uint32Array.from(words));
    this.#checked("limn_bands_light", this.#bands, band);
    new Uint8Array(pixels.buffer, pixels.byteOffset, pixels.byteLength).set(
      this.#bytes().subarray(address, address + pixels.byteLength),
    );
  }
}
