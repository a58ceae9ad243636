/** Chains: how they are built, shared and saved. */
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdtemp, readFile, rm, writeFile } from "node:fs/promises";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { decodePam, hashOf } from "../javascript/rows.mjs";
import { addEffect, hashOfResult, openMenu, pageTest, result, site, stepNames, valueBecomes } from "./page.mjs";

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
    await valueBecomes(number, "40");
    await page.getByRole("button", { name: "Undo" }).click();
    await valueBecomes(number, "-90");
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

pageTest("looks are opened, saved and opened again", async (page) => {
    await openMenu(page, "Open");
    await page.locator(".menu .list h2", { hasText: "Looks" }).locator("~ button").first().click();
    await page.locator(".step").first().waitFor();
    const names = await stepNames(page), expected = hashOf(await result(page));
    await openMenu(page, "Share");
    const [download] = await Promise.all([page.waitForEvent("download"), page.getByRole("button", { name: "Save look" }).click()]);
    const text = await readFile(await download.path(), "utf8");
    assert.match(text, /^krlimage look 1\n/);
    await page.getByRole("button", { name: "Clear", exact: true }).click();
    await openMenu(page, "Open");
    const [chooser] = await Promise.all([page.waitForEvent("filechooser"), page.locator("button", { hasText: "Look…" }).click()]);
    await chooser.setFiles({ name: "look.krl", mimeType: "text/plain", buffer: Buffer.from(text) });
    await page.locator(".step").first().waitFor();
    assert.deepEqual(await stepNames(page), names);
    assert.equal(hashOf(await result(page)), expected);
});

pageTest("the chain is copied as a program", async (page) => {
    await addEffect(page, "brightness");
    await page.getByRole("spinbutton", { name: "brightnessInt, as a number" }).fill("25");
    await openMenu(page, "Share");
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

pageTest("the saved look and the copied programs give the page's bytes", async (page) => {
    await addEffect(page, "vignette");
    await page.getByRole("spinbutton", { name: "blur, as a number" }).fill("31");
    await addEffect(page, "multiColourise");
    await addEffect(page, "twirl");
    const expected = await hashOfResult(page);
    await openMenu(page, "Share");
    const [download] = await Promise.all([page.waitForEvent("download"), page.getByRole("button", { name: "Save look" }).click()]);
    await openMenu(page, "Share");
    await page.getByRole("button", { name: "Copy as a program…" }).click();
    const program = async (language, words) => {
        await page.locator("dialog .segments label", { hasText: new RegExp(`^${language}$`) }).click();
        return page.locator("dialog pre", { hasText: words }).textContent();
    };
    const command = await program("Command line", "krlimage apply"), script = await program("Lingo", "on main");

    const folder = await mkdtemp(join(tmpdir(), "krl-look-"));
    const run = (text) => execFileSync("bash", ["-c", text], {
        cwd: folder, stdio: ["ignore", "ignore", "inherit"], env: { ...process.env, PATH: `${process.env.KRL_PROGRAMS}:${process.env.PATH}` },
    });
    try {
        await writeFile(join(folder, "chain.ls"), script);
        await download.saveAs(join(folder, "look.krl"));
        run(`cp '${process.env.KRL_TREE}/examples/pictures/landscape.png' photo.png`);
        run("krlimage apply --look look.krl photo.png -o look.pam");
        run(command.replace("result.png", "command.pam"));
        run("krlimage run chain.ls photo.png script.pam");
        for (const made of ["look", "command", "script"])
            assert.equal(hashOf(decodePam(await readFile(join(folder, `${made}.pam`)))), expected, made);
    } finally {
        await rm(folder, { recursive: true });
    }
});

pageTest("a step is dragged to another place", async (page) => {
    for (const name of ["sepia", "brightness", "vignette"]) await addEffect(page, name);
    await page.locator(".step .head").nth(2).dragTo(page.locator(".step .head").nth(0));
    assert.deepEqual(await stepNames(page), ["Vignette", "Sepia", "Brightness"]);
});
