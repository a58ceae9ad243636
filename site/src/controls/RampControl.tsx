import { useId, useRef, useState } from "preact/hooks";
import { settle } from "../store.js";
import type { ControlProps } from "./controls.js";
import { Labelled } from "./Labelled.js";

type Stops = Readonly<Record<string, string>>;
type Stop = readonly [place: number, colour: string];

const clamp = (place: number) => Math.min(100, Math.max(0, Math.round(place)));

function mixed(a: Stop, b: Stop, place: number): string {
    const share = (place - a[0]) / (b[0] - a[0] || 1);
    const level = (at: number) => {
        const [from, to] = [a, b].map(([, colour]) => parseInt(colour.slice(at, at + 2), 16)) as [number, number];
        return Math.round(from + (to - from) * share).toString(16).padStart(2, "0");
    };
    return `#${level(1)}${level(3)}${level(5)}`;
}

/** Colours at places from 0 to 100 on a bar. */
export function RampControl({ argument, value, change }: ControlProps<Stops>) {
    const id = useId();
    const bar = useRef<HTMLDivElement>(null);
    const [chosen, choose] = useState(0);
    const stops = Object.entries(value).map(([place, colour]): Stop => [Number(place), colour]).sort((a, b) => a[0] - b[0]);
    const current = Math.min(chosen, stops.length - 1);
    const set = (next: readonly Stop[]) => change(Object.fromEntries(next));
    const taken = (place: number) => stops.some(([other]) => other === place);

    const move = (index: number, to: number) => {
        const place = clamp(to);
        if (taken(place)) return;
        const next = stops.map((stop, at): Stop => at === index ? [place, stop[1]] : stop).sort((a, b) => a[0] - b[0]);
        set(next);
        choose(next.findIndex(([other]) => other === place));
    };
    const add = (at: number) => {
        const place = clamp(at);
        if (taken(place)) return;
        const after = stops.findIndex(([other]) => other > place);
        const right = stops[after < 0 ? stops.length - 1 : after]!, left = stops[after <= 0 ? 0 : after - 1]!;
        const next = [...stops, [place, mixed(left, right, place)] as Stop].sort((a, b) => a[0] - b[0]);
        set(next);
        choose(next.findIndex(([other]) => other === place));
    };
    const remove = (index: number) => {
        if (stops.length > 1) set(stops.filter((_, at) => at !== index));
    };
    const placeOf = (event: PointerEvent | MouseEvent) => {
        const { left, width } = bar.current!.getBoundingClientRect();
        return 100 * (event.clientX - left) / width;
    };
    const onKey = (event: KeyboardEvent, index: number) => {
        const by = { ArrowLeft: -1, ArrowDown: -1, ArrowRight: 1, ArrowUp: 1, PageUp: 10, PageDown: -10 }[event.key];
        if (by !== undefined) move(index, stops[index]![0] + by);
        else if (event.key === "Delete" || event.key === "Backspace") remove(index);
        else return;
        event.preventDefault();
    };

    return <Labelled argument={argument} id={id} group>
        <div class="ramp" ref={bar} onDblClick={(event) => add(placeOf(event))}
            style={{ background: `linear-gradient(to right, ${stops.map(([place, colour]) => `${colour} ${place}%`).join(", ")})` }}>
            {stops.map(([place, colour], index) =>
                <button key={index} type="button" role="slider" class={index === current ? "stop chosen" : "stop"}
                    aria-label={`Colour ${index + 1}, ${colour}`} aria-valuemin={0} aria-valuemax={100} aria-valuenow={place}
                    style={{ left: `${place}%`, background: colour }}
                    onFocus={() => choose(index)} onKeyDown={(event) => onKey(event, index)}
                    onPointerDown={(event) => { choose(index); event.currentTarget.setPointerCapture(event.pointerId); }}
                    onPointerMove={(event) => { if (event.currentTarget.hasPointerCapture(event.pointerId)) move(current, placeOf(event)); }}
                    onPointerUp={settle} />)}
        </div>
        <div class="colour">
            <input type="color" aria-label={`Colour at ${stops[current]?.[0]}`} value={stops[current]?.[1] ?? "#000000"}
                onInput={(event) => set(stops.map((stop, at): Stop => at === current ? [stop[0], event.currentTarget.value] : stop))}
                onChange={settle} />
            <span class="hint">at {stops[current]?.[0]}</span>
            <button type="button" class="quiet" onClick={() => add(widestGap(stops))}>Add</button>
            <button type="button" class="quiet" disabled={stops.length < 2} onClick={() => remove(current)}>Remove</button>
        </div>
    </Labelled>;
}

/** The middle of the widest gap, where a new colour has most room. */
function widestGap(stops: readonly Stop[]): number {
    const places = [0, ...stops.map(([place]) => place), 100];
    const gaps = places.slice(1).map((place, index) => ({ middle: (place + places[index]!) / 2, width: place - places[index]! }));
    return gaps.reduce((best, gap) => gap.width > best.width ? gap : best).middle;
}
