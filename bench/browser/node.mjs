/**
 * Times our effects beside the peers in Node, and beside our native code.
 *
 *     node node.mjs TREE [SIZE]        # after bench/browser/bench has installed everything into build/bench/browser
 */
import { execFileSync } from "node:child_process";
import { writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { pathToFileURL } from "node:url";
import { jimp, openCv, OPERATIONS, ours, photon, sharp, vips } from "./operations.mjs";
import { scene, SIZES, tableOf, timesOf } from "./stage.mjs";

const tree = process.argv[2];
const require = createRequire(`${tree}/build/bench/browser/package.json`);
const tell = (words) => console.error(words);

/** Its `then` gives itself, over and over. */
async function openCvReady() {
    const cv = require("@techstark/opencv-js");
    delete cv.then;
    if (!cv.Mat) await new Promise((ready) => { cv.onRuntimeInitialized = ready; });
    return cv;
}

/** Our native code on one thread, by a program that takes a picture of bytes. */
function nativeTimes([width, height]) {
    const files = [1, 5].map((seed) => {
        const file = `${tree}/build/bench/browser/scene-${seed}.rgba`;
        writeFileSync(file, scene(width, height, seed).data);
        return file;
    });
    const output = execFileSync(`${tree}/build/bench/browser/native`, [String(width), String(height), ...files], { encoding: "utf8" });
    return Object.fromEntries(output.trim().split("\n").map((line) => line.split(" ")).map(([key, time]) => [key, Number(time)]));
}

const { Engine } = await import(pathToFileURL(`${tree}/build/javascript/dist/krlimage.js`));
const libraries = [
    ours("ours", await Engine.create()),
    ours("2 threads", await Engine.create({ threads: 2 })),
    photon(require("@silvia-odwyer/photon-node")),
    jimp(require("jimp")),
    openCv(await openCvReady()),
    vips(await require("wasm-vips")()),
    sharp(require("sharp")),
];
for (const size of process.argv[3] ? [process.argv[3].split("x").map(Number)] : SIZES) {
    const times = await timesOf(libraries, size, tell);
    const native = nativeTimes(size);
    for (const key of Object.keys(OPERATIONS)) times[key].native = native[key];
    console.log(`\nNode, ${size.join(" by ")}\n\n${tableOf(times, [...libraries.map(({ name }) => name), "native"])}`);
}
process.exit();
