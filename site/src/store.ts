import { batch, computed, effect, signal } from "@preact/signals";
import type { Family, Picture, Value } from "krlimage";
import { addressOf, chainOf } from "./model/address.js";
import { EngineClient } from "./engine/client.js";
import type { Failure, Rendered, Start } from "./engine/protocol.js";
import { moved, newStep, scaledChain, type Chain, type EffectInfo, type Size, type Step, type Values } from "./model/document.js";
import * as History from "./model/history.js";
import { wordsOf } from "./model/words.js";
import { pictureOfFile, SAMPLES, type SampleName } from "./pictures.js";

/** The most pixels of the picture that is worked on while something is being set. */
const PREVIEW_PIXELS = 500_000;
/** How long nothing may change before the full size is worked on, in milliseconds. */
const PAUSE = 400;

/** The state of the page, and what changes it. */

export const engine = new EngineClient();

export const start = signal<Start | undefined>(undefined);
export const families = computed<readonly Family[]>(() => start.value?.families ?? []);
export const effects = computed<ReadonlyMap<string, EffectInfo>>(() => new Map(families.value.flatMap(({ heading, effects: members }) =>
    members.map((member) => [member.name, { ...member, heading, lengths: start.value!.lengths[member.name] ?? [] }]))));

export interface OpenPicture {
    readonly name: string;
    readonly picture: Picture;
}

/** Pictures by name, for effects that take a second one. */
export const pictures = signal<ReadonlyMap<string, Picture>>(new Map());
/** The picture that is worked on. */
export const source = signal<OpenPicture | undefined>(undefined);

const history = signal(History.begin<Chain>({ size: { width: 960, height: 640 }, steps: [] }));
export const chain = computed(() => history.value.present);
export const canUndo = computed(() => history.value.past.length > 0);
export const canRedo = computed(() => history.value.future.length > 0);
/** The step whose settings and handles are shown. */
export const selected = signal<number | undefined>(undefined);
/** The corner of a shape, or the element of a flare, that is worked on. */
export const chosenPart = signal(0);

export const rendered = signal<Rendered | undefined>(undefined);
/** Whether `rendered` has every pixel of the picture. */
export const isFull = signal(false);
export const isBusy = signal(false);

/** What is said to everybody, those who cannot see included. */
export const message = signal<{ readonly text: string; readonly isProblem: boolean }>({ text: "", isProblem: false });

export function say(text: string): void {
    message.value = { text, isProblem: false };
}

export function complain(problem: unknown): void {
    message.value = { text: problem instanceof Error ? problem.message : String(problem), isProblem: true };
}

const sizeOf = ({ width, height }: Picture): Size => ({ width, height });

// ---- The chain

function changeChain(steps: readonly Step[], kind = ""): void {
    history.value = History.change(history.value, { ...chain.value, steps }, kind);
}

/** Ends a change that goes on while a slider or a handle moves. */
export function settle(): void {
    history.value = History.settle(history.value);
}

export function undo(): void {
    history.value = History.undo(history.value);
    fitChain();
    say(canUndo.value ? "Undone" : "Undone: nothing is left to undo");
}

export function redo(): void {
    history.value = History.redo(history.value);
    fitChain();
    say("Redone");
}

/** The chain in pixels of the open picture, whichever picture it was made on. */
function fitChain(): void {
    const picture = source.value?.picture;
    const { present } = history.value;
    if (picture && (picture.width !== present.size.width || picture.height !== present.size.height))
        history.value = { ...history.value, present: scaledChain(present, sizeOf(picture), effects.value) };
}

export async function addStep(name: string): Promise<void> {
    const values = await engine.ask("example", name, chain.value.size);
    await ensurePictures(Object.values(values));
    const step = newStep(name, values);
    batch(() => {
        changeChain([...chain.value.steps, step]);
        selected.value = step.id;
    });
    say(`${wordsOf(name)} added as step ${chain.value.steps.length}`);
}

export function removeStep(id: number): void {
    const index = chain.value.steps.findIndex((step) => step.id === id);
    const removed = chain.value.steps[index];
    if (!removed) return;
    const rest = chain.value.steps.filter((step) => step.id !== id);
    batch(() => {
        changeChain(rest);
        if (selected.value === id) selected.value = rest[Math.min(index, rest.length - 1)]?.id;
    });
    say(`${wordsOf(removed.effect)} removed`);
}

export function duplicateStep(id: number): void {
    const { steps } = chain.value;
    const index = steps.findIndex((step) => step.id === id);
    const copy = newStep(steps[index]!.effect, steps[index]!.values, steps[index]!.on);
    batch(() => {
        changeChain([...steps.slice(0, index + 1), copy, ...steps.slice(index + 1)]);
        selected.value = copy.id;
    });
    say(`${wordsOf(copy.effect)} duplicated`);
}

export function moveStep(id: number, by: number): void {
    const from = chain.value.steps.findIndex((step) => step.id === id);
    const steps = moved(chain.value.steps, from, from + by);
    if (steps === chain.value.steps) return;
    changeChain(steps);
    say(`${wordsOf(steps[from + by]!.effect)} is now step ${from + by + 1}`);
}

function changeStep(id: number, change: (step: Step) => Step, kind = ""): void {
    changeChain(chain.value.steps.map((step) => step.id === id ? change(step) : step), kind);
}

export function switchStep(id: number): void {
    changeStep(id, (step) => ({ ...step, on: !step.on }));
}

export function setValue(id: number, argument: string, value: Value): void {
    changeStep(id, (step) => ({ ...step, values: { ...step.values, [argument]: value } }), `${id} ${argument}`);
}

