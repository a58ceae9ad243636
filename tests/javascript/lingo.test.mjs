/** Scripts. */
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { test } from "node:test";
import { Engine, LingoError } from "krlimage";
import { hashOf, plain } from "./rows.mjs";
import { TREE, sample } from "./support.mjs";

const engine = await Engine.create();

test("a script prints, reads pictures by name and saves new ones", async () => {
    const { output, images } = await engine.runLingo(`
on main names
  picture = image(names[1])
  put picture.width && names.count
  other = member("photo").image
  put other.height
  grade = new(xtra "KRLImageXtra")
  grade.krlImageCreateLookupTables(#mt)
  grade.krlImageLoad(picture)
  put grade.krlImageBrightness(40, #RGB)
  grade.krlImageQuit()
  grade.krlImageDestroyLookupTables()
  picture.save("bright.png")
end`, { images: { "photo.png": plain(6, 3, 20) } });
    assert.equal(output, '-- "6 1"\n-- 3\n-- [#error: 0]\n');
    assert.deepEqual(Object.keys(images), ["bright.png"]);
    const { width, height, data } = images["bright.png"];
    assert.deepEqual([width, height, ...data.subarray(0, 4)], [6, 3, 60, 60, 60, 20]);
});

test("the examples of the tree", async () => {
    const run = async (name, names, images) =>
        engine.runLingo(await readFile(`${TREE}/examples/${name}.ls`, "utf8"), { images, arguments: names });
    const bright = await run("brighten", ["in.png", "out.jpg"], { "in.png": await sample("landscape") });
    const expected = await sample("landscape");
    engine.apply(expected, "brightness", { brightnessInt: 40 });
    assert.equal(hashOf(bright.images["out.jpg"]), hashOf(expected));
    const sheet = await run("greenscreen", ["figure.png", "place.png", "sheet.png"],
        { "figure.png": await sample("greenscreen"), "place.png": await sample("landscape") });
    assert.equal(sheet.images["sheet.png"].width, 320);
    assert.equal((await run("sunset-flare", ["in.png", "out.png"], { "in.png": await sample("landscape") })).output.split("\n")[1], "-- [#error: 0]");
});

test("a failure has its line, and what was printed before", async () => {
    const failure = async (source, options) => {
        try {
            await engine.runLingo(source, options);
        } catch (error) {
            assert.ok(error instanceof LingoError, String(error));
            return error;
        }
        assert.fail("expected an error");
    };
    const unknown = await failure("on main\n  put 1\n  put [1][9]\nend\n");
    assert.deepEqual([unknown.line, unknown.output], [3, "-- 1\n"]);
    const syntax = await failure("on main\n  if 1 = 1\n  end if\nend\n");
    assert.equal(syntax.line, 2);
    assert.match(syntax.message, /then/);
    assert.match((await failure("on main\n  repeat while 1\n  end repeat\nend", { steps: 1000 })).message, /step/);
    assert.match((await failure("on main\n  x = image(\"/etc/passwd\")\nend")).message, /outside/);
    assert.match((await failure("on main\n  f()\nend\non f\n  f()\nend")).message, /deep/);
    assert.match((await failure("on main\n  image(100000, 100000, 32)\nend")).message, /large|memory/);
});

test("scripts leave nothing behind", async () => {
    const save = 'on main\n  image(2, 2, 32).save("a.png")\nend';
    const look = 'on main\n  image("a.png")\nend';
    assert.deepEqual(Object.keys((await engine.runLingo(save)).images), ["a.png"]);
    await assert.rejects(engine.runLingo(look), LingoError);
    assert.deepEqual(Object.keys((await engine.runLingo(save)).images), ["a.png"]);
});

test("a picture that a script saves over is one that it made", async () => {
    const source = 'on main names\n  p = image(names[1])\n  p.setPixel(0, 0, rgb(9, 9, 9))\n  p.save(names[1])\nend';
    const { images } = await engine.runLingo(source, { images: { "p.png": plain(2, 2, 255), "q.png": plain(2, 2, 255) }, arguments: ["p.png"] });
    assert.deepEqual(Object.keys(images), ["p.png"]);
    assert.equal(images["p.png"].data[0], 9);
});

test("the interpreter is loaded when a script runs, from another address if one is given", async () => {
    const script = "on main\n  put 1\nend";
    const without = await Engine.create({ lingoWasm: new URL("file:///nowhere/krlimage-lingo.wasm") });
    without.apply(plain(2, 2, 0), "invert");
    await assert.rejects(without.runLingo(script), { code: "ENOENT" });
    const bytes = await readFile(`node_modules/krlimage/dist/krlimage-lingo-${engine.simd ? "simd" : "plain"}.wasm`);
    const compiled = await Engine.create({ lingoWasm: await WebAssembly.compile(bytes) });
    assert.equal((await compiled.runLingo(script)).output, "-- 1\n");
    const plainly = await Engine.create({ simd: false });
    assert.equal((await plainly.runLingo(script)).output, "-- 1\n");
});

test("scripts that run at a time have pictures and memory of their own", async () => {
    const script = (level) => `on main\n  p = image("p.png")\n  p.fill(p.rect, rgb(${level}, 0, 0))\n  p.save("p.png")\nend`;
    const levels = [10, 20, 30];
    const outcomes = await Promise.all(levels.map((level) => engine.runLingo(script(level), { images: { "p.png": plain(2, 2, 255) } })));
    assert.deepEqual(outcomes.map(({ images }) => images["p.png"].data[0]), levels);
});
