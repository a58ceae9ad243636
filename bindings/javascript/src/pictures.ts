import { KrlError, mismatch } from "./errors.js";
import type { Bytes, Canvas, Picture, Source } from "./types.js";

export const PIXEL_BYTES = 4;

/** A picture of transparent black: an `ImageData` where there is such. */
export function newPicture(width: number, height: number): Picture {
    if (typeof ImageData !== "undefined") return new ImageData(width, height);
    return { width, height, data: new Uint8ClampedArray(width * height * PIXEL_BYTES) };
}

/** A new picture of these pixels. */
export function newPictureOf({ width, height }: Picture, pixels: Bytes): Picture {
    const made = newPicture(width, height);
    made.data.set(pixels);
    return made;
}

function isCanvas(source: unknown): source is Canvas {
    return typeof HTMLCanvasElement !== "undefined" && source instanceof HTMLCanvasElement
        || typeof OffscreenCanvas !== "undefined" && source instanceof OffscreenCanvas;
}

function isBytes(source: unknown): source is Bytes {
    return source instanceof Uint8ClampedArray || source instanceof Uint8Array;
}

function contextOf(canvas: Canvas, method: string, argument: string) {
    const context = canvas.getContext("2d") as CanvasRenderingContext2D | OffscreenCanvasRenderingContext2D | null;
    if (!context) throw mismatch(method, argument, "a canvas with a 2d context", "one with another");
    return context;
}

/** The picture that a source has, over the same bytes unless it is a canvas. */
function pictureOf(source: unknown, width: number | undefined, method: string, argument: string): Picture {
    if (isCanvas(source)) {
        if (source.width < 1 || source.height < 1) throw mismatch(method, argument, "a canvas with pixels", "none");
        return contextOf(source, method, argument).getImageData(0, 0, source.width, source.height);
    }
    if (isBytes(source)) {
        if (!Number.isInteger(width) || width! < 1 || source.length % (width! * PIXEL_BYTES) !== 0 || source.length === 0)
            throw mismatch(method, argument, "bytes of whole rows of RGBA, and their width", `${source.length} bytes, width ${width}`);
        return { width: width!, height: source.length / (width! * PIXEL_BYTES), data: source };
    }
    const picture = source as Partial<Picture> | null | undefined;
    const whole = (side: unknown) => Number.isInteger(side) && (side as number) > 0;
    if (typeof picture !== "object" || !picture || !isBytes(picture.data) || !whole(picture.width) || !whole(picture.height))
        throw mismatch(method, argument, "ImageData, RGBA bytes with a width, or a canvas", source);
    if (picture.data.length !== picture.width! * picture.height! * PIXEL_BYTES)
        throw new KrlError(`${method}: ${argument}: ${picture.width} by ${picture.height} pixels of RGBA have `
            + `${picture.width! * picture.height! * PIXEL_BYTES} bytes, got ${picture.data.length}`,
        { method, argument, reason: "not a picture" });
    return picture as Picture;
}

/** A source during a call: read before, written back after. */
export class Loan {
    readonly picture: Picture;

    constructor(private readonly source: unknown, width: number | undefined, method: string, argument: string) {
        this.picture = pictureOf(source, width, method, argument);
    }

    /** Puts new pixels where the source has them. */
    finish(pixels: Bytes): Picture {
        this.picture.data.set(pixels);
        if (isCanvas(this.source))
            contextOf(this.source, "", "").putImageData(this.picture as ImageData, 0, 0);
        return this.picture;
    }

    /** A new picture of these pixels; the source stays as it is. */
    copy(pixels: Bytes): Picture {
        return newPictureOf(this.picture, pixels);
    }
}

export type { Source };
