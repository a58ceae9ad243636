import { useId } from "preact/hooks";
import type { ControlProps } from "./controls.js";
import { Labelled } from "./Labelled.js";

type Point = { readonly x: number; readonly y: number };

/** The place of a point in numbers; the picture has a handle for it. */
export function PointControl({ argument, value, change }: ControlProps<Point>) {
    const id = useId();
    const side = (axis: "x" | "y") => <label class="coordinate">{axis}
        <input type="number" step={1} value={value[axis]}
            onInput={(event) => {
                const number = event.currentTarget.valueAsNumber;
                if (Number.isFinite(number)) change({ ...value, [axis]: Math.round(number) });
            }} />
    </label>;
    return <Labelled argument={argument} id={id} group>
        <div class="point">{side("x")}{side("y")}<span class="hint">or drag its handle on the picture</span></div>
    </Labelled>;
}
