/** Loads our package and the peers in Node: each is a function that gives what operations.mjs describes. */
import { createRequire } from "node:module";
import { pathToFileURL } from "node:url";
import { jimp, openCv, ours, oursCopying, photon, sharp, vips } from "./operations.mjs";

async function engineOf(tree, options) {
    const { Engine } = await import(pathToFileURL(`${tree}/build/javascript/dist/krlimage.js`));
    return Engine.create(options);
}

/** Its `then` gives itself, over and over. */
async function openCvReady(cv) {
    delete cv.then;
    if (!cv.Mat) await new Promise((ready) => { cv.onRuntimeInitialized = ready; });
    return cv;
}

/** By name, ours first. Peers are those that bench/browser/bench installs. */
export function librariesOf(tree) {
    const require = createRequire(`${tree}/build/bench/browser/package.json`);
    return {
        ours: async () => ours("ours", await engineOf(tree)),
        "2 threads": async () => ours("2 threads", await engineOf(tree, { threads: 2 })),
        copying: async () => oursCopying("copying", await engineOf(tree)),
        photon: async () => photon(require("@silvia-odwyer/photon-node")),
        jimp: async () => jimp(require("jimp")),
        "opencv-js": async () => openCv(await openCvReady(require("@techstark/opencv-js"))),
        "wasm-vips": async () => vips(await require("wasm-vips")()),
        sharp: async () => sharp(require("sharp")),
    };
}
