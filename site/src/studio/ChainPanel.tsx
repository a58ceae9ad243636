import { Control } from "../controls/Control.js";
import { wordsOf } from "../model/words.js";
import { shownArguments, type Step } from "../model/document.js";
import {
    chain, clearChain, complain, duplicateStep, effects, moveStep, removeStep, rendered, resetStep, selected, setValue, switchStep,
} from "../store.js";
import { Icon, type IconName } from "./Icon.js";

function Tool({ icon, label, action, disabled = false }: { icon: IconName; label: string; action: () => void; disabled?: boolean }) {
    return <button type="button" class="tool" aria-label={label} title={label} disabled={disabled} onClick={action}><Icon name={icon} /></button>;
}

function timeText(milliseconds: number | undefined): string {
    if (milliseconds === undefined) return "";
    return milliseconds < 10 ? `${milliseconds.toFixed(1)} ms` : `${Math.round(milliseconds)} ms`;
}

/** The step that is being dragged to another place. */
let dragged: { readonly id: number; readonly index: number } | undefined;

function StepCard({ step, index, count }: { step: Step; index: number; count: number }) {
    const effect = effects.value.get(step.effect)!;
    const name = wordsOf(effect.name);
    const isOpen = selected.value === step.id;
    const failure = rendered.value?.failure?.step === index ? rendered.value.failure : undefined;
    const measured = rendered.value?.measured[index];
    const onKey = (event: KeyboardEvent) => {
        if (!event.altKey || event.target !== event.currentTarget) return;
        if (event.key === "ArrowUp") moveStep(step.id, -1);
        else if (event.key === "ArrowDown") moveStep(step.id, 1);
        else return;
        event.preventDefault();
    };
    return <li onDragOver={(event) => { if (dragged !== undefined) event.preventDefault(); }}
        onDrop={(event) => {
            if (dragged === undefined) return;
            event.preventDefault();
            moveStep(dragged.id, index - dragged.index);
        }} class={`step${isOpen ? " open" : ""}${step.on ? "" : " off"}${failure ? " failed" : ""}`}>
        <div class="head" draggable onDragStart={(event) => {
            dragged = { id: step.id, index };
            event.dataTransfer!.effectAllowed = "move";
        }} onDragEnd={() => { dragged = undefined; }}>
            <input type="checkbox" class="switch" checked={step.on} aria-label={`${name} on`} onChange={() => switchStep(step.id)} />
            <button type="button" class="title" aria-expanded={isOpen} onKeyDown={onKey}
                onClick={() => { selected.value = isOpen ? undefined : step.id; }}>
                <span>{name}</span><span class="time">{timeText(rendered.value?.times[index])}</span>
            </button>
            <Tool icon="up" label={`Move ${name} up`} action={() => moveStep(step.id, -1)} disabled={index === 0} />
            <Tool icon="down" label={`Move ${name} down`} action={() => moveStep(step.id, 1)} disabled={index === count - 1} />
            <Tool icon="remove" label={`Remove ${name}`} action={() => removeStep(step.id)} />
        </div>
        {failure && <p class="problem">{failure.message}</p>}
        {measured && <p class="measured">{measured}</p>}
        {isOpen && <div class="settings">
            <p class="summary">{effect.summary}</p>
            {shownArguments(effect).map((argument) => argument.name in step.values &&
                <Control key={argument.name} effect={effect} argument={argument} value={step.values[argument.name]!}
                    change={(value) => setValue(step.id, argument.name, value)} />)}
            <div class="actions">
                <button type="button" class="quiet" onClick={() => { resetStep(step.id).catch(complain); }}>Reset</button>
                <button type="button" class="quiet" onClick={() => duplicateStep(step.id)}>Duplicate</button>
            </div>
        </div>}
    </li>;
}

/** The effects that are applied, in order. */
export function ChainPanel() {
    const { steps } = chain.value;
    return <section class="chain" aria-label="Chain of effects" tabIndex={-1}>
        <header><h2>Chain</h2>
            {steps.length > 0 && <button type="button" class="quiet" onClick={clearChain}>Clear</button>}</header>
        {steps.length === 0
            ? <p class="empty">Choose an effect to begin. Each one works on the picture that the one before it made.</p>
            : <ol class="steps">{steps.map((step, index) => <StepCard key={step.id} step={step} index={index} count={steps.length} />)}</ol>}
    </section>;
}
