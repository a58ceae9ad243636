/** What is in the package, and how large it is. */
import assert from "node:assert/strict";
import { execFile } from "node:child_process";
import { readFile, readdir } from "node:fs/promises";
import { test } from "node:test";
import { promisify } from "node:util";
import { gzipSync } from "node:zlib";

/**
 * What a module may grow to, as it is and by gzip: that of the engine, which every page loads, and those of scripts and
 * of threads.
 */
const ENGINE = [900_000, 350_000];
const SCRIPTS = [1_300_000, 480_000];
const THREADS = [950_000, 370_000];
const MOST_BYTES = {
    "krlimage-simd": ENGINE, "krlimage-plain": ENGINE,
    "krlimage-lingo-simd": SCRIPTS, "krlimage-lingo-plain": SCRIPTS,
    "krlimage-threads": THREADS,
};

const folder = "node_modules/krlimage";
const read = (name) => readFile(`${folder}/${name}`);

test("modules keep to their size", async () => {
    for (const [name, most] of Object.entries(MOST_BYTES)) {
        const bytes = await read(`dist/${name}.wasm`);
        const sizes = [bytes.length, gzipSync(bytes, { level: 9 }).length];
        console.log(`${name}.wasm: ${sizes[0]} bytes, ${sizes[1]} compressed`);
        assert.ok(sizes.every((size, index) => size <= most[index]), `${name}: ${sizes} are more than ${most}`);
    }
});

test("nothing else is needed or included", async () => {
    const description = JSON.parse(await read("package.json"));
    assert.deepEqual(description.dependencies ?? {}, {});
    assert.deepEqual((await readdir(folder)).sort(), ["LICENSE", "README.md", "dist", "package.json"]);
    assert.deepEqual((await readdir(`${folder}/dist`)).sort(), ["krlimage-lingo-plain.mjs",
        "krlimage-lingo-plain.wasm", "krlimage-lingo-simd.mjs", "krlimage-lingo-simd.wasm", "krlimage-plain.mjs",
        "krlimage-plain.wasm", "krlimage-simd.mjs", "krlimage-simd.wasm", "krlimage-threads.wasm", "krlimage-worker.js",
        "krlimage.js", "types"]);
});

test("the examples of the readme run", async () => {
    const readme = (await read("README.md")).toString();
    const examples = [...readme.matchAll(/^```js\n(.*?)^```/gms)].map((match) => match[1]);
    assert.ok(examples.length > 2);
    const source = `const { Engine: Made } = await import("krlimage");
        globalThis.imageData = { width: 96, height: 64, data: new Uint8ClampedArray(96 * 64 * 4).fill(90) };
        globalThis.canvas = imageData;\n`;
    for (const example of examples)
        await promisify(execFile)(process.execPath, ["--input-type=module", "--eval", source + example]);
});
