// Keeps the page for when there is no network: all of its files are fetched on the first visit, and
// from then on come from here. A new version comes with the visit after the one that fetched it.

declare const VERSION: string; // put in by the build
declare const FILES: string[];

const worker = self as unknown as ServiceWorkerGlobalScope;

worker.addEventListener("install", (event) =>
  event.waitUntil(caches.open(VERSION).then((cache) => cache.addAll(FILES))));

worker.addEventListener("activate", (event) =>
  event.waitUntil((async () => {
    for (const name of await caches.keys()) if (name !== VERSION) await caches.delete(name);
    await worker.clients.claim();
  })()));

worker.addEventListener("fetch", (event) => {
  const { method, url } = event.request;
  if (method !== "GET" || new URL(url).origin !== worker.location.origin) return;
  event.respondWith((async () => {
    const kept = await caches.match(event.request, { ignoreSearch: true });
    return kept ?? fetch(event.request);
  })());
});
