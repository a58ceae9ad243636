import type { Pointer } from "./exports.js";
import { collected, type Memory, type Scope } from "./memory.js";
import { newPictureOf, PIXEL_BYTES } from "./pictures.js";
import type { Picture } from "./types.js";

/**
 * A picture in the engine's memory: its calls rewrite it where it is, while other pictures are copied in before each
 * call and out after it. `dispose` gives the memory back.
 *
 * A call that fails for want of memory may leave it partly rewritten.
 */
export class HeldPicture implements Picture {
    readonly width: number;
    readonly height: number;
    private readonly memory: Memory;
    private at: Pointer;
    private lent = false;

    /** @internal */
    constructor(memory: Memory, picture: Picture) {
        this.memory = memory;
        this.width = picture.width;
        this.height = picture.height;
        const at = memory.allocate(this.byteCount);
        this.at = at;
        // Read only now, since memory that grows leaves views of it behind.
        memory.bytes(at, this.byteCount).set(picture.data);
        collected.register(this, () => memory.free(at), this);
    }

    /** The pixels as they are now, in the engine's memory: a view to take anew after each call. */
    get data(): Uint8ClampedArray {
        const { buffer, byteOffset, length } = this.memory.bytes(this.alive(), this.byteCount);
        return new Uint8ClampedArray(buffer, byteOffset, length);
    }

    /** A picture of its own with these pixels: an `ImageData` where there is such. */
    copy(): Picture {
        return newPictureOf(this, this.data);
    }

    /** Gives its memory back. */
    dispose(): void {
        if (this.at === 0) return;
        collected.unregister(this);
        this.memory.free(this.at);
        this.at = 0;
    }

    [Symbol.dispose](): void {
        this.dispose();
    }

    /**
     * @internal Its address for the time of a call; `undefined` for the memory of another engine, and if the call has
     * it already, as another argument.
     */
    lend(scope: Scope): Pointer | undefined {
        if (scope.memory !== this.memory || this.lent) return undefined;
        const at = this.alive();
        this.lent = true;
        scope.atEnd(() => { this.lent = false; });
        return at;
    }

    private get byteCount(): number {
        return this.width * this.height * PIXEL_BYTES;
    }

    private alive(): Pointer {
        if (this.at === 0) throw new Error("the picture has been disposed of");
        return this.at;
    }
}
