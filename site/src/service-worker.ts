/// <reference lib="webworker" />
/** Keeps the page for times without a network. The build puts the version and the list of files in. */
declare const self: ServiceWorkerGlobalScope;
declare const VERSION: string;
declare const FILES: readonly string[];

const CACHE = `krlimage-studio-${VERSION}`;

/** Cuts the page off from others, without which workers share no memory. Servers of plain files do not say so themselves. */
function isolated(response: Response): Response {
    const headers = new Headers(response.headers);
    headers.set("Cross-Origin-Opener-Policy", "same-origin");
    headers.set("Cross-Origin-Embedder-Policy", "require-corp");
    return new Response(response.body, { status: response.status, statusText: response.statusText, headers });
}

self.addEventListener("install", (event) => {
    event.waitUntil(caches.open(CACHE).then((cache) => cache.addAll(FILES)).then(() => self.skipWaiting()));
});

self.addEventListener("activate", (event) => {
    const isOld = (name: string) => name.startsWith("krlimage-studio-") && name !== CACHE;
    event.waitUntil(caches.keys().then((names) => Promise.all(names.filter(isOld).map((name) => caches.delete(name))))
        .then(() => self.clients.claim()));
});

self.addEventListener("fetch", (event) => {
    if (event.request.method !== "GET" || new URL(event.request.url).origin !== location.origin) return;
    event.respondWith(caches.match(event.request, { ignoreSearch: true }).then((kept) => kept ?? fetch(event.request)).then(isolated));
});

export {};
