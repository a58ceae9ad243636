import type { Argument, Effect, Value } from "krlimage";
import { flareOf, scaledFlare, valueOfFlare } from "./flare.js";
import { isPoint, roundedPoint, scaledPoint, type Size } from "./places.js";
import { isShape, scaledShape } from "./shape.js";

export { isPoint, type Size };

export type Values = Readonly<Record<string, Value>>;

/** An effect in the chain, with a value for each of its arguments; pictures are given by name. */
export interface Step {
    readonly id: number;
    readonly effect: string;
    readonly on: boolean;
    readonly values: Values;
}

/** What the address holds and undo brings back: a chain, in pixels of a picture of this size. */
export interface Chain {
    readonly size: Size;
    readonly steps: readonly Step[];
}

/** An effect, and which of its arguments are lengths in pixels. */
export interface EffectInfo extends Effect {
    readonly heading: string;
    readonly lengths: readonly string[];
}

/** What every effect that rewrites a picture takes beside its own arguments. */
export const MIX: Argument = {
    name: "mix", meaning: "share of the change", kind: "real", example: 1, notation: "1.0", range: [0, 1],
    limits: [0, 1], neutral: 0, choices: [],
};

/** The arguments that the page shows. */
export function shownArguments(effect: EffectInfo): readonly Argument[] {
    return effect.rewritesPicture ? [...effect.arguments, MIX] : effect.arguments;
}

let lastId = 0;

export function newStep(effect: string, values: Values, on = true): Step {
    return { id: ++lastId, effect, on, values };
}

const shortSide = ({ width, height }: Size) => Math.min(width, height);

/** The value on a picture of another size. */
function scaled(argument: Argument, isLength: boolean, value: Value, from: Size, to: Size): Value {
    if (isLength && typeof value === "number") {
        const length = value * shortSide(to) / shortSide(from);
        return argument.kind === "integer" ? Math.round(length) : length;
    }
    return argument.kind === "point" || argument.kind === "tree" ? scaledPlaces(value, from, to) : value;
}

function scaledPlaces(value: Value, from: Size, to: Size): Value {
    if (isPoint(value)) return roundedPoint(scaledPoint(value, from, to));
    if (isShape(value)) return scaledShape(value, from, to);
    const flare = flareOf(value);
    return flare ? valueOfFlare(scaledFlare(flare, from, to)) : value;
}

/** The arguments of a step on a picture of another size. */
export function scaledValues(effect: EffectInfo, values: Values, from: Size, to: Size): Values {
    if (from.width === to.width && from.height === to.height) return values;
    return Object.fromEntries(shownArguments(effect).filter(({ name }) => name in values).map((argument) =>
        [argument.name, scaled(argument, effect.lengths.includes(argument.name), values[argument.name]!, from, to)]));
}

export function scaledChain(chain: Chain, to: Size, effects: ReadonlyMap<string, EffectInfo>): Chain {
    const steps = chain.steps.map((step) => {
        const effect = effects.get(step.effect);
        return effect ? { ...step, values: scaledValues(effect, step.values, chain.size, to) } : step;
    });
    return { size: to, steps };
}

/** Moves the step at `from` to place `to`. */
export function moved(steps: readonly Step[], from: number, to: number): readonly Step[] {
    if (from < 0 || to < 0 || from >= steps.length || to >= steps.length) return steps;
    const rest = steps.filter((_, index) => index !== from);
    return [...rest.slice(0, to), steps[from]!, ...rest.slice(to)];
}