export async function resetStep(id: number): Promise<void> {
    const step = chain.value.steps.find((entry) => entry.id === id)!;
    const values = await engine.ask("example", step.effect, chain.value.size);
    changeStep(id, (entry) => ({ ...entry, values }));
    say(`${wordsOf(step.effect)} has its example values again`);
}

export function clearChain(): void {
    batch(() => {
        changeChain([]);
        selected.value = undefined;
    });
}

/** Replaces the chain by a look. */
export async function openLook(text: string): Promise<void> {
    const { title, steps, left } = await engine.ask("readLook", text, chain.value.size);
    await ensurePictures(steps.flatMap(({ values }) => Object.values(values)));
    const made = steps.map(({ effect: name, values }) => newStep(name, values));
    batch(() => {
        changeChain(made);
        selected.value = made[0]?.id;
    });
    if (left.length > 0) complain(new Error(`The page cannot do all of this look; it left out ${left.join(", ")}`));
    else say(`Look opened: ${title}`);
}

export async function lookText(title: string): Promise<string> {
    const calls = await engine.ask("calls", chain.value.steps.filter(({ on }) => on), chain.value.size, "look");
    return engine.ask("writeLook", title, calls);
}

// ---- Pictures

function keep(name: string, picture: Picture): Promise<void> {
    pictures.value = new Map(pictures.value).set(name, picture);
    return engine.ask("keep", name, picture);
}

/** Loads samples that values name. */
async function ensurePictures(values: readonly Value[]): Promise<void> {
    const missing = values.filter((value): value is SampleName =>
        typeof value === "string" && value in SAMPLES && !pictures.value.has(value));
    await Promise.all(missing.map(loadSample));
}

async function loadSample(name: SampleName): Promise<Picture> {
    const known = pictures.value.get(name);
    if (known) return known;
    const response = await fetch(`samples/${name}.png`);
    if (!response.ok) throw new Error(`The sample ${name} cannot be loaded`);
    const picture = await pictureOfFile(await response.blob());
    await keep(name, picture);
    return picture;
}

function show(name: string, picture: Picture): void {
    batch(() => {
        source.value = { name, picture };
        fitChain();
        rendered.value = undefined;
    });
    say(`${name}, ${picture.width} by ${picture.height} pixels`);
}

export async function openSample(name: SampleName): Promise<void> {
    show(name, await loadSample(name));
}

export async function openFile(file: File): Promise<void> {
    const name = await addFile(file);
    show(name, pictures.value.get(name)!);
}

/** Makes sure that a picture is there for effects that take a second one. */
export async function openSecond(name: string): Promise<void> {
    if (!pictures.value.has(name)) await loadSample(name as SampleName);
}

/** Keeps a file's picture for effects that take a second one. */
export async function addFile(file: File): Promise<string> {
    const picture = await pictureOfFile(file);
    const name = file.name.replace(/\.\w+$/, "") || "pasted";
    await keep(name, picture);
    return name;
}

// ---- Rendering

function previewSize({ width, height }: Size): Size {
    const share = Math.min(1, Math.sqrt(PREVIEW_PIXELS / (width * height)));
    return { width: Math.max(1, Math.round(width * share)), height: Math.max(1, Math.round(height * share)) };
}

let pause: ReturnType<typeof setTimeout> | undefined;
let asked = 0;

async function render(name: string, wanted: Chain, size: Size): Promise<void> {
    const own = ++asked;
    isBusy.value = true;
    try {
        const outcome = await engine.ask("render", name, wanted, size);
        if (!outcome || own !== asked) return;
        batch(() => {
            rendered.value = outcome;
            isFull.value = size.width === wanted.size.width && size.height === wanted.size.height;
            if (outcome.failure) complain(new Error(outcome.failure.message));
        });
    } catch (problem) {
        if (own === asked) complain(problem);
    } finally {
        if (own === asked) isBusy.value = false;
    }
}

/** Works on the reduced picture now, and on the whole after a pause. */
async function renderSoon(name: string, wanted: Chain): Promise<void> {
    clearTimeout(pause);
    const size = previewSize(wanted.size);
    await render(name, wanted, size);
    const isCurrent = wanted === chain.value && name === source.value?.name;
    if (isCurrent && size.width < wanted.size.width)
        pause = setTimeout(() => void render(name, wanted, wanted.size), PAUSE);
}

/** Follows the chain and the picture. */
function follow(): void {
    const open = source.value;
    if (open && open.picture.width === chain.value.size.width) void renderSoon(open.name, chain.value);
}

/** The result at full size, worked out now if it is not there yet. */
export async function fullResult(): Promise<Picture> {
    clearTimeout(pause);
    const isThere = () => isFull.value && !isBusy.value && rendered.value !== undefined;
    // A change that comes meanwhile makes its own request, and this one answers nothing.
    while (!isThere()) await render(source.value!.name, chain.value, chain.value.size);
    const { failure, picture } = rendered.value!;
    if (failure) throw new Error(failure.message);
    return picture;
}

// ---- The beginning

export async function begin(): Promise<void> {
    start.value = await engine.ask("start");
    const shared = chainOf(location.hash, effects.value);
    if (shared) {
        await ensurePictures(shared.steps.flatMap(({ values }) => Object.values(values)));
        history.value = History.begin(shared);
        selected.value = shared.steps[0]?.id;
    }
    await openSample("landscape");
    effect(follow);
    effect(() => {
        const address = addressOf(chain.value, effects.value);
        if (address !== location.hash) window.history.replaceState(null, "", address || location.pathname + location.search);
    });
    window.addEventListener("hashchange", () => {
        const next = chainOf(location.hash, effects.value);
        if (!next) return;
        history.value = History.change(history.value, next);
        fitChain();
    });
}

export type { Failure, Values };
