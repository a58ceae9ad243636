import type { Argument } from "krlimage";
import type { ComponentChildren } from "preact";
import { wordsOf } from "../model/words.js";

/** A control under its name, with what it means. */
export function Labelled({ argument, id, group, children }: {
    argument: Pick<Argument, "name" | "meaning">; id: string; group?: boolean; children: ComponentChildren;
}) {
    const name = wordsOf(argument.name);
    const meaning = argument.meaning && <span class="meaning">{argument.meaning}</span>;
    return group
        ? <div class="control" role="group" aria-labelledby={`${id}-name`}>
            <div class="label" id={`${id}-name`}>{name}{meaning}</div>{children}
        </div>
        : <div class="control"><label class="label" for={id}>{name}{meaning}</label>{children}</div>;
}
