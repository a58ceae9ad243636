import type { Value } from "krlimage";
import { useEffect, useId, useState } from "preact/hooks";
import { engine } from "../store.js";
import type { ControlProps } from "./controls.js";
import { Labelled } from "./Labelled.js";

/** A structure, such as a flare, as scripts write it; its points have handles on the picture. */
export function TreeControl({ argument, value, change, method }: ControlProps & { method: string }) {
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
    return <Labelled argument={argument} id={id}>
        <textarea id={id} class="tree" rows={8} spellcheck={false} value={text} aria-invalid={problem !== ""}
            aria-describedby={`${id}-problem`} onFocus={() => setEdited(true)} onBlur={() => setEdited(false)}
            onInput={(event) => void set(event.currentTarget.value)} />
        <span class="problem" id={`${id}-problem`}>{problem}</span>
    </Labelled>;
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
