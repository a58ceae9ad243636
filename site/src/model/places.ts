import type { Value } from "krlimage";

export interface Size {
    readonly width: number;
    readonly height: number;
}

export type Point = { readonly x: number; readonly y: number };

export function isPoint(value: Value): value is { x: number; y: number } {
    return typeof value === "object" && value !== null && !Array.isArray(value) && "x" in value && "y" in value;
}

/** The point of a picture on a picture of another size. */
export function scaledPoint({ x, y }: Point, from: Size, to: Size): { x: number; y: number } {
    return { x: x * to.width / from.width, y: y * to.height / from.height };
}

export function roundedPoint({ x, y }: Point): { x: number; y: number } {
    return { x: Math.round(x), y: Math.round(y) };
}
