import { readFile } from "node:fs/promises";
import { decodePam } from "./rows.mjs";

/** The folders of the tree and of the small sample pictures. */
export const TREE = process.env.KRL_TREE;
const PICTURES = process.env.KRL_HASH_PICTURES;

/** Hashes by `"krlImageVignette landscape"`. */
export async function readTable() {
    const lines = (await readFile(`${TREE}/tests/hashes.txt`, "utf8")).trim().split("\n").map((line) => line.split(" "));
    return new Map(lines.map(([method, picture, hash]) => [`${method} ${picture}`, hash]));
}

const samples = new Map();

/** A new copy of a small sample picture. */
export async function sample(name) {
    if (!samples.has(name)) samples.set(name, decodePam(await readFile(`${PICTURES}/${name}.pam`)));
    const { width, height, data } = samples.get(name);
    return { width, height, data: data.slice() };
}
