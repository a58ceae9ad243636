import type { Picture } from "krlimage";
import { encodePng } from "./png.js";

/** Pictures that come with the page, and what they show. */
export const SAMPLES = {
    landscape: "A landscape with a low sun",
    portrait: "A portrait",
    greenscreen: "A figure before a green screen",
    logo: "A logo with transparency",
} as const;
export type SampleName = keyof typeof SAMPLES;

/** The most pixels of a picture: effects need several times its memory, of which there are 4 GB. */
const MOST_PIXELS = 100_000_000;

/** Reads a picture file. Nothing of it leaves this machine. */
export async function pictureOfFile(file: Blob): Promise<Picture> {
    const start = new TextDecoder("latin1").decode(await file.slice(0, 3).arrayBuffer());
    if (start === "P7\n") return pictureOfPam(new Uint8Array(await file.arrayBuffer()));
    const name = file instanceof File ? file.name : "the file";
    const size = await sizeOfFile(file, name);
    if (size.width * size.height > MOST_PIXELS)
        throw new Error(`${name} is too large: it has ${millions(size)} million pixels, and ${MOST_PIXELS / 1e6} million are the most`);
    const bitmap = await createImageBitmap(file, { premultiplyAlpha: "none", colorSpaceConversion: "default" });
    const canvas = new OffscreenCanvas(bitmap.width, bitmap.height);
    const context = canvas.getContext("2d", { willReadFrequently: true });
    if (!context) throw new Error(`${name} needs more memory than the browser has`);
    context.drawImage(bitmap, 0, 0);
    bitmap.close();
    return context.getImageData(0, 0, canvas.width, canvas.height);
}

const millions = ({ width, height }: { width: number; height: number }) => Math.round(width * height / 1e6);

/** The size as the file's header has it, before its pixels are unpacked. */
function sizeOfFile(file: Blob, name: string): Promise<{ width: number; height: number }> {
    const address = URL.createObjectURL(file);
    const image = new Image();
    return new Promise<{ width: number; height: number }>((resolve, reject) => {
        image.onload = () => resolve({ width: image.naturalWidth, height: image.naturalHeight });
        image.onerror = () => reject(new Error(`${name} is not a picture that this browser can read`));
        image.src = address;
    }).finally(() => URL.revokeObjectURL(address));
}

/** The engine's own format: a header of lines, then RGBA. */
export function pictureOfPam(bytes: Uint8Array): Picture {
    const header = new TextDecoder("latin1").decode(bytes.subarray(0, 400));
    const end = header.indexOf("ENDHDR\n") + "ENDHDR\n".length;
    const number = (key: string) => Number(new RegExp(`^${key} (\\d+)$`, "m").exec(header)?.[1] ?? 0);
    const [width, height] = [number("WIDTH"), number("HEIGHT")];
    if (end < 10 || number("DEPTH") !== 4 || bytes.length - end !== width * height * 4 || width * height === 0)
        throw new Error("This PAM file is damaged, or not of RGB_ALPHA");
    return new ImageData(new Uint8ClampedArray(bytes.slice(end)), width);
}

export const FORMATS = { png: "image/png", jpg: "image/jpeg", webp: "image/webp" } as const;
export type Format = keyof typeof FORMATS;

/** The picture as a file's bytes. */
export async function encoded(picture: Picture, format: Format, quality = 0.92): Promise<Blob> {
    if (format === "png") return encodePng(picture);
    const canvas = new OffscreenCanvas(picture.width, picture.height);
    canvas.getContext("2d")!.putImageData(asImageData(picture), 0, 0);
    return canvas.convertToBlob({ type: FORMATS[format], quality });
}

export function asImageData({ data, width }: Picture): ImageData {
    return new ImageData(data as Uint8ClampedArray<ArrayBuffer>, width);
}

/** Hands a file to the browser's downloads. */
export function download(content: Blob, name: string): void {
    const link = document.createElement("a");
    link.href = URL.createObjectURL(content);
    link.download = name;
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 10_000);
}
