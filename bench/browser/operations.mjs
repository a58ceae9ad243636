/** What is timed: by our effects, and by what each peer has that comes nearest. */

/** A blur of ours with a radius is two boxes of radius + 1 pixels: as wide as a Gaussian of this deviation. */
const deviation = (radius) => Math.sqrt(((radius + 1) ** 2 - 1) / 6);

/** Each with our effect and its arguments; a picture is the second of a stage. */
export const OPERATIONS = {
    brightness: { words: "brightness, +40", effect: "brightness", given: { brightnessInt: 40, colourOrAlpha: "RGB" } },
    saturation: { words: "saturation, 1.3", effect: "saturation", given: { saturation: 1.3 } },
    blur10: { words: "blur, radius 10", effect: "fastGaussianBlur", given: { radius: 10, colourOrAlpha: "RGBA" } },
    blur100: { words: "blur, radius 100", effect: "fastGaussianBlur", given: { radius: 100, colourOrAlpha: "RGBA" } },
    edges: { words: "edges", effect: "sobel", given: { colourOrAlpha: "RGB" } },
    sharpen: {
        words: "sharpen, radius 10", effect: "sharpen",
        given: { radius: 10, amount: 1, threshold: 0, colourOrAlpha: "RGB" },
    },
    blend: {
        words: "blend, multiply", effect: "composite", second: ["foreground"],
        given: { blendMethod: "multiply", backgroundAlpha: "background_alpha_no" },
    },
    twirl: { words: "twirl, bilinear", effect: "twirl", given: { twirl: 30, quality: "bilinear", colourOrAlpha: "RGBA" } },
    displacement: {
        words: "warp by a map, bilinear", effect: "displacementMapComposite", second: ["dMapOne", "dMapTwo"],
        given: { colouringOptionOne: "red", colouringOptionTwo: "green", hDistance: 60, vDistance: 40, edgeOption: "wrap" },
    },
};

/** Radians that the middle of a twirled picture is turned by; at half its width it is 0. */
const TWIRL = 3;

/*
 * A library is { name, stage(picture, second) }. A stage has both pictures in the library's own form, and for each
 * operation { prepare(), run(prepared), end(prepared) }, of which only `run` is timed. It may be asynchronous.
 *
 * Peers that warp do it by a map of places, which they make by functions of their own from the place of each pixel.
 * Those places are made beforehand.
 */

/** Our effects on pictures that `own` makes for the engine and `end` gives back. */
function effects(name, engine, own, end) {
    return {
        name,
        stage(picture, second) {
            const other = own(second);
            const operations = Object.entries(OPERATIONS).map(([key, { effect, given, second: names = [] }]) => {
                const all = { ...given, ...Object.fromEntries(names.map((name) => [name, other])) };
                return [key, { prepare: () => own(picture), run: (one) => engine.apply(one, effect, all), end }];
            });
            return { ...Object.fromEntries(operations), end: () => end(other) };
        },
    };
}

/** On pictures in the engine's memory, as the pictures of the others are in theirs. */
export function ours(name, engine) {
    return effects(name, engine, (picture) => engine.hold(picture), (held) => held.dispose());
}

/** On pictures outside, which are copied in and out by each call. */
export function oursCopying(name, engine) {
    return effects(name, engine, (picture) => ({ ...picture, data: picture.data.slice() }), () => {});
}

export function photon(library) {
    const { PhotonImage } = library;
    return {
        name: "photon",
        stage(picture, second) {
            const made = ({ data, width, height }) => new PhotonImage(new Uint8Array(data.buffer), width, height);
            const other = made(second);
            const inPlace = (run) => ({ prepare: () => made(picture), run, end: (own) => own.free() });
            return {
                brightness: inPlace((own) => library.adjust_brightness(own, 40)),
                saturation: inPlace((own) => library.saturate_hsl(own, 0.3)),
                blur10: inPlace((own) => library.gaussian_blur(own, Math.round(deviation(10)))),
                blur100: inPlace((own) => library.gaussian_blur(own, Math.round(deviation(100)))),
                edges: inPlace((own) => library.sobel_global(own)),
                sharpen: inPlace((own) => library.sharpen(own)),
                blend: inPlace((own) => library.blend(own, other, "multiply")),
                end: () => other.free(),
            };
        },
    };
}

