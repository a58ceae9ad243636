import { callByText, callWithValues, parseValue, writeCall, type Module } from "./calls.js";
import { Catalogue, exampleOf, type Effect, type Family } from "./catalogue.js";
import type { Effects, MethodName } from "./effects.js";
import { KrlError } from "./errors.js";
import type { Exports } from "./exports.js";
import { runLingo, type LingoOptions, type LingoOutcome } from "./lingo.js";
import { HeldPicture } from "./held.js";
import { hasVectors, instantiate, requireWebAssembly, variantName, type WasmSource } from "./load.js";
import { Look, readShippedLooks, type ShippedLook } from "./look.js";
import { collected, Memory, OutOfMemory } from "./memory.js";
import { Loan } from "./pictures.js";
import { Outcome, picturesIn } from "./results.js";
import { instantiateThreads, threadCount, type Threads } from "./threads.js";
import type { Arguments, Picture, Source, Value } from "./types.js";
import { LentPicture } from "./write.js";

/** How an engine is made. */
export interface EngineOptions {
    /** The module, if it is not to be loaded from beside the package's own files. */
    wasm?: WasmSource;
    /** The same for the module that runs scripts, which `runLingo` loads when it is first called. */
    lingoWasm?: WasmSource;
    /** The same for the module that is loaded in its place if threads share the work. */
    threadsWasm?: WasmSource;
    /** Whether to take the module with vectors; by default, if this machine has them. */
    simd?: boolean;
    /**
     * The most threads that share the work of a call, with the one that calls; `"auto"` is one for each processor. By
     * default 1. The bytes are the same for any number. Each thread but the first is a worker, which `dispose` ends.
     * It takes vectors, and a place that may wait and has memory to share: Node, or a worker of a page that is
     * cross-origin isolated. Elsewhere, such as on the main thread of a page, one thread does the work.
     */
    threads?: "auto" | number;
}

/** What engines are made of. */
interface Parts {
    readonly exports: Exports;
    readonly simd: boolean;
    readonly threads: Threads | undefined;
    readonly lingoWasm: WasmSource | undefined;
}

/** How a call is made. */
export interface CallOptions {
    /** Leave the source as it is, and give a copy. */
    copy?: boolean;
    /** Pixels in a row, for a source of bare bytes. */
    width?: number;
}

/** How a chain of calls is made. */
export interface ChainOptions extends CallOptions {
    /** Ends the chain before its next call. */
    signal?: AbortSignal;
    /** Called after each call with how many are done, and of how many. */
    onProgress?: (done: number, all: number) => void;
}

/** What a call came to. */
export interface Result<Entries = Readonly<Record<string, Value>>> {
    /** The rewritten picture, or the new one that the effect made; `null` if there is none. */
    readonly picture: Picture | null;
    /** All new pictures, of effects that make several. */
    readonly pictures: readonly Picture[];
    /** What the effect measured or made, by name. */
    readonly entries: Entries;
}

/** What a chain of calls came to. */
export interface ChainResult {
    readonly picture: Picture;
    /** One for each call. */
    readonly results: readonly Result[];
}

/** A call of a chain: a text such as `"vignette(blur: 10%)"`, or a name and arguments. */
export type ChainCall = string | { [M in MethodName]: readonly [M, Effects[M]["arguments"]?] }[MethodName];

/** The next turn of the event loop, in which a signal can come. */
const nextTurn = () => new Promise<void>((resolve) => { setTimeout(resolve); });

/**
 * The effects, in memory of their own.
 *
 * @example
 * const engine = await Engine.create();
 * engine.apply(imageData, "vignette", { blur: 160 });
 */
export class Engine {
    /** The release, such as `"2.0.24"`. */
    readonly release: string;
    /** Whether it works with vectors. */
    readonly simd: boolean;
    /** How many threads share the work of a call; a picture of less than 128 Kpixels is one thread's work. */
    readonly threads: number;
    private readonly lingoWasm: WasmSource | undefined;
    private readonly workers: Threads | undefined;
    private readonly catalogue: Catalogue;
    private looks: readonly ShippedLook[] | undefined;
    private module: Module | undefined;

