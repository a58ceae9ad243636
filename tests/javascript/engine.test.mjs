/** Calls: sources, results, chains and errors. */
import assert from "node:assert/strict";
import { test } from "node:test";
import { Engine, KrlError } from "krlimage";
import { hashOf, plain } from "./rows.mjs";
import { TREE, sample } from "./support.mjs";
import { readFile } from "node:fs/promises";

const engine = await Engine.create();

test("a picture is rewritten in place, or copied", () => {
    const picture = plain(3, 2, 100);
    const copied = engine.apply(picture, "brightness", { brightnessInt: 40 }, { copy: true });
    assert.equal(picture.data[0], 100);
    assert.equal(copied.picture.data[0], 140);
    const { picture: same } = engine.apply(picture, "brightness", { brightnessInt: 40 });
    assert.equal(same, picture);
    assert.deepEqual([...picture.data.subarray(0, 4)], [140, 140, 140, 100]);
});

test("bytes are rewritten in place with their width", () => {
    for (const Bytes of [Uint8ClampedArray, Uint8Array]) {
        const bytes = new Bytes(4 * 6).fill(10);
        const { picture } = engine.apply(bytes, "brightness", { brightnessInt: 5 }, { width: 3 });
        assert.deepEqual([picture.width, picture.height, bytes[0]], [3, 2, 15]);
    }
    for (const options of [{}, { width: 4 }, { width: 0 }, { width: 1.5 }])
        assert.throws(() => engine.apply(new Uint8ClampedArray(4 * 6), "invert", {}, options), KrlError);
});

test("red is the first byte", () => {
    const picture = plain(1, 1, 0);
    picture.data.set([200, 100, 50, 255]);
    const made = engine.apply(picture, "RGBGradient").picture;
    assert.equal(made.data[3], 255);
    engine.apply(picture, "RGBChannelSwap(#RGBtoBGR, 256)");
    assert.deepEqual([...picture.data], [50, 100, 200, 255]);
    assert.equal(engine.apply(null, "RGBtoHSV", { pColor: "#00ff00" }).entries.hue, 120);
});

test("what is no picture is refused before anything runs", () => {
    for (const source of [undefined, 5, "x", {}, { width: 2, height: 2, data: new Uint8ClampedArray(15) },
        { width: 1.5, height: 2, data: new Uint8ClampedArray(12) }, { width: 0, height: 0, data: new Uint8ClampedArray(0) }])
        assert.throws(() => engine.apply(source, "invert"), (error) => error instanceof KrlError && error.argument === "picture");
});

test("an effect that makes a picture leaves the source alone", async () => {
    const picture = await sample("landscape");
    const before = hashOf(picture);
    const { picture: half, pictures } = engine.apply(picture, "halfSize");
    assert.equal(hashOf(picture), before);
    assert.deepEqual([half.width, half.height, pictures.length], [picture.width >> 1, picture.height >> 1, 1]);
    const split = engine.apply(picture, "broadcastSplit");
    assert.ok(split.pictures.length >= 4 && split.picture === split.pictures[0]);
});

test("effects that need no picture", () => {
    const { entries, picture } = engine.apply(null, "HSVtoRGB");
    assert.ok(Object.keys(entries).length > 0 && picture === null);
    assert.throws(() => engine.apply(null, "invert"), (error) => error.reason === "a picture or a value is missing" || error instanceof KrlError);
});

test("an argument that is changed in place of the picture", async () => {
    const target = await sample("landscape"), source = await sample("greenscreen");
    const effect = engine.effects.get("reinterlace");
    const before = hashOf(target);
    const first = await sample("landscape");
    engine.apply(null, "reinterlace", { [effect.changedArgument]: first, imageTwo: source });
    assert.notEqual(hashOf(first), before);
});

test("errors name the method, the argument and what was wrong", () => {
    const picture = plain(4, 4, 9);
    const failure = (method, given) => {
        try {
            engine.apply(picture, method, given);
        } catch (error) {
            assert.ok(error instanceof KrlError && error instanceof Error, String(error));
            return error;
        }
        assert.fail("expected an error");
    };
    const choice = failure("brightness", { colourOrAlpha: "Grey" });
    assert.deepEqual([choice.method, choice.argument, choice.reason], ["brightness", "colourOrAlpha", "no such choice"]);
    assert.equal(choice.text, "Brightness invalid colourOrAlpha input (Image)");
    const kind = failure("brightness", { brightnessInt: "x" });
    assert.equal(kind.message, 'brightness: brightnessInt: expected an integer of 32 bits, got "x"');
    assert.equal(failure("brightness", { brightnessInt: 1.5 }).argument, "brightnessInt");
    assert.match(failure("brightness", { blur: 1 }).message, /no argument is called blur; it takes brightnessInt, colourOrAlpha/);
    assert.equal(failure("brightnes").method, "brightnes");
    assert.equal(failure("composite", {}).argument, engine.effects.get("composite").arguments.find(({ kind }) => kind === "picture").name);
    assert.ok(picture.data.every((byte) => byte === 9), "nothing is changed");
});

