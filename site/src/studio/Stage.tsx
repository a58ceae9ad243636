import { computed, signal } from "@preact/signals";
import type { Picture } from "krlimage";
import { useEffect, useRef } from "preact/hooks";
import { asImageData } from "../pictures.js";
import { complain, isBusy, isFull, openFile, rendered, source } from "../store.js";
import { Handles } from "./Handles.js";
import { Icon } from "./Icon.js";

/** Where the picture before ends and the result begins, in percent of the width. */
export const split = signal(0);
const zoom = signal(1);
const shift = signal({ x: 0, y: 0 });
const MOST_ZOOM = 16;

function draw(canvas: HTMLCanvasElement | null, picture: Picture | undefined): void {
    if (!canvas || !picture) return;
    canvas.width = picture.width;
    canvas.height = picture.height;
    canvas.getContext("2d")!.putImageData(asImageData(picture), 0, 0);
}

function setZoom(next: number): void {
    zoom.value = Math.min(MOST_ZOOM, Math.max(1, next));
    if (zoom.value === 1) shift.value = { x: 0, y: 0 };
}

const shown = computed(() => rendered.value?.picture ?? source.value?.picture);

function SplitHandle({ frame }: { frame: { current: HTMLElement | null } }) {
    const move = (event: PointerEvent) => {
        const { left, width } = frame.current!.getBoundingClientRect();
        split.value = Math.min(100, Math.max(0, 100 * (event.clientX - left) / width));
    };
    const onKey = (event: KeyboardEvent) => {
        const by = { ArrowLeft: -2, ArrowDown: -2, ArrowRight: 2, ArrowUp: 2, Home: -100, End: 100 }[event.key];
        if (by === undefined) return;
        split.value = Math.min(100, Math.max(0, split.value + by));
        event.preventDefault();
    };
    return <div class="split" role="slider" tabIndex={0} aria-label="Before and after" aria-valuemin={0} aria-valuemax={100}
        aria-valuenow={Math.round(split.value)} aria-valuetext={`${Math.round(split.value)} percent before`}
        style={{ left: `${split.value}%` }} onKeyDown={onKey}
        onPointerDown={(event) => event.currentTarget.setPointerCapture(event.pointerId)}
        onPointerMove={(event) => { if (event.currentTarget.hasPointerCapture(event.pointerId)) move(event); }}>
        <span><Icon name="split" /></span>
    </div>;
}

function droppedFile(event: DragEvent): File | undefined {
    return [...event.dataTransfer?.files ?? []][0];
}

/** The picture: the result, and left of the split what it was made of. */
export function Stage() {
    const view = useRef<HTMLDivElement>(null), frame = useRef<HTMLDivElement>(null);
    const before = useRef<HTMLCanvasElement>(null), after = useRef<HTMLCanvasElement>(null);
    const open = source.value, result = shown.value;
    useEffect(() => draw(before.current, open?.picture), [open]);
    useEffect(() => draw(after.current, result), [result]);
    useEffect(() => setZoom(1), [open]);

    const onWheel = (event: WheelEvent) => {
        if (!event.ctrlKey && !event.metaKey) return;
        event.preventDefault();
        setZoom(zoom.value * Math.exp(-event.deltaY / 300));
    };
    const onPan = (event: PointerEvent) => {
        if (zoom.value === 1 || !view.current!.hasPointerCapture(event.pointerId)) return;
        shift.value = { x: shift.value.x + event.movementX, y: shift.value.y + event.movementY };
    };
    const { width = 3, height = 2 } = open?.picture ?? {};
    return <section class="stage" aria-label="Picture">
        <div class="view" ref={view} onWheel={onWheel}
            onPointerDown={(event) => { if (zoom.value > 1 && event.target !== event.currentTarget) view.current!.setPointerCapture(event.pointerId); }}
            onPointerMove={onPan}
            onDragOver={(event) => { event.preventDefault(); view.current!.classList.add("dropping"); }}
            onDragLeave={() => view.current!.classList.remove("dropping")}
            onDrop={(event) => {
                event.preventDefault();
                view.current!.classList.remove("dropping");
                const file = droppedFile(event);
                if (file) openFile(file).catch(complain);
            }}>
            <div class="frame" ref={frame} style={{
                "--ratio": `${width} / ${height}`, "--wide": width / height,
                transform: `translate(${shift.value.x}px, ${shift.value.y}px) scale(${zoom.value})`,
            }}>
                <canvas ref={before} class="before" aria-hidden="true" />
                <canvas ref={after} class="after" role="img" style={{ clipPath: `inset(0 0 0 ${split.value}%)` }}
                    aria-label={open ? `${open.name} with the effects of the chain` : "No picture yet"} />
                {open && <Handles size={open.picture} />}
                {open && <SplitHandle frame={frame} />}
            </div>
        </div>
        <footer class="bar">
            <span class="facts" role="status">
                {open && `${open.name} · ${result!.width === width && isFull.value || !rendered.value ? `${width} × ${height}` :
                    isFull.value ? `${result!.width} × ${result!.height}` : "preview"}`}
                {isBusy.value && <span class="busy"> · working</span>}
            </span>
            <span class="zoom">
                <button type="button" class="tool" aria-label="Zoom out" title="Zoom out" onClick={() => setZoom(zoom.value / 1.5)}><Icon name="minus" /></button>
                <button type="button" class="tool wide" aria-label={`${Math.round(zoom.value * 100)} %: fit the picture`} title="Fit the picture" onClick={() => setZoom(1)}>{Math.round(zoom.value * 100)} %</button>
                <button type="button" class="tool" aria-label="Zoom in" title="Zoom in" onClick={() => setZoom(zoom.value * 1.5)}><Icon name="plus" /></button>
            </span>
        </footer>
    </section>;
}
