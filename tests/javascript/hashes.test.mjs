/** Every effect gives the bytes of the engine's own table, with vectors and without. */
import assert from "node:assert/strict";
import { test } from "node:test";
import { Engine, KrlError } from "krlimage";
import { hashOf, picturesFor, readTable, sample } from "./support.mjs";

const table = await readTable();

/** The picture that a call leaves or makes, and the method's message. */
function outcome(engine, effect, picture, given) {
    try {
        const result = engine.apply(picture, effect.name, given);
        return [effect.changedArgument ? picture : result.picture, ""];
    } catch (error) {
        if (!(error instanceof KrlError) || !error.text) throw error;
        return [picture, error.text];
    }
}

for (const simd of [true, false]) {
    const engine = await Engine.create({ simd });
    for (const effect of engine.effects.values())
        for (const name of ["landscape", "greenscreen"])
            test(`${effect.name} on ${name}, ${simd ? "with" : "without"} vectors`, async () => {
                const [picture, message] = outcome(engine, effect, await sample(name), await picturesFor(effect));
                assert.equal(hashOf(picture, message), table.get(`${effect.scriptName} ${name}`));
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
