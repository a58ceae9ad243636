import { computed } from "@preact/signals";
import type { Picture } from "krlimage";
import { useEffect, useLayoutEffect, useRef } from "preact/hooks";
import { Handles } from "../handles/Handles.js";
import { asImageData } from "../pictures.js";
import { complain, isBusy, isFull, openFile, rendered, source, type OpenPicture } from "../store.js";
import { Icon } from "./Icon.js";
import { split, SplitHandle } from "./SplitHandle.js";
import { fit, fitted, gestures, onViewKey, shift, showPixels, zoom, zoomBy } from "./view.js";

/** From so many pixels of the screen for one of the picture, pixels are shown as squares. */
const SQUARES_FROM = 3;

function draw(canvas: HTMLCanvasElement | null, picture: Picture | undefined): void {
    if (!canvas || !picture) return;
    canvas.width = picture.width;
    canvas.height = picture.height;
    canvas.getContext("2d")!.putImageData(asImageData(picture), 0, 0);
}

const shown = computed(() => rendered.value?.picture ?? source.value?.picture);

/** Files that are dropped on the picture are opened. */
function dropHandlers(view: { current: HTMLElement | null }) {
    const mark = (isDropping: boolean) => view.current!.classList.toggle("dropping", isDropping);
    return {
        onDragOver: (event: DragEvent) => {
            if (!event.dataTransfer?.types.includes("Files")) return;
            event.preventDefault();
            mark(true);
        },
        onDragLeave: () => { mark(false); },
        onDrop: (event: DragEvent) => {
            event.preventDefault();
            mark(false);
            const [file] = event.dataTransfer?.files ?? [];
            if (file) openFile(file).catch(complain);
        },
    };
}

/** The picture: the result, and left of the split what it was made of. */
function View({ open }: { open: OpenPicture | undefined }) {
    const view = useRef<HTMLDivElement>(null), frame = useRef<HTMLDivElement>(null);
    const before = useRef<HTMLCanvasElement>(null), after = useRef<HTMLCanvasElement>(null);
    const result = shown.value;
    const { width = 3, height = 2 } = open?.picture ?? {};
    useEffect(() => draw(before.current, open?.picture), [open]);
    useEffect(() => draw(after.current, result), [result]);
    useEffect(fit, [open]);
    useLayoutEffect(() => {
        const measure = () => { fitted.value = { width: frame.current!.offsetWidth, height: frame.current!.offsetHeight }; };
        const watch = new ResizeObserver(measure);
        watch.observe(frame.current!);
        measure();
        return () => watch.disconnect();
    }, []);

    const placeOf = ({ clientX, clientY }: MouseEvent) => {
        const box = view.current!.getBoundingClientRect();
        return { x: clientX - box.left - box.width / 2, y: clientY - box.top - box.height / 2 };
    };
    const onWheel = (event: WheelEvent) => {
        event.preventDefault();
        zoomBy(Math.exp(-event.deltaY / 300), placeOf(event));
    };
    const squares = zoom.value * fitted.value.width / width >= SQUARES_FROM;
    return <div class="view" ref={view} tabIndex={0} role="group" aria-label="Picture: plus and minus zoom, arrow keys move, 0 fits it"
        onWheel={onWheel} onKeyDown={onViewKey} {...gestures(placeOf)} {...dropHandlers(view)}>
        <div class={squares ? "frame squares" : "frame"} ref={frame} style={{
            "--ratio": `${width} / ${height}`, "--wide": width / height, "--zoom": zoom.value,
            transform: `translate(${shift.value.x}px, ${shift.value.y}px) scale(${zoom.value})`,
        }}>
            <canvas ref={before} class="before" aria-hidden="true" />
            <canvas ref={after} class="after" role="img" style={{ clipPath: `inset(0 0 0 ${split.value}%)` }}
                aria-label={open ? `${open.name} with the effects of the chain` : "No picture yet"} />
            {open && <SplitHandle frame={frame} />}
            {open && <Handles size={open.picture} />}
        </div>
    </div>;
}

/** Pixels of the screen for one of the picture, in percent. */
const shownPercent = computed(() =>
    Math.round(100 * zoom.value * fitted.value.width * devicePixelRatio / (source.value?.picture.width ?? fitted.value.width)));

function sizeText({ picture }: OpenPicture): string {
    if (!rendered.value) return `${picture.width} × ${picture.height}`;
    const { width, height } = rendered.value.picture;
    return isFull.value ? `${width} × ${height}` : "preview";
}

export function Stage() {
    const open = source.value;
    return <section class="stage" aria-label="Picture">
        <View open={open} />
        <footer class="bar">
            <span class="facts" role="status">
                {open && `${open.name} · ${sizeText(open)}`}
                {isBusy.value && <span class="busy"> · working</span>}
            </span>
            <span class="zoom">
                <button type="button" class="tool" aria-label="Zoom out" title="Zoom out" onClick={() => zoomBy(1 / 1.5)}><Icon name="minus" /></button>
                <button type="button" class="tool wide" aria-label={`${shownPercent.value} %: show every pixel`} title="One pixel of the screen for each of the picture"
                    onClick={() => showPixels(open?.picture.width ?? 1)}>{shownPercent.value} %</button>
                <button type="button" class="tool" aria-label="Zoom in" title="Zoom in" onClick={() => zoomBy(1.5)}><Icon name="plus" /></button>
                <button type="button" class="tool" aria-label="Fit the picture" title="Fit the picture" onClick={fit}><Icon name="fit" /></button>
            </span>
        </footer>
    </section>;
}
