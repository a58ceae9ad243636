/** Engines whose work threads share give the same bytes, and whatever hinders threads leaves one that does the work. */
import assert from "node:assert/strict";
import { execFile } from "node:child_process";
import { cp, mkdtemp, readdir, readFile, rm, writeFile } from "node:fs/promises";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { test } from "node:test";
import { promisify } from "node:util";
import { pathToFileURL } from "node:url";
import { Engine } from "krlimage";
import { enlarged, hashOf, hashOfRow, plain, rowOf, TABLE_SAMPLES } from "./rows.mjs";
import { readTable, sample } from "./support.mjs";

const table = await readTable();
const one = await Engine.create();
const three = await Engine.create({ threads: 3 });

/** A sample with so many pixels that three threads share an effect on it. */
const large = async (name) => enlarged(await sample(name), 3);

test("as many threads as were asked for", async () => {
    assert.equal(one.threads, 1);
    assert.equal(three.threads, 3);
    const auto = await Engine.create({ threads: "auto" });
    assert.ok(auto.threads >= 1);
    auto.dispose();
    for (const threads of [0, 1.5, -2, NaN, "all"]) await assert.rejects(Engine.create({ threads }), RangeError);
});

for (const effect of three.effects.values())
    for (const name of TABLE_SAMPLES)
        test(`${effect.name} on ${name}`, async () => {
            assert.equal(await hashOfRow(three, effect, name, sample), table.get(`${effect.scriptName} ${name}`));
            const [shared, sharedMessage] = await rowOf(three, effect, name, large);
            const [alone, message] = await rowOf(one, effect, name, large);
            assert.equal(sharedMessage, message);
            assert.deepEqual([shared?.width, shared?.height], [alone?.width, alone?.height]);
            assert.ok(alone === null || Buffer.from(shared.data.buffer).equals(Buffer.from(alone.data.buffer)));
        });

test("looks and chains", async () => {
    const [shared, alone] = [await large("landscape"), await large("landscape")];
    for (const [engine, picture] of [[three, shared], [one, alone]]) {
        engine.applyLook(picture, "noir");
        await engine.run(picture, ["oilPaint(4)", ["fastGaussianBlur", {}]]);
    }
    assert.equal(hashOf(shared), hashOf(alone));
});

/** Processor time of this thread and of all others, in ticks of the system. */
async function processorTimes() {
    const times = { own: 0, others: 0 };
    for (const task of await readdir("/proc/self/task")) {
        const fields = (await readFile(`/proc/self/task/${task}/stat`, "utf8")).replace(/^.*\) /, "").split(" ");
        times[task === String(process.pid) ? "own" : "others"] += Number(fields[11]);
    }
    return times;
}

test("threads take their shares of the work", async () => {
    const picture = plain(1500, 1000, 90);
    for (let i = 0; i < 3; ++i) three.apply(picture, "oilPaint");
    const before = await processorTimes();
    for (let i = 0; i < 10; ++i) three.apply(picture, "oilPaint");
    const after = await processorTimes();
    assert.ok(after.others - before.others > after.own - before.own, "two threads work more than one");
});

test("memory that a thread has got is seen, given back after every call, and refused when there is no more", async () => {
    const engine = await Engine.create({ threads: 2 });
    const picture = await large("landscape");
    for (let i = 0; i < 5; ++i) engine.apply(picture, "fastGaussianBlur");
    const before = engine.memoryBytes;
    for (let i = 0; i < 20; ++i) engine.apply(picture, "fastGaussianBlur");
    assert.equal(engine.memoryBytes, before);
    engine.dispose();
    assert.throws(() => engine.apply(picture, "invert"), /disposed/);
});

test("without vectors one thread does the work", async () => {
    assert.equal((await Engine.create({ threads: 4, simd: false })).threads, 1);
});

/** An engine of three threads, from a copy of the package whose worker `change` has changed. */
async function withWorker(change, use) {
    const folder = await mkdtemp(join(tmpdir(), "krl-threads-"));
    try {
        await cp("node_modules/krlimage/dist", folder, { recursive: true });
        await change(join(folder, "krlimage-worker.js"));
        const changed = await import(pathToFileURL(join(folder, "krlimage.js")));
        await use(await changed.Engine.create({ threads: 3 }));
    } finally {
        await rm(folder, { recursive: true });
    }
}

test("workers that cannot begin leave fewer threads and the same bytes", () => withWorker(rm, async (engine) => {
    assert.equal(engine.threads, 1);
    const [picture, expected] = [await large("landscape"), await large("landscape")];
    engine.apply(picture, "vignette");
    one.apply(expected, "vignette");
    assert.equal(hashOf(picture), hashOf(expected));
}));

test("a worker that fails ends the call that waits for it", () => withWorker(async (file) => {
    const source = await readFile(file, "utf8");
    assert.ok(source.includes(".krl_worker_run(worker)"));
    await writeFile(file, source.replace(/exports\d*\.krl_worker_run\(worker\)/, "throw new Error('no more')"));
}, async (engine) => {
    assert.equal(engine.threads, 3);
    const picture = await large("landscape");
    assert.throws(() => engine.apply(picture, "vignette"), WebAssembly.RuntimeError);
}));

test("a program ends without ending its engines", async () => {
    const source = `const { Engine } = await import("krlimage");
        const engine = await Engine.create({ threads: 3 });
        console.log(engine.threads);`;
    const { stdout } = await promisify(execFile)(process.execPath, ["--input-type=module", "--eval", source], { timeout: 60_000 });
    assert.equal(stdout, "3\n");
});
