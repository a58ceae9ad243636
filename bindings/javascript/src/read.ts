import { Kind } from "./codes.js";
import type { Exports, Pointer } from "./exports.js";
import { Structure, type Memory } from "./memory.js";
import { newPicture } from "./pictures.js";
import type { Picture, Value } from "./types.js";

/** `krl_picture`. */
export const PICTURE = new Structure({
    pixels: "word", width: "signed", height: "signed", rowBytes: "signed", order: "signed",
});

/** `"#rrggbb"`. */
export function colourText(levels: readonly number[]): string {
    return "#" + levels.map((level) => level.toString(16).padStart(2, "0")).join("");
}

/** A value of the module as one of JavaScript; pictures are copied. */
export function readValue(exports: Exports, memory: Memory, value: Pointer): Value {
    return memory.scoped((scope) => {
        const place = scope.allocate(24);
        return new Reader(exports, memory, place).read(value);
    });
}

class Reader {
    constructor(private readonly exports: Exports, private readonly memory: Memory, private readonly place: Pointer) {}

    read(value: Pointer): Value {
        const { exports, memory, place } = this;
        switch (exports._krl_kind!(value)) {
            case Kind.integer:
                exports._krl_get_integer!(value, place);
                return memory.view.getInt32(place, true);
            case Kind.real:
                exports._krl_get_real!(value, place);
                return memory.view.getFloat64(place, true);
            case Kind.symbol:
            case Kind.text:
            case Kind.pictureName:
                return memory.text(exports._krl_get_text!(value) >>> 0);
            case Kind.colour:
                exports._krl_get_colour!(value, place, place + 1, place + 2);
                return colourText([...memory.bytes(place, 3)]);
            case Kind.point:
                exports._krl_get_point!(value, place, place + 4);
                return { x: memory.view.getInt32(place, true), y: memory.view.getInt32(place + 4, true) };
            case Kind.list:
                return this.indices(value).map((index) => this.item(value, index));
            case Kind.propertyList:
                return this.entries(value);
            case Kind.picture:
                return this.picture(value);
            default:
                return null;
        }
    }

    private indices(list: Pointer): number[] {
        return [...Array(this.exports._krl_count!(list)).keys()];
    }

    private item(list: Pointer, index: number): Value {
        return this.read(this.exports._krl_item!(list, index) >>> 0);
    }

    /** An object, or pairs if a key comes more than once. */
    private entries(list: Pointer): Value {
        const pairs = this.indices(list).map((index) =>
            [this.read(this.exports._krl_key!(list, index) >>> 0), this.item(list, index)] as const);
        const keys = new Set(pairs.map(([key]) => String(key)));
        return keys.size < pairs.length ? pairs : Object.fromEntries(pairs) as Value;
    }

    private picture(value: Pointer): Picture {
        const { exports, memory, place } = this;
        PICTURE.write(memory, place, { pixels: 0, width: 0, height: 0, rowBytes: 0, order: 0 });
        exports._krl_get_picture!(value, place);
        return readPicture(memory, place);
    }
}

/** A copy of the picture that a `krl_picture` describes. */
export function readPicture(memory: Memory, at: Pointer): Picture {
    const { pixels, width, height, rowBytes } = PICTURE.read(memory, at);
    const picture = newPicture(width, height);
    for (let y = 0; y < height; ++y)
        picture.data.set(memory.bytes(pixels + y * rowBytes, width * 4), y * width * 4);
    return picture;
}
