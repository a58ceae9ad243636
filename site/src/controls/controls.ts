import type { Argument, Value } from "krlimage";

/** What every control gets. */
export interface ControlProps<V = Value> {
    readonly argument: Argument;
    readonly value: V;
    readonly change: (value: V) => void;
    /** Of lengths: how much larger the picture is than that of the example; 1 for other numbers. */
    readonly lengthScale: number;
}
