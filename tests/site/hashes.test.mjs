/** Every effect gives the bytes of the engine's own table in the browser too, with vectors and without. */
import assert from "node:assert/strict";
import { readTable } from "../javascript/support.mjs";
import { pageTest } from "./page.mjs";

for (const simd of [true, false])
    pageTest(`the whole table of hashes, ${simd ? "with" : "without"} vectors`, async (page) => {
        const hashes = await page.evaluate(async (vectors) => {
            const [{ Engine }, { decodePam, hashesOf }] = await Promise.all(
                ["/krlimage/krlimage.js", "/tests/rows.mjs"].map((address) => import(address)));
            const sample = async (name) => decodePam(new Uint8Array(await (await fetch(`/pictures/${name}.pam`)).arrayBuffer()));
            return hashesOf(await Engine.create({ simd: vectors }), sample);
        }, simd);
        assert.deepEqual(new Map(hashes.sort()), new Map([...await readTable()].sort()));
    });
