import type { Value } from "krlimage";
import { isPoint, roundedPoint, scaledPoint, type Point, type Size } from "./places.js";

/** A piece of a closed outline, as scripts write it: each handle is given from the point before it. */
interface Piece {
    readonly vertex: Point;
    readonly handle1: Point;
    readonly handle2: Point;
}

/** A corner of an outline in pixels of the picture, with the handles of the curves that come in and go out. */
export interface Corner {
    readonly at: Point;
    readonly before: Point;
    readonly after: Point;
}

/** Where (0, 0) is, from the left and from the bottom of the picture. */
const MARGIN = 200;

export const plus = (a: Point, b: Point): Point => ({ x: a.x + b.x, y: a.y + b.y });
export const minus = (a: Point, b: Point): Point => ({ x: a.x - b.x, y: a.y - b.y });
const upward = ({ x, y }: Point): Point => ({ x, y: -y });

/** Whether the value is an outline of Bezier curves. */
export function isShape(value: Value): value is readonly Value[] {
    const isPiece = (item: Value) => typeof item === "object" && item !== null
        && ["vertex", "handle1", "handle2"].every((key) => isPoint((item as Record<string, Value>)[key] ?? null));
    return Array.isArray(value) && value.length > 0 && value.every(isPiece);
}

/** The corners of an outline on a picture of this size. */
export function cornersOf(value: readonly Value[], { height }: Size): Corner[] {
    const pieces = value as unknown as readonly Piece[];
    const placed = ({ x, y }: Point): Point => ({ x: x + MARGIN, y: height - (y + MARGIN) });
    return pieces.map(({ vertex, handle1 }, index) => {
        const before = pieces.at(index - 1)!;
        return {
            at: placed(vertex), after: placed(plus(vertex, handle1)),
            before: placed(plus(plus(before.vertex, before.handle1), before.handle2)),
        };
    });
}

export function shapeOf(corners: readonly Corner[], { height }: Size): Value {
    return corners.map((corner, index): Piece => {
        const [at, after] = [roundedPoint(corner.at), roundedPoint(corner.after)];
        const before = roundedPoint(corners[(index + 1) % corners.length]!.before);
        return {
            vertex: { x: at.x - MARGIN, y: height - at.y - MARGIN },
            handle1: upward(minus(after, at)), handle2: upward(minus(before, after)),
        };
    }) as unknown as Value;
}

/** The outline as the data of an SVG path. */
export function pathOf(corners: readonly Corner[]): string {
    const text = ({ x, y }: Point) => `${x} ${y}`;
    const pieces = corners.map(({ after }, index) => {
        const next = corners[(index + 1) % corners.length]!;
        return `C${text(after)} ${text(next.before)} ${text(next.at)}`;
    });
    return `M${text(corners[0]!.at)}${pieces.join("")}Z`;
}

export type Part = keyof Corner;

/** The outline with one point elsewhere; a corner takes its handles along. */
export function withPoint(corners: readonly Corner[], index: number, part: Part, to: Point): Corner[] {
    return corners.map((corner, at) => {
        if (at !== index) return corner;
        if (part !== "at") return { ...corner, [part]: to };
        const by = minus(to, corner.at);
        return { at: to, before: plus(corner.before, by), after: plus(corner.after, by) };
    });
}

const halfway = (a: Point, b: Point): Point => ({ x: (a.x + b.x) / 2, y: (a.y + b.y) / 2 });

/** The same outline with one more corner, halfway between this one and the next. */
export function withCorner(corners: readonly Corner[], index: number): Corner[] {
    const from = corners[index]!, to = corners[(index + 1) % corners.length]!;
    const start = halfway(from.at, from.after), middle = halfway(from.after, to.before), end = halfway(to.before, to.at);
    const before = halfway(start, middle), after = halfway(middle, end);
    const next = (index + 1) % corners.length;
    // With one corner, `from` and `to` are the same: both of its handles are halved.
    const halved = corners.map((corner, at) => ({
        at: corner.at, after: at === index ? start : corner.after, before: at === next ? end : corner.before,
    }));
    return [...halved.slice(0, index + 1), { at: halfway(before, after), before, after }, ...halved.slice(index + 1)];
}

export function withoutCorner(corners: readonly Corner[], index: number): readonly Corner[] {
    return corners.length > 1 ? corners.filter((_, at) => at !== index) : corners;
}

/** The outline on a picture of another size. */
export function scaledShape(value: readonly Value[], from: Size, to: Size): Value {
    const scaled = (point: Point) => scaledPoint(point, from, to);
    return shapeOf(cornersOf(value, from).map(({ at, before, after }) =>
        ({ at: scaled(at), before: scaled(before), after: scaled(after) })), to);
}
