/**
 * Writes the types of every effect from the catalogue of the built package.
 *
 *     node generate.mjs dist/krlimage.js src/effects.ts
 */
import { writeFile } from "node:fs/promises";
import { resolve } from "node:path";
import { pathToFileURL } from "node:url";

const WIDTH = 110;
const TYPES = { integer: "number", real: "number", colour: "Colour", point: "Point", colours: "Colours", picture: "Source" };

const capital = (name) => name[0].toUpperCase() + name.slice(1);
const sentence = (text) => text ? capital(text) + "." : "";

/** A tree that is made of pictures has to be given: only the caller has them. */
const holdsPictures = ({ kind, example }) =>
    kind === "tree" && Array.isArray(example) && example.length > 0 && example.every((item) => typeof item === "string");
const isRequired = (argument) => argument.kind === "picture" || holdsPictures(argument);

function typeOf(argument) {
    if (argument.kind === "symbol") return argument.choices.map((choice) => JSON.stringify(choice)).join(" | ") || "string";
    if (holdsPictures(argument)) return "readonly Source[]";
    return TYPES[argument.kind] ?? "Value";
}

function numberSentence({ kind, range, limits, neutral }) {
    if (kind !== "integer" && kind !== "real") return "";
    const [least, most] = limits;
    const limit = Number.isFinite(least) && Number.isFinite(most) ? ` Limited to ${least} to ${most}.`
        : Number.isFinite(least) ? ` At least ${least}.`
        : Number.isFinite(most) ? ` At most ${most}.` : "";
    return `${kind === "integer" ? "A whole number. " : ""}Try ${range[0]} to ${range[1]}.${limit}`
        + (neutral === undefined ? "" : ` ${neutral} changes nothing.`);
}

function exampleSentence(argument) {
    if (isRequired(argument)) return "";
    if (argument.kind === "point") return "Left out, it fits the size of the picture.";
    if (argument.kind === "tree") return "Left out, it is the example of the method reference.";
    return `Left out, it is \`${JSON.stringify(argument.example)}\`.`;
}

/** Words in lines, as a comment at this depth. */
function comment(text, depth) {
    const indent = " ".repeat(depth);
    const lines = [];
    let line = "";
    for (const word of text.split(" ")) {
        if (line && indent.length + 3 + line.length + 1 + word.length > WIDTH) {
            lines.push(line);
            line = word;
        } else line += (line ? " " : "") + word;
    }
    lines.push(line);
    if (lines.length === 1) return `${indent}/** ${lines[0]} */\n`;
    return `${indent}/**\n${lines.map((words) => `${indent} * ${words}\n`).join("")}${indent} */\n`;
}

const join = (...sentences) => sentences.filter(Boolean).join(" ");

function argumentsSource(effect) {
    const base = effect.rewritesPicture ? " extends Extent" : "";
    const fields = effect.arguments.map((argument) =>
        comment(join(sentence(argument.meaning), numberSentence(argument), exampleSentence(argument)) || argument.name, 4)
        + `    ${argument.name}${isRequired(argument) ? "" : "?"}: ${typeOf(argument)};\n`);
    return comment(`Arguments of \`${effect.name}\`.`, 0)
        + `export interface ${capital(effect.name)}Arguments${base} {\n${fields.join("")}}\n\n`;
}

/** The type of a value that the effect's example has given. */
function typeOfValue(value) {
    if (typeof value === "number") return "number";
    if (typeof value === "string") return "string";
    if (value && typeof value === "object" && "data" in value) return "Picture";
    if (value && typeof value === "object" && "x" in value) return "Point";
    return "Value";
}

function entriesSource(engine, effect) {
    if (effect.results.length === 0) return "object";
    const entries = exampleEntries(engine, effect);
    const fields = effect.results.map(({ key, meaning }) =>
        (meaning ? comment(sentence(meaning), 12) : "") + `            readonly ${key}: ${typeOfValue(entries[key])};\n`);
    return `{\n${fields.join("")}        }`;
}

function exampleEntries(engine, effect) {
    const blank = () => ({ width: 96, height: 64, data: new Uint8ClampedArray(96 * 64 * 4).fill(128) });
    const given = Object.fromEntries(effect.arguments.filter(isRequired).map((argument) =>
        [argument.name, argument.kind === "picture" ? blank() : argument.example.map(blank)]));
    return engine.apply(blank(), effect.name, given).entries;
}

function notes(effect) {
    return join(
        effect.inert && "It checks its arguments and changes nothing.",
        effect.changedArgument && `It rewrites \`${effect.changedArgument}\` and no other picture.`,
        effect.makesPictureList && "It makes several new pictures.");
}

function effectSource(engine, effect) {
    return comment(join(effect.summary, notes(effect)), 4)
        + `    ${effect.name}: {\n        arguments: ${capital(effect.name)}Arguments;\n`
        + `        entries: ${entriesSource(engine, effect)};\n    };\n`;
}

const [module, file] = process.argv.slice(2);
const { Engine } = await import(pathToFileURL(resolve(module)));
const engine = await Engine.create();
const effects = [...engine.effects.values()];
const body = `${effects.map(argumentsSource).join("")}/** Every effect: what it takes, and what it measures or makes beside the picture. */
export interface Effects {
${effects.map((effect) => effectSource(engine, effect)).join("")}}

/** The name of an effect. */
export type MethodName = keyof Effects;
`;
const used = ["Colour", "Colours", "Extent", "Picture", "Point", "Source", "Value"]
    .filter((name) => new RegExp(`[ \\[]${name}\\b`).test(body));
await writeFile(file, `// Written by generate.mjs from the engine's catalogue.
import type { ${used.join(", ")} } from "./types.js";

${body}`);