export function jimp({ Jimp, BlendMode }) {
    return {
        name: "jimp",
        stage(picture, second) {
            const made = ({ data, width, height }) => Jimp.fromBitmap({ data: data.slice(), width, height });
            const other = made(second);
            const inPlace = (run) => ({ prepare: () => made(picture), run });
            return {
                brightness: inPlace((own) => own.brightness(1.16)),
                saturation: inPlace((own) => own.color([{ apply: "saturate", params: [30] }])),
                blur10: inPlace((own) => own.blur(10)),
                blur100: inPlace((own) => own.blur(100)),
                edges: inPlace((own) => own.convolution([[-1, 0, 1], [-2, 0, 2], [-1, 0, 1]])),
                sharpen: inPlace((own) => own.convolution([[0, -1, 0], [-1, 5, -1], [0, -1, 0]])),
                blend: inPlace((own) => own.composite(other, 0, 0, { mode: BlendMode.MULTIPLY })),
            };
        },
    };
}

export function openCv(cv) {
    return {
        name: "opencv-js",
        stage(picture, second) {
            const mats = [];
            const mat = (...words) => (mats.push(new cv.Mat(...words)), mats.at(-1));
            const made = ({ data, width, height }) => {
                const whole = mat(height, width, cv.CV_8UC4);
                whole.data.set(data);
                return whole;
            };
            const [four, other, three, a, b, c, d, out] = [made(picture), made(second), ...Array.from({ length: 6 }, () => mat())];
            cv.cvtColor(four, three, cv.COLOR_RGBA2RGB);
            const window = (radius) => new cv.Size(radius + 1, radius + 1);
            const { width, height } = picture;
            /** A number for each pixel. */
            const numbers = (numberAt) => {
                const made = mat(height, width, cv.CV_32F);
                for (let y = 0, at = 0; y < height; ++y) for (let x = 0; x < width; ++x) made.data32F[at++] = numberAt(x, y);
                return made;
            };
            const columns = numbers((x) => x), rows = numbers((_, y) => y);
            const fromMiddle = [numbers((x) => x - width / 2), numbers((_, y) => y - height / 2)];
            const channels = new cv.MatVector();
            mats.push(channels);
            /** The picture read from columns `x` and rows `y`. */
            const remap = (x, y) => cv.remap(four, out, x, y, cv.INTER_LINEAR, cv.BORDER_REPLICATE);
            /** Columns or rows shifted by a channel of the other picture. */
            const shifted = (channel, reach, from, to) => {
                const values = channels.get(channel);
                values.convertTo(c, cv.CV_32F, reach / 255, -reach / 2);
                values.delete();
                cv.add(from, c, to);
            };
            const boxes = (radius) => ({ run: () => { cv.blur(four, a, window(radius)); cv.blur(a, out, window(radius)); } });
            return {
                brightness: { run: () => four.convertTo(out, -1, 1, 40) },
                saturation: {
                    run: () => {
                        cv.cvtColor(three, a, cv.COLOR_RGB2HSV);
                        a.convertTo(b, -1, 1.3, 0);
                        cv.cvtColor(b, out, cv.COLOR_HSV2RGB);
                    },
                },
                blur10: boxes(10),
                blur100: boxes(100),
                edges: {
                    run: () => {
                        cv.Sobel(three, a, cv.CV_32F, 1, 0);
                        cv.Sobel(three, b, cv.CV_32F, 0, 1);
                        cv.magnitude(a, b, c);
                        c.convertTo(out, cv.CV_8U);
                    },
                },
                sharpen: {
                    run: () => {
                        cv.GaussianBlur(three, a, new cv.Size(21, 21), 4);
                        cv.addWeighted(three, 2, a, -1, 0, out);
                    },
                },
                blend: { run: () => cv.multiply(four, other, out, 1 / 255) },
                twirl: {
                    run: () => {
                        cv.cartToPolar(...fromMiddle, a, b);
                        a.convertTo(c, -1, -2 * TWIRL / width, TWIRL);
                        cv.add(b, c, d);
                        cv.polarToCart(a, d, b, c);
                        b.convertTo(a, -1, 1, width / 2);
                        c.convertTo(d, -1, 1, height / 2);
                        remap(a, d);
                    },
                },
                displacement: {
                    run: () => {
                        cv.split(other, channels);
                        shifted(0, 60, columns, a);
                        shifted(1, -40, rows, b);
                        remap(a, b);
                    },
                },
                end: () => { for (const each of mats) each.delete(); },
            };
        },
    };
}

