/** A server for the built page, and Chromium to look at it. */
import { createServer } from "node:http";
import { readFile } from "node:fs/promises";
import { createRequire } from "node:module";
import { mkdtemp, rm } from "node:fs/promises";
import { tmpdir } from "node:os";
import { extname, join, normalize } from "node:path";

const TREE = process.env.KRL_TREE;
const require = createRequire(`${TREE}/site/package.json`);
const { chromium } = require("playwright-core");
export const AXE = require.resolve("axe-core/axe.min.js");

const TYPES = {
    ".html": "text/html", ".js": "text/javascript", ".mjs": "text/javascript", ".css": "text/css", ".wasm": "application/wasm",
    ".svg": "image/svg+xml", ".png": "image/png",
};

/** What a server says for pages that are cut off from others, in which workers share memory. */
export const ISOLATED = { "cross-origin-opener-policy": "same-origin", "cross-origin-embedder-policy": "require-corp" };

/** Serves a folder on a free port, and others under names of their own. */
async function serve(folder, others, headers) {
    const server = createServer(async (request, response) => {
        const { pathname } = new URL(request.url, "http://localhost");
        const path = normalize(pathname).replace(/\/$/, "/index.html");
        try {
            const [, name, rest] = /^\/([^/]*)\/(.*)$/.exec(path) ?? [];
            const bytes = await readFile(others[name] ? join(others[name], rest) : join(folder, path));
            response.writeHead(200, { ...headers, "content-type": TYPES[extname(path)] ?? "application/octet-stream" }).end(bytes);
        } catch {
            response.writeHead(404).end();
        }
    });
    await new Promise((resolve) => { server.listen(0, "localhost", resolve); });
    return server;
}

const FLAGS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
    "--disable-component-update", "--disable-sync"];

/** The page in a browser, which a server gives with `headers`; `close` ends all. */
export async function openSite(headers = {}) {
    const others = { tests: `${TREE}/tests/javascript`, pictures: process.env.KRL_HASH_PICTURES };
    const server = await serve(`${TREE}/build/site`, others, headers);
    const profile = await mkdtemp(join(tmpdir(), "krl-site-"));
    const context = await chromium.launchPersistentContext(profile, {
        executablePath: "/usr/bin/chromium", args: FLAGS, viewport: { width: 1440, height: 900 }, acceptDownloads: true,
        permissions: ["clipboard-read", "clipboard-write"],
    });
    context.setDefaultTimeout(20_000);
    const address = `http://localhost:${server.address().port}/`;
    const problems = [];
    const watch = (page) => {
        page.on("console", (message) => { if (message.type() === "error") problems.push(message.text()); });
        page.on("pageerror", (error) => problems.push(String(error)));
        return page;
    };
    return {
        address, context, problems,
        newPage: async (hash = "") => {
            const page = watch(await context.newPage());
            await page.goto(address + hash);
            await page.locator(".facts").filter({ hasText: "×" }).waitFor();
            return page;
        },
        close: async () => {
            await context.close();
            server.close();
            await rm(profile, { recursive: true, force: true });
        },
    };
}
