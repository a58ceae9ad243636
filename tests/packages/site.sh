# The page, unpacked and opened in Chromium.

install_missing unzip chromium

page() {
    unzip -q "$release"/*-page.zip -d "$scratch/page"
    # The page's own test knows how to open it; ./package has installed what that needs.
    export KRL_TREE=$tree/build/package/npm/tree
    node --input-type=module - "$scratch"/page/* <<'SCRIPT'
const { openSite } = await import(`${process.env.KRL_TREE}/tests/site/browser.mjs`);
const site = await openSite(process.argv[2]);
const page = await site.newPage("");
const pixel = () => page.evaluate(async () => [...(await globalThis.krlStudio.fullResult()).data.subarray(0, 3)]);
const before = await pixel(), steps = await page.locator(".step").count();
await page.locator(".card[data-effect=invert]").click();
await page.locator(".step").nth(steps).waitFor();
const after = await pixel();
await site.close();
if (site.problems.length > 0) throw new Error(String(site.problems));
if (!before.every((level, channel) => level + after[channel] === 255)) throw new Error(`${before} inverted is ${after}`);
SCRIPT
}

part page page
