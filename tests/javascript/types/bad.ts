import { Engine, type Picture } from "krlimage";

const engine = await Engine.create();
const image: Picture = { width: 2, height: 2, data: new Uint8ClampedArray(16) };
engine.apply(image, "vignettes");
engine.apply(image, "vignette", { blurr: 1 });
engine.apply(image, "vignette", { shape: "round" });
engine.apply(image, "brightness", { brightnessInt: "x" });
engine.apply(7, "invert");
engine.apply(image, "composite", {});
await engine.run(image, [["brightness", { blur: 1 }]]);
engine.apply(image, "invert").entries.colour;
await Engine.create({ threads: "many" });
