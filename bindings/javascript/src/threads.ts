import type { Exports } from "./exports.js";
import { compile, ownModule, type WasmSource } from "./load.js";
import { nodeModule } from "./node.js";
import { instanceOn, type WorkerStart } from "./shared.js";

type Functions = Readonly<Record<string, (...words: number[]) => number>>;

/** A worker of a browser or of Node. */
interface Thread {
    terminate(): unknown;
}

/** Threads that share the work of one engine. */
export interface Threads {
    readonly exports: Exports;
    /** Ends them; no call runs any more. */
    end(): void;
}

/** More are not used by the module. */
const MOST_THREADS = 64;
/** Pages of 64 KB that the module begins with, and the most that it has. */
const FIRST_PAGES = 256;
const MOST_PAGES = 65536;
/** Milliseconds for workers to begin; those that come later take part from then on. */
const PATIENCE = 5000;

/** Whether this place has memory that workers share, and may wait for them: the main thread of a page may not. */
function canShare(): boolean {
    try {
        Atomics.wait(new Int32Array(new SharedArrayBuffer(4)), 0, 0, 0);
        return true;
    } catch {
        return false;
    }
}

/** How many threads an engine is to have here. */
export async function threadCount(threads: "auto" | number): Promise<number> {
    if (threads !== "auto" && !(Number.isInteger(threads) && threads >= 1))
        throw new RangeError(`threads: expected "auto" or a whole number from 1, got ${threads}`);
    if (threads === 1 || !canShare()) return 1;
    return Math.min(threads === "auto" ? await processorCount() : threads, MOST_THREADS);
}

async function processorCount(): Promise<number> {
    if (typeof navigator !== "undefined") return navigator.hardwareConcurrency ?? 1;
    return (await nodeModule<{ cpus(): readonly object[] }>("node:os")).cpus().length;
}

/** Memory that workers share, if there is as much: it needs addresses for all that it may ever have. */
function sharedMemory(): WebAssembly.Memory | undefined {
    try {
        return new WebAssembly.Memory({ initial: FIRST_PAGES, maximum: MOST_PAGES, shared: true });
    } catch {
        return undefined;
    }
}

/** Functions with the names that Emscripten's JavaScript gives them. The memory is another when a thread makes it grow. */
function exportsOn(memory: WebAssembly.Memory, functions: Functions): Exports {
    let heap = new Uint8Array(memory.buffer);
    const named = Object.fromEntries(Object.entries(functions).map(([name, value]) => [`_${name}`, value]));
    return Object.defineProperty(named, "HEAPU8", {
        get: () => heap.buffer === memory.buffer ? heap : heap = new Uint8Array(memory.buffer),
    }) as unknown as Exports;
}

/** What a worker of Node has that those of browsers have not, and the other way round. */
interface NodeWorker extends Thread {
    once(event: "message" | "error", listener: (word: unknown) => void): this;
    unref(): void;
}
type NodeWorkerClass = new (file: URL, options: { workerData: WorkerStart; execArgv: [] }) => NodeWorker;

/** Begins a worker; the promise is kept when it has a share in the work. */
async function begin(start: WorkerStart): Promise<Thread> {
    if (typeof Worker === "undefined") return beginInNode(start);
    // Written out for bundlers, which look for this form.
    const worker = new Worker(new URL("./krlimage-worker.js", import.meta.url), { type: "module" });
    return new Promise((resolve, reject) => {
        worker.onmessage = () => resolve(worker);
        worker.onerror = reject;
        worker.postMessage(start);
    });
}

async function beginInNode(start: WorkerStart): Promise<Thread> {
    const { Worker } = await nodeModule<{ Worker: NodeWorkerClass }>("node:worker_threads");
    const worker = new Worker(new URL("./krlimage-worker.js", import.meta.url), { workerData: start, execArgv: [] });
    await new Promise((resolve, reject) => worker.once("message", resolve).once("error", reject));
    worker.unref();  // a program ends without ending its engines
    return worker;
}

/** Waits for promises, but not for longer. */
async function settledWithin(milliseconds: number, promises: readonly Promise<unknown>[]): Promise<void> {
    let timer: ReturnType<typeof setTimeout> | undefined;
    await Promise.race([Promise.allSettled(promises), new Promise((late) => { timer = setTimeout(late, milliseconds); })]);
    clearTimeout(timer);
}

/** An engine's module with `count` threads, or as many as begin; nothing where there is no memory to share. */
export async function instantiateThreads(count: number, source?: WasmSource): Promise<Threads | undefined> {
    const memory = sharedMemory();
    if (!memory) return undefined;
    const module = await (source === undefined ? ownModule("threads") : compile(source));
    const functions = instanceOn(memory, module) as Functions;
    functions.__wasm_call_ctors!();
    const workers: Thread[] = [];
    let ended = false;
    const beginning = Array.from({ length: count - 1 }, async () => {
        const worker = functions.krl_worker_new!();
        if (worker === 0) return;
        const begun = await begin({ module, memory, stack: functions.krl_worker_stack!(worker), worker });
        if (ended) begun.terminate();
        else workers.push(begun);
    });
    await settledWithin(PATIENCE, beginning);
    const end = () => {
        ended = true;
        for (const worker of workers) worker.terminate();
    };
    return { exports: exportsOn(memory, functions), end };
}