test("where and how much", async () => {
    const picture = plain(8, 4, 100);
    engine.apply(picture, "brightness", { brightnessInt: 100, mix: 0.5, region: [2, 1, 6, 3] });
    const at = (x, y) => picture.data[(y * 8 + x) * 4];
    assert.deepEqual([at(0, 0), at(2, 1), at(5, 2), at(6, 3)], [100, 150, 150, 100]);
    const masked = plain(2, 1, 0), mask = plain(2, 1, 0);
    mask.data.set([255, 255, 255, 255]);
    engine.apply(masked, "brightness", { brightnessInt: 80, mask });
    assert.deepEqual([masked.data[0], masked.data[4]], [80, 0]);
});

test("calls as texts, with lengths in percent", async () => {
    const byText = await sample("landscape"), byName = await sample("landscape");
    engine.apply(byText, "vignette(blur: 10%, theColor: rgb(20, 10, 5))");
    const blur = Math.round(Math.min(byName.width, byName.height) / 10);
    engine.apply(byName, "vignette", { blur, theColor: "#140a05" });
    assert.equal(hashOf(byText), hashOf(byName));
    assert.equal(engine.callText("vignette", { blur: 12, shape: "rectangle" }), "vignette(blur: 12, shape: #rectangle)");
    assert.equal(engine.callText("invert", {}), "invert");
    assert.deepEqual(engine.parseValue("[#a: point(1, 2), #b: [1.5, rgb(1, 2, 3)]]"), { a: { x: 1, y: 2 }, b: [1.5, "#010203"] });
    assert.throws(() => engine.parseValue("rgb("), KrlError);
});

test("every call can be written as a text that does the same", async () => {
    for (const effect of engine.effects.values()) {
        if (!effect.rewritesPicture || effect.needsSecondPicture || effect.arguments.length === 0) continue;
        const given = Object.fromEntries(effect.arguments.map(({ name }) => [name, engine.example(effect.name, name, 96, 64)]));
        const byValues = await sample("greenscreen"), byText = await sample("greenscreen");
        engine.apply(byValues, effect.name, given);
        engine.apply(byText, engine.callText(effect.name, given));
        assert.equal(hashOf(byText), hashOf(byValues), effect.name);
    }
});

test("a chain reports progress, follows new pictures and rewrites its source at the end", async () => {
    const picture = await sample("landscape"), expected = await sample("landscape");
    const steps = [];
    const { results, picture: same } = await engine.run(picture, ["invert", ["brightness", { brightnessInt: 20 }], "vignette(blur: 5%)"],
        { onProgress: (done, all) => steps.push([done, all, hashOf(picture)]) });
    const before = hashOf(expected);
    for (const call of ["invert()", "brightness(20)", "vignette(blur: 5%)"]) engine.apply(expected, call);
    assert.equal(hashOf(picture), hashOf(expected));
    assert.equal(same, picture);
    assert.equal(results.length, 3);
    assert.deepEqual(steps, [[1, 3, before], [2, 3, before], [3, 3, before]]);
    const small = await engine.run(picture, ["halfSize", "halfSize"]);
    assert.equal(small.picture.width, picture.width >> 2);
});

test("a signal ends a chain between its calls and leaves the source alone", async () => {
    const picture = await sample("landscape");
    const before = hashOf(picture);
    const controller = new AbortController();
    const done = [];
    const running = engine.run(picture, ["invert", "invert", "brightness(40)"], {
        signal: controller.signal,
        onProgress: (count) => { done.push(count); if (count === 2) controller.abort(new Error("enough")); },
    });
    await assert.rejects(running, /enough/);
    assert.deepEqual(done, [1, 2]);
    assert.equal(hashOf(picture), before);
    await assert.rejects(engine.run(picture, ["invert"], { signal: AbortSignal.abort() }), { name: "AbortError" });
});

test("a signal from outside comes between two calls", async () => {
    const controller = new AbortController();
    setTimeout(() => controller.abort(), 0);
    await assert.rejects(engine.run(plain(8, 8, 1), Array(1000).fill("invert"), { signal: controller.signal }), { name: "AbortError" });
});

