// Who lights: this thread, or a pool of workers that need neither shared memory nor special headers.

import { Engine, failure } from "./engine.mjs";
import { Limn } from "./limn.mjs";

// One that works on this very thread, and lets others have a turn before each band.
function localWorker(engine, pause) {
  return {
    async light(job, band) {
      await pause();
      engine.light(job, band);
      return band.pixels;
    },
    close() {},
  };
}

// A worker as its user sees it. port: {post(message, moved), onMessage(handler), onError(handler),
// busy(whether), close()}; one that is not busy keeps no program alive.
function pooledWorker(port, module) {
  const waiting = new Map();
  let tasks = 0;
  let lost = null;
  const rejectAll = (error) => {
    lost = error;
    for (const { reject } of waiting.values()) reject(error);
    waiting.clear();
  };
  port.onMessage(({ task, pixels, error }) => {
    const { resolve, reject } = waiting.get(task) ?? {};
    waiting.delete(task);
    port.busy(waiting.size > 0);
    if (error === undefined) resolve?.(pixels);
    else reject?.(failure(error.code.replace("LIMN_", ""), error.message));
  });
  port.onError((error) => rejectAll(failure("FAILED", `a worker failed: ${error.message}`)));
  port.post({ module }, []);
  return {
    light(job, band) {
      return new Promise((resolve, reject) => {
        if (lost !== null) throw lost;
        waiting.set(++tasks, { resolve, reject });
        const moved = [band.pixels.buffer];
        if (band.relief !== null) moved.push(band.relief.data.buffer);
        port.busy(true);
        port.post({ task: tasks, job, band }, moved);
      });
    },
    close() {
      port.close();
      rejectAll(failure("CANCELLED", "the package was closed"));
    },
  };
}

// platform: {readModule(), startWorker(), pause()}.
export async function loadOn(platform, { wasm, workers = 0 } = {}) {
  if (!Number.isInteger(workers) || workers < 0 || workers > 256)
    throw failure("BAD_ARGUMENT", `workers: ${workers} is not between 0 and 256`);
  const module = wasm instanceof WebAssembly.Module
    ? wasm
    : await WebAssembly.compile(wasm ?? (await platform.readModule()));
  const engine = await Engine.start(module);
  if (workers === 0) return new Limn(engine, [localWorker(engine, platform.pause)]);
  const pool = [];
  for (let i = 0; i < workers; ++i) pool.push(pooledWorker(platform.startWorker(), module));
  return new Limn(engine, pool);
}

// What runs inside a worker. post(message, transferred) answers.
export function answer(post) {
  let engine;
  return async ({ module, task, job, band }) => {
    if (module !== undefined) {
      engine = Engine.start(module);
      engine.catch(() => {}); // told with the first band
      return;
    }
    try {
      (await engine).light(job, band);
      post({ task, pixels: band.pixels }, [band.pixels.buffer]);
    } catch (error) {
      post({ task, error: { code: error.code ?? "LIMN_FAILED", message: error.message } }, []);
    }
  };
}
