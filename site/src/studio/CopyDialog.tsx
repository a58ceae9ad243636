import { signal } from "@preact/signals";
import { useEffect, useRef } from "preact/hooks";
import { LANGUAGES, program, type Calls, type Language } from "../model/programs.js";
import { chain, complain, engine, say } from "../store.js";

export const isCopying = signal(false);
const language = signal<Language>("Command line");
const calls = signal<Calls>({ texts: [], lingo: [] });

async function readCalls(): Promise<void> {
    const { steps, size } = chain.value;
    const on = steps.filter((step) => step.on);
    const [texts, lingo] = await Promise.all([engine.ask("calls", on, size, "pixels"), engine.ask("calls", on, size, "lingo")]);
    calls.value = { texts, lingo };
}

/** The chain as a program to copy. */
export function CopyDialog() {
    const dialog = useRef<HTMLDialogElement>(null);
    useEffect(() => {
        if (!isCopying.value) return;
        readCalls().catch(complain);
        dialog.current!.showModal();
    }, [isCopying.value]);
    const text = program(language.value, calls.value);
    const copy = async () => {
        await navigator.clipboard.writeText(text);
        say(`Copied as ${language.value}`);
        dialog.current!.close();
    };
    return <dialog ref={dialog} class="copy" aria-label="Copy as a program" onClose={() => { isCopying.value = false; }}>
        <div class="segments" role="group" aria-label="Language">
            {LANGUAGES.map((name) => <label key={name}>
                <input type="radio" name="language" checked={language.value === name} onChange={() => { language.value = name; }} />
                <span>{name}</span>
            </label>)}
        </div>
        <pre tabIndex={0} role="region" aria-label={`The chain as ${language.value}`}>{text}</pre>
        <div class="actions">
            <button type="button" class="quiet" onClick={() => dialog.current!.close()}>Close</button>
            <button type="button" class="button main" onClick={() => { copy().catch(complain); }}>Copy</button>
        </div>
    </dialog>;
}
