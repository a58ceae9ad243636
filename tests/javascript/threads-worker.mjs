/** A worker of a page that works with threads, as the page's own does. */
import { decodePam, enlarged, hashesOf, hashOf } from "./rows.mjs";

const sample = async (name) => decodePam(new Uint8Array(await (await fetch(`/pictures/${name}.pam`)).arrayBuffer()));

globalThis.onmessage = async ({ data: { threads, whole } }) => {
    const { Engine } = await import("/krlimage/krlimage.js");
    const engine = await Engine.create({ threads });
    const large = enlarged(await sample("landscape"), 4);
    for (const name of ["fastGaussianBlur", "oilPaint", "vignette"]) engine.apply(large, name);
    const hashes = whole ? await hashesOf(engine, sample) : [];
    globalThis.postMessage({ isolated: globalThis.crossOriginIsolated, threads: engine.threads, large: hashOf(large), hashes });
};
