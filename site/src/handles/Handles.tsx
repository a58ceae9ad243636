import type { Value } from "krlimage";
import { wordsOf } from "../model/words.js";
import { isPoint, type Size } from "../model/document.js";
import { flareOf } from "../model/flare.js";
import { isShape } from "../model/shape.js";
import { chain, effects, selected, setValue } from "../store.js";
import { FlareHandles } from "./FlareHandles.js";
import { Handle } from "./Handle.js";
import { ShapeHandles } from "./ShapeHandles.js";

function ValueHandles({ name, value, size, change }: { name: string; value: Value; size: Size; change: (value: Value) => void }) {
    if (isPoint(value)) return <Handle at={value} size={size} name={wordsOf(name)} move={({ x, y }) => change({ x, y })} />;
    if (isShape(value)) return <ShapeHandles value={value} size={size} change={change} />;
    const flare = flareOf(value);
    return flare ? <FlareHandles flare={flare} size={size} change={change} /> : null;
}

/** Handles on the picture for the points, shapes and flares of the selected effect. */
export function Handles({ size }: { size: Size }) {
    const step = chain.value.steps.find(({ id }) => id === selected.value);
    const effect = step && effects.value.get(step.effect);
    if (!step || !effect) return null;
    return <>{effect.arguments.map(({ name }) =>
        <ValueHandles key={name} name={name} value={step.values[name] ?? null} size={size}
            change={(value) => setValue(step.id, name, value)} />)}</>;
}
