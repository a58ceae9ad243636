/** Who can use the page, and where. */
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { test } from "node:test";
import { AXE } from "./browser.mjs";
import { addEffect, pageTest, result, site, stepNames } from "./page.mjs";

/** Presses Tab until what has the focus is called so. */
async function tabTo(page, name) {
    for (let i = 0; i < 40; ++i) {
        await page.keyboard.press("Tab");
        const label = await page.evaluate(() => {
            const { activeElement: element } = document;
            return element.getAttribute("aria-label") ?? element.labels?.[0]?.textContent ?? element.textContent;
        });
        if (name.test(label)) return;
    }
    assert.fail(`${name} is not reached`);
}

pageTest("a picture is opened, worked on and saved by keyboard alone", async (page) => {
    const press = (...keys) => keys.reduce((before, key) => before.then(() => page.keyboard.press(key)), Promise.resolve());
    await tabTo(page, /^Open$/);
    await press("Enter");
    await tabTo(page, /^A portrait/);
    await press("Enter");
    await page.locator(".facts").filter({ hasText: "portrait" }).waitFor();
    for (const words of ["posteris", "sepia"]) {
        await tabTo(page, /^Find an effect/);
        await press("Control+a");
        await page.keyboard.type(words);
        await press("Tab", "Enter");
        await page.locator(".step", { hasText: new RegExp(words, "i") }).waitFor();
        await page.evaluate(() => document.activeElement.blur());
    }
    assert.deepEqual(await stepNames(page), ["Posterise", "Sepia"]);
    await page.reload();
    await page.locator(".facts").filter({ hasText: "×" }).waitFor();
    await tabTo(page, /^Skip to the chain/);
    await press("Enter");
    await tabTo(page, /^Sepia(?! on)/);
    await press("Alt+ArrowUp");
    assert.deepEqual(await stepNames(page), ["Sepia", "Posterise"]);
    await tabTo(page, /^Remove Sepia/);
    await press("Enter");
    assert.deepEqual(await stepNames(page), ["Posterise"]);
    await press("Control+z");
    assert.deepEqual(await stepNames(page), ["Sepia", "Posterise"]);
    await page.evaluate(() => document.activeElement.blur());
    await tabTo(page, /^Skip to the picture/);
    await press("Enter", "+");
    assert.notEqual(await page.locator(".frame").evaluate((frame) => frame.style.transform), "translate(0px, 0px) scale(1)");
    await page.evaluate(() => document.activeElement.blur());
    await tabTo(page, /^Download$/);
    await press("Enter", "Tab");
    const [download] = await Promise.all([page.waitForEvent("download"), press("Enter")]);
    assert.equal(download.suggestedFilename(), "landscape-edited.png");
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
        await page.getByRole("tab", { name: "Lingo" }).click();
        await page.getByRole("button", { name: "Run" }).click();
        await page.locator(".outcome pre", { hasText: "[#error: 0]" }).waitFor();
    } finally {
        await site.context.setOffline(false);
    }
});

test("a browser without WebAssembly is told in plain words", async () => {
    const page = await site.context.newPage();
    try {
        await page.addInitScript(() => { delete globalThis.WebAssembly; });
        await page.goto(site.address);
        await page.getByText("This page needs a browser with WebAssembly").waitFor();
    } finally {
        await page.close();
    }
});
