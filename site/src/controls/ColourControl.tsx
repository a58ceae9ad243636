import { useId } from "preact/hooks";
import { settle } from "../store.js";
import type { ControlProps } from "./controls.js";
import { Labelled } from "./Labelled.js";

export function ColourControl({ argument, value, change }: ControlProps<string>) {
    const id = useId();
    const set = (text: string) => {
        const colour = text.startsWith("#") ? text : `#${text}`;
        if (/^#[0-9a-f]{6}$/i.test(colour)) change(colour.toLowerCase());
    };
    return <Labelled argument={argument} id={id}>
        <div class="colour">
            <input type="color" id={id} value={value} onInput={(event) => set(event.currentTarget.value)} onChange={settle} />
            <input type="text" aria-label={`${argument.name}, as red, green and blue`} spellcheck={false} maxLength={7}
                value={value} onInput={(event) => set(event.currentTarget.value)} />
        </div>
    </Labelled>;
}
