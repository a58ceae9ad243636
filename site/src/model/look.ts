import type { Value } from "krlimage";
import type { EffectInfo, Size } from "./document.js";

/** An argument of a call in a look's text. */
interface Written {
    readonly name: string;
    readonly text: string;
}

/** The effect and the arguments of a call such as `vignette(blur: 10%, #ellipse)`. */
export function readCall(text: string): { readonly effect: string; readonly parts: readonly string[] } {
    const open = text.indexOf("(");
    if (open < 0) return { effect: text.trim(), parts: [] };
    return { effect: text.slice(0, open).trim(), parts: splitArguments(text.slice(open + 1, text.lastIndexOf(")"))) };
}

/** Splits at the commas that are in no brackets and no quotes. */
function splitArguments(text: string): string[] {
    const parts: string[] = [];
    let depth = 0, quoted = false, start = 0;
    for (let at = 0; at <= text.length; ++at) {
        const letter = text[at];
        if (letter === '"') quoted = !quoted;
        if (quoted && letter !== undefined) continue;
        if (letter === "(" || letter === "[") ++depth;
        if (letter === ")" || letter === "]") --depth;
        if (letter === undefined || letter === "," && depth === 0) {
            parts.push(text.slice(start, at).trim());
            start = at + 1;
        }
    }
    return parts.filter((part) => part !== "");
}

/** The arguments with their names; those without one go by position. */
export function namedArguments(effect: EffectInfo, parts: readonly string[]): Written[] {
    let position = 0;
    return parts.flatMap((part) => {
        const named = /^#?([A-Za-z_]\w*)\s*:\s*(.*)$/s.exec(part);
        if (named) return [{ name: named[1]!, text: named[2]! }];
        const argument = effect.arguments[position++];
        return argument ? [{ name: argument.name, text: part }] : [];
    });
}

/** The text with percentages as pixels: of the width and the height in points, of the shorter side elsewhere. */
export function withoutPercent(text: string, { width, height }: Size, isInteger: boolean): string {
    const inPixels = (share: string, side: number) => {
        const pixels = Number(share) * side / 100;
        return String(isInteger ? Math.round(pixels) : pixels);
    };
    const sides = /^\s*(?:point|rect)\s*\(/i.test(text) ? [width, height] : [Math.min(width, height)];
    let place = 0;
    return text.replace(/(-?[\d.]+)%|,/g, (all, share: string | undefined) => {
        if (share === undefined) return ++place, all;
        return inPixels(share, sides[place % sides.length]!);
    });
}

/** The name in `image("paper.png")`, or nothing. */
export function pictureName(text: string): string | undefined {
    return /^image\("(.*)"\)$/.exec(text.trim())?.[1];
}

/** The length as a share of the picture, with as many digits as give the same pixels again. */
export function percentText(pixels: number, size: Size): string {
    return `${Number((100 * pixels / Math.min(size.width, size.height)).toPrecision(7))}%`;
}

/** The point as shares of the picture. */
export function pointText(value: { x: number; y: number }, { width, height }: Size): string {
    const share = (part: number, whole: number) => `${Number((100 * part / whole).toPrecision(7))}%`;
    return `point(${share(value.x, width)}, ${share(value.y, height)})`;
}

export type ReadValues = Record<string, Value>;
