import { KrlError, LingoError, type Effect, type Engine, type Picture, type Value } from "krlimage";
import type { Chain, EffectInfo, Size, Step, Values } from "../model/document.js";
import { isPoint, scaledValues, shownArguments } from "../model/document.js";
import { namedArguments, percentText, pictureName, pointText, readCall, withoutPercent } from "../model/look.js";
import type { AsyncServices, CallForm, Failure, Printed, ReadLook, Rendered, Start } from "./protocol.js";
import { fitted } from "./resize.js";

/** The most pixels of a picture whose steps are kept, so that a change of one repeats only those after it. */
const KEPT_PIXELS = 1_500_000;
/** The most statements of a script: some seconds. */
const MOST_STEPS = 2e7;

function copyOf({ width, height, data }: Picture): Picture {
    return { width, height, data: data.slice() };
}

interface Outcome {
    readonly picture: Picture;
    readonly measured: string | undefined;
    readonly milliseconds: number;
}

function shownValue(value: Value): string {
    return typeof value === "number" ? String(Math.round(value * 1000) / 1000) : String(value);
}

export function failureOf(problem: unknown, step?: number): Failure {
    const message = problem instanceof Error ? problem.message : String(problem);
    if (problem instanceof LingoError) return { message, line: problem.line, column: problem.column, output: problem.output };
    return { message, step, argument: problem instanceof KrlError ? problem.argument : undefined };
}

const nextTurn = () => new Promise<void>((resolve) => { setTimeout(resolve); });

/** Outcomes of the steps of one chain at one size, in order. */
class Cache {
    private of = "";
    private outcomes: { readonly key: string; readonly outcome: Outcome }[] = [];

    /** Forgets what is of another picture or size. */
    open(of: string): void {
        if (this.of !== of) this.outcomes = [];
        this.of = of;
    }

    /** The outcome of step `index`, if it and all before it are as they were. */
    find(index: number, key: string): Outcome | undefined {
        const entry = this.outcomes[index];
        if (entry?.key === key) return entry.outcome;
        this.outcomes.length = Math.min(this.outcomes.length, index);
        return undefined;
    }

    add(key: string, outcome: Outcome): void {
        this.outcomes.push({ key, outcome });
    }
}

/** What the page asks of an engine. */
export class Studio implements AsyncServices {
    private readonly effects: ReadonlyMap<string, EffectInfo>;
    private readonly pictures = new Map<string, Picture>();
    private readonly cache = new Cache();
    private lastRender = 0;

    constructor(private readonly engine: Engine) {
        this.effects = new Map(engine.families.flatMap(({ heading, effects }) =>
            effects.map((effect) => [effect.name, { ...effect, heading, lengths: this.lengthsOf(effect) }])));
    }

    /** A length is what takes a percentage. */
    private lengthsOf(effect: Effect): string[] {
        return effect.arguments.filter(({ name, kind }) => {
            if (kind !== "integer" && kind !== "real") return false;
            const look = this.engine.newLook("test");
            try {
                look.addCall(`${effect.name}(${name}: 10%)`);
                return true;
            } catch {
                return false;
            } finally {
                look.dispose();
            }
        }).map(({ name }) => name);
    }

    start(): Start {
        const looks = this.engine.shippedLooks.map(({ name, text }) => {
            const look = this.engine.readLook(text);
            const { title, description } = look;
            look.dispose();
            return { name, text, title, description };
        });
        return {
            families: this.engine.families, looks, release: this.engine.release, simd: this.engine.simd,
            threads: this.engine.threads,
            lengths: Object.fromEntries([...this.effects].map(([name, { lengths }]) => [name, lengths])),
        };
    }

    private kept(name: string): Picture {
        const picture = this.pictures.get(name);
        if (!picture) throw new KrlError(`there is no picture called ${name}`);
        return picture;
    }

