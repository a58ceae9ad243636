import { useId } from "preact/hooks";
import { wordsOf } from "../model/words.js";
import type { ControlProps } from "./controls.js";
import { Labelled } from "./Labelled.js";

/** Letters that fit side by side. */
const SHORT = 24;

export function ChoiceControl({ argument, value, change }: ControlProps<string>) {
    const id = useId();
    const { choices } = argument;
    const current = choices.find((choice) => choice.toLowerCase() === value.toLowerCase()) ?? value;
    if (choices.length === 0)
        return <Labelled argument={argument} id={id}>
            <input id={id} type="text" value={value} onChange={(event) => change(event.currentTarget.value)} />
        </Labelled>;
    if (choices.length <= 4 && choices.join("").length <= SHORT)
        return <Labelled argument={argument} id={id} group>
            <div class="segments">
                {choices.map((choice) => <label key={choice}>
                    <input type="radio" name={id} checked={choice === current} onChange={() => change(choice)} />
                    <span>{wordsOf(choice)}</span>
                </label>)}
            </div>
        </Labelled>;
    return <Labelled argument={argument} id={id}>
        <select id={id} value={current} onChange={(event) => change(event.currentTarget.value)}>
            {choices.map((choice) => <option key={choice} value={choice}>{wordsOf(choice)}</option>)}
        </select>
    </Labelled>;
}
