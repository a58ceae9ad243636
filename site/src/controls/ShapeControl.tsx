import type { Value } from "krlimage";
import { useId } from "preact/hooks";
import { cornersOf, shapeOf, withCorner, withoutCorner, type Corner } from "../model/shape.js";
import { chain, chosenPart } from "../store.js";
import { Labelled } from "./Labelled.js";
import { ScriptText, type TreeProps } from "./ScriptText.js";

/** The corners of a shape, which is drawn on the picture. */
export function ShapeControl(props: TreeProps & { value: readonly Value[] }) {
    const { argument, value, change } = props;
    const id = useId();
    const { size } = chain.value;
    const corners = cornersOf(value, size);
    const chosen = Math.min(chosenPart.value, corners.length - 1);
    const set = (next: readonly Corner[], part: number) => {
        change(shapeOf(next, size));
        chosenPart.value = part;
    };
    return <Labelled argument={{ name: argument.name, meaning: "drag its corners and curves on the picture" }} id={id} group>
        <p class="hint">Corner {chosen + 1} of {corners.length}</p>
        <div class="actions">
            <button type="button" class="quiet" onClick={() => set(withCorner(corners, chosen), chosen + 1)}>Add a corner</button>
            <button type="button" class="quiet" disabled={corners.length < 2}
                onClick={() => set(withoutCorner(corners, chosen), Math.max(0, chosen - 1))}>Remove it</button>
        </div>
        <ScriptText {...props} />
    </Labelled>;
}
