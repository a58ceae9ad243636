import type { Picture } from "krlimage";
import type { Failure, Reply, Request, ServiceName, Services } from "./protocol.js";

/** A request that failed in the worker. */
export class EngineError extends Error {
    constructor(readonly failure: Failure) {
        super(failure.message);
    }
}

type Answer<S extends ServiceName> = ReturnType<Services[S]>;

/** The engine, in a worker of its own. */
export class EngineClient {
    private readonly worker = new Worker(new URL("./worker.js", import.meta.url), { type: "module" });
    private readonly waiting = new Map<number, { resolve(answer: unknown): void; reject(problem: Error): void }>();
    private last = 0;

    constructor() {
        this.worker.onmessage = ({ data }: MessageEvent<Reply>) => {
            const request = this.waiting.get(data.id);
            this.waiting.delete(data.id);
            if (data.failure) request?.reject(new EngineError(data.failure));
            else request?.resolve(data.answer);
        };
        this.worker.onerror = (event) => {
            const problem = new Error(event.message || "the engine could not be loaded");
            for (const { reject } of this.waiting.values()) reject(problem);
            this.waiting.clear();
        };
    }

    ask<S extends ServiceName>(service: S, ...given: Parameters<Services[S]>): Promise<Answer<S>> {
        const id = ++this.last;
        return new Promise<unknown>((resolve, reject) => {
            this.waiting.set(id, { resolve, reject });
            this.worker.postMessage({ id, service, given } satisfies Request);
        }) as Promise<Answer<S>>;
    }

    /** Ends whatever runs. */
    stop(): void {
        this.worker.terminate();
        for (const { reject } of this.waiting.values()) reject(new Error("stopped"));
        this.waiting.clear();
    }
}

export type { Picture };
