/** The studio page as people use it. */
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { after, before, test } from "node:test";
import { hashOf, readTable } from "../javascript/support.mjs";
import { AXE, openSite } from "./browser.mjs";

const PICTURES = process.env.KRL_HASH_PICTURES;
const isShort = process.env.KRL_SHORT === "1";
let site;
before(async () => { site = await openSite(); });
after(() => site.close());

/** A fresh page for a test, which must leave no error in the console. */
function pageTest(name, work, hash) {
    test(name, { timeout: 120_000 }, async () => {
        site.problems.length = 0;
        const page = await site.newPage(hash);
        try {
            await work(page);
            assert.deepEqual(site.problems, []);
        } finally {
            await page.close();
        }
    });
}

const openPicture = async (page, file) => {
    await page.locator(".menu summary", { hasText: "Open" }).click();
    const [chooser] = await Promise.all([page.waitForEvent("filechooser"), page.locator("button", { hasText: "Picture…" }).click()]);
    await chooser.setFiles(file);
};
const openSamples = async (page, ...names) => {
    for (const name of names) {
        await openPicture(page, `${PICTURES}/${name}.pam`);
        await page.locator(".facts").filter({ hasText: `${name} · 320` }).waitFor();
    }
};
/** The result at full size as the page would save it. */
const result = async (page) => {
    const { width, height, bytes } = await page.evaluate(async () => {
        const picture = await globalThis.krlStudio.fullResult();
        let text = "";
        for (let at = 0; at < picture.data.length; at += 8192) text += String.fromCharCode(...picture.data.subarray(at, at + 8192));
        return { width: picture.width, height: picture.height, bytes: btoa(text) };
    });
    return { width, height, data: new Uint8ClampedArray(Buffer.from(bytes, "base64")) };
};
const addEffect = async (page, name) => {
    const steps = await page.locator(".step").count();
    await page.locator(`.card[data-effect=${name}]`).click();
    await page.locator(".step").nth(steps).waitFor();
};
const stepNames = (page) => page.locator(".step .title > span:first-child").allTextContents();

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
});

pageTest("a chain is built, reordered, switched off, duplicated and undone", async (page) => {
    for (const name of ["sepia", "brightness", "vignette"]) await addEffect(page, name);
    assert.deepEqual(await stepNames(page), ["Sepia", "Brightness", "Vignette"]);
    await page.getByRole("button", { name: "Move Vignette up" }).click();
    assert.deepEqual(await stepNames(page), ["Sepia", "Vignette", "Brightness"]);
    const all = hashOf(await result(page));
    await page.getByRole("checkbox", { name: "Sepia on" }).click();
    assert.notEqual(hashOf(await result(page)), all);
    await page.keyboard.press("Control+z");
    assert.equal(hashOf(await result(page)), all);
    await page.getByRole("button", { name: "Duplicate" }).click();
    assert.equal((await stepNames(page)).length, 4);
    await page.getByRole("button", { name: /^Remove Sepia/ }).click();
    assert.deepEqual(await stepNames(page), ["Vignette", "Vignette", "Brightness"]);
    for (let i = 0; i < 6; ++i) await page.getByRole("button", { name: "Undo" }).click();
    assert.deepEqual(await stepNames(page), []);
    for (let i = 0; i < 3; ++i) await page.keyboard.press("Control+Shift+z");
    assert.deepEqual(await stepNames(page), ["Sepia", "Brightness", "Vignette"]);
});

pageTest("a slider that moves is one change, and Reset brings the example back", async (page) => {
    await addEffect(page, "brightness");
    const slider = page.getByRole("slider", { name: /^Brightness/ });
    const number = page.getByRole("spinbutton", { name: "brightnessInt, as a number" });
    await slider.focus();
    for (let i = 0; i < 5; ++i) await page.keyboard.press("ArrowRight");
    assert.equal(await number.inputValue(), "45");
    await number.fill("-90");
    await number.blur();
    await page.getByRole("button", { name: "Reset" }).click();
    assert.equal(await number.inputValue(), "40");
    await page.getByRole("button", { name: "Undo" }).click();
    assert.equal(await number.inputValue(), "-90");
});

pageTest("a link brings the look to another page", async (page) => {
    await addEffect(page, "vignette");
    await page.getByRole("spinbutton", { name: "blur, as a number" }).fill("31");
    await addEffect(page, "multiColourise");
    const expected = hashOf(await result(page));
    const other = await site.newPage(new URL(page.url()).hash);
    assert.deepEqual(await stepNames(other), await stepNames(page));
    assert.equal(hashOf(await result(other)), expected);
    await other.close();
});

