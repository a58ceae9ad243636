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

/** The best of some runs in milliseconds, fewer if they take long. */
export async function timeOf({ prepare, run, end }, most = 5, seconds = 6) {
    let best = Infinity;
    for (let count = 0, spent = 0; count < most && spent < seconds * 1000; ++count) {
        const own = await prepare?.();
        const begun = performance.now();
        await run(own);
        const taken = performance.now() - begun;
        end?.(own);
        best = Math.min(best, taken);
        spent += taken;
    }
    return best;
}

/** Milliseconds by operation and library, operation by operation in turns. Failures of a peer are `undefined`. */
export async function timesOf(libraries, [width, height], tell = () => {}) {
    const [picture, second] = [scene(width, height, 1), scene(width, height, 5)];
    const stages = libraries.map(({ name, stage }) => [name, stage(picture, second)]);
    const times = {};
    for (const key of Object.keys(OPERATIONS)) {
        times[key] = {};
        for (const [name, stage] of stages) {
            if (!stage[key]) continue;
            try {
                times[key][name] = await timeOf(stage[key]);
            } catch (problem) {
                tell(`${name} failed at ${OPERATIONS[key].words}: ${problem.message ?? problem}`);
            }
            tell(`${width}x${height} ${key} ${name} ${times[key][name]?.toFixed(1)}`);
        }
    }
    for (const [, stage] of stages) stage.end?.();
    return times;
}

/** A table: our milliseconds, and those of the others as multiples of them. */
export function tableOf(times, [first, ...others]) {
    const line = (cells) => `| ${cells.join(" | ")} |`;
    const rows = Object.entries(times).map(([key, of]) => line([OPERATIONS[key].words, of[first].toFixed(1),
        ...others.map((name) => of[name] === undefined ? "" : (of[name] / of[first]).toFixed(2))]));
    return [line(["operation", `${first}, ms`, ...others]), line(Array(others.length + 2).fill("---")), ...rows].join("\n");
}
