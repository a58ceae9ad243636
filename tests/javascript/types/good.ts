import { Engine, KrlError, type Picture, type VignetteArguments } from "krlimage";

const engine = await Engine.create({ simd: false, threads: "auto" });
const image: Picture = { width: 2, height: 2, data: new Uint8ClampedArray(16) };
const soft: VignetteArguments = { blur: 160, theColor: "#201008", shape: "ellipse", mix: 0.5 };
const { picture } = engine.apply(image, "vignette", soft, { copy: true });
const half: Picture | null = engine.apply(image, "halfSize").picture ?? picture;
engine.apply(document.createElement("canvas"), "multiColourise", { colourValues: { 0: "#000000", 100: [1, 2, 3] } });
engine.apply(image, "vignette(blur: 10%)");
await engine.run(image, ["invert", ["brightness", { brightnessInt: 4 }]], { signal: AbortSignal.timeout(10) });
const hue: number = engine.apply(null, "RGBtoHSV", { pColor: "#ff0000" }).entries.hue;
try {
    await engine.runLingo("on main\nend");
} catch (error) {
    if (error instanceof KrlError) console.log(error.line, error.argument?.length, half, hue);
}
