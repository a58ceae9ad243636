/** The page for scripts. */
import assert from "node:assert/strict";
import { pageTest } from "./page.mjs";

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
