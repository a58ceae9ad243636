/** The package's types: right programs pass, and every wrong line is one. */
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { readFile } from "node:fs/promises";
import { test } from "node:test";
import { Engine } from "krlimage";

function check(file) {
    const options = ["--noEmit", "--strict", "--target", "es2022", "--module", "nodenext",
        "--lib", "es2023,dom,esnext.disposable"];
    const { stdout } = spawnSync(process.env.KRL_TSC, [...options, file], { encoding: "utf8" });
    return stdout;
}

test("a right program", () => assert.equal(check("types/good.ts"), ""));

test("every wrong line", async () => {
    const source = (await readFile("types/bad.ts", "utf8")).split("\n");
    const expected = source.flatMap((line, index) => line.startsWith("engine.") || line.startsWith("await") ? [index + 1] : []);
    const found = [...check("types/bad.ts").matchAll(/^types\/bad\.ts\((\d+),/gm)].map((match) => Number(match[1]));
    assert.deepEqual([...new Set(found)], expected);
});

test("every effect and argument has its words in the types", async () => {
    const types = await readFile("node_modules/krlimage/dist/types/effects.d.ts", "utf8");
    const engine = await Engine.create();
    const words = types.replace(/\s*\n\s*\* ?/g, " ");
    for (const effect of engine.effects.values()) {
        assert.ok(words.includes(effect.summary), effect.name);
        for (const argument of effect.arguments) assert.match(types, new RegExp(`^    ${argument.name}\\??: `, "m"));
        for (const { meaning } of effect.arguments) assert.ok(words.includes(meaning.slice(1)), meaning);
    }
});
