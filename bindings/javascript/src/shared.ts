import type { Pointer } from "./exports.js";

/** What a worker needs to run threads of an engine. */
export interface WorkerStart {
    readonly module: WebAssembly.Module;
    readonly memory: WebAssembly.Memory;
    /** Where its stack begins. */
    readonly stack: Pointer;
    /** The `krl_worker`. */
    readonly worker: Pointer;
}

/** An instance on shared memory. The module mentions more functions of Emscripten's, which it never calls. */
export function instanceOn(memory: WebAssembly.Memory, module: WebAssembly.Module): WebAssembly.Exports {
    const imports: Record<string, Record<string, WebAssembly.ImportValue>> = { env: {} };
    for (const { module: space, name } of WebAssembly.Module.imports(module))
        (imports[space] ??= {})[name] = () => { throw new WebAssembly.RuntimeError(`the module calls ${name}`); };
    Object.assign(imports.env!, { memory, emscripten_get_now: () => performance.timeOrigin + performance.now() });
    return new WebAssembly.Instance(module, imports).exports;
}
