// usage: node build.mjs REPOSITORY LIMN-WASM OUTPUT-FOLDER
// Makes the page: a folder of files for any web server. It may lie anywhere; esbuild is looked for beside it.

import { createHash } from "node:crypto";
import { cpSync, mkdirSync, readdirSync, readFileSync, rmSync } from "node:fs";
import path from "node:path";

import { build } from "esbuild";

const [root, wasm, out] = process.argv.slice(2);
const here = path.join(root, "adapters/web");

rmSync(out, { recursive: true, force: true });
mkdirSync(path.join(out, "samples"), { recursive: true });
for (const name of ["index.html", "page.css", "manifest.webmanifest"])
  cpSync(path.join(here, name), path.join(out, name));
cpSync(wasm, path.join(out, "limn.wasm"));
cpSync(path.join(root, "desktop/limn.svg"), path.join(out, "limn.svg"));
for (const name of ["still-life", "portrait", "landscape", "texture"])
  cpSync(path.join(root, `resources/photos/${name}.jpg`), path.join(out, `samples/${name}.jpg`));

const options = { bundle: true, minify: true, format: "esm", target: "es2022", logLevel: "warning", outdir: out };
await build({ ...options, entryPoints: { page: path.join(here, "src/main.ts"), worker: path.join(here, "src/worker.ts") } });

const files = readdirSync(out, { recursive: true, withFileTypes: true })
  .filter((entry) => entry.isFile())
  .map((entry) => path.relative(out, path.join(entry.parentPath ?? entry.path, entry.name)))
  .sort();
const digest = createHash("sha256");
for (const name of files) digest.update(name).update(readFileSync(path.join(out, name)));
await build({
  ...options, entryPoints: { sw: path.join(here, "src/sw.ts") },
  define: { VERSION: JSON.stringify(digest.digest("hex").slice(0, 16)), FILES: JSON.stringify(["./", ...files]) },
});
