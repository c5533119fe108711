// Who lights: this thread, or a pool of workers that need neither shared memory nor special headers.

import { Engine, failure } from "./engine.mjs";
import { Limn } from "./limn.mjs";

// One that works on this very thread, and lets others have a turn before each band.
function localWorker(engine, pause) {
  return {
    async light(job, band) {
      await pause();
      return engine.light(job, band);
    },
    close() {},
  };
}

// A worker as its user sees it. port: {post(message, moved), onMessage(handler), onError(handler),
// busy(whether), close()}; one that is not busy keeps no program alive.
export function pooledWorker(port, module) {
  const waiting = new Map();
  let tasks = 0;
  let lost = null;
  const rejectAll = (error) => {
    lost = error;
    for (const { reject } of waiting.values()) reject(error);
    waiting.clear();
  };
  port.onMessage(({ task, result, error }) => {
    const { resolve, reject } = waiting.get(task) ?? {};
    waiting.delete(task);
    port.busy(waiting.size > 0);
    if (error === undefined) resolve?.(result);
    else reject?.(failure(error.code.replace("LIMN_", ""), error.message));
  });
  port.onError((error) => rejectAll(failure("FAILED", `a worker failed: ${error.message}`)));
  port.post({ module }, []);
  port.busy(false); // after the listeners, which make it busy
  // What that method of the worker's engine gives, a typed array or nothing.
  const run = (method, values, moved) =>
    new Promise((resolve, reject) => {
      if (lost !== null) throw lost;
      waiting.set(++tasks, { resolve, reject });
      port.busy(true);
      port.post({ task: tasks, method, values }, moved);
    });
  return {
    run,
    light(job, band) {
      const moved = [band.pixels.buffer];
      if (band.relief !== null) moved.push(band.relief.data.buffer);
      return run("light", [job, band], moved);
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

// What runs inside a worker. post(message, transferred) answers; a method may give nothing.
export function answer(post, Kind = Engine) {
  let engine;
  return async ({ module, task, method, values }) => {
    if (module !== undefined) {
      engine = Kind.start(module);
      engine.catch(() => {}); // told with the first band
      return;
    }
    try {
      const result = (await engine)[method](...values);
      post({ task, result }, result === undefined ? [] : [result.buffer]);
    } catch (error) {
      post({ task, error: { code: error.code ?? "LIMN_FAILED", message: error.message } }, []);
    }
  };
}