pageTest("before and after are split by pointer and by keys", async (page) => {
    await addEffect(page, "invert");
    const split = page.getByRole("slider", { name: "Before and after" });
    await split.focus();
    await page.keyboard.press("ArrowRight");
    assert.equal(await split.getAttribute("aria-valuenow"), "2");
    const frame = await page.locator(".frame").boundingBox(), handle = await split.boundingBox();
    await page.mouse.move(handle.x + handle.width / 2, handle.y + handle.height / 2);
    await page.mouse.down();
    await page.mouse.move(frame.x + frame.width / 2, frame.y + 50, { steps: 4 });
    await page.mouse.up();
    assert.equal(await split.getAttribute("aria-valuenow"), "50");
    assert.match(await page.locator("canvas.after").getAttribute("style"), /inset\(0(px)? 0(px)? 0(px)? 50%\)/);
});

pageTest("points are set on the picture", async (page) => {
    await addEffect(page, "twirl");
    const withPoint = (await page.evaluate(() => globalThis.krlStudio.effects())).find(({ kinds }) => kinds.includes("point"));
    await addEffect(page, withPoint.name);
    const handle = page.locator(".handle").first();
    const place = await handle.boundingBox();
    await handle.focus();
    await page.keyboard.press("Shift+ArrowRight");
    assert.ok((await handle.boundingBox()).x > place.x);
    const box = await handle.boundingBox();
    await page.mouse.move(box.x + 11, box.y + 11);
    await page.mouse.down();
    await page.mouse.move(box.x + 111, box.y + 61, { steps: 3 });
    await page.mouse.up();
    const moved = await handle.boundingBox();
    assert.ok(Math.abs(moved.x - box.x - 100) < 2 && Math.abs(moved.y - box.y - 50) < 2);
});

pageTest("the result is downloaded at full size, without loss", async (page) => {
    await addEffect(page, "sepia");
    const expected = await result(page);
    await page.locator(".menu summary", { hasText: "Download" }).click();
    const [download] = await Promise.all([page.waitForEvent("download"), page.getByRole("button", { name: /^PNG/ }).click()]);
    assert.equal(download.suggestedFilename(), "landscape-edited.png");
    const bytes = await readFile(await download.path());
    assert.deepEqual([bytes.readUInt32BE(16), bytes.readUInt32BE(20)], [960, 640]);
    await openPicture(page, { name: "again.png", mimeType: "image/png", buffer: bytes });
    await page.getByRole("button", { name: "Clear", exact: true }).click();
    assert.equal(hashOf(await result(page)), hashOf(expected));
});

pageTest("looks are opened, saved and opened again", async (page) => {
    await page.locator(".menu summary", { hasText: "Open" }).click();
    await page.locator(".menu .list h2", { hasText: "Looks" }).locator("~ button").first().click();
    await page.locator(".step").first().waitFor();
    const names = await stepNames(page), expected = hashOf(await result(page));
    await page.locator(".menu summary", { hasText: "Share" }).click();
    const [download] = await Promise.all([page.waitForEvent("download"), page.getByRole("button", { name: "Save look" }).click()]);
    const text = await readFile(await download.path(), "utf8");
    assert.match(text, /^krlimage look 1\n/);
    await page.getByRole("button", { name: "Clear", exact: true }).click();
    await page.locator(".menu summary", { hasText: "Open" }).click();
    const [chooser] = await Promise.all([page.waitForEvent("filechooser"), page.locator("button", { hasText: "Look…" }).click()]);
    await chooser.setFiles({ name: "look.krl", mimeType: "text/plain", buffer: Buffer.from(text) });
    await page.locator(".step").first().waitFor();
    assert.deepEqual(await stepNames(page), names);
    assert.equal(hashOf(await result(page)), expected);
});

pageTest("the chain is copied as a program", async (page) => {
    await addEffect(page, "brightness");
    await page.getByRole("spinbutton", { name: "brightnessInt, as a number" }).fill("25");
    await page.locator(".menu summary", { hasText: "Share" }).click();
    await page.getByRole("button", { name: "Copy as a program…" }).click();
    const expected = {
        "Command line": "'brightness(brightnessInt: 25)'", "Lingo": "krlImageBrightness(25, #RGB)", "JavaScript": "engine.run(imageData",
        "Python": "krlimage.apply(", "C": "krl_apply(engine, &picture, calls[i], NULL)",
    };
    for (const [language, words] of Object.entries(expected)) {
        await page.locator("dialog .segments label", { hasText: new RegExp(`^${language}$`) }).click();
        await page.locator("dialog pre", { hasText: words }).waitFor();
    }
    await page.getByRole("button", { name: "Copy", exact: true }).click();
    assert.match(await page.evaluate(() => navigator.clipboard.readText()), /krl_engine_new/);
});

