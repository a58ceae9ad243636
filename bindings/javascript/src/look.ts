import type { Exports, Pointer } from "./exports.js";
import { collected, OutOfMemory, Structure, type Memory, type Scope } from "./memory.js";
import { Outcome } from "./results.js";
import type { Source } from "./types.js";
import { LentPicture } from "./write.js";

/** A look that comes with the engine. */
export interface ShippedLook {
    readonly name: string;
    readonly text: string;
}

/** A parameter of a look. Values are texts, in which a length may be in percent. */
export interface LookParameter {
    readonly name: string;
    /** May be empty. */
    readonly meaning: string;
    /** What calls take now. */
    readonly value: string;
    /** What they take unless it is set. */
    readonly standard: string;
    /** A range that is sensible to try; both are empty where there is none. */
    readonly from: string;
    readonly to: string;
}

const PARAMETER = new Structure({
    name: "text", meaning: "text", value: "text", standard: "text", from: "text", to: "text", argument: "word",
});

export function readShippedLooks(exports: Exports, memory: Memory): ShippedLook[] {
    return [...Array(exports._krl_shipped_look_count!()).keys()].map((index) => ({
        name: memory.text(exports._krl_shipped_look_name!(index) >>> 0),
        text: memory.text(exports._krl_shipped_look_text!(index) >>> 0),
    }));
}

/** A chain of calls with a title, a description and parameters. */
export class Look {
    private readonly pictures = new Map<string, Source>();

    private constructor(private readonly exports: Exports, private readonly memory: Memory, private at: Pointer) {
        collected.register(this, () => exports._krl_look_free!(at), this);
    }

    /** @internal */
    static read(exports: Exports, memory: Memory, text: string): Look {
        return memory.scoped((scope) => {
            const place = scope.allocate(4);
            memory.view.setUint32(place, 0, true);
            const source = scope.text(text);
            Outcome.of(exports, scope, (result) => exports._krl_look_read!(source, place, result)).requireSuccess("");
            return new Look(exports, memory, memory.word(place));
        });
    }

    /** @internal */
    static make(exports: Exports, memory: Memory, title: string): Look {
        const at = exports._krl_look_new!() >>> 0;
        if (at === 0) throw new OutOfMemory(0);
        const look = new Look(exports, memory, at);
        look.title = title;
        return look;
    }

    get title(): string {
        return this.memory.text(this.exports._krl_look_title!(this.alive()) >>> 0);
    }
    set title(title: string) {
        this.change("_krl_look_set_title", title);
    }

    get description(): string {
        return this.memory.text(this.exports._krl_look_description!(this.alive()) >>> 0);
    }
    set description(description: string) {
        this.change("_krl_look_set_description", description);
    }

    /** The calls as texts. */
    get calls(): string[] {
        return this.texts("_krl_look_call_count", "_krl_look_call");
    }

    /** Names of the pictures that the calls take. */
    get pictureNames(): string[] {
        return this.texts("_krl_look_picture_count", "_krl_look_picture_name");
    }

    get parameters(): LookParameter[] {
        const { exports, memory } = this;
        const look = this.alive();
        return memory.scoped((scope) => {
            const place = scope.allocate(PARAMETER.bytes);
            return [...Array(exports._krl_look_parameter_count!(look)).keys()].map((index) => {
                memory.view.setUint32(place, PARAMETER.bytes, true);
                exports._krl_look_parameter!(look, index, place);
                const { argument: _, ...parameter } = PARAMETER.read(memory, place);
                return parameter;
            });
        });
    }

    /** Gives a parameter another value, such as `"80"`, `"12%"` or `"#RGB"`. */
    set(parameter: string, value: string | number): this {
        return this.change("_krl_look_set", parameter, String(value));
    }

    /** Sets the picture of a name that the calls take. It is read when the look is applied. */
    setPicture(name: string, picture: Source): this {
        this.pictures.set(name, picture);
        return this;
    }

    /** Adds a parameter, for calls that are added after it. */
    addParameter(parameter: { name: string; value: string; from?: string; to?: string; meaning?: string }): this {
        const { name, value, from = "", to = "", meaning = "" } = parameter;
        return this.change("_krl_look_add_parameter", name, value, from, to, meaning);
    }

    /** Adds a call, such as `"vignette(blur: $soft)"`. */
    addCall(call: string): this {
        return this.change("_krl_look_add_call", call);
    }

    /** The look's text, for a file. */
    toString(): string {
        const { exports, memory } = this;
        const look = this.alive();
        return memory.scoped((scope) => {
            const bytes = exports._krl_look_write!(look, 0, 0) + 1;
            const text = scope.allocate(bytes);
            exports._krl_look_write!(look, text, bytes);
            return memory.text(text);
        });
    }

    /** Gives its memory back. */
    dispose(): void {
        if (this.at === 0) return;
        collected.unregister(this);
        this.exports._krl_look_free!(this.at);
        this.at = 0;
    }

    [Symbol.dispose](): void {
        this.dispose();
    }

    /** @internal */
    handle(exports: Exports): Pointer {
        if (exports !== this.exports) throw new Error("the look belongs to another engine");
        return this.alive();
    }

    /** @internal Passes its pictures to the module for the time of a call. */
    lendPictures(scope: Scope): void {
        for (const [name, picture] of this.pictures) {
            const lent = new LentPicture(scope, picture, "look", name);
            this.exports._krl_look_set_picture!(this.alive(), scope.text(name), lent.at);
        }
    }

    private alive(): Pointer {
        if (this.at === 0) throw new Error("the look has been disposed of");
        return this.at;
    }

    private texts(count: `_krl_${string}`, text: `_krl_${string}`): string[] {
        const look = this.alive();
        return [...Array(this.exports[count]!(look)).keys()]
            .map((index) => this.memory.text(this.exports[text]!(look, index) >>> 0));
    }

    private change(method: `_krl_${string}`, ...words: string[]): this {
        const look = this.alive();
        this.memory.scoped((scope) => {
            const texts = words.map((word) => scope.text(word));
            Outcome.of(this.exports, scope, (place) => this.exports[method]!(look, ...texts, place)).requireSuccess("");
        });
        return this;
    }
}

