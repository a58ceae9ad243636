import { Code } from "./codes.js";
import { KrlError } from "./errors.js";
import type { Exports, Pointer } from "./exports.js";
import { Memory, OutOfMemory, type Scope } from "./memory.js";
import { PICTURE, readPicture } from "./read.js";
import type { Picture, Source } from "./types.js";
import { LentPicture } from "./write.js";

/** What a script gets. */
export interface LingoOptions {
    /** Pictures by the names of files, such as `"photo.png"`. */
    images?: Readonly<Record<string, Source>>;
    /** The list that the handler gets; the names of the pictures unless it is given. */
    arguments?: readonly string[];
    /** The most statements and turns of loops that are carried out; by default 100 million. */
    steps?: number;
}

/** What a script did. */
export interface LingoOutcome {
    /** What it printed with `put`. */
    readonly output: string;
    /** What it showed with `alert`. */
    readonly alerts: string;
    /** The pictures that it saved, by the names of their files. */
    readonly images: Readonly<Record<string, Picture>>;
}

/** A script that failed, with what it had printed until then. */
export class LingoError extends KrlError {
    /** From 1; 0 if there is none. */
    readonly column: number;
    readonly output: string;

    constructor(message: string, line: number, column: number, output: string) {
        super(message, { line, reason: "the script failed" });
        this.column = column;
        this.output = output;
    }
}

const FOLDER = "/script";
const FILE = `${FOLDER}/main.ls`;
const MOST_STEPS = 1e8;

function savedPictures(exports: Exports, scope: Scope, script: Pointer): Record<string, Picture> {
    const { memory } = scope;
    const place = scope.allocate(PICTURE.bytes);
    const names = [...Array(exports._krl_script_saved_count!(script)).keys()].map((index) => {
        exports._krl_script_saved_picture!(script, index, place);
        return [memory.text(exports._krl_script_saved_name!(script, index) >>> 0), readPicture(memory, place)] as const;
    });
    return Object.fromEntries(names);
}

/** Gives the script its pictures and runs it. */
function runFile(exports: Exports, scope: Scope, options: LingoOptions): LingoOutcome {
    const { memory } = scope;
    const { images = {}, arguments: words = Object.keys(images), steps = MOST_STEPS } = options;
    const script = exports._krl_script_new!() >>> 0;
    if (script === 0) throw new OutOfMemory(0);
    scope.atEnd(() => exports._krl_script_free!(script));
    for (const [name, image] of Object.entries(images)) memory.scoped((inner) => {
        const lent = new LentPicture(inner, image, "runLingo", name);
        if (exports._krl_script_give!(script, inner.text(name), lent.at) !== Code.ok) throw new OutOfMemory(0);
    });
    const list = scope.allocate(words.length * 4 + 1);
    words.map((word) => scope.text(word)).forEach((word, index) => memory.view.setUint32(list + index * 4, word, true));
    const code = exports._krl_script_run!(script, scope.text(FILE), list, words.length, steps);
    if (code === Code.outOfMemory) throw new OutOfMemory(0);
    const text = (what: `_krl_script_${string}`) => memory.text(exports[what]!(script) >>> 0);
    const output = text("_krl_script_output");
    if (code !== Code.ok)
        throw new LingoError(text("_krl_script_error"), exports._krl_script_line!(script), exports._krl_script_column!(script), output);
    return { output, alerts: text("_krl_script_alerts"), images: savedPictures(exports, scope, script) };
}

/** Runs a script in an instance that is used for nothing else. */
export function runLingo(exports: Exports, source: string, options: LingoOptions): LingoOutcome {
    exports.FS!.mkdir(FOLDER);
    exports.FS!.writeFile(FILE, source);
    return new Memory(exports).scoped((scope) => runFile(exports, scope, options));
}