    private constructor({ exports, simd, threads, lingoWasm }: Parts) {
        const memory = new Memory(exports);
        const engine = exports._krl_engine_new!(threads ? 0 : 1) >>> 0;
        if (engine === 0) throw new OutOfMemory(0);
        this.simd = simd;
        this.threads = threads ? exports._krl_thread_count!() : 1;
        this.lingoWasm = lingoWasm;
        this.workers = threads;
        if (threads) collected.register(this, () => threads.end(), this);
        this.module = { exports, memory, engine };
        this.catalogue = new Catalogue(exports, memory);
        this.release = memory.text(exports._krl_release!() >>> 0);
    }

    /** Loads the module, once for all engines, and makes an engine. */
    static async create(options: EngineOptions = {}): Promise<Engine> {
        requireWebAssembly();
        const { wasm, threadsWasm, lingoWasm, simd = hasVectors() } = options;
        const count = simd ? await threadCount(options.threads ?? 1) : 1;
        const threads = count > 1 ? await instantiateThreads(count, threadsWasm) : undefined;
        const exports = threads?.exports ?? await instantiate("engine", variantName(simd), wasm);
        return new Engine({ exports, simd, threads, lingoWasm });
    }

    /** Effects by family, in reading order. */
    get families(): readonly Family[] {
        this.alive();
        return this.catalogue.families;
    }

    /** Effects by name, in reading order. */
    get effects(): ReadonlyMap<string, Effect> {
        this.alive();
        return this.catalogue.effects;
    }

    /** Looks that come with the engine. */
    get shippedLooks(): readonly ShippedLook[] {
        const { exports, memory } = this.alive();
        return this.looks ??= readShippedLooks(exports, memory);
    }

    /**
     * Calls an effect on a picture, which it rewrites in place unless `copy` is set. An effect that makes a new picture
     * leaves the source as it is.
     *
     * @param source a picture, a canvas, or RGBA bytes; `null` for effects that work on none
     * @param method the effect's name, or a call as a text such as `"vignette(blur: 10%)"`
     * @throws {KrlError} if an argument is wrong or the effect fails
     */
    apply<M extends MethodName>(source: Source | null, method: M, given?: Effects[M]["arguments"],
        options?: CallOptions): Result<Effects[M]["entries"]>;
    apply(source: Source | null, call: `${string}(${string}`, given?: undefined, options?: CallOptions): Result;
    apply(source: Source | null, call: string, given: object = {}, options: CallOptions = {}): Result {
        const module = this.alive();
        const effect = this.effectOf(call);
        return module.memory.scoped((scope) => {
            const lent = source === null ? undefined : new LentPicture(scope, source, effect.name, "picture", options);
            const entries = call.includes("(")
                ? callByText(module, scope, lent, effect, call)
                : callWithValues(module, scope, lent, effect, given as Arguments);
            const pictures = picturesIn(entries);
            return {
                picture: pictures[0] ?? lent?.after(effect.rewritesPicture, options.copy) ?? null,
                pictures,
                entries: Array.isArray(entries) ? {} : entries as Record<string, Value>,
            };
        });
    }

    /**
     * Makes calls one after another; if one makes a new picture, those after it work on that. The event loop turns
     * between two calls. The source is rewritten when all are done, unless `copy` is set or a new picture is made.
     *
     * @throws {KrlError} if a call is wrong or fails
     */
    async run(source: Source, calls: readonly ChainCall[], options: ChainOptions = {}): Promise<ChainResult> {
        const { signal, onProgress } = options;
        signal?.throwIfAborted();
        const loan = new Loan(source, options.width, "run", "picture");
        const held = this.hold(loan.picture);
        let picture: Picture = held;
        const results: Result[] = [];
        try {
            for (const call of calls) {
                if (results.length > 0) await nextTurn();
                signal?.throwIfAborted();
                const result = this.applyCall(picture, call);
                results.push(result);
                picture = result.picture ?? picture;
                onProgress?.(results.length, calls.length);
            }
            const rewritten = picture === held && !options.copy ? loan.finish(held.data) : held.copy();
            const given = <P>(one: P) => one === held ? rewritten : one;
            return {
                picture: given(picture),
                results: results.map((result) => ({ ...result, picture: given(result.picture) })),
            };
        } finally {
            held.dispose();
        }
    }

