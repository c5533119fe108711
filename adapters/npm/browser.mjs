// The package in a browser.

import { loadOn } from "./pool.mjs";

function startWorker() {
  const worker = new Worker(new URL("./browser-worker.mjs", import.meta.url), { type: "module" });
  return {
    post: (message, moved) => worker.postMessage(message, moved),
    onMessage: (handler) => worker.addEventListener("message", ({ data }) => handler(data)),
    onError: (handler) => worker.addEventListener("error", handler),
    busy() {},
    close: () => worker.terminate(),
  };
}

async function readModule() {
  const answer = await fetch(new URL("./limn.wasm", import.meta.url));
  if (!answer.ok) throw new Error(`limn.wasm: ${answer.status} ${answer.statusText}`);
  return answer.arrayBuffer();
}

// A turn for others. A timer would wait for four milliseconds.
function pause() {
  const { port1, port2 } = new MessageChannel();
  return new Promise((resolve) => {
    port1.onmessage = () => {
      port1.close();
      resolve();
    };
    port2.postMessage(null);
  });
}

export function load(options) {
  return loadOn({ readModule, startWorker, pause }, options);
}
