/** Every effect gives the bytes of the engine's own table, with vectors and without. */
import assert from "node:assert/strict";
import { test } from "node:test";
import { Engine } from "krlimage";
import { hashOf, hashOfRow, TABLE_SAMPLES } from "./rows.mjs";
import { readTable, sample } from "./support.mjs";

const table = await readTable();

for (const simd of [true, false]) {
    const engine = await Engine.create({ simd });
    for (const effect of engine.effects.values())
        for (const name of TABLE_SAMPLES)
            test(`${effect.name} on ${name}, ${simd ? "with" : "without"} vectors`, async () => {
                assert.equal(await hashOfRow(engine, effect, name, sample), table.get(`${effect.scriptName} ${name}`));
            });
    test(`the table has no other effects, ${simd ? "with" : "without"} vectors`, () => {
        const named = new Set([...table.keys()].map((key) => key.split(" ")[0]));
        assert.deepEqual(named, new Set([...engine.effects.values()].map(({ scriptName }) => scriptName)));
    });
}

test("arguments given as values of the example are those of the example", async () => {
    const engine = await Engine.create();
    for (const effect of engine.effects.values()) {
        if (!effect.rewritesPicture || effect.needsSecondPicture) continue;
        const picture = await sample("landscape");
        const given = Object.fromEntries(effect.arguments.map(({ name }) =>
            [name, engine.example(effect.name, name, picture.width, picture.height)]));
        engine.apply(picture, effect.name, given);
        assert.equal(hashOf(picture), table.get(`${effect.scriptName} landscape`), effect.name);
    }
});
