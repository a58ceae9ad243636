import type { Value } from "krlimage";
import { useEffect, useId, useState } from "preact/hooks";
import { engine } from "../store.js";
import type { ControlProps } from "./controls.js";

export type TreeProps = ControlProps & { readonly method: string };

/** A structure as scripts write it, for those who know what they want. */
export function ScriptText({ argument, value, change, method }: TreeProps) {
    const id = useId();
    const [text, setText] = useState("");
    const [problem, setProblem] = useState("");
    const [isEdited, setEdited] = useState(false);
    useEffect(() => {
        if (isEdited) return;
        void engine.ask("write", method, argument.name, value).then((written) => setText(inLines(written)));
    }, [value, isEdited]);
    const set = async (written: string) => {
        setText(written);
        try {
            change(await engine.ask("parse", written) as Value);
            setProblem("");
        } catch (error) {
            setProblem(error instanceof Error ? error.message : String(error));
        }
    };
    return <details class="script-text">
        <summary>As a script writes it</summary>
        <textarea class="tree" rows={8} spellcheck={false} value={text} aria-label={`${argument.name}, as a script writes it`}
            aria-invalid={problem !== ""} aria-describedby={`${id}-problem`} onFocus={() => setEdited(true)} onBlur={() => setEdited(false)}
            onInput={(event) => void set(event.currentTarget.value)} />
        <span class="problem" id={`${id}-problem`}>{problem}</span>
    </details>;
}

/** A line for each entry of the outermost list. */
function inLines(text: string): string {
    let depth = 0;
    return Array.from(text, (letter, at) => {
        if ("[(".includes(letter)) ++depth;
        if ("])".includes(letter)) --depth;
        return letter === " " && depth === 1 && text[at - 1] === "," ? "\n " : letter;
    }).join("");
}
