/** Every effect gives the bytes of the engine's own table in the browser too, with vectors and without. */
import assert from "node:assert/strict";
import { readTable } from "../javascript/support.mjs";
import { pageTest } from "./page.mjs";

for (const simd of [true, false])
    pageTest(`the whole table of hashes, ${simd ? "with" : "without"} vectors`, async (page) => {
        const hashes = await page.evaluate(async (vectors) => {
            const [{ Engine }, { decodePam, hashOfRow, TABLE_SAMPLES }] = await Promise.all(
                ["/krlimage/krlimage.js", "/tests/rows.mjs"].map((address) => import(address)));
            const engine = await Engine.create({ simd: vectors });
            const sample = async (name) => decodePam(new Uint8Array(await (await fetch(`/pictures/${name}.pam`)).arrayBuffer()));
            const rows = [];
            for (const effect of engine.effects.values())
                for (const name of TABLE_SAMPLES)
                    rows.push([`${effect.scriptName} ${name}`, await hashOfRow(engine, effect, name, sample)]);
            return rows;
        }, simd);
        assert.deepEqual(new Map(hashes.sort()), new Map([...await readTable()].sort()));
    });
