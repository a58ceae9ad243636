/** States that follow each other, and a place among them. */
export interface History<State> {
    readonly past: readonly State[];
    readonly present: State;
    readonly future: readonly State[];
    /** What the last change was of: changes of one kind that follow each other are undone together. */
    readonly kind: string;
}

const MOST_STATES = 200;

export function begin<State>(present: State): History<State> {
    return { past: [], present, future: [], kind: "" };
}

/** A change; one of the same kind as the last, such as the moves of one slider, joins it. */
export function change<State>(history: History<State>, present: State, kind = ""): History<State> {
    if (kind !== "" && kind === history.kind) return { ...history, present, future: [] };
    return { past: [...history.past, history.present].slice(-MOST_STATES), present, future: [], kind };
}

/** Ends a change: the next one stays apart from it. */
export function settle<State>(history: History<State>): History<State> {
    return history.kind === "" ? history : { ...history, kind: "" };
}

export function undo<State>(history: History<State>): History<State> {
    const present = history.past.at(-1);
    if (present === undefined) return history;
    return { past: history.past.slice(0, -1), present, future: [history.present, ...history.future], kind: "" };
}

export function redo<State>(history: History<State>): History<State> {
    const [present, ...future] = history.future;
    if (present === undefined) return history;
    return { past: [...history.past, history.present], present, future, kind: "" };
}
