import type { Exports } from "./exports.js";

/** Frees what belongs to an object when nobody has that object any more; what frees it may not hold the object. */
export const collected = new FinalizationRegistry<() => void>((free) => free());

/** An address in the module's memory; 0 is none. */
export type Pointer = number;

/** The types of fields in the structures of the C interface. */
type FieldType = "word" | "signed" | "real" | "text";
type FieldValue<T extends FieldType> = T extends "text" ? string : number;
type Fields = Readonly<Record<string, FieldType>>;
type Values<F extends Fields> = { [K in keyof F]: FieldValue<F[K]> };

const FIELD_BYTES: Readonly<Record<FieldType, number>> = { word: 4, signed: 4, real: 8, text: 4 };

/** Where the fields of a structure are, as a C compiler places them. The first is always its size. */
export class Structure<F extends Fields> {
    readonly bytes: number;
    private readonly places: ReadonlyArray<readonly [keyof F & string, FieldType, number]>;

    constructor(fields: F) {
        let end = 4;
        let widest = 4;
        this.places = Object.entries(fields).map(([name, type]) => {
            const bytes = FIELD_BYTES[type];
            const place = Math.ceil(end / bytes) * bytes;
            end = place + bytes;
            widest = Math.max(widest, bytes);
            return [name, type, place] as const;
        });
        this.bytes = Math.ceil(end / widest) * widest;
    }

    /** The fields of the structure at `at`, which a later version may have made longer. */
    read(memory: Memory, at: Pointer): Values<F> {
        if (memory.word(at) < this.bytes) throw new Error("the module does not fit this package");
        const values: Record<string, number | string> = {};
        for (const [name, type, place] of this.places) values[name] = this.field(memory, type, at + place);
        return values as Values<F>;
    }

    write(memory: Memory, at: Pointer, values: { [K in keyof F]: number }): void {
        memory.view.setUint32(at, this.bytes, true);
        for (const [name, , place] of this.places) memory.view.setInt32(at + place, values[name], true);
    }

    private field(memory: Memory, type: FieldType, at: Pointer): number | string {
        if (type === "real") return memory.view.getFloat64(at, true);
        if (type === "signed") return memory.view.getInt32(at, true);
        return type === "text" ? memory.text(memory.word(at)) : memory.word(at);
    }
}

const encoder = new TextEncoder();
const decoder = new TextDecoder();

/** Thrown if the module's memory cannot grow any further. */
export class OutOfMemory extends RangeError {
    override readonly name = "OutOfMemory";
    constructor(bytes: number) {
        super(`out of memory: ${bytes} bytes are more than the engine can get`);
    }
}

/** The memory of one module. It moves when it grows: views are valid until the module runs again. */
export class Memory {
    private cached: DataView = new DataView(new ArrayBuffer(0));

    constructor(private readonly exports: Exports) {}

    get view(): DataView {
        const { buffer } = this.exports.HEAPU8;
        if (this.cached.buffer !== buffer) this.cached = new DataView(buffer);
        return this.cached;
    }

    bytes(at: Pointer, count: number): Uint8Array {
        return this.exports.HEAPU8.subarray(at, at + count);
    }

    word(at: Pointer): number {
        return this.view.getUint32(at, true);
    }

    /** The words of an array of `count` pointers. */
    words(at: Pointer, count: number): Pointer[] {
        return Array.from({ length: count }, (_, index) => this.word(at + index * 4));
    }

    /** The text up to its zero byte; empty for no address. */
    text(at: Pointer): string {
        if (at === 0) return "";
        const heap = this.exports.HEAPU8;
        // A copy, since decoders refuse memory that threads share.
        return decoder.decode(heap.slice(at, heap.indexOf(0, at)));
    }

    allocate(bytes: number): Pointer {
        const at = this.exports._malloc(bytes) >>> 0;
        if (at === 0) throw new OutOfMemory(bytes);
        return at;
    }

    free(at: Pointer): void {
        this.exports._free(at);
    }

    /** Runs `work` with a place for values that live as long as it runs. */
    scoped<T>(work: (scope: Scope) => T): T {
        const scope = new Scope(this);
        try {
            return work(scope);
        } finally {
            scope.end();
        }
    }
}

/** What a call passes to the module: freed together when the call is over. */
export class Scope {
    private readonly ends: Array<() => void> = [];

    constructor(readonly memory: Memory) {}

    /** Calls `end` at the end of the scope, the last one first. */
    atEnd(end: () => void): void {
        this.ends.push(end);
    }

    allocate(bytes: number): Pointer {
        const at = this.memory.allocate(bytes);
        this.atEnd(() => this.memory.free(at));
        return at;
    }

    text(text: string): Pointer {
        const bytes = encoder.encode(text);
        const at = this.allocate(bytes.length + 1);
        const place = this.memory.bytes(at, bytes.length + 1);
        place.set(bytes);
        place[bytes.length] = 0;
        return at;
    }

    end(): void {
        for (let end = this.ends.pop(); end; end = this.ends.pop()) end();
    }
}
