import { signal } from "@preact/signals";
import type { Point } from "../model/places.js";

/** Which part of the picture is seen: `zoom` times as large as it fits, moved by `shift` pixels of the screen. */
export const zoom = signal(1);
export const shift = signal<Point>({ x: 0, y: 0 });
/** The size of the picture on the screen where it fits. */
export const fitted = signal({ width: 1, height: 1 });

const LEAST_ZOOM = 0.1;
const MOST_ZOOM = 32;

/** Some of the picture stays in the middle of the view. */
function bounded({ x, y }: Point): Point {
    const most = (side: number) => side * zoom.value / 2;
    const within = (place: number, side: number) => Math.max(-most(side), Math.min(most(side), place));
    return zoom.value <= 1 ? { x: 0, y: 0 } : { x: within(x, fitted.value.width), y: within(y, fitted.value.height) };
}

/** Zooms with the pixel that is at `at` staying there, counted from the middle of the view. */
export function zoomBy(factor: number, at: Point = { x: 0, y: 0 }): void {
    const before = zoom.value;
    zoom.value = Math.min(MOST_ZOOM, Math.max(LEAST_ZOOM, before * factor));
    const share = zoom.value / before;
    shift.value = bounded({ x: at.x - (at.x - shift.value.x) * share, y: at.y - (at.y - shift.value.y) * share });
}

export function panBy({ x, y }: Point): void {
    shift.value = bounded({ x: shift.value.x + x, y: shift.value.y + y });
}

export function fit(): void {
    zoom.value = 1;
    shift.value = { x: 0, y: 0 };
}

/** Shows every pixel of a picture of this width as one pixel of the screen. */
export function showPixels(width: number): void {
    zoomBy(width / devicePixelRatio / fitted.value.width / zoom.value);
}

/** The fingers and buttons that are down on the picture, by their numbers. */
const pointers = new Map<number, Point>();

function spread(): { readonly middle: Point; readonly distance: number } {
    const [a, b] = [...pointers.values()] as [Point, Point?];
    if (!b) return { middle: a, distance: 0 };
    return { middle: { x: (a.x + b.x) / 2, y: (a.y + b.y) / 2 }, distance: Math.hypot(a.x - b.x, a.y - b.y) };
}

/** Handlers that pan with one pointer, and pan and zoom with two. Places are counted from the middle of the view. */
export function gestures(placeOf: (event: MouseEvent) => Point) {
    const release = (event: PointerEvent) => { pointers.delete(event.pointerId); };
    return {
        onPointerDown: (event: PointerEvent & { currentTarget: HTMLElement }) => {
            if (pointers.size >= 2) return;
            pointers.set(event.pointerId, placeOf(event));
            event.currentTarget.setPointerCapture(event.pointerId);
        },
        onPointerMove: (event: PointerEvent) => {
            if (!pointers.has(event.pointerId)) return;
            const before = spread();
            pointers.set(event.pointerId, placeOf(event));
            const { middle, distance } = spread();
            panBy({ x: middle.x - before.middle.x, y: middle.y - before.middle.y });
            if (before.distance > 0 && distance > 0) zoomBy(distance / before.distance, middle);
        },
        onPointerUp: release,
        onPointerCancel: release,
    };
}

/** Keys of the view: plus, minus, 0 and arrows. */
export function onViewKey(event: KeyboardEvent): void {
    if (event.target !== event.currentTarget || event.ctrlKey || event.metaKey || event.altKey) return;
    const STEP = 60;
    const arrows: Readonly<Record<string, Point>> = {
        ArrowLeft: { x: STEP, y: 0 }, ArrowRight: { x: -STEP, y: 0 }, ArrowUp: { x: 0, y: STEP }, ArrowDown: { x: 0, y: -STEP },
    };
    if (event.key === "+" || event.key === "=") zoomBy(1.5);
    else if (event.key === "-") zoomBy(1 / 1.5);
    else if (event.key === "0") fit();
    else if (arrows[event.key]) panBy(arrows[event.key]!);
    else return;
    event.preventDefault();
}
