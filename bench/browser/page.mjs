/** Times our effects beside the peers in a browser, in a worker; of jimp, the package has only a stub for browsers. */
import { openCv, ours, oursCopying, photon, vips } from "./operations.mjs";
import { SIZES, tableOf, timesOf } from "./stage.mjs";

const PEERS = "/peers/node_modules";

/** A module for Node, with what it requires. It may not be a promise, as one of them wants to be. */
async function commonJs(address, modules = {}) {
    const module = { exports: {} };
    new Function("module", "exports", "require", "__dirname", await (await fetch(address)).text())(
        module, module.exports, (name) => modules[name], "");
    delete module.exports.then;
    return module.exports;
}

async function photonReady() {
    const folder = `${PEERS}/@silvia-odwyer/photon-node`;
    const bytes = new Uint8Array(await (await fetch(`${folder}/photon_rs_bg.wasm`)).arrayBuffer());
    return commonJs(`${folder}/photon_rs.js`, {
        util: globalThis, path: { join: (...words) => words.join("/") }, fs: { readFileSync: () => bytes },
    });
}

async function openCvReady() {
    const cv = await commonJs(`${PEERS}/@techstark/opencv-js/dist/opencv.js`);
    if (!cv.Mat) await new Promise((ready) => { cv.onRuntimeInitialized = ready; });
    return cv;
}

async function tables(sizes) {
    const { Engine } = await import("/krlimage/krlimage.js");
    const libraries = [
        ours("ours", await Engine.create()),
        ours("2 threads", await Engine.create({ threads: 2 })),
        oursCopying("copying", await Engine.create()),
        photon(await photonReady()),
        openCv(await openCvReady()),
        vips(await (await import(`${PEERS}/wasm-vips/lib/vips-es6.js`)).default({ dynamicLibraries: [] })),
    ];
    const made = [];
    for (const size of sizes) {
        const times = await timesOf(libraries, size, (words) => globalThis.postMessage({ words }));
        made.push(`Chromium, ${size.join(" by ")}\n\n${tableOf(times, libraries.map(({ name }) => name))}`);
    }
    return made.join("\n\n");
}

globalThis.onmessage = ({ data: { size } }) => tables(size ? [size] : SIZES).then(
    (table) => globalThis.postMessage({ table }),
    (problem) => globalThis.postMessage({ failure: String(problem?.stack ?? problem) }));
