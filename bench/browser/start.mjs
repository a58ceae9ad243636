/**
 * Times how long a program waits from asking for a library to its first effect, each in a Node of its own.
 *
 *     node start.mjs TREE            # the table
 *     node start.mjs TREE NAME       # milliseconds of one library
 */
import { execFileSync } from "node:child_process";
import { fileURLToPath } from "node:url";
import { librariesOf } from "./libraries.mjs";
import { markdown, scene } from "./stage.mjs";

const RUNS = 7;
const [tree, name] = process.argv.slice(2);
const { copying: _, ...libraries } = librariesOf(tree);  // it starts as ours does

if (name) {
    const [picture, second] = [scene(640, 480, 1), scene(640, 480, 5)];
    const begun = performance.now();
    const { prepare, run } = (await libraries[name]()).stage(picture, second).brightness;
    await run(await prepare?.());
    console.log(performance.now() - begun);
    process.exit();
}

const best = Object.fromEntries(Object.keys(libraries).map((each) => [each, Infinity]));
for (let turn = 0; turn < RUNS; ++turn)
    for (const each of Object.keys(best)) {
        const output = execFileSync(process.execPath, [fileURLToPath(import.meta.url), tree, each], { encoding: "utf8" });
        best[each] = Math.min(best[each], Number(output));
    }
const { ours, ...peers } = best;
console.log(`\nFrom the start to the first effect in Node, 640 by 480\n\n${markdown([
    ["ours, ms", ...Object.keys(peers)],
    Array(Object.keys(best).length).fill("---"),
    [ours.toFixed(0), ...Object.values(peers).map((time) => (time / ours).toFixed(2))],
])}`);
