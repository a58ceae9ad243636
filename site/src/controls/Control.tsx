import type { Argument, Value } from "krlimage";
import type { EffectInfo } from "../model/document.js";
import { flareOf } from "../model/flare.js";
import { isShape } from "../model/shape.js";
import { chain } from "../store.js";
import { FlareControl } from "./FlareControl.js";
import { ScriptText } from "./ScriptText.js";
import { ShapeControl } from "./ShapeControl.js";
import { ValueControl } from "./ValueControl.js";

/** The control for an argument of an effect. */
export function Control({ effect, argument, value, change }: {
    effect: EffectInfo; argument: Argument; value: Value; change: (value: Value) => void;
}) {
    if (argument.kind !== "tree" || typeof value === "string")
        return <ValueControl argument={argument} value={value} change={change} size={chain.value.size}
            isLength={effect.lengths.includes(argument.name)} />;
    const props = { argument, value, change, lengthScale: 1, method: effect.name };
    if (isShape(value)) return <ShapeControl {...props} value={value} />;
    const flare = flareOf(value);
    return flare ? <FlareControl {...props} flare={flare} /> : <ScriptText {...props} />;
}
