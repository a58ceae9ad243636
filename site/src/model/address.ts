import type { Value } from "krlimage";
import { newStep, type Chain, type EffectInfo, type Values } from "./document.js";

/** A chain in an address: `#look=` and JSON in base64 that needs no escapes. */
const KEY = "look";

type Written = [width: number, height: number, steps: [effect: string, on: 0 | 1, values: Values][]];

export function addressOf(chain: Chain, effects: ReadonlyMap<string, EffectInfo>): string {
    if (chain.steps.length === 0) return "";
    const steps = chain.steps.map(({ effect, on, values }): Written[2][number] =>
        [effect, on ? 1 : 0, withoutExamples(values, effects.get(effect))]);
    const written: Written = [chain.size.width, chain.size.height, steps];
    const bytes = new TextEncoder().encode(JSON.stringify(written));
    const text = btoa(Array.from(bytes, (byte) => String.fromCharCode(byte)).join(""));
    return `#${KEY}=${text.replaceAll("+", "-").replaceAll("/", "_").replace(/=+$/, "")}`;
}

/** What differs from the example; the rest is the same wherever the link is opened. */
function withoutExamples(values: Values, effect: EffectInfo | undefined): Values {
    const isExample = (name: string, value: Value) => {
        const argument = effect?.arguments.find((entry) => entry.name === name);
        const fixed = argument && argument.kind !== "point" && argument.kind !== "tree";
        return fixed && JSON.stringify(argument.example) === JSON.stringify(value);
    };
    return Object.fromEntries(Object.entries(values).filter(([name, value]) => !isExample(name, value)));
}

/** The chain of an address; `undefined` if it has none, or one that is damaged. */
export function chainOf(address: string, effects: ReadonlyMap<string, EffectInfo>): Chain | undefined {
    const text = new URLSearchParams(address.replace(/^#/, "")).get(KEY);
    if (!text) return undefined;
    try {
        const binary = atob(text.replaceAll("-", "+").replaceAll("_", "/"));
        const json = new TextDecoder().decode(Uint8Array.from(binary, (letter) => letter.charCodeAt(0)));
        const [width, height, written] = JSON.parse(json) as Written;
        if (!(width > 0 && height > 0)) return undefined;
        const steps = written.flatMap(([name, on, values]) => {
            const effect = effects.get(name);
            return effect ? [newStep(name, { ...exampleValues(effect), ...values }, on === 1)] : [];
        });
        return { size: { width, height }, steps };
    } catch {
        return undefined;
    }
}

/** The values of the example that do not depend on a picture. */
export function exampleValues(effect: EffectInfo): Values {
    const fixed = effect.arguments.filter(({ kind }) => kind !== "point" && kind !== "picture");
    const values = Object.fromEntries(fixed.map(({ name, example }) => [name, example]));
    return effect.rewritesPicture ? { ...values, mix: 1 } : values;
}
