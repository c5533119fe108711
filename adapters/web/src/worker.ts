import { Engine } from "../../npm/engine.mjs";
import { answer } from "../../npm/pool.mjs";
import type { Band } from "./lighter.ts";

/** Keeps bands that are lit many times over, so that only what was lit travels. */
class KeepingEngine extends Engine {
  readonly #kept = new Map<number, Band>();

  keep(number: number, band: Band) {
    this.#kept.set(number, band);
  }

  lightKept(job: object, number: number, hasRelief: boolean, pixels: Uint8ClampedArray) {
    const band = this.#kept.get(number)!;
    return this.light(job, { ...band, relief: hasRelief ? band.relief : null, pixels });
  }
}

const handle = answer((message: unknown, moved: Transferable[]) => self.postMessage(message, { transfer: moved }), KeepingEngine);
self.addEventListener("message", ({ data }) => handle(data));