pageTest("a picture comes by drop; what is none is refused in plain words", async (page) => {
    const drop = (name, type, bytes) => page.evaluate(([file, kind, content]) => {
        const data = new DataTransfer();
        data.items.add(new File([Uint8Array.from(content)], file, { type: kind }));
        document.querySelector(".view").dispatchEvent(new DragEvent("drop", { dataTransfer: data, bubbles: true, cancelable: true }));
    }, [name, type, [...bytes]]);
    await drop("dropped.pam", "", await readFile(`${PICTURES}/portrait.pam`));
    await page.locator(".facts").filter({ hasText: "dropped · 320" }).waitFor();
    await drop("notes.png", "image/png", Buffer.from("no picture"));
    assert.equal(await page.getByRole("alert").textContent(), "notes.png is not a picture that this browser can read");
});

pageTest("everything is reached by keyboard", async (page) => {
    await page.getByRole("searchbox").focus();
    await page.keyboard.type("posteris");
    await page.keyboard.press("Tab");
    await page.keyboard.press("Enter");
    await page.locator(".step", { hasText: "Posterise" }).waitFor();
    await page.locator(".step .title").focus();
    await page.keyboard.press("Tab");
    assert.match(await page.evaluate(() => document.activeElement.getAttribute("aria-label")), /^Remove Posterise/);
});

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

pageTest("a script runs, shows what it prints and makes, and marks the line that fails", async (page) => {
    await page.getByRole("tab", { name: "Lingo" }).click();
    await page.getByRole("button", { name: "Run" }).click();
    await page.locator(".outcome pre", { hasText: "[#error: 0]" }).waitFor();
    await page.locator("figure", { hasText: "bright.png" }).waitFor();
    await page.locator(".cm-content").click();
    await page.keyboard.press("Control+a");
    await page.keyboard.type("on main\n  put 1\n  put [1][9]\nend");
    await page.keyboard.press("Control+Enter");
    await page.locator(".outcome .problem", { hasText: "Line 3" }).waitFor();
    assert.match(await page.locator(".outcome pre").textContent(), /^-- 1\n/);
    await page.locator(".cm-lint-marker-error").waitFor();
});

pageTest("no serious barrier, in light and dark, in both parts", async (page) => {
    await page.evaluate(await readFile(AXE, "utf8"));  // a script tag would break the policy of the page
    const violations = async () => (await page.evaluate(() => globalThis.axe.run())).violations
        .filter(({ impact }) => impact === "serious" || impact === "critical")
        .map(({ id, nodes }) => `${id}: ${nodes.map(({ html }) => html.slice(0, 120)).join(" | ")}`);
    for (const colorScheme of ["light", "dark"]) {
        await page.emulateMedia({ colorScheme });
        await page.getByRole("tab", { name: "Studio" }).click();
        for (const name of ["multiColourise", "vignette", "lensFlare"]) await addEffect(page, name);
        assert.deepEqual(await violations(), [], `studio, ${colorScheme}`);
        await page.getByRole("tab", { name: "Lingo" }).click();
        assert.deepEqual(await violations(), [], `playground, ${colorScheme}`);
    }
});

for (const width of [360, 768, 1440, 2560])
    pageTest(`nothing sticks out at ${width} pixels`, async (page) => {
        await page.setViewportSize({ width, height: 800 });
        await addEffect(page, "vignette");
        await addEffect(page, "multiColourise");
        const wide = await page.evaluate(() => document.documentElement.scrollWidth);
        assert.ok(wide <= width, `${wide} of ${width}`);
        const clipped = await page.evaluate(() => [...document.querySelectorAll("button, input, select, summary")]
            .filter((element) => !element.closest(".frame, .menu .list, dialog, .hidden-file") && !element.matches(".hidden-file"))
            .filter((element) => { const { left, right } = element.getBoundingClientRect(); return right > innerWidth + 1 || left < -1; })
            .map((element) => element.outerHTML.slice(0, 80)));
        assert.deepEqual(clipped, []);
    });

pageTest("the page works offline after the first visit", async (page) => {
    await page.evaluate(() => navigator.serviceWorker.ready);
    await page.reload();
    await site.context.setOffline(true);
    try {
        await page.reload();
        await page.locator(".facts").filter({ hasText: "960 × 640" }).waitFor();
        await addEffect(page, "sepia");
        await result(page);
    } finally {
        await site.context.setOffline(false);
    }
});
