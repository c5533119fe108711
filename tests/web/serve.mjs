// usage: node serve.mjs FOLDER [PORT]    serves the page as any web server would, and says where.

import { createServer } from "node:http";
import { readFile } from "node:fs/promises";
import path from "node:path";
import { pathToFileURL } from "node:url";

const TYPES = {
  ".html": "text/html; charset=utf-8", ".js": "text/javascript", ".css": "text/css", ".wasm": "application/wasm",
  ".svg": "image/svg+xml", ".mjs": "text/javascript", ".json": "application/json", ".jpg": "image/jpeg", ".webmanifest": "application/manifest+json",
};

export function serve(folder, port = 0) {
  const server = createServer(async ({ url }, answer) => {
    const wanted = path.normalize(decodeURIComponent(new URL(url, "http://x").pathname));
    const name = wanted.endsWith("/") ? `${wanted}index.html` : wanted;
    try {
      const bytes = await readFile(path.join(folder, name));
      answer.writeHead(200, { "content-type": TYPES[path.extname(name)] ?? "application/octet-stream" }).end(bytes);
    } catch {
      answer.writeHead(404).end();
    }
  });
  return new Promise((resolve) => server.listen(port, "127.0.0.1", () => resolve(server)));
}

if (import.meta.url === pathToFileURL(process.argv[1] ?? "").href) {
  const server = await serve(process.argv[2], Number(process.argv[3] ?? 8080));
  console.log(`http://127.0.0.1:${server.address().port}/`);
}
