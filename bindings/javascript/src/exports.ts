import type { Pointer } from "./memory.js";

/** The part of the module's file system that scripts use. */
export interface MemoryFiles {
    mkdir(path: string): void;
    writeFile(path: string, data: string): void;
}

type Call = (...words: number[]) => number;

/** What a module exports: the C interface of the engine or the runner of scripts, and memory. */
export interface Exports {
    readonly HEAPU8: Uint8Array;
    readonly FS?: MemoryFiles;
    readonly _malloc: Call;
    readonly _free: Call;
    readonly [name: `_krl_${string}`]: Call;
}

export type { Pointer };
