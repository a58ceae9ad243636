/** Bytes of pixels. */
export type Bytes = Uint8ClampedArray | Uint8Array;

/** A picture of straight RGBA, 4 bytes a pixel, such as `ImageData`. */
export interface Picture {
    readonly width: number;
    readonly height: number;
    readonly data: Bytes;
}

/** A canvas of the page or of a worker. */
export type Canvas = HTMLCanvasElement | OffscreenCanvas;

/** What can be worked on: a picture, a canvas, or RGBA bytes, of which the call has to give the width. */
export type Source = Picture | Canvas | Bytes;

/** `"#rrggbb"`, or red, green and blue. */
export type Colour = string | readonly [number, number, number];

/** In pixels from the top left. */
export interface Point {
    readonly x: number;
    readonly y: number;
}

/** Colours at places from 0 to 100, or a list of colours that are spread evenly. */
export type Colours = Readonly<Record<number, Colour>> | readonly Colour[];

/**
 * Values within each other. Strings are names, or colours such as `"#ff8000"`; objects are property lists, and so
 * are lists of `[name, value]`, in which a name can come more than once.
 */
export type Value = number | string | null | Point | Picture | readonly Value[] | { readonly [key: string]: Value };

/** Arguments by their names. What is left out takes the value of the effect's example. */
export type Arguments = Readonly<Record<string, unknown>>;

/** Where and how much an effect changes the picture: every effect that rewrites one takes these. */
export interface Extent {
    /** Share of the change, 0 to 1. */
    mix?: number;
    /** Share by the brightness of a picture of the same size. */
    mask?: Source;
    /** Left, top, right and bottom; nothing outside changes. */
    region?: readonly [number, number, number, number];
    /** Pixels inside the region's border over which the change grows to full. */
    feather?: number;
}
