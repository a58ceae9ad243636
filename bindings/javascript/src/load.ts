import type { Exports } from "./exports.js";
import { nodeModule } from "./node.js";

/** Where a module's bytes come from. */
export type WasmSource = string | URL | Response | BufferSource | WebAssembly.Module;

/** Makes an instance. */
export type Factory = (options: {
    instantiateWasm: (imports: WebAssembly.Imports, done: (instance: WebAssembly.Instance) => void) => object;
}) => Promise<Exports>;

/** A module with vectors of 128 bits: `v128.const 0; drop` in a function. */
const VECTOR_PROBE = new Uint8Array([
    0, 97, 115, 109, 1, 0, 0, 0, 1, 4, 1, 96, 0, 0, 3, 2, 1, 0, 10, 23, 1, 21, 0,
    253, 12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 26, 11,
]);

/** A module with exceptions: `try; catch_all; end` in a function. */
const EXCEPTION_PROBE = new Uint8Array([
    0, 97, 115, 109, 1, 0, 0, 0, 1, 4, 1, 96, 0, 0, 3, 2, 1, 0, 10, 8, 1, 6, 0, 6, 64, 25, 11, 11,
]);

/** Whether this machine runs the faster module. */
export function hasVectors(): boolean {
    return WebAssembly.validate(VECTOR_PROBE);
}

/** With vectors, and without. */
export type VariantName = "simd" | "plain";

export function variantName(simd: boolean): VariantName {
    return simd ? "simd" : "plain";
}

/** What a module contains: the effects, or the interpreter of scripts with the effects that they call. */
export type Part = "engine" | "lingo";

/** One of the package's modules. */
type ModuleName = `${Part}-${VariantName}`;

interface ModuleFile {
    readonly file: URL;
}

interface ModuleFiles extends ModuleFile {
    readonly factory: () => Promise<{ default: Factory }>;
}

// Written out for bundlers, which look for these forms.
const MODULES: Readonly<Record<ModuleName, ModuleFiles>> = {
    "engine-simd": {
        get file() { return new URL("./krlimage-simd.wasm", import.meta.url); },
        factory: () => import("./krlimage-simd.mjs"),
    },
    "engine-plain": {
        get file() { return new URL("./krlimage-plain.wasm", import.meta.url); },
        factory: () => import("./krlimage-plain.mjs"),
    },
    "lingo-simd": {
        get file() { return new URL("./krlimage-lingo-simd.wasm", import.meta.url); },
        factory: () => import("./krlimage-lingo-simd.mjs"),
    },
    "lingo-plain": {
        get file() { return new URL("./krlimage-lingo-plain.wasm", import.meta.url); },
        factory: () => import("./krlimage-lingo-plain.mjs"),
    },
};

/** The module whose work threads share, which needs no JavaScript of the compiler's. */
const THREADS: ModuleFile = {
    get file() { return new URL("./krlimage-threads.wasm", import.meta.url); },
};

/** What a server or Node has under an address. */
async function bytesOf(source: string | URL): Promise<Response | BufferSource> {
    const url = source instanceof URL ? source : new URL(source, globalThis.location?.href ?? import.meta.url);
    if (url.protocol !== "file:") return fetch(url);
    // Node's fetch reads no files.
    const { readFile } = await nodeModule<{ readFile(file: URL): Promise<Uint8Array<ArrayBuffer>> }>("node:fs/promises");
    return readFile(url);
}

export async function compile(source: WasmSource): Promise<WebAssembly.Module> {
    if (source instanceof WebAssembly.Module) return source;
    if (typeof source === "string" || source instanceof URL) return compile(await bytesOf(source));
    // Asked before `Response`, whose mere name makes Node load what it has for the network.
    if (source instanceof ArrayBuffer || ArrayBuffer.isView(source)) return WebAssembly.compile(source);
    if (typeof Response !== "undefined" && source instanceof Response) {
        if (!source.ok) throw new Error(`cannot load ${source.url}: ${source.status} ${source.statusText}`);
        // Not streamed: a server may name another type than WebAssembly's.
        return WebAssembly.compile(await source.arrayBuffer());
    }
    return WebAssembly.compile(source as BufferSource);  // bytes of another realm
}

const compiled = new Map<ModuleName | "threads", Promise<WebAssembly.Module>>();

/** The package's own module, compiled once. */
export function ownModule(name: ModuleName | "threads"): Promise<WebAssembly.Module> {
    let module = compiled.get(name);
    if (!module) {
        module = compile((name === "threads" ? THREADS : MODULES[name]).file);
        compiled.set(name, module);
        module.catch(() => compiled.delete(name));  // the next engine tries again
    }
    return module;
}

export function requireWebAssembly(): void {
    if (typeof WebAssembly !== "object" || !WebAssembly.validate(EXCEPTION_PROBE))
        throw new Error("this browser is too old: the engine needs WebAssembly with exceptions");
}

/** A new instance with memory of its own. */
export async function instantiate(part: Part, variant: VariantName, source?: WasmSource): Promise<Exports> {
    const name: ModuleName = `${part}-${variant}`;
    const [module, { default: factory }] = await Promise.all([
        source === undefined ? ownModule(name) : compile(source),
        MODULES[name].factory(),
    ]);
    return new Promise((resolve, reject) => {
        const instantiateWasm = (imports: WebAssembly.Imports, done: (instance: WebAssembly.Instance) => void) => {
            WebAssembly.instantiate(module, imports).then(done).catch(reject);
            return {};
        };
        factory({ instantiateWasm }).then(resolve, reject);
    });
}
