import type { Picture } from "krlimage";

/** PNG that keeps the colour of transparent pixels, which a canvas does not. */

const SIGNATURE = [0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a];

const CRC = Uint32Array.from({ length: 256 }, (_, index) => {
    let value = index;
    for (let bit = 0; bit < 8; ++bit) value = value & 1 ? 0xedb88320 ^ value >>> 1 : value >>> 1;
    return value;
});

function checksum(bytes: Uint8Array): number {
    let value = 0xffffffff;
    for (const byte of bytes) value = CRC[(value ^ byte) & 0xff]! ^ value >>> 8;
    return ~value >>> 0;
}

/** Length, name, content and checksum. */
function chunk(name: string, content: Uint8Array): Uint8Array {
    const bytes = new Uint8Array(content.length + 12);
    const view = new DataView(bytes.buffer);
    view.setUint32(0, content.length);
    bytes.set(new TextEncoder().encode(name), 4);
    bytes.set(content, 8);
    view.setUint32(content.length + 8, checksum(bytes.subarray(4, content.length + 8)));
    return bytes;
}

/** Rows as differences from the row above, which compress well. */
function filteredRows({ width, height, data }: Picture): Uint8Array<ArrayBuffer> {
    const UP = 2, rowBytes = width * 4;
    const rows = new Uint8Array((rowBytes + 1) * height);
    for (let y = 0; y < height; ++y) {
        const to = y * (rowBytes + 1), from = y * rowBytes;
        rows[to] = UP;
        for (let x = 0; x < rowBytes; ++x) rows[to + 1 + x] = data[from + x]! - (y > 0 ? data[from + x - rowBytes]! : 0);
    }
    return rows;
}

export async function encodePng(picture: Picture): Promise<Blob> {
    const header = new Uint8Array(13);
    const view = new DataView(header.buffer);
    view.setUint32(0, picture.width);
    view.setUint32(4, picture.height);
    header.set([8, 6], 8);  // 8 bits of red, green, blue and alpha
    const packed = new Blob([filteredRows(picture)]).stream().pipeThrough(new CompressionStream("deflate"));
    const pixels = new Uint8Array(await new Response(packed).arrayBuffer());
    const parts = [Uint8Array.from(SIGNATURE), chunk("IHDR", header), chunk("IDAT", pixels), chunk("IEND", new Uint8Array())];
    return new Blob(parts as Uint8Array<ArrayBuffer>[], { type: "image/png" });
}
