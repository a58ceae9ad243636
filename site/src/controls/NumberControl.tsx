import type { Argument } from "krlimage";
import { useId } from "preact/hooks";
import { settle } from "../store.js";
import type { ControlProps } from "./controls.js";
import { Labelled } from "./Labelled.js";

/** Steps of a slider for real numbers. */
const STEPS = 200;

/** A step with one digit: 0.05, 0.2, 10. */
function niceStep(span: number): number {
    const raw = span / STEPS;
    const power = 10 ** Math.floor(Math.log10(raw));
    return power * (raw / power >= 5 ? 5 : raw / power >= 2 ? 2 : 1);
}

/** What is sensible to try, as far as the picture is larger or smaller than that of the example. */
function rangeOf({ range: [from, to] }: Argument, scale: number, value: number): [number, number] {
    return [Math.min(from * scale, value), Math.max(to * scale, value)];
}

export function NumberControl({ argument, value, change, lengthScale }: ControlProps<number>) {
    const id = useId();
    const isInteger = argument.kind === "integer";
    let [from, to] = rangeOf(argument, lengthScale, value);
    if (isInteger) [from, to] = [Math.floor(from), Math.ceil(to)];
    const step = isInteger ? 1 : niceStep(to - from || 1);
    const set = (text: string) => {
        const number = Number(text);
        if (text.trim() === "" || !Number.isFinite(number)) return;
        change(isInteger ? Math.round(number) : number);
    };
    return (
        <Labelled argument={argument} id={id}>
            <div class="number">
                <input type="range" id={id} min={from} max={to} step={step} value={value}
                    style={{ "--share": `${100 * (value - from) / (to - from || 1)}%` }}
                    onInput={(event) => set(event.currentTarget.value)} onChange={settle} />
                <input type="number" aria-label={`${argument.name}, as a number`} step={step} value={Number(value.toFixed(4))}
                    onInput={(event) => set(event.currentTarget.value)} onChange={settle} />
            </div>
        </Labelled>
    );
}
