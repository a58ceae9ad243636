import type { Value } from "krlimage";
import { wordsOf } from "../model/words.js";
import { isPoint, type Size } from "../model/document.js";
import { valueOfFlare, withSetting, type Flare } from "../model/flare.js";
import type { Point } from "../model/places.js";
import { minus } from "../model/shape.js";
import { chosenPart } from "../store.js";
import { Handle } from "./Handle.js";

/** The elements whose middle is at the same place, by that place. */
function groupsOf(flare: Flare): ReadonlyMap<string, number[]> {
    const groups = new Map<string, number[]>();
    flare.forEach(({ settings }, index) => {
        const place = JSON.stringify(settings.origin);
        groups.set(place, [...groups.get(place) ?? [], index]);
    });
    return groups;
}

/** A handle for every place with elements of a flare, and one for the rim of the chosen element. */
export function FlareHandles({ flare, size, change }: { flare: Flare; size: Size; change: (value: Value) => void }) {
    const chosen = Math.min(chosenPart.value, flare.length - 1);
    const { origin, radius, handle } = flare[chosen]!.settings;
    const middle = origin as unknown as Point;
    const set = (indices: readonly number[], name: string, value: Value) => change(valueOfFlare(withSetting(flare, indices, name, value)));
    const kindOf = (index: number) => wordsOf(flare[index]!.kind);
    return <>
        {typeof radius === "number" &&
            <svg class="overlay" viewBox={`0 0 ${size.width} ${size.height}`} preserveAspectRatio="none" aria-hidden="true">
                <circle class="halo" cx={middle.x} cy={middle.y} r={Math.abs(radius)} />
                <circle class="arm" cx={middle.x} cy={middle.y} r={Math.abs(radius)} />
            </svg>}
        {[...groupsOf(flare)].map(([place, members]) =>
            <Handle key={members[0]} at={JSON.parse(place) as Point} size={size} isChosen={members.includes(chosen)}
                name={members.length > 1 ? `${kindOf(members[0]!)} and ${members.length - 1} more` : kindOf(members[0]!)}
                move={(to) => set(members, "origin", { x: to.x, y: to.y })}
                choose={() => { if (!members.includes(chosen)) chosenPart.value = members[0]!; }} />)}
        {typeof radius === "number" &&
            <Handle look="rim" at={{ x: middle.x + radius, y: middle.y }} size={size} name={`Radius of ${kindOf(chosen)}`}
                move={(to) => {
                    const { x, y } = minus(to, middle);
                    set([chosen], "radius", Math.round(Math.hypot(x, y)));
                }} />}
        {isPoint(handle ?? null) &&
            <Handle look="curve" at={handle as unknown as Point} size={size} name={`Handle of ${kindOf(chosen)}`}
                move={(to) => set([chosen], "handle", { x: to.x, y: to.y })} />}
    </>;
}