    /**
     * Applies a look, rewriting the picture in place unless `copy` is set.
     *
     * @param look one that `readLook` gave, the text of one, or the name of one that comes with the engine
     * @throws {KrlError} with the line, if a call of the look fails
     */
    applyLook(source: Source, look: Look | string, options: CallOptions = {}): Result {
        if (typeof look === "string") {
            const read = this.readLook(look);
            try {
                return this.applyLook(source, read, options);
            } finally {
                read.dispose();
            }
        }
        const { exports, memory, engine } = this.alive();
        return memory.scoped((scope) => {
            const lent = new LentPicture(scope, source, "look", "picture", options);
            look.lendPictures(scope);
            const entries = Outcome.of(exports, scope, (place) =>
                exports._krl_look_apply!(engine, look.handle(exports), lent.at, place)).value("", []);
            const pictures = picturesIn(entries);
            return { picture: pictures[0] ?? lent.after(true, options.copy), pictures, entries: {} };
        });
    }

    /**
     * Copies a picture into the engine's memory, for several calls: on a held picture they copy nothing.
     *
     * @example
     * using picture = engine.hold(imageData);
     * engine.apply(picture, "sepia");
     * context.putImageData(picture.copy(), 0, 0);
     *
     * @throws {KrlError} if the source is no picture
     */
    hold(source: Source, { width }: Pick<CallOptions, "width"> = {}): HeldPicture {
        const { memory } = this.alive();
        return new HeldPicture(memory, new Loan(source, width, "hold", "picture").picture);
    }

    /** Reads a look from its text, or takes one that comes with the engine by its name. */
    readLook(text: string): Look {
        const { exports, memory } = this.alive();
        const shipped = this.shippedLooks.find(({ name }) => name === text);
        return Look.read(exports, memory, shipped?.text ?? text);
    }

    /** A look without calls, to add some. */
    newLook(title: string): Look {
        const { exports, memory } = this.alive();
        return Look.make(exports, memory, title);
    }

    /**
     * Runs a Lingo script: its handler `main`, or its first, with `arguments` as a list of texts. Scripts find the
     * pictures of `images` by name, as members or as files; those that they save are in the outcome. The first call
     * loads the module with the interpreter. Each script has memory of its own, which is freed when it ends.
     *
     * @throws {KrlError} with the line, if the script is wrong or fails
     */
    async runLingo(source: string, options: LingoOptions = {}): Promise<LingoOutcome> {
        this.alive();
        return runLingo(await instantiate("lingo", variantName(this.simd), this.lingoWasm), source, options);
    }

    /** A call as the command line, looks and `apply` take it as a text. Pictures are given by their names. */
    callText<M extends MethodName>(method: M, given: { [K in keyof Effects[M]["arguments"]]: unknown }): string {
        return writeCall(this.alive(), this.effectOf(method), given as Arguments);
    }

    /** The value that a text such as `"rgb(255, 128, 0)"` writes. */
    parseValue(text: string): Value {
        return parseValue(this.alive(), text);
    }

    /** What an effect takes for an argument that is left out, on a picture of this size. */
    example(method: MethodName, argument: string, width: number, height: number): Value {
        const { exports, memory } = this.alive();
        const effect = this.effectOf(method);
        const index = effect.arguments.findIndex(({ name }) => name === argument);
        if (index < 0) throw new KrlError(`${effect.name}: no argument is called ${argument}`,
            { method: effect.name, argument, reason: "no such argument" });
        return exampleOf(exports, memory, effect.name, index, width, height);
    }

    /** Bytes of memory that the engine has; it keeps the most that a call has needed. */
    get memoryBytes(): number {
        return this.alive().exports.HEAPU8.length;
    }

    /** Gives all its memory back and ends its threads; calls fail from now on. */
    dispose(): void {
        this.module = undefined;  // the instance and its memory are nobody else's
        this.workers?.end();
        collected.unregister(this);
    }

    [Symbol.dispose](): void {
        this.dispose();
    }

    private applyCall(picture: Picture, call: ChainCall): Result {
        const [method, given] = typeof call === "string" ? [call] : call;
        return this.apply(picture, method as `${string}(${string}`, given as undefined);
    }

    private alive(): Module {
        if (!this.module) throw new Error("the engine has been disposed of");
        return this.module;
    }

    private effectOf(call: string): Effect {
        const name = call.trim().split(/[\s(]/, 1)[0]!;
        const effect = this.catalogue.find(name);
        if (!effect) throw new KrlError(`no effect is called ${name}`, { method: name, reason: "no such method" });
        return effect;
    }
}
