/**
 * Times our effects in Node beside our native code, and beside the peers.
 *
 *     node node.mjs TREE [SIZE]        # after bench/browser/bench has installed everything into build/bench
 */
import { execFileSync } from "node:child_process";
import { writeFileSync } from "node:fs";
import { librariesOf } from "./libraries.mjs";
import { scene, SIZES, tableOf, timesOf } from "./stage.mjs";

const tree = process.argv[2];
const sizes = process.argv[3] ? [process.argv[3].split("x").map(Number)] : SIZES;
const tell = (words) => console.error(words);
const print = (title, [width, height], table) => console.log(`\n${title}, ${width} by ${height}\n\n${table}`);

/** Our native code on one thread, by a program that takes a picture of bytes. */
function nativeTimes([width, height]) {
    const files = [1, 5].map((seed) => {
        const file = `${tree}/build/bench/browser/scene-${seed}.rgba`;
        writeFileSync(file, scene(width, height, seed).data);
        return file;
    });
    const output = execFileSync(`${tree}/build/bench/bench/krlbench_native`, [String(width), String(height), ...files], { encoding: "utf8" });
    return Object.fromEntries(output.trim().split("\n").map((line) => line.split(" ")).map(([key, time]) => [key, Number(time)]));
}

const { ours, ...others } = librariesOf(tree);
const libraries = [await ours()];
// Before any peer is loaded, some of which keep threads busy.
for (const size of sizes) {
    const times = await timesOf(libraries, size, tell);
    const native = nativeTimes(size);
    for (const [key, time] of Object.entries(times)) time.native = native[key];
    print("Node and native code on one thread, SSE2", size, tableOf(times, ["ours", "native"]));
}
for (const load of Object.values(others)) libraries.push(await load());
for (const size of sizes)
    print("Node", size, tableOf(await timesOf(libraries, size, tell), libraries.map(({ name }) => name)));
process.exit();
