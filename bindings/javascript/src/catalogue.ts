import { Flag, Kind } from "./codes.js";
import type { Exports, Pointer } from "./exports.js";
import { Structure, type Memory } from "./memory.js";
import { readValue } from "./read.js";
import type { Value } from "./types.js";

/** What an argument takes. `"tree"` is a structure that its meaning describes. */
export type ArgumentKind = "integer" | "real" | "symbol" | "colour" | "point" | "colours" | "picture" | "tree";

/** One argument of an effect. */
export interface Argument {
    readonly name: string;
    /** In words; may be empty. */
    readonly meaning: string;
    readonly kind: ArgumentKind;
    /** The value of the effect's example, which a call takes where none is given; points are for 960 by 640. */
    readonly example: Value;
    /** The same as a text of the command line. */
    readonly notation: string;
    /** Of numbers: what is sensible to try. */
    readonly range: readonly [number, number];
    /** Of numbers: values beyond these count as these; infinite where there is none. */
    readonly limits: readonly [number, number];
    /** Of numbers: where the effect changes nothing; `undefined` if there is no such value. */
    readonly neutral: number | undefined;
    /** Of symbols: those that the argument takes. */
    readonly choices: readonly string[];
}

/** What an effect measures or makes besides the rewritten picture. */
export interface ResultEntry {
    readonly key: string;
    readonly meaning: string;
}

/** An effect as the engine describes it. */
export interface Effect {
    readonly name: string;
    /** Its name in Lingo, such as `"krlImageVignette"`. */
    readonly scriptName: string;
    /** One sentence. */
    readonly summary: string;
    readonly family: string;
    readonly arguments: readonly Argument[];
    readonly results: readonly ResultEntry[];
    /** Changes the picture that it is called on. */
    readonly rewritesPicture: boolean;
    /** Makes a new picture, or several. */
    readonly makesPicture: boolean;
    readonly makesPictureList: boolean;
    /** Has an argument that is a picture. */
    readonly needsSecondPicture: boolean;
    /** The argument that it changes in place of the picture that it is called on. */
    readonly changedArgument: string | undefined;
    /** Always runs on one thread, since its result would depend on their number. */
    readonly dependsOnBands: boolean;
    /** Checks its arguments and does nothing else. */
    readonly inert: boolean;
    /** Any part of a picture can be worked on alone. */
    readonly worksPerPixel: boolean;
}

/** Effects under one heading. */
export interface Family {
    readonly name: string;
    readonly heading: string;
    readonly effects: readonly Effect[];
}

const ROOT = new Structure({ families: "word", count: "word" });
const FAMILY = new Structure({ name: "text", heading: "text", methods: "word", count: "word" });
const METHOD = new Structure({
    name: "text", scriptName: "text", summary: "text", family: "text", flags: "word",
    arguments: "word", argumentCount: "word", entries: "word", entryCount: "word",
});
const ENTRY = new Structure({ key: "text", meaning: "text" });
const ARGUMENT = new Structure({
    name: "text", meaning: "text", example: "text", kind: "signed",
    from: "real", to: "real", least: "real", most: "real", neutral: "real", choices: "word", choiceCount: "word",
});

const KIND_NAMES: Readonly<Record<number, ArgumentKind>> = {
    [Kind.integer]: "integer", [Kind.real]: "real", [Kind.symbol]: "symbol", [Kind.colour]: "colour",
    [Kind.point]: "point", [Kind.colourList]: "colours", [Kind.picture]: "picture",
};

/** The catalogue of a module, without what manages the engine of a script. An effect is read when it is asked for. */
export class Catalogue {
    private readonly known = new Map<Pointer, Effect>();
    private all: readonly Family[] | undefined;
    private named: ReadonlyMap<string, Effect> | undefined;

    constructor(private readonly exports: Exports, private readonly memory: Memory) {}

    /** Effects by family, in reading order. */
    get families(): readonly Family[] {
        return this.all ??= this.readFamilies();
    }

    /** Effects by name, in reading order. */
    get effects(): ReadonlyMap<string, Effect> {
        return this.named ??= new Map(this.families.flatMap(({ effects }) => effects.map((effect) => [effect.name, effect])));
    }

    /** The effect of this name, or of this name in Lingo, in letters of any case. */
    find(name: string): Effect | undefined {
        if (name.includes("\0")) return undefined;  // where the engine would see it end
        const at = this.memory.scoped((scope) => this.exports._krl_find_method!(scope.text(name)) >>> 0);
        return at === 0 ? undefined : this.effectAt(at);
    }

    private readFamilies(): Family[] {
        const root = ROOT.read(this.memory, this.exports._krl_catalogue!() >>> 0);
        const families = this.memory.words(root.families, root.count).map((at) => {
            const { name, heading, methods, count } = FAMILY.read(this.memory, at);
            const effects = this.memory.words(methods, count).map((method) => this.effectAt(method));
            return { name, heading, effects: effects.filter((effect) => effect !== undefined) };
        });
        return families.filter(({ effects }) => effects.length > 0);
    }

    private effectAt(at: Pointer): Effect | undefined {
        const known = this.known.get(at);
        if (known) return known;
        const info = METHOD.read(this.memory, at);
        if (info.flags & Flag.managesEngine) return undefined;
        const effect = this.effect(info);
        this.known.set(at, effect);
        return effect;
    }

    private effect(info: ReturnType<typeof METHOD.read>): Effect {
        const has = (flag: number) => (info.flags & flag) !== 0;
        const places = this.memory.words(info.arguments, info.argumentCount);
        const taken = places.map((at, index) => this.argument(info.name, at, index));
        const changed = has(Flag.changesSecondPicture) ? taken.find(({ kind }) => kind === "picture") : undefined;
        return {
            name: info.name,
            scriptName: info.scriptName,
            summary: info.summary,
            family: info.family,
            arguments: taken,
            results: this.memory.words(info.entries, info.entryCount).map((at) => {
                const { key, meaning } = ENTRY.read(this.memory, at);
                return { key, meaning };
            }),
            rewritesPicture: has(Flag.rewritesPicture),
            makesPicture: has(Flag.makesPicture),
            makesPictureList: has(Flag.makesPictureList),
            needsSecondPicture: has(Flag.needsSecondPicture),
            changedArgument: changed?.name,
            dependsOnBands: has(Flag.dependsOnBands),
            inert: has(Flag.inert),
            worksPerPixel: has(Flag.worksPerPixel),
        };
    }

    private argument(method: string, at: Pointer, index: number): Argument {
        const info = ARGUMENT.read(this.memory, at);
        return {
            name: info.name,
            meaning: info.meaning,
            kind: KIND_NAMES[info.kind] ?? "tree",
            example: exampleOf(this.exports, this.memory, method, index, 960, 640),
            notation: info.example,
            range: [info.from, info.to],
            limits: [info.least, info.most],
            neutral: Number.isNaN(info.neutral) ? undefined : info.neutral,
            choices: this.memory.words(info.choices, info.choiceCount).map((choice) => this.memory.text(choice)),
        };
    }
}

/** The value of an argument's example for a picture of this size. */
export function exampleOf(exports: Exports, memory: Memory, method: string, index: number, width: number,
    height: number): Value {
    return memory.scoped((scope) => {
        const value = exports._krl_example!(scope.text(method), index, width, height) >>> 0;
        scope.atEnd(() => exports._krl_value_free!(value));
        return readValue(exports, memory, value);
    });
}