test("looks by name, by text, with parameters and pictures", async () => {
    assert.ok(engine.shippedLooks.length > 5);
    for (const { name, text } of engine.shippedLooks) {
        const look = engine.readLook(name);
        assert.equal(engine.readLook(text).title, look.title);
        const picture = await sample("landscape"), before = hashOf(picture);
        const { picture: made } = engine.applyLook(picture, look, { copy: true });
        assert.equal(hashOf(picture), before);
        assert.notEqual(hashOf(made), before, name);
        look.dispose();
        assert.throws(() => look.title, /disposed/);
    }
    const look = engine.newLook("Two").addParameter({ name: "strength", value: "40", from: "0", to: "90", meaning: "how much" })
        .addCall("brightness($strength)").addCall('composite(image("paper.png"), #multiply)');
    assert.deepEqual(look.parameters, [{ name: "strength", meaning: "how much", value: "40", standard: "40", from: "0", to: "90" }]);
    assert.deepEqual(look.pictureNames, ["paper.png"]);
    look.set("strength", 10).setPicture("paper.png", plain(4, 4, 255));
    const { picture } = engine.applyLook(plain(4, 4, 255), look);
    const expected = plain(4, 4, 255);
    engine.apply(expected, "brightness", { brightnessInt: 10 });
    assert.deepEqual(picture.data, expected.data);
    look.setPicture("paper.png", plain(4, 4, 40));
    assert.ok(engine.applyLook(plain(4, 4, 255), look).picture.data[0] < 255);
    assert.equal(engine.readLook(String(look)).calls.length, 2);
    assert.throws(() => look.set("nothing", 1), KrlError);
    assert.throws(() => engine.readLook("krlimage look 1\ntitle: x\nvignette(blurr: 1)\n"),
        (error) => error instanceof KrlError && error.line === 3 && /blurr/.test(error.message));
});

test("the catalogue", () => {
    const vignette = engine.effects.get("vignette");
    assert.deepEqual(vignette.arguments.find(({ kind }) => kind === "symbol").choices, ["ellipse", "rectangle"]);
    const [level] = engine.effects.get("brightness").arguments;
    assert.deepEqual([level.range, level.neutral, level.kind, level.example], [[-255, 255], 0, "integer", 40]);
    assert.ok(engine.effects.get("noise").dependsOnBands && engine.effects.get("invert").worksPerPixel);
    assert.equal(engine.families[0].heading, "Tone");
    assert.ok(!engine.effects.has("load"));
});

test("effects are the same objects however they are reached", async () => {
    const fresh = await Engine.create();
    const picture = plain(1, 1, 10);
    fresh.apply(picture, "KRLIMAGEINVERT");  // before the catalogue is read
    assert.equal(picture.data[0], 245);
    assert.equal(fresh.families, fresh.families);
    for (const { name, effects } of fresh.families)
        for (const effect of effects) {
            assert.equal(effect.family, name);
            assert.equal(fresh.effects.get(effect.name), effect);
        }
    assert.equal(fresh.effects.size, fresh.families.flatMap(({ effects }) => effects).length);
    fresh.dispose();
    for (const property of ["families", "effects", "shippedLooks"]) assert.throws(() => fresh[property], /disposed/);
});

test("only the whole name of an effect finds it", () => {
    for (const name of ["", "inver", "invert\0", "krlImage", "krlImageInvert\0blur", "load"])
        assert.throws(() => engine.apply(plain(1, 1, 0), name), { reason: "no such method" }, JSON.stringify(name));
});

test("the release is that of the tree", async () => {
    assert.match(await readFile(`${TREE}/CMakeLists.txt`, "utf8"), new RegExp(`VERSION ${engine.release} `));
});

test("engines are apart, and fail when they are disposed of", async () => {
    const other = await Engine.create();
    other.dispose();
    other.dispose();
    assert.throws(() => other.apply(plain(2, 2, 0), "invert"), /disposed/);
    const picture = plain(2, 2, 0);
    engine.apply(picture, "invert");
    assert.equal(picture.data[0], 255);
    assert.throws(() => engine.applyLook(picture, foreignLook), /another engine/);
});
const foreignLook = (await Engine.create()).readLook("noir");

test("memory is given back after every call", async () => {
    const heap = await Engine.create();
    const picture = plain(500, 400, 50);
    const call = () => heap.apply(picture, "fastGaussianBlur");
    for (let i = 0; i < 5; ++i) call();
    const memoryAfter = () => heap.memoryBytes;
    const before = memoryAfter();
    for (let i = 0; i < 200; ++i) {
        call();
        assert.throws(() => heap.apply(picture, "brightness", { colourOrAlpha: "x" }), KrlError);
    }
    assert.equal(memoryAfter(), before);
});

test("a picture that does not fit is an error, and the engine works on", async () => {
    const own = await Engine.create();
    const huge = { width: 30000, height: 17000, data: { length: 0 } };
    assert.throws(() => own.apply(huge, "invert"), KrlError);
    own.apply(plain(2, 2, 0), "invert");
});

test("a module that cannot be loaded is an error", async () => {
    await assert.rejects(Engine.create({ wasm: new URL("file:///nowhere/krlimage.wasm") }));
    await assert.rejects(Engine.create({ wasm: new Uint8Array([1, 2, 3]) }), WebAssembly.CompileError);
});
