import { Engine } from "krlimage";
import type { Reply, Request } from "./protocol.js";
import { failureOf, Studio } from "./studio.js";

// Messages come before the engine is there: they wait for it.
const studio = Engine.create({ threads: "auto" }).then((engine) => new Studio(engine));

/** The pixels of pictures in an answer, which need no copy. */
function transfers(answer: unknown): Transferable[] {
    if (typeof answer !== "object" || answer === null) return [];
    if ("data" in answer && ArrayBuffer.isView(answer.data)) return [answer.data.buffer as ArrayBuffer];
    return "picture" in answer ? transfers(answer.picture) : [];
}

globalThis.onmessage = async ({ data: { id, service, given } }: MessageEvent<Request>) => {
    const reply = (message: Reply, moved: Transferable[] = []) => globalThis.postMessage(message, { transfer: moved });
    try {
        const answer: unknown = await ((await studio)[service] as (...words: readonly unknown[]) => unknown).apply(await studio, given as unknown[]);
        reply({ id, answer }, transfers(answer));
    } catch (problem) {
        reply({ id, failure: failureOf(problem) });
    }
};
