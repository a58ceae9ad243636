import { RGBA } from "./codes.js";
import { mismatch } from "./errors.js";
import type { Exports, Pointer } from "./exports.js";
import { HeldPicture } from "./held.js";
import { OutOfMemory, type Scope } from "./memory.js";
import { Loan, PIXEL_BYTES } from "./pictures.js";
import { PICTURE } from "./read.js";
import type { ArgumentKind } from "./catalogue.js";
import type { Picture } from "./types.js";

const COLOUR = /^#[0-9a-f]{6}$/i;

/** What an argument was expected to be. */
class Mismatch {
    constructor(readonly expected: string, readonly got: unknown) {}
}

type Entry = readonly [unknown, unknown];

function isInteger32(value: unknown): value is number {
    return typeof value === "number" && Number.isInteger(value) && value >= -(2 ** 31) && value < 2 ** 31;
}

function isPoint(value: unknown): value is { x: unknown; y: unknown } {
    return typeof value === "object" && value !== null && "x" in value && "y" in value && Object.keys(value).length === 2;
}

function isLevels(value: unknown): value is readonly number[] {
    return Array.isArray(value) && value.length === 3 && value.every((level) => isInteger32(level) && level >= 0 && level <= 255);
}

function isPicture(value: object): boolean {
    return "data" in value && "width" in value && "height" in value || "getContext" in value || ArrayBuffer.isView(value);
}

/** A picture in the module's memory while a call works on it. */
export class LentPicture {
    readonly loan: Loan;
    /** The `krl_picture`. */
    readonly at: Pointer;
    private readonly pixels: Pointer;
    /** Whether the call works on the picture itself, and not on a copy. */
    private readonly inPlace: boolean;

    constructor(private readonly scope: Scope, source: unknown, method: string, argument: string,
        { width, copy = false }: { width?: number, copy?: boolean } = {}) {
        this.loan = new Loan(source, width, method, argument);
        const held = source instanceof HeldPicture && !copy ? source.lend(scope) : undefined;
        this.inPlace = held !== undefined;
        this.pixels = held ?? this.copied();
        this.at = scope.allocate(PICTURE.bytes);
        const { width: across, height } = this.loan.picture;
        PICTURE.write(scope.memory, this.at,
            { pixels: this.pixels, width: across, height, rowBytes: across * PIXEL_BYTES, order: RGBA });
    }

    /** The picture after the call, which may have changed it: the source, or a copy. */
    after(changed: boolean, copy = false): Picture {
        if (this.inPlace || !changed && !copy) return this.loan.picture;
        const { width, height } = this.loan.picture;
        const pixels = this.scope.memory.bytes(this.pixels, width * height * PIXEL_BYTES);
        return copy ? this.loan.copy(pixels) : this.loan.finish(pixels);
    }

    private copied(): Pointer {
        const { width, height } = this.loan.picture;
        const bytes = width * height * PIXEL_BYTES;
        const at = this.scope.allocate(bytes);
        // The pixels are read only now, since memory that grows leaves views of it behind.
        this.scope.memory.bytes(at, bytes).set(this.loan.picture.data);
        return at;
    }
}

/** Makes values of the module from those of JavaScript, for the arguments of one call. */
export class Writer {
    /** Pictures by the argument that they are given for. */
    readonly pictures = new Map<string, LentPicture>();

    constructor(private readonly exports: Exports, private readonly scope: Scope, private readonly method: string) {}

    /** The value of an argument, freed at the end of the scope. */
    argument(name: string, kind: ArgumentKind, value: unknown): Pointer {
        try {
            const made = this.ofKind(name, kind, value);
            this.scope.atEnd(() => this.exports._krl_value_free!(made));
            return made;
        } catch (problem) {
            if (problem instanceof Mismatch) throw mismatch(this.method, name, problem.expected, problem.got);
            throw problem;
        }
    }

    private ofKind(name: string, kind: ArgumentKind, value: unknown): Pointer {
        switch (kind) {
            case "integer": return this.integer(value);
            case "real": return this.real(value);
            case "symbol": return this.symbol(value);
            case "colour": return this.colour(value);
            case "point": return this.point(value);
            case "colours": return this.colours(value);
            case "picture": return this.picture(name, value);
            case "tree": return this.tree(name, value);
        }
    }

    private made(value: Pointer): Pointer {
        const at = value >>> 0;
        if (at === 0) throw new OutOfMemory(0);
        return at;
    }

    private integer(value: unknown): Pointer {
        if (!isInteger32(value)) throw new Mismatch("an integer of 32 bits", value);
        return this.made(this.exports._krl_integer!(value));
    }

