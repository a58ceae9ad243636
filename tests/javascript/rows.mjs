/** What it takes to repeat the table of hashes, in Node and in browsers. */

/** FNV-1a over 64 bits, in two halves. */
export class Hash {
    #high = 0xcbf29ce4;
    #low = 0x84222325;

    add(bytes) {
        let high = this.#high, low = this.#low;
        for (const byte of bytes) {
            low = (low ^ byte) >>> 0;
            const product = low * 0x1b3;
            high = (high * 0x1b3 + Math.floor(product / 2 ** 32) + low * 256) % 2 ** 32;
            low = product % 2 ** 32;
        }
        this.#high = high;
        this.#low = low;
        return this;
    }

    toString() {
        return [this.#high, this.#low].map((half) => half.toString(16).padStart(8, "0")).join("");
    }
}

/** The hash of a picture and a message, as in the table. */
export function hashOf({ width, height, data }, message = "") {
    const blueFirst = new Uint8Array(data.length);
    for (let i = 0; i < data.length; i += 4)
        blueFirst.set([data[i + 2], data[i + 1], data[i], data[i + 3]], i);
    return new Hash().add(new Uint8Array(new Int32Array([width, height]).buffer)).add(blueFirst)
        .add(new TextEncoder().encode(message)).toString();
}

/** A picture of the engine's own format. */
export function decodePam(bytes) {
    const text = new TextDecoder("latin1").decode(bytes.subarray(0, 200));
    const side = (name) => Number(new RegExp(`^${name} (\\d+)$`, "m").exec(text)[1]);
    const start = text.indexOf("ENDHDR\n") + 7;
    return { width: side("WIDTH"), height: side("HEIGHT"), data: new Uint8ClampedArray(bytes.subarray(start)) };
}

/** A picture of one level in all channels. */
export function plain(width, height, level) {
    return { width, height, data: new Uint8ClampedArray(width * height * 4).fill(level) };
}

/** The pictures that an effect needs, as its example names them. `sample` gives those by name. */
export async function picturesFor(effect, sample) {
    const given = {};
    for (const { name, kind, example } of effect.arguments) {
        if (kind === "picture") given[name] = await sample(example.split(".")[0]);
        if (kind === "tree" && Array.isArray(example) && typeof example[0] === "string")
            given[name] = example.map(() => plain(480, 320, 255));
    }
    return given;
}

/** The picture that a call leaves or makes, and the method's message. */
function outcome(engine, effect, picture, given) {
    try {
        const result = engine.apply(picture, effect.name, given);
        return [effect.changedArgument ? picture : result.picture, ""];
    } catch (error) {
        if (error.name !== "KrlError" || !error.text) throw error;
        return [picture, error.text];
    }
}

/** An effect's example on a sample: the picture and the message. */
export async function rowOf(engine, effect, name, sample) {
    return outcome(engine, effect, await sample(name), await picturesFor(effect, sample));
}

/** The hash of a row of the table. */
export async function hashOfRow(engine, effect, name, sample) {
    return hashOf(...await rowOf(engine, effect, name, sample));
}

/** Every hash by `"krlImageVignette landscape"`. */
export async function hashesOf(engine, sample) {
    const rows = [];
    for (const effect of engine.effects.values())
        for (const name of TABLE_SAMPLES)
            rows.push([`${effect.scriptName} ${name}`, await hashOfRow(engine, effect, name, sample)]);
    return rows;
}

/** The picture with every pixel `times` as wide and high: enough of them for many threads. */
export function enlarged({ width, height, data }, times) {
    const from = new Uint32Array(data.buffer, data.byteOffset, width * height);
    const to = new Uint32Array(width * height * times * times);
    const across = width * times;
    for (let y = 0; y < height * times; ++y)
        for (let x = 0; x < across; ++x) to[y * across + x] = from[Math.floor(y / times) * width + Math.floor(x / times)];
    return { width: across, height: height * times, data: new Uint8ClampedArray(to.buffer) };
}

/** The samples that the table has rows for. */
export const TABLE_SAMPLES = ["landscape", "greenscreen"];
