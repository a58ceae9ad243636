/** The pictures that operations are timed on, and how. */
import { OPERATIONS } from "./operations.mjs";

export const SIZES = [[4000, 3000], [1920, 1080]];

/** A new number of 32 bits from the last. */
const next = (number) => (Math.imul(number, 1664525) + 1013904223) >>> 0;

/** A picture of hills and a sky with the fine grain of a photograph. */
export function scene(width, height, seed) {
    const data = new Uint8ClampedArray(width * height * 4);
    for (let y = 0, at = 0, grain = seed; y < height; ++y) {
        const slope = (x) => height * (0.55 + 0.12 * Math.sin(x / width * 7 + seed) + 0.05 * Math.sin(x / width * 31));
        for (let x = 0; x < width; ++x, at += 4) {
            grain = next(grain);
            const noise = (grain >>> 28) - 8, sky = y < slope(x), far = y / height;
            data[at] = (sky ? 120 + 90 * far : 70 + 60 * far) + noise;
            data[at + 1] = (sky ? 160 + 50 * far : 110 - 40 * far) + noise;
            data[at + 2] = (sky ? 225 - 40 * far : 45 + 30 * far) + noise;
            data[at + 3] = 255;
        }
    }
    return { width, height, data };
}

/** Milliseconds of one run. */
async function timeOf({ prepare, run, end }) {
    const own = await prepare?.();
    const begun = performance.now();
    await run(own);
    const taken = performance.now() - begun;
    end?.(own);
    return taken;
}

/** The best of some runs of each library in milliseconds, in turns, so that all have the same share of what disturbs. */
async function bestInTurns(runs, fail, most = 7, seconds = 6) {
    const best = {}, spent = {};
    for (let turn = 0; turn < most; ++turn)
        for (const [name, run] of Object.entries(runs)) {
            if ((spent[name] ??= 0) > seconds * 1000) continue;
            try {
                const taken = await timeOf(run);
                best[name] = Math.min(best[name] ?? Infinity, taken);
                spent[name] += taken;
            } catch (problem) {
                fail(name, problem);
                spent[name] = Infinity;
            }
        }
    return best;
}

/** Milliseconds by operation and library. Failures of a peer are missing. */
export async function timesOf(libraries, [width, height], tell = () => {}) {
    const [picture, second] = [scene(width, height, 1), scene(width, height, 5)];
    const stages = libraries.map(({ name, stage }) => [name, stage(picture, second)]);
    const times = {};
    for (const [key, { words }] of Object.entries(OPERATIONS)) {
        const runs = Object.fromEntries(stages.filter(([, stage]) => stage[key]).map(([name, stage]) => [name, stage[key]]));
        times[key] = await bestInTurns(runs, (name, problem) => tell(`${name} failed at ${words}: ${problem.message ?? problem}`));
        tell(`${width}x${height} ${words}: ${Object.entries(times[key]).map(([name, time]) => `${name} ${time.toFixed(1)}`).join(", ")}`);
    }
    for (const [, stage] of stages) stage.end?.();
    return times;
}

/** Rows of cells as a table. */
export const markdown = (rows) => rows.map((cells) => `| ${cells.join(" | ")} |`).join("\n");

/** A table: our milliseconds, and those of the others as multiples of them. */
export function tableOf(times, [first, ...others]) {
    const rows = Object.entries(times).map(([key, of]) => [OPERATIONS[key].words, of[first].toFixed(1),
        ...others.map((name) => of[name] === undefined ? "" : (of[name] / of[first]).toFixed(2))]);
    return markdown([["operation", `${first}, ms`, ...others], Array(others.length + 2).fill("---"), ...rows]);
}
