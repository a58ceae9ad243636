/** A call that the engine refused or that failed. */
export class KrlError extends Error {
    override readonly name = "KrlError";
    /** The effect's name; empty for a look or a script. */
    readonly method: string;
    /** The argument that was wrong, if it was one. */
    readonly argument: string | undefined;
    /** The method's own message, as scripts get it; empty for mistakes that a script cannot make. */
    readonly text: string;
    /** The kind of failure in words, such as `"no such choice"`. */
    readonly reason: string;
    /** The line of a look or a script, from 1; 0 if there is none. */
    readonly line: number;

    constructor(message: string, details: Partial<Pick<KrlError, "method" | "argument" | "text" | "reason" | "line">> = {}) {
        super(message);
        this.method = details.method ?? "";
        this.argument = details.argument;
        this.text = details.text ?? "";
        this.reason = details.reason ?? "";
        this.line = details.line ?? 0;
    }
}

/** A value as a message shows it. */
export function shown(value: unknown): string {
    let text: string | undefined;
    try {
        text = typeof value === "bigint" || typeof value === "symbol" ? String(value) : JSON.stringify(value);
    } catch {
        // Circular: its type has to do.
    }
    return (text ?? String(value)).slice(0, 200);
}

/** An argument of a type that does not fit. */
export function mismatch(method: string, argument: string, expected: string, got: unknown): KrlError {
    return new KrlError(`${method}: ${argument}: expected ${expected}, got ${shown(got)}`, {
        method, argument, reason: "wrong type",
    });
}
