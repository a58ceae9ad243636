import type { Family, Picture, ShippedLook, Value } from "krlimage";
import type { Chain, Size, Step, Values } from "../model/document.js";

/** What the worker knows from the start. */
export interface Start {
    readonly families: readonly Family[];
    /** Arguments that are lengths, by effect. */
    readonly lengths: Readonly<Record<string, readonly string[]>>;
    readonly looks: readonly (ShippedLook & { readonly title: string; readonly description: string })[];
    readonly release: string;
    readonly simd: boolean;
    readonly threads: number;
}

/** What failed, and in which step. */
export interface Failure {
    readonly message: string;
    /** The place in the chain, from 0. */
    readonly step?: number | undefined;
    readonly argument?: string | undefined;
    /** Of a script, from 1. */
    readonly line?: number | undefined;
    readonly column?: number | undefined;
    readonly output?: string | undefined;
}

export interface Rendered {
    readonly picture: Picture;
    /** Milliseconds of each step when it last ran; none for those that are off. */
    readonly times: readonly (number | undefined)[];
    /** What the steps measured, in words. */
    readonly measured: readonly (string | undefined)[];
    readonly failure: Failure | undefined;
}

export interface ReadLook {
    readonly title: string;
    readonly steps: readonly { readonly effect: string; readonly values: Values }[];
    /** What the page cannot take over. */
    readonly left: readonly string[];
}

export interface Printed {
    readonly output: string;
    readonly images: Readonly<Record<string, Picture>>;
    readonly milliseconds: number;
}

/** How a call is written: with lengths in percent of the picture, with lengths in pixels, or as Lingo. */
export type CallForm = "look" | "pixels" | "lingo";

/** What the page asks of the worker. */
export interface Services {
    start(): Start;
    /** Keeps a picture under a name. */
    keep(name: string, picture: Picture): void;
    /** The chain's steps on a kept picture, at a size; `undefined` if a later request came meanwhile. */
    render(source: string, chain: Chain, size: Size): Rendered | undefined;
    /** An effect's example on a small copy of a kept picture. */
    thumbnail(source: string, effect: string, size: Size): Picture;
    /** The example's values for a picture of this size. */
    example(effect: string, size: Size): Values;
    /** Calls of steps as texts. */
    calls(steps: readonly Step[], size: Size, form: CallForm): string[];
    readLook(text: string, size: Size): ReadLook;
    writeLook(title: string, calls: readonly string[]): string;
    /** The value that a text writes, and the text of an argument's value. */
    parse(text: string): Value;
    write(effect: string, argument: string, value: Value): string;
    runLingo(source: string, pictures: readonly string[]): Printed;
}

/** The same, where an answer may take time. */
export type AsyncServices = {
    [S in keyof Services]: (...given: Parameters<Services[S]>) => ReturnType<Services[S]> | Promise<ReturnType<Services[S]>>;
};

export type ServiceName = keyof Services;

export interface Request {
    readonly id: number;
    readonly service: ServiceName;
    readonly given: readonly unknown[];
}

export interface Reply {
    readonly id: number;
    readonly answer?: unknown;
    readonly failure?: Failure;
}
