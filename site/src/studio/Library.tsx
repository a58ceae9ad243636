import { computed, signal } from "@preact/signals";
import type { Picture } from "krlimage";
import { useEffect, useRef } from "preact/hooks";
import type { EffectInfo, Size } from "../model/document.js";
import { asImageData } from "../pictures.js";
import { addStep, complain, effects, engine, families, source } from "../store.js";
import { wordsOf } from "../model/words.js";

const search = signal("");

/** Better matches first: the name, then words of the name, then what is said of the effect. */
function rank(effect: EffectInfo, words: readonly string[]): number {
    const name = wordsOf(effect.name).toLowerCase();
    const about = [effect.summary, effect.heading, ...effect.arguments.map(({ meaning }) => meaning)].join(" ").toLowerCase();
    let total = 0;
    for (const word of words) {
        if (name.startsWith(word)) total += 0;
        else if (name.includes(word) || effect.name.toLowerCase().includes(word)) total += 1;
        else if (about.includes(word)) total += 4;
        else return Infinity;
    }
    return total;
}

const found = computed(() => {
    const words = search.value.toLowerCase().split(/\s+/).filter(Boolean);
    if (words.length === 0) return undefined;
    return [...effects.value.values()].map((effect) => ({ effect, place: rank(effect, words) }))
        .filter(({ place }) => place < Infinity).sort((a, b) => a.place - b.place).map(({ effect }) => effect);
});

// ---- Small pictures of what effects do

const thumbnails = signal<ReadonlyMap<string, Picture>>(new Map());
const wanted = new Set<string>();
let isDrawing = false;
const LONG_SIDE = 132;

function thumbnailSize({ width, height }: Size): Size {
    const share = LONG_SIDE / Math.max(width, height);
    return { width: Math.max(1, Math.round(width * share)), height: Math.max(1, Math.round(height * share)) };
}

/** Draws one after the other, while nothing else is to be done. */
async function drawThumbnails(): Promise<void> {
    if (isDrawing) return;
    isDrawing = true;
    for (let name = [...wanted][0]; name !== undefined; name = [...wanted][0]) {
        wanted.delete(name);
        const open = source.value;
        if (!open) break;
        const picture = await engine.ask("thumbnail", open.name, name, thumbnailSize(open.picture));
        if (open === source.value) thumbnails.value = new Map(thumbnails.value).set(name, picture);
        await new Promise((resolve) => { requestIdleCallback(resolve, { timeout: 200 }); });
    }
    isDrawing = false;
}

let drawnFor: object | undefined;

/** A card asks for its thumbnail when it comes into view. */
function want(name: string): void {
    if (drawnFor !== source.value) {
        drawnFor = source.value;
        thumbnails.value = new Map();
        wanted.clear();
    }
    if (thumbnails.value.has(name)) return;
    wanted.add(name);
    drawThumbnails().catch(complain);
}

function Thumbnail({ name }: { name: string }) {
    const canvas = useRef<HTMLCanvasElement>(null);
    const picture = thumbnails.value.get(name);
    const open = source.value;
    useEffect(() => {
        const watch = new IntersectionObserver((entries) => {
            if (entries.some(({ isIntersecting }) => isIntersecting)) want(name);
        });
        watch.observe(canvas.current!);
        return () => watch.disconnect();
    }, [name, open]);
    useEffect(() => {
        if (!picture) return;
        canvas.current!.width = picture.width;
        canvas.current!.height = picture.height;
        canvas.current!.getContext("2d")!.putImageData(asImageData(picture), 0, 0);
    }, [picture]);
    return <canvas ref={canvas} class={picture ? "thumbnail drawn" : "thumbnail"} aria-hidden="true" />;
}

function Card({ effect }: { effect: EffectInfo }) {
    return <li>
        <button type="button" class="card" title={effect.summary} data-effect={effect.name}
            aria-label={`Add ${wordsOf(effect.name)}: ${effect.summary}`}
            onClick={() => { addStep(effect.name).catch(complain); }}>
            <Thumbnail name={effect.name} />
            <span>{wordsOf(effect.name)}</span>
        </button>
    </li>;
}

function Cards({ members }: { members: readonly EffectInfo[] }) {
    return <ul class="cards">{members.map((effect) => <Card key={effect.name} effect={effect} />)}</ul>;
}

/** Every effect, by family or as the search finds it. */
export function Library() {
    const list = found.value;
    return <section class="library" aria-label="Effects">
        <input type="search" class="search" placeholder="Find an effect" aria-label="Find an effect" value={search}
            onInput={(event) => { search.value = event.currentTarget.value; }} />
        <div class="scroll">
            {list
                ? <>
                    <p class="hint count" role="status">{list.length === 0 ? `No effect has “${search}” in its name or description.`
                        : `${list.length} ${list.length === 1 ? "effect" : "effects"}`}</p>
                    <Cards members={list} />
                </>
                : families.value.map(({ name, heading, effects: members }) => {
                    const shown = members.map((member) => effects.value.get(member.name)!).filter(({ inert }) => !inert);
                    return shown.length > 0 && <section key={name} aria-label={heading}>
                        <h2>{heading}</h2>
                        <Cards members={shown} />
                    </section>;
                })}
        </div>
    </section>;
}
