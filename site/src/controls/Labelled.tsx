import type { Argument } from "krlimage";
import type { ComponentChildren } from "preact";

/** `theColor` as people write it: "The color". */
export function wordsOf(name: string): string {
    const words = name.replace(/(Int|Float)$/, "").replaceAll("_", " ").replace(/([A-Z]{2,})(to|with)(?=[A-Z])/g, "$1 $2 ")
        .replace(/([a-z\d])([A-Z])/g, "$1 $2").replace(/([A-Z]+)([A-Z][a-z])/g, "$1 $2");
    const lower = words.split(" ").map((word) => /^[A-Z]{2,}$/.test(word) ? word : word.toLowerCase()).join(" ");
    return lower[0]!.toUpperCase() + lower.slice(1);
}

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
