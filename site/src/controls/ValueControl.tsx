import type { Argument, Value } from "krlimage";
import type { Point, Size } from "../model/places.js";
import { ChoiceControl } from "./ChoiceControl.js";
import { ColourControl } from "./ColourControl.js";
import type { ControlProps } from "./controls.js";
import { NumberControl } from "./NumberControl.js";
import { PictureControl } from "./PictureControl.js";
import { PointControl } from "./PointControl.js";
import { RampControl } from "./RampControl.js";

/** The shorter side of the picture that ranges are given for. */
const EXAMPLE_SIDE = 640;

export interface ValueProps {
    readonly argument: Argument;
    readonly value: Value;
    readonly change: (value: Value) => void;
    readonly isLength: boolean;
    /** Of the picture. */
    readonly size: Size;
}

/** The control for a value that is no structure, by its kind. */
export function ValueControl({ argument, value, change, isLength, size }: ValueProps) {
    const lengthScale = isLength ? Math.min(size.width, size.height) / EXAMPLE_SIDE : 1;
    // The catalogue says which kind the value is of.
    const props = <V,>() => ({ argument, value, change, lengthScale }) as unknown as ControlProps<V>;
    switch (argument.kind) {
        case "integer":
        case "real": return <NumberControl {...props<number>()} />;
        case "symbol": return <ChoiceControl {...props<string>()} />;
        case "colour": return <ColourControl {...props<string>()} />;
        case "point": return <PointControl {...props<Point>()} />;
        case "colours": return <RampControl {...props<Record<string, string>>()} />;
        case "picture":
        case "tree": return <PictureControl {...props<string>()} />;
    }
}
