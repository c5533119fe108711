// The package in Node.

import { readFile } from "node:fs/promises";
import { Worker } from "node:worker_threads";

import { loadOn } from "./pool.mjs";

function startWorker() {
  // Without the program's own options, of which --input-type is refused to workers.
  const worker = new Worker(new URL("./node-worker.mjs", import.meta.url), { execArgv: [] });
  return {
    post: (message, moved) => worker.postMessage(message, moved),
    onMessage: (handler) => worker.on("message", handler),
    onError(handler) {
      worker.on("error", handler);
      worker.on("exit", () => handler(new Error("it has ended")));
    },
    busy: (whether) => (whether ? worker.ref() : worker.unref()),
    close: () => worker.terminate(),
  };
}

export function load(options) {
  return loadOn(
    {
      readModule: () => readFile(new URL("./limn.wasm", import.meta.url)),
      startWorker,
      pause: () => new Promise((resolve) => setImmediate(resolve)),
    },
    options,
  );
}
