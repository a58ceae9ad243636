/** Pictures in the engine's memory: the same bytes as outside, given back when they are disposed of. */
import assert from "node:assert/strict";
import { test } from "node:test";
import { Engine, HeldPicture, KrlError } from "krlimage";
import { hashOf, plain } from "./rows.mjs";
import { sample } from "./support.mjs";

const engine = await Engine.create();

for (const [words, made] of [["on one thread", engine], ["on shared memory", await Engine.create({ threads: 2 })]])
    test(`calls rewrite a held picture where it is, ${words}`, async () => {
        const outside = await sample("landscape");
        const held = made.hold(outside);
        assert.ok(held instanceof HeldPicture);
        for (const [method, given] of [["brightness", { brightnessInt: 40 }], ["radialBlur", {}], ["sepia", { mix: 0.5 }]]) {
            assert.equal(made.apply(held, method, given).picture, held);
            made.apply(outside, method, given);
            assert.equal(hashOf(held), hashOf(outside), method);
        }
        const { picture } = made.applyLook(held, "noir");
        made.applyLook(outside, "noir");
        assert.equal(picture, held);
        const copy = held.copy();
        assert.equal(hashOf(copy), hashOf(outside));
        made.apply(held, "invert");
        assert.equal(hashOf(copy), hashOf(outside));
        held.dispose();
    });

test("calls on held pictures change no memory but theirs", async () => {
    const held = engine.hold(await sample("landscape")), other = engine.hold(await sample("greenscreen"));
    const before = hashOf(held), otherBefore = hashOf(other);
    engine.apply(held, "composite", { foreground: other, blendMethod: "multiply" });
    assert.notEqual(hashOf(held), before);
    assert.equal(hashOf(other), otherBefore);
    const { picture } = engine.apply(other, "invert", {}, { copy: true });
    assert.ok(picture !== other && hashOf(picture) !== otherBefore);
    assert.equal(hashOf(other), otherBefore);
    const { picture: half } = engine.apply(other, "halfSize");
    assert.ok(!(half instanceof HeldPicture) && half.width === other.width >> 1);
    assert.equal(hashOf(other), otherBefore);
    engine.applyLook(other, "noir", { copy: true });
    assert.equal(hashOf(other), otherBefore);
    held.dispose();
    other.dispose();
});

test("a held picture that a call has twice is as two pictures", async () => {
    for (const blendMethod of ["multiply", "difference"]) {
        const outside = await sample("landscape"), held = engine.hold(outside);
        engine.apply(held, "composite", { foreground: held, blendMethod });
        engine.apply(outside, "composite", { foreground: await sample("landscape"), blendMethod });
        assert.equal(hashOf(held), hashOf(outside), blendMethod);
        held.dispose();
    }
});

test("an argument that is changed in place of the picture may be held", async () => {
    const { changedArgument } = engine.effects.get("reinterlace");
    const outside = await sample("landscape"), held = engine.hold(outside);
    for (const target of [outside, held])
        engine.apply(null, "reinterlace", { [changedArgument]: target, imageTwo: await sample("greenscreen") });
    assert.equal(hashOf(held), hashOf(outside));
    held.dispose();
});

test("its pixels can be read and written after memory has grown", async () => {
    const fresh = await Engine.create();
    const held = fresh.hold(plain(3, 2, 7));
    const before = fresh.memoryBytes;
    const large = fresh.hold(plain(4000, 3000, 9));
    assert.ok(fresh.memoryBytes > before);
    assert.deepEqual([...held.data], Array(24).fill(7));
    held.data.fill(100);
    fresh.apply(held, "brightness", { brightnessInt: 40 });
    assert.deepEqual([...held.data.subarray(0, 4)], [140, 140, 140, 100]);
    assert.equal(fresh.hold(large).data.at(-1), 9);
    assert.equal(fresh.apply(large, "invert", {}, { copy: true }).picture.data[0], 255 - 9);
});

test("what is held is given back", async () => {
    const fresh = await Engine.create();
    fresh.hold(plain(1000, 1000, 1)).dispose();
    const before = fresh.memoryBytes;
    for (let turn = 0; turn < 50; ++turn) {
        const held = fresh.hold(plain(1000, 1000, 1));
        fresh.apply(held, "invert");
        held.dispose();
        held.dispose();
    }
    assert.equal(fresh.memoryBytes, before);
});

test("memory is given back by a chain, whether it ends or fails", async () => {
    const fresh = await Engine.create();
    const chains = [["invert", "halfSize", "invert"], ["invert", "brightness(x)"]];
    const turn = async () => {
        const [first] = await Promise.allSettled(chains.map((calls) => fresh.run(plain(1000, 1000, 1), calls)));
        assert.equal(first.status, "fulfilled");
        const { picture, results } = first.value;
        assert.deepEqual(results.map((result) => result.picture.width), [1000, 500, 500]);
        assert.deepEqual([results[0].picture.data[0], picture.data[0]], [254, 1]);
    };
    await turn();
    const before = fresh.memoryBytes;
    for (let i = 0; i < 20; ++i) await turn();
    assert.equal(fresh.memoryBytes, before);
});

test("a held picture works with other engines, and not after it is disposed of", async () => {
    const other = await Engine.create(), outside = await sample("landscape"), held = engine.hold(outside);
    assert.equal(other.apply(held, "sepia").picture, held);
    other.apply(outside, "sepia");
    assert.equal(hashOf(held), hashOf(outside));
    await engine.run(held, ["invert"]);
    engine.apply(outside, "invert");
    assert.equal(hashOf(held), hashOf(outside));
    held.dispose();
    for (const use of [() => held.data, () => held.copy(), () => engine.apply(held, "invert"), () => engine.hold(held)])
        assert.throws(use, /the picture has been disposed of/);
    assert.throws(() => engine.hold({}), KrlError);
    assert.throws(() => engine.hold(new Uint8Array(12)), /bytes of whole rows/);
    assert.equal(engine.hold(new Uint8Array(24), { width: 3 }).height, 2);
});
