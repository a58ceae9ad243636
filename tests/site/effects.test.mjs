/** Effects on the page. */
import assert from "node:assert/strict";
import { hashOf } from "../javascript/rows.mjs";
import { readTable } from "../javascript/support.mjs";
import { addEffect, openSamples, pageTest, result } from "./page.mjs";

const isShort = process.env.KRL_SHORT === "1";

pageTest("every effect, applied by its card, gives the bytes of the table", async (page) => {
    const table = await readTable();
    const effects = await page.evaluate(() => globalThis.krlStudio.effects());
    await openSamples(page, "logo", "portrait", "greenscreen", "landscape");
    const chosen = effects.filter(({ inert, name }, index) => !inert && name !== "broadcastCombine" && (!isShort || index % 8 === 0));
    assert.ok(chosen.length >= (isShort ? 8 : 80));
    for (const { name, scriptName } of chosen) {
        await addEffect(page, name);
        assert.equal(hashOf(await result(page)), table.get(`${scriptName} landscape`), name);
        await page.getByRole("button", { name: "Clear", exact: true }).click();
    }
}, { minutes: 10 });

pageTest("effects are found by their words", async (page) => {
    const search = async (words) => {
        await page.getByRole("searchbox").fill(words);
        return page.locator(".card").evaluateAll((cards) => cards.map((card) => card.dataset.effect));
    };
    assert.equal((await search("vign"))[0], "vignette");
    assert.ok((await search("old brown")).includes("sepia"));
    assert.deepEqual(await search("xyzzy"), []);
    assert.match(await page.locator(".count").textContent(), /No effect/);
});