    /** The arguments of a call, with pictures of the size that the effect works on. */
    private argumentsOf(effect: EffectInfo, values: Values, size: Size): Record<string, unknown> {
        const given: Record<string, unknown> = { ...values };
        for (const { name, kind, example } of effect.arguments) {
            if (kind === "picture") given[name] = copyOf(fitted(this.kept(String(values[name])), size));
            if (kind === "tree" && Array.isArray(example) && typeof example[0] === "string")
                given[name] = this.engine.apply(fitted(this.kept(String(values[name] ?? "")), size), "broadcastSplit").pictures.slice(0, example.length);
        }
        if (given.mix === 1) delete given.mix;
        return given;
    }

    private applyStep(effect: EffectInfo, values: Values, before: Picture): Outcome {
        const picture = copyOf(before);
        const given = this.argumentsOf(effect, values, before);
        const begun = performance.now();
        const result = this.engine.apply(picture, effect.name as "invert", given as object);
        const milliseconds = performance.now() - begun;
        const changed = effect.changedArgument ? given[effect.changedArgument] as Picture : result.picture;
        const measured = Object.entries(result.entries as Record<string, Value>)
            .filter(([key, value]) => key !== "error" && (typeof value !== "object" || value === null))
            .map(([key, value]) => `${key}: ${shownValue(value)}`).join(", ");
        return { picture: changed ?? picture, measured: measured || undefined, milliseconds };
    }

    async render(source: string, chain: Chain, size: Size): Promise<Rendered | undefined> {
        const own = ++this.lastRender;
        let picture = fitted(this.kept(source), size);
        const keeps = size.width * size.height <= KEPT_PIXELS;
        if (keeps) this.cache.open(`${source} ${size.width} ${size.height}`);
        const times: (number | undefined)[] = [], measured: (string | undefined)[] = [];
        let place = 0;
        for (const [index, step] of chain.steps.entries()) {
            const effect = this.effects.get(step.effect)!;
            if (!step.on) {
                times.push(undefined), measured.push(undefined);
                continue;
            }
            const values = scaledValues(effect, step.values, chain.size, size);
            const key = JSON.stringify([step.effect, values]);
            let outcome = keeps ? this.cache.find(place, key) : undefined;
            ++place;
            if (!outcome) {
                await nextTurn();
                if (own !== this.lastRender) return undefined;
                try {
                    outcome = this.applyStep(effect, values, picture);
                } catch (problem) {
                    return { picture: copyOf(picture), times, measured, failure: failureOf(problem, index) };
                }
                if (keeps) this.cache.add(key, outcome);
            }
            times.push(outcome.milliseconds);
            measured.push(outcome.measured);
            picture = outcome.picture;
        }
        return { picture: copyOf(picture), times, measured, failure: undefined };
    }

    example(name: string, size: Size): Values {
        const effect = this.effects.get(name)!;
        const values: Record<string, Value> = {};
        for (const argument of effect.arguments) {
            const isPicture = argument.kind === "picture" || argument.kind === "tree" && Array.isArray(argument.example)
                && typeof argument.example[0] === "string";
            values[argument.name] = isPicture
                ? (argument.kind === "picture" ? String(argument.example).replace(/\.\w+$/, "") : "greenscreen")
                : this.engine.example(name as "invert", argument.name, size.width, size.height);
        }
        return effect.rewritesPicture ? { ...values, mix: 1 } : values;
    }

    thumbnail(source: string, name: string, size: Size): Picture {
        const effect = this.effects.get(name)!;
        const picture = fitted(this.kept(source), size);
        try {
            const full = this.kept(source);
            return copyOf(this.applyStep(effect, scaledValues(effect, this.example(name, full), full, size), picture).picture);
        } catch {
            return copyOf(picture);  // the card shows the picture as it is; adding the effect tells why
        }
    }

