/** The picture: how it is opened, seen and saved. */
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { hashOf } from "../javascript/rows.mjs";
import { addEffect, openMenu, openPicture, pageTest, PICTURES, result } from "./page.mjs";

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

pageTest("the result is downloaded at full size, without loss", async (page) => {
    await addEffect(page, "sepia");
    const expected = await result(page);
    await openMenu(page, "Download");
    const [download] = await Promise.all([page.waitForEvent("download"), page.getByRole("button", { name: /^PNG/ }).click()]);
    assert.equal(download.suggestedFilename(), "landscape-edited.png");
    const bytes = await readFile(await download.path());
    assert.deepEqual([bytes.readUInt32BE(16), bytes.readUInt32BE(20)], [960, 640]);
    await openPicture(page, { name: "again.png", mimeType: "image/png", buffer: bytes });
    await page.getByRole("button", { name: "Clear", exact: true }).click();
    assert.equal(hashOf(await result(page)), hashOf(expected));
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

pageTest("a picture comes from the clipboard", async (page) => {
    await page.evaluate(([bytes]) => {
        const data = new DataTransfer();
        data.items.add(new File([Uint8Array.from(bytes)], "copied.png", { type: "image/png" }));
        document.dispatchEvent(new ClipboardEvent("paste", { clipboardData: data, bubbles: true }));
    }, [[...await readFile(`${process.env.KRL_TREE}/examples/pictures/logo.png`)]]);
    await page.locator(".facts").filter({ hasText: "copied · 960 × 640" }).waitFor();
});

pageTest("a picture too large for memory is refused before it is unpacked", async (page) => {
    const drawing = '<svg xmlns="http://www.w3.org/2000/svg" width="30000" height="20000"/>';
    await openPicture(page, { name: "huge.svg", mimeType: "image/svg+xml", buffer: Buffer.from(drawing) });
    await page.getByRole("alert").filter({ hasText: "huge.svg is too large: it has 600 million pixels, and 100 million are the most" }).waitFor();
    assert.match(await page.locator(".facts").textContent(), /^landscape/);
});

pageTest("JPEG and WebP are downloaded at full size", async (page) => {
    await addEffect(page, "sepia");
    for (const [label, start] of [[/^JPEG/, "ffd8ff"], [/^WebP/, "52494646"]]) {
        await openMenu(page, "Download");
        const [download] = await Promise.all([page.waitForEvent("download"), page.getByRole("button", { name: label }).click()]);
        const bytes = await readFile(await download.path());
        assert.equal(bytes.subarray(0, start.length / 2).toString("hex"), start);
        const size = await page.evaluate(async (content) => {
            const { width, height } = await createImageBitmap(new Blob([Uint8Array.from(content)]));
            return [width, height];
        }, [...bytes]);
        assert.deepEqual(size, [960, 640]);
    }
});

pageTest("zoom keeps the pixel under the pointer; dragging and arrow keys move the picture", async (page) => {
    const frame = page.locator(".frame"), view = await page.locator(".view").boundingBox();
    const at = { x: view.x + view.width * 0.6, y: view.y + view.height * 0.55 };
    const shareAt = async () => {
        const { x, y, width, height } = await frame.boundingBox();
        return [(at.x - x) / width, (at.y - y) / height];
    };
    const before = await shareAt(), { width } = await frame.boundingBox();
    await page.mouse.move(at.x, at.y);
    await page.mouse.wheel(0, -400);
    await page.waitForFunction((least) => document.querySelector(".frame").getBoundingClientRect().width > least, width * 2);
    (await shareAt()).forEach((share, axis) => assert.ok(Math.abs(share - before[axis]) < 0.002, `${share}, ${before[axis]}`));

    const { x, y } = await frame.boundingBox();
    await page.mouse.down();
    await page.mouse.move(at.x + 50, at.y - 30, { steps: 3 });
    await page.mouse.up();
    const dragged = await frame.boundingBox();
    assert.ok(Math.abs(dragged.x - x - 50) < 1 && Math.abs(dragged.y - y + 30) < 1);

    await page.locator(".view").focus();
    await page.keyboard.press("ArrowLeft");
    assert.ok((await frame.boundingBox()).x > dragged.x);
    await page.keyboard.press("0");
    assert.equal((await frame.boundingBox()).width, width);
    await page.keyboard.press("+");
    assert.ok((await frame.boundingBox()).width > width);
    await page.getByRole("button", { name: /show every pixel/ }).click();
    assert.equal(await page.locator(".zoom .wide").textContent(), "100 %");
    assert.equal((await frame.boundingBox()).width, 960);
    await page.getByRole("button", { name: "Fit the picture" }).click();
    assert.equal((await frame.boundingBox()).width, width);
});

pageTest("two fingers zoom", async (page) => {
    const frame = page.locator(".frame"), { width } = await frame.boundingBox();
    await page.evaluate(() => {
        const view = document.querySelector(".view"), { left, top } = view.getBoundingClientRect();
        const send = (type, pointerId, x, y) => view.dispatchEvent(new PointerEvent(type, {
            pointerId, pointerType: "touch", clientX: left + x, clientY: top + y, bubbles: true, cancelable: true,
        }));
        view.setPointerCapture = () => {};
        send("pointerdown", 11, 200, 200);
        send("pointerdown", 12, 300, 200);
        send("pointermove", 12, 400, 200);
        send("pointerup", 11, 200, 200);
        send("pointerup", 12, 400, 200);
    });
    assert.ok(Math.abs((await frame.boundingBox()).width / width - 2) < 0.01);
});

pageTest("the histogram follows the picture, and each effect shows its time", async (page) => {
    const drawn = () => page.locator(".histogram").evaluate((canvas) => canvas.toDataURL());
    await result(page);
    const before = await drawn();
    await addEffect(page, "invert");
    await page.locator(".step .time", { hasText: /\d ms$/ }).waitFor();
    await result(page);
    assert.notEqual(await drawn(), before);
});
