/** Runs page.mjs in Chromium and prints its tables: node chromium.mjs TREE [SIZE] */
import { readFile } from "node:fs/promises";
import { createServer } from "node:http";
import { createRequire } from "node:module";
import { extname, join, normalize } from "node:path";

const tree = process.argv[2];
const { chromium } = createRequire(`${tree}/site/package.json`)("playwright-core");
const FOLDERS = { krlimage: "build/javascript/dist", peers: "build/bench/browser", bench: "bench/browser" };
const TYPES = { ".html": "text/html", ".js": "text/javascript", ".mjs": "text/javascript", ".wasm": "application/wasm" };
const HEADERS = { "cross-origin-opener-policy": "same-origin", "cross-origin-embedder-policy": "require-corp" };

const server = createServer(async (request, response) => {
    const [, name, rest] = /^\/([^/]*)\/?(.*)$/.exec(normalize(new URL(request.url, "http://localhost").pathname));
    try {
        const bytes = name ? await readFile(join(tree, FOLDERS[name], rest)) : "<!doctype html><title>bench</title>";
        response.writeHead(200, { ...HEADERS, "content-type": TYPES[extname(rest) || ".html"] ?? "" }).end(bytes);
    } catch {
        response.writeHead(404).end();
    }
});
await new Promise((resolve) => { server.listen(0, "localhost", resolve); });
const browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--headless", "--no-sandbox", "--disable-gpu"] });
const page = await browser.newPage();
page.on("console", (message) => console.error(message.text()));
await page.goto(`http://localhost:${server.address().port}/`);
console.log(await page.evaluate((size) => new Promise((resolve, reject) => {
    const worker = new Worker("/bench/page.mjs", { type: "module" });
    worker.onerror = (event) => reject(new Error(event.message));
    worker.onmessage = ({ data: { words, table, failure } }) => {
        if (words) console.log(words);
        if (table) resolve(table);
        if (failure) reject(new Error(failure));
    };
    worker.postMessage({ size });
}), process.argv[3]?.split("x").map(Number)));
await browser.close();
server.close();
