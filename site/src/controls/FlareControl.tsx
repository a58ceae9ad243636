import { useId } from "preact/hooks";
import { FLARE_KINDS, newElement, settingArgument, valueOfFlare, withSetting, type Flare } from "../model/flare.js";
import { wordsOf } from "../model/words.js";
import { chain, chosenPart } from "../store.js";
import { Icon } from "../studio/Icon.js";
import { Labelled } from "./Labelled.js";
import { ScriptText, type TreeProps } from "./ScriptText.js";
import { ValueControl } from "./ValueControl.js";

function ElementSettings({ flare, index, change }: { flare: Flare; index: number; change: TreeProps["change"] }) {
    const { size } = chain.value;
    return <div class="element-settings">
        {Object.entries(flare[index]!.settings).map(([name, value]) => {
            const argument = settingArgument(name);
            return argument && <ValueControl key={name} argument={argument} value={value} isLength={argument.isLength} size={size}
                change={(next) => change(valueOfFlare(withSetting(flare, [index], name, next)))} />;
        })}
    </div>;
}

/** The elements of a flare, each with its settings. */
export function FlareControl(props: TreeProps & { flare: Flare }) {
    const { argument, flare, change } = props;
    const id = useId();
    const chosen = Math.min(chosenPart.value, flare.length - 1);
    const set = (next: Flare, part: number) => {
        change(valueOfFlare(next));
        chosenPart.value = part;
    };
    const add = (kind: string) =>
        set([...flare, newElement(kind, flare[chosen]!.settings.origin!, chain.value.size)], flare.length);
    return <Labelled argument={{ name: argument.name, meaning: "in the order of painting" }} id={id} group>
        <ul class="elements">
            {flare.map(({ kind }, index) => <li key={index}>
                <div class="head">
                    <button type="button" class="title" aria-expanded={index === chosen} onClick={() => { chosenPart.value = index; }}>
                        {wordsOf(kind)}</button>
                    <button type="button" class="tool" aria-label={`Remove element ${index + 1}, ${wordsOf(kind)}`} title="Remove"
                        disabled={flare.length < 2} onClick={() => set(flare.filter((_, at) => at !== index), Math.max(0, index - 1))}>
                        <Icon name="remove" /></button>
                </div>
                {index === chosen && <ElementSettings flare={flare} index={index} change={change} />}
            </li>)}
        </ul>
        <select aria-label="Add an element" value="" onChange={(event) => {
            add(event.currentTarget.value);
            event.currentTarget.value = "";
        }}>
            <option value="" disabled>Add an element…</option>
            {FLARE_KINDS.map((kind) => <option key={kind} value={kind}>{wordsOf(kind)}</option>)}
        </select>
        <ScriptText {...props} />
    </Labelled>;
}
