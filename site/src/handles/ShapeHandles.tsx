import type { Value } from "krlimage";
import type { Size } from "../model/document.js";
import type { Point } from "../model/places.js";
import { cornersOf, pathOf, shapeOf, withoutCorner, withPoint, type Part } from "../model/shape.js";
import { chosenPart } from "../store.js";
import { Handle } from "./Handle.js";

/** The outline of a shape, its corners, and the curve handles of the chosen corner. */
export function ShapeHandles({ value, size, change }: { value: readonly Value[]; size: Size; change: (value: Value) => void }) {
    const corners = cornersOf(value, size);
    const chosen = Math.min(chosenPart.value, corners.length - 1);
    const { at, before, after } = corners[chosen]!;
    const set = (index: number, part: Part) => (to: Point) => change(shapeOf(withPoint(corners, index, part, to), size));
    const lines = [before, after].map(({ x, y }) => `M${at.x} ${at.y}L${x} ${y}`).join("");
    return <>
        <svg class="overlay" viewBox={`0 0 ${size.width} ${size.height}`} preserveAspectRatio="none" aria-hidden="true">
            <path class="halo" d={pathOf(corners) + lines} />
            <path class="outline" d={pathOf(corners)} />
            <path class="arm" d={lines} />
        </svg>
        {corners.map((corner, index) =>
            <Handle key={index} look="corner" at={corner.at} size={size} name={`Corner ${index + 1}`} isChosen={index === chosen}
                move={set(index, "at")} choose={() => { chosenPart.value = index; }}
                remove={() => change(shapeOf(withoutCorner(corners, index), size))} />)}
        <Handle look="curve" at={before} size={size} name={`Curve into corner ${chosen + 1}`} move={set(chosen, "before")} />
        <Handle look="curve" at={after} size={size} name={`Curve out of corner ${chosen + 1}`} move={set(chosen, "after")} />
    </>;
}