    /** What differs from the example, as a call. */
    private callOf({ effect: name, values }: Step, size: Size, percent: boolean): string {
        const effect = this.effects.get(name)!;
        const standard = this.example(name, size);
        const parts = shownArguments(effect).flatMap(({ name: argument, kind }) => {
            const value = values[argument];
            if (value === undefined || kind !== "picture" && JSON.stringify(value) === JSON.stringify(standard[argument])) return [];
            if (percent && effect.lengths.includes(argument) && typeof value === "number")
                return [`${argument}: ${percentText(value, size)}`];
            if (percent && isPoint(value)) return [`${argument}: ${pointText(value, size)}`];
            if (kind === "picture") return [`${argument}: image("${value}.png")`];
            return [`${argument}: ${this.write(name, argument, value)}`];
        });
        return parts.length > 0 ? `${name}(${parts.join(", ")})` : name;
    }

    /** A call with every argument, as scripts make it. */
    private scriptCallOf({ effect: name, values }: Step): string {
        const effect = this.effects.get(name)!;
        const given = effect.arguments.map(({ name: argument, kind }) => {
            const value = values[argument]!;
            return kind === "picture" ? `member("${value}").image` : this.write(name, argument, value);
        });
        return `${effect.scriptName}(${given.join(", ")})`;
    }

    readLook(text: string, size: Size): ReadLook {
        const look = this.engine.readLook(text);
        try {
            const parameters = new Map(look.parameters.map(({ name, value }) => [name.toLowerCase(), value]));
            const left: string[] = [];
            const steps = look.calls.flatMap((call) => {
                const filled = call.replace(/\$(\w+)/g, (all, name: string) => parameters.get(name.toLowerCase()) ?? all);
                const { effect: name, parts } = readCall(filled);
                const effect = [...this.effects.values()].find((entry) =>
                    [entry.name, entry.scriptName].some((known) => known.toLowerCase() === name.toLowerCase()));
                if (!effect || filled.includes("$before")) return left.push(call), [];
                const values: Record<string, Value> = { ...this.example(effect.name, size) };
                for (const { name: given, text: written } of namedArguments(effect, parts)) {
                    const argument = shownArguments(effect).find((entry) => entry.name.toLowerCase() === given.toLowerCase());
                    const picture = pictureName(written);
                    if (!argument) left.push(`${effect.name}: ${given}`);
                    else values[argument.name] = picture?.replace(/\.\w+$/, "")
                        ?? this.engine.parseValue(withoutPercent(written, size, argument.kind === "integer"));
                }
                return [{ effect: effect.name, values }];
            });
            return { title: look.title, steps, left };
        } finally {
            look.dispose();
        }
    }

    writeLook(title: string, calls: readonly string[]): string {
        const look = this.engine.newLook(title);
        try {
            for (const call of calls) look.addCall(call);
            return String(look);
        } finally {
            look.dispose();
        }
    }

    keep(name: string, picture: Picture): void {
        if (this.pictures.has(name)) this.cache.open("");  // outcomes can depend on the picture that had the name
        this.pictures.set(name, picture);
    }

    calls(steps: readonly Step[], size: Size, form: CallForm): string[] {
        return steps.map((step) => form === "lingo" ? this.scriptCallOf(step) : this.callOf(step, size, form === "look"));
    }

    parse(text: string): Value {
        return this.engine.parseValue(text);
    }

    write(name: string, argument: string, value: Value): string {
        const call = this.engine.callText(name as "invert", { [argument]: value } as object);
        return call.slice(`${name}(${argument}: `.length, -1);
    }

    async runLingo(source: string, names: readonly string[]): Promise<Printed> {
        const begun = performance.now();
        const images = Object.fromEntries(names.map((name) => [`${name}.png`, this.kept(name)]));
        const { output, alerts, images: made } = await this.engine.runLingo(source, { images, steps: MOST_STEPS });
        return { output: output + alerts, images: made, milliseconds: performance.now() - begun };
    }
}
