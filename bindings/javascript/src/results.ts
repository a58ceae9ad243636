import { Code } from "./codes.js";
import { KrlError } from "./errors.js";
import type { Exports, Pointer } from "./exports.js";
import { OutOfMemory, type Memory, type Scope } from "./memory.js";
import { readValue } from "./read.js";
import type { Picture, Value } from "./types.js";

/** What a call came to, read and freed with its scope. */
export class Outcome {
    constructor(private readonly exports: Exports, private readonly memory: Memory, private readonly result: Pointer) {}

    /** Runs a function of the C interface whose last argument takes the result. */
    static of(exports: Exports, scope: Scope, run: (place: Pointer) => number): Outcome {
        const { memory } = scope;
        const place = scope.allocate(4);
        memory.view.setUint32(place, 0, true);
        run(place);
        const result = memory.word(place);
        scope.atEnd(() => exports._krl_result_free!(result));
        return new Outcome(exports, memory, result);
    }

    /** The entries; throws if the call has failed. */
    value(method: string, argumentNames: readonly string[]): Value {
        this.requireSuccess(method, argumentNames);
        return readValue(this.exports, this.memory, this.exports._krl_result_value!(this.result) >>> 0);
    }

    requireSuccess(method: string, argumentNames: readonly string[] = []): void {
        const code = this.exports._krl_result_code!(this.result);
        if (code === Code.ok) return;
        if (code === Code.outOfMemory) throw new OutOfMemory(0);
        const text = (at: number) => this.memory.text(at >>> 0);
        const message = text(this.exports._krl_result_message!(this.result));
        const second = /^\w+ needs (\w+)/.exec(message)?.[1] ?? message.split(": ")[1];
        throw new KrlError(message, {
            method,
            argument: second !== undefined && argumentNames.includes(second) ? second : undefined,
            text: text(this.exports._krl_result_error!(this.result)),
            reason: text(this.exports._krl_code_text!(code)),
            line: this.exports._krl_result_line!(this.result),
        });
    }
}

function isPicture(value: Value): value is Picture {
    return typeof value === "object" && value !== null && "data" in value && "width" in value;
}

/** New pictures among the entries of a result, in order. */
export function picturesIn(entries: Value): Picture[] {
    if (typeof entries !== "object" || entries === null) return [];
    return (Array.isArray(entries) ? entries : Object.values(entries) as Value[]).filter(isPicture);
}
