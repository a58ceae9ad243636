import type { Argument, Value } from "krlimage";
import type { EffectInfo } from "../model/document.js";
import { chain } from "../store.js";
import { ChoiceControl } from "./ChoiceControl.js";
import { ColourControl } from "./ColourControl.js";
import type { ControlProps } from "./controls.js";
import { NumberControl } from "./NumberControl.js";
import { PictureControl } from "./PictureControl.js";
import { PointControl } from "./PointControl.js";
import { RampControl } from "./RampControl.js";
import { TreeControl } from "./TreeControl.js";

/** The shorter side of the picture that ranges are given for. */
const EXAMPLE_SIDE = 640;

/** The control for an argument, by its kind. */
export function Control({ effect, argument, value, change }: {
    effect: EffectInfo; argument: Argument; value: Value; change: (value: Value) => void;
}) {
    const { width, height } = chain.value.size;
    const lengthScale = effect.lengths.includes(argument.name) ? Math.min(width, height) / EXAMPLE_SIDE : 1;
    // The catalogue says which kind the value is of.
    const props = <V,>() => ({ argument, value, change, lengthScale }) as unknown as ControlProps<V>;
    switch (argument.kind) {
        case "integer":
        case "real": return <NumberControl {...props<number>()} />;
        case "symbol": return <ChoiceControl {...props<string>()} />;
        case "colour": return <ColourControl {...props<string>()} />;
        case "point": return <PointControl {...props<{ x: number; y: number }>()} />;
        case "colours": return <RampControl {...props<Record<string, string>>()} />;
        case "picture": return <PictureControl {...props<string>()} />;
        case "tree":
            return typeof value === "string" ? <PictureControl {...props<string>()} /> : <TreeControl {...props<Value>()} method={effect.name} />;
    }
}
