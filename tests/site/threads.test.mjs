/** Threads on pages: where the page is cut off from others, and nowhere else; the bytes are the same. */
import assert from "node:assert/strict";
import { test } from "node:test";
import { Engine } from "../../build/javascript/dist/krlimage.js";
import { enlarged, hashOf } from "../javascript/rows.mjs";
import { readTable, sample } from "../javascript/support.mjs";
import { ISOLATED, openSite } from "./browser.mjs";

/** The hash of what tests/javascript/threads-worker.mjs makes, by one thread in Node. */
async function expectedOfLarge() {
    const engine = await Engine.create();
    const picture = enlarged(await sample("landscape"), 4);
    for (const name of ["fastGaussianBlur", "oilPaint", "vignette"]) engine.apply(picture, name);
    return hashOf(picture);
}

/** Runs the test's worker on a page. */
const inWorker = (page, request) => page.evaluate((given) => new Promise((resolve, reject) => {
    const worker = new Worker("/tests/threads-worker.mjs", { type: "module" });
    worker.onmessage = ({ data }) => resolve(data);
    worker.onerror = (event) => reject(new Error(event.message));
    worker.postMessage(given);
}), request);

const threadsOfPage = (page) => page.evaluate(async (threads) => {
    const { Engine } = await import("/krlimage/krlimage.js");
    const engine = await Engine.create({ threads });
    const picture = new ImageData(600, 600);
    engine.apply(picture, "invert");
    return [engine.threads, picture.data[0]];
}, 3);

test("with the headers, workers have threads and the page itself has one", { timeout: 240_000 }, async () => {
    const site = await openSite(ISOLATED);
    try {
        const page = await site.newPage();
        const { isolated, threads, large, hashes } = await inWorker(page, { threads: 3, whole: !process.env.KRL_SHORT });
        assert.deepEqual([isolated, threads, large], [true, 3, await expectedOfLarge()]);
        if (!process.env.KRL_SHORT) assert.deepEqual(new Map(hashes.sort()), new Map([...await readTable()].sort()));
        assert.deepEqual(await threadsOfPage(page), [1, 255]);
        assert.deepEqual(site.problems, []);
    } finally {
        await site.close();
    }
});

test("without them one thread does the work, until the page's own service worker says them", { timeout: 120_000 }, async () => {
    const site = await openSite();
    try {
        const page = await site.newPage();
        const first = await inWorker(page, { threads: 3 });
        assert.deepEqual([first.isolated, first.threads, first.large], [false, 1, await expectedOfLarge()]);
        await page.evaluate(() => navigator.serviceWorker.ready);
        const again = await site.newPage();
        const second = await inWorker(again, { threads: 2 });
        assert.deepEqual([second.isolated, second.threads, second.large], [true, 2, first.large]);
        assert.deepEqual(site.problems, []);
    } finally {
        await site.close();
    }
});
