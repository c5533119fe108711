import { parentPort } from "node:worker_threads";

import { answer } from "./pool.mjs";

parentPort.on("message", answer((message, moved) => parentPort.postMessage(message, moved)));