export function vips(library) {
    library.concurrency(1);
    const { Image, Interpolate } = library;
    return {
        name: "wasm-vips",
        stage(picture, second) {
            const made = ({ data, width, height }) => Image.newFromMemory(new Uint8Array(data.buffer), width, height, 4, "uchar")
                .copy({ interpretation: "srgb" });
            const [four, other] = [made(picture), made(second)];
            const three = four.extractBand(0, { n: 3 });
            const { width, height } = picture;
            const places = Image.newFromMemory(Image.xyz(width, height).cast("float").writeToMemory(), width, height, 2, "float");
            const remapped = (map) => four.mapim(map, { interpolate: Interpolate.newFromName("bilinear"), extend: "copy" });
            const to = (make) => ({
                run: () => {
                    const image = make();
                    image.writeToMemory();
                    image.delete();
                },
            });
            return {
                brightness: to(() => three.linear([1], [40], { uchar: true })),
                saturation: to(() => three.colourspace("lch").linear([1, 1.3, 1], [0, 0, 0]).colourspace("srgb")),
                blur10: to(() => four.gaussblur(deviation(10))),
                blur100: to(() => four.gaussblur(deviation(100))),
                edges: to(() => three.sobel()),
                sharpen: to(() => three.sharpen({ sigma: 4 })),
                blend: to(() => four.composite2(other, "multiply")),
                twirl: to(() => {
                    const [x, y] = [0, 1].map((band) => places.extractBand(band));
                    const polar = x.linear(1, -width / 2).complexform(y.linear(1, -height / 2)).complex("polar");
                    const radius = polar.real();
                    const turn = radius.linear(-2 * TWIRL / width, TWIRL).multiply(180 / Math.PI);
                    const turned = radius.complexform(polar.imag().add(turn)).complex("rect");
                    return remapped(turned.real().linear(1, width / 2).bandjoin(turned.imag().linear(1, height / 2)));
                }),
                displacement: to(() => remapped(
                    other.extractBand(0, { n: 2 }).linear([60 / 255, -40 / 255], [-30, 20]).add(places))),
            };
        },
    };
}

export function sharp(library) {
    library.concurrency(1);
    library.cache(false);
    return {
        name: "sharp",
        stage(picture, second) {
            const raw = { width: picture.width, height: picture.height, channels: 4 };
            const [bytes, other] = [picture, second].map(({ data }) => Buffer.from(data.buffer));
            const to = (change) => ({ run: () => change(library(bytes, { raw })).raw().toBuffer() });
            return {
                brightness: to((image) => image.linear([1, 1, 1, 1], [40, 40, 40, 0])),
                saturation: to((image) => image.modulate({ saturation: 1.3 })),
                blur10: to((image) => image.blur(deviation(10))),
                blur100: to((image) => image.blur(deviation(100))),
                edges: to((image) => image.convolve({ width: 3, height: 3, kernel: [-1, 0, 1, -2, 0, 2, -1, 0, 1], scale: 1 })),
                sharpen: to((image) => image.sharpen({ sigma: 4 })),
                blend: to((image) => image.composite([{ input: other, raw, blend: "multiply" }])),
            };
        },
    };
}
