/** What tests of the page share: one browser for a file, a fresh page for each test. */
import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { setTimeout as pause } from "node:timers/promises";
import { hashOf } from "../javascript/rows.mjs";
import { openSite } from "./browser.mjs";

export const PICTURES = process.env.KRL_HASH_PICTURES;
export let site;
before(async () => { site = await openSite(); });
after(() => site.close());

/** A fresh page for a test, which must leave no error in the console. What hangs is ended after `minutes`. */
export function pageTest(name, work, { minutes = 2 } = {}) {
    test(name, { timeout: minutes * 60_000 }, async () => {
        site.problems.length = 0;
        const page = await site.newPage();
        try {
            await work(page);
            assert.deepEqual(site.problems, []);
        } finally {
            await page.close();
        }
    });
}

export const openMenu = (page, name) => page.locator(".menu summary", { hasText: name }).click();
export const openPicture = async (page, file) => {
    await openMenu(page, "Open");
    const [chooser] = await Promise.all([page.waitForEvent("filechooser"), page.locator("button", { hasText: "Picture…" }).click()]);
    await chooser.setFiles(file);
};
export const openSamples = async (page, ...names) => {
    for (const name of names) {
        await openPicture(page, `${PICTURES}/${name}.pam`);
        await page.locator(".facts").filter({ hasText: `${name} · 320` }).waitFor();
    }
};
/** The result at full size as the page would save it. */
export const result = async (page) => {
    const { width, height, bytes } = await page.evaluate(async () => {
        const picture = await globalThis.krlStudio.fullResult();
        let text = "";
        for (let at = 0; at < picture.data.length; at += 8192) text += String.fromCharCode(...picture.data.subarray(at, at + 8192));
        return { width: picture.width, height: picture.height, bytes: btoa(text) };
    });
    return { width, height, data: new Uint8ClampedArray(Buffer.from(bytes, "base64")) };
};
export const addEffect = async (page, name) => {
    const steps = await page.locator(".step").count();
    await page.locator(`.card[data-effect=${name}]`).click();
    await page.locator(".step").nth(steps).waitFor();
};
export const stepNames = (page) => page.locator(".step .title > span:first-child").allTextContents();
export const hashOfResult = async (page) => hashOf(await result(page));
/** Waits until a field holds `value`: a button is pressed before what it asks of the worker has come. */
export const valueBecomes = async (field, value) => {
    for (let attempts = 100; attempts > 0 && await field.inputValue() !== value; --attempts) await pause(20);
    assert.equal(await field.inputValue(), value);
};
