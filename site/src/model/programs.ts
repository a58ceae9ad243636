/** The chain as a program, in each of the languages that the engine is called from. */

export const LANGUAGES = ["Command line", "Lingo", "JavaScript", "Python", "C"] as const;
export type Language = (typeof LANGUAGES)[number];

/** Calls as texts, and as Lingo. */
export interface Calls {
    readonly texts: readonly string[];
    readonly lingo: readonly string[];
}

const quoted = (text: string) => `"${text.replaceAll("\\", "\\\\").replaceAll('"', '\\"')}"`;
const shellQuoted = (text: string) => `'${text.replaceAll("'", `'\\''`)}'`;
const lines = (texts: readonly string[], indent: string) => texts.map((text) => `${indent}${quoted(text)},\n`).join("");

const WRITERS: Readonly<Record<Language, (calls: Calls) => string>> = {
    "Command line": ({ texts }) => `krlimage apply photo.png -o result.png${texts.map((text) => ` \\\n  ${shellQuoted(text)}`).join("")}\n`,

    "Lingo": ({ lingo }) => `on main names
  picture = image(names[1])
  grade = new(xtra "KRLImageXtra")
  grade.krlImageCreateLookupTables(#mt)
  grade.krlImageLoad(picture)
${lingo.map((call) => `  put grade.${call}\n`).join("")}  grade.krlImageQuit()
  grade.krlImageDestroyLookupTables()
  picture.save(names[2])
end
`,

    "JavaScript": ({ texts }) => `import { Engine } from "krlimage";

const engine = await Engine.create();
const { picture } = await engine.run(imageData, [
${lines(texts, "    ")}]);
`,

    "Python": ({ texts }) => `import krlimage

result = krlimage.apply(
    picture,
${lines(texts, "    ")})
`,

    "C": ({ texts }) => `#include <krlimage.h>

static const char* const calls[] = {
${lines(texts, "    ")}};

krl_picture picture = {sizeof picture, pixels, width, height, width * 4, KRL_RGBA};
krl_engine* engine = krl_engine_new(0);
for (size_t i = 0; i < sizeof calls / sizeof *calls; ++i) krl_apply(engine, &picture, calls[i], NULL);
krl_engine_free(engine);
`,
};

export function program(language: Language, calls: Calls): string {
    return WRITERS[language](calls);
}
