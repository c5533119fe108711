import { answer } from "../../npm/pool.mjs";

const handle = answer((message: unknown, moved: Transferable[]) => self.postMessage(message, { transfer: moved }));
self.addEventListener("message", ({ data }) => handle(data));
