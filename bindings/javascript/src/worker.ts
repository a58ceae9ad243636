/** A worker of `threads.ts`: runs threads of an engine until it is ended. */
import { nodeModule } from "./node.js";
import { instanceOn, type WorkerStart } from "./shared.js";

interface WorkerExports {
    readonly stackRestore: (stack: number) => void;
    readonly krl_worker_begin: (worker: number) => void;
    readonly krl_worker_run: (worker: number) => void;
    readonly krl_worker_fail: () => void;
}

interface NodePort {
    postMessage(message: string): void;
}

function run({ module, memory, stack, worker }: WorkerStart, tell: (word: string) => void): void {
    const exports = instanceOn(memory, module) as unknown as WorkerExports;
    exports.stackRestore(stack);
    exports.krl_worker_begin(worker);
    tell("begun");
    try {
        exports.krl_worker_run(worker);
    } catch (failure) {
        exports.krl_worker_fail();
        throw failure;
    }
}

if (typeof globalThis.postMessage === "function") {
    globalThis.onmessage = ({ data }: MessageEvent<WorkerStart>) => run(data, (word) => globalThis.postMessage(word));
} else {
    const { parentPort, workerData } = await nodeModule<{ parentPort: NodePort; workerData: WorkerStart }>("node:worker_threads");
    run(workerData, (word) => parentPort.postMessage(word));
}
