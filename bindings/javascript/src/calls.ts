import type { Argument, Effect } from "./catalogue.js";
import { KrlError } from "./errors.js";
import type { Exports, Pointer } from "./exports.js";
import type { Memory, Scope } from "./memory.js";
import { readValue } from "./read.js";
import { Outcome } from "./results.js";
import type { Arguments, Value } from "./types.js";
import { LentPicture, Writer } from "./write.js";

/** A running module and its one engine. */
export interface Module {
    readonly exports: Exports;
    readonly memory: Memory;
    readonly engine: Pointer;
}

type Named = Pick<Argument, "name" | "kind">;

/** What every effect that rewrites a picture takes beside its own arguments. */
const EXTENT: readonly Named[] = [
    { name: "mix", kind: "real" },
    { name: "mask", kind: "picture" },
    { name: "region", kind: "tree" },
    { name: "feather", kind: "integer" },
];

function argumentsOf(effect: Effect): readonly Named[] {
    return effect.rewritesPicture ? [...effect.arguments, ...EXTENT] : effect.arguments;
}

/** The arguments that are given, each with its description. */
function* givenArguments(effect: Effect, given: Arguments): Generator<readonly [Named, unknown]> {
    const known = argumentsOf(effect);
    for (const [name, value] of Object.entries(given)) {
        if (value === undefined) continue;
        const argument = known.find((entry) => entry.name === name);
        if (!argument)
            throw new KrlError(`${effect.name}: no argument is called ${name}; it takes `
                + (effect.arguments.map((entry) => entry.name).join(", ") || "none"),
            { method: effect.name, argument: name, reason: "no such argument" });
        yield [argument, value];
    }
}

const names = (effect: Effect) => argumentsOf(effect).map(({ name }) => name);

/** Calls an effect with values. Gives the entries of its result. */
export function callWithValues(module: Module, scope: Scope, lent: LentPicture | undefined, effect: Effect,
    given: Arguments): Value {
    const { exports, memory, engine } = module;
    const writer = new Writer(exports, scope, effect.name);
    const pairs = [...givenArguments(effect, given)].map(([{ name, kind }, value]) =>
        [scope.text(name), writer.argument(name, kind, value)] as const);
    const list = scope.allocate(pairs.length * 8 + 1);
    pairs.flat().forEach((word, index) => memory.view.setUint32(list + index * 4, word, true));
    const method = scope.text(effect.name);
    const entries = Outcome.of(exports, scope, (place) =>
        exports._krl_call!(engine, lent?.at ?? 0, method, list, pairs.length, place)).value(effect.name, names(effect));
    if (effect.changedArgument) writer.pictures.get(effect.changedArgument)?.after(true);
    return entries;
}

/** Makes a call that is a text, such as `"vignette(blur: 10%)"`. */
export function callByText(module: Module, scope: Scope, lent: LentPicture | undefined, effect: Effect,
    text: string): Value {
    const { exports, engine } = module;
    const call = scope.text(text);
    return Outcome.of(exports, scope, (place) => exports._krl_apply!(engine, lent?.at ?? 0, call, place))
        .value(effect.name, names(effect));
}

/** A value as scripts write it. */
function writtenValue({ exports, memory }: Module, scope: Scope, value: Pointer): string {
    const bytes = exports._krl_write!(value, 0, 0) + 1;
    const text = scope.allocate(bytes);
    exports._krl_write!(value, text, bytes);
    return memory.text(text);
}

/** A call as the command line and looks write it. Pictures are given by their names. */
export function writeCall(module: Module, effect: Effect, given: Arguments): string {
    return module.memory.scoped((scope) => {
        const writer = new Writer(module.exports, scope, effect.name);
        const written = [...givenArguments(effect, given)].map(([{ name, kind }, value]) => {
            const named = kind === "picture" && typeof value === "string";
            const text = named ? `image("${value}")` : writtenValue(module, scope, writer.argument(name, kind, value));
            return `${name}: ${text}`;
        });
        return written.length > 0 ? `${effect.name}(${written.join(", ")})` : effect.name;
    });
}

/** The value that a text such as `rgb(255, 128, 0)` writes. */
export function parseValue({ exports, memory }: Module, text: string): Value {
    return memory.scoped((scope) => {
        const bytes = 500;
        const problem = scope.allocate(bytes);
        memory.bytes(problem, 1)[0] = 0;
        const value = exports._krl_parse!(scope.text(text), problem, bytes) >>> 0;
        if (value === 0) throw new KrlError(memory.text(problem), { reason: "not a value" });
        scope.atEnd(() => exports._krl_value_free!(value));
        return readValue(exports, memory, value);
    });
}
