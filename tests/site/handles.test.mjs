/** Handles on the picture: points, shapes and flares. */
import assert from "node:assert/strict";
import { addEffect, hashOfResult, pageTest } from "./page.mjs";

/** Drags the middle of an element by so many pixels of the screen. */
async function drag(page, element, dx, dy) {
    const { x, y, width, height } = await element.boundingBox();
    await page.mouse.move(x + width / 2, y + height / 2);
    await page.mouse.down();
    await page.mouse.move(x + width / 2 + dx, y + height / 2 + dy, { steps: 3 });
    await page.mouse.up();
}

/** The place in the name of a handle, in pixels of the picture. */
const placeOf = async (handle) => (await handle.getAttribute("aria-label")).match(/: (-?\d+), (-?\d+)/).slice(1).map(Number);

pageTest("points are set on the picture", async (page) => {
    const withPoint = (await page.evaluate(() => globalThis.krlStudio.effects())).find(({ kinds }) => kinds.includes("point"));
    await addEffect(page, withPoint.name);
    const handle = page.locator(".handle").first();
    const [left] = await placeOf(handle);
    await handle.focus();
    await page.keyboard.press("Shift+ArrowRight");
    assert.equal((await placeOf(handle))[0], left + 10);
    const box = await handle.boundingBox();
    await drag(page, handle, 100, 50);
    const moved = await handle.boundingBox();
    assert.ok(Math.abs(moved.x - box.x - 100) < 2 && Math.abs(moved.y - box.y - 50) < 2);
});

pageTest("a shape is drawn on the picture", async (page) => {
    await addEffect(page, "drawBezierShape");
    const corners = page.locator(".handle.corner"), curves = page.locator(".handle.curve");
    assert.equal(await corners.count(), 2);
    // The example's first corner is at (280, 200), from 200 right of and above the bottom left.
    assert.deepEqual(await placeOf(corners.first()), [480, 240]);
    const whole = await hashOfResult(page);
    await drag(page, corners.first(), -60, -40);
    assert.notEqual(await hashOfResult(page), whole);
    await page.keyboard.press("Control+z");
    assert.equal(await hashOfResult(page), whole);

    await corners.first().focus();
    await page.getByRole("button", { name: "Add a corner" }).click();
    assert.equal(await corners.count(), 3);
    const [added] = await Promise.all([placeOf(corners.nth(1)), drag(page, curves.last(), 0, 50)]);
    assert.deepEqual(await placeOf(corners.nth(1)), added, "a curve's handle leaves its corner alone");
    assert.notEqual(await hashOfResult(page), whole);
    await corners.nth(1).focus();
    await page.keyboard.press("Delete");
    assert.equal(await corners.count(), 2);
});

pageTest("the elements of a flare are moved, sized, added and removed", async (page) => {
    await addEffect(page, "lensFlare");
    const handles = page.locator(".handle:not(.rim)"), elements = page.locator(".elements > li");
    // Three of the example's elements share a place, which is moved as one.
    assert.equal(await elements.count(), 4);
    assert.equal(await handles.count(), 2);
    const before = await hashOfResult(page);
    await drag(page, handles.first(), 80, 30);
    assert.equal(await handles.count(), 2);
    assert.notEqual(await hashOfResult(page), before);

    const radius = page.getByRole("spinbutton", { name: "radius, as a number" });
    const size = Number(await radius.inputValue());
    await drag(page, page.locator(".handle.rim"), 40, 0);
    assert.ok(Number(await radius.inputValue()) > size);

    const add = page.getByRole("combobox", { name: "Add an element" });
    const kinds = await add.locator("option:not([disabled])").evaluateAll((options) => options.map(({ value }) => value));
    const known = await page.evaluate(() => globalThis.krlStudio.effects().find(({ name }) => name === "lensFlare").meanings[0]);
    assert.deepEqual([...kinds].sort(), [...known.matchAll(/#(\w+)/g)].map(([, kind]) => kind).sort());
    let last = await hashOfResult(page);
    for (const kind of kinds) {
        await add.selectOption(kind);
        const now = await hashOfResult(page);
        assert.notEqual(now, last, `${kind} is painted`);
        last = now;
    }
    assert.equal(await elements.count(), 4 + kinds.length);
    await page.getByRole("button", { name: /^Remove element 15/ }).click();
    assert.equal(await elements.count(), 3 + kinds.length);
});

pageTest("a shape and a flare come to the same places on a picture of another size", async (page) => {
    for (const name of ["drawBezierShape", "lensFlare"]) {
        await addEffect(page, name);
        const handle = page.locator(".handle").first(), frame = page.locator(".frame");
        const share = async () => {
            const [inner, outer] = [await handle.boundingBox(), await frame.boundingBox()];
            return [(inner.x + inner.width / 2 - outer.x) / outer.width, (inner.y + inner.height / 2 - outer.y) / outer.height];
        };
        const before = await share();
        await page.evaluate(async () => {
            const canvas = new OffscreenCanvas(480, 320);
            canvas.getContext("2d").fillRect(0, 0, 480, 320);
            const data = new DataTransfer();
            data.items.add(new File([await canvas.convertToBlob()], "small.png", { type: "image/png" }));
            document.querySelector(".view").dispatchEvent(new DragEvent("drop", { dataTransfer: data, bubbles: true, cancelable: true }));
        });
        await page.locator(".facts").filter({ hasText: "small · 480 × 320" }).waitFor();
        const after = await share();
        before.forEach((place, axis) => assert.ok(Math.abs(place - after[axis]) < 0.005, `${name}: ${before} and ${after}`));
        await page.reload();
        await page.locator(".facts").filter({ hasText: "×" }).waitFor();
        await page.getByRole("button", { name: "Clear", exact: true }).click();
    }
});
