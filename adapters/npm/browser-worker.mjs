import { answer } from "./pool.mjs";

const handle = answer((message, moved) => self.postMessage(message, moved));
self.addEventListener("message", ({ data }) => handle(data));
