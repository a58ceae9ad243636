import type { Argument, Value } from "krlimage";
import { isPoint, roundedPoint, scaledPoint, type Size } from "./places.js";

/** An element of a lens flare: its kind and its settings. */
export interface FlareElement {
    readonly kind: string;
    readonly settings: Readonly<Record<string, Value>>;
}
export type Flare = readonly FlareElement[];

const isSettings = (value: unknown): value is Record<string, Value> =>
    typeof value === "object" && value !== null && isPoint((value as Record<string, Value>).origin ?? null);

/** The elements of a flare, or nothing if the value is none. */
export function flareOf(value: Value): Flare | undefined {
    if (typeof value !== "object" || value === null || isPoint(value)) return undefined;
    const entries = Array.isArray(value) ? value as unknown[] : Object.entries(value);
    const isElement = (entry: unknown): entry is [string, Record<string, Value>] =>
        Array.isArray(entry) && typeof entry[0] === "string" && isSettings(entry[1]);
    if (entries.length === 0 || !entries.every(isElement)) return undefined;
    return entries.map(([kind, settings]) => ({ kind, settings }));
}

export function valueOfFlare(flare: Flare): Value {
    const pairs = flare.map(({ kind, settings }) => [kind, settings] as const);
    const kinds = new Set(flare.map(({ kind }) => kind));
    return kinds.size < pairs.length ? pairs : Object.fromEntries(pairs);
}

/** The flare with a setting of some elements changed. */
export function withSetting(flare: Flare, indices: readonly number[], name: string, value: Value): Flare {
    return flare.map((element, index) =>
        indices.includes(index) ? { ...element, settings: { ...element.settings, [name]: value } } : element);
}

/** What the page knows of a setting; lengths are in pixels of a picture whose shorter side has 640. */
interface Setting {
    readonly kind: Argument["kind"];
    readonly meaning: string;
    readonly start: Value;
    readonly range?: readonly [number, number];
    readonly isLength?: boolean;
    readonly choices?: readonly string[];
}

const length = (meaning: string, start: number, most: number): Setting =>
    ({ kind: "real", meaning, start, range: [0, most], isLength: true });
const real = (meaning: string, start: number, least: number, most: number): Setting =>
    ({ kind: "real", meaning, start, range: [least, most] });
const integer = (meaning: string, start: number, least: number, most: number): Setting =>
    ({ kind: "integer", meaning, start, range: [least, most] });

const SETTINGS: Readonly<Record<string, Setting>> = {
    origin: { kind: "point", meaning: "the middle of the element", start: { x: 0, y: 0 } },
    handle: { kind: "point", meaning: "where the hoop slides from", start: { x: 0, y: 0 } },
    radius: length("from the middle to the rim", 120, 640),
    length: length("from end to end", 900, 2000),
    thickness: length("across the bar", 40, 200),
    outerThickness: length("the flat ring, outside the radius", 4, 100),
    innerThickness: length("the flat ring, inside the radius", 4, 100),
    outerFeather: length("the soft edge outside", 12, 200),
    innerFeather: length("the soft edge inside", 12, 200),
    count: integer("corners, rays or arms", 6, 1, 60),
    width: integer("rays of each arm, one degree apart", 1, 1, 20),
    aperture: integer("the angle that rays are scattered over", 60, 0, 360),
    angle: real("degrees", 0, -180, 180),
    expandshape: integer("blur by which the shape grows", 0, 0, 60),
    shapeBlur: integer("blur of the edge", 6, 0, 60),
    position: real("from the handle, 0, to the origin, 1", 1, -1, 2),
    apogeeScale: real("without effect", 1, 0, 2),
    softness: real("how near the inner circle comes to the outer", 0.9, 0, 1),
    chromaSpread: real("without effect", 1, 0, 2),
    density: real("angle between rays", 0.01, 0.001, 0.1),
    noise: real("jitter of the rays", 0.5, 0, 2),
    arcCompleteness: real("1 is the whole ring", 1, 0, 1),
    seed: integer("another arrangement of what is scattered", 1, 0, 1000),
    brightness: real("of the brightest place", 160, 0, 255),
    transparency: integer("subtracted from every place", 0, 0, 255),
    colourList: { kind: "colours", meaning: "from the darkest place to the brightest", start: { 0: "#3c0a00", 60: "#ff8c3c", 100: "#fff4dc" } },
    blendMethod: { kind: "symbol", meaning: "how it meets the picture", start: "screen", choices: ["normal", "add", "screen"] },
};

const RING = ["origin", "radius", "outerThickness", "innerThickness", "outerFeather", "innerFeather", "brightness", "transparency"];
const BAR = ["length", "thickness", "angle", "origin", "brightness", "transparency"];

/** The settings of each kind, beside the colours and the blend that all have. */
const KINDS: Readonly<Record<string, readonly string[]>> = {
    gradientCircle: ["origin", "radius", "brightness", "transparency"],
    filledCircle: ["origin", "radius", "outerFeather", "brightness", "transparency"],
    outlinedCircle: RING,
    fadedCircle: RING,
    polyshape: ["count", "angle", "brightness", "radius", "expandshape", "shapeBlur", "origin", "transparency"],
    star: ["count", "width", "angle", "brightness", "radius", "origin", "transparency"],
    spike: ["count", "angle", "brightness", "radius", "origin", "seed", "transparency"],
    randomFan: ["count", "angle", "brightness", "radius", "aperture", "origin", "seed", "transparency"],
    starCaustic: BAR,
    line: BAR,
    chromaHoop: ["position", "angle", "apogeeScale", "softness", "chromaSpread", "density", "noise", "arcCompleteness",
        "seed", "brightness", "transparency", "origin", "handle"],
};
export const FLARE_KINDS = Object.keys(KINDS);

const EXAMPLE_SIDE = 640;

function scaledSetting(name: string, value: Value, from: Size, to: Size): Value {
    if (isPoint(value)) return roundedPoint(scaledPoint(value, from, to));
    if (typeof value !== "number" || !SETTINGS[name]?.isLength) return value;
    return value * Math.min(to.width, to.height) / Math.min(from.width, from.height);
}

/** The flare on a picture of another size. */
export function scaledFlare(flare: Flare, from: Size, to: Size): Flare {
    return flare.map(({ kind, settings }) => ({
        kind, settings: Object.fromEntries(Object.entries(settings).map(([name, value]) => [name, scaledSetting(name, value, from, to)])),
    }));
}

/** A new element at a place, for a picture of this size. */
export function newElement(kind: string, origin: Value, size: Size): FlareElement {
    const names = [...KINDS[kind] ?? [], "colourList", "blendMethod"];
    const square = { width: EXAMPLE_SIDE, height: EXAMPLE_SIDE };
    const side = Math.min(size.width, size.height);
    const settings = Object.fromEntries(names.map((name) =>
        [name, scaledSetting(name, SETTINGS[name]!.start, square, { width: side, height: side })]));
    const handle = { x: Math.round(size.width / 2), y: Math.round(size.height / 2) };
    return { kind, settings: { ...settings, origin, ...("handle" in settings ? { handle } : {}) } };
}

/** A setting as an argument of an effect, for the controls; nothing for one that the page does not know. */
export function settingArgument(name: string): Argument & { readonly isLength: boolean } | undefined {
    const setting = SETTINGS[name];
    if (!setting) return undefined;
    const { kind, meaning, start, range = [0, 1], choices = [], isLength = false } = setting;
    return { name, meaning, kind, example: start, notation: "", range, limits: [-Infinity, Infinity], neutral: undefined, choices, isLength };
}
