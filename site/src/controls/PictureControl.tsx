import { useId } from "preact/hooks";
import { addFile, complain, openSecond, pictures } from "../store.js";
import { SAMPLES } from "../pictures.js";
import type { ControlProps } from "./controls.js";
import { Labelled } from "./Labelled.js";

/** A second picture: a sample, one that was opened, or another file. */
export function PictureControl({ argument, value, change }: ControlProps<string>) {
    const id = useId();
    const names = [...new Set([...Object.keys(SAMPLES), ...pictures.value.keys()])];
    const choose = async (name: string) => {
        try {
            await openSecond(name);
            change(name);
        } catch (problem) {
            complain(problem);
        }
    };
    const open = async (file: File | undefined) => {
        if (!file) return;
        try {
            change(await addFile(file));
        } catch (problem) {
            complain(problem);
        }
    };
    return <Labelled argument={argument} id={id}>
        <div class="picture">
            <select id={id} value={value} onChange={(event) => void choose(event.currentTarget.value)}>
                {names.map((name) => <option key={name} value={name}>{name}</option>)}
            </select>
            <label class="button quiet">Open…
                <input type="file" accept="image/*,.pam" class="hidden-file"
                    onChange={(event) => void open(event.currentTarget.files?.[0])} />
            </label>
        </div>
    </Labelled>;
}
