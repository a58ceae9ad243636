import type { Picture } from "krlimage";
import type { Size } from "../model/document.js";

const made = new WeakMap<Picture, Picture>();

/** The picture at another size, as large as covers it; the last one of each picture is kept. */
export function fitted(picture: Picture, { width, height }: Size): Picture {
    if (picture.width === width && picture.height === height) return picture;
    const last = made.get(picture);
    if (last?.width === width && last.height === height) return last;
    const from = new OffscreenCanvas(picture.width, picture.height);
    const pixels = new Uint8ClampedArray(picture.data) as Uint8ClampedArray<ArrayBuffer>;
    from.getContext("2d")!.putImageData(new ImageData(pixels, picture.width), 0, 0);
    const context = new OffscreenCanvas(width, height).getContext("2d")!;
    context.imageSmoothingQuality = "high";
    const scale = Math.max(width / picture.width, height / picture.height);
    const [across, down] = [picture.width * scale, picture.height * scale];
    context.drawImage(from, (width - across) / 2, (height - down) / 2, across, down);
    const resized = context.getImageData(0, 0, width, height);
    made.set(picture, resized);
    return resized;
}