    private real(value: unknown): Pointer {
        if (typeof value !== "number") throw new Mismatch("a number", value);
        return this.made(this.exports._krl_real!(value));
    }

    private symbol(value: unknown): Pointer {
        if (typeof value !== "string") throw new Mismatch("a name", value);
        return this.made(this.exports._krl_symbol!(this.scope.text(value.replace(/^#/, ""))));
    }

    private colour(value: unknown): Pointer {
        let levels: readonly number[];
        if (typeof value === "string" && COLOUR.test(value))
            levels = [1, 3, 5].map((at) => parseInt(value.slice(at, at + 2), 16));
        else if (isLevels(value))
            levels = value;
        else
            throw new Mismatch('a colour such as "#ff8000" or [255, 128, 0]', value);
        return this.made(this.exports._krl_colour!(...levels));
    }

    private point(value: unknown): Pointer {
        const [x, y] = isPoint(value) ? [value.x, value.y] : Array.isArray(value) && value.length === 2 ? value : [];
        if (!isInteger32(x) || !isInteger32(y)) throw new Mismatch("a point such as {x: 480, y: 320}", value);
        return this.made(this.exports._krl_point!(x, y));
    }

    private colours(value: unknown): Pointer {
        const entries = colourEntries(value);
        if (!entries) throw new Mismatch('colours such as {0: "#000000", 100: "#ffffff"} or a list of them', value);
        return this.propertyList(entries, (place) => this.integer(Number(place)), (colour) => this.colour(colour));
    }

    private picture(name: string, value: unknown): Pointer {
        const lent = new LentPicture(this.scope, value, this.method, name);
        this.pictures.set(name, lent);
        return this.made(this.exports._krl_picture_value!(lent.at));
    }

    private tree(name: string, value: unknown): Pointer {
        if (typeof value === "string") return COLOUR.test(value) ? this.colour(value) : this.symbol(value);
        if (typeof value === "number") return isInteger32(value) ? this.integer(value) : this.real(value);
        if (value === null) return this.made(this.exports._krl_nothing!());
        if (typeof value !== "object") throw new Mismatch("a number, a name, a list or an object", value);
        if (isPoint(value)) return this.point(value);
        if (isPicture(value)) return this.picture(name, value);
        const key = (word: unknown) => isInteger32(word) ? this.integer(word) : this.symbol(word);
        const item = (entry: unknown) => this.tree(name, entry);
        if (!Array.isArray(value)) return this.propertyList(Object.entries(value), key, item);
        if (value.length > 0 && value.every(isPair)) return this.propertyList(value, key, item);
        return this.list(value, item);
    }

    private list(items: readonly unknown[], item: (value: unknown) => Pointer): Pointer {
        const list = this.made(this.exports._krl_list!());
        return this.filled(list, () => {
            for (const value of items) this.require(this.exports._krl_list_add!(list, item(value)));
        });
    }

    private propertyList(entries: readonly Entry[], key: (word: unknown) => Pointer,
        item: (value: unknown) => Pointer): Pointer {
        const list = this.made(this.exports._krl_property_list!());
        return this.filled(list, () => {
            for (const [word, value] of entries) {
                const made = item(value);
                const name = this.orFree(made, () => key(isWhole(word) ? Number(word) : word));
                this.require(this.exports._krl_property_list_add!(list, name, made));
            }
        });
    }

    /** The list, or nothing of it if filling it fails. */
    private filled(list: Pointer, fill: () => void): Pointer {
        this.orFree(list, fill);
        return list;
    }

    private orFree<T>(value: Pointer, work: () => T): T {
        try {
            return work();
        } catch (problem) {
            this.exports._krl_value_free!(value);
            throw problem;
        }
    }

    private require(code: number): void {
        if (code !== 0) throw new Mismatch("a structure that is less deep", "one that is nested too deeply");
    }
}

/** Keys of objects are texts, those of colours numbers. */
function isWhole(word: unknown): boolean {
    return typeof word === "string" && /^-?\d+$/.test(word);
}

function isPair(value: unknown): value is Entry {
    return Array.isArray(value) && value.length === 2 && typeof value[0] === "string" && !COLOUR.test(value[0]);
}

/** Places and colours; a bare list is spread evenly from 0 to 100. */
function colourEntries(value: unknown): readonly Entry[] | undefined {
    if (typeof value !== "object" || value === null) return undefined;
    if (!Array.isArray(value)) return Object.entries(value);
    if (value.length > 0 && value.every((item) => Array.isArray(item) && item.length === 2)) return value as Entry[];
    const last = Math.max(value.length - 1, 1);
    return value.map((colour, index) => [Math.round(100 * index / last), colour]);
}
