import type { Size } from "../model/document.js";
import type { Point } from "../model/places.js";
import { settle } from "../store.js";

export interface HandleProps {
    readonly at: Point;
    readonly size: Size;
    readonly name: string;
    readonly move: (to: Point) => void;
    readonly choose?: () => void;
    readonly remove?: () => void;
    /** How it looks: a corner, the end of a curve's handle, a rim; a point of its own by default. */
    readonly look?: "corner" | "curve" | "rim";
    readonly isChosen?: boolean;
}

/** A point on the picture that is moved by pointer or by arrow keys. */
export function Handle({ at: { x, y }, size, name, move, choose, remove, look, isChosen }: HandleProps) {
    const onKey = (event: KeyboardEvent) => {
        const by = event.shiftKey ? 10 : 1;
        const [dx, dy] = ({ ArrowLeft: [-by, 0], ArrowRight: [by, 0], ArrowUp: [0, -by], ArrowDown: [0, by] } as Record<string, [number, number]>)[event.key] ?? [0, 0];
        if (remove && (event.key === "Delete" || event.key === "Backspace")) remove();
        else if (dx !== 0 || dy !== 0) move({ x: x + dx, y: y + dy });
        else return;
        event.preventDefault();
    };
    const onMove = (event: PointerEvent & { currentTarget: HTMLElement }) => {
        if (!event.currentTarget.hasPointerCapture(event.pointerId)) return;
        event.stopPropagation();
        const box = event.currentTarget.parentElement!.getBoundingClientRect();
        move({
            x: Math.round((event.clientX - box.left) * size.width / box.width),
            y: Math.round((event.clientY - box.top) * size.height / box.height),
        });
    };
    return <button type="button" class={`handle ${look ?? ""}${isChosen ? " chosen" : ""}`} title={name}
        aria-label={`${name}: ${Math.round(x)}, ${Math.round(y)}. Move with the arrow keys`}
        style={{ left: `${100 * x / size.width}%`, top: `${100 * y / size.height}%` }} onKeyDown={onKey} onFocus={choose}
        onPointerDown={(event) => {
            event.stopPropagation();
            event.currentTarget.setPointerCapture(event.pointerId);
            choose?.();
        }}
        onPointerMove={onMove} onPointerUp={settle} />;
}
